// The interpolators, their easing, and the library's clock.
#include <zunFoundation.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <thread>

TEST(Interpolator, FloatDefaultsToZero)
{
    const zunInterpolator_Float interpolator;
    EXPECT_EQ(interpolator.start, 0.0);
    EXPECT_EQ(interpolator.end, 0.0);
    EXPECT_EQ(interpolator.Get(0.5, 3.0), 0.0);
}

TEST(Interpolator, FloatEasesAboveOne)
{
    const zunInterpolator_Float interpolator(0.0, 10.0);
    EXPECT_EQ(interpolator.Get(0.25, 2.0), 1.25);
    EXPECT_EQ(interpolator.Get(0.75, 2.0), 8.75);
    EXPECT_EQ(interpolator.Get(0.5, 2.0), 5.0);
    EXPECT_EQ(interpolator.Get(0.0, 2.0), 0.0);
    EXPECT_EQ(interpolator.Get(1.0, 2.0), 10.0);
}

TEST(Interpolator, EaseOfOneOrLessIsLinear)
{
    const zunInterpolator_Float interpolator(0.0, 10.0);
    for (double ease : {1.0, 0.5, 0.0, -3.0})
    {
        EXPECT_EQ(interpolator.Get(0.25, ease), 2.5) << ease;
        EXPECT_EQ(interpolator.Get(0.75, ease), 7.5) << ease;
    }
    // Linear is not clamped either.
    EXPECT_EQ(interpolator.Get(1.5, 1.0), 15.0);
}

TEST(Interpolator, EaseIsSymmetricAroundTheMiddle)
{
    const zunInterpolator_Float interpolator(0.0, 1.0);
    for (double t = 0.0; t <= 0.5; t += 0.0625)
        EXPECT_NEAR(interpolator.Get(t, 3.0) + interpolator.Get(1.0 - t, 3.0), 1.0, 1e-15) << t;
    EXPECT_EQ(interpolator.Get(0.25, 3.0), std::pow(0.5, 3.0) * 0.5);
}

TEST(Interpolator, TOutsideTheUnitRangeIsTheCallersToAvoid)
{
    // The power of a negative base gives NaN; nothing clamps it away.
    const zunInterpolator_Float interpolator(0.0, 10.0);
    EXPECT_TRUE(std::isnan(interpolator.Get(-0.5, 2.5)));
    EXPECT_TRUE(std::isnan(interpolator.Get(1.5, 2.5)));
}

TEST(Interpolator, Point3RunsEachComponentAndSetsWToOne)
{
    const zunInterpolator_Point3 fresh;
    EXPECT_EQ(fresh.start.w, 1.0);
    EXPECT_EQ(fresh.end.x, 0.0);
    EXPECT_EQ(fresh.end.w, 1.0);

    const zunInterpolator_Point3 interpolator(zunVector4T<double>(0.0, 10.0, -4.0, 7.0),
                                              zunVector4T<double>(10.0, 20.0, 4.0, 9.0));
    zunVector4T<double> result(9.0, 9.0, 9.0, 9.0);
    interpolator.Get(0.25, 2.0, result);
    EXPECT_EQ(result.x, 1.25);
    EXPECT_EQ(result.y, 11.25);
    EXPECT_EQ(result.z, -3.0);
    EXPECT_EQ(result.w, 1.0);
    interpolator.Get(0.75, 1.0, result);
    EXPECT_EQ(result.x, 7.5);
    EXPECT_EQ(result.y, 17.5);
    EXPECT_EQ(result.z, 2.0);
    EXPECT_EQ(result.w, 1.0);
}

TEST(Timer, NeverGoesBack)
{
    double previous = zunTimer();
    EXPECT_GT(previous, 0.0);
    for (int i = 0; i < 100000; ++i)
    {
        const double now = zunTimer();
        ASSERT_GE(now, previous);
        previous = now;
    }
}

TEST(Timer, CountsMilliseconds)
{
    // The same monotonic clock bracketed by the standard library's.
    const auto before = std::chrono::steady_clock::now();
    const double start = zunTimer();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    const double end = zunTimer();
    const auto after = std::chrono::steady_clock::now();
    const double bracket = std::chrono::duration<double, std::milli>(after - before).count();
    EXPECT_GE(end - start, 20.0);
    EXPECT_LE(end - start, bracket + 0.001);
}

TEST(Interpolator, TimeDefaultsAndZeroDuration)
{
    zunInterpolator_Time time;
    EXPECT_EQ(time.startTime, 0.0);
    EXPECT_EQ(time.duration, 1.0);
    // Measured from the clock's origin, a millisecond is long past.
    EXPECT_EQ(time.Get(), 1.0);

    time.Start(0.0);
    EXPECT_EQ(time.duration, 0.0);
    EXPECT_EQ(time.Get(), 1.0);
}

TEST(Interpolator, TimeGrowsToOneAndStays)
{
    zunInterpolator_Time time;
    const double before = zunTimer();
    time.Start(1e9); // about eleven days
    EXPECT_GE(time.startTime, before);
    EXPECT_LE(time.startTime, zunTimer());
    const double early = time.Get();
    EXPECT_GE(early, 0.0);
    EXPECT_LT(early, 1e-3);
    EXPECT_GE(time.Get(), early);

    time.Start(5.0);
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(time.Get(), 1.0);
    EXPECT_EQ(time.Get(), 1.0);
}

namespace
{
    ::testing::AssertionResult NearVector(const zunVector4T<double> & v, double x, double y, double z, double w,
                                          double tolerance)
    {
        if (std::fabs(v.x - x) <= tolerance && std::fabs(v.y - y) <= tolerance && std::fabs(v.z - z) <= tolerance &&
            v.w == w)
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << "(" << v.x << ", " << v.y << ", " << v.z << ", " << v.w << ")";
    }
}

