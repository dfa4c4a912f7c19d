// Sizing columns and rows with the mouse: the zones at the borders of fixed cells, their cursors, sizing while the
// mouse moves, and fitting by a double click.
#include "exgrid/GridDrag.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace quill {

namespace {

// Each zone takes at most this part of its cell, which keeps the rest for clicks however narrow it is.
constexpr int ZoneShare = 3;

// The cell whose far border is nearest to a position, among the visible cells of one axis. Borders have a zone on both
// sides. Where cells without extent share a border its far side is that of the last one, so that it can be opened.
class TBorderSearch {
public:
    TBorderSearch(const TExGridAxisDI& Axis, int Pos) : FAxis(Axis), FPos(Pos) {}

    // Cells First .. Last, the first of which begins at Start; Next follows them.
    void Scan(int First, int Last, std::int64_t Start, int Next) {
        for (int Cell = First; Cell <= Last && Start <= FAxis.GridExtent; ++Cell) {
            const int Extent = std::max(0, FAxis.GetExtent(Cell));
            const std::int64_t End = Start + Extent;
            if (End > FAxis.GridExtent) break;
            Start = End + FAxis.EffectiveLineWidth;
            const int HalfLine = FAxis.EffectiveLineWidth / 2;
            const int Distance = FPos - static_cast<int>(End) - HalfLine;
            const int Follower = Cell < Last ? Cell + 1 : Next;
            if (-Distance > HalfLine + ZoneIn(Extent) || Distance > HalfLine + ZoneAfter(Follower)) continue;
            // Of two borders at equal distance the one further on has the side behind it.
            if (std::abs(Distance) > FBest || (std::abs(Distance) == FBest && Distance < 0)) continue;
            FBest = std::abs(Distance);
            Index = Cell;
            BorderPos = FPos - Distance;
        }
    }

    int Index = -1;
    int BorderPos = 0;

private:
    static int ZoneIn(int Extent) { return std::min(Extent / ZoneShare, TCustomExGrid::SizingZone); }
    int ZoneAfter(int Cell) const {
        const int Extent = Cell < FAxis.GridCellCount ? FAxis.GetExtent(Cell) : 0;
        return Extent > 0 ? ZoneIn(Extent) : TCustomExGrid::SizingZone;
    }

    const TExGridAxisDI& FAxis;
    int FPos;
    int FBest = std::numeric_limits<int>::max();
};

} // namespace

bool TCustomExGrid::CanColSizing(int, int) { return true; }

void TCustomExGrid::CalcSizingState(int X, int Y, TGridState& State, int& Index, int& SizingPos,
                                    int& SizingOfs, TExGridDI& DI) {
    State = gsNormal;
    Index = -1;
    SizingPos = 0;
    SizingOfs = 0;
    const bool Designed = HasState(csDesigning) && AllowDesignSizing();
    const bool Cols = HasOption(goColSizing) || Designed;
    const bool Rows = HasOption(goRowSizing) || Designed;
    if ((!Cols && !Rows) || X < 0 || Y < 0 || X >= DI.Horz.GridExtent || Y >= DI.Vert.GridExtent) return;
    const int N = AlongAxis({X, Y}, true);
    const auto Find = [](const TExGridAxisDI& Axis, int Pos, int ScrolledBy) {
        TBorderSearch Search(Axis, Pos);
        Search.Scan(0, Axis.FixedCellCount - 1, 0, Axis.FirstGridCell);
        Search.Scan(Axis.FirstGridCell, Axis.GridCellCount - 1, std::int64_t{Axis.FixedBoundary} - ScrolledBy,
                    Axis.GridCellCount);
        return Search;
    };
    if (Cols && Y < DI.Vert.FixedBoundary) {
        const TBorderSearch Found = Find(DI.Horz, N, FHOffset);
        if (Found.Index >= 0 && CanColSizing(Found.Index, CalcCoordFromPoint(X, Y, DI).Y)) {
            State = gsColSizing;
            Index = Found.Index;
            SizingPos = Found.BorderPos;
            SizingOfs = Found.BorderPos - N;
            return;
        }
    }
    if (Rows && N < DI.Horz.FixedBoundary) {
        const TBorderSearch Found = Find(DI.Vert, Y, 0);
        if (Found.Index < 0) return;
        State = gsRowSizing;
        Index = Found.Index;
        SizingPos = Found.BorderPos;
        SizingOfs = Found.BorderPos - Y;
    }
}

// A client point along one axis, in the grid's own direction.
int TCustomExGrid::AlongAxis(const TPoint& Pos, bool Columns) const {
    if (!Columns) return Pos.Y;
    return UseRightToLeftAlignment() ? GetClientWidth() - 1 - Pos.X : Pos.X;
}

