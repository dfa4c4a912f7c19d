// The keyboard.
#include "exgrid/ExGrid.h"

#include <algorithm>
#include <cstdint>

namespace quill {

namespace {

constexpr std::intptr_t DLGC_WANTARROWS = 0x1;
constexpr std::intptr_t DLGC_WANTTAB = 0x2;
constexpr std::intptr_t DLGC_WANTCHARS = 0x80;

constexpr char32_t Backspace = 8;
constexpr char32_t Return = 13;
constexpr char32_t Escape = 27;

} // namespace

bool TCustomExGrid::CanGridAcceptKey(std::uint16_t, TShiftState) { return !IsGridEmpty(); }

void TCustomExGrid::KeyDown(std::uint16_t& Key, TShiftState Shift) {
    const TControlGuard Guard(this);
    TCustomControl::KeyDown(Key, Shift);
    if (Guard && Key == VK_ESCAPE && IsPressing()) {
        Key = 0;
        // A range goes back to where it began.
        if (FGridState == gsSelecting && FDragStart != NoGridCoord) ExtendDrag(FDragStart);
        if (Guard) CancelMode();
        return;
    }
    if (!Guard || !CanGridAcceptKey(Key, Shift) || !Guard || Key == 0) return;

    const int Direction = UseRightToLeftAlignment() ? -1 : 1;
    const bool RowSelect = HasOption(goRowSelect);
    // With Ctrl and without ranges the view scrolls and the cell stays.
    const bool ScrollOnly = Shift.Contains(ssCtrl) && !HasOption(goRangeSelect);
    TExGridDI DI;
    CalcDI(DI);
    const std::int64_t PageHeight = std::max(1, DI.Vert.LastFullVisibleCell - FTopLeft.Y);
    std::int64_t Col = FCurrent.X;
    std::int64_t Row = FCurrent.Y;
    std::int64_t Top = FTopLeft.Y;
    bool Moves = true;
    switch (Key) {
    case VK_UP:
    case VK_DOWN: {
        const int Step = Key == VK_UP ? -1 : 1;
        (ScrollOnly ? Top : Row) += Step;
        Moves = !ScrollOnly;
        break;
    }
    // Left and Right move between the rows of a row-select grid; required so.
    case VK_LEFT:
        (RowSelect ? Row : Col) -= Direction;
        break;
    case VK_RIGHT:
        (RowSelect ? Row : Col) += Direction;
        break;
    case VK_PRIOR:
        Row -= PageHeight;
        Top -= PageHeight;
        break;
    case VK_NEXT:
        Row += PageHeight;
        Top += PageHeight;
        break;
    case VK_HOME:
        if (RowSelect || Col == FFixedCols) {
            Row = FFixedRows;
        } else {
            Col = FFixedCols;
        }
        break;
    case VK_END:
        if (RowSelect || Col == FColCount - 1) {
            Row = FRowCount - 1;
        } else {
            Col = FColCount - 1;
        }
        break;
    case VK_TAB: {
        Moves = !Shift.Contains(ssAlt);
        if (!Moves) break;
        const TGridCoord Next = NextTabCell(Shift.Contains(ssShift));
        Col = Next.X;
        Row = Next.Y;
        Shift.Exclude(ssShift);
        break;
    }
    case VK_F2:
        if (!IsEditorShown()) SetEditorMode(true);
        return;
    default:
        return;
    }

    const TGridCoord MaxTopLeft = CalcMaxTopLeft({FColCount - 1, FRowCount - 1}, DI);
    const auto Fit = [](std::int64_t Value, int Min, int Max) {
        return static_cast<int>(std::clamp<std::int64_t>(Value, Min, std::max(Min, Max)));
    };
    const TGridCoord Origin{Fit(FTopLeft.X, FFixedCols, MaxTopLeft.X), Fit(Top, FFixedRows, MaxTopLeft.Y)};
    if (Origin != FTopLeft) {
        MoveTopLeft(Origin.X, Origin.Y);
        if (!Guard) return;
    }
    const TGridCoord Target{Fit(Col, FFixedCols, FColCount - 1), Fit(Row, FFixedRows, FRowCount - 1)};
    if (Target != FCurrent) {
        const bool NoModifiers = !Shift.Contains(ssShift) && !Shift.Contains(ssCtrl);
        FocusCell(Target.X, Target.Y, NoModifiers, Shift, swByKeyBoard);
    } else if (Moves && FCurrent.Y == FRowCount - 1 && !IsGridEmpty()) {
        AppendRow();
    }
}

// The next (or previous) column with a tab stop, in the following row when the end is passed. A walk that finds no
// other column leaves the current cell as it is. The current cell may stand outside the scrollable columns, so the
// walk is counted.
TGridCoord TCustomExGrid::NextTabCell(bool Back) {
    TGridCoord Next = FCurrent;
    for (int Left = FColCount - FFixedCols; Left > 0; --Left) {
        if (Back) {
            if (--Next.X < FFixedCols) {
                Next.X = FColCount - 1;
                if (--Next.Y < FFixedRows) Next.Y = FRowCount - 1;
            }
        } else if (++Next.X >= FColCount) {
            Next.X = FFixedCols;
            if (++Next.Y >= FRowCount) Next.Y = FFixedRows;
        }
        Next.X = std::max(Next.X, FFixedCols);
        if (Next.X == FCurrent.X) break;
        if (GetTabStops(Next.X)) return Next;
    }
    return FCurrent;
}

void TCustomExGrid::KeyPress(char32_t& Key) {
    const TControlGuard Guard(this);
    TCustomControl::KeyPress(Key);
    if (!Guard || HasOption(goAlwaysShowEditor) || !HasOption(goEditing)) return;
    if (Key != Return && Key != Escape) return;
    // With no editor to close, Esc is the dialog's.
    if (Key == Escape && !IsEditorShown() && IsInDialog()) return;
    Key = 0;
    if (FEditorMode) {
        HideEditor();
    } else {
        ShowEditor();
    }
}

void TCustomExGrid::WMChar(TWMKey& Message) {
    const TControlGuard Guard(this);
    if (HasOption(goEditing) && (Message.CharCode >= 32 || Message.CharCode == Backspace))
        ShowEditorChar(Message.CharCode);
    if (Guard) TCustomControl::WMChar(Message);
}

void TCustomExGrid::WMGetDlgCode(TMessage& Message) {
    Message.Result |= DLGC_WANTARROWS;
    if (HasOption(goTabs)) Message.Result |= DLGC_WANTTAB;
    if (HasOption(goEditing)) Message.Result |= DLGC_WANTCHARS;
}

void TCustomExGrid::CMWantSpecialKey(TWMKey& Message) {
    TCustomControl::CMWantSpecialKey(Message);
    switch (Message.CharCode) {
    case VK_LEFT:
    case VK_RIGHT:
    case VK_UP:
    case VK_DOWN:
        Message.Result = 1;
        break;
    case VK_TAB:
        if (HasOption(goTabs)) Message.Result = 1;
        break;
    case VK_RETURN:
        if (HasOption(goEditing)) Message.Result = 1;
        break;
    case VK_ESCAPE:
        // Esc is the dialog's unless there is something to end here.
        if ((IsEditorShown() && !HasOption(goAlwaysShowEditor)) || IsPressing()) Message.Result = 1;
        break;
    default:
        break;
    }
}

} // namespace quill
