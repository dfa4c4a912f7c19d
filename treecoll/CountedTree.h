// Inside the counted list: its tree form. Included by CountedList.cpp only.
#pragma once

#include "treecoll/CountedList.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <numeric>
#include <stdexcept>
#include <string>
#include <utility>

namespace quill {

namespace counted {

inline constexpr int PosBits = 7;
inline constexpr std::uint32_t PosMask = (1u << PosBits) - 1;
inline constexpr int GroupSize = 16;
inline constexpr int NoInner = -1;
inline constexpr int FreeLeaf = -2;

inline void MoveEntries(TTreeSlot** To, TTreeSlot* const* From, int Count) {
    if (Count > 0) std::memmove(To, From, static_cast<std::size_t>(Count) * sizeof(TTreeSlot*));
}

inline std::size_t U(int Value) { return static_cast<std::size_t>(Value); }
} // namespace counted

using namespace counted;

// The tree form. Leaves are numbered; what has to be known of a leaf without touching it stands in a compact table,
// so that thousands of leaves are freed by passing their numbers on.
template <int Which>
struct TCountedList<Which>::TTree {
    static constexpr int GroupCount = InnerMax / GroupSize;
    struct TLeafInfo {
        std::int32_t Parent = FreeLeaf;
        std::uint8_t Count = 0;
        std::uint8_t Marked = 0;
        // Where the leaf was last found in its parent.
        mutable std::uint8_t SlotHint = 0;
    };
    struct TInner {
        int Parent = NoInner;
        int Count = 0;
        bool OverLeaves = true;
        mutable std::uint8_t SlotHint = 0;
        // Entries below each child, and the child's number: a leaf's or an inner node's. Sizes behind the last child
        // are zero.
        std::array<int, InnerMax> Sizes{};
        std::array<int, InnerMax> Ids;
        // Running sums: of the sizes within their group, and of the groups. With them a child is found, and a
        // position told, without a branch that depends on the data; a wrongly foreseen branch costs more than all
        // the rest.
        std::array<int, InnerMax> Ends{};
        std::array<int, GroupCount> GroupEnds{};

        void Add(int Slot, int Delta) {
            Sizes[U(Slot)] += Delta;
            const int Group = Slot / GroupSize;
            for (int i = Slot; i < (Group + 1) * GroupSize; ++i) Ends[U(i)] += Delta;
            for (int i = Group; i < GroupCount; ++i) GroupEnds[U(i)] += Delta;
        }
        // Makes the sums right from child From on.
        void Resum(int From) {
            for (int Group = From / GroupSize; Group < GroupCount; ++Group) {
                int Sum = 0;
                for (int i = Group * GroupSize; i < (Group + 1) * GroupSize; ++i) {
                    Sum += Sizes[U(i)];
                    Ends[U(i)] = Sum;
                }
                GroupEnds[U(Group)] = Sum + (Group > 0 ? GroupEnds[U(Group - 1)] : 0);
            }
        }
        // The child with position Index, which becomes the position in it.
        int ChildAt(int& Index) const {
            int Group = 0;
            for (int i = 0; i < GroupCount; ++i) Group += GroupEnds[U(i)] <= Index ? 1 : 0;
            const int InGroup = Index - (Group > 0 ? GroupEnds[U(Group - 1)] : 0);
            const int First = Group * GroupSize;
            int Slot = First;
            for (int i = 0; i < GroupSize; ++i) Slot += Ends[U(First + i)] <= InGroup ? 1 : 0;
            Index = InGroup - (Slot > First ? Ends[U(Slot - 1)] : 0);
            return Slot;
        }
        // The number of entries before child Slot.
        int Before(int Slot) const {
            const int Group = Slot / GroupSize;
            return (Group > 0 ? GroupEnds[U(Group - 1)] : 0) + (Slot % GroupSize > 0 ? Ends[U(Slot - 1)] : 0);
        }
        int Total() const { return GroupEnds[GroupCount - 1]; }
    };
    // The place of a leaf in the inner node above it.
    struct TCursor {
        int Inner;
        int Slot;
    };
    // Leaves live in slabs of 8, 8, 16, 32, ... so that a small tree stays small and nothing ever moves.
    static constexpr int FirstSlab = 8;

