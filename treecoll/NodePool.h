// Memory for the many small blocks that a tree consists of: nodes, placeholders and their packed texts.
#pragma once

#include <cstddef>

namespace quill {

// Blocks of up to PoolMax bytes come from slabs of equal blocks, without a header each; larger ones from the heap.
// A slab whose blocks are all free goes back to the heap. Safe to call from several threads. Builds with the address
// sanitizer take every block from the heap, so that a use after free is found.
inline constexpr std::size_t PoolMax = 512;

// Throws std::bad_alloc. FreeBlock gets the size that was asked for.
void* AllocateBlock(std::size_t Size);
void FreeBlock(void* Block, std::size_t Size) noexcept;

} // namespace quill
