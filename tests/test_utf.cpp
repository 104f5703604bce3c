// UTF-8 <-> UTF-16: the zunUTF8 / zunUTF16 copies, ToNew8 / ToNew16, the
// replacement rules, and random text checked against ICU's substitution API
// as an independent reference.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "UTFReference.h"
#include "zunUTF.h"

namespace
{
    using U16 = std::u16string;

    U16 Units(const zunWChar * text, unsigned int length)
    {
        return text == nullptr ? U16() : U16(reinterpret_cast<const char16_t *>(text), length);
    }

    U16 ToUTF16(const std::string & bytes)
    {
        zunUTF16 wide(bytes.data(), static_cast<unsigned int>(bytes.size()));
        return Units(wide.Get16(), wide.Length());
    }

    std::string ToUTF8(const U16 & units)
    {
        zunUTF8 narrow(reinterpret_cast<const zunWChar *>(units.data()), static_cast<unsigned int>(units.size()));
        return narrow.Get8() == nullptr ? std::string() : std::string(narrow.Get8(), narrow.Length());
    }

    // ICU with U+FFFD substitution: the reference for both directions.
    U16 ReferenceUTF16(const std::string & bytes)
    {
        U16 result;
        EXPECT_TRUE(utfReference::ToUTF16(bytes, result));
        return result;
    }

    std::string ReferenceUTF8(const U16 & units)
    {
        std::string result;
        EXPECT_TRUE(utfReference::ToUTF8(units, result));
        return result;
    }

    // Random bytes that look like UTF-8 often enough to exercise every
    // branch: ASCII runs, well-formed sequences of every length, and broken,
    // overlong, surrogate and out-of-range forms.
    std::string RandomUTF8Like(std::mt19937 & rng, std::size_t pieces)
    {
        static const unsigned char leads[] = {0xC0, 0xC1, 0xC2, 0xDF, 0xE0, 0xE1, 0xEC, 0xED, 0xEE, 0xEF,
                                              0xF0, 0xF1, 0xF3, 0xF4, 0xF5, 0xF8, 0xFF, 0x80, 0xBF};
        static const unsigned char trails[] = {0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0x41, 0xC0};
        std::string out;
        for (std::size_t i = 0; i < pieces; ++i)
        {
            switch (rng() % 6)
            {
            case 0:
            case 1:
            {
                const std::size_t run = rng() % 40;
                for (std::size_t j = 0; j < run; ++j)
                    out.push_back(static_cast<char>(0x20 + rng() % 95));
                break;
            }
            case 2:
            {
                out.push_back(static_cast<char>(leads[rng() % sizeof(leads)]));
                const std::size_t tail = rng() % 4;
                for (std::size_t j = 0; j < tail; ++j)
                    out.push_back(static_cast<char>(trails[rng() % sizeof(trails)]));
                break;
            }
            case 3:
            { // a valid code point
                std::uint32_t cp = rng() % 0x110000;
                if (cp >= 0xD800 && cp <= 0xDFFF)
                    cp = 0xE9;
                char16_t units[2];
                std::string encoded;
                if (cp < 0x80)
                    encoded.push_back(static_cast<char>(cp));
                else if (cp < 0x800)
                {
                    encoded.push_back(static_cast<char>(0xC0 | (cp >> 6)));
                    encoded.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
                }
                else if (cp < 0x10000)
                {
                    encoded.push_back(static_cast<char>(0xE0 | (cp >> 12)));
                    encoded.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
                    encoded.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
                }
                else
                {
                    encoded.push_back(static_cast<char>(0xF0 | (cp >> 18)));
                    encoded.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
                    encoded.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
                    encoded.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
                }
                (void)units;
                out += encoded;
                break;
            }
            case 4:
                out.push_back(static_cast<char>(rng() & 0xFF));
                break;
            default:
                out.push_back('\0'); // embedded terminators travel with explicit lengths
                break;
            }
        }
        return out;
    }

