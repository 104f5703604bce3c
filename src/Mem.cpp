// The memory layer: heap blocks with a size header, and block operations.
#include "zunMem.h"

#include <atomic>
#include <cstdlib>
#include <cstring>

#include "MemTesting.h"

namespace
{
    // The platform's size query (malloc_usable_size) rounds up, while the
    // zero-fill and the move test need the size last requested. Each block
    // therefore carries it in a header; 16 bytes keep the payload aligned
    // as malloc's own result is.
    struct BlockHeader
    {
        std::uint64_t size;
        std::uint64_t reserved;
    };
    static_assert(sizeof(BlockHeader) == 16, "the header keeps 16-byte alignment");

    BlockHeader * HeaderOf(void * payload)
    {
        return static_cast<BlockHeader *>(payload) - 1;
    }

    void * PayloadOf(BlockHeader * header)
    {
        return header + 1;
    }

    // Fault injection and counters (see MemTesting.h). They cost one relaxed
    // load of a flag that only tests raise, so production code never writes
    // a shared line here.
    std::atomic<bool> g_hooksOn{false};
    std::atomic<unsigned int> g_failCountdown{0};
    std::atomic<bool> g_failPersistent{false};
    std::atomic<unsigned long long> g_allocations{0}, g_resizes{0}, g_moves{0}, g_frees{0}, g_failures{0};

    void Count(std::atomic<unsigned long long> & counter)
    {
        if (g_hooksOn.load(std::memory_order_relaxed))
            counter.fetch_add(1, std::memory_order_relaxed);
    }

    bool InjectFailure()
    {
        if (!g_hooksOn.load(std::memory_order_relaxed))
            return false;
        unsigned int countdown = g_failCountdown.load(std::memory_order_relaxed);
        if (countdown == 0)
            return false;
        if (countdown == 1)
        {
            if (!g_failPersistent.load(std::memory_order_relaxed))
                g_failCountdown.store(0, std::memory_order_relaxed);
            g_failures.fetch_add(1, std::memory_order_relaxed);
            return true;
        }
        g_failCountdown.store(countdown - 1, std::memory_order_relaxed);
        return false;
    }

    BlockHeader * NewBlock(unsigned int size)
    {
        if (InjectFailure())
            return nullptr;
        auto * header = static_cast<BlockHeader *>(std::malloc(sizeof(BlockHeader) + size));
        if (header != nullptr)
        {
            header->size = size;
            Count(g_allocations);
        }
        return header;
    }

    BlockHeader * ResizeBlock(BlockHeader * header, unsigned int size)
    {
        if (InjectFailure())
            return nullptr;
        auto * resized = static_cast<BlockHeader *>(std::realloc(header, sizeof(BlockHeader) + size));
        if (resized != nullptr)
        {
            resized->size = size;
            Count(g_resizes);
        }
        return resized;
    }

    void FreeBlock(BlockHeader * header)
    {
        std::free(header);
        Count(g_frees);
    }

    constexpr std::uint64_t kPage = 4096;

    // A shrink moves to a fresh block when the block is small, or when it gives
    // back at least a page's worth of rounded size.
    bool ShrinkMoves(unsigned int size, std::uint64_t old)
    {
        std::uint64_t rounded = (static_cast<std::uint64_t>(size) + kPage - 1) / kPage * kPage;
        return (size < kPage && size < old) || rounded < old;
    }
}

bool zunMemAlloc(void *& ptr, unsigned int size, bool zero)
{
    if (ptr == nullptr)
    {
        if (size == 0)
            return true;
        // The documented order zero-fills before testing the result, which
        // turns a failed zeroed allocation into a write at address 0. We test
        // first: the failure is the plain false that every caller handles.
        BlockHeader * header = NewBlock(size);
        if (header == nullptr)
            return false;
        if (zero)
            std::memset(PayloadOf(header), 0, size);
        ptr = PayloadOf(header);
        return true;
    }

    BlockHeader * header = HeaderOf(ptr);
    if (size == 0)
    {
        FreeBlock(header);
        ptr = nullptr;
        return true;
    }

    const std::uint64_t old = header->size;
    BlockHeader * result;
    if (ShrinkMoves(size, old))
    {
        result = NewBlock(size);
        if (result == nullptr)
            return false;
        std::memcpy(PayloadOf(result), ptr, size < old ? size : old);
        FreeBlock(header);
        Count(g_moves);
    }
    else
    {
        result = ResizeBlock(header, size);
        if (result == nullptr)
            return false;
    }
    if (zero && size > old)
        std::memset(static_cast<char *>(PayloadOf(result)) + old, 0, size - old);
    ptr = PayloadOf(result);
    return true;
}

