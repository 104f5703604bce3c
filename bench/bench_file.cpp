// zunFile on disk beside the streams a user would otherwise pick: FILE * with
// fwrite/fread, std::ofstream/std::ifstream, and cereal's binary archives over
// a std::fstream, each doing the same work with the same call pattern (one
// call per value), for 10^3 to 10^7 values. Also a large Write_Block, to disk
// and to memory, beside two anchors, a plain write(2) and a memcpy of the same
// bytes, and chunk headers written and entered inside the cached block.
#include <benchmark/benchmark.h>

#include <cereal/archives/binary.hpp>
#include <cereal/types/string.hpp>

#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

#include "BenchFile.h"
#include "zunChunk.h"
#include "zunFileDisk.h"

namespace
{
    using benchfile::Fixture;

    std::unique_ptr<zunFile> OpenForWriting(const std::string & name)
    {
        return zunFileDisk::Create(zunPath(name.c_str()), zunFileDisk::ReadWrite, zunFileDisk::CreateAlways);
    }

    std::unique_ptr<zunFile> OpenForReading(const std::string & name)
    {
        return zunFileDisk::Create(zunPath(name.c_str()), zunFileDisk::Read, zunFileDisk::OpenExisting);
    }

    const char * const kShortText = "Cube.001";

    // The count of values of a sweep's step: 10^3 to 10^7.
    int Count(const benchmark::State & state)
    {
        return static_cast<int>(state.range(0));
    }

    void SetItems(benchmark::State & state)
    {
        state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
    }

    // ---- Writing 10^7 values, one call each.

    template <typename T> T ValueAt(int i)
    {
        return static_cast<T>(i) * static_cast<T>(3);
    }

    void WriteInt32_zunFile(benchmark::State & state)
    {
        Fixture f("int32");
        const int count = Count(state);
        for (auto _ : state)
        {
            auto file = OpenForWriting(f.name);
            for (int i = 0; i < count; ++i)
                file->Write_Int32(ValueAt<int>(i));
            file->Close();
        }
        SetItems(state);
    }

    template <typename T> void WriteValues_FILE(benchmark::State & state, const char * leaf)
    {
        Fixture f(leaf);
        const int count = Count(state);
        for (auto _ : state)
        {
            FILE * file = std::fopen(f.name.c_str(), "wb");
            for (int i = 0; i < count; ++i)
            {
                const T value = ValueAt<T>(i);
                std::fwrite(&value, sizeof value, 1, file);
            }
            std::fclose(file);
        }
        SetItems(state);
    }

    template <typename T> void WriteValues_ofstream(benchmark::State & state, const char * leaf)
    {
        Fixture f(leaf);
        const int count = Count(state);
        for (auto _ : state)
        {
            std::ofstream file(f.name, std::ios::binary | std::ios::trunc);
            for (int i = 0; i < count; ++i)
            {
                const T value = ValueAt<T>(i);
                file.write(reinterpret_cast<const char *>(&value), sizeof value);
            }
        }
        SetItems(state);
    }

    template <typename T> void WriteValues_cereal(benchmark::State & state, const char * leaf)
    {
        Fixture f(leaf);
        const int count = Count(state);
        for (auto _ : state)
        {
            std::ofstream file(f.name, std::ios::binary | std::ios::trunc);
            cereal::BinaryOutputArchive archive(file);
            for (int i = 0; i < count; ++i)
                archive(ValueAt<T>(i));
        }
        SetItems(state);
    }

    void WriteFloat_zunFile(benchmark::State & state)
    {
        Fixture f("float");
        const int count = Count(state);
        for (auto _ : state)
        {
            auto file = OpenForWriting(f.name);
            for (int i = 0; i < count; ++i)
                file->Write_Float(ValueAt<double>(i));
            file->Close();
        }
        SetItems(state);
    }

