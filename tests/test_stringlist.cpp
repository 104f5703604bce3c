// The string list: layout, insertion at every place with its offsets, removal,
// truncation, copies, lists inserted into lists, flags, Find, iterators,
// Split on strings, and every rollback path under an exhausted heap.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "MemTesting.h"
#include "zunStringList.h"

namespace
{
    // Reaches the three arrays, which have no accessors of their own.
    template <typename C> struct Probe : zunStringListT<C>
    {
        using zunStringListT<C>::zunStringListT;
        Probe(zunStringListT<C> && list) : zunStringListT<C>(std::move(list)) {}
        const zunFastMesh<C> & Chars() const { return this->m_Chars; }
        const zunFastMesh<unsigned int> & Offsets() const { return this->m_Offsets; }
        const zunFastMesh<unsigned char> & Flags() const { return this->m_Flags; }
        std::vector<unsigned int> OffsetValues() const
        {
            return std::vector<unsigned int>(this->m_Offsets.begin(), this->m_Offsets.end());
        }
        std::ptrdiff_t OffsetOf(const void * field) const
        {
            return static_cast<const char *>(field) - reinterpret_cast<const char *>(this);
        }
    };

    struct StringListTest : testing::Test
    {
        void SetUp() override
        {
            zunMemTesting::Reset();
            zunMemTesting::StartCounting();
        }
        void TearDown() override { zunMemTesting::Reset(); }
    };

    std::vector<std::string> Texts(const zunStringList & list)
    {
        return std::vector<std::string>(list.begin(), list.end());
    }

    // Sixteen entries "ab": the offsets and flags are full (16 of 16), the
    // texts take 48 of 64 units.
    Probe<char> SixteenPairs()
    {
        Probe<char> list;
        for (int i = 0; i < 16; ++i)
            list.Insert("ab", 0xFFFFFFFFu);
        return list;
    }

    // The list as texts, offsets, flags and counters, to tell it is untouched.
    struct Snapshot
    {
        std::vector<std::string> texts;
        std::vector<unsigned int> offsets;
        unsigned int units, flagged;

        explicit Snapshot(const Probe<char> & list)
            : texts(Texts(list)), offsets(list.OffsetValues()), units(list.Chars().Count()),
              flagged(list.FlaggedCount())
        {
        }
        void ExpectSame(const Probe<char> & list) const
        {
            EXPECT_EQ(Texts(list), texts);
            EXPECT_EQ(list.OffsetValues(), offsets);
            EXPECT_EQ(list.Chars().Count(), units);
            EXPECT_EQ(list.Flags().Count(), list.Count());
            EXPECT_EQ(list.FlaggedCount(), flagged);
        }
    };

    using Texts_ = std::vector<std::string>;
}

// --- layout and construction ------------------------------------------------------

TEST_F(StringListTest, ThreeArraysAndTheCounterFollowTheVirtualTablePointer)
{
    Probe<char> list;
    EXPECT_EQ(list.OffsetOf(&list.Chars()), 8);
    EXPECT_EQ(list.OffsetOf(&list.Offsets()), 48);
    EXPECT_EQ(list.OffsetOf(&list.Flags()), 88);
    EXPECT_EQ(sizeof(zunStringList), 136u);
}

TEST_F(StringListTest, NewListIsEmptyAndAllocatesNothing)
{
    zunStringList list;
    EXPECT_EQ(list.Count(), 0u);
    EXPECT_EQ(list.FlaggedCount(), 0u);
    EXPECT_EQ(list.begin(), list.end());
    EXPECT_EQ(zunMemTesting::GetCounters().allocations, 0u);
}

TEST_F(StringListTest, FiveTextsIterateInOrderAndInReverse)
{
    zunStringList list{"0", "1", "2", "3", "4"};
    EXPECT_EQ(list.Count(), 5u);
    EXPECT_EQ(Texts(list), (Texts_{"0", "1", "2", "3", "4"}));
    EXPECT_EQ(std::vector<std::string>(list.rbegin(), list.rend()), (Texts_{"4", "3", "2", "1", "0"}));
    std::string joined;
    for (const char * text : list)
        joined += text;
    EXPECT_EQ(joined, "01234");
    EXPECT_EQ((list.begin() + 3).Index(), 3u);
    EXPECT_EQ(list.end() - list.begin(), 5);
    EXPECT_STREQ(list.begin()[4], "4");
}