TEST(InterpolatorRotation, Defaults)
{
    const zunInterpolator_Rotation rotation;
    EXPECT_TRUE(NearVector(rotation.start, 1, 0, 0, 1, 0.0));
    EXPECT_TRUE(NearVector(rotation.end, 1, 0, 0, 1, 0.0));
    EXPECT_TRUE(NearVector(rotation.axis, 0, 0, 1, 1, 0.0));
    EXPECT_EQ(rotation.GetAngle(), 0.0);
    zunVector4T<double> result(7, 7, 7, 7);
    rotation.Get(0.5, 1.0, result);
    EXPECT_TRUE(NearVector(result, 1, 0, 0, 1, 0.0));
}

TEST(InterpolatorRotation, AngleUsesTheLibrarysDegreeFactor)
{
    const zunInterpolator_Rotation rotation(zunVector4T<double>(2, 0, 0), zunVector4T<double>(0, 3, 0),
                                            zunVector4T<double>(1, 0, 0));
    EXPECT_TRUE(NearVector(rotation.start, 1, 0, 0, 1, 0.0));
    EXPECT_TRUE(NearVector(rotation.end, 0, 1, 0, 1, 0.0));
    EXPECT_TRUE(NearVector(rotation.axis, 0, 0, 1, 1, 0.0));
    EXPECT_EQ(rotation.GetAngle(), std::acos(0.0) * 57.29577951308);
    EXPECT_NE(rotation.GetAngle(), std::acos(0.0) * (180.0 / 3.14159265358979323846));
    EXPECT_NEAR(rotation.GetAngle(), 90.0, 1e-9);
}

TEST(InterpolatorRotation, GetTurnsTheStartByTheEasedAngle)
{
    const zunInterpolator_Rotation rotation(zunVector4T<double>(1, 0, 0, 5.0), zunVector4T<double>(0, 1, 0),
                                            zunVector4T<double>(1, 0, 0));
    zunVector4T<double> result;
    rotation.Get(0.5, 1.0, result);
    const double half = std::sqrt(0.5);
    EXPECT_TRUE(NearVector(result, half, half, 0, 5.0, 1e-9)); // the w of start goes along
    rotation.Get(1.0, 3.0, result);
    EXPECT_TRUE(NearVector(result, 0, 1, 0, 5.0, 1e-9));
    // Eased: at t 0.25 with ease 2 the turn is an eighth of the way, 11.25 degrees.
    rotation.Get(0.25, 2.0, result);
    const double eighth = rotation.GetAngle() * 0.125 * 3.14159265358979323846 / 180.0;
    EXPECT_TRUE(NearVector(result, std::cos(eighth), std::sin(eighth), 0, 5.0, 1e-12));
    const double length = std::sqrt(result.x * result.x + result.y * result.y + result.z * result.z);
    EXPECT_NEAR(length, 1.0, 1e-15);
}

TEST(InterpolatorRotation, OppositeDirectionsTakeTheFallbackAxisAndHalfATurn)
{
    const zunInterpolator_Rotation rotation(zunVector4T<double>(0, 0, 2), zunVector4T<double>(0, 0, -1),
                                            zunVector4T<double>(0, 4, 0, 3.0));
    EXPECT_EQ(rotation.GetAngle(), 180.0);
    EXPECT_TRUE(NearVector(rotation.axis, 0, 1, 0, 3.0, 0.0)); // fallback, w included, normalized
    zunVector4T<double> result;
    rotation.Get(0.5, 1.0, result);
    EXPECT_TRUE(NearVector(result, 1, 0, 0, 1.0, 1e-12)); // a quarter turn about Y carries Z to X
    rotation.Get(1.0, 1.0, result);
    EXPECT_TRUE(NearVector(result, 0, 0, -1, 1.0, 1e-12));
}

TEST(InterpolatorRotation, EqualDirectionsDoNotTurn)
{
    const zunVector4T<double> direction(0.6, 0.0, 0.8);
    const zunInterpolator_Rotation rotation(direction, direction, zunVector4T<double>(1, 0, 0));
    EXPECT_EQ(rotation.GetAngle(), 0.0);
    EXPECT_TRUE(NearVector(rotation.axis, 1, 0, 0, 1, 0.0));
    zunVector4T<double> result;
    for (double t : {0.0, 0.3, 1.0})
    {
        rotation.Get(t, 2.0, result);
        EXPECT_TRUE(NearVector(result, rotation.start.x, rotation.start.y, rotation.start.z, rotation.start.w, 0.0));
    }
}

TEST(InterpolatorRotation, TinyVectorsAreKeptAsTheyAre)
{
    // Lengths of 1e-19 or less are not normalized; their cross product is far
    // below 1e-7, so the pair counts as parallel.
    const zunInterpolator_Rotation rotation(zunVector4T<double>(1e-20, 0, 0), zunVector4T<double>(0, 1e-20, 0),
                                            zunVector4T<double>(0, 0, 0));
    EXPECT_EQ(rotation.start.x, 1e-20);
    EXPECT_EQ(rotation.end.y, 1e-20);
    EXPECT_EQ(rotation.GetAngle(), 0.0);
    EXPECT_TRUE(NearVector(rotation.axis, 0, 0, 0, 1, 0.0)); // a zero fallback stays zero
}

TEST(InterpolatorRotation, ResultMayBeTheObjectsOwnStart)
{
    zunInterpolator_Rotation rotation(zunVector4T<double>(1, 0, 0), zunVector4T<double>(0, 1, 0),
                                      zunVector4T<double>(1, 0, 0));
    rotation.Get(1.0, 1.0, rotation.start);
    EXPECT_TRUE(NearVector(rotation.start, 0, 1, 0, 1, 1e-9));
}
