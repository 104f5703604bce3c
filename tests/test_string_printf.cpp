// Printf and VPrintf of both strings: the sizing pass on a copy of the
// argument list, the cleared string for an empty result, and every directive
// of the 16-bit formatter.
#include <gtest/gtest.h>

#include <climits>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <string>

#include "MemTesting.h"
#include "zunString.h"

namespace
{
    std::u16string Wide(const zunStringW & s)
    {
        return std::u16string(static_cast<const char16_t *>(s), s.Length());
    }

    template <typename... Args> std::u16string WidePrintf(const zunWChar * format, Args... args)
    {
        zunStringW s;
        const unsigned int length = s.Printf(format, args...);
        EXPECT_EQ(length, s.Length());
        return Wide(s);
    }

    // What the runtime's narrow formatter gives: the reference of the numbers.
    template <typename... Args> std::u16string Narrow(const char * format, Args... args)
    {
        char buffer[512];
        std::snprintf(buffer, sizeof(buffer), format, args...);
        std::u16string text;
        for (const char * p = buffer; *p != 0; ++p)
            text.push_back(static_cast<unsigned char>(*p));
        return text;
    }

    template <typename S, typename C> unsigned int CallVPrintf(S & s, const C * format, ...)
    {
        va_list args;
        va_start(args, format);
        const unsigned int length = s.VPrintf(format, args);
        va_end(args);
        return length;
    }

    class StringPrintf : public ::testing::Test
    {
    protected:
        void TearDown() override { zunMemTesting::Reset(); }
    };
}

// ---- Both strings -----------------------------------------------------------

TEST_F(StringPrintf, NarrowFormatsIntoAnExactBlock)
{
    zunString s("old");
    EXPECT_EQ(s.Printf("%s=%d", "x", 42), 4u);
    EXPECT_STREQ(s, "x=42");
    EXPECT_EQ(zunMemGetSize(s.m_pData), 5u);
    EXPECT_EQ(s.m_nChecksum, std::uint64_t('x') + '=' + '4' + '2');
}

TEST_F(StringPrintf, VPrintfReadsTheArgumentListTwice)
{
    zunString s;
    EXPECT_EQ(CallVPrintf(s, "%s-%s-%d", "abc", "def", 7), 9u);
    EXPECT_STREQ(s, "abc-def-7");
    zunStringW w;
    EXPECT_EQ(CallVPrintf(w, ZUN_W("%s-%S-%d"), ZUN_W("abc"), "def", 7), 9u);
    EXPECT_EQ(Wide(w), u"abc-def-7");
}

TEST_F(StringPrintf, AFormatThatGivesNothingLeavesNoBlock)
{
    zunString s("abc");
    EXPECT_EQ(s.Printf(""), 0u);
    EXPECT_EQ(s.m_pData, nullptr);
    EXPECT_EQ(s.m_nChecksum, 0u);
    s = "abc";
    EXPECT_EQ(s.Printf("%s", ""), 0u);
    EXPECT_EQ(s.m_pData, nullptr);
    zunStringW w(u"abc");
    EXPECT_EQ(w.Printf(ZUN_W("")), 0u);
    EXPECT_EQ(w.m_pData, nullptr);
    w = u"abc";
    EXPECT_EQ(w.Printf(ZUN_W("%s"), ZUN_W("")), 0u);
    EXPECT_EQ(w.m_pData, nullptr);
}

TEST_F(StringPrintf, ANullFormatClears)
{
    zunString s("abc");
    EXPECT_EQ(s.Printf(nullptr), 0u);
    EXPECT_EQ(s.m_pData, nullptr);
    zunStringW w(u"abc");
    EXPECT_EQ(w.Printf(nullptr), 0u);
    EXPECT_EQ(w.m_pData, nullptr);
}

TEST_F(StringPrintf, AFailedAllocationKeepsTheString)
{
    zunString s("keep");
    auto * block = s.m_pData;
    zunMemTesting::FailAllocation(1);
    EXPECT_EQ(s.Printf("%d", 12345), 0u);
    EXPECT_EQ(s.m_pData, block);
    EXPECT_STREQ(s, "keep");
    zunStringW w(u"keep");
    zunMemTesting::FailAllocation(1);
    EXPECT_EQ(w.Printf(ZUN_W("%d"), 12345), 0u);
    EXPECT_EQ(Wide(w), u"keep");
}

