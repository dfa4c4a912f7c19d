// The in-place editor: where it is, where its text goes, and handlers that interfere.
#include "EditGrid.h"

#include "tests/support/Handlers.h"

#include <QDialog>
#include <QLineEdit>
#include <QMenu>

#include <memory>
#include <stdexcept>

namespace quill::testing {
namespace {

TEST(GridEditor, LosesItsCellWithoutHarm) {
    const struct {
        const char* What;
        void (*Do)(TEditGrid&);
        const char* Stored; // when it is closed then
    } Cases[] = {
        {"row deleted", [](TEditGrid& G) { G.DeleteRow(2); }, ""},
        {"column deleted", [](TEditGrid& G) { G.DeleteColumn(2); }, ""},
        {"row above deleted", [](TEditGrid& G) { G.DeleteRow(1); }, "2,1=new "},
        {"row inserted above", [](TEditGrid& G) { G.AdjustSize(1, 1, true); }, "2,2=new "},
        {"row moved", [](TEditGrid& G) { G.MoveRow(2, 4); }, "2,4=new "},
        {"column moved", [](TEditGrid& G) { G.MoveColumn(2, 0); }, "0,2=new "},
        {"rows cut off", [](TEditGrid& G) { G.SetRowCount(2); }, ""},
        {"editing off", [](TEditGrid& G) { G.SetOptions(G.GetOptions() - goEditing); }, "2,2=new "},
        {"row select", [](TEditGrid& G) { G.SetOptions(G.GetOptions() + goRowSelect); }, "2,2=new "},
        {"discarded", [](TEditGrid& G) { G.DiscardEdit(); }, ""},
        {"editor deleted", [](TEditGrid& G) { delete G.GetInplaceEditor(); }, ""},
        {"window made anew", [](TEditGrid& G) { G.RecreateWnd(); }, "2,2=new "},
        {"scrolled away", [](TEditGrid& G) { G.SetTopRow(4); }, "2,2=new "},
    };
    for (const auto& Case : Cases) {
        SCOPED_TRACE(Case.What);
        TEditGrid Grid;
        Grid.Focus(2, 2);
        Grid.Type("new");
        ASSERT_EQ(Grid.State(), "2,2 new 3-3");
        Case.Do(Grid);
        QCoreApplication::processEvents();
        Grid.SetEditorMode(false);
        EXPECT_EQ(Grid.Take(), Case.Stored);
        EXPECT_FALSE(Grid.IsEditorShown());
        Grid.Key(Qt::Key_F2);
        EXPECT_EQ(Grid.IsEditorShown(), Grid.HasOption(goEditing) && !Grid.HasOption(goRowSelect));
    }
}

TEST(GridEditor, TypedTextComesIntoView) {
    TEditGrid Grid;
    Grid.SetClientSize(400, 72);
    Grid.Type("a");
    const TInplaceEdit& Edit = *Grid.GetInplaceEditor();
    const TRect Cell = Grid.CellRect(1, 1);
    EXPECT_TRUE(Edit.PosEqual(Cell));
    for (const char* Change : {"Delete", "Ctrl+Z", "'b'"}) {
        Grid.SetTopRow(3);
        Grid.Key(Qt::Key_Control, Ctrl);
        EXPECT_EQ(Grid.GetTopRow(), 3) << "nothing is changed yet";
        EXPECT_TRUE(Edit.Focused());
        EXPECT_EQ(Edit.GetHeight(), 0);
        Grid.Keys(Change);
        EXPECT_EQ(Grid.GetTopRow(), 1) << Change;
        EXPECT_TRUE(Edit.PosEqual(Cell));
    }
    EXPECT_EQ(Grid.State(), "1,1 b 1-1");
    Grid.SetGridLineWidth(5);
    Grid.Update();
    EXPECT_TRUE(Edit.PosEqual(Grid.CellRect(1, 1))) << "follows the layout";
    Grid.SetFixedCols(1);
    Grid.Focus(0, 2);
    Grid.SetEditorMode(true);
    EXPECT_TRUE(Edit.PosEqual(Grid.CellRect(0, 2))) << "a fixed cell is in view";
}

TEST(GridEditor, AsksOnceWhateverTheFocusDoes) {
    for (const bool Allowed : {false, true}) {
        TEditGrid Grid;
        int Asked = 0;
        const auto BlinkFocus = [&] {
            QWidget Message;
            Message.show();
            for (QWidget* Window : {&Message, static_cast<QWidget*>(&Grid)}) {
                Window->activateWindow();
                EXPECT_TRUE(QTest::qWaitForWindowActive(Window));
                Message.hide();
            }
            QCoreApplication::processEvents();
        };
        Grid.MayShow = [&] {
            if (++Asked < 5) BlinkFocus();
            return Allowed;
        };
        Grid.SetEditorMode(true);
        const int Before = Asked;
        EXPECT_LE(Before, 2);
        BlinkFocus();
        EXPECT_EQ(Asked, Before);
        EXPECT_EQ(Grid.IsEditorShown(), Allowed);
    }
}

TEST(GridEditor, StoresWhatIsTypedWhenTheFocusOrTheWindowGoes) {
    for (const bool Always : {true, false}) {
        QDialog Form;
        QLineEdit Other(&Form);
        TEditGrid Grid(Always ? TGridOptions{goAlwaysShowEditor} : TGridOptions{});
        Grid.setParent(&Form);
        Grid.show();
        Form.show();
        Form.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&Form));
        const auto Press = [&](Qt::Key Key) {
            Grid.SetFocus();
            Grid.SetEditorMode(true);
            QTest::keyClick(Form.windowHandle(), Key);
        };
        Press(Qt::Key_X);
        Grid.Take();
        Other.setFocus();
        EXPECT_EQ(Grid.Take(), "1,1=x ");
        EXPECT_EQ(Grid.IsEditorShown(), Always);
        Press(Qt::Key_Y);
        Grid.Take();
        Form.hide();
        EXPECT_EQ(Grid.Take(), "1,1=y ");
        Form.show();
        Form.activateWindow();
        QApplication::setActiveWindow(&Form);
        EXPECT_EQ(Grid.IsEditorShown(), Always);
        EXPECT_EQ(Grid.ContainsFocus() && Grid.GetInplaceEditor()->Focused(), Always);
        // Esc ends the edit, and then the dialog.
        Press(Qt::Key_Escape);
        EXPECT_EQ(Form.isVisible(), !Always);
        QTest::keyClick(Form.windowHandle(), Qt::Key_Escape);
        EXPECT_FALSE(Form.isVisible());
        Grid.setParent(nullptr);
    }
}

