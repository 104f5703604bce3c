// UTF-8 <-> UTF-16 conversion: the converter and the zunUTF8 / zunUTF16 copies.
//
// The converter keeps the results of the platform converter with flags 0:
// every maximal invalid UTF-8 subsequence (a byte that cannot start a
// sequence, or a well-formed prefix cut short) becomes one U+FFFD; a lone
// surrogate becomes one U+FFFD. ASCII runs go 16 units at a time.
#include "zunUTF.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <new>

#include "UTFPrivate.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace
{
    constexpr std::uint32_t kReplacement = 0xFFFD;
    constexpr unsigned int kWholeText = 0xFFFFFFFF;

    // Decodes the sequence opened by a non-ASCII byte at `p` (`avail` >= 1
    // bytes readable). Returns the bytes consumed; an invalid subsequence gives
    // U+FFFD and consumes the longest prefix of a well-formed sequence, at
    // least one byte.
    inline std::size_t DecodeSequence(const unsigned char * p, std::size_t avail, std::uint32_t & cp)
    {
        const unsigned char b0 = p[0];
        if (b0 >= 0xC2 && b0 <= 0xDF)
        {
            if (avail >= 2 && (p[1] & 0xC0) == 0x80)
            {
                cp = (std::uint32_t(b0 & 0x1F) << 6) | (p[1] & 0x3F);
                return 2;
            }
            cp = kReplacement;
            return 1;
        }
        if (b0 >= 0xE0 && b0 <= 0xEF)
        {
            // E0 needs A0..BF behind it (no overlong forms), ED 80..9F (no surrogates).
            const unsigned char lo = b0 == 0xE0 ? 0xA0 : 0x80;
            const unsigned char hi = b0 == 0xED ? 0x9F : 0xBF;
            cp = kReplacement;
            if (avail < 2 || p[1] < lo || p[1] > hi)
                return 1;
            if (avail < 3 || (p[2] & 0xC0) != 0x80)
                return 2;
            cp = (std::uint32_t(b0 & 0x0F) << 12) | (std::uint32_t(p[1] & 0x3F) << 6) | (p[2] & 0x3F);
            return 3;
        }
        if (b0 >= 0xF0 && b0 <= 0xF4)
        {
            // F0 needs 90..BF (no overlong forms), F4 80..8F (nothing above U+10FFFF).
            const unsigned char lo = b0 == 0xF0 ? 0x90 : 0x80;
            const unsigned char hi = b0 == 0xF4 ? 0x8F : 0xBF;
            cp = kReplacement;
            if (avail < 2 || p[1] < lo || p[1] > hi)
                return 1;
            if (avail < 3 || (p[2] & 0xC0) != 0x80)
                return 2;
            if (avail < 4 || (p[3] & 0xC0) != 0x80)
                return 3;
            cp = (std::uint32_t(b0 & 0x07) << 18) | (std::uint32_t(p[1] & 0x3F) << 12) |
                 (std::uint32_t(p[2] & 0x3F) << 6) | (p[3] & 0x3F);
            return 4;
        }
        cp = kReplacement; // a continuation byte, C0, C1 or F5..FF
        return 1;
    }

    // One walk serves both the size query (kWrite false) and the conversion.
    // `capacity` bounds the whole-vector stores of the ASCII path.
    template <bool kWrite>
    std::size_t Utf8ToUtf16(const unsigned char * s, std::size_t n, zunWChar * out, std::size_t capacity)
    {
        std::size_t i = 0, o = 0;
        while (i < n)
        {
#if defined(__SSE2__)
            while (i + 16 <= n)
            {
                const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i *>(s + i));
                const unsigned int mask = static_cast<unsigned int>(_mm_movemask_epi8(v));
                const bool roomForVector = !kWrite || o + 16 <= capacity;
                if (kWrite && roomForVector)
                {
                    const __m128i zero = _mm_setzero_si128();
                    _mm_storeu_si128(reinterpret_cast<__m128i *>(out + o), _mm_unpacklo_epi8(v, zero));
                    _mm_storeu_si128(reinterpret_cast<__m128i *>(out + o + 8), _mm_unpackhi_epi8(v, zero));
                }
                if (mask == 0)
                {
                    if (kWrite && !roomForVector)
                        for (std::size_t j = 0; j < 16; ++j)
                            out[o + j] = s[i + j];
                    i += 16;
                    o += 16;
                    continue;
                }
                // The units before the first non-ASCII byte are already stored
                // when the vector fitted; the rest of it is overwritten below.
                const std::size_t ascii = static_cast<std::size_t>(__builtin_ctz(mask));
                if (kWrite && !roomForVector)
                    for (std::size_t j = 0; j < ascii; ++j)
                        out[o + j] = s[i + j];
                i += ascii;
                o += ascii;
                break;
            }
            if (i >= n)
                break;
#endif
            if (s[i] < 0x80)
            {
                if (kWrite)
                    out[o] = s[i];
                ++i;
                ++o;
                continue;
            }
            // Stay in the multi-byte loop while the text is not ASCII, so text
            // in other scripts does not pay for a vector probe per character.
            do
            {
                std::uint32_t cp;
                i += DecodeSequence(s + i, n - i, cp);
                if (cp < 0x10000)
                {
                    if (kWrite)
                        out[o] = static_cast<zunWChar>(cp);
                    ++o;
                }
                else
                {
                    if (kWrite)
                    {
                        cp -= 0x10000;
                        out[o] = static_cast<zunWChar>(0xD800 + (cp >> 10));
                        out[o + 1] = static_cast<zunWChar>(0xDC00 + (cp & 0x3FF));
                    }
                    o += 2;
                }
            } while (i < n && s[i] >= 0x80);
        }
        return o;
    }

    // Writes the UTF-8 of one non-ASCII unit, or of the pair it opens, and
    // returns the units consumed.
    template <bool kWrite>
    inline std::size_t EncodeUnit(const zunWChar * s, std::size_t i, std::size_t n, unsigned char * out,
                                  std::size_t & o)
    {
        const std::uint32_t u = s[i];
        if (u < 0x800)
        {
            if (kWrite)
            {
                out[o] = static_cast<unsigned char>(0xC0 | (u >> 6));
                out[o + 1] = static_cast<unsigned char>(0x80 | (u & 0x3F));
            }
            o += 2;
            return 1;
        }
        if ((u & 0xF800) != 0xD800)
        {
            if (kWrite)
            {
                out[o] = static_cast<unsigned char>(0xE0 | (u >> 12));
                out[o + 1] = static_cast<unsigned char>(0x80 | ((u >> 6) & 0x3F));
                out[o + 2] = static_cast<unsigned char>(0x80 | (u & 0x3F));
            }
            o += 3;
            return 1;
        }
        if (u <= 0xDBFF && i + 1 < n && (s[i + 1] & 0xFC00) == 0xDC00)
        {
            if (kWrite)
            {
                const std::uint32_t cp = 0x10000 + ((u - 0xD800) << 10) + (s[i + 1] - 0xDC00u);
                out[o] = static_cast<unsigned char>(0xF0 | (cp >> 18));
                out[o + 1] = static_cast<unsigned char>(0x80 | ((cp >> 12) & 0x3F));
                out[o + 2] = static_cast<unsigned char>(0x80 | ((cp >> 6) & 0x3F));
                out[o + 3] = static_cast<unsigned char>(0x80 | (cp & 0x3F));
            }
            o += 4;
            return 2;
        }
        if (kWrite) // a lone surrogate: U+FFFD
        {
            out[o] = 0xEF;
            out[o + 1] = 0xBF;
            out[o + 2] = 0xBD;
        }
        o += 3;
        return 1;
    }

    template <bool kWrite>
    std::size_t Utf16ToUtf8(const zunWChar * s, std::size_t n, unsigned char * out, std::size_t capacity)
    {
        std::size_t i = 0, o = 0;
        while (i < n)
        {
#if defined(__SSE2__)
            if (i + 16 <= n)
            {
                const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i *>(s + i));
                const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i *>(s + i + 8));
                // A unit is ASCII when none of its bits 7..15 is set.
                const __m128i highBits = _mm_set1_epi16(static_cast<short>(0xFF80));
                const __m128i zero = _mm_setzero_si128();
                const unsigned int asciiMask =
                    static_cast<unsigned int>(_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(a, highBits), zero))) |
                    (static_cast<unsigned int>(_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(b, highBits), zero)))
                     << 16);
                const bool roomForVector = !kWrite || o + 16 <= capacity;
                if (kWrite && roomForVector)
                    _mm_storeu_si128(reinterpret_cast<__m128i *>(out + o), _mm_packus_epi16(a, b));
                if (asciiMask == 0xFFFFFFFFu)
                {
                    if (kWrite && !roomForVector)
                        for (std::size_t j = 0; j < 16; ++j)
                            out[o + j] = static_cast<unsigned char>(s[i + j]);
                    i += 16;
                    o += 16;
                    continue;
                }
                // The bytes of the leading ASCII units are already stored when
                // the vector fitted; the rest of it is overwritten below.
                const std::size_t ascii = static_cast<std::size_t>(__builtin_ctz(~asciiMask)) / 2;
                if (kWrite && !roomForVector)
                    for (std::size_t j = 0; j < ascii; ++j)
                        out[o + j] = static_cast<unsigned char>(s[i + j]);
                i += ascii;
                o += ascii;
            }
