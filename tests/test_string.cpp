// zunString and zunStringW: the two empty forms, the checksum after every
// mutator, positions and counts behind the end, conversions between the
// encodings, the free operators, raw wide text, and an exhausted heap.
#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "MemTesting.h"
#include "zunString.h"

namespace
{
    template <typename S> using UnitOf = std::remove_cv_t<std::remove_pointer_t<decltype(S::m_pData)>>;

    // An ASCII literal in the units of either encoding.
    template <typename C> std::basic_string<C> Text(const char * ascii)
    {
        std::basic_string<C> text;
        for (const char * p = ascii; *p != 0; ++p)
            text.push_back(static_cast<C>(static_cast<unsigned char>(*p)));
        return text;
    }

    template <typename S> std::basic_string<UnitOf<S>> Content(const S & s)
    {
        const UnitOf<S> * text = s;
        return std::basic_string<UnitOf<S>>(text, s.Length());
    }

    template <typename C> std::uint64_t LowByteSum(const C * text, unsigned int length)
    {
        std::uint64_t sum = 0;
        for (unsigned int i = 0; i < length; ++i)
            sum += static_cast<std::uint64_t>(text[i]) & 0xFF;
        return sum;
    }

    // The invariants: a block holds length units and a terminator, the
    // checksum is the low-byte sum, and no text means checksum 0.
    template <typename S> void ExpectInvariants(const S & s)
    {
        if (s.m_pData == nullptr)
        {
            EXPECT_EQ(s.m_nLength, 0u);
        }
        else
        {
            EXPECT_EQ(s.m_pData[s.m_nLength], 0);
            EXPECT_GE(zunMemGetSize(s.m_pData), (s.m_nLength + 1) * sizeof(UnitOf<S>));
        }
        EXPECT_EQ(s.m_nChecksum, LowByteSum(s.m_pData, s.m_nLength));
    }

    template <typename S> class StringTest : public ::testing::Test
    {
    protected:
        using C = UnitOf<S>;
        using Str = std::basic_string<C>;

        void TearDown() override { zunMemTesting::Reset(); }

        static Str T(const char * ascii) { return Text<C>(ascii); }
        static S Make(const char * ascii) { return S(T(ascii).c_str()); }
    };

    using StringTypes = ::testing::Types<zunString, zunStringW>;
    TYPED_TEST_SUITE(StringTest, StringTypes);
}

// ---- Shape ------------------------------------------------------------------

TEST(StringShape, FieldsInOrderBehindTheVirtualTable)
{
    zunString s;
    EXPECT_TRUE(std::has_virtual_destructor_v<zunString>);
    EXPECT_TRUE(std::has_virtual_destructor_v<zunStringW>);
    EXPECT_LT(static_cast<void *>(&s.m_pData), static_cast<void *>(&s.m_nLength));
    EXPECT_LT(static_cast<void *>(&s.m_nLength), static_cast<void *>(&s.m_nChecksum));
    EXPECT_TRUE((std::is_same_v<decltype(s.m_nChecksum), std::uint64_t>));
    EXPECT_TRUE((std::is_same_v<zunStringW, zunStringT<zunWChar, zunCharHelper<zunWChar>>>));
}

// ---- Construction and the two empty forms -----------------------------------

TYPED_TEST(StringTest, DefaultStringHasNoBlockButReadsAsEmptyText)
{
    TypeParam s;
    EXPECT_EQ(s.m_pData, nullptr);
    EXPECT_EQ(s.Length(), 0u);
    EXPECT_TRUE(s.IsEmpty());
    EXPECT_EQ(s.m_nChecksum, 0u);
    const typename TestFixture::C * text = s;
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text[0], 0);
    EXPECT_EQ(s.GetAt(0), 0);
}

TYPED_TEST(StringTest, EmptyTextGivesABlockNullGivesNone)
{
    TypeParam empty;
    empty = this->T("").c_str();
    EXPECT_NE(empty.m_pData, nullptr);
    EXPECT_EQ(zunMemGetSize(empty.m_pData), sizeof(typename TestFixture::C));
    TypeParam cleared = this->Make("abc");
    cleared = static_cast<const typename TestFixture::C *>(nullptr);
    EXPECT_EQ(cleared.m_pData, nullptr);
    EXPECT_EQ(cleared.Length(), 0u);
    EXPECT_TRUE(empty == cleared);
    EXPECT_TRUE(cleared == empty);
    EXPECT_EQ(empty.m_nChecksum, 0u);
    EXPECT_EQ(cleared.m_nChecksum, 0u);
    TypeParam viaNullptr = this->Make("x");
    viaNullptr = nullptr;
    EXPECT_EQ(viaNullptr.m_pData, nullptr);
}

TYPED_TEST(StringTest, TextConstructorCopiesIntoAnExactBlock)
{
    auto text = this->T("hello");
    TypeParam s(text.c_str());
    EXPECT_NE(s.m_pData, text.c_str());
    EXPECT_EQ(Content(s), text);
    EXPECT_EQ(s.Length(), 5u);
    EXPECT_EQ(zunMemGetSize(s.m_pData), 6 * sizeof(typename TestFixture::C));
    ExpectInvariants(s);
    TypeParam none(static_cast<const typename TestFixture::C *>(nullptr));
    EXPECT_EQ(none.m_pData, nullptr);
}