    U16 RandomUTF16Like(std::mt19937 & rng, std::size_t units)
    {
        U16 out;
        for (std::size_t i = 0; i < units; ++i)
        {
            switch (rng() % 6)
            {
            case 0:
                out.push_back(static_cast<char16_t>(rng() % 0x80));
                break;
            case 1:
                out.push_back(static_cast<char16_t>(0x80 + rng() % 0x780));
                break;
            case 2:
                out.push_back(static_cast<char16_t>(0x800 + rng() % 0xD000));
                break;
            case 3:
                out.push_back(static_cast<char16_t>(0xD800 + rng() % 0x400));
                break; // high
            case 4:
                out.push_back(static_cast<char16_t>(0xDC00 + rng() % 0x400));
                break; // low
            default:
                out.push_back(static_cast<char16_t>(rng() & 0xFFFF));
                break;
            }
        }
        return out;
    }
}

// --- zunUTF16 ---------------------------------------------------------------

TEST(UTF16, TwoByteCharacterWithExplicitLength)
{
    zunUTF16 wide("\xC3\xA9", 2);
    EXPECT_EQ(wide.Length(), 1u);
    ASSERT_NE(wide.Get16(), nullptr);
    EXPECT_EQ(wide.Get16()[0], 0xE9);
    EXPECT_EQ(wide.Get16()[1], 0); // the terminator behind it
}

TEST(UTF16, WholeTextCountsItsTerminator)
{
    zunUTF16 wide("\xC3\xA9", 0xFFFFFFFF);
    EXPECT_EQ(wide.Length(), 2u);
    EXPECT_EQ(wide.Get16()[0], 0xE9);
    EXPECT_EQ(wide.Get16()[1], 0); // the source's terminator, converted
    EXPECT_EQ(wide.Get16()[2], 0); // and the one always added
}

TEST(UTF16, EmptyTextWholeAndWithLengthZero)
{
    zunUTF16 whole("", 0xFFFFFFFF);
    EXPECT_EQ(whole.Length(), 1u);
    ASSERT_NE(whole.Get16(), nullptr);
    EXPECT_EQ(whole.Get16()[0], 0);

    zunUTF16 none("", 0);
    EXPECT_EQ(none.Length(), 0u);
    EXPECT_EQ(none.Get16(), nullptr);
}

TEST(UTF16, NullTextLeavesAnEmptyObject)
{
    zunUTF16 wide(nullptr, 5);
    EXPECT_EQ(wide.Length(), 0u);
    EXPECT_EQ(wide.Get16(), nullptr);
    const zunWChar * asPointer = wide;
    EXPECT_EQ(asPointer, nullptr);
}

TEST(UTF16, InvalidByteGivesOneReplacement)
{
    EXPECT_EQ(ToUTF16("a\xFF"
                      "b"),
              U16(u"a\uFFFDb"));
}

TEST(UTF16, MaximalSubpartsEachGiveOneReplacement)
{
    EXPECT_EQ(ToUTF16("\xE2\x82"), U16(u"\uFFFD")); // cut-short prefix: one
    EXPECT_EQ(ToUTF16("\xE2\x82"
                      "A"),
              U16(u"\uFFFDA"));
    EXPECT_EQ(ToUTF16("\xF0\x9F\x98"), U16(u"\uFFFD"));
    EXPECT_EQ(ToUTF16("\xC0\xAF"), U16(u"\uFFFD\uFFFD")); // overlong: byte by byte
    EXPECT_EQ(ToUTF16("\xE0\x80\xAF"), U16(u"\uFFFD\uFFFD\uFFFD"));
    EXPECT_EQ(ToUTF16("\xED\xA0\x80"), U16(u"\uFFFD\uFFFD\uFFFD"));           // encoded surrogate
    EXPECT_EQ(ToUTF16("\xF4\x90\x80\x80"), U16(u"\uFFFD\uFFFD\uFFFD\uFFFD")); // above U+10FFFF
    EXPECT_EQ(ToUTF16("\xF5"), U16(u"\uFFFD"));
    EXPECT_EQ(ToUTF16("\x80\x80"), U16(u"\uFFFD\uFFFD")); // stray continuations
}

