// zunBBox: the cleared state and its bit patterns, the states, the Extend
// family, Intersect, Union, the value queries and boxes under a matrix.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

#include <zunFoundation.h>

namespace
{
    typedef zunVector4T<double> V4;

    std::uint64_t Bits(double value)
    {
        std::uint64_t bits;
        std::memcpy(&bits, &value, sizeof bits);
        return bits;
    }

    void ExpectV4(V4 const & v, double x, double y, double z, double w)
    {
        EXPECT_EQ(v.x, x);
        EXPECT_EQ(v.y, y);
        EXPECT_EQ(v.z, z);
        EXPECT_EQ(v.w, w);
    }

    void ExpectCleared(zunBBox const & box)
    {
        for (double v : {box.min.x, box.min.y, box.min.z})
            EXPECT_EQ(Bits(v), 0x47EFF933C78CDFADull);
        for (double v : {box.max.x, box.max.y, box.max.z})
            EXPECT_EQ(Bits(v), 0xC7EFF933C78CDFADull);
        EXPECT_EQ(box.min.w, 1.0);
        EXPECT_EQ(box.max.w, 1.0);
    }

    zunBBox Box(double x0, double y0, double z0, double x1, double y1, double z1)
    {
        zunBBox box;
        box.Set(V4(x0, y0, z0), V4(x1, y1, z1));
        return box;
    }

    void ExpectBox(zunBBox const & box, double x0, double y0, double z0, double x1, double y1, double z1)
    {
        ExpectV4(box.min, x0, y0, z0, 1.0);
        ExpectV4(box.max, x1, y1, z1, 1.0);
    }

    /// A matrix that moves points by (dx, dy, dz).
    zunMatrix44 Translation(double dx, double dy, double dz)
    {
        zunMatrix44 m;
        m.AddTranslation(V4(dx, dy, dz));
        return m;
    }
}

TEST(BBox, IsTwoCornersAndNothingElse)
{
    EXPECT_EQ(sizeof(zunBBox), 2 * sizeof(V4));
    EXPECT_EQ(offsetof(zunBBox, min), 0u);
    EXPECT_EQ(offsetof(zunBBox, max), sizeof(V4));
    EXPECT_FALSE(std::is_polymorphic<zunBBox>::value);
    EXPECT_EQ(sizeof(zunRay), 2 * sizeof(V4));
    EXPECT_EQ(offsetof(zunRay, direction), sizeof(V4));
}

TEST(BBox, ClearedCornersHaveTheirExactBits)
{
    EXPECT_EQ(Bits(3.4e+38), 0x47EFF933C78CDFADull);
    ExpectCleared(zunBBox());
    zunBBox box = Box(1, 2, 3, 4, 5, 6);
    box.Clear();
    ExpectCleared(box);
    box = Box(1, 2, 3, 4, 5, 6);
    box.New();
    ExpectCleared(box);
    EXPECT_NE(box.min.x, static_cast<double>(std::numeric_limits<float>::max()));
}

TEST(BBox, ADefaultBoxIsInvalidButNeitherFlatNorNull)
{
    zunBBox box;
    EXPECT_TRUE(box.IsInvalid());
    EXPECT_FALSE(box.IsFlat());
    EXPECT_FALSE(box.IsNull());
    EXPECT_EQ(box.DX(), 0.0);
    EXPECT_EQ(box.DY(), 0.0);
    EXPECT_EQ(box.DZ(), 0.0);
    EXPECT_EQ(box.GetDiagonal(), 0.0);
    ExpectV4(box.Center(), 0, 0, 0, 1);
    ExpectV4(box.Ext(), 0, 0, 0, 1);
}

TEST(BBox, OnePointMakesANullFlatValidBox)
{
    zunBBox box;
    box.Extend(V4(1, 2, 3));
    EXPECT_TRUE(box.IsNull());
    EXPECT_TRUE(box.IsFlat());
    EXPECT_FALSE(box.IsInvalid());
    ExpectBox(box, 1, 2, 3, 1, 2, 3);
}

