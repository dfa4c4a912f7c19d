// Columns and cell texts: the map from displayed columns to data columns, the structure column, widths and texts.
#include "host/base/Events.h"
#include "quilltree/QuillTree.h"

#include <algorithm>
#include <numeric>

namespace quill {

void TCustomQuillTree::InitColumnsMap() {
    if (IsLoading()) return;
    FColumnsMap.resize(static_cast<std::size_t>(GetColCount()));
    std::iota(FColumnsMap.begin(), FColumnsMap.end(), 0);
}

int TCustomQuillTree::GetColumnOrder(int Index) const {
    if (Index < 0 || Index >= static_cast<int>(FColumnsMap.size())) return -1;
    return FColumnsMap[static_cast<std::size_t>(Index)];
}

int TCustomQuillTree::GetDisplayColumn(int DataCol) const {
    const auto Found = std::find(FColumnsMap.begin(), FColumnsMap.end(), DataCol);
    return Found == FColumnsMap.end() ? -1 : static_cast<int>(Found - FColumnsMap.begin());
}

void TCustomQuillTree::ColumnMoved(int FromIndex, int ToIndex) {
    const int Count = static_cast<int>(FColumnsMap.size());
    if (FromIndex >= 0 && FromIndex < Count && ToIndex >= 0 && ToIndex < Count) {
        const auto From = FColumnsMap.begin() + FromIndex;
        const auto To = FColumnsMap.begin() + ToIndex;
        if (FromIndex < ToIndex) {
            std::rotate(From, From + 1, To + 1);
        } else {
            std::rotate(To, From, From + 1);
        }
    }
    const TControlGuard Guard(this);
    InvalidateGrid(); // what was painted since the widths moved has the old texts
    ForgetToolTip();
    TCustomExGrid::ColumnMoved(FromIndex, ToIndex);
    if (!Guard) return;
    // The structure column stays on the same data.
    if (FromIndex > FStructureCol && FStructureCol >= ToIndex) {
        SetStructureCol(FStructureCol + 1);
    } else if (ToIndex >= FStructureCol && FStructureCol > FromIndex) {
        SetStructureCol(FStructureCol - 1);
    } else if (FStructureCol == FromIndex) {
        SetStructureCol(ToIndex);
    }
    if (Guard) FollowEdit();
}

void TCustomQuillTree::ColCountChanged() {
    // Columns that were moved fall back into their order, which is more than the strip that appeared or went.
    if (!std::is_sorted(FColumnsMap.begin(), FColumnsMap.end())) Invalidate();
    InitColumnsMap();
    FollowEdit();
}

void TCustomQuillTree::SetStructureCol(int Value) {
    if (Value == FStructureCol) return;
    const TControlGuard Guard(this);
    if (Value >= 0) {
        if (Value >= MaxExtentCount - 1) return; // more columns than a grid can have
        if (Value >= GetColCount()) SetColCount(Value + 1);
        if (!Guard) return;
        const int Old = FStructureCol;
        FStructureCol = Value;
        StructureColChanged(Old, Value);
        if (Guard) FollowEdit();
    }
    if (Guard) Invalidate();
}

void TCustomQuillTree::StructureColChanged(int, int) {}

int TCustomQuillTree::GetColWidths(int Col) {
    if (!FFitColumnToClientWidth) return TCustomExGrid::GetColWidths(Col);
    const int ClientWidth = GetClientWidth();
    if (GetColCount() < 2) return ClientWidth;
    const bool HasLines = !(GetOptions() * TGridOptions{goFixedVertLine, goVertLine}).IsEmpty();
    const int Line = HasLines ? GetGridLineWidth() : 0;
    const std::tuple Key{GetColWidthsVersion(), ClientWidth, Line};
    if (FFit.Key != Key) {
        // Columns at the edge are cut off there, those behind it away; the last one takes what is left over.
        FFit = {Key, 0, ClientWidth};
        for (; FFit.Col < GetColCount(); ++FFit.Col) {
            const std::int64_t Left = FFit.Width - TCustomExGrid::GetColWidths(FFit.Col) - Line;
            if (Left < 0) break;
            FFit.Width = Left;
        }
        if (FFit.Col == GetColCount()) {
            --FFit.Col;
            FFit.Width += TCustomExGrid::GetColWidths(FFit.Col);
        } else {
            FFit.Width = std::max<std::int64_t>(0, FFit.Width - Line);
        }
    }
    if (Col < FFit.Col || Col >= GetColCount()) return TCustomExGrid::GetColWidths(Col);
    return Col == FFit.Col ? static_cast<int>(FFit.Width) : 0;
}

void TCustomQuillTree::SizeChanged(int OldColCount, int OldRowCount) {
    const TControlGuard Guard(this);
    if (OldColCount != GetColCount()) ForgetToolTip();
    TCustomExGrid::SizeChanged(OldColCount, OldRowCount);
    if (!Guard) return;
    if (FFitToHeight && FWordWrap) RefreshRowHeights();
}

void TCustomQuillTree::ColumnWidthChanged(int Index, int Value) {
    if (FFitToHeight && FWordWrap) RefreshRowHeights();
    TCustomExGrid::ColumnWidthChanged(Index, Value);
}

// --- texts -------------------------------------------------------------------------------------------------------

std::string TCustomQuillTree::GetNodeCells(TFlyNode* Node, int DataCol) {
    if (!Node || DataCol == -1) return {};
    if (DataCol == GetColumnOrder(FStructureCol)) return Node->GetText();
    return std::string(Node->GetCellView(DataCol));
}

void TCustomQuillTree::SetNodeCells(TFlyNode* Node, int DataCol, const std::string& S) {
    if (!Node || DataCol == -1) return;
    Node->StoreCell(DataCol, S);
    if (FFitToHeight) {
        Node->SetHeightField(-1);
        RecalcNodeHeight(Node);
        InvalidateRectBelow(Node);
    } else {
        // The map goes from display to data and is applied to a data column here; with moved columns another cell
        // may be repainted. Kept so; SetNodeData repaints the right one.
        InvalidateCell(GetColumnOrder(DataCol), Node->GetRow());
    }
}

std::string TCustomQuillTree::GetNodeData(TFlyNode* Node, int ACol) {
    return GetNodeCells(Node, GetColumnOrder(ACol));
}

void TCustomQuillTree::SetNodeData(TFlyNode* Node, int ACol, const std::string& S) {
    if (!Node) return;
    const TControlGuard Guard(this);
    const TNodeWatch Watch(Node);
    SetNodeCells(Node, GetColumnOrder(ACol), S);
    if (Guard && Watch) InvalidateCell(ACol, Node->GetRow());
}

} // namespace quill
