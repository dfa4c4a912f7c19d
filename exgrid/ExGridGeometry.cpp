// Geometry: layouts, cells to pixels and pixels to cells.
// Sums of extents are computed in 64 bits; what is stored in a layout is cut at MaxPixel.
#include "exgrid/ExGrid.h"

#include <algorithm>
#include <limits>

namespace quill {

namespace {

constexpr std::int64_t MaxPixel = std::numeric_limits<int>::max() / 2;

int ToPixel(std::int64_t Value) { return static_cast<int>(std::clamp(Value, -MaxPixel, MaxPixel)); }

// Where a cell begins; false when that is beyond the client.
bool CellStart(const TExGridAxisDI& Axis, int Line, int& Start) {
    std::int64_t Pos = 0;
    int Cell = 0;
    if (Line >= Axis.FixedCellCount) {
        Cell = Axis.FirstGridCell;
        if (Line >= Axis.FirstGridCell) Pos = Axis.FixedBoundary;
    }
    for (; Cell < Line; ++Cell) {
        Pos += std::int64_t{Axis.GetExtent(Cell)} + Axis.EffectiveLineWidth;
        if (Pos > Axis.GridExtent) return false;
    }
    if (Pos > Axis.GridExtent) return false;
    Start = ToPixel(Pos);
    return true;
}

// The first cell of First .. Last whose end lies beyond N, -1 when there is none. The ends run from Pos on.
int FindCell(const TExGridAxisDI& Axis, int First, int Last, std::int64_t Pos, int N) {
    for (int Cell = First; Cell <= Last; ++Cell) {
        Pos += std::int64_t{Axis.GetExtent(Cell)} + Axis.EffectiveLineWidth;
        if (N < Pos) return Cell;
    }
    return -1;
}

// The smallest first cell that still shows Start wholly. Cells without extent are passed over.
int MaxFirstCell(const TExGridAxisDI& Axis, int Start) {
    int Result = Start;
    std::int64_t Room = std::int64_t{Axis.GridExtent} + Axis.EffectiveLineWidth;
    for (int Cell = Start; Cell >= Axis.FixedCellCount; --Cell) {
        const int Extent = Axis.GetExtent(Cell);
        if (Extent <= 0) continue;
        Room -= std::int64_t{Extent} + Axis.EffectiveLineWidth;
        if (Room < Axis.FixedBoundary) {
            if (Result == Start && Axis.GetExtent(Start) <= 0) Result = Cell;
            break;
        }
        Result = Cell;
    }
    return Result;
}

} // namespace

void TCustomExGrid::CalcFixedAxis(TExGridAxisDI& Axis) const {
    std::int64_t Boundary = 0;
    for (int Cell = 0; Cell < Axis.FixedCellCount; ++Cell)
        Boundary += std::int64_t{Axis.GetExtent(Cell)} + Axis.EffectiveLineWidth;
    Axis.FixedBoundary = ToPixel(Boundary);
}

void TCustomExGrid::CalcFI(TExGridDI& DI) {
    const bool VertLines = HasOption(goFixedVertLine) || HasOption(goVertLine);
    const bool HorzLines = HasOption(goFixedHorzLine) || HasOption(goHorzLine);
    DI.Horz.EffectiveLineWidth = VertLines ? FGridLineWidth : 0;
    DI.Horz.FixedCellCount = FFixedCols;
    DI.Horz.FirstGridCell = FTopLeft.X;
    DI.Horz.GridCellCount = FColCount;
    DI.Horz.GetExtent = TGetExtentsFunc(this, &TCustomExGrid::GetColWidths);
    DI.Vert.EffectiveLineWidth = HorzLines ? FGridLineWidth : 0;
    DI.Vert.FixedCellCount = FFixedRows;
    DI.Vert.FirstGridCell = FTopLeft.Y;
    DI.Vert.GridCellCount = FRowCount;
    DI.Vert.GetExtent = TGetExtentsFunc(this, &TCustomExGrid::GetRowHeights);
    CalcFixedAxis(DI.Horz);
    CalcFixedAxis(DI.Vert);
}

void TCustomExGrid::CalcAxis(TExGridAxisDI& Axis, int Extent) const {
    Axis.GridExtent = Extent;
    Axis.GridBoundary = Axis.FixedBoundary;
    Axis.FullVisBoundary = Axis.FixedBoundary;
    Axis.LastFullVisibleCell = Axis.FirstGridCell;
    std::int64_t Boundary = Axis.FixedBoundary;
    for (int Cell = Axis.FirstGridCell; Cell < Axis.GridCellCount; ++Cell) {
        Boundary += std::int64_t{Axis.GetExtent(Cell)} + Axis.EffectiveLineWidth;
        if (Boundary > std::int64_t{Axis.GridExtent} + Axis.EffectiveLineWidth) {
            Axis.GridBoundary = Axis.GridExtent;
            break;
        }
        Axis.GridBoundary = ToPixel(Boundary);
        Axis.LastFullVisibleCell = Cell;
        Axis.FullVisBoundary = Axis.GridBoundary;
    }
}

void TCustomExGrid::CalcDIXY(TExGridDI& DI, int AxisWidth, int AxisHeight) {
    CalcFI(DI);
    CalcAxis(DI.Horz, AxisWidth);
    CalcAxis(DI.Vert, AxisHeight);
}

void TCustomExGrid::CalcDI(TExGridDI& DI) { CalcDIXY(DI, GetClientWidth(), GetClientHeight()); }

int TCustomExGrid::LinePos(const TExGridAxisDI& Axis, int Line) {
    int Start = 0;
    return CellStart(Axis, Line, Start) ? Start : 0;
}

bool TCustomExGrid::AxisToScreen(const TExGridAxisDI& Axis, int Min, int Max, bool IncludeLine, bool Extend,
                                 int& ScreenMin, int& ScreenMax) const {
    if (Max < 0 || Min >= Axis.GridCellCount) return false;
    Min = std::max(Min, 0);
    if (Min >= Axis.FixedCellCount && Min < Axis.FirstGridCell) {
        if (Max < Axis.FirstGridCell) return false;
        Min = Axis.FirstGridCell;
    }
    int Last = 0;
    if (Max > Axis.LastFullVisibleCell) {
        // One more than the last whole cell, when that one is partly in view.
        Max = Axis.LastFullVisibleCell;
        if (Max < Axis.GridCellCount - 1) ++Max;
        if (!CellStart(Axis, Max, Last)) --Max;
        Max = std::min(Max, Axis.GridCellCount - 1);
    }
    int Start = 0;
    if (!CellStart(Axis, Min, Start) || Start >= Axis.GridExtent) return false;
    // A range whose last cell is out of view is taken for its first cell.
    const bool ScrolledOut = Max >= Axis.FixedCellCount && Max < Axis.FirstGridCell;
    const bool LastShown = !ScrolledOut && CellStart(Axis, Max, Last);
    std::int64_t End =
        LastShown ? std::int64_t{Last} + Axis.GetExtent(Max) : std::int64_t{Start} + Axis.GetExtent(Min);
    if (End > Axis.GridExtent || Extend) End = Axis.GridExtent;
    if (IncludeLine) End += Axis.EffectiveLineWidth;
    ScreenMin = Start;
    ScreenMax = std::max(Start, ToPixel(End));
    return true;
}

bool TCustomExGrid::CellsToPixels(const TExGridAxisDI& Axis, int Min, int Max, int& Start, int& End) const {
    Max = std::min(Max, Axis.GridCellCount - 1);
    Min = std::max(Min, 0);
    const int First = Min < Axis.FixedCellCount ? Min : std::max(Min, Axis.FirstGridCell);
    if (Min < Axis.FixedCellCount && Max < Axis.FirstGridCell) Max = std::min(Max, Axis.FixedCellCount - 1);
    if (First > Max || !CellStart(Axis, First, Start) || Start >= Axis.GridExtent) return false;
    int Last = 0;
    std::int64_t Stop = Axis.GridExtent;
    if (CellStart(Axis, Max, Last)) Stop = std::int64_t{Last} + Axis.GetExtent(Max) + Axis.EffectiveLineWidth;
    End = ToPixel(std::min<std::int64_t>(Stop, Axis.GridExtent));
    return End > Start;
}

void TCustomExGrid::GridRectToScreenRect(const TGridRect& GridRect, TRect& ScreenRect, bool IncludeLine,
                                         bool ExtendRight, bool ExtendBottom) {
    ScreenRect = {};
    if (GridRect.Left > GridRect.Right || GridRect.Top > GridRect.Bottom) return;
    TExGridDI DI;
    CalcDI(DI);
    if (GridRect.Left > DI.Horz.LastFullVisibleCell + 1 || GridRect.Top > DI.Vert.LastFullVisibleCell + 1)
        return;
    TRect R;
    if (!AxisToScreen(DI.Horz, GridRect.Left, GridRect.Right, IncludeLine, ExtendRight, R.Left, R.Right))
        return;
    if (!AxisToScreen(DI.Vert, GridRect.Top, GridRect.Bottom, IncludeLine, ExtendBottom, R.Top, R.Bottom))
        return;
    if (UseRightToLeftAlignment() && GetCanvas()->GetCanvasOrientation() == coLeftToRight) {
        const int Width = GetClientWidth();
        R = {Width - R.Right, R.Top, Width - R.Left, R.Bottom};
    }
    ScreenRect = R;
}

TRect TCustomExGrid::BoxRect(int ALeft, int ATop, int ARight, int ABottom) {
    TRect Result;
    GridRectToScreenRect(GridRect(ALeft, ATop, ARight, ABottom), Result, false, false, false);
    return Result;
}

TRect TCustomExGrid::CellRect(int ACol, int ARow) { return BoxRect(ACol, ARow, ACol, ARow); }

TGridCoord TCustomExGrid::CalcCoordFromPoint(int X, int Y, const TExGridDI& DI) {
    TGridCoord Result = NoGridCoord;
    const TExGridAxisDI& Horz = DI.Horz;
    const int Width = GetClientWidth();
    const bool Mirrored = UseRightToLeftAlignment();
    const int N = Mirrored ? ToPixel(std::int64_t{Width} - X) : X;
    if (N >= Horz.FixedBoundary) {
        Result.X = FindCell(Horz, Horz.FirstGridCell, Horz.GridCellCount - 1, Horz.FixedBoundary, N);
    } else {
        // Counting from the client's far edge makes the whole fixed zone column 0 when mirrored; required so.
        Result.X = FindCell(Horz, 0, Horz.FixedCellCount - 1, Mirrored ? Width : 0, N);
    }
    const TExGridAxisDI& Vert = DI.Vert;
    if (Y >= Vert.FixedBoundary) {
        Result.Y = FindCell(Vert, Vert.FirstGridCell, Vert.GridCellCount - 1, Vert.FixedBoundary, Y);
    } else {
        Result.Y = FindCell(Vert, 0, Vert.FixedCellCount - 1, 0, Y);
    }
    return Result;
}

TGridCoord TCustomExGrid::MouseCoord(int X, int Y) {
    TExGridDI DI;
    CalcFI(DI); // which cells fit wholly does not matter here
    TGridCoord Result = CalcCoordFromPoint(X, Y, DI);
    if (Result.X < 0) {
        Result.Y = -1;
    } else if (Result.Y < 0) {
        Result.X = -1;
    }
    return Result;
}

void TCustomExGrid::MouseToCell(int X, int Y, int& ACol, int& ARow) {
    const TGridCoord Coord = MouseCoord(X, Y);
    ACol = Coord.X;
    ARow = Coord.Y;
}

int TCustomExGrid::GetGridWidth() {
    TExGridDI DI;
    CalcDI(DI);
    return DI.Horz.GridBoundary;
}

int TCustomExGrid::GetGridHeight() {
    TExGridDI DI;
    CalcDI(DI);
    return DI.Vert.GridBoundary;
}

int TCustomExGrid::GetVisibleColCount() {
    TExGridDI DI;
    CalcDI(DI);
    return DI.Horz.LastFullVisibleCell - FTopLeft.X + 1;
}

int TCustomExGrid::GetVisibleRowCount() {
    TExGridDI DI;
    CalcDI(DI);
    return DI.Vert.LastFullVisibleCell - FTopLeft.Y + 1;
}

TRect TCustomExGrid::GetNonFixedArea() {
    TExGridDI DI;
    CalcDI(DI);
    return {DI.Horz.FixedBoundary, DI.Vert.FixedBoundary, DI.Horz.GridExtent, DI.Vert.GridBoundary};
}

TGridCoord TCustomExGrid::CalcMaxTopLeft(const TGridCoord& Coord, const TExGridDI& DI) {
    return {MaxFirstCell(DI.Horz, Coord.X), MaxFirstCell(DI.Vert, Coord.Y)};
}

// The walks from the last cell need no layout of the visible ones.
int TCustomExGrid::MaxLeftIn(int AxisWidth) {
    TExGridDI DI;
    CalcFI(DI);
    DI.Horz.GridExtent = AxisWidth;
    return MaxFirstCell(DI.Horz, FColCount - 1);
}

int TCustomExGrid::MaxTopIn(int AxisHeight) {
    TExGridDI DI;
    CalcFI(DI);
    DI.Vert.GridExtent = AxisHeight;
    return MaxFirstCell(DI.Vert, FRowCount - 1);
}

bool TCustomExGrid::IsGridEmpty() const {
    return FRowCount == 0 || FRowCount == FFixedRows || FColCount == 0 || FColCount == FFixedCols;
}

void TCustomExGrid::Initialize() {
    FTopLeft = {FFixedCols, FFixedRows};
    FCurrent = FTopLeft;
    FAnchor = FCurrent;
    FOpposite = FCurrent;
    if (HasOption(goRowSelect)) {
        FAnchor.X = FColCount - 1;
        FOpposite.X = FColCount - 1;
    }
}

} // namespace quill
