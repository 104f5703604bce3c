// DebugPrintTesting.h - hooks into the debug print channel's state, for tests.
//
// Internal: not installed, not part of the public interface. The channel's
// state is process-wide; tests that use these run on one thread.
#ifndef ZUN_DEBUG_PRINT_TESTING_H
#define ZUN_DEBUG_PRINT_TESTING_H

#include "zunConfig.h"

namespace zunDebugPrintTesting
{
    /// Sets the first-print flag again: the next message written to a file
    /// brings the banner, as in a fresh process.
    ZUN_API void RestartBanner();
    /// True while no message of the process has reached a file.
    ZUN_API bool IsBannerPending();
    /// Calls the fix-me handler slot with `text`, as a developer's hook would;
    /// false when the slot is empty.
    ZUN_API bool CallFixMeHandler(const char * text);
}

#endif // ZUN_DEBUG_PRINT_TESTING_H
