// The in-place editor: which keys are whose, and what is typed, pasted and refused.
#include "EditGrid.h"

#include <QLineEdit>
#include <QMenu>
#include <QMimeData>

#include <functional>
#include <vector>

namespace quill::testing {
namespace {

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
        {"ahead of the editor", [](TEditGrid& G) { G.TypeAhead(Qt::Key_X, "x"); }, "1,1 x 1-1"},
        {"a caret key ahead of it", [](TEditGrid& G) { G.TypeAhead(Qt::Key_Left, ""); }, "1,1  0-0"},
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
    // Straight after opening, with the platform's keys that are no commands, and what could be redone.
    const auto WordBack = [&] {
        QKeyEvent Event(QEvent::KeyPress, Qt::Key_Backspace, Ctrl, "\x7f");
        QCoreApplication::sendEvent(QApplication::focusWidget(), &Event);
    };
    Grid.SetEditorMode(false);
    Grid.SetEditorMode(true);
    Edit.SetSel(1, 1);
    Grid.Key(Qt::Key_K, Ctrl);
    Grid.Key(Qt::Key_U, Ctrl);
    WordBack();
    EXPECT_EQ(Edit.GetText(), "xz");
    Grid.Modify = true;
    Edit.SetSel(2, 2);
    Grid.Type("w");
    Grid.Key(Qt::Key_Z, Ctrl);
    Grid.Modify = false;
    Grid.Key(Qt::Key_Z, Ctrl | Shift);
    EXPECT_EQ(Edit.GetText(), "xz") << "redo";
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
    for (const std::string Text : {"twelve", "", "12"}) {
        Grid.Cells[{1, 1}] = Text;
        Grid.SetEditorMode(true);
        Grid.SetEditorMode(false);
        EXPECT_EQ((Grid.Cells[{1, 1}]), Text) << "looking at it does not change it";
    }
    Grid.SetOptions(Grid.GetOptions() + goAlwaysShowEditor);
    Grid.InvalidateEditor();
    EXPECT_EQ(Grid.State(), "1,1 12 0-5") << "half a text fits as well";
    Grid.Key(Qt::Key_Return);
    EXPECT_EQ(Grid.State(), "1,1 12 5-5");
    Grid.Key(Qt::Key_Return);
    EXPECT_EQ(Grid.State(), "1,1 12 0-5");
}

} // namespace
} // namespace quill::testing