TEST_F(StringListTest, InitializerListSkipsNullAndEmptyTexts)
{
    Probe<char> list{"alpha", nullptr, "", "beta"};
    EXPECT_EQ(Texts(list), (Texts_{"alpha", "beta"}));
    EXPECT_EQ(list.OffsetValues(), (std::vector<unsigned int>{0, 6}));
    EXPECT_EQ(list.Chars().Count(), 11u);
    EXPECT_EQ(list.FlaggedCount(), 0u);
}

TEST_F(StringListTest, TextsArePackedWithTheirTerminators)
{
    Probe<char> list{"one", "two", "three"};
    EXPECT_EQ(list.OffsetValues(), (std::vector<unsigned int>{0, 4, 8}));
    EXPECT_EQ(std::string(list.Chars().Data(), list.Chars().Count()), std::string("one\0two\0three\0", 14));
    EXPECT_EQ(list[1], list.Chars().Data() + 4);
}

TEST_F(StringListTest, AnEmptyListHasNoTextAddress)
{
    zunStringList list;
    EXPECT_EQ(list[0], nullptr);
}

// --- Insert ------------------------------------------------------------------------

TEST_F(StringListTest, InsertOfAnEmptyTextAddsNothingAtAnyIndex)
{
    Probe<char> list{"a", "b"};
    for (unsigned int index : {0u, 1u, 2u, 9u, 0xFFFFFFFFu})
    {
        EXPECT_TRUE(list.Insert("", index));
        EXPECT_TRUE(list.Insert(zunString(), index));
    }
    EXPECT_EQ(Texts(list), (Texts_{"a", "b"}));
    EXPECT_EQ(list.Chars().Count(), 4u);
}

TEST_F(StringListTest, InsertAtTheFrontRaisesTheOldOffsetsByTheNewSize)
{
    Probe<char> list{"one", "two", "three"};
    ASSERT_TRUE(list.Insert("zero", 0));
    EXPECT_EQ(Texts(list), (Texts_{"zero", "one", "two", "three"}));
    EXPECT_EQ(list.OffsetValues(), (std::vector<unsigned int>{0, 5, 9, 13}));
    EXPECT_EQ(list.Chars().Count(), 19u);
}

TEST_F(StringListTest, InsertInTheMiddleAndAtOrBehindTheEnd)
{
    zunStringList list{"a", "c"};
    ASSERT_TRUE(list.Insert("b", 1));
    ASSERT_TRUE(list.Insert("d", 3));
    ASSERT_TRUE(list.Insert("e", 99));
    ASSERT_TRUE(list.Insert("f", 0xFFFFFFFFu));
    EXPECT_EQ(Texts(list), (Texts_{"a", "b", "c", "d", "e", "f"}));
}

TEST_F(StringListTest, InsertNewEntriesCarryAZeroFlag)
{
    zunStringList list{"a", "b"};
    list.SetFlag(0, 7);
    list.Insert("x", 0);
    list.Insert("y", 0xFFFFFFFFu);
    EXPECT_EQ(list.GetFlag(0), 0);
    EXPECT_EQ(list.GetFlag(1), 7) << "the flag moved with its entry";
    EXPECT_EQ(list.GetFlag(3), 0);
    EXPECT_EQ(list.FlaggedCount(), 1u);
}

// --- Remove and Truncate ---------------------------------------------------------

TEST_F(StringListTest, RemoveInTheMiddleLowersTheOffsetsBehind)
{
    Probe<char> list{"one", "two", "three"};
    ASSERT_TRUE(list.Remove(1));
    EXPECT_EQ(Texts(list), (Texts_{"one", "three"}));
    EXPECT_EQ(list.OffsetValues(), (std::vector<unsigned int>{0, 4}));
    EXPECT_EQ(list.Chars().Count(), 10u);
}

