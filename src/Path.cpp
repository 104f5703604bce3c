// zunPath: the canonical text of a path and every operation on that text.
#include "zunPath.h"

#include <cstddef>
#include <cstring>
#include <utility>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "CharRules.h"
#include "UTFPrivate.h"
#include "platform/FileSystem.h"
#include "zunException.h"
#include "zunMem.h"

namespace
{
    constexpr unsigned int kNotFound = 0xFFFFFFFF;
    constexpr unsigned int kToTheEnd = 0xFFFFFFFF;
    constexpr zunWChar kSeparator = u'\\';
    const char * const kAbsoluteAppend = "You can not append an absolute path";

    // Runs of separators fold to one, except in a text that starts with two
    // separators and has three or more units: that one is a network name and
    // stays whole, further doubled separators included. Folding every run in
    // one pass gives what removing one unit at the first double separator,
    // again and again, gives. In place: no allocation, so it cannot fail.
    void Collapse(zunStringW & text)
    {
        const unsigned int length = text.Length();
        const zunWChar * units = text;
        unsigned int i = 0;
        while (i + 1 < length && !(units[i] == kSeparator && units[i + 1] == kSeparator))
            ++i;
        if (i + 1 >= length || (i == 0 && length >= 3))
            return;
        while (i + 1 < text.Length())
        {
            units = text;
            if (units[i] == kSeparator && units[i + 1] == kSeparator)
            {
                unsigned int run = 2;
                while (i + run < text.Length() && units[i + run] == kSeparator)
                    ++run;
                text.Remove(i + 1, run - 1);
            }
            ++i;
        }
    }

    void Normalise(zunStringW & text)
    {
        text.Replace(u'/', kSeparator);
        Collapse(text);
    }

    bool EndsWithSeparator(const zunStringW & text)
    {
        return text.Length() != 0 && text.GetAt(text.Length() - 1) == kSeparator;
    }

    // Makes `out` the three texts one after the other, in one new block. Any of
    // them may lie inside `out`. A failed allocation keeps `out` as it was.
    void AssignJoined(zunStringW & out, const zunWChar * head, unsigned int headLength, const zunWChar * middle,
                      unsigned int middleLength, const zunWChar * tail, unsigned int tailLength)
    {
        const unsigned long long total = 1ull * headLength + middleLength + tailLength;
        if (total >= 0x7FFFFFFFull)
            return;
        zunWChar local[512];
        void * heap = nullptr;
        zunWChar * buffer = local;
        if (total + 1 > sizeof(local) / sizeof(local[0]))
        {
            if (!zunMemAlloc(heap, static_cast<unsigned int>((total + 1) * sizeof(zunWChar)), false))
                return;
            buffer = static_cast<zunWChar *>(heap);
        }
        std::memcpy(buffer, head, headLength * sizeof(zunWChar));
        std::memcpy(buffer + headLength, middle, middleLength * sizeof(zunWChar));
        std::memcpy(buffer + headLength + middleLength, tail, tailLength * sizeof(zunWChar));
        buffer[total] = 0;
        out = static_cast<const zunWChar *>(buffer);
        zunMemFree(heap);
    }

    // `head`, a separator unless `head` already ends in one, and `tail`.
    void AssignBehindSeparator(zunStringW & out, const zunStringW & head, const zunStringW & tail)
    {
        AssignJoined(out, head, head.Length(), ZUN_W("\\"), EndsWithSeparator(head) ? 0 : 1, tail, tail.Length());
    }

    // Index of the dot that GetExtension(level) stands behind, or kNotFound.
    // The walk runs from the last unit back to the last separator (or to the
    // first unit), counting dots; with fewer than `level`, the earliest one met
    // is used, so a leading dot counts like any other.
    unsigned int FindExtensionDot(const zunStringW & text, unsigned int level)
    {
        const unsigned int length = text.Length();
        if (level == 0 || length == 0)
            return kNotFound;
        const unsigned int lastSeparator = text.FindLast(kSeparator, kToTheEnd);
        const unsigned int stop = lastSeparator == kNotFound ? 0 : lastSeparator;
        const zunWChar * units = text;
        unsigned int found = kNotFound;
        unsigned int dots = 0;
        for (unsigned int i = length; i-- > stop;)
        {
            if (units[i] == u'.')
            {
                found = i;
                if (++dots == level)
                    break;
            }
        }
        return found;
    }

