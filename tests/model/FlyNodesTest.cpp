// Structure, adding, removing, brackets and lookup.
#include "ModelTestTools.h"

#include "host/base/Collation.h"
#include "host/base/Errors.h"
#include "host/base/Strings.h"

#include <algorithm>
#include <random>
#include <vector>

namespace quill {
namespace {

class FlyNodes : public testing::Test {
protected:
    TFlyNode* At(std::string_view Text) { return Find(Nodes, Text); }
    THeadlessHost Host;
    TFlyNodes& Nodes = *Host.GetItems();
};

TEST_F(FlyNodes, EveryWayOfAddingPutsTheNodeWhereItSays) {
    int Mark = 0;
    const std::tuple<const char*, std::function<TFlyNode*(TFlyNode*)>, const char*> Cases[] = {
        {"Add", [&](TFlyNode* S) { return Nodes.Add(S, "x"); }, "a [b [e], c, x], d"},
        {"Add null", [&](TFlyNode*) { return Nodes.Add(nullptr, "x"); }, "a [b [e], c], d, x"},
        {"AddObject", [&](TFlyNode* S) { return Nodes.AddObject(S, "x", &Mark); }, "a [b [e], c, x], d"},
        {"below it", [&](TFlyNode* S) { return Nodes.AddFirst(S, "x"); }, "a [b [x, e], c], d"},
        {"AddFirst null", [&](TFlyNode*) { return Nodes.AddFirst(nullptr, "x"); }, "x, a [b [e], c], d"},
        {"beside it", [&](TFlyNode* S) { return Nodes.AddObjectFirst(S, "x", &Mark); }, "a [x, b [e], c], d"},
        {"below", [&](TFlyNode* S) { return Nodes.AddChildObject(S, "x", &Mark); }, "a [b [e, x], c], d"},
        {"first", [&](TFlyNode* S) { return Nodes.AddChildObjectFirst(S, "x", &Mark); },
         "a [b [x, e], c], d"},
        {"Insert null", [&](TFlyNode*) { return Nodes.Insert(nullptr, "x"); }, "x, a [b [e], c], d"},
    };
    for (const auto& [What, Work, Expected] : Cases) {
        SCOPED_TRACE(What);
        Nodes.Clear();
        Plant(Nodes, "a[b[e] c] d");
        Work(At("b"));
        EXPECT_EQ(DumpItems(Nodes), Expected);
        EXPECT_NO_THROW(Nodes.CheckInvariants());
    }
}

// The list is public. Whatever a program does to it, the next change puts it right and trusts nothing in it.
TEST_F(FlyNodes, RowsChangedByHandAreListedAnewWithTheNextChange) {
    const std::function<void()> Changes[] = {
        [&] { At("b")->Delete(); },
        [&] { At("b")->Hide(); },
        [&] { At("a")->Collapse(false); },
        [&] { At("b")->SetIndex(1); },
        [&] { At("b")->MoveTo(At("f"), naAddChild); },
        [&] { Nodes.AddChild(At("b"), "x"); },
        [&] { At("a")->CustomSort(nullptr, false); },
        [&] { Nodes.AddPlaceholders(3); },
        [&] { At("a")->DeleteChildren(); },
    };
    for (const auto& Change : Changes) {
        for (int Seed = 0; Seed < 6; ++Seed) {
            Nodes.Clear();
            Plant(Nodes, "a[b[c d]+ e]+ f");
            Nodes.RowList.Move(Seed, 5 - Seed);
            Nodes.RowList.Exchange(1, Seed);
            if (Seed % 2 == 0) Nodes.RowList.Delete(Seed);
            EXPECT_FALSE(Nodes.IsRowListCurrent());
            Change();
            Nodes.Add(nullptr, "last");
            EXPECT_TRUE(Nodes.IsRowListCurrent());
            EXPECT_NO_THROW(Nodes.CheckInvariants());
        }
    }
    Nodes.RowList.Clear();
    Nodes.Clear();
}

TEST_F(FlyNodes, AddingToAParentWithASelectedChildMovesTheSelectionUp) {
    Plant(Nodes, "a[b c]+");
    At("b")->SetSelected(true);
    Nodes.AddChild(At("a"), "d");
    EXPECT_EQ(Dump(Nodes), "a(+)(sel) [b, c, d] | a b c d");
    // Beside the rows of another parent nothing is touched.
    At("c")->SetSelected(true);
    Nodes.Add(nullptr, "e");
    EXPECT_EQ(Dump(Nodes), "a(+)(sel) [b, c(sel), d], e | a b c d e");
}

TEST_F(FlyNodes, ABracketRebuildsOnceAtItsEnd) {
    Plant(Nodes, "a[b]+");
    int Refreshes = 0;
    int Changes = 0;
    Host.OnRefresh = [&] { ++Refreshes; };
    Nodes.OnCollectionChange = [&](TObject*) { ++Changes; };
    Nodes.BeginUpdate();
    Nodes.BeginUpdate();
    for (int i = 0; i < 1000; ++i) Nodes.AddChild(At("a"), std::to_string(i));
    Nodes.EndUpdate();
    EXPECT_EQ(DumpRows(Nodes), "a b");
    EXPECT_EQ(Refreshes + Changes, 0);
    Nodes.EndUpdate();
    EXPECT_EQ(Nodes.RowList.GetCount(), 1002);
    EXPECT_EQ(Refreshes, 1);
    EXPECT_EQ(Changes, 1);
    EXPECT_THROW(Nodes.EndUpdate(), EInvalidOperation);
}

TEST_F(FlyNodes, NavigationGoesInDocumentOrderBothWays) {
    Plant(Nodes, "a[b[c d] e] f[g]");
    std::string Forward;
    TFlyNode* Last = nullptr;
    for (TFlyNode* Node = Nodes.GetFirstNode(); Node; Node = Node->GetNext()) {
        Forward += Node->GetText() + std::to_string(Node->GetLevel()) +
                   std::to_string(Node->GetAbsoluteIndex()) + " ";
        Last = Node;
    }
    EXPECT_EQ(Forward, "a00 b11 c22 d23 e14 f05 g16 ");
    EXPECT_EQ(Last, Nodes.GetLastNode());
    std::string Backward;
    for (TFlyNode* Node = Last; Node; Node = Node->GetPrev()) Backward += Node->GetText();
    EXPECT_EQ(Backward, "gfedcba");
    EXPECT_EQ(At("a")->IndexOf(At("d")), -1);
    EXPECT_TRUE(At("d")->HasAsParent(At("a")) && At("d")->HasAsParent(nullptr));
    EXPECT_FALSE(At("d")->HasAsParent(At("d")) || At("d")->HasAsParent(At("e")));
}

TEST_F(FlyNodes, IndexErrorsHaveTheirTexts) {
    Plant(Nodes, "a[b]");
    const auto Message = [](const auto& Work) -> std::string {
        try {
            Work();
        } catch (const EQuillTreeError& Error) {
            return "tree: " + Error.GetMessage();
        } catch (const EListError& Error) {
            return "list: " + Error.GetMessage();
        }
        return "none";
    };
    EXPECT_EQ(Message([&] { At("a")->GetItem(1); }), "tree: GetItem:List index out of bounds (%d)");
    EXPECT_EQ(Message([&] { At("a")->GetItem(-1); }), "list: List index out of bounds (-1)");
    EXPECT_EQ(Message([&] { Nodes.GetNodeFromIndex(-1); }), "tree: Invalid index");
    EXPECT_EQ(Message([&] { Nodes.GetNodeFromIndex(1); }), "list: List index out of bounds (1)");
    EXPECT_EQ(Message([&] { At("b")->SetIndex(1); }), "tree: GetItem:List index out of bounds (%d)");
    EXPECT_EQ(Message([&] { At("a")->SetIndex(-1); }), "tree: Invalid index");
    EXPECT_EQ(Dump(Nodes), "a [b] | a");
}

TEST_F(FlyNodes, DeletingTheCurrentRowMovesItToTheFirst) {
    Plant(Nodes, "a b c");
    Host.SetRow(2);
    At("b")->Delete();
    EXPECT_EQ(Host.GetRow(), 2);
    Nodes.Add(nullptr, "d");
    Nodes.BeginUpdate();
    At("d")->Delete();
    Nodes.EndUpdate();
    EXPECT_EQ(Host.GetRow(), 2) << "not inside a bracket";
    Nodes.Add(nullptr, "e");
    At("e")->Delete();
    EXPECT_EQ(Host.GetRow(), 0);
}

TEST_F(FlyNodes, DeletionIsToldParentFirstAndOnceForEachNode) {
    Plant(Nodes, "a[b[c]+ d]+ e");
    std::string Told;
    Host.OnDeletion = [&](TFlyNode* Node) { Told += Node->GetText(); };
    At("a")->Delete();
    EXPECT_EQ(Told, "adbc");
    Nodes.Clear();
    EXPECT_EQ(Told, "adbce");
    EXPECT_EQ(Dump(Nodes), " | ");
}

TEST_F(FlyNodes, TagsAreGivenInOrderAndTheHighestComesBack) {
    Plant(Nodes, "a[b] c");
    At("b")->SetUniqueTag(7);
    EXPECT_EQ(At("b")->GetUniqueTag(), -1);
    EXPECT_EQ(Nodes.GetNodeOnUniqueTag(-1), At("a"));
    Host.SetEnumerateNodes(true);
    EXPECT_EQ(At("b")->GetUniqueTag(), 1);
    EXPECT_EQ(Nodes.Add(nullptr, "d")->GetUniqueTag(), 3);
    At("d")->Delete();
    EXPECT_EQ(Nodes.Add(nullptr, "e")->GetUniqueTag(), 3);
    At("b")->Delete();
    EXPECT_EQ(Nodes.Add(nullptr, "f")->GetUniqueTag(), 4) << "only the highest tag is given back";
    EXPECT_EQ(Nodes.GetNodeOnUniqueTag(4), At("f"));
    EXPECT_EQ(Nodes.GetNodeOnUniqueTag(1), nullptr);
    Nodes.Clear();
    EXPECT_EQ(Nodes.Add(nullptr, "g")->GetUniqueTag(), 0);
}

TEST_F(FlyNodes, PathTextsLeadBackToTheirNode) {
    Plant(Nodes, "a[b[c] d] e");
    const std::string Path = Nodes.GetItemText(At("c"));
    EXPECT_EQ(Path, "a\r\nb\r\nc\r\n");
    EXPECT_EQ(Nodes.SetItemText(Path), At("c"));
    EXPECT_EQ(Nodes.SetItemText("a\nd"), At("d"));
    EXPECT_EQ(Nodes.SetItemText("a\nB"), nullptr);
}

TEST_F(FlyNodes, SelectedNodesAreFoundAmongTheRows) {
    Plant(Nodes, "a[b c]+ d e[f]");
    for (const char* Name : {"b", "d", "e"}) At(Name)->SetSelected(true);
    At("f")->SetSelectedField(true); // without a row
    std::string Found;
    for (TFlyNode* Node = Nodes.GetFirstSelectedNode(); Node; Node = Nodes.GetNextSelectedNode(Node)) {
        Found += Node->GetText();
    }
    for (TFlyNode* Node = Nodes.GetLastSelectedNode(); Node; Node = Nodes.GetPrevSelectedNode(Node)) {
        Found += Node->GetText();
    }
    EXPECT_EQ(Found, "bdeedb");
    EXPECT_EQ(Nodes.GetNextSelectedNode(At("f")), At("b")) << "a node without a row starts again";
    EXPECT_EQ(Nodes.GetPrevSelectedNode(At("f")), nullptr);
    int First = 0;
    int Last = 0;
    EXPECT_TRUE(Nodes.ClearSelectedRows(First, Last));
    EXPECT_EQ(std::pair(First, Last), std::pair(1, 4));
    Nodes.SelectRows(-3, 1, true);
    EXPECT_EQ(Dump(Nodes), "a(+)(sel) [b(sel), c], d, e [f(sel)] | a b c d e");
}

TEST_F(FlyNodes, AssignCopiesEverythingAnotherContainerHas) {
    THeadlessHost OtherHost;
    TFlyNodes& Other = *OtherHost.GetItems();
    OtherHost.SetEnumerateNodes(true);
    Plant(Other, "a[b c] d");
    TFlyNode* const B = Find(Other, "b");
    B->SetCell(1, "x\ny");
    B->SetCell(2, "");
    B->SetStateIndexField(3);
    Find(Other, "d")->SetHidden(true);
    Other.InsertPlaceholders(1, 3);
    Plant(Nodes, "z");
    Nodes.Assign(&Other);
    EXPECT_EQ(Dump(Nodes), "a [b, c], 3*, d(h) | a * * *");
    EXPECT_EQ(At("b")->GetCellView(1), "x\ny");
    EXPECT_EQ(At("b")->GetCellCount(), 3);
    EXPECT_EQ(At("b")->GetStateIndex(), 3);
    EXPECT_EQ(Nodes.GetLastUniqueTag(), 3);
    Nodes.Assign(&Nodes);
    EXPECT_EQ(DumpItems(Nodes), "a [b, c], 3*, d(h)");
}

TEST_F(FlyNodes, PlaceholdersBecomeNodesWhereTheyStand) {
    std::vector<int> Made;
    Nodes.OnMaterialise = [&](TFlyNode* Node) {
        Made.push_back(Node->GetIndex());
        Node->SetText("#" + std::to_string(Node->GetIndex()));
    };
    Nodes.AddPlaceholders(1000);
    EXPECT_EQ(Host.GetRowCount(), 1000);
    EXPECT_EQ(Host.GetNodeAtRow(700)->GetText(), "#700");
    Nodes.GetNodeFromIndex(0)->Delete();
    EXPECT_EQ(Host.GetNodeAtRow(500)->GetText(), "#500") << "a removal before it moves the index on";
    EXPECT_EQ(Nodes.GetNodeFromIndex(699)->GetText(), "#700");
    EXPECT_EQ(Made, (std::vector<int>{700, 0, 500}));
    EXPECT_TRUE(Nodes.NVMeta(1));
    EXPECT_FALSE(Nodes.NVMeta(500));
    Nodes.CustomSort(
        [](TTreeCollection* A, TTreeCollection* B) { return B->GetCaption().compare(A->GetCaption()); },
        true);
    EXPECT_EQ(Nodes.GetNodeFromIndex(500)->GetText(), "#700")
        << "placeholders keep their slots when items sort";
    TFlyNode* const Parent = Nodes.GetNodeFromIndex(500);
    Parent->AddPlaceholders(5);
    Parent->Expand(false);
    EXPECT_EQ(Nodes.RowList.GetCount(), 999 + 5);
    EXPECT_EQ(Parent->getFirstChild()->GetText(), "#0");
    EXPECT_EQ(Parent->GetAbsoluteIndex(), 500);
    EXPECT_NO_THROW(Nodes.CheckInvariants());
    // A handler that deletes the new node at once: nobody gets it.
    Nodes.OnMaterialise = [](TFlyNode* Node) { Node->Delete(); };
    EXPECT_EQ(Nodes.GetNodeFromIndex(1), nullptr);
    EXPECT_EQ(Host.GetNodeAtRow(2), nullptr);
    EXPECT_NO_THROW(Nodes.CheckInvariants());
}

TEST(FlyNodesAlone, WorkWithoutAControl) {
    TFlyNodes Nodes;
    Plant(Nodes, "b[y x] a");
    TFlyNode* const B = Find(Nodes, "b");
    B->Expand(true);
    EXPECT_FALSE(B->GetExpanded()) << "without a control nothing expands";
    EXPECT_EQ(B->GetRow(), -1);
    EXPECT_EQ(B->GetHeight(), -1);
    B->SetCell(2, "two");
    EXPECT_EQ(B->GetCellsText(), "\r\n\r\ntwo\r\n");
    EXPECT_TRUE(Nodes.AlphaSort());
    EXPECT_TRUE(B->AlphaSort());
    EXPECT_EQ(Nodes.GetNextSelectedNode(nullptr), nullptr);
    B->MoveTo(Find(Nodes, "a"), naAddChild);
    TFlyNode Free(nullptr);
    Free.SetText("f");
    Free.MoveTo(B, naAddFirst);
    EXPECT_EQ(DumpItems(Nodes), "a [f, b [x, y]]");
    EXPECT_EQ(Free.GetOwner(), &Nodes);
}

TEST(FlyNodesAlone, ANodeOutlivesItsContainerWithoutAnOwner) {
    THeadlessHost Keep;
    TFlyNode* Moved = nullptr;
    {
        THeadlessHost Gone;
        Plant(*Gone.GetItems(), "a[b[c]]");
        Plant(*Keep.GetItems(), "x");
        Moved = Find(*Gone.GetItems(), "b");
        // As a child of a collapsed node of another tree: only the node itself changes its owner, as required.
        Moved->MoveTo(Find(*Keep.GetItems(), "x"), naAddChild);
        EXPECT_EQ(Moved->GetOwner(), Keep.GetItems());
        EXPECT_EQ(Moved->getFirstChild()->GetOwner(), Gone.GetItems());
    }
    EXPECT_EQ(Moved->getFirstChild()->GetOwner(), nullptr);
    Moved->Expand(true);
    EXPECT_EQ(Dump(*Keep.GetItems()), "x(+) [b(+) [c]] | x b c");
    EXPECT_EQ(Moved->getFirstChild()->GetOwner(), Keep.GetItems())
        << "a node that gets a row belongs to its list";
}

// A node added to nodes in order goes to its place alone; whatever may have put the others out of order has all of them
// sorted again. Either way the result is what sorting everything gives.
TEST(Sorting, AnAddedNodeComesWhereSortingEverythingWouldPutIt) {
    std::mt19937 Random(11);
    const auto Any = [&](int Count) { return static_cast<int>(Random() % static_cast<unsigned>(Count)); };
    for (int Way = 0; Way < 4; ++Way) {
        const TSortType Sort = Way % 2 == 0 ? stText : stBoth;
        THeadlessHost Host;
        TFlyNodes& Nodes = *Host.GetItems();
        TFlyNode* const Parent = Way < 2 ? nullptr : Nodes.Add(nullptr, "parent");
        TTreeCollection& Siblings = Parent ? static_cast<TTreeCollection&>(*Parent) : Nodes;
        const auto At = [&](int Index) { return static_cast<TFlyNode*>(Siblings.GetItem(Index)); };
        Nodes.AddChild(Parent, "first");
        if (Parent) Parent->Expand(false);
        Host.SetSortType(Sort);
        for (int Step = 0; Step < 400; ++Step) {
            const int Count = Siblings.GetCount();
            const std::string Text = (Any(2) ? "n" : "N") + std::to_string(Any(60));
            const int Kind = Any(10);
            if (Kind == 0) At(Any(Count))->SetText(Text);
            if (Kind == 1) At(Any(Count))->SetIndex(0);
            if (Kind == 2 && Count > 1) At(Any(Count))->Delete();
            if (Kind == 3) At(Any(Count))->StoreTexts(Text, {});
            if (Kind < 4) continue;
            std::vector<TFlyNode*> Expected;
            for (int i = 0; i < Siblings.GetCount(); ++i) Expected.push_back(At(i));
            const bool First = Kind == 4;
            TFlyNode* const New = First ? Nodes.AddChildFirst(Parent, Text) : Nodes.AddChild(Parent, Text);
            Expected.insert(First ? Expected.begin() : Expected.end(), New);
            std::stable_sort(Expected.begin(), Expected.end(), [&](TFlyNode* A, TFlyNode* B) {
                return (Sort == stText ? CompareTextNatural : CompareTextLocale)(A->GetText(), B->GetText()) <
                       0;
            });
            for (int i = 0; i < Siblings.GetCount(); ++i)
                ASSERT_EQ(At(i), Expected[static_cast<std::size_t>(i)]) << Step << " " << Text;
            ASSERT_NO_THROW(Nodes.CheckInvariants());
            ASSERT_TRUE(Nodes.IsRowListCurrent());
        }
    }
}

} // namespace
} // namespace quill
