// Painting: regions, cells, lines, texts, and the requests to paint.
#include "exgrid/ExGrid.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace quill {

namespace {

int Narrow(std::int64_t Value) {
    constexpr std::int64_t Limit = std::numeric_limits<int>::max() / 2;
    return static_cast<int>(std::clamp(Value, -Limit, Limit));
}

void BlendOver(TCanvas& Target, int X, int Y, int Width, int Height, TCanvas& Source,
               const TBlendFunction& Blend) {
    Target.AlphaBlend(X, Y, Width, Height, Source, 0, 0, Blend.SourceConstantAlpha);
}

// Sets the canvas mapping for a stretch of code and puts it back, unless the grid is gone by then.
class TOrientation {
public:
    TOrientation(TCustomExGrid* Grid, bool Active, bool RightToLeft)
        : FGrid(Grid), FGuard(Grid), FActive(Active),
          FBack(Grid->GetCanvas()->GetCanvasOrientation() == coRightToLeft) {
        if (FActive) FGrid->ChangeGridOrientation(RightToLeft);
    }
    ~TOrientation() {
        if (FActive && FGuard) FGrid->ChangeGridOrientation(FBack);
    }
    TOrientation(const TOrientation&) = delete;
    TOrientation& operator=(const TOrientation&) = delete;

private:
    TCustomExGrid* FGrid;
    TControlGuard FGuard;
    bool FActive;
    bool FBack;
};

} // namespace

TAlphaBlendFunc AlphaBlend = BlendOver;

void TCustomExGrid::ChangeGridOrientation(bool RightToLeft) {
    GetCanvas()->SetMirrored(RightToLeft, GetClientWidth());
}

void TCustomExGrid::Paint() {
    const TControlGuard Guard(this);
    DrawOn(*GetCanvas(), true);
    if (Guard && IsDragShown()) DrawDrag();
    // Whatever moved the cell had it painted.
    if (Guard) PlaceEditor(false);
}

void TCustomExGrid::DrawOn(TCanvas& ACanvas, bool Full) {
    const TControlGuard Guard(this);
    const TOrientation Orientation(this, UseRightToLeftAlignment(), true);
    if (!Full) return;
    TExGridDI DI;
    CalcDI(DI);
    const TExGridAxisDI& Horz = DI.Horz;
    const TExGridAxisDI& Vert = DI.Vert;
    const bool Lines = Horz.EffectiveLineWidth > 0 || Vert.EffectiveLineWidth > 0;
    const int CellsLeft = Horz.FixedBoundary - FHOffset;
    const TGridCoord TopLeft = FTopLeft;

    DrawCells(ACanvas, 0, 0, 0, 0, Horz.FixedBoundary, Vert.FixedBoundary, FFixedColor, gdFixed, DI, Lines);
    if (!Guard) return;
    DrawCells(ACanvas, TopLeft.X, 0, CellsLeft, 0, Horz.GridExtent, Vert.FixedBoundary, FFixedColor, gdFixed,
              DI, Lines);
    if (!Guard) return;
    DrawCells(ACanvas, 0, TopLeft.Y, 0, Vert.FixedBoundary, Horz.FixedBoundary, Vert.GridBoundary,
              FFixedColor, gdFixed, DI, Lines);
    if (!Guard) return;
    const bool Empty = IsGridEmpty();
    if (!Empty) {
        DrawCells(ACanvas, TopLeft.X, TopLeft.Y, CellsLeft, Vert.FixedBoundary, Horz.GridExtent,
                  Vert.GridBoundary, GetColor(), {}, DI, Lines);
        if (!Guard) return;
        if (HasOption(goDrawFocusSelected) && HasOption(goRowSelect) && !HasState(csDesigning) && Focused())
            DrawFocus(ACanvas);
    }
    GetCanvas()->GetBrush()->SetColor(GetColor());
    if (Vert.GridBoundary < Vert.GridExtent)
        FillNotCellArea(Rect(0, Vert.GridBoundary, Horz.GridExtent, Vert.GridExtent));
    // Rows of a grid that has fixed columns only: nothing else covers what is right of them.
    if (Guard && Empty && Vert.FixedBoundary < Vert.GridBoundary)
        FillNotCellArea(Rect(Horz.FixedBoundary, Vert.FixedBoundary, Horz.GridExtent, Vert.GridBoundary));
}

void TCustomExGrid::DrawFocus(TCanvas& ACanvas) {
    TRect R;
    GridRectToScreenRect(GetSelection(), R, false, false, false);
    if (!R.IsEmpty()) ACanvas.DrawFocusRect(R);
}

