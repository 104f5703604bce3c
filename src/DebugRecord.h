// DebugRecord.h - the record behind a hardware breakpoint handle.
//
// Internal: SetMemBreak returns a pointer to one of these as an opaque handle.
// Tests read it to see which register a breakpoint took.
#ifndef ZUN_DEBUG_RECORD_H
#define ZUN_DEBUG_RECORD_H

#include "zunDebug.h"

namespace zunDebugPrivate
{
    struct MemBreakRecord
    {
        void * address; ///< the watched address
        void * thread;  ///< the thread handle as the caller gave it
        zunDebug::Windows::MemBreak_Type type;
        zunDebug::Windows::MemBreak_Size size;
        void * done;         ///< the worker while a call runs; null outside a call
        unsigned int slot;   ///< debug register in use, 0 to 3
        unsigned int remove; ///< 0 when setting, 1 when removing
        bool succeeded;      ///< the worker's result
    };
}

#endif // ZUN_DEBUG_RECORD_H