TEST_F(StringListTest, RemoveOfTheLastEntryLeavesNoStaleUnit)
{
    Probe<char> list{"one", "three"};
    ASSERT_TRUE(list.Remove(1));
    EXPECT_EQ(list.Chars().Count(), 4u);
    EXPECT_EQ(std::string(list.Chars().Data(), 4), std::string("one\0", 4));
}

TEST_F(StringListTest, RemoveOfTheOnlyEntryFreesTheTexts)
{
    Probe<char> list{"only"};
    ASSERT_TRUE(list.Remove(0));
    EXPECT_EQ(list.Count(), 0u);
    EXPECT_EQ(list.Chars().Count(), 0u);
    EXPECT_EQ(list.Chars().Data(), nullptr);
    EXPECT_EQ(list.Offsets().Data(), nullptr);
    EXPECT_EQ(list.Flags().Data(), nullptr);
}

TEST_F(StringListTest, RemoveWithABadIndexIsFalseAndChangesNothing)
{
    zunStringList list{"a"};
    EXPECT_FALSE(list.Remove(1));
    EXPECT_FALSE(list.Remove(0xFFFFFFFFu));
    EXPECT_EQ(Texts(list), (Texts_{"a"}));
    zunStringList empty;
    EXPECT_FALSE(empty.Remove(0));
}

TEST_F(StringListTest, RemoveOfAFlaggedEntryLowersTheCounter)
{
    zunStringList list{"a", "b", "c"};
    list.SetFlag(0, 1);
    list.SetFlag(2, 1);
    ASSERT_TRUE(list.Remove(1));
    EXPECT_EQ(list.FlaggedCount(), 2u);
    ASSERT_TRUE(list.Remove(0));
    EXPECT_EQ(list.FlaggedCount(), 1u);
    EXPECT_EQ(list.GetFlag(0), 1);
}

TEST_F(StringListTest, TruncateZeroEmptiesAndTruncateAtTheCountIsFalse)
{
    Probe<char> list{"a", "b", "c"};
    EXPECT_FALSE(list.Truncate(3));
    EXPECT_EQ(list.Count(), 3u);
    ASSERT_TRUE(list.Truncate(0));
    EXPECT_EQ(list.Count(), 0u);
    EXPECT_EQ(list.Chars().Count(), 0u);
    EXPECT_EQ(list.Chars().Data(), nullptr);
    EXPECT_FALSE(list.Truncate(0));
}

TEST_F(StringListTest, TruncateKeepsTheEntriesBeforeAndRecountsTheFlags)
{
    Probe<char> list{"one", "two", "three", "four"};
    list.SetFlag(0, 1);
    list.SetFlag(3, 1);
    ASSERT_TRUE(list.Truncate(2));
    EXPECT_EQ(Texts(list), (Texts_{"one", "two"}));
    EXPECT_EQ(list.Chars().Count(), 8u);
    EXPECT_EQ(list.FlaggedCount(), 1u);
}

// --- Copy, Clear, move ------------------------------------------------------------

TEST_F(StringListTest, CopyTakesTextsFlagsAndTheCounter)
{
    zunStringList source{"a", "bb", "ccc"};
    source.SetFlag(1, 5);
    zunStringList copy;
    copy.Insert("old", 0);
    ASSERT_TRUE(copy.Copy(source));
    EXPECT_EQ(Texts(copy), (Texts_{"a", "bb", "ccc"}));
    EXPECT_EQ(copy.GetFlag(1), 5);
    EXPECT_EQ(copy.FlaggedCount(), 1u);
    EXPECT_NE(copy[0], source[0]);
    zunStringList constructed(source);
    EXPECT_EQ(Texts(constructed), Texts(source));
    zunStringList assigned;
    assigned = source;
    EXPECT_EQ(Texts(assigned), Texts(source));
    EXPECT_TRUE(assigned.Copy(assigned));
    EXPECT_EQ(Texts(assigned), Texts(source));
    ASSERT_TRUE(assigned.Copy(zunStringList()));
    EXPECT_EQ(assigned.Count(), 0u);
}

