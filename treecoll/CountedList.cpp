#include "treecoll/CountedList.h"

#include "treecoll/CountedTree.h"
#include "treecoll/NodePool.h"

#include <algorithm>
#include <cassert>

namespace quill {

template <int Which>
TCountedList<Which>::TCountedList() = default;
template <int Which>
TCountedList<Which>::~TCountedList() = default;

template <int Which>
void* TCountedList<Which>::operator new(std::size_t Size) {
    return AllocateBlock(Size);
}
template <int Which>
void TCountedList<Which>::operator delete(void* Memory, std::size_t Size) noexcept {
    FreeBlock(Memory, Size);
}

template <int Which>
TTreeSlot* TCountedList<Which>::Get(int Index) const {
    assert(Index >= 0 && Index < FCount);
    if (!FTree) return FSmall[U(Index)];
    const int Leaf = FTree->LeafAt(Index);
    return FTree->Entries(Leaf)[Index];
}

template <int Which>
std::span<TTreeSlot* const> TCountedList<Which>::ChunkAt(int Index) const {
    if (Index < 0 || Index >= FCount) return {};
    if (!FTree) return {FSmall.get() + Index, U(FCount - Index)};
    const int Leaf = FTree->LeafAt(Index);
    return {FTree->Entries(Leaf) + Index, U(FTree->Info(Leaf).Count - Index)};
}

// Looks first where the entry was last, then nearby (entries move by a few places at a time), then everywhere.
template <int Which>
int TCountedList<Which>::FindSmall(const TTreeSlot* Entry) const {
    TTreeSlot* const* const All = FSmall.get();
    const int Hint =
        static_cast<int>(std::min<std::uint32_t>(Ref(Entry), static_cast<std::uint32_t>(FCount)));
    if (Hint < FCount && All[Hint] == Entry) return Hint;
    const int NearFirst = std::max(0, Hint - 8);
    const int NearLast = std::min(FCount, Hint + 8);
    int Pos = static_cast<int>(std::find(All + NearFirst, All + NearLast, Entry) - All);
    if (Pos == NearLast) Pos = static_cast<int>(std::find(All, All + FCount, Entry) - All);
    if (Pos >= FCount) return -1;
    SetRef(Entry, static_cast<std::uint32_t>(Pos));
    return Pos;
}

template <int Which>
int TCountedList<Which>::IndexOf(const TTreeSlot* Entry) const {
    if (!FTree) return FindSmall(Entry);
    TPlace Place;
    return FTree->Locate(Entry, Place) ? FTree->StartOf(Place.Leaf) + Place.Pos : -1;
}

template <int Which>
bool TCountedList<Which>::Contains(const TTreeSlot* Entry) const {
    TPlace Place;
    return FTree ? FTree->Locate(Entry, Place) : FindSmall(Entry) >= 0;
}

template <int Which>
TTreeSlot* TCountedList<Which>::Next(const TTreeSlot* Entry) const {
    if (!FTree) {
        const int Pos = FindSmall(Entry);
        return Pos >= 0 && Pos + 1 < FCount ? FSmall[U(Pos + 1)] : nullptr;
    }
    TPlace Place;
    if (!FTree->Locate(Entry, Place)) return nullptr;
    if (Place.Pos + 1 < FTree->Info(Place.Leaf).Count) return FTree->Entries(Place.Leaf)[Place.Pos + 1];
    const int Leaf = FTree->NeighbourLeaf(Place.Leaf, 1);
    return Leaf < 0 ? nullptr : FTree->Entries(Leaf)[0];
}

template <int Which>
TTreeSlot* TCountedList<Which>::Prev(const TTreeSlot* Entry) const {
    if (!FTree) {
        const int Pos = FindSmall(Entry);
        return Pos > 0 ? FSmall[U(Pos - 1)] : nullptr;
    }
    TPlace Place;
    if (!FTree->Locate(Entry, Place)) return nullptr;
    if (Place.Pos > 0) return FTree->Entries(Place.Leaf)[Place.Pos - 1];
    const int Leaf = FTree->NeighbourLeaf(Place.Leaf, -1);
    return Leaf < 0 ? nullptr : FTree->Entries(Leaf)[FTree->Info(Leaf).Count - 1];
}

template <int Which>
void TCountedList<Which>::GrowSmall(int MinCapacity) {
    if (MinCapacity <= FCapacity) return;
    const int Step = FCapacity < 64 ? FCapacity / 4 : FCapacity / 8;
    const int Capacity = std::min(SmallMax, std::max(MinCapacity, FCapacity + std::max(Step, 4)));
    auto Grown = std::make_unique_for_overwrite<TTreeSlot*[]>(U(Capacity));
    MoveEntries(Grown.get(), FSmall.get(), FCount);
    FSmall = std::move(Grown);
    FCapacity = Capacity;
}

template <int Which>
void TCountedList<Which>::Reserve(int Capacity) {
    if (!FTree) GrowSmall(std::min(Capacity, SmallMax));
}

template <int Which>
void TCountedList<Which>::BuildTree(std::span<TTreeSlot* const> Entries) {
    auto Tree = std::make_unique<TTree>();
    Tree->Build(Entries);
    FTree = std::move(Tree);
    FSmall.reset();
    FCapacity = 0;
}

template <int Which>
void TCountedList<Which>::Insert(int Index, TTreeSlot* Entry) {
    InsertRange(Index, std::span<TTreeSlot* const>(&Entry, 1));
}

template <int Which>
void TCountedList<Which>::InsertRange(int Index, std::span<TTreeSlot* const> Entries) {
    assert(Index >= 0 && Index <= FCount);
    if (Entries.empty()) return;
    const int Count = static_cast<int>(Entries.size());
    for (const TTreeSlot* Entry : Entries) FMarked += IsMarked(Entry) ? 1 : 0;
    if (FTree) {
        FTree->Insert(Index, Entries);
    } else if (FCount + Count <= SmallMax) {
        GrowSmall(FCount + Count);
        MoveEntries(FSmall.get() + Index + Count, FSmall.get() + Index, FCount - Index);
        for (int i = 0; i < Count; ++i) {
            FSmall[U(Index + i)] = Entries[U(i)];
            SetRef(Entries[U(i)], static_cast<std::uint32_t>(Index + i));
        }
    } else if (FCount == 0) {
        BuildTree(Entries);
    } else {
        std::vector<TTreeSlot*> All;
        All.reserve(U(FCount + Count));
        All.insert(All.end(), FSmall.get(), FSmall.get() + Index);
        All.insert(All.end(), Entries.begin(), Entries.end());
        All.insert(All.end(), FSmall.get() + Index, FSmall.get() + FCount);
        BuildTree(All);
    }
    FCount += Count;
}

template <int Which>
void TCountedList<Which>::DeleteRange(int Index, int Count) {
    assert(Index >= 0 && Count >= 0 && Index + Count <= FCount);
    if (Count == 0) return;
    if (Count == FCount) {
        Clear();
        return;
    }
    FCount -= Count;
    if (FTree) {
        FMarked -= FTree->DeleteRange(Index, Count, FCount);
        // Back to the small form, unless the tree is big: a big one was collapsed and will be expanded again.
        if (FCount <= SmallMax / 4 && FTree->Leaves.size() <= 64) {
            std::vector<TTreeSlot*> Rest;
            for (int i = 0; i < FCount; ++i) Rest.push_back(Get(i));
            FTree.reset();
            FCount = FMarked = 0;
            InsertRange(0, Rest);
        }
        return;
    }
    if (FMarked > 0) FMarked -= TTree::CountMarked(FSmall.get() + Index, Count);
    MoveEntries(FSmall.get() + Index, FSmall.get() + Index + Count, FCount - Index);
}

template <int Which>
void TCountedList<Which>::Move(int From, int To) {
    if (From == To) return;
    TTreeSlot* const Entry = Get(From);
    if (!FTree) {
        TTreeSlot** E = FSmall.get();
        if (From < To) {
            MoveEntries(E + From, E + From + 1, To - From);
        } else {
            MoveEntries(E + To + 1, E + To, From - To);
        }
        E[To] = Entry;
        SetRef(Entry, static_cast<std::uint32_t>(To));
        return;
    }
    DeleteRange(From, 1);
    Insert(To, Entry);
}

template <int Which>
void TCountedList<Which>::Replace(int Index, TTreeSlot* Entry) {
    TTreeSlot* const Old = Get(Index);
    if (Old == Entry) return;
    const int Delta = (IsMarked(Entry) ? 1 : 0) - (IsMarked(Old) ? 1 : 0);
    FMarked += Delta;
    if (!FTree) {
        FSmall[U(Index)] = Entry;
        SetRef(Entry, static_cast<std::uint32_t>(Index));
        return;
    }
    const int Leaf = FTree->LeafAt(Index);
    FTree->Entries(Leaf)[Index] = Entry;
    FTree->Info(Leaf).Marked = static_cast<std::uint8_t>(FTree->Info(Leaf).Marked + Delta);
    SetRef(Entry, TTree::MakeRef(Leaf, Index));
}

template <int Which>
void TCountedList<Which>::Assign(std::span<TTreeSlot* const> Entries) {
    Clear();
    InsertRange(0, Entries);
}

template <int Which>
void TCountedList<Which>::Clear() {
    FTree.reset();
    FSmall.reset();
    FCount = FMarked = FCapacity = 0;
}

template <int Which>
void TCountedList<Which>::StoreMark(TTreeSlot* Entry, bool Value) {
    std::uint32_t& Word = Entry->FWords[Which];
    Word = Value ? Word | TTreeSlot::MarkBit : Word & ~TTreeSlot::MarkBit;
}

template <int Which>
void TCountedList<Which>::SetMark(TTreeSlot* Entry, bool Value) {
    if (IsMarked(Entry) == Value) return;
    StoreMark(Entry, Value);
    const int Delta = Value ? 1 : -1;
    TPlace Place;
    if (!FTree) {
        if (FindSmall(Entry) >= 0) FMarked += Delta;
    } else if (FTree->Locate(Entry, Place)) {
        FMarked += Delta;
        if (Value) FTree->MarkedLeaf = Place.Leaf;
        auto& Info = FTree->Info(Place.Leaf);
        Info.Marked = static_cast<std::uint8_t>(Info.Marked + Delta);
    }
}

template <int Which>
int TCountedList<Which>::FindForward(int From, bool Value) const {
    From = std::max(From, 0);
    if (From >= FCount || (Value ? FMarked : FCount - FMarked) == 0) return -1;
    if (!FTree) {
        for (int i = From; i < FCount; ++i) {
            if (IsMarked(FSmall[U(i)]) == Value) return i;
        }
        return -1;
    }
    if (const int Leaf = Value ? FTree->OnlyMarkedLeaf(FMarked) : -1; Leaf >= 0) {
        const int End = FTree->StartOf(Leaf) + FTree->Info(Leaf).Count;
        if (From >= End) return -1;
        From = std::max(From, FTree->StartOf(Leaf));
    }
    int Pos = From;
    int Start = From;
    for (int Leaf = FTree->LeafAt(Pos); Leaf >= 0; Leaf = FTree->NeighbourLeaf(Leaf, 1), Pos = 0) {
        const auto& Info = FTree->Info(Leaf);
        if ((Value ? Info.Marked : Info.Count - Info.Marked) > 0) {
            TTreeSlot** E = FTree->Entries(Leaf);
            for (int i = Pos; i < Info.Count; ++i) {
                if (IsMarked(E[i]) == Value) return Start + i - Pos;
            }
        }
        Start += Info.Count - Pos;
    }
    return -1;
}

template <int Which>
int TCountedList<Which>::FindBackward(int From, bool Value) const {
    From = std::min(From, FCount - 1);
    if (From < 0 || (Value ? FMarked : FCount - FMarked) == 0) return -1;
    if (!FTree) {
        for (int i = From; i >= 0; --i) {
            if (IsMarked(FSmall[U(i)]) == Value) return i;
        }
        return -1;
    }
    if (const int Leaf = Value ? FTree->OnlyMarkedLeaf(FMarked) : -1; Leaf >= 0) {
        const int Start = FTree->StartOf(Leaf);
        if (From < Start) return -1;
        From = std::min(From, Start + FTree->Info(Leaf).Count - 1);
    }
    int Pos = From;
    int At = From;
    for (int Leaf = FTree->LeafAt(Pos); Leaf >= 0;) {
        const auto& Info = FTree->Info(Leaf);
        if ((Value ? Info.Marked : Info.Count - Info.Marked) > 0) {
            TTreeSlot** E = FTree->Entries(Leaf);
            for (int i = Pos; i >= 0; --i) {
                if (IsMarked(E[i]) == Value) return At - (Pos - i);
            }
        }
        At -= Pos + 1;
        Leaf = FTree->NeighbourLeaf(Leaf, -1);
        if (Leaf >= 0) Pos = FTree->Info(Leaf).Count - 1;
    }
    return -1;
}

template <int Which>
int TCountedList<Which>::ClearMarks(int& First, int& Last) {
    const int Cleared = FMarked;
    if (Cleared == 0) return 0;
    First = FindForward(0, true);
    Last = FindBackward(FCount - 1, true);
    const auto ClearIn = [](std::span<TTreeSlot* const> Entries) {
        for (TTreeSlot* Entry : Entries) Entry->FWords[Which] &= ~TTreeSlot::MarkBit;
    };
    for (int i = First; i <= Last;) {
        const auto Chunk = ChunkAt(i);
        i += static_cast<int>(Chunk.size());
        if (!FTree) {
            ClearIn(Chunk);
            continue;
        }
        auto& Info = FTree->Info(FTree->CachedLeaf);
        if (Info.Marked == 0) continue;
        ClearIn(Chunk);
        Info.Marked = 0;
    }
    FMarked = 0;
    return Cleared;
}

template <int Which>
void TCountedList<Which>::CheckInvariants() const {
    if (FTree) {
        int Marked = 0;
        TTree::Require(FTree->Check(FTree->Root, NoInner, Marked) == FCount, "the count is that of the tree");
        TTree::Require(Marked == FMarked, "the marked count is that of the tree");
    } else {
        TTree::Require(FCount <= FCapacity || FCount == 0, "the small form has room for its entries");
        TTree::Require(TTree::CountMarked(FSmall.get(), FCount) == FMarked, "the marked count is right");
    }
    std::vector<const TTreeSlot*> All;
    for (int i = 0; i < FCount; ++i) All.push_back(Get(i));
    for (int i = 0; i < FCount; ++i) {
        TTree::Require(IndexOf(All[U(i)]) == i, "every entry is found at its position");
    }
    std::sort(All.begin(), All.end());
    TTree::Require(std::adjacent_find(All.begin(), All.end()) == All.end(), "no entry stands twice");
}

template class TCountedList<TTreeSlot::ChildList>;
template class TCountedList<TTreeSlot::RowsList>;

} // namespace quill