    // Short strings in the library's form: a 32-bit length, the bytes and a
    // terminator; the peers write the same bytes with the same calls.
    void WriteString_zunFile(benchmark::State & state)
    {
        Fixture f("string");
        const int count = Count(state);
        const zunString text(kShortText);
        for (auto _ : state)
        {
            auto file = OpenForWriting(f.name);
            for (int i = 0; i < count; ++i)
                file->Write_String(text);
            file->Close();
        }
        SetItems(state);
    }

    void WriteString_FILE(benchmark::State & state)
    {
        Fixture f("string");
        const int count = Count(state);
        const std::string text(kShortText);
        for (auto _ : state)
        {
            FILE * file = std::fopen(f.name.c_str(), "wb");
            for (int i = 0; i < count; ++i)
            {
                const std::uint32_t length = static_cast<std::uint32_t>(text.size());
                std::fwrite(&length, sizeof length, 1, file);
                std::fwrite(text.c_str(), 1, text.size() + 1, file);
            }
            std::fclose(file);
        }
        SetItems(state);
    }

    void WriteString_ofstream(benchmark::State & state)
    {
        Fixture f("string");
        const int count = Count(state);
        const std::string text(kShortText);
        for (auto _ : state)
        {
            std::ofstream file(f.name, std::ios::binary | std::ios::trunc);
            for (int i = 0; i < count; ++i)
            {
                const std::uint32_t length = static_cast<std::uint32_t>(text.size());
                file.write(reinterpret_cast<const char *>(&length), sizeof length);
                file.write(text.c_str(), static_cast<std::streamsize>(text.size() + 1));
            }
        }
        SetItems(state);
    }

    void WriteString_cereal(benchmark::State & state)
    {
        Fixture f("string");
        const int count = Count(state);
        const std::string text(kShortText);
        for (auto _ : state)
        {
            std::ofstream file(f.name, std::ios::binary | std::ios::trunc);
            cereal::BinaryOutputArchive archive(file);
            for (int i = 0; i < count; ++i)
                archive(text); // its own form: a 64-bit length and the bytes
        }
        SetItems(state);
    }

    // ---- Reading them back, one call each.

    // Writes the file that the readers of `leaf` read.
    template <typename Writer> void Prepare(const std::string & name, int count, Writer write)
    {
        auto file = OpenForWriting(name);
        for (int i = 0; i < count; ++i)
            write(*file, i);
        file->Close();
    }

    // The values as the peers write them: the host's bytes, back to back.
    template <typename T> void PrepareValues(const std::string & name, int count)
    {
        Prepare(name, count,
                [](zunFile & file, int i)
                {
                    const T value = ValueAt<T>(i);
                    file.Write_Block(&value, sizeof value);
                });
    }

    void ReadInt32_zunFile(benchmark::State & state)
    {
        Fixture f("int32_read");
        const int count = Count(state);
        Prepare(f.name, count, [](zunFile & file, int i) { file.Write_Int32(ValueAt<int>(i)); });
        for (auto _ : state)
        {
            auto file = OpenForReading(f.name);
            int value = 0;
            long sum = 0;
            for (int i = 0; i < count; ++i)
            {
                file->Read_Int32(value);
                sum += value;
            }
            benchmark::DoNotOptimize(sum);
        }
        SetItems(state);
    }

    template <typename T> void ReadValues_FILE(benchmark::State & state, const char * leaf)
    {
        Fixture f(leaf);
        const int count = Count(state);
        PrepareValues<T>(f.name, count);
        for (auto _ : state)
        {
            FILE * file = std::fopen(f.name.c_str(), "rb");
            T value{}, sum{};
            for (int i = 0; i < count; ++i)
            {
                if (std::fread(&value, sizeof value, 1, file) == 1)
                    sum += value;
            }
            std::fclose(file);
            benchmark::DoNotOptimize(sum);
        }
        SetItems(state);
    }

