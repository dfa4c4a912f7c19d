// The in-place editor: which keys are whose, and what is typed, pasted and refused.
#include "EditGrid.h"

#include <QLineEdit>
#include <QMenu>
#include <QMimeData>

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
    using TDo = std::function<void(TEditGrid&)>;
    const auto Keys = [](const char* Script) { return [=](TEditGrid& G) { G.Keys(Script); }; };
    const auto Commit = [](const char* Text) {
        return [=](TEditGrid& G) { G.Compose("ni", {}), G.Compose({}, Text); };
    };
    const std::tuple<const char*, TDo, const char*> Cases[] = {
        {"letters", Keys("'abc'"), "1,1 abc 3-3"},
        {"backspace", Keys("Backspace 'b'"), "1,1 b 1-1"},
        {"ahead of the editor", [](TEditGrid& G) { G.TypeAhead(Qt::Key_X, "x"); }, "1,1 x 1-1"},
        {"a caret key ahead of it", [](TEditGrid& G) { G.TypeAhead(Qt::Key_Left, ""); }, "1,1  0-0"},
        {"a control character", Keys("Ctrl+G"), "1,1"},
        {"Enter", Keys("Return"), "1,1 text 0-4"},
        {"F2", Keys("F2"), "1,1 text 0-4"},
        {"composed", [](TEditGrid& G) { G.Compose({}, "é"), G.Type("t"); }, "1,1 ét 2-2"},
        {"a word", Commit("你好"), "1,1 你好 2-2"},
        {"an emoji", Commit("🎉🎉"), "1,1 🎉🎉 2-2"},
    };
    for (const auto& [What, Do, State] : Cases) {
        TEditGrid Grid;
        Do(Grid);
        EXPECT_EQ(Grid.State(), State) << What;
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
    const auto Keys = [&Grid](const char* Script) { return [=, &Grid] { Grid.Keys(Script); }; };
    const auto Message = [&Edit](unsigned Id, char32_t Key = 0) {
        return [=, &Edit] { Edit.Perform(Id, Key, 0); };
    };
    const auto Send = [](QEvent&& Event) {
        QCoreApplication::sendEvent(QApplication::focusWidget(), &Event);
    };
    const std::pair<const char*, std::function<void()>> Changes[]{
        {"typed", Keys("'q'")},
        {"Backspace", Keys("Backspace")},
        {"Ctrl+Backspace", Keys("Ctrl+Backspace")},
        {"Ctrl+Backspace with its character",
         [&] { Send(QKeyEvent(QEvent::KeyPress, Qt::Key_Backspace, Ctrl, "\x7f")); }},
        {"Delete", Keys("Delete")},
        {"Ctrl+Delete", Keys("Ctrl+Delete")},
        {"Shift+Delete", Keys("Shift+Delete")},
        {"Shift+Insert", Keys("Shift+Insert")},
        {"paste", Keys("Ctrl+V")},
        {"cut", Keys("Ctrl+X")},
        {"cut message", Message(WM_CUT)},
        {"paste message", Message(WM_PASTE)},
        {"clear message", Message(WM_CLEAR)},
        {"character message", Message(WM_CHAR, U'a')},
        {"drop",
         [&] {
             QMimeData Data;
             Data.setText("drop");
             Send(QDragEnterEvent(QPoint(3, 3), Qt::CopyAction, &Data, Qt::LeftButton, Qt::NoModifier));
             Send(QDropEvent(QPointF(3, 3), Qt::CopyAction, &Data, Qt::LeftButton, Qt::NoModifier));
         }},
        // What the platform knows and the editor does not.
        {"Ctrl+K", Keys("Ctrl+K")},
        {"Ctrl+U", Keys("Ctrl+U")},
    };
    Grid.Refused = U'y';
    Grid.Type("xyz");
    EXPECT_EQ(Edit.GetText(), "xz");
    for (const char* Text : {"xz", "text"}) { // neither undo nor, after an undo, redo
        Grid.Modify = false;
        Grid.Keys("Ctrl+Z Ctrl+Shift+Z");
        EXPECT_EQ(Edit.GetText(), Text);
        Grid.Modify = true;
        Grid.Keys("Ctrl+Z");
    }
    for (const bool Modify : {false, true}) {
        for (const auto& [What, Change] : Changes) {
            if (Modify && What == std::string("Ctrl+K")) break;
            for (int End = Modify ? 2 : 1; End <= 2; ++End) { // with and without a selection
                Grid.Modify = true;
                Edit.SetText("0123");
                Edit.SetSel(1, End);
                QApplication::clipboard()->setText("paste");
                Grid.Modify = Modify;
                Change();
                EXPECT_EQ(Edit.GetText() != "0123", Modify) << What << " to " << End;
            }
        }
    }
    Grid.Modify = false;
    Edit.SelectAll();
    Grid.Keys("Ctrl+C");
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), Edit.GetText()) << "copying changes nothing";
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
    EXPECT_EQ(Paste(QString(1 << 20, 'm')).size(), std::size_t{1} << 20) << "no text is cut without a limit";
    Grid.SetEditorMode(false);
    EXPECT_EQ((Grid.Cells[{1, 1}].size()), std::size_t{1} << 20);
    Grid.Limit = 3;
    Grid.Cells[{1, 1}] = "longer than that";
    Grid.SetEditorMode(true);
    Grid.Keys("End 'x'");
    EXPECT_EQ(Grid.GetInplaceEditor()->GetText(), "longer than that") << "what is there stays";
    EXPECT_EQ(Paste("a🎉🎉b"), "a🎉🎉");
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
    for (const std::string Text : {"twelve", "", "12"}) {
        Grid.SetEditorMode(false);
        Grid.Cells[{1, 1}] = Text;
        Grid.SetEditorMode(true);
        Grid.SetEditorMode(false);
        EXPECT_EQ((Grid.Cells[{1, 1}]), Text) << "looking at it does not change it";
    }
    Grid.SetOptions(Grid.GetOptions() + goAlwaysShowEditor);
    Grid.InvalidateEditor();
    for (const char* State : {"1,1 12 0-5", "1,1 12 5-5", "1,1 12 0-5"}) { // half a text fits as well
        EXPECT_EQ(Grid.State(), State);
        Grid.Key(Qt::Key_Return);
    }
}

} // namespace
} // namespace quill::testing
