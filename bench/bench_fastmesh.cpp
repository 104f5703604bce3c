// The growable array beside std::vector: appends one by one, range inserts,
// removals from the front and the middle, and a read-only walk, on plain
// element types of 4, 8 and 32 bytes. Neither side reserves ahead.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include "zunFastMesh.h"

namespace
{
    struct Quad
    {
        double w, x, y, z;
    };

    template <typename T> T Value(std::int64_t i)
    {
        return static_cast<T>(i);
    }
    template <> Quad Value<Quad>(std::int64_t i)
    {
        const double v = static_cast<double>(i);
        return Quad{v, v, v, v};
    }

    template <typename T> double Sum(const T & v)
    {
        return static_cast<double>(v);
    }
    double Sum(const Quad & q)
    {
        return q.w + q.z;
    }

    // The two containers behind one set of verbs, so each benchmark below is
    // written once and run on both.
    template <typename T> void Append(zunFastMesh<T> & mesh, const T & value)
    {
        mesh.Add(value);
    }
    template <typename T> void Append(std::vector<T> & vector, const T & value)
    {
        vector.push_back(value);
    }
    template <typename T> void InsertBlock(zunFastMesh<T> & mesh, bool front, const std::vector<T> & block)
    {
        mesh.InsertRange(front ? 0 : 0xFFFFFFFFu, block.data(), static_cast<unsigned int>(block.size()));
    }
    template <typename T> void InsertBlock(std::vector<T> & vector, bool front, const std::vector<T> & block)
    {
        vector.insert(front ? vector.begin() : vector.end(), block.begin(), block.end());
    }
    template <typename T> void RemoveOne(zunFastMesh<T> & mesh, bool middle)
    {
        mesh.Remove(middle ? mesh.Count() / 2 : 0, 1);
    }
    template <typename T> void RemoveOne(std::vector<T> & vector, bool middle)
    {
        vector.erase(vector.begin() + static_cast<std::ptrdiff_t>(middle ? vector.size() / 2 : 0));
    }
    template <typename T> std::size_t Size(const zunFastMesh<T> & mesh)
    {
        return mesh.Count();
    }
    template <typename T> std::size_t Size(const std::vector<T> & vector)
    {
        return vector.size();
    }

    template <typename Container> Container Filled(std::int64_t n)
    {
        using T = typename Container::value_type;
        Container container;
        for (std::int64_t i = 0; i < n; ++i)
            Append(container, Value<T>(i));
        return container;
    }

    // Appends one by one into a fresh container.
    template <typename Container> void Add(benchmark::State & state)
    {
        const std::int64_t n = state.range(0);
        for (auto _ : state)
        {
            Container container = Filled<Container>(n);
            benchmark::DoNotOptimize(container);
        }
        state.SetItemsProcessed(state.iterations() * n);
    }

    // Range inserts of blocks of 64 elements, at the end (0) or the front (1).
    template <typename Container> void InsertRange(benchmark::State & state)
    {
        using T = typename Container::value_type;
        const std::int64_t blocks = state.range(0);
        const bool front = state.range(1) != 0;
        const std::vector<T> block = Filled<std::vector<T>>(64);
        for (auto _ : state)
        {
            Container container;
            for (std::int64_t i = 0; i < blocks; ++i)
                InsertBlock(container, front, block);
            benchmark::DoNotOptimize(container);
        }
        state.SetItemsProcessed(state.iterations() * blocks * 64);
    }

    // Empties a copy of a full container one element at a time, from the
    // front (0) or the middle (1).
    template <typename Container> void Remove(benchmark::State & state)
    {
        const std::int64_t n = state.range(0);
        const bool middle = state.range(1) != 0;
        const Container full = Filled<Container>(n);
        for (auto _ : state)
        {
            Container container(full);
            while (Size(container) != 0)
                RemoveOne(container, middle);
            benchmark::DoNotOptimize(container);
        }
        state.SetItemsProcessed(state.iterations() * n);
    }

    // A read-only walk with a range-for.
    template <typename Container> void Iterate(benchmark::State & state)
    {
        using T = typename Container::value_type;
        const std::int64_t n = state.range(0);
        const Container container = Filled<Container>(n);
        for (auto _ : state)
        {
            double sum = 0;
            for (const T & v : container)
                sum += Sum(v);
            benchmark::DoNotOptimize(sum);
        }
        state.SetItemsProcessed(state.iterations() * n);
    }
}

BENCHMARK_TEMPLATE(Add, zunFastMesh<int>)->Arg(16)->Arg(1000)->Arg(100000);
BENCHMARK_TEMPLATE(Add, std::vector<int>)->Arg(16)->Arg(1000)->Arg(100000);
BENCHMARK_TEMPLATE(Add, zunFastMesh<double>)->Arg(1000)->Arg(100000);
BENCHMARK_TEMPLATE(Add, std::vector<double>)->Arg(1000)->Arg(100000);
BENCHMARK_TEMPLATE(Add, zunFastMesh<Quad>)->Arg(1000)->Arg(100000);
BENCHMARK_TEMPLATE(Add, std::vector<Quad>)->Arg(1000)->Arg(100000);

BENCHMARK_TEMPLATE(InsertRange, zunFastMesh<int>)->Args({256, 0})->Args({256, 1});
BENCHMARK_TEMPLATE(InsertRange, std::vector<int>)->Args({256, 0})->Args({256, 1});
BENCHMARK_TEMPLATE(InsertRange, zunFastMesh<Quad>)->Args({256, 0})->Args({256, 1});
BENCHMARK_TEMPLATE(InsertRange, std::vector<Quad>)->Args({256, 0})->Args({256, 1});

BENCHMARK_TEMPLATE(Remove, zunFastMesh<int>)->Args({4096, 0})->Args({4096, 1});
BENCHMARK_TEMPLATE(Remove, std::vector<int>)->Args({4096, 0})->Args({4096, 1});
BENCHMARK_TEMPLATE(Remove, zunFastMesh<Quad>)->Args({4096, 0})->Args({4096, 1});
BENCHMARK_TEMPLATE(Remove, std::vector<Quad>)->Args({4096, 0})->Args({4096, 1});

BENCHMARK_TEMPLATE(Iterate, zunFastMesh<int>)->Arg(100000);
BENCHMARK_TEMPLATE(Iterate, std::vector<int>)->Arg(100000);
BENCHMARK_TEMPLATE(Iterate, zunFastMesh<Quad>)->Arg(100000);
BENCHMARK_TEMPLATE(Iterate, std::vector<Quad>)->Arg(100000);
