// Hit testing and the mouse: presses on buttons, releases that select, hot tracking, sizing reports.
#include "host/windows/FlagScope.h"
#include "quilltree/QuillTree.h"

#include <algorithm>
#include <optional>

namespace quill {

namespace {

constexpr THitTests PressFilter{htOnButton, htOnIcon, htOnIndent, htOnStateIcon};

// Presses beside the parts of nodes are none on cells.
constexpr bool SkipsPress(THitTests Hit) {
    return !Hit.IsEmpty() && (Hit * THitTests{htOnLabel, htOnIcon, htAbove}).IsEmpty();
}

constexpr bool IsPlain(TShiftState Shift) { return !Shift.Contains(ssShift) && !Shift.Contains(ssCtrl); }

constexpr TShiftState WithCtrlInverted(TShiftState Shift) {
    if (Shift.Contains(ssCtrl)) {
        Shift.Exclude(ssCtrl);
    } else {
        Shift.Include(ssCtrl);
    }
    return Shift;
}

// Ends the skipping of a press.
class TSkipScope {
public:
    explicit TSkipScope(TCustomQuillTree* Tree) : FTree(Tree), FGuard(Tree) {}
    ~TSkipScope() {
        if (FGuard) FTree->SetSkipPress(false);
    }
    TSkipScope(const TSkipScope&) = delete;
    TSkipScope& operator=(const TSkipScope&) = delete;

private:
    TCustomQuillTree* FTree;
    TControlGuard FGuard;
};

} // namespace

TFlyNode* TCustomQuillTree::GetNodeAt(int X, int Y) { return GetNodeAtRow(MouseCoord(X, Y).Y); }

// Whether the node shows a picture: its selected one counts while it is selected.
bool TCustomQuillTree::ShowsImage(TFlyNode* Node) const {
    return (Node->GetSelected() && Node->GetSelectedIndex() >= 0) || Node->GetImageIndex() >= 0;
}

// The structure cell of a row where it is painted: moved with an only column that is scrolled by pixels, and as high as
// the row where the client cuts it.
TRect TCustomQuillTree::PaintedStructureCell(int Row) {
    TRect R = CellRect(FStructureCol, Row);
    if (R.IsEmpty()) return R;
    (UseRightToLeftAlignment() ? R.Right : R.Left) +=
        UseRightToLeftAlignment() ? GetHOffset() : -GetHOffset();
    R.Bottom = R.Top + GetRowHeights(Row);
    return R;
}

TRect TCustomQuillTree::DisplayRect(TFlyNode* Node, bool TextOnly) {
    if (!Node || !Node->IsNodeVisible()) return {};
    TRect R = CellRect(FStructureCol, Node->GetRow());
    if (!TextOnly) {
        R.Right = GetClientWidth();
        return R;
    }
    const TRect Painted = PaintedStructureCell(Node->GetRow());
    const int Level = Node->GetLevel();
    const bool Indented = Level > 0 || FShowRoot;
    if (!UseRightToLeftAlignment()) {
        R.Left = Painted.Left + Level * FIndent;
        if ((FShowlines || FShowButtons) && Indented) R.Left += FIndent;
        if (FShowLogic && Node->GetStateIndex() >= 1) R.Left += FIndent;
        if (FShowImages && ShowsImage(Node)) R.Left += FIndent;
    } else {
        // Button, state and image are tested differently in this direction; kept so.
        R.Right = Painted.Right - Level * FIndent;
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
    const TRect C = PaintedStructureCell(Cell.Y);
    // From here on positions run in the cell's own direction: pixels from its leading edge.
    const int At = Mirrored ? C.Right - 1 - X : X - C.Left;
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
    if (Mirrored ? X < 0 : X >= GetClientWidth()) {
        Result.Include(htToRight);
    } else if (At > C.Width()) {
        Result.Include(htOnRight);
    }
    return Result;
}

bool TCustomQuillTree::MouseHit(int X, int Y) { return (GetHitTestInfoAt(X, Y) * PressFilter).IsEmpty(); }

bool TCustomQuillTree::CanButtonSelect(TMouseButton Button) {
    if (Button != mbRight) return TCustomExGrid::CanButtonSelect(Button);
    if (!FRightClickSelect) return false;
    const TPoint Hit = GetHittest();
    const TFlyNode* Node = GetNodeAt(Hit.X, Hit.Y);
    return !Node || !Node->GetSelected();
}

// The last column's border is the client's edge while the column fills what is left. Rows are not sized where a press
// is skipped: the cursor promises no more than the press keeps.
void TCustomQuillTree::CalcSizingState(int X, int Y, TGridState& State, int& Index, int& SizingPos,
                                       int& SizingOfs, TExGridDI& DI) {
    TCustomExGrid::CalcSizingState(X, Y, State, Index, SizingPos, SizingOfs, DI);
    if (State == gsColSizing && FFitColumnToClientWidth && Index == GetColCount() - 1) State = gsNormal;
    if (State == gsRowSizing && SkipsPress(GetHitTestInfoAt(X, Y))) State = gsNormal;
}

void TCustomQuillTree::CancelDrag() {
    FPressedCol = -1;
    FPressedRow = -1;
    TCustomExGrid::CancelDrag();
}

void TCustomQuillTree::MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y) {
    HideToolTip();
    if (Button != mbLeft && IsPressing()) {
        TCustomExGrid::MouseDown(Button, Shift, X, Y);
        return;
    }
    const TControlGuard Guard(this);
    const TGridCoord Cell = MouseCoord(X, Y);
    if (ShowsCursor(VertCursor)) {
        FPressedRow = Cell.Y;
    } else if (ShowsCursor(HorzCursor)) {
        FPressedCol = Cell.X;
    }
    TFlyNode* Node = GetNodeAt(X, Y);
    if (IsRangeSelect() && !(Cell.X <= GetFixedCols() && Cell.Y <= GetFixedRows())) FRangeStartNode = nullptr;
    const THitTests Hit = GetHitTestInfoAt(X, Y);
    if (Node && FToggleSelection) Shift = WithCtrlInverted(Shift);

    // Both flags hold for this press, also when a handler throws.
    std::optional<TFlagScope> InClick;
    const TSkipScope Skip(this);
    if (Node && Button == mbLeft && IsPlain(Shift) && Hit.Contains(htOnItem) && Hit.Contains(htOnButton)) {
        InClick.emplace(this, FInButtonClick);
        const TNodeWatch Watch(Node);
        SetEditorMode(false);
        if (Guard && Watch) Node->ExpandItem(!Node->GetExpanded(), false);
        if (!Guard) return;
    }
    if (SkipsPress(Hit)) SetSkipPress(true);
    TCustomExGrid::MouseDown(Button, Shift, X, Y);
    if (!Guard) return;
    // A border has a zone on its far side too, where the mouse is over the next cell.
    if (GetGridState() == gsColSizing) FPressedCol = GetDragIndex();
    if (GetGridState() == gsRowSizing) FPressedRow = GetDragIndex();
}

void TCustomQuillTree::MouseUp(TMouseButton Button, TShiftState Shift, int X, int Y) {
    if (Button != mbLeft && IsPressing()) {
        TCustomExGrid::MouseUp(Button, Shift, X, Y);
        return;
    }
    const TControlGuard Guard(this);
    const int PressedCol = std::exchange(FPressedCol, -1);
    const int PressedRow = std::exchange(FPressedRow, -1);
    const bool ColWasSized = PressedCol >= 0 && (ShowsCursor(HorzCursor) || GetGridState() == gsColSizing);
    const bool RowWasSized = PressedRow >= 0 && (ShowsCursor(VertCursor) || GetGridState() == gsRowSizing);
    // Sizing shows while the mouse moves, so the grid remembers what was before.
    const bool Sizing = GetDragOldExtent() >= 0;
    const int OldWidth = Sizing ? GetDragOldExtent() : GetColWidths(PressedCol);
    const int OldHeight = Sizing ? GetDragOldExtent() : GetRowHeights(PressedRow);
    const THitTests Hit = GetHitTestInfoAt(X, Y);
    const TGridCoord Cell = MouseCoord(X, Y);
    const TGridRect Range = GetGridSelection();
    const bool DrewRange = GetGridState() == gsSelecting && Range.Top < Range.Bottom;
    SetPlainClick((!GetNodeAt(X, Y) || Cell.X != FStructureCol) && IsPlain(Shift));
    TCustomExGrid::MouseUp(Button, Shift, X, Y);
    if (!Guard) return;

    TFlyNode* Node = GetNodeAt(X, Y);
    if (Node && FToggleSelection) Shift = WithCtrlInverted(Shift);
    const bool IsSelecting =
        (Button == mbLeft && IsPlain(Shift) && !DrewRange) || (Button == mbRight && FRightClickSelect);
    if (Node && IsSelecting && Hit.Contains(htOnItem) && !Hit.Contains(htOnStateIcon) && HasSelection()) {
        if (Button == mbLeft || !Node->GetSelected()) {
            // A plain click leaves no other node marked. One on a button or beside the node is none on the node, and
            // one whose press was refused changes nothing.
            if ((Hit * PressFilter).IsEmpty() && GetNodeAtRow(GetRow()) == Node) FlushSelection();
            SelectOne(GetRow());
            if (!Guard) return;
            InvalidateCurrent();
        }
    }
    if (Shift.Contains(ssCtrl)) InvalidateCurrent();
    SetPlainClick(true);

    if (ColWasSized) {
        ColSized(PressedCol, OldWidth, GetColWidths(PressedCol));
    } else if (RowWasSized) {
        const int NewHeight = GetRowHeights(PressedRow);
        if (TFlyNode* Sized = GetNodeAtRow(PressedRow)) Sized->SetHeightField(NewHeight);
        RowSized(PressedRow, OldHeight, NewHeight);
    }
}

void TCustomQuillTree::MouseMove(TShiftState Shift, int X, int Y) {
    const TControlGuard Guard(this);
    TCustomExGrid::MouseMove(Shift, X, Y);
    if (Guard && FHotTrack) SetTrackedNode(MouseCoord(X, Y).Y);
    if (Guard && Shift == TShiftState(ssLeft)) DetectDrag(X, Y);
}

void TCustomQuillTree::CMMouseLeave(TMessage& Message) {
    const TControlGuard Guard(this);
    TCustomExGrid::CMMouseLeave(Message);
    if (!Guard) return;
    if (FHotTrack) SetTrackedNode(-1);
    if (FToolTips) ForgetToolTip();
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
