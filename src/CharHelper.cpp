// The character helpers of UTF-8 and UTF-16 text.
#include "zunCharHelper.h"

#include <cstdio>
#include <cstring>
#include <string_view>

#include "zunException.h"
#include "zunMem.h"
#include "zunUTF.h"

#include "CharRules.h"
#include "platform/Text.h"

namespace
{
    constexpr unsigned int kNotFound = 0xFFFFFFFF;
    constexpr unsigned int kWholeText = 0xFFFFFFFF;
    constexpr std::size_t kNumberUnits = 1024;

    // Number texts are not owned: they live in static buffers.
    void KeepBuffer(void *) {}

    template <typename C> std::size_t TextLength(const C * text)
    {
        return std::char_traits<C>::length(text);
    }

    CompareResult Order(int difference)
    {
        return difference < 0 ? CompareResult_Less : difference == 0 ? CompareResult_Equal : CompareResult_Greater;
    }

    template <typename C> CompareResult CompareTexts(const C * a, const C * b, StringCompareMode mode)
    {
        if (a == nullptr || b == nullptr)
        {
            const C * present = a != nullptr ? a : b;
            if (present == nullptr || present[0] == 0)
                return CompareResult_Equal;
            return a == nullptr ? CompareResult_Less : CompareResult_Greater;
        }
        if (mode != StringCompareMode_Sensitive)
            return Order(zunPlatform::CompareNoCase(a, b));
        if constexpr (sizeof(C) == 1)
            return Order(std::strcmp(a, b)); // strcmp orders bytes as unsigned values
        using Unit = typename zunCharRules::Unsigned<C>::type;
        for (;; ++a, ++b)
        {
            const Unit left = static_cast<Unit>(*a);
            const Unit right = static_cast<Unit>(*b);
            if (left != right)
                return left < right ? CompareResult_Less : CompareResult_Greater;
            if (left == 0)
                return CompareResult_Equal;
        }
    }

    // Maps the first unit of one character; returns its size in units.
    // Multi-unit characters are reported and go on.
    template <typename C> unsigned int MapCharacter(const C * c, bool toLower, C & mapped)
    {
        const unsigned int units = zunCharRules::UnitsOf(c[0]);
        if (units > 1)
            zunFixMe(zunCharRules::kMultiUnitReport<C>);
        mapped = zunCharRules::MapCase(c[0], toLower);
        return units;
    }

    template <typename C, typename Value>
    std::unique_ptr<C, std::function<void(C *)>> FormatNumber(C (&buffer)[kNumberUnits], const char * format,
                                                              Value value)
    {
        if constexpr (sizeof(C) == 1)
        {
            std::snprintf(buffer, kNumberUnits, format, value);
        }
        else
        {
            // The digits of a number are ASCII: format narrow, then widen.
            char narrow[kNumberUnits];
            std::snprintf(narrow, kNumberUnits, format, value);
            std::size_t i = 0;
            for (; narrow[i] != 0; ++i)
                buffer[i] = static_cast<unsigned char>(narrow[i]);
            buffer[i] = 0;
        }
        return std::unique_ptr<C, std::function<void(C *)>>(buffer, KeepBuffer);
    }
}

template <typename C> CompareResult zunCharHelper<C>::Compare(const C * a, const C * b, StringCompareMode mode)
{
    return CompareTexts(a, b, mode);
}

// Each overload has its own static buffer, and each helper its own set.

template <typename C> typename zunCharHelper<C>::NumberText zunCharHelper<C>::Convert(int value)
{
    static C buffer[kNumberUnits];
    return FormatNumber(buffer, "%d", value);
}

template <typename C> typename zunCharHelper<C>::NumberText zunCharHelper<C>::Convert(unsigned int value)
{
    static C buffer[kNumberUnits];
    return FormatNumber(buffer, "%u", value);
}

template <typename C> typename zunCharHelper<C>::NumberText zunCharHelper<C>::Convert(std::int64_t value)
{
    static C buffer[kNumberUnits];
    return FormatNumber(buffer, "%lld", static_cast<long long>(value));
}