    // The trim of GoUp: drops "\.", one unit of a doubled separator and "\.."
    // from the end (a ".." being one more level to climb), then empties a text
    // of one or two units that begins with a dot (".", "..", ".\", ".x").
    // The unit at index 2 counts as 0 for a text of one unit.
    void TrimEnd(const zunWChar * units, unsigned int length, unsigned int & end, unsigned int & levels)
    {
        while (end >= 2)
        {
            if (end >= 3 && units[end - 3] == kSeparator && units[end - 2] == u'.' && units[end - 1] == u'.')
            {
                end -= 3;
                ++levels;
            }
            else if (units[end - 2] == kSeparator && units[end - 1] == u'.')
                end -= 2;
            else if (units[end - 2] == kSeparator && units[end - 1] == kSeparator)
                end -= 1;
            else
                break;
        }
        const zunWChar third = length > 2 ? units[2] : 0;
        if ((end == 1 || end == 2) && units[0] == u'.' && (third == 0 || third == u'.'))
            end = 0;
    }

    // How many units at the start of `a` and `b` agree, at most `limit`.
    unsigned int UnitsInCommon(const zunWChar * a, const zunWChar * b, unsigned int limit)
    {
        unsigned int agreed = 0;
        while (agreed < limit && a[agreed] == b[agreed])
            ++agreed;
        return agreed;
    }

    // The index of the last separator among the first `end` units, or
    // kNotFound; eight units are compared at a time from the end.
    unsigned int FindLastSeparator(const zunWChar * units, unsigned int end)
    {
#if defined(__SSE2__)
        const __m128i separator = _mm_set1_epi16(static_cast<short>(kSeparator));
        while (end >= 8)
        {
            const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i *>(units + end - 8));
            const unsigned int hits = static_cast<unsigned int>(_mm_movemask_epi8(_mm_cmpeq_epi16(block, separator)));
            if (hits != 0)
                return end - 8 + (31 - static_cast<unsigned int>(__builtin_clz(hits))) / 2;
            end -= 8;
        }
#endif
        while (end-- > 0)
        {
            if (units[end] == kSeparator)
                return end;
        }
        return kNotFound;
    }

    // Where the last component lies in a path's text, as units [begin, end).
    // A separator in the very last place does not count, and the name stops
    // before it; with no other separator the name starts at the first unit,
    // which is the whole text with every separator taken out, as at most the
    // last unit can be one. Without extension, the name ends at its last dot.
    struct NameRange
    {
        unsigned int begin;
        unsigned int end;
    };

    NameRange LastComponentRange(const zunStringW & text, zunPath::LastComponentOption option)
    {
        const unsigned int length = text.Length();
        const zunWChar * units = text;
        NameRange name = {0, length};
        if (length == 0)
            return name;
        if (units[length - 1] == kSeparator)
            --name.end;
        const unsigned int separator = FindLastSeparator(units, name.end);
        if (separator != kNotFound)
            name.begin = separator + 1;
        if (option == zunPath::WithoutExtension)
        {
            for (unsigned int i = name.end; i-- > name.begin;)
            {
                if (units[i] == u'.')
                {
                    name.end = i;
                    break;
                }
            }
        }
        return name;
    }

    // Whether any of `length` units opens a character of two units.
    bool HasMultiUnitCharacter(const zunWChar * units, unsigned int length)
    {
        bool found = false;
        for (unsigned int i = 0; i < length; ++i)
            found |= zunCharRules::UnitsOf(units[i]) > 1;
        return found;
    }

    // How many units at the start of `text` agree with `folder` followed by a
    // separator, at most `limit` (the folder's length, plus one when it lacks
    // its separator). With `ignoreCase`, units that differ are compared
    // lowered, as whole lowered copies of texts of single-unit characters
    // would compare. `text` is terminated and at least as long as `folder`.
    unsigned int UnitsInCommonWithFolder(const zunWChar * text, const zunWChar * folder, unsigned int folderLength,
                                         unsigned int limit, bool ignoreCase)
    {
        for (unsigned int i = 0; i < limit; ++i)
        {
            const zunWChar a = text[i];
            const zunWChar b = i < folderLength ? folder[i] : kSeparator;
            if (a != b && (!ignoreCase || zunCharRules::MapCase(a, true) != zunCharRules::MapCase(b, true)))
                return i;
        }
        return limit;
    }

    // The same count through lowered copies of `text` and of `folder` with a
    // separator behind it; 0 when the heap refuses one of them.
    unsigned int UnitsInCommonLowered(const zunStringW & text, const zunStringW & folder)
    {
        zunStringW prefix(folder);
        if (!EndsWithSeparator(prefix))
            prefix.Insert(kToTheEnd, ZUN_W("\\"), 1);
        if (prefix.Length() != folder.Length() + (EndsWithSeparator(folder) ? 0 : 1))
            return 0;
        zunWChar * lowerText = zunCharHelper<zunWChar>::ChangeStringCase(text, true);
        zunWChar * lowerPrefix = zunCharHelper<zunWChar>::ChangeStringCase(prefix, true);
        unsigned int agreed = 0;
        if (lowerText != nullptr && lowerPrefix != nullptr)
            agreed = UnitsInCommon(lowerText, lowerPrefix, prefix.Length());
        void * blocks[2] = {lowerText, lowerPrefix};
        zunMemFree(blocks[0]);
        zunMemFree(blocks[1]);
        return agreed;
    }

    zunString ToUTF8(const zunStringW & text)
    {
        zunString result;
        result = text;
        return result;
    }
}

