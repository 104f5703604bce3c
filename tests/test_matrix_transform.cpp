// zunMatrix44 transforms of point arrays: the steps of every form, what each
// reads and writes, computation in double with one rounding at the store, and
// the composite forms. Results are compared bit for bit with a reference
// computed here point by point.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "zunMatrix44.h"

namespace
{
    using V4 = zunVector4T<double>;

    /// m[i] = i + 1.
    zunMatrix44 Counting()
    {
        zunMatrix44 m;
        for (int i = 0; i < 16; ++i)
            m.m[i] = i + 1.0;
        return m;
    }

    /// A placement with a perspective last row, so every element matters.
    zunMatrix44 Busy()
    {
        zunMatrix44 m;
        m.AddTranslation(V4(0.3, -1.7, 2.9))
            .AddRotation(V4(13.0, -47.0, 101.0), V4(0.0, 0.0, 0.0))
            .AddScaling(V4(1.1, 0.7, -2.3), V4(0.0, 0.0, 0.0));
        m.m[3] = 0.01, m.m[7] = -0.02, m.m[11] = 0.03, m.m[15] = 1.5;
        return m;
    }

    enum Formula
    {
        Point,
        PointW,
        Full,
        Direction
    };

    /// The reference: the formula of each kind, summed in order, in double.
    void Reference(const zunMatrix44 & k, Formula f, const double (&s)[4], double (&d)[4])
    {
        const double * e = k.m;
        const double x = s[0], y = s[1], z = s[2], w = s[3];
        if (f == Full)
        {
            for (int r = 0; r < 4; ++r)
                d[r] = x * e[r] + y * e[4 + r] + z * e[8 + r] + w * e[12 + r];
            return;
        }
        for (int r = 0; r < 4; ++r)
            d[r] = f == Direction ? x * e[r] + y * e[4 + r] + z * e[8 + r]
                                  : x * e[r] + y * e[4 + r] + z * e[8 + r] + e[12 + r];
    }

    template <typename T> std::vector<T> Values(std::size_t count, unsigned int seed)
    {
        std::mt19937 random(seed);
        std::uniform_real_distribution<double> value(-1000.0, 1000.0);
        std::vector<T> values(count);
        for (T & v : values)
            v = static_cast<T>(value(random));
        return values;
    }

    /// What a flat array must hold after a transform: per point, `written`
    /// elements from the reference rounded to T, everything else as before.
    template <typename T>
    std::vector<T> Expected(const zunMatrix44 & k, Formula f, const std::vector<T> & source, std::vector<T> target,
                            unsigned int count, unsigned int sourceStep, unsigned int targetStep, unsigned int written)
    {
        for (unsigned int i = 0; i < count; ++i)
        {
            double s[4] = {0.0, 0.0, 0.0, 1.0}, d[4];
            for (unsigned int c = 0; c < (f == Full ? 4u : 3u); ++c)
                s[c] = source[std::size_t(i) * sourceStep + c];
            Reference(k, f, s, d);
            for (unsigned int c = 0; c < written; ++c)
                target[std::size_t(i) * targetStep + c] = static_cast<T>(d[c]);
        }
        return target;
    }

    template <typename T> void ExpectSameBits(const std::vector<T> & actual, const std::vector<T> & expected)
    {
        ASSERT_EQ(actual.size(), expected.size());
        EXPECT_EQ(std::memcmp(actual.data(), expected.data(), actual.size() * sizeof(T)), 0);
        for (std::size_t i = 0; i < actual.size() && i < 64; ++i) // bit by bit: a NaN must be the same NaN
            // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): the representation is what is compared
            EXPECT_EQ(std::memcmp(&actual[i], &expected[i], sizeof(T)), 0)
                << "element " << i << ": " << actual[i] << " against " << expected[i];
    }

