// Case mapping and case-blind compares on the C runtime.
#include "platform/Text.h"

#include <cctype>
#include <cwctype>
#include <strings.h>

namespace zunPlatform
{
    zunWChar LowerWide(zunWChar unit)
    {
        return static_cast<zunWChar>(std::towlower(static_cast<wint_t>(unit)));
    }

    zunWChar UpperWide(zunWChar unit)
    {
        return static_cast<zunWChar>(std::towupper(static_cast<wint_t>(unit)));
    }

    int UpperByte(int value)
    {
        return value >= 0 && value <= 255 ? std::toupper(value) : value;
    }

    const std::int32_t * LowerByteTable()
    {
        // glibc's own table behind tolower, indexable from -128 to 255.
        return *__ctype_tolower_loc();
    }

    int CompareNoCase(const char * a, const char * b)
    {
        return ::strcasecmp(a, b);
    }

    int CompareNoCase(const zunWChar * a, const zunWChar * b)
    {
        // The runtime has no compare for 16-bit text here (its wchar_t is 32
        // bits wide), so the loop of _wcsicmp is written out.
        for (;; ++a, ++b)
        {
            const int left = LowerWide(*a);
            const int right = LowerWide(*b);
            if (left != right || left == 0)
                return left - right;
        }
    }
}
