// Rows, columns and heights of the tree control.
#include "tests/tree/TreeTestSupport.h"

namespace quill {
namespace {

constexpr const char* Fruit = "Fruit+\n Apple\n Pear+\n  Red\n  Green\n Plum\nNuts\n Hazel\n";

TEST(TreeRows, ANewTreeHoldsOneNodeAndTheStatedDefaults) {
    TQuillTree Tree;
    ASSERT_EQ(Tree.GetItems()->GetCount(), 1);
    EXPECT_EQ(Tree.GetItems()->GetFirstNode()->GetText(), "TFlyNode");
    EXPECT_EQ(Tree.GetNodeAtRow(Tree.GetFixedRows()), Tree.GetItems()->GetFirstNode());
    EXPECT_EQ(Tree.GetWidth(), 121);
    EXPECT_EQ(Tree.GetHeight(), 97);
    EXPECT_EQ(Tree.GetButtonSize(), 11);
    EXPECT_EQ(Tree.GetIndent(), 20);
    EXPECT_EQ(Tree.GetStructureCol(), 0);
    EXPECT_EQ(Tree.GetTrackedRow(), -1);
    EXPECT_EQ(Tree.GetHotTrackColor(), clBlue);
    EXPECT_EQ(Tree.GetOutlineColor(), clGray);
    EXPECT_EQ(Tree.GetOutlineStyle(), olsStandardTree);
    EXPECT_TRUE(Tree.GetShowButtons() && Tree.GetShowlines() && Tree.GetShowRoot() &&
                Tree.GetStatesDrawed() && Tree.GetSmoothExpandCollapse() && Tree.GetDoubleBuffered());
    EXPECT_FALSE(Tree.GetUniqueTags() || Tree.GetParentColor() || Tree.GetShowImages() ||
                 Tree.GetShowLogic());
}

TEST(TreeRows, FollowExpandingCollapsingHidingAndDeleting) {
    TTestTree Tree;
    Tree.Build(Fruit);
    EXPECT_EQ(Tree.Rows(), "Fruit(+)< Apple Pear(+) Red Green Plum Nuts");
    Tree.Find("Pear")->Collapse(false);
    EXPECT_EQ(Tree.Rows(), "Fruit(+)(sel)< Apple Pear Plum Nuts")
        << "collapsing selects the focused node again";
    Tree.Find("Hazel")->MakeVisible();
    EXPECT_EQ(Tree.Rows(), "Fruit(+)(sel)< Apple Pear Plum Nuts(+) Hazel");
    Tree.Find("Fruit")->Hide();
    EXPECT_EQ(Tree.Rows(), "Nuts(+)< Hazel");
    Tree.GetItems()->ShowAll();
    Tree.Find("Pear")->Expand(false);
    EXPECT_EQ(Tree.Rows(), "Fruit(+)< Apple Pear(+) Red Green Plum Nuts(+) Hazel");
    Tree.Find("Pear")->Delete();
    EXPECT_EQ(Tree.Rows(), "Fruit(+)< Apple Plum Nuts(+) Hazel");
    Tree.Check();
    Tree.GetItems()->Clear();
    EXPECT_EQ(Tree.GetRowCount(), Tree.GetFixedRows());
    EXPECT_EQ(Tree.GetTopRow(), Tree.GetFixedRows());
    EXPECT_EQ(Tree.GetLastVisibleNode(), nullptr);
}

TEST(TreeRows, MapRowsToNodesAndBack) {
    TTestTree Tree;
    Tree.SetFixedRows(2);
    Tree.Build(Fruit);
    EXPECT_EQ(Tree.GetNodeAtRow(-1), nullptr);
    EXPECT_EQ(Tree.GetNodeAtRow(1), nullptr);
    EXPECT_EQ(Tree.GetNodeAtRow(Tree.GetRowCount()), nullptr);
    for (int Row = 2; Row < Tree.GetRowCount(); ++Row) {
        ASSERT_NE(Tree.GetNodeAtRow(Row), nullptr);
        EXPECT_EQ(Tree.GetNodeAtRow(Row)->GetRow(), Row);
    }
    EXPECT_EQ(Tree.GetNextVisible(Tree.Find("Green")), Tree.Find("Plum"));
    EXPECT_EQ(Tree.GetPrevVisible(Tree.Find("Plum")), Tree.Find("Green"));
    EXPECT_EQ(Tree.GetPrevVisible(Tree.Find("Hazel")), Tree.Find("Nuts"));
    EXPECT_EQ(Tree.GetLastVisibleNode(), Tree.Find("Nuts"));
}

TEST(TreeRows, PlaceholdersBecomeNodesWhenTheirRowIsAskedFor) {
    TTestTree Tree;
    int Made = 0;
    Tree.OnMaterialise = [&](TObject*, TFlyNode* Node) { Node->SetText("Node " + std::to_string(++Made)); };
    Tree.GetItems()->BeginUpdate();
    Tree.GetItems()->AddPlaceholders(1000000);
    Tree.GetItems()->EndUpdate();
    EXPECT_EQ(Tree.GetRowCount(), 1000000);
    Tree.HandleNeeded();
    Tree.Update();
    EXPECT_LT(Made, 60) << "only what is in view becomes real";
    TFlyNode* Node = Tree.GetNodeAtRow(777777);
    ASSERT_NE(Node, nullptr);
    EXPECT_EQ(Node->GetIndex(), 777777);
    EXPECT_FALSE(Tree.GetItems()->NVMeta(777777));
    EXPECT_TRUE(Tree.GetItems()->NVMeta(777778));
    Tree.Check();
}

TEST(TreeRows, FixedRowsGrowTheRowCountFirst) {
    TTestTree Tree;
    Tree.SetFixedRows(3);
    EXPECT_EQ(Tree.GetFixedRows(), 3);
    EXPECT_EQ(Tree.GetRowCount(), 3);
    Tree.Build("A\nB\n");
    Tree.SetFixedRows(5);
    EXPECT_EQ(Tree.GetRowCount(), 7);
    EXPECT_EQ(Tree.GetNodeAtRow(5), Tree.Find("A"));
    Tree.SetFixedRows(0);
    for (const char* Text : {"A", "B"}) Tree.Find(Text)->Hide();
    Tree.SetFixedRows(1); // nodes enough, but none with a row
    EXPECT_EQ(Tree.GetRowCount(), 1);
    EXPECT_THROW(Tree.SetFixedRows(-1), EInvalidGridOperation);
}

TEST(TreeRows, IndentAndButtonSizeKeepTheirRules) {
    TTestTree Tree;
    const auto Set = [&](int Button, int Indent) {
        if (Button >= 0) Tree.SetButtonSize(Button);
        if (Indent >= 0) Tree.SetIndent(Indent);
        return std::to_string(Tree.GetButtonSize()) + "/" + std::to_string(Tree.GetIndent());
    };
    EXPECT_EQ(Set(10, -1), "9/20");
    EXPECT_EQ(Set(25, -1), "9/20");
    EXPECT_EQ(Set(-1, 9), "9/20");
    EXPECT_EQ(Set(-1, 10), "9/10");
    EXPECT_EQ(Set(11, -1), "9/10");
}

TEST(TreeColumns, StructureColumnGrowsTheGridAndFollowsMoves) {
    TTestTree Tree;
    Tree.SetColCount(3);
    Tree.SetStructureCol(-1);
    EXPECT_EQ(Tree.GetStructureCol(), 0);
    Tree.SetStructureCol(5);
    EXPECT_EQ(Tree.GetColCount(), 6);
    Tree.SetStructureCol(2);
    const auto Map = [&] {
        std::string Out;
        for (int Col = 0; Col < Tree.GetColCount(); ++Col) Out += std::to_string(Tree.GetColumnOrder(Col));
        return Out + "/" + std::to_string(Tree.GetStructureCol());
    };
    EXPECT_EQ(Map(), "012345/2");
    Tree.MoveColumn(4, 1);
    EXPECT_EQ(Map(), "041235/3");
    Tree.MoveColumn(0, 4);
    EXPECT_EQ(Map(), "412305/2");
    Tree.MoveColumn(2, 5);
    EXPECT_EQ(Map(), "413052/5");
    EXPECT_EQ(Tree.GetColumnOrder(-1), -1);
    EXPECT_EQ(Tree.GetColumnOrder(6), -1);
    EXPECT_EQ(Tree.GetDisplayColumn(2), 5);
}

TEST(TreeColumns, CellsGoThroughTheColumnsMap) {
    TTestTree Tree;
    Tree.SetColCount(3);
    Tree.Build("A\n");
    TFlyNode* Node = Tree.Find("A");
    Tree.SetNodeData(Node, 2, "two");
    EXPECT_EQ(Node->GetCellsText(), "\r\n\r\ntwo\r\n");
    Tree.MoveColumn(2, 1);
    EXPECT_EQ(Tree.GetNodeData(Node, 1), "two");
    EXPECT_EQ(Tree.GetEditText(0, 0), "A");
    EXPECT_EQ(Tree.GetNodeCells(Node, -1), "");
    Tree.OnEdited = [](TObject*, TFlyNode*, std::string& S) { S += "!"; };
    Tree.SetEditText(0, 0, "B");
    Tree.SetEditText(1, 0, "three");
    EXPECT_EQ(Node->GetText(), "B!");
    EXPECT_EQ(Node->GetCell(2), "three!");
    Tree.OnGetEditText = [](TObject*, int, int, std::string& Value) { Value = "shown"; };
    EXPECT_EQ(Tree.GetEditText(1, 0), "shown");
}

TEST(TreeColumns, LastColumnFitsTheClientWidth) {
    TTestTree Tree;
    Tree.SetColWidths(0, 75);
    Tree.SetFitColumnToClientWidth(true);
    const int Width = Tree.GetClientWidth();
    EXPECT_EQ(Tree.GetColWidths(0), Width);
    Tree.SetColCount(3);
    EXPECT_EQ(Tree.GetColWidths(0), 75);
    EXPECT_EQ(Tree.GetColWidths(2), Width - 2 * 76 - 1);
    Tree.SetColWidths(1, Width);
    EXPECT_EQ(Tree.GetColWidths(1), Width - 76 - 1);
    EXPECT_EQ(Tree.GetColWidths(2), 0);
    Tree.SetOptions(TGridOptions{goHorzLine});
    EXPECT_EQ(Tree.GetColWidths(1), Width - 75);
}

TEST(TreeHeights, AreStoredPerNodeAndMoveWithIt) {
    TTestTree Tree;
    Tree.Build(Fruit);
    const int Default = Tree.GetDefaultRowHeight();
    Tree.SetRowHeights(2, 40);
    EXPECT_EQ(Tree.Find("Pear")->GetHeight(), 40);
    EXPECT_EQ(Tree.GetRowHeights(2), 40);
    EXPECT_EQ(Tree.GetRowHeights(3), Default);
    Tree.Find("Apple")->Delete();
    EXPECT_EQ(Tree.GetRowHeights(1), 40);
    Tree.OnRowHeightChanging = [](int, int& Value) { Value += 5; };
    Tree.SetRowHeights(0, 30);
    EXPECT_EQ(Tree.Find("Fruit")->GetHeight(), 35);
}

// One node with a height of its own makes the heights below shift; that tells once and creates nothing.
TEST(TreeHeights, ShiftWithoutCreatingNodesAndTellTheGridOnce) {
    struct TCountingTree : TTestTree {
        void RowHeightsChanged() override {
            ++Changes;
            TTestTree::RowHeightsChanged();
        }
        int Changes = 0;
    } Tree;
    int Made = 0;
    Tree.OnMaterialise = [&](TObject*, TFlyNode*) { ++Made; };
    Tree.Build("A\n x\n y\nB\nC\n");
    Tree.GetItems()->AddPlaceholders(1000);
    Tree.Find("B")->SetHeight(40);
    Tree.Changes = 0;
    Made = 0; // those in view
    Tree.Find("A")->Expand(false);
    EXPECT_LE(Tree.Changes, 2);
    Tree.Changes = 0;
    Tree.Find("A")->Collapse(false);
    EXPECT_LE(Tree.Changes, 1);
    Tree.Find("C")->MoveTo(Tree.Find("A"), naInsert);
    EXPECT_EQ(Made, 0);
    Tree.Check();
}

TEST(TreeHeights, AreMeasuredOnceUnderFitToHeight) {
    TTestTree Tree;
    Tree.Build("A\nB\n");
    Tree.SetFitToHeight(true);
    Tree.GetCanvas()->SetFont(Tree.GetFont());
    const int Line = Tree.GetCanvas()->TextHeight("A");
    EXPECT_EQ(Tree.GetRowHeights(0), Line + 2);
    Tree.Find("B")->SetText("");
    Tree.RefreshRowHeights();
    EXPECT_EQ(Tree.GetRowHeights(1), 1) << "a node whose every cell is empty";
    Tree.SetRowHeights(0, 99);
    EXPECT_EQ(Tree.GetRowHeights(0), Line + 2) << "setting only forgets the measured height";
    Tree.SetWordWrap(true);
    Tree.SetColWidths(0, 120);
    Tree.Find("A")->SetText("several words that do not fit into one line of this column");
    EXPECT_GE(Tree.GetRowHeights(0), 3 * Line);
    TImageList Images(nullptr, 60, 60);
    Tree.SetShowImages(true);
    Tree.SetImages(&Images);
    Tree.RefreshRowHeights();
    EXPECT_GE(Tree.GetRowHeights(0), 60);
}

TEST(TreeImages, SetTheIndentAndAreForgottenWhenTheyGo) {
    TTestTree Tree;
    {
        TImageList Images(nullptr, 32, 30);
        Tree.SetImages(&Images);
        EXPECT_EQ(Tree.GetIndent(), 36);
        EXPECT_EQ(Tree.GetDefaultRowHeight(), 30);
    }
    EXPECT_EQ(Tree.GetImages(), nullptr);
    Tree.Build("A\n");
    Tree.SetShowImages(true);
    Tree.HandleNeeded();
    Tree.Repaint();
}

TEST(TreeSorting, TypesSortWhenTheyAreSaidTo) {
    TTestTree Tree;
    Tree.Build("C\nA\nB\n");
    Tree.SetSortType(stData);
    EXPECT_EQ(Tree.Rows(), "C< A B");
    Tree.SetSortType(stText);
    EXPECT_EQ(Tree.Rows(), "A B C<");
    Tree.GetItems()->Add(nullptr, "AA");
    EXPECT_EQ(Tree.GetItems()->GetNodeFromIndex(1)->GetText(), "AA");
    Tree.Check();
}

TEST(TreeTags, NumberNodesInDocumentOrder) {
    TTestTree Tree;
    Tree.Build(Fruit);
    EXPECT_EQ(Tree.Find("Plum")->GetUniqueTag(), -1);
    Tree.SetUniqueTags(true);
    EXPECT_EQ(Tree.Find("Fruit")->GetUniqueTag(), 0);
    EXPECT_EQ(Tree.Find("Plum")->GetUniqueTag(), 5);
    EXPECT_EQ(Tree.GetItems()->Add(nullptr, "New")->GetUniqueTag(), 8);
}

} // namespace
} // namespace quill