TEST(BBox, InvalidOnlyBelowMinusOne)
{
    zunBBox box = Box(1, 1, 1, 0.5, 0.5, 0.5); // inverted by 0.5
    EXPECT_FALSE(box.IsInvalid());
    EXPECT_EQ(box.DX(), -0.5);
    EXPECT_EQ(box.GetDiagonal(), std::sqrt(0.75));
    EXPECT_FALSE(Box(1, 0, 0, 0, 0, 0).IsInvalid());   // inverted by exactly 1.0
    EXPECT_TRUE(Box(0, 0, 0, 1, 1, -1.5).IsInvalid()); // one axis is enough
    EXPECT_EQ(Box(0, 0, 0, 1, 1, -1.5).DX(), 0.0);
}

TEST(BBox, FlatAndNullCompareExactlyAndNaNIsNeverEqual)
{
    EXPECT_TRUE(Box(0, 0, 0, 1, 0, 1).IsFlat());
    EXPECT_FALSE(Box(0, 0, 0, 1, 0, 1).IsNull());
    EXPECT_FALSE(Box(0, 0, 0, 1, 1e-300, 1).IsFlat());
    double nan = std::numeric_limits<double>::quiet_NaN();
    zunBBox box = Box(nan, 0, 0, nan, 0, 0);
    EXPECT_FALSE(box.IsNull());
    EXPECT_TRUE(box.IsFlat()); // y and z are
    EXPECT_FALSE(box.IsInvalid());
}

TEST(BBox, SetStoresAsGivenWithW)
{
    zunBBox box;
    box.Set(V4(5, 5, 5, 7), V4(1, 1, 1, 9));
    ExpectV4(box.min, 5, 5, 5, 7);
    ExpectV4(box.max, 1, 1, 1, 9);
}

TEST(BBox, CopyAndMove)
{
    zunBBox a = Box(1, 2, 3, 4, 5, 6);
    zunBBox b(a), c;
    c = a;
    ExpectBox(b, 1, 2, 3, 4, 5, 6);
    ExpectBox(c, 1, 2, 3, 4, 5, 6);
    zunBBox d(std::move(b));
    ExpectBox(d, 1, 2, 3, 4, 5, 6);
}

// --- Extend ----------------------------------------------------------------------

TEST(BBoxExtend, EachAxisLowersThenRaisesAndLeavesW)
{
    zunBBox box;
    box.Extend(V4(1, 5, -1, 42));
    box.Extend(V4(3, 2, -4, 7));
    ExpectBox(box, 1, 2, -4, 3, 5, -1);
    box.Extend(zunVector3T<float>(0.5f, 10.0f, 0.0f));
    ExpectBox(box, 0.5, 2, -4, 3, 10, 0);
}

TEST(BBoxExtend, ANaNCoordinateChangesNothing)
{
    zunBBox box = Box(0, 0, 0, 1, 1, 1);
    double nan = std::numeric_limits<double>::quiet_NaN();
    box.Extend(V4(nan, 2, nan));
    ExpectBox(box, 0, 0, 0, 1, 2, 1);
    zunBBox cleared;
    cleared.Extend(V4(nan, nan, nan));
    ExpectCleared(cleared);
}

TEST(BBoxExtend, ArrayOfPointsWithAndWithoutAMatrix)
{
    V4 points[3] = {V4(1, 1, 1), V4(-1, 2, 0), V4(0, 0, 5)};
    zunBBox box;
    box.Extend(points, 3, nullptr);
    ExpectBox(box, -1, 0, 0, 1, 2, 5);

    zunMatrix44 move = Translation(10, 0, 0);
    zunBBox moved;
    moved.Extend(points, 3, &move);
    ExpectBox(moved, 9, 0, 0, 11, 2, 5);
    ExpectV4(points[0], 1, 1, 1, 1); // copies were transformed, not the points

    zunBBox none;
    none.Extend(points, 0, &move);
    ExpectCleared(none);
    none.Extend(static_cast<const V4 *>(nullptr), 5, nullptr); // address 0 is not read
    ExpectCleared(none);
}

