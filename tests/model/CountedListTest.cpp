#include "treecoll/CountedList.h"

#include <algorithm>
#include <deque>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace quill {
namespace {

class TEntry : public TTreeSlot {
public:
    TEntry() : TTreeSlot(false) {}
};
using TList = TCountedList<TTreeSlot::RowsList>;

// The list against a plain vector: sizes pass the border between the two forms in both directions.
void RandomSteps(unsigned Seed, int Steps) {
    SCOPED_TRACE("seed " + std::to_string(Seed));
    std::mt19937 Random(Seed);
    const auto Upto = [&](int Bound) {
        return static_cast<int>(Random() % static_cast<unsigned>(Bound + 1));
    };
    std::deque<TEntry> Pool;
    std::vector<TTreeSlot*> Naive;
    TList List;
    for (int Step = 0; Step < Steps; ++Step) {
        const int Count = static_cast<int>(Naive.size());
        const int At = Upto(Count);
        switch (Upto(9)) {
        case 0:
        case 1:
            List.Insert(At, &Pool.emplace_back());
            Naive.insert(Naive.begin() + At, &Pool.back());
            break;
        case 2: {
            std::vector<TTreeSlot*> Range(static_cast<std::size_t>(Upto(Upto(3) == 0 ? 2000 : 40)));
            for (auto& Entry : Range) {
                Entry = &Pool.emplace_back();
                TList::StoreMark(Entry, Upto(4) == 0);
            }
            List.InsertRange(At, Range);
            Naive.insert(Naive.begin() + At, Range.begin(), Range.end());
            break;
        }
        case 3: {
            const int Gone = Upto(std::min(Count - At, Upto(5) == 0 ? 3000 : 60));
            List.DeleteRange(At, Gone);
            Naive.erase(Naive.begin() + At, Naive.begin() + At + Gone);
            break;
        }
        case 4:
        case 5:
            if (At < Count) {
                List.Delete(At);
                Naive.erase(Naive.begin() + At);
            }
            break;
        case 6:
            if (Count > 0) {
                const int From = Upto(Count - 1);
                const int To = Upto(Count - 1);
                TTreeSlot* const Entry = Naive[static_cast<std::size_t>(From)];
                List.Move(From, To);
                Naive.erase(Naive.begin() + From);
                Naive.insert(Naive.begin() + To, Entry);
            }
            break;
        case 7:
            if (At < Count) {
                TTreeSlot* const Entry = &Pool.emplace_back();
                TTreeSlot*& Old = Naive[static_cast<std::size_t>(At)];
                List.Replace(At, Entry);
                EXPECT_FALSE(List.Contains(Old));
                Old = Entry;
            }
            break;
        default:
            if (At < Count) List.SetMark(Naive[static_cast<std::size_t>(At)], Upto(1) == 0);
        }
        if (Step % 400 == 399) {
            const auto Marked = std::count_if(Naive.begin(), Naive.end(), TList::IsMarked);
            int First = 0;
            int Last = 0;
            ASSERT_EQ(List.ClearMarks(First, Last), Marked);
            ASSERT_EQ(List.GetMarkedCount(), 0);
            ASSERT_TRUE(std::none_of(Naive.begin(), Naive.end(), TList::IsMarked));
        }
        const int Now = static_cast<int>(Naive.size());
        ASSERT_EQ(List.GetCount(), Now);
        if (Now == 0) continue;
        const int Probe = Upto(Now - 1);
        TTreeSlot* const Entry = Naive[static_cast<std::size_t>(Probe)];
        ASSERT_EQ(List.Get(Probe), Entry);
        ASSERT_EQ(List.IndexOf(Entry), Probe);
        ASSERT_EQ(List.Next(Entry), Probe + 1 < Now ? Naive[static_cast<std::size_t>(Probe) + 1] : nullptr);
        ASSERT_EQ(List.Prev(Entry), Probe > 0 ? Naive[static_cast<std::size_t>(Probe) - 1] : nullptr);
        const auto IsMarked = [&](int i) { return TList::IsMarked(Naive[static_cast<std::size_t>(i)]); };
        for (const bool Mark : {true, false}) {
            int Forward = Probe;
            while (Forward < Now && IsMarked(Forward) != Mark) ++Forward;
            int Backward = Probe;
            while (Backward >= 0 && IsMarked(Backward) != Mark) --Backward;
            ASSERT_EQ(List.FindForward(Probe, Mark), Forward < Now ? Forward : -1);
            ASSERT_EQ(List.FindBackward(Probe, Mark), Backward);
        }
        if (Step % 50 == 0) {
            ASSERT_NO_THROW(List.CheckInvariants());
            std::vector<TTreeSlot*> Walked;
            for (int i = 0; i < Now;) {
                const auto Chunk = List.ChunkAt(i);
                Walked.insert(Walked.end(), Chunk.begin(), Chunk.end());
                i += static_cast<int>(Chunk.size());
            }
            ASSERT_EQ(Walked, Naive);
        }
    }
}

TEST(CountedList, BehavesLikeAPlainSequence) {
    for (unsigned Seed = 1; Seed <= 4; ++Seed) {
        RandomSteps(Seed, 2000);
        if (HasFatalFailure()) return;
    }
}

} // namespace
} // namespace quill
