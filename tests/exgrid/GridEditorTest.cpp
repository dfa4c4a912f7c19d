// The in-place editor: which keys are whose, what is typed and pasted, where the text goes, and handlers that interfere.
#include "GridTestSupport.h"

#include "exgrid/InplaceEdit.h"
#include "tests/support/Handlers.h"
#include "tests/support/QtTest.h"

#include <QApplication>
#include <QClipboard>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QtTest>

#include <map>
#include <memory>

namespace quill::testing {
namespace {

// A shown grid that keeps its texts and logs what it is asked and told.
class TEditGrid : public TTestGrid {
public:
    explicit TEditGrid(TGridOptions More = {}) : TTestGrid(400, 200, 4, 6) {
        SetOptions(GetOptions() + TGridOptions{goEditing} + More);
        Cells[{1, 1}] = "text";
        show();
        activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(this));
        SetFocus();
        Focus(1, 1);
        Log.clear();
    }

    bool Focused() const override { return TCustomExGrid::hasFocus(); }
    bool IsActiveControl() const override { return ContainsFocus(); }

    std::map<std::pair<int, int>, std::string> Cells;
    std::string Log;
    bool Modify = true;
    char32_t Refused = 0;
    int Limit = 0;
    std::string GetEditText(int Col, int Row) override {
        const TControlGuard Guard(this);
        const std::string FromEvent = TTestGrid::GetEditText(Col, Row);
        return FromEvent.empty() && Guard ? Cells[{Col, Row}] : FromEvent;
    }
    void SetEditText(int Col, int Row, const std::string& Value) override {
        Cells[{Col, Row}] = Value;
        Log += Show(TGridCoord{Col, Row}) + "=" + Value + " ";
        TTestGrid::SetEditText(Col, Row, Value);
    }
    bool CanEditModify() override { return Modify; }
    bool CanEditAcceptKey(char32_t Key) override { return Key != Refused; }
    int GetEditLimit() override { return Limit; }