TEST(BBoxExtend, AnArrayGivesTheBitsOfOnePointAtATime)
{
    // NaNs are passed over and, of equal ends, the first one met stays: a
    // zero of either sign keeps its sign.
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const V4 points[] = {V4(nan, 0.0, -0.0), V4(-0.0, -0.0, 0.0), V4(0.0, nan, 0.0),
                         V4(2, -0.0, nan),   V4(-0.0, 3, -0.0),   V4(nan, nan, nan)};
    const unsigned int count = sizeof(points) / sizeof(points[0]);
    zunBBox byArray;
    byArray.Extend(points, count, nullptr);
    zunBBox oneByOne;
    for (const V4 & point : points)
        oneByOne.Extend(point);
    const double ends[2][3] = {{byArray.min.x, byArray.min.y, byArray.min.z},
                               {byArray.max.x, byArray.max.y, byArray.max.z}};
    const double expected[2][3] = {{oneByOne.min.x, oneByOne.min.y, oneByOne.min.z},
                                   {oneByOne.max.x, oneByOne.max.y, oneByOne.max.z}};
    for (int end = 0; end < 2; ++end)
        for (int axis = 0; axis < 3; ++axis)
            EXPECT_EQ(Bits(ends[end][axis]), Bits(expected[end][axis])) << end << " " << axis;
    EXPECT_EQ(Bits(byArray.min.x), Bits(-0.0));
    EXPECT_EQ(Bits(byArray.max.y), Bits(3.0));

    float floats[count * 3];
    for (unsigned int i = 0; i < count; ++i)
    {
        floats[3 * i] = static_cast<float>(points[i].x);
        floats[3 * i + 1] = static_cast<float>(points[i].y);
        floats[3 * i + 2] = static_cast<float>(points[i].z);
    }
    zunBBox byFloats;
    byFloats.Extend(floats, count, 0);
    EXPECT_EQ(Bits(byFloats.min.x), Bits(-0.0));
    EXPECT_EQ(Bits(byFloats.min.z), Bits(-0.0));
    EXPECT_EQ(Bits(byFloats.max.z), Bits(-0.0)); // the first zero met stays
}

TEST(BBoxExtend, ArraysOfZerosOfBothSignsAndNaNsMatchOnePointAtATime)
{
    const double values[] = {0.0, -0.0, 1.0, -1.0, std::numeric_limits<double>::quiet_NaN()};
    std::uint32_t seed = 12345;
    for (int round = 0; round < 200; ++round)
    {
        const unsigned int count = 1 + round % 9;
        std::vector<V4> points(count);
        std::vector<float> floats;
        for (V4 & point : points)
        {
            double xyz[3];
            for (double & v : xyz)
            {
                seed = seed * 1664525u + 1013904223u;
                v = values[(seed >> 16) % (round % 2 == 0 ? 2 : 5)];
                floats.push_back(static_cast<float>(v));
            }
            point = V4(xyz[0], xyz[1], xyz[2]);
        }
        zunBBox oneByOne, byArray, byFloats;
        for (const V4 & point : points)
            oneByOne.Extend(point);
        byArray.Extend(points.data(), count, nullptr);
        byFloats.Extend(floats.data(), count, 0);
        for (const zunBBox * box : {&byArray, &byFloats})
        {
            EXPECT_EQ(Bits(box->min.x), Bits(oneByOne.min.x)) << round;
            EXPECT_EQ(Bits(box->min.y), Bits(oneByOne.min.y)) << round;
            EXPECT_EQ(Bits(box->min.z), Bits(oneByOne.min.z)) << round;
            EXPECT_EQ(Bits(box->max.x), Bits(oneByOne.max.x)) << round;
            EXPECT_EQ(Bits(box->max.y), Bits(oneByOne.max.y)) << round;
            EXPECT_EQ(Bits(box->max.z), Bits(oneByOne.max.z)) << round;
        }
    }
}

