// A handler may do anything: every event against every outrage, with real operations around them.
#include "host/base/Errors.h"
#include "tests/tree/TreeTestSupport.h"

#include <QCoreApplication>

#include <functional>
#include <memory>

namespace quill {
namespace {

using TOutrage = std::function<void(std::unique_ptr<TTestTree>& Tree, TFlyNode* Node)>;

void Delete(TFlyNode* Node) {
    if (Node) Node->Delete();
}

// What the handler does with a node that is there.
const std::pair<const char*, TOutrage> Outrages[] = {
    {"delete the node", [](auto&, TFlyNode* Node) { Node->Delete(); }},
    {"delete its parent", [](auto&, TFlyNode* Node) { Delete(Node->GetParent()); }},
    {"clear the tree", [](auto& Tree, TFlyNode*) { Tree->GetItems()->Clear(); }},
    {"destroy the tree", [](auto& Tree, TFlyNode*) { Tree.reset(); }},
    {"change the counts",
     [](auto& Tree, TFlyNode*) {
         Tree->SetFixedRows(1 - Tree->GetFixedRows());
         if (Tree) Tree->SetColCount(Tree->GetColCount() % 3 + 1);
     }},
    {"move the node",
     [](auto& Tree, TFlyNode* Node) {
         TFlyNode* First = Tree->GetItems()->GetFirstNode();
         try {
             if (First != Node && !First->HasAsParent(Node)) Node->MoveTo(First, naInsert);
         } catch (const EInvalidOperation&) { // it is being deleted
         }
     }},
    {"select another", [](auto& Tree, TFlyNode*) { Tree->SetSelection(Tree->GetItems()->GetLastNode()); }},
    {"collapse everything", [](auto& Tree, TFlyNode*) { Tree->FullCollapse(); }},
    {"add nodes", [](auto& Tree, TFlyNode* Node) { Tree->GetItems()->AddChild(Node, "added"); }},
    {"scroll", [](auto& Tree, TFlyNode*) { Tree->SetTopRow(Tree->GetTopRow() + 1); }},
    {"run the event loop", [](auto&, TFlyNode*) { QCoreApplication::processEvents(); }},
    {"throw nothing, repaint", [](auto& Tree, TFlyNode*) { Tree->Repaint(); }},
};

// Fits every event of a sender and a node.
struct TStrike {
    std::function<void(TFlyNode*)> Work;
    template <class... TArgs>
    void operator()(TObject*, TFlyNode* Node, TArgs&&...) const {
        const auto Copy = Work; // the handler's own place may go while it runs
        Copy(Node);
    }
};

using TAttach = std::function<void(TTestTree& Tree, std::function<void(TFlyNode*)> Handler)>;

const std::pair<const char*, TAttach> Events[] = {
    {"OnExpanding", [](TTestTree& T, auto H) { T.OnExpanding = TStrike{H}; }},
    {"OnExpanded", [](TTestTree& T, auto H) { T.OnExpanded = TStrike{H}; }},
    {"OnCollapsing", [](TTestTree& T, auto H) { T.OnCollapsing = TStrike{H}; }},
    {"OnCollapsed", [](TTestTree& T, auto H) { T.OnCollapsed = TStrike{H}; }},
    {"OnChanging", [](TTestTree& T, auto H) { T.OnChanging = TStrike{H}; }},
    {"OnChange", [](TTestTree& T, auto H) { T.OnChange = TStrike{H}; }},
    {"OnDeletion", [](TTestTree& T, auto H) { T.OnDeletion = TStrike{H}; }},
    {"OnGetImageIndex", [](TTestTree& T, auto H) { T.OnGetImageIndex = TStrike{H}; }},
    {"OnGetSelectedIndex", [](TTestTree& T, auto H) { T.OnGetSelectedIndex = TStrike{H}; }},
    {"OnCompare",
     [](TTestTree& T, auto H) {
         T.SetSortType(stBoth);
         T.OnCompare = [H](TObject*, TFlyNode* A, TFlyNode* B, int& Compare) {
             Compare = A->GetText().compare(B->GetText());
             H(B);
         };
     }},
    {"OnRowHeightChanging",
     [](TTestTree& T, auto H) {
         T.Find("Plum")->SetHeight(30);
         T.OnRowHeightChanging = [&T, H](int Row, int&) { H(T.GetNodeAtRow(Row)); };
     }},
    {"OnGetEditText",
     [](TTestTree& T, auto H) {
         T.OnGetEditText = [&T, H](TObject*, int, int Row, std::string&) { H(T.GetNodeAtRow(Row)); };
     }},
    {"OnDrawCell",
     [](TTestTree& T, auto H) {
         T.OnDrawCell = [&T, H](TObject*, TCanvas&, int, int Row, TRect, TExGridDrawState) {
             H(T.GetNodeAtRow(Row));
         };
     }},
    {"OnTopLeftChanged", [](TTestTree& T, auto H) { T.OnTopLeftChanged = [H](TObject*) { H(nullptr); }; }},
};

using TOperation = void (*)(TTestTree& Tree);

// Each is one user action or call; the tree may be gone or empty after any of them.
const std::pair<const char*, TOperation> Operations[] = {
    {"expand", [](TTestTree& Tree) { Tree.Find("Pear")->Expand(true); }},
    {"collapse", [](TTestTree& Tree) { Tree.Find("Fruit")->Collapse(true); }},
    {"select", [](TTestTree& Tree) { Tree.SetSelection(Tree.Find("Apple")); }},
    {"move down", [](TTestTree& Tree) { Tree.Perform(WM_KEYDOWN, VK_DOWN, 0); }},
    {"choose, with branches that open by themselves",
     [](TTestTree& Tree) { Tree.SetAutoExpand(true), Tree.SetSelection(Tree.Find("Nuts")); }},
    {"extend the range",
     [](TTestTree& Tree) { Tree.Perform(WM_KEYDOWN, VK_END, TShiftState(ssShift).Bits()); }},
    {"search", [](TTestTree& Tree) { Tree.Perform(WM_CHAR, U'n', 0); }},
    {"sort", [](TTestTree& Tree) { Tree.GetItems()->AlphaSort(); }},
    {"move", [](TTestTree& Tree) { Tree.Find("Fig")->MoveTo(Tree.Find("Nuts"), naAddChild); }},
    {"delete", [](TTestTree& Tree) { Tree.Find("Plum")->Delete(); }},
    {"paint", [](TTestTree& Tree) { Tree.Repaint(); }},
    {"scroll", [](TTestTree& Tree) { Tree.SetTopRow(2); }},
    {"full expand", [](TTestTree& Tree) { Tree.FullExpand(); }},
    {"clear", [](TTestTree& Tree) { Tree.GetItems()->Clear(); }},
};

TEST(TreeHostile, EveryEventSurvivesEveryOutrageInEveryOperation) {
    int Fired = 0;
    int Runs = 0;
    for (const auto& [EventName, Attach] : Events) {
        for (const auto& [OutrageName, Outrage] : Outrages) {
            for (const auto& [OperationName, Operation] : Operations) {
                SCOPED_TRACE(std::string(OperationName) + ", " + EventName + ": " + OutrageName);
                ++Runs;
                auto Tree = std::make_unique<TTestTree>();
                Tree->SetShowImages(true);
                Tree->SetHeight(90);
                Tree->HandleNeeded();
                Tree->Build("Fruit+\n Apple\n Pear\n  Red\n  Green\n Plum\n Fig\nNuts\n Hazel\n");
                Tree->SetSelection(Tree->Find("Plum"));
                Tree->Update();
                int Budget = 3; // outrages in a row, so that they do not go on for ever
                Attach(*Tree, [&](TFlyNode* Node) {
                    if (!Tree || Budget-- <= 0) return;
                    if (!Node) Node = Tree->GetItems()->GetFirstNode();
                    if (!Node) return;
                    ++Fired;
                    Outrage(Tree, Node);
                });
                Operation(*Tree);
                if (!Tree) continue;
                Budget = 0;
                Tree->Repaint();
                Tree->Check();
            }
        }
    }
    EXPECT_EQ(Runs, 14 * 12 * 14);
    EXPECT_GT(Fired, 1000);
}

} // namespace
} // namespace quill
