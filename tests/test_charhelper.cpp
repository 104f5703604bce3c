// The character helpers: comparison and its null rules, number texts in
// static buffers, unit searches, the lead-unit walks and case changes.
#include <gtest/gtest.h>

#include <clocale>
#include <cstring>
#include <string>

#include "MemTesting.h"
#include "zunCharHelper.h"
#include "zunMem.h"

namespace
{
    using H8 = zunCharHelper<char>;
    using H16 = zunCharHelper<zunWChar>;
    using U16 = std::u16string;

    U16 Units(const zunWChar * text)
    {
        return U16(reinterpret_cast<const char16_t *>(text));
    }

    const StringCompareMode kModes[] = {StringCompareMode_Sensitive, StringCompareMode_Insensitive};
}

// ---- Compare ----------------------------------------------------------------

TEST(CharHelperCompare, EqualityIsOneNotZero)
{
    EXPECT_EQ(CompareResult_Less, 0);
    EXPECT_EQ(CompareResult_Equal, 1);
    EXPECT_EQ(CompareResult_Greater, 2);
    EXPECT_EQ(StringCompareMode_Sensitive, 0);
    EXPECT_EQ(StringCompareMode_Insensitive, 1);
}

TEST(CharHelperCompare, NullAndEmptyAreEqualInEitherOrderAndMode)
{
    for (StringCompareMode mode : kModes)
    {
        EXPECT_EQ(H8::Compare(nullptr, nullptr, mode), CompareResult_Equal);
        EXPECT_EQ(H8::Compare(nullptr, "", mode), CompareResult_Equal);
        EXPECT_EQ(H8::Compare("", nullptr, mode), CompareResult_Equal);
        EXPECT_EQ(H16::Compare(nullptr, nullptr, mode), CompareResult_Equal);
        EXPECT_EQ(H16::Compare(nullptr, u"", mode), CompareResult_Equal);
        EXPECT_EQ(H16::Compare(u"", nullptr, mode), CompareResult_Equal);
    }
}

TEST(CharHelperCompare, NullOrdersBeforeAnyTextOnEitherSide)
{
    for (StringCompareMode mode : kModes)
    {
        EXPECT_EQ(H8::Compare(nullptr, "a", mode), CompareResult_Less);
        EXPECT_EQ(H8::Compare("a", nullptr, mode), CompareResult_Greater);
        EXPECT_EQ(H16::Compare(nullptr, u"a", mode), CompareResult_Less);
        EXPECT_EQ(H16::Compare(u"a", nullptr, mode), CompareResult_Greater);
    }
}

TEST(CharHelperCompare, CaseDecidesOnlyInMode0)
{
    EXPECT_EQ(H8::Compare("abc", "ABC", StringCompareMode_Sensitive), CompareResult_Greater);
    EXPECT_EQ(H8::Compare("abc", "ABC", StringCompareMode_Insensitive), CompareResult_Equal);
    EXPECT_EQ(H16::Compare(u"abc", u"ABC", StringCompareMode_Sensitive), CompareResult_Greater);
    EXPECT_EQ(H16::Compare(u"abc", u"ABC", StringCompareMode_Insensitive), CompareResult_Equal);
}

TEST(CharHelperCompare, AnyModeOtherThan0ActsLike1)
{
    const auto mode = static_cast<StringCompareMode>(7);
    EXPECT_EQ(H8::Compare("Hello", "hELLO", mode), CompareResult_Equal);
    EXPECT_EQ(H16::Compare(u"Hello", u"hELLO", mode), CompareResult_Equal);
}

TEST(CharHelperCompare, Mode0OrdersUnitsAsUnsigned)
{
    EXPECT_EQ(H8::Compare("\xC3\xA9", "z", StringCompareMode_Sensitive), CompareResult_Greater);
    EXPECT_EQ(H8::Compare("z", "\x80", StringCompareMode_Sensitive), CompareResult_Less);
    EXPECT_EQ(H16::Compare(u"\u00E9", u"z", StringCompareMode_Sensitive), CompareResult_Greater);
    EXPECT_EQ(H16::Compare(u"\uFFFF", u"\u0041", StringCompareMode_Sensitive), CompareResult_Greater);
}

TEST(CharHelperCompare, PrefixOrdersFirst)
{
    for (StringCompareMode mode : kModes)
    {
        EXPECT_EQ(H8::Compare("ab", "abc", mode), CompareResult_Less);
        EXPECT_EQ(H8::Compare("abc", "ab", mode), CompareResult_Greater);
        EXPECT_EQ(H16::Compare(u"ab", u"abc", mode), CompareResult_Less);
        EXPECT_EQ(H16::Compare(u"abc", u"ab", mode), CompareResult_Greater);
    }
}

