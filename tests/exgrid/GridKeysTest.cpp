// Selection and keyboard.
#include "tests/exgrid/GridTestSupport.h"

#include <vector>

namespace quill::testing {
namespace {

// 5 columns, 20 rows, one fixed of each; 3 scrollable columns and 4 scrollable rows fit.
class TKeyGrid : public TTestGrid {
public:
    TKeyGrid() : TTestGrid(304, 124, 5, 20) { SetFixedCols(1); }
    int Appended = 0;
    void AppendRow() override {
        ++Appended;
        TTestGrid::AppendRow();
    }
};

struct TKeyCase {
    const char* What;
    TGridCoord From;
    std::uint16_t Key;
    TShiftState Shift;
    const char* Result;
};

void Check(const std::vector<TKeyCase>& Cases, TGridOptions Add, TGridOptions Remove, TBiDiMode Mode) {
    for (const TKeyCase& Case : Cases) {
        SCOPED_TRACE(Case.What);
        TKeyGrid Grid;
        Grid.SetOptions(Grid.GetOptions() + Add - Remove);
        Grid.SetBiDiMode(Mode);
        Grid.Focus(Case.From.X, Case.From.Y);
        Grid.MoveTopLeft(1, 1);
        Grid.ClampInView({Grid.GetCol(), Grid.GetRow()});
        Grid.Press(Case.Key, Case.Shift);
        EXPECT_EQ(Grid.State() + (Grid.Appended != 0 ? " append" : ""), Case.Result);
    }
}

TEST(GridKeys, MoveTheCurrentCell) {
    const std::vector<TKeyCase> Cases = {
        {"up", {2, 3}, VK_UP, {}, "2,2 [2,2..2,2] @1,1"},
        {"up at the first row", {2, 1}, VK_UP, {}, "2,1 [2,1..2,1] @1,1"},
        {"down", {2, 3}, VK_DOWN, {}, "2,4 [2,4..2,4] @1,1"},
        {"down scrolls", {2, 4}, VK_DOWN, {}, "2,5 [2,5..2,5] @1,2"},
        {"down at the last row", {2, 19}, VK_DOWN, {}, "2,19 [2,19..2,19] @1,16 append"},
        {"left", {2, 3}, VK_LEFT, {}, "1,3 [1,3..1,3] @1,1"},
        {"left stops at the fixed columns", {1, 3}, VK_LEFT, {}, "1,3 [1,3..1,3] @1,1"},
        {"right", {2, 3}, VK_RIGHT, {}, "3,3 [3,3..3,3] @1,1"},
        {"right scrolls", {3, 3}, VK_RIGHT, {}, "4,3 [4,3..4,3] @2,1"},
        {"right at the last column", {4, 3}, VK_RIGHT, {}, "4,3 [4,3..4,3] @2,1"},
        {"page down", {2, 2}, VK_NEXT, {}, "2,5 [2,5..2,5] @1,4"},
        {"page down near the end", {2, 18}, VK_NEXT, {}, "2,19 [2,19..2,19] @1,16"},
        {"page up", {2, 19}, VK_PRIOR, {}, "2,16 [2,16..2,16] @1,13"},
        {"page up near the start", {2, 2}, VK_PRIOR, {}, "2,1 [2,1..2,1] @1,1"},
        {"home", {3, 5}, VK_HOME, {}, "1,5 [1,5..1,5] @1,2"},
        {"home again", {1, 5}, VK_HOME, {}, "1,1 [1,1..1,1] @1,1"},
        {"end", {2, 5}, VK_END, {}, "4,5 [4,5..4,5] @2,2"},
        {"end again", {4, 5}, VK_END, {}, "4,19 [4,19..4,19] @2,16"},
        {"end in the last cell", {4, 19}, VK_END, {}, "4,19 [4,19..4,19] @2,16 append"},
        {"tab", {2, 3}, VK_TAB, {}, "3,3 [3,3..3,3] @1,1"},
        {"tab to the next row", {4, 3}, VK_TAB, {}, "1,4 [1,4..1,4] @1,1"},
        {"tab from the last cell", {4, 19}, VK_TAB, {}, "1,1 [1,1..1,1] @1,1"},
        {"shift+tab", {2, 3}, VK_TAB, ssShift, "1,3 [1,3..1,3] @1,1"},
        {"shift+tab to the row before", {1, 3}, VK_TAB, ssShift, "4,2 [4,2..4,2] @2,1"},
        {"shift+tab from the first cell", {1, 1}, VK_TAB, ssShift, "4,19 [4,19..4,19] @2,16"},
        {"alt+tab is not ours", {2, 19}, VK_TAB, ssAlt, "2,19 [2,19..2,19] @1,16"},
        {"shift+down extends", {2, 3}, VK_DOWN, ssShift, "2,4 [2,3..2,4] @1,1"},
        {"ctrl+down extends with ranges", {2, 3}, VK_DOWN, ssCtrl, "2,4 [2,3..2,4] @1,1"},
        {"shift+left extends", {3, 3}, VK_LEFT, ssShift, "2,3 [2,3..3,3] @1,1"},
        {"a letter appends nothing", {2, 19}, 'A', {}, "2,19 [2,19..2,19] @1,16"},
        {"F2 without editing", {2, 19}, VK_F2, {}, "2,19 [2,19..2,19] @1,16"},
        {"no key", {2, 19}, 0, {}, "2,19 [2,19..2,19] @1,16"},
    };
    Check(Cases, {}, {}, bdLeftToRight);
}

TEST(GridKeys, MirroredLeftAndRightChangePlaces) {
    const std::vector<TKeyCase> Cases = {
        {"left", {2, 3}, VK_LEFT, {}, "3,3 [3,3..3,3] @1,1"},
        {"right", {2, 3}, VK_RIGHT, {}, "1,3 [1,3..1,3] @1,1"},
        {"home", {3, 3}, VK_HOME, {}, "1,3 [1,3..1,3] @1,1"},
    };
    Check(Cases, {}, {}, bdRightToLeft);
    const std::vector<TKeyCase> Rows = {
        {"left", {1, 3}, VK_LEFT, {}, "1,4 [1,4..4,4] @1,1"},
        {"right", {1, 3}, VK_RIGHT, {}, "1,2 [1,2..4,2] @1,1"},
    };
    Check(Rows, goRowSelect, {}, bdRightToLeft);
}

TEST(GridKeys, InARowSelectGridAllKeysMoveBetweenRows) {
    const std::vector<TKeyCase> Cases = {
        {"left", {1, 3}, VK_LEFT, {}, "1,2 [1,2..4,2] @1,1"},
        {"right", {1, 3}, VK_RIGHT, {}, "1,4 [1,4..4,4] @1,1"},
        {"home", {1, 5}, VK_HOME, {}, "1,1 [1,1..4,1] @1,1"},
        {"end", {1, 5}, VK_END, {}, "1,19 [1,19..4,19] @1,16"},
        {"end in the last row", {1, 19}, VK_END, {}, "1,19 [1,19..4,19] @1,16 append"},
        {"right in the last row", {1, 19}, VK_RIGHT, {}, "1,19 [1,19..4,19] @1,16 append"},
        {"page down", {1, 2}, VK_NEXT, {}, "1,5 [1,5..4,5] @1,4"},
        {"shift+down", {1, 3}, VK_DOWN, ssShift, "1,4 [1,3..4,4] @1,1"},
    };
    Check(Cases, goRowSelect, {}, bdLeftToRight);
}

TEST(GridKeys, WithoutRangesCtrlScrollsTheView) {
    const std::vector<TKeyCase> Cases = {
        {"ctrl+down", {2, 3}, VK_DOWN, ssCtrl, "2,3 [2,3..2,3] @1,2"},
        {"ctrl+up", {2, 8}, VK_UP, ssCtrl, "2,8 [2,8..2,8] @1,4"},
        {"ctrl+up at the top", {2, 3}, VK_UP, ssCtrl, "2,3 [2,3..2,3] @1,1"},
        {"ctrl+down in the last row appends nothing", {2, 19}, VK_DOWN, ssCtrl, "2,19 [2,19..2,19] @1,16"},
        {"shift+down moves", {2, 3}, VK_DOWN, ssShift, "2,4 [2,4..2,4] @1,1"},
    };
    Check(Cases, {}, goRangeSelect, bdLeftToRight);
}

TEST(GridKeys, TabStopsOnlyWhereItMay) {
    TKeyGrid Grid;
    Grid.Focus(1, 3);
    Grid.SetTabStops(2, false);
    Grid.Press(VK_TAB);
    EXPECT_EQ(Grid.State(), "3,3 [3,3..3,3] @1,1");
    Grid.SetTabStops(1, false);
    Grid.SetTabStops(4, false);
    Grid.Press(VK_TAB); // the only stop is here
    EXPECT_EQ(Grid.State(), "3,3 [3,3..3,3] @1,1");
    Grid.SetTabStops(3, false);
    Grid.Press(VK_TAB, ssShift); // there is none at all
    EXPECT_EQ(Grid.State(), "3,3 [3,3..3,3] @1,1");
    TTestGrid Single(300, 124, 1, 20);
    Single.Focus(0, 3);
    Single.Press(VK_TAB);
    EXPECT_EQ(Single.State(), "0,3 [0,3..0,3] @0,1");
    EXPECT_THROW(Single.SetTabStops(1, true), EInvalidGridOperation);
}

TEST(GridKeys, AKeyHandlerComesFirstAndAnEmptyGridTakesNoKeys) {
    TKeyGrid Grid;
    Grid.Focus(2, 3);
    Grid.OnKeyDown = [](TObject*, std::uint16_t& Key, TShiftState) { Key = 0; };
    Grid.Press(VK_DOWN);
    EXPECT_EQ(Grid.GetRow(), 3);
    Grid.OnKeyDown = nullptr;
    Grid.SetRowCount(1);
    const std::string Before = Grid.State();
    for (const std::uint16_t Key : {VK_DOWN, VK_END, VK_TAB, VK_NEXT}) Grid.Press(Key);
    EXPECT_EQ(Grid.State(), Before);
    EXPECT_EQ(Grid.Appended, 0);
    Grid.FocusCell(2, 2, true, {}, swNone);
    EXPECT_EQ(Grid.State(), Before);
}

TEST(GridKeys, TheKeysOfTheDialogAreLeftToIt) {
    TKeyGrid Grid;
    const auto Wants = [&](char32_t Key) {
        TWMKey Message;
        Message.Msg = CM_WANTSPECIALKEY;
        Message.CharCode = Key;
        Grid.CMWantSpecialKey(Message);
        return Message.Result != 0;
    };
    EXPECT_TRUE(Wants(VK_DOWN));
    EXPECT_FALSE(Wants(VK_TAB));
    EXPECT_FALSE(Wants(VK_RETURN));
    Grid.SetOptions(Grid.GetOptions() + TGridOptions{goTabs, goEditing});
    EXPECT_TRUE(Wants(VK_TAB));
    EXPECT_TRUE(Wants(VK_RETURN));
    EXPECT_FALSE(Wants(VK_ESCAPE));
    Grid.SetEditorMode(true);
    EXPECT_TRUE(Wants(VK_ESCAPE));
    TMessage Message{WM_GETDLGCODE, 0, 0, 0};
    Grid.WndProc(Message);
    EXPECT_EQ(Message.Result, 0x83);
}

TEST(GridKeys, EnterAndEscToggleTheEditor) {
    TKeyGrid Grid;
    char32_t Key = 13;
    Grid.KeyPress(Key);
    EXPECT_EQ(Key, 13u); // no editing
    Grid.SetOptions(Grid.GetOptions() + goEditing);
    Grid.KeyPress(Key);
    EXPECT_EQ(Key, 0u);
    EXPECT_TRUE(Grid.GetEditorMode());
    Key = 27;
    Grid.KeyPress(Key);
    EXPECT_FALSE(Grid.GetEditorMode());
    Grid.Press(VK_F2);
    EXPECT_TRUE(Grid.GetEditorMode());
    Grid.Press(VK_DOWN);
    EXPECT_FALSE(Grid.GetEditorMode()); // moving closes it
    TWMKey Char;
    Char.Msg = WM_CHAR;
    Char.CharCode = 9;
    Grid.WMChar(Char);
    EXPECT_FALSE(Grid.GetEditorMode());
    Char.CharCode = 'a';
    Grid.WMChar(Char);
    EXPECT_TRUE(Grid.GetEditorMode());
    Grid.DoExit();
    EXPECT_FALSE(Grid.GetEditorMode());
    Grid.SetOptions(Grid.GetOptions() + goAlwaysShowEditor);
    Key = 13;
    Grid.KeyPress(Key);
    EXPECT_EQ(Key, 13u);
    Grid.Press(VK_DOWN);
    EXPECT_TRUE(Grid.GetEditorMode());
    Grid.DoExit();
    EXPECT_TRUE(Grid.GetEditorMode());
}

TEST(GridKeys, TheEditorShowsOnlyWhereItMay) {
    TKeyGrid Grid;
    Grid.HasFocus = true;
    Grid.SetEditorMode(true);
    EXPECT_FALSE(Grid.CanEditShow());
    Grid.SetOptions(Grid.GetOptions() + goEditing);
    Grid.SetEditorMode(true);
    EXPECT_TRUE(Grid.CanEditShow());
    Grid.SetOptions(Grid.GetOptions() + goRowSelect);
    EXPECT_FALSE(Grid.CanEditShow());
    Grid.SetOptions(Grid.GetOptions() - goRowSelect);
    Grid.HasFocus = false;
    EXPECT_FALSE(Grid.CanEditShow());
    Grid.SetOptions(Grid.GetOptions() + goAlwaysShowEditor);
    EXPECT_TRUE(Grid.CanEditShow());
    Grid.SetDesigning(true);
    EXPECT_FALSE(Grid.CanEditShow());
}

// --- ranges ----------------------------------------------------------------------------------------------------

TEST(GridSelection, GoingBackShrinksARangeAgain) {
    TKeyGrid Grid;
    Grid.Focus(2, 3);
    const auto Walk = [&](std::initializer_list<std::uint16_t> Keys) {
        std::string Result;
        for (const std::uint16_t Key : Keys) {
            Grid.Press(Key, ssShift);
            Result += Show(Grid.GetSelection()) + " ";
        }
        return Result;
    };
    EXPECT_EQ(Walk({VK_DOWN, VK_DOWN, VK_UP, VK_UP, VK_UP}), "2,3..2,4 2,3..2,5 2,3..2,4 2,3..2,3 2,2..2,3 ");
    EXPECT_EQ(Walk({VK_DOWN, VK_RIGHT, VK_DOWN, VK_LEFT}), "2,3..2,3 2,3..3,3 2,3..3,4 2,3..2,4 ");
    // A jump to the other side grows the range and leaves its far edge.
    Grid.Focus(2, 5);
    Grid.FocusCell(3, 8, false, ssShift, swByMouse);
    EXPECT_EQ(Show(Grid.GetSelection()), "2,5..3,8");
    Grid.FocusCell(1, 3, false, ssShift, swByMouse);
    EXPECT_EQ(Show(Grid.GetSelection()), "1,3..3,8");
    Grid.FocusCell(2, 6, false, ssShift, swByMouse);
    EXPECT_EQ(Show(Grid.GetSelection()), "1,3..2,6");
}

TEST(GridSelection, TheAnchorTakesBothCornersAlong) {
    TKeyGrid Grid;
    Grid.Focus(2, 3);
    Grid.FocusCell(3, 4, false, ssShift, swByKeyBoard);
    Grid.MoveAnchor({4, 9});
    EXPECT_EQ(Grid.State(), "3,4 [4,9..4,9] @2,6");
    Grid.SetOptions(Grid.GetOptions() + goRowSelect);
    Grid.MoveAnchor({1, 10});
    EXPECT_EQ(Show(Grid.GetSelection()), "4,10..4,10");
    Grid.SetOptions(Grid.GetOptions() - goRowSelect + goEditing);
    Grid.MoveAnchor({2, 3});
    EXPECT_EQ(Grid.State(), "2,3 [2,3..2,3] @1,3");
}

TEST(GridSelection, SettingItMovesAnchorAndCurrentCell) {
    TKeyGrid Grid;
    Grid.Focus(3, 5);
    Grid.SetSelection({1, 2, 2, 3});
    EXPECT_EQ(Show(TGridCoord{Grid.GetCol(), Grid.GetRow()}), "2,3");
    EXPECT_EQ(Show(Grid.GetAnchor()), "1,2");
    EXPECT_EQ(Show(Grid.GetOppositeCorner()), "3,5"); // stays
    EXPECT_EQ(Show(Grid.GetSelection()), "1,2..3,5");
    Grid.ClearSelection();
    EXPECT_EQ(Show(Grid.GetSelection()), "-1,-1..-1,-1");
    EXPECT_FALSE(Grid.InSelection(2, 3));
    Grid.Press(VK_DOWN);
    EXPECT_TRUE(Grid.InSelection(2, 4));
    Grid.SetSelection({-5, 7, 900, 900});
    EXPECT_EQ(Show(Grid.GetAnchor()) + " " + Show(TGridCoord{Grid.GetCol(), Grid.GetRow()}), "0,7 4,19");
}

TEST(GridSelection, AnIndexOneBeyondTheLastPasses) {
    TKeyGrid Grid;
    EXPECT_NO_THROW(Grid.MoveCurrent(5, 1, true, true, {}, swNone));
    EXPECT_NO_THROW(Grid.MoveCurrent(1, 20, true, true, {}, swNone));
    const std::string Before = Grid.State();
    for (const TGridCoord Cell : {TGridCoord{6, 1}, TGridCoord{1, 21}, TGridCoord{-1, 1}, TGridCoord{1, -1}})
        EXPECT_THROW(Grid.MoveCurrent(Cell.X, Cell.Y, true, true, {}, swNone), EInvalidGridOperation)
            << Show(Cell);
    EXPECT_EQ(Grid.State(), Before);
    try {
        Grid.MoveColRow(1, 21, true, true);
    } catch (const EInvalidGridOperation& E) {
        EXPECT_EQ(E.GetMessage(), "Grid index out of range (21)");
    }
}

TEST(GridSelection, ARefusedCellChangesNothing) {
    TKeyGrid Grid;
    Grid.Focus(2, 3);
    int Asked = 0;
    Grid.OnSelectCell = [&](TObject* Sender, int Col, int Row, bool& CanSelect) {
        EXPECT_EQ(Sender, &Grid);
        ++Asked;
        CanSelect = Col != 3 && Row != 6;
    };
    Grid.Press(VK_RIGHT);
    EXPECT_EQ(Grid.State(), "2,3 [2,3..2,3] @1,1");
    Grid.SetRow(6);
    EXPECT_EQ(Grid.GetRow(), 3);
    Grid.SetRow(5);
    EXPECT_EQ(Grid.GetRow(), 5);
    Grid.SetRow(-1); // ignored without asking
    EXPECT_EQ(Asked, 3);
    EXPECT_THROW(Grid.SetCol(-1), EInvalidGridOperation);
}

TEST(GridSelection, RowSelectionSpansTheScrollableColumns) {
    TKeyGrid Grid;
    Grid.SetOptions(Grid.GetOptions() + goRowSelect);
    EXPECT_EQ(Grid.State(), "1,1 [1,1..4,1] @1,1");
    Grid.Focus(3, 5);
    EXPECT_EQ(Grid.State(), "1,5 [1,5..4,5] @1,2");
    Grid.SetColCount(7);
    EXPECT_EQ(Show(Grid.GetSelection()), "1,5..6,5");
    Grid.Initialize(); // both corners in the last column, until the current cell moves
    EXPECT_EQ(Grid.State(), "1,1 [6,1..6,1] @1,1");
    Grid.Press(VK_DOWN, ssShift);
    EXPECT_EQ(Grid.State(), "1,2 [1,1..6,2] @1,1");
}

TEST(GridSelection, TheViewFollowsTheCurrentCell) {
    TKeyGrid Grid;
    struct TCase {
        TGridCoord Cell;
        TGridCoord Origin;
    };
    const TCase Cases[] = {{{1, 10}, {1, 7}}, {{4, 10}, {2, 7}},  {{4, 3}, {2, 3}},
                           {{1, 5}, {1, 3}},  {{1, 19}, {1, 16}}, {{3, 1}, {1, 1}}};
    for (const TCase& Case : Cases) {
        Grid.Focus(Case.Cell.X, Case.Cell.Y);
        EXPECT_EQ(Show(TGridCoord{Grid.GetLeftCol(), Grid.GetTopRow()}), Show(Case.Origin))
            << Show(Case.Cell);
    }
    Grid.MoveColRow(1, 15, true, false); // not to be shown
    EXPECT_EQ(Grid.GetTopRow(), 1);
    Grid.Focus(0, 0); // fixed cells are in view anyway
    EXPECT_EQ(Grid.State(), "0,0 [0,0..0,0] @1,1");
}

} // namespace
} // namespace quill::testing
