// Handles: 32-bit numbers that stand for memory blocks and pictures while they travel between programs or objects.
#pragma once

#include "host/transfer/Com.h"

#include <cstddef>
#include <string_view>

namespace quill {

class TBitmap;
class TMetafile;

using HGLOBAL = THandle;

inline constexpr unsigned GMEM_MOVEABLE = 0x0002;
inline constexpr unsigned GMEM_ZEROINIT = 0x0040;
inline constexpr unsigned GMEM_SHARE = 0x2000;

// A block of Bytes bytes, 0 when there is no memory for it or it would be above LargestBlock. Blocks are zeroed whatever Flags say, and followed by
// TerminatorRoom zero bytes that are not part of them: a text in a block of exactly its length has its terminating
// NUL there.
HGLOBAL GlobalAlloc(unsigned Flags, std::size_t Bytes);
inline constexpr std::size_t TerminatorRoom = 4;
inline constexpr std::size_t LargestBlock = 0x7FFFFFFF;
// Null for a number that is no memory block, pictures included. Blocks do not move; locking is counted for
// GlobalUnlock's answer alone, which tells whether the block is still locked.
void* GlobalLock(HGLOBAL Block);
bool GlobalUnlock(HGLOBAL Block);
// Exactly the size that was asked for; 0 for no block.
std::size_t GlobalSize(HGLOBAL Block);
// False when there is no such block.
bool GlobalFree(HGLOBAL Block);

// A new block with a copy of Bytes, followed by Terminator zero bytes that belong to it; 0 without memory.
HGLOBAL CopyToGlobal(std::string_view Bytes, std::size_t Terminator = 0);
// The bytes of a block, valid until it is freed; empty for no block.
std::string_view GlobalBytes(HGLOBAL Block);

// A picture under a handle, as a copy; the bitmap (metafile) of a handle, null when it stands for something else.
THandle CreateBitmapHandle(const TBitmap& Bitmap);
THandle CreateMetafileHandle(const TMetafile& Metafile);
const TBitmap* BitmapOfHandle(THandle Handle);
const TMetafile* MetafileOfHandle(THandle Handle);
// Frees a picture; false when there is none.
bool DeleteObject(THandle Handle);
// A second handle with a copy of what Handle stands for; 0 for none.
THandle DuplicateHandle(THandle Handle);

// The number of handles in use, for tests of what leaks.
std::size_t GetHandleCount();

// Frees the data of Medium as its kind asks, or through its release interface, and empties it.
void ReleaseStgMedium(STGMEDIUM& Medium);

// A medium that is released at the end of its scope.
struct TScopedMedium : STGMEDIUM {
    TScopedMedium() = default;
    ~TScopedMedium() { ReleaseStgMedium(*this); }
    TScopedMedium(const TScopedMedium&) = delete;
    TScopedMedium& operator=(const TScopedMedium&) = delete;
};

} // namespace quill