TEST(CharHelperCompare, InsensitiveOrdersByLoweredUnits)
{
    // 'A' lowers to 'a' (0x61), which orders after '_' (0x5F); in mode 0 the
    // upper-case 'A' (0x41) orders before it.
    EXPECT_EQ(H8::Compare("_", "A", StringCompareMode_Insensitive), CompareResult_Less);
    EXPECT_EQ(H8::Compare("_", "A", StringCompareMode_Sensitive), CompareResult_Greater);
    EXPECT_EQ(H16::Compare(u"_", u"A", StringCompareMode_Insensitive), CompareResult_Less);
    EXPECT_EQ(H16::Compare(u"_", u"A", StringCompareMode_Sensitive), CompareResult_Greater);
    EXPECT_EQ(H16::Compare(u"ABD", u"abc", StringCompareMode_Insensitive), CompareResult_Greater);
}

TEST(CharHelperCompare, DefaultLocaleFoldsAsciiOnly)
{
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
    EXPECT_NE(H8::Compare("\xC3\x89", "\xC3\xA9", StringCompareMode_Insensitive), CompareResult_Equal);
    EXPECT_NE(H16::Compare(u"\u00C9", u"\u00E9", StringCompareMode_Insensitive), CompareResult_Equal);
}

// ---- Convert ----------------------------------------------------------------

TEST(CharHelperConvert, NumbersUseTheirFormats)
{
    EXPECT_STREQ(H8::Convert(-42).get(), "-42");
    EXPECT_STREQ(H8::Convert(4294967295u).get(), "4294967295");
    EXPECT_STREQ(H8::Convert(static_cast<std::int64_t>(-9223372036854775807LL - 1)).get(), "-9223372036854775808");
    EXPECT_STREQ(H8::Convert(static_cast<std::uint64_t>(18446744073709551615ULL)).get(), "18446744073709551615");
    EXPECT_STREQ(H8::Convert(1.5).get(), "1.500000");
    EXPECT_EQ(Units(H16::Convert(-42).get()), u"-42");
    EXPECT_EQ(Units(H16::Convert(4294967295u).get()), u"4294967295");
    EXPECT_EQ(Units(H16::Convert(static_cast<std::int64_t>(-7)).get()), u"-7");
    EXPECT_EQ(Units(H16::Convert(static_cast<std::uint64_t>(18446744073709551615ULL)).get()), u"18446744073709551615");
    EXPECT_EQ(Units(H16::Convert(-0.25).get()), u"-0.250000");
}

TEST(CharHelperConvert, TwoCallsOfOneOverloadShareTheBuffer)
{
    auto first = H8::Convert(1);
    auto second = H8::Convert(2);
    EXPECT_EQ(first.get(), second.get());
    EXPECT_STREQ(first.get(), "2");

    auto wideFirst = H16::Convert(1);
    auto wideSecond = H16::Convert(22);
    EXPECT_EQ(wideFirst.get(), wideSecond.get());
    EXPECT_EQ(Units(wideFirst.get()), u"22");
}

TEST(CharHelperConvert, EachOverloadHasItsOwnBuffer)
{
    auto i = H8::Convert(1);
    auto u = H8::Convert(2u);
    auto d = H8::Convert(3.0);
    EXPECT_NE(i.get(), u.get());
    EXPECT_NE(i.get(), d.get());
    EXPECT_STREQ(i.get(), "1");
    EXPECT_NE(static_cast<const void *>(H8::Convert(1).get()), static_cast<const void *>(H16::Convert(1).get()));
}

TEST(CharHelperConvert, TheDeleterOfANumberTextDoesNothing)
{
    auto text = H8::Convert(123);
    const char * buffer = text.get();
    text.reset(); // must not free the static buffer (the sanitizers would say so)
    EXPECT_STREQ(buffer, "123");
}

TEST(CharHelperConvert, TextsAreConvertedAndOwned)
{
    auto narrow = H8::Convert(u"caf\u00E9");
    EXPECT_STREQ(narrow.get(), "caf\xC3\xA9");
    auto wide = H16::Convert("caf\xC3\xA9");
    EXPECT_EQ(Units(wide.get()), u"caf\u00E9");
    EXPECT_EQ(H8::Convert(static_cast<const zunWChar *>(nullptr)).get(), nullptr);
    EXPECT_EQ(H16::Convert(static_cast<const char *>(nullptr)).get(), nullptr);
}

