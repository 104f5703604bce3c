// Chunked documents beside what a user would otherwise write: a document
// chunk holding 10^5 small chunks of three values each, written and walked,
// on disk and in memory. The peer is a plain FILE * writer that writes each
// tag and a size placeholder, the body, and then patches the size with
// ftell/fseek, and a reader that walks the size fields, reading the first
// value of each chunk and seeking over the rest. On disk the peer is fopen;
// in memory it is open_memstream for writing and fmemopen for reading.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <unistd.h>

#include "BenchFile.h"
#include "zunChunk.h"
#include "zunFileDisk.h"

namespace
{
    constexpr int kItems = 100000;
    constexpr unsigned int kDocumentTag = 0x55434F44; // "DOCU"
    constexpr unsigned int kItemTag = 0x4D455449;     // "ITEM"

    enum Storage
    {
        Disk,
        Memory
    };

    using benchfile::Fixture;

    void SetItems(benchmark::State & state)
    {
        state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kItems);
    }

    // ---- The library: zunChunk over a disk or a memory stream.

    void WriteDocument(zunFile * file)
    {
        zunChunk document(file);
        document.Create(kDocumentTag);
        for (int i = 0; i < kItems; ++i)
        {
            zunChunk item(file);
            item.Create(kItemTag);
            file->Write_Int32(i);
            file->Write_FloatSP(0.5f * static_cast<float>(i));
            file->Write_Int32(-i);
            item.Close();
        }
        document.Close();
    }

    // Reads the first value of every chunk and skips the others.
    long WalkDocument(zunFile * file)
    {
        long sum = 0;
        zunChunk document(file);
        document.Descend();
        while (!file->IsLimitReached())
        {
            zunChunk item(file);
            item.Descend();
            if (item.GetFCC() == kItemTag)
            {
                int value = 0;
                file->Read_Int32(value);
                sum += value;
            }
            item.Ascend();
        }
        document.Ascend();
        return sum;
    }

    void Write_zunFile(benchmark::State & state, Storage storage)
    {
        Fixture f("write");
        zunFastMesh<unsigned char> bytes;
        for (auto _ : state)
        {
            std::unique_ptr<zunFile> file;
            if (storage == Disk)
                file = zunFileDisk::Create(zunPath(f.name.c_str()), zunFileDisk::ReadWrite, zunFileDisk::CreateAlways);
            else
            {
                bytes.Clear(); // a new document in a new array, as the peer's stream makes
                file = zunFileMem::Create(bytes);
            }
            WriteDocument(file.get());
            file->Close();
        }
        SetItems(state);
    }

    void Walk_zunFile(benchmark::State & state, Storage storage)
    {
        Fixture f("walk");
        zunFastMesh<unsigned char> bytes;
        {
            auto file = storage == Disk ? zunFileDisk::Create(zunPath(f.name.c_str()), zunFileDisk::ReadWrite,
                                                              zunFileDisk::CreateAlways)
                                        : zunFileMem::Create(bytes);
            WriteDocument(file.get());
            file->Close();
        }
        const zunFastMesh<unsigned char> & document = bytes;
        for (auto _ : state)
        {
            auto file = storage == Disk
                            ? zunFileDisk::Create(zunPath(f.name.c_str()), zunFileDisk::Read, zunFileDisk::OpenExisting)
                            : zunFileMem::Create(document);
            benchmark::DoNotOptimize(WalkDocument(file.get()));
            file->Close();
        }
        SetItems(state);
    }

    // ---- The peer: a FILE * with size fields patched by ftell and fseek.

    // Writes a tag and a size placeholder; gives the placeholder's position.
    long OpenRecord(std::FILE * file, std::uint32_t tag)
    {
        const std::uint32_t placeholder = 0;
        std::fwrite(&tag, sizeof(tag), 1, file);
        const long sizeAt = std::ftell(file);
        std::fwrite(&placeholder, sizeof(placeholder), 1, file);
        return sizeAt;
    }

    // Patches the size at `sizeAt` to the bytes written behind it, and comes back.
    void CloseRecord(std::FILE * file, long sizeAt)
    {
        const long end = std::ftell(file);
        const auto size = static_cast<std::uint32_t>(end - sizeAt - 4);
        std::fseek(file, sizeAt, SEEK_SET);
        std::fwrite(&size, sizeof(size), 1, file);
        std::fseek(file, end, SEEK_SET);
    }

    void WritePlainDocument(std::FILE * file)
    {
        const long document = OpenRecord(file, kDocumentTag);
        for (int i = 0; i < kItems; ++i)
        {
            const long item = OpenRecord(file, kItemTag);
            const int first = i, last = -i;
            const float middle = 0.5f * static_cast<float>(i);
            std::fwrite(&first, sizeof(first), 1, file);
            std::fwrite(&middle, sizeof(middle), 1, file);
            std::fwrite(&last, sizeof(last), 1, file);
            CloseRecord(file, item);
        }
        CloseRecord(file, document);
    }

    long WalkPlainDocument(std::FILE * file)
    {
        long sum = 0;
        std::uint32_t header[2];
        if (std::fread(header, sizeof(header), 1, file) != 1)
            return 0;
        const long end = std::ftell(file) + static_cast<long>(header[1]);
        while (std::ftell(file) < end && std::fread(header, sizeof(header), 1, file) == 1)
        {
            long skip = static_cast<long>(header[1]);
            int value = 0;
            if (header[0] == kItemTag && skip >= 4 && std::fread(&value, sizeof(value), 1, file) == 1)
            {
                sum += value;
                skip -= 4;
            }
            std::fseek(file, skip, SEEK_CUR);
        }
        std::fseek(file, end, SEEK_SET);
        return sum;
    }

    void Write_FILE(benchmark::State & state, Storage storage)
    {
        Fixture f("write_plain");
        for (auto _ : state)
        {
            char * buffer = nullptr;
            std::size_t size = 0;
            std::FILE * file = storage == Disk ? std::fopen(f.name.c_str(), "wb") : open_memstream(&buffer, &size);
            WritePlainDocument(file);
            std::fclose(file);
            benchmark::DoNotOptimize(buffer);
            std::free(buffer);
        }
        SetItems(state);
    }

    void Walk_FILE(benchmark::State & state, Storage storage)
    {
        Fixture f("walk_plain");
        char * buffer = nullptr;
        std::size_t size = 0;
        std::FILE * out = storage == Disk ? std::fopen(f.name.c_str(), "wb") : open_memstream(&buffer, &size);
        WritePlainDocument(out);
        std::fclose(out);
        for (auto _ : state)
        {
            std::FILE * file = storage == Disk ? std::fopen(f.name.c_str(), "rb") : fmemopen(buffer, size, "rb");
            benchmark::DoNotOptimize(WalkPlainDocument(file));
            std::fclose(file);
        }
        std::free(buffer);
        SetItems(state);
    }
}

BENCHMARK_CAPTURE(Write_zunFile, disk, Disk)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Write_FILE, disk, Disk)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Write_zunFile, memory, Memory)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Write_FILE, memory, Memory)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Walk_zunFile, disk, Disk)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Walk_FILE, disk, Disk)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Walk_zunFile, memory, Memory)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Walk_FILE, memory, Memory)->Unit(benchmark::kMillisecond);
