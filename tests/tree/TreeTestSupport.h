// What the tests of the tree control share: a tree with known nodes, and its state as one string.
#pragma once

#include "quilltree/QuillTree.h"

#include <gtest/gtest.h>

#include <string>

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
        GetItems()->BeginUpdate();
        std::size_t Pos = 0;
        while (Pos < Outline.size()) {
            const std::size_t End = std::min(Outline.find('\n', Pos), Outline.size());
            std::string Line = Outline.substr(Pos, End - Pos);
            Pos = End + 1;
            const std::size_t Level = Line.find_first_not_of(' ');
            if (Level == std::string::npos) continue;
            Line.erase(0, Level);
            const bool Open = Line.back() == '+';
            if (Open) Line.pop_back();
            Path.resize(Level);
            TFlyNode* Node = GetItems()->AddChild(Level == 0 ? nullptr : Path[Level - 1], Line);
            Path.push_back(Node);
            if (Open) Expanded.push_back(Node);
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

    // The rows: "Fruit(+) [Apple, Pear(sel)]" with the current row marked by "<".
    std::string Rows() {
        std::string Out;
        for (int Row = GetFixedRows(); Row < GetRowCount(); ++Row) {
            TFlyNode* Node = GetNodeAtRow(Row);
            if (!Out.empty()) Out += ' ';
            Out += Node ? Node->GetText() : "null";
            if (Node && Node->GetExpanded()) Out += "(+)";
            if (Node && Node->GetSelected()) Out += "(sel)";
            if (Row == GetRow()) Out += '<';
        }
        return Out;
    }

    void Check() {
        GetItems()->CheckInvariants();
        EXPECT_EQ(GetRowCount(), GetFixedRows() + GetItems()->RowList.GetCount());
    }
};

} // namespace quill