// ---- CopyBuffer -------------------------------------------------------------

TEST(CharHelperCopyBuffer, CopiesCountUnitsWithoutTerminator)
{
    char dst[8] = "xxxxxxx";
    H8::CopyBuffer(dst, "abcdef", 3);
    EXPECT_STREQ(dst, "abcxxxx");
    zunWChar wide[8] = u"xxxxxxx";
    H16::CopyBuffer(wide, u"abcdef", 3);
    EXPECT_EQ(Units(wide), u"abcxxxx");
}

TEST(CharHelperCopyBuffer, AllOnesCopiesTheWholeTextAndTerminator)
{
    char dst[8] = "xxxxxxx";
    H8::CopyBuffer(dst, "abc", 0xFFFFFFFF);
    EXPECT_STREQ(dst, "abc");
    EXPECT_EQ(dst[4], 'x');
    zunWChar wide[8] = u"xxxxxxx";
    H16::CopyBuffer(wide, u"abc", 0xFFFFFFFF);
    EXPECT_EQ(Units(wide), u"abc");
    EXPECT_EQ(wide[4], u'x');
}

TEST(CharHelperCopyBuffer, NullSourceCopiesNothing)
{
    char dst[4] = "xyz";
    H8::CopyBuffer(dst, nullptr, 0xFFFFFFFF);
    EXPECT_STREQ(dst, "xyz");
    zunWChar wide[4] = u"xyz";
    H16::CopyBuffer(wide, nullptr, 2);
    EXPECT_EQ(Units(wide), u"xyz");
}

TEST(CharHelperCopyBuffer, MovesDownWithinOneBuffer)
{
    char text[] = "0123456789";
    H8::CopyBuffer(text, text + 2, 0xFFFFFFFF);
    EXPECT_STREQ(text, "23456789");
}

// ---- Searches ---------------------------------------------------------------

TEST(CharHelperFind, FindCharGivesTheFirstIndex)
{
    EXPECT_EQ(H8::FindChar("banana", 'n'), 2u);
    EXPECT_EQ(H8::FindChar("banana", 'x'), 0xFFFFFFFFu);
    EXPECT_EQ(H16::FindChar(u"banana", u'a'), 1u);
    EXPECT_EQ(H16::FindChar(u"banana", u'x'), 0xFFFFFFFFu);
}

TEST(CharHelperFind, UnitZeroIsNeverFound)
{
    EXPECT_EQ(H8::FindChar("abc", '\0'), 0xFFFFFFFFu);
    EXPECT_EQ(H8::FindChar("", '\0'), 0xFFFFFFFFu);
    EXPECT_EQ(H16::FindChar(u"abc", 0), 0xFFFFFFFFu);
}

TEST(CharHelperFind, FindSubString)
{
    EXPECT_EQ(H8::FindSubString("hello world", "o w"), 4u);
    EXPECT_EQ(H8::FindSubString("hello", "hello!"), 0xFFFFFFFFu);
    EXPECT_EQ(H8::FindSubString("hello", "l"), 2u);
    EXPECT_EQ(H16::FindSubString(u"hello world", u"world"), 6u);
    EXPECT_EQ(H16::FindSubString(u"hello", u"xyz"), 0xFFFFFFFFu);
}

TEST(CharHelperFind, EmptySubStringIsFoundAtZero)
{
    EXPECT_EQ(H8::FindSubString("abc", ""), 0u);
    EXPECT_EQ(H8::FindSubString("", ""), 0u);
    EXPECT_EQ(H16::FindSubString(u"abc", u""), 0u);
}

// ---- Lead units -------------------------------------------------------------

TEST(CharHelperLeadUnits, ByteOffsetCountsBytesOfWholeCharacters)
{
    const char text[] = {'\x61', '\xC3', '\xA9', '\x7A', 0};
    EXPECT_EQ(H8::GetByteOffset(text, 2), 3u);
    EXPECT_EQ(H8::GetByteOffset(text, 3), 4u);
    EXPECT_EQ(H8::GetByteOffset(text, 0), 0u);
    EXPECT_EQ(H8::GetByteOffset("\xF0\x9F\x8C\x8Dz", 1), 4u);
    EXPECT_EQ(H8::GetByteOffset("\xE2\x82\xAC!", 1), 3u);
}