    std::vector<TLeafInfo> Leaves;
    std::vector<std::unique_ptr<TTreeSlot*[]>> Slabs;
    std::vector<int> FreeLeaves;
    std::vector<std::unique_ptr<TInner>> Inners;
    std::vector<int> FreeInners;
    int Root = NoInner;
    // The leaf that was looked at last and the position of its first entry; loops by index stay in it.
    mutable int CachedLeaf = -1;
    mutable int CachedStart = 0;
    // The leaf that got a mark last: often one entry of the list is marked, and found without a walk.
    int MarkedLeaf = -1;

    // --- parts --------------------------------------------------------------------------------------------------
    TTreeSlot** Entries(int Leaf) const {
        const int Slab = static_cast<int>(std::bit_width(static_cast<unsigned>(Leaf / FirstSlab)));
        const int Base = Slab == 0 ? 0 : FirstSlab << (Slab - 1);
        return Slabs[U(Slab)].get() + U(Leaf - Base) * LeafMax;
    }
    TLeafInfo& Info(int Leaf) { return Leaves[U(Leaf)]; }
    const TLeafInfo& Info(int Leaf) const { return Leaves[U(Leaf)]; }
    TInner& Inner(int Id) { return *Inners[U(Id)]; }
    const TInner& Inner(int Id) const { return *Inners[U(Id)]; }

    int NewLeaf() {
        if (!FreeLeaves.empty()) {
            const int Leaf = FreeLeaves.back();
            FreeLeaves.pop_back();
            Info(Leaf) = {NoInner};
            return Leaf;
        }
        const int Leaf = static_cast<int>(Leaves.size());
        const int Slab = static_cast<int>(std::bit_width(static_cast<unsigned>(Leaf / FirstSlab)));
        if (U(Slab) == Slabs.size()) {
            const int Size = Slab == 0 ? FirstSlab : FirstSlab << (Slab - 1);
            Slabs.push_back(std::make_unique_for_overwrite<TTreeSlot*[]>(U(Size) * LeafMax));
        }
        Leaves.push_back({NoInner});
        return Leaf;
    }
    void DropLeaf(int Leaf) {
        Info(Leaf).Parent = FreeLeaf;
        FreeLeaves.push_back(Leaf);
    }
    int NewInner(bool OverLeaves) {
        int Id;
        if (!FreeInners.empty()) {
            Id = FreeInners.back();
            FreeInners.pop_back();
        } else {
            Id = static_cast<int>(Inners.size());
            Inners.push_back(std::make_unique<TInner>());
        }
        TInner& N = Inner(Id);
        N.Parent = NoInner;
        N.Count = 0;
        N.OverLeaves = OverLeaves;
        N.Sizes.fill(0);
        N.Resum(0);
        return Id;
    }
    void DropInner(int Id) { FreeInners.push_back(Id); }

    void WriteRefs(int Leaf, int From) {
        TTreeSlot** E = Entries(Leaf);
        const int Count = Info(Leaf).Count;
        for (int i = From; i < Count; ++i) SetRef(E[i], MakeRef(Leaf, i));
    }
    static std::uint32_t MakeRef(int Leaf, int Pos) {
        return (static_cast<std::uint32_t>(Leaf) << PosBits) | static_cast<std::uint32_t>(Pos);
    }
    static int CountMarked(TTreeSlot* const* E, int Count) {
        int Result = 0;
        for (int i = 0; i < Count; ++i) Result += IsMarked(E[i]) ? 1 : 0;
        return Result;
    }

