// Selection and keyboard.
#include "tests/exgrid/GridTestSupport.h"

#include <QKeySequence>
#include <QTest>

#include <utility>

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
    // The cell is current, and the view as far up and left as it shows it.
    void Start(const TGridCoord& Cell) {
        Focus(Cell.X, Cell.Y);
        MoveTopLeft(1, 1);
        ClampInView({GetCol(), GetRow()});
        Appended = 0;
    }
    std::string Place() const {
        return Show(TGridCoord{GetCol(), GetRow()}) + "@" + Show(TGridCoord{GetLeftCol(), GetTopRow()}) +
               (Appended != 0 ? "+" : "");
    }
};

// Every key, from real key events on a shown window: where the current cell and the origin are afterwards, "+" when a
// row was asked for. The columns of the table: left-to-right and right-to-left; the same with goRowSelect.
TEST(GridKeys, MoveTheCurrentCell) {
    const Qt::KeyboardModifiers None, Shift = Qt::ShiftModifier, Alt = Qt::AltModifier;
    struct {
        Qt::Key Key;
        Qt::KeyboardModifiers Modifiers;
        TGridCoord From;
        const char* Cells;
        const char* CellsMirrored;
        const char* Rows;
        const char* RowsMirrored;
    } const Cases[] = {
        {Qt::Key_Up, None, {2, 3}, "2,2@1,1", "2,2@1,1", "1,2@1,1", "1,2@1,1"},
        {Qt::Key_Up, None, {2, 1}, "2,1@1,1", "2,1@1,1", "1,1@1,1", "1,1@1,1"},
        {Qt::Key_Down, None, {2, 4}, "2,5@1,2", "2,5@1,2", "1,5@1,2", "1,5@1,2"},
        {Qt::Key_Down, None, {2, 19}, "2,19@1,16+", "2,19@1,16+", "1,19@1,16+", "1,19@1,16+"},
        {Qt::Key_Left, None, {2, 3}, "1,3@1,1", "3,3@1,1", "1,2@1,1", "1,4@1,1"},
        {Qt::Key_Left, None, {1, 3}, "1,3@1,1", "2,3@1,1", "1,2@1,1", "1,4@1,1"},
        {Qt::Key_Left, None, {4, 19}, "3,19@2,16", "4,19@2,16+", "1,18@1,16", "1,19@1,16+"},
        {Qt::Key_Right, None, {3, 3}, "4,3@2,1", "2,3@1,1", "1,4@1,1", "1,2@1,1"},
        {Qt::Key_Right, None, {4, 19}, "4,19@2,16+", "3,19@2,16", "1,19@1,16+", "1,18@1,16"},
        {Qt::Key_PageDown, None, {2, 2}, "2,5@1,4", "2,5@1,4", "1,5@1,4", "1,5@1,4"},
        {Qt::Key_PageUp, None, {2, 19}, "2,16@1,13", "2,16@1,13", "1,16@1,13", "1,16@1,13"},
        {Qt::Key_PageUp, None, {2, 2}, "2,1@1,1", "2,1@1,1", "1,1@1,1", "1,1@1,1"},
        {Qt::Key_Home, None, {3, 5}, "1,5@1,2", "1,5@1,2", "1,1@1,1", "1,1@1,1"},
        {Qt::Key_Home, None, {1, 5}, "1,1@1,1", "1,1@1,1", "1,1@1,1", "1,1@1,1"},
        {Qt::Key_End, None, {2, 5}, "4,5@2,2", "4,5@2,2", "1,19@1,16", "1,19@1,16"},
        {Qt::Key_End, None, {4, 5}, "4,19@2,16", "4,19@2,16", "1,19@1,16", "1,19@1,16"},
        {Qt::Key_End, None, {4, 19}, "4,19@2,16+", "4,19@2,16+", "1,19@1,16+", "1,19@1,16+"},
        {Qt::Key_Tab, None, {2, 3}, "3,3@1,1", "3,3@1,1", "1,3@1,1", "1,3@1,1"},
        {Qt::Key_Tab, None, {4, 3}, "1,4@1,1", "1,4@1,1", "1,3@1,1", "1,3@1,1"},
        {Qt::Key_Tab, None, {4, 19}, "1,1@1,1", "1,1@1,1", "1,19@1,16", "1,19@1,16"},
        {Qt::Key_Backtab, Shift, {2, 3}, "1,3@1,1", "1,3@1,1", "1,2@1,1", "1,2@1,1"},
        {Qt::Key_Backtab, Shift, {1, 1}, "4,19@2,16", "4,19@2,16", "1,19@1,16", "1,19@1,16"},
        {Qt::Key_Tab, Alt, {2, 19}, "2,19@1,16", "2,19@1,16", "1,19@1,16", "1,19@1,16"},
        {Qt::Key_A, None, {2, 19}, "2,19@1,16", "2,19@1,16", "1,19@1,16", "1,19@1,16"},
    };
    for (const bool Mirrored : {false, true}) {
        for (const bool Rows : {false, true}) {
            TKeyGrid Grid;
            Grid.SetBiDiMode(Mirrored ? bdRightToLeft : bdLeftToRight);
            Grid.SetOptions(Grid.GetOptions() + goTabs + (Rows ? TGridOptions(goRowSelect) : TGridOptions()));
            Grid.show();
            ASSERT_TRUE(QTest::qWaitForWindowActive(&Grid));
            for (const auto& Case : Cases) {
                Grid.Start(Case.From);
                QTest::keyClick(&Grid, Case.Key, Case.Modifiers);
                EXPECT_EQ(Grid.Place(), Rows       ? Mirrored ? Case.RowsMirrored : Case.Rows
                                        : Mirrored ? Case.CellsMirrored
                                                   : Case.Cells)
                    << QKeySequence(Case.Key).toString().toStdString() << " from " << Show(Case.From)
                    << (Rows ? ", rows" : "") << (Mirrored ? ", mirrored" : "");
            }
        }
    }
}

