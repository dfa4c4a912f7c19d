// A caption and a list of cell texts in one small allocation.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quill {

// Eight bytes when empty; otherwise one block with the lengths in front and the bytes behind them. Reading copies
// nothing; every change builds a new block, so that writing many texts of one object belongs into one Assign.
class TPackedTexts {
public:
    TPackedTexts() = default;
    ~TPackedTexts() { Free(); }
    TPackedTexts(const TPackedTexts&) = delete;
    TPackedTexts& operator=(const TPackedTexts&) = delete;

    // Views stay valid until the next change.
    std::string_view GetCaption() const;
    // Whether there is a list of cells at all; it may be empty.
    bool HasCells() const;
    int GetCellCount() const;
    // Empty beyond the last cell and for a negative Index.
    std::string_view GetCell(int Index) const;

    // The caption, and all cells put behind what stands in Cells, in one pass.
    std::string_view GetAll(std::vector<std::string_view>& Cells) const;

    void SetCaption(std::string_view Value);
    // Appends empty cells until cell Index exists, then stores Value there.
    void SetCell(int Index, std::string_view Value);
    void SetCells(std::span<const std::string_view> Cells);
    void RemoveCells();
    void Assign(std::string_view Caption, bool WithCells, std::span<const std::string_view> Cells);

private:
    struct TLayout;
    TLayout Layout() const;
    std::size_t BlockSize() const;
    static unsigned char* Build(std::string_view Caption, bool WithCells,
                                std::span<const std::string_view> Cells);
    void Replace(unsigned char* Block);
    void Free();

    unsigned char* FBlock = nullptr;
};

} // namespace quill