TEST_F(StringPrintf, PrintfIsOneAllocation)
{
    zunStringW w(u"old");
    zunMemTesting::StartCounting();
    w.Printf(ZUN_W("%s %S %d %.3f"), ZUN_W("wide"), "narrow", 42, 2.5);
    EXPECT_EQ(zunMemTesting::GetCounters().allocations, 1u);
    EXPECT_EQ(Wide(w), u"wide narrow 42 2.500");
}

TEST_F(StringPrintf, LongResults)
{
    const std::string many(5000, 'x');
    zunString s;
    EXPECT_EQ(s.Printf("[%s]", many.c_str()), 5002u);
    EXPECT_EQ(s.GetAt(5001), ']');
    zunStringW w;
    EXPECT_EQ(w.Printf(ZUN_W("[%S]%3000d"), many.c_str(), 7), 8002u);
    EXPECT_EQ(w.GetAt(8001), u'7');
    EXPECT_EQ(w.GetAt(5002), u' ');
}

// Short results are measured and kept in one formatting pass, longer ones are
// formatted again into their block: every length on both sides of that line
// gives the whole text, its length and its checksum.
TEST_F(StringPrintf, EveryLengthAroundTheOnePassLine)
{
    for (int width = 240; width <= 270; ++width)
    {
        zunString s;
        ASSERT_EQ(s.Printf("%*d|%s", width, 5, "end"), static_cast<unsigned int>(width + 4));
        const zunString expected((std::string(static_cast<std::size_t>(width - 1), ' ') + "5|end").c_str());
        EXPECT_TRUE(s == expected) << width;
        EXPECT_EQ(s.m_nChecksum, expected.m_nChecksum);

        zunStringW w;
        ASSERT_EQ(w.Printf(ZUN_W("%*d|%s%S"), width, 5, ZUN_W("en"), "d"), static_cast<unsigned int>(width + 4));
        EXPECT_EQ(Wide(w), std::u16string(static_cast<std::size_t>(width - 1), u' ') + u"5|end") << width;
        EXPECT_EQ(w.m_nChecksum, expected.m_nChecksum);
    }
}

TEST_F(StringPrintf, AZeroCharacterCountsInTheLength)
{
    zunString s;
    EXPECT_EQ(s.Printf("a%cb", 0), 3u);
    EXPECT_EQ(s.GetAt(1), 0);
    EXPECT_EQ(s.GetAt(2), 'b');
    zunStringW w;
    EXPECT_EQ(w.Printf(ZUN_W("a%cb"), 0), 3u);
    EXPECT_EQ(w.GetAt(2), u'b');
}

// ---- The 16-bit formatter: text directives ----------------------------------

TEST_F(StringPrintf, WideLowerCaseSTakesWideText)
{
    EXPECT_EQ(WidePrintf(ZUN_W("<%s>"), ZUN_W("caf\u00E9 \U0001F30D")), u"<caf\u00E9 \U0001F30D>");
    EXPECT_EQ(WidePrintf(ZUN_W("<%ls>"), ZUN_W("l")), u"<l>");
    EXPECT_EQ(WidePrintf(ZUN_W("<%ws>"), ZUN_W("w")), u"<w>");
}

TEST_F(StringPrintf, WideUpperCaseSTakesUtf8Text)
{
    EXPECT_EQ(WidePrintf(ZUN_W("<%S>"), "caf\xC3\xA9 \xF0\x9F\x8C\x8D"), u"<caf\u00E9 \U0001F30D>");
    EXPECT_EQ(WidePrintf(ZUN_W("<%hs>"), "h"), u"<h>");
    EXPECT_EQ(WidePrintf(ZUN_W("<%lS>"), ZUN_W("wide")), u"<wide>");
    EXPECT_EQ(WidePrintf(ZUN_W("<%S>"), "bad\xFF"), u"<bad\uFFFD>");
}

TEST_F(StringPrintf, WideCharacters)
{
    EXPECT_EQ(WidePrintf(ZUN_W("%c%lc%wc"), u'a', u'\u00E9', u'\u4E16'), u"a\u00E9\u4E16");
    EXPECT_EQ(WidePrintf(ZUN_W("%C%hc"), 'x', 'y'), u"xy");
    EXPECT_EQ(WidePrintf(ZUN_W("%C"), 0xE9), u"\uFFFD"); // one byte above 0x7F is no UTF-8 character
    EXPECT_EQ(WidePrintf(ZUN_W("%lC"), u'\u00E9'), u"\u00E9");
    EXPECT_EQ(WidePrintf(ZUN_W("[%3c|%-3c]"), u'a', u'b'), u"[  a|b  ]");
}

