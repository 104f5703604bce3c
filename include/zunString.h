// zunString.h - the text type of every interface of the library.
//
// zunString holds UTF-8, zunStringW UTF-16 in 16-bit zunWChar units; text moves
// between the two through the library's UTF conversion.
//
//   zunString name("Gr\xC3\xBC\xC3\x9F" "e");     // Length() is 7: it counts bytes
//   name << ", " << ZUN_W("world");               // appends, converting the wide text
//   zunStringW wide;
//   wide = name;                                  // UTF-8 -> UTF-16
//   wide.Printf(ZUN_W("%s has %d units"), ZUN_W("it"), 2);
//   if (name == "x") ...
//
// Rules a caller must know:
//  - Lengths, positions and counts are code units (bytes, 16-bit units), never
//    characters. Use zunCharHelper<C>::GetByteOffset to turn a character index
//    into a unit index.
//  - There is no capacity: every block has the exact size of its text, and
//    every operation that lengthens a string allocates a new block and copies.
//    n appends cost n allocations and n copies (quadratic by design); build
//    long texts with one Printf or Insert where it matters.
//  - Each string carries a checksum, the sum of the low bytes of its units,
//    kept up to date by every mutator, so most unequal strings compare unequal
//    with two integer compares.
//  - A string with no text has two forms that read and compare alike: a null
//    block (default-made, assigned null, emptied by Printf) and an empty text
//    in a block (assigned "" or an empty string). The conversion to a pointer
//    never gives null.
//  - An exhausted heap throws nothing and reports nothing: the operation leaves
//    the string exactly as it was. Test the result if you must know.
//  - Blocks come from zunMemAlloc. Two strings never share a block; an object
//    may be used by one thread at a time.
//
// The fields are public for inspection (the layout is part of the interface);
// change them only through the operations.
#ifndef ZUN_STRING_H
#define ZUN_STRING_H

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "zunCharHelper.h"
#include "zunConfig.h"
#include "zunMem.h"

namespace zunStringInline
{
    /// Whether the first and the last sizeof(W) bytes of `x` and `y` agree;
    /// for 1 to 2 * sizeof(W) bytes, that is whether all of them do.
    template <typename W> bool SameEnds(const unsigned char * x, const unsigned char * y, std::size_t bytes)
    {
        W x0, x1, y0, y1;
        std::memcpy(&x0, x, sizeof(W));
        std::memcpy(&x1, x + bytes - sizeof(W), sizeof(W));
        std::memcpy(&y0, y, sizeof(W));
        std::memcpy(&y1, y + bytes - sizeof(W), sizeof(W));
        return ((x0 ^ y0) | (x1 ^ y1)) == 0;
    }

    /// Whether `bytes` bytes at `a` and `b` are equal; texts of up to 16
    /// bytes are compared in registers, with two loads that may overlap.
    inline bool SameBytes(const void * a, const void * b, std::size_t bytes)
    {
        const auto * x = static_cast<const unsigned char *>(a);
        const auto * y = static_cast<const unsigned char *>(b);
        if (bytes > 16)
            return std::memcmp(x, y, bytes) == 0;
        if (bytes >= 8)
            return SameEnds<std::uint64_t>(x, y, bytes);
        if (bytes >= 4)
            return SameEnds<std::uint32_t>(x, y, bytes);
        for (std::size_t i = 0; i < bytes; ++i)
            if (x[i] != y[i])
                return false;
        return true;
    }
}

template <typename C> class zunStringListT;
struct zunFile;

