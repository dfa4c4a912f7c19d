// Moving columns and rows with the mouse: a picture of the column or row follows the mouse, a mark shows where a release
// would put it, and the cells scroll at the edges. Picture and mark are painted last, over the cells, so that whatever
// else is painted meanwhile leaves them whole.
#include "exgrid/GridDrag.h"

#include "host/graphics/Canvas.h"
#include "host/windows/Application.h"

#include <algorithm>
#include <cstdlib>

namespace quill {

namespace {

constexpr int MarkWidth = 2;
constexpr int EdgeZone = 8;    // pixels inside an edge of the cells that scroll already
constexpr int TicksPerCol = 4; // columns are wide: they scroll with every fourth tick of the timer only

// The insert marks beside the gap, which point to it.
struct TMarkArrows {
    TBitmap Left;  // right of the gap
    TBitmap Right; // left of the gap

    TMarkArrows() {
        Left.LoadFromResourceName("DRAGLEFTARROW");
        Left.MakeTransparent(clWhite);
        Right.LoadFromResourceName("DRAGRIGHTARROW");
        Right.MakeTransparent(clWhite);
    }
};

TMarkArrows& MarkArrows() {
    static TMarkArrows Arrows;
    return Arrows;
}

} // namespace

bool TCustomExGrid::BeginColumnDrag(int&, int&, const TPoint&) { return true; }

bool TCustomExGrid::BeginRowDrag(int&, int&, const TPoint&) { return true; }

bool TCustomExGrid::CheckColumnDrag(int&, int&, const TPoint&) { return true; }

bool TCustomExGrid::CheckRowDrag(int&, int&, const TPoint&) { return true; }

bool TCustomExGrid::EndColumnDrag(int&, int&, const TPoint&) { return true; }

bool TCustomExGrid::EndRowDrag(int&, int&, const TPoint&) { return true; }

bool TCustomExGrid::MovesRowsByCells() const { return FFixedCols == 0; }

// --- begin ------------------------------------------------------------------------------------------------------------

// A press on Cell that may become a move; whether it does the way of the mouse will show.
void TCustomExGrid::BeginMoving(TGridState State, const TGridCoord& Cell, const TPoint& Pos) {
    const bool Columns = State == gsColMoving;
    int Origin = Columns ? Cell.X : Cell.Y;
    int Destination = Origin;
    const TControlGuard Guard(this);
    const bool Allowed =
        Columns ? BeginColumnDrag(Origin, Destination, Pos) : BeginRowDrag(Origin, Destination, Pos);
    if (!Guard || !Allowed) return;
    const int Fixed = Columns ? FFixedCols : FFixedRows;
    const int Count = Columns ? FColCount : FRowCount;
    if (Origin < Fixed || Origin >= Count) return;
    auto Drag = std::make_unique<TDrag>();
    Drag->Kind = State;
    Drag->Index = Origin;
    Drag->Start = AlongAxis(Pos, Columns);
    Drag->Pos = Pos;
    FDrag = std::move(Drag);
    FGridState = State;
    SetTimer(ScrollTimerID, ScrollTimerInterval);
}

// Takes the picture once the mouse has gone far enough to mean a move.
bool TCustomExGrid::ShowDrag() {
    const bool Columns = FDrag->IsColumn();
    const TControlGuard Guard(this);
    Update();
    if (!Guard || !FDrag) return false;
    TExGridDI DI;
    CalcDI(DI);
    const TExGridAxisDI& Axis = Columns ? DI.Horz : DI.Vert;
    int From = 0;
    int To = 0;
    if (!CellsToPixels(Axis, FDrag->Index, FDrag->Index, From, To)) return false;
    TRect R = Columns ? TRect{From, 0, To, DI.Vert.GridBoundary} : TRect{0, From, DI.Horz.GridBoundary, To};
    FDrag->Grab = FDrag->Start - From;
    if (UseRightToLeftAlignment())
        R = {DI.Horz.GridExtent - R.Right, R.Top, DI.Horz.GridExtent - R.Left, R.Bottom};
    if (R.IsEmpty()) return false;
    FDrag->Picture = TBitmap::CreateCompatible(*GetCanvas(), R.Width(), R.Height());
    TCanvas& Picture = *FDrag->Picture->GetCanvas();
    Picture.BitBlt(0, 0, R.Width(), R.Height(), *GetCanvas(), R.Left, R.Top, SRCCOPY);
    Picture.GetBrush()->SetColor(clBtnShadow);
    Picture.FrameRect({0, 0, R.Width(), R.Height()});
    FDrag->Shown = true;
    return true;
}

// --- on the way -------------------------------------------------------------------------------------------------------

void TCustomExGrid::MoveDragTo(const TPoint& Pos) {
    const bool Columns = FDrag->IsColumn();
    const int Way = AlongAxis(Pos, Columns) - FDrag->Start;
    const TControlGuard Guard(this);
    if (!FDrag->Shown && (std::abs(Way) <= Mouse.GetDragThreshold() || !ShowDrag())) return;
    if (!Guard || !FDrag) return;
    InvalidateDrag();
    FDrag->Pos = Pos;
    InvalidateDrag();
    AimDrag();
}

// Finds the gap that the mouse is nearest to and asks whether the column or row may go there.
void TCustomExGrid::AimDrag() {
    const bool Columns = FDrag->IsColumn();
    TExGridDI DI;
    CalcDI(DI);
    const TExGridAxisDI& Axis = Columns ? DI.Horz : DI.Vert;
    const int N = AlongAxis(FDrag->Pos, Columns);
    int Gap = Axis.FirstGridCell;
    std::int64_t Start = Axis.FixedBoundary;
    while (Gap < Axis.GridCellCount && Start < Axis.GridExtent) {
        const int Extent = Axis.GetExtent(Gap);
        if (N < Start + Extent / 2) break;
        Start += std::int64_t{Extent} + Axis.EffectiveLineWidth;
        ++Gap;
    }
    int Origin = FDrag->Index;
    int Destination = Gap > Origin ? Gap - 1 : Gap;
    bool Allowed = Destination != Origin;
    if (Allowed) {
        const TControlGuard Guard(this);
        const TPoint Pos = FDrag->Pos;
        const int Wanted = Destination;
        Allowed =
            Columns ? CheckColumnDrag(Origin, Destination, Pos) : CheckRowDrag(Origin, Destination, Pos);
        if (!Guard || !FDrag || FDrag->IsSizing()) return;
        const int Fixed = Columns ? FFixedCols : FFixedRows;
        const int Count = Columns ? FColCount : FRowCount;
        ApplyCursor(Allowed ? GetCursor() : crNoDrop);
        if (Origin >= Fixed && Origin < Count) FDrag->Index = Origin;
        Allowed = Allowed && Destination >= Fixed && Destination < Count && Destination != Origin;
        if (Destination != Wanted) Gap = Destination > Origin ? Destination + 1 : Destination;
    }
    if (!Allowed) Gap = Destination = -1;
    FDrag->Destination = Destination;
    if (Gap == FDrag->Gap) return;
    InvalidateDrag();
    FDrag->Gap = Gap;
    InvalidateDrag();
}

// One tick of the timer: scrolls while the mouse is at or beyond an edge of the cells that move, and follows it. Also
// for drags of descendants that put the grid into a moving state themselves.
void TCustomExGrid::MoveAndScroll(const TPoint& Pos) {
    const bool Columns = FGridState == gsColMoving;
    TExGridDI DI;
    CalcDI(DI);
    const TExGridAxisDI& Axis = Columns ? DI.Horz : DI.Vert;
    const int N = AlongAxis(Pos, Columns);
    // A drag that has not begun to move scrolls nothing.
    if (FDrag && !FDrag->Shown) return;
    const bool Back = N < Axis.FixedBoundary + EdgeZone && Axis.FirstGridCell > Axis.FixedCellCount;
    const bool On = N >= Axis.GridExtent - EdgeZone && Axis.LastFullVisibleCell < Axis.GridCellCount - 1;
    if (!Back && !On) {
        if (FDrag) FDrag->Ticks = 0;
        return;
    }
    if (FDrag && Columns && FDrag->Ticks++ % TicksPerCol != 0) return;
    const TControlGuard Guard(this);
    ModifyScrollBar(Columns ? SB_HORZ : SB_VERT, Back ? SB_LINEUP : SB_LINEDOWN, 0, false);
    if (Guard && FDrag && FDrag->Shown) MoveDragTo(Pos);
}

// --- picture and mark ---------------------------------------------------------------------------------------------------

int TCustomExGrid::GetDragIndex() const { return FDrag ? FDrag->Index : -1; }

int TCustomExGrid::GetDragOldExtent() const { return FDrag && FDrag->IsSizing() ? FDrag->OldExtent : -1; }

bool TCustomExGrid::IsDragShown() const { return FDrag && FDrag->Shown; }

// Both in client pixels, empty when there is none. The mark has room for its arrows.
void TCustomExGrid::GetDragRects(TRect& Picture, TRect& Mark, TRect& Line) {
    Picture = Mark = Line = {};
    if (!IsDragShown()) return;
    const bool Columns = FDrag->IsColumn();
    TExGridDI DI;
    CalcDI(DI);
    const int Width = FDrag->Picture->GetWidth();
    const int Height = FDrag->Picture->GetHeight();
    const int At = AlongAxis(FDrag->Pos, Columns) - FDrag->Grab;
    Picture = Columns ? TRect{At, 0, At + Width, Height} : TRect{0, At, Width, At + Height};
    if (FDrag->Gap >= 0) {
        const TExGridAxisDI& Axis = Columns ? DI.Horz : DI.Vert;
        std::int64_t Pos = Axis.FixedBoundary;
        for (int Cell = Axis.FirstGridCell; Cell < FDrag->Gap && Pos < Axis.GridExtent; ++Cell)
            Pos += std::int64_t{Axis.GetExtent(Cell)} + Axis.EffectiveLineWidth;
        // In the middle of the line between the cells, and whole at the client's end.
        const int Middle = static_cast<int>(Pos) - Axis.EffectiveLineWidth / 2 - MarkWidth / 2;
        const int Start = std::clamp(Middle, 0, std::max(0, Axis.GridExtent - MarkWidth));
        const int Arrow = MarkArrows().Left.GetWidth();
        if (Columns) {
            Line = {Start, 0, Start + MarkWidth, DI.Vert.GridBoundary};
            Mark = {Line.Left - Arrow, 0, Line.Right + Arrow, std::max(Line.Bottom, Arrow)};
        } else {
            Line = {0, Start, DI.Horz.GridBoundary, Start + MarkWidth};
            Mark = Line;
        }
    }
    if (!UseRightToLeftAlignment()) return;
    // A row's picture is as wide as the cells and lies where they do.
    for (TRect* R : {&Picture, &Mark, &Line})
        *R = {DI.Horz.GridExtent - R->Right, R->Top, DI.Horz.GridExtent - R->Left, R->Bottom};
}

void TCustomExGrid::InvalidateDrag() {
    TRect Picture;
    TRect Mark;
    TRect Line;
    GetDragRects(Picture, Mark, Line);
    if (!Picture.IsEmpty()) InvalidatePixels(Picture);
    if (!Mark.IsEmpty()) InvalidatePixels(Mark);
}

void TCustomExGrid::DrawDrag() {
    TRect Picture;
    TRect Mark;
    TRect Line;
    GetDragRects(Picture, Mark, Line);
    if (!Picture.IsEmpty())
        DrawDragImg(Picture.Left, Picture.Top, Picture.Width(), Picture.Height(),
                    *FDrag->Picture->GetCanvas(), true);
    if (Line.IsEmpty()) return;
    TCanvas& Canvas = *GetCanvas();
    Canvas.GetBrush()->SetColor(clHighlight);
    Canvas.FillRect(Line);
    if (!FDrag->IsColumn()) return;
    TExGridDI DI;
    CalcFI(DI);
    TMarkArrows& Arrows = MarkArrows();
    const int Top = std::max(0, (DI.Vert.FixedBoundary - Arrows.Left.GetHeight()) / 2);
    Canvas.Draw(Line.Left - Arrows.Right.GetWidth(), Top, &Arrows.Right);
    Canvas.Draw(Line.Right, Top, &Arrows.Left);
}

// --- end --------------------------------------------------------------------------------------------------------------

// Ends whatever the mouse was doing; nothing is taken back.
void TCustomExGrid::LeaveMode() {
    KillTimer(ScrollTimerID);
    InvalidateDrag();
    FDrag.reset();
    FGridState = gsNormal;
    FDragStart = NoGridCoord;
    FClickCell = NoGridCoord;
    SetPressedFixed(NoGridCoord);
}

// The release at the end of a move.
void TCustomExGrid::DropDrag(const TPoint& Pos) {
    const bool Columns = FDrag->IsColumn();
    int Origin = FDrag->Index;
    int Destination = FDrag->Shown && FDrag->Destination >= 0 ? FDrag->Destination : Origin;
    const TControlGuard Guard(this);
    LeaveMode();
    if (GetAppliedCursor() == crNoDrop) ApplyCursor(GetCursor());
    const bool Allowed =
        Columns ? EndColumnDrag(Origin, Destination, Pos) : EndRowDrag(Origin, Destination, Pos);
    if (!Guard || !Allowed || Origin == Destination) return;
    const auto Inside = [&](int Index) {
        return Columns ? Index >= FFixedCols && Index < FColCount : Index >= FFixedRows && Index < FRowCount;
    };
    if (!Inside(Origin) || !Inside(Destination)) return;
    if (Columns) {
        MoveColumn(Origin, Destination);
    } else {
        DropRow(Origin, Destination);
    }
}

void TCustomExGrid::DropRow(int FromIndex, int ToIndex) { MoveRow(FromIndex, ToIndex); }

void TCustomExGrid::CancelDrag() {
    if (!FDrag) return;
    const TDrag& Drag = *FDrag;
    const TControlGuard Guard(this);
    int Index = Drag.Index;
    const TPoint Pos = Drag.Pos;
    const bool Columns = Drag.IsColumn();
    const bool Sizing = Drag.IsSizing();
    const int Extent = Drag.StoredExtent;
    LeaveMode();
    if (Sizing) {
        if (Columns && Index < FColCount) SetColWidths(Index, Extent);
        if (!Columns && Index < FRowCount) SetRowHeights(Index, Extent);
        return;
    }
    if (GetAppliedCursor() == crNoDrop) ApplyCursor(GetCursor());
    // Nothing is moved, but whoever was told of the beginning hears of the end.
    int Destination = Index;
    if (Columns) {
        EndColumnDrag(Index, Destination, Pos);
    } else {
        EndRowDrag(Index, Destination, Pos);
    }
}

void TCustomExGrid::CancelMode() {
    const TControlGuard Guard(this);
    CancelDrag();
    if (Guard) LeaveMode();
}

} // namespace quill
