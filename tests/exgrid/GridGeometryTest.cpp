#include "tests/exgrid/GridTestSupport.h"

#include <random>
#include <vector>

namespace quill::testing {
namespace {

TEST(GridGeometry, ANewGridHasTheDocumentedState) {
    TTestGrid Made;
    // The base class's own state, before the helper's settings.
    class TPlain : public TCustomExGrid {
    public:
        TPlain() : TCustomExGrid(nullptr) {}
        void DrawFixedFrame(TCanvas&, const TRect&, int, int, bool) override {}
    } Grid;
    EXPECT_EQ(Grid.GetColCount(), 1);
    EXPECT_EQ(Grid.GetRowCount(), 2);
    EXPECT_EQ(Grid.GetFixedCols(), 0);
    EXPECT_EQ(Grid.GetFixedRows(), 1);
    EXPECT_EQ(Grid.GetLeftCol(), 0);
    EXPECT_EQ(Grid.GetTopRow(), 1);
    EXPECT_EQ(Show(Grid.GetSelection()), "0,1..0,1");
    EXPECT_EQ(Grid.GetOptions().Bits(), 0x1Fu);
    EXPECT_EQ(Grid.GetWidth(), 75);
    EXPECT_EQ(Grid.GetHeight(), 48);
    EXPECT_EQ(Grid.GetColor(), 0x80000005u);
    EXPECT_EQ(Grid.GetFixedColor(), 0x8000000Fu);
    EXPECT_EQ(Grid.GetLineColor(), 0xC0C0C0u);
    EXPECT_EQ(Grid.GetFixedLineColor(), 0u);
    EXPECT_EQ(Grid.GetScrollBars(), ssBoth);
    EXPECT_EQ(Grid.GetScrollBarsColor(), 0xFFFFFFu);
    EXPECT_FALSE(Grid.GetParentColor());
    EXPECT_TRUE(Grid.GetTabStop());
    EXPECT_TRUE(Grid.GetTabStops(0));
    EXPECT_EQ(Grid.GetDropTargetRow(), -1);
    EXPECT_EQ(Grid.GetControlStyle(),
              TControlStyle({csCaptureMouse, csClickEvents, csOpaque, csDoubleClicks}));
}

TEST(GridGeometry, CellsHaveTheirRectangles) {
    TTestGrid Grid(75, 49, 1, 2);
    EXPECT_EQ(Show(Grid.CellRect(0, 0)), "0,0,75,24");
    EXPECT_EQ(Show(Grid.CellRect(0, 1)), "0,25,75,49");
    Grid.SetClientSize(70, 40);
    EXPECT_EQ(Show(Grid.CellRect(0, 1)), "0,25,70,40");

    TTestGrid Wide(400, 300, 10, 100);
    Wide.SetFixedCols(1);
    struct TCase {
        const char* What;
        TGridOptions Without;
        TGridCoord Origin;
        TGridRect Cells;
        const char* Rect;
    };
    const TCase Cases[] = {
        {"cells with lines between them", {}, {1, 1}, {2, 3, 2, 3}, "152,75,227,99"},
        {"columns without lines abut", {goVertLine, goFixedVertLine}, {1, 1}, {2, 3, 2, 3}, "150,75,225,99"},
        {"one line option of an axis is enough", {goVertLine}, {1, 1}, {2, 3, 2, 3}, "152,75,227,99"},
        {"rows without lines abut", {goHorzLine, goFixedHorzLine}, {1, 1}, {2, 3, 2, 3}, "152,72,227,96"},
        {"scrolled out", {}, {4, 1}, {3, 3, 3, 3}, "0,0,0,0"},
        {"fixed cells stay", {}, {4, 7}, {0, 0, 0, 0}, "0,0,75,24"},
        {"a range that begins scrolled out begins at the first cell shown",
         {},
         {4, 1},
         {2, 3, 5, 3},
         "76,75,227,99"},
        {"a range that ends beyond the client ends at its edge", {}, {1, 1}, {2, 3, 9, 3}, "152,75,400,99"},
        {"partly visible", {}, {1, 1}, {5, 3, 5, 3}, "380,75,400,99"},
        {"just past the last visible column", {}, {1, 1}, {6, 3, 6, 3}, "0,0,0,0"},
        {"far beyond", {}, {1, 1}, {2, 50, 2, 50}, "0,0,0,0"},
        {"no column", {}, {7, 1}, {10, 3, 10, 3}, "0,0,0,0"},
        {"backwards", {}, {1, 1}, {3, 3, 2, 3}, "0,0,0,0"},
        {"the empty selection", {}, {1, 1}, {-1, -1, -1, -1}, "0,0,0,0"},
    };
    const TGridOptions Options = Wide.GetOptions();
    for (const TCase& Case : Cases) {
        SCOPED_TRACE(Case.What);
        Wide.SetOptions(Options - Case.Without);
        Wide.MoveTopLeft(Case.Origin.X, Case.Origin.Y);
        EXPECT_EQ(Show(Wide.BoxRect(Case.Cells.Left, Case.Cells.Top, Case.Cells.Right, Case.Cells.Bottom)),
                  Case.Rect);
    }
}

TEST(GridGeometry, RangesCanTakeInTheLineAndTheRestOfTheClient) {
    TTestGrid Grid(400, 300, 3, 5);
    TRect R;
    Grid.GridRectToScreenRect({0, 1, 1, 2}, R, true, false, false);
    EXPECT_EQ(Show(R), "0,25,152,75");
    Grid.GridRectToScreenRect({0, 1, 1, 2}, R, false, true, true);
    EXPECT_EQ(Show(R), "0,25,400,300");
    Grid.SetBiDiMode(bdRightToLeft);
    Grid.GridRectToScreenRect({0, 1, 1, 2}, R, true, false, false);
    EXPECT_EQ(Show(R), "248,25,400,75");
    EXPECT_EQ(Show(Grid.CellRect(2, 0)), "173,0,248,24");
    // A canvas that mirrors by itself gets the plain rectangle.
    Grid.ChangeGridOrientation(true);
    EXPECT_EQ(Show(Grid.CellRect(2, 0)), "152,0,227,24");
    Grid.ChangeGridOrientation(false);
}

TEST(GridGeometry, ALayoutTellsWhatFits) {
    TTestGrid Grid(200, 100, 10, 50);
    Grid.SetFixedCols(1);
    TExGridDI DI;
    Grid.CalcDI(DI);
    EXPECT_EQ(DI.Horz.FixedBoundary, 76);
    EXPECT_EQ(DI.Horz.LastFullVisibleCell, 1);
    EXPECT_EQ(DI.Horz.FullVisBoundary, 152);
    EXPECT_EQ(DI.Horz.GridBoundary, 200);
    EXPECT_EQ(DI.Vert.FixedBoundary, 25);
    // The fourth row ends at the client's edge: its line alone is cut, which counts as whole.
    EXPECT_EQ(DI.Vert.LastFullVisibleCell, 3);
    EXPECT_EQ(DI.Vert.FullVisBoundary, 100);
    Grid.CalcDIXY(DI, 1000, 99);
    EXPECT_EQ(DI.Horz.GridBoundary, 760);
    EXPECT_EQ(DI.Horz.LastFullVisibleCell, 9);
    EXPECT_EQ(DI.Vert.LastFullVisibleCell, 3);
    EXPECT_EQ(DI.Vert.FullVisBoundary, 100);
    EXPECT_EQ(DI.Vert.GridBoundary, 99);
    Grid.CalcDIXY(DI, 1000, 98);
    EXPECT_EQ(DI.Vert.LastFullVisibleCell, 2);
    EXPECT_EQ(DI.Vert.GridBoundary, 98);
    // Nothing scrollable fits, and still one is counted.
    Grid.CalcDIXY(DI, 80, 20);
    EXPECT_EQ(DI.Horz.LastFullVisibleCell, 1);
    EXPECT_EQ(DI.Horz.FullVisBoundary, 76);
    Grid.SetClientSize(80, 100);
    EXPECT_EQ(Grid.GetVisibleColCount(), 1);
    EXPECT_EQ(Show(Grid.GetNonFixedArea()), "76,25,80,100");
    Grid.SetRowCount(3);
    EXPECT_EQ(Show(Grid.GetNonFixedArea()), "76,25,80,75");
}

TEST(GridGeometry, TheOriginThatStillShowsACell) {
    TTestGrid Grid(200, 124, 10, 50);
    TExGridDI DI;
    const auto Max = [&](int Col, int Row) {
        Grid.CalcDI(DI);
        return Show(Grid.CalcMaxTopLeft({Col, Row}, DI));
    };
    EXPECT_EQ(Max(9, 49), "8,46"); // 2 x 76 of 201, 4 x 25 of 100 pixels
    EXPECT_EQ(Max(0, 1), "0,1");
    Grid.SetRowHeights(48, 0);
    Grid.SetRowHeights(49, 0);
    EXPECT_EQ(Max(9, 49), "8,44"); // rows without height are passed over
    Grid.SetRowHeights(47, 500);
    EXPECT_EQ(Max(9, 49), "8,47"); // nothing fits: the row that there is
    Grid.SetRowHeights(49, 500);
    EXPECT_EQ(Max(9, 49), "8,49");
}

TEST(GridGeometry, APointOutsideOneAxisIsOutside) {
    TTestGrid Grid(400, 300, 3, 5);
    EXPECT_EQ(Show(Grid.MouseCoord(100, 60)), "1,2");
    EXPECT_EQ(Show(Grid.MouseCoord(300, 60)), "-1,-1");
    EXPECT_EQ(Show(Grid.MouseCoord(100, 200)), "-1,-1");
    EXPECT_EQ(Show(Grid.MouseCoord(-1, -1)), "-1,-1");
    TExGridDI DI;
    Grid.CalcDI(DI);
    EXPECT_EQ(Show(Grid.CalcCoordFromPoint(300, 60, DI)), "-1,2");
    int Col = 0;
    int Row = 0;
    Grid.MouseToCell(0, 0, Col, Row);
    EXPECT_EQ(Col, 0);
    EXPECT_EQ(Row, 0);
}

TEST(GridGeometry, TheMirroredFixedZoneIsColumnZero) {
    TTestGrid Grid(400, 300, 5, 5);
    Grid.SetFixedCols(2);
    Grid.SetBiDiMode(bdRightToLeft);
    for (int X = 249; X <= 399; X += 10) EXPECT_EQ(Grid.MouseCoord(X, 60).X, 0) << X;
    EXPECT_EQ(Grid.MouseCoord(200, 60).X, 2);
}

// --- against a model -------------------------------------------------------------------------------------------

struct TSpan {
    int Cell;
    int Start;
    int End;
    int LineEnd;
};

// The cells of one axis from the client's edge on, in the order of their pixels.
std::vector<TSpan> SpansOf(const std::vector<int>& Extents, int Fixed, int First, int Line) {
    std::vector<TSpan> Result;
    int Pos = 0;
    for (int Cell = 0; Cell < static_cast<int>(Extents.size()); ++Cell) {
        if (Cell >= Fixed && Cell < First) continue;
        const int Extent = Extents[static_cast<std::size_t>(Cell)];
        Result.push_back({Cell, Pos, Pos + Extent, Pos + Extent + Line});
        Pos += Extent + Line;
    }
    return Result;
}

int CellAt(const std::vector<TSpan>& Spans, int N) {
    for (const TSpan& Span : Spans) {
        if (N >= Span.Start && N < Span.LineEnd) return Span.Cell;
    }
    return -1;
}

TEST(GridGeometry, AgreesWithAModelOverRandomLayouts) {
    const unsigned Seed = 20240611;
    std::mt19937 Random(Seed);
    const auto Pick = [&Random](int Low, int High) {
        return std::uniform_int_distribution<int>(Low, High)(Random);
    };
    int Checked = 0;
    for (int Round = 0; Round < 150; ++Round) {
        const int Cols = Pick(1, 12);
        const int Rows = Pick(1, 15);
        const int FixedCols = Pick(0, std::min(3, Cols - 1));
        const int FixedRows = Pick(0, std::min(3, Rows - 1));
        const int Width = Pick(1, 260);
        const int Height = Pick(1, 160);
        const int Line = Pick(0, 3);
        const bool Mirrored = Round % 2 == 1;
        TTestGrid Grid(Width, Height, Cols, Rows);
        Grid.SetFixedRows(FixedRows);
        Grid.SetFixedCols(FixedCols);
        Grid.SetGridLineWidth(Line);
        if (Mirrored) Grid.SetBiDiMode(bdRightToLeft);
        std::vector<int> Widths;
        std::vector<int> Heights;
        for (int I = 0; I < Cols; ++I) Widths.push_back(Pick(0, 4) == 0 ? 0 : Pick(1, 90));
        for (int I = 0; I < Rows; ++I) Heights.push_back(Pick(0, 4) == 0 ? 0 : Pick(1, 40));
        for (int I = 0; I < Cols; ++I) Grid.SetColWidths(I, Widths[static_cast<std::size_t>(I)]);
        for (int I = 0; I < Rows; ++I) Grid.SetRowHeights(I, Heights[static_cast<std::size_t>(I)]);
        Grid.MoveTopLeft(Pick(FixedCols, Cols - 1), Pick(FixedRows, Rows - 1));
        SCOPED_TRACE("seed " + std::to_string(Seed) + ", round " + std::to_string(Round));

        const auto Horz = SpansOf(Widths, FixedCols, Grid.GetLeftCol(), Line);
        const auto Vert = SpansOf(Heights, FixedRows, Grid.GetTopRow(), Line);
        const auto Visible = [](const std::vector<TSpan>& Spans, int Cell, int Extent, int& Start, int& End) {
            for (const TSpan& Span : Spans) {
                if (Span.Cell != Cell) continue;
                Start = Span.Start;
                End = std::min(Span.End, Extent);
                return Span.Start < Extent;
            }
            return false;
        };
        for (int Col = -1; Col <= Cols; ++Col) {
            for (int Row = -1; Row <= Rows; ++Row) {
                TRect Expected;
                if (!Visible(Horz, Col, Width, Expected.Left, Expected.Right) ||
                    !Visible(Vert, Row, Height, Expected.Top, Expected.Bottom)) {
                    Expected = {};
                } else if (Mirrored) {
                    Expected = {Width - Expected.Right, Expected.Top, Width - Expected.Left, Expected.Bottom};
                }
                ASSERT_EQ(Show(Grid.CellRect(Col, Row)), Show(Expected)) << Col << "," << Row;
                ++Checked;
            }
        }
        int FixedEnd = 0;
        for (const TSpan& Span : Horz) {
            if (Span.Cell < FixedCols) FixedEnd = Span.LineEnd;
        }
        for (int X = 0; X < Width; ++X) {
            const int N = Mirrored ? Width - X : X;
            const int Col = Mirrored && N < FixedEnd ? 0 : CellAt(Horz, N);
            const int Y = Pick(0, Height - 1);
            const int Row = CellAt(Vert, Y);
            const TGridCoord Expected = Col < 0 || Row < 0 ? NoGridCoord : TGridCoord{Col, Row};
            ASSERT_EQ(Show(Grid.MouseCoord(X, Y)), Show(Expected)) << X << "," << Y;
            ++Checked;
        }
    }
    EXPECT_GT(Checked, 25000);
}

// --- cost ------------------------------------------------------------------------------------------------------

TEST(GridGeometry, AMillionRowsCostWhatIsVisible) {
    TTestGrid Grid(400, 250, 5, 1000000);
    Grid.MoveTopLeft(0, 500000);
    Grid.HeightCalls = 0;
    TExGridDI DI;
    Grid.CalcDI(DI);
    EXPECT_LE(Grid.HeightCalls, 15);
    Grid.HeightCalls = 0;
    Grid.CellRect(2, 999999);
    Grid.MouseCoord(100, 200);
    EXPECT_LE(Grid.HeightCalls, 60);
    Grid.HeightCalls = 0;
    Grid.Focus(2, 900000);
    Grid.Update();
    Grid.ModifyScrollBar(SB_VERT, SB_PAGEDOWN, 0, false);
    Grid.SetRowCount(1000001);
    Grid.Update();
    EXPECT_LE(Grid.HeightCalls, 1500);
    EXPECT_FALSE(Grid.HasRowHeights());
}

TEST(GridGeometry, SumsBeyondTheIntegersDoNoHarm) {
    TTestGrid Grid(400, 250, 5, 2000000000);
    EXPECT_EQ(Grid.GetRowCount(), 2000000000);
    Grid.SetColWidths(0, 2147483647);
    Grid.SetColWidths(1, 2147483647);
    Grid.SetColWidths(3, -1);
    EXPECT_EQ(Show(Grid.CellRect(0, 1)), "0,25,400,49");
    Grid.SetFixedCols(2);
    EXPECT_EQ(Show(Grid.CellRect(2, 1)), "0,0,0,0");
    EXPECT_EQ(Show(Grid.MouseCoord(399, 30)), "0,1");
    Grid.Focus(4, 1999999999);
    Grid.Update();
    EXPECT_EQ(Grid.GetRow(), 1999999999);
    EXPECT_EQ(Grid.GetTopRow(), 1999999991);
}

TEST(GridGeometry, RowsWithoutHeightAreWalkedOnce) {
    class TFlat : public TTestGrid {
    public:
        TFlat() : TTestGrid(200, 100, 1, 100000) {}
        int GetRowHeights(int Index) override {
            ++HeightCalls;
            return Index == 0 ? 10 : 0;
        }
    } Grid;
    Grid.SetOptions(Grid.GetOptions() - TGridOptions{goHorzLine, goFixedHorzLine});
    Grid.HeightCalls = 0;
    Grid.ModifyScrollBar(SB_VERT, SB_LINEDOWN, 0, false);
    Grid.ModifyScrollBar(SB_VERT, SB_PAGEUP, 0, false);
    EXPECT_LE(Grid.HeightCalls, 2000000);
}

} // namespace
} // namespace quill::testing
