// The growable array: layout, the capacity rule (doubling, halving, the element
// limit), insertion and removal with their index rules, copy and move,
// iterators across reallocation, the walks of ForEach, FindIf and
// CircularFindIf, and exhausted-heap behaviour through the test hook.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <numeric>
#include <string>
#include <vector>

#include "MemTesting.h"
#include "zunFastMesh.h"

namespace
{
    // Reaches the protected fields, which have no accessors of their own.
    template <typename T> struct Probe : zunFastMesh<T>
    {
        using zunFastMesh<T>::zunFastMesh;
        unsigned int MinCapacity() const { return this->m_nMinCapacity; }
        unsigned int ShrinkBelow() const { return this->m_nShrinkBelow; }
        void SetMinCapacity(unsigned int n) { this->m_nMinCapacity = n; }
        std::ptrdiff_t OffsetOf(const void * field) const
        {
            return static_cast<const char *>(field) - reinterpret_cast<const char *>(this);
        }
        std::vector<std::ptrdiff_t> FieldOffsets() const
        {
            return {OffsetOf(&this->m_nMinCapacity), OffsetOf(&this->m_nCount), OffsetOf(&this->m_nCapacity),
                    OffsetOf(&this->m_pData), OffsetOf(&this->m_nShrinkBelow)};
        }
    };

    struct FastMeshTest : testing::Test
    {
        void SetUp() override
        {
            zunMemTesting::Reset();
            zunMemTesting::StartCounting();
        }
        void TearDown() override { zunMemTesting::Reset(); }

        static unsigned long long HeapRequests()
        {
            auto c = zunMemTesting::GetCounters();
            return c.allocations + c.resizes;
        }
    };

    template <typename Mesh> void Fill(Mesh & mesh, unsigned int count)
    {
        for (unsigned int i = 0; i < count; ++i)
            ASSERT_TRUE(mesh.Add(static_cast<typename std::remove_reference_t<decltype(mesh[0])>>(i)));
    }

    std::vector<int> Elements(const zunFastMesh<int> & mesh)
    {
        return std::vector<int>(mesh.begin(), mesh.end());
    }

    zunFastMesh<char> Digits()
    {
        zunFastMesh<char> mesh;
        for (char c = '0'; c <= '4'; ++c)
            mesh.Add(c);
        return mesh;
    }

    struct Quad
    {
        double w, x, y, z;
    };

    constexpr unsigned int kAll = 0xFFFFFFFFu;
}

// --- layout and construction ------------------------------------------------

TEST_F(FastMeshTest, FieldsFollowTheVirtualTablePointerInTheirOrder)
{
    Probe<double> mesh;
    std::vector<std::ptrdiff_t> offsets = mesh.FieldOffsets();
    EXPECT_EQ(offsets, (std::vector<std::ptrdiff_t>{8, 12, 16, 24, 32}));
    EXPECT_EQ(sizeof(zunFastMesh<double>), 40u);
}

TEST_F(FastMeshTest, NewArrayIsEmptyAndAllocatesNothing)
{
    Probe<int> mesh;
    EXPECT_EQ(mesh.Count(), 0u);
    EXPECT_EQ(mesh.Capacity(), 0u);
    EXPECT_EQ(mesh.Data(), nullptr);
    EXPECT_EQ(mesh.MinCapacity(), 16u);
    EXPECT_EQ(mesh.begin(), mesh.end());
    EXPECT_EQ(HeapRequests(), 0u);
}

TEST_F(FastMeshTest, ElementLimitIsTheLargestBlockOverTheElementSize)
{
    EXPECT_EQ(zunFastMesh<char>::MaxCapacity, 0xFFFFF000u);
    EXPECT_EQ(zunFastMesh<unsigned char>::MaxCapacity, 0xFFFFF000u);
    EXPECT_EQ(zunFastMesh<unsigned int>::MaxCapacity, 0x3FFFFC00u);
    EXPECT_EQ(zunFastMesh<std::uint64_t>::MaxCapacity, 0x1FFFFE00u);
    EXPECT_EQ(zunFastMesh<Quad>::MaxCapacity, 0x7FFFF80u);
    EXPECT_EQ(zunFastMesh<zunVector4T<double>>::MaxCapacity, 0x7FFFF80u);
}