TEST(BBoxExtend, PointsReadFromTheBoxItselfSeeEachChange)
{
    // The first point, the cleared min, raises max to it; the second point is
    // that max as now changed, so min is not lowered.
    zunBBox box;
    box.Extend(&box.min, 2, nullptr);
    ExpectBox(box, 3.4e+38, 3.4e+38, 3.4e+38, 3.4e+38, 3.4e+38, 3.4e+38);
}

TEST(BBoxExtend, ManyTransformedPointsMatchOneByOne)
{
    // More points than one transform batch holds.
    zunMatrix44 m;
    m.m[0] = 0.5;
    m.m[5] = -2.0;
    m.m[12] = 3.0;
    std::vector<V4> points;
    points.reserve(1000);
    for (int i = 0; i < 1000; ++i)
        points.emplace_back(std::sin(i * 0.7) * i, std::cos(i * 1.3), i % 17);
    zunBBox all, single;
    all.Extend(points.data(), static_cast<unsigned int>(points.size()), &m);
    for (auto point : points)
    {
        m.Transform(&point, 1);
        single.Extend(point);
    }
    ExpectBox(all, single.min.x, single.min.y, single.min.z, single.max.x, single.max.y, single.max.z);
}

TEST(BBoxExtend, MeshForm)
{
    zunFastMesh<V4> mesh;
    mesh.Add(V4(1, 2, 3));
    mesh.Add(V4(-1, 0, 4));
    zunBBox box;
    box.Extend(mesh, nullptr);
    ExpectBox(box, -1, 0, 3, 1, 2, 4);
    zunMatrix44 move = Translation(0, 0, -3);
    box.Clear();
    box.Extend(mesh, &move);
    ExpectBox(box, -1, 0, 0, 1, 2, 1);
    zunFastMesh<V4> empty;
    box.Clear();
    box.Extend(empty, &move);
    ExpectCleared(box);
}

TEST(BBoxExtend, FloatPointerStepsByStride)
{
    float points[9] = {0, 1, 2, 3, 4, 5, 6, 7, 8};
    zunBBox box;
    box.Extend(points, 3, 0); // stride 0 means 3: (0,1,2) (3,4,5) (6,7,8)
    ExpectBox(box, 0, 1, 2, 6, 7, 8);
    box.Clear();
    box.Extend(points, 2, 3);
    ExpectBox(box, 0, 1, 2, 3, 4, 5);
    box.Clear();
    box.Extend(points, 4, 2); // overlapping points (0,1,2) (2,3,4) (4,5,6) (6,7,8) are accepted
    ExpectBox(box, 0, 1, 2, 6, 7, 8);
    box.Clear();
    box.Extend(points, 3, 1); // (0,1,2) (1,2,3) (2,3,4)
    ExpectBox(box, 0, 1, 2, 2, 3, 4);
    box.Clear();
    box.Extend(points, 2, 4); // a stride above 3 skips: (0,1,2) (4,5,6)
    ExpectBox(box, 0, 1, 2, 4, 5, 6);
    box.Clear();
    box.Extend(static_cast<const float *>(nullptr), 3, 0);
    ExpectCleared(box);
}

TEST(BBoxExtend, DoublePointerAddsTheFirstPointCountTimes)
{
    double points[18] = {1, 2, 3, 10, 20, 30, -5, -5, -5, 4, 4, 4, 9, 9, 9, 0, 0, 0};
    for (unsigned int stride : {0u, 3u, 4u, 100u})
    {
        zunBBox box;
        box.Extend(points, 6, stride);
        EXPECT_TRUE(box.IsNull());
        ExpectBox(box, 1, 2, 3, 1, 2, 3);
    }
    zunBBox box;
    box.Extend(points, 0, 3);
    ExpectCleared(box);
    box.Extend(static_cast<const double *>(nullptr), 6, 3);
    ExpectCleared(box);
}

// --- Set from a mesh ------------------------------------------------------------------

TEST(BBoxSet, FromAMeshForgetsTheOldContent)
{
    zunFastMesh<V4> mesh;
    mesh.Add(V4(1, 1, 1, 5));
    mesh.Add(V4(2, 0, 3, 6));
    zunBBox box = Box(-100, -100, -100, 100, 100, 100);
    box.Set(mesh, nullptr);
    ExpectV4(box.min, 1, 0, 1, 5); // w of the first entry
    ExpectV4(box.max, 2, 1, 3, 5);
}