// A column without width takes no room here, not even for its line, although the geometry counts that line: cells
// right of it are painted that much further left. InvalidateRect allows for it.
void TCustomExGrid::DrawCells(TCanvas& ACanvas, int ACol, int ARow, int StartX, int StartY, int StopX,
                              int StopY, TColor Color, TExGridDrawState IncludeDrawState, const TExGridDI& DI,
                              bool DrawGridLines) {
    const TControlGuard Guard(this);
    const TGridRect Selection = GetSelection();
    const bool Active = IsActiveControl();
    const bool Designing = HasState(csDesigning);
    // A handler may add columns or rows; this pass ends with those that were there.
    const int ColEnd = FColCount;
    const int RowEnd = FRowCount;
    // Room that hidden fixed columns leave belongs to no cell.
    const bool FixedOnly = ACol < FFixedCols && StopX <= DI.Horz.FixedBoundary;
    TExGridDrawState State;
    std::int64_t Top = StartY;
    for (int CurRow = ARow; Top < StopY && CurRow < std::min(RowEnd, FRowCount); ++CurRow) {
        const std::int64_t Bottom = Top + GetRowHeights(CurRow);
        std::int64_t Left = StartX;
        bool ContinueRow = true;
        for (int CurCol = ACol; Left < StopX && ContinueRow && CurCol <= std::min(ColEnd, FColCount);
             ++CurCol) {
            if (FixedOnly && CurCol >= FFixedCols) {
                ACanvas.GetBrush()->SetColor(Color);
                ACanvas.FillRect(
                    {Narrow(Left), Narrow(Top), StopX, Narrow(Bottom + DI.Vert.EffectiveLineWidth)});
                break;
            }
            const bool Filler = CurCol == std::min(ColEnd, FColCount);
            const std::int64_t Right = Left + (Filler ? StopX : GetColWidths(CurCol));
            if (Right == Left) continue;
            const TRect Cell{Narrow(Left), Narrow(Top), Narrow(Right), Narrow(Bottom)};
            // The lines count as visible parts: an invalid strip may begin on one.
            const TRect Outer{Cell.Left, Cell.Top - GetPaintReach(CurCol),
                              Cell.Right + DI.Horz.EffectiveLineWidth,
                              Cell.Bottom + DI.Vert.EffectiveLineWidth};
            if (!Outer.IsEmpty() && ACanvas.RectVisible(Outer)) {
                State = IncludeDrawState;
                if (Active && CurCol == FCurrent.X && CurRow == FCurrent.Y) State.Include(gdFocused);
                if (PointInGridRect(CurCol, CurRow, Selection)) State.Include(gdSelected);
                ACanvas.SetFont(GetFont());
                if (Designing) {
                    TColor Fill = Color;
                    if (State.Contains(gdSelected) &&
                        (!State.Contains(gdFocused) || HasOption(goDrawFocusSelected) ||
                         HasOption(goRowSelect))) {
                        Fill = Active ? clHighlight : clInactiveCaption;
                        ACanvas.GetFont()->SetColor(clHighlightText);
                    }
                    ACanvas.GetBrush()->SetColor(Fill);
                    ACanvas.FillRect(Cell);
                }
                if (DrawGridLines) {
                    const bool Button = (FFixedColAsButton && CurCol < FFixedCols) ||
                                        (FFixedRowAsButton && CurRow < FFixedRows);
                    if (Button) {
                        DrawLines(ACanvas, CurCol, CurRow, Cell, HasOption(goFixedVertLine),
                                  HasOption(goFixedHorzLine), FFixedLineColor);
                    } else {
                        DrawLines(ACanvas, CurCol, CurRow, Cell, HasOption(goVertLine), HasOption(goHorzLine),
                                  FLineColor);
                    }
                }
            }
            DrawCell(ACanvas, CurCol, CurRow, Cell, State, ContinueRow);
            if (!Guard) return;
            Left = Right + DI.Horz.EffectiveLineWidth;
        }
        Top = Bottom + DI.Vert.EffectiveLineWidth;
    }
}

void TCustomExGrid::DrawCell(TCanvas& ACanvas, int ACol, int ARow, const TRect& Rect, TExGridDrawState State,
                             bool&) {
    if (!OnDrawCell) return;
    const bool Mirrored = UseRightToLeftAlignment();
    const int Width = GetClientWidth();
    const TRect R = Mirrored ? TRect{Width - Rect.Right, Rect.Top, Width - Rect.Left, Rect.Bottom} : Rect;
    const TOrientation Orientation(this, Mirrored, false);
    FireEvent(OnDrawCell, this, ACanvas, ACol, ARow, R, State);
}