TEST_F(StringListTest, ClearEmptiesEverything)
{
    Probe<char> list{"a", "b"};
    list.SetFlag(0, 1);
    list.Clear();
    EXPECT_EQ(list.Count(), 0u);
    EXPECT_EQ(list.FlaggedCount(), 0u);
    EXPECT_EQ(list.Chars().Data(), nullptr);
}

TEST_F(StringListTest, MoveTakesTheArraysAndLeavesTheSourceEmpty)
{
    zunStringList source{"a", "b"};
    source.SetFlag(1, 1);
    const char * text = source[1];
    zunStringList moved(std::move(source));
    EXPECT_EQ(moved[1], text);
    EXPECT_EQ(moved.FlaggedCount(), 1u);
    EXPECT_EQ(source.Count(), 0u);
    EXPECT_EQ(source.FlaggedCount(), 0u);
    zunStringList assigned{"x"};
    assigned = std::move(moved);
    EXPECT_EQ(Texts(assigned), (Texts_{"a", "b"}));
    EXPECT_EQ(moved.Count(), 0u);
}

// --- InsertList --------------------------------------------------------------------

TEST_F(StringListTest, InsertListAtTheFrontInTheMiddleAndAtTheEnd)
{
    Probe<char> list{"one", "two"};
    ASSERT_TRUE(list.InsertList(zunStringList{"x", "yy"}, 1));
    EXPECT_EQ(Texts(list), (Texts_{"one", "x", "yy", "two"}));
    EXPECT_EQ(list.OffsetValues(), (std::vector<unsigned int>{0, 4, 6, 9}));
    ASSERT_TRUE(list.InsertList(zunStringList{"front"}, 0));
    ASSERT_TRUE(list.InsertList(zunStringList{"end"}, 0xFFFFFFFFu));
    EXPECT_EQ(Texts(list), (Texts_{"front", "one", "x", "yy", "two", "end"}));
    EXPECT_EQ(list.OffsetValues(), (std::vector<unsigned int>{0, 6, 10, 12, 15, 19}));
    EXPECT_EQ(list.Chars().Count(), 23u);
}

TEST_F(StringListTest, InsertListIntoAnEmptyListAndOfAnEmptyList)
{
    zunStringList list;
    ASSERT_TRUE(list.InsertList(zunStringList{"a", "b"}, 5));
    EXPECT_EQ(Texts(list), (Texts_{"a", "b"}));
    ASSERT_TRUE(list.InsertList(zunStringList(), 1));
    EXPECT_EQ(Texts(list), (Texts_{"a", "b"}));
}

TEST_F(StringListTest, InsertListConsumesItsArgument)
{
    zunStringList list{"a"};
    zunStringList other{"b", "c"};
    ASSERT_TRUE(list.InsertList(other, 1)); // a copy goes in; the caller's list stays
    EXPECT_EQ(Texts(other), (Texts_{"b", "c"}));
    ASSERT_TRUE(list.InsertList(std::move(other), 0)); // moved in and destroyed with the call
    EXPECT_EQ(other.Count(), 0u);
    EXPECT_EQ(Texts(list), (Texts_{"b", "c", "a", "b", "c"}));
}

TEST_F(StringListTest, InsertListCarriesFlagsButLeavesTheCounter)
{
    zunStringList other{"x", "y"};
    other.SetFlag(1, 3);
    zunStringList list{"a", "b"};
    list.SetFlag(0, 1);
    ASSERT_TRUE(list.InsertList(other, 1));
    EXPECT_EQ(list.GetFlag(0), 1);
    EXPECT_EQ(list.GetFlag(2), 3);
    EXPECT_EQ(list.FlaggedCount(), 1u) << "low by the inserted list's flagged entry";
    ASSERT_TRUE(list.Truncate(3)); // recounts what remains: a, x, y
    EXPECT_EQ(list.FlaggedCount(), 2u);
}