TEST(BBoxSet, FromAMeshWithAMatrix)
{
    zunFastMesh<V4> mesh;
    mesh.Add(V4(1, 1, 1));
    mesh.Add(V4(2, 0, 3));
    zunMatrix44 move = Translation(1, 1, 1);
    zunBBox box;
    box.Set(mesh, &move);
    ExpectBox(box, 2, 1, 2, 3, 2, 4);
    ExpectV4(mesh[0], 1, 1, 1, 1);
}

TEST(BBoxSet, AMeshWithoutStorageChangesNothing)
{
    zunFastMesh<V4> mesh;
    ASSERT_EQ(mesh.Data(), nullptr);
    zunBBox box = Box(1, 2, 3, 4, 5, 6);
    box.Set(mesh, nullptr);
    ExpectBox(box, 1, 2, 3, 4, 5, 6);
}

// --- Inflate, Offset ------------------------------------------------------------------

TEST(BBox, InflateAndOffsetSetWAndSkipInvalidBoxes)
{
    zunBBox box;
    box.Set(V4(0, 0, 0, 3), V4(1, 1, 1, 4));
    box.Inflate(V4(1, 2, 3, 99));
    ExpectBox(box, -1, -2, -3, 2, 3, 4);
    box.Offset(V4(1, 1, 1, 99));
    ExpectBox(box, 0, -1, -2, 3, 4, 5);

    zunBBox cleared;
    cleared.Inflate(V4(1, 1, 1));
    ExpectCleared(cleared);
    cleared.Offset(V4(1, 1, 1));
    ExpectCleared(cleared);
}

// --- Intersect -------------------------------------------------------------------------

TEST(BBoxIntersect, Overlapping)
{
    zunBBox box = Box(0, 0, 0, 2, 2, 2);
    EXPECT_TRUE(box.Intersect(Box(1, 1, 1, 3, 3, 3)));
    ExpectBox(box, 1, 1, 1, 2, 2, 2);
}

TEST(BBoxIntersect, DisjointGivesTheZeroBox)
{
    zunBBox box = Box(0, 0, 0, 2, 2, 2);
    EXPECT_FALSE(box.Intersect(Box(3, 3, 3, 4, 4, 4)));
    ExpectBox(box, 0, 0, 0, 0, 0, 0); // a null box at the origin, not a cleared one
    EXPECT_TRUE(box.IsNull());
    EXPECT_FALSE(box.IsInvalid());
}

TEST(BBoxIntersect, TouchingInACornerKeepsThePointAndSaysFalse)
{
    zunBBox box = Box(0, 0, 0, 2, 2, 2);
    EXPECT_FALSE(box.Intersect(Box(2, 2, 2, 4, 4, 4)));
    ExpectBox(box, 2, 2, 2, 2, 2, 2);
}

TEST(BBoxIntersect, TouchingInAFaceGivesAFlatBoxAndTrue)
{
    zunBBox box = Box(0, 0, 0, 2, 2, 2);
    EXPECT_TRUE(box.Intersect(Box(2, 0, 0, 4, 4, 4)));
    ExpectBox(box, 2, 0, 0, 2, 2, 2);
    EXPECT_TRUE(box.IsFlat());
}

TEST(BBoxIntersect, WithAnInvalidOther)
{
    zunBBox box = Box(0, 0, 0, 2, 2, 2);
    EXPECT_TRUE(box.Intersect(zunBBox()));
    ExpectBox(box, 0, 0, 0, 2, 2, 2);
    zunBBox point = Box(1, 1, 1, 1, 1, 1);
    EXPECT_FALSE(point.Intersect(zunBBox()));
    ExpectBox(point, 1, 1, 1, 1, 1, 1);
}

TEST(BBoxIntersect, AnInvalidBoxStaysAndSaysFalse)
{
    zunBBox cleared;
    EXPECT_FALSE(cleared.Intersect(Box(0, 0, 0, 1, 1, 1)));
    ExpectCleared(cleared);
}