TYPED_TEST(StringTest, CopyKeepsTheFormOfTheSource)
{
    TypeParam none;
    TypeParam copyOfNone(none);
    EXPECT_EQ(copyOfNone.m_pData, nullptr);
    TypeParam text = this->Make("abc");
    TypeParam copy(text);
    EXPECT_NE(copy.m_pData, text.m_pData); // never a shared block
    EXPECT_EQ(Content(copy), this->T("abc"));
    EXPECT_EQ(copy.m_nChecksum, text.m_nChecksum);
}

TYPED_TEST(StringTest, MoveTakesTheBlockAndLeavesLengthAndChecksum)
{
    TypeParam source = this->Make("abc");
    auto * block = source.m_pData;
    const auto checksum = source.m_nChecksum;
    TypeParam moved(std::move(source));
    EXPECT_EQ(moved.m_pData, block);
    EXPECT_EQ(moved.Length(), 3u);
    EXPECT_EQ(source.m_pData, nullptr); // NOLINT(bugprone-use-after-move): the moved-from state is the contract
    EXPECT_EQ(source.m_nLength, 3u);
    EXPECT_EQ(source.m_nChecksum, checksum);
    // The moved-from string still reads safely (its text is the empty text).
    EXPECT_EQ(static_cast<const typename TestFixture::C *>(source)[0], 0);
    EXPECT_EQ(source.GetAt(0), 0);
}

// ---- Assignment -------------------------------------------------------------

TYPED_TEST(StringTest, AssigningAStringWithoutBlockGivesTheEmptyText)
{
    TypeParam none;
    TypeParam target = this->Make("abc");
    target = none;
    EXPECT_NE(target.m_pData, nullptr);
    EXPECT_EQ(target.Length(), 0u);
    ExpectInvariants(target);
}

TYPED_TEST(StringTest, SelfAssignmentDoesNothing)
{
    TypeParam s = this->Make("abc");
    auto * block = s.m_pData;
    zunMemTesting::StartCounting();
    s = s;
    s = s.m_pData;
    EXPECT_EQ(zunMemTesting::GetCounters().allocations, 0u);
    EXPECT_EQ(s.m_pData, block);
    EXPECT_EQ(Content(s), this->T("abc"));
}

TYPED_TEST(StringTest, NullOntoNoBlockDoesNothing)
{
    TypeParam s;
    zunMemTesting::StartCounting();
    s = static_cast<const typename TestFixture::C *>(nullptr);
    EXPECT_EQ(zunMemTesting::GetCounters().allocations, 0u);
    EXPECT_EQ(s.m_pData, nullptr);
}

TYPED_TEST(StringTest, AssigningFromInsideTheOwnBlockCopiesBeforeFreeing)
{
    TypeParam s = this->Make("abcdef");
    s = s.m_pData + 2;
    EXPECT_EQ(Content(s), this->T("cdef"));
    ExpectInvariants(s);
}

TYPED_TEST(StringTest, AssignmentIsOneAllocation)
{
    TypeParam s = this->Make("old");
    auto text = this->T("a longer text");
    zunMemTesting::StartCounting();
    s = text.c_str();
    const auto counters = zunMemTesting::GetCounters();
    EXPECT_EQ(counters.allocations + counters.resizes, 1u);
    EXPECT_EQ(counters.frees, 1u);
}

// ---- Checksum ---------------------------------------------------------------

TEST(StringChecksum, NarrowChecksumIsTheSumOfUnsignedBytes)
{
    zunString s("\xFF\xFF"
                "A");
    EXPECT_EQ(s.m_nChecksum, 0xFFu + 0xFFu + 0x41u);
}

TEST(StringChecksum, WideChecksumLeavesTheHighByteOut)
{
    zunStringW a(u"x\u0141y");
    zunStringW b(u"x\u0241y");
    EXPECT_EQ(a.Length(), b.Length());
    EXPECT_EQ(a.m_nChecksum, b.m_nChecksum);
    EXPECT_EQ(a.m_nChecksum, std::uint64_t('x') + 0x41 + 'y');
    EXPECT_FALSE(a == b); // equality falls through to the units
    EXPECT_TRUE(a != b);
}

// The checksum pass runs in vector blocks of several widths with a plain tail:
// every length up to past the widest block, and every start within a vector,
// gives the plain sum, through the copying pass of assignment and the pass
// over the string's own block of Remove.
TYPED_TEST(StringTest, ChecksumHoldsForEveryLengthAndAlignment)
{
    using C = typename TestFixture::C;
    std::basic_string<C> source;
    for (unsigned int i = 0; i < 700; ++i)
        source.push_back(static_cast<C>(sizeof(C) == 2 ? 0x1101 + i * 0x0107 : 1 + (i * 37) % 255));
    for (unsigned int start = 0; start < 3; ++start)
        for (unsigned int length = 0; length + start < source.size(); length += length < 300 ? 1 : 37)
        {
            const std::basic_string<C> text = source.substr(start, length);
            TypeParam s(text.c_str());
            ASSERT_EQ(s.m_nChecksum, LowByteSum(text.c_str(), length)) << start << " " << length;
            s.Remove(0, 1 + start);
            ExpectInvariants(s);
        }
}