#endif
            // Mixed text goes unit by unit, without vector probes that would
            // mostly fail, until a run of 16 ASCII units promises a block.
            unsigned int asciiRun = 0;
            while (i < n && asciiRun < 16)
            {
                const std::uint32_t u = s[i];
                if (u < 0x80)
                {
                    if (kWrite)
                        out[o] = static_cast<unsigned char>(u);
                    ++i;
                    ++o;
                    ++asciiRun;
                    continue;
                }
                asciiRun = 0;
                i += EncodeUnit<kWrite>(s, i, n, out, o);
            }
        }
        return o;
    }

    // Up to this many source units a conversion allocates for the worst case,
    // converts in one pass and gives the rest of the block back; above it, it
    // sizes first and allocates exactly, so that the passing excess (up to
    // three bytes per unit) stays bounded. A sizing pass rereads the whole
    // source from memory once its length outgrows the caches, which is why
    // the limit is high.
    constexpr std::size_t kOnePassLimit = std::size_t(1) << 24;

    void * AllocateOrThrow(std::size_t bytes)
    {
        void * block = std::malloc(bytes);
        if (block == nullptr)
            throw std::bad_alloc();
        return block;
    }

    // A new block with `length` units of `text` and the terminator behind
    // them; null for a null text.
    template <typename T> T * CopyUnits(const T * text, unsigned int length)
    {
        if (text == nullptr)
            return nullptr;
        const std::size_t bytes = (static_cast<std::size_t>(length) + 1) * sizeof(T);
        auto * copy = static_cast<T *>(AllocateOrThrow(bytes));
        std::memcpy(copy, text, bytes);
        return copy;
    }

    // Gives back the unused tail of a worst-case block when it is worth a call.
    // A block of up to 1 KiB keeps its tail: cutting it would split the
    // allocator's chunk and cost more than the bytes are worth, and a block of
    // one size that comes and goes is reused from the allocator's cache.
    template <typename T> T * FitBlock(T * block, std::size_t used, std::size_t allocated)
    {
        if (allocated - used < 64 || allocated * sizeof(T) <= 1024)
            return block;
        void * fitted = std::realloc(block, used * sizeof(T));
        return fitted != nullptr ? static_cast<T *>(fitted) : block;
    }

    // The platform converter takes an int length: -1 for "up to and with the
    // terminator", and it fails on any other negative length.
    // The whole text is measured only when asked for: a caller's length may
    // cover a buffer that has no terminator behind it.
    template <typename MeasureWholeText>
    bool SourceUnits(unsigned int length, MeasureWholeText measureWholeText, std::size_t & units)
    {
        if (length == kWholeText)
        {
            units = measureWholeText();
            return true;
        }
        if (length > static_cast<unsigned int>(INT_MAX))
            return false;
        units = length;
        return true;
    }

    // The platform converter returns an int count; a count beyond it fails.
    bool CountFits(std::size_t count)
    {
        return count > 0 && count <= static_cast<std::size_t>(INT_MAX);
    }
}

