// zunString and zunStringW: exact-size blocks, a running checksum, and the
// conversions between the two encodings.
#include "zunString.h"

#include <cstdio>
#include <cstring>
#include <string>

#include "StringChecksum.h"
#include "UTFPrivate.h"
#include "platform/WideFormat.h"

namespace
{
    constexpr unsigned int kNotFound = 0xFFFFFFFF;
    constexpr unsigned int kWholeText = 0xFFFFFFFF;

    template <typename C> std::size_t TextLength(const C * text)
    {
        return std::char_traits<C>::length(text);
    }

    template <typename C> std::uint64_t SumLowBytes(const C * text, std::size_t units)
    {
        return zunStringChecksum::SumLowBytes(text, units);
    }

    // A block of `units` units and a terminator, or null when the heap (or the
    // 32-bit size of a block) says no.
    template <typename C> C * NewBlock(std::size_t units)
    {
        if (units >= 0xFFFFFFFFu / sizeof(C))
            return nullptr;
        void * block = nullptr;
        if (!zunMemAlloc(block, static_cast<unsigned int>((units + 1) * sizeof(C)), false))
            return nullptr;
        return static_cast<C *>(block);
    }

    // Copies `length` units of `text` and a terminator into `block`, taking
    // the checksum on the way, then frees the string's old block and takes
    // this one. `text` may lie in the old block.
    template <typename S, typename C> void AdoptCopy(S & string, C * block, const C * text, std::size_t length)
    {
        const std::uint64_t checksum = zunStringChecksum::CopySumLowBytes(block, text, length);
        block[length] = 0;
        void * old = string.m_pData;
        zunMemFree(old);
        string.m_pData = block;
        string.m_nLength = static_cast<unsigned int>(length);
        string.m_nChecksum = checksum;
    }

    template <typename C> void CopyUnits(C * dst, const C * src, std::size_t units)
    {
        if (units != 0)
            std::memcpy(dst, src, units * sizeof(C));
    }

    // Conversion from the other encoding, measured first so it lands in the
    // string's own block.
    std::size_t ConvertedUnits(const char * text, std::size_t length)
    {
        return zunUTFPrivate::CountUTF16(text, length);
    }
    std::size_t ConvertedUnits(const zunWChar * text, std::size_t length)
    {
        return zunUTFPrivate::CountUTF8(text, length);
    }
    std::size_t ConvertInto(const char * text, std::size_t length, zunWChar * out, std::size_t capacity)
    {
        return zunUTFPrivate::ToUTF16(text, length, out, capacity);
    }
    std::size_t ConvertInto(const zunWChar * text, std::size_t length, char * out, std::size_t capacity)
    {
        return zunUTFPrivate::ToUTF8(text, length, out, capacity);
    }

    // The formatter of each encoding: the units the whole result needs
    // (without terminator), negative on a format error; writes at most
    // `capacity` units, terminator included, when `out` is not null.
    int FormatInto(char * out, std::size_t capacity, const char * format, va_list args)
    {
        return std::vsnprintf(out, capacity, format, args);
    }
    int FormatInto(zunWChar * out, std::size_t capacity, const zunWChar * format, va_list args)
    {
        return zunPlatform::FormatWide(out, capacity, format, args);
    }

    // The last test of equality, for texts of equal length and checksum: the
    // unit compare in mode 0. Equal blocks are equal without it; otherwise it
    // decides, since it stops at a 0 unit inside the texts.
    template <typename H, typename C> bool SameText(const C * a, const C * b, std::size_t length)
    {
        if (a != nullptr && b != nullptr && std::memcmp(a, b, length * sizeof(C)) == 0)
            return true;
        return H::Compare(a, b, StringCompareMode_Sensitive) == CompareResult_Equal;
    }

    template <typename Result, typename Left, typename Right> Result Concatenate(const Left & left, const Right & right)
    {
        Result result(left);
        result << right;
        return result;
    }
}

template <typename C, typename H> const zunStringT<C, H> zunStringT<C, H>::Empty(zunStringT<C, H>::ms_szEmptyText);

template <typename C, typename H> void zunStringT<C, H>::Adopt(C * block, unsigned int length)
{
    void * old = m_pData;
    zunMemFree(old);
    m_pData = block;
    m_nLength = length;
    m_nChecksum = SumLowBytes(block, length);
}