    static int SlotOf(const TInner& Parent, int Id, std::uint8_t& Hint) {
        if (Hint < Parent.Count && Parent.Ids[Hint] == Id) return Hint;
        int i = 0;
        while (Parent.Ids[U(i)] != Id) ++i;
        Hint = static_cast<std::uint8_t>(i);
        return i;
    }
    int SlotOfInner(int Id) const { return SlotOf(Inner(Inner(Id).Parent), Id, Inner(Id).SlotHint); }
    int SlotOfLeaf(int Leaf) const { return SlotOf(Inner(Info(Leaf).Parent), Leaf, Info(Leaf).SlotHint); }
    void SetChildParent(const TInner& N, int Slot, int Parent) {
        if (N.OverLeaves) {
            Info(N.Ids[U(Slot)]).Parent = Parent;
        } else {
            Inner(N.Ids[U(Slot)]).Parent = Parent;
        }
    }
    // Adds Delta to the counts on the way from the child Slot of Id to the root.
    void AddToCounts(int Id, int Slot, int Delta) {
        Inner(Id).Add(Slot, Delta);
        for (int Parent = Inner(Id).Parent; Parent != NoInner; Parent = Inner(Id).Parent) {
            Inner(Parent).Add(SlotOfInner(Id), Delta);
            Id = Parent;
        }
    }

    // --- finding --------------------------------------------------------------------------------------------------
    // The leaf with the entry at Index, which becomes the position in it.
    int LeafAt(int& Index) const {
        if (CachedLeaf >= 0) {
            const int Pos = Index - CachedStart;
            if (Pos >= 0 && Pos < Info(CachedLeaf).Count) {
                Index = Pos;
                return CachedLeaf;
            }
        }
        const int Wanted = Index;
        const TInner* N = &Inner(Root);
        for (;;) {
            const int Slot = N->ChildAt(Index);
            if (N->OverLeaves) {
                CachedLeaf = N->Ids[U(Slot)];
                CachedStart = Wanted - Index;
                return CachedLeaf;
            }
            N = &Inner(N->Ids[U(Slot)]);
        }
    }
    // Where an entry is inserted at Index: at the end of the earlier leaf when there is a choice.
    int InsertPlace(int& Index) const {
        if (CachedLeaf >= 0) {
            const int Pos = Index - CachedStart;
            if ((Pos > 0 || Index == 0) && Pos >= 0 && Pos <= Info(CachedLeaf).Count) {
                Index = Pos;
                return CachedLeaf;
            }
        }
        const TInner* N = &Inner(Root);
        for (;;) {
            // The child of the entry before Index; the first one for the very start.
            int Before = Index - 1;
            const int Slot = Index == 0 ? 0 : N->ChildAt(Before);
            if (Index > 0) Index = Before + 1;
            if (N->OverLeaves) return N->Ids[U(Slot)];
            N = &Inner(N->Ids[U(Slot)]);
        }
    }
    TCursor CursorOf(int Leaf) const {
        const int Parent = Info(Leaf).Parent;
        return {Parent, SlotOfLeaf(Leaf)};
    }
    // The leaf that holds all of Marked entries, if it is known; -1 otherwise.
    int OnlyMarkedLeaf(int Marked) const {
        return MarkedLeaf >= 0 && Info(MarkedLeaf).Parent != FreeLeaf && Info(MarkedLeaf).Marked == Marked
                   ? MarkedLeaf
                   : -1;
    }
    int StartOf(int Leaf) const {
        if (Leaf == CachedLeaf) return CachedStart;
        int Id = Info(Leaf).Parent;
        int Start = Inner(Id).Before(SlotOfLeaf(Leaf));
        for (; Inner(Id).Parent != NoInner; Id = Inner(Id).Parent) {
            Start += Inner(Inner(Id).Parent).Before(SlotOfInner(Id));
        }
        CachedLeaf = Leaf;
        CachedStart = Start;
        return Start;
    }
    bool Locate(const TTreeSlot* Entry, TPlace& Place) const {
        const std::uint32_t R = Ref(Entry);
        const int Leaf = static_cast<int>(R >> PosBits);
        if (U(Leaf) >= Leaves.size() || Info(Leaf).Parent == FreeLeaf) return false;
        TTreeSlot** E = Entries(Leaf);
        const int Count = Info(Leaf).Count;
        int Pos = static_cast<int>(R & PosMask);
        if (Pos >= Count || E[Pos] != Entry) {
            Pos = static_cast<int>(std::find(E, E + Count, Entry) - E);
            if (Pos == Count) return false;
            SetRef(Entry, MakeRef(Leaf, Pos));
        }
        Place = {Leaf, Pos};
        return true;
    }
    // The leaf after (Step 1) or before (Step -1) Leaf; -1 at the ends.
    int NeighbourLeaf(int Leaf, int Step) const {
        TCursor C = CursorOf(Leaf);
        for (;;) {
            const int Slot = C.Slot + Step;
            if (Slot >= 0 && Slot < Inner(C.Inner).Count) {
                int Id = Inner(C.Inner).Ids[U(Slot)];
                if (Inner(C.Inner).OverLeaves) return Id;
                for (;;) {
                    const TInner& N = Inner(Id);
                    Id = N.Ids[U(Step > 0 ? 0 : N.Count - 1)];
                    if (N.OverLeaves) return Id;
                }
            }
            const int Parent = Inner(C.Inner).Parent;
            if (Parent == NoInner) return -1;
            C = {Parent, SlotOfInner(C.Inner)};
        }
    }