const zunPath zunPath::Empty;

// ---- Construction and assignment ----------------------------------------------------

zunPath::zunPath() : m_pPath(new zunStringW()) {}

zunPath::zunPath(const zunPath & other) : m_pPath(new zunStringW(other.Text())) {}

zunPath::zunPath(zunPath && other) noexcept : m_pPath(other.m_pPath)
{
    other.m_pPath = nullptr;
}

zunPath::zunPath(const zunString & text) : zunPath(static_cast<const char *>(text)) {}

zunPath::zunPath(const char * text) : m_pPath(new zunStringW())
{
    if (text == nullptr)
        return;
    *m_pPath = text;
    Normalise(*m_pPath);
}

zunPath::zunPath(const zunStringW & text) : zunPath(static_cast<const zunWChar *>(text)) {}

zunPath::zunPath(const zunWChar * text) : m_pPath(new zunStringW())
{
    if (text == nullptr)
        return;
    *m_pPath = text;
    Normalise(*m_pPath);
}

zunPath::~zunPath()
{
    delete m_pPath;
    // A path of static storage may still be read by exit handlers that run
    // after it: it then reads as empty.
    m_pPath = nullptr;
}

zunPath & zunPath::operator=(const zunPath & other)
{
    if (this != &other)
        MutableText() = other.Text();
    return *this;
}

zunPath & zunPath::operator=(zunPath && other) noexcept
{
    std::swap(m_pPath, other.m_pPath);
    return *this;
}

void zunPath::Clear()
{
    MutableText() = static_cast<const zunWChar *>(nullptr);
}

const zunStringW & zunPath::Text() const
{
    static const zunStringW none;
    return m_pPath != nullptr ? *m_pPath : none;
}

zunStringW & zunPath::MutableText()
{
    if (m_pPath == nullptr)
        m_pPath = new zunStringW();
    return *m_pPath;
}

// ---- Text forms -----------------------------------------------------------------------

const zunStringW & zunPath::WinRepresentation() const
{
    return Text();
}

zunStringW zunPath::OSRepresentation16() const
{
    zunStringW result(Text());
    result.Replace(kSeparator, zunPlatform::kNativeSeparator);
    return result;
}

zunString zunPath::OSRepresentation8() const
{
    return ToUTF8(OSRepresentation16());
}

zunString zunPath::UnityRepresentation() const
{
    zunString result = OSRepresentation8();
    result.Replace('\\', '/');
    return result;
}

// ---- Queries --------------------------------------------------------------------------

bool zunPath::IsEmpty() const
{
    return Text().IsEmpty();
}

bool zunPath::IsAbsolute() const
{
    const zunStringW & text = Text();
    if (text.IsEmpty())
        return false;
    return text.GetAt(0) == kSeparator || zunCharHelper<zunWChar>::FindSubString(text, ZUN_W(":\\")) != kNotFound;
}

bool zunPath::IsRelative() const
{
    return !IsEmpty() && !IsAbsolute();
}

