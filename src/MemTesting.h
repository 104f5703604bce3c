// MemTesting.h - fault injection and counters of the memory layer, for tests.
//
// Internal: not installed, not part of the public interface. Tests of every
// family use it to prove that an exhausted heap leaves objects as they were.
//
//   zunMemTesting::FailAllocation(3);   // the third heap request from now fails
//   ... run the operation, check it kept its object ...
//   zunMemTesting::Reset();
//
// A "heap request" is each malloc or realloc that zunMemAlloc makes. The state
// is process-wide; tests that use it run on one thread.
#ifndef ZUN_MEM_TESTING_H
#define ZUN_MEM_TESTING_H

#include "zunConfig.h"

namespace zunMemTesting
{
    struct Counters
    {
        unsigned long long allocations; ///< fresh blocks (malloc), moves included
        unsigned long long resizes;     ///< realloc calls
        unsigned long long moves;       ///< shrinks made as malloc + copy + free
        unsigned long long frees;       ///< blocks released
        unsigned long long failures;    ///< requests failed by injection
    };

    /// Makes the `nth` heap request from now fail (1 is the next one); with
    /// `persistent`, that one and every later one fail. 0 switches it off.
    ZUN_API void FailAllocation(unsigned int nth, bool persistent = false);
    /// Starts the counters (FailAllocation starts them too).
    ZUN_API void StartCounting();
    /// Switches injection and counting off and zeroes the counters.
    ZUN_API void Reset();
    ZUN_API Counters GetCounters();
}

#endif // ZUN_MEM_TESTING_H