TYPED_TEST(StringTest, EqualityOfEveryShortLength)
{
    using C = typename TestFixture::C;
    for (unsigned int length = 0; length <= 40; ++length)
    {
        std::basic_string<C> text(length, C('a'));
        for (unsigned int i = 0; i < length; ++i)
            text[i] = static_cast<C>('a' + i % 26);
        const TypeParam a(text.c_str()), b(text.c_str());
        EXPECT_TRUE(a == b) << length;
        // Each unit in turn differs, with the checksum kept equal, so that
        // only the units decide.
        for (unsigned int i = 0; i + 1 < length; ++i)
        {
            std::basic_string<C> other = text;
            other[i] = static_cast<C>(other[i] + 1);
            other[i + 1] = static_cast<C>(other[i + 1] - 1);
            const TypeParam c(other.c_str());
            ASSERT_EQ(c.m_nChecksum, a.m_nChecksum);
            EXPECT_EQ(a == c, text == other) << length << " " << i;
        }
    }
}

TYPED_TEST(StringTest, AZeroUnitInsideEndsTheUnitCompare)
{
    // Replace can put a 0 unit inside a text; the unit compare stops there,
    // so texts that differ only behind it compare equal.
    TypeParam a = this->Make("ab\x01"
                             "cd");
    TypeParam b = this->Make("ab\x01"
                             "dc");
    a.Replace(1, 0);
    b.Replace(1, 0);
    ASSERT_EQ(a.m_nChecksum, b.m_nChecksum);
    EXPECT_TRUE(a == b);
}

TYPED_TEST(StringTest, EqualityTestsChecksumThenLengthThenUnits)
{
    TypeParam ab = this->Make("ab");
    TypeParam ba = this->Make("ba");
    EXPECT_EQ(ab.m_nChecksum, ba.m_nChecksum);
    EXPECT_FALSE(ab == ba);
    EXPECT_TRUE(ab == this->Make("ab"));
    EXPECT_FALSE(ab == this->Make("abc"));
    // The fields decide first: a string whose checksum was tampered with is
    // unequal without any look at the text.
    TypeParam tampered = this->Make("ab");
    tampered.m_nChecksum += 1;
    EXPECT_FALSE(tampered == ab);
}

// ---- Appending --------------------------------------------------------------

TYPED_TEST(StringTest, AppendingNullChangesNothing)
{
    TypeParam s = this->Make("abc");
    auto * block = s.m_pData;
    s << static_cast<const typename TestFixture::C *>(nullptr);
    EXPECT_EQ(s.m_pData, block);
    EXPECT_EQ(Content(s), this->T("abc"));
    TypeParam none;
    none << static_cast<const typename TestFixture::C *>(nullptr);
    EXPECT_EQ(none.m_pData, nullptr);
}

TYPED_TEST(StringTest, StreamAppendsTextAndStrings)
{
    TypeParam s = this->Make("ab");
    s << this->T("cd").c_str() << this->Make("ef");
    EXPECT_EQ(Content(s), this->T("abcdef"));
    ExpectInvariants(s);
}

TYPED_TEST(StringTest, AppendingAStringToItselfIsSafe)
{
    TypeParam s = this->Make("abc");
    s << s;
    EXPECT_EQ(Content(s), this->T("abcabc"));
    ExpectInvariants(s);
    s << s.m_pData + 4;
    EXPECT_EQ(Content(s), this->T("abcabcbc"));
}

TYPED_TEST(StringTest, AppendingAnEmptyStringGivesABlock)
{
    TypeParam s;
    TypeParam none;
    s << none;
    EXPECT_NE(s.m_pData, nullptr);
    EXPECT_EQ(s.Length(), 0u);
}

TYPED_TEST(StringTest, AppendCopiesAndTakesTheLengthOfTheResult)
{
    TypeParam s = this->Make("ab");
    s.Append(this->T("cde").c_str());
    EXPECT_EQ(Content(s), this->T("abcde"));
    ExpectInvariants(s);
    auto * block = s.m_pData;
    s.Append(nullptr);
    EXPECT_EQ(s.m_pData, block);
    TypeParam none;
    none.Append(this->T("").c_str());
    EXPECT_NE(none.m_pData, nullptr);
    EXPECT_EQ(none.Length(), 0u);
}

TYPED_TEST(StringTest, AppendEndsTheLengthAtAZeroUnitInsideTheOldText)
{
    TypeParam s = this->Make("ab");
    s.Replace('b', 0); // a 0 unit inside the text: length 2 still
    EXPECT_EQ(s.Length(), 2u);
    s.Append(this->T("cd").c_str());
    EXPECT_EQ(s.Length(), 1u); // the result read as a terminated text is "a"
    ExpectInvariants(s);
}

// ---- Insert -----------------------------------------------------------------

