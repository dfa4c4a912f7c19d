// Inside the node model: the one walk that says which slots have rows, and in which order.
#pragma once

#include "quilltree/FlyNode.h"

#include <vector>

namespace quill {

// Whether the slot has a row when its parent shows its children: it is not hidden, and not on its way out.
inline bool IsListed(const TTreeSlot* Slot) {
    if (TChildList::IsMarked(Slot)) return false;
    if (Slot->IsPlaceholder()) return true;
    const auto* const Item = static_cast<const TTreeCollection*>(Slot);
    return Item->HasFlag(TTreeCollection::FlagNode) && !Item->HasFlag(TTreeCollection::FlagDestroying);
}

// The node of a slot whose children have rows, too; null for all others.
inline const TFlyNode* OpenNode(const TTreeSlot* Slot) {
    if (Slot->IsPlaceholder()) return nullptr;
    const auto* const Item = static_cast<const TTreeCollection*>(Slot);
    if (!Item->HasFlag(TTreeCollection::FlagNode) || Item->GetCount() == 0) return nullptr;
    const auto* const Node = static_cast<const TFlyNode*>(Item);
    return Node->GetExpanded() ? Node : nullptr;
}

// Calls Visit for the slots Index .. Index + Count - 1 of Parent and for everything that shows below them, in display
// order. Visit must not change the structure.
template <class TVisit>
void VisitVisible(const TTreeCollection* Parent, int Index, int Count, const TVisit& Visit) {
    struct TFrame {
        const TTreeCollection* Parent;
        int Next;
        int End;
    };
    if (Count <= 0) return;
    std::vector<TFrame> Open{{Parent, Index, Index + Count}};
    while (!Open.empty()) {
        TFrame& Frame = Open.back();
        if (Frame.Next >= Frame.End) {
            Open.pop_back();
            continue;
        }
        const TFlyNode* Inner = nullptr;
        for (TTreeSlot* const Slot : Frame.Parent->GetChildList()->ChunkAt(Frame.Next)) {
            if (Frame.Next++ == Frame.End) break;
            if (!IsListed(Slot)) continue;
            Visit(Slot);
            Inner = OpenNode(Slot);
            if (Inner) break;
        }
        if (Inner) Open.push_back({Inner, 0, Inner->GetCount()});
    }
}

} // namespace quill
