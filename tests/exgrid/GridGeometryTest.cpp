#include "tests/exgrid/GridTestSupport.h"

#include <random>
#include <vector>

namespace quill::testing {
namespace {

TEST(GridGeometry, CellsHaveTheirRectangles) {
    TTestGrid Grid(400, 300, 10, 100);
    Grid.SetFixedCols(1);
    const TGridRect Cell{2, 3, 2, 3};
    const std::tuple<const char*, TGridOptions, TGridCoord, TGridRect, const char*> Cases[] = {
        {"columns without lines abut", {goVertLine, goFixedVertLine}, {1, 1}, Cell, "150,75,225,99"},
        {"one line option of an axis is enough", {goVertLine}, {1, 1}, Cell, "152,75,227,99"},
        {"rows without lines abut", {goHorzLine, goFixedHorzLine}, {1, 1}, Cell, "152,72,227,96"},
        {"a range that begins scrolled out", {}, {4, 1}, {2, 3, 5, 3}, "76,75,227,99"},
        {"a range that ends beyond the client", {}, {1, 1}, {2, 3, 9, 3}, "152,75,400,99"},
        {"the empty selection", {}, {1, 1}, {-1, -1, -1, -1}, "0,0,0,0"},
    };
    const TGridOptions Options = Grid.GetOptions();
    for (const auto& [What, Without, Origin, Cells, Rect] : Cases) {
        Grid.SetOptions(Options - Without);
        Grid.MoveTopLeft(Origin.X, Origin.Y);
        EXPECT_EQ(Show(Grid.BoxRect(Cells.Left, Cells.Top, Cells.Right, Cells.Bottom)), Rect) << What;
    }
}

// --- against a model -------------------------------------------------------------------------------------------

// The cells of one axis from the client's edge on, as {start, end} at their indices; {0, 0} for what is scrolled out.
struct TAxisModel {
    int Fixed = 0;
    int First = 0;
    int Line = 0;
    std::vector<int> Extents;

    std::pair<int, int> Span(int Cell) const {
        if (Cell < 0 || Cell >= std::ssize(Extents) || (Cell >= Fixed && Cell < First)) return {};
        int Pos = 0;
        for (int I = 0; I < Cell; ++I)
            if (I < Fixed || I >= First) Pos += Extents[static_cast<std::size_t>(I)] + Line;
        return {Pos, Pos + Extents[static_cast<std::size_t>(Cell)]};
    }
    bool IsShown(int Cell, int Client) const {
        return Cell >= 0 && Cell < std::ssize(Extents) && (Cell < Fixed || Cell >= First) &&
               Span(Cell).first < Client;
    }
    int CellAt(int N) const {
        for (int Cell = 0; Cell < std::ssize(Extents); ++Cell)
            if (IsShown(Cell, N + 1) && N < Span(Cell).second + Line) return Cell;
        return -1;
    }
};

TEST(GridGeometry, AgreesWithAModelOverRandomLayouts) {
    std::mt19937 Random(20240611);
    const auto Pick = [&Random](int Low, int High) {
        return std::uniform_int_distribution<int>(Low, High)(Random);
    };
    for (int Round = 0; Round < 150; ++Round) {
        SCOPED_TRACE("round " + std::to_string(Round));
        const int Cols = Pick(1, 12);
        const int Rows = Pick(1, 15);
        const int Width = Pick(1, 260);
        const int Height = Pick(1, 160);
        TAxisModel Horz{Pick(0, std::min(3, Cols - 1)), 0, Pick(0, 3), {}};
        TAxisModel Vert{Pick(0, std::min(3, Rows - 1)), 0, Horz.Line, {}};
        const bool Mirrored = Round % 2 == 1;
        TTestGrid Grid(Width, Height, Cols, Rows);
        Grid.SetFixedRows(Vert.Fixed);
        Grid.SetFixedCols(Horz.Fixed);
        Grid.SetGridLineWidth(Horz.Line);
        if (Mirrored) Grid.SetBiDiMode(bdRightToLeft);
        for (int I = 0; I < Cols; ++I) {
            Horz.Extents.push_back(Pick(0, 4) == 0 ? 0 : Pick(1, 90));
            Grid.SetColWidths(I, Horz.Extents.back());
        }
        for (int I = 0; I < Rows; ++I) {
            Vert.Extents.push_back(Pick(0, 4) == 0 ? 0 : Pick(1, 40));
            Grid.SetRowHeights(I, Vert.Extents.back());
        }
        Grid.MoveTopLeft(Pick(Horz.Fixed, Cols - 1), Pick(Vert.Fixed, Rows - 1));
        Horz.First = Grid.GetLeftCol();
        Vert.First = Grid.GetTopRow();

        for (int Col = -1; Col <= Cols; ++Col) {
            for (int Row = -1; Row <= Rows; ++Row) {
                TRect Expected;
                if (Horz.IsShown(Col, Width) && Vert.IsShown(Row, Height)) {
                    const auto [Left, Right] = Horz.Span(Col);
                    const auto [Top, Bottom] = Vert.Span(Row);
                    Expected = {Left, Top, std::min(Right, Width), std::min(Bottom, Height)};
                    if (Mirrored)
                        Expected = {Width - Expected.Right, Top, Width - Expected.Left, Expected.Bottom};
                }
                ASSERT_EQ(Show(Grid.CellRect(Col, Row)), Show(Expected)) << Col << "," << Row;
            }
        }
        const int FixedEnd = Horz.Fixed == 0 ? 0 : Horz.Span(Horz.Fixed - 1).second + Horz.Line;
        for (int X = 0; X < Width; ++X) {
            const int N = Mirrored ? Width - X : X;
            // Mirrored, the whole fixed zone is column 0.
            const int Col = Mirrored && N < FixedEnd ? 0 : Horz.CellAt(N);
            const int Y = Pick(0, Height - 1);
            const int Row = Vert.CellAt(Y);
            const TGridCoord Expected = Col < 0 || Row < 0 ? NoGridCoord : TGridCoord{Col, Row};
            ASSERT_EQ(Show(Grid.MouseCoord(X, Y)), Show(Expected)) << X << "," << Y;
        }
    }
}

// --- cost ------------------------------------------------------------------------------------------------------

TEST(GridGeometry, AMillionRowsCostWhatIsVisible) {
    TTestGrid Grid(400, 250, 5, 1000000);
    Grid.MoveTopLeft(0, 500000);
    Grid.HeightCalls = 0;
    Grid.CellRect(2, 999999);
    Grid.MouseCoord(100, 200);
    EXPECT_LE(Grid.HeightCalls, 60);
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
    Grid.SetColWidths(0, 2147483647);
    Grid.SetColWidths(1, 2147483647);
    EXPECT_EQ(Show(Grid.CellRect(0, 1)), "0,25,400,49");
    Grid.SetFixedCols(2);
    EXPECT_EQ(Show(Grid.CellRect(2, 1)), "0,0,0,0");
    EXPECT_EQ(Show(Grid.MouseCoord(399, 30)), "0,1");
    Grid.Focus(4, 1999999999);
    Grid.Update();
    EXPECT_EQ(Grid.GetRow(), 1999999999);
    EXPECT_EQ(Grid.GetTopRow(), 1999999991);
}

} // namespace
} // namespace quill::testing
