// What the tests of the tree control share: a tree with known nodes, and its state as one string.
#pragma once

#include "quilltree/QuillTree.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace quill {

// A tree without its first node, of a size that all rows fit into.
class TTestTree : public TQuillTree {
public:
    TTestTree() {
        SetSmoothExpandCollapse(false);
        GetItems()->Clear();
        SetFixedRows(0);
        SetBorderStyle(bsNone);
        SetColWidths(0, 200);
        SetBounds(0, 0, 400, 400);
    }

    // Adds nodes from lines whose leading spaces are the level; a trailing "+" expands at the end.
    void Build(const std::string& Outline) {
        std::vector<TFlyNode*> Path;
        std::vector<TFlyNode*> Expanded;
        std::istringstream Lines(Outline);
        GetItems()->BeginUpdate();
        for (std::string Line; std::getline(Lines, Line);) {
            const std::size_t Level = Line.find_first_not_of(' ');
            if (Level == std::string::npos) continue;
            const bool Open = Line.ends_with('+');
            Path.resize(Level);
            Path.push_back(GetItems()->AddChild(Level == 0 ? nullptr : Path.back(),
                                                Line.substr(Level, Line.size() - Level - (Open ? 1 : 0))));
            if (Open) Expanded.push_back(Path.back());
        }
        GetItems()->EndUpdate();
        for (TFlyNode* Node : Expanded) Node->Expand(false);
    }

    TFlyNode* Find(const std::string& Text) {
        for (TFlyNode* Node = GetItems()->GetFirstNode(); Node; Node = Node->GetNext()) {
            if (Node->GetText() == Text) return Node;
        }
        return nullptr;
    }

    // The rows: "Fruit(+) Apple< Pear(sel)", the current one marked by "<"; or without the marks.
    std::string Rows(bool Marks = true) {
        std::string Out;
        for (int Row = GetFixedRows(); Row < GetRowCount(); ++Row) {
            TFlyNode* Node = GetNodeAtRow(Row);
            if (!Out.empty()) Out += ' ';
            Out += Node ? Node->GetText() : "null";
            if (Node && Node->GetExpanded()) Out += "(+)";
            if (Marks && Node && Node->GetSelected()) Out += "(sel)";
            if (Marks && Row == GetRow()) Out += '<';
        }
        return Out;
    }

    // Mouse messages, as the window system sends them.
    void Send(unsigned Msg, int X, int Y, TShiftState Shift = ssLeft) {
        Perform(Msg, Shift.Bits(), MakePointParam(X, Y));
    }
    void Drag(int X, int Y, int ToX, int ToY) {
        Send(WM_LBUTTONDOWN, X, Y);
        if (X != ToX || Y != ToY) Send(WM_MOUSEMOVE, ToX, ToY);
        Send(WM_LBUTTONUP, ToX, ToY, {});
    }

    void Check() {
        GetItems()->CheckInvariants();
        EXPECT_EQ(GetRowCount(), GetFixedRows() + GetItems()->RowList.GetCount());
    }
};

} // namespace quill