namespace zunUTFPrivate
{
    std::size_t CountUTF16(const char * text, std::size_t bytes)
    {
        return Utf8ToUtf16<false>(reinterpret_cast<const unsigned char *>(text), bytes, nullptr, 0);
    }

    std::size_t ToUTF16(const char * text, std::size_t bytes, zunWChar * out, std::size_t capacity)
    {
        return Utf8ToUtf16<true>(reinterpret_cast<const unsigned char *>(text), bytes, out, capacity);
    }

    std::size_t CountUTF8(const zunWChar * text, std::size_t units)
    {
        return Utf16ToUtf8<false>(text, units, nullptr, 0);
    }

    std::size_t ToUTF8(const zunWChar * text, std::size_t units, char * out, std::size_t capacity)
    {
        return Utf16ToUtf8<true>(text, units, reinterpret_cast<unsigned char *>(out), capacity);
    }

    std::size_t WideLength(const zunWChar * text)
    {
        if (text == nullptr)
            return 0;
        std::size_t length = 0;
        while (text[length] != 0)
            ++length;
        return length;
    }

    void Convert8To16(const char * text, unsigned int length, zunWChar *& out, unsigned int * outLength)
    {
        std::size_t units = 0;
        std::size_t count = 0;
        if (text != nullptr &&
            SourceUnits(
                length, [text] { return std::strlen(text) + 1; }, units) &&
            units > 0)
        {
            const auto * source = reinterpret_cast<const unsigned char *>(text);
            if (units <= kOnePassLimit)
            {
                // Each byte makes at most one unit: the source length bounds the result.
                auto * block = static_cast<zunWChar *>(AllocateOrThrow(2 * (units + 1)));
                count = Utf8ToUtf16<true>(source, units, block, units + 1);
                block[count] = 0;
                out = FitBlock(block, count + 1, units + 1);
            }
            else
            {
                count = Utf8ToUtf16<false>(source, units, nullptr, 0);
                if (CountFits(count))
                {
                    auto * block = static_cast<zunWChar *>(AllocateOrThrow(2 * (count + 1)));
                    Utf8ToUtf16<true>(source, units, block, count + 1);
                    block[count] = 0;
                    out = block;
                }
                else
                {
                    count = 0;
                }
            }
        }
        if (outLength != nullptr)
            *outLength = static_cast<unsigned int>(count);
    }

