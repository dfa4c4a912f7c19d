// A handler may do anything: every event against every misdeed, in the middle of every operation. Run under the
// address sanitizer this finds whatever the model touches after it is gone.
#include "ModelTestTools.h"

#include "host/base/Errors.h"
#include "host/base/Streams.h"

#include <memory>
#include <vector>

namespace quill {
namespace {

struct TScene {
    std::unique_ptr<THeadlessHost> Host = std::make_unique<THeadlessHost>();
    std::unique_ptr<THeadlessHost> Other = std::make_unique<THeadlessHost>();
    int Left = 0; // how often the handler strikes

    TFlyNodes* Nodes() const { return Host ? Host->GetItems() : nullptr; }
    TFlyNode* At(std::string_view Text) const {
        TFlyNode* Node = Nodes() ? Nodes()->FirstExisting() : nullptr;
        while (Node && Node->GetTextView() != Text) Node = Node->GetNextExisting();
        return Node;
    }
};

using TDeed = std::pair<const char*, void (*)(TScene&, TFlyNode*)>;

void Delete(TFlyNode* Node) {
    if (Node) Node->Delete();
}

// What the handler does with a node that is there.
const TDeed Misdeeds[] = {
    {"deletes the node", [](TScene&, TFlyNode* N) { N->Delete(); }},
    {"deletes the node by operator", [](TScene&, TFlyNode* N) { delete N; }},
    {"deletes its parent", [](TScene&, TFlyNode* N) { Delete(N->GetParent()); }},
    {"deletes the first node", [](TScene& S, TFlyNode*) { S.Nodes()->FirstExisting()->Delete(); }},
    {"deletes the children", [](TScene&, TFlyNode* N) { N->DeleteChildren(); }},
    {"clears the tree", [](TScene& S, TFlyNode*) { S.Nodes()->Clear(); }},
    {"destroys the host", [](TScene& S, TFlyNode*) { S.Host.reset(); }},
    {"adds a node", [](TScene& S, TFlyNode* N) { S.Nodes()->Add(N, "new"); }},
    {"adds a child", [](TScene& S, TFlyNode* N) { S.Nodes()->AddChild(N, "new"); }},
    {"inserts a node", [](TScene& S, TFlyNode*) { S.Nodes()->Insert(nullptr, "new"); }},
    {"moves the node",
     [](TScene& S, TFlyNode* N) {
         if (S.Nodes()->FirstExisting() != N) N->MoveTo(S.Nodes()->FirstExisting(), naInsert);
     }},
    {"moves it to another tree",
     [](TScene& S, TFlyNode* N) {
         if (S.Other->GetItems()->GetCount()) N->MoveTo(S.Other->GetItems()->FirstExisting(), naAddChild);
     }},
    {"collapses", [](TScene& S, TFlyNode*) { S.Nodes()->FirstExisting()->Collapse(true); }},
    {"expands", [](TScene& S, TFlyNode*) { S.Nodes()->FirstExisting()->Expand(true); }},
    {"hides the node", [](TScene&, TFlyNode* N) { N->Hide(); }},
    {"sorts", [](TScene& S, TFlyNode*) { S.Nodes()->CustomSort(nullptr, false); }},
    {"throws", [](TScene&, TFlyNode*) { throw EInvalidOperation("hostile"); }},
    {"opens a bracket and forgets it", [](TScene& S, TFlyNode*) { S.Nodes()->BeginUpdate(), S.Left = 0; }},
};

// Fits every event that begins with a node.
struct TStrike {
    std::function<void(TFlyNode*)> Work;
    template <class... TArgs>
    void operator()(TFlyNode* Node, TArgs&&...) const {
        const auto Copy = Work; // the handler's own place may go while it runs
        Copy(Node);
    }
};

const std::pair<const char*, void (*)(TScene&, TStrike)> Events[] = {
    {"OnExpanding", [](TScene& S, TStrike F) { S.Host->OnExpanding = F; }},
    {"OnCollapsing", [](TScene& S, TStrike F) { S.Host->OnCollapsing = F; }},
    {"OnExpanded", [](TScene& S, TStrike F) { S.Host->OnExpanded = F; }},
    {"OnCollapsed", [](TScene& S, TStrike F) { S.Host->OnCollapsed = F; }},
    {"OnDeletion", [](TScene& S, TStrike F) { S.Host->OnDeletion = F; }},
    {"OnStateChanging", [](TScene& S, TStrike F) { S.Host->OnStateChanging = F; }},
    {"OnSelectItem", [](TScene& S, TStrike F) { S.Host->OnSelectItem = F; }},
    {"OnCompare",
     [](TScene& S, TStrike F) {
         S.Host->OnCompare = [F](TFlyNode* A, TFlyNode* B, int& C) {
             C = A->GetText().compare(B->GetText());
             F(B);
         };
         S.Host->SetSortType(stBoth);
     }},
    {"OnMaterialise", [](TScene& S, TStrike F) { S.Host->OnMaterialise = F; }},
    {"OnInsertRows",
     [](TScene& S, TStrike F) {
         S.Host->OnInsertRows = [F, &S](int Row, int) { F(S.Nodes()->RowList.NodeAt(Row)); };
     }},
    {"OnDeleteRows",
     [](TScene& S, TStrike F) {
         S.Host->OnDeleteRows = [F, &S](int Row, int) { F(S.Nodes()->RowList.NodeAt(Row)); };
     }},
    {"OnRefresh", [](TScene& S, TStrike F) { S.Host->OnRefresh = [F] { F(nullptr); }; }},
    {"OnCollectionChange",
     [](TScene& S, TStrike F) { S.Nodes()->OnCollectionChange = [F](TObject*) { F(nullptr); }; }},
};

const TDeed Operations[] = {
    {"Expand all", [](TScene&, TFlyNode* A) { A->Expand(true); }},
    {"Collapse all", [](TScene&, TFlyNode* A) { A->Collapse(true); }},
    {"MakeVisible", [](TScene& S, TFlyNode*) { S.At("d")->MakeVisible(); }},
    {"SetFocused", [](TScene& S, TFlyNode*) { S.At("d")->SetFocused(true); }},
    {"SetSelected", [](TScene& S, TFlyNode*) { S.At("b")->SetSelected(true); }},
    {"SetStateIndex", [](TScene& S, TFlyNode*) { S.At("b")->SetStateIndex(4); }},
    {"SetText", [](TScene& S, TFlyNode*) { S.At("b")->SetText("zz"); }},
    {"SetHidden", [](TScene& S, TFlyNode*) { S.At("b")->SetHidden(true); }},
    {"ShowAll", [](TScene& S, TFlyNode*) { S.Nodes()->ShowAll(); }},
    {"Delete", [](TScene&, TFlyNode* A) { A->Delete(); }},
    {"Delete a leaf", [](TScene& S, TFlyNode*) { S.At("d")->Delete(); }},
    {"operator delete", [](TScene& S, TFlyNode*) { delete S.At("b"); }},
    {"DeleteChildren", [](TScene&, TFlyNode* A) { A->DeleteChildren(); }},
    {"Clear", [](TScene& S, TFlyNode*) { S.Nodes()->Clear(); }},
    {"AlphaSort of a node", [](TScene&, TFlyNode* A) { A->AlphaSort(); }},
    {"AlphaSort", [](TScene& S, TFlyNode*) { S.Nodes()->AlphaSort(); }},
    {"Add", [](TScene& S, TFlyNode* A) { S.Nodes()->AddChild(A, "q"); }},
    {"Insert", [](TScene& S, TFlyNode* A) { S.Nodes()->Insert(A, "q"); }},
    {"SetIndex", [](TScene&, TFlyNode* A) { A->SetIndex(1); }},
    {"MoveTo", [](TScene& S, TFlyNode*) { S.At("b")->MoveTo(S.At("f"), naAddChild); }},
    {"MoveTo another tree",
     [](TScene& S, TFlyNode* A) { A->MoveTo(S.Other->GetItems()->FirstExisting(), naInsert); }},
    {"Assign a node", [](TScene& S, TFlyNode* A) { S.At("f")->Assign(A); }},
    {"Assign the container", [](TScene& S, TFlyNode*) { S.Nodes()->Assign(S.Other->GetItems()); }},
    {"materialise a row",
     [](TScene& S, TFlyNode*) { S.Host->GetNodeAtRow(S.Nodes()->RowList.GetCount() - 1); }},
    {"walk the tree", [](TScene& S, TFlyNode*) { S.Nodes()->GetLastNode(); }},
    {"save nodes",
     [](TScene& S, TFlyNode*) {
         TMemoryStream Stream;
         S.Nodes()->SaveNodesToStream(Stream, tsnIncludeCells);
     }},
    {"load nodes",
     [](TScene& S, TFlyNode*) {
         TMemoryStream Stream("SaveOptions:22\r\n1,3,1,z\r\n\t2,4,1,y\r\n\t\t2,4,1,x\r\n5,6,0,w\r\n");
         S.Nodes()->LoadNodesFromStream(Stream);
     }},
    {"load a stream", [](TScene& S, TFlyNode*) { S.Nodes()->LoadFromText(S.Nodes()->SaveToText(true)); }},
    {"an update bracket",
     [](TScene& S, TFlyNode* A) {
         const TUpdateBracket Bracket(S.Nodes());
         S.Nodes()->AddChild(A, "q");
         Delete(S.At("b"));
     }},
};

TEST(HostileHandlers, NothingIsTouchedThatAHandlerTookAway) {
    int Struck = 0;
    for (const auto& [Event, Connect] : Events) {
        for (const auto& [Misdeed, Do] : Misdeeds) {
            for (const auto& [Operation, Run] : Operations) {
                SCOPED_TRACE(std::string(Event) + " " + Misdeed + " during " + Operation);
                TScene Scene;
                Plant(*Scene.Nodes(), "a[b[c[d] e]+ g]+ f[h] i");
                Plant(*Scene.Other->GetItems(), "x[y]+ z");
                Scene.Nodes()->AddPlaceholders(4);
                Scene.At("f")->AddPlaceholders(2);
                Scene.At("g")->SetHidden(true);
                Scene.At("b")->SetSelected(true);
                Connect(Scene, {[&, Misdo = Do](TFlyNode* Node) {
                            if (Scene.Left <= 0 || !Scene.Host) return;
                            if (!Node) Node = Scene.Nodes()->FirstExisting();
                            if (!Node) return;
                            --Scene.Left;
                            ++Struck;
                            Misdo(Scene, Node);
                        }});
                Scene.Left = 3;
                try {
                    Run(Scene, Scene.At("a"));
                } catch (const EInvalidOperation&) { // by the handler, or the move that it made impossible
                }
                if (!Scene.Host) continue;
                Scene.Left = 0;
                while (Scene.Nodes()->GetUpdateCount() > 0) Scene.Nodes()->EndUpdate();
                ASSERT_NO_THROW(Scene.Nodes()->CheckInvariants()) << Dump(*Scene.Nodes());
                ASSERT_TRUE(Scene.Nodes()->IsRowListCurrent());
                ASSERT_FALSE(Scene.Host->GetExpanding());
                ASSERT_NO_THROW(Scene.Other->GetItems()->CheckInvariants());
            }
        }
    }
    EXPECT_GT(Struck, 1500) << "the handlers were not reached";
}

// Endless misdeeds: the work must come to an end all the same.
TEST(HostileHandlers, AHandlerThatAlwaysAddsDoesNotKeepDeletionGoing) {
    THeadlessHost Host;
    TFlyNodes& Nodes = *Host.GetItems();
    Plant(Nodes, "a[b[c] d] e");
    int Told = 0;
    Host.OnDeletion = [&](TFlyNode* Node) {
        ++Told;
        Nodes.AddChild(Node->GetParent(), "again");
        Nodes.AddChild(Node, "below");
    };
    Nodes.Clear();
    EXPECT_EQ(Dump(Nodes), " | ");
    EXPECT_EQ(Told, 5);
    Plant(Nodes, "a[b]");
    Find(Nodes, "a")->Delete();
    EXPECT_EQ(Told, 7);
    EXPECT_EQ(DumpItems(Nodes), "again") << "what was added beside the deleted node stays";
}

TEST(HostileHandlers, AnErrorOfAHandlerComesOutAfterTheWork) {
    THeadlessHost Host;
    TFlyNodes& Nodes = *Host.GetItems();
    Plant(Nodes, "a[b c]+ d");
    Host.OnDeletion = [](TFlyNode* Node) { throw EInvalidOperation(Node->GetText()); };
    try {
        Find(Nodes, "a")->Delete();
        ADD_FAILURE() << "the error got lost";
    } catch (const EInvalidOperation& Error) {
        EXPECT_EQ(Error.GetMessage(), "a");
    }
    EXPECT_EQ(Dump(Nodes), "d | d");
    EXPECT_THROW(Nodes.Clear(), EInvalidOperation);
    EXPECT_EQ(Dump(Nodes), " | ");
    EXPECT_FALSE(Host.GetClearing());
    EXPECT_TRUE(Nodes.Lock.try_lock());
    Nodes.Lock.unlock();
}

} // namespace
} // namespace quill
