#include "host/transfer/GlobalMemory.h"

#include "host/graphics/Pictures.h"

#include <cstdlib>
#include <cstring>
#include <unordered_map>
#include <variant>

namespace quill {

namespace {

struct TFree {
    void operator()(char* Memory) const { std::free(Memory); }
};

struct TBlock {
    std::unique_ptr<char, TFree> Memory;
    std::size_t Size = 0;
    int Locks = 0;
};

using TEntry = std::variant<TBlock, TBitmap, TMetafile>;

struct TTable {
    std::unordered_map<THandle, TEntry> Entries;
    THandle Last = 0;

    THandle Add(TEntry Entry) {
        // Numbers are not used again soon, so that a stale one is found out.
        do ++Last;
        while (Last == 0 || Entries.contains(Last));
        Entries.emplace(Last, std::move(Entry));
        return Last;
    }
    template <class T>
    T* Find(THandle Handle) {
        const auto Place = Entries.find(Handle);
        return Place == Entries.end() ? nullptr : std::get_if<T>(&Place->second);
    }
};

TTable& Table() {
    // Never destroyed: objects with static life may free their handles at the very end.
    static TTable* const Result = new TTable;
    return *Result;
}

} // namespace

HGLOBAL GlobalAlloc(unsigned, std::size_t Bytes) {
    if (Bytes > LargestBlock) return 0;
    std::unique_ptr<char, TFree> Memory(static_cast<char*>(std::calloc(Bytes + TerminatorRoom, 1)));
    if (!Memory) return 0;
    return Table().Add(TBlock{std::move(Memory), Bytes});
}

void* GlobalLock(HGLOBAL Block) {
    auto* Found = Table().Find<TBlock>(Block);
    if (!Found) return nullptr;
    ++Found->Locks;
    return Found->Memory.get();
}

bool GlobalUnlock(HGLOBAL Block) {
    auto* Found = Table().Find<TBlock>(Block);
    if (!Found || Found->Locks == 0) return false;
    return --Found->Locks > 0;
}

std::size_t GlobalSize(HGLOBAL Block) {
    const auto* Found = Table().Find<TBlock>(Block);
    return Found ? Found->Size : 0;
}

bool GlobalFree(HGLOBAL Block) {
    if (!Table().Find<TBlock>(Block)) return false;
    Table().Entries.erase(Block);
    return true;
}

HGLOBAL CopyToGlobal(std::string_view Bytes, std::size_t Terminator) {
    const HGLOBAL Result = GlobalAlloc(GMEM_MOVEABLE, Bytes.size() + Terminator);
    if (Result && !Bytes.empty())
        std::memcpy(Table().Find<TBlock>(Result)->Memory.get(), Bytes.data(), Bytes.size());
    return Result;
}

std::string_view GlobalBytes(HGLOBAL Block) {
    const auto* Found = Table().Find<TBlock>(Block);
    return Found ? std::string_view(Found->Memory.get(), Found->Size) : std::string_view();
}

THandle CreateBitmapHandle(const TBitmap& Bitmap) { return Table().Add(Bitmap); }
THandle CreateMetafileHandle(const TMetafile& Metafile) { return Table().Add(Metafile); }
const TBitmap* BitmapOfHandle(THandle Handle) { return Table().Find<TBitmap>(Handle); }
const TMetafile* MetafileOfHandle(THandle Handle) { return Table().Find<TMetafile>(Handle); }

bool DeleteObject(THandle Handle) {
    if (!BitmapOfHandle(Handle) && !MetafileOfHandle(Handle)) return false;
    Table().Entries.erase(Handle);
    return true;
}

THandle DuplicateHandle(THandle Handle) {
    if (const TBitmap* Bitmap = BitmapOfHandle(Handle)) return CreateBitmapHandle(TBitmap(*Bitmap));
    if (const TMetafile* Metafile = MetafileOfHandle(Handle))
        return CreateMetafileHandle(TMetafile(*Metafile));
    return Table().Find<TBlock>(Handle) ? CopyToGlobal(GlobalBytes(Handle)) : 0;
}

std::size_t GetHandleCount() { return Table().Entries.size(); }

void ReleaseStgMedium(STGMEDIUM& Medium) {
    if (Medium.unkForRelease) {
        Medium.unkForRelease.Reset();
    } else if (Medium.hGlobal != 0) {
        // Sources mark pictures and blocks with the wrong kind; the handle knows better.
        if (!GlobalFree(Medium.hGlobal)) DeleteObject(Medium.hGlobal);
    }
    Medium.tymed = TYMED_NULL;
    Medium.hGlobal = 0;
}

} // namespace quill