    // "1,1 text 0-4": cell, text and selection; the cell alone while no editor is shown.
    std::string State() {
        std::string Result = Show(TGridCoord{GetCol(), GetRow()});
        if (!IsEditorShown()) return Result;
        const TInplaceEdit& Edit = *GetInplaceEditor();
        return Result + " " + Edit.GetText() + " " + std::to_string(Edit.GetSelStart()) + "-" +
               std::to_string(Edit.GetSelStart() + Edit.GetSelLength());
    }
    // By the window, as the user does it.
    void Key(Qt::Key Key, Qt::KeyboardModifiers Modifiers = {}) {
        QTest::keyClick(windowHandle(), Key, Modifiers);
    }
    void Type(const char* Text) {
        for (; *Text; ++Text) QTest::keyClick(windowHandle(), *Text);
    }
    void Compose(const QString& Preedit, const QString& Commit) {
        QInputMethodEvent Event(Preedit, {});
        Event.setCommitString(Commit);
        if (QWidget* Focus = QApplication::focusWidget()) QCoreApplication::sendEvent(Focus, &Event);
        QCoreApplication::processEvents();
    }
    std::string Paste(const QString& Text) {
        QApplication::clipboard()->setText(Text);
        Key(Qt::Key_V, Qt::ControlModifier);
        return GetInplaceEditor()->GetText();
    }
    std::string Take() { return std::exchange(Log, {}); }
};

const Qt::KeyboardModifiers None = Qt::NoModifier;
const Qt::KeyboardModifiers Ctrl = Qt::ControlModifier;
const Qt::KeyboardModifiers Shift = Qt::ShiftModifier;

TEST(GridEditor, KeysAreSplitBetweenEditorAndGrid) {
    struct TCase {
        Qt::Key Key;
        Qt::KeyboardModifiers Modifiers;
        int Start, End;     // selection before
        const char* Plain;  // afterwards, the editor only while it is asked for
        const char* Always; // and where the grid always shows it
    };
    const TCase Cases[] = {
        {Qt::Key_Up, None, 0, 4, "1,1 text 0-4", "1,1 text 0-4"}, // the first row
        {Qt::Key_Down, None, 0, 4, "1,2", "1,2  0-0"},
        {Qt::Key_PageDown, None, 2, 2, "1,5", "1,5  0-0"},
        {Qt::Key_PageUp, None, 2, 2, "1,1 text 2-2", "1,1 text 2-2"},
        {Qt::Key_Left, None, 0, 4, "1,1 text 3-3", "0,1  0-0"},
        {Qt::Key_Left, None, 0, 0, "1,1 text 0-0", "0,1  0-0"},
        {Qt::Key_Left, None, 0, 2, "1,1 text 1-1", "1,1 text 1-1"},
        {Qt::Key_Left, None, 2, 2, "1,1 text 1-1", "1,1 text 1-1"},
        {Qt::Key_Left, Ctrl, 2, 2, "1,1 text 0-0", "0,1  0-0"},
        {Qt::Key_Home, None, 3, 3, "1,1 text 0-0", "1,1 text 0-0"},
        {Qt::Key_Home, None, 0, 0, "1,1 text 0-0", "0,1  0-0"},
        {Qt::Key_Right, None, 4, 4, "1,1 text 4-4", "2,1  0-0"},
        {Qt::Key_Right, None, 0, 4, "1,1 text 4-4", "2,1  0-0"},
        {Qt::Key_Right, None, 2, 4, "1,1 text 4-4", "1,1 text 4-4"},
        {Qt::Key_Right, None, 0, 2, "1,1 text 3-3", "1,1 text 3-3"},
        {Qt::Key_Right, Ctrl, 1, 1, "1,1 text 4-4", "2,1  0-0"},
        {Qt::Key_End, None, 1, 1, "1,1 text 4-4", "1,1 text 4-4"},
        {Qt::Key_End, None, 4, 4, "1,1 text 4-4", "3,1  0-0"},
        {Qt::Key_Tab, None, 1, 1, "2,1", "2,1  0-0"},
        {Qt::Key_Backtab, Shift, 1, 1, "0,1", "0,1  0-0"},
        {Qt::Key_Insert, None, 1, 1, "1,1 text 1-1", "1,1 text 1-1"},
        {Qt::Key_F2, None, 0, 4, "1,1 text 4-4", "1,1 text 4-4"},
        {Qt::Key_Escape, None, 0, 4, "1,1", "1,1 text 0-4"},
        {Qt::Key_Return, None, 0, 4, "1,1", "1,1 text 4-4"},
        {Qt::Key_Return, None, 2, 2, "1,1", "1,1 text 0-4"},
        {Qt::Key_Delete, None, 0, 2, "1,1 xt 0-0", "1,1 xt 0-0"},
        {Qt::Key_Backspace, None, 2, 2, "1,1 txt 1-1", "1,1 txt 1-1"},
        {Qt::Key_A, Ctrl, 2, 2, "1,1 text 0-4", "1,1 text 0-4"},
    };
    for (const TCase& Case : Cases) {
        for (const bool Always : {false, true}) {
            TEditGrid Grid(Always ? TGridOptions{goTabs, goAlwaysShowEditor} : TGridOptions{goTabs});
            Grid.SetEditorMode(true);
            Grid.GetInplaceEditor()->SetSel(Case.Start, Case.End);
            Grid.Key(Case.Key, Case.Modifiers);
            EXPECT_EQ(Grid.State(), Always ? Case.Always : Case.Plain)
                << QKeySequence(Case.Key | Case.Modifiers).toString().toStdString() << " from " << Case.Start
                << "-" << Case.End << (Always ? ", always shown" : "");
            EXPECT_EQ(Grid.IsEditorShown(), Grid.GetInplaceEditor()->Focused());
        }
    }
}

TEST(GridEditor, TypingOpensItAndLosesNothing) {
    struct TCase {
        const char* What;
        std::function<void(TEditGrid&)> Do;
        std::string State;
    };
    const QString Emoji = QString::fromUtf8("\xF0\x9F\x8E\x89");
    const TCase Cases[] = {
        {"letters", [](TEditGrid& G) { G.Type("abc"); }, "1,1 abc 3-3"},
        {"backspace",
         [](TEditGrid& G) {
             G.Key(Qt::Key_Backspace);
             G.Type("b");
         },
         "1,1 b 1-1"},
        {"a control character", [](TEditGrid& G) { G.Key(Qt::Key_G, Ctrl); }, "1,1"},
        {"Enter", [](TEditGrid& G) { G.Key(Qt::Key_Return); }, "1,1 text 0-4"},
        {"F2", [](TEditGrid& G) { G.Key(Qt::Key_F2); }, "1,1 text 0-4"},
        {"composed",
         [](TEditGrid& G) {
             G.Compose({}, QString::fromUtf8("é"));
             G.Type("t");
         },
         "1,1 ét 2-2"},
        {"a word",
         [](TEditGrid& G) {
             G.Compose("ni", {});
             G.Compose({}, QString::fromUtf8("你好"));
         },
         "1,1 你好 2-2"},
        {"an emoji", [&](TEditGrid& G) { G.Compose({}, Emoji + Emoji); },
         "1,1 \xF0\x9F\x8E\x89\xF0\x9F\x8E\x89 2-2"},
    };
    for (const TCase& Case : Cases) {
        TEditGrid Grid;
        Case.Do(Grid);
        EXPECT_EQ(Grid.State(), Case.State) << Case.What;
    }
    TEditGrid RowSelect(TGridOptions{goRowSelect});
    RowSelect.Type("a");
    RowSelect.SetEditorMode(true);
    EXPECT_FALSE(RowSelect.IsEditorShown());
}

TEST(GridEditor, ComposesInsideTheCell) {
    TEditGrid Grid;
    Grid.SetEditorMode(true);
    Grid.GetInplaceEditor()->SetSel(4, 4);
    Grid.Compose("ni", {});
    EXPECT_EQ(Grid.State(), "1,1 text 4-4") << "what is composed is no text yet";
    Grid.Compose({}, QString::fromUtf8("你"));
    Grid.Refused = U'x';
    Grid.Compose({}, "axb");
    EXPECT_EQ(Grid.State(), "1,1 text你ab 7-7");
    Grid.Key(Qt::Key_Escape);
    EXPECT_EQ(Grid.Take(), "1,1=text你ab ");
    Grid.Modify = false;
    Grid.SetEditorMode(true);
    Grid.Compose("q", {});
    Grid.Compose({}, "q");
    EXPECT_EQ(Grid.GetInplaceEditor()->GetText(), "text你ab");
}

TEST(GridEditor, StoresWhenItClosesOrMovesOn) {
    TEditGrid Grid(TGridOptions{goAlwaysShowEditor});
    Grid.OnGetEditText = [&](TObject*, int Col, int Row, std::string&) {
        Grid.Log += "get " + Show(TGridCoord{Col, Row}) + " ";
    };
    Grid.Type("new");
    Grid.Key(Qt::Key_Down);
    EXPECT_EQ(Grid.Take(), "1,1=new get 1,2 ") << "the old cell is written before the new one is read";
    Grid.Key(Qt::Key_Return);
    Grid.Key(Qt::Key_Return);
    Grid.Type("n");
    EXPECT_EQ(Grid.State(), "1,2 n 1-1");
    Grid.SetOptions(Grid.GetOptions() - goAlwaysShowEditor);
    EXPECT_EQ(Grid.Take(), "");
    Grid.Key(Qt::Key_Return);
    EXPECT_EQ(Grid.Take(), "1,2=n ");
    EXPECT_TRUE(Grid.Focused());
    Grid.Type("m");
    QLineEdit Other;
    Other.setParent(&Grid);
    Other.show();
    Other.setFocus();
    Grid.Take();
    EXPECT_TRUE(Grid.IsEditorShown()) << "the focus is still inside";
    QWidget Window;
    Grid.setParent(&Window);
    QLineEdit Outside(&Window);
    Window.show();
    Window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Window));
    Grid.SetFocus();
    Grid.show();
    Grid.Focus(2, 2);
    Grid.Type("out");
    Grid.Take();
    Outside.setFocus();
    EXPECT_EQ(Grid.Take(), "2,2=out ") << "leaving the grid closes it";
    EXPECT_FALSE(Grid.IsEditorShown());
    Grid.setParent(nullptr);
}

