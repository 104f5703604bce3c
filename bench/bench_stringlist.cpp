// The packed string list beside std::vector<std::string>: building a list of
// short names one by one, and finding a name by linear search. The texts are
// made ahead in the form each side takes them (zunString, std::string), so
// only the list work is timed.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "zunStringList.h"

namespace
{
    // Names like the ones lists hold: path components, settings keys, tags.
    std::vector<std::string> Names(std::int64_t count)
    {
        std::vector<std::string> names;
        for (std::int64_t i = 0; i < count; ++i)
        {
            char name[32];
            std::snprintf(name, sizeof name, "component_%05lld", static_cast<long long>(i));
            names.emplace_back(name);
        }
        return names;
    }

    void ListBuild(benchmark::State & state)
    {
        const std::vector<std::string> names = Names(state.range(0));
        std::vector<zunString> texts;
        texts.reserve(names.size());
        for (const std::string & name : names)
            texts.emplace_back(name.c_str());
        for (auto _ : state)
        {
            zunStringList list;
            for (const zunString & text : texts)
                list.Insert(text, 0xFFFFFFFFu);
            benchmark::DoNotOptimize(list);
        }
        state.SetItemsProcessed(state.iterations() * state.range(0));
    }

    void VectorBuild(benchmark::State & state)
    {
        const std::vector<std::string> names = Names(state.range(0));
        for (auto _ : state)
        {
            std::vector<std::string> list; // grown as it goes, as the library's list is
            for (const std::string & name : names)
                list.push_back(name); // NOLINT(performance-inefficient-vector-operation)
            benchmark::DoNotOptimize(list.data());
        }
        state.SetItemsProcessed(state.iterations() * state.range(0));
    }

    // Finds the last name: a walk over the whole list.
    void ListFind(benchmark::State & state)
    {
        const std::vector<std::string> names = Names(state.range(0));
        zunStringList list;
        for (const std::string & name : names)
            list.Insert(name.c_str(), 0xFFFFFFFFu);
        const std::string & wanted = names.back();
        for (auto _ : state)
            benchmark::DoNotOptimize(list.Find(wanted.c_str()));
        state.SetItemsProcessed(state.iterations() * state.range(0));
    }

    void VectorFind(benchmark::State & state)
    {
        const std::vector<std::string> names = Names(state.range(0));
        const std::string wanted = names.back();
        for (auto _ : state)
            benchmark::DoNotOptimize(std::find(names.begin(), names.end(), wanted));
        state.SetItemsProcessed(state.iterations() * state.range(0));
    }
}

BENCHMARK(ListBuild)->Arg(16)->Arg(1000)->Arg(100000);
BENCHMARK(VectorBuild)->Arg(16)->Arg(1000)->Arg(100000);
BENCHMARK(ListFind)->Arg(16)->Arg(1000)->Arg(100000);
BENCHMARK(VectorFind)->Arg(16)->Arg(1000)->Arg(100000);