// What a press at a client point would size.
TGridState TCustomExGrid::SizingAt(const TPoint& Pos, int& Index) {
    TGridState State = gsNormal;
    int SizingPos = 0;
    int SizingOfs = 0;
    TExGridDI DI;
    CalcDI(DI);
    CalcSizingState(Pos.X, Pos.Y, State, Index, SizingPos, SizingOfs, DI);
    return State;
}

void TCustomExGrid::WMSetCursor(TMessage& Message) {
    TCursor Cursor = crDefault;
    if (FGridState == gsNormal &&
        (HasOption(goColSizing) || HasOption(goRowSizing) || HasState(csDesigning))) {
        int Index = -1;
        const TGridState State = SizingAt(PointFromParam(Message.LParam), Index);
        if (State == gsColSizing) Cursor = HorzCursor;
        if (State == gsRowSizing) Cursor = VertCursor;
    }
    if (Cursor == crDefault) {
        TCustomControl::WMSetCursor(Message);
        return;
    }
    ApplyCursor(Cursor);
    Message.Result = 1;
}

// --- sizing -----------------------------------------------------------------------------------------------------------

// Begins with the border of cell Index; a double click fits the cell first.
void TCustomExGrid::BeginSizing(TGridState State, int Index, const TPoint& Pos, bool Fit) {
    const bool Columns = State == gsColSizing;
    const TControlGuard Guard(this);
    const int Seen = Columns ? GetColWidths(Index) : GetRowHeights(Index);
    auto Drag = std::make_unique<TDrag>();
    Drag->Kind = State;
    Drag->Index = Index;
    Drag->Start = AlongAxis(Pos, Columns);
    Drag->StoredExtent = Columns ? TCustomExGrid::GetColWidths(Index) : Seen;
    Drag->OldExtent = Seen;
    Drag->BaseExtent = Seen;
    FDrag = std::move(Drag);
    FGridState = State;
    if (!Fit) return;
    if (Columns) {
        FitColumn(Index);
    } else {
        SetRowHeights(Index, FDefaultRowHeight);
    }
    if (!Guard || !FDrag || !FDrag->IsSizing() || FDrag->Index != Index) return;
    FDrag->BaseExtent = Columns ? GetColWidths(Index) : GetRowHeights(Index);
}

// Gives the sized cell the extent that the mouse has reached.
void TCustomExGrid::SizeTo(const TPoint& Pos) {
    const bool Columns = FDrag->IsColumn();
    const int Index = FDrag->Index;
    if (Index >= (Columns ? FColCount : FRowCount)) return; // a handler took it away
    const int Way = AlongAxis(Pos, Columns) - FDrag->Start;
    // A cell that is smaller already need not grow first.
    const int Least = std::min(MinSizedExtent, FDrag->BaseExtent);
    const int Extent = std::max(Least, FDrag->BaseExtent + Way);
    SizeCell(Columns, Index, Extent);
}

void TCustomExGrid::SizeCell(bool Columns, int Index, int Extent) {
    if (Columns) {
        if (Extent != GetColWidths(Index)) SetColWidths(Index, Extent);
    } else if (Extent != GetRowHeights(Index)) {
        SetRowHeights(Index, Extent);
    }
}

// --- fitting ----------------------------------------------------------------------------------------------------------

int TCustomExGrid::GetFitColWidth(int ACol) {
    const TControlGuard Guard(this);
    int Width = -1;
    TExGridDI DI;
    CalcDI(DI);
    const auto Measure = [&](int First, int Last) {
        for (int Row = First; Row <= Last && Row < FRowCount; ++Row) {
            const int Needed = GetCellFitWidth(ACol, Row);
            if (!Guard) return;
            Width = std::max(Width, Needed);
        }
    };
    Measure(0, FFixedRows - 1);
    const int Last = DI.Vert.LastFullVisibleCell + (DI.Vert.FullVisBoundary < DI.Vert.GridExtent ? 1 : 0);
    if (Guard) Measure(DI.Vert.FirstGridCell, Last);
    return Width;
}

int TCustomExGrid::GetCellFitWidth(int ACol, int ARow) {
    constexpr int Margin = 4; // on both sides of a text
    const TControlGuard Guard(this);
    const std::string Text = GetEditText(ACol, ARow);
    if (!Guard || Text.empty()) return -1;
    GetCanvas()->SetFont(GetFont());
    return GetCanvas()->TextWidth(Text) + 2 * Margin;
}

void TCustomExGrid::FitColumn(int ACol) {
    const TControlGuard Guard(this);
    const int Width = GetFitColWidth(ACol);
    if (Guard && Width >= 0 && ACol >= 0 && ACol < FColCount)
        SetColWidths(ACol, std::max(Width, MinSizedExtent));
}

} // namespace quill