    template <typename T> void ReadValues_ifstream(benchmark::State & state, const char * leaf)
    {
        Fixture f(leaf);
        const int count = Count(state);
        PrepareValues<T>(f.name, count);
        for (auto _ : state)
        {
            std::ifstream file(f.name, std::ios::binary);
            T value{}, sum{};
            for (int i = 0; i < count; ++i)
            {
                file.read(reinterpret_cast<char *>(&value), sizeof value);
                sum += value;
            }
            benchmark::DoNotOptimize(sum);
        }
        SetItems(state);
    }

    template <typename T> void ReadValues_cereal(benchmark::State & state, const char * leaf)
    {
        Fixture f(leaf);
        const int count = Count(state);
        PrepareValues<T>(f.name, count);
        for (auto _ : state)
        {
            std::ifstream file(f.name, std::ios::binary);
            cereal::BinaryInputArchive archive(file);
            T value{}, sum{};
            for (int i = 0; i < count; ++i)
            {
                archive(value);
                sum += value;
            }
            benchmark::DoNotOptimize(sum);
        }
        SetItems(state);
    }

    void ReadFloat_zunFile(benchmark::State & state)
    {
        Fixture f("float_read");
        const int count = Count(state);
        Prepare(f.name, count, [](zunFile & file, int i) { file.Write_Float(ValueAt<double>(i)); });
        for (auto _ : state)
        {
            auto file = OpenForReading(f.name);
            double value = 0.0, sum = 0.0;
            for (int i = 0; i < count; ++i)
            {
                file->Read_Float(value);
                sum += value;
            }
            benchmark::DoNotOptimize(sum);
        }
        SetItems(state);
    }

    void PrepareStrings(const std::string & name, int count)
    {
        const zunString text(kShortText);
        Prepare(name, count, [&](zunFile & file, int) { file.Write_String(text); });
    }

    void ReadString_zunFile(benchmark::State & state)
    {
        Fixture f("string_read");
        const int count = Count(state);
        PrepareStrings(f.name, count);
        for (auto _ : state)
        {
            auto file = OpenForReading(f.name);
            zunString text;
            for (int i = 0; i < count; ++i)
                file->Read_String(text);
            benchmark::DoNotOptimize(text.m_pData);
        }
        SetItems(state);
    }

    void ReadString_FILE(benchmark::State & state)
    {
        Fixture f("string_read");
        const int count = Count(state);
        PrepareStrings(f.name, count);
        for (auto _ : state)
        {
            FILE * file = std::fopen(f.name.c_str(), "rb");
            std::string text;
            for (int i = 0; i < count; ++i)
            {
                std::uint32_t length = 0;
                if (std::fread(&length, sizeof length, 1, file) != 1)
                    break;
                text.resize(length);
                if (std::fread(&text[0], 1, length, file) != length)
                    break;
                std::fgetc(file); // the terminator
            }
            std::fclose(file);
            benchmark::DoNotOptimize(text.data());
        }
        SetItems(state);
    }

    void ReadString_ifstream(benchmark::State & state)
    {
        Fixture f("string_read");
        const int count = Count(state);
        PrepareStrings(f.name, count);
        for (auto _ : state)
        {
            std::ifstream file(f.name, std::ios::binary);
            std::string text;
            for (int i = 0; i < count; ++i)
            {
                std::uint32_t length = 0;
                file.read(reinterpret_cast<char *>(&length), sizeof length);
                text.resize(length);
                file.read(&text[0], length);
                file.get(); // the terminator
            }
            benchmark::DoNotOptimize(text.data());
        }
        SetItems(state);
    }

    void ReadString_cereal(benchmark::State & state)
    {
        // cereal reads its own form: written by cereal first.
        Fixture f("string_read_cereal");
        const int count = Count(state);
        {
            std::ofstream out(f.name, std::ios::binary | std::ios::trunc);
            cereal::BinaryOutputArchive archive(out);
            const std::string text(kShortText);
            for (int i = 0; i < count; ++i)
                archive(text);
        }
        for (auto _ : state)
        {
            std::ifstream file(f.name, std::ios::binary);
            cereal::BinaryInputArchive archive(file);
            std::string text;
            for (int i = 0; i < count; ++i)
                archive(text);
            benchmark::DoNotOptimize(text.data());
        }
        SetItems(state);
    }

