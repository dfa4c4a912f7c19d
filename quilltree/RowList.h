// The visible nodes of one container, in display order.
#pragma once

#include "treecoll/CountedList.h"

namespace quill {

class TFlyNode;
class TFlyNodes;

// Entry i is shown in grid row FixedRows + i: a node, or a placeholder for one that does not exist yet. Reading and
// writing have the names of the toolkit's lists; an Index outside the list raises EListError. Marked entries are the
// selected nodes, counted by chunk, so that looking for them skips what has none. Nothing here runs application
// code, and entries are not owned.
class TRowList {
public:
    using TList = TCountedList<TTreeSlot::RowsList>;

    int GetCount() const { return FList.GetCount(); }
    TTreeSlot* GetItems(int Index) const;
    TTreeSlot* operator[](int Index) const { return GetItems(Index); }
    TTreeSlot* First() const { return GetCount() > 0 ? FList.Get(0) : nullptr; }
    TTreeSlot* Last() const { return GetCount() > 0 ? FList.Get(GetCount() - 1) : nullptr; }
    // The node at Index; null for a placeholder and for an Index outside the list. Creates nothing.
    TFlyNode* NodeAt(int Index) const;

    // -1 when Entry is not in the list.
    int IndexOf(const TTreeSlot* Entry) const { return Entry ? FList.IndexOf(Entry) : -1; }
    bool Contains(const TTreeSlot* Entry) const { return Entry && FList.Contains(Entry); }

    // Adding an entry that is in the list already moves it there. Returns its index.
    int Add(TTreeSlot* Entry);
    void Insert(int Index, TTreeSlot* Entry);
    void Delete(int Index);
    // Returns the index that Entry had, -1 when it was not in the list.
    int Remove(TTreeSlot* Entry);
    void Move(int CurIndex, int NewIndex);
    void Exchange(int Index1, int Index2);
    // Puts Entry at Index in place of what stands there.
    void SetItems(int Index, TTreeSlot* Entry);
    void Clear();

    // Selected nodes in the list, and where they are.
    int GetSelectedCount() const { return FList.GetMarkedCount(); }
    int FindSelected(int From) const { return FList.FindForward(From, true); }
    int FindSelectedBackward(int From) const { return FList.FindBackward(From, true); }

    // For loops over many rows: the entries from Index on that lie together.
    std::span<TTreeSlot* const> ChunkAt(int Index) const { return FList.ChunkAt(Index); }
    TTreeSlot* Next(const TTreeSlot* Entry) const { return FList.Next(Entry); }
    TTreeSlot* Prev(const TTreeSlot* Entry) const { return FList.Prev(Entry); }

    void CheckInvariants() const { FList.CheckInvariants(); }

private:
    friend class TFlyNodes;
    friend class TFlyNode;
    friend class TRowPatch;
    void CheckIndex(int Index) const;

    // For the model, which keeps the list right itself.
    int Take(const TTreeSlot* Entry);
    void Drop() { FList.Clear(); }

    TList FList;
    // Whether the list is what the tree shows; whoever changes it through the public operations makes it doubtful.
    bool FCurrent = true;
};

} // namespace quill
