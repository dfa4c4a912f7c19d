// Expanding and collapsing, showing and hiding.
#include "quilltree/FlyNode.h"

#include "quilltree/FlyNodes.h"
#include "quilltree/VisibleWalk.h"

#include <algorithm>
#include <vector>

namespace quill {

namespace {

// The control's expanding flag, for one ExpandItem; cleared on every exit, unless the control is gone.
class TExpandingScope {
public:
    explicit TExpandingScope(TFlyNodes* Container) : FContainer(Container) {
        if (Container && Container->GetHost()) Container->GetHost()->SetExpanding(true);
    }
    ~TExpandingScope() {
        if (FContainer && FContainer->GetHost()) FContainer->GetHost()->SetExpanding(false);
    }
    TExpandingScope(const TExpandingScope&) = delete;
    TExpandingScope& operator=(const TExpandingScope&) = delete;

private:
    TWatch<TFlyNodes> FContainer;
};

} // namespace

bool TFlyNode::DoCanExpand(bool Expand) {
    INodeHost* const Host = GetHost();
    if (!Host || !GetChildren()) return false;
    return Expand ? Host->CanExpand(this) : Host->CanCollapse(this);
}

void TFlyNode::DoExpand(bool Expand) {
    INodeHost* const Host = GetHost();
    if (!Host || GetCount() < 1) return;
    if (Expand) {
        Host->Expand(this);
    } else {
        Host->Collapse(this);
    }
}

// The node first, then its subtree in document order. Children that cannot have rows of their own (leaves below an
// expanded parent) are passed over: expanding one has no effect but closing the in-place editor.
void TFlyNode::ExpandItem(bool Expand, bool Recurse) {
    if (!Recurse) {
        ExpandSelf(Expand, true);
        return;
    }
    const TGoneWatch Gone;
    bool EditorClosed = false;
    for (TFlyNode* Node = this; Node;) {
        const TFlyNode* const Parent = Node->GetParent();
        if (Node != this && !Node->GetChildren() && (!Expand || (Parent && Parent->GetExpanded()))) {
            if (Expand && !EditorClosed && Node->IsNodeVisible() && Node->GetHost()) {
                EditorClosed = true;
                Node->GetHost()->HideEditor();
                if (Gone.IsGone(this) || Gone.IsGone(Node)) return;
            }
            const bool Closed = !Expand || EditorClosed || !Node->GetHost();
            Node = Closed ? Node->NextPastLeaves(this) : Node->NextExisting(this);
            continue;
        }
        // Where to go on if a handler deletes the node, or moves it out of this subtree: behind it, as far as that
        // is still there. A handler that deletes more than the node may so end the walk.
        TFlyNode* const Sibling = Node == this ? nullptr : Node->NextExistingSibling();
        TFlyNode* const Above = Node == this ? nullptr : Node->GetParent();
        const unsigned Moves = GetMoveCount();
        const unsigned Since = Gone.Now();
        Node->ExpandSelf(Expand, true);
        if (Gone.IsGone(this, Since)) return;
        const auto IsBelow = [&](const TFlyNode* Other) {
            if (!Other || Gone.IsGone(Other, Since)) return false;
            return Moves == GetMoveCount() || Other == this || Other->HasAsParent(this);
        };
        if (IsBelow(Node)) {
            Node = Node->NextExisting(this);
        } else if (IsBelow(Sibling)) {
            Node = Sibling;
        } else {
            Node = !Sibling && IsBelow(Above) ? Above->NextExisting(this, true) : nullptr;
        }
    }
}

void TFlyNode::ExpandSelf(bool Expand, bool OpenAncestors) {
    const TWatch<TFlyNode> Self(this);
    TFlyNodes* const Container = GetOwner();
    const TWatch<TFlyNodes> ContainerWatch(Container);
    INodeHost* const Host = GetHost();
    if (Host && Expand != GetExpanded() && IsNodeVisible()) Host->HideEditor();
    if (!Self) return;
    const TExpandingScope Expanding(ContainerWatch);
    TWatch<TFlyNode> Focused(nullptr);
    if (Host && Container->GetUpdateCount() == 0 && Host->HasSelection()) {
        TFlyNode* const Current = Host->GetNodeAtRow(Host->GetRow());
        if (!Self) return;
        Focused.Reset(Current);
    }
    // True while this node can still be worked on; everything below may run application code.
    const auto Alive = [&] { return Self && ContainerWatch && GetOwner() == Container; };

    if (Expand) {
        if (OpenAncestors && GetRow() == -1) MakeVisible();
        if (!Self || GetExpanded() || !DoCanExpand(true) || !Alive() || GetExpanded()) return;
        if (!HasFlag(FlagSorted) && Host->GetSortType() != stNone) AlphaSort();
        // The comparison may have expanded the node meanwhile.
        if (!Alive() || GetExpanded()) return;
        SetFlag(FlagExpanded, true);
        ExpandRows();
        FitGridRows();
        if (Alive()) DoExpand(true);
        if (Alive()) ScrollChildrenIntoView();
        if (!Alive() || !Focused) return;
        const int Row = Focused->GetRow();
        if (Row < 0) return;
        if (Host->IsRowSelect()) {
            Host->SetGridSelection(Host->GetColCount() - 1, Row, Host->GetFixedCols(), Row);
        } else {
            Host->SetGridSelection(Host->GetCol(), Row, Host->GetCol(), Row);
        }
        return;
    }

    const bool Inside = Focused && Focused->HasAsParent(this);
    if (!DoCanExpand(false) || !Alive()) return;
    CollapseRows();
    SetFlag(FlagExpanded, false);
    FitGridRows();
    if (!Alive()) return;
    if (Inside) {
        Host->SetSelection(this);
    } else if (Focused) {
        Host->SetSelection(Focused);
    }
    if (Alive()) DoExpand(false);
    if (Alive()) FillWindowAfterCollapse();
}

void TFlyNode::FitGridRows() {
    INodeHost* const Host = GetHost();
    if (!Host || !IsNodeVisible()) return;
    const TWatch<TFlyNode> Self(this);
    const int Difference = GetOwner()->RowList.GetCount() - (Host->GetRowCount() - Host->GetFixedRows());
    if (Difference == 0) return;
    if (Difference > 0) {
        Host->InsertRows(GetRow(), Difference);
    } else {
        Host->DeleteRows(GetRow(), -Difference);
    }
    if (!Self || GetHost() != Host || !Host->HasWindow()) return;
    const int Row = GetRow();
    if (Row < 0) return;
    Host->InvalidateBox(0, Row, Host->GetColCount(), Host->GetRowCount(), true);
    Host->ProcessMessages();
}

// So that all direct children are seen, or as many as fit below the node.
void TFlyNode::ScrollChildrenIntoView() {
    INodeHost* const Host = GetHost();
    const int Count = GetCount();
    const int Row = GetRow();
    if (!Host || Count == 0 || Row < 0) return;
    const int Room = Host->GetVisibleRowCount() - Host->GetFixedRows();
    if (Room < Count + 1) {
        Host->SetTopRow(Row);
    } else if (Row - Host->GetTopRow() + Count >= Host->GetVisibleRowCount()) {
        Host->SetTopRow(Row + Count + 1 - Host->GetVisibleRowCount());
    }
}

// Scrolls back when the rows that are left below the top row do not fill the window any more.
void TFlyNode::FillWindowAfterCollapse() {
    TFlyNodes* const Container = ShownBy();
    if (!Container || Container->GetUpdateCount() > 0) return;
    INodeHost* const Host = Container->FHost;
    if (Host->GetRowCount() - Host->GetTopRow() > Host->GetVisibleRowCount()) return;
    const TUpdateBracket Bracket(Container);
    Container->TouchRow(Container->RowList.GetCount()); // it changes no row
    const int TopRow = std::max(Host->CalcMaxTopRow(Host->GetCol(), GetRow()), Host->GetFixedRows());
    if (TopRow != Host->GetTopRow()) Host->MoveTopLeft(Host->GetCol(), TopRow);
}

int TFlyNode::GetExpandedCount() {
    if (!GetExpanded()) return 0;
    int Result = 0;
    for (const TFlyNode* Node = this; Node;) {
        const bool Open = Node->GetExpanded();
        if (Open) Result += Node->GetCount();
        Node = Node->NextExisting(this, !Open);
    }
    return Result;
}

// Opens every collapsed ancestor, from the top down.
void TFlyNode::MakeVisible() {
    std::vector<TFlyNode*> Ancestors;
    for (TFlyNode* Node = GetParent(); Node; Node = Node->GetParent()) {
        Ancestors.push_back(Node);
        if (Node->IsNodeVisible()) break;
    }
    const TGoneWatch Gone;
    for (; !Ancestors.empty() && !Gone.IsGone(Ancestors.back()); Ancestors.pop_back()) {
        Ancestors.back()->ExpandSelf(true, false);
    }
}

void TFlyNode::Show(bool Recurse) {
    const TGoneWatch Gone;
    for (TFlyNode* Node = this; Node; Node = Recurse ? Node->NextExisting(this) : nullptr) {
        const unsigned Since = Gone.Now();
        if (Node->GetHidden()) Node->SetHidden(false);
        if (Gone.IsGone(this, Since) || Gone.IsGone(Node, Since)) return;
    }
}

void TFlyNode::Hide() {
    if (!GetHidden()) SetHidden(true);
}

void TFlyNode::SetHiddenField(bool Value) {
    if (Value == GetHidden()) return;
    if (TFlyNodes* const Container = GetOwner()) Container->RowListChanged();
    SetItemMark(Value);
}

void TFlyNode::SetHidden(bool Value) {
    if (Value == GetHidden()) return;
    const auto Store = [&] {
        SetItemMark(Value);
        if (Value) SetSelectedField(false);
        TFlyNode* const Parent = GetParent();
        if (!Parent) return;
        const TChildList& Siblings = *Parent->GetChildList();
        Parent->SetFlag(FlagAllChildrenHidden, Value && Siblings.GetMarkedCount() == Siblings.GetCount());
    };
    TFlyNodes* const Container = GetOwner();
    if (!Container) {
        Store();
        return;
    }
    const bool Outside = Container->GetUpdateCount() == 0;
    const TUpdateBracket Bracket(Container);
    const TRowPatch Patch(Outside ? Container : nullptr);
    if (Container->CanPatch() && Value) Container->RemoveSubtreeRows(this);
    Store();
    if (Container->CanPatch()) {
        if (!Value) Container->InsertSubtreeRows(this);
    } else {
        Container->RowListChanged();
    }
}

void TFlyNode::SetExpandedField(bool Value) {
    if (Value == GetExpanded()) return;
    SetFlag(FlagExpanded, Value);
    TFlyNodes* const Container = GetOwner();
    if (Container && GetCount() > 0) Container->RowListChanged();
}

// --- rows -----------------------------------------------------------------------------------------------------------

void TFlyNode::ExpandRows() {
    TFlyNodes* const Container = GetOwner();
    if (Container->RowList.FCurrent) {
        const int Row = Container->RowList.IndexOf(this);
        if (Row >= 0) Container->InsertRowsBelow(this, Row + 1);
        return;
    }
    int Position = -1;
    ListVisibleBelow(this, Position);
}

void TFlyNode::CollapseRows() {
    TFlyNodes* const Container = GetOwner();
    const bool AllSelectedHaveRows = FAnchor->Selected == Container->RowList.GetSelectedCount();
    if (!Container->RowList.FCurrent || !AllSelectedHaveRows) {
        UnlistBelow(this);
    } else if (IsNodeVisible()) {
        Container->RemoveRowsBelow(this);
    }
}

void TFlyNode::ExpandNodeList(TFlyNode*, TFlyNode* Node, int& Position, bool) {
    ListVisibleBelow(Node, Position);
    if (TFlyNodes* const Container = GetOwner()) Container->RowListChanged();
}

void TFlyNode::CollapseNodeList(TFlyNode*, TFlyNode* Node, bool) {
    UnlistBelow(Node);
    if (TFlyNodes* const Container = GetOwner()) Container->RowListChanged();
}

void TFlyNode::ListVisibleBelow(TFlyNode* Node, int& Position) {
    TFlyNodes* const Container = GetOwner();
    if (!Container || !Node) return;
    TRowList& Rows = Container->RowList;
    if (Position == -1) {
        Position = Rows.IndexOf(Node);
        if (Position < 0) return;
        ++Position;
    }
    if (!Node->GetExpanded()) return;
    std::vector<TTreeSlot*> Entries;
    VisitVisible(Node, 0, Node->GetCount(), [&](TTreeSlot* Slot) { Entries.push_back(Slot); });
    Position = std::min(Position, Rows.GetCount());
    for (TTreeSlot* Entry : Entries) {
        Container->TakeOver(Entry);
        const int Old = Rows.Take(Entry);
        if (Old >= 0 && Old < Position) --Position;
    }
    Rows.FList.InsertRange(Position, Entries);
    Position += static_cast<int>(Entries.size());
}

void TFlyNode::UnlistBelow(TFlyNode* Node) {
    TFlyNodes* const Container = GetOwner();
    if (!Container || !Node || !Node->GetExpanded()) return;
    bool AnySelected = false;
    std::vector<const TFlyNode*> Open{Node};
    while (!Open.empty()) {
        const TFlyNode* const Parent = Open.back();
        Open.pop_back();
        for (TTreeSlot* Slot = Parent->FirstSlot(); Slot; Slot = Parent->GetChildList()->Next(Slot)) {
            Container->RowList.Take(Slot);
            if (Slot->IsPlaceholder()) continue;
            TFlyNode* const Child = AsNode(static_cast<TTreeCollection*>(Slot));
            if (!Child) continue;
            if (Child->GetExpanded() && Child->GetCount() > 0) Open.push_back(Child);
            AnySelected |= Child->GetSelected();
            Child->SetSelectedField(false);
        }
    }
    if (AnySelected) Node->SetSelectedField(true);
}

} // namespace quill
