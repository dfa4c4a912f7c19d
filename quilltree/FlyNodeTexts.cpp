// What a node carries: texts, data, tags, height, images and marks.
#include "quilltree/FlyNode.h"

#include "quilltree/FlyNodeExtras.h"
#include "quilltree/FlyNodes.h"

#include <utility>
#include <vector>

namespace quill {

namespace {

// From so many cells on, a node keeps them in a list object: packed texts are built anew with every change.
constexpr int ManyCells = 64;

} // namespace

bool TFlyNode::IsQuiet() const {
    const TFlyNodes* const Container = ShownBy();
    return !Container || Container->GetUpdateCount() > 0 || Container->FHost->IsLoading();
}

void TFlyNode::InvalidateStructureCell() {
    INodeHost* const Host = GetHost();
    if (!Host) return;
    const int Row = GetRow();
    if (Row >= 0) Host->InvalidateCell(Host->GetStructureCol(), Row);
}

// --- text -----------------------------------------------------------------------------------------------------------

void TFlyNode::SetCaption(const std::string& Value) {
    TTreeCollection::SetCaption(Value);
    if (IsQuiet()) return;
    INodeHost* const Host = GetHost();
    if (!Host->GetFitToHeight() || Value.empty()) {
        InvalidateStructureCell();
        return;
    }
    const TWatch<TFlyNode> Self(this);
    Host->RecalcNodeHeight(this);
    if (Self && GetHost()) GetHost()->InvalidateRectBelow(this);
}

void TFlyNode::SetText(const std::string& Value) {
    const TWatch<TFlyNode> Self(this);
    SetCaption(Value);
    INodeHost* const Host = Self ? GetHost() : nullptr;
    if (!Host) return;
    const TSortType Sort = Host->GetSortType();
    if ((Sort == stText || Sort == stBoth) && Host->HasCompare()) ResortSiblings();
}

void TFlyNode::SetData(void* Value) {
    StoreData(Value);
    INodeHost* const Host = GetHost();
    if (!Host) return;
    const TSortType Sort = Host->GetSortType();
    if ((Sort == stData || Sort == stBoth) && Host->HasCompare()) ResortSiblings();
}

void TFlyNode::ResortSiblings() {
    if (HasFlag(FlagDeleting)) return;
    if (TFlyNode* const Parent = GetParent()) {
        Parent->AlphaSort();
    } else if (TFlyNodes* const Container = GetOwner()) {
        Container->AlphaSort();
    }
}

// --- cells ----------------------------------------------------------------------------------------------------------

bool TFlyNode::HasCells() const { return HasFlag(FlagListCells) || Texts().HasCells(); }

int TFlyNode::GetCellCount() const {
    return HasFlag(FlagListCells) ? NodeExtrasIfAny()->Cells->GetCount() : Texts().GetCellCount();
}

std::string_view TFlyNode::GetCellView(int Index) const {
    if (!HasFlag(FlagListCells)) return Texts().GetCell(Index);
    const TStringList& List = *NodeExtrasIfAny()->Cells;
    return Index >= 0 && Index < List.GetCount() ? std::string_view(List.Get(Index)) : std::string_view();
}

std::string_view TFlyNode::GetAllTexts(std::vector<std::string_view>& Cells) const {
    if (!HasFlag(FlagListCells)) return Texts().GetAll(Cells);
    const TStringList& List = *NodeExtrasIfAny()->Cells;
    for (int i = 0; i < List.GetCount(); ++i) Cells.push_back(List.Get(i));
    return GetTextView();
}

TStringList* TFlyNode::GetCells() {
    if (!HasCells()) return nullptr;
    TNodeExtras& Extra = NodeExtras();
    if (!HasFlag(FlagListCells)) {
        auto List = std::make_unique<TStringList>();
        std::vector<std::string_view> Cells;
        Texts().GetAll(Cells);
        for (const std::string_view Cell : Cells) List->Add(std::string(Cell));
        Extra.Cells = std::move(List);
        Texts().RemoveCells();
        SetFlag(FlagListCells, true);
    }
    return Extra.Cells.get();
}

void TFlyNode::StoreCell(int Index, std::string_view Value) {
    if (Index < 0 || Index >= MaxCells) return;
    if (!HasFlag(FlagListCells) && Index < ManyCells && GetCellCount() < ManyCells) {
        Texts().SetCell(Index, Value);
        return;
    }
    // Value may be a view of a text that moves.
    const std::string Text(Value);
    if (!HasCells()) Texts().SetCells({});
    TStringList& List = *GetCells();
    while (List.GetCount() <= Index) List.Add({});
    List.Put(Index, Text);
}

void TFlyNode::StoreTexts(std::string_view Text, std::span<const std::string_view> Cells, bool WithCells) {
    CaptionChanges();
    Texts().Assign(Text, WithCells, Cells);
    if (!HasFlag(FlagListCells)) return;
    SetFlag(FlagListCells, false);
    NodeExtras().Cells.reset();
}

void TFlyNode::FreeCells() {
    Texts().RemoveCells();
    if (!HasFlag(FlagListCells)) return;
    SetFlag(FlagListCells, false);
    NodeExtras().Cells.reset();
}

std::string TFlyNode::GetCell(int Index) {
    INodeHost* const Host = GetHost();
    return Host ? Host->GetNodeCells(this, Index) : std::string(GetCellView(Index));
}

void TFlyNode::SetCell(int Index, const std::string& Value) {
    if (INodeHost* const Host = GetHost()) {
        Host->SetNodeCells(this, Index, Value);
    } else {
        StoreCell(Index, Value);
    }
}

std::string TFlyNode::GetCellsText() const {
    std::string Result;
    std::vector<std::string_view> Cells;
    GetAllTexts(Cells);
    for (const std::string_view Cell : Cells) Result.append(Cell).append("\r\n");
    return Result;
}

void TFlyNode::SetCellsText(const std::string& Value) {
    std::vector<std::string_view> Cells;
    std::string_view Line;
    for (std::size_t Pos = 0; NextTextLine(Value, Pos, Line);) Cells.push_back(Line);
    if (HasFlag(FlagListCells)) {
        // The program may hold the list object.
        GetCells()->SetText(Value);
    } else {
        Texts().SetCells(Cells);
    }
    TFlyNodes* const Container = ShownBy();
    if (Container && Container->GetUpdateCount() == 0 && Container->FHost->GetFitToHeight()) {
        Container->FHost->RecalcNodeHeight(this);
    }
}

// --- tags, height, images ---------------------------------------------------------------------------------------

int TFlyNode::GetUniqueTag() const {
    const INodeHost* const Host = GetHost();
    return Host && Host->GetEnumerateNodes() ? FUniqueTag : -1;
}

void TFlyNode::SetUniqueTag(int Value) {
    TFlyNodes* const Container = ShownBy();
    if (!Container || !Container->FHost->GetEnumerateNodes()) {
        FUniqueTag = Value;
        return;
    }
    FUniqueTag = Value == -1 ? Container->FLastUniqueTag + 1 : Value;
    if (FUniqueTag > Container->FLastUniqueTag) Container->FLastUniqueTag = FUniqueTag;
}

int TFlyNode::GetHeight() const {
    if (FSpare != -1) return FSpare;
    const INodeHost* const Host = GetHost();
    return Host ? Host->GetDefaultRowHeight() : -1;
}

void TFlyNode::SetHeight(int Value) {
    if (Value == FSpare) return;
    INodeHost* const Host = GetHost();
    const int Row = GetRow();
    SetHeightField(Value);
    if (!Host || Row < 0) return;
    const TWatch<TFlyNodes> Container(GetOwner());
    // Asked after storing, so that a row which takes its height from the node reports the new one as the old.
    const int OldHeight = Host->GetRowHeights(Row);
    if (Container) Host->SetRowHeights(Row, Value);
    if (Container) Host->InvalidateBox(0, Row, Host->GetColCount(), Host->GetRowCount(), true);
    if (Container) Host->RowSized(Row, OldHeight, Value);
}

void TFlyNode::SetImageIndex(int Value) {
    FImageIndex = Value;
    if (GetHost() && GetHost()->HasWindow()) InvalidateStructureCell();
}

void TFlyNode::SetSelectedIndex(int Value) {
    FSelectedIndex = Value;
    if (GetHost() && GetHost()->HasWindow()) InvalidateStructureCell();
}

void TFlyNode::SetStateIndex(int Value) {
    INodeHost* const Host = GetHost();
    if (!Host || Value == FStateIndex) {
        FStateIndex = Value;
        return;
    }
    const TWatch<TFlyNode> Self(this);
    const bool Accepted = Host->ChangeState(this, Value);
    if (Accepted && Self && GetHost() && GetHost()->HasWindow()) InvalidateStructureCell();
}

int TFlyNode::GetOverlayIndex() const {
    const TNodeExtras* const Extra = NodeExtrasIfAny();
    return Extra ? Extra->OverlayIndex : 0;
}

void TFlyNode::SetOverlayIndexField(int Value) {
    if (Value != GetOverlayIndex()) NodeExtras().OverlayIndex = Value;
}

void TFlyNode::SetOverlayIndex(int) {
    // The mask of the next overlay, counted on from the stored mask; it leaves the 32 bits at last.
    const auto Next = (static_cast<std::uint32_t>(GetOverlayIndex()) + 1u) << 8;
    SetOverlayIndexField(static_cast<int>(Next));
    if (GetHost() && GetHost()->HasWindow()) InvalidateStructureCell();
}

// --- marks ----------------------------------------------------------------------------------------------------------

void TFlyNode::SetSelectedField(bool Value) {
    if (Value == GetSelected()) return;
    if (FAnchor) FAnchor->Selected += Value ? 1 : -1;
    if (TFlyNodes* const Container = GetOwner()) {
        Container->RowList.FList.SetMark(this, Value);
    } else {
        TRowList::TList::StoreMark(this, Value);
    }
}

void TFlyNode::SetSelected(bool Value) {
    if (Value == GetSelected()) return;
    SetSelectedField(Value);
    if (INodeHost* const Host = GetHost()) Host->SelectItem(this);
}

int TFlyNode::GetStateField() const {
    const std::uint32_t Bits = HasFlag(StateBit0) * 1u + HasFlag(StateBit1) * 2u + HasFlag(StateBit2) * 4u;
    return static_cast<int>(Bits) - 1;
}

void TFlyNode::SetState(TNodeState Value) {
    const auto Bits = static_cast<std::uint32_t>(Value) + 1u;
    SetFlag(StateBit0, (Bits & 1u) != 0);
    SetFlag(StateBit1, (Bits & 2u) != 0);
    SetFlag(StateBit2, (Bits & 4u) != 0);
}

void TFlyNode::SetCut(bool) { SetState(nsCut); }

bool TFlyNode::GetDropTarget() const {
    const INodeHost* const Host = GetHost();
    const int Row = Host ? GetRow() : -1;
    return Row >= 0 && Host->GetDropTargetRow() == Row;
}

void TFlyNode::SetDropTarget(bool) {
    SetState(nsDropHilited);
    if (INodeHost* const Host = GetHost()) Host->SetDropTarget(this);
}

bool TFlyNode::GetFocused() const {
    const INodeHost* const Host = GetHost();
    if (!Host) return GetState(nsFocused);
    const int Row = GetRow();
    return Row >= 0 && Host->GetRow() == Row;
}

void TFlyNode::SetFocused(bool Value) {
    if (!GetHost()) {
        SetState(nsFocused);
        return;
    }
    if (!Value) {
        if (GetFocused()) GetHost()->SetRow(-1);
        return;
    }
    const TWatch<TFlyNode> Self(this);
    MakeVisible();
    if (!Self || !GetHost()) return;
    const int Row = GetRow();
    if (Row < 0) return;
    GetHost()->SetRow(Row);
    if (!Self || !GetHost() || GetHost()->IsRangeSelect()) return;
    GetHost()->SelectOne(GetHost()->GetRow());
}

std::shared_ptr<INodeAdapter> TFlyNode::GetNodeAdapter() const {
    const TNodeExtras* const Extra = NodeExtrasIfAny();
    return Extra ? Extra->Adapter : nullptr;
}

void TFlyNode::SetNodeAdapter(std::shared_ptr<INodeAdapter> Value) {
    const TWatch<TFlyNode> Self(this);
    // Taken out first: an adapter may well ask for its own removal while it is detached.
    std::shared_ptr<INodeAdapter> Old;
    if (GetNodeAdapter()) Old = std::move(NodeExtras().Adapter);
    if (Old) Old->DetachNode();
    if (!Self || !Value) return;
    NodeExtras().Adapter = Value;
    Value->AttachNode(this);
}

void TFlyNode::SetChildren(bool Value) {
    if (GetCount() > 0) {
        if (Value) SetFlag(FlagHasChildren, true);
        return;
    }
    if (Value == HasFlag(FlagHasChildren)) return;
    SetFlag(FlagHasChildren, Value);
    SetFlag(FlagAllChildrenHidden, false);
    InvalidateStructureCell();
}

void TFlyNode::SetHeightField(int Value) {
    FSpare = Value;
    if (Value == -1) return;
    if (TFlyNodes* Container = GetOwner()) Container->FHasStoredHeights = true;
}

// --- editing --------------------------------------------------------------------------------------------------------

bool TFlyNode::EditText() {
    INodeHost* const Host = GetHost();
    return Host && Host->EditNodeText(this);
}

void TFlyNode::EndEdit(bool Cancel) {
    if (INodeHost* const Host = GetHost()) Host->EndNodeEdit(this, Cancel);
}

} // namespace quill
