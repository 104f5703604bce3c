// The 16-bit formatter: directives read here, numbers by the runtime's
// narrow snprintf, text arguments in UTF-16.
#include "platform/WideFormat.h"

#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <cwchar>

#include "UTFPrivate.h"

namespace
{
    const zunWChar kNullText[] = {'(', 'n', 'u', 'l', 'l', ')', 0};
    const char kNullNarrowText[] = "(null)";
    constexpr zunWChar kReplacement = 0xFFFD;

    // Where the result goes: counts everything, writes only with a buffer.
    // A result that outgrows the buffer goes on being counted without being
    // written, so that the caller learns the size it needs.
    class Output
    {
    public:
        Output(zunWChar * out, std::size_t capacity) : m_out(out), m_capacity(capacity) {}

        bool Writing() const { return m_out != nullptr; }
        // Units that may still be written here, the terminator's included.
        std::size_t Room() const { return m_capacity > m_length ? m_capacity - m_length : 0; }
        zunWChar * Cursor() const { return m_out + m_length; }
        // Reserves `units` at the cursor. When they do not fit in front of the
        // terminator, nothing more is written (Writing turns false) and the
        // rest is only counted.
        void Reserve(std::size_t units)
        {
            if (m_out != nullptr && units >= Room())
                m_out = nullptr;
        }
        void Advance(std::size_t units) { m_length += units; }
        void Put(zunWChar unit)
        {
            Reserve(1);
            if (m_out != nullptr)
                m_out[m_length] = unit;
            ++m_length;
        }
        void Pad(std::size_t units)
        {
            for (std::size_t i = 0; i < units; ++i)
                Put(' ');
        }
        int Finish()
        {
            if (m_length > static_cast<std::size_t>(INT_MAX))
                return -1;
            if (m_out != nullptr)
                m_out[m_length] = 0;
            return static_cast<int>(m_length);
        }

    private:
        zunWChar * m_out;
        std::size_t m_capacity;
        std::size_t m_length = 0;
    };

    // va_list cannot be passed on by reference portably once it has decayed
    // in a parameter; a copy inside a structure can.
    struct Arguments
    {
        va_list list;
    };

    enum class Size
    {
        Default,
        Char,       // hh
        Short,      // h
        Long,       // l
        LongLong,   // ll, I64
        Max,        // j
        SizeT,      // z, I
        PtrDiff,    // t
        LongDouble, // L
        Wide,       // w
        Int32,      // I32
    };

    struct Directive
    {
        char flags[5] = {}; // each of + space # 0 at most once, in the order met
        bool leftAlign = false;
        int width = -1;
        int precision = -1;
        Size size = Size::Default;
        zunWChar conversion = 0;
    };

    bool IsDigit(zunWChar unit)
    {
        return unit >= '0' && unit <= '9';
    }

    void AddFlag(Directive & d, char flag)
    {
        const std::size_t count = std::strlen(d.flags);
        if (std::strchr(d.flags, flag) == nullptr && count < 4)
            d.flags[count] = flag;
    }

    int ReadNumber(const zunWChar *& p)
    {
        long long value = 0;
        while (IsDigit(*p))
        {
            value = value * 10 + (*p++ - '0');
            if (value > INT_MAX)
                value = INT_MAX;
        }
        return static_cast<int>(value);
    }

    // Reads what follows a '%' up to and including the conversion; false for
    // a directive cut short by the end of the format.
    bool ReadDirective(const zunWChar *& p, Arguments & args, Directive & d)
    {
        for (;; ++p)
        {
            if (*p == '-')
                d.leftAlign = true;
            else if (*p == '+' || *p == ' ' || *p == '#' || *p == '0')
                AddFlag(d, static_cast<char>(*p));
            else
                break;
        }
        if (*p == '*')
        {
            ++p;
            d.width = va_arg(args.list, int);
            if (d.width < 0)
            {
                d.leftAlign = true;
                d.width = d.width == INT_MIN ? INT_MAX : -d.width;
            }
        }
        else if (IsDigit(*p))
        {
            d.width = ReadNumber(p);
        }
        if (*p == '.')
        {
            ++p;
            if (*p == '*')
            {
                ++p;
                d.precision = va_arg(args.list, int);
                if (d.precision < 0)
                    d.precision = -1; // a negative precision is taken as none
            }
            else
            {
                d.precision = ReadNumber(p);
            }
        }
        switch (*p)
        {
        case 'h':
            d.size = p[1] == 'h' ? Size::Char : Size::Short;
            p += d.size == Size::Char ? 2 : 1;
            break;
        case 'l':
            d.size = p[1] == 'l' ? Size::LongLong : Size::Long;
            p += d.size == Size::LongLong ? 2 : 1;
            break;
        case 'j':
            d.size = Size::Max;
            ++p;
            break;
        case 'z':
            d.size = Size::SizeT;
            ++p;
            break;
        case 't':
            d.size = Size::PtrDiff;
            ++p;
            break;
        case 'L':
            d.size = Size::LongDouble;
            ++p;
            break;
        case 'w':
            d.size = Size::Wide;
            ++p;
            break;
        case 'I':
            if (p[1] == '6' && p[2] == '4')
            {
                d.size = Size::LongLong;
                p += 3;
            }
            else if (p[1] == '3' && p[2] == '2')
            {
                d.size = Size::Int32;
                p += 3;
            }
            else
            {
                d.size = Size::SizeT;
                ++p;
            }
            break;
        default:
            break;
        }
        d.conversion = *p;
        if (*p == 0)
            return false;
        ++p;
        return true;
    }