TEST_F(FastMeshTest, RequestsBeyondTheElementLimitFailWithoutTouchingTheArray)
{
    zunFastMesh<unsigned int> mesh;
    Fill(mesh, 3);
    const unsigned int * block = mesh.Data();
    EXPECT_FALSE(mesh.SetCount(zunFastMesh<unsigned int>::MaxCapacity + 1, false));
    EXPECT_FALSE(mesh.InsertRange(0, nullptr, zunFastMesh<unsigned int>::MaxCapacity));
    EXPECT_EQ(mesh.Extend(0xFFFFFFFFu, true), nullptr);
    // 32-bit sums would wrap here; the capacity arithmetic is 64-bit.
    EXPECT_FALSE(mesh.InsertRange(1, nullptr, 0xFFFFFFFFu));
    EXPECT_EQ(mesh.Count(), 3u);
    EXPECT_EQ(mesh.Capacity(), 16u);
    EXPECT_EQ(mesh.Data(), block);
    EXPECT_EQ(mesh[2], 2u);
    EXPECT_EQ(zunMemTesting::GetCounters().resizes, 0u);
}

// --- the capacity rule --------------------------------------------------------

TEST_F(FastMeshTest, FirstAddAllocatesSixteenAndTheSeventeenthDoubles)
{
    zunFastMesh<int> mesh;
    ASSERT_TRUE(mesh.Add(0));
    EXPECT_EQ(mesh.Capacity(), 16u);
    EXPECT_EQ(zunMemGetSize(mesh.Data()), 16 * sizeof(int));
    EXPECT_EQ(HeapRequests(), 1u);
    for (int i = 1; i < 16; ++i)
        ASSERT_TRUE(mesh.Add(i));
    EXPECT_EQ(HeapRequests(), 1u) << "the 16th Add fits the block";
    ASSERT_TRUE(mesh.Add(16));
    EXPECT_EQ(mesh.Capacity(), 32u);
    EXPECT_EQ(HeapRequests(), 2u);
    Fill(mesh, 16); // 33 elements
    EXPECT_EQ(mesh.Capacity(), 64u);
}

TEST_F(FastMeshTest, InsertRangeBeyondTwiceTheCapacityTakesTheRequestAsItStands)
{
    zunFastMesh<int> mesh;
    Fill(mesh, 16);
    ASSERT_EQ(mesh.Capacity(), 16u);
    std::vector<int> items(100, 7);
    ASSERT_TRUE(mesh.InsertRange(16, items.data(), 100));
    EXPECT_EQ(mesh.Capacity(), 116u);
    EXPECT_EQ(mesh.Count(), 116u);
    EXPECT_EQ(mesh[15], 15);
    EXPECT_EQ(mesh[115], 7);
}

TEST_F(FastMeshTest, GrowthRequestsTheCapacityPlusTheNeedNotTheCount)
{
    zunFastMesh<int> mesh;
    Fill(mesh, 16);
    mesh.Remove(0, 6); // 10 left in 16, no shrink (10 >= 8)
    ASSERT_EQ(mesh.Capacity(), 16u);
    int items[20] = {};
    // 30 elements needed. From the count the request would be 30 (doubled to
    // 32); from the capacity it is 16 + 20 = 36, above 2 x 16, taken as is.
    ASSERT_TRUE(mesh.InsertRange(0, items, 20));
    EXPECT_EQ(mesh.Capacity(), 36u);
}

TEST_F(FastMeshTest, SetCountOnAnEmptyArrayTakesTheExactCountAllZero)
{
    zunFastMesh<int> mesh;
    ASSERT_TRUE(mesh.SetCount(1000, true));
    EXPECT_EQ(mesh.Count(), 1000u);
    EXPECT_EQ(mesh.Capacity(), 1000u);
    EXPECT_TRUE(std::all_of(mesh.begin(), mesh.end(), [](int v) { return v == 0; }));
}

TEST_F(FastMeshTest, SetCountDownHalvesToTheMinimum)
{
    Probe<int> mesh;
    ASSERT_TRUE(mesh.SetCount(1024, false));
    ASSERT_EQ(mesh.Capacity(), 1024u);
    ASSERT_TRUE(mesh.SetCount(1, false));
    EXPECT_EQ(mesh.Capacity(), 16u);
    EXPECT_EQ(mesh.ShrinkBelow(), 8u);
    EXPECT_EQ(mesh.Count(), 1u);
}

TEST_F(FastMeshTest, SetCountDownHalvesOnlyAsFarAsTheCountAllows)
{
    zunFastMesh<int> mesh;
    ASSERT_TRUE(mesh.SetCount(1024, false));
    ASSERT_TRUE(mesh.SetCount(100, false)); // halves to 64, the first not above 100, then doubles
    EXPECT_EQ(mesh.Capacity(), 128u);
    ASSERT_TRUE(mesh.SetCount(64, false)); // 128 is not above 2 x 64: kept
    EXPECT_EQ(mesh.Capacity(), 128u);
}