TEST(GridEditor, RefusedChangesLeaveTheText) {
    TEditGrid Grid;
    Grid.SetEditorMode(true);
    TInplaceEdit& Edit = *Grid.GetInplaceEditor();
    QApplication::clipboard()->setText("paste");
    Grid.Refused = U'y';
    Grid.Type("xyz");
    EXPECT_EQ(Edit.GetText(), "xz");
    Grid.Modify = false;
    const auto Press = [&](Qt::Key Key, Qt::KeyboardModifiers Modifiers) {
        return [&Grid, Key, Modifiers] { Grid.Key(Key, Modifiers); };
    };
    const std::vector<std::function<void()>> Changes{
        [&] { Grid.Type("q"); },
        Press(Qt::Key_Backspace, None),
        Press(Qt::Key_Backspace, Ctrl),
        Press(Qt::Key_Delete, None),
        Press(Qt::Key_Delete, Ctrl),
        Press(Qt::Key_Delete, Shift),
        Press(Qt::Key_Insert, Shift),
        Press(Qt::Key_V, Ctrl),
        Press(Qt::Key_X, Ctrl),
        Press(Qt::Key_Z, Ctrl),
        Press(Qt::Key_K, Ctrl),
        [&] { Edit.Perform(WM_CUT, 0, 0); },
        [&] { Edit.Perform(WM_PASTE, 0, 0); },
        [&] { Edit.Perform(WM_CLEAR, 0, 0); },
        [&] { Edit.Perform(WM_CHAR, U'a', 0); },
        [&] {
            QMimeData Data;
            Data.setText("drop");
            QDragEnterEvent Enter(QPoint(3, 3), Qt::CopyAction, &Data, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(QApplication::focusWidget(), &Enter);
            QDropEvent Drop(QPointF(3, 3), Qt::CopyAction, &Data, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(QApplication::focusWidget(), &Drop);
        },
    };
    for (std::size_t i = 0; i < Changes.size(); ++i) {
        Edit.SetSel(i % 2 == 0 ? 0 : 1, 1);
        Changes[i]();
        EXPECT_EQ(Edit.GetText(), "xz") << "change " << i;
    }
    Edit.SelectAll();
    Grid.Key(Qt::Key_C, Ctrl);
    EXPECT_EQ(QApplication::clipboard()->text(), "xz") << "copying changes nothing";
    Grid.Modify = true;
    for (const auto& Change : Changes) {
        Edit.SetText("0123");
        Edit.SetSel(1, 2);
        QApplication::clipboard()->setText("paste");
        if (&Change == &Changes[9] || &Change == &Changes[10]) continue; // nothing to undo, no such command
        Change();
        EXPECT_NE(Edit.GetText(), "0123") << "change " << &Change - Changes.data() << " works otherwise";
    }
}

TEST(GridEditor, PastedTextBecomesOneLineWithinTheLimit) {
    TEditGrid Grid;
    Grid.SetEditorMode(true);
    const auto Paste = [&](const QString& Text) {
        Grid.GetInplaceEditor()->SelectAll();
        return Grid.Paste(Text);
    };
    EXPECT_EQ(Paste("a\r\nb\nc\rd\te"), "a b c d e");
    EXPECT_EQ(Paste(QString::fromStdString(std::string("a\0b\x01", 4) + "c\x7F")), "abc");
    EXPECT_EQ(Paste(QString::fromUtf8("x\xFF\xC3y")), "x\xEF\xBF\xBD\xEF\xBF\xBDy");
    const QString Megabyte(1 << 20, 'm');
    EXPECT_EQ(Paste(Megabyte).size(), std::size_t{1} << 20) << "no text is cut without a limit";
    Grid.SetEditorMode(false);
    EXPECT_EQ((Grid.Cells[{1, 1}].size()), std::size_t{1} << 20);
    Grid.Limit = 3;
    Grid.Cells[{1, 1}] = "longer than that";
    Grid.SetEditorMode(true);
    Grid.Key(Qt::Key_End);
    Grid.Type("x");
    EXPECT_EQ(Grid.GetInplaceEditor()->GetText(), "longer than that") << "what is there stays";
    EXPECT_EQ(Paste(QString::fromUtf8("a\xF0\x9F\x8E\x89\xF0\x9F\x8E\x89"
                                      "b")),
              "a\xF0\x9F\x8E\x89\xF0\x9F\x8E\x89");
    EXPECT_EQ(Paste("ab"), "ab");
    Grid.Type("cd");
    EXPECT_EQ(Grid.GetInplaceEditor()->GetText(), "abc");
}

TEST(GridEditor, TextThatIsLeftAloneIsStoredByteForByte) {
    TEditGrid Grid;
    const std::string Texts[] = {"a\nb\tc", std::string("n\0l", 3), "bad \xFF\xC3 bytes", "", "\xEF\xBB\xBF"};
    for (const std::string& Text : Texts) {
        Grid.Cells[{1, 1}] = Text;
        Grid.SetEditorMode(true);
        Grid.SetEditorMode(false);
        EXPECT_EQ((Grid.Cells[{1, 1}]), Text);
    }
    // Undo ends at the cell's own text.
    Grid.Cells[{1, 1}] = "own";
    Grid.SetEditorMode(true);
    Grid.Type("xy");
    for (int i = 0; i < 5; ++i) Grid.Key(Qt::Key_Z, Ctrl);
    EXPECT_EQ(Grid.GetInplaceEditor()->GetText(), "own");
}

TEST(GridEditor, MaskHoldsWhereTheTextFits) {
    TEditGrid Grid;
    Grid.OnGetEditMask = [](TObject*, int, int, std::string& Mask) { Mask = "99.99"; };
    Grid.Cells[{1, 1}] = "12.34";
    Grid.SetEditorMode(true);
    Grid.Type("5x6");
    EXPECT_EQ(Grid.GetInplaceEditor()->GetText(), "56.");
    Grid.SetEditorMode(false);
    for (const std::string Text : {"twelve", ""}) {
        Grid.Cells[{1, 1}] = Text;
        Grid.SetEditorMode(true);
        Grid.SetEditorMode(false);
        EXPECT_EQ((Grid.Cells[{1, 1}]), Text) << "looking at it does not change it";
    }
}

TEST(GridEditor, LosesItsCellWithoutHarm) {
    struct TCase {
        const char* What;
        std::function<void(TEditGrid&)> Do;
        const char* Stored;
    };
    const TCase Cases[] = {
        {"row deleted", [](TEditGrid& G) { G.DeleteRow(2); }, ""},
        {"column deleted", [](TEditGrid& G) { G.DeleteColumn(2); }, ""},
        {"row above deleted",
         [](TEditGrid& G) {
             G.DeleteRow(1);
             G.SetEditorMode(false);
         },
         "2,1=new "},
        {"row inserted above", [](TEditGrid& G) { G.AdjustSize(1, 1, true); }, "2,2=new "},
        {"row moved",
         [](TEditGrid& G) {
             G.MoveRow(2, 4);
             G.SetEditorMode(false);
         },
         "2,4=new "},
        {"column moved",
         [](TEditGrid& G) {
             G.MoveColumn(2, 0);
             G.SetEditorMode(false);
         },
         "0,2=new "},
        {"rows cut off", [](TEditGrid& G) { G.SetRowCount(2); }, ""},
        {"editing off", [](TEditGrid& G) { G.SetOptions(G.GetOptions() - goEditing); }, "2,2=new "},
        {"row select", [](TEditGrid& G) { G.SetOptions(G.GetOptions() + goRowSelect); }, "2,2=new "},
        {"discarded", [](TEditGrid& G) { G.DiscardEdit(); }, ""},
        {"editor deleted",
         [](TEditGrid& G) {
             delete G.GetInplaceEditor();
             G.SetEditorMode(false);
         },
         ""},
        {"window made anew",
         [](TEditGrid& G) {
             G.RecreateWnd();
             G.SetEditorMode(false);
         },
         "2,2=new "},
        {"scrolled away",
         [](TEditGrid& G) {
             G.SetTopRow(4);
             G.SetEditorMode(false);
         },
         "2,2=new "},
    };
    for (const TCase& Case : Cases) {
        TEditGrid Grid;
        Grid.Focus(2, 2);
        Grid.Type("new");
        ASSERT_EQ(Grid.State(), "2,2 new 3-3");
        Case.Do(Grid);
        QCoreApplication::processEvents();
        EXPECT_EQ(Grid.Take(), Case.Stored) << Case.What;
        EXPECT_FALSE(Grid.IsEditorShown()) << Case.What;
        Grid.Key(Qt::Key_F2);
        EXPECT_EQ(Grid.IsEditorShown(), Grid.HasOption(goEditing) && !Grid.HasOption(goRowSelect))
            << Case.What;
    }
}

TEST(GridEditor, TypedTextComesIntoView) {
    TEditGrid Grid;
    Grid.SetClientSize(400, 72);
    Grid.Type("a");
    const TRect Cell = Grid.CellRect(1, 1);
    EXPECT_TRUE(Grid.GetInplaceEditor()->PosEqual(Cell));
    Grid.SetTopRow(3);
    EXPECT_TRUE(Grid.GetInplaceEditor()->Focused());
    EXPECT_EQ(Grid.GetInplaceEditor()->GetHeight(), 0);
    Grid.Type("b");
    EXPECT_EQ(Grid.GetTopRow(), 1);
    EXPECT_TRUE(Grid.GetInplaceEditor()->PosEqual(Cell));
    EXPECT_EQ(Grid.State(), "1,1 ab 2-2");
}

// What a handler may do from every place where the editor calls one.
TEST(GridEditor, HandlersMayDoAnything) {
    using TGrid = std::unique_ptr<TEditGrid>;
    const std::map<std::string, std::function<void(TGrid&)>> Deeds{
        {"destroys the grid", [](TGrid& G) { G.reset(); }},
        {"destroys the editor", [](TGrid& G) { delete G->GetInplaceEditor(); }},
        {"opens another",
         [](TGrid& G) {
             G->Focus(3, 3);
             G->SetEditorMode(true);
         }},
        {"closes it", [](TGrid& G) { G->SetEditorMode(false); }},
        {"shrinks the grid",
         [](TGrid& G) {
             G->SetRowCount(1);
             G->SetColCount(1);
         }},
        {"deletes the row",
         [](TGrid& G) {
             if (G->GetRow() < G->GetRowCount() - 1) G->DeleteRow(G->GetRow());
         }},
        {"takes the focus",
         [](TGrid& G) {
             G->clearFocus();
             if (auto* F = QApplication::focusWidget()) F->clearFocus();
         }},
    };
    for (const auto& [Name, Deed] : Deeds) {
        for (int Place = 0; Place < 8; ++Place) {
            TGrid Grid = std::make_unique<TEditGrid>();
            const QPointer<QWidget> Window = Grid.get();
            int Left = 1;
            const TAnyHandler Handler{[&] {
                if (Left-- > 0 && Grid) Deed(Grid);
            }};
            if (Place == 0) Grid->OnGetEditText = Handler;
            if (Place == 1) Grid->OnSetEditText = Handler;
            if (Place == 2) Grid->OnGetEditMask = Handler;
            if (Place == 3) Grid->OnKeyDown = Handler;
            if (Place == 4) Grid->OnKeyPress = Handler;
            Grid->SetEditorMode(true);
            if (Place == 5 && Grid->GetInplaceEditor()) Grid->GetInplaceEditor()->OnChange = Handler;
            if (Place == 6 && Grid->GetInplaceEditor()) Grid->GetInplaceEditor()->OnKeyDown = Handler;
            if (Place == 7) Grid->OnExit = Handler;
            const auto Go = [&](const std::function<void()>& Step) {
                if (Grid) Step();
                QCoreApplication::processEvents();
            };
            Go([&] { Grid->Type("a"); });
            Go([&] { Grid->Compose("p", "c"); });
            Go([&] { Grid->Key(Qt::Key_Left); });
            Go([&] { Grid->Key(Qt::Key_Down); });
            Go([&] { Grid->Type("b"); });
            Go([&] { Grid->Key(Qt::Key_V, Ctrl); });
            Go([&] { Grid->Key(Qt::Key_Escape); });
            Go([&] { Grid->hide(); });
            EXPECT_EQ(static_cast<bool>(Window), static_cast<bool>(Grid)) << Name << " at " << Place;
        }
    }
}

TEST(GridEditor, MenuOffersTheCommandsOfTheMoment) {
    const TExpectQtWarning NoGrab("grabbing the keyboard");
    TEditGrid Grid;
    Grid.SetEditorMode(true);
    QApplication::clipboard()->setText("p");
    QWidget* const Line = QApplication::focusWidget();
    const auto Menu = [&] {
        QContextMenuEvent Event(QContextMenuEvent::Mouse, QPoint(2, 2), QPoint(2, 2));
        QCoreApplication::sendEvent(Line, &Event);
        return qobject_cast<QMenu*>(QApplication::activePopupWidget());
    };
    const auto Enabled = [](QMenu* M) {
        std::string Result;
        for (const QAction* Action : M->actions()) {
            if (!Action->isSeparator())
                Result += Action->isEnabled() ? Action->iconText().toStdString() + " " : "- ";
        }
        return Result;
    };
    QMenu* Opened = Menu();
    ASSERT_TRUE(Opened);
    EXPECT_EQ(Enabled(Opened), "- Cut Copy Paste Delete Select All ");
    EXPECT_TRUE(Grid.IsEditorShown()) << "a menu does not end the edit";
    Opened->actions().at(4)->trigger();
    Opened->close();
    QCoreApplication::processEvents();
    EXPECT_EQ(Grid.State(), "1,1 p 1-1");
    Grid.Modify = false;
    Opened = Menu();
    EXPECT_EQ(Enabled(Opened), "- - - - - Select All ");
    Opened->close();
}

TEST(GridEditor, TabLeavesAnEditorThatIsAlwaysShown) {
    QWidget Form;
    QLineEdit Before(&Form);
    TEditGrid Grid(TGridOptions{goAlwaysShowEditor});
    Grid.setParent(&Form);
    QLineEdit After(&Form);
    Form.show();
    Grid.show();
    Form.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Form));
    for (QWidget* Neighbour : {&Before, &After}) {
        Grid.SetFocus();
        ASSERT_TRUE(Grid.GetInplaceEditor()->Focused());
        QTest::keyClick(Form.windowHandle(), Neighbour == &Before ? Qt::Key_Backtab : Qt::Key_Tab);
        EXPECT_TRUE(Neighbour->hasFocus());
    }
    QTest::keyClick(Form.windowHandle(), Qt::Key_Backtab);
    EXPECT_TRUE(Grid.ContainsFocus());
    Grid.setParent(nullptr);
}

TEST(GridEditor, WheelAndDoubleClickGoToTheGrid) {
    TEditGrid Grid;
    Grid.SetClientSize(400, 72);
    Grid.SetEditorMode(true);
    int DblClicks = 0;
    Grid.OnDblClick = [&](TObject*) { ++DblClicks; };
    const QPoint Pos(Grid.CellRect(1, 1).Left + 10, Grid.CellRect(1, 1).Top + 5);
    QTest::mouseDClick(Grid.windowHandle(), Qt::LeftButton, {}, Pos);
    EXPECT_EQ(DblClicks, 1);
    EXPECT_EQ(Grid.State(), "1,1 text 0-4") << "and select a word";
    Grid.GetInplaceEditor()->Perform(WM_MOUSEWHEEL, MakeWheelParam(-120, {}), 0);
    EXPECT_GT(Grid.GetTopRow(), 1);
    EXPECT_TRUE(Grid.IsEditorShown());
}

} // namespace
} // namespace quill::testing
