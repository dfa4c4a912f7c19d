// One place in a tree's lists: the common base of real items and of the placeholders that stand for items which
// do not exist yet.
#pragma once

#include <cstdint>

namespace quill {

// An entry can stand in two lists at once: the child list of its collection and the row list of a container. For
// each it remembers where it was put last (a reference that the list checks before it believes it) and one mark
// that the list counts. Eight bytes; not virtual, because a program may open ten million placeholders.
class TTreeSlot {
public:
    enum TList { ChildList = 0, RowsList = 1 };

    TTreeSlot(const TTreeSlot&) = delete;
    TTreeSlot& operator=(const TTreeSlot&) = delete;

    // True for a TMetaNode, false for a TTreeCollection.
    bool IsPlaceholder() const { return (FWords[ChildList] & KindBit) != 0; }

protected:
    explicit TTreeSlot(bool Placeholder) { FWords[ChildList] = Placeholder ? KindBit : 0; }
    ~TTreeSlot() = default;

    bool GetMark(TList List) const { return (FWords[List] & MarkBit) != 0; }

private:
    template <int>
    friend class TCountedList;

    static constexpr std::uint32_t KindBit = 0x80000000u;
    static constexpr std::uint32_t MarkBit = 0x40000000u;
    static constexpr std::uint32_t RefMask = 0x3FFFFFFFu;

    // Mutable: a looked-up place is remembered, which changes nothing that a caller can see.
    mutable std::uint32_t FWords[2] = {0, 0};
};

} // namespace quill
