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

template <typename C> struct zunCharHelper;

/// The helper of UTF-8 text.
template <> struct ZUN_API zunCharHelper<char>
{
    /// A text of a number. The pointer is NOT owned: it points at a static
    /// buffer of 1,024 units, one per overload, that the next call of the same
    /// overload (on any thread) overwrites; the deleter does nothing. Copy the
    /// text at once to keep it.
    using NumberText = std::unique_ptr<char, std::function<void(char *)>>;

    /// Three-way compare. Nulls first, whatever the mode: null and null, and
    /// null and "", are equal; null against a non-empty text orders first on
    /// either side. Mode 0 compares bytes as unsigned values, so bytes above
    /// 0x7F order after ASCII; any other mode compares without case, as the C
    /// runtime does (each byte lowered in the current locale).
    static CompareResult Compare(const char * a, const char * b, StringCompareMode mode);

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
    /// A new UTF-8 text of a UTF-16 text, owned by the result (zunUTF16::ToNew8):
    /// null for a null text.
    static std::unique_ptr<char, std::function<void(char *)>> Convert(const zunWChar * text);

    /// Copies `count` bytes from `src` to `dst` (overlap-safe when `dst` lies
    /// below `src`); no terminator is added. A count of 0xFFFFFFFF copies the
    /// whole text of `src` with its terminator. A null `src` copies nothing.
    static void CopyBuffer(char * dst, const char * src, unsigned int count);
    /// Index of the first byte equal to `c`, or 0xFFFFFFFF. `text` must not be
    /// null. The search stops at the terminator, so a `c` of 0 is never found.
    static unsigned int FindChar(const char * text, char c);
    /// Index of the first occurrence of `sub` in `text`, or 0xFFFFFFFF. Neither
    /// may be null. An empty `sub` is found at 0.
    static unsigned int FindSubString(const char * text, const char * sub);
    /// Bytes taken by the first `chars` characters of `text`, sized by their
    /// lead bytes only (the following bytes are not checked). `chars` must not
    /// exceed the text; if it does, the walk stops at the terminator.
    static unsigned int GetByteOffset(const char * text, unsigned int chars);
    /// True for a byte that is a whole character by itself (0 to 127).
    static bool IsValidChar(char c);
    /// The case of the character at `c`. `srcSize` and `dstSize` both receive
    /// its size in bytes (1 to 4, by the lead byte). Only the lead byte is
    /// mapped, and only out[0] is written. A multi-byte character is reported
    /// with zunFixMe("UTF-8 multi-byte character not supported"). Lowering
    /// passes the byte sign-extended to towlower and keeps the low byte of the
    /// result; raising passes it to toupper, and a byte above 0x7F (negative
    /// when sign-extended, outside what toupper accepts) is kept as it is.
    static void ChangeCharCase(const char * c, bool toLower, unsigned char (&out)[4], unsigned int & srcSize,
                               unsigned int & dstSize);
    /// A new text in the other case, character by character as ChangeCharCase
    /// (one zunFixMe report per multi-byte character). The other bytes of a
    /// multi-byte character are copied as they are; a character cut short by
    /// the terminator ends the text there. `text` must not be null. Null when
    /// the allocation fails; otherwise release the result with zunMemFree.
    static char * ChangeStringCase(const char * text, bool toLower);

private:
    /// Length in bytes of the character that `lead` opens: 1 below 0x80,
    /// 4 for 11110xxx, 3 for 1110xxxx, 2 for 110xxxxx, 1 for anything else
    /// (a stray continuation byte, 0xF8 and above).
    static unsigned int SizeOf(char lead);
};

/// The helper of UTF-16 text; the same contract as zunCharHelper<char> with
/// 16-bit units. A high surrogate (0xD800 to 0xDBFF) opens a two-unit
/// character; every other unit, a lone low surrogate too, stands alone.
template <> struct ZUN_API zunCharHelper<zunWChar>
{
    using NumberText = std::unique_ptr<zunWChar, std::function<void(zunWChar *)>>;

    /// Mode 0 compares units as unsigned values; other modes lower each unit
    /// with towlower and order by the lowered units.
    static CompareResult Compare(const zunWChar * a, const zunWChar * b, StringCompareMode mode);

    static NumberText Convert(int value);
    static NumberText Convert(unsigned int value);
    static NumberText Convert(std::int64_t value);
    static NumberText Convert(std::uint64_t value);
    static NumberText Convert(double value);
    /// A new UTF-16 text of a UTF-8 text, owned by the result (zunUTF8::ToNew16):
    /// null for a null text.
    static std::unique_ptr<zunWChar, std::function<void(zunWChar *)>> Convert(const char * text);

    static void CopyBuffer(zunWChar * dst, const zunWChar * src, unsigned int count);
    static unsigned int FindChar(const zunWChar * text, zunWChar c);
    static unsigned int FindSubString(const zunWChar * text, const zunWChar * sub);
    /// Counted in 16-bit units in spite of the name: a surrogate pair is 2.
    static unsigned int GetByteOffset(const zunWChar * text, unsigned int chars);
    /// True for a unit outside 0xD800 to 0xDFFF.
    static bool IsValidChar(zunWChar c);
    /// Sizes in bytes: 2, or 4 for a surrogate pair, which is reported with
    /// zunFixMe("UTF-16 surrogate pair not supported"). The first unit goes
    /// through towlower or towupper and is stored in out[0..1].
    static void ChangeCharCase(const zunWChar * c, bool toLower, unsigned char (&out)[4], unsigned int & srcSize,
                               unsigned int & dstSize);
    static zunWChar * ChangeStringCase(const zunWChar * text, bool toLower);
};

#endif // ZUN_CHAR_HELPER_H
