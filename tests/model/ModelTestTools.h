// What the tests of the node model share: trees from strings, trees as strings.
#pragma once

#include "quilltree/HeadlessHost.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace quill {

// The tree as one line: "Fruit(+) [Apple, Pear(sel)]". (+) expanded, (h) hidden, (sel) selected, (n*) placeholders.
inline std::string DumpItems(const TTreeCollection& Collection) {
    std::string Out;
    int Run = 0;
    for (TTreeSlot* Slot = Collection.FirstSlot(); Slot || Run > 0;) {
        TTreeSlot* const Here = Slot;
        if (Slot) Slot = Collection.GetChildList()->Next(Slot);
        if (Here && Here->IsPlaceholder()) {
            ++Run;
            continue;
        }
        if (Run > 0) {
            Out.append(Out.empty() ? "" : ", ").append(std::to_string(Run)).append("*");
            Run = 0;
        }
        if (!Here) break;
        const auto* const Item = static_cast<const TTreeCollection*>(Here);
        Out.append(Out.empty() ? "" : ", ").append(Item->GetCaptionView());
        if (const auto* const Node = dynamic_cast<const TFlyNode*>(Item)) {
            Out.append(Node->GetExpanded() ? "(+)" : "").append(Node->GetHidden() ? "(h)" : "");
            Out.append(Node->GetSelected() ? "(sel)" : "");
        }
        if (Item->GetCount() > 0) Out.append(" [").append(DumpItems(*Item)).append("]");
    }
    return Out;
}

inline std::string DumpRows(const TFlyNodes& Nodes) {
    std::string Out;
    for (int i = 0; i < Nodes.RowList.GetCount(); ++i) {
        const TFlyNode* const Node = Nodes.RowList.NodeAt(i);
        Out.append(Out.empty() ? "" : " ").append(Node ? Node->GetTextView() : std::string_view("*"));
    }
    return Out;
}

// Tree and rows, with every invariant checked on the way.
inline std::string Dump(const TFlyNodes& Nodes) {
    EXPECT_NO_THROW(Nodes.CheckInvariants());
    return DumpItems(Nodes) + " | " + DumpRows(Nodes);
}

// Adds "a b [c d [e]] f" below Parent (null: top level). A "+" behind a name expands that node, after its children.
inline void Plant(TFlyNodes& Nodes, TFlyNode* Parent, std::string_view& Text) {
    TFlyNode* Last = nullptr;
    while (!Text.empty()) {
        const char C = Text.front();
        if (C == ']') {
            Text.remove_prefix(1);
            return;
        }
        if (C == '[') {
            Text.remove_prefix(1);
            Plant(Nodes, Last, Text);
        } else if (C == '+') {
            Text.remove_prefix(1);
            Last->Expand(false);
        } else if (C == ' ') {
            Text.remove_prefix(1);
        } else {
            const std::size_t End = std::min(Text.find_first_of(" []+"), Text.size());
            Last = Nodes.AddChild(Parent, std::string(Text.substr(0, End)));
            Text.remove_prefix(End);
        }
    }
}

// "a[b c]+ d": the names must be unique for Find to be of use.
inline void Plant(TFlyNodes& Nodes, std::string_view Text) { Plant(Nodes, nullptr, Text); }

inline TFlyNode* Find(const TFlyNodes& Nodes, std::string_view Text) {
    TFlyNode* Node = Nodes.FirstExisting();
    while (Node && Node->GetTextView() != Text) Node = Node->GetNextExisting();
    EXPECT_NE(Node, nullptr) << "no node " << Text;
    return Node;
}

} // namespace quill
