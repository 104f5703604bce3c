// The monotonic clock: CLOCK_MONOTONIC in nanoseconds.
#include "Clock.h"

#include <time.h>

namespace zunPlatform
{
    bool QueryMonotonicFrequency(std::int64_t & countsPerSecond)
    {
        timespec now;
        if (clock_gettime(CLOCK_MONOTONIC, &now) != 0)
            return false;
        countsPerSecond = 1000000000;
        return true;
    }

    std::int64_t ReadMonotonicCounter()
    {
        timespec now;
        if (clock_gettime(CLOCK_MONOTONIC, &now) != 0)
            return 0;
        return static_cast<std::int64_t>(now.tv_sec) * 1000000000 + now.tv_nsec;
    }
}
