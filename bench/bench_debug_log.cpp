// The debug log and the release log beside what a caller would write by hand.
//
// A debug log message whose tag is not listed must cost the tag test and no
// formatting: it runs beside a plain snprintf of the same message. The release
// log opens, appends and closes its file at every message: it runs beside the
// same pattern written with fopen and fprintf, and beside fprintf to a file
// kept open.
#include <benchmark/benchmark.h>

#include <zunFoundation.h>

#include <unistd.h>

#include <cstdio>
#include <string>

namespace
{
    std::string ScratchFile(const char * name)
    {
        return "/tmp/zun_bench_" + std::to_string(getpid()) + "_" + name;
    }
}

static void DebugLog_FilteredOut(benchmark::State & state)
{
    // No tag file lists this tag, so nothing is formatted or sent.
    for (auto _ : state)
        zunDebugLog("bench,not listed", "frame %u took %.3f ms in %s\n", 42u, 16.667, "render");
}
BENCHMARK(DebugLog_FilteredOut);

static void Snprintf_SameMessage(benchmark::State & state)
{
    char text[128];
    for (auto _ : state)
    {
        std::snprintf(text, sizeof(text), "frame %u took %.3f ms in %s\n", 42u, 16.667, "render");
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(Snprintf_SameMessage);

static void ReleaseLog_Append(benchmark::State & state)
{
    const std::string file = ScratchFile("release.log");
    zunSetReleaseLogFile(zunPath(file.c_str()));
    for (auto _ : state)
        zunReleaseLog("frame %u took %.3f ms\n", 42u, 16.667);
    std::remove(file.c_str());
}
BENCHMARK(ReleaseLog_Append);

static void Fopen_AppendClose(benchmark::State & state)
{
    const std::string file = ScratchFile("fopen.log");
    for (auto _ : state)
    {
        FILE * stream = std::fopen(file.c_str(), "a+");
        if (stream == nullptr)
        {
            state.SkipWithError("the scratch file does not open");
            break;
        }
        std::fprintf(stream, "frame %u took %.3f ms\n", 42u, 16.667);
        std::fclose(stream);
    }
    std::remove(file.c_str());
}
BENCHMARK(Fopen_AppendClose);

static void Fprintf_KeptOpen(benchmark::State & state)
{
    const std::string file = ScratchFile("open.log");
    FILE * stream = std::fopen(file.c_str(), "a+");
    if (stream == nullptr)
        return state.SkipWithError("the scratch file does not open");
    for (auto _ : state)
        std::fprintf(stream, "frame %u took %.3f ms\n", 42u, 16.667);
    std::fclose(stream);
    std::remove(file.c_str());
}
BENCHMARK(Fprintf_KeptOpen);
