// The mouse: presses that select, drags that extend a range, clicks on fixed cells. Sizing and moving have files of
// their own.
#include "exgrid/GridDrag.h"

#include <algorithm>

namespace quill {

// --- hooks ----------------------------------------------------------------------------------------------------

bool TCustomExGrid::MouseHit(int, int) { return true; }

bool TCustomExGrid::CanButtonSelect(TMouseButton Button) { return Button == mbLeft; }

void TCustomExGrid::FixedCellClick(int, int) {}

// A descendant may draw it held down.
void TCustomExGrid::SetPressedFixed(const TGridCoord& Cell) {
    if (Cell == FPressedFixed) return;
    InvalidateCell(FPressedFixed.X, FPressedFixed.Y);
    FPressedFixed = Cell;
    FMouseOverPressed = true;
    InvalidateCell(Cell.X, Cell.Y);
}

void TCustomExGrid::SetMouseOverPressed(bool Value) {
    if (FPressedFixed == NoGridCoord || Value == FMouseOverPressed) return;
    FMouseOverPressed = Value;
    InvalidateCell(FPressedFixed.X, FPressedFixed.Y);
}

// --- pressing, dragging, releasing ----------------------------------------------------------------------------

void TCustomExGrid::WMLButtonDown(TWMMouse& Message) {
    FHitTest = {Message.XPos, Message.YPos};
    TCustomControl::WMLButtonDown(Message);
}

void TCustomExGrid::MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y) {
    const TControlGuard Guard(this);
    FHitTest = {X, Y};
    FClickCell = NoGridCoord;
    if (!FSkipPress) {
        Press(Button, Shift, X, Y);
        if (!Guard) return;
    }
    TCustomControl::MouseDown(Button, Shift, X, Y);
}

void TCustomExGrid::Press(TMouseButton Button, TShiftState Shift, int X, int Y) {
    const TControlGuard Guard(this);
    if (IsPressing()) {
        if (Button != mbLeft) return;
        CancelMode(); // its release went elsewhere
        if (!Guard) return;
    }
    const bool Designing = HasState(csDesigning);
    if (!Designing && CanFocus() && !Focused()) {
        SetFocus();
        if (!Guard) return;
    }
    const TPoint Pos{X, Y};
    if (Button == mbLeft) {
        int Index = -1;
        const TGridState State = SizingAt(Pos, Index);
        if (State != gsNormal) {
            BeginSizing(State, Index, Pos, Shift.Contains(ssDouble));
            return;
        }
    }
    TExGridDI DI;
    CalcDI(DI);
    const TGridCoord Cell = CalcCoordFromPoint(X, Y, DI);
    const bool OnFixed = Cell.X < FFixedCols || Cell.Y < FFixedRows;
    if (Button == mbLeft && !Designing && OnFixed && Cell.X >= 0 && Cell.Y >= 0) {
        SetPressedFixed(Cell);
        if (HasOption(goColMoving) && Cell.X >= FFixedCols) {
            BeginMoving(gsColMoving, Cell, Pos);
        } else if (HasOption(goRowMoving) && Cell.Y >= FFixedRows) {
            BeginMoving(gsRowMoving, Cell, Pos);
        }
        return;
    }
    // The second press of a double click has its own message.
    if (OnFixed || Designing || Shift.Contains(ssDouble) || !CanButtonSelect(Button)) return;
    if (!MouseHit(X, Y) || !Guard) return;
    PressCell(Cell, Button, Shift);
}

void TCustomExGrid::PressCell(const TGridCoord& Cell, TMouseButton Button, TShiftState Shift) {
    const bool NoModifiers = !Shift.Contains(ssShift) && !Shift.Contains(ssCtrl);
    const bool WasCurrent = Cell == FCurrent;
    const TControlGuard Guard(this);
    FocusCell(Cell.X, Cell.Y, NoModifiers, Shift, swByMouse);
    if (!Guard || Button != mbLeft) return;
    if (NoModifiers && WasCurrent) FClickCell = Cell;
    if (HasOption(goRowMoving) && NoModifiers && MovesRowsByCells() && FGridState == gsNormal &&
        FCurrent.Y == Cell.Y) {
        BeginMoving(gsRowMoving, Cell, FHitTest);
        if (!Guard || FGridState != gsNormal) return;
    }
    if (HasOption(goRangeSelect) && FGridState == gsNormal && FCurrent.Y == Cell.Y) {
        FGridState = gsSelecting;
        FDragStart = FAnchor;
        SetTimer(ScrollTimerID, ScrollTimerInterval);
    }
}