    void Convert16To8(const zunWChar * text, unsigned int length, char *& out, unsigned int * outLength)
    {
        out = nullptr;
        std::size_t units = 0;
        std::size_t count = 0;
        if (text != nullptr &&
            SourceUnits(
                length, [text] { return WideLength(text) + 1; }, units) &&
            units > 0)
        {
            if (units <= kOnePassLimit)
            {
                // Each unit makes at most three bytes (a pair makes four from two).
                const std::size_t worst = 3 * units;
                auto * block = static_cast<unsigned char *>(AllocateOrThrow(worst + 1));
                count = Utf16ToUtf8<true>(text, units, block, worst + 1);
                block[count] = 0;
                out = reinterpret_cast<char *>(FitBlock(block, count + 1, worst + 1));
            }
            else
            {
                count = Utf16ToUtf8<false>(text, units, nullptr, 0);
                if (CountFits(count))
                {
                    auto * block = static_cast<unsigned char *>(AllocateOrThrow(count + 1));
                    Utf16ToUtf8<true>(text, units, block, count + 1);
                    block[count] = 0;
                    out = reinterpret_cast<char *>(block);
                }
                else
                {
                    count = 0;
                }
            }
        }
        if (outLength != nullptr)
            *outLength = static_cast<unsigned int>(count);
    }