TEST(BBoxIntersect, SetsWToOne)
{
    zunBBox box;
    box.Set(V4(0, 0, 0, 5), V4(2, 2, 2, 5));
    EXPECT_TRUE(box.Intersect(Box(1, 1, 1, 3, 3, 3)));
    EXPECT_EQ(box.min.w, 1.0);
    EXPECT_EQ(box.max.w, 1.0);
}

// --- Union ---------------------------------------------------------------------------------

TEST(BBoxUnion, WithAClearedBoxKeepsTheBoxAndSetsW)
{
    zunBBox box;
    box.Set(V4(0, 0, 0, 3), V4(1, 1, 1, 4));
    box.Union(zunBBox());
    ExpectBox(box, 0, 0, 0, 1, 1, 1);
    zunBBox cleared;
    cleared.Union(Box(0, 0, 0, 1, 1, 1));
    ExpectBox(cleared, 0, 0, 0, 1, 1, 1);
}

TEST(BBoxUnion, TakesTheOuterCorners)
{
    zunBBox box = Box(0, 5, 0, 1, 6, 1);
    box.Union(Box(-1, 0, 0.5, 0.5, 1, 3));
    ExpectBox(box, -1, 0, 0, 1, 6, 3);
}

// --- queries -----------------------------------------------------------------------------

TEST(BBox, ContainsIsStrict)
{
    zunBBox box = Box(0, 0, 0, 2, 2, 2);
    EXPECT_TRUE(box.Contains(V4(1, 1, 1)));
    EXPECT_FALSE(box.Contains(V4(2, 1, 1))); // on the surface
    EXPECT_FALSE(box.Contains(V4(0, 0, 0)));
    EXPECT_FALSE(box.Contains(box));
    EXPECT_TRUE(box.Contains(Box(0.5, 0.5, 0.5, 1.5, 1.5, 1.5)));
    EXPECT_FALSE(box.Contains(Box(0, 0.5, 0.5, 1.5, 1.5, 1.5)));
}

TEST(BBox, CenterExtAndDiagonal)
{
    zunBBox box;
    box.Set(V4(0, 2, 4, 9), V4(2, 6, 10, 9));
    ExpectV4(box.Center(), 1, 4, 7, 1);
    ExpectV4(box.Ext(), 2, 4, 6, 1);
    EXPECT_EQ(box.DX(), 2.0);
    EXPECT_EQ(box.DY(), 4.0);
    EXPECT_EQ(box.DZ(), 6.0);
    EXPECT_EQ(box.GetDiagonal(), std::sqrt(56.0));
}

TEST(BBox, GetBoxWritesTheEightCornersInOrder)
{
    zunBBox box = Box(0, 1, 2, 10, 11, 12);
    zunVector3T<double> corners[8];
    box.GetBox(corners);
    const double expected[8][3] = {{0, 1, 2},  {10, 1, 2},  {0, 11, 2},  {10, 11, 2},
                                   {0, 1, 12}, {10, 1, 12}, {0, 11, 12}, {10, 11, 12}};
    for (int i = 0; i < 8; ++i)
    {
        EXPECT_EQ(corners[i].x, expected[i][0]) << i;
        EXPECT_EQ(corners[i].y, expected[i][1]) << i;
        EXPECT_EQ(corners[i].z, expected[i][2]) << i;
    }
    zunVector3T<float> narrow[8];
    Box(0.1, 0, 0, 1, 1, 1).GetBox(narrow);
    EXPECT_EQ(narrow[0].x, 0.1f);
    EXPECT_EQ(narrow[7].z, 1.0f);
    box.GetBox(static_cast<zunVector3T<double> *>(nullptr));
    box.GetBox(static_cast<zunVector3T<float> *>(nullptr));
}

TEST(BBox, GetBoxOfAClearedBoxDeliversItsConstants)
{
    zunVector3T<double> corners[8];
    zunBBox().GetBox(corners);
    EXPECT_EQ(corners[0].x, 3.4e+38);
    EXPECT_EQ(corners[7].x, -3.4e+38);
    zunVector3T<float> narrow[8];
    zunBBox().GetBox(narrow);
    EXPECT_EQ(narrow[0].x, static_cast<float>(3.4e+38));
}

