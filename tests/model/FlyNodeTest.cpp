// Attributes, expansion, moving, sorting and copying of single nodes.
#include "ModelTestTools.h"

#include "host/base/Errors.h"
#include "host/base/Strings.h"

#include <vector>

namespace quill {
namespace {

class FlyNode : public testing::Test {
protected:
    // No row is current at first: expanding and collapsing select what is focused.
    FlyNode() { Host.SetRow(-1); }
    TFlyNode* At(std::string_view Text) { return Find(Nodes, Text); }
    THeadlessHost Host;
    TFlyNodes& Nodes = *Host.GetItems();
};

// --- attributes -----------------------------------------------------------------------------------------------------

TEST_F(FlyNode, CellsArePackedUntilTheListIsAskedFor) {
    Plant(Nodes, "a");
    TFlyNode* const A = At("a");
    EXPECT_EQ(A->GetCells(), nullptr);
    A->SetCell(2, "two");
    A->SetCell(1, std::string("o\0e", 3));
    EXPECT_EQ(A->GetCell(0), "a") << "the structure column reads the text";
    A->SetText(std::string(300, 'x'));
    EXPECT_EQ(A->GetCellsText(), std::string("\r\no\0e\r\ntwo\r\n", 12));
    TStringList* const List = A->GetCells();
    List->Add("three");
    List->Put(1, "one");
    EXPECT_EQ(A->GetCellsText(), "\r\none\r\ntwo\r\nthree\r\n");
    A->SetCellsText("p\nq\r\nr");
    EXPECT_EQ(A->GetCells(), List) << "the program may hold the list";
    EXPECT_EQ(List->GetCount(), 3);
    A->FreeCells();
    EXPECT_EQ(A->GetText(), std::string(300, 'x'));
    A->SetCell(1000, "far");
    EXPECT_EQ(A->GetCellCount(), 1001);
}

TEST_F(FlyNode, OddSettersKeepTheirOddity) {
    Plant(Nodes, "a");
    TFlyNode* const A = At("a");
    A->SetCut(false);
    EXPECT_TRUE(A->GetCut());
    A->SetDropTarget(false);
    EXPECT_TRUE(A->GetDropTarget());
    EXPECT_FALSE(A->GetCut()) << "one state, not a set";
    A->SetOverlayIndex(5);
    EXPECT_EQ(A->GetOverlayIndex(), 256);
    A->SetOverlayIndex(5);
    EXPECT_EQ(A->GetOverlayIndex(), 65792);
}

TEST_F(FlyNode, StateIndexIsTheControlsToStoreOrRefuse) {
    Plant(Nodes, "a");
    Host.OnStateChanging = [](TFlyNode*, int NewState, bool& Allow) { Allow = NewState != 2; };
    At("a")->SetStateIndex(1);
    At("a")->SetStateIndex(2);
    EXPECT_EQ(At("a")->GetStateIndex(), 1);
}

TEST_F(FlyNode, FocusFollowsTheCurrentRow) {
    Plant(Nodes, "a[b] c");
    At("b")->SetFocused(true);
    EXPECT_EQ(Dump(Nodes), "a(+) [b(sel)], c | a b c");
    EXPECT_TRUE(At("b")->GetFocused());
    At("b")->SetFocused(false);
    EXPECT_EQ(Host.GetRow(), -1);
    Host.SetRangeSelect(true);
    At("c")->SetFocused(true);
    EXPECT_FALSE(At("c")->GetSelected()) << "with several selected nodes allowed, focusing selects none";
}

class TLoggingAdapter : public INodeAdapter {
public:
    explicit TLoggingAdapter(std::string& Log) : FLog(Log) {}
    void AttachNode(TFlyNode* Node) override { FLog += "+" + Node->GetText(); }
    void DetachNode() override { FLog += "-"; }

private:
    std::string& FLog;
};

TEST_F(FlyNode, AdaptersAreAttachedAndDetached) {
    std::string Log;
    Plant(Nodes, "a b");
    const auto Adapter = std::make_shared<TLoggingAdapter>(Log);
    At("a")->SetNodeAdapter(Adapter);
    At("a")->SetNodeAdapter(nullptr);
    At("b")->SetNodeAdapter(Adapter);
    At("b")->Delete();
    EXPECT_EQ(Log, "+a-+b-");
    EXPECT_EQ(Adapter.use_count(), 1);
}

// --- expansion --------------------------------------------------------------------------------------------------------

TEST_F(FlyNode, ExpandingAndCollapsingEditTheRowsInPlace) {
    Plant(Nodes, "a[b[c[d] e] f] g");
    At("a")->Expand(true);
    EXPECT_EQ(DumpRows(Nodes), "a b c d e f g");
    At("a")->Collapse(false);
    EXPECT_EQ(Dump(Nodes), "a [b(+) [c(+) [d], e], f], g | a g") << "inner nodes keep their state";
    At("a")->Collapse(true);
    EXPECT_EQ(Dump(Nodes), "a [b [c [d], e], f], g | a g");
    At("d")->MakeVisible();
    EXPECT_EQ(DumpRows(Nodes), "a b c d e f g");
    At("a")->Collapse(true);
    At("c")->Expand(false);
    EXPECT_EQ(DumpRows(Nodes), "a b c d e f g") << "expanding inside a closed parent opens the way first";
}

TEST_F(FlyNode, RowsAreReportedAsTheirDifference) {
    Plant(Nodes, "a[b c[d]+] e");
    std::string Log;
    Host.OnInsertRows = [&](int Index, int Count) {
        Log += "+" + std::to_string(Index) + ":" + std::to_string(Count) + " ";
    };
    Host.OnDeleteRows = [&](int Index, int Count) {
        Log += "-" + std::to_string(Index) + ":" + std::to_string(Count) + " ";
    };
    Host.OnExpanding = [&](TFlyNode* Node, bool&) { Log += "ask " + Node->GetText() + " "; };
    Host.OnExpanded = [&](TFlyNode* Node) { Log += "expanded " + Node->GetText() + " "; };
    Host.OnCollapsed = [&](TFlyNode* Node) { Log += "collapsed " + Node->GetText() + " "; };
    EXPECT_FALSE(Host.GetExpanding());
    // Planting expanded c inside a, which opened a as well.
    At("a")->Collapse(false);
    Log.clear();
    At("a")->Expand(false);
    At("a")->Expand(false);
    At("a")->Collapse(false);
    EXPECT_EQ(Log, "ask a +0:3 expanded a -0:3 collapsed a ");
    EXPECT_FALSE(Host.GetExpanding());
}

TEST_F(FlyNode, AVetoLeavesEverythingUntouched) {
    Plant(Nodes, "a[b]");
    Host.OnExpanding = [](TFlyNode*, bool& Allow) { Allow = false; };
    At("a")->Expand(true);
    EXPECT_EQ(Dump(Nodes), "a [b] | a");
    Host.OnExpanding = [](TFlyNode*, bool&) -> void { throw EInvalidOperation("no"); };
    EXPECT_THROW(At("a")->Expand(false), EInvalidOperation);
    EXPECT_FALSE(Host.GetExpanding()) << "cleared on every exit";
    Host.OnExpanding = nullptr;
    At("a")->Expand(false);
    Host.OnCollapsing = [](TFlyNode*, bool& Allow) { Allow = false; };
    At("a")->Collapse(true);
    EXPECT_EQ(Dump(Nodes), "a(+) [b] | a b");
}

TEST_F(FlyNode, CollapsingMovesFocusAndSelectionUp) {
    Plant(Nodes, "a[b c]+");
    At("b")->SetHidden(true);
    At("b")->SetSelectedField(true);
    At("a")->Collapse(false);
    EXPECT_EQ(Dump(Nodes), "a(sel) [b(h), c] | a") << "a selected child without a row counts, too";
    Nodes.Clear();
    Plant(Nodes, "a[b[c]+ d]+ e");
    Host.SetRow(2); // c
    At("d")->SetSelected(true);
    At("a")->Collapse(false);
    EXPECT_EQ(Dump(Nodes), "a(sel) [b(+) [c], d], e | a e");
    EXPECT_EQ(Host.GetRow(), 0);
    Host.SetRow(1); // e
    At("a")->Expand(false);
    EXPECT_EQ(Host.GetRow(), 4) << "the focused node keeps the focus on its new row";
}

TEST_F(FlyNode, HiddenNodesTakeTheirSubtreeOutOfTheRows) {
    Plant(Nodes, "a[b[c]+ d]+ e");
    At("b")->SetSelected(true);
    At("b")->Hide();
    EXPECT_EQ(Dump(Nodes), "a(+) [b(+)(h) [c], d], e | a d e");
    EXPECT_FALSE(At("a")->GetAllChildrenHidden());
    At("d")->Hide();
    EXPECT_TRUE(At("a")->GetAllChildrenHidden());
    Nodes.ShowAll();
    EXPECT_EQ(DumpRows(Nodes), "a b c d e");
    At("a")->Hide();
    At("c")->MakeVisible();
    EXPECT_EQ(DumpRows(Nodes), "e");
    At("a")->Show(true);
    EXPECT_EQ(DumpRows(Nodes), "a b c d e");
}

TEST_F(FlyNode, TenChildrenInAWindowOfFiveRowsPutTheirParentOnTop) {
    Plant(Nodes, "a b[0 1 2 3 4 5 6 7 8 9] c d e f[x y]");
    Host.SetVisibleRowCount(5);
    At("b")->Expand(false);
    EXPECT_EQ(Host.GetTopRow(), 1);
    Host.SetTopRow(10);
    At("f")->Expand(false);
    EXPECT_EQ(Host.GetTopRow(), 13) << "the last child becomes the last visible row";
    At("b")->Collapse(false);
    EXPECT_EQ(Host.GetTopRow(), 3) << "no empty space stays below";
}

TEST_F(FlyNode, ChildrenAreSortedWhenTheyAreFirstShown) {
    Plant(Nodes, "a[item10 item9 Item1]");
    Host.SetSortType(stText);
    EXPECT_EQ(DumpItems(Nodes), "a [item10, item9, Item1]");
    At("a")->Expand(false);
    EXPECT_EQ(DumpItems(*At("a")), "Item1, item9, item10") << "digits by value";
    Nodes.BeginUpdate();
    Nodes.AddChildFirst(At("a"), "item95");
    Nodes.AddChild(nullptr, "A");
    Nodes.EndUpdate();
    EXPECT_EQ(DumpRows(Nodes), "A a Item1 item9 item10 item95");
}

// --- sorting ------------------------------------------------------------------------------------------------------------

TEST_F(FlyNode, TheSortTypeDecidesBetweenDefaultOrderAndComparison) {
    const auto Backwards = [](TFlyNode* A, TFlyNode* B, int& Compare) {
        Compare = B->GetText().compare(A->GetText());
    };
    Plant(Nodes, "b[y x z] a");
    Host.OnCompare = Backwards;
    Host.SetSortType(stText);
    EXPECT_EQ(DumpItems(Nodes), "a, b [y, x, z]")
        << "by text: the default order, though a comparison is assigned";
    Host.SetSortType(stBoth);
    EXPECT_EQ(DumpItems(Nodes), "b [y, x, z], a");
    At("x")->SetText("w");
    EXPECT_EQ(DumpItems(Nodes), "b [z, y, w], a") << "SetText sorts the siblings again";
    Host.OnCompare = nullptr;
    At("w")->SetText("zz");
    EXPECT_EQ(DumpItems(Nodes), "b [z, y, zz], a") << "but only with a comparison";
}

TEST_F(FlyNode, SortingKeepsRowsAndFocus) {
    Plant(Nodes, "c[z[q]+ y]+ b a");
    Host.SetRow(1); // z
    Nodes.AlphaSort();
    EXPECT_EQ(DumpRows(Nodes), "a b c z q y");
    EXPECT_EQ(Host.GetRow(), 3);
    At("c")->CustomSort(nullptr, true);
    EXPECT_EQ(DumpRows(Nodes), "a b c y z q");
}

TEST_F(FlyNode, SortingIsStableAndSurvivesAnyComparison) {
    for (int i = 0; i < 1000; ++i) Nodes.Add(nullptr, std::to_string(i));
    Nodes.CustomSort(
        [](TTreeCollection* A, TTreeCollection* B) {
            return static_cast<int>(A->GetCaption().size()) - static_cast<int>(B->GetCaption().size());
        },
        false);
    EXPECT_EQ(Nodes.GetNodeFromIndex(0)->GetText(), "100");
    EXPECT_EQ(Nodes.GetNodeFromIndex(999)->GetText(), "9");
    unsigned Random = 1;
    Nodes.CustomSort(
        [&](TTreeCollection*, TTreeCollection*) {
            Random = Random * 1664525u + 1013904223u;
            return static_cast<int>(Random >> 16) % 3 - 1;
        },
        true);
    EXPECT_NO_THROW(Nodes.CheckInvariants());
    EXPECT_EQ(Nodes.GetCount(), 1000);
}

// --- moving -------------------------------------------------------------------------------------------------------------

TEST_F(FlyNode, MovesWithoutADestinationGoToTheTopAndDescendantsAreRefused) {
    const std::pair<TNodeAttachMode, const char*> Cases[] = {
        {naAdd, "a(+) [c [d]], e, b | a c e b"},
        {naInsert, "b, a(+) [c [d]], e | b a c e"},
        {naAddChildFirst, "b, a(+) [c [d]], e | b a c e"}};
    for (const auto& [Mode, Expected] : Cases) {
        Nodes.Clear();
        Plant(Nodes, "a[b c[d]]+ e");
        At("b")->MoveTo(nullptr, Mode);
        EXPECT_EQ(Dump(Nodes), Expected);
        EXPECT_FALSE(At("b")->GetMoving());
    }
    EXPECT_THROW(At("a")->MoveTo(At("d"), naAddChild), EInvalidOperation);
    EXPECT_THROW(At("a")->MoveTo(At("d"), naAdd), EInvalidOperation);
    EXPECT_THROW(At("a")->MoveTo(At("a"), naAddChild), EInvalidOperation);
    EXPECT_NO_THROW(Nodes.CheckInvariants());
}

TEST_F(FlyNode, MovingBetweenTreesTakesRowsAndOwnerAlong) {
    THeadlessHost OtherHost;
    TFlyNodes& Other = *OtherHost.GetItems();
    Plant(Nodes, "a[b[c]+ d]+ e");
    Plant(Other, "x[y]+ z");
    At("b")->MoveTo(Find(Other, "y"), naInsert);
    EXPECT_EQ(Dump(Nodes), "a(+) [d], e | a d e");
    EXPECT_EQ(Dump(Other), "x(+) [b(+) [c], y], z | x b c y z");
    EXPECT_EQ(Find(Other, "c")->GetOwner(), &Other);
    Find(Other, "b")->MoveTo(At("e"), naAddChild);
    EXPECT_EQ(Dump(Nodes), "a(+) [d], e [b(+) [c]] | a d e");
    EXPECT_EQ(Dump(Other), "x(+) [y], z | x y z");
}

TEST_F(FlyNode, SettingTheIndexInsideABracketMovesRowsByTheRequiredRule) {
    Plant(Nodes, "b c a[p q]+");
    Nodes.BeginUpdate();
    At("a")->SetIndex(0);
    EXPECT_EQ(DumpRows(Nodes), "p a q b c") << "a child goes to the node's position plus its index";
    Nodes.EndUpdate();
    EXPECT_EQ(Dump(Nodes), "a(+) [p, q], b, c | a p q b c");
}

TEST_F(FlyNode, AssignAppendsACopyOfTheSubtree) {
    Plant(Nodes, "a[b c[d]] e[f]");
    TFlyNode* const A = At("a");
    int Mark = 0;
    A->SetData(&Mark);
    A->SetCell(1, "one");
    A->SetImageIndex(7);
    At("e")->Assign(A);
    EXPECT_EQ(DumpItems(Nodes), "a [b, c [d]], a [f, b, c [d]]");
    TFlyNode* const Copy = A->GetNextSibling();
    EXPECT_EQ(Copy->GetCellView(1), "one");
    EXPECT_EQ(Copy->GetImageIndex(), 7);
    EXPECT_EQ(Copy->Getdata(), &Mark);
    EXPECT_TRUE(Copy->GetCut()) << "a copy is always marked cut";
    A->Assign(A);
    EXPECT_EQ(DumpItems(*A), "b, c [d], b, c [d]");
    At("d")->Assign(A->GetItem(1)); // into its own descendant
    EXPECT_EQ(DumpItems(*A), "b, c [c [c]], b, c [d]");
    EXPECT_NO_THROW(Nodes.CheckInvariants());
}

} // namespace
} // namespace quill
