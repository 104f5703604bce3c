// Cached data: records under GUIDs that belong to one object and never to a copy.
#include <zunFoundation.h>

#include <gtest/gtest.h>

#include <memory>

namespace
{
    int g_liveRecords = 0;

    struct Area : zunCachedData
    {
        explicit Area(double v) : value(v) { ++g_liveRecords; }
        ~Area() override { --g_liveRecords; }
        double value;
    };

    struct Outline : zunCachedData
    {
    };

    /// An owner that keeps its cache as a base, as the container is meant to be used.
    struct Shape : zunCachedDataContainer
    {
        int sides = 3;
    };

    class CachedData : public ::testing::Test
    {
    protected:
        void SetUp() override { g_liveRecords = 0; }
        void TearDown() override { EXPECT_EQ(g_liveRecords, 0) << "records leaked or deleted twice"; }

        const zunGUID area{"11111111-0000-0000-0000-000000000001"};
        const zunGUID outline{"11111111-0000-0000-0000-000000000002"};
    };
}

TEST_F(CachedData, LookupByIdAndType)
{
    zunCachedDataContainer cache;
    EXPECT_EQ(cache.GetCachedData<Area>(area), nullptr);
    cache.SetCachedData(area, std::make_unique<Area>(2.5));
    ASSERT_NE(cache.GetCachedData<Area>(area), nullptr);
    EXPECT_EQ(cache.GetCachedData<Area>(area)->value, 2.5);
    EXPECT_EQ(cache.GetCachedData<Outline>(area), nullptr);
    EXPECT_EQ(cache.GetCachedData<Area>(outline), nullptr);
}

TEST_F(CachedData, ACopyIsEmpty)
{
    Shape shape;
    shape.sides = 4;
    shape.SetCachedData(area, std::make_unique<Area>(1.0));
    const Shape copy(shape);
    EXPECT_EQ(copy.sides, 4);
    EXPECT_EQ(copy.GetCachedData<Area>(area), nullptr);
    EXPECT_NE(shape.GetCachedData<Area>(area), nullptr);
}

TEST_F(CachedData, AssignmentKeepsTheTargetsRecords)
{
    Shape source, target;
    source.sides = 5;
    source.SetCachedData(area, std::make_unique<Area>(1.0));
    target.SetCachedData(outline, std::make_unique<Outline>());
    Area * kept = nullptr;
    target.SetCachedData(area, std::make_unique<Area>(9.0));
    kept = target.GetCachedData<Area>(area);
    target = source;
    EXPECT_EQ(target.sides, 5);
    EXPECT_EQ(target.GetCachedData<Area>(area), kept);
    EXPECT_EQ(kept->value, 9.0);
    EXPECT_NE(target.GetCachedData<Outline>(outline), nullptr);
    EXPECT_EQ(g_liveRecords, 2);
}

TEST_F(CachedData, SettingTwiceDeletesTheFirstRecordAtTheSecondCall)
{
    zunCachedDataContainer cache;
    cache.SetCachedData(area, std::make_unique<Area>(1.0));
    EXPECT_EQ(g_liveRecords, 1);
    cache.SetCachedData(area, std::make_unique<Area>(2.0));
    EXPECT_EQ(g_liveRecords, 1);
    EXPECT_EQ(cache.GetCachedData<Area>(area)->value, 2.0);
}

TEST_F(CachedData, RemovingTwiceIsHarmless)
{
    zunCachedDataContainer cache;
    cache.SetCachedData(area, std::make_unique<Area>(1.0));
    cache.RemoveCachedData(area);
    EXPECT_EQ(g_liveRecords, 0);
    cache.RemoveCachedData(area);
    cache.RemoveCachedData(outline);
    EXPECT_EQ(cache.GetCachedData<Area>(area), nullptr);
}

TEST_F(CachedData, NullRecordStandsAsAnEntryAndReplacesTheOld)
{
    zunCachedDataContainer cache;
    cache.SetCachedData(area, std::make_unique<Area>(1.0));
    cache.SetCachedData(area, nullptr);
    EXPECT_EQ(g_liveRecords, 0);
    EXPECT_EQ(cache.GetCachedData<Area>(area), nullptr);
}

TEST_F(CachedData, DestructionDeletesEveryRecord)
{
    {
        auto owner = std::make_unique<Shape>();
        owner->SetCachedData(area, std::make_unique<Area>(1.0));
        owner->SetCachedData(outline, std::make_unique<Area>(2.0));
        EXPECT_EQ(g_liveRecords, 2);
        std::unique_ptr<zunCachedDataContainer> asBase = std::move(owner);
    }
    EXPECT_EQ(g_liveRecords, 0);
}
