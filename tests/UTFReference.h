// UTFReference.h - the independent reference of the UTF conversion: ICU with
// U+FFFD substitution, in both directions. The test suite and the fuzz target
// check the library against it.
#ifndef ZUN_UTF_REFERENCE_H
#define ZUN_UTF_REFERENCE_H

#include <unicode/ustring.h>

#include <string>

namespace utfReference
{
    /// UTF-16 of `bytes`, invalid input replaced; false if ICU refused.
    inline bool ToUTF16(const std::string & bytes, std::u16string & out)
    {
        UErrorCode error = U_ZERO_ERROR;
        int32_t length = 0;
        u_strFromUTF8WithSub(nullptr, 0, &length, bytes.data(), static_cast<int32_t>(bytes.size()), 0xFFFD, nullptr,
                             &error);
        out.assign(static_cast<std::size_t>(length), u'\0');
        error = U_ZERO_ERROR;
        u_strFromUTF8WithSub(out.data(), length, &length, bytes.data(), static_cast<int32_t>(bytes.size()), 0xFFFD,
                             nullptr, &error);
        return U_SUCCESS(error) || error == U_STRING_NOT_TERMINATED_WARNING;
    }

    /// UTF-8 of `units`, lone surrogates replaced; false if ICU refused.
    inline bool ToUTF8(const std::u16string & units, std::string & out)
    {
        UErrorCode error = U_ZERO_ERROR;
        int32_t length = 0;
        u_strToUTF8WithSub(nullptr, 0, &length, units.data(), static_cast<int32_t>(units.size()), 0xFFFD, nullptr,
                           &error);
        out.assign(static_cast<std::size_t>(length), '\0');
        error = U_ZERO_ERROR;
        u_strToUTF8WithSub(out.data(), length, &length, units.data(), static_cast<int32_t>(units.size()), 0xFFFD,
                           nullptr, &error);
        return U_SUCCESS(error) || error == U_STRING_NOT_TERMINATED_WARNING;
    }
}

#endif // ZUN_UTF_REFERENCE_H