    std::vector<double> Flat(const std::vector<V4> & v)
    {
        std::vector<double> flat;
        for (const V4 & p : v)
            flat.insert(flat.end(), {p.x, p.y, p.z, p.w});
        return flat;
    }

    std::vector<V4> Vectors(unsigned int count, unsigned int seed)
    {
        const auto values = Values<double>(std::size_t(count) * 4, seed);
        std::vector<V4> v(count);
        for (unsigned int i = 0; i < count; ++i)
            v[i] = V4(values[4 * i], values[4 * i + 1], values[4 * i + 2], values[4 * i + 3]);
        return v;
    }

    // Counts that cover empty vector bodies, whole vectors and remainders.
    const unsigned int kCounts[] = {1, 2, 3, 5, 7, 8, 9, 16, 17, 31, 64, 67};
}

// --- Steps, reads and writes --------------------------------------------------------

TEST(MatrixTransform, FloatInPlaceStepsByAtLeastThree)
{
    for (unsigned int stride : {0u, 1u, 2u, 3u})
    {
        auto points = Values<float>(3 * 10, 1);
        const auto expected = Expected(Busy(), Point, points, points, 10, 3, 3, 3);
        Busy().Transform(points.data(), 10, stride);
        ExpectSameBits(points, expected);
    }
}

TEST(MatrixTransform, FloatInPlaceWithAWideStrideLeavesTheRestOfEachPoint)
{
    auto points = Values<float>(5 * 10, 2);
    const auto expected = Expected(Busy(), Point, points, points, 10, 5, 5, 3);
    Busy().Transform(points.data(), 10, 5);
    ExpectSameBits(points, expected);
}

TEST(MatrixTransform, FloatsAreComputedInDoubleAndRoundedOnce)
{
    // 2^24 + 1 + 1: in float the first sum rounds back to 2^24 and so does the
    // second; in double the sum is exact and rounds once to 2^24 + 2.
    zunMatrix44 m;
    m.m[4] = 1.0, m.m[8] = 1.0;
    float p[3] = {16777216.0f, 1.0f, 1.0f};
    m.Transform(p, 1, 3);
    EXPECT_EQ(p[0], 16777218.0f);
}

TEST(MatrixTransform, EveryInPlaceFormMatchesTheReference)
{
    const zunMatrix44 m = Busy();
    for (unsigned int count : kCounts)
        for (unsigned int stride : {3u, 4u, 6u})
        {
            auto f = Values<float>(std::size_t(count) * stride, count);
            auto fExpected = Expected(m, Point, f, f, count, stride, stride, 3);
            m.Transform(f.data(), count, stride);
            ExpectSameBits(f, fExpected);

            auto d = Values<double>(std::size_t(count) * stride, count + 1);
            auto dExpected = Expected(m, Point, d, d, count, stride, stride, 3);
            m.Transform(d.data(), count, stride);
            ExpectSameBits(d, dExpected);

            if (stride >= 4)
            {
                auto h = Values<float>(std::size_t(count) * stride, count + 2);
                auto hExpected = Expected(m, PointW, h, h, count, stride, stride, 4);
                m.TransformH(h.data(), count, stride);
                ExpectSameBits(h, hExpected);
            }
        }
}