// Both lines of thick ones take their colour from HorzLine; required so. A geometric pen is centred on its line, which
// therefore runs along the middle of the gap between two cells: it fills the gap and touches neither.
void TCustomExGrid::DrawLines(TCanvas& ACanvas, int, int, const TRect& Rect, bool VertLine, bool HorzLine,
                              TColor Color) {
    const TColor HorzColor = HorzLine ? Color : GetColor();
    const bool Thick = FGridLineWidth >= 2;
    const TColor VertColor = Thick ? HorzColor : VertLine ? Color : GetColor();
    const int Width = Thick ? FGridLineWidth : 1;
    const int VertGap = HasOption(goFixedVertLine) || HasOption(goVertLine) ? Width : 0;
    const int HorzGap = HasOption(goFixedHorzLine) || HasOption(goHorzLine) ? Width : 0;
    if (!Thick && ACanvas.GetScale() != std::floor(ACanvas.GetScale())) {
        // A hairline may be a device pixel narrower than its gap; the rest is background.
        TBrush* Brush = ACanvas.GetBrush();
        const TColor OldColor = Brush->GetColor();
        const TBrushStyle OldStyle = Brush->GetStyle();
        Brush->SetColor(GetColor());
        ACanvas.FillRect({Rect.Left, Rect.Bottom, Rect.Right + VertGap, Rect.Bottom + HorzGap});
        ACanvas.FillRect({Rect.Right, Rect.Top, Rect.Right + VertGap, Rect.Bottom});
        Brush->SetColor(OldColor);
        Brush->SetStyle(OldStyle);
    }
    // The mirrored mapping takes points to the pixel after the one that a picture would have, hence the step.
    const bool Mirrored = UseRightToLeftAlignment();
    const int Step = Mirrored ? 1 : 0;
    const int X = Rect.Right + (Mirrored ? Width - Width / 2 : Width / 2);
    const int Y = Rect.Bottom + Width / 2;
    TPen* Pen = ACanvas.GetPen();
    Pen->SetWidth(Width);
    Pen->SetStyle(psSolid);
    Pen->SetMode(pmCopy);
    Pen->SetColor(HorzColor);
    ACanvas.MoveTo(Rect.Left + Step, Y);
    ACanvas.LineTo(Rect.Right + Step + std::max(1, VertGap), Y);
    Pen->SetColor(VertColor);
    ACanvas.MoveTo(X, Rect.Top);
    ACanvas.LineTo(X, Rect.Bottom + std::max(1, HorzGap));
}

void TCustomExGrid::GetDrawColor(int, int, TColor&, TColor&, bool&) {}

void TCustomExGrid::FillNotCellArea(const TRect& Rect) { GetCanvas()->FillRect(Rect); }

// Under right-to-left alignment the text is drawn unmapped into the mirrored rectangle. What is measured is handed
// back from the rectangle's own left edge on, so that a caller never meets mirrored numbers.
void TCustomExGrid::DrawRTLText(TCanvas& ACanvas, std::string_view Text, TRect& Rect, unsigned Flags,
                                int VertMode) {
    if (VertMode != 0 && VertMode != static_cast<int>(DT_VCENTER) && VertMode != static_cast<int>(DT_BOTTOM))
        return;
    const bool Mirrored = UseRightToLeftAlignment();
    const bool Measure = (Flags & DT_CALCRECT) != 0;
    const unsigned TextFlags = DrawTextBiDiModeFlags(Flags);
    const int Width = GetClientWidth();
    const TOrientation Orientation(this, Mirrored, false);
    TRect Drawn =
        Mirrored && !Measure ? TRect{Width - Rect.Right, Rect.Top, Width - Rect.Left, Rect.Bottom} : Rect;
    if (VertMode != 0 && !Measure) {
        TRect Measured = Drawn;
        ACanvas.DrawText(Text, Measured, TextFlags | DT_CALCRECT);
        const int Room = Drawn.Height() - Measured.Height();
        Drawn.Top += std::max(0, VertMode == static_cast<int>(DT_VCENTER) ? Room / 2 : Room);
    }
    const int OldTop = Rect.Top;
    ACanvas.DrawText(Text, Drawn, TextFlags);
    if (Mirrored && !Measure) Drawn = {Width - Drawn.Right, Drawn.Top, Width - Drawn.Left, Drawn.Bottom};
    Rect = Drawn;
    if (VertMode != 0) Rect.Top = OldTop;
}

void TCustomExGrid::DrawDragImg(int X, int Y, int Width, int Height, TCanvas& Source, bool Blend) {
    if (Blend && AlphaBlend != nullptr) {
        AlphaBlend(*GetCanvas(), X, Y, Width, Height, Source, DragBlend);
    } else {
        GetCanvas()->BitBlt(X, Y, Width, Height, Source, 0, 0, SRCCOPY);
    }
}

// --- requests to paint ----------------------------------------------------------------------------------------

void TCustomExGrid::InvalidateGrid() { Invalidate(); }

