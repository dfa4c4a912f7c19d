// Editing nodes in place and the clipboard commands.
#include "TreeTestSupport.h"

#include "exgrid/InplaceEdit.h"
#include "tests/support/Handlers.h"
#include "tests/support/QtTest.h"

#include <QApplication>
#include <QClipboard>
#include <QtTest>

#include <functional>
#include <memory>

namespace quill {
namespace {

using testing::TAnyHandler;

// Three columns; the middle one shows the tree.
class TEditTree : public TTestTree {
public:
    TEditTree() {
        SetColCount(3);
        SetStructureCol(1);
        SetOptions(GetOptions() + TGridOptions{goEditing} - TGridOptions{goRowSelect});
        Build("A\nB+\n b\nC");
        OnEdited = [this](TObject*, TFlyNode* Node, std::string& S) {
            Log += Node->GetText() + ">" + S + " ";
        };
        show();
        activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(this));
        SetFocus();
        FocusCell(1, 1, true, {}, swNone); // B
        Log.clear();
    }
    void Type(const char* Text) {
        for (; *Text; ++Text) QTest::keyClick(windowHandle(), *Text);
    }
    void Key(Qt::Key Key, Qt::KeyboardModifiers Modifiers = {}) {
        QTest::keyClick(windowHandle(), Key, Modifiers);
    }
    std::string Typed() { return IsEditorShown() ? GetInplaceEditor()->GetText() : "closed"; }
    // Every text: "A|1|2 B||".
    std::string Texts() {
        std::string Result;
        for (TFlyNode* Node = GetItems()->GetFirstNode(); Node; Node = Node->GetNext()) {
            if (!Result.empty()) Result += ' ';
            Result += Node->GetText();
            for (int Col : {0, 2}) Result += "|" + GetNodeCells(Node, Col);
        }
        return Result;
    }
    std::string Take() { return std::exchange(Log, {}); }
    std::string Log;
};

TEST(TreeEditing, StoresTextsInTheNodeAndItsCells) {
    TEditTree Tree;
    Tree.Type("Bee");
    Tree.Key(Qt::Key_Return);
    Tree.FocusCell(2, 1, true, {}, swNone);
    Tree.Type("x y");
    Tree.Key(Qt::Key_Down);
    EXPECT_EQ(Tree.Texts(), "A|| Bee||x y b|| C||");
    EXPECT_EQ(Tree.Take(), "B>Bee Bee>x y ");
    Tree.OnEdited = [](TObject*, TFlyNode*, std::string& S) { S = S.empty() ? S : "<" + S + ">"; };
    Tree.Type("r");
    Tree.Key(Qt::Key_Escape);
    Tree.FocusCell(1, 3, true, {}, swNone);
    Tree.Key(Qt::Key_Backspace);
    Tree.Key(Qt::Key_Escape);
    EXPECT_EQ(Tree.Texts(), "A|| Bee||x y b||<r> ||");
    Tree.OnEdited = nullptr;
    Tree.OnGetEditText = [](TObject*, int, int, std::string& S) { S = "shown"; };
    Tree.SetEditorMode(true);
    EXPECT_EQ(Tree.Typed(), "shown");
}

TEST(TreeEditing, LiesOverTheText) {
    TEditTree Tree;
    const auto Place = [&](int Col, int Row) {
        Tree.FocusCell(Col, Row, true, {}, swNone);
        Tree.SetEditorMode(true);
        return Tree.GetInplaceEditor();
    };
    EXPECT_TRUE(Place(1, 2)->PosEqual(Tree.DisplayRect(Tree.Find("b"), true)));
    EXPECT_TRUE(Place(0, 2)->PosEqual(Tree.CellRect(0, 2)));
    Tree.SetColWidths(1, 50);
    EXPECT_TRUE(Place(1, 2)->PosEqual(Tree.DisplayRect(Tree.Find("b"), true)))
        << "next to the outline, if narrow";
    Tree.SetIndent(22);
    Tree.Update();
    EXPECT_TRUE(Tree.GetInplaceEditor()->PosEqual(Tree.DisplayRect(Tree.Find("b"), true)))
        << "follows the layout";
    Tree.SetIndent(20);
    Tree.SetColWidths(1, 20); // nothing is left beside the outline
    EXPECT_TRUE(Place(1, 2)->PosEqual(Tree.CellRect(1, 2)));
    Tree.SetBiDiMode(bdRightToLeft);
    Tree.SetColWidths(1, 200);
    EXPECT_TRUE(Place(1, 2)->PosEqual(Tree.DisplayRect(Tree.Find("b"), true)));
}

TEST(TreeEditing, NodesStartAndEndIt) {
    TEditTree Tree;
    TFlyNode* Node = Tree.Find("b");
    Tree.Find("B")->Collapse(false);
    EXPECT_TRUE(Node->EditText()) << "comes into view first";
    Tree.Type("x");
    Tree.Find("A")->EndEdit(true);
    EXPECT_EQ(Tree.Typed(), "x") << "another node's business";
    Node->EndEdit(true);
    EXPECT_EQ(Tree.Typed() + Node->GetText(), "closedb");
    EXPECT_TRUE(Node->EditText());
    Tree.Type("y");
    Node->EndEdit(false);
    EXPECT_EQ(Tree.Typed() + Node->GetText(), "closedy");
    // The first scrollable column can be edited, and is not ended from here.
    Tree.SetStructureCol(0);
    EXPECT_TRUE(Node->EditText());
    Node->EndEdit(false);
    EXPECT_EQ(Tree.Typed(), "y");
    Tree.SetFixedCols(1);
    EXPECT_FALSE(Node->EditText());
    Tree.SetFixedCols(0);
    Tree.OnEditing = [](TObject*, TFlyNode* N, bool& Allow) { Allow = N->GetText() != "A"; };
    EXPECT_FALSE(Tree.Find("A")->EditText());
    Tree.Type("q");
    EXPECT_EQ(Tree.Texts().find('q'), std::string::npos) << "what is typed at a closed cell goes nowhere";
    EXPECT_TRUE(Tree.Find("C")->EditText());
}

TEST(TreeEditing, AnEditorThatIsAlwaysShownComesBackAfterRowsMoved) {
    TEditTree Tree;
    Tree.SetOptions(Tree.GetOptions() + goAlwaysShowEditor);
    Tree.FocusCell(1, 3, true, {}, swNone); // C
    Tree.Type("n");
    Tree.Find("B")->Collapse(false);
    QCoreApplication::processEvents();
    EXPECT_EQ(Tree.Texts() + " " + Tree.Typed(), "A|| B|| b|| n|| n") << "stored, and open where it was";
    EXPECT_TRUE(Tree.GetInplaceEditor()->Focused());
    Tree.SetEditorMode(false);
    Tree.Find("B")->Expand(false);
    QCoreApplication::processEvents();
    EXPECT_EQ(Tree.Typed(), "closed");
}

TEST(TreeEditing, ARefusedCellIsPaintedAndCanBeTriedAgain) {
    TEditTree Tree;
    bool May = false;
    Tree.OnEditing = [&](TObject*, TFlyNode*, bool& Allow) { Allow = May; };
    Tree.Key(Qt::Key_F2);
    ASSERT_TRUE(Tree.GetEditorMode());
    Tree.Update();
    Tree.SetNodeData(Tree.Find("B"), 1, "new");
    Tree.InvalidateCell(1, 1);
    EXPECT_TRUE(Tree.HasInvalidRegion());
    May = true;
    Tree.Key(Qt::Key_F2);
    EXPECT_EQ(Tree.Typed(), "B");
}

TEST(TreeEditing, ComposedSignsAreText) {
    TEditTree Tree;
    QInputMethodEvent Event;
    Event.setCommitString("-5");
    QCoreApplication::sendEvent(&Tree, &Event);
    QCoreApplication::processEvents();
    EXPECT_EQ(Tree.Typed(), "-5");
}

TEST(TreeEditing, TextGoesToTheNodeThatItWasTypedFor) {
    struct TCase {
        const char* What;
        std::function<void(TEditTree&)> Do;
        const char* Typed; // afterwards, the editor still open or not
        const char* Texts; // after Esc
    };
    const TCase Cases[] = {
        {"inserted above", [](TEditTree& T) { T.GetItems()->Insert(T.Find("A"), "0"); }, "n",
         "0|| A|| n|| b|| C||"},
        {"deleted above", [](TEditTree& T) { T.Find("A")->Delete(); }, "n", "n|| b|| C||"},
        {"moved to the end", [](TEditTree& T) { T.Find("B")->MoveTo(nullptr, naAdd); }, "n",
         "A|| C|| n|| b||"},
        {"sorted",
         [](TEditTree& T) {
             T.OnCompare = [](TObject*, TFlyNode* A, TFlyNode* B, int& R) {
                 R = B->GetText().compare(A->GetText());
             };
             T.SetSortType(stData);
         },
         "n", "C|| n|| b|| A||"},
        {"columns moved", [](TEditTree& T) { T.MoveColumn(1, 0); }, "n", "A|| n|| b|| C||"},
        {"deleted", [](TEditTree& T) { T.Find("B")->Delete(); }, "closed", "A|| C||"},
        {"cleared", [](TEditTree& T) { T.GetItems()->Clear(); }, "closed", ""},
        {"hidden", [](TEditTree& T) { T.Find("B")->SetHidden(true); }, "closed", "A|| n|| b|| C||"},
        {"expanded elsewhere", [](TEditTree& T) { T.Find("B")->Collapse(false); }, "closed",
         "A|| n|| b|| C||"},
        {"other structure column", [](TEditTree& T) { T.SetStructureCol(2); }, "n", "A||A n||n b||b C||C"},
        {"a bracket",
         [](TEditTree& T) {
             const TUpdateBracket Bracket(T.GetItems());
             T.GetItems()->Insert(T.Find("A"), "0");
             T.Find("A")->Delete();
             T.GetItems()->Insert(T.Find("B"), "1");
         },
         "n", "0|| 1|| n|| b|| C||"},
    };
    for (const TCase& Case : Cases) {
        TEditTree Tree;
        Tree.Type("n");
        Case.Do(Tree);
        QCoreApplication::processEvents();
        EXPECT_EQ(Tree.Typed(), Case.Typed) << Case.What;
        if (Tree.IsEditorShown()) {
            const TFlyNode* const Edited = Tree.GetNodeAtRow(Tree.GetRow());
            EXPECT_TRUE(Edited && Edited->GetText() == "B") << Case.What << ": the current cell goes along";
            EXPECT_EQ(Tree.GetCol(), Tree.GetStructureCol()) << Case.What;
            Tree.Key(Qt::Key_Escape);
        }
        EXPECT_EQ(Tree.Texts(), Case.Texts) << Case.What;
        Tree.Check();
    }
}

TEST(TreeEditing, HandlersMayDoAnything) {
    using TTree = std::unique_ptr<TEditTree>;
    const std::vector<std::function<void(TTree&)>> Deeds{
        [](TTree& T) { T.reset(); },
        [](TTree& T) { T->GetItems()->Clear(); },
        [](TTree& T) {
            if (TFlyNode* N = T->Find("B")) N->Delete();
        },
        [](TTree& T) {
            if (TFlyNode* N = T->Find("C")) N->EditText();
        },
        [](TTree& T) { T->SetColCount(1); },
        [](TTree& T) {
            T->GetItems()->AlphaSort();
            T->SetStructureCol(0);
        },
        [](TTree& T) { T->SetEditorMode(false); },
    };
    for (std::size_t i = 0; i < Deeds.size(); ++i) {
        for (int Place = 0; Place < 5; ++Place) {
            auto Tree = std::make_unique<TEditTree>();
            int Left = 1;
            const TAnyHandler Handler{[&] {
                if (Left-- > 0 && Tree) Deeds[i](Tree);
            }};
            Tree->OnEdited = nullptr;
            if (Place == 0) Tree->OnEditing = Handler;
            if (Place == 1) Tree->OnEdited = Handler;
            if (Place == 2) Tree->OnGetEditText = Handler;
            if (Place == 3) Tree->OnSelectCell = Handler;
            if (Place == 4) Tree->OnKeyPress = Handler;
            for (const char* Step : {"x", "y"}) {
                if (Tree) Tree->Type(Step);
                if (Tree) Tree->Key(Qt::Key_Down);
                if (Tree) Tree->Key(Qt::Key_Escape);
                QCoreApplication::processEvents();
            }
            if (Tree) Tree->Check();
        }
    }
}

TEST(TreeClipboard, CommandsReachTheOperationsUnlessTheEditorShows) {
    TEditTree Tree;
    QApplication::clipboard()->clear();
    std::string Keys;
    Tree.OnKeyDown = [&](TObject*, std::uint16_t& Key, TShiftState) {
        Keys += static_cast<char>(Key);
        if (Keys == "X") Key = 0;
    };
    const auto IsTaken = [&](Qt::Key Key) {
        QKeyEvent Event(QEvent::KeyPress, Key, Qt::ControlModifier);
        QCoreApplication::sendEvent(&Tree, &Event);
        return Event.isAccepted();
    };
    EXPECT_TRUE(IsTaken(Qt::Key_X)) << "the key handler comes first";
    EXPECT_FALSE(IsTaken(Qt::Key_C)) << "what nobody does here is left to others";
    EXPECT_EQ(Keys, "XC");
    Tree.OnKeyDown = nullptr;
    const auto All = [&] {
        Tree.Log.clear();
        for (const unsigned Msg : {WM_CUT, WM_COPY, WM_PASTE}) Tree.Perform(Msg, 0, 0);
        for (const Qt::Key Key : {Qt::Key_X, Qt::Key_C, Qt::Key_V}) Tree.Key(Key, Qt::ControlModifier);
        for (const auto Slot : {"cutSelection", "copySelection", "pasteSelection"})
            QMetaObject::invokeMethod(&Tree, Slot);
        return Tree.Take();
    };
    EXPECT_EQ(All(), "") << "nobody listens";
    const auto Listen = [&](TNotifyEvent& Event, const char* Name) {
        Event = [&Tree, Name](TObject* Sender) {
            EXPECT_EQ(Sender, static_cast<TObject*>(&Tree));
            Tree.Log += Name;
        };
    };
    Listen(Tree.OnCutSelection, "cut ");
    Listen(Tree.OnCopySelection, "copy ");
    Listen(Tree.OnPasteSelection, "paste ");
    EXPECT_EQ(All(), "cut copy paste cut copy paste cut copy paste ");
    EXPECT_TRUE(IsTaken(Qt::Key_C));
    Tree.SetEditorMode(true);
    EXPECT_EQ(All(), "");
    EXPECT_EQ(Tree.Typed(), "BB") << "they were the editor's: cut, copied nothing, pasted twice";
}

} // namespace
} // namespace quill