TEST_F(FastMeshTest, SetCountZeroFillsAboveTheOldCountInsideTheBlockToo)
{
    zunFastMesh<int> mesh;
    for (int i = 0; i < 10; ++i)
        mesh.Add(100 + i);
    ASSERT_TRUE(mesh.SetCount(3, false));
    ASSERT_EQ(mesh.Capacity(), 16u);
    ASSERT_TRUE(mesh.SetCount(40, true)); // 3..15 in the old block, 16..39 in the grown part
    EXPECT_EQ(mesh.Capacity(), 40u);
    EXPECT_EQ(mesh[2], 102);
    for (unsigned int i = 3; i < 40; ++i)
        EXPECT_EQ(mesh[i], 0) << i;
}

TEST_F(FastMeshTest, SetCountZeroFreesTheBlock)
{
    zunFastMesh<int> mesh;
    Fill(mesh, 5);
    ASSERT_TRUE(mesh.SetCount(0, true));
    EXPECT_EQ(mesh.Count(), 0u);
    EXPECT_EQ(mesh.Capacity(), 0u);
    EXPECT_EQ(mesh.Data(), nullptr);
}

TEST_F(FastMeshTest, CapacityIsAPowerOfTwoTimesTheMinimumUnderAppends)
{
    zunFastMesh<unsigned char> mesh;
    std::vector<unsigned int> seen;
    for (unsigned int i = 0; i < 5000; ++i)
    {
        mesh.Add(static_cast<unsigned char>(i));
        if (seen.empty() || seen.back() != mesh.Capacity())
            seen.push_back(mesh.Capacity());
    }
    EXPECT_EQ(seen, (std::vector<unsigned int>{16, 32, 64, 128, 256, 512, 1024, 2048, 4096, 8192}));
}

// --- removal ------------------------------------------------------------------

TEST_F(FastMeshTest, RemoveBehindTheEndIsTrueAndChangesNothing)
{
    zunFastMesh<int> mesh;
    Fill(mesh, 4);
    EXPECT_TRUE(mesh.Remove(4, 1));
    EXPECT_TRUE(mesh.Remove(kAll, 3));
    EXPECT_EQ(Elements(mesh), (std::vector<int>{0, 1, 2, 3}));
    zunFastMesh<int> empty;
    EXPECT_TRUE(empty.Remove(0, 1));
}

TEST_F(FastMeshTest, RemoveOfMoreThanRemainCutsToTheEnd)
{
    zunFastMesh<int> mesh;
    Fill(mesh, 20);
    EXPECT_TRUE(mesh.Remove(17, 100));
    EXPECT_EQ(mesh.Count(), 17u);
    EXPECT_EQ(mesh[16], 16);
}

TEST_F(FastMeshTest, RemoveMovesTheTailDown)
{
    zunFastMesh<int> mesh;
    Fill(mesh, 6);
    EXPECT_TRUE(mesh.Remove(1, 2));
    EXPECT_EQ(Elements(mesh), (std::vector<int>{0, 3, 4, 5}));
    EXPECT_TRUE(mesh.Remove(0, 0));
    EXPECT_EQ(Elements(mesh), (std::vector<int>{0, 3, 4, 5}));
}

TEST_F(FastMeshTest, RemovingBelowHalfTheCapacityHalvesTheBlock)
{
    Probe<int> mesh;
    Fill(mesh, 33);
    ASSERT_TRUE(mesh.Remove(32, 1)); // 32 in 64: not below half
    ASSERT_EQ(mesh.Capacity(), 64u);
    EXPECT_EQ(mesh.ShrinkBelow(), 32u);
    ASSERT_TRUE(mesh.Remove(0, 1)); // 31 left
    EXPECT_EQ(mesh.Capacity(), 32u);
    EXPECT_EQ(mesh.ShrinkBelow(), 16u);
    EXPECT_EQ(mesh[0], 1);
    EXPECT_EQ(mesh[30], 31);
}

TEST_F(FastMeshTest, RemovingMostElementsHalvesAsOftenAsTheCountAllows)
{
    zunFastMesh<int> mesh;
    ASSERT_TRUE(mesh.SetCount(1024, true));
    ASSERT_TRUE(mesh.Remove(0, 1020));
    EXPECT_EQ(mesh.Capacity(), 16u);
    EXPECT_EQ(mesh.Count(), 4u);
}

TEST_F(FastMeshTest, RemovingEveryElementFreesTheBlock)
{
    zunFastMesh<int> mesh;
    Fill(mesh, 3);
    ASSERT_TRUE(mesh.Remove(0, 3));
    EXPECT_EQ(mesh.Capacity(), 0u);
    EXPECT_EQ(mesh.Data(), nullptr);
    EXPECT_EQ(zunMemTesting::GetCounters().frees, 1u);
    ASSERT_TRUE(mesh.Add(9)); // and grows again from nothing
    EXPECT_EQ(mesh.Capacity(), 16u);
}