    char * WideToNew8(const zunWChar * text)
    {
        char * result = nullptr;
        Convert16To8(text, kWholeText, result, nullptr);
        return result;
    }

    zunWChar * WideCopy(const zunWChar * text)
    {
        const std::size_t length = WideLength(text);
        auto * copy = static_cast<zunWChar *>(std::malloc((length + 1) * sizeof(zunWChar)));
        if (copy == nullptr)
            return nullptr;
        if (length > 0)
            std::memcpy(copy, text, length * sizeof(zunWChar));
        copy[length] = 0;
        return copy;
    }
}

// ---------------------------------------------------------------------------
// zunUTF16

zunUTF16::zunUTF16(const char * text, unsigned int length) : m_nLength(0), m_pText(nullptr)
{
    zunUTFPrivate::Convert8To16(text, length, m_pText, &m_nLength);
}

// The copies. The documented copy constructors differ from assignment: the
// wide one allocates 2 x length bytes and writes its terminator one unit past
// that block, and reads address 0 for an object without text; the narrow one
// copies length bytes and leaves a text converted with an explicit length
// unterminated. Every converted text here ends in a terminator at index
// length, so all four operations copy length + 1 units into a block of that
// size: the defined results are the same, and the copy never writes past its
// block, never reads address 0 and always ends in a terminator.

zunUTF16::zunUTF16(const zunUTF16 & other)
    : m_nLength(other.m_nLength), m_pText(CopyUnits(other.m_pText, other.m_nLength))
{
}

zunUTF16::~zunUTF16()
{
    std::free(m_pText);
}

zunUTF16 & zunUTF16::operator=(const zunUTF16 & other)
{
    // Self-assignment would read the text it has just freed; it keeps the
    // object as it is instead.
    if (this == &other)
        return *this;
    std::free(m_pText);
    m_pText = nullptr;
    m_nLength = other.m_nLength;
    m_pText = CopyUnits(other.m_pText, other.m_nLength);
    return *this;
}

std::unique_ptr<char, std::function<void(char *)>> zunUTF16::ToNew8(const zunWChar * text)
{
    char * converted = nullptr;
    zunUTFPrivate::Convert16To8(text, kWholeText, converted, nullptr);
    return std::unique_ptr<char, std::function<void(char *)>>(converted, [](char * p) { std::free(p); });
}

// ---------------------------------------------------------------------------
// zunUTF8

zunUTF8::zunUTF8(const zunWChar * text, unsigned int length) : m_nLength(0), m_pText(nullptr)
{
    zunUTFPrivate::Convert16To8(text, length, m_pText, &m_nLength);
}

zunUTF8::zunUTF8(const zunUTF8 & other) : m_nLength(other.m_nLength), m_pText(CopyUnits(other.m_pText, other.m_nLength))
{
}

zunUTF8::~zunUTF8()
{
    std::free(m_pText);
}

zunUTF8 & zunUTF8::operator=(const zunUTF8 & other)
{
    // Self-assignment would read the text it has just freed; it keeps the
    // object as it is instead.
    if (this == &other)
        return *this;
    std::free(m_pText);
    m_pText = nullptr;
    m_nLength = other.m_nLength;
    m_pText = CopyUnits(other.m_pText, other.m_nLength);
    return *this;
}

std::unique_ptr<zunWChar, std::function<void(zunWChar *)>> zunUTF8::ToNew16(const char * text)
{
    zunWChar * converted = nullptr;
    zunUTFPrivate::Convert8To16(text, kWholeText, converted, nullptr);
    return std::unique_ptr<zunWChar, std::function<void(zunWChar *)>>(converted, [](zunWChar * p) { std::free(p); });
}