    // --- growing --------------------------------------------------------------------------------------------------
    // Puts child NewId, with Size entries below it, behind child Slot of Id (Slot -1: in front). Counts above Id must
    // be right already or be made right by the caller; only those of split nodes are moved here. A full node splits;
    // at its end it does not share, so that nodes filled in order are full.
    void InsertChild(int Id, int Slot, int NewId, int Size) {
        for (;;) {
            const int At = Slot + 1;
            if (Inner(Id).Count < InnerMax) {
                PutChild(Id, At, NewId, Size);
                return;
            }
            const int Split = At == InnerMax ? InnerMax : InnerMax / 2;
            const int Right = NewInner(Inner(Id).OverLeaves);
            TInner& L = Inner(Id);
            TInner& R = Inner(Right);
            R.Count = L.Count - Split;
            std::copy(L.Sizes.begin() + Split, L.Sizes.begin() + L.Count, R.Sizes.begin());
            std::copy(L.Ids.begin() + Split, L.Ids.begin() + L.Count, R.Ids.begin());
            L.Count = Split;
            std::fill(L.Sizes.begin() + Split, L.Sizes.end(), 0);
            L.Resum(0);
            R.Resum(0);
            for (int i = 0; i < R.Count; ++i) SetChildParent(R, i, Right);
            if (At <= Split && Split < InnerMax) {
                PutChild(Id, At, NewId, Size);
            } else {
                PutChild(Right, At - Split, NewId, Size);
            }
            const int RightSize = Inner(Right).Total();
            if (Inner(Id).Parent == NoInner) {
                const int NewRoot = NewInner(false);
                PutChild(NewRoot, 0, Id, Inner(Id).Total());
                PutChild(NewRoot, 1, Right, RightSize);
                Root = NewRoot;
                return;
            }
            const int Parent = Inner(Id).Parent;
            Slot = SlotOfInner(Id);
            Inner(Parent).Add(Slot, Inner(Id).Total() - Inner(Parent).Sizes[U(Slot)]);
            Id = Parent;
            NewId = Right;
            Size = RightSize;
        }
    }
    void PutChild(int Id, int At, int Child, int Size) {
        TInner& N = Inner(Id);
        std::copy_backward(N.Sizes.begin() + At, N.Sizes.begin() + N.Count, N.Sizes.begin() + N.Count + 1);
        std::copy_backward(N.Ids.begin() + At, N.Ids.begin() + N.Count, N.Ids.begin() + N.Count + 1);
        N.Sizes[U(At)] = Size;
        N.Ids[U(At)] = Child;
        ++N.Count;
        N.Resum(At);
        SetChildParent(N, At, Id);
    }
    // Makes an empty leaf behind Leaf.
    int InsertLeafAfter(int Leaf) {
        const int Fresh = NewLeaf();
        const TCursor C = CursorOf(Leaf);
        InsertChild(C.Inner, C.Slot, Fresh, 0);
        return Fresh;
    }
    // Changes the number of entries of Leaf that the counts above know.
    void Recount(int Leaf, int Delta) {
        const TCursor C = CursorOf(Leaf);
        AddToCounts(C.Inner, C.Slot, Delta);
    }
    // Moves the entries from Pos on to a new leaf behind Leaf.
    void SplitLeaf(int Leaf, int Pos) {
        const int Right = InsertLeafAfter(Leaf);
        TLeafInfo& L = Info(Leaf);
        TLeafInfo& R = Info(Right);
        const int Moved = L.Count - Pos;
        MoveEntries(Entries(Right), Entries(Leaf) + Pos, Moved);
        R.Count = static_cast<std::uint8_t>(Moved);
        L.Count = static_cast<std::uint8_t>(Pos);
        if (L.Marked > 0) {
            R.Marked = static_cast<std::uint8_t>(CountMarked(Entries(Right), Moved));
            L.Marked = static_cast<std::uint8_t>(L.Marked - R.Marked);
        }
        WriteRefs(Right, 0);
        Recount(Leaf, -Moved);
        Recount(Right, Moved);
    }
    void Insert(int Index, std::span<TTreeSlot* const> New) {
        int Pos = Index;
        int Leaf = InsertPlace(Pos);
        CachedLeaf = -1;
        if (Info(Leaf).Count + static_cast<int>(New.size()) > LeafMax && Pos < Info(Leaf).Count) {
            // A few entries share the leaf half and half; many get leaves of their own at exactly this place.
            const bool Few = New.size() <= LeafMax / 4;
            const int Half = Info(Leaf).Count / 2;
            SplitLeaf(Leaf, Few ? Half : Pos);
            if (Few && Pos > Half) {
                Pos -= Half;
                Leaf = NeighbourLeaf(Leaf, 1);
            }
        }
        while (!New.empty()) {
            if (Info(Leaf).Count == LeafMax) {
                Leaf = InsertLeafAfter(Leaf);
                Pos = 0;
            }
            TLeafInfo& L = Info(Leaf);
            TTreeSlot** E = Entries(Leaf);
            const int Taken = std::min(LeafMax - L.Count, static_cast<int>(New.size()));
            MoveEntries(E + Pos + Taken, E + Pos, L.Count - Pos);
            int Marked = 0;
            for (int i = 0; i < Taken; ++i) {
                E[Pos + i] = New[U(i)];
                SetRef(New[U(i)], MakeRef(Leaf, Pos + i));
                Marked += IsMarked(New[U(i)]) ? 1 : 0;
            }
            L.Count = static_cast<std::uint8_t>(L.Count + Taken);
            L.Marked = static_cast<std::uint8_t>(L.Marked + Marked);
            Recount(Leaf, Taken);
            New = New.subspan(U(Taken));
            Pos += Taken;
            Index += Taken;
        }
        CachedLeaf = Leaf;
        CachedStart = Index - Pos;
    }
    void Build(std::span<TTreeSlot* const> All) {
        std::vector<std::pair<int, int>> Level; // number, size
        for (std::size_t i = 0; i < All.size(); i += LeafMax) {
            const int Leaf = NewLeaf();
            const int Count = static_cast<int>(std::min<std::size_t>(LeafMax, All.size() - i));
            MoveEntries(Entries(Leaf), All.data() + i, Count);
            TLeafInfo& L = Info(Leaf);
            L.Count = static_cast<std::uint8_t>(Count);
            L.Marked = static_cast<std::uint8_t>(CountMarked(Entries(Leaf), Count));
            WriteRefs(Leaf, 0);
            Level.emplace_back(Leaf, Count);
        }
        for (bool OverLeaves = true; OverLeaves || Level.size() > 1; OverLeaves = false) {
            std::vector<std::pair<int, int>> Above;
            for (std::size_t i = 0; i < Level.size(); i += InnerMax) {
                const int Id = NewInner(OverLeaves);
                int Size = 0;
                for (std::size_t k = i; k < std::min(i + InnerMax, Level.size()); ++k) {
                    PutChild(Id, Inner(Id).Count, Level[k].first, Level[k].second);
                    Size += Level[k].second;
                }
                Above.emplace_back(Id, Size);
            }
            Level = std::move(Above);
        }
        Root = Level[0].first;
    }

