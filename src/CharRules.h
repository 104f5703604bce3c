// CharRules.h - the lead-unit rules and the case mapping of one unit, shared
// by the character helpers and the strings. Internal.
#ifndef ZUN_CHAR_RULES_H
#define ZUN_CHAR_RULES_H

#include "zunConfig.h"

#include "platform/Text.h"

namespace zunCharRules
{
    template <typename C> struct Unsigned;
    template <> struct Unsigned<char>
    {
        using type = unsigned char;
    };
    template <> struct Unsigned<zunWChar>
    {
        using type = zunWChar;
    };

    /// Units of the UTF-8 character that `lead` opens. No following byte is
    /// checked: a stray continuation byte and 0xF8 and above stand alone.
    inline unsigned int UnitsOf(char lead)
    {
        const unsigned char byte = static_cast<unsigned char>(lead);
        if (byte < 0x80)
            return 1;
        if ((byte & 0xF8) == 0xF0)
            return 4;
        if ((byte & 0xF0) == 0xE0)
            return 3;
        if ((byte & 0xE0) == 0xC0)
            return 2;
        return 1;
    }

    /// Units of the UTF-16 character that `lead` opens: 2 for a high
    /// surrogate (0xD800 to 0xDBFF), else 1, a lone low surrogate too.
    inline unsigned int UnitsOf(zunWChar lead)
    {
        return ((static_cast<unsigned int>(lead) + 0x2800) & 0xFFFF) <= 0x3FF ? 2 : 1;
    }

    template <typename C> inline constexpr const char * kMultiUnitReport = "UTF-8 multi-byte character not supported";
    template <> inline constexpr const char * kMultiUnitReport<zunWChar> = "UTF-16 surrogate pair not supported";

    /// The case of one byte. Deliberately asymmetric: lowering goes through
    /// towlower with the byte sign-extended to 16 bits and keeps the low byte
    /// of the result; raising goes through toupper with the sign-extended value.
    inline char MapCase(char unit, bool toLower)
    {
        const int extended = static_cast<signed char>(unit); // NOLINT(bugprone-signed-char-misuse): meant, see above
        if (toLower)
            return static_cast<char>(zunPlatform::LowerWide(static_cast<zunWChar>(extended)) & 0xFF);
        return static_cast<char>(zunPlatform::UpperByte(extended));
    }

    inline zunWChar MapCase(zunWChar unit, bool toLower)
    {
        return toLower ? zunPlatform::LowerWide(unit) : zunPlatform::UpperWide(unit);
    }
}

#endif // ZUN_CHAR_RULES_H
