// Settings files beside the INI readers a user would otherwise pick: reading
// a file of 1,000 to 100,000 lines (inih's callback parser, its map-building
// reader, and SimpleIni), and reading it, changing 100 values and writing it
// back with its comments (SimpleIni). Each side reads the same file from the
// disk; the 10,000-line file is the size of a large application's settings.
#include <benchmark/benchmark.h>

#include <INIReader.h>
// Bytes as they stand, as the library keeps them: no UTF-8 checks.
#define SI_NO_CONVERSION
#include <SimpleIni.h>
#include <ini.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "BenchFile.h"
#include "zunSimpleSettings.h"

namespace
{
    constexpr int kKeysPerSection = 22;
    constexpr int kLinesPerSection = kKeysPerSection + 3;
    constexpr int kChanges = 100;

    // Sections of 25 lines: a header, a comment, 22 keys of mixed kinds
    // (numbers, words, quoted texts with comments behind them), a blank line.
    void WriteSettingsFile(const std::string & path, int lines)
    {
        std::ofstream out(path);
        for (int s = 0; s < lines / kLinesPerSection; ++s)
        {
            out << "[Section" << s << "]\n; settings of part " << s << " of the scene\n";
            for (int k = 0; k < kKeysPerSection; ++k)
            {
                switch (k % 3)
                {
                case 0:
                    out << "Number" << k << "=" << s * 1000 + k << "\n";
                    break;
                case 1:
                    out << "Ratio" << k << " = " << (s + k) * 0.125 << "\n";
                    break;
                default:
                    out << "Name" << k << "='model " << s << "/" << k << ".obj' ; last used\n";
                    break;
                }
            }
            out << "\n";
        }
    }

    // The file of `lines` lines, made once; the files go when the program ends.
    std::map<int, std::unique_ptr<benchfile::Fixture>> g_files, g_copies;

    const std::string & File(int lines)
    {
        std::unique_ptr<benchfile::Fixture> & file = g_files[lines];
        if (!file)
        {
            file = std::make_unique<benchfile::Fixture>(("settings_" + std::to_string(lines) + ".ini").c_str());
            WriteSettingsFile(file->name, lines);
        }
        return file->name;
    }

    std::int64_t FileBytes(const std::string & path)
    {
        std::ifstream in(path, std::ios::binary | std::ios::ate);
        return static_cast<std::int64_t>(in.tellg());
    }

    // The rewrites go to a copy, so every run starts from the same file.
    std::string CopyOfFile(int lines)
    {
        std::unique_ptr<benchfile::Fixture> & copy = g_copies[lines];
        if (!copy)
            copy = std::make_unique<benchfile::Fixture>(("settings_" + std::to_string(lines) + ".copy.ini").c_str());
        std::ifstream in(File(lines), std::ios::binary);
        std::ofstream(copy->name, std::ios::binary) << in.rdbuf();
        return copy->name;
    }

    // The sections and keys that the changing runs set: 100 spread over the file.
    struct Change
    {
        std::string section, key;
    };
    std::vector<Change> Changes(int lines)
    {
        std::vector<Change> list;
        list.reserve(kChanges);
        const int sections = lines / kLinesPerSection;
        for (int i = 0; i < kChanges; ++i)
            list.push_back(
                {"Section" + std::to_string(i * sections / kChanges), "Number" + std::to_string((i % 8) * 3)});
        return list;
    }

    // The last section's last number, which every reader is asked for.
    std::string LastSection(int lines)
    {
        return "Section" + std::to_string(lines / kLinesPerSection - 1);
    }

    void Finish(benchmark::State & state, const std::string & path)
    {
        state.SetBytesProcessed(state.iterations() * FileBytes(path));
    }