TEST(GridEditor, StoresWhatIsBeingComposed) {
    struct TComposer : TInplaceEdit {
        using TInplaceEdit::TInplaceEdit;
        void CommitComposition() override {
            QInputMethodEvent Event;
            Event.setCommitString("ni");
            inputMethodEvent(&Event);
        }
    };
    struct TComposeGrid : TEditGrid {
        TInplaceEdit* CreateEditor() override { return new TComposer(this); }
    } Grid;
    Grid.SetEditorMode(true);
    Grid.Compose("n", {});
    QTest::mouseClick(Grid.windowHandle(), Qt::LeftButton, {}, QPoint(10, Grid.CellRect(0, 4).Top + 5));
    EXPECT_EQ(Grid.Take(), "1,1=ni ");
}

TEST(GridEditor, MayBeDestroyedByEveryChange) {
    void (*const Changes[])(TInplaceEdit&) = {
        [](TInplaceEdit& E) { E.Perform(WM_CHAR, U'a', 0); },
        [](TInplaceEdit& E) { E.Perform(WM_CHAR, 8, 0); },
        [](TInplaceEdit& E) { E.Perform(WM_PASTE, 0, 0); },
        [](TInplaceEdit& E) { E.Perform(WM_CUT, 0, 0); },
        [](TInplaceEdit& E) { E.Perform(WM_CLEAR, 0, 0); },
        [](TInplaceEdit& E) { E.Perform(WM_KEYDOWN, VK_DELETE, 0); },
        [](TInplaceEdit& E) { E.SetText("other"); },
        [](TInplaceEdit& E) { E.SetEditMask("99"); },
        [](TInplaceEdit& E) { E.UpdateContents(); },
        [](TInplaceEdit& E) { E.PostMessage(WM_CHAR, U'a', 0); },
    };
    for (const auto& Change : Changes) {
        TEditGrid Grid;
        QApplication::clipboard()->setText("paste");
        Grid.SetEditorMode(true);
        Grid.GetInplaceEditor()->OnChange = [&](TObject*) { delete Grid.GetInplaceEditor(); };
        Change(*Grid.GetInplaceEditor());
        QCoreApplication::processEvents();
        EXPECT_FALSE(Grid.GetInplaceEditor()) << "change " << &Change - Changes;
    }
}

// What a handler may do from every place where the editor calls one.
TEST(GridEditor, HandlersMayDoAnything) {
    using TGrid = std::unique_ptr<TEditGrid>;
    const std::pair<const char*, void (*)(TGrid&)> Deeds[] = {
        {"destroys the grid", [](TGrid& G) { G.reset(); }},
        {"destroys the editor", [](TGrid& G) { delete G->GetInplaceEditor(); }},
        {"opens another", [](TGrid& G) { G->Focus(3, 3), G->SetEditorMode(true); }},
        {"closes it", [](TGrid& G) { G->SetEditorMode(false); }},
        {"shrinks the grid", [](TGrid& G) { G->SetRowCount(1), G->SetColCount(1); }},
        {"deletes the row", [](TGrid& G) { G->DeleteRow(G->GetRow()); }},
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
            const TAnyHandler Handler{[&, Deed = Deed] {
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
            for (const char* Step : {"'a'", "compose", "Left", "Down", "'b'", "Ctrl+V", "Esc", "hide"}) {
                if (Grid && Step == std::string("compose"))
                    Grid->Compose("p", "c");
                else if (Grid && Step == std::string("hide"))
                    Grid->hide();
                else if (Grid)
                    Grid->Keys(Step);
                QCoreApplication::processEvents();
            }
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
    // The entries, "-" for those that are disabled; the one at Trigger is chosen.
    const auto Menu = [&](int Trigger) {
        QContextMenuEvent Event(QContextMenuEvent::Mouse, QPoint(2, 2), QPoint(2, 2));
        QCoreApplication::sendEvent(Line, &Event);
        auto* Opened = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!Opened) return std::string("no menu");
        EXPECT_TRUE(Grid.IsEditorShown()) << "a menu does not end the edit";
        std::string Result;
        for (const QAction* Action : Opened->actions()) {
            if (!Action->isSeparator())
                Result += Action->isEnabled() ? Action->iconText().toStdString() + " " : "- ";
        }
        Opened->actions().at(Trigger)->trigger();
        Opened->close();
        QCoreApplication::processEvents();
        return Result;
    };
    EXPECT_EQ(Menu(4), "- Cut Copy Paste Delete Select All ");
    EXPECT_EQ(Grid.State(), "1,1 p 1-1");
    Grid.Modify = false;
    EXPECT_EQ(Menu(4), "- - - - - Select All ");
    EXPECT_EQ(Grid.State(), "1,1 p 1-1");
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
