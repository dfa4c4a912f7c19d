// Editing nodes in place and the clipboard commands.
#include "TreeTestSupport.h"

#include "exgrid/InplaceEdit.h"
#include "tests/support/Handlers.h"
#include "tests/support/Keys.h"
#include "tests/support/QtTest.h"

#include <QApplication>
#include <QClipboard>
#include <QtTest>

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
        Focus(1, 1); // B
        Log.clear();
    }
    void Keys(const char* Script) { testing::PressKeys(*this, Script); }
    void Focus(int Col, int Row) { FocusCell(Col, Row, true, {}, swNone); }
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
    Tree.Keys("'Bee' Return");
    Tree.Focus(2, 1);
    Tree.Keys("'x' Space 'y' Down");
    EXPECT_EQ(Tree.Texts(), "A|| Bee||x y b|| C||");
    EXPECT_EQ(Tree.Take(), "B>Bee Bee>x y ");
    Tree.OnEdited = [](TObject*, TFlyNode*, std::string& S) { S = S.empty() ? S : "<" + S + ">"; };
    Tree.Keys("'r' Esc");
    Tree.Focus(1, 3);
    Tree.Keys("Backspace Esc");
    EXPECT_EQ(Tree.Texts(), "A|| Bee||x y b||<r> ||");
    Tree.OnEdited = nullptr;
    Tree.OnGetEditText = [](TObject*, int, int, std::string& S) { S = "shown"; };
    Tree.SetEditorMode(true);
    EXPECT_EQ(Tree.Typed(), "shown");
}

TEST(TreeEditing, LiesOverTheText) {
    TEditTree Tree;
    const auto Lies = [&](const TRect& R) {
        Tree.SetEditorMode(true);
        return Tree.GetInplaceEditor()->PosEqual(R);
    };
    const auto Text = [&] { return Tree.DisplayRect(Tree.Find("b"), true); };
    Tree.Focus(0, 2);
    EXPECT_TRUE(Lies(Tree.CellRect(0, 2)));
    Tree.Focus(1, 2);
    EXPECT_TRUE(Lies(Text()));
    Tree.SetColWidths(1, 50);
    EXPECT_TRUE(Lies(Text())) << "next to the outline, if narrow";
    Tree.SetIndent(22);
    Tree.Update();
    EXPECT_TRUE(Tree.GetInplaceEditor()->PosEqual(Text())) << "follows the layout";
    Tree.SetColWidths(1, 20); // nothing is left beside the outline
    EXPECT_TRUE(Lies(Tree.CellRect(1, 2)));
    Tree.SetBiDiMode(bdRightToLeft);
    Tree.SetColWidths(1, 200);
    EXPECT_TRUE(Lies(Text()));
}

TEST(TreeEditing, NodesStartAndEndIt) {
    TEditTree Tree;
    TFlyNode* Node = Tree.Find("b");
    Tree.Find("B")->Collapse(false);
    EXPECT_TRUE(Node->EditText()) << "comes into view first";
    Tree.Keys("'x'");
    Tree.Find("A")->EndEdit(true);
    EXPECT_EQ(Tree.Typed(), "x") << "another node's business";
    Node->EndEdit(true);
    EXPECT_EQ(Tree.Typed() + Node->GetText(), "closedb");
    EXPECT_TRUE(Node->EditText());
    Tree.Keys("'y'");
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
    Tree.Keys("'q'");
    EXPECT_EQ(Tree.Texts().find('q'), std::string::npos) << "what is typed at a closed cell goes nowhere";
    EXPECT_TRUE(Tree.Find("C")->EditText());
}