template <typename C, typename H> void zunStringT<C, H>::Clear()
{
    void * old = m_pData;
    zunMemFree(old);
    m_pData = nullptr;
    m_nLength = 0;
    m_nChecksum = 0;
}

// ---- Assignment -------------------------------------------------------------

template <typename C, typename H> zunStringT<C, H> & zunStringT<C, H>::operator=(const C * text)
{
    if (text == m_pData)
        return *this;
    if (text == nullptr)
    {
        Clear();
        return *this;
    }
    const std::size_t length = TextLength(text);
    C * block = NewBlock<C>(length);
    if (block == nullptr)
        return *this;
    // Copied before the old block goes, as `text` may lie inside it; the
    // checksum is taken on the way.
    AdoptCopy(*this, block, text, length);
    return *this;
}

// A self-assignment reaches the text assignment with the string's own block,
// which it leaves alone.
// NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
template <typename C, typename H> zunStringT<C, H> & zunStringT<C, H>::operator=(const zunStringT & other)
{
    return *this = static_cast<const C *>(other);
}

template <typename C, typename H> zunStringT<C, H> & zunStringT<C, H>::operator=(const OtherChar * text)
{
    if (text == nullptr)
        return *this = static_cast<const C *>(nullptr);
    const std::size_t sourceLength = TextLength(text);
    const std::size_t units = ConvertedUnits(text, sourceLength);
    C * block = NewBlock<C>(units);
    if (block == nullptr)
        return *this;
    const std::size_t length = ConvertInto(text, sourceLength, block, units);
    block[length] = 0;
    Adopt(block, static_cast<unsigned int>(length));
    return *this;
}

template <typename C, typename H> zunStringT<C, H> & zunStringT<C, H>::operator=(const OtherString & other)
{
    return *this = static_cast<const OtherChar *>(other);
}

// ---- Appending --------------------------------------------------------------

template <typename C, typename H> zunStringT<C, H> & zunStringT<C, H>::operator<<(const C * text)
{
    return Insert(kWholeText, text, kWholeText);
}

template <typename C, typename H> zunStringT<C, H> & zunStringT<C, H>::operator<<(const zunStringT & other)
{
    return Insert(kWholeText, static_cast<const C *>(other), kWholeText);
}

template <typename C, typename H> zunStringT<C, H> & zunStringT<C, H>::operator<<(const OtherChar * text)
{
    if (text == nullptr)
        return *this;
    const std::size_t sourceLength = TextLength(text);
    const std::size_t units = ConvertedUnits(text, sourceLength);
    C * block = NewBlock<C>(std::size_t(m_nLength) + units);
    if (block == nullptr)
        return *this;
    if (m_pData != nullptr)
        CopyUnits(block, m_pData, m_nLength);
    const std::size_t length = m_nLength + ConvertInto(text, sourceLength, block + m_nLength, units);
    block[length] = 0;
    Adopt(block, static_cast<unsigned int>(length));
    return *this;
}

template <typename C, typename H> zunStringT<C, H> & zunStringT<C, H>::operator<<(const OtherString & other)
{
    return *this << static_cast<const OtherChar *>(other);
}

// ---- Formatting -------------------------------------------------------------

template <typename C, typename H> unsigned int zunStringT<C, H>::Printf(const C * format, ...)
{
    va_list args;
    va_start(args, format);
    const unsigned int length = VPrintf(format, args);
    va_end(args);
    return length;
}

template <typename C, typename H> unsigned int zunStringT<C, H>::VPrintf(const C * format, va_list args)
{
    // The measuring pass formats into a buffer on the stack: a result that
    // fits there is copied into its block, and only a longer one is
    // formatted a second time, into the block itself.
    C scratch[256];
    int needed = -1;
    if (format != nullptr)
    {
        // The list may be read twice, and reading consumes it: measure with a copy.
        va_list sizing;
        va_copy(sizing, args);
        needed = FormatInto(scratch, sizeof(scratch) / sizeof(C), format, sizing);
        va_end(sizing);
    }
    if (needed <= 0)
    {
        Clear();
        return 0;
    }
    const std::size_t length = static_cast<std::size_t>(needed);
    C * block = NewBlock<C>(length);
    if (block == nullptr)
        return 0;
    if (length < sizeof(scratch) / sizeof(C))
    {
        AdoptCopy(*this, block, scratch, length);
        return m_nLength;
    }
    if (FormatInto(block, length + 1, format, args) != needed)
    {
        // Only a formatter that failed on its own scratch memory gets here.
        void * unused = block;
        zunMemFree(unused);
        return 0;
    }
    Adopt(block, static_cast<unsigned int>(length));
    return m_nLength;
}