TEST(MatrixTransform, EverySeparateFormMatchesTheReference)
{
    const zunMatrix44 m = Busy();
    for (unsigned int count : kCounts)
    {
        for (unsigned int stride : {3u, 4u, 5u})
        {
            const auto fs = Values<float>(std::size_t(count) * stride, count);
            auto ft = Values<float>(fs.size(), count + 7);
            const auto fExpected = Expected(m, Point, fs, ft, count, stride, stride, 3);
            m.Transform(fs.data(), ft.data(), count, stride);
            ExpectSameBits(ft, fExpected);

            const auto ds = Values<double>(std::size_t(count) * stride, count);
            auto dt = Values<double>(ds.size(), count + 7);
            const auto dExpected = Expected(m, Point, ds, dt, count, stride, stride, 3);
            m.Transform(ds.data(), dt.data(), count, stride);
            ExpectSameBits(dt, dExpected);
        }
        for (unsigned int in : {3u, 4u, 5u})
            for (unsigned int out : {3u, 4u, 6u})
            {
                const auto s = Values<double>(std::size_t(count) * std::max(in, 4u), count + in);
                auto t = Values<double>(std::size_t(count) * std::max(out, 4u), count + out);
                const auto e33 = Expected(m, Point, s, t, count, in, out, 3);
                m.Transform3to3(s.data(), t.data(), count, in, out);
                ExpectSameBits(t, e33);

                const unsigned int out4 = std::max(out, 4u), in4 = std::max(in, 4u);
                const auto e34 = Expected(m, PointW, s, t, count, in, out4, 4);
                m.Transform3to4(s.data(), t.data(), count, in, out4);
                ExpectSameBits(t, e34);

                const auto e44 = Expected(m, Full, s, t, count, in4, out4, 4);
                m.Transform4to4(s.data(), t.data(), count, in4, out4);
                ExpectSameBits(t, e44);

                const auto hs = Values<float>(s.size(), count + 3);
                auto ht = Values<float>(t.size(), count + 4);
                const auto eh = Expected(m, PointW, hs, ht, count, in, out4, 4);
                m.TransformH(hs.data(), ht.data(), count, in, out4);
                ExpectSameBits(ht, eh);
            }
        const auto ns = Values<float>(std::size_t(count) * 3, count);
        auto nt = Values<float>(ns.size(), count + 9);
        const auto en = Expected(m, Direction, ns, nt, count, 3, 3, 3);
        m.TransformNormals(ns.data(), nt.data(), count);
        ExpectSameBits(nt, en);
        auto nInPlace = ns;
        m.TransformNormals(nInPlace.data(), count);
        ExpectSameBits(nInPlace, en);
    }
}

TEST(MatrixTransform, SeparateFormsWithTheSourceAsTargetWorkInPlace)
{
    const zunMatrix44 m = Busy();
    auto f = Values<float>(4 * 9, 3);
    auto fInPlace = f;
    m.Transform(f.data(), f.data(), 9, 4);
    m.Transform(fInPlace.data(), 9, 4);
    ExpectSameBits(f, fInPlace);

    auto d = Values<double>(4 * 9, 4);
    const auto expected = Expected(m, Full, d, d, 9, 4, 4, 4);
    m.Transform4to4(d.data(), d.data(), 9, 4, 4);
    ExpectSameBits(d, expected);

    // Overlapping by one point: every point is read before it is written, in
    // order, so each result comes from the source as it stood then.
    auto shifted = Values<double>(3 * 10, 5);
    auto reference = shifted;
    for (unsigned int i = 0; i < 9; ++i)
    {
        double s[4] = {reference[3 * i], reference[3 * i + 1], reference[3 * i + 2], 1.0}, r[4];
        Reference(m, Point, s, r);
        for (int c = 0; c < 3; ++c)
            reference[3 * (i + 1) + c] = r[c];
    }
    m.Transform3to3(shifted.data(), shifted.data() + 3, 9, 3, 3);
    ExpectSameBits(shifted, reference);
}

TEST(MatrixTransform, FloatTransformHStepsByFourAndIgnoresTheSourceW)
{
    const zunMatrix44 m = Counting();
    float p[8] = {1, 1, 1, 5, 1, 1, 1, 9};
    m.TransformH(p, 2, 0);
    const float expected[8] = {28, 32, 36, 40, 28, 32, 36, 40};
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(p[i], expected[i]) << "element " << i;
}