// --- Find and flags ---------------------------------------------------------------

TEST_F(StringListTest, FindIsCaseSensitiveAndGivesTheFirstMatch)
{
    zunStringList list{"Apple", "apple", "pear", "apple"};
    EXPECT_EQ(list.Find("apple"), 1u);
    EXPECT_EQ(list.Find("Apple"), 0u);
    EXPECT_EQ(list.Find("APPLE"), 0xFFFFFFFFu);
    EXPECT_EQ(list.Find("pea"), 0xFFFFFFFFu);
    EXPECT_EQ(list.Find("pearl"), 0xFFFFFFFFu);
    EXPECT_EQ(list.Find("apples"), 0xFFFFFFFFu) << "longer than the last entry";
    EXPECT_EQ(list.Find(""), 0xFFFFFFFFu);
    EXPECT_EQ(list.Find(nullptr), 0xFFFFFFFFu);
}

TEST_F(StringListTest, FindOnAnEmptyListFindsNothing)
{
    zunStringList list;
    EXPECT_EQ(list.Find("a"), 0xFFFFFFFFu);
    EXPECT_EQ(list.Find(nullptr), 0xFFFFFFFFu);
}

TEST_F(StringListTest, FlagsAreReadAndSetByIndex)
{
    zunStringList list{"a", "b"};
    EXPECT_TRUE(list.SetFlag(1, 9));
    EXPECT_EQ(list.FlaggedCount(), 1u);
    EXPECT_TRUE(list.SetFlag(1, 4)); // non-zero to non-zero: still one
    EXPECT_EQ(list.FlaggedCount(), 1u);
    EXPECT_TRUE(list.SetFlag(1, 0));
    EXPECT_EQ(list.FlaggedCount(), 0u);
    EXPECT_FALSE(list.SetFlag(2, 1));
    EXPECT_EQ(list.GetFlag(2), 0);
    EXPECT_EQ(list.FlaggedCount(), 0u);
}

TEST_F(StringListTest, WideListsWorkTheSame)
{
    zunStringListW list{ZUN_W("gr\u00fcn"), ZUN_W("\u20ac")};
    ASSERT_TRUE(list.Insert(zunStringW(ZUN_W("blau")), 0));
    EXPECT_EQ(list.Count(), 3u);
    EXPECT_EQ(list.Find(ZUN_W("\u20ac")), 2u);
    EXPECT_EQ(zunCharHelper<zunWChar>::Compare(list[1], ZUN_W("gr\u00fcn"), StringCompareMode_Sensitive),
              CompareResult_Equal);
    ASSERT_TRUE(list.Remove(0));
    EXPECT_EQ(list.Find(ZUN_W("blau")), 0xFFFFFFFFu);
}

// --- Split ---------------------------------------------------------------------

TEST_F(StringListTest, SplitDropsEmptyPieces)
{
    EXPECT_EQ(Texts(zunString("a,,b,").Split(",", 0)), (Texts_{"a", "b"}));
    EXPECT_EQ(Texts(zunString(",,a").Split(",", 0)), (Texts_{"a"}));
    EXPECT_EQ(Texts(zunString(",,,").Split(",", 0)), Texts_{});
}

TEST_F(StringListTest, SplitOnAnyOfSeveralSingleUnitSeparators)
{
    EXPECT_EQ(Texts(zunString("usr/local;lib bin").Split("/; ", 0)), (Texts_{"usr", "local", "lib", "bin"}));
    EXPECT_EQ(Texts(zunString("a--b").Split("--", 0)), (Texts_{"a", "b"}));
}

TEST_F(StringListTest, SplitOfAnEmptyOrDefaultStringIsEmpty)
{
    EXPECT_EQ(zunString().Split(",", 0).Count(), 0u);
    EXPECT_EQ(zunString("").Split(",", 0).Count(), 0u);
    EXPECT_EQ(zunString().Split(nullptr, 0).Count(), 0u);
}