// --- insertion ----------------------------------------------------------------

TEST_F(FastMeshTest, InsertAtAnyIndexBehindTheEndAppends)
{
    zunFastMesh<int> mesh;
    Fill(mesh, 3);
    ASSERT_TRUE(mesh.Insert(kAll, 10));
    ASSERT_TRUE(mesh.Insert(99, 11));
    ASSERT_TRUE(mesh.InsertEmpty(kAll));
    mesh[5] = 12;
    int items[] = {13, 14};
    ASSERT_TRUE(mesh.InsertRange(kAll, items, 2));
    EXPECT_EQ(Elements(mesh), (std::vector<int>{0, 1, 2, 10, 11, 12, 13, 14}));
}

TEST_F(FastMeshTest, InsertionsInTheMiddleMoveTheTailUp)
{
    zunFastMesh<int> mesh;
    Fill(mesh, 4);
    ASSERT_TRUE(mesh.Insert(0, 100));
    ASSERT_TRUE(mesh.InsertEmpty(2));
    mesh[2] = 200;
    int items[] = {7, 8, 9};
    ASSERT_TRUE(mesh.InsertRange(4, items, 3));
    EXPECT_EQ(Elements(mesh), (std::vector<int>{100, 0, 200, 1, 7, 8, 9, 2, 3}));
}

TEST_F(FastMeshTest, InsertRangeWithoutItemsOpensAGapOnly)
{
    zunFastMesh<int> mesh;
    Fill(mesh, 4);
    ASSERT_TRUE(mesh.InsertRange(1, nullptr, 2));
    EXPECT_EQ(mesh.Count(), 6u);
    EXPECT_EQ(mesh[0], 0);
    EXPECT_EQ(mesh[3], 1);
    EXPECT_EQ(mesh[5], 3);
}

TEST_F(FastMeshTest, InsertRangeOfNothingChangesNothing)
{
    zunFastMesh<int> mesh;
    int item = 1;
    EXPECT_TRUE(mesh.InsertRange(0, &item, 0));
    EXPECT_EQ(mesh.Count(), 0u);
    EXPECT_EQ(mesh.Data(), nullptr);
}

TEST_F(FastMeshTest, ElementsOfTheArrayItselfCanBeInsertedWhileItGrows)
{
    zunFastMesh<int> mesh;
    Fill(mesh, 16);
    ASSERT_TRUE(mesh.Add(mesh[3])); // the block is replaced under the reference
    EXPECT_EQ(mesh[16], 3);
    ASSERT_TRUE(mesh.Insert(0, mesh[16]));
    EXPECT_EQ(mesh[0], 3);
    EXPECT_EQ(mesh[17], 3);

    zunFastMesh<int> twice;
    Fill(twice, 16);
    ASSERT_TRUE(twice.InsertRange(kAll, twice.Data(), 16)); // grows to 32
    for (int i = 0; i < 32; ++i)
        EXPECT_EQ(twice[i], i % 16);
}

TEST_F(FastMeshTest, InsertRangeFromItsOwnElementsAcrossTheGap)
{
    // Source elements 2..5 straddle the insertion point 4: 2 and 3 stay in
    // place, 4 and 5 move up by the gap.
    zunFastMesh<int> mesh;
    Fill(mesh, 8);
    ASSERT_TRUE(mesh.InsertRange(4, mesh.Data() + 2, 4));
    EXPECT_EQ(Elements(mesh), (std::vector<int>{0, 1, 2, 3, 2, 3, 4, 5, 4, 5, 6, 7}));

    zunFastMesh<int> behind;
    Fill(behind, 6);
    ASSERT_TRUE(behind.InsertRange(1, behind.Data() + 3, 2));
    EXPECT_EQ(Elements(behind), (std::vector<int>{0, 3, 4, 1, 2, 3, 4, 5}));

    zunFastMesh<int> before;
    Fill(before, 6);
    ASSERT_TRUE(before.InsertRange(5, before.Data(), 2));
    EXPECT_EQ(Elements(before), (std::vector<int>{0, 1, 2, 3, 4, 0, 1, 5}));
}

TEST_F(FastMeshTest, ExtendAppendsAndReturnsTheFirstNewElement)
{
    zunFastMesh<int> mesh;
    Fill(mesh, 2);
    int * first = mesh.Extend(20, true);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first, mesh.Data() + 2);
    EXPECT_EQ(mesh.Count(), 22u);
    EXPECT_EQ(mesh.Capacity(), 36u); // 16 + 20 is above 2 x 16
    EXPECT_TRUE(std::all_of(mesh.begin() + 2, mesh.end(), [](int v) { return v == 0; }));
    int * more = mesh.Extend(3, false);
    EXPECT_EQ(more, mesh.Data() + 22);
    EXPECT_EQ(mesh.Count(), 25u);
}

