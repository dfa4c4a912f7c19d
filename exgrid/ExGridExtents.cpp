// Widths, heights, tab stops and alignments per column or row; sizes of the grid; moving, inserting and deleting.
#include "exgrid/ExGrid.h"

#include "host/base/Texts.h"

#include <algorithm>
#include <limits>

namespace quill {

namespace {

// An entry that was never written: it follows the default.
constexpr int NoValue = std::numeric_limits<int>::min();

[[noreturn]] void Fail(std::string_view Text, int Value) {
    throw EInvalidGridOperation(FormatText(Text, {std::to_string(Value)}));
}

int ReadEntry(const std::vector<int>& Values, int Count, int Index, int Default) {
    if (Values.empty() || Index < 0 || Index >= Count || Index >= Values[0]) return Default;
    const int Value = Values[static_cast<std::size_t>(Index) + 1];
    return Value == NoValue ? Default : Value;
}

void CheckCount(int Count) {
    if (Count < 0) Fail(STooManyDeleted, Count);
    if (Count >= TCustomExGrid::MaxExtentCount) Fail(SGridTooLarge, Count);
}

// Gives Values NewCount entries by inserting or removing at Index.
void ResizeEntries(std::vector<int>& Values, int NewCount, int Index) {
    if (Values.empty()) return;
    const int Change = NewCount - Values[0];
    const auto At = Values.begin() + 1 + std::min(Index, Values[0]);
    if (Change > 0) {
        Values.insert(At, static_cast<std::size_t>(Change), NoValue);
    } else {
        Values.erase(At, At - Change);
    }
    Values[0] = NewCount;
}

void MoveEntry(std::vector<int>& Values, int From, int To) {
    if (Values.empty()) return;
    const auto First = Values.begin() + 1;
    if (From < To) {
        std::rotate(First + From, First + From + 1, First + To + 1);
    } else {
        std::rotate(First + To, First + From, First + From + 1);
    }
}

// Where the cell that was at Index is after a move.
void FollowMove(int& Index, int From, int To) {
    if (Index == From) {
        Index = To;
    } else if (From < Index && Index <= To) {
        --Index;
    } else if (To <= Index && Index < From) {
        ++Index;
    }
}

void CheckMove(int From, int To, int Count) {
    if (From < 0 || From >= Count) Fail(SIndexOutOfRange, From);
    if (To < 0 || To >= Count) Fail(SIndexOutOfRange, To);
}

} // namespace

// --- values per column and row --------------------------------------------------------------------------------

void TCustomExGrid::StoreExtent(TExtents& Extents, int Count, int Index, int Value) {
    if (Extents.empty()) {
        CheckCount(Count);
        Extents.assign(static_cast<std::size_t>(Count) + 1, NoValue);
        Extents[0] = Count;
    }
    Extents[static_cast<std::size_t>(Index) + 1] = Value;
    if (&Extents == &FColWidths) ++FColWidthsVersion;
}

int TCustomExGrid::GetColWidths(int Index) {
    return ReadEntry(FColWidths, FColCount, Index, FDefaultColWidth);
}

int TCustomExGrid::GetRowHeights(int Index) {
    return ReadEntry(FRowHeights, FRowCount, Index, FDefaultRowHeight);
}

void TCustomExGrid::SetColWidths(int Index, int Value) {
    if (Index < 0 || Index >= FColCount) Fail(SIndexOutOfRange, Index);
    if (Value == TCustomExGrid::GetColWidths(Index)) {
        // Written is written: the column no longer follows the default.
        StoreExtent(FColWidths, FColCount, Index, Value);
        return;
    }
    const bool Notify = !HasState(csLoading);
    const TControlGuard Guard(this);
    if (Notify) {
        ColumnWidthChanging(Index, Value);
        if (!Guard || Index >= FColCount) return;
    }
    StoreExtent(FColWidths, FColCount, Index, Value);
    InvalidateGrid();
    ColWidthsChanged();
    if (Guard && Notify) ColumnWidthChanged(Index, Value);
}

void TCustomExGrid::SetRowHeights(int Index, int Value) {
    if (Index < 0 || Index >= FRowCount) Fail(SIndexOutOfRange, Index);
    if (Value == TCustomExGrid::GetRowHeights(Index)) {
        StoreExtent(FRowHeights, FRowCount, Index, Value);
        return;
    }
    const bool Notify = !HasState(csLoading);
    const TControlGuard Guard(this);
    if (Notify) {
        RowHeightChanging(Index, Value);
        if (!Guard || Index >= FRowCount) return;
    }
    StoreExtent(FRowHeights, FRowCount, Index, Value);
    InvalidateGrid();
    RowHeightsChanged();
    if (Guard && Notify) RowHeightChanged(Index, Value);
}

// Booleans and alignments live in the low byte of their entry.
bool TCustomExGrid::GetTabStops(int Index) const {
    return (ReadEntry(FTabStops, FColCount, Index, 1) & 0xFF) != 0;
}

void TCustomExGrid::SetTabStops(int Index, bool Value) {
    if (Index < 0 || Index >= FColCount) Fail(SIndexOutOfRange, Index);
    StoreExtent(FTabStops, FColCount, Index, Value ? 1 : 0);
}

TAlignment TCustomExGrid::GetColAlignMent(int Index) const {
    return static_cast<TAlignment>(ReadEntry(FColAlignments, FColCount, Index, taLeftJustify) & 0xFF);
}

void TCustomExGrid::SetColAlignMent(int Index, TAlignment Value) {
    if (Index < 0 || Index >= FColCount) Fail(SIndexOutOfRange, Index);
    if (Value == GetColAlignMent(Index)) return;
    StoreExtent(FColAlignments, FColCount, Index, Value);
    InvalidateGrid();
}

void TCustomExGrid::SetDefaultColWidth(int Value) {
    if (Value == FDefaultColWidth || Value < 0) return;
    FDefaultColWidth = Value;
    ++FColWidthsVersion;
    InvalidateGrid();
    ColWidthsChanged();
}

void TCustomExGrid::SetDefaultRowHeight(int Value) {
    if (Value == FDefaultRowHeight || Value < 0) return;
    FDefaultRowHeight = Value;
    InvalidateGrid();
    RowHeightsChanged();
}

void TCustomExGrid::ExtentsChanged() {
    const TControlGuard Guard(this);
    KeepHOffset();
    UpdateScrollRange();
    if (Guard) RefreshEdit(false);
}

void TCustomExGrid::ColWidthsChanged() { ExtentsChanged(); }

void TCustomExGrid::RowHeightsChanged() { ExtentsChanged(); }

void TCustomExGrid::ColumnWidthChanging(int Index, int& Value) {
    FireEvent(OnColumnWidthChanging, Index, Value);
}

void TCustomExGrid::ColumnWidthChanged(int Index, int Value) {
    const TControlGuard Guard(this);
    FireEvent(OnColumnWidthChanged, Index, Value);
    if (Guard) Q_EMIT columnWidthChanged(Index, Value);
}

void TCustomExGrid::RowHeightChanging(int Index, int& Value) { FireEvent(OnRowHeightChanging, Index, Value); }

void TCustomExGrid::RowHeightChanged(int Index, int Value) {
    const TControlGuard Guard(this);
    FireEvent(OnRowHeightChanged, Index, Value);
    if (Guard) Q_EMIT rowHeightChanged(Index, Value);
}

// --- counts ---------------------------------------------------------------------------------------------------

void TCustomExGrid::SetColCount(int Value) {
    const TControlGuard Guard(this);
    if (Value != FColCount) {
        Value = std::max(Value, 1);
        CheckCount(Value);
        if (!HasState(csLoading) && Value <= FFixedCols) SetFixedCols(Value - 1);
        if (!Guard) return;
        ChangeSize(Value, FRowCount);
        if (!Guard) return;
        if (HasOption(goRowSelect)) {
            FAnchor.X = FColCount - 1;
            InvalidateGrid();
        }
    }
    ColCountChanged();
}

void TCustomExGrid::SetRowCount(int Value) {
    if (Value == FRowCount) return;
    FTopLeft.Y = std::max(FTopLeft.Y, FFixedRows);
    ChangeSize(FColCount, std::max(Value, FFixedRows));
}

void TCustomExGrid::SetFixedCols(int Value) {
    if (Value == FFixedCols) return;
    if (Value < 0) Fail(SIndexOutOfRange, Value);
    const TControlGuard Guard(this);
    if (Value >= FColCount) {
        if (Value >= MaxExtentCount - 1) Fail(SGridTooLarge, Value);
        SetColCount(Value + 1);
        if (!Guard) return;
    }
    if (FEditorMode) HideEditor();
    if (!Guard || Value >= FColCount) return; // a handler has taken columns away
    FFixedCols = Value;
    Initialize();
    UpdateScrollRange();
    if (Guard) InvalidateGrid();
}

void TCustomExGrid::SetFixedRows(int Value) {
    if (Value == FFixedRows) return;
    if (Value < 0) Fail(SIndexOutOfRange, Value);
    if (Value >= FRowCount) Fail(SFixedRowTooBig, Value);
    const TControlGuard Guard(this);
    if (FEditorMode) HideEditor();
    if (!Guard || Value >= FRowCount) return;
    FFixedRows = Value;
    Initialize();
    UpdateScrollRange();
    if (Guard) InvalidateGrid();
}

void TCustomExGrid::ChangeSize(int NewColCount, int NewRowCount) {
    ResizeAxes(NewColCount, std::min(FColCount, NewColCount), NewRowCount, std::min(FRowCount, NewRowCount));
}

void TCustomExGrid::AdjustSize(int Index, int Amount, bool Rows) {
    const TControlGuard Guard(this);
    if (FEditorMode) HideEditor(); // before its cell moves
    if (!Guard) return;
    const int Count = Rows ? FRowCount : FColCount;
    if (Index < 0 || Index > Count) Fail(SIndexOutOfRange, Index);
    const std::int64_t NewCount = std::int64_t{Count} + Amount;
    const int Least = Rows ? FFixedRows : FFixedCols + 1;
    if (NewCount < Least || (Amount < 0 && Index > NewCount)) Fail(STooManyDeleted, Amount);
    if (NewCount > std::numeric_limits<int>::max()) Fail(SGridTooLarge, Amount);
    const int Fitted = static_cast<int>(NewCount);
    if (Rows) {
        ResizeAxes(FColCount, FColCount, Fitted, Index);
    } else {
        ResizeAxes(Fitted, Index, FRowCount, FRowCount);
        if (Guard) ColCountChanged();
    }
    if (Guard) InvalidateGrid();
}

void TCustomExGrid::ResizeAxes(int NewColCount, int ColIndex, int NewRowCount, int RowIndex) {
    const int OldColCount = FColCount;
    const int OldRowCount = FRowCount;
    const TGridCoord OldTopLeft = FTopLeft;
    CheckCount(NewColCount);
    // Without stored heights rows cost nothing, so their number is free.
    if (NewRowCount < 0 || HasRowHeights()) CheckCount(NewRowCount);
    ResizeEntries(FColWidths, NewColCount, ColIndex);
    ResizeEntries(FTabStops, NewColCount, ColIndex);
    ResizeEntries(FColAlignments, NewColCount, ColIndex);
    ResizeEntries(FRowHeights, NewRowCount, RowIndex);
    ++FColWidthsVersion;
    FColCount = NewColCount;
    FRowCount = NewRowCount;
    if (FColCount != 1) FHOffset = 0;

    const TControlGuard Guard(this);
    KeepCellsInside();
    if (!Guard) return;
    if (FTopLeft == OldTopLeft) {
        InvalidateStrips(OldColCount, OldRowCount);
    } else {
        InvalidateGrid();
    }
    const TGridCoord Kept = FTopLeft;
    UpdateScrollRange();
    // The cells may have taken the origin with them; what the bars changed was reported already.
    if (Guard && FTopLeft == Kept && FTopLeft != OldTopLeft) TopLeftMoved(OldTopLeft);
    if (Guard) SizeChanged(OldColCount, OldRowCount);
}

void TCustomExGrid::KeepCellsInside() {
    const auto Fit = [](int Index, int Count, int Fixed) {
        if (Index < Count && Index >= Fixed) return Index;
        return Count > Fixed ? Count - 1 : 0;
    };
    const auto Cut = [this](TGridCoord& Coord) {
        Coord.X = std::clamp(Coord.X, 0, std::max(FColCount - 1, 0));
        Coord.Y = std::clamp(Coord.Y, 0, std::max(FRowCount - 1, 0));
    };
    FTopLeft.X = std::clamp(FTopLeft.X, FFixedCols, std::max(FFixedCols, FColCount - 1));
    FTopLeft.Y = std::clamp(FTopLeft.Y, FFixedRows, std::max(FFixedRows, FRowCount - 1));
    const TGridRect OldSelection = GetSelection();
    Cut(FAnchor);
    Cut(FOpposite);
    if (GetSelection() != OldSelection) InvalidateRect(GetSelection());
    const TGridCoord Wanted{Fit(FCurrent.X, FColCount, FFixedCols), Fit(FCurrent.Y, FRowCount, FFixedRows)};
    if (Wanted == FCurrent) return;
    if (HasState(csLoading)) {
        FCurrent = Wanted; // Loaded starts over
        return;
    }
    const TControlGuard Guard(this);
    MoveCurrent(Wanted.X, Wanted.Y, true, true, {}, swNone);
    // A handler that refuses cannot keep the current cell in a row or column that is gone.
    if (Guard) Cut(FCurrent);
}

void TCustomExGrid::SizeChanged(int, int) { Updatewidths(); }

void TCustomExGrid::AppendRow() {
    const TControlGuard Guard(this);
    FireEvent(OnAppendRow, this);
    if (Guard) Q_EMIT appendRowRequested();
}

// --- moving and deleting --------------------------------------------------------------------------------------

void TCustomExGrid::MoveColumn(int FromIndex, int ToIndex) {
    CheckMove(FromIndex, ToIndex, FColCount);
    if (FromIndex == ToIndex) return;
    MoveEntry(FColWidths, FromIndex, ToIndex);
    ++FColWidthsVersion;
    MoveEntry(FTabStops, FromIndex, ToIndex);
    MoveEntry(FColAlignments, FromIndex, ToIndex);
    if (!HasOption(goRowSelect)) {
        FollowMove(FCurrent.X, FromIndex, ToIndex);
        FollowMove(FAnchor.X, FromIndex, ToIndex);
        FollowMove(FOpposite.X, FromIndex, ToIndex);
        if (FFixedCols < FColCount) FCurrent.X = std::max(FCurrent.X, FFixedCols);
    }
    if (FInplaceCol >= 0) FollowMove(FInplaceCol, FromIndex, ToIndex);
    InvalidateGrid();
    const TControlGuard Guard(this);
    ExtentsChanged();
    if (Guard) ColumnMoved(FromIndex, ToIndex);
}

void TCustomExGrid::MoveRow(int FromIndex, int ToIndex) {
    CheckMove(FromIndex, ToIndex, FRowCount);
    if (FromIndex == ToIndex) return;
    MoveEntry(FRowHeights, FromIndex, ToIndex);
    FollowMove(FCurrent.Y, FromIndex, ToIndex);
    FollowMove(FAnchor.Y, FromIndex, ToIndex);
    FollowMove(FOpposite.Y, FromIndex, ToIndex);
    if (FFixedRows < FRowCount) FCurrent.Y = std::max(FCurrent.Y, FFixedRows);
    if (FInplaceRow >= 0) FollowMove(FInplaceRow, FromIndex, ToIndex);
    InvalidateGrid();
    const TControlGuard Guard(this);
    ExtentsChanged();
    if (Guard) RowMoved(FromIndex, ToIndex);
}

void TCustomExGrid::ColumnMoved(int FromIndex, int ToIndex) {
    const TControlGuard Guard(this);
    FireEvent(OnColumnMoved, this, FromIndex, ToIndex);
    if (Guard) Q_EMIT columnMoved(FromIndex, ToIndex);
}

void TCustomExGrid::RowMoved(int FromIndex, int ToIndex) {
    const TControlGuard Guard(this);
    FireEvent(OnRowMoved, this, FromIndex, ToIndex);
    if (Guard) Q_EMIT rowMoved(FromIndex, ToIndex);
}

// The column goes to the end and is cut off there. A current cell on it does not go with it: it stays in its place,
// on the column that follows.
void TCustomExGrid::DeleteColumn(int ACol) {
    const TControlGuard Guard(this);
    const bool Current = FCurrent.X == ACol;
    if (FInplaceCol == ACol) DiscardEdit(); // what was typed there goes with it
    if (!Guard) return;
    MoveColumn(ACol, FColCount - 1);
    if (!Guard) return;
    if (Current && ACol < FColCount - 1) FCurrent.X = FAnchor.X = FOpposite.X = ACol;
    SetColCount(FColCount - 1);
}

void TCustomExGrid::DeleteRow(int ARow) {
    const TControlGuard Guard(this);
    const bool Current = FCurrent.Y == ARow;
    if (FInplaceRow == ARow) DiscardEdit();
    if (!Guard) return;
    MoveRow(ARow, FRowCount - 1);
    if (!Guard) return;
    if (Current && ARow < FRowCount - 1) FCurrent.Y = FAnchor.Y = FOpposite.Y = ARow;
    SetRowCount(FRowCount - 1);
}

} // namespace quill
