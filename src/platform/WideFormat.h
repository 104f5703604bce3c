// WideFormat.h - formatting of 16-bit text, as the Windows wide printf family
// does it. The runtime here has a wide formatter only for its 32-bit wchar_t,
// so the directives are read here; numbers go through the runtime's narrow
// formatter (their text is ASCII), text arguments are copied or converted
// from UTF-8 unit by unit. The directives are listed in zunString.h (VPrintf).
#ifndef ZUN_PLATFORM_WIDE_FORMAT_H
#define ZUN_PLATFORM_WIDE_FORMAT_H

#include <cstdarg>
#include <cstddef>

#include "zunConfig.h"

namespace zunPlatform
{
    /// Formats `format` with `args`. Returns the units of the whole result
    /// (terminator not counted), or -1 for a format error or a result beyond
    /// INT_MAX units. With a null `out` nothing is written (the sizing pass);
    /// otherwise up to `capacity` units are written, the terminator included.
    /// A result that does not fit in front of the terminator (the return is
    /// not below `capacity`) leaves a cut, unterminated text in `out`.
    int FormatWide(zunWChar * out, std::size_t capacity, const zunWChar * format, va_list args);
}

#endif // ZUN_PLATFORM_WIDE_FORMAT_H
