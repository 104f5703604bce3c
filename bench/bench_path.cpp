// zunPath beside std::filesystem::path on the same jobs: a path built from
// text and brought into its normal form, the last name taken out, a name
// appended, and a path made relative to a folder above it.
//
// The two normal forms differ in detail (zunPath turns slashes into its
// backslash and folds runs of separators, lexically_normal folds runs and
// resolves "." and ".."); both read the whole text once and build one new one.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

#include "zunPath.h"

namespace
{
    const char * const kShort = "/home/user/scene.kelp";
    const char * const kLong = "/home/user//projects/kelp/scenes/forest//textures/bark/diffuse_4096_srgb.png";
    const char * const kFolder = "/home/user/projects/kelp";

    const char * Text(const benchmark::State & state)
    {
        return state.range(0) == 0 ? kShort : kLong;
    }

    void zunPath_Construct(benchmark::State & state)
    {
        const char * text = Text(state);
        for (auto _ : state)
        {
            zunPath path(text);
            benchmark::DoNotOptimize(path.WinRepresentation().m_pData);
        }
    }

    void stdfs_Construct(benchmark::State & state)
    {
        const char * text = Text(state);
        for (auto _ : state)
        {
            std::filesystem::path path = std::filesystem::path(text).lexically_normal();
            benchmark::DoNotOptimize(path.native().data());
        }
    }

    void zunPath_LastComponent(benchmark::State & state)
    {
        const zunPath path(Text(state));
        for (auto _ : state)
        {
            zunString name = path.GetLastComponent(zunPath::WithExtension);
            benchmark::DoNotOptimize(name.m_pData);
        }
    }

    void stdfs_LastComponent(benchmark::State & state)
    {
        const std::filesystem::path path = std::filesystem::path(Text(state)).lexically_normal();
        for (auto _ : state)
        {
            std::string name = path.filename().string();
            benchmark::DoNotOptimize(name.data());
        }
    }

    void zunPath_Append(benchmark::State & state)
    {
        const zunPath folder(Text(state));
        const zunPath name("textures");
        for (auto _ : state)
        {
            zunPath path(folder);
            path += name;
            benchmark::DoNotOptimize(path.WinRepresentation().m_pData);
        }
    }

    void stdfs_Append(benchmark::State & state)
    {
        const std::filesystem::path folder = std::filesystem::path(Text(state)).lexically_normal();
        const std::filesystem::path name("textures");
        for (auto _ : state)
        {
            std::filesystem::path path(folder);
            path /= name;
            benchmark::DoNotOptimize(path.native().data());
        }
    }

    void zunPath_MakeRelative(benchmark::State & state)
    {
        const zunPath path(kLong);
        const zunPath base(kFolder);
        for (auto _ : state)
        {
            zunPath relative(path);
            relative.MakeRelativePath(base);
            benchmark::DoNotOptimize(relative.WinRepresentation().m_pData);
        }
    }

    void stdfs_MakeRelative(benchmark::State & state)
    {
        const std::filesystem::path path = std::filesystem::path(kLong).lexically_normal();
        const std::filesystem::path base(kFolder);
        for (auto _ : state)
        {
            std::filesystem::path relative = path.lexically_relative(base);
            benchmark::DoNotOptimize(relative.native().data());
        }
    }
}

// Argument 0: a short path of three names; 1: a long one of ten with doubled separators.
BENCHMARK(zunPath_Construct)->Arg(0)->Arg(1);
BENCHMARK(stdfs_Construct)->Arg(0)->Arg(1);
BENCHMARK(zunPath_LastComponent)->Arg(0)->Arg(1);
BENCHMARK(stdfs_LastComponent)->Arg(0)->Arg(1);
BENCHMARK(zunPath_Append)->Arg(0)->Arg(1);
BENCHMARK(stdfs_Append)->Arg(0)->Arg(1);
BENCHMARK(zunPath_MakeRelative);
BENCHMARK(stdfs_MakeRelative);
