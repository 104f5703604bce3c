// Text.h - the C runtime's case tables and case-blind compares.
//
// Everything here follows the runtime's current locale, which the library
// never sets: in the default locale case mapping is ASCII only.
#ifndef ZUN_PLATFORM_TEXT_H
#define ZUN_PLATFORM_TEXT_H

#include <cstdint>

#include "zunConfig.h"

namespace zunPlatform
{
    /// towlower of a 16-bit unit.
    zunWChar LowerWide(zunWChar unit);
    /// towupper of a 16-bit unit.
    zunWChar UpperWide(zunWChar unit);
    /// toupper of a byte value 0 to 255 (other values are returned unchanged,
    /// since the runtime accepts only those and EOF).
    int UpperByte(int value);
    /// The runtime's tolower as a table for the current locale of the calling
    /// thread: entry [b] is tolower(b) for each byte value b, 0 to 255. Valid
    /// until the locale changes, so fetch it once per operation, not once per
    /// program.
    const std::int32_t * LowerByteTable();

    /// Case-blind order of two byte texts: negative, zero or positive, each
    /// byte lowered by the runtime (_stricmp on Windows). Neither may be null.
    int CompareNoCase(const char * a, const char * b);
    /// Case-blind order of two UTF-16 texts with the meaning of _wcsicmp: each
    /// unit lowered with towlower, the first difference of the lowered units
    /// decides. Neither may be null.
    int CompareNoCase(const zunWChar * a, const zunWChar * b);
}

#endif // ZUN_PLATFORM_TEXT_H