TYPED_TEST(StringTest, InsertAtTheStartInTheMiddleAndBehindTheEnd)
{
    TypeParam s = this->Make("ace");
    s.Insert(1, this->T("b").c_str(), 0xFFFFFFFF);
    EXPECT_EQ(Content(s), this->T("abce"));
    s.Insert(0, this->T(">").c_str(), 0xFFFFFFFF);
    EXPECT_EQ(Content(s), this->T(">abce"));
    s.Insert(4, this->T("d").c_str(), 0xFFFFFFFF);
    EXPECT_EQ(Content(s), this->T(">abcde"));
    s.Insert(100, this->T("!").c_str(), 0xFFFFFFFF); // behind the end: appends
    EXPECT_EQ(Content(s), this->T(">abcde!"));
    s.Insert(0xFFFFFFFF, this->T("?").c_str(), 0xFFFFFFFF);
    EXPECT_EQ(Content(s), this->T(">abcde!?"));
    ExpectInvariants(s);
}

TYPED_TEST(StringTest, InsertTakesCountUnits)
{
    TypeParam s = this->Make("xy");
    s.Insert(1, this->T("12345").c_str(), 2);
    EXPECT_EQ(Content(s), this->T("x12y"));
    ExpectInvariants(s);
}

TYPED_TEST(StringTest, InsertOfNullDoesNothing)
{
    TypeParam s = this->Make("xy");
    auto * block = s.m_pData;
    s.Insert(0, nullptr, 5);
    EXPECT_EQ(s.m_pData, block);
    EXPECT_EQ(Content(s), this->T("xy"));
}

TYPED_TEST(StringTest, AnyInsertGivesAStringWithoutBlockABlock)
{
    TypeParam a;
    a.Insert(0, this->T("abc").c_str(), 0);
    EXPECT_NE(a.m_pData, nullptr);
    EXPECT_EQ(a.Length(), 0u);
    TypeParam b;
    b.Insert(5, this->T("").c_str(), 0xFFFFFFFF);
    EXPECT_NE(b.m_pData, nullptr);
    ExpectInvariants(b);
}

TYPED_TEST(StringTest, InsertFromTheOwnBlock)
{
    TypeParam s = this->Make("abc");
    s.Insert(1, s.m_pData, 0xFFFFFFFF);
    EXPECT_EQ(Content(s), this->T("aabcbc"));
    ExpectInvariants(s);
}

TYPED_TEST(StringTest, InsertIsOneAllocation)
{
    TypeParam s = this->Make("abcdef");
    auto text = this->T("123");
    zunMemTesting::StartCounting();
    s.Insert(3, text.c_str(), 0xFFFFFFFF);
    EXPECT_EQ(zunMemTesting::GetCounters().allocations, 1u);
    EXPECT_EQ(zunMemTesting::GetCounters().frees, 1u);
}

// ---- Remove -----------------------------------------------------------------

TYPED_TEST(StringTest, RemoveCutsInPlace)
{
    TypeParam s = this->Make("abcdef");
    auto * block = s.m_pData;
    s.Remove(1, 2);
    EXPECT_EQ(Content(s), this->T("adef"));
    EXPECT_EQ(s.m_pData, block); // the block stays as it was
    EXPECT_EQ(zunMemGetSize(block), 7 * sizeof(typename TestFixture::C));
    ExpectInvariants(s);
}

TYPED_TEST(StringTest, RemoveWithAllOnesCutsTheRest)
{
    TypeParam s = this->Make("abcdef");
    s.Remove(2, 0xFFFFFFFF);
    EXPECT_EQ(Content(s), this->T("ab"));
    ExpectInvariants(s);
}

TYPED_TEST(StringTest, RemovePastTheEndCutsTheRest)
{
    TypeParam s = this->Make("abcdef");
    s.Remove(4, 3); // position + count above the length
    EXPECT_EQ(Content(s), this->T("abcd"));
    s.Remove(1, 0xFFFFFFFE); // position + count wraps in 32 bits
    EXPECT_EQ(Content(s), this->T("a"));
    TypeParam t = this->Make("abc");
    t.Remove(0, 10); // count above the length
    EXPECT_EQ(t.Length(), 0u);
    EXPECT_NE(t.m_pData, nullptr);
    ExpectInvariants(t);
}

TYPED_TEST(StringTest, RemoveAtOrBehindTheEndDoesNothing)
{
    TypeParam s = this->Make("abc");
    s.Remove(3, 1);
    s.Remove(0xFFFFFFFF, 0xFFFFFFFF);
    EXPECT_EQ(Content(s), this->T("abc"));
    TypeParam none;
    none.Remove(0, 1);
    EXPECT_EQ(none.m_pData, nullptr);
}

TYPED_TEST(StringTest, RemoveOfNothing)
{
    TypeParam s = this->Make("abc");
    s.Remove(1, 0);
    EXPECT_EQ(Content(s), this->T("abc"));
    ExpectInvariants(s);
}

// ---- Replace ----------------------------------------------------------------

TYPED_TEST(StringTest, ReplaceCountsAndKeepsTheChecksum)
{
    TypeParam s = this->Make("banana");
    EXPECT_EQ(s.Replace('a', 'o'), 3);
    EXPECT_EQ(Content(s), this->T("bonono"));
    ExpectInvariants(s);
    EXPECT_EQ(s.Replace('x', 'y'), 0);
    ExpectInvariants(s);
}