/// A terminated text of units C in one exact-size block, with its length and
/// checksum; used as zunString (UTF-8) and zunStringW (UTF-16).
template <typename C, typename H> struct zunStringT
{
    /// The unit type of the other encoding, and its string.
    ///@{
    using OtherChar = typename zunCharHelper<C>::OtherChar;
    using OtherString = zunStringT<OtherChar, zunCharHelper<OtherChar>>;
    ///@}

    /// No text, null block.
    zunStringT() : m_pData(nullptr), m_nLength(0), m_nChecksum(0) {}
    /// A copy of `text` (null gives the null form).
    zunStringT(const C * text) : m_pData(nullptr), m_nLength(0), m_nChecksum(0) { *this = text; }
    /// A copy of `other`'s block as it stands: a null block stays null.
    zunStringT(const zunStringT & other) : m_pData(nullptr), m_nLength(0), m_nChecksum(0) { *this = other.m_pData; }
    /// Takes the block; `other` keeps its length and checksum but no block.
    zunStringT(zunStringT && other) noexcept
        : m_pData(other.m_pData), m_nLength(other.m_nLength), m_nChecksum(other.m_nChecksum)
    {
        other.m_pData = nullptr;
    }
    /// Frees the block.
    virtual ~zunStringT()
    {
        void * block = m_pData;
        zunMemFree(block);
        m_pData = nullptr;
    }

    // ---- Assignment: each returns the string; a failed allocation keeps it.

    /// Copies `text` into a new block of its exact size, then frees the old
    /// one, so `text` may point into this string. `text` equal to the block
    /// does nothing; null clears the string to the null form.
    zunStringT & operator=(const C * text);
    /// `other`'s text, or the empty text (a block of one terminator) when
    /// `other` has a null block.
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): the text assignment ignores the string's own block.
    zunStringT & operator=(const zunStringT & other);
    /// The text converted from the other encoding; a null text clears.
    /// Invalid input is replaced, never refused (see zunUTF.h).
    zunStringT & operator=(const OtherChar * text);
    /// `other`'s text converted, or the empty text when `other` has no block.
    zunStringT & operator=(const OtherString & other);
    /// Clears to the null form (settles `s = nullptr` between the encodings).
    zunStringT & operator=(std::nullptr_t) { return *this = static_cast<const C *>(nullptr); }

    // ---- Appending with `<<`: Insert at the end.

    /// Appends the whole of `text`; null appends nothing.
    zunStringT & operator<<(const C * text);
    /// Appends `other`'s text, or the empty text. Appending a string to itself
    /// works: the old text is copied before its block is freed.
    zunStringT & operator<<(const zunStringT & other);
    /// Appends the text converted from the other encoding; null appends nothing.
    zunStringT & operator<<(const OtherChar * text);
    /// Appends `other`'s text converted from the other encoding.
    zunStringT & operator<<(const OtherString & other);

    // ---- Formatting.

    /// VPrintf with the arguments given.
    unsigned int Printf(const C * format, ...);
    /// Replaces the text with the formatted one and returns its length. A
    /// format that gives nothing (an empty format, a format error, a null
    /// format) clears the string to the null form and returns 0. A failed
    /// allocation returns 0 and keeps the string.
    ///
    /// zunString formats with the C runtime's vsnprintf: its directives, with
    /// narrow text for %s (the runtime's %ls and %S take its own 32-bit
    /// wchar_t, not zunWChar text: convert wide text into a zunString first).
    ///
    /// zunStringW takes a zunWChar format and gives its directives the meaning
    /// of the Windows wide printf family:
    ///   %s %ls %ws  a zunWChar text          %S %hs    a UTF-8 char text
    ///   %c %lc %wc  a zunWChar unit (int)    %C %hc    a char (int), as UTF-8
    ///   %%          a percent sign
    ///   d i u o x X, f F e E g G a A, p      numbers, as zunString::Printf
    ///                                        writes them
    /// Flags - + space # 0, width and precision (both also as *), and the
    /// sizes hh h l ll j z t L and I I32 I64 are understood. In %s and %S the
    /// precision counts UTF-16 units of the result and width pads with spaces
    /// (on the left, or on the right with -). A null text prints "(null)". A
    /// lone byte above 0x7F in %C becomes U+FFFD. %n, %Z, positional arguments
    /// and unknown directives are format errors.
    unsigned int VPrintf(const C * format, va_list args);

    // ---- File form (zunFile.h): a 32-bit length, the UTF-8 bytes and a zero
    // ---- byte; the wide string is stored as its UTF-8 form.

    /// Reads the string as Write wrote it (zunFile::Read_String or
    /// Read_String16 with zunFile::Terminated). At a chunk's limit it becomes
    /// empty.
    void Read(zunFile * file);
    /// zunFile::Write_String, or Write_String16 for the wide string.
    void Write(zunFile * file) const;

    // ---- Reading.

    /// The number of units before the terminator (bytes in zunString).
    unsigned int Length() const { return m_nLength; }
    /// No text, in either form (null block or empty text).
    bool IsEmpty() const { return m_nLength == 0; }
    /// The text; the empty text for the null form, never null.
    operator const C *() const { return m_pData != nullptr ? m_pData : ms_szEmptyText; }
    /// The unit at `index`; 0 for the null form or an index not below Length().
    C GetAt(unsigned int index) const { return m_pData != nullptr && index < m_nLength ? m_pData[index] : C(0); }
    /// Index of the last unit equal to `c` among the units up to and
    /// including `last` (0xFFFFFFFF: all), or 0xFFFFFFFF. The scan stops at
    /// the first 0 unit, so a `c` of 0 is never found.
    unsigned int FindLast(C c, unsigned int last) const;
    /// `count` units from `position` in a new string, cut to what the text
    /// holds. A copy of Empty when there is no block, `position` is not below
    /// Length(), or `count` is 0.
    zunStringT SubString(unsigned int position, unsigned int count) const;

    /// The pieces of the text between units that occur in `separators`, from
    /// `start` on, as a list (see zunStringList.h, which defines it). Each
    /// separator is a single unit; empty pieces (leading, trailing, doubled
    /// separators) give no entry. Null `separators` give the rest of the text
    /// as one entry; a string with no text gives an empty list. `start` must
    /// not lie behind the end.
    zunStringListT<C> Split(const C * separators, unsigned int start) const;

    // ---- Editing: each returns the string and keeps it on a failed allocation.

    /// Inserts `count` units of `text` (0xFFFFFFFF: the whole text) at
    /// `position`; a position at or behind the end (0xFFFFFFFF) appends.
    /// Null `text` does nothing. Always a new block, so even an empty insert
    /// gives a string with the null form a block. `text` must hold `count`
    /// units and may point into this string.
    zunStringT & Insert(unsigned int position, const C * text, unsigned int count);
    /// Appends `text` (null does nothing). The new length is that of the
    /// result read as a terminated text.
    zunStringT & Append(const C * text);
    /// Cuts `count` units from `position` in place; everything from `position`
    /// on when the count reaches past the end (0xFFFFFFFF). A position at or
    /// behind the end does nothing. The block keeps its size.
    zunStringT & Remove(unsigned int position, unsigned int count);
    /// Replaces each unit equal to `from` by `to` in place; the number replaced.
    int Replace(C from, C to);
    /// Keeps units `first` to `last`, both included, in place; `last` is cut to
    /// the end, and a `last` below `first` keeps nothing. A `first` not below
    /// Length() changes nothing.
    zunStringT & Keep(unsigned int first, unsigned int last);
    /// Lower case by zunCharHelper<C>::ChangeStringCase (current C locale,
    /// ASCII by default); multi-unit characters keep their units.
    void ToLower();

    // ---- Equality: checksums, then lengths, then the units.

    /// The same units, case-sensitive; the null form equals the empty text.
    /// Inline: most comparisons end at the two integer tests or at one memcmp.
    bool operator==(const zunStringT & other) const
    {
        if (m_nChecksum != other.m_nChecksum || m_nLength != other.m_nLength)
            return false;
        if (m_pData != nullptr && other.m_pData != nullptr &&
            zunStringInline::SameBytes(m_pData, other.m_pData, m_nLength * sizeof(C)))
            return true;
        // Units that differ can still compare equal when a 0 unit inside the
        // texts ends the unit compare first; a null block compares as empty.
        return H::Compare(m_pData, other.m_pData, StringCompareMode_Sensitive) == CompareResult_Equal;
    }
    /// As against a string made from `text`; a null `text` equals an empty string.
    bool operator==(const C * text) const;
    /// Exactly the negation of operator==.
    ///@{
    bool operator!=(const zunStringT & other) const { return !(*this == other); }
    bool operator!=(const C * text) const { return !(*this == text); }
    ///@}

    /// The empty text in a block, made at load; copy it to return "no text".
    static const zunStringT Empty;

    C * m_pData;               ///< owned block, terminated; null in the null form
    unsigned int m_nLength;    ///< units before the terminator
    std::uint64_t m_nChecksum; ///< sum of (unit & 0xFF) over the text