    // Writes `magnitude` in decimal at `at`; returns the end.
    char * AppendDecimal(char * at, unsigned int magnitude)
    {
        char digits[10];
        int count = 0;
        do
            digits[count++] = static_cast<char>('0' + magnitude % 10);
        while ((magnitude /= 10) != 0);
        while (count > 0)
            *at++ = digits[--count];
        return at;
    }

    // The narrow directive that formats one number as the runtime does:
    // "%", flags, width and precision as numbers, size, conversion. Built by
    // hand: it is made for every number of every format, twice per string.
    struct NarrowDirective
    {
        char text[48]; // '%', '-', 4 flags, 2 x 10 digits, '.', 2 size letters, conversion, terminator

        NarrowDirective(const Directive & d, const char * size)
        {
            char * at = text;
            *at++ = '%';
            if (d.leftAlign)
                *at++ = '-';
            for (const char * flag = d.flags; *flag != 0 && flag < d.flags + sizeof(d.flags); ++flag)
                *at++ = *flag;
            if (d.width >= 0)
                at = AppendDecimal(at, static_cast<unsigned int>(d.width));
            if (d.precision >= 0)
            {
                *at++ = '.';
                at = AppendDecimal(at, static_cast<unsigned int>(d.precision));
            }
            while (*size != 0)
                *at++ = *size++;
            *at++ = static_cast<char>(d.conversion);
            *at = 0;
        }
    };

    // Formats one number with the runtime's narrow formatter straight into the
    // result: the ASCII bytes land in the room of the result's units and are
    // widened from the back, so no scratch buffer is needed.
    template <typename T> bool PutNumber(Output & out, const NarrowDirective & directive, T value)
    {
        int produced;
        if (out.Writing() && out.Room() > 0)
        {
            char * bytes = reinterpret_cast<char *>(out.Cursor());
            produced = std::snprintf(bytes, out.Room() * sizeof(zunWChar), directive.text, value);
            if (produced < 0)
                return false;
            out.Reserve(static_cast<std::size_t>(produced));
            zunWChar * units = out.Cursor();
            if (out.Writing())
                for (std::size_t i = static_cast<std::size_t>(produced); i-- > 0;)
                    units[i] = static_cast<unsigned char>(bytes[i]);
        }
        else
        {
            produced = std::snprintf(nullptr, 0, directive.text, value);
            if (produced < 0)
                return false;
            out.Reserve(static_cast<std::size_t>(produced));
        }
        out.Advance(static_cast<std::size_t>(produced));
        return true;
    }

    // A bare %d or %i of an int, the most common directive, written without
    // the runtime's formatter: the digits alone, a minus sign before them.
    bool PutPlainInt(Output & out, int value)
    {
        char text[12];
        char * end = text;
        if (value < 0)
            *end++ = '-';
        end = AppendDecimal(end, value < 0 ? 0u - static_cast<unsigned int>(value) : static_cast<unsigned int>(value));
        const std::size_t count = static_cast<std::size_t>(end - text);
        out.Reserve(count);
        if (out.Writing())
            for (std::size_t i = 0; i < count; ++i)
                out.Cursor()[i] = static_cast<zunWChar>(text[i]);
        out.Advance(count);
        return true;
    }

    bool IsBareDirective(const Directive & d)
    {
        return d.flags[0] == 0 && !d.leftAlign && d.width < 0 && d.precision < 0;
    }

    bool PutInteger(Output & out, const Directive & d, Arguments & args)
    {
        switch (d.size)
        {
        case Size::Default:
        case Size::Int32:
            if ((d.conversion == 'd' || d.conversion == 'i') && IsBareDirective(d))
                return PutPlainInt(out, va_arg(args.list, int));
            return PutNumber(out, NarrowDirective(d, ""), va_arg(args.list, int));
        case Size::Char:
            return PutNumber(out, NarrowDirective(d, "hh"), va_arg(args.list, int));
        case Size::Short:
            return PutNumber(out, NarrowDirective(d, "h"), va_arg(args.list, int));
        case Size::Long:
            return PutNumber(out, NarrowDirective(d, "l"), va_arg(args.list, long));
        case Size::LongLong:
            return PutNumber(out, NarrowDirective(d, "ll"), va_arg(args.list, long long));
        case Size::Max:
            return PutNumber(out, NarrowDirective(d, "j"), va_arg(args.list, std::intmax_t));
        case Size::SizeT:
            return PutNumber(out, NarrowDirective(d, "z"), va_arg(args.list, std::size_t));
        case Size::PtrDiff:
            return PutNumber(out, NarrowDirective(d, "t"), va_arg(args.list, std::ptrdiff_t));
        default:
            return false;
        }
    }