bool zunPath::IsRoot() const
{
    const zunStringW & text = Text();
    const zunWChar * units = text;
    unsigned int separator = zunCharHelper<zunWChar>::FindChar(units, kSeparator);
    if (separator == 0 && text.GetAt(1) == kSeparator)
    {
        const unsigned int next = zunCharHelper<zunWChar>::FindChar(units + 2, kSeparator);
        separator = next == kNotFound ? kNotFound : next + 2;
    }
    return separator != kNotFound && separator > 0 && units[separator - 1] == u':' && separator + 1 == text.Length();
}

zunStringListT<char> zunPath::GetComponents() const
{
    return ToUTF8(Text()).Split("\\", 0);
}

zunStringW zunPath::GetLastComponent16(zunPath::LastComponentOption option) const
{
    const zunStringW & text = Text();
    zunStringW result;
    if (text.Length() == 0)
        return result; // the null text, as an empty path has no name
    const NameRange name = LastComponentRange(text, option);
    const zunWChar * units = text;
    AssignJoined(result, units + name.begin, name.end - name.begin, units, 0, units, 0);
    return result;
}

zunString zunPath::GetLastComponent(zunPath::LastComponentOption option) const
{
    // The name is converted straight from the path's text on the stack, so
    // the result's block is the only one made. Three bytes of UTF-8 at most
    // stand for one unit.
    const zunStringW & text = Text();
    const NameRange name = LastComponentRange(text, option);
    const unsigned int units = name.end - name.begin;
    char local[768];
    if (units > (sizeof(local) - 1) / 3)
        return ToUTF8(GetLastComponent16(option));
    const zunWChar * begin = text;
    const std::size_t bytes = zunUTFPrivate::ToUTF8(begin + name.begin, units, local, sizeof(local) - 1);
    local[bytes] = 0;
    zunString result;
    result.Insert(0, local, static_cast<unsigned int>(bytes));
    return result;
}

zunStringW zunPath::GetExtension16(unsigned int level) const
{
    const zunStringW & text = Text();
    const unsigned int dot = FindExtensionDot(text, level);
    if (dot == kNotFound)
        return zunStringW();
    return text.SubString(dot + 1, kToTheEnd);
}

zunString zunPath::GetExtension(unsigned int level) const
{
    return ToUTF8(GetExtension16(level));
}

// ---- Changes and derived paths ----------------------------------------------------------

zunPath & zunPath::operator+=(const zunPath & other)
{
    const zunStringW & tail = other.Text();
    if (!IsEmpty() && other.IsAbsolute())
    {
        zunFixMe(kAbsoluteAppend);
        return *this;
    }
    if (tail.IsEmpty())
        return *this;
    zunStringW & text = MutableText();
    if (text.IsEmpty())
    {
        text = tail;
        return *this;
    }
    AssignBehindSeparator(text, text, tail);
    return *this;
}

zunPath zunPath::operator+(const zunPath & other) const
{
    zunPath result(*this);
    result += other;
    return result;
}

zunPath & zunPath::GoUp(unsigned int levels)
{
    const bool wasAbsolute = IsAbsolute();
    zunStringW & text = MutableText();
    const unsigned int length = text.Length();
    const zunWChar * units = text;
    const bool trailingSeparator = EndsWithSeparator(text);
    unsigned int end = trailingSeparator ? length - 1 : length;
    TrimEnd(units, length, end, levels);
    while (levels > 0 && end > 0)
    {
        // A one-unit name with a trailing separator (`a\`, or what is left of
        // `a\b\` after a level) is where the walk by its steps finds the same
        // place again and never ends. It stops here with what a name without
        // the separator gives: no separator before it, so nothing is left.
        const unsigned int separator = (end == 1 && trailingSeparator) ? kNotFound : text.FindLast(kSeparator, end - 1);
        if (separator == kNotFound)
        {
            end = 0;
            break;
        }
        end = separator;
        TrimEnd(units, length, end, levels);
        --levels;
    }
    if (end != length)
        text.Remove(end, kToTheEnd);
    if (EndsWithSeparator(text))
        return *this;
    if (wasAbsolute || !text.IsEmpty())
        text.Insert(kToTheEnd, ZUN_W("\\"), 1);
    return *this;
}

zunPath zunPath::GetParent(unsigned int levels) const
{
    zunPath result(*this);
    result.GoUp(levels);
    return result;
}