bool zunMemFree(void *& ptr)
{
    if (ptr != nullptr)
    {
        FreeBlock(HeaderOf(ptr));
        ptr = nullptr;
    }
    return true;
}

unsigned int zunMemGetSize(void * ptr)
{
    return static_cast<unsigned int>(HeaderOf(ptr)->size);
}

bool zunMemGetSize(void * ptr, unsigned int & size)
{
    if (ptr == nullptr)
    {
        size = 0;
        return true;
    }
    unsigned int blockSize = zunMemGetSize(ptr);
    if (blockSize == 0)
        return false;
    size = blockSize;
    return true;
}

bool zunMemValidate()
{
    return true;
}

// Empty operations return before the C library sees their pointers, which
// may then be null.

void zunMemCopy(void * dst, const void * src, unsigned int bytes)
{
    // In-place string edits copy down within one buffer, so overlap must work.
    if (bytes != 0)
        std::memmove(dst, src, bytes);
}

void zunMemCopy32(void * dst, const void * src, unsigned int words)
{
    const unsigned int bytes = words * 4u; // 32-bit on purpose: wraps from 2^30 words
    zunMemCopy(dst, src, bytes);
}

void zunMemMove(void * dst, const void * src, unsigned int bytes)
{
    if (bytes != 0)
        std::memmove(dst, src, bytes);
}

void zunMemZero(void * dst, unsigned int bytes)
{
    if (bytes != 0)
        std::memset(dst, 0, bytes);
}

void zunMemFill(void * dst, unsigned char value, unsigned int bytes)
{
    if (bytes != 0)
        std::memset(dst, value, bytes);
}

void zunMemFill32(void * dst, unsigned int value, unsigned int words)
{
    auto * out = static_cast<unsigned char *>(dst);
    for (unsigned int i = 0; i < words; ++i)
        std::memcpy(out + 4u * static_cast<std::size_t>(i), &value, 4);
}

int zunMemCmp(const void * a, const void * b, unsigned int bytes)
{
    return bytes == 0 ? 0 : std::memcmp(a, b, bytes);
}

bool zunMemCmpEq8(const void * a, const void * b, unsigned int bytes)
{
    return bytes == 0 || std::memcmp(a, b, bytes) == 0;
}

bool zunMemCmpEq32(const void * a, const void * b, unsigned int words)
{
    return words == 0 || std::memcmp(a, b, 4u * static_cast<std::size_t>(words)) == 0;
}

void * zunMemFind32(const void * start, unsigned int words, unsigned int value)
{
    auto * bytes = static_cast<const unsigned char *>(start);
    for (unsigned int i = 0; i < words; ++i)
    {
        unsigned int word;
        std::memcpy(&word, bytes + 4u * static_cast<std::size_t>(i), 4);
        if (word == value)
            return const_cast<unsigned char *>(bytes + 4u * static_cast<std::size_t>(i));
    }
    return nullptr;
}

void * zunMemFindPtr(const void * start, unsigned int count, const void * value)
{
    auto * entries = static_cast<const void * const *>(start);
    for (unsigned int i = 0; i < count; ++i)
        if (entries[i] == value)
            return const_cast<void **>(entries + i);
    return nullptr;
}

namespace zunMemTesting
{
    void FailAllocation(unsigned int nth, bool persistent)
    {
        g_failPersistent.store(persistent, std::memory_order_relaxed);
        g_failCountdown.store(nth, std::memory_order_relaxed);
        g_hooksOn.store(true, std::memory_order_relaxed);
    }

    void StartCounting()
    {
        g_hooksOn.store(true, std::memory_order_relaxed);
    }

    void Reset()
    {
        g_hooksOn.store(false, std::memory_order_relaxed);
        g_failPersistent.store(false, std::memory_order_relaxed);
        g_failCountdown.store(0, std::memory_order_relaxed);
        g_allocations = 0;
        g_resizes = 0;
        g_moves = 0;
        g_frees = 0;
        g_failures = 0;
    }

    Counters GetCounters()
    {
        return Counters{g_allocations.load(), g_resizes.load(), g_moves.load(), g_frees.load(), g_failures.load()};
    }
}
