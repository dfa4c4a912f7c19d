// Outlines as short texts, for comparisons.
#pragma once

#include "quilltree/FlyNodes.h"

#include <string>

namespace quill::testing {

// "Fruit[Apple*|red, Pear]": children in brackets, cells behind bars, an asterisk for selected nodes.
inline std::string DumpOutline(TFlyNodes& Nodes) {
    std::string Text;
    for (TFlyNode* Node = Nodes.GetFirstNode(); Node;) {
        Text += Node->GetText();
        if (Node->GetSelected()) Text += '*';
        for (int Cell = 1; Cell < Node->GetCellCount(); ++Cell) {
            Text += '|';
            Text += Node->GetCellView(Cell);
        }
        if (TFlyNode* Child = Node->getFirstChild()) {
            Text += '[';
            Node = Child;
            continue;
        }
        while (Node && !Node->GetNextSibling()) {
            Node = Node->GetParent();
            if (Node) Text += ']';
        }
        if (Node) {
            Text += ", ";
            Node = Node->GetNextSibling();
        }
    }
    return Text;
}

} // namespace quill::testing