TEST_F(FastMeshTest, ExtendByNothingGivesTheEndOrNullWithoutABlock)
{
    zunFastMesh<int> mesh;
    EXPECT_EQ(mesh.Extend(0, true), nullptr);
    Fill(mesh, 2);
    EXPECT_EQ(mesh.Extend(0, true), mesh.Data() + 2);
    EXPECT_EQ(mesh.Count(), 2u);
}

// --- copy and move ------------------------------------------------------------

TEST_F(FastMeshTest, CopyDuplicatesTheElements)
{
    zunFastMesh<int> source;
    Fill(source, 40);
    zunFastMesh<int> copy(source);
    EXPECT_NE(copy.Data(), source.Data());
    EXPECT_EQ(Elements(copy), Elements(source));
    EXPECT_EQ(copy.Capacity(), 40u);
    zunFastMesh<int> assigned;
    assigned = source;
    EXPECT_EQ(Elements(assigned), Elements(source));
}

TEST_F(FastMeshTest, CopyIntoALargerArrayGivesMemoryBack)
{
    zunFastMesh<int> source;
    Fill(source, 5);
    zunFastMesh<int> target;
    ASSERT_TRUE(target.SetCount(1024, false));
    ASSERT_TRUE(target.Copy(source));
    EXPECT_EQ(target.Capacity(), 16u);
    EXPECT_EQ(Elements(target), (std::vector<int>{0, 1, 2, 3, 4}));
}

TEST_F(FastMeshTest, SelfCopyIsTrueAndChangesNothing)
{
    zunFastMesh<int> mesh;
    Fill(mesh, 5);
    const int * block = mesh.Data();
    EXPECT_TRUE(mesh.Copy(mesh));
    mesh = mesh;
    EXPECT_EQ(mesh.Data(), block);
    EXPECT_EQ(Elements(mesh), (std::vector<int>{0, 1, 2, 3, 4}));
}

TEST_F(FastMeshTest, CopyTakesTheSourcesMinimumCapacity)
{
    Probe<int> source;
    source.SetMinCapacity(4);
    Fill(source, 3);
    EXPECT_EQ(source.Capacity(), 4u);
    Probe<int> target;
    ASSERT_TRUE(target.Copy(source));
    EXPECT_EQ(target.MinCapacity(), 4u);
    EXPECT_EQ(target.Capacity(), 4u);
    Probe<int> constructed(source);
    EXPECT_EQ(constructed.MinCapacity(), 4u);
}

TEST_F(FastMeshTest, ClearAfterACopyWithAnotherMinimumRestoresSixteen)
{
    Probe<int> source;
    source.SetMinCapacity(64);
    Fill(source, 3);
    Probe<int> target;
    ASSERT_TRUE(target.Copy(source));
    ASSERT_EQ(target.MinCapacity(), 64u);
    target.Clear();
    EXPECT_EQ(target.MinCapacity(), 16u);
    EXPECT_EQ(target.Count(), 0u);
    EXPECT_EQ(target.Capacity(), 0u);
    EXPECT_EQ(target.Data(), nullptr);
}

TEST_F(FastMeshTest, AssignmentFromAnEmptyArrayClearsAndRestoresSixteen)
{
    Probe<int> empty;
    empty.SetMinCapacity(4);
    Probe<int> target;
    target.SetMinCapacity(64);
    Fill(target, 10);
    target = empty;
    EXPECT_EQ(target.MinCapacity(), 16u);
    EXPECT_EQ(target.Count(), 0u);
    EXPECT_EQ(target.Data(), nullptr);
}

TEST_F(FastMeshTest, MoveTakesTheBlockAndLeavesTheSourceEmptyWithItsMinimum)
{
    Probe<int> source;
    source.SetMinCapacity(8);
    Fill(source, 20);
    const int * block = source.Data();
    Probe<int> moved(std::move(source));
    EXPECT_EQ(moved.Data(), block);
    EXPECT_EQ(moved.Count(), 20u);
    EXPECT_EQ(moved.Capacity(), 32u);
    EXPECT_EQ(moved.MinCapacity(), 8u);
    EXPECT_EQ(moved.ShrinkBelow(), 16u);
    EXPECT_EQ(source.Data(), nullptr);
    EXPECT_EQ(source.Count(), 0u);
    EXPECT_EQ(source.Capacity(), 0u);
    EXPECT_EQ(source.MinCapacity(), 8u);

    Probe<int> assigned;
    Fill(assigned, 3);
    assigned = std::move(moved);
    EXPECT_EQ(assigned.Data(), block);
    EXPECT_EQ(assigned.Count(), 20u);
    EXPECT_EQ(moved.Data(), nullptr);
    EXPECT_EQ(moved.Count(), 0u);
}