    bool PutFloat(Output & out, const Directive & d, Arguments & args)
    {
        switch (d.size)
        {
        case Size::Default:
        case Size::Long:
            return PutNumber(out, NarrowDirective(d, ""), va_arg(args.list, double));
        case Size::LongDouble:
            return PutNumber(out, NarrowDirective(d, "L"), va_arg(args.list, long double));
        default:
            return false;
        }
    }

    // Width pads with spaces, on the left unless '-' was given.
    template <typename Body> void PutPadded(Output & out, const Directive & d, std::size_t units, Body body)
    {
        const std::size_t padding =
            d.width > 0 && static_cast<std::size_t>(d.width) > units ? static_cast<std::size_t>(d.width) - units : 0;
        if (!d.leftAlign)
            out.Pad(padding);
        body();
        if (d.leftAlign)
            out.Pad(padding);
    }

    void PutWideText(Output & out, const Directive & d, const zunWChar * text)
    {
        if (text == nullptr)
            text = kNullText;
        // With a precision the text need not be terminated: read no further.
        std::size_t units = 0;
        while ((d.precision < 0 || units < static_cast<std::size_t>(d.precision)) && text[units] != 0)
            ++units;
        PutPadded(out, d, units,
                  [&]
                  {
                      for (std::size_t i = 0; i < units; ++i)
                          out.Put(text[i]);
                  });
    }

    // A UTF-8 text in a wide format: the precision limits the bytes taken, as
    // the Windows runtime does; the bytes are converted as UTF-8.
    void PutNarrowText(Output & out, const Directive & d, const char * text)
    {
        if (text == nullptr)
            text = kNullNarrowText;
        const std::size_t bytes =
            d.precision < 0 ? std::strlen(text) : strnlen(text, static_cast<std::size_t>(d.precision));
        const std::size_t units = zunUTFPrivate::CountUTF16(text, bytes);
        PutPadded(out, d, units,
                  [&]
                  {
                      out.Reserve(units);
                      if (out.Writing())
                          zunUTFPrivate::ToUTF16(text, bytes, out.Cursor(), units);
                      out.Advance(units);
                  });
    }

    void PutUnit(Output & out, const Directive & d, zunWChar unit)
    {
        PutPadded(out, d, 1, [&] { out.Put(unit); });
    }

    bool IsWideText(const Directive & d, bool upperCase)
    {
        // Lower-case s and c take this format's own (wide) text, upper-case S
        // and C the other (narrow) one; h forces narrow, l and w force wide.
        if (d.size == Size::Short)
            return false;
        if (d.size == Size::Long || d.size == Size::Wide)
            return true;
        return !upperCase;
    }

    bool PutDirective(Output & out, const Directive & d, Arguments & args)
    {
        switch (d.conversion)
        {
        case '%':
            out.Put('%');
            return true;
        case 's':
        case 'S':
        case 'c':
        case 'C':
        {
            if (d.size != Size::Default && d.size != Size::Short && d.size != Size::Long && d.size != Size::Wide)
                return false;
            const bool upperCase = d.conversion == 'S' || d.conversion == 'C';
            const bool wide = IsWideText(d, upperCase);
            if (d.conversion == 's' || d.conversion == 'S')
            {
                if (wide)
                    PutWideText(out, d, va_arg(args.list, const zunWChar *));
                else
                    PutNarrowText(out, d, va_arg(args.list, const char *));
            }
            else
            {
                const int value = va_arg(args.list, int);
                // A single byte is a character of UTF-8 only below 0x80.
                const zunWChar unit = wide ? static_cast<zunWChar>(value)
                                           : (static_cast<unsigned char>(value) < 0x80
                                                  ? static_cast<zunWChar>(static_cast<unsigned char>(value))
                                                  : kReplacement);
                PutUnit(out, d, unit);
            }
            return true;
        }
        case 'd':
        case 'i':
        case 'u':
        case 'o':
        case 'x':
        case 'X':
            return PutInteger(out, d, args);
        case 'f':
        case 'F':
        case 'e':
        case 'E':
        case 'g':
        case 'G':
        case 'a':
        case 'A':
            return PutFloat(out, d, args);
        case 'p':
            return d.size == Size::Default && PutNumber(out, NarrowDirective(d, ""), va_arg(args.list, void *));
        default:
            return false; // %n, %Z, positional arguments, unknown directives
        }
    }
}

namespace zunPlatform
{
    int FormatWide(zunWChar * out, std::size_t capacity, const zunWChar * format, va_list list)
    {
        if (out != nullptr && capacity == 0)
            return -1;
        Output result(out, capacity);
        Arguments args;
        va_copy(args.list, list);
        bool ok = true;
        for (const zunWChar * p = format; ok && *p != 0;)
        {
            if (*p != '%')
            {
                result.Put(*p++);
                continue;
            }
            ++p;
            Directive directive;
            ok = ReadDirective(p, args, directive) && PutDirective(result, directive, args);
        }
        va_end(args.list);
        return ok ? result.Finish() : -1;
    }
}