// Covers whatever is visible of the range, its lines included. GridRectToScreenRect gives less when the range ends
// out of view after fixed cells.
void TCustomExGrid::InvalidateRect(const TGridRect& GridRect) {
    if (!HandleAllocated() || IsAllInvalid()) return;
    TExGridDI DI;
    CalcDI(DI);
    TRect R;
    if (!CellsToPixels(DI.Horz, GridRect.Left, GridRect.Right, R.Left, R.Right)) return;
    if (!CellsToPixels(DI.Vert, GridRect.Top, GridRect.Bottom, R.Top, R.Bottom)) return;
    R.Left -= GetPaintShift(DI); // columns without width: see DrawCells
    if (UseRightToLeftAlignment())
        R = {DI.Horz.GridExtent - R.Right, R.Top, DI.Horz.GridExtent - R.Left, R.Bottom};
    InvalidatePixels(R);
}

// How much further left than the geometry says cells may be painted.
int TCustomExGrid::GetPaintShift(const TExGridDI& DI) {
    int Shift = 0;
    const auto Count = [&](int First, int Last) {
        for (int Col = First; Col <= Last; ++Col) {
            if (GetColWidths(Col) == 0) Shift += DI.Horz.EffectiveLineWidth;
        }
    };
    Count(0, DI.Horz.FixedCellCount - 1);
    Count(DI.Horz.FirstGridCell, std::min(DI.Horz.LastFullVisibleCell + 1, FColCount - 1));
    return Shift;
}

void TCustomExGrid::InvalidateCell(int ACol, int ARow) {
    if (ACol < 0 || ARow < 0 || ACol >= FColCount || ARow >= FRowCount) return;
    if (FEditorMode && ACol == FCurrent.X && ARow == FCurrent.Y) return;
    InvalidateRect(GridRect(ACol, ARow, ACol, ARow));
}

void TCustomExGrid::InvalidateCol(int ACol) {
    if (HandleAllocated()) InvalidateRect(GridRect(ACol, 0, ACol, GetVisibleRowCount() + 1));
}

void TCustomExGrid::InvalidateRow(int ARow) {
    if (HandleAllocated()) InvalidateRect(GridRect(0, ARow, GetVisibleColCount() + 1, ARow));
}

void TCustomExGrid::InvalidateFullRow(int ARow) {
    if (!HandleAllocated()) return;
    TRect R;
    GridRectToScreenRect(GridRect(0, ARow, GetVisibleColCount() + 1, ARow), R, true, true, false);
    if (!R.IsEmpty()) InvalidatePixels(R);
}

void TCustomExGrid::InvalidateVisibleRow(int ARow) {
    if (!HandleAllocated()) return;
    TExGridDI DI;
    CalcDI(DI);
    TRect R{0, 0, DI.Horz.GridExtent, 0};
    if (!CellsToPixels(DI.Vert, ARow, ARow, R.Top, R.Bottom)) return;
    InvalidatePixels(R);
}

void TCustomExGrid::InvalidateNonFixed() {
    if (!HandleAllocated()) return;
    TRect R = GetNonFixedArea();
    if (UseRightToLeftAlignment()) R = {0, R.Top, GetClientWidth() - R.Left, R.Bottom};
    if (!R.IsEmpty()) InvalidatePixels(R);
}

// What appeared or went: from the edge of the smaller count to the end of the client. The last column that stays
// belongs to it, since a descendant may stretch it.
void TCustomExGrid::InvalidateStrips(int OldColCount, int OldRowCount) {
    if (!HandleAllocated() || IsAllInvalid()) return;
    TExGridDI DI;
    CalcDI(DI);
    const int Width = DI.Horz.GridExtent;
    const int Height = DI.Vert.GridExtent;
    const auto EdgeOf = [](const TExGridAxisDI& Axis, int Cell) {
        if (Cell < Axis.FixedCellCount) return 0;
        std::int64_t Pos = Axis.FixedBoundary;
        for (int I = Axis.FirstGridCell; I < Cell && Pos < Axis.GridExtent; ++I)
            Pos += std::int64_t{Axis.GetExtent(I)} + Axis.EffectiveLineWidth;
        return static_cast<int>(std::clamp<std::int64_t>(Pos, 0, Axis.GridExtent));
    };
    if (FColCount != OldColCount) {
        const int Edge =
            std::max(0, EdgeOf(DI.Horz, std::min(FColCount, OldColCount) - 1) - GetPaintShift(DI));
        const TRect Strip =
            UseRightToLeftAlignment() ? TRect{0, 0, Width - Edge, Height} : TRect{Edge, 0, Width, Height};
        if (!Strip.IsEmpty()) InvalidatePixels(Strip);
    }
    if (FRowCount != OldRowCount) {
        const int Edge = EdgeOf(DI.Vert, std::min(FRowCount, OldRowCount));
        if (Edge < Height) InvalidatePixels({0, Edge, Width, Height});
    }
}

} // namespace quill