TYPED_TEST(StringTest, ReplaceOnNoTextGivesZero)
{
    TypeParam none;
    EXPECT_EQ(none.Replace('a', 'b'), 0);
    TypeParam empty = this->Make("");
    EXPECT_EQ(empty.Replace(0, 'b'), 0);
    EXPECT_EQ(empty.Length(), 0u);
}

TEST(StringReplace, WideReplaceWithHighBytes)
{
    zunStringW s(u"a\u0141a");
    EXPECT_EQ(s.Replace(u'a', 0x1234), 2);
    EXPECT_EQ(s.m_nChecksum, 0x34u + 0x41u + 0x34u);
    EXPECT_EQ(s.Replace(0x1234, u'\u00FF'), 2);
    EXPECT_EQ(s.m_nChecksum, 0xFFu + 0x41u + 0xFFu);
}

// ---- SubString and Keep -----------------------------------------------------

TYPED_TEST(StringTest, SubStringTakesUnitsFromAPosition)
{
    TypeParam s = this->Make("abcdef");
    TypeParam sub = s.SubString(1, 3);
    EXPECT_EQ(Content(sub), this->T("bcd"));
    EXPECT_EQ(zunMemGetSize(sub.m_pData), 4 * sizeof(typename TestFixture::C));
    ExpectInvariants(sub);
}

TYPED_TEST(StringTest, SubStringBeyondTheEndGivesTheRest)
{
    TypeParam s = this->Make("abcdef");
    EXPECT_EQ(Content(s.SubString(4, 10)), this->T("ef"));
    EXPECT_EQ(Content(s.SubString(2, 0xFFFFFFFF)), this->T("cdef"));
    EXPECT_EQ(Content(s.SubString(0, 0xFFFFFFFF)), this->T("abcdef"));
}

TYPED_TEST(StringTest, SubStringWithNothingToTakeIsACopyOfEmpty)
{
    TypeParam s = this->Make("abc");
    TypeParam none;
    for (const TypeParam & sub :
         {s.SubString(3, 1), s.SubString(0xFFFFFFFF, 2), s.SubString(0, 0), none.SubString(0, 5)})
    {
        EXPECT_EQ(sub.Length(), 0u);
        EXPECT_NE(sub.m_pData, nullptr);
        EXPECT_NE(sub.m_pData, TypeParam::Empty.m_pData);
        EXPECT_TRUE(sub == TypeParam::Empty);
    }
}

TYPED_TEST(StringTest, KeepKeepsAnInclusiveRangeInPlace)
{
    TypeParam s = this->Make("abcdef");
    auto * block = s.m_pData;
    s.Keep(1, 3);
    EXPECT_EQ(Content(s), this->T("bcd"));
    EXPECT_EQ(s.m_pData, block);
    ExpectInvariants(s);
    s.Keep(1, 1);
    EXPECT_EQ(Content(s), this->T("c"));
}

TYPED_TEST(StringTest, KeepAtOrBehindTheEndChangesNothing)
{
    TypeParam s = this->Make("abc");
    s.Keep(3, 5);
    s.Keep(0xFFFFFFFF, 0xFFFFFFFF);
    EXPECT_EQ(Content(s), this->T("abc"));
    TypeParam none;
    none.Keep(0, 1);
    EXPECT_EQ(none.m_pData, nullptr);
}

TYPED_TEST(StringTest, KeepToAllOnesKeepsAll)
{
    TypeParam s = this->Make("abc");
    s.Keep(0, 0xFFFFFFFF);
    EXPECT_EQ(Content(s), this->T("abc"));
    s.Keep(1, 0xFFFFFFFF);
    EXPECT_EQ(Content(s), this->T("bc"));
    ExpectInvariants(s);
}

TYPED_TEST(StringTest, KeepWithLastBelowFirstKeepsNothing)
{
    TypeParam s = this->Make("abcdef");
    s.Keep(4, 1);
    EXPECT_EQ(s.Length(), 0u);
    EXPECT_NE(s.m_pData, nullptr);
    ExpectInvariants(s);
}

// ---- ToLower, FindLast, GetAt -----------------------------------------------

TYPED_TEST(StringTest, ToLowerTakesANewBlock)
{
    TypeParam s = this->Make("HeLLo 42!");
    s.ToLower();
    EXPECT_EQ(Content(s), this->T("hello 42!"));
    ExpectInvariants(s);
    TypeParam none;
    none.ToLower();
    EXPECT_EQ(none.m_pData, nullptr);
}

TEST(StringToLower, MultiUnitCharactersKeepTheirUnits)
{
    zunString s("\xC3\x89T\xC3\x89");
    s.ToLower();
    EXPECT_STREQ(s, "\xC3\x89t\xC3\x89"); // ASCII only in the default locale
    EXPECT_EQ(s.Length(), 5u);
    const zunWChar pair[] = {0xD83C, 0xDF0D, u'Q', 0};
    zunStringW w(pair);
    w.ToLower();
    EXPECT_EQ(w.GetAt(0), 0xD83C);
    EXPECT_EQ(w.GetAt(1), 0xDF0D);
    EXPECT_EQ(w.GetAt(2), u'q');
}

