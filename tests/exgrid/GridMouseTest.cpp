#include "tests/exgrid/GridTestSupport.h"

namespace quill::testing {
namespace {

class TMouseGrid : public TTestGrid {
public:
    explicit TMouseGrid(TGridOptions Add = {}, TGridOptions Remove = {}) : TTestGrid(304, 124, 5, 20) {
        SetFixedCols(1);
        SetOptions(GetOptions() + Add - Remove);
        HasFocus = true;
    }
    bool HitAllowed = true;
    bool MouseHit(int, int) override { return HitAllowed; }
};

TEST(GridMouse, APressSelectsItsCell) {
    const struct {
        const char* What;
        int X;
        int Y;
        TShiftState Shift;
        const char* State;
    } Cases[] = {
        {"a cell", 160, 60, {}, "2,2 [2,2..2,2] @1,1"},
        {"its line", 227, 74, {}, "2,2 [2,2..2,2] @1,1"},
        {"a partly visible row", 160, 123, {}, "2,4 [2,4..2,4] @1,1"},
        {"a fixed column", 10, 60, {}, "1,1 [1,1..1,1] @1,1"},
        {"a fixed row", 160, 10, {}, "1,1 [1,1..1,1] @1,1"},
        {"with shift", 160, 60, ssShift, "2,2 [1,1..2,2] @1,1"},
        {"with ctrl", 160, 60, ssCtrl, "2,2 [1,1..2,2] @1,1"},
    };
    for (const auto& Case : Cases) {
        TMouseGrid Grid;
        std::string Seen;
        Grid.OnMouseDown = [&](TObject*, TMouseButton, TShiftState, int, int) { Seen = Grid.State(); };
        Grid.Down(Case.X, Case.Y, Case.Shift);
        EXPECT_EQ(Grid.GetHittest(), (TPoint{Case.X, Case.Y}));
        Grid.Up(Case.X, Case.Y);
        EXPECT_EQ(Seen, Case.State) << Case.What << ": the handler sees the new cell";
        EXPECT_EQ(Grid.State(), Case.State) << Case.What;
        EXPECT_EQ(Grid.GetGridState(), gsNormal) << Case.What;
    }
}

TEST(GridMouse, APressThatDoesNotCountChangesNothing) {
    void (*const Ways[])(TMouseGrid&) = {[](TMouseGrid& Grid) { Grid.HitAllowed = false; },
                                         [](TMouseGrid& Grid) { Grid.SetSkipPress(true); },
                                         [](TMouseGrid& Grid) { Grid.SetDesigning(true); }};
    for (const auto& Prepare : Ways) {
        TMouseGrid Grid;
        const std::string Before = Grid.State();
        int Presses = 0;
        Grid.OnMouseDown = [&](TObject*, TMouseButton, TShiftState, int, int) { ++Presses; };
        Grid.MouseDown(mbRight, ssRight, 160, 60);
        Prepare(Grid);
        Grid.Down(160, 60);
        EXPECT_EQ(Grid.State(), Before);
        EXPECT_EQ(Grid.GetGridState(), gsNormal);
        EXPECT_EQ(Presses, 2) << "the handler hears of all of them";
    }
}

TEST(GridMouse, ADragDrawsARangeFromItsFirstCell) {
    TMouseGrid Grid;
    Grid.Down(160, 60);
    EXPECT_EQ(Grid.GetGridState(), gsSelecting);
    EXPECT_TRUE(Grid.HasTimer(TCustomExGrid::ScrollTimerID));
    std::string Seen;
    // On, over to the other side, into the fixed zone (no cell), and back.
    for (const TPoint To : {TPoint{240, 90}, TPoint{90, 30}, TPoint{10, 30}, TPoint{160, 90}}) {
        Grid.Move(To.X, To.Y);
        Seen += Grid.State() + "\n";
    }
    EXPECT_EQ(Seen, "2,2 [2,2..3,3] @1,1\n2,2 [1,1..2,2] @1,1\n2,2 [1,1..2,2] @1,1\n2,2 [2,2..2,3] @1,1\n");
    Grid.Up(160, 90);
    EXPECT_FALSE(Grid.HasTimer(TCustomExGrid::ScrollTimerID));
    Grid.Move(240, 30, {});
    EXPECT_EQ(Grid.State(), "2,2 [2,2..2,3] @1,1");
    // With Shift the corner that was there stays.
    Grid.Down(240, 90, ssShift);
    Grid.Move(90, 60);
    EXPECT_EQ(Show(Grid.GetSelection()), "1,2..2,3");
}

TEST(GridMouse, OptionsDecideWhatADragMarks) {
    TMouseGrid Rows(goRowSelect);
    TMouseGrid Plain({}, goRangeSelect);
    TMouseGrid Editing(goEditing);
    for (TMouseGrid* Grid : {&Rows, &Plain, &Editing}) {
        Grid->Down(160, 60);
        Grid->Move(240, 90);
    }
    EXPECT_EQ(Plain.State(), "2,2 [2,2..2,2] @1,1");
    EXPECT_EQ(Editing.State(), "3,3 [3,3..3,3] @1,1") << "the current cell follows";
    EXPECT_EQ(Rows.State(), "1,2 [1,2..4,3] @1,1");
    Rows.Tick(160, 500, 2);
    EXPECT_EQ(Rows.State(), "1,2 [1,2..4,5] @1,2");
}

TEST(GridMouse, ADragPastTheEdgeScrollsWithTheTimer) {
    TMouseGrid Grid;
    const auto Ticks = [&](int X, int Y, int Count) {
        Grid.Tick(X, Y, Count);
        return Grid.State();
    };
    Grid.Down(160, 60);
    EXPECT_EQ(Ticks(160, 60, 2), "2,2 [2,2..2,2] @1,1"); // inside
    EXPECT_EQ(Ticks(160, 300, 4), "2,2 [2,2..2,6] @1,3");
    EXPECT_EQ(Ticks(500, 300, 3), "2,2 [2,2..4,9] @2,6");
    EXPECT_EQ(Ticks(160, 5, 20), "2,2 [2,1..4,2] @2,1");
    EXPECT_EQ(Ticks(10, 60, 20), "2,2 [1,1..2,2] @1,1");
    Grid.Up(10, 60);
    EXPECT_EQ(Ticks(500, 500, 2), "2,2 [1,1..2,2] @1,1");
    // Mirrored it scrolls the other way.
    Grid.SetBiDiMode(bdRightToLeft);
    Grid.Down(144, 60);
    EXPECT_EQ(Ticks(-50, 60, 2), "2,2 [2,2..4,2] @2,1");
    EXPECT_EQ(Ticks(300, 60, 5), "2,2 [1,2..2,2] @1,1");
}

TEST(GridMouse, ADragEndsWhenItIsCancelledOrTheReleaseIsMissed) {
    const std::pair<const char*, void (*)(TMouseGrid&)> Ways[] = {
        {"the window's cancel", [](TMouseGrid& Grid) { Grid.Perform(WM_CANCELMODE, 0, 0); }},
        {"the control's cancel", [](TMouseGrid& Grid) { Grid.Perform(CM_CANCELMODE, 0, 0); }},
        {"a move without a button", [](TMouseGrid& Grid) { Grid.Move(240, 90, {}); }},
        {"a new window", [](TMouseGrid& Grid) { Grid.RecreateWnd(); }},
    };
    for (const auto& [Name, End] : Ways) {
        TMouseGrid Grid;
        Grid.Down(160, 60);
        End(Grid);
        EXPECT_EQ(Grid.GetGridState(), gsNormal) << Name;
        EXPECT_FALSE(Grid.HasTimer(TCustomExGrid::ScrollTimerID)) << Name;
        EXPECT_EQ(Grid.State(), "2,2 [2,2..2,2] @1,1") << Name;
    }
}

TEST(GridMouse, AClickOnTheCurrentCellOpensTheEditor) {
    TMouseGrid Grid(goEditing);
    const auto Click = [&](TShiftState Shift = {}) {
        Grid.SetEditorMode(false);
        Grid.Down(160, 60, Shift);
        Grid.Up(160, 60, Shift);
        return Grid.GetEditorMode();
    };
    EXPECT_FALSE(Click());
    EXPECT_TRUE(Click());
    EXPECT_FALSE(Click(ssCtrl));
    Grid.SetPlainClick(false);
    EXPECT_FALSE(Click());
    Grid.SetPlainClick(true);
    Grid.Drag(160, 60, 240, 60);
    EXPECT_FALSE(Grid.GetEditorMode()); // a drag is no click
    Grid.SetOptions(Grid.GetOptions() - goEditing);
    EXPECT_FALSE(Click());
}

} // namespace
} // namespace quill::testing