    // ---- Large blocks: Write_Block of 64 MiB beside write(2) of the same bytes.

    constexpr std::size_t kLargeBlock = 64u << 20;

    void WriteLargeBlock_zunFile(benchmark::State & state)
    {
        Fixture f("large");
        const std::vector<unsigned char> data(kLargeBlock, 0x5A);
        for (auto _ : state)
        {
            auto file = OpenForWriting(f.name);
            file->Write_Block(data.data(), data.size());
            file->Close();
        }
        state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(kLargeBlock));
    }

    void WriteLargeBlock_write(benchmark::State & state)
    {
        Fixture f("large");
        const std::vector<unsigned char> data(kLargeBlock, 0x5A);
        for (auto _ : state)
        {
            const int fd = open(f.name.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0666);
            std::size_t done = 0;
            while (done < data.size())
            {
                const ssize_t n = write(fd, data.data() + done, data.size() - done);
                if (n <= 0)
                    break;
                done += static_cast<std::size_t>(n);
            }
            close(fd);
        }
        state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(kLargeBlock));
    }

    // The same Write_Block into a memory stream over an array that already
    // holds as many bytes, so that it overwrites them as the memcpy does.
    void WriteLargeBlock_zunFileMem(benchmark::State & state)
    {
        const std::vector<unsigned char> data(kLargeBlock, 0x5A);
        zunFastMesh<unsigned char> bytes;
        bytes.SetCount(static_cast<unsigned int>(kLargeBlock), true);
        for (auto _ : state)
        {
            auto file = zunFileMem::Create(bytes);
            file->Write_Block(data.data(), data.size());
            file->Close();
            benchmark::DoNotOptimize(bytes.Data());
        }
        state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(kLargeBlock));
    }

    // The memory anchor: the same bytes copied into a block already touched,
    // the least any write of them can cost.
    void WriteLargeBlock_memcpy(benchmark::State & state)
    {
        const std::vector<unsigned char> data(kLargeBlock, 0x5A);
        std::vector<unsigned char> target(kLargeBlock, 0);
        for (auto _ : state)
        {
            std::memcpy(target.data(), data.data(), data.size());
            benchmark::DoNotOptimize(target.data());
            benchmark::ClobberMemory();
        }
        state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(kLargeBlock));
    }

    // ---- Chunks: a header written and patched, and entered and left, inside
    // ---- the cached block (no storage call), beside a plain pair of values.

    constexpr int kChunks = 1000;

    void ChunkCreateClose_zunFile(benchmark::State & state)
    {
        Fixture f("chunks");
        auto file = OpenForWriting(f.name);
        for (auto _ : state)
        {
            file->SetCurrPos(0, zunFile::FromStart);
            for (int i = 0; i < kChunks; ++i)
            {
                zunChunk chunk(file.get());
                chunk.Create(0x454E4353);
                file->Write_Int32(i);
                chunk.Close();
            }
        }
        file->Close();
        state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kChunks);
    }

    void ChunkDescendAscend_zunFile(benchmark::State & state)
    {
        Fixture f("chunks_read");
        {
            auto file = OpenForWriting(f.name);
            for (int i = 0; i < kChunks; ++i)
            {
                zunChunk chunk(file.get());
                chunk.Create(0x454E4353);
                file->Write_Int32(i);
                chunk.Close();
            }
            file->Close();
        }
        auto file = OpenForReading(f.name);
        for (auto _ : state)
        {
            file->SetCurrPos(0, zunFile::FromStart);
            long sum = 0;
            for (int i = 0; i < kChunks; ++i)
            {
                zunChunk chunk(file.get());
                chunk.Descend();
                int value = 0;
                file->Read_Int32(value);
                sum += value;
                chunk.Ascend();
            }
            benchmark::DoNotOptimize(sum);
        }
        state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kChunks);
    }
}

