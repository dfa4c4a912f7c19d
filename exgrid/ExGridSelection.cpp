// The current cell and the selected range.
#include "exgrid/ExGrid.h"

#include "host/base/Texts.h"

#include <algorithm>
#include <array>

namespace quill {

namespace {

bool IsEmpty(const TGridRect& Rect) {
    return Rect.Left > Rect.Right || Rect.Top > Rect.Bottom || Rect.Right < 0 || Rect.Bottom < 0;
}

// The cells that belong to just one of A and B, as at most four rectangles; returns how many.
int DifferenceOf(const TGridRect& A, const TGridRect& B, std::array<TGridRect, 4>& Parts) {
    int Count = 0;
    const auto Add = [&](const TGridRect& Part) {
        if (!IsEmpty(Part)) Parts[static_cast<std::size_t>(Count++)] = Part;
    };
    const TGridRect Common{std::max(A.Left, B.Left), std::max(A.Top, B.Top), std::min(A.Right, B.Right),
                           std::min(A.Bottom, B.Bottom)};
    if (IsEmpty(A) || IsEmpty(B) || IsEmpty(Common)) {
        Add(A);
        Add(B);
        return Count;
    }
    // Above and below the common part only one of the two is left, in its full width; beside it the rest.
    const TGridRect& Upper = A.Top < B.Top ? A : B;
    const TGridRect& Lower = A.Bottom > B.Bottom ? A : B;
    Add({Upper.Left, Upper.Top, Upper.Right, Common.Top - 1});
    Add({Lower.Left, Common.Bottom + 1, Lower.Right, Lower.Bottom});
    Add({std::min(A.Left, B.Left), Common.Top, Common.Left - 1, Common.Bottom});
    Add({Common.Right + 1, Common.Top, std::max(A.Right, B.Right), Common.Bottom});
    return Count;
}

// Makes the span of two corners reach Value: the corner on its side moves. Two corners on one line leave the anchor
// in place, so that going back shrinks the range again.
void Widen(int& Anchor, int& Opposite, int Value) {
    if (Value < std::min(Anchor, Opposite)) {
        (Anchor < Opposite ? Anchor : Opposite) = Value;
    } else if (Value > std::max(Anchor, Opposite)) {
        (Anchor > Opposite ? Anchor : Opposite) = Value;
    }
}

[[noreturn]] void FailIndex(int Value) {
    throw EInvalidGridOperation(FormatText(SIndexOutOfRange, {std::to_string(Value)}));
}

// An index equal to the count passes: the filler cell at the end of a row has it.
void CheckCell(int Col, int Row, int ColCount, int RowCount) {
    if (Col < 0 || Col > ColCount) FailIndex(Col);
    if (Row < 0 || Row > RowCount) FailIndex(Row);
}

} // namespace

void TCustomExGrid::SetCol(int Value) {
    if (Value != FCurrent.X) FocusCell(Value, FCurrent.Y, true, {}, swNone);
}

void TCustomExGrid::SetRow(int Value) {
    if (Value != FCurrent.Y && Value != -1) FocusCell(FCurrent.X, Value, true, {}, swNone);
}

void TCustomExGrid::FocusCell(int ACol, int ARow, bool AMoveAnchor, TShiftState Shift, TSelectionWay Way) {
    if (IsGridEmpty()) return;
    CheckCell(ACol, ARow, FColCount, FRowCount);
    const TControlGuard Guard(this);
    const bool Edits = FEditorMode && HasOption(goEditing) && HasOption(goAlwaysShowEditor);
    HideEditor();
    // Whoever was told of the text may have made the grid smaller.
    if (!Guard || ACol > FColCount || ARow > FRowCount || IsGridEmpty()) return;
    MoveCurrent(ACol, ARow, AMoveAnchor, true, Shift, Way);
    if (!Guard) return;
    // A move that was refused leaves the editor where it was.
    if (Edits && HasOption(goEditing) && HasOption(goAlwaysShowEditor)) FEditorMode = true;
    UpdateEdit();
}

void TCustomExGrid::MoveColRow(int ACol, int ARow, bool AMoveAnchor, bool Show) {
    MoveCurrent(ACol, ARow, AMoveAnchor, Show, {}, swNone);
}

void TCustomExGrid::MoveCurrent(int ACol, int ARow, bool AMoveAnchor, bool Show, TShiftState Shift,
                                TSelectionWay Way) {
    CheckCell(ACol, ARow, FColCount, FRowCount);
    const TControlGuard Guard(this);
    const bool WasCleared = FSelectionCleared;
    FSelectionCleared = false;
    const bool Allowed = SelectCell(ACol, ARow, AMoveAnchor, Shift, Way);
    if (!Guard) return;
    // The grid may have shrunk, and an override may have changed the target.
    if (!Allowed || ACol < 0 || ACol > FColCount || ARow < 0 || ARow > FRowCount) {
        if (WasCleared) InvalidateRect(GetSelection());
        return;
    }
    const TGridRect OldSelection = GetSelection();
    const TGridCoord OldCurrent = FCurrent;
    const bool AlwaysEditor = HasOption(goAlwaysShowEditor) && FRowCount != FFixedRows;
    if (!AlwaysEditor) {
        HideEditor();
        if (!Guard) return;
    }
    const bool RowSelect = HasOption(goRowSelect);
    FCurrent = {std::min(ACol, FColCount), std::min(ARow, FRowCount)};
    if (RowSelect) FCurrent.X = FFixedCols;
    if (AMoveAnchor || !HasOption(goRangeSelect)) {
        FAnchor = FCurrent;
        if (RowSelect) FAnchor.X = FColCount - 1;
        FOpposite = FAnchor;
        if (RowSelect) FOpposite.X = FFixedCols;
    } else if (PointInGridRect(FCurrent.X, FCurrent.Y, OldSelection)) {
        FOpposite = FCurrent;
    } else {
        Widen(FAnchor.Y, FOpposite.Y, FCurrent.Y);
        Widen(FAnchor.X, FOpposite.X, FCurrent.X);
    }
    const TGridCoord NewCurrent = FCurrent;
    if (Show) {
        ClampInView(FCurrent);
        if (!Guard) return;
    }
    SelectionMoved(WasCleared ? EmptyGridRect : OldSelection);
    InvalidateCell(OldCurrent.X, OldCurrent.Y);
    InvalidateCell(NewCurrent.X, NewCurrent.Y);
    if (HasOption(goAlwaysShowEditor) && FRowCount != FFixedRows) ShowEditor();
}

bool TCustomExGrid::SelectCell(int& ACol, int& ARow, bool, TShiftState, TSelectionWay) {
    bool CanSelect = true;
    FireEvent(OnSelectCell, this, ACol, ARow, CanSelect);
    return CanSelect;
}

void TCustomExGrid::MoveAnchor(const TGridCoord& NewAnchor) {
    if (!HasOption(goRangeSelect) || HasOption(goEditing)) {
        MoveCurrent(NewAnchor.X, NewAnchor.Y, true, true, {}, swNone);
        return;
    }
    const TGridCoord Target = NewAnchor;
    CheckCell(Target.X, Target.Y, FColCount, FRowCount);
    const TGridRect OldSelection = GetSelection();
    FAnchor = Target;
    // Both corners, not only the anchor: required so.
    if (HasOption(goRowSelect)) FAnchor.X = FColCount - 1;
    FOpposite = FAnchor;
    const TControlGuard Guard(this);
    ClampInView(Target);
    if (Guard) SelectionMoved(OldSelection);
}

void TCustomExGrid::ClampInView(const TGridCoord& Coord) {
    if (!HandleAllocated()) return;
    const TGridCoord Cell = Coord;
    // What is still to be painted moves along with the pixels, so nothing need be painted before.
    TExGridDI DI;
    CalcDI(DI);
    if (Cell.X >= DI.Horz.FirstGridCell && Cell.X <= DI.Horz.LastFullVisibleCell &&
        Cell.Y >= DI.Vert.FirstGridCell && Cell.Y <= DI.Vert.LastFullVisibleCell)
        return;
    const TGridCoord OldTopLeft = FTopLeft;
    const TGridCoord MaxTopLeft = CalcMaxTopLeft(Cell, DI);
    // Fixed cells are always in view, and the origin stays among the scrollable cells.
    const auto Fit = [](int& First, int Value, int Last, int Max, int Fixed, int Count) {
        if (Value < Fixed) return;
        if (Value < First) {
            First = Value;
        } else if (Value > Last) {
            First = Max;
        }
        First = std::clamp(First, Fixed, std::max(Fixed, Count - 1));
    };
    Fit(FTopLeft.X, Cell.X, DI.Horz.LastFullVisibleCell, MaxTopLeft.X, FFixedCols, FColCount);
    Fit(FTopLeft.Y, Cell.Y, DI.Vert.LastFullVisibleCell, MaxTopLeft.Y, FFixedRows, FRowCount);
    TopLeftMoved(OldTopLeft);
}

TGridRect TCustomExGrid::GetSelection() const {
    if (FSelectionCleared) return EmptyGridRect;
    return {std::min(FAnchor.X, FOpposite.X), std::min(FAnchor.Y, FOpposite.Y),
            std::max(FAnchor.X, FOpposite.X), std::max(FAnchor.Y, FOpposite.Y)};
}

void TCustomExGrid::SetSelection(const TGridRect& Value) {
    if (Value == EmptyGridRect) {
        ClearSelection();
        return;
    }
    const auto Fit = [this](int Col, int Row) {
        return TGridCoord{std::clamp(Col, 0, std::max(0, FColCount - 1)),
                          std::clamp(Row, 0, std::max(0, FRowCount - 1))};
    };
    const TGridRect OldSelection = GetSelection();
    const TGridCoord OldCurrent = FCurrent;
    FAnchor = Fit(Value.Left, Value.Top);
    FCurrent = Fit(Value.Right, Value.Bottom);
    SelectionMoved(OldSelection);
    InvalidateCell(OldCurrent.X, OldCurrent.Y);
    InvalidateCell(FCurrent.X, FCurrent.Y);
}

void TCustomExGrid::ClearSelection() {
    const TGridRect OldSelection = GetSelection();
    FSelectionCleared = true;
    SelectionMoved(OldSelection);
}

bool TCustomExGrid::InSelection(int ACol, int ARow) { return PointInGridRect(ACol, ARow, GetSelection()); }

void TCustomExGrid::SelectionMoved(const TGridRect& OldSel) {
    if (!HandleAllocated()) return;
    const TGridRect NewSel = GetSelection();
    // A descendant may mark rows outside the range in its columns.
    if (OldSel.Left != NewSel.Left || OldSel.Right != NewSel.Right) InvalidateMarked();
    if (OldSel != NewSel && HasOption(goRowSelect) && HasOption(goDrawFocusSelected)) {
        // The focus frame runs around the whole selection.
        InvalidateRect(OldSel);
        InvalidateRect(NewSel);
        return;
    }
    std::array<TGridRect, 4> Parts;
    const int Count = DifferenceOf(OldSel, NewSel, Parts);
    for (int I = 0; I < Count; ++I) InvalidateRect(Parts[static_cast<std::size_t>(I)]);
}

} // namespace quill
