// Clock.h - the monotonic counter under zunTimer.
#ifndef ZUN_PLATFORM_CLOCK_H
#define ZUN_PLATFORM_CLOCK_H

#include <cstdint>

namespace zunPlatform
{
    /// Counts per second of ReadMonotonicCounter; false if the platform has no
    /// monotonic clock, with `countsPerSecond` left alone.
    bool QueryMonotonicFrequency(std::int64_t & countsPerSecond);
    /// The monotonic counter; it never goes back. 0 if the clock cannot be read.
    std::int64_t ReadMonotonicCounter();
}

#endif // ZUN_PLATFORM_CLOCK_H
