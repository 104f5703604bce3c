// DebugLogPrivate.h - the state of the debug log and the release log.
//
// Internal, exported for tests: each test starts from the state of a fresh
// process.
#ifndef ZUN_DEBUG_LOG_PRIVATE_H
#define ZUN_DEBUG_LOG_PRIVATE_H

#include "zunConfig.h"

namespace zunDebugLogPrivate
{
    /// Forgets the tag file, its tags and its time, switches the debug log
    /// switch off and empties the release log file.
    ZUN_API void ResetForTests();
}

#endif // ZUN_DEBUG_LOG_PRIVATE_H
