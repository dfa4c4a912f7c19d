// Scrolling: the origin, the scroll bars, the wheel and the timer.
#include "exgrid/ExGrid.h"

#include "host/windows/Application.h"
#include "host/windows/FlagScope.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace quill {

namespace {

int ScalePosition(int Value, int Range) {
    return Range > 0 ? MulDiv(Value, TCustomExGrid::BarScale, Range) : 0;
}

// Pixels between two origins of one axis, negative when it moved forward; false when that is more than is shown.
bool AxisDelta(const TExGridAxisDI& Axis, int Old, int New, int& Delta) {
    const std::int64_t Shown = std::int64_t{Axis.GridBoundary} - Axis.FixedBoundary;
    std::int64_t Sum = 0;
    for (int Cell = std::min(Old, New); Cell < std::max(Old, New); ++Cell) {
        Sum += std::int64_t{Axis.GetExtent(Cell)} + Axis.EffectiveLineWidth;
        if (Sum > Shown) return false;
    }
    Delta = static_cast<int>(New > Old ? -Sum : Sum);
    return true;
}

} // namespace

// --- the origin -----------------------------------------------------------------------------------------------

void TCustomExGrid::SetLeftCol(int Value) { MoveTopLeft(Value, FTopLeft.Y); }

void TCustomExGrid::SetTopRow(int Value) { MoveTopLeft(FTopLeft.X, Value); }

void TCustomExGrid::MoveTopLeft(int ALeft, int ATop) {
    // What is still to be painted moves along with the pixels, so nothing need be painted before.
    const auto Fitted = [&] {
        return TGridCoord{std::clamp(ALeft, FFixedCols, std::max(FFixedCols, FColCount - 1)),
                          std::clamp(ATop, FFixedRows, std::max(FFixedRows, FRowCount - 1))};
    };
    if (Fitted() == FTopLeft) return;
    const TGridCoord OldTopLeft = std::exchange(FTopLeft, Fitted());
    TopLeftMoved(OldTopLeft);
}

// Instead of painting everything anew, the pixels that stay valid are moved where that gives the same picture.
void TCustomExGrid::TopLeftMoved(const TGridCoord& OldTopLeft) {
    const TControlGuard Guard(this);
    UpdateScrollPos();
    if (!Guard) return;
    if (HandleAllocated()) {
        TExGridDI DI;
        CalcDI(DI);
        int DX = 0;
        int DY = 0;
        const bool HorzMoves = AxisDelta(DI.Horz, OldTopLeft.X, FTopLeft.X, DX);
        const bool VertMoves = AxisDelta(DI.Vert, OldTopLeft.Y, FTopLeft.Y, DY);
        // Columns without width are painted without their line, so that the distance does not hold for them.
        const bool Exact = DX == 0 || (GetPaintShift(DI) == 0 && !HasEmptyColumn(OldTopLeft.X, FTopLeft.X));
        if (HorzMoves && VertMoves && (DX == 0 || DY == 0) && Exact && !IsDragShown() &&
            CanScrollPixels(DX, DY)) {
            if (DX != 0 || DY != 0) ScrollDataInfo(DX, DY, DI);
        } else {
            InvalidateGrid();
        }
        PlaceEditor(false);
        if (!Guard) return;
    }
    TopLeftChanged();
}

bool TCustomExGrid::HasEmptyColumn(int A, int B) {
    for (int Col = std::min(A, B); Col < std::max(A, B); ++Col) {
        if (GetColWidths(Col) == 0) return true;
    }
    return false;
}

bool TCustomExGrid::CanScrollPixels(int, int) { return true; }

void TCustomExGrid::TopLeftChanged() {
    const TControlGuard Guard(this);
    FireEvent(OnTopLeftChanged, this);
    if (Guard) Q_EMIT topLeftChanged();
}

void TCustomExGrid::ScrollData(int DX, int DY) {
    TExGridDI DI;
    CalcDI(DI);
    ScrollDataInfo(DX, DY, DI);
}

void TCustomExGrid::ScrollDataInfo(int DX, int DY, TExGridDI& DI) {
    if (!HandleAllocated()) return;
    const int Width = DI.Horz.GridExtent;
    const int Height = DI.Vert.GridExtent;
    if (DX != 0) {
        TRect Band{DI.Horz.FixedBoundary, 0, Width, Height};
        if (UseRightToLeftAlignment()) {
            Band = {0, 0, Width - DI.Horz.FixedBoundary, Height};
            DX = -DX;
        }
        if (!Band.IsEmpty()) ScrollWindow(DX, 0, Band, Band);
    }
    if (DY != 0) {
        const TRect Band{0, DI.Vert.FixedBoundary, Width, Height};
        if (!Band.IsEmpty()) ScrollWindow(0, DY, Band, Band);
    }
    InvalidateRect(GetSelection());
}

