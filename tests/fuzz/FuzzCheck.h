// FuzzCheck.h - what a fuzz target asserts.
//
// A broken invariant prints what was expected and aborts, which libFuzzer
// records as a finding with the input that caused it.
#ifndef ZUN_FUZZ_CHECK_H
#define ZUN_FUZZ_CHECK_H

#include <cstdio>
#include <cstdlib>

#define FUZZ_CHECK(condition)                                                                                          \
    do                                                                                                                 \
    {                                                                                                                  \
        if (!(condition))                                                                                              \
        {                                                                                                              \
            std::fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #condition);                         \
            std::abort();                                                                                              \
        }                                                                                                              \
    } while (false)

#endif // ZUN_FUZZ_CHECK_H