    void Zun_Read(benchmark::State & state)
    {
        const int lines = static_cast<int>(state.range(0));
        const zunPath path(File(lines).c_str());
        const std::string last = LastSection(lines);
        // Unmanaged: read anew each time; WriteThrough: closing writes nothing.
        const zunFlags<zunSimpleSettingsManager::OpenModeFlag, 2> flags =
            zunFlags<zunSimpleSettingsManager::OpenModeFlag, 2>(zunSimpleSettingsManager::Unmanaged) |
            zunSimpleSettingsManager::WriteThrough;
        for (auto _ : state)
        {
            auto opened = zunSimpleSettingsManager::Get().OpenSettings(path, flags);
            benchmark::DoNotOptimize(opened.first->GetInt(last.c_str(), "Number21", 0));
        }
        Finish(state, File(lines));
    }

    int CountEntry(void * count, const char *, const char *, const char *)
    {
        ++*static_cast<int *>(count);
        return 1;
    }

    // inih's parser hands each entry to a callback and keeps nothing.
    void Inih_Read(benchmark::State & state)
    {
        const std::string & file = File(static_cast<int>(state.range(0)));
        for (auto _ : state)
        {
            int count = 0;
            ini_parse(file.c_str(), CountEntry, &count);
            benchmark::DoNotOptimize(count);
        }
        Finish(state, file);
    }

    // inih's reader keeps the values in a map that can be asked.
    void InihReader_Read(benchmark::State & state)
    {
        const int lines = static_cast<int>(state.range(0));
        const std::string last = LastSection(lines);
        for (auto _ : state)
        {
            INIReader reader(File(lines));
            benchmark::DoNotOptimize(reader.GetInteger(last, "Number21", 0));
        }
        Finish(state, File(lines));
    }

    void SimpleIni_Read(benchmark::State & state)
    {
        const int lines = static_cast<int>(state.range(0));
        const std::string last = LastSection(lines);
        for (auto _ : state)
        {
            CSimpleIniA ini;
            ini.LoadFile(File(lines).c_str());
            benchmark::DoNotOptimize(ini.GetLongValue(last.c_str(), "Number21", 0));
        }
        Finish(state, File(lines));
    }

    void Zun_ReadChangeWrite(benchmark::State & state)
    {
        const int lines = static_cast<int>(state.range(0));
        const std::string copy = CopyOfFile(lines);
        const std::vector<Change> changes = Changes(lines);
        const zunPath path(copy.c_str());
        const zunFlags<zunSimpleSettingsManager::OpenModeFlag, 2> flags(zunSimpleSettingsManager::Unmanaged);
        int round = 0;
        for (auto _ : state)
        {
            auto opened = zunSimpleSettingsManager::Get().OpenSettings(path, flags);
            for (const Change & change : changes)
                opened.first->SetInt(change.section.c_str(), change.key.c_str(), ++round);
        } // closing writes the file
        Finish(state, copy);
    }

    void SimpleIni_ReadChangeWrite(benchmark::State & state)
    {
        const int lines = static_cast<int>(state.range(0));
        const std::string copy = CopyOfFile(lines);
        const std::vector<Change> changes = Changes(lines);
        int round = 0;
        for (auto _ : state)
        {
            CSimpleIniA ini;
            ini.LoadFile(copy.c_str());
            for (const Change & change : changes)
                ini.SetLongValue(change.section.c_str(), change.key.c_str(), ++round);
            ini.SaveFile(copy.c_str());
        }
        Finish(state, copy);
    }
}

// Files of 1,000, 10,000 and 100,000 lines.
#define ZUN_SETTINGS_BENCHMARK(name) BENCHMARK(name)->Unit(benchmark::kMicrosecond)->Arg(1000)->Arg(10000)->Arg(100000)

ZUN_SETTINGS_BENCHMARK(Zun_Read);
ZUN_SETTINGS_BENCHMARK(Inih_Read);
ZUN_SETTINGS_BENCHMARK(InihReader_Read);
ZUN_SETTINGS_BENCHMARK(SimpleIni_Read);
ZUN_SETTINGS_BENCHMARK(Zun_ReadChangeWrite);
ZUN_SETTINGS_BENCHMARK(SimpleIni_ReadChangeWrite);
