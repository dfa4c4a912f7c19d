#include "treecoll/NodePool.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <thread>

#if defined(__SANITIZE_ADDRESS__)
#define QUILL_PLAIN_BLOCKS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QUILL_PLAIN_BLOCKS 1
#endif
#endif

namespace quill {

#ifdef QUILL_PLAIN_BLOCKS

void* AllocateBlock(std::size_t Size) { return ::operator new(Size); }
void FreeBlock(void* Block, std::size_t) noexcept { ::operator delete(Block); }

#else

namespace {

constexpr std::size_t Granule = 8;
constexpr std::size_t ClassCount = PoolMax / Granule;
// Slabs are aligned to their size, so that a block's address leads to its slab. A little less is asked for than
// that, so that the heap can place slabs side by side with its own headers between them.
constexpr std::size_t SlabAlignment = std::size_t{64} * 1024;
constexpr std::size_t SlabBytes = SlabAlignment - 64;

struct TFreeBlock {
    TFreeBlock* Next;
};

struct TSlab {
    TSlab* Prev;
    TSlab* Next;
    TFreeBlock* Free;
    // Blocks behind Fresh were never handed out.
    std::uint32_t Fresh;
    std::uint32_t Live;
    bool Listed;
};

constexpr std::size_t FirstBlock = (sizeof(TSlab) + 15) / 16 * 16;

// The slabs of one block size that have room.
struct TSizeClass {
    TSlab* Head = nullptr;
};

class TSpinLock {
public:
    void lock() {
        while (FFlag.test_and_set(std::memory_order_acquire)) std::this_thread::yield();
    }
    void unlock() { FFlag.clear(std::memory_order_release); }

private:
    std::atomic_flag FFlag = ATOMIC_FLAG_INIT;
};

class TLocked {
public:
    explicit TLocked(TSpinLock& Lock) : FLock(Lock) { FLock.lock(); }
    ~TLocked() { FLock.unlock(); }
    TLocked(const TLocked&) = delete;
    TLocked& operator=(const TLocked&) = delete;

private:
    TSpinLock& FLock;
};

// Never destroyed: nodes in static storage may go after it would have.
struct TPool {
    TSpinLock Lock;
    TSizeClass Classes[ClassCount];
};

TPool& Pool() {
    static TPool* const Instance = new TPool;
    return *Instance;
}

TSlab* NewSlab() {
    void* Memory = nullptr;
#ifdef _WIN32
    Memory = _aligned_malloc(SlabBytes, SlabAlignment);
    if (!Memory) throw std::bad_alloc();
#else
    if (posix_memalign(&Memory, SlabAlignment, SlabBytes) != 0) throw std::bad_alloc();
#endif
    auto* Slab = static_cast<TSlab*>(Memory);
    *Slab = {nullptr, nullptr, nullptr, static_cast<std::uint32_t>(FirstBlock), 0, false};
    return Slab;
}

void FreeSlab(TSlab* Slab) {
#ifdef _WIN32
    _aligned_free(Slab);
#else
    std::free(Slab);
#endif
}

void ListSlab(TSizeClass& Class, TSlab* Slab) {
    Slab->Prev = nullptr;
    Slab->Next = Class.Head;
    if (Class.Head) Class.Head->Prev = Slab;
    Class.Head = Slab;
    Slab->Listed = true;
}

void UnlistSlab(TSizeClass& Class, TSlab* Slab) {
    (Slab->Prev ? Slab->Prev->Next : Class.Head) = Slab->Next;
    if (Slab->Next) Slab->Next->Prev = Slab->Prev;
    Slab->Listed = false;
}

} // namespace

void* AllocateBlock(std::size_t Size) {
    if (Size > PoolMax) return ::operator new(Size);
    const std::size_t Index = Size == 0 ? 0 : (Size - 1) / Granule;
    const std::size_t BlockSize = (Index + 1) * Granule;
    TPool& P = Pool();
    const TLocked Locked(P.Lock);
    TSizeClass& Class = P.Classes[Index];
    if (!Class.Head) ListSlab(Class, NewSlab());
    TSlab* Slab = Class.Head;
    ++Slab->Live;
    void* Block = Slab->Free;
    if (Block) {
        Slab->Free = Slab->Free->Next;
    } else {
        Block = reinterpret_cast<unsigned char*>(Slab) + Slab->Fresh;
        Slab->Fresh += static_cast<std::uint32_t>(BlockSize);
    }
    if (!Slab->Free && Slab->Fresh + BlockSize > SlabBytes) UnlistSlab(Class, Slab);
    return Block;
}

void FreeBlock(void* Block, std::size_t Size) noexcept {
    if (!Block) return;
    if (Size > PoolMax) {
        ::operator delete(Block);
        return;
    }
    TPool& P = Pool();
    const TLocked Locked(P.Lock);
    TSizeClass& Class = P.Classes[Size == 0 ? 0 : (Size - 1) / Granule];
    auto* Slab = reinterpret_cast<TSlab*>(reinterpret_cast<std::uintptr_t>(Block) & ~(SlabAlignment - 1));
    auto* Freed = static_cast<TFreeBlock*>(Block);
    Freed->Next = Slab->Free;
    Slab->Free = Freed;
    --Slab->Live;
    if (!Slab->Listed) {
        ListSlab(Class, Slab);
    } else if (Slab->Live == 0 && (Slab->Prev || Slab->Next)) {
        // One slab per size is kept, so that making and destroying a single node does not go to the heap.
        UnlistSlab(Class, Slab);
        FreeSlab(Slab);
    }
}

#endif

} // namespace quill
