// FuzzStream.h - a read stream over the bytes of a fuzz input.
//
// The first byte of an input sets up the stream: bit 0 the 64-bit chunk size
// mode, bit 1 big-endian order, bit 2 a small block cache (the memory
// back-end otherwise runs uncached). The rest is the stream's contents.
#ifndef ZUN_FUZZ_STREAM_H
#define ZUN_FUZZ_STREAM_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

#include "FuzzCheck.h"
#include "MemTesting.h"
#include "zunException.h"
#include "zunFeatureID.h"
#include "zunFile.h"

namespace fuzz
{
    struct Stream
    {
        zunFastMesh<unsigned char> bytes;
        std::unique_ptr<zunFile> file;

        /// Null `file` when the input is empty.
        Stream(const std::uint8_t * data, std::size_t size)
        {
            if (size == 0)
                return;
            FUZZ_CHECK(bytes.InsertRange(0, data + 1, static_cast<unsigned int>(size - 1)));
            file = zunFileMem::Create(static_cast<const zunFastMesh<unsigned char> &>(bytes));
            FUZZ_CHECK(file != nullptr);
            file->SetChunkSizeBits((data[0] & 1) != 0 ? zunFile::ChunkSize64 : zunFile::ChunkSize32);
            file->SetEndianness((data[0] & 2) != 0 ? zunSystem::Big : zunSystem::Little);
            if ((data[0] & 4) != 0)
            {
                file->SetCacheSize(64);
                file->SetCurrPos(0);
            }
        }

        std::uint64_t Size() const { return bytes.Count(); }
    };

    /// The 32-bit length field of a string at the stream's position, in the
    /// stream's order, or 0 when it is not all there; the position is kept.
    inline std::uint32_t PeekLength(zunFile & file)
    {
        const std::uint64_t at = file.GetCurrPos();
        std::uint32_t length = 0;
        file.Read_UInt32(length);
        file.SetCurrPos(static_cast<std::int64_t>(at));
        return length;
    }

    /// Runs `read` with every allocation failed; true if it threw a
    /// zunException whose debug description is `description`.
    template <typename Read> bool ThrowsWithoutMemory(Read read, const char * description)
    {
        zunMemTesting::FailAllocation(1, true);
        bool threw = false;
        try
        {
            read();
        }
        catch (const zunException & failure)
        {
            threw = std::strcmp(failure.GetDebugDescription(), description) == 0;
        }
        zunMemTesting::Reset();
        return threw;
    }

    /// The largest count of bytes a fuzz run lets a reader allocate.
    constexpr std::uint32_t kLargestCount = 1u << 20;

    /// A string read keeps to sensible memory: a stored length beyond what a
    /// fuzz run may allocate is read with the allocation failed on purpose,
    /// which must throw "Not enough memory" and leave the string as it was.
    template <typename ReadString, typename Text> void ReadStringGuarded(zunFile & file, Text & text, ReadString read)
    {
        if (PeekLength(file) <= kLargestCount)
        {
            read();
            return;
        }
        const Text before = text;
        FUZZ_CHECK(ThrowsWithoutMemory(read, "Not enough memory"));
        FUZZ_CHECK(text == before);
    }

    /// The same for a feature path, whose count is of 4-byte ids: the path
    /// is emptied before the allocation, so a refused count leaves it empty.
    inline void ReadFeatureIDGuarded(zunFile & file, zunFeatureID & path)
    {
        if (PeekLength(file) <= kLargestCount / 4)
        {
            path.Read(&file);
            return;
        }
        FUZZ_CHECK(ThrowsWithoutMemory([&] { path.Read(&file); }, ""));
        FUZZ_CHECK(path.DataCountGet() == 0);
    }
}

#endif // ZUN_FUZZ_STREAM_H
