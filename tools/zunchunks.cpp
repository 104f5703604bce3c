// zunchunks - prints the chunk tree of a file written with zunFile and zunChunk.
//
//   zunchunks [--64] [--big-endian] [--hex OFFSET] FILE
//
// One line per chunk: the offset of its tag, its depth, the tag as hex and as
// four characters (lowest byte first) when they are all printable, and the
// size of its contents. A chunk tagged "data" (0x61746164) is a user-data
// record: its line also shows the record id. A file or a chunk's contents
// that start with a 32-bit count followed by exactly that many "data" chunks
// is a user-data block and is shown as such.
//
// Chunks don't say whether their contents are more chunks or plain fields, so
// the contents are shown as chunks when they are, from their first byte to
// their last, a run of well-formed chunks with non-zero tags; otherwise they
// are data. A file is malformed when its top level is not such a run, or when
// contents that start with a chunk of a printable tag hold a chunk whose size
// runs past the end of its parent: the tool says where and exits with 1.
// Usage and read errors exit with 2.
//
// --64          size fields of 8 bytes (zunFile::ChunkSize64)
// --big-endian  the stream's byte order was zunSystem::Big
// --hex OFFSET  also dump the contents of the chunk whose tag is at OFFSET
#include <zunFoundation.h>

#include <cctype>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace
{
    constexpr unsigned int kUserDataFCC = 0x61746164;
    // Contents nested deeper than this are shown as data: it bounds the stack
    // and the work on a file made of nothing but headers.
    constexpr int kMaxDepth = 64;

    // Whether all four bytes of a tag are printable ASCII.
    bool IsPrintableTag(unsigned int fcc)
    {
        for (int i = 0; i < 4; ++i)
        {
            const unsigned char c = static_cast<unsigned char>(fcc >> (8 * i));
            if (c < 0x20 || c > 0x7E)
                return false;
        }
        return true;
    }

    struct Chunk
    {
        std::uint64_t offset = 0; // of the tag
        unsigned int fcc = 0;
        std::uint64_t size = 0; // of the contents
        std::uint64_t contents = 0;
        std::vector<Chunk> children;
        bool userDataBlock = false; // the contents are a count and that many records
    };

    // The result of reading a run of chunks: what was read, or where it broke.
    struct Run
    {
        std::vector<Chunk> chunks;
        bool userDataBlock = false;
        std::string error; // empty when the run is well formed
    };

    class ChunkReader
    {
    public:
        ChunkReader(zunFile & file, bool wideSizes) : m_file(file), m_headerSize(wideSizes ? 12 : 8), m_wide(wideSizes)
        {
        }

        // The run of chunks that fills [begin, end) exactly, or the reason why not.
        // With `onlyRecords` the run must be user-data records, which are never
        // entered, so the walk reads each header once.
        Run ReadRun(std::uint64_t begin, std::uint64_t end, int depth, bool onlyRecords = false)
        {
            Run run;
            std::uint64_t at = begin;
            while (at < end)
            {
                if (end - at < m_headerSize)
                {
                    run.error =
                        Describe(at, "holds " + std::to_string(end - at) + " bytes, too few for a chunk header");
                    return run;
                }
                Chunk chunk;
                chunk.offset = at;
                ReadHeader(chunk);
                if (chunk.fcc == 0)
                {
                    run.error = Describe(at, "has the tag 0");
                    return run;
                }
                if (onlyRecords && chunk.fcc != kUserDataFCC)
                {
                    run.error = Describe(at, "is not a user-data record");
                    return run;
                }
                if (chunk.size > end - chunk.contents)
                {
                    run.error = Describe(at, "(tag " + Hex(chunk.fcc) + ") claims " + std::to_string(chunk.size) +
                                                 " bytes, past the end of its " + (depth == 0 ? "file" : "parent") +
                                                 " at offset " + std::to_string(end));
                    return run;
                }
                ReadContents(chunk, depth + 1);
                if (!m_error.empty())
                    return run;
                at = chunk.contents + chunk.size;
                run.chunks.push_back(std::move(chunk));
            }
            return run;
        }

        // A 32-bit count followed by exactly that many user-data chunks.
        Run ReadUserDataBlock(std::uint64_t begin, std::uint64_t end, int depth)
        {
            Run run;
            if (end - begin < 4)
                return run;
            unsigned int count = 0;
            m_file.SetCurrPos(static_cast<std::int64_t>(begin));
            m_file.Read_UInt32(count);
            Run records = ReadRun(begin + 4, end, depth, true);
            if (!records.error.empty() || records.chunks.size() != count)
                return run;
            records.userDataBlock = true;
            return records;
        }

        // Set when a chunk deep inside was found malformed.
        const std::string & Error() const { return m_error; }

        // The record id at the start of a user-data chunk, in the library's text
        // form, or "(too short for an id)".
        std::string RecordId(const Chunk & chunk)
        {
            if (chunk.size < 16)
                return "(too short for an id)";
            unsigned int data1 = 0;
            unsigned short data2 = 0, data3 = 0;
            unsigned char data4[8] = {};
            m_file.SetCurrPos(static_cast<std::int64_t>(chunk.contents));
            m_file.Read_UInt32(data1);
            m_file.Read_UInt16(data2);
            m_file.Read_UInt16(data3);
            m_file.Read_Block(data4, 8);
            char text[40];
            std::snprintf(text, sizeof text, "%08x-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x", data1, data2, data3,
                          data4[0], data4[1], data4[2], data4[3], data4[4], data4[5], data4[6], data4[7]);
            return text;
        }

        static std::string Hex(unsigned int value)
        {
            char text[12];
            std::snprintf(text, sizeof text, "0x%08X", value);
            return text;
        }

    private:
        void ReadHeader(Chunk & chunk)
        {
            m_file.SetCurrPos(static_cast<std::int64_t>(chunk.offset));
            m_file.Read_UInt32(chunk.fcc);
            if (m_wide)
                m_file.Read_UInt64(chunk.size);
            else
            {
                unsigned int size = 0;
                m_file.Read_UInt32(size);
                chunk.size = size;
            }
            chunk.contents = chunk.offset + m_headerSize;
        }

        // Decides whether the contents are chunks, a user-data block or data.
        void ReadContents(Chunk & chunk, int depth)
        {
            const std::uint64_t end = chunk.contents + chunk.size;
            if (chunk.size == 0 || chunk.fcc == kUserDataFCC || depth > kMaxDepth)
                return;
            Run run = ReadRun(chunk.contents, end, depth);
            if (!m_error.empty())
                return;
            if (run.error.empty())
            {
                chunk.children = std::move(run.chunks);
                return;
            }
            Run block = ReadUserDataBlock(chunk.contents, end, depth);
            if (block.userDataBlock)
            {
                chunk.children = std::move(block.chunks);
                chunk.userDataBlock = true;
                return;
            }
            // Contents that open with a chunk of a readable tag were meant as
            // chunks: a broken run inside them is a broken file, not data.
            if (StartsWithPrintableTag(chunk.contents, end))
                m_error = run.error;
        }

        bool StartsWithPrintableTag(std::uint64_t begin, std::uint64_t end)
        {
            if (end - begin < m_headerSize)
                return false;
            Chunk first;
            first.offset = begin;
            ReadHeader(first);
            return IsPrintableTag(first.fcc);
        }

        std::string Describe(std::uint64_t offset, const std::string & what) const
        {
            return "the chunk at offset " + std::to_string(offset) + " " + what;
        }

    private:
        zunFile & m_file;
        const std::uint64_t m_headerSize;
        const bool m_wide;
        std::string m_error;
    };

    struct Options
    {
        bool wideSizes = false;
        bool bigEndian = false;
        bool hex = false;
        std::uint64_t hexOffset = 0;
        const char * path = nullptr;
    };

    int Usage()
    {
        std::fprintf(stderr, "usage: zunchunks [--64] [--big-endian] [--hex OFFSET] FILE\n");
        return 2;
    }

    bool ParseOptions(int argc, char ** argv, Options & options)
    {
        for (int i = 1; i < argc; ++i)
        {
            if (std::strcmp(argv[i], "--64") == 0)
                options.wideSizes = true;
            else if (std::strcmp(argv[i], "--big-endian") == 0)
                options.bigEndian = true;
            else if (std::strcmp(argv[i], "--hex") == 0 && i + 1 < argc)
            {
                char * end = nullptr;
                options.hexOffset = std::strtoull(argv[++i], &end, 0);
                if (end == argv[i] || *end != '\0')
                    return false;
                options.hex = true;
            }
            else if (argv[i][0] == '-' || options.path)
                return false;
            else
                options.path = argv[i];
        }
        return options.path != nullptr;
    }

    bool LoadFile(const char * path, zunFastMesh<unsigned char> & bytes)
    {
        std::ifstream in(path, std::ios::binary);
        if (!in)
            return false;
        std::vector<char> data((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        if (in.bad() || data.size() > 0xFFFFF000u || !bytes.SetCount(static_cast<unsigned int>(data.size()), false))
            return false;
        if (!data.empty())
            std::memcpy(bytes.Data(), data.data(), data.size());
        return true;
    }

    void PrintChunk(ChunkReader & reader, const Chunk & chunk, int depth)
    {
        std::string tag = ChunkReader::Hex(chunk.fcc);
        if (IsPrintableTag(chunk.fcc))
        {
            tag += " '";
            for (int i = 0; i < 4; ++i)
                tag += static_cast<char>(chunk.fcc >> (8 * i));
            tag += "'";
        }
        std::printf("%10" PRIu64 "  %5d  %*s%-19s %" PRIu64, chunk.offset, depth, 2 * depth, "", tag.c_str(),
                    chunk.size);
        if (chunk.fcc == kUserDataFCC)
            std::printf("  record %s", reader.RecordId(chunk).c_str());
        if (chunk.userDataBlock)
            std::printf("  user-data block, %zu records", chunk.children.size());
        std::printf("\n");
        for (const Chunk & child : chunk.children)
            PrintChunk(reader, child, depth + 1);
    }

    const Chunk * FindChunk(const std::vector<Chunk> & chunks, std::uint64_t offset)
    {
        for (const Chunk & chunk : chunks)
        {
            if (chunk.offset == offset)
                return &chunk;
            if (const Chunk * inner = FindChunk(chunk.children, offset))
                return inner;
        }
        return nullptr;
    }

    void HexDump(zunFile & file, const Chunk & chunk)
    {
        std::printf("contents of the chunk at offset %" PRIu64 ", %" PRIu64 " bytes:\n", chunk.offset, chunk.size);
        file.SetCurrPos(static_cast<std::int64_t>(chunk.contents));
        unsigned char line[16];
        for (std::uint64_t done = 0; done < chunk.size; done += 16)
        {
            const std::uint64_t count = chunk.size - done < 16 ? chunk.size - done : 16;
            file.Read_Block(line, count);
            std::printf("%10" PRIu64 " ", chunk.contents + done);
            for (std::uint64_t i = 0; i < 16; ++i)
                i < count ? std::printf(" %02x", line[i]) : std::printf("   ");
            std::printf("  ");
            for (std::uint64_t i = 0; i < count; ++i)
                std::putchar(std::isprint(line[i]) ? line[i] : '.');
            std::printf("\n");
        }
    }
} // namespace

int main(int argc, char ** argv)
{
    Options options;
    if (!ParseOptions(argc, argv, options))
        return Usage();
    zunFastMesh<unsigned char> bytes;
    if (!LoadFile(options.path, bytes))
    {
        std::fprintf(stderr, "zunchunks: cannot read %s\n", options.path);
        return 2;
    }

    try
    {
        const zunFastMesh<unsigned char> & readOnly = bytes;
        std::unique_ptr<zunFile> file = zunFileMem::Create(readOnly);
        file->SetEndianness(options.bigEndian ? zunSystem::Big : zunSystem::Little);
        ChunkReader reader(*file, options.wideSizes);

        const std::uint64_t end = bytes.Count();
        Run top = reader.ReadRun(0, end, 0);
        if (!reader.Error().empty() || !top.error.empty())
        {
            Run block = reader.Error().empty() ? reader.ReadUserDataBlock(0, end, 0) : Run();
            if (!block.userDataBlock)
            {
                const std::string & error = reader.Error().empty() ? top.error : reader.Error();
                std::fprintf(stderr, "zunchunks: %s is malformed: %s\n", options.path, error.c_str());
                return 1;
            }
            top = std::move(block);
        }

        std::printf("%s: %" PRIu64 " bytes, %s sizes, %s-endian\n", options.path, end,
                    options.wideSizes ? "64-bit" : "32-bit", options.bigEndian ? "big" : "little");
        if (top.userDataBlock)
            std::printf("user-data block, %zu records\n", top.chunks.size());
        std::printf("    offset  depth  tag                 size\n");
        for (const Chunk & chunk : top.chunks)
            PrintChunk(reader, chunk, 0);

        if (options.hex)
        {
            const Chunk * chunk = FindChunk(top.chunks, options.hexOffset);
            if (!chunk)
            {
                std::fprintf(stderr, "zunchunks: no chunk starts at offset %" PRIu64 "\n", options.hexOffset);
                return 2;
            }
            HexDump(*file, *chunk);
        }
    }
    catch (const zunException & e)
    {
        std::fprintf(stderr, "zunchunks: reading %s failed: %s\n", options.path, e.GetDebugDescription());
        return 2;
    }
    return 0;
}
