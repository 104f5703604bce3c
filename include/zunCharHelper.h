// zunCharHelper.h - what the library's text types need to know about an encoding.
//
// zunCharHelper<char> works on UTF-8, zunCharHelper<zunWChar> on UTF-16 in
// 16-bit units. Both are stateless sets of static functions; zunStringT uses
// them for everything that depends on the encoding, and callers may too.
//
//   if (zunCharHelper<char>::Compare(a, b, StringCompareMode_Insensitive) == CompareResult_Equal) ...
//   unsigned int bytes = zunCharHelper<char>::GetByteOffset(text, 3);  // 3 characters in
//
// Every index, length and count is in code units (bytes of UTF-8, 16-bit units
// of UTF-16); only the second argument of GetByteOffset counts characters.
// SizeOf, GetByteOffset, ChangeCharCase and ChangeStringCase know lead units
// (UTF-8 lead bytes, UTF-16 high surrogates); everything else sees an array of
// units. An unsigned int result of 0xFFFFFFFF means "not found".
//
// Case mapping and the insensitive compare use the C runtime's current locale;
// the library never sets one, so in the default locale both are ASCII only.
#ifndef ZUN_CHAR_HELPER_H
#define ZUN_CHAR_HELPER_H

#include <cstdint>
#include <functional>
#include <memory>
#include <type_traits>

#include "zunConfig.h"

/// Result of a three-way text comparison. Equality is 1, not 0: test against
/// CompareResult_Equal.
enum CompareResult
{
    CompareResult_Less = 0,    ///< the left text orders first
    CompareResult_Equal = 1,   ///< the texts are equal
    CompareResult_Greater = 2, ///< the left text orders last
};

/// How Compare looks at letters. Any value other than 0 acts like 1.
enum StringCompareMode
{
    StringCompareMode_Sensitive = 0,   ///< unit by unit, as unsigned values
    StringCompareMode_Insensitive = 1, ///< without regard to case
};

/// The helper of one encoding: zunCharHelper<char> for UTF-8,
/// zunCharHelper<zunWChar> for UTF-16. Where the two differ, the comment says
/// how. In UTF-16 a high surrogate (0xD800 to 0xDBFF) opens a two-unit
/// character; every other unit, a lone low surrogate too, stands alone.
template <typename C> struct zunCharHelper
{
    /// The unit type of the other encoding.
    using OtherChar = std::conditional_t<std::is_same_v<C, char>, zunWChar, char>;
    /// A text of a number. The pointer is NOT owned: it points at a static
    /// buffer of 1,024 units, one per overload and helper, that the next call
    /// of the same overload (on any thread) overwrites; the deleter does
    /// nothing. Copy the text at once to keep it.
    using NumberText = std::unique_ptr<C, std::function<void(C *)>>;

    /// Three-way compare. Nulls first, whatever the mode: null and null, and
    /// null and an empty text, are equal; null against a non-empty text
    /// orders first on either side. Mode 0 compares units as unsigned values,
    /// so UTF-8 bytes above 0x7F order after ASCII. Any other mode compares
    /// without case as the C runtime does: each unit lowered in the current
    /// locale, the first difference of the lowered units deciding.
    static CompareResult Compare(const C * a, const C * b, StringCompareMode mode);

    /// "%d" of `value` in the overload's static buffer (see NumberText).
    static NumberText Convert(int value);
    /// "%u".
    static NumberText Convert(unsigned int value);
    /// "%lld".
    static NumberText Convert(std::int64_t value);
    /// "%llu".
    static NumberText Convert(std::uint64_t value);
    /// "%f".
    static NumberText Convert(double value);
    /// A new text converted from the other encoding, owned by the result
    /// (zunUTF16::ToNew8 or zunUTF8::ToNew16): null for a null text.
    static std::unique_ptr<C, std::function<void(C *)>> Convert(const OtherChar * text);

    /// Copies `count` units from `src` to `dst` (overlap-safe when `dst` lies
    /// below `src`); no terminator is added. A count of 0xFFFFFFFF copies the
    /// whole text of `src` with its terminator. A null `src` copies nothing.
    static void CopyBuffer(C * dst, const C * src, unsigned int count);
    /// Index of the first unit equal to `c`, or 0xFFFFFFFF. `text` must not be
    /// null. The search stops at the terminator, so a `c` of 0 is never found.
    static unsigned int FindChar(const C * text, C c);
    /// Index of the first occurrence of `sub` in `text`, or 0xFFFFFFFF. Neither
    /// may be null. An empty `sub` is found at 0.
    static unsigned int FindSubString(const C * text, const C * sub);
    /// Units taken by the first `chars` characters of `text`, sized by their
    /// lead units only (the following units are not checked): bytes in UTF-8,
    /// 16-bit units in UTF-16 in spite of the name. `chars` must not exceed
    /// the text; if it does, the walk stops at the terminator.
    static unsigned int GetByteOffset(const C * text, unsigned int chars);
    /// True for a unit that is a whole character by itself: 0 to 127 in UTF-8,
    /// outside 0xD800 to 0xDFFF in UTF-16.
    static bool IsValidChar(C c);
    /// The case of the character at `c`. `srcSize` and `dstSize` both receive
    /// its size in bytes (1 to 4 in UTF-8; 2, or 4 for a surrogate pair, in
    /// UTF-16). Only the first unit is mapped, and only its bytes at the start
    /// of `out` are written. A multi-unit character is reported with
    /// zunFixMe("UTF-8 multi-byte character not supported") or
    /// zunFixMe("UTF-16 surrogate pair not supported").
    /// UTF-16 maps with towlower and towupper. UTF-8 is deliberately
    /// asymmetric: lowering passes the byte sign-extended to 16 bits to
    /// towlower and keeps the low byte of the result; raising passes the
    /// sign-extended byte to toupper, and a byte above 0x7F (negative then,
    /// outside what toupper accepts) is kept as it is.
    static void ChangeCharCase(const C * c, bool toLower, unsigned char (&out)[4], unsigned int & srcSize,
                               unsigned int & dstSize);
    /// A new text in the other case, character by character as ChangeCharCase
    /// (one zunFixMe report per multi-unit character). The other units of a
    /// multi-unit character are copied as they are; a character cut short by
    /// the terminator ends the text there. `text` must not be null. Null when
    /// the allocation fails; otherwise release the result with zunMemFree.
    static C * ChangeStringCase(const C * text, bool toLower);

private:
    /// Units of the character that `lead` opens. UTF-8: 1 below 0x80, 4 for
    /// 11110xxx, 3 for 1110xxxx, 2 for 110xxxxx, 1 for anything else (a stray
    /// continuation byte, 0xF8 and above). UTF-16: 2 for a high surrogate.
    static unsigned int SizeOf(C lead);
};

extern template struct ZUN_API zunCharHelper<char>;
extern template struct ZUN_API zunCharHelper<zunWChar>;

#endif // ZUN_CHAR_HELPER_H