// --- iterators ----------------------------------------------------------------

TEST_F(FastMeshTest, IteratorsWalkForwardAndBackward)
{
    zunFastMesh<char> mesh = Digits();
    EXPECT_EQ(std::string(mesh.begin(), mesh.end()), "01234");
    EXPECT_EQ(std::string(mesh.rbegin(), mesh.rend()), "43210");
    const zunFastMesh<char> & view = mesh;
    EXPECT_EQ(std::string(view.begin(), view.end()), "01234");
    EXPECT_EQ(std::string(view.crbegin(), view.crend()), "43210");
    std::string ranged;
    for (char c : mesh)
        ranged += c;
    EXPECT_EQ(ranged, "01234");
}

TEST_F(FastMeshTest, IteratorsSurviveReallocation)
{
    zunFastMesh<int> mesh;
    Fill(mesh, 4);
    zunFastMesh<int>::iterator first = mesh.begin();
    zunFastMesh<int>::const_iterator third = mesh.cbegin() + 2;
    const int * oldBlock = mesh.Data();
    Fill(mesh, 1000);
    ASSERT_NE(mesh.Data(), oldBlock);
    EXPECT_EQ(*first, 0);
    EXPECT_EQ(*third, 2);
    EXPECT_EQ(first[500], 496);
    *first = 42;
    EXPECT_EQ(mesh[0], 42);
    EXPECT_EQ(mesh.end() - first, 1004);
}

TEST_F(FastMeshTest, IteratorsWorkWithStandardAlgorithms)
{
    zunFastMesh<int> mesh;
    for (int v : {5, 3, 9, 1, 7})
        mesh.Add(v);
    std::sort(mesh.begin(), mesh.end());
    EXPECT_EQ(Elements(mesh), (std::vector<int>{1, 3, 5, 7, 9}));
    EXPECT_EQ(std::accumulate(mesh.begin(), mesh.end(), 0), 25);
    EXPECT_EQ(std::find(mesh.begin(), mesh.end(), 7).Index(), 3u);
    std::reverse(mesh.begin(), mesh.end());
    EXPECT_EQ(Elements(mesh), (std::vector<int>{9, 7, 5, 3, 1}));
    static_assert(!std::is_convertible<zunFastMesh<int>::const_iterator, zunFastMesh<int>::iterator>::value,
                  "a const iterator must not give write access");
    zunFastMesh<int>::const_iterator converted = mesh.begin();
    EXPECT_TRUE(converted == mesh.begin());
    EXPECT_TRUE(mesh.begin() < mesh.end());
}

// --- ForEach, FindIf, CircularFindIf -------------------------------------------

namespace
{
    struct Range
    {
        unsigned int first, last;
        const char * visits;
    };

    // Every row of the visiting-order table, over the elements 0..4.
    const Range kRanges[] = {
        {0, kAll, "01234"}, {0, 4, "01234"}, {1, 3, "123"},  {1, 7, ""},     {5, 7, ""}, {5, kAll, ""},
        {kAll, 0, "43210"}, {4, 0, "43210"}, {3, 1, "321"},  {7, 1, ""},     {7, 5, ""}, {kAll, 5, ""},
        {kAll, kAll, ""},   {2, 2, "2"},     {4, kAll, "4"}, {kAll, 4, "4"},
    };

    struct Circle
    {
        unsigned int start;
        bool reverse, skipStart;
        const char * visits;
    };

    const Circle kCircles[] = {
        {0, false, false, "01234"},   {0, false, true, "1234"},      {0, true, false, "04321"},
        {0, true, true, "4321"},      {kAll, false, false, "01234"}, {kAll, false, true, "01234"},
        {kAll, true, false, "43210"}, {kAll, true, true, "43210"},   {2, false, false, "23401"},
        {2, false, true, "3401"},     {2, true, false, "21043"},     {2, true, true, "1043"},
        {4, false, false, "40123"},   {4, true, true, "3210"},       {5, false, true, "01234"},
        {9, true, true, "43210"},
    };

    std::string Label(unsigned int index)
    {
        return index == kAll ? "none" : std::to_string(index);
    }

    template <typename Mesh> std::string ForEachVisits(Mesh & mesh, unsigned int first, unsigned int last)
    {
        std::string visited;
        mesh.ForEach(first, last, [&](auto & c) { visited += c; });
        return visited;
    }

