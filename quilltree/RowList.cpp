#include "quilltree/RowList.h"

#include "host/base/Errors.h"
#include "host/base/Texts.h"
#include "quilltree/FlyNode.h"

#include <string>

namespace quill {

void TRowList::CheckIndex(int Index) const {
    if (Index < 0 || Index >= GetCount())
        throw EListError(FormatText(SListIndexError, {std::to_string(Index)}));
}

TTreeSlot* TRowList::GetItems(int Index) const {
    CheckIndex(Index);
    return FList.Get(Index);
}

TFlyNode* TRowList::NodeAt(int Index) const {
    if (Index < 0 || Index >= GetCount()) return nullptr;
    TTreeSlot* const Slot = FList.Get(Index);
    return Slot->IsPlaceholder() ? nullptr : static_cast<TFlyNode*>(static_cast<TTreeCollection*>(Slot));
}

int TRowList::Take(const TTreeSlot* Entry) {
    const int Index = IndexOf(Entry);
    if (Index >= 0) FList.Delete(Index);
    return Index;
}

void TRowList::Clear() {
    FCurrent = false;
    Drop();
}

int TRowList::Add(TTreeSlot* Entry) {
    Remove(Entry);
    FList.Add(Entry);
    return GetCount() - 1;
}

void TRowList::Insert(int Index, TTreeSlot* Entry) {
    if (Index != GetCount()) CheckIndex(Index);
    FCurrent = false;
    const int Old = Remove(Entry);
    FList.Insert(Old >= 0 && Old < Index ? Index - 1 : Index, Entry);
}

void TRowList::Delete(int Index) {
    CheckIndex(Index);
    FCurrent = false;
    FList.Delete(Index);
}

int TRowList::Remove(TTreeSlot* Entry) {
    FCurrent = false;
    return Take(Entry);
}

void TRowList::Move(int CurIndex, int NewIndex) {
    CheckIndex(CurIndex);
    CheckIndex(NewIndex);
    FCurrent = false;
    FList.Move(CurIndex, NewIndex);
}

void TRowList::Exchange(int Index1, int Index2) {
    CheckIndex(Index1);
    CheckIndex(Index2);
    if (Index1 == Index2) return;
    FCurrent = false;
    FList.Move(Index1, Index2);
    FList.Move(Index1 < Index2 ? Index2 - 1 : Index2 + 1, Index1);
}

void TRowList::SetItems(int Index, TTreeSlot* Entry) {
    CheckIndex(Index);
    const int Old = IndexOf(Entry);
    if (Old == Index) return;
    FCurrent = false;
    FList.Replace(Index, Entry);
    if (Old >= 0) FList.Delete(Old);
}

} // namespace quill