TEST(MatrixTransform, TransformHAndTransform4to4OfTheCountingMatrix)
{
    const zunMatrix44 m = Counting();
    V4 h(1.0, 1.0, 1.0, 5.0);
    m.TransformH(&h, 1);
    EXPECT_EQ(h.x, 28.0);
    EXPECT_EQ(h.y, 32.0);
    EXPECT_EQ(h.z, 36.0);
    EXPECT_EQ(h.w, 40.0);

    const double source[4] = {1.0, 1.0, 1.0, 2.0};
    double target[4] = {};
    m.Transform4to4(source, target, 1, 0, 0);
    EXPECT_EQ(target[0], 41.0);
    EXPECT_EQ(target[1], 46.0);
    EXPECT_EQ(target[2], 51.0);
    EXPECT_EQ(target[3], 56.0);

    V4 separate;
    const V4 from(1.0, 1.0, 1.0, 5.0);
    m.TransformH(&from, &separate, 1);
    EXPECT_EQ(separate.x, 28.0);
    EXPECT_EQ(separate.w, 40.0);
}

TEST(MatrixTransform, Transform3to4WithZeroStridesStepsByThreeAndFour)
{
    const zunMatrix44 m = Counting();
    const double source[6] = {1, 1, 1, 2, 2, 2};
    double target[8];
    m.Transform3to4(source, target, 2, 0, 0);
    const double expected[8] = {28, 32, 36, 40, 43, 50, 57, 64};
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(target[i], expected[i]) << "element " << i;
}

TEST(MatrixTransform, Transform3to3StepsEachArrayByItsOwnStride)
{
    const zunMatrix44 m = Counting();
    const double source[10] = {1, 1, 1, 99, 99, 2, 2, 2, 99, 99};
    double target[6] = {};
    m.Transform3to3(source, target, 2, 5, 1);
    const double expected[6] = {28, 32, 36, 43, 50, 57};
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(target[i], expected[i]) << "element " << i;
}

// --- zunVector4T forms ----------------------------------------------------------------

TEST(MatrixTransform, Vector4PointsUnderAPerspectiveMatrixKeepTheirW)
{
    zunMatrix44 m;
    m.AddPerspective(-1.0, 1.0, -1.0, 1.0, 1.0, 10.0);
    V4 p(0.5, -0.25, -2.0, 3.0);
    m.Transform(&p, 1);
    EXPECT_EQ(p.x, 0.5 * m.m[0] + -0.25 * m.m[4] + -2.0 * m.m[8] + m.m[12]);
    EXPECT_EQ(p.z, 0.5 * m.m[2] + -0.25 * m.m[6] + -2.0 * m.m[10] + m.m[14]);
    EXPECT_EQ(p.w, 3.0) << "no division, and w stays";
}

TEST(MatrixTransform, EveryVector4FormMatchesTheReference)
{
    const zunMatrix44 m = Busy();
    for (unsigned int count : kCounts)
    {
        const auto source = Vectors(count, count);
        auto target = Vectors(count, count + 50);
        const auto flatSource = Flat(source);

        auto inPlace = source;
        m.Transform(inPlace.data(), count);
        ExpectSameBits(Flat(inPlace), Expected(m, Point, flatSource, flatSource, count, 4, 4, 3));

        m.Transform(source.data(), target.data(), count);
        ExpectSameBits(Flat(target), Expected(m, Point, flatSource, flatSource, count, 4, 4, 3)); // w copied

        auto h = source;
        m.TransformH(h.data(), count);
        ExpectSameBits(Flat(h), Expected(m, PointW, flatSource, flatSource, count, 4, 4, 4));
        m.TransformH(source.data(), target.data(), count);
        ExpectSameBits(Flat(target), Expected(m, PointW, flatSource, flatSource, count, 4, 4, 4));

        auto n = source;
        m.TransformNormals(n.data(), count);
        ExpectSameBits(Flat(n), Expected(m, Direction, flatSource, flatSource, count, 4, 4, 3));
        m.TransformNormals(source.data(), target.data(), count);
        ExpectSameBits(Flat(target), Expected(m, Direction, flatSource, flatSource, count, 4, 4, 3));
    }
}

