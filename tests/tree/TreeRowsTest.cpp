// Rows, columns and heights of the tree control.
#include "tests/tree/TreeTestSupport.h"

namespace quill {
namespace {

constexpr const char* Fruit = "Fruit+\n Apple\n Pear+\n  Red\n  Green\n Plum\nNuts\n Hazel\n";

TEST(TreeRows, FollowTheNodesAndMapBackToThem) {
    TTestTree Tree;
    Tree.Build(Fruit);
    Tree.Find("Pear")->Collapse(false);
    EXPECT_EQ(Tree.Rows(), "Fruit(+)(sel)< Apple Pear Plum Nuts")
        << "collapsing selects the focused node again";
    Tree.Find("Fruit")->Hide();
    EXPECT_EQ(Tree.Rows(), "Nuts<");
    Tree.SetFixedRows(2);
    Tree.GetItems()->ShowAll();
    Tree.Find("Pear")->Expand(false);
    for (const int Row : {-1, 1, Tree.GetRowCount()}) EXPECT_EQ(Tree.GetNodeAtRow(Row), nullptr) << Row;
    for (int Row = 2; Row < Tree.GetRowCount(); ++Row) EXPECT_EQ(Tree.GetNodeAtRow(Row)->GetRow(), Row);
    EXPECT_EQ(Tree.GetNextVisible(Tree.Find("Green")), Tree.Find("Plum"));
    EXPECT_EQ(Tree.GetPrevVisible(Tree.Find("Plum")), Tree.Find("Green"));
    EXPECT_EQ(Tree.GetPrevVisible(Tree.Find("Hazel")), Tree.Find("Nuts"));
    Tree.Check();
    Tree.GetItems()->Clear();
    EXPECT_EQ(Tree.GetRowCount(), 2);
    EXPECT_EQ(Tree.GetLastVisibleNode(), nullptr);
}

TEST(TreeRows, PlaceholdersBecomeNodesWhenTheirRowIsAskedFor) {
    TTestTree Tree;
    int Made = 0;
    Tree.OnMaterialise = [&](TObject*, TFlyNode*) { ++Made; };
    Tree.GetItems()->AddPlaceholders(1000000);
    Tree.HandleNeeded();
    Tree.Update();
    EXPECT_LT(Made, 60) << "only what is in view becomes real";
    EXPECT_EQ(Tree.GetNodeAtRow(777777)->GetIndex(), 777777);
    EXPECT_TRUE(Tree.GetItems()->NVMeta(777778));
    Tree.Check();
}

TEST(TreeRows, FixedRowsGrowTheRowCountFirst) {
    TTestTree Tree;
    Tree.SetFixedRows(3);
    EXPECT_EQ(Tree.GetRowCount(), 3);
    Tree.Build("A\nB\n");
    Tree.SetFixedRows(5);
    EXPECT_EQ(Tree.GetRowCount(), 7);
    Tree.SetFixedRows(0);
    for (const char* Text : {"A", "B"}) Tree.Find(Text)->Hide();
    Tree.SetFixedRows(1); // nodes enough, but none with a row
    EXPECT_EQ(Tree.GetRowCount(), 1);
    EXPECT_THROW(Tree.SetFixedRows(-1), EInvalidGridOperation);
}

TEST(TreeColumns, StructureColumnGrowsTheGridAndFollowsMoves) {
    TTestTree Tree;
    Tree.SetColCount(3);
    Tree.SetStructureCol(5);
    EXPECT_EQ(Tree.GetColCount(), 6);
    Tree.SetStructureCol(2);
    const std::tuple<int, int, const char*> Moves[] = {
        {2, 2, "012345/2"}, {4, 1, "041235/3"}, {0, 4, "412305/2"}, {2, 5, "413052/5"}};
    for (const auto& [From, To, Expected] : Moves) {
        Tree.MoveColumn(From, To);
        std::string Map;
        for (int Col = 0; Col < 6; ++Col) Map += std::to_string(Tree.GetColumnOrder(Col));
        EXPECT_EQ(Map + "/" + std::to_string(Tree.GetStructureCol()), Expected);
    }
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
    Tree.OnEdited = [](TObject*, TFlyNode*, std::string& S) { S += "!"; };
    Tree.SetEditText(0, 0, "B");
    Tree.SetEditText(1, 0, "three");
    EXPECT_EQ(Node->GetText(), "B!");
    EXPECT_EQ(Node->GetCell(2), "three!");
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
}

TEST(TreeHeights, AreStoredPerNodeAndMoveWithIt) {
    TTestTree Tree;
    Tree.Build(Fruit);
    Tree.SetRowHeights(2, 40);
    EXPECT_EQ(Tree.Find("Pear")->GetHeight(), 40);
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

} // namespace
} // namespace quill