TEST(TreeEditing, AnEditorThatIsAlwaysShownComesBackAfterRowsMoved) {
    TEditTree Tree;
    Tree.SetOptions(Tree.GetOptions() + goAlwaysShowEditor);
    Tree.Focus(1, 3); // C
    Tree.Keys("'n'");
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
    Tree.Keys("F2");
    ASSERT_TRUE(Tree.GetEditorMode());
    Tree.Update();
    Tree.SetNodeData(Tree.Find("B"), 1, "new");
    Tree.InvalidateCell(1, 1);
    EXPECT_TRUE(Tree.HasInvalidRegion());
    May = true;
    Tree.Keys("F2");
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
    const auto Backwards = [](TObject*, TFlyNode* A, TFlyNode* B, int& R) {
        R = B->GetText().compare(A->GetText());
    };
    const auto Bracket = [](TEditTree& T) {
        const TUpdateBracket Update(T.GetItems());
        T.GetItems()->Insert(T.Find("A"), "0");
        T.Find("A")->Delete();
        T.GetItems()->Insert(T.Find("B"), "1");
    };
    // What is typed afterwards, the editor still open or not, and the texts after Esc.
    const std::tuple<const char*, std::function<void(TEditTree&)>, const char*, const char*> Cases[] = {
        {"inserted above", [](TEditTree& T) { T.GetItems()->Insert(T.Find("A"), "0"); }, "n",
         "0|| A|| n|| b|| C||"},
        {"deleted above", [](TEditTree& T) { T.Find("A")->Delete(); }, "n", "n|| b|| C||"},
        {"moved to the end", [](TEditTree& T) { T.Find("B")->MoveTo(nullptr, naAdd); }, "n",
         "A|| C|| n|| b||"},
        {"sorted", [&](TEditTree& T) { T.OnCompare = Backwards, T.SetSortType(stData); }, "n",
         "C|| n|| b|| A||"},
        {"columns moved", [](TEditTree& T) { T.MoveColumn(1, 0); }, "n", "A|| n|| b|| C||"},
        {"deleted", [](TEditTree& T) { T.Find("B")->Delete(); }, "closed", "A|| C||"},
        {"cleared", [](TEditTree& T) { T.GetItems()->Clear(); }, "closed", ""},
        {"hidden", [](TEditTree& T) { T.Find("B")->SetHidden(true); }, "closed", "A|| n|| b|| C||"},
        {"collapsed", [](TEditTree& T) { T.Find("B")->Collapse(false); }, "closed", "A|| n|| b|| C||"},
        {"other structure column", [](TEditTree& T) { T.SetStructureCol(2); }, "n", "A||A n||n b||b C||C"},
        {"a bracket", Bracket, "n", "0|| 1|| n|| b|| C||"},
    };
    for (const auto& [What, Do, Typed, Texts] : Cases) {
        TEditTree Tree;
        Tree.Keys("'n'");
        Do(Tree);
        QCoreApplication::processEvents();
        EXPECT_EQ(Tree.Typed(), Typed) << What;
        if (Tree.IsEditorShown()) {
            const TFlyNode* const Edited = Tree.GetNodeAtRow(Tree.GetRow());
            EXPECT_TRUE(Edited && Edited->GetText() == "B") << What << ": the current cell goes along";
            EXPECT_EQ(Tree.GetCol(), Tree.GetStructureCol()) << What;
            Tree.Keys("Esc");
        }
        EXPECT_EQ(Tree.Texts(), Texts) << What;
        Tree.Check();
    }
}

TEST(TreeEditing, HandlersMayDoAnything) {
    using TTree = std::unique_ptr<TEditTree>;
    const auto IfThere = [](TTree& T, const char* Name, void (*Do)(TFlyNode&)) {
        if (TFlyNode* N = T->Find(Name)) Do(*N);
    };
    const std::function<void(TTree&)> Deeds[] = {
        [](TTree& T) { T.reset(); },
        [](TTree& T) { T->GetItems()->Clear(); },
        [&](TTree& T) { IfThere(T, "B", [](TFlyNode& N) { N.Delete(); }); },
        [&](TTree& T) { IfThere(T, "C", [](TFlyNode& N) { N.EditText(); }); },
        [](TTree& T) { T->SetColCount(1); },
        [](TTree& T) { T->GetItems()->AlphaSort(), T->SetStructureCol(0); },
        [](TTree& T) { T->SetEditorMode(false); },
    };
    for (const auto& Deed : Deeds) {
        for (int Place = 0; Place < 5; ++Place) {
            auto Tree = std::make_unique<TEditTree>();
            int Left = 1;
            const TAnyHandler Handler{[&] {
                if (Left-- > 0 && Tree) Deed(Tree);
            }};
            Tree->OnEdited = nullptr;
            if (Place == 0) Tree->OnEditing = Handler;
            if (Place == 1) Tree->OnEdited = Handler;
            if (Place == 2) Tree->OnGetEditText = Handler;
            if (Place == 3) Tree->OnSelectCell = Handler;
            if (Place == 4) Tree->OnKeyPress = Handler;
            for (const char* Step : {"'x'", "Down", "Esc", "'y'", "Down", "Esc"}) {
                if (Tree) Tree->Keys(Step);
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
        for (const unsigned Msg : {WM_CUT, WM_COPY, WM_PASTE}) Tree.Perform(Msg, 0, 0);
        Tree.Keys("Ctrl+X Ctrl+C Ctrl+V");
        for (const auto Slot : {"cutSelection", "copySelection", "pasteSelection"})
            QMetaObject::invokeMethod(&Tree, Slot);
        return Tree.Take();
    };
    EXPECT_EQ(All(), "") << "nobody listens";
    Tree.OnCutSelection = [&](TObject*) { Tree.Log += "cut "; };
    Tree.OnCopySelection = [&](TObject*) { Tree.Log += "copy "; };
    Tree.OnPasteSelection = [&](TObject*) { Tree.Log += "paste "; };
    EXPECT_EQ(All(), "cut copy paste cut copy paste cut copy paste ");
    EXPECT_TRUE(IsTaken(Qt::Key_C));
    Tree.SetEditorMode(true);
    Tree.Log.clear();
    EXPECT_EQ(All(), "");
    EXPECT_EQ(Tree.Typed(), "BB") << "they were the editor's: cut, copied nothing, pasted twice";
}

} // namespace
} // namespace quill