    template <typename Mesh> std::string FindIfVisits(Mesh & mesh, unsigned int first, unsigned int last)
    {
        std::string visited;
        unsigned int found = mesh.FindIf(first, last, [&](auto & c) { return visited += c, false; });
        EXPECT_EQ(found, kAll);
        return visited;
    }

    template <typename Mesh> std::string CircleVisits(Mesh & mesh, const Circle & row)
    {
        std::string visited;
        unsigned int found =
            mesh.CircularFindIf(row.start, row.reverse, row.skipStart, [&](auto & c) { return visited += c, false; });
        EXPECT_EQ(found, kAll);
        return visited;
    }
}

TEST_F(FastMeshTest, ForEachAndFindIfVisitEveryRowOfTheTable)
{
    zunFastMesh<char> mesh = Digits();
    const zunFastMesh<char> & view = mesh;
    for (const Range & row : kRanges)
    {
        SCOPED_TRACE(Label(row.first) + " to " + Label(row.last));
        EXPECT_EQ(ForEachVisits(mesh, row.first, row.last), row.visits);
        EXPECT_EQ(ForEachVisits(view, row.first, row.last), row.visits);
        EXPECT_EQ(FindIfVisits(mesh, row.first, row.last), row.visits);
        EXPECT_EQ(FindIfVisits(view, row.first, row.last), row.visits);
    }
}

TEST_F(FastMeshTest, CircularFindIfVisitsEveryRowOfTheTable)
{
    zunFastMesh<char> mesh = Digits();
    const zunFastMesh<char> & view = mesh;
    for (const Circle & row : kCircles)
    {
        SCOPED_TRACE("start " + Label(row.start) + (row.reverse ? " reverse" : " forward") +
                     (row.skipStart ? " skip" : ""));
        EXPECT_EQ(CircleVisits(mesh, row), row.visits);
        EXPECT_EQ(CircleVisits(view, row), row.visits);
    }
}

TEST_F(FastMeshTest, WalksOnAnEmptyArrayCallNothing)
{
    zunFastMesh<char> empty;
    const unsigned int indices[] = {0, 1, 4, 5, kAll};
    for (unsigned int first : indices)
        for (unsigned int last : indices)
        {
            EXPECT_EQ(ForEachVisits(empty, first, last), "");
            EXPECT_EQ(FindIfVisits(empty, first, last), "");
        }
    for (unsigned int start : indices)
        for (int flags = 0; flags < 4; ++flags)
            EXPECT_EQ(CircleVisits(empty, Circle{start, (flags & 1) != 0, (flags & 2) != 0, ""}), "");
}

TEST_F(FastMeshTest, FindIfStopsAtTheFirstMatchAndGivesItsIndex)
{
    zunFastMesh<int> mesh;
    for (int v : {4, 8, 15, 16, 23, 42})
        mesh.Add(v);
    int calls = 0;
    auto even = [&](int v)
    {
        ++calls;
        return v % 2 == 0;
    };
    EXPECT_EQ(mesh.FindIf(0, kAll, even), 0u);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(mesh.FindIf(2, kAll, even), 3u);
    EXPECT_EQ(mesh.FindIf(4, 2, even), 3u);
    EXPECT_EQ(mesh.FindIf(kAll, 0, [](int v) { return v < 10; }), 1u);
    EXPECT_EQ(mesh.FindIf(0, kAll, [](int v) { return v > 100; }), kAll);
    EXPECT_EQ(mesh.CircularFindIf(4, false, true, even), 5u);
    EXPECT_EQ(mesh.CircularFindIf(5, false, true, even), 0u);
    EXPECT_EQ(mesh.CircularFindIf(2, true, false, [](int v) { return v == 23; }), 4u);
    EXPECT_EQ(mesh.CircularFindIf(0, true, true, [](int v) { return v == 4; }), kAll);
}

TEST_F(FastMeshTest, ForEachMayChangeTheElements)
{
    zunFastMesh<int> mesh;
    Fill(mesh, 5);
    mesh.ForEach(1, 3, [](int & v) { v *= 10; });
    EXPECT_EQ(Elements(mesh), (std::vector<int>{0, 10, 20, 30, 4}));
}

// --- exhausted heap -------------------------------------------------------------

namespace
{
    // A 20-element array with capacity 32, and a way to tell it is untouched.
    struct Snapshot
    {
        std::vector<int> elements;
        unsigned int capacity;
        const int * block;

