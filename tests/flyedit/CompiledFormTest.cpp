#include "quilltree/QuillTree.h"
#include "tests/support/QtTest.h"

#include "ui_sample.h"

namespace quill {
namespace {

TEST(CompiledForm, MakesTheControlsWithTheirNodesAndColumns) {
    QWidget Window;
    Ui::Form Form;
    Form.setupUi(&Window);
    TQuillTree& Tree = *Form.Tree;
    std::string Nodes;
    for (TFlyNode* Node = Tree.GetItems()->GetFirstNode(); Node; Node = Node->GetNext())
        Nodes += std::to_string(Node->GetLevel()) + Node->GetText() + "(" + Node->GetCell(1) + ") ";
    EXPECT_EQ(Nodes, "0Fruit() 1Apples(October) 1Pears(September) 0Nuts(November) ");
    EXPECT_EQ(std::to_string(Tree.GetColWidths(0)) + "," + std::to_string(Tree.GetColWidths(1)), "220,120");
    EXPECT_EQ(Tree.GetCaptions(0) + "," + Tree.GetCaptions(1), "What,When");
    EXPECT_EQ(Form.Label->GetLinesText(), "<B>Bold</B> and <COLOR=#C06000>orange</COLOR>\r\n");
}

} // namespace
} // namespace quill