TEST(CharHelperLeadUnits, WideOffsetCountsSixteenBitUnits)
{
    const zunWChar text[] = {0xD83C, 0xDF0D, u'z', 0};
    EXPECT_EQ(H16::GetByteOffset(text, 2), 3u);
    EXPECT_EQ(H16::GetByteOffset(text, 1), 2u);
    EXPECT_EQ(H16::GetByteOffset(text, 0), 0u);
    const zunWChar loneLow[] = {0xDC00, u'a', 0};
    EXPECT_EQ(H16::GetByteOffset(loneLow, 1), 1u);
}

TEST(CharHelperLeadUnits, LeadByteRuleSizesEveryByte)
{
    // One character each, read through the walk that uses the lead-byte rule;
    // the continuation bytes behind the lead are not checked.
    const struct
    {
        const char * text;
        unsigned int size;
    } cases[] = {{"A", 1},       {"\x7F", 1},    {"\xC3xyz", 2}, {"\xDFxyz", 2}, {"\xE0xyz", 3}, {"\xEFxyz", 3},
                 {"\xF0xyz", 4}, {"\xF7xyz", 4}, {"\x80xyz", 1}, {"\xBFxyz", 1}, {"\xF8xyz", 1}, {"\xFFxyz", 1}};
    for (const auto & c : cases)
        EXPECT_EQ(H8::GetByteOffset(c.text, 1), c.size) << static_cast<int>(static_cast<unsigned char>(c.text[0]));
}

TEST(CharHelperLeadUnits, AWalkBeyondTheTextStopsAtTheTerminator)
{
    // Asking for more characters than the text holds must not read behind it.
    EXPECT_EQ(H8::GetByteOffset("ab", 5), 2u);
    EXPECT_EQ(H8::GetByteOffset("a\xF0", 2), 2u);
    EXPECT_EQ(H16::GetByteOffset(u"ab", 9), 2u);
    const zunWChar cut[] = {u'a', 0xD800, 0};
    EXPECT_EQ(H16::GetByteOffset(cut, 3), 2u);
}

TEST(CharHelperLeadUnits, IsValidChar)
{
    EXPECT_FALSE(H8::IsValidChar('\xC3'));
    EXPECT_FALSE(H8::IsValidChar('\x80'));
    EXPECT_FALSE(H8::IsValidChar('\xFF'));
    EXPECT_TRUE(H8::IsValidChar('\x7F'));
    EXPECT_TRUE(H8::IsValidChar('\0'));
    EXPECT_FALSE(H16::IsValidChar(0xD800));
    EXPECT_FALSE(H16::IsValidChar(0xDBFF));
    EXPECT_FALSE(H16::IsValidChar(0xDC00));
    EXPECT_FALSE(H16::IsValidChar(0xDFFF));
    EXPECT_TRUE(H16::IsValidChar(0xD7FF));
    EXPECT_TRUE(H16::IsValidChar(0xE000));
    EXPECT_TRUE(H16::IsValidChar(0xFFFF));
}

// ---- Case -------------------------------------------------------------------

TEST(CharHelperCase, ChangeCharCaseSizesAThreeByteCharacter)
{
    unsigned char out[4] = {0xEE, 0xEE, 0xEE, 0xEE};
    unsigned int srcSize = 0, dstSize = 0;
    H8::ChangeCharCase("\xE2\x82\xAC", true, out, srcSize, dstSize);
    EXPECT_EQ(srcSize, 3u);
    EXPECT_EQ(dstSize, 3u);
    EXPECT_EQ(out[0], 0xE2); // the lead byte, mapped (no case): as it was
    EXPECT_EQ(out[1], 0xEE); // the rest of the work area is not written
}

TEST(CharHelperCase, ChangeCharCaseMapsOneByte)
{
    unsigned char out[4] = {0xEE, 0xEE, 0xEE, 0xEE};
    unsigned int srcSize = 0, dstSize = 0;
    H8::ChangeCharCase("Ab", true, out, srcSize, dstSize);
    EXPECT_EQ(out[0], 'a');
    EXPECT_EQ(srcSize, 1u);
    EXPECT_EQ(dstSize, 1u);
    EXPECT_EQ(out[1], 0xEE);
    H8::ChangeCharCase("z", false, out, srcSize, dstSize);
    EXPECT_EQ(out[0], 'Z');
    H8::ChangeCharCase("5", false, out, srcSize, dstSize);
    EXPECT_EQ(out[0], '5');
}

