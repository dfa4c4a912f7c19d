#include "host/base/Collation.h"
#include "treecoll/Treecoll.h"

#include <algorithm>
#include <cstdint>
#include <unordered_set>
#include <vector>

namespace quill {

namespace {

using TItems = std::vector<TTreeCollection*>;

// Bottom-up merge sort. Unlike the library's, it stays inside the array whatever the comparison answers, which
// matters because programs supply it.
template <class TLess>
void MergeSort(TItems& Items, const TLess& Less) {
    TItems Other(Items.size());
    for (std::size_t Width = 1; Width < Items.size(); Width *= 2) {
        for (std::size_t Start = 0; Start < Items.size(); Start += 2 * Width) {
            const std::size_t Middle = std::min(Start + Width, Items.size());
            const std::size_t End = std::min(Start + 2 * Width, Items.size());
            std::size_t Left = Start;
            std::size_t Right = Middle;
            for (std::size_t Out = Start; Out < End; ++Out) {
                // Runs that are in order already cost one comparison.
                if (Out == Start && Right < End && !Less(Items[Right], Items[Middle - 1])) {
                    std::copy(Items.begin() + static_cast<std::ptrdiff_t>(Start),
                              Items.begin() + static_cast<std::ptrdiff_t>(End),
                              Other.begin() + static_cast<std::ptrdiff_t>(Start));
                    break;
                }
                const bool TakeRight = Left == Middle || (Right < End && Less(Items[Right], Items[Left]));
                Other[Out] = Items[TakeRight ? Right++ : Left++];
            }
        }
        Items.swap(Other);
    }
}

// The key of one text: eight bytes of it as a number, which decides most comparisons, and where all of it is.
struct TTextKey {
    std::uint64_t Number;
    std::size_t Start;
    std::uint32_t Size;
    std::uint32_t Index;
};

std::uint64_t FirstEightBytes(std::string_view Key) {
    std::uint64_t Number = 0;
    for (std::size_t i = 0; i < 8; ++i) {
        Number = Number << 8 | (i < Key.size() ? static_cast<unsigned char>(Key[i]) : 0u);
    }
    return Number;
}

void SortByKeys(TItems& Items, TTreeCollection::TTextOrder Order, bool Ascending) {
    std::string Bytes;
    std::vector<TTextKey> Keys;
    Keys.reserve(Items.size());
    for (const TTreeCollection* Item : Items) {
        const std::size_t Start = Bytes.size();
        if (Order == TTreeCollection::TTextOrder::Natural) {
            AppendNaturalCollationKey(Bytes, Item->GetCaptionView());
        } else {
            AppendCollationKey(Bytes, Item->GetCaptionView());
        }
        Keys.push_back({0, Start, static_cast<std::uint32_t>(Bytes.size() - Start),
                        static_cast<std::uint32_t>(Keys.size())});
    }
    // Siblings often begin alike ("item 1", "item 2"); what is common to all decides nothing.
    const auto Text = [&Bytes](const TTextKey& Key) {
        return std::string_view(Bytes).substr(Key.Start, Key.Size);
    };
    const std::string_view First = Text(Keys.front());
    std::size_t Common = First.size();
    for (const TTextKey& Key : Keys) {
        const std::string_view Other = Text(Key).substr(0, Common);
        Common = static_cast<std::size_t>(std::mismatch(Other.begin(), Other.end(), First.begin()).first -
                                          Other.begin());
    }
    for (TTextKey& Key : Keys) Key.Number = FirstEightBytes(Text(Key).substr(Common));
    const auto Compare = [&](const TTextKey& A, const TTextKey& B) {
        if (A.Number != B.Number) return A.Number < B.Number ? -1 : 1;
        return Text(A).compare(Text(B));
    };
    // The index makes the order total, so that an unstable sort gives the stable result.
    std::sort(Keys.begin(), Keys.end(), [&](const TTextKey& A, const TTextKey& B) {
        const int Answer = Compare(A, B);
        if (Answer != 0) return Ascending ? Answer < 0 : Answer > 0;
        return A.Index < B.Index;
    });
    TItems Sorted;
    Sorted.reserve(Items.size());
    for (const TTextKey& Key : Keys) Sorted.push_back(Items[Key.Index]);
    Items = std::move(Sorted);
}

} // namespace

void TTreeCollection::CustomSort(const TTreeCompare& Compare, bool Ascending) {
    if (!Compare) {
        SortByText(TTextOrder::Natural, Ascending);
        return;
    }
    if (GetCount() < 2) return;
    TItems Items = ExistingItems();
    TGoneWatch Watch;
    TLifeWatch Self(this);
    // A copy: the program may replace its comparison from within.
    const TTreeCompare Order = Compare;
    MergeSort(Items, [&](TTreeCollection* A, TTreeCollection* B) {
        if (!Self.IsAlive() || Watch.IsGone(A) || Watch.IsGone(B)) return false;
        const int Answer = Order(A, B);
        return Ascending ? Answer < 0 : Answer > 0;
    });
    if (!Self.IsAlive()) return;
    std::erase_if(Items, [&](const TTreeCollection* Item) {
        return Watch.IsGone(Item) || Item->GetCollection() != this;
    });
    TakeOrder(std::move(Items), 0);
}

void TTreeCollection::SortByText(TTextOrder Order, bool Ascending) {
    TItems Items = ExistingItems();
    const std::uint32_t Flag = Order == TTextOrder::Natural ? FlagNaturalOrder : FlagLocaleOrder;
    // Placeholders have no texts, and keep their slots.
    const bool Whole = Ascending && Items.size() == static_cast<std::size_t>(GetCount());
    if (Items.size() > 1) SortByKeys(Items, Order, Ascending);
    TakeOrder(std::move(Items), Whole ? Flag : 0);
}

// --- newcomers ----------------------------------------------------------------------------------------------------

void TTreeCollection::ExpectNewcomer() { SetFlag(FlagExpectsNewcomer, true); }

bool TTreeCollection::PlaceNewcomer(TTreeCollection* Item, TTextOrder Order) {
    const std::uint32_t Flag = Order == TTextOrder::Natural ? FlagNaturalOrder : FlagLocaleOrder;
    if (Item->FCollection != this || !Item->HasFlag(FlagNewcomer) || !HasFlag(Flag)) return false;
    const auto KeyOf = [Order](const TTreeCollection* Of) {
        std::string Key;
        if (Order == TTextOrder::Natural) {
            AppendNaturalCollationKey(Key, Of->GetCaptionView());
        } else {
            AppendCollationKey(Key, Of->GetCaptionView());
        }
        return Key;
    };
    const std::string Wanted = KeyOf(Item);
    const int Own = Item->GetIndex();
    // The places among the others: before those that are greater, behind those that are less. Sorting is stable: among
    // equals the item stays on its side.
    const auto FirstWhere = [&](const auto& Behind) {
        int Low = 0;
        int High = GetCount() - 1;
        while (Low < High) {
            const int Middle = Low + (High - Low) / 2;
            const TTreeSlot* const Slot = FItems->Get(Middle < Own ? Middle : Middle + 1);
            if (Behind(KeyOf(static_cast<const TTreeCollection*>(Slot)))) {
                High = Middle;
            } else {
                Low = Middle + 1;
            }
        }
        return Low;
    };
    const int First = FirstWhere([&](const std::string& Key) { return Key >= Wanted; });
    const int Last = FirstWhere([&](const std::string& Key) { return Key > Wanted; });
    Item->SetIndex(std::clamp(Own, First, Last));
    return true;
}

void TTreeCollection::EndNewcomer(TTreeCollection* Item) {
    SetFlag(FlagExpectsNewcomer, false);
    if (Item) Item->SetFlag(FlagNewcomer, false);
}

TItems TTreeCollection::ExistingItems() const {
    TItems Items;
    Items.reserve(static_cast<std::size_t>(GetCount()));
    for (int i = 0; i < GetCount();) {
        const auto Chunk = FItems->ChunkAt(i);
        for (TTreeSlot* Slot : Chunk) {
            if (!Slot->IsPlaceholder()) Items.push_back(static_cast<TTreeCollection*>(Slot));
        }
        i += static_cast<int>(Chunk.size());
    }
    return Items;
}

// Sorted holds items of this collection; those that it lacks (added by a comparison) come behind them.
void TTreeCollection::TakeOrder(TItems Sorted, std::uint32_t OrderFlag) {
    DoubtOrder();
    FFlags |= OrderFlag;
    const TItems Current = ExistingItems();
    if (Current == Sorted) return;
    if (Current.size() != Sorted.size()) {
        const std::unordered_set<const TTreeCollection*> Known(Sorted.begin(), Sorted.end());
        for (TTreeCollection* Item : Current) {
            if (Known.count(Item) == 0) Sorted.push_back(Item);
        }
    }
    std::vector<TTreeSlot*> Slots(static_cast<std::size_t>(GetCount()));
    std::size_t Next = 0;
    for (int i = 0; i < GetCount();) {
        const auto Chunk = FItems->ChunkAt(i);
        for (TTreeSlot* Slot : Chunk) {
            Slots[static_cast<std::size_t>(i++)] = Slot->IsPlaceholder() ? Slot : Sorted[Next++];
        }
    }
    FItems->Assign(Slots);
    SlotsSorted();
    ItemsChanged();
}

} // namespace quill
