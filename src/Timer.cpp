// zunTimer over the platform's monotonic counter.
#include "zunTimer.h"

#include <cstdint>

#include "platform/Clock.h"

namespace
{
    /// Milliseconds per count, or 0.0 when the platform gives no frequency.
    double MillisecondsPerCount()
    {
        std::int64_t countsPerSecond = 0;
        if (!zunPlatform::QueryMonotonicFrequency(countsPerSecond) || countsPerSecond == 0)
            return 0.0;
        return 1000.0 / static_cast<double>(countsPerSecond);
    }

    // Taken at first use, so that static constructors of other files that call
    // zunTimer see the right rate too; the load-time caller below makes that
    // first use happen while the library loads.
    double Factor()
    {
        static const double factor = MillisecondsPerCount();
        return factor;
    }

    [[maybe_unused]] const double g_loadTimeFactor = Factor();
}

double zunTimer()
{
    return static_cast<double>(zunPlatform::ReadMonotonicCounter()) * Factor();
}
