// What is on the surface: every pixel painted, and partial paints giving the picture of a full one.
#include "tests/exgrid/GridTestSupport.h"

#include "host/graphics/RecordingCanvas.h"

#include <QImage>

#include <random>

namespace quill::testing {
namespace {

constexpr TColor Unpainted = clFuchsia;

// Cells in colours that tell them and their states apart.
class TColourGrid : public TTestGrid {
public:
    using TTestGrid::TTestGrid;
    void DrawCell(TCanvas& ACanvas, int ACol, int ARow, const TRect& Rect, TExGridDrawState State,
                  bool&) override {
        const unsigned Hash = static_cast<unsigned>(ACol * 7919 + ARow * 104729) * 2654435761u;
        TColor Color = (Hash >> 8) & 0x3F3F3F;
        if (State.Contains(gdSelected)) Color |= 0x800000;
        if (State.Contains(gdFocused)) Color |= 0x400000;
        if (State.Contains(gdFixed)) Color |= 0x80;
        ACanvas.GetBrush()->SetColor(Color);
        ACanvas.FillRect(Rect);
    }
};

int CountUnpainted(const QImage& Image) {
    int Count = 0;
    for (int Y = 0; Y < Image.height(); ++Y) {
        for (int X = 0; X < Image.width(); ++X) Count += (Image.pixel(X, Y) & 0xFFFFFF) == 0xFF00FF;
    }
    return Count;
}

class TDice {
public:
    explicit TDice(unsigned Seed) : FRandom(Seed) {}
    int Pick(int Low, int High) { return std::uniform_int_distribution<int>(Low, High)(FRandom); }
    bool Chance(int OneIn) { return Pick(1, OneIn) == 1; }

private:
    std::mt19937 FRandom;
};

void MakeRandom(TCustomExGrid& Grid, TDice& Dice) {
    const int Cols = Dice.Pick(1, 8);
    const int Rows = Dice.Pick(1, 12);
    Grid.SetColCount(Cols);
    Grid.SetFixedRows(0);
    Grid.SetRowCount(Rows);
    Grid.SetFixedCols(Dice.Pick(0, std::min(2, Cols - 1)));
    Grid.SetFixedRows(Dice.Pick(0, std::min(2, Rows - 1)));
    if (Dice.Chance(8)) Grid.SetRowCount(Grid.GetFixedRows());
    Grid.SetGridLineWidth(Dice.Pick(0, 5));
    TGridOptions Options = TGridOptions::FromBits(static_cast<unsigned>(Dice.Pick(0, 15))) + goRangeSelect;
    if (Dice.Chance(3)) Options += TGridOptions{goRowSelect, goDrawFocusSelected};
    Grid.SetOptions(Options);
    Grid.SetFixedColAsButton(Dice.Chance(2));
    Grid.SetFixedRowAsButton(Dice.Chance(2));
    for (int I = 0; I < Cols; ++I) Grid.SetColWidths(I, Dice.Chance(6) ? 0 : Dice.Pick(1, 110));
    for (int I = 0; I < Grid.GetRowCount(); ++I) Grid.SetRowHeights(I, Dice.Chance(6) ? 0 : Dice.Pick(1, 50));
    Grid.MoveTopLeft(Dice.Pick(0, Cols), Dice.Pick(0, Rows));
}

TEST(GridPixels, EveryPixelOfTheClientIsPainted) {
    const unsigned Seed = 77;
    TDice Dice(Seed);
    for (int Round = 0; Round < 300; ++Round) {
        TColourGrid Grid(Dice.Pick(1, 300), Dice.Pick(1, 200));
        MakeRandom(Grid, Dice);
        if (Round % 2 == 1) Grid.SetBiDiMode(bdRightToLeft);
        Grid.HasFocus = true;
        Grid.Update();
        Grid.GetCanvas()->GetBrush()->SetColor(Unpainted);
        Grid.GetCanvas()->FillRect(Grid.GetClientRect());
        Grid.Invalidate();
        ASSERT_EQ(CountUnpainted(Grid.GetSurfaceImage()), 0) << "seed " << Seed << ", round " << Round;
    }
}

TEST(GridPixels, NoDevicePixelIsLeftOutAtFractionalScales) {
    TDice Dice(5);
    for (const double Scale : {1.25, 1.5, 1.75, 2.0}) {
        for (int Round = 0; Round < 20; ++Round) {
            TColourGrid Grid(260, 150, 6, 12);
            Grid.SetGridLineWidth(Dice.Pick(1, 3));
            Grid.SetDefaultRowHeight(Dice.Pick(10, 30));
            Grid.SetDefaultColWidth(Dice.Pick(30, 60));
            TRecordingCanvas Canvas(260, 150, Scale);
            Canvas.GetBrush()->SetColor(Unpainted);
            Canvas.FillRect({0, 0, 300, 200});
            Grid.DrawOn(Canvas, true);
            // The area below the rows belongs to the grid's own canvas.
            const int Bottom = static_cast<int>(std::min(150, Grid.GetGridHeight()) * Scale) - 1;
            ASSERT_EQ(CountUnpainted(Canvas.GetImage().copy(0, 0, static_cast<int>(260 * Scale), Bottom)), 0)
                << Scale << ", round " << Round;
        }
    }
}

// The picture after any operation is the picture that a full paint gives.
TEST(GridPixels, PartialPaintsAddUpToAFullOne) {
    const unsigned Seed = 4711;
    TDice Dice(Seed);
    for (int Round = 0; Round < 60; ++Round) {
        TColourGrid Grid(Dice.Pick(60, 300), Dice.Pick(50, 200));
        MakeRandom(Grid, Dice);
        if (Round % 2 == 1) Grid.SetBiDiMode(bdRightToLeft);
        if (Dice.Chance(2)) Grid.SetScrollBars(ssBoth);
        Grid.HasFocus = true;
        Grid.Invalidate();
        Grid.Update();
        static constexpr std::uint16_t Keys[] = {VK_UP,   VK_DOWN, VK_LEFT, VK_RIGHT, VK_PRIOR,
                                                 VK_NEXT, VK_HOME, VK_END,  VK_TAB};
        const auto Any = [&](int Limit) { return static_cast<unsigned>(Dice.Pick(0, Limit)); };
        const std::function<void()> Operations[] = {
            [&] { Grid.Press(Keys[Any(8)], Dice.Chance(3) ? TShiftState(ssShift) : TShiftState()); },
            [&] { Grid.ModifyScrollBar(Dice.Pick(0, 1), Any(7), Any(127), true); },
            [&] { Grid.MoveTopLeft(Dice.Pick(0, 8), Dice.Pick(0, 12)); },
            [&] { Grid.SetColWidths(Dice.Pick(0, Grid.GetColCount() - 1), Dice.Pick(0, 90)); },
            [&] { Grid.SetRowCount(std::max(1, Grid.GetRowCount() + Dice.Pick(-2, 3))); },
            [&] { Grid.SetColCount(Grid.GetColCount() + Dice.Pick(-1, 1)); },
            [&] { Grid.ClearSelection(); },
            [&] {
                Grid.SetSelection({Dice.Pick(0, 3), Dice.Pick(0, 3), Dice.Pick(0, 3), Dice.Pick(0, 3)});
            },
            [&] { Grid.SetSize(Grid.GetWidth() + Dice.Pick(-9, 9), Grid.GetHeight() + Dice.Pick(-9, 9)); },
        };
        for (int Step = 0; Step < 40; ++Step) {
            // Keys more often than anything else.
            const int Kind = std::max(0, Dice.Pick(-2, 8));
            Operations[Kind]();
            const QImage Partial = Grid.GetSurfaceImage();
            Grid.Invalidate();
            ASSERT_TRUE(Partial == Grid.GetSurfaceImage())
                << "seed " << Seed << ", round " << Round << ", step " << Step << ", kind " << Kind << ", "
                << Grid.State() << ", options " << Grid.GetOptions().Bits();
        }
    }
}

} // namespace
} // namespace quill::testing