// --- scroll requests ------------------------------------------------------------------------------------------

void TCustomExGrid::ModifyScrollBar(int ScrollBar, unsigned ScrollCode, unsigned Pos, bool UseRightToLeft) {
    const TFlagScope Scrolling(this, FScrolling);
    const int Direction = UseRightToLeft && UseRightToLeftAlignment() ? -1 : 1;
    if (ScrollBar == SB_HORZ && FColCount == 1) {
        MoveSingleColumn(ScrollCode, Pos, Direction);
        return;
    }
    TExGridDI DI;
    CalcDI(DI);
    const bool Horz = ScrollBar == SB_HORZ;
    const TExGridAxisDI& Axis = Horz ? DI.Horz : DI.Vert;
    const auto OfAxis = [Horz](const TGridCoord& Coord) { return Horz ? Coord.X : Coord.Y; };
    const TGridCoord MaxTopLeft = CalcMaxTopLeft({FColCount - 1, FRowCount - 1}, DI);
    const int Min = Axis.FixedCellCount;
    const int Max = std::max(Min, OfAxis(MaxTopLeft));
    const int Origin = Axis.FirstGridCell;
    // 0 for requests that name a position.
    std::int64_t Step = 0;
    std::int64_t Target = Origin;
    switch (ScrollCode) {
    case SB_LINEUP:
        Step = -Direction;
        break;
    case SB_LINEDOWN:
        Step = Direction;
        break;
    case SB_PAGEUP:
        Step = -Direction * std::max(1, Origin - OfAxis(CalcMaxTopLeft(FTopLeft, DI)));
        break;
    case SB_PAGEDOWN:
        Step = Direction * std::max(1, Axis.LastFullVisibleCell - Origin);
        break;
    case SB_THUMBPOSITION:
    case SB_THUMBTRACK:
        if (ScrollCode == SB_THUMBPOSITION || HasOption(goThumbTracking)) {
            const int Offset =
                MulDiv(static_cast<int>(std::min<unsigned>(Pos, BarScale)), Max - Min, BarScale);
            Target = Direction < 0 ? Max - Offset : Min + Offset;
        }
        break;
    case SB_TOP:
        Target = Min;
        break;
    case SB_BOTTOM:
        Target = Max;
        break;
    default:
        break;
    }
    if (Step != 0) {
        Target += Step;
        // Cells without extent are passed over. A page is made once: another one would leave out what is between.
        while (Target > Min && Target < Max && Axis.GetExtent(static_cast<int>(Target)) <= 0)
            Target += Step > 0 ? 1 : -1;
    }
    const int NewOrigin = static_cast<int>(std::clamp<std::int64_t>(Target, Min, Max));
    const int OtherMin = Horz ? FFixedRows : FFixedCols;
    const int OtherMax = std::max(OtherMin, Horz ? MaxTopLeft.Y : MaxTopLeft.X);
    const int Other = std::clamp(Horz ? FTopLeft.Y : FTopLeft.X, OtherMin, OtherMax);
    const TGridCoord NewTopLeft = Horz ? TGridCoord{NewOrigin, Other} : TGridCoord{Other, NewOrigin};
    if (NewTopLeft != FTopLeft) MoveTopLeft(NewTopLeft.X, NewTopLeft.Y);
}

// How far the only column can be scrolled, in pixels.
int TCustomExGrid::GetSingleColumnRange(const TExGridDI& DI) {
    const std::int64_t Range =
        std::int64_t{GetColWidths(0)} - (std::int64_t{DI.Horz.GridExtent} - DI.Horz.FixedBoundary);
    return static_cast<int>(std::clamp<std::int64_t>(Range, 0, std::numeric_limits<int>::max()));
}