TEST_F(StringListTest, SplitWithoutSeparatorsGivesTheWholeText)
{
    EXPECT_EQ(Texts(zunString("a,b").Split(nullptr, 0)), (Texts_{"a,b"}));
    EXPECT_EQ(Texts(zunString("a,b").Split("", 0)), (Texts_{"a,b"}));
    EXPECT_EQ(Texts(zunString("a,b").Split(nullptr, 2)), (Texts_{"b"}));
}

TEST_F(StringListTest, SplitStartsAtTheGivenUnit)
{
    EXPECT_EQ(Texts(zunString("a,b,c").Split(",", 2)), (Texts_{"b", "c"}));
    EXPECT_EQ(Texts(zunString("a,b,c").Split(",", 1)), (Texts_{"b", "c"}));
    EXPECT_EQ(zunString("a,b").Split(",", 3).Count(), 0u) << "a start at the end gives nothing";
}

TEST_F(StringListTest, SplitStartBehindTheEndIsSafeAndEmpty)
{
    // Not a valid call; the list stays empty rather than reading past the text.
    EXPECT_EQ(zunString("a,b").Split(",", 50).Count(), 0u);
    EXPECT_EQ(zunString("a,b").Split(nullptr, 50).Count(), 0u);
}

TEST_F(StringListTest, SplitOfWideText)
{
    zunStringListW pieces = zunStringW(ZUN_W("x\u2022y\u2022\u2022z")).Split(ZUN_W("\u2022"), 0);
    ASSERT_EQ(pieces.Count(), 3u);
    EXPECT_EQ(pieces.Find(ZUN_W("z")), 2u);
}

TEST_F(StringListTest, SplitPieceThatFindsNoRoomIsDropped)
{
    zunString text("a,b");
    zunMemTesting::FailAllocation(1); // the first piece's text block
    Probe<char> pieces(text.Split(",", 0));
    EXPECT_EQ(Texts(pieces), (Texts_{"b"}));
    EXPECT_EQ(pieces.OffsetValues(), (std::vector<unsigned int>{0}));
    EXPECT_EQ(pieces.Chars().Count(), 2u);
}

// --- exhausted heap ----------------------------------------------------------------

TEST_F(StringListTest, FailedAppendToAnEmptyListLeavesItEmpty)
{
    for (unsigned int nth = 1; nth <= 3; ++nth) // the texts, the offsets, the flags
    {
        SCOPED_TRACE(nth);
        Probe<char> list;
        zunString text("hello");
        zunMemTesting::FailAllocation(nth);
        EXPECT_FALSE(list.Insert(text, 0xFFFFFFFFu));
        EXPECT_EQ(list.Count(), 0u);
        EXPECT_EQ(list.Chars().Count(), 0u);
        EXPECT_EQ(list.Offsets().Count(), 0u);
        EXPECT_EQ(list.Flags().Count(), 0u);
        zunMemTesting::Reset();
    }
}

TEST_F(StringListTest, FailedInsertInTheMiddleLeavesTheListAsItWas)
{
    for (unsigned int nth = 1; nth <= 3; ++nth)
    {
        SCOPED_TRACE(nth);
        Probe<char> list = SixteenPairs();
        list.SetFlag(3, 1);
        const Snapshot before(list);
        zunString text("a longer text than the room left");
        zunMemTesting::FailAllocation(nth);
        EXPECT_FALSE(list.Insert(text, 2));
        before.ExpectSame(list);
        zunMemTesting::Reset();
    }
}

TEST_F(StringListTest, FailedAppendLeavesTheListAsItWasEvenWhenShrinkingFailsToo)
{
    Probe<char> list = SixteenPairs();
    const Snapshot before(list);
    zunString text(std::string(99, 'x').c_str());
    // The texts grow; the offsets, and every later request, fail: taking the
    // texts back to their old count cannot get a smaller block either.
    zunMemTesting::FailAllocation(2, true);
    EXPECT_FALSE(list.Insert(text, 0xFFFFFFFFu));
    zunMemTesting::Reset();
    before.ExpectSame(list);
}