void TCustomExGrid::WMMouseMove(TWMMouse& Message) {
    FHitTest = {Message.XPos, Message.YPos};
    const TControlGuard Guard(this);
    TCustomControl::WMMouseMove(Message);
    if (!Guard || !IsPressing() || IsDragSource()) return;
    if (!Message.Shift.Contains(ssLeft)) {
        CancelMode(); // the release went elsewhere
        return;
    }
    const TPoint Pos{Message.XPos, Message.YPos};
    SetMouseOverPressed(MouseCoord(Pos.X, Pos.Y) == FPressedFixed);
    if (FDrag) {
        if (FDrag->IsSizing()) {
            SizeTo(Pos);
        } else {
            MoveDragTo(Pos);
            if (!Guard || !IsDragShown()) return;
            FClickCell = NoGridCoord;
            SetPressedFixed(NoGridCoord);
        }
        return;
    }
    if (FGridState != gsSelecting) return;
    TExGridDI DI;
    CalcDI(DI);
    const TGridCoord Cell = CalcCoordFromPoint(Message.XPos, Message.YPos, DI);
    if (Cell.X < FFixedCols || Cell.Y < FFixedRows) return;
    if (Cell != FClickCell) FClickCell = NoGridCoord;
    // Cells that are not wholly in view come into it with the timer, not with every motion.
    const TGridCoord Last{std::max(DI.Horz.LastFullVisibleCell, FTopLeft.X) + 1,
                          std::max(DI.Vert.LastFullVisibleCell, FTopLeft.Y) + 1};
    ExtendDrag({std::min(Cell.X, Last.X), std::min(Cell.Y, Last.Y)});
}

// The range from the cell where the drag began to Cell. Where ranges cannot be drawn the current cell follows.
void TCustomExGrid::ExtendDrag(const TGridCoord& Cell) {
    if (!HasOption(goRangeSelect) || HasOption(goEditing)) {
        if (Cell != FCurrent) MoveAnchor(Cell);
        return;
    }
    TGridCoord Corner = Cell;
    TGridCoord Start{std::clamp(FDragStart.X, 0, std::max(0, FColCount - 1)),
                     std::clamp(FDragStart.Y, 0, std::max(0, FRowCount - 1))};
    TGridCoord Shown = Cell;
    if (HasOption(goRowSelect)) {
        Corner.X = FColCount - 1;
        Start.X = FFixedCols;
        Shown.X = FTopLeft.X; // whole rows: the view does not move sideways
    }
    if (Corner == FAnchor && Start == FOpposite) return;
    const TGridRect OldSelection = GetSelection();
    FSelectionCleared = false;
    FAnchor = Corner;
    FOpposite = Start;
    const TControlGuard Guard(this);
    ClampInView(Shown);
    if (!Guard) return;
    SelectionMoved(OldSelection);
    RangeDragged(OldSelection);
}

void TCustomExGrid::RangeDragged(const TGridRect&) {}

void TCustomExGrid::MouseUp(TMouseButton Button, TShiftState Shift, int X, int Y) {
    const TControlGuard Guard(this);
    FHitTest = {X, Y};
    const TGridCoord Pressed = FClickCell;
    const TGridCoord PressedFixed = FPressedFixed;
    if (Button == mbLeft && FDrag && !FDrag->IsSizing()) {
        DropDrag({X, Y});
    } else if (Button == mbLeft || !IsPressing()) {
        const bool Sized = FDrag && FDrag->OldExtent != (FDrag->IsColumn() ? GetColWidths(FDrag->Index)
                                                                           : GetRowHeights(FDrag->Index));
        LeaveMode();
        if (Sized) UpdateDesigner();
    }
    if (!Guard) return;
    TCustomControl::MouseUp(Button, Shift, X, Y);
    if (!Guard || Button != mbLeft) return;
    if (PressedFixed != NoGridCoord) {
        if (MouseCoord(X, Y) == PressedFixed) FixedCellClick(PressedFixed.X, PressedFixed.Y);
        return;
    }
    if (Pressed == NoGridCoord || Pressed != FCurrent) return;
    if (HasOption(goEditing) && FPlainClick && !FEditorMode && MouseCoord(X, Y) == Pressed &&
        NeedToShowEditor() && Guard)
        ShowEditor();
}

void TCustomExGrid::WMCancelMode(TMessage& Message) {
    const TControlGuard Guard(this);
    TCustomControl::WMCancelMode(Message);
    if (Guard) CancelMode();
}

void TCustomExGrid::CMCancelMode(TMessage&) { CancelMode(); }

// At design time the mouse reaches the grid only over a border that can be sized.
void TCustomExGrid::CMDesignHitTest(TMessage& Message) {
    int Index = -1;
    const bool Sizes = AllowDesignSizing() && SizingAt(PointFromParam(Message.LParam), Index) != gsNormal;
    Message.Result = Sizes ? 1 : 0;
}

} // namespace quill