TEST(GridKeys, TabGoesOnlyWhereItMayAndEndsWithoutStops) {
    TKeyGrid Grid;
    Grid.Start({1, 3});
    Grid.SetTabStops(2, false);
    Grid.Press(VK_TAB);
    EXPECT_EQ(Grid.Place(), "3,3@1,1");
    for (const int Col : {1, 4, 3}) {
        Grid.SetTabStops(Col, false);
        Grid.Press(VK_TAB, ssShift);
        EXPECT_EQ(Grid.Place(), Col == 1 ? "4,2@2,1" : "3,3@1,1");
        Grid.Start({3, 3});
    }
    // The walk cannot come back to a current cell outside the scrollable columns.
    for (const int Col : {0, 5}) {
        Grid.MoveColRow(Col, 3, true, false);
        Grid.Press(VK_TAB, ssShift);
        EXPECT_EQ(Grid.GetRow(), 3);
    }
}

// Rows without height, and rows that no window is high enough for: each key and each line step gets on.
TEST(GridKeys, EveryRowIsReached) {
    for (const int Height : {0, 1, 60, 250}) {
        TTestGrid Grid(100, Height, 3, 40);
        Grid.SetScrollBars(ssBoth);
        const int Heights[] = {24, 0, 0, 300, 24, 10000};
        for (int Row = 1; Row < 40; ++Row) Grid.SetRowHeights(Row, Heights[Row % 6]);
        Grid.SetColWidths(0, 10000);
        Grid.SetColWidths(1, 0);
        if (Height == 0) Grid.SetBounds(0, 0, 0, 0);
        for (int Row = 1; Row < 40; ++Row) {
            ASSERT_EQ(Grid.GetRow(), Row);
            EXPECT_GE(Grid.CellRect(0, Row).Height(), std::min(Height - 50, Grid.GetRowHeights(Row))) << Row;
            Grid.Press(VK_DOWN);
        }
        const auto Scroll = [&](unsigned Code) {
            for (int Step = 0; Step < 40; ++Step) Grid.ModifyScrollBar(SB_VERT, Code, 0, false);
            return Grid.GetTopRow();
        };
        Grid.SetTopRow(1);
        const int Last = Scroll(SB_LINEDOWN);
        EXPECT_GE(Last, 35);
        EXPECT_EQ(Scroll(SB_PAGEUP), 1);
        EXPECT_EQ(Scroll(SB_PAGEDOWN), Last);
        for (int Step = 0; Step < 40; ++Step) Grid.Press(VK_PRIOR);
        EXPECT_EQ(Grid.GetRow(), 1);
    }
}

TEST(GridKeys, AskedForDependOnTheEditor) {
    TKeyGrid Grid;
    Grid.HasFocus = true;
    Grid.SetOptions(Grid.GetOptions() + goTabs);
    const auto Type =
        [&](char32_t Key) { // whether it was used, the editor is on, and which keys the grid wants
            Grid.KeyPress(Key);
            std::string Result =
                (Key == 0 ? "used " : "left ") + std::string(Grid.GetEditorMode() ? "on " : "off ");
            for (const char32_t Special : {VK_DOWN, VK_TAB, VK_RETURN, VK_ESCAPE})
                Result += Grid.Perform(CM_WANTSPECIALKEY, Special, 0) != 0 ? '1' : '0';
            return Result;
        };
    EXPECT_EQ(Type(13), "left off 1100") << "without editing";
    Grid.SetOptions(Grid.GetOptions() + goEditing);
    EXPECT_EQ(Type(13), "used on 1111");
    EXPECT_EQ(Type(27), "used off 1110");
    for (const bool Always : {false, true}) {
        if (Always) Grid.SetOptions(Grid.GetOptions() + goAlwaysShowEditor);
        Grid.Perform(WM_CHAR, 'a', 0);
        EXPECT_TRUE(Grid.GetEditorMode());
        Grid.Press(VK_DOWN);
        EXPECT_EQ(Grid.GetEditorMode(), Always) << "moving closes it";
        Grid.Press(VK_F2);
        Grid.DoExit();
        EXPECT_EQ(Grid.GetEditorMode(), Always) << "so does leaving";
    }
}