// Top goes to the far end and bottom to the start here; required so.
void TCustomExGrid::MoveSingleColumn(unsigned ScrollCode, unsigned Pos, int Direction) {
    TExGridDI DI;
    CalcDI(DI);
    const int Range = GetSingleColumnRange(DI);
    const int Page = DI.Horz.GridExtent - DI.Horz.FixedBoundary;
    const int Line = std::max(1, GetCanvas()->TextWidth("0"));
    const int Thumb = static_cast<int>(std::min<unsigned>(Pos, static_cast<unsigned>(Range)));
    std::int64_t Target = FHOffset;
    switch (ScrollCode) {
    case SB_LINEUP:
        Target -= Direction * Line;
        break;
    case SB_LINEDOWN:
        Target += Direction * Line;
        break;
    case SB_PAGEUP:
        Target -= std::int64_t{Direction} * Page;
        break;
    case SB_PAGEDOWN:
        Target += std::int64_t{Direction} * Page;
        break;
    case SB_THUMBPOSITION:
    case SB_THUMBTRACK:
        if (ScrollCode == SB_THUMBPOSITION || HasOption(goThumbTracking))
            Target = Direction < 0 ? Range - Thumb : Thumb;
        break;
    case SB_TOP:
        Target = Range;
        break;
    case SB_BOTTOM:
        Target = 0;
        break;
    default:
        break;
    }
    const int Offset = static_cast<int>(std::clamp<std::int64_t>(Target, 0, Range));
    if (Offset == FHOffset) return;
    const int Distance = FHOffset - Offset;
    FHOffset = Offset;
    ScrollData(Distance, 0);
    InvalidateGrid();
    UpdateScrollPos();
}

// An only column that is scrolled further than its width asks for goes back.
void TCustomExGrid::KeepHOffset() {
    if (FHOffset < 1 || FColCount != 1) return;
    TExGridDI DI;
    CalcDI(DI);
    const int Range = GetSingleColumnRange(DI);
    if (FHOffset > Range) ModifyScrollBar(SB_HORZ, SB_THUMBPOSITION, static_cast<unsigned>(Range), false);
}

void TCustomExGrid::WMHScroll(TWMScroll& Message) {
    ModifyScrollBar(SB_HORZ, Message.ScrollCode, static_cast<unsigned>(std::max(0, Message.Pos)), true);
}

void TCustomExGrid::WMVScroll(TWMScroll& Message) {
    ModifyScrollBar(SB_VERT, Message.ScrollCode, static_cast<unsigned>(std::max(0, Message.Pos)), false);
}

// --- the bars -------------------------------------------------------------------------------------------------

bool TCustomExGrid::HasBar(int ScrollBar) const {
    return FScrollBars == ssBoth || FScrollBars == (ScrollBar == SB_HORZ ? ssHorizontal : ssVertical);
}

// Positions of the horizontal bar are mirrored here, since the toolkit's bar runs left-to-right.
void TCustomExGrid::SetBarPos(int ScrollBar, int Pos, int MaxPos) {
    if (ScrollBar == SB_HORZ && UseRightToLeftAlignment()) Pos = MaxPos - Pos;
    if (GetScrollPos(ScrollBar) != Pos) SetScrollPos(ScrollBar, Pos, true);
}

void TCustomExGrid::UpdateScrollPos() {
    if (!HandleAllocated() || FScrollBars == ssNone || FUpdatingRange) return;
    ShowScrollPos({MaxLeftIn(GetClientWidth()), MaxTopIn(GetClientHeight())});
}

void TCustomExGrid::ShowScrollPos(const TGridCoord& MaxTopLeft) {
    const TControlGuard Guard(this);
    if (HasBar(SB_HORZ)) {
        if (FColCount == 1) {
            KeepHOffset();
            if (!Guard) return;
            TExGridDI DI;
            CalcFI(DI);
            DI.Horz.GridExtent = GetClientWidth();
            SetBarPos(SB_HORZ, FHOffset, GetSingleColumnRange(DI));
        } else {
            SetBarPos(SB_HORZ, ScalePosition(FTopLeft.X - FFixedCols, MaxTopLeft.X - FFixedCols), BarScale);
        }
    }
    if (Guard && HasBar(SB_VERT))
        SetBarPos(SB_VERT, ScalePosition(FTopLeft.Y - FFixedRows, MaxTopLeft.Y - FFixedRows), BarScale);
}

