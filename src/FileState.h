// FileState.h - the private state of a zunFile and its block cache.
//
// One block of S bytes serves reads and writes alike; blocks start at
// multiples of S from where the stream began, write-back is deferred and there
// is no read-ahead. The four cache operations carry all traffic:
// CacheRead/CacheWrite (bytes moved), CacheFlush and CacheSeek. Their common
// case, a few bytes inside the loaded block, is inline here so that a typed
// primitive costs a copy and no call; everything else is in FileCache.cpp.
//
// While the block is loaded (not stale) it holds the position, blockStart <=
// position < blockStart + S, except after a write-back that threw while the
// position moved on: the dirty block then waits for a retry, which the next
// read or write makes before anything else.
#ifndef ZUN_FILE_STATE_H
#define ZUN_FILE_STATE_H

#include <cstdint>
#include <cstring>
#include <memory>

#include "zunFastMesh.h"
#include "zunFile.h"
#include "zunSystem.h"

/// The byte order of the build, as zunSystem::GetEndianness reports it; a
/// constant here so that the per-value test costs no call.
constexpr zunSystem::Endianness kBuildByteOrder =
    __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__ ? zunSystem::Big : zunSystem::Little;

struct zunFileState
{
    using CallBacks = zunFile::CallBacks;
    using ChunkSizeBits = zunFile::ChunkSizeBits;
    using StringEncoding = zunFile::StringEncoding;
    static constexpr std::uint64_t NoLimit = zunFile::NoLimit;

    explicit zunFileState(std::unique_ptr<CallBacks> backEnd);

    // The fields of the stream, in their documented order.
    std::uint64_t limit = NoLimit;
    zunSystem::Endianness endianness = zunSystem::Little;
    zunFastMesh<unsigned char> cacheBuffer;
    std::uint64_t blockStart = 0;
    std::uint64_t position = 0;
    std::uint64_t fileSize = 0;
    bool blockStale = true;
    bool blockDirty = false;
    std::uint32_t blockLoads = 0;
    std::unique_ptr<CallBacks> callBacks;
    bool closed = false;
    ChunkSizeBits chunkSizeBits = zunFile::ChunkSize32;
    StringEncoding stringEncoding = zunFile::StringEncodingUTF8;

    // The buffer and its size S, kept in step with cacheBuffer.
    unsigned char * block = nullptr;
    std::uint64_t blockSize = 0;

    /// True when values of 2 to 8 bytes are reversed on their way.
    bool SwapsBytes() const { return endianness != kBuildByteOrder; }

    std::uint64_t CacheRead(void * destination, std::uint64_t count)
    {
        const std::uint64_t offset = position - blockStart;
        if (FitsInBlock(offset, count) && position <= fileSize && count <= fileSize - position)
        {
            if (count != 0)
                std::memcpy(destination, block + offset, count);
            position += count;
            return count;
        }
        return CacheReadSlow(destination, count);
    }

    std::uint64_t CacheWrite(const void * source, std::uint64_t count)
    {
        const std::uint64_t offset = position - blockStart;
        if (FitsInBlock(offset, count))
        {
            if (count != 0)
                std::memcpy(block + offset, source, count);
            position += count;
            blockDirty = true;
            if (position > fileSize)
                fileSize = position;
            return count;
        }
        return CacheWriteSlow(source, count);
    }

    void CacheFlush();
    void CacheSeek(std::uint64_t target);
    /// Resizes the buffer (bytes added are zero) and re-bases the block.
    void SetCacheSize(std::uint64_t size);

private:
    // The common case: the block is loaded, holds the position, and `count`
    // bytes from there stop short of its end (reaching the end is a block
    // change, left to the slow paths).
    bool FitsInBlock(std::uint64_t offset, std::uint64_t count) const
    {
        return !blockStale && offset < blockSize && count < blockSize - offset;
    }
    std::uint64_t CacheReadSlow(void * destination, std::uint64_t count);
    std::uint64_t CacheWriteSlow(const void * source, std::uint64_t count);

    bool InBlock(std::uint64_t at) const { return at >= blockStart && at - blockStart < blockSize; }
    // Hands a dirty block to the back-end, up to the stream's size.
    void WriteBack();
    // Reads the block at blockStart from the back-end.
    void LoadBlock();
    // Loads the stale block; when it doesn't hold the position, the
    // position's own block becomes the (stale) block instead and false returns.
    bool LoadBlockHoldingPosition();
    // After a write-back that threw, a loaded block may no longer hold the
    // position; it is written back (a retry) and left for the position's own.
    void LeaveStrayBlock();
    // The block is used up or left: it must be loaded before its next use.
    void DropBlock(std::uint64_t newStart)
    {
        blockStale = true;
        blockDirty = false;
        blockStart = newStart;
    }
    std::uint64_t AlignedStart(std::uint64_t at) const { return at - at % blockSize; }
    void AdoptBuffer()
    {
        block = cacheBuffer.Data();
        blockSize = cacheBuffer.Count();
    }
};

#endif // ZUN_FILE_STATE_H