TEST_F(StringListTest, FailedCopyClearsTheList)
{
    zunStringList source;
    for (int i = 0; i < 20; ++i)
        source.Insert("a", 0xFFFFFFFFu);
    Probe<char> list{"x"};
    list.SetFlag(0, 1);
    zunMemTesting::FailAllocation(2); // the texts grow, the offsets find no room
    EXPECT_FALSE(list.Copy(source));
    EXPECT_EQ(list.Count(), 0u);
    EXPECT_EQ(list.Chars().Count(), 0u);
    EXPECT_EQ(list.FlaggedCount(), 0u);

    zunMemTesting::FailAllocation(1);
    zunStringList constructed(source);
    EXPECT_EQ(constructed.Count(), 0u);
}

TEST_F(StringListTest, FailedInsertListOfTheTextsLeavesTheListAsItWas)
{
    Probe<char> list{"one", "two"};
    const Snapshot before(list);
    zunStringList other{"a text that needs more room"};
    zunMemTesting::FailAllocation(1);
    EXPECT_FALSE(list.InsertList(std::move(other), 1)); // moved: no copy takes the failure
    before.ExpectSame(list);
}

TEST_F(StringListTest, FailedInsertListAtTheFrontRollsBackCleanly)
{
    // At entry 0 the text position is 0 as well, so taking the units back
    // from the entry index restores the texts exactly.
    for (unsigned int nth = 1; nth <= 2; ++nth) // the offsets, then the flags
    {
        SCOPED_TRACE(nth);
        Probe<char> list = SixteenPairs();
        const Snapshot before(list);
        zunStringList other{"xy"};
        zunMemTesting::FailAllocation(nth);
        EXPECT_FALSE(list.InsertList(std::move(other), 0));
        zunMemTesting::Reset();
        before.ExpectSame(list);
    }
}

TEST_F(StringListTest, FailedInsertListBehindTheFrontTakesUnitsBackFromTheEntryIndex)
{
    // The texts "xy" went in at unit 3 (before entry 1); the rollback removes
    // three units from unit 1, the entry index, as the list documents. The
    // counts come back and the array stays terminated, but entry 0 now reads
    // "ay".
    for (unsigned int nth = 1; nth <= 2; ++nth) // the offsets, then the flags
    {
        SCOPED_TRACE(nth);
        Probe<char> list = SixteenPairs();
        zunStringList other{"xy"};
        zunMemTesting::FailAllocation(nth);
        EXPECT_FALSE(list.InsertList(std::move(other), 1));
        zunMemTesting::Reset();
        EXPECT_EQ(list.Count(), 16u);
        EXPECT_EQ(list.Flags().Count(), 16u);
        EXPECT_EQ(list.Chars().Count(), 48u);
        EXPECT_EQ(list.Chars()[47], '\0');
        EXPECT_STREQ(list[0], "ay");
        for (unsigned int i = 1; i < 16; ++i)
            EXPECT_STREQ(list[i], "ab") << i;
    }
}

TEST_F(StringListTest, FailedShrinkInRemoveAndTruncateStillCutsTheArrays)
{
    Probe<char> list;
    for (int i = 0; i < 40; ++i)
        list.Insert("abcdefgh", 0xFFFFFFFFu);
    zunMemTesting::FailAllocation(1, true);
    EXPECT_TRUE(list.Truncate(3));
    EXPECT_EQ(list.Count(), 3u);
    EXPECT_EQ(list.Flags().Count(), 3u);
    EXPECT_EQ(list.Chars().Count(), 27u);
    EXPECT_TRUE(list.Remove(2));
    EXPECT_EQ(list.Chars().Count(), 18u);
    EXPECT_GE(zunMemTesting::GetCounters().failures, 4u) << "every smaller block was refused";
    zunMemTesting::Reset();
    EXPECT_EQ(Texts(list), (Texts_{"abcdefgh", "abcdefgh"}));
}