// ---- Reading ----------------------------------------------------------------

template <typename C, typename H> unsigned int zunStringT<C, H>::FindLast(C c, unsigned int last) const
{
    if (m_pData == nullptr)
        return kNotFound;
    unsigned int found = kNotFound;
    for (unsigned int i = 0; m_pData[i] != 0; ++i)
    {
        if (m_pData[i] == c)
            found = i;
        if (i == last)
            break;
    }
    return found;
}

template <typename C, typename H>
zunStringT<C, H> zunStringT<C, H>::SubString(unsigned int position, unsigned int count) const
{
    if (m_pData == nullptr || position >= m_nLength || count == 0)
        return Empty;
    if (count > m_nLength - position)
        count = m_nLength - position;
    zunStringT result;
    result.Insert(0, m_pData + position, count);
    return result;
}

// ---- Editing ----------------------------------------------------------------

template <typename C, typename H>
zunStringT<C, H> & zunStringT<C, H>::Insert(unsigned int position, const C * text, unsigned int count)
{
    if (text == nullptr)
        return *this;
    const std::size_t inserted = count == kWholeText ? TextLength(text) : count;
    const std::size_t length = m_nLength + inserted;
    C * block = NewBlock<C>(length);
    if (block == nullptr)
        return *this;
    const std::size_t head = position < m_nLength ? position : m_nLength;
    if (m_pData != nullptr)
        CopyUnits(block, m_pData, head);
    CopyUnits(block + head, text, inserted);
    if (m_pData != nullptr)
        CopyUnits(block + head + inserted, m_pData + head, m_nLength - head);
    block[length] = 0;
    Adopt(block, static_cast<unsigned int>(length));
    return *this;
}

template <typename C, typename H> zunStringT<C, H> & zunStringT<C, H>::Append(const C * text)
{
    if (text == nullptr)
        return *this;
    const std::size_t appended = TextLength(text);
    C * block = NewBlock<C>(m_nLength + appended);
    if (block == nullptr)
        return *this;
    if (m_pData != nullptr)
        CopyUnits(block, m_pData, m_nLength);
    CopyUnits(block + m_nLength, text, appended + 1);
    // The length is that of the result read as a terminated text, so a 0 unit
    // inside the old text (Printf of "%c" with 0) ends it there.
    const std::size_t length = TextLength(block);
    Adopt(block, static_cast<unsigned int>(length));
    return *this;
}

template <typename C, typename H> zunStringT<C, H> & zunStringT<C, H>::Remove(unsigned int position, unsigned int count)
{
    if (m_pData == nullptr || position >= m_nLength)
        return *this;
    if (count > m_nLength - position)
    {
        m_nLength = position;
    }
    else
    {
        H::CopyBuffer(m_pData + position, m_pData + position + count, m_nLength - position - count);
        m_nLength -= count;
    }
    m_pData[m_nLength] = 0;
    m_nChecksum = SumLowBytes(m_pData, m_nLength);
    return *this;
}

template <typename C, typename H> int zunStringT<C, H>::Replace(C from, C to)
{
    if (m_pData == nullptr || m_nLength == 0)
        return 0;
    int replaced = 0;
    for (unsigned int i = 0; i < m_nLength; ++i)
    {
        if (m_pData[i] == from)
        {
            m_pData[i] = to;
            ++replaced;
        }
    }
    if (replaced != 0)
    {
        // Each replaced unit moves the sum by the difference of the low bytes:
        // the same result as a recount, without a second pass.
        const std::uint64_t n = static_cast<std::uint64_t>(replaced);
        m_nChecksum += n * (static_cast<std::uint64_t>(to) & 0xFF) - n * (static_cast<std::uint64_t>(from) & 0xFF);
    }
    return replaced;
}

