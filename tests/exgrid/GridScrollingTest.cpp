#include "tests/exgrid/GridTestSupport.h"

namespace quill::testing {
namespace {

std::string Origin(const TTestGrid& Grid) { return Show(TGridCoord{Grid.GetLeftCol(), Grid.GetTopRow()}); }

// The bar's range, position and presence: "0..127 at 30" or "hidden".
std::string Bar(const TTestGrid& Grid, int Which) {
    int Min = 0;
    int Max = 0;
    Grid.GetScrollRange(Which, Min, Max);
    if (!Grid.IsScrollBarShown(Which)) return Min == 0 && Max == 0 ? "hidden" : "hidden with a range";
    return std::to_string(Min) + ".." + std::to_string(Max) + " at " +
           std::to_string(Grid.GetScrollPos(Which));
}

TEST(GridScrolling, RequestsMoveTheOrigin) {
    // 3 of 10 columns and 4 of 99 scrollable rows fit; the last origin is (7, 96).
    TTestGrid Grid(228, 124, 10, 100);
    const std::tuple<const char*, unsigned, unsigned, TGridCoord, const char*> Cases[] = {
        {"line down", SB_LINEDOWN, 0, {0, 5}, "0,6"},
        {"page down", SB_PAGEDOWN, 0, {0, 5}, "0,8"},
        {"page up", SB_PAGEUP, 0, {0, 8}, "0,5"},
        {"page up near the top", SB_PAGEUP, 0, {0, 3}, "0,1"},
        {"thumb at the end", SB_THUMBPOSITION, 127, {0, 5}, "0,96"},
        {"thumb beyond the scale", SB_THUMBPOSITION, 4000000000u, {0, 5}, "0,96"},
        {"thumb on its way", SB_THUMBTRACK, 64, {0, 5}, "0,5"},
        {"bottom", SB_BOTTOM, 0, {3, 50}, "3,96"},
        {"end of scrolling", SB_ENDSCROLL, 0, {3, 50}, "3,50"},
    };
    for (const auto& [What, Code, Pos, From, To] : Cases) {
        Grid.MoveTopLeft(From.X, From.Y);
        Grid.ModifyScrollBar(SB_VERT, Code, Pos, true);
        EXPECT_EQ(Origin(Grid), To) << What;
        EXPECT_FALSE(Grid.GetScrolling());
    }
    Grid.MoveTopLeft(0, 5);
    Grid.SetOptions(Grid.GetOptions() + goThumbTracking);
    Grid.Perform(WM_VSCROLL, SB_THUMBTRACK, 64);
    EXPECT_EQ(Origin(Grid), "0,49");
    Grid.SetBiDiMode(bdRightToLeft);
    Grid.Perform(WM_HSCROLL, SB_LINEUP, 0); // to the left is forward
    EXPECT_EQ(Origin(Grid), "1,49");
    Grid.Perform(WM_HSCROLL, SB_THUMBPOSITION, 0);
    EXPECT_EQ(Origin(Grid), "7,49");
    Grid.Perform(WM_VSCROLL, SB_LINEDOWN, 0); // vertically nothing is mirrored
    EXPECT_EQ(Origin(Grid), "7,50");
}

TEST(GridScrolling, StepsPassOverHiddenRowsAndColumns) {
    TTestGrid Grid(228, 124, 10, 30);
    for (const int Row : {3, 4, 5, 6, 7, 15}) Grid.SetRowHeights(Row, 0);
    for (const int Col : {1, 2}) Grid.SetColWidths(Col, 0);
    const auto Step = [&](int Which, unsigned Code) {
        Grid.ModifyScrollBar(Which, Code, 0, false);
        return Origin(Grid);
    };
    Grid.MoveTopLeft(0, 2);
    EXPECT_EQ(Step(SB_VERT, SB_LINEDOWN), "0,8");
    EXPECT_EQ(Step(SB_VERT, SB_LINEUP), "0,2");
    EXPECT_EQ(Step(SB_HORZ, SB_LINEDOWN), "3,2");
    Grid.MoveTopLeft(0, 12);
    EXPECT_EQ(Step(SB_VERT, SB_PAGEDOWN), "0,16") << "on to the next row, not by another page";
}

TEST(GridScrolling, AnOnlyColumnScrollsByPixels) {
    TTestGrid Grid(100, 124, 1, 3);
    Grid.SetColWidths(0, 350);
    const auto Do = [&](unsigned Code, unsigned Pos = 0) {
        Grid.Perform(WM_HSCROLL, Code, static_cast<std::intptr_t>(Pos));
        return Grid.GetHOffset();
    };
    const int Line = Grid.GetCanvas()->TextWidth("0");
    EXPECT_EQ(Do(SB_LINEDOWN), Line);
    EXPECT_EQ(Do(SB_LINEUP), 0);
    EXPECT_EQ(Do(SB_THUMBPOSITION, 180), 180);
    EXPECT_EQ(Do(SB_THUMBTRACK, 30), 180);
    EXPECT_EQ(Do(SB_PAGEDOWN), 250);
    EXPECT_EQ(Do(SB_BOTTOM), 0); // the ends are exchanged in this mode
    EXPECT_EQ(Do(SB_TOP), 250);
    // The cell begins left of the client, and the geometry stays where it is.
    EXPECT_EQ(Show(Grid.CellRect(0, 1)), "0,25,100,49");
    // No further than its width asks for, and the bar counts the same pixels.
    Grid.SetScrollBars(ssHorizontal);
    EXPECT_EQ(Bar(Grid, SB_HORZ), "0..250 at 250");
    Grid.SetColWidths(0, 220);
    EXPECT_EQ(Bar(Grid, SB_HORZ), "0..120 at 120");
    Grid.SetClientSize(180, 124);
    EXPECT_EQ(Bar(Grid, SB_HORZ), "0..40 at 40");
    Grid.SetColWidths(0, 170);
    EXPECT_EQ(Bar(Grid, SB_HORZ), "hidden");
    Grid.SetColWidths(0, 220);
    Grid.SetBiDiMode(bdRightToLeft);
    EXPECT_EQ(Do(SB_THUMBPOSITION, 5), 35);
    EXPECT_EQ(Do(SB_LINEDOWN), std::max(0, 35 - Line));
    Grid.SetColCount(2);
    EXPECT_EQ(Grid.GetHOffset(), 0);
}

TEST(GridScrolling, BarsFollowSizeAndOrigin) {
    TTestGrid Grid(400, 300, 4, 5);
    const auto Bars = [&] { return Bar(Grid, SB_HORZ) + ", " + Bar(Grid, SB_VERT); };
    Grid.SetScrollBars(ssBoth);
    EXPECT_EQ(Bars(), "hidden, hidden");
    Grid.SetRowCount(100);
    EXPECT_EQ(Bars(), "hidden, 0..127 at 0");
    const int Thickness = Grid.GetScrollBarSize(SB_VERT);
    EXPECT_EQ(Grid.GetClientWidth(), 400 - Thickness);
    Grid.SetTopRow(45); // last origin is 89: 11 rows fit
    EXPECT_EQ(Bar(Grid, SB_VERT), "0..127 at 64");
    Grid.ModifyScrollBar(SB_VERT, SB_BOTTOM, 0, false);
    // The vertical bar takes the room that the last column needs.
    Grid.SetDefaultColWidth((401 - Thickness) / 4 - 1);
    EXPECT_EQ(Bars(), "hidden, 0..127 at 127");
    Grid.SetDefaultColWidth(99);
    EXPECT_EQ(Bar(Grid, SB_HORZ), "0..127 at 0");
    Grid.SetRowCount(5);
    EXPECT_EQ(Bars(), "hidden, hidden");
    EXPECT_EQ(Grid.GetTopRow(), 1); // the origin goes back with the rows
    Grid.SetScrollBars(ssVertical);
    Grid.SetColCount(50);
    EXPECT_EQ(Bars(), "hidden, hidden");
    Grid.SetScrollBars(ssHorizontal);
    Grid.SetRowCount(500);
    EXPECT_EQ(Bars(), "0..127 at 0, hidden");
    Grid.SetBiDiMode(bdRightToLeft);
    EXPECT_EQ(Bar(Grid, SB_HORZ), "0..127 at 127");
}

TEST(GridScrolling, TheWheelScrollsOrMoves) {
    TTestGrid Grid(228, 124, 3, 20);
    const auto Wheel = [&](int Delta, TShiftState Shift) { // the current row and the top one
        EXPECT_NE(Grid.Perform(WM_MOUSEWHEEL, MakeWheelParam(Delta, Shift), 0), 0);
        return Show(TGridCoord{Grid.GetRow(), Grid.GetTopRow()});
    };
    EXPECT_EQ(Wheel(-120, {}), "1,2");
    EXPECT_EQ(Wheel(-120, ssCtrl), "1,5");
    EXPECT_EQ(Wheel(120, ssCtrl), "1,2");
    EXPECT_EQ(Wheel(120, {}), "1,1");
    EXPECT_EQ(Wheel(120, {}), "1,1") << "used though there is nothing more";
    EXPECT_EQ(Wheel(-120, ssShift), "2,1");
    EXPECT_EQ(Wheel(240, ssShift), "1,1") << "at the first row the view";
    Grid.Focus(0, 19);
    Grid.SetTopRow(5);
    EXPECT_EQ(Wheel(-120, ssShift), "19,6");
    Grid.OnMouseWheelDown = [](TObject*, TShiftState, TPoint, bool& Handled) { Handled = true; };
    EXPECT_EQ(Wheel(-120, {}), "19,6");
}

TEST(GridScrolling, OnlyTheStripThatAppearsIsPainted) {
    TTestGrid Grid(228, 250, 3, 100);
    const auto Painted = [&](auto Change) {
        Grid.Update();
        const std::uint64_t Before = Grid.GetPaintedPixels();
        Change();
        Grid.Update();
        return static_cast<int>(Grid.GetPaintedPixels() - Before) / 228; // rows of pixels
    };
    Grid.MoveColRow(0, 99, true, false); // the selection is out of the way
    EXPECT_EQ(Painted([&] { Grid.SetTopRow(2); }), 25);
    EXPECT_EQ(Painted([&] { Grid.SetTopRow(5); }), 75);
    EXPECT_EQ(Painted([&] { Grid.SetTopRow(50); }), 250);
    EXPECT_EQ(Painted([&] { Grid.SetRowCount(101); }), 0);
    Grid.SetTopRow(96);
    EXPECT_EQ(Painted([&] { Grid.SetRowCount(102); }), 250 - 6 * 25);
}

TEST(GridScrolling, BarsTakeTheirStyleWhileTheGridLives) {
    TTestGrid Grid(200, 100, 3, 50);
    Grid.SetScrollBars(ssBoth);
    Grid.SetScrollBarsStyle(sbsEncarta);
    EXPECT_EQ(Grid.GetScrollBarLook(), sblEncarta);
    EXPECT_EQ(Grid.GetClientWidth(), 200 - Grid.GetScrollBarSize(SB_VERT));
    Grid.SetBiDiMode(bdRightToLeft); // the bars of a mirrored grid are the platform's
    EXPECT_EQ(Grid.GetScrollBarLook(), sblRegular);
}

// What a walk over all cells costs is counted: a walk for each cell of it would never end.
TEST(GridScrolling, CellsWithoutExtentAreNoHang) {
    TTestGrid Wide(400, 300, 3, 20);
    Wide.SetScrollBars(ssBoth);
    Wide.SetOptions(Wide.GetOptions() - TGridOptions{goVertLine, goFixedVertLine});
    Wide.SetDefaultColWidth(0);
    Wide.SetColCount(1000000);
    Wide.WidthCalls = 0;
    Wide.SetRowCount(500);
    Wide.Press(VK_NEXT);
    Wide.Press(VK_END);
    EXPECT_LT(Wide.WidthCalls, 40 * 1000000);
    EXPECT_EQ(Wide.GetCol(), 999999);

    TTestGrid Flat(200, 100, 1, 20);
    Flat.SetOptions(Flat.GetOptions() - TGridOptions{goHorzLine, goFixedHorzLine});
    Flat.SetDefaultRowHeight(0);
    Flat.SetRowCount(100000);
    Flat.HeightCalls = 0;
    Flat.ModifyScrollBar(SB_VERT, SB_LINEDOWN, 0, false);
    Flat.ModifyScrollBar(SB_VERT, SB_PAGEUP, 0, false);
    EXPECT_LE(Flat.HeightCalls, 2000000);
}

} // namespace
} // namespace quill::testing