template <typename C> typename zunCharHelper<C>::NumberText zunCharHelper<C>::Convert(std::uint64_t value)
{
    static C buffer[kNumberUnits];
    return FormatNumber(buffer, "%llu", static_cast<unsigned long long>(value));
}

template <typename C> typename zunCharHelper<C>::NumberText zunCharHelper<C>::Convert(double value)
{
    static C buffer[kNumberUnits];
    return FormatNumber(buffer, "%f", value);
}

template <typename C> std::unique_ptr<C, std::function<void(C *)>> zunCharHelper<C>::Convert(const OtherChar * text)
{
    if constexpr (sizeof(C) == 1)
        return zunUTF16::ToNew8(text);
    else
        return zunUTF8::ToNew16(text);
}

template <typename C> void zunCharHelper<C>::CopyBuffer(C * dst, const C * src, unsigned int count)
{
    if (src == nullptr)
        return;
    const std::size_t units = count == kWholeText ? TextLength(src) + 1 : count;
    zunMemCopy(dst, src, static_cast<unsigned int>(units * sizeof(C)));
}

template <typename C> unsigned int zunCharHelper<C>::FindChar(const C * text, C c)
{
    for (unsigned int i = 0; text[i] != 0; ++i)
        if (text[i] == c)
            return i;
    return kNotFound;
}

template <typename C> unsigned int zunCharHelper<C>::FindSubString(const C * text, const C * sub)
{
    const std::basic_string_view<C> haystack(text);
    const std::size_t found = haystack.find(sub);
    return found == std::basic_string_view<C>::npos ? kNotFound : static_cast<unsigned int>(found);
}

template <typename C> unsigned int zunCharHelper<C>::GetByteOffset(const C * text, unsigned int chars)
{
    // A character is stepped over one unit at a time so that a caller asking
    // for more characters than the text holds stops at the terminator instead
    // of reading behind it.
    unsigned int offset = 0;
    for (unsigned int i = 0; i < chars && text[offset] != 0; ++i)
    {
        const unsigned int size = SizeOf(text[offset]);
        ++offset;
        for (unsigned int k = 1; k < size && text[offset] != 0; ++k)
            ++offset;
    }
    return offset;
}

template <typename C> bool zunCharHelper<C>::IsValidChar(C c)
{
    if constexpr (sizeof(C) == 1)
        return static_cast<unsigned char>(c) < 0x80;
    else
        return c < 0xD800 || c > 0xDFFF;
}

template <typename C>
void zunCharHelper<C>::ChangeCharCase(const C * c, bool toLower, unsigned char (&out)[4], unsigned int & srcSize,
                                      unsigned int & dstSize)
{
    C mapped;
    const unsigned int units = MapCharacter(c, toLower, mapped);
    srcSize = dstSize = units * static_cast<unsigned int>(sizeof(C));
    std::memcpy(out, &mapped, sizeof(C));
}

template <typename C> C * zunCharHelper<C>::ChangeStringCase(const C * text, bool toLower)
{
    const std::size_t length = TextLength(text);
    if (length + 1 > 0xFFFFFFFFu / sizeof(C))
        return nullptr;
    void * block = nullptr;
    if (!zunMemAlloc(block, static_cast<unsigned int>((length + 1) * sizeof(C)), false))
        return nullptr;
    C * out = static_cast<C *>(block);
    std::size_t i = 0;
    while (i < length)
    {
        C mapped;
        std::size_t units = MapCharacter(text + i, toLower, mapped);
        // A character cut short by the end of the text ends there: the lead
        // rule alone would step over the terminator.
        if (units > length - i)
            units = length - i;
        out[i] = mapped;
        // The other units of a multi-unit character pass through as they are.
        for (std::size_t k = 1; k < units; ++k)
            out[i + k] = text[i + k];
        i += units;
    }
    out[length] = 0;
    return out;
}

template <typename C> unsigned int zunCharHelper<C>::SizeOf(C lead)
{
    return zunCharRules::UnitsOf(lead);
}

template struct zunCharHelper<char>;
template struct zunCharHelper<zunWChar>;
