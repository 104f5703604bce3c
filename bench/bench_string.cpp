// zunString beside std::string: assignment, appending (one allocation and a
// full copy per append in zunString, by design: it has no capacity), equality
// of equal and of unequal texts, and formatting. The wide string beside
// std::u16string for assignment and formatting.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include "zunString.h"

namespace
{
    std::string Sample(std::size_t length, char last)
    {
        std::string text;
        for (std::size_t i = 0; i + 1 < length; ++i)
            text.push_back(static_cast<char>('a' + i % 26));
        text.push_back(last);
        return text;
    }

    void Assign_zunString(benchmark::State & state)
    {
        const std::string text = Sample(static_cast<std::size_t>(state.range(0)), 'z');
        zunString s;
        for (auto _ : state)
        {
            s = text.c_str();
            benchmark::DoNotOptimize(s.m_pData);
        }
        state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
    }

    void Assign_stdString(benchmark::State & state)
    {
        const std::string text = Sample(static_cast<std::size_t>(state.range(0)), 'z');
        for (auto _ : state)
        {
            std::string s; // a fresh string, as zunString takes a fresh block each time
            s = text.c_str();
            benchmark::DoNotOptimize(s.data());
        }
        state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
    }

    void Assign_zunStringW_FromUtf8(benchmark::State & state)
    {
        const std::string text = Sample(static_cast<std::size_t>(state.range(0)), 'z');
        zunStringW s;
        for (auto _ : state)
        {
            s = text.c_str();
            benchmark::DoNotOptimize(s.m_pData);
        }
        state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
    }

    // Appends `range` pieces of 8 bytes to an empty string.
    void Append_zunString(benchmark::State & state)
    {
        for (auto _ : state)
        {
            zunString s;
            for (int64_t i = 0; i < state.range(0); ++i)
                s << "01234567";
            benchmark::DoNotOptimize(s.m_pData);
        }
    }

    void Append_stdString(benchmark::State & state)
    {
        for (auto _ : state)
        {
            std::string s;
            for (int64_t i = 0; i < state.range(0); ++i)
                s += "01234567";
            benchmark::DoNotOptimize(s.data());
        }
    }

    void CompareEqual_zunString(benchmark::State & state)
    {
        const std::string text = Sample(static_cast<std::size_t>(state.range(0)), 'z');
        const zunString a(text.c_str()), b(text.c_str());
        for (auto _ : state)
            benchmark::DoNotOptimize(a == b);
    }

    void CompareEqual_stdString(benchmark::State & state)
    {
        const std::string a = Sample(static_cast<std::size_t>(state.range(0)), 'z'), b = a;
        for (auto _ : state)
            benchmark::DoNotOptimize(a == b);
    }

    // Texts that differ in the last byte only: the checksum decides at once.
    void CompareUnequal_zunString(benchmark::State & state)
    {
        const zunString a(Sample(static_cast<std::size_t>(state.range(0)), 'y').c_str());
        const zunString b(Sample(static_cast<std::size_t>(state.range(0)), 'z').c_str());
        for (auto _ : state)
            benchmark::DoNotOptimize(a == b);
    }

    void CompareUnequal_stdString(benchmark::State & state)
    {
        const std::string a = Sample(static_cast<std::size_t>(state.range(0)), 'y');
        const std::string b = Sample(static_cast<std::size_t>(state.range(0)), 'z');
        for (auto _ : state)
            benchmark::DoNotOptimize(a == b);
    }

    void Printf_zunString(benchmark::State & state)
    {
        zunString s;
        int i = 0;
        for (auto _ : state)
        {
            ++i;
            s.Printf("%s #%d at %.3f", "item", i, 1.5 * i);
            benchmark::DoNotOptimize(s.m_pData);
        }
    }

    void Printf_stdString(benchmark::State & state)
    {
        int i = 0;
        for (auto _ : state)
        {
            // The same two passes: size, then format into an exact string.
            ++i;
            const int length = std::snprintf(nullptr, 0, "%s #%d at %.3f", "item", i, 1.5 * i);
            std::string s(static_cast<std::size_t>(length), '\0');
            std::snprintf(s.data(), s.size() + 1, "%s #%d at %.3f", "item", i, 1.5 * i);
            benchmark::DoNotOptimize(s.data());
        }
    }

    void Printf_zunStringW(benchmark::State & state)
    {
        zunStringW s;
        int i = 0;
        for (auto _ : state)
        {
            ++i;
            s.Printf(ZUN_W("%s #%d at %.3f"), ZUN_W("item"), i, 1.5 * i);
            benchmark::DoNotOptimize(s.m_pData);
        }
    }

    void Printf_stdU16StringViaNarrow(benchmark::State & state)
    {
        // What a caller without a 16-bit formatter writes: format narrow, widen.
        int i = 0;
        for (auto _ : state)
        {
            ++i;
            char buffer[64];
            const int length = std::snprintf(buffer, sizeof(buffer), "%s #%d at %.3f", "item", i, 1.5 * i);
            std::u16string s(buffer, buffer + length);
            benchmark::DoNotOptimize(s.data());
        }
    }
}

BENCHMARK(Assign_zunString)->Arg(16)->Arg(256)->Arg(4096);
BENCHMARK(Assign_stdString)->Arg(16)->Arg(256)->Arg(4096);
BENCHMARK(Assign_zunStringW_FromUtf8)->Arg(16)->Arg(256)->Arg(4096);
BENCHMARK(Append_zunString)->Arg(16)->Arg(256)->Arg(2048);
BENCHMARK(Append_stdString)->Arg(16)->Arg(256)->Arg(2048);
BENCHMARK(CompareEqual_zunString)->Arg(16)->Arg(4096);
BENCHMARK(CompareEqual_stdString)->Arg(16)->Arg(4096);
BENCHMARK(CompareUnequal_zunString)->Arg(16)->Arg(4096);
BENCHMARK(CompareUnequal_stdString)->Arg(16)->Arg(4096);
BENCHMARK(Printf_zunString);
BENCHMARK(Printf_stdString);
BENCHMARK(Printf_zunStringW);
BENCHMARK(Printf_stdU16StringViaNarrow);