TEST(CharHelperCase, BytesAboveAsciiKeepTheirValueInBothDirections)
{
    // Lowering passes the byte sign-extended (0xFFC9) and keeps the low byte;
    // raising keeps a byte that toupper could not take.
    unsigned char out[4] = {};
    unsigned int srcSize = 0, dstSize = 0;
    H8::ChangeCharCase("\xC9", true, out, srcSize, dstSize);
    EXPECT_EQ(out[0], 0xC9);
    H8::ChangeCharCase("\xE9", false, out, srcSize, dstSize);
    EXPECT_EQ(out[0], 0xE9);
    H8::ChangeCharCase("\xFF", false, out, srcSize, dstSize);
    EXPECT_EQ(out[0], 0xFF);
}

TEST(CharHelperCase, WideChangeCharCaseSizesInBytes)
{
    unsigned char out[4] = {0xEE, 0xEE, 0xEE, 0xEE};
    unsigned int srcSize = 0, dstSize = 0;
    H16::ChangeCharCase(u"Q", true, out, srcSize, dstSize);
    EXPECT_EQ(srcSize, 2u);
    EXPECT_EQ(dstSize, 2u);
    zunWChar unit;
    std::memcpy(&unit, out, 2);
    EXPECT_EQ(unit, u'q');
    EXPECT_EQ(out[2], 0xEE);

    const zunWChar pair[] = {0xD83C, 0xDF0D, 0};
    H16::ChangeCharCase(pair, false, out, srcSize, dstSize);
    EXPECT_EQ(srcSize, 4u);
    EXPECT_EQ(dstSize, 4u);
    std::memcpy(&unit, out, 2);
    EXPECT_EQ(unit, 0xD83C);
    EXPECT_EQ(out[2], 0xEE);
}

TEST(CharHelperCase, ChangeStringCaseOfAb)
{
    char * lower = H8::ChangeStringCase("Ab", true);
    char * upper = H8::ChangeStringCase("Ab", false);
    EXPECT_STREQ(lower, "ab");
    EXPECT_STREQ(upper, "AB");
    EXPECT_EQ(zunMemGetSize(lower), 3u); // a zunMemAlloc block of the exact size
    void * block = lower;
    zunMemFree(block);
    block = upper;
    zunMemFree(block);

    zunWChar * wide = H16::ChangeStringCase(u"Ab", false);
    EXPECT_EQ(Units(wide), u"AB");
    EXPECT_EQ(zunMemGetSize(wide), 6u);
    block = wide;
    zunMemFree(block);
}

TEST(CharHelperCase, ChangeStringCaseOfEmptyText)
{
    char * empty = H8::ChangeStringCase("", true);
    ASSERT_NE(empty, nullptr);
    EXPECT_STREQ(empty, "");
    void * block = empty;
    zunMemFree(block);
}

TEST(CharHelperCase, MultiUnitCharactersKeepLengthAndPlace)
{
    char * upper = H8::ChangeStringCase("a\xC3\xA9z\xF0\x9F\x8C\x8D!", false);
    EXPECT_STREQ(upper, "A\xC3\xA9Z\xF0\x9F\x8C\x8D!");
    void * block = upper;
    zunMemFree(block);

    const zunWChar text[] = {u'x', 0xD83C, 0xDF0D, u'Y', 0};
    zunWChar * lower = H16::ChangeStringCase(text, true);
    const zunWChar expected[] = {u'x', 0xD83C, 0xDF0D, u'y', 0};
    EXPECT_EQ(Units(lower), Units(expected));
    block = lower;
    zunMemFree(block);
}

TEST(CharHelperCase, ACharacterCutShortEndsWithTheText)
{
    // The lead byte claims three bytes but the text ends after one.
    char * upper = H8::ChangeStringCase("ab\xE2", false);
    EXPECT_STREQ(upper, "AB\xE2");
    EXPECT_EQ(zunMemGetSize(upper), 4u);
    void * block = upper;
    zunMemFree(block);
}

TEST(CharHelperCase, ChangeStringCaseGivesNullWhenTheHeapSaysNo)
{
    zunMemTesting::FailAllocation(1);
    EXPECT_EQ(H8::ChangeStringCase("Ab", true), nullptr);
    zunMemTesting::FailAllocation(1);
    EXPECT_EQ(H16::ChangeStringCase(u"Ab", true), nullptr);
    zunMemTesting::Reset();
}

TEST(CharHelperCase, TheLibrarySetsNoLocale)
{
    char * lower = H8::ChangeStringCase("ABC", true);
    void * block = lower;
    zunMemFree(block);
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
}
