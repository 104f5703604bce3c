// UTFPrivate.h - the library's converter between UTF-8 and UTF-16, for its own
// families (strings, paths, logs). Not installed.
//
// Conversion follows the platform converter with flags 0: each maximal invalid
// UTF-8 subsequence gives one U+FFFD, each lone surrogate gives one U+FFFD.
#ifndef ZUN_UTF_PRIVATE_H
#define ZUN_UTF_PRIVATE_H

#include <cstddef>

#include "zunConfig.h"

namespace zunUTFPrivate
{
    /// Converts `length` bytes (0xFFFFFFFF: the whole text and its terminator)
    /// into a new text of exactly the produced units plus a terminator,
    /// released with free(). `out` stays as it was when nothing is produced;
    /// `outLength`, if given, receives the produced count (0 when nothing).
    /// Throws std::bad_alloc when the heap is exhausted.
    void Convert8To16(const char * text, unsigned int length, zunWChar *& out, unsigned int * outLength);
    /// The mirror direction; here `out` is set to null first.
    void Convert16To8(const zunWChar * text, unsigned int length, char *& out, unsigned int * outLength);

    /// A new UTF-8 text of a whole wide text, released with free(); null when
    /// the text is null.
    char * WideToNew8(const zunWChar * text);
    /// A new copy of a wide text, released with free(); null only when the
    /// allocation failed. A null text gives an empty copy.
    zunWChar * WideCopy(const zunWChar * text);

    /// Units of UTF-16 that `bytes` bytes of UTF-8 make.
    std::size_t CountUTF16(const char * text, std::size_t bytes);
    /// Writes the UTF-16 of `bytes` bytes of UTF-8 to `out`, which has room for
    /// `capacity` >= CountUTF16 units, and returns the units written. Units
    /// behind the result, up to `capacity`, may be overwritten. No terminator.
    std::size_t ToUTF16(const char * text, std::size_t bytes, zunWChar * out, std::size_t capacity);
    /// Bytes of UTF-8 that `units` units of UTF-16 make.
    std::size_t CountUTF8(const zunWChar * text, std::size_t units);
    /// Writes the UTF-8 of `units` units of UTF-16 to `out`, which has room for
    /// `capacity` >= CountUTF8 bytes, and returns the bytes written. Bytes
    /// behind the result, up to `capacity`, may be overwritten. No terminator.
    std::size_t ToUTF8(const zunWChar * text, std::size_t units, char * out, std::size_t capacity);

    /// Length of a wide text before its terminator; 0 for null.
    std::size_t WideLength(const zunWChar * text);
}

#endif // ZUN_UTF_PRIVATE_H
