#include "treecoll/PackedTexts.h"

#include "treecoll/NodePool.h"

#include <cstring>
#include <vector>

namespace quill {

namespace {

// Lengths are written seven bits at a time, the lowest first; the high bit says that more follow.
std::size_t VarSize(std::size_t Value) {
    std::size_t Size = 1;
    for (; Value >= 0x80; Value >>= 7) ++Size;
    return Size;
}

unsigned char* PutVar(unsigned char* At, std::size_t Value) {
    for (; Value >= 0x80; Value >>= 7) *At++ = static_cast<unsigned char>(Value | 0x80);
    *At++ = static_cast<unsigned char>(Value);
    return At;
}

const unsigned char* GetVar(const unsigned char* At, std::size_t& Value) {
    Value = *At & 0x7Fu;
    for (unsigned Shift = 7; *At++ & 0x80; Shift += 7) Value |= std::size_t{*At & 0x7Fu} << Shift;
    return At;
}

std::string_view View(const unsigned char* At, std::size_t Size) {
    return {reinterpret_cast<const char*>(At), Size};
}

} // namespace

// A block is: the caption's length, the number of cells plus one (0: no list of
// cells), the cells' lengths, then the caption's bytes and those of the cells.
struct TPackedTexts::TLayout {
    std::size_t CaptionSize = 0;
    std::size_t CellCount = 0;
    bool WithCells = false;
    const unsigned char* Lengths = nullptr;
    const unsigned char* Bytes = nullptr;
};

TPackedTexts::TLayout TPackedTexts::Layout() const {
    TLayout L;
    if (!FBlock) return L;
    std::size_t CountPlusOne = 0;
    L.Lengths = GetVar(GetVar(FBlock, L.CaptionSize), CountPlusOne);
    L.WithCells = CountPlusOne > 0;
    L.CellCount = L.WithCells ? CountPlusOne - 1 : 0;
    // A length ends with the first byte whose high bit is clear.
    const unsigned char* At = L.Lengths;
    for (std::size_t Left = L.CellCount; Left > 0; ++At) Left -= *At < 0x80 ? 1 : 0;
    L.Bytes = At;
    return L;
}

std::size_t TPackedTexts::BlockSize() const {
    const TLayout L = Layout();
    std::size_t Size = static_cast<std::size_t>(L.Bytes - FBlock) + L.CaptionSize;
    std::size_t Cell = 0;
    for (const unsigned char* At = L.Lengths; At != L.Bytes; Size += Cell) At = GetVar(At, Cell);
    return Size;
}

std::string_view TPackedTexts::GetCaption() const {
    const TLayout L = Layout();
    return View(L.Bytes, L.CaptionSize);
}

bool TPackedTexts::HasCells() const {
    if (!FBlock) return false;
    std::size_t CaptionSize = 0;
    return *GetVar(FBlock, CaptionSize) != 0;
}

int TPackedTexts::GetCellCount() const { return static_cast<int>(Layout().CellCount); }

std::string_view TPackedTexts::GetCell(int Index) const {
    const TLayout L = Layout();
    if (Index < 0 || static_cast<std::size_t>(Index) >= L.CellCount) return {};
    const unsigned char* At = L.Lengths;
    std::size_t Offset = L.CaptionSize;
    std::size_t Size = 0;
    for (int i = 0;; ++i) {
        At = GetVar(At, Size);
        if (i == Index) return View(L.Bytes + Offset, Size);
        Offset += Size;
    }
}

std::string_view TPackedTexts::GetAll(std::vector<std::string_view>& Cells) const {
    const TLayout L = Layout();
    const unsigned char* Bytes = L.Bytes + L.CaptionSize;
    std::size_t Size = 0;
    for (const unsigned char* At = L.Lengths; At != L.Bytes; Bytes += Size) {
        At = GetVar(At, Size);
        Cells.push_back(View(Bytes, Size));
    }
    return View(L.Bytes, L.CaptionSize);
}

unsigned char* TPackedTexts::Build(std::string_view Caption, bool WithCells,
                                   std::span<const std::string_view> Cells) {
    if (Caption.empty() && !WithCells) return nullptr;
    const std::size_t CountPlusOne = WithCells ? Cells.size() + 1 : 0;
    std::size_t Size = VarSize(Caption.size()) + VarSize(CountPlusOne) + Caption.size();
    for (const std::string_view Cell : Cells) Size += VarSize(Cell.size()) + Cell.size();
    auto* const Block = static_cast<unsigned char*>(AllocateBlock(Size));
    unsigned char* At = PutVar(PutVar(Block, Caption.size()), CountPlusOne);
    for (const std::string_view Cell : Cells) At = PutVar(At, Cell.size());
    const auto PutBytes = [&At](std::string_view S) {
        if (!S.empty()) std::memcpy(At, S.data(), S.size());
        At += S.size();
    };
    PutBytes(Caption);
    for (const std::string_view Cell : Cells) PutBytes(Cell);
    return Block;
}

void TPackedTexts::Free() {
    if (FBlock) FreeBlock(FBlock, BlockSize());
    FBlock = nullptr;
}

// New content may be made of views into the old block: it is built before the old one goes.
void TPackedTexts::Replace(unsigned char* Block) {
    Free();
    FBlock = Block;
}

void TPackedTexts::Assign(std::string_view Caption, bool WithCells, std::span<const std::string_view> Cells) {
    Replace(Build(Caption, WithCells, WithCells ? Cells : std::span<const std::string_view>()));
}

void TPackedTexts::SetCaption(std::string_view Value) {
    if (!HasCells()) {
        Assign(Value, false, {});
        return;
    }
    std::vector<std::string_view> Cells;
    GetAll(Cells);
    Assign(Value, true, Cells);
}

void TPackedTexts::SetCell(int Index, std::string_view Value) {
    if (Index < 0) return;
    std::vector<std::string_view> Cells;
    GetAll(Cells);
    if (Cells.size() <= static_cast<std::size_t>(Index)) Cells.resize(static_cast<std::size_t>(Index) + 1);
    Cells[static_cast<std::size_t>(Index)] = Value;
    Assign(GetCaption(), true, Cells);
}

void TPackedTexts::SetCells(std::span<const std::string_view> Cells) { Assign(GetCaption(), true, Cells); }

void TPackedTexts::RemoveCells() {
    if (HasCells()) Assign(GetCaption(), false, {});
}

} // namespace quill