// Whether a bar is needed is decided from the client size without bars. The vertical bar comes first, since widths
// may depend on the client width that it takes; each bar changes at most once, so that nothing flickers.
void TCustomExGrid::UpdateScrollRange() {
    if (FScrollBars == ssNone || !HandleAllocated() || FUpdatingRange) return;
    const TControlGuard Guard(this);
    const TGridCoord OldTopLeft = FTopLeft;
    TGridCoord MaxTopLeft;
    {
        // Bars that come and go change the client size, which leads here again.
        const TFlagScope Updating(this, FUpdatingRange);
        const int VertSize = GetScrollBarSize(SB_VERT);
        const int HorzSize = GetScrollBarSize(SB_HORZ);
        int Width = GetClientWidth() + (IsScrollBarShown(SB_VERT) ? VertSize : 0);
        int Height = GetClientHeight() + (IsScrollBarShown(SB_HORZ) ? HorzSize : 0);
        // Adding a row leads here, so the walks up from the last cells are not made twice for one size.
        int WalkedHeight = -1;
        int WalkedWidth = -1;
        const auto LargestTop = [&] {
            if (Height != WalkedHeight) MaxTopLeft.Y = MaxTopIn(Height);
            WalkedHeight = Height;
            return MaxTopLeft.Y;
        };
        const auto LargestLeft = [&] {
            if (Width != WalkedWidth) MaxTopLeft.X = MaxLeftIn(Width);
            WalkedWidth = Width;
            return MaxTopLeft.X;
        };
        const auto HorzRange = [&] {
            if (!HasBar(SB_HORZ)) return 0;
            if (FColCount == 1) return std::max(0, std::max(0, GetColWidths(0)) - Width);
            return FFixedCols < LargestLeft() ? BarScale : 0;
        };
        const auto SetRange = [this](int Bar, int Range) {
            int OldMin = 0;
            int OldMax = 0;
            GetScrollRange(Bar, OldMin, OldMax);
            if (OldMin != 0 || OldMax != Range) SetScrollRange(Bar, 0, Range, true);
            if (IsScrollBarShown(Bar) != (Range > 0)) ShowScrollBar(Bar, Range > 0);
        };
        const bool HorzFirst = HorzRange() > 0;
        if (HorzFirst) Height -= HorzSize;
        const bool Vert = HasBar(SB_VERT) && FFixedRows < LargestTop();
        if (Vert) Width -= VertSize;
        const int OldClientWidth = GetClientWidth();
        SetRange(SB_VERT, Vert ? BarScale : 0);
        if (!Guard) return;
        if (GetClientWidth() != OldClientWidth) WalkedWidth = -1; // widths may follow the client
        const int Horz = HorzRange();
        if (Horz > 0 && !HorzFirst) Height -= HorzSize;
        if (Horz == 0 && HorzFirst) Height += HorzSize;
        SetRange(SB_HORZ, Horz);
        if (!Guard) return;
        MaxTopLeft = {LargestLeft(), LargestTop()};
        // A thumb is as long in its bar as the cells of the last page are among the scrollable ones.
        SetScrollPage(SB_VERT,
                      MulDiv(BarScale, FRowCount - MaxTopLeft.Y, std::max(1, MaxTopLeft.Y - FFixedRows)));
        SetScrollPage(SB_HORZ, FColCount == 1 ? Width
                                              : MulDiv(BarScale, FColCount - MaxTopLeft.X,
                                                       std::max(1, MaxTopLeft.X - FFixedCols)));
        if (FColCount != 1 && MaxTopLeft.X < FTopLeft.X) FTopLeft.X = std::max(FFixedCols, MaxTopLeft.X);
        if (MaxTopLeft.Y < FTopLeft.Y) FTopLeft.Y = std::max(FFixedRows, MaxTopLeft.Y);
    }
    ShowScrollPos(MaxTopLeft);
    if (Guard && FTopLeft != OldTopLeft) TopLeftMoved(OldTopLeft);
}

void TCustomExGrid::SetScrollBars(TScrollStyle Value) {
    if (Value == FScrollBars) return;
    FScrollBars = Value;
    if (HandleAllocated()) RecreateWnd();
}

void TCustomExGrid::SetScrollBarsStyle(TScrollBarStyle Value) {
    if (Value == FScrollBarsStyle) return;
    FScrollBarsStyle = Value;
    if (FFlatScrollBars) SetFlatScrollBarProps(FScrollBarsStyle, FScrollBarsColor, true);
}

void TCustomExGrid::SetScrollBarsColor(TColor Value) {
    if (Value == FScrollBarsColor) return;
    FScrollBarsColor = Value;
    if (FFlatScrollBars) SetFlatScrollBarProps(FScrollBarsStyle, FScrollBarsColor, true);
}

bool TCustomExGrid::InitializeFlatScrollBars() { return true; }

