// A handler may do anything: every event against every outrage, with real operations around them.
#include "host/base/Errors.h"
#include "tests/tree/TreeTestSupport.h"

#include <QCoreApplication>

#include <functional>
#include <memory>

namespace quill {
namespace {

using TOutrage = std::function<void(std::unique_ptr<TTestTree>& Tree, TFlyNode* Node)>;

const std::pair<const char*, TOutrage> Outrages[] = {
    {"delete the node",
     [](auto&, TFlyNode* Node) {
         if (Node) Node->Delete();
     }},
    {"delete its parent",
     [](auto&, TFlyNode* Node) {
         if (Node && Node->GetParent()) Node->GetParent()->Delete();
     }},
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
         if (!Node || !First || First == Node || First->HasAsParent(Node)) return;
         try {
             Node->MoveTo(First, naInsert);
         } catch (const EInvalidOperation&) {
             // It is being deleted.
         }
     }},
    {"select another", [](auto& Tree, TFlyNode*) { Tree->SetSelection(Tree->GetItems()->GetLastNode()); }},
    {"collapse everything", [](auto& Tree, TFlyNode*) { Tree->FullCollapse(); }},
    {"add nodes", [](auto& Tree, TFlyNode* Node) { Tree->GetItems()->AddChild(Node, "added"); }},
    {"scroll", [](auto& Tree, TFlyNode*) { Tree->SetTopRow(Tree->GetTopRow() + 1); }},
    {"run the event loop", [](auto&, TFlyNode*) { QCoreApplication::processEvents(); }},
    {"throw nothing, repaint", [](auto& Tree, TFlyNode*) { Tree->Repaint(); }},
};

using TAttach = std::function<void(TTestTree& Tree, std::function<void(TFlyNode*)> Handler)>;

const std::pair<const char*, TAttach> Events[] = {
    {"OnExpanding",
     [](TTestTree& T, auto H) { T.OnExpanding = [H](TObject*, TFlyNode* N, bool&) { H(N); }; }},
    {"OnExpanded", [](TTestTree& T, auto H) { T.OnExpanded = [H](TObject*, TFlyNode* N) { H(N); }; }},
    {"OnCollapsing",
     [](TTestTree& T, auto H) { T.OnCollapsing = [H](TObject*, TFlyNode* N, bool&) { H(N); }; }},
    {"OnCollapsed", [](TTestTree& T, auto H) { T.OnCollapsed = [H](TObject*, TFlyNode* N) { H(N); }; }},
    {"OnChanging", [](TTestTree& T, auto H) { T.OnChanging = [H](TObject*, TFlyNode* N, bool&) { H(N); }; }},
    {"OnChange", [](TTestTree& T, auto H) { T.OnChange = [H](TObject*, TFlyNode* N) { H(N); }; }},
    {"OnDeletion", [](TTestTree& T, auto H) { T.OnDeletion = [H](TObject*, TFlyNode* N) { H(N); }; }},
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
    {"OnGetImageIndex",
     [](TTestTree& T, auto H) { T.OnGetImageIndex = [H](TObject*, TFlyNode* N) { H(N); }; }},
    {"OnGetSelectedIndex",
     [](TTestTree& T, auto H) { T.OnGetSelectedIndex = [H](TObject*, TFlyNode* N) { H(N); }; }},
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
    {"OnTopLeftChanged",
     [](TTestTree& T, auto H) {
         T.OnTopLeftChanged = [&T, H](TObject*) { H(T.GetNodeAtRow(T.GetTopRow())); };
     }},
};

using TOperation = std::function<void(std::unique_ptr<TTestTree>& Tree)>;

// Each is one user action or call; the tree may be gone or empty after any of them.
const std::pair<const char*, TOperation> Operations[] = {
    {"expand",
     [](auto& Tree) {
         if (TFlyNode* N = Tree->Find("Pear")) N->Expand(true);
     }},
    {"collapse",
     [](auto& Tree) {
         if (TFlyNode* N = Tree->Find("Fruit")) N->Collapse(true);
     }},
    {"select", [](auto& Tree) { Tree->SetSelection(Tree->Find("Apple")); }},
    {"move down",
     [](auto& Tree) {
         std::uint16_t Key = VK_DOWN;
         Tree->KeyDown(Key, {});
     }},
    {"choose, with branches that open by themselves",
     [](auto& Tree) {
         Tree->SetAutoExpand(true);
         Tree->SetSelection(Tree->Find("Nuts"));
     }},
    {"extend the range",
     [](auto& Tree) {
         std::uint16_t Key = VK_END;
         Tree->KeyDown(Key, {ssShift});
     }},
    {"search",
     [](auto& Tree) {
         TWMKey Message{};
         Message.CharCode = U'n';
         Tree->WMChar(Message);
     }},
    {"sort", [](auto& Tree) { Tree->GetItems()->AlphaSort(); }},
    {"move",
     [](auto& Tree) {
         if (TFlyNode* N = Tree->Find("Fig")) N->MoveTo(Tree->Find("Nuts"), naAddChild);
     }},
    {"delete",
     [](auto& Tree) {
         if (TFlyNode* N = Tree->Find("Plum")) N->Delete();
     }},
    {"paint", [](auto& Tree) { Tree->Repaint(); }},
    {"scroll", [](auto& Tree) { Tree->SetTopRow(2); }},
    {"full expand", [](auto& Tree) { Tree->FullExpand(); }},
    {"clear", [](auto& Tree) { Tree->GetItems()->Clear(); }},
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
                    ++Fired;
                    Outrage(Tree, Node);
                });
                Operation(Tree);
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