TEST(UTF16, EveryLengthOfSequence)
{
    EXPECT_EQ(ToUTF16("A"), U16(u"A"));
    EXPECT_EQ(ToUTF16("\xC2\x80"), U16(u"\u0080"));
    EXPECT_EQ(ToUTF16("\xDF\xBF"), U16(u"\u07FF"));
    EXPECT_EQ(ToUTF16("\xE0\xA0\x80"), U16(u"\u0800"));
    EXPECT_EQ(ToUTF16("\xED\x9F\xBF"), U16(u"\uD7FF"));
    EXPECT_EQ(ToUTF16("\xEF\xBF\xBF"), U16(u"\uFFFF"));
    EXPECT_EQ(ToUTF16("\xF0\x90\x80\x80"), U16(u"\U00010000"));
    EXPECT_EQ(ToUTF16("\xF4\x8F\xBF\xBF"), U16(u"\U0010FFFF"));
}

TEST(UTF16, EmbeddedTerminatorsTravelWithAnExplicitLength)
{
    const std::string text("a\0b", 3);
    EXPECT_EQ(ToUTF16(text), U16(u"a\0b", 3));
}

TEST(UTF16, LengthsAboveTheSignedRangeFailLikeThePlatform)
{
    zunUTF16 wide("abc", 0x80000000u);
    EXPECT_EQ(wide.Length(), 0u);
    EXPECT_EQ(wide.Get16(), nullptr);
}

TEST(UTF16, CopyConstructorCopiesTextAndTerminator)
{
    zunUTF16 original("h\xC3\xA9llo", 6);
    zunUTF16 copy(original);
    EXPECT_EQ(copy.Length(), 5u);
    EXPECT_NE(copy.Get16(), original.Get16());
    EXPECT_EQ(Units(copy.Get16(), 6), U16(u"h\u00E9llo\0", 6));
}

TEST(UTF16, CopyOfAnEmptyObjectIsEmpty)
{
    // The documented copy would read address 0 here; it gives an empty copy.
    zunUTF16 empty(nullptr, 0);
    zunUTF16 copy(empty);
    EXPECT_EQ(copy.Get16(), nullptr);
    EXPECT_EQ(copy.Length(), 0u);
}

TEST(UTF16, AssignmentFreesThenCopies)
{
    zunUTF16 a("first", 5);
    zunUTF16 b("second text", 11);
    a = b;
    EXPECT_EQ(a.Length(), 11u);
    EXPECT_EQ(Units(a.Get16(), 12), U16(u"second text\0", 12));
    zunUTF16 none(nullptr, 0);
    a = none;
    EXPECT_EQ(a.Get16(), nullptr);
    EXPECT_EQ(a.Length(), 0u);
}

TEST(UTF16, SelfAssignmentKeepsTheText)
{
    // Unsupported by the documented order (it frees its own source first);
    // the object keeps its text.
    zunUTF16 a("keep", 4);
    zunUTF16 & alias = a;
    a = alias;
    EXPECT_EQ(Units(a.Get16(), a.Length()), U16(u"keep"));
}

TEST(UTF16, ToNew8OfNullIsNull)
{
    auto converted = zunUTF16::ToNew8(nullptr);
    EXPECT_EQ(converted.get(), nullptr);
}

TEST(UTF16, ToNew8OfASurrogatePairGivesFourBytes)
{
    const zunWChar pair[] = {0xD83D, 0xDE00, 0};
    auto converted = zunUTF16::ToNew8(pair);
    ASSERT_NE(converted.get(), nullptr);
    EXPECT_EQ(std::strlen(converted.get()), 4u);
    EXPECT_STREQ(converted.get(), "\xF0\x9F\x98\x80");
}

