#include "quilltree/HeadlessHost.h"

#include <algorithm>

// Handlers are called through copies: one may destroy this host while it runs.
namespace quill {

THeadlessHost::THeadlessHost() : FItems(std::make_unique<TFlyNodes>(this)) {}

THeadlessHost::~THeadlessHost() {
    FDestroying = true;
    FItems.reset();
}

// --- rows -------------------------------------------------------------------------------------------------------------

void THeadlessHost::RefreshNodeList(TTreeCollection* Item) {
    // The container tells about itself before it is assigned.
    if (!FItems) return;
    FItems->RebuildRowList(Item);
    if (const auto Handler = OnRefresh) Handler();
}

void THeadlessHost::FixupRows() {
    if (!FItems || FDestroying) return;
    const int Count = FItems->RowList.GetCount();
    FRowCount = FFixedRows + Count;
    if (Count == 0) FTopRow = FFixedRows;
    if (!FItems->GetSorted() && FSortType != stNone) FItems->AlphaSort();
}

void THeadlessHost::InsertRows(int Index, int Count) {
    FRowCount += Count;
    if (const auto Handler = OnInsertRows) Handler(Index, Count);
}

void THeadlessHost::DeleteRows(int Index, int Count) {
    FRowCount -= Count;
    FTopRow = std::clamp(FTopRow, FFixedRows, std::max(FFixedRows, FRowCount - 1));
    if (const auto Handler = OnDeleteRows) Handler(Index, Count);
}

TFlyNode* THeadlessHost::GetNodeAtRow(int ARow) {
    return FItems ? FItems->MaterialiseRow(ARow - FFixedRows) : nullptr;
}

TFlyNode* THeadlessHost::GetNextVisible(TFlyNode* Node) {
    const int Index = FItems->RowList.IndexOf(Node);
    if (Index >= 0 && Index + 1 < FItems->RowList.GetCount()) return FItems->MaterialiseRow(Index + 1);
    TFlyNode* Next = Node ? Node->GetNext() : nullptr;
    while (Next && !Next->IsNodeVisible()) Next = Next->GetNext();
    return Next;
}

TFlyNode* THeadlessHost::GetPrevVisible(TFlyNode* Node) {
    const int Index = FItems->RowList.IndexOf(Node);
    if (Index > 0) return FItems->MaterialiseRow(Index - 1);
    TFlyNode* Prev = Node ? Node->GetPrev() : nullptr;
    while (Prev && !Prev->IsNodeVisible()) Prev = Prev->GetPrev();
    return Prev;
}

void THeadlessHost::SetTopRow(int Value) {
    FTopRow = std::clamp(Value, FFixedRows, std::max(FFixedRows, FRowCount - 1));
}

int THeadlessHost::CalcMaxTopRow(int, int) { return std::max(FFixedRows, FRowCount - FVisibleRowCount); }
void THeadlessHost::MoveTopLeft(int, int ATop) { SetTopRow(ATop); }

// --- nodes ------------------------------------------------------------------------------------------------------------

TFlyNode* THeadlessHost::CreateNode(TTreeCollection* Owner) { return new TFlyNode(Owner); }

void THeadlessHost::NodeMaterialised(TFlyNode* Node) {
    if (const auto Handler = OnMaterialise) Handler(Node);
}

void THeadlessHost::ForgetNode(TFlyNode* Node) {
    if (FDropTarget == Node) FDropTarget = nullptr;
}

bool THeadlessHost::CanExpand(TFlyNode* Node) {
    bool Allow = true;
    if (const auto Handler = OnExpanding) Handler(Node, Allow);
    return Allow;
}

bool THeadlessHost::CanCollapse(TFlyNode* Node) {
    bool Allow = true;
    if (const auto Handler = OnCollapsing) Handler(Node, Allow);
    return Allow;
}

void THeadlessHost::Expand(TFlyNode* Node) {
    if (const auto Handler = OnExpanded) Handler(Node);
}

void THeadlessHost::Collapse(TFlyNode* Node) {
    if (const auto Handler = OnCollapsed) Handler(Node);
}

void THeadlessHost::Delete(TFlyNode* Node) {
    if (FDestroying) return;
    if (const auto Handler = OnDeletion) Handler(Node);
}

bool THeadlessHost::ChangeState(TFlyNode* Node, int NewState) {
    if (const auto Handler = OnStateChanging) {
        const TWatch<TFlyNode> Watch(Node);
        bool Allow = true;
        Handler(Node, NewState, Allow);
        if (!Allow || !Watch) return false;
    }
    Node->SetStateIndexField(NewState);
    return true;
}

void THeadlessHost::SelectItem(TFlyNode* Node) {
    const TWatch<TFlyNode> Watch(Node);
    Node->MakeVisible();
    if (!Watch) return;
    if (const auto Handler = OnSelectItem) Handler(Node);
}

void THeadlessHost::SetDropTarget(TFlyNode* Node) { FDropTarget = Node; }

int THeadlessHost::GetDropTargetRow() const { return FDropTarget ? FDropTarget->GetRow() : -1; }

std::string THeadlessHost::GetNodeCells(TFlyNode* Node, int DataCol) {
    if (!Node || DataCol == -1) return {};
    return DataCol == FStructureCol ? Node->GetText() : std::string(Node->GetCellView(DataCol));
}

void THeadlessHost::SetNodeCells(TFlyNode* Node, int DataCol, const std::string& S) {
    if (Node) Node->StoreCell(DataCol, S);
}

// --- sorting and numbering ----------------------------------------------------------------------------------------------

int THeadlessHost::Compare(TFlyNode* Node1, TFlyNode* Node2) {
    int Result = 0;
    if (const auto Handler = OnCompare) Handler(Node1, Node2, Result);
    return Result;
}

void THeadlessHost::SetSortType(TSortType Value) {
    if (Value == FSortType) return;
    FSortType = Value;
    if (Value == stText || Value == stBoth || (Value == stData && HasCompare())) FItems->AlphaSort();
}

void THeadlessHost::SetEnumerateNodes(bool Value) {
    FEnumerateNodes = Value;
    FItems->SetLastUniqueTag(-1);
    if (!Value) return;
    FItems->SetEnumerating(true);
    for (TFlyNode* Node = FItems->FirstExisting(); Node; Node = Node->GetNextExisting())
        Node->SetUniqueTag(-1);
    FItems->SetEnumerating(false);
}

// --- selection and heights ------------------------------------------------------------------------------------------

void THeadlessHost::SetRow(int Value) { FRow = Value; }

void THeadlessHost::SetSelection(TFlyNode* Node) {
    int First = 0;
    int Last = 0;
    if (!Node) {
        FItems->ClearSelectedRows(First, Last);
        FRow = -1;
        return;
    }
    const TWatch<TFlyNode> Watch(Node);
    Node->MakeVisible();
    if (!Watch || Node->GetRow() < 0) return;
    FItems->ClearSelectedRows(First, Last);
    FRow = Node->GetRow();
    Node->SetSelectedField(true);
}

void THeadlessHost::SetGridSelection(int, int, int, int Bottom) { FRow = Bottom; }

void THeadlessHost::SelectOne(int ARow) {
    if (TFlyNode* const Node = GetNodeAtRow(ARow)) Node->SetSelected(true);
}

int THeadlessHost::GetRowHeights(int ARow) {
    const TFlyNode* const Node = FItems->RowList.NodeAt(ARow - FFixedRows);
    return Node && Node->GetHeightField() != -1 ? Node->GetHeightField() : FDefaultRowHeight;
}

void THeadlessHost::SetRowHeights(int ARow, int Value) {
    if (TFlyNode* const Node = FItems->RowList.NodeAt(ARow - FFixedRows)) Node->SetHeightField(Value);
}

int THeadlessHost::RecalcNodeHeight(TFlyNode* Node) {
    return Node && Node->GetHeightField() != -1 ? Node->GetHeightField() : FDefaultRowHeight;
}

void THeadlessHost::RefreshRowHeights() { FItems->ResetStoredHeights(); }

} // namespace quill
