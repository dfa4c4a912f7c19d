#include "tests/exgrid/GridTestSupport.h"

#include "host/graphics/RecordingCanvas.h"

#include <sstream>
#include <vector>

namespace quill::testing {
namespace {

// Names each cell that it is asked to draw on the canvas, so that cells, lines and fills stand in one log.
class TNamingGrid : public TTestGrid {
public:
    using TTestGrid::TTestGrid;
    int StopAfter = 1000;
    void DrawCell(TCanvas& ACanvas, int ACol, int ARow, const TRect& Rect, TExGridDrawState State,
                  bool& ContinueRow) override {
        ACanvas.TextOut(Rect.Left, Rect.Top, Show(TGridCoord{ACol, ARow}) + Show(State) + " " + Show(Rect));
        if (ACol >= StopAfter) ContinueRow = false;
        TTestGrid::DrawCell(ACanvas, ACol, ARow, Rect, State, ContinueRow);
    }
    // What is drawn, or the operations of one kind.
    std::string Log(const std::string& Kind) {
        TRecordingCanvas Canvas(400, 300);
        DrawOn(Canvas, true);
        return Canvas.GetLog(Kind);
    }
    // The cells in the order of drawing: "0,0x 0,0,75,24".
    std::string Cells() {
        std::istringstream Lines(Log("TextOut"));
        std::string Result;
        for (std::string Line; std::getline(Lines, Line);) {
            const std::size_t Begin = Line.find('"') + 1;
            Result += Line.substr(Begin, Line.find('"', Begin) - Begin) + "\n";
        }
        return Result;
    }
};

TEST(GridPainting, RegionsAreDrawnInOrderWithAFillerCellPerRow) {
    TNamingGrid Grid(200, 100, 3, 3);
    Grid.SetFixedCols(1);
    EXPECT_EQ(Grid.Cells(), "0,0x 0,0,75,24\n"
                            "1,0x 76,0,151,24\n2,0x 152,0,227,24\n"
                            "0,1x 0,25,75,49\n0,2x 0,50,75,74\n"
                            "1,1s 76,25,151,49\n2,1 152,25,227,49\n"
                            "1,2 76,50,151,74\n2,2 152,50,227,74\n");
    // Columns that end before the right edge are followed by column ColCount.
    Grid.SetClientSize(300, 60);
    Grid.HasFocus = true;
    Grid.MoveColRow(2, 2, false, false);
    EXPECT_EQ(Grid.Cells(), "0,0x 0,0,75,24\n"
                            "1,0x 76,0,151,24\n2,0x 152,0,227,24\n3,0x 228,0,528,24\n"
                            "0,1x 0,25,75,49\n0,2x 0,50,75,74\n"
                            "1,1s 76,25,151,49\n2,1s 152,25,227,49\n3,1 228,25,528,49\n"
                            "1,2s 76,50,151,74\n2,2sf 152,50,227,74\n3,2 228,50,528,74\n");
    // Scrolled, without fixed columns and with a hidden one: no call for it and no room, not even for its line.
    Grid.HasFocus = false;
    Grid.ClearSelection();
    Grid.SetFixedCols(0);
    Grid.SetColCount(4);
    Grid.SetColWidths(2, 0);
    Grid.MoveTopLeft(1, 2);
    Grid.SetClientSize(150, 60);
    EXPECT_EQ(Grid.Cells(), "1,0x 0,0,75,24\n3,0x 76,0,151,24\n1,2 0,25,75,49\n3,2 76,25,151,49\n");
    // A row can be ended.
    Grid.StopAfter = 1;
    EXPECT_EQ(Grid.Cells(), "1,0x 0,0,75,24\n1,2 0,25,75,49\n");
}

TEST(GridPainting, LinesHaveTheirColours) {
    TNamingGrid Grid(151, 50, 2, 2);
    Grid.SetFixedCols(1);
    const TGridOptions All{goFixedVertLine, goFixedHorzLine, goVertLine, goHorzLine};
    // Horizontal and vertical line of a fixed cell, then of a scrollable one. Thick lines take both colours from the
    // horizontal one.
    const std::tuple<TGridOptions, int, bool, const char*> Cases[] = {
        {{}, 1, true, "clBlack clBlack clSilver clSilver "},
        {{}, 1, false, "clSilver clSilver clSilver clSilver "},
        {goVertLine, 1, true, "clBlack clBlack clSilver clWindow "},
        {goFixedHorzLine, 1, true, "clWindow clBlack clSilver clSilver "},
        {goHorzLine, 1, false, "clWindow clSilver clWindow clSilver "},
        {goVertLine, 3, true, "clBlack clBlack clSilver clSilver "},
        {goHorzLine, 3, true, "clBlack clBlack clWindow clWindow "},
    };
    for (const auto& [Without, Width, Buttons, Expected] : Cases) {
        Grid.SetOptions(All - Without);
        Grid.SetGridLineWidth(Width);
        Grid.SetFixedColAsButton(Buttons);
        Grid.SetFixedRowAsButton(Buttons);
        std::istringstream Log(Grid.Log("Line"));
        std::string Colours[8]; // those of the second row come last
        for (std::string Line; std::getline(Log, Line);) {
            std::shift_left(Colours, Colours + 8, 1);
            Colours[7] = Line.substr(Line.rfind(')') + 2);
        }
        std::string Seen;
        for (int I = 4; I < 8; ++I) {
            Seen += Colours[I].substr(0, Colours[I].find(' ')) + " ";
            EXPECT_EQ(Colours[I].ends_with(" width 3"), Width == 3) << Colours[I];
        }
        EXPECT_EQ(Seen, Expected) << Without.Bits() << " " << Width << Buttons;
    }
}

TEST(GridPainting, TheFocusFrameSurroundsASelectionOfRows) {
    TNamingGrid Grid(400, 200, 3, 5);
    Grid.HasFocus = true;
    const TGridOptions Rows{goRangeSelect, goRowSelect, goDrawFocusSelected};
    Grid.SetOptions(Rows);
    EXPECT_EQ(Grid.Log("Line"), "") << "no option asks for lines";
    Grid.FocusCell(0, 2, true, {}, swNone);
    Grid.FocusCell(0, 3, false, ssShift, swNone);
    EXPECT_EQ(Grid.Log("FocusRect"), "FocusRect (0,48,225,96)\n");
    Grid.SetOptions(Rows - goDrawFocusSelected);
    EXPECT_EQ(Grid.Log("FocusRect"), "");
    Grid.SetOptions(Rows);
    Grid.HasFocus = false;
    EXPECT_EQ(Grid.Log("FocusRect"), "");
}

TEST(GridPainting, TheAreaBelowTheRowsIsFilledAndAnEmptyGridHasOnlyThat) {
    class TFills : public TNamingGrid {
    public:
        using TNamingGrid::TNamingGrid;
        std::string Fills;
        void FillNotCellArea(const TRect& Rect) override {
            EXPECT_EQ(GetCanvas()->GetBrush()->GetColor(), GetColor());
            Fills += Show(Rect) + ";";
        }
    } Grid(300, 200, 3, 3);
    Grid.Fills.clear();
    Grid.Cells();
    EXPECT_EQ(std::exchange(Grid.Fills, {}), "0,75,300,200;");
    Grid.SetRowCount(1);
    Grid.Update();
    Grid.Fills.clear();
    EXPECT_EQ(Grid.Cells(), "0,0xs 0,0,75,24\n1,0x 76,0,151,24\n2,0x 152,0,227,24\n3,0x 228,0,528,24\n");
    EXPECT_EQ(std::exchange(Grid.Fills, {}), "0,25,300,200;");
    TRecordingCanvas Canvas(300, 200);
    Grid.DrawOn(Canvas, false);
    EXPECT_EQ(Grid.Fills + Canvas.GetLog(), "");
}

TEST(GridPainting, HandlersDrawUnmirrored) {
    TTestGrid Grid(228, 50, 3, 2);
    Grid.SetBiDiMode(bdRightToLeft);
    std::string Cells;
    Grid.OnDrawCell = [&](TObject*, TCanvas& Canvas, int Col, int Row, TRect R, TExGridDrawState State) {
        EXPECT_EQ(Canvas.GetCanvasOrientation(), coLeftToRight);
        Cells += Show(TGridCoord{Col, Row}) + Show(State) + " " + Show(R) + "\n";
    };
    Grid.Invalidate();
    Grid.Update();
    EXPECT_EQ(Cells, "0,0x 153,0,228,24\n1,0x 77,0,152,24\n2,0x 1,0,76,24\n"
                     "0,1s 153,25,228,49\n1,1 77,25,152,49\n2,1 1,25,76,49\n");
    EXPECT_EQ(Grid.GetCanvas()->GetCanvasOrientation(), coLeftToRight);
}

TEST(GridPainting, TextIsPlacedVertically) {
    TTestGrid Grid(200, 100, 1, 2);
    TRecordingCanvas Canvas(200, 100);
    Canvas.SetFont(Grid.GetFont());
    const int Line = Canvas.TextHeight("Xg");
    const auto Draw = [&](int Mode, TRect R, unsigned Flags = DT_WORDBREAK) {
        Canvas.ClearLog();
        const TRect Before = R;
        Grid.DrawRTLText(Canvas, "word", R, Flags | DT_NOPREFIX, Mode);
        EXPECT_EQ(Show(R), Show(Before)) << "the caller's rectangle stays as it was";
        const std::string Log = Canvas.GetLog("Text");
        return Log.substr(0, Log.find(" \""));
    };
    const auto From = [](int Top) { return "Text (10," + std::to_string(Top) + ",110,90)"; };
    EXPECT_EQ(Draw(0, {10, 10, 110, 90}), From(10));
    EXPECT_EQ(Draw(4, {10, 10, 110, 90}), From(10 + (80 - Line) / 2));
    EXPECT_EQ(Draw(8, {10, 10, 110, 90}), From(90 - Line));
    EXPECT_EQ(Draw(4, {10, 10, 110, 12}), "Text (10,10,110,12)"); // never above the top
    EXPECT_EQ(Draw(3, {10, 10, 110, 90}), "");
    Grid.SetBiDiMode(bdRightToLeft);
    EXPECT_EQ(Draw(0, {10, 20, 110, 40}, DT_SINGLELINE), "Text (90,20,190,40)");
    // Measuring gives the extent from the left edge on also then.
    TRect R{10, 20, 110, 21};
    Grid.DrawRTLText(Canvas, "word", R, DT_WORDBREAK | DT_CALCRECT, 0);
    EXPECT_EQ(R.Left, 10);
    EXPECT_EQ(R.Bottom, 20 + Line);
}

TEST(GridPainting, DragPicturesAreBlendedWhereThatIsPossible) {
    TTestGrid Grid(100, 60, 1, 2);
    Grid.GetCanvas()->GetBrush()->SetColor(clWhite);
    Grid.GetCanvas()->FillRect({0, 0, 100, 60});
    TRecordingCanvas Picture(20, 20);
    Picture.GetBrush()->SetColor(clBlack);
    Picture.FillRect({0, 0, 20, 20});
    Grid.DrawDragImg(10, 10, 20, 20, Picture, true);
    EXPECT_NEAR(Grid.GetCanvas()->GetPixel(15, 15) & 0xFF, 255 - 160, 2);
    const TAlphaBlendFunc Old = std::exchange(AlphaBlend, nullptr);
    Grid.DrawDragImg(40, 10, 20, 20, Picture, true);
    AlphaBlend = Old;
    EXPECT_EQ(Grid.GetCanvas()->GetPixel(45, 15), clBlack);
    EXPECT_EQ(Grid.GetCanvas()->GetPixel(65, 15), clWhite);
}

TEST(GridPainting, RequestsToPaintCoverTheirCells) {
    TTestGrid Grid(400, 300, 10, 50);
    Grid.SetFixedCols(1);
    Grid.Focus(2, 3);
    const auto Invalid = [&](auto Request) {
        Grid.Update();
        Request();
        return Grid.Invalid();
    };
    EXPECT_EQ(Invalid([&] { Grid.InvalidateCell(1, 2); }), "76,50,152,75");
    EXPECT_EQ(Invalid([&] { Grid.InvalidateCell(-1, 0); }), "none");
    EXPECT_EQ(Invalid([&] { Grid.InvalidateCell(0, 50); }), "none");
    EXPECT_EQ(Invalid([&] { Grid.InvalidateCol(2); }), "152,0,228,300");
    EXPECT_EQ(Invalid([&] { Grid.InvalidateRow(2); }), "0,50,400,75");
    EXPECT_EQ(Invalid([&] { Grid.InvalidateNonFixed(); }), "76,25,400,300");
    // An editor covers the current cell.
    Grid.SetOptions(Grid.GetOptions() + goEditing);
    Grid.SetEditorMode(true);
    EXPECT_EQ(Invalid([&] { Grid.InvalidateCell(2, 3); }), "none");
    Grid.SetEditorMode(false);
    EXPECT_EQ(Invalid([&] { Grid.InvalidateCell(2, 3); }), "152,75,228,100");
    // Scrolled far down a column's request no longer reaches the rows; the row's own does.
    Grid.MoveTopLeft(5, 30);
    EXPECT_EQ(Invalid([&] { Grid.InvalidateCol(6); }), "152,0,228,25");
    EXPECT_EQ(Invalid([&] { Grid.InvalidateVisibleRow(31); }), "0,50,400,75");
    // To the client's right edge, where the filler is.
    Grid.SetColCount(2);
    Grid.MoveTopLeft(1, 30);
    EXPECT_EQ(Invalid([&] { Grid.InvalidateRow(30); }), "0,25,152,50");
    EXPECT_EQ(Invalid([&] { Grid.InvalidateFullRow(30); }), "0,25,400,50");
    Grid.SetBiDiMode(bdRightToLeft);
    EXPECT_EQ(Invalid([&] { Grid.InvalidateCell(1, 30); }), "248,25,324,50");
    EXPECT_EQ(Invalid([&] { Grid.InvalidateNonFixed(); }), "0,25,324,300");
}

TEST(GridPainting, OnlyCellsThatChangeTheirSelectionAreRequested) {
    TTestGrid Grid(400, 300, 5, 10);
    const std::tuple<TGridRect, TGridRect, const char*> Cases[] = {
        {{1, 2, 2, 3}, {1, 2, 2, 5}, "76,100,228,150"}, // two rows more
        {{1, 2, 2, 3}, {0, 2, 2, 3}, "0,50,76,100"},       {{1, 2, 2, 3}, {1, 2, 2, 3}, "none"},
        {{-1, -1, -1, -1}, {1, 2, 2, 3}, "76,50,228,100"}, {{0, 1, 0, 1}, {2, 3, 2, 3}, "0,25,228,100"},
    };
    for (const auto& [Old, New, Invalid] : Cases) {
        Grid.MoveColRow(New.Left, New.Top, true, false);
        Grid.MoveAnchor({New.Left, New.Top});
        Grid.MoveColRow(New.Right, New.Bottom, false, false);
        Grid.Update();
        Grid.SelectionMoved(Old);
        EXPECT_EQ(Grid.Invalid(), Invalid) << Show(Old) << " to " << Show(New);
    }
}

} // namespace
} // namespace quill::testing
