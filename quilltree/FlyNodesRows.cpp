// Keeping the row list in line with the tree.
//
// Invariants: an entry of RowList belongs to this container (its Owner), so that it leaves the list when it goes; no
// entry stands twice; while RowList.FCurrent is set, the list is exactly what VisitVisible visits. Outside brackets it is
// set; a bracket clears it with the first change that could alter the rows, and its end lists everything anew.
#include "quilltree/FlyNodes.h"
#include "quilltree/VisibleWalk.h"

#include <algorithm>
#include <array>
#include <limits>
#include <stdexcept>
#include <utility>
#include <vector>

namespace quill {

namespace {

// Collects slots and hands them to the row list in batches.
class TRowBatch {
public:
    TRowBatch(TRowList::TList& List, int Row) : FList(List), FRow(Row) {}
    void Add(TTreeSlot* Slot) {
        FSlots[FUsed++] = Slot;
        if (FUsed == FSlots.size()) Flush();
    }
    void Flush() {
        FList.InsertRange(FRow, std::span<TTreeSlot* const>(FSlots.data(), FUsed));
        FRow += static_cast<int>(FUsed);
        FUsed = 0;
    }

private:
    TRowList::TList& FList;
    int FRow;
    std::size_t FUsed = 0;
    std::array<TTreeSlot*, 4096> FSlots;
};

} // namespace

// --- listing everything -----------------------------------------------------------------------------------------

void TFlyNodes::RebuildRowList(TTreeCollection* Item) {
    TFlyNode* const Node = TFlyNode::AsNode(Item);
    // The list is public: what a program did to it by hand counts as well.
    if (!RowList.FCurrent) ListAllRows();
    if (!Node || Node->GetHidden() || !Node->GetExpanded()) return;
    // The rows below the node count as taken out and put back, which moves the selection.
    if (RowList.GetSelectedCount() == 0) return;
    const int Row = RowList.IndexOf(Node);
    if (Row < 0) return;
    const int Selected = RowList.FindSelected(Row + 1);
    if (Selected < 0) return;
    const int End = RowBehind(Node, Node);
    if (Selected >= End) return;
    SelectionUpTo(Node, Selected, End);
    TouchRow(Row);
}

void TFlyNodes::ListAllRows() {
    RowList.Drop();
    RowList.FCurrent = true;
    FFirstTouched = 0;
    InsertSlotRows(this, 0, GetCount(), 0);
}

void TFlyNodes::InsertSlotRows(TTreeCollection* Parent, int Index, int Count, int Row) {
    TRowBatch Batch(RowList.FList, Row);
    VisitVisible(Parent, Index, Count, [&](TTreeSlot* Slot) {
        TakeOver(Slot);
        Batch.Add(Slot);
    });
    Batch.Flush();
}

// A node that gets a row here belongs to this container from then on.
void TFlyNodes::TakeOver(TTreeSlot* Slot) {
    if (Slot->IsPlaceholder()) return;
    auto* const Node = static_cast<TFlyNode*>(static_cast<TTreeCollection*>(Slot));
    if (Node->FAnchor != FAnchor) Node->SetOwnerField(this);
}

// --- following single changes -----------------------------------------------------------------------------------

// The host is invalid as a whole from then on, so that nothing is computed of what the changes to come invalidate.
void TFlyNodes::RowListChanged() {
    if (std::exchange(RowList.FCurrent, false) && FHost && FHost->HasWindow()) FHost->Invalidate();
}

bool TFlyNodes::CanPatch() const {
    return FHost && RowList.FCurrent && (GetUpdateCount() == 0 || FPatchInBracket);
}

// Whether the children of Parent have rows, provided that the rows are current.
bool TFlyNodes::IsRowParent(const TTreeCollection* Parent) const {
    if (Parent == this) return true;
    return Parent->HasFlag(FlagNode) && static_cast<const TFlyNode*>(Parent)->GetExpanded() &&
           RowList.Contains(Parent);
}

// Notes that child Index of Parent comes or goes. That moves the rows behind it, and what leads to it may change: the
// outline from the sibling before it on, or the button of its parent.
void TFlyNodes::Touch(const TTreeCollection* Parent, int Index) {
    int First = std::numeric_limits<int>::max();
    if (IsRowParent(Parent)) {
        const TChildList& Slots = *Parent->GetChildList();
        int Before = Slots.FindBackward(Index - 1, false);
        while (Before >= 0 && !IsListed(Slots.Get(Before))) Before = Slots.FindBackward(Before - 1, false);
        First = Before >= 0      ? RowList.IndexOf(Slots.Get(Before))
                : Parent == this ? 0
                                 : RowList.IndexOf(Parent);
    } else if (RowList.Contains(Parent)) {
        First = RowList.IndexOf(Parent);
    }
    TouchRow(First);
}

void TFlyNodes::TouchRow(int Row) { FFirstTouched = FFirstTouched < 0 ? Row : std::min(FFirstTouched, Row); }

int TFlyNodes::TakeFirstTouched() { return RowList.FCurrent ? std::exchange(FFirstTouched, -1) : -1; }

void TFlyNodes::NodeAppeared(TFlyNode* Node) { SlotsAppeared(Node->GetCollection(), -1, 1); }

// Index -1 stands for the last Count slots.
void TFlyNodes::SlotsAppeared(TTreeCollection* Parent, int Index, int Count) {
    if (!RowList.FCurrent || !FHost) return;
    Touch(Parent, Index < 0 ? Parent->GetCount() - Count : Index);
    if (!IsRowParent(Parent)) return;
    if (!CanPatch()) {
        RowListChanged();
        return;
    }
    if (Index < 0) Index = Parent->GetCount() - Count;
    const int Row = RowForSlot(Parent, Index);
    if (Row < 0) {
        RowList.FCurrent = false;
        return;
    }
    InsertSlotRows(Parent, Index, Count, Row);
}

void TFlyNodes::InsertSubtreeRows(TFlyNode* Node) {
    TTreeCollection* const Parent = Node->GetCollection();
    if (Parent && IsRowParent(Parent)) SlotsAppeared(Parent, Node->GetIndex(), 1);
}

// The row at which the first of the new slots from Index on belongs; -1 when the list does not tell.
int TFlyNodes::RowForSlot(const TTreeCollection* Parent, int Index) const {
    const TChildList& Slots = *Parent->GetChildList();
    int Before = Slots.FindBackward(Index - 1, false);
    while (Before >= 0 && !IsListed(Slots.Get(Before))) Before = Slots.FindBackward(Before - 1, false);
    if (Before >= 0) return RowBehind(Slots.Get(Before), Slots.Get(Index));
    return Parent == this ? 0 : RowList.IndexOf(Parent) + 1;
}

// The row behind Down and everything that shows below it. The search goes down to the last visible descendant, and at
// the same time up from Up to the next visible neighbour, and takes what it finds first: either way alone can be as
// long as the tree is deep. -1 when the list does not tell.
int TFlyNodes::RowBehind(const TTreeSlot* Down, const TTreeSlot* Up) const {
    for (;;) {
        const TFlyNode* const Open = OpenNode(Down);
        const TChildList* const Below = Open ? Open->GetChildList() : nullptr;
        const int Last = Below ? Below->FindBackward(Below->GetCount() - 1, false) : -1;
        if (Last < 0) {
            const int Row = RowList.IndexOf(Down);
            return Row < 0 ? -1 : Row + 1;
        }
        Down = Below->Get(Last);

        const TTreeCollection* const Parent = Up->IsPlaceholder()
                                                  ? static_cast<const TMetaNode*>(Up)->GetCollection()
                                                  : static_cast<const TTreeCollection*>(Up)->GetCollection();
        if (!Parent) return -1;
        const TChildList& Beside = *Parent->GetChildList();
        const int Next = Beside.FindForward(Beside.IndexOf(Up) + 1, false);
        // A neighbour without a row (one that appears together with Up) tells nothing; the way down goes on.
        const int Row = Next < 0 ? -1 : RowList.IndexOf(Beside.Get(Next));
        if (Row >= 0) return Row;
        if (Next < 0 && Parent == this) return RowList.GetCount();
        if (Next < 0) Up = Parent;
    }
}

void TFlyNodes::InsertRowsBelow(TFlyNode* Node, int Row) { InsertSlotRows(Node, 0, Node->GetCount(), Row); }

// The selection of the rows that go moves up to Node.
void TFlyNodes::RemoveRowsBelow(TFlyNode* Node) {
    const int Row = RowList.IndexOf(Node);
    if (Row < 0) return;
    const int End = RowBehind(Node, Node);
    if (End < 0) {
        RowList.FCurrent = false;
        return;
    }
    const int Selected = RowList.FindSelected(Row + 1);
    if (Selected >= 0 && Selected < End) SelectionUpTo(Node, Selected, End);
    RowList.FList.DeleteRange(Row + 1, End - Row - 1);
}

void TFlyNodes::SelectionUpTo(TFlyNode* Node, int FirstRow, int EndRow) {
    for (int Row = FirstRow; Row >= 0 && Row < EndRow; Row = RowList.FindSelected(Row + 1)) {
        RowList.NodeAt(Row)->SetSelectedField(false);
    }
    Node->SetSelectedField(true);
}

void TFlyNodes::RemoveSubtreeRows(TFlyNode* Node) {
    const int Row = RowList.IndexOf(Node);
    if (Row < 0) return;
    // A node on its way out of its collection has been noted there.
    if (Node->GetCollection()) Touch(Node->GetCollection(), Node->GetIndex());
    const int End = RowBehind(Node, Node);
    if (End < 0) {
        RowList.FList.Delete(Row);
        RowList.FCurrent = false;
        return;
    }
    RowList.FList.DeleteRange(Row, End - Row);
}

void TFlyNodes::SlotsDisappear(TTreeCollection* Parent, int Index, int Count) {
    if (RowList.GetCount() == 0) return;
    if (RowList.FCurrent) Touch(Parent, Index);
    const TChildList& Slots = *Parent->GetChildList();
    for (int i = Index; i < Index + Count; ++i) {
        TTreeSlot* const Slot = Slots.Get(i);
        if (Slot->IsPlaceholder()) {
            // Placeholders that stand together have their rows together.
            const int Row = RowList.IndexOf(Slot);
            if (Row < 0) continue;
            int End = Row + 1;
            while (i + 1 < Index + Count && Slots.Get(i + 1)->IsPlaceholder() && End < RowList.GetCount() &&
                   RowList.FList.Get(End) == Slots.Get(i + 1)) {
                ++i;
                ++End;
            }
            RowList.FList.DeleteRange(Row, End - Row);
            continue;
        }
        auto* const Item = static_cast<TTreeCollection*>(Slot);
        if (!RowList.FCurrent || Item->HasFlag(FlagDestroying)) {
            // An item on its way out may be no node any more.
            RowList.Take(Slot);
        } else if (TFlyNode* const Node = TFlyNode::AsNode(Item)) {
            RemoveSubtreeRows(Node);
        }
    }
}

// The mover has taken the rows of the child out, if it could.
void TFlyNodes::ChildMoved(TTreeCollection* Parent, int To) {
    if (!RowList.FCurrent || !IsRowParent(Parent)) return;
    if (!CanPatch() || RowList.Contains(Parent->GetPointer(To))) {
        RowList.FCurrent = false;
    } else {
        SlotsAppeared(Parent, To, 1);
    }
}

// Before everything below Node goes: takes its rows away at once, which is the same as one by one unless the current
// row is among them.
void TFlyNodes::DropRowsBelow(TFlyNode* Node) {
    if (!RowList.FCurrent || !Node->GetExpanded()) return;
    const int Row = RowList.IndexOf(Node);
    const int End = Row < 0 ? -1 : RowBehind(Node, Node);
    const int Current = FHost->GetRow() - FHost->GetFixedRows();
    if (End <= Row + 1 || (Current > Row && Current < End)) return;
    RowList.FList.DeleteRange(Row + 1, End - Row - 1);
}

void TFlyNodes::ChildrenReordered(TTreeCollection* Parent) {
    if (!RowList.FCurrent || !IsRowParent(Parent)) return;
    const int Row = Parent == this ? -1 : RowList.IndexOf(Parent);
    Touch(Parent, 0);
    // The end is sought upwards only: the last row of the children is no more that of the last child.
    int End = -1;
    for (const TTreeCollection* Up = Parent; CanPatch(); Up = Up->GetCollection()) {
        if (Up == this) End = RowList.GetCount();
        const TTreeCollection* const Above = Up == this ? nullptr : Up->GetCollection();
        if (!Above) break;
        const TChildList& Beside = *Above->GetChildList();
        const int Next = Beside.FindForward(Beside.IndexOf(Up) + 1, false);
        if (Next < 0) continue;
        End = RowList.IndexOf(Beside.Get(Next));
        break;
    }
    if (End < 0) {
        RowList.FCurrent = false;
        return;
    }
    RowList.FList.DeleteRange(Row + 1, End - Row - 1);
    InsertSlotRows(Parent, 0, Parent->GetCount(), Row + 1);
}

void TFlyNodes::SlotsInserted(int Index, int Count) {
    FSorted = false;
    if (FHost) SlotsAppeared(this, Index, Count);
}

void TFlyNodes::SlotsRemoving(int Index, int Count) { SlotsDisappear(this, Index, Count); }

void TFlyNodes::SlotMoved(int, int To) {
    if (FHost) ChildMoved(this, To);
}

void TFlyNodes::SlotsSorted() {
    if (FHost) ChildrenReordered(this);
}

void TFlyNodes::SlotReplaced(TTreeSlot* Old, TTreeSlot* New) {
    const int Row = RowList.IndexOf(Old);
    if (Row >= 0) RowList.FList.Replace(Row, New);
}

// --- for the host -------------------------------------------------------------------------------------------------

TFlyNode* TFlyNodes::MaterialiseRow(int Index) {
    if (Index < 0 || Index >= RowList.GetCount()) return nullptr;
    TTreeSlot* const Slot = RowList.FList.Get(Index);
    if (!Slot->IsPlaceholder()) return RowList.NodeAt(Index);
    const auto* const Meta = static_cast<TMetaNode*>(Slot);
    return TFlyNode::AsNode(Meta->GetCollection()->_Add(Meta->GetIndex()));
}

bool TFlyNodes::ClearSelectedRows(int& First, int& Last) {
    const int Cleared = RowList.FList.ClearMarks(First, Last);
    FAnchor->Selected -= Cleared;
    return Cleared > 0;
}

void TFlyNodes::SelectRows(int First, int Last, bool Value) {
    First = std::max(First, 0);
    Last = std::min(Last, RowList.GetCount() - 1);
    while (First <= Last) {
        for (TTreeSlot* const Slot : RowList.ChunkAt(First)) {
            if (First > Last) break;
            ++First;
            if (Slot->IsPlaceholder()) continue;
            static_cast<TFlyNode*>(static_cast<TTreeCollection*>(Slot))->SetSelectedField(Value);
        }
    }
}

void TFlyNodes::CheckInvariants() const {
    TTreeCollection::CheckInvariants();
    RowList.CheckInvariants();
    int Selected = 0;
    for (int Row = 0; Row < RowList.GetCount(); ++Row) {
        const TFlyNode* const Node = RowList.NodeAt(Row);
        if (Node && Node->GetOwner() != this) throw std::logic_error("rows: a node with a row belongs to us");
        if (Node && Node->GetSelected()) ++Selected;
    }
    if (Selected > FAnchor->Selected)
        throw std::logic_error("rows: selected rows are among the selected nodes");
    if (!FHost || !RowList.FCurrent) return;
    int Row = 0;
    VisitVisible(this, 0, GetCount(), [&](const TTreeSlot* Slot) {
        if (Row >= RowList.GetCount() || RowList.GetItems(Row++) != Slot) {
            throw std::logic_error("rows: the list is in line with the tree");
        }
    });
    if (Row != RowList.GetCount()) throw std::logic_error("rows: the list has no more than the tree");
}

void TFlyNodes::ResetStoredHeights() {
    if (!FHasStoredHeights) return;
    FHasStoredHeights = false;
    for (TFlyNode* Node = FirstExisting(); Node; Node = Node->GetNextExisting()) Node->SetHeightField(-1);
}

} // namespace quill
