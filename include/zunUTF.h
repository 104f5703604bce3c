// zunUTF.h - conversion between the library's two encodings.
//
// 8-bit text is UTF-8, wide text is UTF-16 in 16-bit zunWChar units; there is
// no other code page. Invalid input never fails: each maximal invalid UTF-8
// subsequence and each lone surrogate becomes one U+FFFD, and conversion goes
// on. There is no way to ask whether the text was valid.
//
//   zunUTF16 wide(u8text, 0xFFFFFFFF);        // whole text, terminator included
//   DrawText(wide.Get16());
//   auto narrow = zunUTF16::ToNew8(wideText); // self-releasing, null if empty
//
// Length counts units: with an explicit source length, the units made from that
// many source units; with 0xFFFFFFFF the source's terminator is converted too
// and counted, and a second terminator always follows.
//
// Results are allocated from the heap and released with free(). Exhausted
// memory throws std::bad_alloc (the conversion is not a zunMemAlloc path).
#ifndef ZUN_UTF_H
#define ZUN_UTF_H

#include <functional>
#include <memory>

#include "zunConfig.h"

/// A UTF-16 copy of a UTF-8 text.
class ZUN_API zunUTF16
{
public:
    /// Converts `length` bytes, or the whole text with its terminator when
    /// `length` is 0xFFFFFFFF. A null `text` or a length of 0 leaves an empty
    /// object (length 0, null text).
    zunUTF16(const char * text, unsigned int length);
    /// Copies the text and its terminator (see the note in the source on the
    /// block size).
    zunUTF16(const zunUTF16 & other);
    ~zunUTF16();
    /// Frees the old text, then copies length + 1 units; a null source gives a
    /// null text.
    zunUTF16 & operator=(const zunUTF16 & other);

    /// The converted text; null if there is none.
    ///@{
    const zunWChar * Get16() const { return m_pText; }
    operator const zunWChar *() const { return m_pText; }
    ///@}
    /// The number of converted units, a terminator converted with the text
    /// included.
    unsigned int Length() const { return m_nLength; }

    /// A new UTF-8 text of a UTF-16 text. Null if the conversion gave nothing
    /// (a null text); the deleter calls free.
    static std::unique_ptr<char, std::function<void(char *)>> ToNew8(const zunWChar * text);

private:
    unsigned int m_nLength;
    zunWChar * m_pText;
};

/// A UTF-8 copy of a UTF-16 text.
class ZUN_API zunUTF8
{
public:
    /// Converts `length` units, or the whole text with its terminator when
    /// `length` is 0xFFFFFFFF. A null `text` or a length of 0 leaves an empty
    /// object (length 0, null text).
    zunUTF8(const zunWChar * text, unsigned int length);
    /// Copies `Length()` bytes (see the note in the source on the terminator).
    zunUTF8(const zunUTF8 & other);
    ~zunUTF8();
    /// Frees the old text, then copies length + 1 bytes; a null source gives a
    /// null text.
    zunUTF8 & operator=(const zunUTF8 & other);

    /// The converted text; null if there is none.
    ///@{
    const char * Get8() const { return m_pText; }
    operator const char *() const { return m_pText; }
    ///@}
    /// The number of converted bytes, a terminator converted with the text
    /// included.
    unsigned int Length() const { return m_nLength; }

    /// A new UTF-16 text of a UTF-8 text. Null if the conversion gave nothing
    /// (a null text); the deleter calls free.
    static std::unique_ptr<zunWChar, std::function<void(zunWChar *)>> ToNew16(const char * text);

private:
    unsigned int m_nLength;
    char * m_pText;
};

#endif // ZUN_UTF_H