TYPED_TEST(StringTest, FindLastScansUpToAndIncludingLast)
{
    TypeParam s = this->Make("a.b.c.d");
    EXPECT_EQ(s.FindLast('.', 0xFFFFFFFF), 5u);
    EXPECT_EQ(s.FindLast('.', 4), 3u);
    EXPECT_EQ(s.FindLast('.', 3), 3u);
    EXPECT_EQ(s.FindLast('.', 0), 0xFFFFFFFFu);
    EXPECT_EQ(s.FindLast('a', 0), 0u);
    EXPECT_EQ(s.FindLast('x', 0xFFFFFFFF), 0xFFFFFFFFu);
    EXPECT_EQ(s.FindLast(0, 0xFFFFFFFF), 0xFFFFFFFFu);
    TypeParam none;
    EXPECT_EQ(none.FindLast('a', 0xFFFFFFFF), 0xFFFFFFFFu);
}

TYPED_TEST(StringTest, GetAtBehindTheEndIsZero)
{
    TypeParam s = this->Make("ab");
    EXPECT_EQ(s.GetAt(1), 'b');
    EXPECT_EQ(s.GetAt(2), 0);
    EXPECT_EQ(s.GetAt(0xFFFFFFFF), 0);
}

// ---- Conversions between the encodings --------------------------------------

TEST(StringConversion, AssignmentConvertsBetweenEncodings)
{
    zunString narrow;
    narrow = u"Gr\u00FC\u00DF \U0001F30D";
    EXPECT_STREQ(narrow, "Gr\xC3\xBC\xC3\x9F \xF0\x9F\x8C\x8D");
    EXPECT_EQ(narrow.Length(), 11u);
    ExpectInvariants(narrow);

    zunStringW wide;
    wide = "caf\xC3\xA9 \xF0\x9F\x8C\x8D";
    EXPECT_EQ(std::u16string(wide), u"caf\u00E9 \U0001F30D");
    EXPECT_EQ(wide.Length(), 7u);
    ExpectInvariants(wide);

    zunStringW fromString;
    fromString = narrow;
    EXPECT_EQ(std::u16string(fromString), u"Gr\u00FC\u00DF \U0001F30D");
    zunString back;
    back = fromString;
    EXPECT_TRUE(back == narrow);
}

TEST(StringConversion, InvalidInputIsReplacedNeverRefused)
{
    zunStringW wide;
    wide = "a\xFF"
           "b";
    EXPECT_EQ(std::u16string(wide), u"a\uFFFDb");
    zunString narrow;
    const zunWChar lone[] = {u'x', 0xD800, 0};
    narrow = lone;
    EXPECT_STREQ(narrow, "x\xEF\xBF\xBD");
}

TEST(StringConversion, NullClearsAndAStringWithoutBlockGivesTheEmptyText)
{
    zunString narrow("abc");
    narrow = static_cast<const zunWChar *>(nullptr);
    EXPECT_EQ(narrow.m_pData, nullptr);
    zunStringW wide(u"abc");
    wide = static_cast<const char *>(nullptr);
    EXPECT_EQ(wide.m_pData, nullptr);

    zunStringW none;
    narrow = none;
    EXPECT_NE(narrow.m_pData, nullptr);
    EXPECT_EQ(narrow.Length(), 0u);
    zunString emptyNarrow("");
    wide = emptyNarrow;
    EXPECT_NE(wide.m_pData, nullptr);
    EXPECT_EQ(wide.Length(), 0u);
}

TEST(StringConversion, StreamConvertsTheAppendedText)
{
    zunString narrow("n:");
    narrow << u"\u00E9" << zunStringW(u"!");
    EXPECT_STREQ(narrow, "n:\xC3\xA9!");
    ExpectInvariants(narrow);
    zunStringW wide(u"w:");
    wide << "\xC3\xA9" << zunString("?");
    EXPECT_EQ(std::u16string(wide), u"w:\u00E9?");
    ExpectInvariants(wide);
    wide << static_cast<const char *>(nullptr);
    EXPECT_EQ(wide.Length(), 4u);
}

TEST(StringConversion, AConversionIsOneAllocation)
{
    zunString narrow("abc");
    zunMemTesting::StartCounting();
    narrow = u"a wide text";
    narrow << u" and more";
    EXPECT_EQ(zunMemTesting::GetCounters().allocations, 2u);
    EXPECT_STREQ(narrow, "a wide text and more");
    zunMemTesting::Reset();
}

// ---- Free operators ---------------------------------------------------------

TEST(StringOperators, TheTwelvePlusForms)
{
    const zunString n("ab");
    const zunStringW w(u"cd");
    EXPECT_STREQ(n + n, "abab");
    EXPECT_STREQ(n + w, "abcd");
    EXPECT_STREQ(n + "x", "abx");
    EXPECT_STREQ(n + u"\u00E9", "ab\xC3\xA9");
    EXPECT_STREQ("x" + n, "xab");
    EXPECT_STREQ("x" + w, "xcd");
    EXPECT_EQ(std::u16string(w + w), u"cdcd");
    EXPECT_EQ(std::u16string(w + n), u"cdab");
    EXPECT_EQ(std::u16string(w + "\xC3\xA9"), u"cd\u00E9");
    EXPECT_EQ(std::u16string(w + u"y"), u"cdy");
    EXPECT_EQ(std::u16string(u"y" + w), u"ycd");
    EXPECT_EQ(std::u16string(u"y" + n), u"yab");
    static_assert(std::is_same_v<decltype("x" + w), zunString>, "a raw pointer's unit decides the result");
    static_assert(std::is_same_v<decltype(u"y" + n), zunStringW>, "a raw pointer's unit decides the result");
    ExpectInvariants(n + w);
    ExpectInvariants(w + n);
}