template <typename C, typename H> zunStringT<C, H> & zunStringT<C, H>::Keep(unsigned int first, unsigned int last)
{
    if (m_pData == nullptr || first >= m_nLength)
        return *this;
    if (last >= m_nLength)
        last = m_nLength - 1;
    // A `last` below `first` would make a length that wraps; it keeps nothing.
    const unsigned int length = last >= first ? last - first + 1 : 0;
    if (first != 0)
        H::CopyBuffer(m_pData, m_pData + first, length);
    m_pData[length] = 0;
    m_nLength = length;
    m_nChecksum = SumLowBytes(m_pData, m_nLength);
    return *this;
}

template <typename C, typename H> void zunStringT<C, H>::ToLower()
{
    if (m_pData == nullptr)
        return;
    C * lowered = H::ChangeStringCase(m_pData, true);
    if (lowered != nullptr)
        Adopt(lowered, static_cast<unsigned int>(TextLength(lowered)));
}

// ---- Equality ---------------------------------------------------------------

template <typename C, typename H> bool zunStringT<C, H>::operator==(const C * text) const
{
    // What a temporary made from `text` would hold, without making one.
    const std::size_t length = text != nullptr ? TextLength(text) : 0;
    return m_nLength == length && m_nChecksum == SumLowBytes(text, length) && SameText<H>(m_pData, text, length);
}

template struct zunStringT<char, zunCharHelper<char>>;
template struct zunStringT<zunWChar, zunCharHelper<zunWChar>>;

// ---- Free operators ---------------------------------------------------------

bool operator==(const char * text, const zunString & right)
{
    return right == text;
}

bool operator==(const zunWChar * text, const zunStringW & right)
{
    return right == text;
}

zunString operator+(const zunString & a, const zunString & b)
{
    return Concatenate<zunString>(a, b);
}

zunString operator+(const zunString & a, const zunStringW & b)
{
    return Concatenate<zunString>(a, b);
}

zunString operator+(const zunString & a, const char * b)
{
    return Concatenate<zunString>(a, b);
}

zunString operator+(const zunString & a, const zunWChar * b)
{
    return Concatenate<zunString>(a, b);
}

zunString operator+(const char * a, const zunString & b)
{
    return Concatenate<zunString>(a, b);
}

zunString operator+(const char * a, const zunStringW & b)
{
    return Concatenate<zunString>(a, b);
}

zunStringW operator+(const zunStringW & a, const zunStringW & b)
{
    return Concatenate<zunStringW>(a, b);
}

zunStringW operator+(const zunStringW & a, const zunString & b)
{
    return Concatenate<zunStringW>(a, b);
}

zunStringW operator+(const zunStringW & a, const char * b)
{
    return Concatenate<zunStringW>(a, b);
}

zunStringW operator+(const zunStringW & a, const zunWChar * b)
{
    return Concatenate<zunStringW>(a, b);
}

zunStringW operator+(const zunWChar * a, const zunStringW & b)
{
    return Concatenate<zunStringW>(a, b);
}

zunStringW operator+(const zunWChar * a, const zunString & b)
{
    return Concatenate<zunStringW>(a, b);
}

// ---- Raw wide text ----------------------------------------------------------

zunWChar * zunStrCat(zunWChar * dst, const zunWChar * src)
{
    if (dst == nullptr || src == nullptr)
        return dst;
    std::memmove(dst + TextLength(dst), src, (TextLength(src) + 1) * sizeof(zunWChar));
    return dst;
}

zunWChar * zunStrCpy(zunWChar * dst, const zunWChar * src, unsigned int count)
{
    if (dst == nullptr)
        return dst;
    if (src == nullptr)
    {
        dst[0] = 0;
        return dst;
    }
    if (count == 0)
    {
        std::memmove(dst, src, (TextLength(src) + 1) * sizeof(zunWChar));
        return dst;
    }
    // `count` units are asked for; a source that ends earlier is copied up to
    // its terminator rather than read behind it. The text in `dst` is the same.
    unsigned int i = 0;
    for (; i < count && src[i] != 0; ++i)
        dst[i] = src[i];
    if (i < count)
        dst[i] = 0;
    dst[count] = 0;
    return dst;
}

unsigned int zunStrLen(const zunWChar * text)
{
    return text == nullptr ? 0 : static_cast<unsigned int>(TextLength(text));
}