TEST_F(StringPrintf, WidePercent)
{
    EXPECT_EQ(WidePrintf(ZUN_W("100%%")), u"100%");
    EXPECT_EQ(WidePrintf(ZUN_W("%%%d%%"), 5), u"%5%");
}

TEST_F(StringPrintf, WideTextWidthAndPrecisionCountUnits)
{
    EXPECT_EQ(WidePrintf(ZUN_W("[%6s]"), ZUN_W("abc")), u"[   abc]");
    EXPECT_EQ(WidePrintf(ZUN_W("[%-6s]"), ZUN_W("abc")), u"[abc   ]");
    EXPECT_EQ(WidePrintf(ZUN_W("[%.2s]"), ZUN_W("abc")), u"[ab]");
    EXPECT_EQ(WidePrintf(ZUN_W("[%5.1s]"), ZUN_W("abc")), u"[    a]");
    EXPECT_EQ(WidePrintf(ZUN_W("[%*s]"), 4, ZUN_W("ab")), u"[  ab]");
    EXPECT_EQ(WidePrintf(ZUN_W("[%*s]"), -4, ZUN_W("ab")), u"[ab  ]");
    EXPECT_EQ(WidePrintf(ZUN_W("[%.*s]"), 1, ZUN_W("ab")), u"[a]");
    EXPECT_EQ(WidePrintf(ZUN_W("[%.*s]"), -1, ZUN_W("ab")), u"[ab]"); // negative: no precision
    EXPECT_EQ(WidePrintf(ZUN_W("[%2s]"), ZUN_W("abcd")), u"[abcd]");
    EXPECT_EQ(WidePrintf(ZUN_W("[%4S]"), "\xC3\xA9"), u"[   \u00E9]"); // width counts UTF-16 units
}

TEST_F(StringPrintf, WidePrecisionNeedsNoTerminator)
{
    const zunWChar unterminated[3] = {u'x', u'y', u'z'};
    EXPECT_EQ(WidePrintf(ZUN_W("%.3s"), unterminated), u"xyz");
    const char bytes[2] = {'p', 'q'};
    EXPECT_EQ(WidePrintf(ZUN_W("%.2S"), bytes), u"pq");
}

TEST_F(StringPrintf, NarrowTextPrecisionCountsBytes)
{
    // The precision limits the bytes taken; a character it cuts becomes U+FFFD.
    EXPECT_EQ(WidePrintf(ZUN_W("[%.3S]"), "ab\xC3\xA9"), u"[ab\uFFFD]");
    EXPECT_EQ(WidePrintf(ZUN_W("[%.4S]"), "ab\xC3\xA9"), u"[ab\u00E9]");
}

TEST_F(StringPrintf, WideNullTextIsPrintedAsNull)
{
    EXPECT_EQ(WidePrintf(ZUN_W("%s|%S"), static_cast<const zunWChar *>(nullptr), static_cast<const char *>(nullptr)),
              u"(null)|(null)");
}

TEST_F(StringPrintf, WideFormatKeepsNonAsciiAndSurrogates)
{
    EXPECT_EQ(WidePrintf(ZUN_W("\u00E9\U0001F30D %d \u4E16"), 1), u"\u00E9\U0001F30D 1 \u4E16");
}

// ---- The 16-bit formatter: numbers ------------------------------------------

TEST_F(StringPrintf, WideIntegersAsTheNarrowFormatterWritesThem)
{
    EXPECT_EQ(WidePrintf(ZUN_W("%d %i %u %o %x %X"), -12, 34, 56u, 8u, 255u, 255u),
              Narrow("%d %i %u %o %x %X", -12, 34, 56u, 8u, 255u, 255u));
    EXPECT_EQ(WidePrintf(ZUN_W("[%+d|% d|%#x|%#o|%05d|%-5d|%5.3d]"), 7, 7, 255u, 8u, -42, 42, 9),
              Narrow("[%+d|% d|%#x|%#o|%05d|%-5d|%5.3d]", 7, 7, 255u, 8u, -42, 42, 9));
    EXPECT_EQ(WidePrintf(ZUN_W("[%*d|%-*d|%.*d]"), 6, 1, 4, 2, 3, 3), Narrow("[%*d|%-*d|%.*d]", 6, 1, 4, 2, 3, 3));
    EXPECT_EQ(WidePrintf(ZUN_W("[%++d|%00d]"), 1, 2), u"[+1|2]"); // repeated flags count once
}

