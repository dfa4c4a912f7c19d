// The ordered list behind child lists and the row list.
#pragma once

#include "treecoll/TreeSlot.h"

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace quill {

// A sequence of slots with insertion, removal, move, position-of-entry and entry-at-position in O(log n). Up to
// SmallMax entries it is one array; above, a B+ tree whose leaves hold LeafMax entries each and whose inner nodes
// count what is below them. Each entry remembers its leaf, so its position is found without a search; the memory is
// verified against the leaf, so whole leaves are dropped without touching the entries in them.
//
// Every entry carries one mark per list; the list counts marked entries by leaf, so that looking for them, or for
// unmarked ones, skips leaves that have none.
//
// An entry may stand only once in a list, and in one list of each kind (Which) at a time. Indices are not checked
// beyond assertions: callers that take indices from programs check them first. Entries are not owned.
template <int Which>
class TCountedList {
public:
    static constexpr int SmallMax = 512;
    static constexpr int LeafMax = 128;
    static constexpr int InnerMax = 128;

    TCountedList();
    ~TCountedList();
    TCountedList(const TCountedList&) = delete;
    TCountedList& operator=(const TCountedList&) = delete;
    static void* operator new(std::size_t Size);
    static void operator delete(void* Memory, std::size_t Size) noexcept;

    int GetCount() const { return FCount; }
    int GetMarkedCount() const { return FMarked; }
    TTreeSlot* Get(int Index) const;
    // The entries from Index to the end of the run that lies together in memory; for loops over many entries.
    std::span<TTreeSlot* const> ChunkAt(int Index) const;

    // Position of Entry, -1 when it is not in this list.
    int IndexOf(const TTreeSlot* Entry) const;
    bool Contains(const TTreeSlot* Entry) const;
    // Neighbours in the list; null at its ends and for an entry that is not in the list.
    TTreeSlot* Next(const TTreeSlot* Entry) const;
    TTreeSlot* Prev(const TTreeSlot* Entry) const;

    void Add(TTreeSlot* Entry) { Insert(FCount, Entry); }
    void Insert(int Index, TTreeSlot* Entry);
    void InsertRange(int Index, std::span<TTreeSlot* const> Entries);
    void Delete(int Index) { DeleteRange(Index, 1); }
    void DeleteRange(int Index, int Count);
    // Takes the entry at From out and inserts it so that it ends at position To.
    void Move(int From, int To);
    // Puts Entry at the place of the one at Index.
    void Replace(int Index, TTreeSlot* Entry);
    // Replaces the whole content.
    void Assign(std::span<TTreeSlot* const> Entries);
    void Clear();
    // Makes room for Capacity entries (of use only below SmallMax).
    void Reserve(int Capacity);

    static bool IsMarked(const TTreeSlot* Entry) {
        return Entry->GetMark(static_cast<TTreeSlot::TList>(Which));
    }
    // Stores the mark of an entry that is in no list of this kind.
    static void StoreMark(TTreeSlot* Entry, bool Value);
    // Stores the mark of Entry and counts it when Entry is in this list.
    void SetMark(TTreeSlot* Entry, bool Value);
    // Index of the first entry at or after (at or before) From whose mark is Value; -1 when there is none.
    int FindForward(int From, bool Value) const;
    int FindBackward(int From, bool Value) const;

    // Takes the marks of all entries away; First and Last get the positions of the first and the last one that had
    // one. Returns how many had.
    int ClearMarks(int& First, int& Last);

    // Throws std::logic_error that names the broken rule. Costs O(n).
    void CheckInvariants() const;

private:
    struct TTree;
    struct TPlace {
        int Leaf;
        int Pos;
    };

    static std::uint32_t Ref(const TTreeSlot* Entry) { return Entry->FWords[Which] & TTreeSlot::RefMask; }
    static void SetRef(const TTreeSlot* Entry, std::uint32_t Value) {
        Entry->FWords[Which] = (Entry->FWords[Which] & ~TTreeSlot::RefMask) | (Value & TTreeSlot::RefMask);
    }
    int FindSmall(const TTreeSlot* Entry) const;
    void GrowSmall(int MinCapacity);
    void BuildTree(std::span<TTreeSlot* const> Entries);

    int FCount = 0;
    int FMarked = 0;
    // Small form: the entries. FCapacity is 0 in the tree form.
    int FCapacity = 0;
    std::unique_ptr<TTreeSlot*[]> FSmall;
    std::unique_ptr<TTree> FTree;
};

extern template class TCountedList<TTreeSlot::ChildList>;
extern template class TCountedList<TTreeSlot::RowsList>;

} // namespace quill
