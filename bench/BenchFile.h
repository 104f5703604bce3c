// BenchFile.h - scratch files for the benchmarks that write to disk.
#ifndef ZUN_BENCH_FILE_H
#define ZUN_BENCH_FILE_H

#include <unistd.h>

#include <cstdio>
#include <string>

namespace benchfile
{
    /// A file of the benchmark's own in the current folder (scripts/bench runs
    /// the programs in a fresh one), named after the process so that runs side
    /// by side never share it, and removed at its end.
    struct Fixture
    {
        std::string name;
        explicit Fixture(const char * leaf) : name(std::string("zun_bench_") + std::to_string(getpid()) + "_" + leaf) {}
        ~Fixture() { std::remove(name.c_str()); }
        Fixture(const Fixture &) = delete;
        Fixture & operator=(const Fixture &) = delete;
    };
}

#endif // ZUN_BENCH_FILE_H