TEST(StringOperators, PlusOfTwoEmptyStringsGivesTheEmptyTextInABlock)
{
    // The left copy has no block; appending the right one's (empty) text is an
    // insert, and every insert gives a block. So the sum reads and compares
    // as empty, and holds the empty text in a block of its own.
    zunString a, b;
    zunString sum = a + b;
    EXPECT_EQ(sum.Length(), 0u);
    EXPECT_NE(sum.m_pData, nullptr);
    EXPECT_TRUE(sum == a);
    zunStringW wa, wb;
    zunStringW wsum = wa + wb;
    EXPECT_EQ(wsum.Length(), 0u);
    EXPECT_NE(wsum.m_pData, nullptr);
}

TEST(StringOperators, PlusWithNullPointersKeepsTheLeftOperand)
{
    const zunString n("ab");
    EXPECT_STREQ(n + static_cast<const char *>(nullptr), "ab");
    EXPECT_STREQ(n + static_cast<const zunWChar *>(nullptr), "ab");
    zunString fromNull = static_cast<const char *>(nullptr) + n;
    EXPECT_STREQ(fromNull, "ab");
}

TEST(StringOperators, TextEqualsString)
{
    zunString s("abc");
    EXPECT_TRUE("abc" == s);
    EXPECT_TRUE(s == "abc");
    EXPECT_FALSE("abd" == s);
    EXPECT_TRUE("abd" != s);
    EXPECT_TRUE(s != "ab");
    zunStringW w(u"abc");
    EXPECT_TRUE(u"abc" == w);
    EXPECT_TRUE(w == u"abc");
    EXPECT_FALSE(u"ab" == w);
    EXPECT_TRUE(u"ab" != w);
}

TEST(StringOperators, NullTextEqualsAnEmptyString)
{
    zunString none;
    zunString empty("");
    EXPECT_TRUE(static_cast<const char *>(nullptr) == none);
    EXPECT_TRUE(static_cast<const char *>(nullptr) == empty);
    EXPECT_FALSE(static_cast<const char *>(nullptr) == zunString("a"));
    EXPECT_TRUE("" == none);
    EXPECT_TRUE(static_cast<const zunWChar *>(nullptr) == zunStringW());
    EXPECT_TRUE(static_cast<const zunWChar *>(nullptr) == zunStringW(u""));
}

// ---- Empty ------------------------------------------------------------------

TYPED_TEST(StringTest, EmptyIsTheEmptyTextInABlock)
{
    EXPECT_NE(TypeParam::Empty.m_pData, nullptr);
    EXPECT_EQ(TypeParam::Empty.Length(), 0u);
    EXPECT_EQ(TypeParam::Empty.m_nChecksum, 0u);
    TypeParam copy(TypeParam::Empty);
    EXPECT_NE(copy.m_pData, nullptr);
    EXPECT_NE(copy.m_pData, TypeParam::Empty.m_pData);
    EXPECT_TRUE(copy == TypeParam());
}

// ---- Raw wide text ----------------------------------------------------------

TEST(StringRawWide, StrCatAppendsWithTerminator)
{
    zunWChar buffer[16] = u"ab";
    EXPECT_EQ(zunStrCat(buffer, u"cd"), buffer);
    EXPECT_EQ(std::u16string(buffer), u"abcd");
    EXPECT_EQ(zunStrCat(buffer, nullptr), buffer);
    EXPECT_EQ(std::u16string(buffer), u"abcd");
    EXPECT_EQ(zunStrCat(nullptr, u"x"), nullptr);
}

TEST(StringRawWide, StrCpyWithCountZeroCopiesAll)
{
    zunWChar buffer[16];
    std::fill(std::begin(buffer), std::end(buffer), u'x');
    EXPECT_EQ(zunStrCpy(buffer, u"hello", 0), buffer);
    EXPECT_EQ(std::u16string(buffer), u"hello");
    EXPECT_EQ(buffer[6], u'x');
}

TEST(StringRawWide, StrCpyWithCountCopiesThatManyAndTerminates)
{
    zunWChar buffer[16];
    std::fill(std::begin(buffer), std::end(buffer), u'x');
    zunStrCpy(buffer, u"hello", 3);
    EXPECT_EQ(std::u16string(buffer), u"hel");
    EXPECT_EQ(buffer[4], u'x');
}

TEST(StringRawWide, StrCpyOfAShortSourceStopsAtItsTerminator)
{
    zunWChar buffer[16];
    std::fill(std::begin(buffer), std::end(buffer), u'x');
    zunStrCpy(buffer, u"hi", 5); // the source holds fewer than 5 units
    EXPECT_EQ(std::u16string(buffer), u"hi");
    EXPECT_EQ(buffer[5], 0); // the terminator behind the count is written too
}