// Points of four doubles are computed four lanes at a time: signed zeros and
// infinities (and the NaN an infinity times zero makes) come out as the
// formula computed element by element gives them.
TEST(MatrixTransform, FourDoublePointsKeepSignedZerosAndInfinities)
{
    const double inf = std::numeric_limits<double>::infinity();
    const double specials[] = {0.0, -0.0, inf, -inf, 1.0, -2.5};
    std::vector<V4> source;
    for (double x : specials)
        for (double y : specials)
            source.emplace_back(x, y, -0.0, y);
    const auto count = static_cast<unsigned int>(source.size());
    const auto flat = Flat(source);
    zunMatrix44 zeros; // the identity: its zeros make -0 + 0 and infinity * 0
    zeros.m[12] = -0.0;
    for (const zunMatrix44 & m : {zeros, Busy()})
    {
        std::vector<V4> target(count);
        m.Transform(source.data(), target.data(), count);
        ExpectSameBits(Flat(target), Expected(m, Point, flat, flat, count, 4, 4, 3));
        auto inPlace = source;
        m.TransformH(inPlace.data(), count);
        ExpectSameBits(Flat(inPlace), Expected(m, PointW, flat, flat, count, 4, 4, 4));
        m.TransformNormals(source.data(), target.data(), count);
        ExpectSameBits(Flat(target), Expected(m, Direction, flat, flat, count, 4, 4, 3));
        std::vector<double> full(flat.size());
        m.Transform4to4(flat.data(), full.data(), count, 4, 4);
        ExpectSameBits(full, Expected(m, Full, flat, full, count, 4, 4, 4));
    }
}

TEST(MatrixTransform, OverlappingVector4FormsReadTheSourceAgainBetweenStores)
{
    // Source and target must not overlap here; when they do, each component
    // is computed from the source as the earlier stores left it.
    const zunMatrix44 m = Counting();
    V4 p(1.0, 1.0, 1.0, 5.0);
    m.Transform(&p, &p, 1);
    const double x = 1 * 1 + 1 * 5 + 1 * 9 + 13.0;  // 28
    const double y = x * 2 + 1 * 6 + 1 * 10 + 14.0; // from the new x
    const double z = x * 3 + y * 7 + 1 * 11 + 15.0; // from the new x and y
    EXPECT_EQ(p.x, x);
    EXPECT_EQ(p.y, y);
    EXPECT_EQ(p.z, z);
    EXPECT_EQ(p.w, 5.0);

    float n[3] = {1.0f, 1.0f, 1.0f};
    m.TransformNormals(n, n, 1);
    EXPECT_EQ(n[0], 15.0f);
    EXPECT_EQ(n[1], 15.0f * 2 + 6 + 10);
    EXPECT_EQ(n[2], 15.0f * 3 + 46.0f * 7 + 11);
}

TEST(MatrixTransform, NormalsIgnoreTranslationAndScaleWithTheMatrix)
{
    zunMatrix44 moved;
    moved.AddTranslation(V4(5.0, 6.0, 7.0));
    V4 n(0.0, 0.6, 0.8, 1.0);
    moved.TransformNormals(&n, 1);
    EXPECT_EQ(n.x, 0.0);
    EXPECT_EQ(n.y, 0.6);
    EXPECT_EQ(n.z, 0.8);

    zunMatrix44 doubled;
    doubled.AddScaling(V4(2.0, 2.0, 2.0), V4(0.0, 0.0, 0.0));
    float f[3] = {0.0f, 0.6f, 0.8f};
    doubled.TransformNormals(f, 1);
    EXPECT_EQ(f[1], 1.2f);
    EXPECT_EQ(f[2], 1.6f);

    zunMatrix44 squashed;
    squashed.AddScaling(V4(1.0, 2.0, 1.0), V4(0.0, 0.0, 0.0));
    V4 diagonal(1.0, 1.0, 0.0);
    squashed.TransformNormals(&diagonal, 1);
    EXPECT_EQ(diagonal.y, 2.0) << "the linear block itself, not its inverse transpose";
}

