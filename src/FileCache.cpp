// The block cache of zunFile: loads, write-back, block changes and resizing.
// The inline common case is in FileState.h.
#include "FileState.h"

namespace
{
    // The default block size, read by every new stream. Nothing changes it.
    const std::uint64_t kDefaultCacheSize = 65536;
}

zunFileState::zunFileState(std::unique_ptr<CallBacks> backEnd) : callBacks(std::move(backEnd))
{
    // A heap that can't give the block leaves the stream uncached, which is
    // slower but works alike.
    cacheBuffer.SetCount(static_cast<unsigned int>(kDefaultCacheSize), true);
    AdoptBuffer();
    position = callBacks->GetFilePointer();
    fileSize = callBacks->GetFileSize();
}

void zunFileState::WriteBack()
{
    if (blockSize == 0 || blockStale || !blockDirty)
        return;
    // Only bytes below the stream's size reach the back-end, so the tail of a
    // last, partial block is never written. A block that starts at or past
    // the size (a zero-byte write far out) has nothing below it.
    const std::uint64_t below = fileSize > blockStart ? fileSize - blockStart : 0;
    callBacks->SetFilePointer(blockStart);
    callBacks->Write(block, below < blockSize ? below : blockSize);
}

void zunFileState::LoadBlock()
{
    callBacks->SetFilePointer(blockStart);
    // The count read isn't examined: at the end of the stream the tail keeps
    // what it held, and the bound by fileSize keeps reads away from it.
    callBacks->Read(block, blockSize);
    ++blockLoads;
}

bool zunFileState::LoadBlockHoldingPosition()
{
    LoadBlock();
    blockStale = false;
    if (InBlock(position))
        return true;
    // Only a block placed by the quotient rule of SetCacheSize (or a back-end
    // that starts far out) can miss the position; the position's own block is
    // taken instead of reaching outside the buffer.
    DropBlock(AlignedStart(position));
    return false;
}

void zunFileState::LeaveStrayBlock()
{
    if (!blockStale && !InBlock(position))
    {
        WriteBack();
        DropBlock(AlignedStart(position));
    }
}

void zunFileState::CacheFlush()
{
    WriteBack();
    blockDirty = false;
}

void zunFileState::CacheSeek(std::uint64_t target)
{
    position = target;
    if (blockSize == 0)
    {
        callBacks->SetFilePointer(target);
        return;
    }
    if (target >= blockStart && target - blockStart < blockSize)
        return;
    WriteBack();
    DropBlock(AlignedStart(target));
}

std::uint64_t zunFileState::CacheReadSlow(void * destination, std::uint64_t count)
{
    if (blockSize == 0)
    {
        const std::uint64_t n = callBacks->Read(destination, count);
        position += n;
        return n;
    }
    LeaveStrayBlock();
    // A position past the size is outside the contract of a cached read (its
    // remaining count would wrap); it reads nothing.
    if (position > fileSize)
        return 0;
    if (count > fileSize - position)
        count = fileSize - position;

    auto * out = static_cast<unsigned char *>(destination);
    std::uint64_t total = 0;
    while (count != 0)
    {
        if (blockStale)
        {
            if (position == blockStart && count >= blockSize)
            {
                // A whole block wanted from its first byte: the same transfer
                // as a load and a copy, straight into the caller's memory.
                callBacks->SetFilePointer(blockStart);
                callBacks->Read(out, blockSize);
                ++blockLoads;
                out += blockSize;
                position += blockSize;
                total += blockSize;
                count -= blockSize;
                DropBlock(blockStart + blockSize);
                continue;
            }
            if (!LoadBlockHoldingPosition())
                continue;
        }
        const std::uint64_t offset = position - blockStart;
        const std::uint64_t room = blockSize - offset;
        const std::uint64_t n = count < room ? count : room;
        if (n == 1)
            *out = block[offset];
        else
            std::memcpy(out, block + offset, n);
        out += n;
        position += n;
        total += n;
        count -= n;
        if (n == room)
        {
            WriteBack();
            DropBlock(blockStart + blockSize);
        }
    }
    return total;
}

std::uint64_t zunFileState::CacheWriteSlow(const void * source, std::uint64_t count)
{
    if (blockSize == 0)
    {
        const std::uint64_t n = callBacks->Write(source, count);
        position += n;
        return n;
    }

    LeaveStrayBlock();
    const auto * in = static_cast<const unsigned char *>(source);
    std::uint64_t total = 0;
    // At least once, so that a write of 0 bytes still loads a stale block and
    // marks it dirty.
    for (;;)
    {
        if (position == blockStart && count >= blockSize)
        {
            // A write that replaces a whole block skips the load and goes out
            // in full, straight from the caller's memory.
            position += blockSize;
            if (position > fileSize)
                fileSize = position;
            callBacks->SetFilePointer(blockStart);
            try
            {
                callBacks->Write(in, blockSize);
            }
            catch (...)
            {
                // As if the bytes had gone through the buffer: they stay
                // there, dirty, for a later flush to try again.
                std::memcpy(block, in, blockSize);
                blockStale = false;
                blockDirty = true;
                throw;
            }
            in += blockSize;
            total += blockSize;
            count -= blockSize;
            DropBlock(blockStart + blockSize);
            if (count == 0)
                break;
            continue;
        }
        if (blockStale && !LoadBlockHoldingPosition())
            continue;
        const std::uint64_t offset = position - blockStart;
        const std::uint64_t room = blockSize - offset;
        const std::uint64_t n = count < room ? count : room;
        if (n != 0)
            std::memcpy(block + offset, in, n);
        in += n;
        position += n;
        total += n;
        count -= n;
        blockDirty = true;
        if (position > fileSize)
            fileSize = position;
        if (n == room)
        {
            callBacks->SetFilePointer(blockStart);
            callBacks->Write(block, blockSize);
            DropBlock(blockStart + blockSize);
        }
        if (count == 0)
            break;
    }
    return total;
}

void zunFileState::SetCacheSize(std::uint64_t size)
{
    CacheFlush();
    if (size > zunFastMesh<unsigned char>::MaxCapacity || !cacheBuffer.SetCount(static_cast<unsigned int>(size), true))
        return;
    AdoptBuffer();
    if (size != 0)
    {
        DropBlock(position / size);
    }
}