// The value and string rows run over 10^3 to 10^7 values. A peer's value rows
// are one template of its own, registered under the names the report pairs.
namespace
{
    benchmark::internal::Benchmark * Sweep(benchmark::internal::Benchmark * rows)
    {
        return rows->RangeMultiplier(10)->Range(1000, 10000000)->Unit(benchmark::kMillisecond);
    }

    const bool g_sweepsRegistered = []
    {
        Sweep(benchmark::RegisterBenchmark("WriteInt32_zunFile", WriteInt32_zunFile));
        Sweep(benchmark::RegisterBenchmark("WriteInt32_FILE", WriteValues_FILE<std::int32_t>, "int32"));
        Sweep(benchmark::RegisterBenchmark("WriteInt32_ofstream", WriteValues_ofstream<std::int32_t>, "int32"));
        Sweep(benchmark::RegisterBenchmark("WriteInt32_cereal", WriteValues_cereal<std::int32_t>, "int32"));
        Sweep(benchmark::RegisterBenchmark("WriteFloat_zunFile", WriteFloat_zunFile));
        Sweep(benchmark::RegisterBenchmark("WriteFloat_FILE", WriteValues_FILE<double>, "float"));
        Sweep(benchmark::RegisterBenchmark("WriteFloat_ofstream", WriteValues_ofstream<double>, "float"));
        Sweep(benchmark::RegisterBenchmark("WriteFloat_cereal", WriteValues_cereal<double>, "float"));
        Sweep(benchmark::RegisterBenchmark("WriteString_zunFile", WriteString_zunFile));
        Sweep(benchmark::RegisterBenchmark("WriteString_FILE", WriteString_FILE));
        Sweep(benchmark::RegisterBenchmark("WriteString_ofstream", WriteString_ofstream));
        Sweep(benchmark::RegisterBenchmark("WriteString_cereal", WriteString_cereal));
        Sweep(benchmark::RegisterBenchmark("ReadInt32_zunFile", ReadInt32_zunFile));
        Sweep(benchmark::RegisterBenchmark("ReadInt32_FILE", ReadValues_FILE<std::int32_t>, "int32_read"));
        Sweep(benchmark::RegisterBenchmark("ReadInt32_ifstream", ReadValues_ifstream<std::int32_t>, "int32_read"));
        Sweep(benchmark::RegisterBenchmark("ReadInt32_cereal", ReadValues_cereal<std::int32_t>, "int32_read"));
        Sweep(benchmark::RegisterBenchmark("ReadFloat_zunFile", ReadFloat_zunFile));
        Sweep(benchmark::RegisterBenchmark("ReadFloat_FILE", ReadValues_FILE<double>, "float_read"));
        Sweep(benchmark::RegisterBenchmark("ReadFloat_ifstream", ReadValues_ifstream<double>, "float_read"));
        Sweep(benchmark::RegisterBenchmark("ReadFloat_cereal", ReadValues_cereal<double>, "float_read"));
        Sweep(benchmark::RegisterBenchmark("ReadString_zunFile", ReadString_zunFile));
        Sweep(benchmark::RegisterBenchmark("ReadString_FILE", ReadString_FILE));
        Sweep(benchmark::RegisterBenchmark("ReadString_ifstream", ReadString_ifstream));
        Sweep(benchmark::RegisterBenchmark("ReadString_cereal", ReadString_cereal));
        return true;
    }();
}

BENCHMARK(WriteLargeBlock_zunFile)->Unit(benchmark::kMillisecond);
BENCHMARK(WriteLargeBlock_write)->Unit(benchmark::kMillisecond);
BENCHMARK(WriteLargeBlock_zunFileMem)->Unit(benchmark::kMillisecond);
BENCHMARK(WriteLargeBlock_memcpy)->Unit(benchmark::kMillisecond);
BENCHMARK(ChunkCreateClose_zunFile);
BENCHMARK(ChunkDescendAscend_zunFile);