// --- ranges ----------------------------------------------------------------------------------------------------

TEST(GridSelection, GoingBackShrinksARangeAgain) {
    TKeyGrid Grid;
    Grid.Focus(2, 3);
    std::string Walked;
    for (const std::uint16_t Key : {VK_DOWN, VK_DOWN, VK_UP, VK_UP, VK_UP, VK_RIGHT, VK_LEFT}) {
        Grid.Press(Key, ssShift);
        Walked += Show(Grid.GetSelection()) + " ";
    }
    EXPECT_EQ(Walked, "2,3..2,4 2,3..2,5 2,3..2,4 2,3..2,3 2,2..2,3 2,2..3,3 2,2..2,3 ");
    // A jump to the other side grows the range and leaves its far edge.
    Grid.Focus(2, 5);
    std::string Reached;
    for (const TGridCoord Cell : {TGridCoord{3, 8}, TGridCoord{1, 3}, TGridCoord{2, 6}}) {
        Grid.FocusCell(Cell.X, Cell.Y, false, ssShift, swByMouse);
        Reached += Show(Grid.GetSelection()) + " ";
    }
    EXPECT_EQ(Reached, "2,5..3,8 1,3..3,8 1,3..2,6 ");
}

TEST(GridSelection, SettingItMovesAnchorAndCurrentCell) {
    TKeyGrid Grid;
    Grid.Focus(3, 5);
    Grid.SetSelection({1, 2, 2, 3});
    EXPECT_EQ(Grid.State(), "2,3 [1,2..3,5] @1,2");
    EXPECT_EQ(Show(Grid.GetAnchor()) + " " + Show(Grid.GetOppositeCorner()), "1,2 3,5") << "the latter stays";
    Grid.ClearSelection();
    EXPECT_EQ(Show(Grid.GetSelection()), "-1,-1..-1,-1");
    Grid.SetSelection({-5, 7, 900, 900});
    EXPECT_EQ(Show(Grid.GetAnchor()) + " " + Show(TGridCoord{Grid.GetCol(), Grid.GetRow()}), "0,7 4,19");
}

TEST(GridSelection, AnIndexOneBeyondTheLastPasses) {
    TKeyGrid Grid;
    EXPECT_NO_THROW(Grid.MoveCurrent(5, 1, true, true, {}, swNone));
    EXPECT_NO_THROW(Grid.MoveCurrent(1, 20, true, true, {}, swNone));
    for (const TGridCoord Cell : {TGridCoord{6, 1}, TGridCoord{1, 21}, TGridCoord{-1, 1}, TGridCoord{1, -1}})
        EXPECT_THROW(Grid.MoveCurrent(Cell.X, Cell.Y, true, true, {}, swNone), EInvalidGridOperation);
}

TEST(GridSelection, ARefusedCellChangesNothing) {
    TKeyGrid Grid;
    Grid.Focus(2, 3);
    int Asked = 0;
    Grid.OnSelectCell = [&](TObject*, int Col, int Row, bool& CanSelect) {
        ++Asked;
        CanSelect = Col != 3 && Row != 6;
    };
    Grid.Press(VK_RIGHT);
    Grid.SetRow(6);
    EXPECT_EQ(Grid.State(), "2,3 [2,3..2,3] @1,1");
    Grid.SetRow(5);
    EXPECT_EQ(Grid.GetRow(), 5);
    Grid.SetRow(-1); // ignored without asking
    EXPECT_EQ(Asked, 3);
}

// What is pending is painted before the view moves, and a handler may scroll then.
TEST(GridSelection, TheCurrentCellComesIntoViewThoughAPaintHandlerScrolls) {
    TKeyGrid Grid;
    const auto ScrollWhenPainted = [&](int Row) {
        bool Done = false;
        Grid.OnDrawCell = [=, &Grid](TObject*, TCanvas&, int, int, TRect, TExGridDrawState) mutable {
            if (!std::exchange(Done, true)) Grid.SetTopRow(Row);
        };
        Grid.Invalidate();
    };
    ScrollWhenPainted(9);
    Grid.Focus(4, 18);
    EXPECT_EQ(Grid.Place(), "4,18@2,15");
    Grid.MoveColRow(1, 2, true, false); // not to be shown
    EXPECT_EQ(Grid.GetTopRow(), 15);
    int Reports = 0;
    Grid.OnTopLeftChanged = [&](TObject*) { ++Reports; };
    ScrollWhenPainted(4);
    Grid.SetTopRow(4);
    EXPECT_EQ(Reports, 1) << "it was there already";
}

} // namespace
} // namespace quill::testing
