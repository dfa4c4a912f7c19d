// Hit testing and the mouse: presses on buttons, releases that select, hot tracking, sizing reports.
#include "quilltree/QuillTree.h"

#include <algorithm>

namespace quill {

namespace {

constexpr THitTests PressFilter{htOnButton, htOnIcon, htOnIndent, htOnStateIcon};

constexpr bool IsPlain(TShiftState Shift) { return !Shift.Contains(ssShift) && !Shift.Contains(ssCtrl); }

constexpr TShiftState WithCtrlInverted(TShiftState Shift) {
    if (Shift.Contains(ssCtrl)) {
        Shift.Exclude(ssCtrl);
    } else {
        Shift.Include(ssCtrl);
    }
    return Shift;
}

} // namespace

TFlyNode* TCustomQuillTree::GetNodeAt(int X, int Y) { return GetNodeAtRow(MouseCoord(X, Y).Y); }

// Whether the node shows a picture: its selected one counts while it is selected.
bool TCustomQuillTree::ShowsImage(TFlyNode* Node) const {
    return (Node->GetSelected() && Node->GetSelectedIndex() >= 0) || Node->GetImageIndex() >= 0;
}

TRect TCustomQuillTree::DisplayRect(TFlyNode* Node, bool TextOnly) {
    if (!Node || !Node->IsNodeVisible()) return {};
    TRect R = CellRect(FStructureCol, Node->GetRow());
    if (!TextOnly) {
        R.Right = GetClientWidth();
        return R;
    }
    const int Level = Node->GetLevel();
    const bool Indented = Level > 0 || FShowRoot;
    if (!UseRightToLeftAlignment()) {
        R.Left += Level * FIndent;
        if ((FShowlines || FShowButtons) && Indented) R.Left += FIndent;
        if (FShowLogic && Node->GetStateIndex() >= 1) R.Left += FIndent;
        if (FShowImages && ShowsImage(Node)) R.Left += FIndent;
    } else {
        // Button, state and image are tested differently in this direction; kept so.
        R.Right -= Level * FIndent;
        if ((FShowlines || (FShowButtons && Node->GetChildren())) && Indented) R.Right -= FIndent;
        if (FShowLogic) R.Right -= FIndent;
        if (FShowImages) R.Right -= FIndent;
    }
    return R;
}

THitTests TCustomQuillTree::GetHitTestInfoAt(int X, int Y) {
    const TGridCoord Cell = MouseCoord(X, Y);
    if (Y < 0 || (Cell.Y >= 0 && Cell.Y < GetFixedRows())) return htAbove;
    if (Y > GetClientHeight()) return htBelow;
    const int LastBottom = CellRect(GetLeftCol(), GetRowCount() - 1).Bottom;
    if (LastBottom >= 1 && Y > LastBottom) return htNowhere;
    TFlyNode* Node = GetNodeAtRow(Cell.Y);
    if (!Node || Cell.X != FStructureCol) return {};

    THitTests Result = htOnItem;
    if (DisplayRect(Node, true).Contains({X, Y})) {
        Result.Include(htOnLabel);
        return Result;
    }
    const bool Mirrored = UseRightToLeftAlignment();
    const int ClientWidth = GetClientWidth();
    TRect C = CellRect(FStructureCol, Cell.Y);
    // From here on positions run in the cell's own direction: distances from its leading edge.
    const int At = Mirrored ? C.Right - X : X - C.Left;
    if (At < 0) {
        Result.Include(htToLeft);
        return Result;
    }
    const int Level = Node->GetLevel();
    const bool Indented = FShowRoot || Level >= 1;
    int Slot = Indented ? Level * FIndent : 0;
    if (At < Slot) {
        Result.Include(htOnIndent);
        return Result;
    }
    const int GlyphHeight = FGlyphs ? FGlyphs->GetHeight() : 0;
    int BandTop = 0;
    if (Indented) {
        const int Side = FStatesDrawed ? FButtonSize : GlyphHeight;
        const int ButtonLeft = Slot + (FIndent - Side) / 2;
        BandTop = C.Top + (C.Height() - Side) / 2;
        if (FShowButtons && At >= ButtonLeft && At <= ButtonLeft + Side && Y >= BandTop &&
            Y <= BandTop + Side) {
            Result.Include(htOnButton);
            return Result;
        }
    }
    if ((FShowlines || FShowButtons) && Indented) Slot += FIndent;
    const bool InBand = Y >= BandTop && Y <= BandTop + GlyphHeight;
    if (FShowLogic && Node->GetStateIndex() > 0) {
        Slot += FIndent;
        if (At < Slot && InBand) {
            Result.Include(htOnStateIcon);
            return Result;
        }
    }
    if (FShowImages && ShowsImage(Node)) {
        Slot += FIndent;
        if (At < Slot && InBand) {
            Result.Include(htOnIcon);
            return Result;
        }
    }
    const bool BehindCell = Mirrored ? X < C.Left : X > C.Right;
    const bool BehindClient = Mirrored ? X < 0 : X >= ClientWidth;
    if (BehindCell && !BehindClient) {
        Result.Include(htOnRight);
    } else if (BehindClient) {
        Result.Include(htToRight);
    }
    return Result;
}

bool TCustomQuillTree::MouseHit(int X, int Y) { return (GetHitTestInfoAt(X, Y) * PressFilter).IsEmpty(); }

void TCustomQuillTree::MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y) {
    const TControlGuard Guard(this);
    const TGridCoord Cell = MouseCoord(X, Y);
    if (GetCursor() == VertCursor) {
        FPressedRow = Cell.Y;
    } else if (GetCursor() == HorzCursor) {
        FPressedCol = Cell.X;
    }
    TFlyNode* Node = GetNodeAt(X, Y);
    if (IsRangeSelect() && !(Cell.X <= GetFixedCols() && Cell.Y <= GetFixedRows())) FRangeStartNode = nullptr;
    const THitTests Hit = GetHitTestInfoAt(X, Y);
    if (Node && FToggleSelection) Shift = WithCtrlInverted(Shift);

    if (Node && Button == mbLeft && IsPlain(Shift) && Hit.Contains(htOnItem) && Hit.Contains(htOnButton)) {
        FInButtonClick = true;
        const TNodeWatch Watch(Node);
        SetEditorMode(false);
        if (Guard && Watch) Node->ExpandItem(!Node->GetExpanded(), false);
        if (!Guard) return;
    }
    constexpr THitTests OnNode{htOnLabel, htOnIcon, htAbove};
    if (!Hit.IsEmpty() && (Hit * OnNode).IsEmpty()) SetSkipPress(true);
    TCustomExGrid::MouseDown(Button, Shift, X, Y);
    if (!Guard) return;
    FInButtonClick = false;
    SetSkipPress(false);
}