TEST(StringRawWide, StrCpyWithNulls)
{
    zunWChar buffer[4] = u"abc";
    EXPECT_EQ(zunStrCpy(buffer, nullptr, 0), buffer);
    EXPECT_EQ(buffer[0], 0);
    EXPECT_EQ(zunStrCpy(nullptr, u"abc", 2), nullptr);
}

TEST(StringRawWide, StrLen)
{
    EXPECT_EQ(zunStrLen(nullptr), 0u);
    EXPECT_EQ(zunStrLen(u""), 0u);
    EXPECT_EQ(zunStrLen(u"\U0001F30Dab"), 4u);
}

// ---- An exhausted heap leaves every string as it was ------------------------

namespace
{
    template <typename S> struct Snapshot
    {
        explicit Snapshot(const S & s)
            : block(s.m_pData), length(s.m_nLength), checksum(s.m_nChecksum),
              text(s.m_pData != nullptr ? std::basic_string<UnitOf<S>>(s.m_pData, s.m_nLength)
                                        : std::basic_string<UnitOf<S>>())
        {
        }
        bool operator==(const Snapshot & other) const
        {
            return block == other.block && length == other.length && checksum == other.checksum && text == other.text;
        }
        const void * block;
        unsigned int length;
        std::uint64_t checksum;
        std::basic_string<UnitOf<S>> text;
    };
}

TYPED_TEST(StringTest, EveryAllocatingMutatorKeepsTheStringWhenTheHeapSaysNo)
{
    using S = TypeParam;
    using C = typename TestFixture::C;
    using Other = typename S::OtherString;
    using OtherUnit = typename S::OtherChar;
    const auto text = this->T("inserted");
    const auto otherText = Text<OtherUnit>("converted");
    const S source = this->Make("source");
    const Other otherSource(otherText.c_str());

    const std::vector<std::pair<const char *, std::function<void(S &)>>> mutators = {
        {"assign text", [&](S & s) { s = text.c_str(); }},
        {"assign string", [&](S & s) { s = source; }},
        {"assign other text", [&](S & s) { s = otherText.c_str(); }},
        {"assign other string", [&](S & s) { s = otherSource; }},
        {"append text", [&](S & s) { s << text.c_str(); }},
        {"append string", [&](S & s) { s << source; }},
        {"append itself", [&](S & s) { s << s; }},
        {"append other text", [&](S & s) { s << otherText.c_str(); }},
        {"append other string", [&](S & s) { s << otherSource; }},
        {"Insert", [&](S & s) { s.Insert(1, text.c_str(), 0xFFFFFFFF); }},
        {"Append", [&](S & s) { s.Append(text.c_str()); }},
        {"ToLower", [&](S & s) { s.ToLower(); }},
        {"Printf", [&](S & s) { s.Printf(this->T("%d").c_str(), 42); }},
    };
    for (const auto & mutator : mutators)
    {
        for (const char * start : std::initializer_list<const char *>{"", "Before", nullptr})
        {
            S s;
            if (start != nullptr)
                s = this->Make(start);
            const Snapshot<S> before(s);
            zunMemTesting::FailAllocation(1, true);
            mutator.second(s);
            const auto failures = zunMemTesting::GetCounters().failures;
            zunMemTesting::Reset();
            EXPECT_TRUE(Snapshot<S>(s) == before) << mutator.first << " on " << (start ? start : "(none)");
            // ToLower has nothing to do (and allocates nothing) without a block.
            const bool idle = start == nullptr && std::string(mutator.first) == "ToLower";
            EXPECT_EQ(failures, idle ? 0u : 1u) << mutator.first;
        }
    }
    // The in-place editors allocate nothing at all.
    S s = this->Make("abcdef");
    zunMemTesting::FailAllocation(1, true);
    s.Remove(1, 1);
    s.Keep(0, 2);
    EXPECT_EQ(s.Replace('a', 'z'), 1);
    EXPECT_EQ(zunMemTesting::GetCounters().failures, 0u);
    zunMemTesting::Reset();
    EXPECT_EQ(Content(s), this->T("zcd"));
    (void)sizeof(C);
}

TYPED_TEST(StringTest, FailedAllocationsInResultsGiveNoText)
{
    TypeParam s = this->Make("abcdef");
    zunMemTesting::FailAllocation(1, true);
    TypeParam sub = s.SubString(1, 2);
    TypeParam copy(s);
    zunMemTesting::Reset();
    EXPECT_EQ(sub.m_pData, nullptr);
    EXPECT_EQ(sub.Length(), 0u);
    EXPECT_EQ(copy.m_pData, nullptr);
    EXPECT_EQ(Content(s), this->T("abcdef"));
}

TYPED_TEST(StringTest, ComparingWithATextAllocatesNothing)
{
    TypeParam s = this->Make("abc");
    auto text = this->T("abc");
    zunMemTesting::FailAllocation(1, true);
    EXPECT_TRUE(s == text.c_str());
    EXPECT_TRUE(text.c_str() == s);
    EXPECT_EQ(zunMemTesting::GetCounters().failures, 0u);
}