// --- boxes under a matrix ---------------------------------------------------------------------

TEST(BBoxTransform, TranslationMovesTheBox)
{
    zunBBox box = Box(0, 0, 0, 1, 2, 3);
    Translation(1, 2, 3).Transform(box);
    ExpectBox(box, 1, 2, 3, 2, 4, 6);
}

TEST(BBoxTransform, RotationGrowsTheBox)
{
    zunMatrix44 turn; // 45 degrees about Z
    double c = std::sqrt(0.5);
    turn.m[0] = c;
    turn.m[1] = c;
    turn.m[4] = -c;
    turn.m[5] = c;
    zunBBox source = Box(-1, -1, 0, 1, 1, 1), target;
    turn.Transform(source, &target);
    EXPECT_NEAR(target.max.x, std::sqrt(2.0), 1e-15);
    EXPECT_NEAR(target.min.y, -std::sqrt(2.0), 1e-15);
    EXPECT_EQ(target.min.z, 0.0);
    EXPECT_EQ(target.max.z, 1.0);
    ExpectBox(source, -1, -1, 0, 1, 1, 1);
}

TEST(BBoxTransform, AClearedBoxStaysClearedAndATargetKeepsWhatItHeld)
{
    zunMatrix44 move = Translation(5, 5, 5);
    zunBBox cleared;
    move.Transform(cleared);
    ExpectCleared(cleared);
    zunBBox target = Box(1, 2, 3, 4, 5, 6);
    move.Transform(zunBBox(), &target);
    ExpectBox(target, 1, 2, 3, 4, 5, 6);
    move.Transform(Box(0, 0, 0, 1, 1, 1), nullptr); // no target, nothing to write
}

TEST(BBoxTransform, ABoxInvertedByUpToOneIsTransformed)
{
    zunBBox box = Box(1, 1, 1, 0.5, 0.5, 0.5);
    Translation(1, 0, 0).Transform(box);
    ExpectBox(box, 1.5, 0.5, 0.5, 2, 1, 1); // rebuilt from its corners, so ordered
}

// --- extent along a ray -----------------------------------------------------------------------

TEST(BBoxExtent, ParametersOfTheCornersAlongTheRay)
{
    zunBBox box = Box(1, -1, -1, 3, 1, 1);
    double low = 0, high = 0;
    box.GetExtentAlongRay(zunRay(V4(0, 0, 0), V4(2, 0, 0)), low, high);
    EXPECT_EQ(low, 0.5); // in units of the direction
    EXPECT_EQ(high, 1.5);
    box.GetExtentAlongRay(zunRay(V4(0, 0, 0), V4(-1, 0, 0)), low, high);
    EXPECT_EQ(low, -3.0);
    EXPECT_EQ(high, -1.0);
}

TEST(BBoxExtent, AClearedBoxLeavesLowAndHighAlone)
{
    double low = 7, high = 8;
    zunBBox().GetExtentAlongRay(zunRay(V4(0, 0, 0), V4(1, 0, 0)), low, high);
    EXPECT_EQ(low, 7.0);
    EXPECT_EQ(high, 8.0);
}

TEST(BBoxExtent, AZeroDirectionGivesZero)
{
    double low = 7, high = 8;
    Box(1, 1, 1, 2, 2, 2).GetExtentAlongRay(zunRay(V4(0, 0, 0), V4(1e-13, 0, 0)), low, high);
    EXPECT_EQ(low, 0.0);
    EXPECT_EQ(high, 0.0);
}

TEST(Ray, FreshRayHoldsFreshVectors)
{
    zunRay ray;
    ExpectV4(ray.origin, 0, 0, 0, 1);
    ExpectV4(ray.direction, 0, 0, 0, 1);
    zunRay given(V4(1, 2, 3), V4(4, 5, 6));
    ExpectV4(given.direction, 4, 5, 6, 1);
}