TEST_F(StringPrintf, WideIntegerSizes)
{
    EXPECT_EQ(WidePrintf(ZUN_W("%hhd %hd %hhu"), 300, 70000, 257), Narrow("%hhd %hd %hhu", 300, 70000, 257));
    EXPECT_EQ(WidePrintf(ZUN_W("%ld %lu"), -5000000000L, 5000000000UL), u"-5000000000 5000000000");
    EXPECT_EQ(WidePrintf(ZUN_W("%lld %llx"), -1LL, 0xFFFFFFFFFFULL), u"-1 ffffffffff");
    EXPECT_EQ(WidePrintf(ZUN_W("%I64d %I64u"), static_cast<long long>(-9000000000LL), 18000000000ULL),
              u"-9000000000 18000000000");
    EXPECT_EQ(WidePrintf(ZUN_W("%I32d %I32x"), -7, 0xABu), u"-7 ab");
    EXPECT_EQ(WidePrintf(ZUN_W("%Iu %zu %jd %td"), static_cast<std::size_t>(1) << 40, static_cast<std::size_t>(3),
                         static_cast<std::intmax_t>(-4), static_cast<std::ptrdiff_t>(-5)),
              u"1099511627776 3 -4 -5");
}

TEST_F(StringPrintf, WideFloats)
{
    EXPECT_EQ(WidePrintf(ZUN_W("%f %e %g %E %G"), 1.5, 12345.678, 0.0001, 2.0, 1e-10),
              Narrow("%f %e %g %E %G", 1.5, 12345.678, 0.0001, 2.0, 1e-10));
    EXPECT_EQ(WidePrintf(ZUN_W("%.2f %10.3f %-8.1f| %+.0f %a %A %F"), 3.14159, 2.5, 1.25, 2.5, 1.0, 0.5, 7.0),
              Narrow("%.2f %10.3f %-8.1f| %+.0f %a %A %F", 3.14159, 2.5, 1.25, 2.5, 1.0, 0.5, 7.0));
    EXPECT_EQ(WidePrintf(ZUN_W("%Lf %lf"), 2.25L, 0.5), u"2.250000 0.500000");
    EXPECT_EQ(WidePrintf(ZUN_W("%#.0f"), 3.0), u"3.");
}

TEST_F(StringPrintf, WidePointer)
{
    int value = 0;
    EXPECT_EQ(WidePrintf(ZUN_W("%p"), static_cast<void *>(&value)), Narrow("%p", static_cast<void *>(&value)));
}

// ---- The 16-bit formatter: errors clear the string --------------------------

TEST_F(StringPrintf, WideFormatErrorsClear)
{
    int count = 0;
    const zunWChar * errors[] = {ZUN_W("abc%"), ZUN_W("%y"), ZUN_W("%1$d"), ZUN_W("%Z"), ZUN_W("%Lc"), ZUN_W("%wd")};
    for (const zunWChar * format : errors)
    {
        zunStringW w(u"before");
        EXPECT_EQ(w.Printf(format, 1, 2), 0u) << std::string(format, format + zunStrLen(format));
        EXPECT_EQ(w.m_pData, nullptr);
    }
    zunStringW w(u"before");
    EXPECT_EQ(w.Printf(ZUN_W("%d%n"), 5, &count), 0u); // %n writes nowhere here
    EXPECT_EQ(count, 0);
    EXPECT_EQ(w.m_pData, nullptr);
}

TEST_F(StringPrintf, WideIntegersMatchTheRuntime)
{
    // Bare %d and %i are written without the runtime; every other form goes
    // through it. Both must give what the narrow formatter gives.
    EXPECT_EQ(WidePrintf(ZUN_W("%d %i %d %d %d"), 0, -7, 42, INT_MIN, INT_MAX),
              Narrow("%d %i %d %d %d", 0, -7, 42, INT_MIN, INT_MAX));
    EXPECT_EQ(WidePrintf(ZUN_W("[%5d|%-4d|%+d|% d|%05d|%.3d|%x|%u]"), 12, -3, 8, 9, -42, 7, 255, 4000000000u),
              Narrow("[%5d|%-4d|%+d|% d|%05d|%.3d|%x|%u]", 12, -3, 8, 9, -42, 7, 255, 4000000000u));
    EXPECT_EQ(WidePrintf(ZUN_W("%ld %lld %hd"), -5L, -6LL, 7), Narrow("%ld %lld %hd", -5L, -6LL, 7));
}