        explicit Snapshot(const zunFastMesh<int> & mesh)
            : elements(mesh.begin(), mesh.end()), capacity(mesh.Capacity()), block(mesh.Data())
        {
        }
        void ExpectSame(const zunFastMesh<int> & mesh) const
        {
            EXPECT_EQ(std::vector<int>(mesh.begin(), mesh.end()), elements);
            EXPECT_EQ(mesh.Capacity(), capacity);
            EXPECT_EQ(mesh.Data(), block);
        }
    };
}

TEST_F(FastMeshTest, FailedGrowthLeavesTheArrayAsItWas)
{
    zunFastMesh<int> mesh;
    Fill(mesh, 32);
    const Snapshot before(mesh);
    int items[] = {1, 2, 3};

    zunMemTesting::FailAllocation(1);
    EXPECT_FALSE(mesh.Add(5));
    before.ExpectSame(mesh);
    zunMemTesting::FailAllocation(1);
    EXPECT_FALSE(mesh.Insert(0, 5));
    before.ExpectSame(mesh);
    zunMemTesting::FailAllocation(1);
    EXPECT_FALSE(mesh.InsertEmpty(3));
    before.ExpectSame(mesh);
    zunMemTesting::FailAllocation(1);
    EXPECT_FALSE(mesh.InsertRange(1, items, 3));
    before.ExpectSame(mesh);
    zunMemTesting::FailAllocation(1);
    EXPECT_EQ(mesh.Extend(3, true), nullptr);
    before.ExpectSame(mesh);
    zunMemTesting::FailAllocation(1);
    EXPECT_FALSE(mesh.SetCount(100, true));
    before.ExpectSame(mesh);
    zunMemTesting::FailAllocation(1);
    EXPECT_FALSE(mesh.SetCount(2, false)); // the shrink fails too
    before.ExpectSame(mesh);
    EXPECT_EQ(zunMemTesting::GetCounters().failures, 7u);

    ASSERT_TRUE(mesh.Add(5)); // the heap is back
    EXPECT_EQ(mesh.Count(), 33u);
}

TEST_F(FastMeshTest, FailedFirstAllocationLeavesTheArrayWithoutABlock)
{
    zunFastMesh<int> mesh;
    zunMemTesting::FailAllocation(1);
    EXPECT_FALSE(mesh.Add(1));
    EXPECT_EQ(mesh.Count(), 0u);
    EXPECT_EQ(mesh.Capacity(), 0u);
    EXPECT_EQ(mesh.Data(), nullptr);
}

TEST_F(FastMeshTest, FailedShrinkInRemoveStillRemovesTheElements)
{
    zunFastMesh<int> mesh;
    Fill(mesh, 40);
    zunMemTesting::FailAllocation(1);
    EXPECT_FALSE(mesh.Remove(0, 30));
    EXPECT_EQ(mesh.Count(), 10u);
    EXPECT_EQ(mesh.Capacity(), 64u);
    EXPECT_EQ(mesh[0], 30);
    EXPECT_EQ(mesh[9], 39);
    EXPECT_TRUE(mesh.Remove(0, 1)); // the next removal retries and succeeds
    EXPECT_EQ(mesh.Capacity(), 16u);
}

TEST_F(FastMeshTest, FailedCopyLeavesTheTargetAsItWasMinimumIncluded)
{
    Probe<int> source;
    source.SetMinCapacity(4);
    Fill(source, 20);
    Probe<int> target;
    Fill(target, 3);
    const Snapshot before(target);
    zunMemTesting::FailAllocation(1);
    EXPECT_FALSE(target.Copy(source));
    before.ExpectSame(target);
    EXPECT_EQ(target.MinCapacity(), 16u);

    zunMemTesting::FailAllocation(1);
    zunFastMesh<int> constructed(source);
    EXPECT_EQ(constructed.Count(), 0u);
    EXPECT_EQ(constructed.Data(), nullptr);
}

// --- element types the library uses -----------------------------------------------

TEST_F(FastMeshTest, HoldsVectorsAndWideUnitsAsBytes)
{
    zunFastMesh<zunVector4T<double>> points;
    ASSERT_TRUE(points.Add(zunVector4T<double>(1, 2, 3)));
    zunVector4T<double> * fresh = points.Extend(2, true);
    ASSERT_NE(fresh, nullptr);
    EXPECT_EQ(fresh->w, 0.0) << "zero-filled as bytes, no constructor runs";
    EXPECT_EQ(points[0].w, 1.0);

    zunFastMesh<zunWChar> units;
    for (zunWChar c : {zunWChar(0x41), zunWChar(0x20AC)})
        units.Add(c);
    EXPECT_EQ(units[1], 0x20AC);
    zunFastMesh<std::uint64_t> big;
    big.Add(0xFFFFFFFFFFFFFFFFull);
    EXPECT_EQ(big[0], 0xFFFFFFFFFFFFFFFFull);
}