private:
    static constexpr C ms_szEmptyText[1] = {0};

    // Frees the old block and takes `block`, which holds `length` units and a
    // terminator, with its checksum.
    void Adopt(C * block, unsigned int length);
    // Frees the block: the null form.
    void Clear();
};

/// UTF-8 text: lengths and positions count bytes.
typedef zunStringT<char, zunCharHelper<char>> zunString;
/// UTF-16 text in zunWChar units: lengths and positions count 16-bit units.
typedef zunStringT<zunWChar, zunCharHelper<zunWChar>> zunStringW;

extern template struct ZUN_API zunStringT<char, zunCharHelper<char>>;
extern template struct ZUN_API zunStringT<zunWChar, zunCharHelper<zunWChar>>;

/// right == text, and its negation; a null `text` equals an empty string.
///@{
ZUN_API bool operator==(const char * text, const zunString & right);
ZUN_API bool operator==(const zunWChar * text, const zunStringW & right);
inline bool operator!=(const char * text, const zunString & right)
{
    return !(text == right);
}
inline bool operator!=(const zunWChar * text, const zunStringW & right)
{
    return !(text == right);
}
///@}

/// Concatenation: a copy of the left operand with the right appended by `<<`.
/// The result has the encoding of the left operand (a raw pointer's being that
/// of its unit); the right is converted when it differs.
///@{
ZUN_API zunString operator+(const zunString & a, const zunString & b);
ZUN_API zunString operator+(const zunString & a, const zunStringW & b);
ZUN_API zunString operator+(const zunString & a, const char * b);
ZUN_API zunString operator+(const zunString & a, const zunWChar * b);
ZUN_API zunString operator+(const char * a, const zunString & b);
ZUN_API zunString operator+(const char * a, const zunStringW & b);
ZUN_API zunStringW operator+(const zunStringW & a, const zunStringW & b);
ZUN_API zunStringW operator+(const zunStringW & a, const zunString & b);
ZUN_API zunStringW operator+(const zunStringW & a, const char * b);
ZUN_API zunStringW operator+(const zunStringW & a, const zunWChar * b);
ZUN_API zunStringW operator+(const zunWChar * a, const zunStringW & b);
ZUN_API zunStringW operator+(const zunWChar * a, const zunString & b);
///@}

/// Appends `src` and its terminator behind the text of `dst`; returns `dst`.
/// Does nothing when either is null. `dst` must have the room.
ZUN_API zunWChar * zunStrCat(zunWChar * dst, const zunWChar * src);
/// Returns `dst`; a null `dst` does nothing, a null `src` empties `dst`. A
/// `count` of 0 copies the whole text with its terminator; a `count` above 0
/// copies `count` units (fewer when `src` ends earlier: the copy stops at its
/// terminator) and writes a terminator at dst[count].
ZUN_API zunWChar * zunStrCpy(zunWChar * dst, const zunWChar * src, unsigned int count);
/// Units before the terminator; 0 for null.
ZUN_API unsigned int zunStrLen(const zunWChar * text);

#endif // ZUN_STRING_H