    // --- shrinking ------------------------------------------------------------------------------------------------
    void RemoveChild(int Id, int Slot, int Count) {
        TInner& N = Inner(Id);
        std::copy(N.Sizes.begin() + Slot + Count, N.Sizes.begin() + N.Count, N.Sizes.begin() + Slot);
        std::copy(N.Ids.begin() + Slot + Count, N.Ids.begin() + N.Count, N.Ids.begin() + Slot);
        N.Count -= Count;
        std::fill(N.Sizes.begin() + N.Count, N.Sizes.begin() + N.Count + Count, 0);
        N.Resum(Slot);
    }
    // Frees everything below Id and Id itself; returns the number of marked entries that went.
    int DropSubtree(int Id) {
        TInner& N = Inner(Id);
        int Marked = 0;
        for (int i = N.Count - 1; i >= 0; --i) Marked += DropChild(N, i);
        DropInner(Id);
        return Marked;
    }
    int DropChild(const TInner& N, int Slot) {
        const int Child = N.Ids[U(Slot)];
        if (!N.OverLeaves) return DropSubtree(Child);
        const int Marked = Info(Child).Marked;
        DropLeaf(Child);
        return Marked;
    }
    int DeleteInLeaf(int Leaf, int Pos, int Count) {
        TLeafInfo& L = Info(Leaf);
        TTreeSlot** E = Entries(Leaf);
        const int Marked = L.Marked > 0 ? CountMarked(E + Pos, Count) : 0;
        MoveEntries(E + Pos, E + Pos + Count, L.Count - Pos - Count);
        L.Count = static_cast<std::uint8_t>(L.Count - Count);
        L.Marked = static_cast<std::uint8_t>(L.Marked - Marked);
        return Marked;
    }
    // Deletes Count entries from position From below Id; recurses on the height of this tree, which is small.
    // Children that became empty go; Id itself may be empty afterwards.
    int Delete(int Id, int From, int Count) {
        TInner& N = Inner(Id);
        int Marked = 0;
        int Slot = N.ChildAt(From);
        int FirstGone = -1;
        int GoneCount = 0;
        while (Count > 0) {
            const int Size = N.Sizes[U(Slot)];
            const int Here = std::min(Count, Size - From);
            if (Here == Size) {
                Marked += DropChild(N, Slot);
                if (FirstGone < 0) FirstGone = Slot;
                ++GoneCount;
            } else {
                const int Child = N.Ids[U(Slot)];
                Marked += N.OverLeaves ? DeleteInLeaf(Child, From, Here) : Delete(Child, From, Here);
                N.Add(Slot, -Here);
            }
            Count -= Here;
            From = 0;
            ++Slot;
        }
        if (GoneCount > 0) RemoveChild(Id, FirstGone, GoneCount);
        return Marked;
    }
    // Returns the number of marked entries that went; not everything may go.
    int DeleteRange(int Index, int Count, int Remaining) {
        if (Count == 1) {
            int Pos = Index;
            const int Leaf = LeafAt(Pos);
            if (Info(Leaf).Count > LeafMax / 4) {
                Recount(Leaf, -1);
                return DeleteInLeaf(Leaf, Pos, 1);
            }
        }
        CachedLeaf = -1;
        const int Marked = Delete(Root, Index, Count);
        Tidy(std::min(Index, Remaining - 1));
        if (Index > 0) Tidy(Index - 1);
        while (!Inner(Root).OverLeaves && Inner(Root).Count == 1) {
            const int Only = Inner(Root).Ids[0];
            DropInner(Root);
            Root = Only;
            Inner(Root).Parent = NoInner;
        }
        return Marked;
    }
    // Joins the leaf at Index, and the nodes above it, with a neighbour when they have become small.
    void Tidy(int Index) {
        int Pos = Index;
        const int Leaf = LeafAt(Pos);
        const TCursor C = CursorOf(Leaf);
        CachedLeaf = -1;
        if (Info(Leaf).Count < LeafMax / 4) {
            const TInner& N = Inner(C.Inner);
            const int Left =
                C.Slot > 0 && (C.Slot + 1 == N.Count || N.Sizes[U(C.Slot - 1)] < N.Sizes[U(C.Slot + 1)])
                    ? C.Slot - 1
                    : C.Slot;
            if (Left + 1 < N.Count && N.Sizes[U(Left)] + N.Sizes[U(Left + 1)] <= LeafMax * 3 / 4) {
                JoinLeaves(C.Inner, Left);
            }
        }
        for (int Id = C.Inner; Inner(Id).Parent != NoInner;) {
            const int Parent = Inner(Id).Parent;
            if (Inner(Id).Count < InnerMax / 4) {
                const int Slot = SlotOfInner(Id);
                const int Left = Slot > 0 ? Slot - 1 : Slot;
                const TInner& P = Inner(Parent);
                if (Left + 1 < P.Count &&
                    Inner(P.Ids[U(Left)]).Count + Inner(P.Ids[U(Left + 1)]).Count <= InnerMax * 3 / 4) {
                    JoinInners(Parent, Left);
                }
            }
            Id = Parent;
        }
    }
    void JoinLeaves(int Id, int Slot) {
        TInner& N = Inner(Id);
        const int Left = N.Ids[U(Slot)];
        const int Right = N.Ids[U(Slot + 1)];
        TLeafInfo& L = Info(Left);
        const int Old = L.Count;
        MoveEntries(Entries(Left) + Old, Entries(Right), Info(Right).Count);
        L.Count = static_cast<std::uint8_t>(Old + Info(Right).Count);
        L.Marked = static_cast<std::uint8_t>(L.Marked + Info(Right).Marked);
        WriteRefs(Left, Old);
        N.Add(Slot, N.Sizes[U(Slot + 1)]);
        DropLeaf(Right);
        RemoveChild(Id, Slot + 1, 1);
    }
    void JoinInners(int Parent, int Slot) {
        TInner& P = Inner(Parent);
        const int Left = P.Ids[U(Slot)];
        const int Right = P.Ids[U(Slot + 1)];
        TInner& L = Inner(Left);
        const TInner& R = Inner(Right);
        for (int i = 0; i < R.Count; ++i) PutChild(Left, L.Count, R.Ids[U(i)], R.Sizes[U(i)]);
        P.Add(Slot, P.Sizes[U(Slot + 1)]);
        DropInner(Right);
        RemoveChild(Parent, Slot + 1, 1);
    }