TEST(MatrixTransform, AxesMoveTheOriginAndKeepUnitDirections)
{
    zunMatrix44 m;
    m.AddScaling(V4(2.0, 2.0, 2.0), V4(0.0, 0.0, 0.0));
    zunAxes axes{V4(0.0, 3.0, 4.0), V4(1.0, 0.0, 0.0), V4(1.0, 2.0, 3.0)};
    m.Transform(axes);
    EXPECT_EQ(axes.origin.x, 2.0);
    EXPECT_EQ(axes.origin.y, 4.0);
    EXPECT_EQ(axes.origin.z, 6.0);
    EXPECT_NEAR(axes.first.y, 0.6, 1e-15);
    EXPECT_NEAR(axes.first.z, 0.8, 1e-15);
    EXPECT_EQ(axes.second.x, 1.0);

    zunAxes flat{V4(0.0, 0.0, 0.0), V4(1e-20, 0.0, 0.0), V4(0.0, 0.0, 0.0)};
    zunMatrix44().Transform(flat);
    EXPECT_EQ(flat.first.x, 0.0) << "zero stays zero";
    EXPECT_EQ(flat.second.x, 1e-20) << "below the floor: not normalized";
}

TEST(MatrixTransform, CallOperatorTransformsAPointAndPassesW)
{
    const zunMatrix44 m = Counting();
    const V4 p = m(V4(1.0, 1.0, 1.0, 7.0));
    EXPECT_EQ(p.x, 28.0);
    EXPECT_EQ(p.y, 32.0);
    EXPECT_EQ(p.z, 36.0);
    EXPECT_EQ(p.w, 7.0);
}

TEST(MatrixTransform, NullArraysAndZeroCountsDoNothing)
{
    const zunMatrix44 m = Counting();
    float f[4] = {1, 2, 3, 4};
    double d[4] = {1, 2, 3, 4};
    V4 v(1, 2, 3, 4);
    m.Transform(static_cast<float *>(nullptr), 5, 3);
    m.Transform(static_cast<double *>(nullptr), 5, 3);
    m.Transform(static_cast<V4 *>(nullptr), 5);
    m.Transform(f, 0, 3);
    m.Transform(d, 0, 3);
    m.Transform(&v, 0);
    m.Transform(nullptr, f, 1, 3);
    m.Transform(f, nullptr, 1, 3);
    m.Transform(static_cast<const double *>(nullptr), d, 1, 3);
    m.Transform(static_cast<const V4 *>(nullptr), &v, 1);
    m.Transform(&v, static_cast<V4 *>(nullptr), 1);
    m.Transform3to3(nullptr, d, 1, 3, 3);
    m.Transform3to4(d, nullptr, 1, 3, 4);
    m.Transform4to4(d, d, 0, 4, 4);
    m.TransformH(static_cast<float *>(nullptr), 1, 4);
    m.TransformH(static_cast<V4 *>(nullptr), 1);
    m.TransformH(f, f, 0, 3, 4);
    m.TransformH(static_cast<const V4 *>(nullptr), &v, 1);
    m.TransformNormals(static_cast<float *>(nullptr), 1);
    m.TransformNormals(static_cast<V4 *>(nullptr), 1);
    m.TransformNormals(f, static_cast<float *>(nullptr), 1);
    m.TransformNormals(&v, &v, 0);
    EXPECT_EQ(f[0], 1.0f);
    EXPECT_EQ(f[3], 4.0f);
    EXPECT_EQ(d[0], 1.0);
    EXPECT_EQ(d[3], 4.0);
    EXPECT_EQ(v.x, 1.0);
    EXPECT_EQ(v.w, 4.0);
}