void TCustomQuillTree::MouseUp(TMouseButton Button, TShiftState Shift, int X, int Y) {
    const TControlGuard Guard(this);
    const TCursor Cursor = GetCursor();
    const int OldWidth = FPressedCol >= 0 ? GetColWidths(FPressedCol) : 0;
    const int OldHeight = FPressedRow >= 0 ? GetRowHeights(FPressedRow) : 0;
    const THitTests Hit = GetHitTestInfoAt(X, Y);
    const TGridCoord Cell = MouseCoord(X, Y);
    SetPlainClick((!GetNodeAt(X, Y) || Cell.X != FStructureCol) && IsPlain(Shift));
    TCustomExGrid::MouseUp(Button, Shift, X, Y);
    if (!Guard) return;

    TFlyNode* Node = GetNodeAt(X, Y);
    if (Node && FToggleSelection) Shift = WithCtrlInverted(Shift);
    const bool IsSelecting = (Button == mbLeft && IsPlain(Shift)) || (Button == mbRight && FRightClickSelect);
    if (Node && IsSelecting && Hit.Contains(htOnItem) && !Hit.Contains(htOnStateIcon) && HasSelection()) {
        if (Button == mbLeft || !Node->GetSelected()) {
            // A plain click leaves no other node marked.
            TFlyNode* Current = GetNodeAtRow(GetRow());
            if (Current) FlushSelection();
            SelectOne(GetRow());
            if (!Guard) return;
            InvalidateCurrent();
        }
    }
    if (Shift.Contains(ssCtrl)) InvalidateCurrent();
    SetPlainClick(true);

    if (Cursor == HorzCursor && FPressedCol >= 0) {
        const int Col = std::exchange(FPressedCol, -1);
        ColSized(Col, OldWidth, GetColWidths(Col));
    } else if (Cursor == VertCursor && FPressedRow >= 0) {
        const int Row = std::exchange(FPressedRow, -1);
        const int NewHeight = GetRowHeights(Row);
        if (TFlyNode* Sized = GetNodeAtRow(Row)) Sized->SetHeightField(NewHeight);
        RowSized(Row, OldHeight, NewHeight);
    }
}

void TCustomQuillTree::MouseMove(TShiftState Shift, int X, int Y) {
    const TControlGuard Guard(this);
    TCustomExGrid::MouseMove(Shift, X, Y);
    if (Guard && FHotTrack) SetTrackedNode(MouseCoord(X, Y).Y);
}

void TCustomQuillTree::CMMouseLeave(TMessage& Message) {
    const TControlGuard Guard(this);
    TCustomExGrid::CMMouseLeave(Message);
    if (Guard && FHotTrack) SetTrackedNode(-1);
}

void TCustomQuillTree::SetTrackedNode(int Row) {
    if (Row == FTrackedRow) return;
    const int Old = std::exchange(FTrackedRow, Row);
    if (Old != -1) InvalidateCell(FStructureCol, Old);
    if (Row != -1) InvalidateCell(FStructureCol, Row);
}

void TCustomQuillTree::ColSized(int, int, int) {}
void TCustomQuillTree::RowSized(int, int, int) {}

bool TCustomQuillTree::ChangeState(TFlyNode* Node, int NewState) {
    if (!Node) return false;
    Node->SetStateIndexField(NewState);
    InvalidateCell(FStructureCol, Node->GetRow());
    return true;
}

// Repaints the current cell, or its whole row under goRowSelect.
void TCustomQuillTree::InvalidateCurrent() {
    if (IsRowSelect()) {
        InvalidateFullRow(GetRow());
    } else {
        InvalidateCell(GetCol(), GetRow());
    }
}

} // namespace quill