    // --- checking -------------------------------------------------------------------------------------------------
    static void Require(bool Holds, const char* Rule) {
        if (!Holds) throw std::logic_error(std::string("counted list: ") + Rule);
    }
    int Check(int Id, int Parent, int& Marked) const {
        const TInner& N = Inner(Id);
        Require(N.Parent == Parent, "an inner node knows its parent");
        Require(N.Count > 0 && N.Count <= InnerMax, "an inner node has children, and not too many");
        int Sum = 0;
        for (int i = N.Count; i < InnerMax; ++i)
            Require(N.Sizes[U(i)] == 0, "nothing is behind the last child");
        Require(N.Total() == std::accumulate(N.Sizes.begin(), N.Sizes.end(), 0),
                "sums are those of the sizes");
        for (int i = 0; i < N.Count; ++i) {
            const int Child = N.Ids[U(i)];
            int Size = 0;
            if (N.OverLeaves) {
                const TLeafInfo& L = Info(Child);
                Require(L.Parent == Id, "a leaf knows its parent");
                Require(L.Count > 0 && L.Count <= LeafMax, "a leaf has entries, and not too many");
                Require(L.Marked == CountMarked(Entries(Child), L.Count), "a leaf counts its marked entries");
                for (int k = 0; k < L.Count; ++k) {
                    Require(Ref(Entries(Child)[k]) >> PosBits == static_cast<std::uint32_t>(Child),
                            "an entry knows its leaf");
                }
                Size = L.Count;
                Marked += L.Marked;
            } else {
                Size = Check(Child, Id, Marked);
            }
            Require(Size == N.Sizes[U(i)], "counts are those of the children");
            Sum += Size;
        }
        return Sum;
    }
};

} // namespace quill