void TCustomExGrid::SetFlatScrollBarProps(TScrollBarStyle AStyle, TColor ABkColor, bool Redraw) {
    static constexpr TScrollBarLook Looks[] = {sblRegular, sblEncarta, sblFlat};
    const TControlGuard Guard(this);
    SetScrollBarLook(Looks[std::clamp<int>(AStyle, sbsRegular, sbsFlat)], ABkColor, Redraw);
    // Bars of another thickness leave another client size, perhaps one that needs no second bar.
    if (Guard) UpdateScrollRange();
}

TPoint TCustomExGrid::GetWheelLine() {
    const int Width = FColCount == 1 ? GetCanvas()->TextWidth("0") : GetColWidths(FTopLeft.X);
    return {std::max(1, Width), std::max(1, GetRowHeights(FTopLeft.Y))};
}

// --- wheel ----------------------------------------------------------------------------------------------------

bool TCustomExGrid::DoMouseWheelDown(TShiftState Shift, TPoint MousePos) {
    const TControlGuard Guard(this);
    if (TCustomControl::DoMouseWheelDown(Shift, MousePos) || !Guard) return true;
    const TFlagScope Wheeling(this, FWheeling);
    if (Shift.Contains(ssShift) && FCurrent.Y < FRowCount - 1) {
        FocusCell(FCurrent.X, FCurrent.Y + 1, true, Shift, swByMouse);
    } else {
        ModifyScrollBar(SB_VERT, Shift.Contains(ssCtrl) ? SB_PAGEDOWN : SB_LINEDOWN, 0, false);
    }
    return true;
}

bool TCustomExGrid::DoMouseWheelUp(TShiftState Shift, TPoint MousePos) {
    const TControlGuard Guard(this);
    if (TCustomControl::DoMouseWheelUp(Shift, MousePos) || !Guard) return true;
    const TFlagScope Wheeling(this, FWheeling);
    if (Shift.Contains(ssShift) && FCurrent.Y > FFixedRows) {
        FocusCell(FCurrent.X, FCurrent.Y - 1, true, Shift, swByMouse);
    } else {
        ModifyScrollBar(SB_VERT, Shift.Contains(ssCtrl) ? SB_PAGEUP : SB_LINEUP, 0, false);
    }
    return true;
}

// --- the timer ------------------------------------------------------------------------------------------------

TPoint TCustomExGrid::GetMouseClientPos() const { return ScreenToClient(Mouse.GetCursorPos()); }

void TCustomExGrid::StopDrag() { KillTimer(ScrollTimerID); }

void TCustomExGrid::WMTimer(TWMTimer& Message) {
    const TControlGuard Guard(this);
    if (Message.TimerID == ScrollTimerID) {
        if (FGridState == gsSelecting) {
            const TPoint Pos = GetMouseClientPos();
            TExGridDI DI;
            CalcDI(DI);
            const bool Mirrored = UseRightToLeftAlignment();
            const int Width = DI.Horz.GridExtent;
            const bool Left =
                Mirrored ? Pos.X > Width - DI.Horz.FixedBoundary : Pos.X < DI.Horz.FixedBoundary;
            const bool Right =
                Mirrored ? Pos.X < Width - DI.Horz.FullVisBoundary : Pos.X > DI.Horz.FullVisBoundary;
            TGridScrollDirections Direction;
            if (Left) Direction.Include(sdLeft);
            if (Right) Direction.Include(sdRight);
            if (Pos.Y < DI.Vert.FixedBoundary) Direction.Include(sdUp);
            if (Pos.Y > DI.Vert.FullVisBoundary) Direction.Include(sdDown);
            if (!Direction.IsEmpty()) TimedScroll(Direction);
        } else if (FGridState == gsRowMoving || FGridState == gsColMoving) {
            MoveAndScroll(GetMouseClientPos());
        } else {
            KillTimer(ScrollTimerID);
        }
    }
    if (Guard) TCustomControl::WMTimer(Message);
}

void TCustomExGrid::TimedScroll(TGridScrollDirections Direction) {
    TGridCoord Corner = FAnchor;
    if (Direction.Contains(sdLeft) && Corner.X > FFixedCols) --Corner.X;
    if (Direction.Contains(sdRight) && Corner.X < FColCount - 1) ++Corner.X;
    if (Direction.Contains(sdUp) && Corner.Y > FFixedRows) --Corner.Y;
    if (Direction.Contains(sdDown) && Corner.Y < FRowCount - 1) ++Corner.Y;
    if (Corner == FAnchor) return;
    // A range that the mouse draws keeps the cell where it began.
    if (FGridState == gsSelecting && FDragStart != NoGridCoord) {
        ExtendDrag(Corner);
    } else {
        MoveAnchor(Corner);
    }
}

} // namespace quill
