// The chunk walk over arbitrary bytes, in both chunk size modes and both byte
// orders, with and without a block cache: a reader with a registry of a few
// record types walks the siblings, descends into containers and reads the
// fields it knows. The only outcomes allowed are a clean walk or a
// zunException; after every Ascend the stream stands right behind the chunk
// with the limit it had before.
#include <cstddef>
#include <cstdint>

#include "FuzzStream.h"
#include "zunChunk.h"
#include "zunColor.h"
#include "zunMatrix44.h"
#include "zunString.h"

namespace
{
    constexpr unsigned int Tag(char a, char b, char c, char d)
    {
        return (unsigned(a) << 24) | (unsigned(b) << 16) | (unsigned(c) << 8) | unsigned(d);
    }

    // The registry: the record types this reader knows.
    constexpr unsigned int kList = Tag('L', 'I', 'S', 'T');    // holds further chunks
    constexpr unsigned int kNumbers = Tag('N', 'U', 'M', 'S'); // an int32, an int64, a double
    constexpr unsigned int kText = Tag('T', 'E', 'X', 'T');    // a narrow and a wide string
    constexpr unsigned int kColor = Tag('C', 'O', 'L', 'R');
    constexpr unsigned int kMatrix = Tag('M', 'A', 'T', 'X');
    constexpr unsigned int kBlob = Tag('B', 'L', 'O', 'B'); // read whole through zunChunkHF
    constexpr int kDeepest = 64;

    void ReadFields(zunFile & file, const zunChunk & chunk)
    {
        switch (chunk.GetFCC())
        {
        case kNumbers:
        {
            int i = 7;
            std::int64_t l = 8;
            double d = 9.0;
            file.Read_Int32(i);
            file.Read_Int64(l);
            file.Read_Float(d);
            break;
        }
        case kText:
        {
            zunString narrow("default");
            zunStringW wide(ZUN_W("default"));
            fuzz::ReadStringGuarded(file, narrow, [&] { file.Read_String(narrow); });
            fuzz::ReadStringGuarded(file, wide, [&] { file.Read_String16(wide); });
            break;
        }
        case kColor:
        {
            zunColor color(0.25, 0.5, 0.75, 1.0, zunColor::RGB);
            color.Read(&file);
            break;
        }
        case kMatrix:
        {
            zunMatrix44 matrix;
            matrix.Read(&file);
            break;
        }
        default:
            break; // unknown: skipped by Ascend
        }
    }

    void Walk(zunFile & file, std::uint64_t fileSize, int depth)
    {
        const std::uint64_t header = file.GetChunkSizeBits() == zunFile::ChunkSize64 ? 12 : 8;
        while (!file.IsLimitReached() && !file.IsEOF())
        {
            const std::uint64_t start = file.GetCurrPos();
            const std::uint64_t limit = file.GetLimit();
            zunChunk chunk(&file);
            chunk.Descend();
            const std::uint64_t remaining = fileSize - (start + header < fileSize ? start + header : fileSize);
            const bool readWhole = chunk.GetFCC() == kBlob && chunk.GetSize() <= remaining;
            if (readWhole)
            {
                // DescendReadAscend takes the size as it stands: a reader
                // hands it only chunks that the stream can hold.
                chunk.UnDescend();
                FUZZ_CHECK(file.GetCurrPos() == start && file.GetLimit() == limit);
                zunFastMesh<unsigned char> contents;
                zunChunkHF handle;
                handle.DescendReadAscend(&file, contents);
                FUZZ_CHECK(contents.Count() == chunk.GetSize() && handle.GetFCC() == kBlob);
            }
            else if (chunk.GetFCC() == kList && depth < kDeepest)
                Walk(file, fileSize, depth + 1);
            else
                ReadFields(file, chunk);
            if (!readWhole)
                chunk.Ascend();
            FUZZ_CHECK(file.GetLimit() == limit);
            FUZZ_CHECK(file.GetCurrPos() == start + header + chunk.GetSize());
            // A size field near 2^64 wraps the next position back onto this
            // chunk: the reader, not the stream, must notice that.
            if (file.GetCurrPos() <= start)
                return;
        }
    }
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t * data, std::size_t size)
{
    fuzz::Stream stream(data, size);
    if (!stream.file)
        return 0;
    try
    {
        Walk(*stream.file, stream.Size(), 0);
    }
    catch (const zunException &)
    {
        // a clean failure: the storage refused a position or a read
    }
    return 0;
}