TEST(UTF16, ToNew8OfTheEmptyTextIsAnEmptyText)
{
    const zunWChar empty[] = {0};
    auto converted = zunUTF16::ToNew8(empty);
    ASSERT_NE(converted.get(), nullptr);
    EXPECT_STREQ(converted.get(), "");
}

// --- zunUTF8 ----------------------------------------------------------------

TEST(UTF8, ExplicitAndWholeLengths)
{
    const zunWChar text[] = {'a', 0xE9, 0};
    zunUTF8 part(text, 2);
    EXPECT_EQ(part.Length(), 3u);
    EXPECT_STREQ(part.Get8(), "a\xC3\xA9");
    zunUTF8 whole(text, 0xFFFFFFFF);
    EXPECT_EQ(whole.Length(), 4u);
    EXPECT_EQ(whole.Get8()[3], 0);
    EXPECT_EQ(whole.Get8()[4], 0);
    zunUTF8 none(text, 0);
    EXPECT_EQ(none.Get8(), nullptr);
    EXPECT_EQ(none.Length(), 0u);
    zunUTF8 null(nullptr, 0xFFFFFFFF);
    EXPECT_EQ(null.Get8(), nullptr);
}

TEST(UTF8, LoneSurrogatesGiveOneReplacementEach)
{
    EXPECT_EQ(ToUTF8(U16(u"a") + char16_t(0xD800) + u"b"), "a\xEF\xBF\xBD"
                                                           "b");
    EXPECT_EQ(ToUTF8(U16(1, char16_t(0xDC00))), "\xEF\xBF\xBD");
    EXPECT_EQ(ToUTF8(U16{char16_t(0xDC00), char16_t(0xD800)}), "\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(ToUTF8(U16(1, char16_t(0xD83D))), "\xEF\xBF\xBD"); // a pair cut at the end
}

TEST(UTF8, EveryLengthOfSequence)
{
    EXPECT_EQ(ToUTF8(u"\u007F"), "\x7F");
    EXPECT_EQ(ToUTF8(u"\u0080"), "\xC2\x80");
    EXPECT_EQ(ToUTF8(u"\u07FF"), "\xDF\xBF");
    EXPECT_EQ(ToUTF8(u"\u0800"), "\xE0\xA0\x80");
    EXPECT_EQ(ToUTF8(u"\uFFFF"), "\xEF\xBF\xBF");
    EXPECT_EQ(ToUTF8(u"\U0010FFFF"), "\xF4\x8F\xBF\xBF");
}

TEST(UTF8, CopyConstructorCopiesLengthBytesAndIsSafeToRead)
{
    const zunWChar text[] = {'x', 'y', 'z', 0};
    zunUTF8 original(text, 2); // "xy"
    zunUTF8 copy(original);
    EXPECT_EQ(copy.Length(), 2u);
    EXPECT_EQ(std::string(copy.Get8(), 2), "xy");
    EXPECT_STREQ(copy.Get8(), "xy"); // terminated in a byte of its own
    zunUTF8 empty(nullptr, 0);
    zunUTF8 emptyCopy(empty);
    EXPECT_EQ(emptyCopy.Get8(), nullptr);
}

TEST(UTF8, AssignmentAndSelfAssignment)
{
    const zunWChar one[] = {'1', 0};
    const zunWChar two[] = {'2', '2', 0};
    zunUTF8 a(one, 0xFFFFFFFF);
    zunUTF8 b(two, 2);
    a = b;
    EXPECT_EQ(a.Length(), 2u);
    EXPECT_STREQ(a.Get8(), "22");
    zunUTF8 & alias = a;
    a = alias;
    EXPECT_STREQ(a.Get8(), "22");
}

TEST(UTF8, ToNew16OfNullIsNullAndOfTextIsTerminated)
{
    EXPECT_EQ(zunUTF8::ToNew16(nullptr).get(), nullptr);
    auto converted = zunUTF8::ToNew16("\xE6\x97\xA5\xE6\x9C\xAC");
    ASSERT_NE(converted.get(), nullptr);
    EXPECT_EQ(converted.get()[0], 0x65E5);
    EXPECT_EQ(converted.get()[1], 0x672C);
    EXPECT_EQ(converted.get()[2], 0);
}

// --- round trips and the reference ----------------------------------------

TEST(UTFReference, ValidTextRoundTrips)
{
    std::mt19937 rng(12345);
    for (int round = 0; round < 300; ++round)
    {
        U16 units;
        const std::size_t length = rng() % 200;
        while (units.size() < length)
        {
            std::uint32_t cp = rng() % 0x110000;
            if (cp >= 0xD800 && cp <= 0xDFFF)
                continue;
            if (cp >= 0x10000)
            {
                cp -= 0x10000;
                units.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
                units.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
            }
            else
                units.push_back(static_cast<char16_t>(cp));
        }
        const std::string narrow = ToUTF8(units);
        ASSERT_EQ(narrow, ReferenceUTF8(units));
        ASSERT_EQ(ToUTF16(narrow), units);
    }
}

TEST(UTFReference, RandomUTF8MatchesTheReference)
{
    std::mt19937 rng(777);
    for (int round = 0; round < 3000; ++round)
    {
        const std::string bytes = RandomUTF8Like(rng, rng() % 30);
        ASSERT_EQ(ToUTF16(bytes), ReferenceUTF16(bytes)) << "round " << round;
    }
}

TEST(UTFReference, RandomUTF16MatchesTheReference)
{
    std::mt19937 rng(4242);
    for (int round = 0; round < 3000; ++round)
    {
        const U16 units = RandomUTF16Like(rng, rng() % 80);
        ASSERT_EQ(ToUTF8(units), ReferenceUTF8(units)) << "round " << round;
    }
}

TEST(UTFReference, AsciiRunsOfEveryAlignmentAroundOtherCharacters)
{
    // Runs of 0..40 ASCII bytes before and after other characters cross the
    // 16-unit block boundary at every offset.
    const char * others[] = {"\xC3\xA9", "\xE6\x97\xA5", "\xF0\x9F\x98\x80", "\xFF", "\xE2\x82"};
    for (const char * other : others)
        for (std::size_t before = 0; before <= 40; ++before)
            for (std::size_t after = 0; after <= 40; after += 7)
            {
                const std::string text = std::string(before, 'a') + other + std::string(after, 'b');
                ASSERT_EQ(ToUTF16(text), ReferenceUTF16(text)) << before << " " << after;
                const U16 units = ReferenceUTF16(text);
                ASSERT_EQ(ToUTF8(units), ReferenceUTF8(units)) << before << " " << after;
            }
}

TEST(UTFReference, LargeTextsTakeTheSizedPath)
{
    // Above 16 Mi source units the converter sizes before it allocates.
    std::mt19937 rng(99);
    std::string bytes;
    while (bytes.size() < (std::size_t(1) << 24) + 1000)
        bytes += RandomUTF8Like(rng, 50);
    const U16 expected = ReferenceUTF16(bytes);
    EXPECT_EQ(ToUTF16(bytes), expected);
    EXPECT_EQ(ToUTF8(expected), ReferenceUTF8(expected));
}

TEST(UTFReference, AGivenLengthNeedsNoTerminatorBehindIt)
{
    // Blocks of exactly the given units, with no terminator: nothing behind
    // them is read (AddressSanitizer reports any read past the block).
    const std::unique_ptr<char[]> narrow(new char[3]{'a', '\xC3', '\xA9'});
    const zunUTF16 wide(narrow.get(), 3);
    ASSERT_EQ(wide.Length(), 2u);
    EXPECT_EQ(wide.Get16()[0], u'a');
    EXPECT_EQ(wide.Get16()[1], u'\u00E9');
    const std::unique_ptr<zunWChar[]> units(new zunWChar[2]{u'a', u'\u00E9'});
    const zunUTF8 back(units.get(), 2);
    ASSERT_EQ(back.Length(), 3u);
    EXPECT_EQ(std::string(back.Get8(), 3), "a\xC3\xA9");
}