zunPath & zunPath::SetExtension(const zunStringW & extension, unsigned int level)
{
    zunStringW & text = MutableText();
    const unsigned int dot = FindExtensionDot(text, level);
    if (dot != kNotFound)
        text.Remove(dot, kToTheEnd);
    if (extension.IsEmpty())
        return *this;
    const unsigned int dotUnits = extension.GetAt(0) == u'.' ? 0 : 1;
    AssignJoined(text, text, text.Length(), ZUN_W("."), dotUnits, extension, extension.Length());
    return *this;
}

zunPath & zunPath::SetExtension(const zunString & extension, unsigned int level)
{
    zunStringW wide;
    wide = extension;
    return SetExtension(wide, level);
}

void zunPath::SetLastComponent(const zunStringW & name)
{
    zunStringW & text = MutableText();
    const unsigned int separator = text.FindLast(kSeparator, kToTheEnd);
    if (separator != kNotFound && separator != 0)
        text.Remove(separator, kToTheEnd);
    const zunPath last(name);
    if (!text.IsEmpty() && last.IsAbsolute())
    {
        zunFixMe(kAbsoluteAppend);
        return;
    }
    const zunStringW & tail = last.Text();
    if (tail.IsEmpty())
        return;
    if (text.IsEmpty())
        text = tail;
    else
        AssignBehindSeparator(text, text, tail);
}

void zunPath::SetLastComponent(const zunString & name)
{
    zunStringW wide;
    wide = name;
    SetLastComponent(wide);
}

zunPath & zunPath::MakeAbsolutePath(const zunPath & base)
{
    if (IsAbsolute() || !base.IsAbsolute())
        return *this;
    const zunStringW & head = base.Text();
    zunStringW & text = MutableText();
    AssignBehindSeparator(text, head, text);
    Collapse(text);
    return *this;
}

zunPath zunPath::GetAbsolutePath(const zunPath & base) const
{
    zunPath result(*this);
    result.MakeAbsolutePath(base);
    return result;
}

zunPath & zunPath::MakeRelativePath(const zunPath & base)
{
    if ((!IsEmpty() && !IsAbsolute()) || !base.IsAbsolute())
    {
        Clear();
        return *this;
    }
    zunStringW & text = MutableText();
    const zunStringW & head = base.Text();
    if (text.Length() < head.Length())
        return *this;
    const bool ignoreCase = !IsFSCaseSensitive(*this) && !IsFSCaseSensitive(base);
    const unsigned int prefixLength = head.Length() + (EndsWithSeparator(head) ? 0 : 1);
    // Units are compared as they stand against `base` and its separator, and
    // only two that differ are lowered, without copying either text; surrogate
    // pairs go through whole lowered copies, which report each one.
    const bool unitByUnit =
        !ignoreCase || (!HasMultiUnitCharacter(text, text.Length()) && !HasMultiUnitCharacter(head, head.Length()));
    const unsigned int agreed = unitByUnit
                                    ? UnitsInCommonWithFolder(text, head, head.Length(), prefixLength, ignoreCase)
                                    : UnitsInCommonLowered(text, head);
    if (agreed != prefixLength)
        return *this;
    text.Remove(0, agreed);
    Collapse(text);
    return *this;
}

zunPath zunPath::GetRelativePath(const zunPath & base) const
{
    zunPath result(*this);
    result.MakeRelativePath(base);
    return result;
}

// ---- Comparison -------------------------------------------------------------------------

bool zunPath::IsFSCaseSensitive(const zunPath & path)
{
    return zunPlatform::IsCaseSensitive(path.Text());
}

bool zunPath::operator==(const zunPath & other) const
{
    const StringCompareMode mode = !IsFSCaseSensitive(*this) && !IsFSCaseSensitive(other)
                                       ? StringCompareMode_Insensitive
                                       : StringCompareMode_Sensitive;
    return zunCharHelper<zunWChar>::Compare(Text(), other.Text(), mode) == CompareResult_Equal;
}

bool zunPath::operator!=(const zunPath & other) const
{
    return !(*this == other);
}

bool zunPath::operator<(const zunPath & other) const
{
    return zunCharHelper<zunWChar>::Compare(Text(), other.Text(), StringCompareMode_Sensitive) == CompareResult_Less;
}
