// zunBlendFunction: kinds, the closed-form evaluation against a numerical
// solution of the Bezier curve, frames and the array form.
#include <zunFoundation.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "MemTesting.h"

namespace
{
    /// The curve's height at the abscissa u for tension T, by bisection on the
    /// cubic around the middle, 2u - 1 = 3T tau - 4(3T - 2) tau^3, in long
    /// double. Bisecting on tau rather than t keeps the vertical tangent of
    /// T = 0 at u = 0.5 exact. The cubic rises over the whole bracket for
    /// T < 2/3, and over 0 <= u <= 1 for every T.
    double ReferenceHeight(double u, double T, long double bracket)
    {
        const long double p = 2.0L * u - 1.0L;
        const long double a = 3.0L * T - 2.0L;
        long double low = -bracket, high = bracket;
        for (int i = 0; i < 200; ++i)
        {
            const long double mid = (low + high) / 2;
            if (3.0L * T * mid - 4.0L * a * mid * mid * mid - p < 0)
                low = mid;
            else
                high = mid;
        }
        const long double tau = (low + high) / 2;
        return static_cast<double>(0.5L + 1.5L * tau - 2.0L * tau * tau * tau);
    }

    /// The largest distance of Eval from the reference over `steps` + 1 inputs.
    double WorstError(double T, double from, double to, int steps, long double bracket)
    {
        const zunBlendFunction blend(T);
        double worst = 0.0;
        for (int i = 0; i <= steps; ++i)
        {
            const double u = from + (to - from) * i / steps;
            const double error = std::fabs(blend.Eval(u) - ReferenceHeight(u, T, bracket));
            worst = std::isnan(error) || error > worst ? error : worst;
        }
        return worst;
    }
}

TEST(BlendFunction, DefaultTensionIsOneHalf)
{
    const zunBlendFunction blend;
    EXPECT_EQ(blend.tension, 0.5);
    EXPECT_EQ(blend.kind, zunBlendFunction::General);
    EXPECT_EQ(blend.xOffset, 0.0);
    EXPECT_EQ(blend.yOffset, 0.0);
    EXPECT_EQ(blend.xScale, 1.0);
    EXPECT_EQ(blend.yScale, 1.0);
    EXPECT_NEAR(blend.Eval(0.25), 0.1059, 0.00005);
    EXPECT_NEAR(blend.Eval(0.5), 0.5, 1e-15);
    EXPECT_NEAR(blend.Eval(0.75), 0.8941, 0.00005);
    EXPECT_NEAR(blend.Eval(0.0), 0.0, 1e-15);
    EXPECT_NEAR(blend.Eval(1.0), 1.0, 1e-15);
}

TEST(BlendFunction, ValueAtAQuarterPerTension)
{
    struct Case
    {
        double tension, value;
    };
    const Case cases[] = {{0.0, 0.0297}, {0.2, 0.0476}, {0.6, 0.1353}, {2.0 / 3.0, 0.15625},
                          {0.8, 0.1974}, {0.9, 0.2254}, {1.0, 0.25}};
    for (const Case & c : cases)
        EXPECT_NEAR(zunBlendFunction(c.tension).Eval(0.25), c.value, 0.00005) << c.tension;
    EXPECT_EQ(zunBlendFunction(2.0 / 3.0).Eval(0.25), 0.15625);
    EXPECT_EQ(zunBlendFunction(1.0).Eval(0.25), 0.25);
}

TEST(BlendFunction, KindsAreChosenByTension)
{
    EXPECT_EQ(zunBlendFunction(1.0).kind, zunBlendFunction::Line);
    EXPECT_EQ(zunBlendFunction(1.0 - 5e-8).kind, zunBlendFunction::Line);
    EXPECT_EQ(zunBlendFunction(2.0 / 3.0).kind, zunBlendFunction::SmoothStep);
    EXPECT_EQ(zunBlendFunction(0.66666666).kind, zunBlendFunction::SmoothStep);
    EXPECT_EQ(zunBlendFunction(0.66666666).Eval(0.25), 0.15625);
    EXPECT_EQ(zunBlendFunction(0.6666).kind, zunBlendFunction::General);
    EXPECT_EQ(zunBlendFunction(0.0).kind, zunBlendFunction::CubeRoot);
    EXPECT_EQ(zunBlendFunction(5e-8).kind, zunBlendFunction::CubeRoot);
    EXPECT_EQ(zunBlendFunction(1e-7).kind, zunBlendFunction::General);
    EXPECT_EQ(zunBlendFunction(0.3).kind, zunBlendFunction::General);
    static_assert(zunBlendFunction::Line == 0 && zunBlendFunction::SmoothStep == 1 && zunBlendFunction::CubeRoot == 2 &&
                  zunBlendFunction::General == 3);
}

TEST(BlendFunction, CubicConstantsAreKeptForTheGeneralKindOnly)
{
    const zunBlendFunction general(0.8);
    EXPECT_EQ(general.cubicA, 3.0 * 0.8 - 2.0);
    EXPECT_EQ(general.cubicB, 0.8 * 0.8 * 0.8 / general.cubicA);
    EXPECT_EQ(general.halfRoot3, std::sqrt(3.0) * 0.5);
    for (double tension : {0.0, 2.0 / 3.0, 1.0})
    {
        const zunBlendFunction special(tension);
        EXPECT_EQ(special.cubicA, 0.0);
        EXPECT_EQ(special.cubicB, 0.0);
        EXPECT_EQ(special.halfRoot3, 0.0);
    }
}

TEST(BlendFunction, TensionIsClamped)
{
    const zunBlendFunction high(1.5), low(-0.5);
    EXPECT_EQ(high.tension, 1.0);
    EXPECT_EQ(high.kind, zunBlendFunction::Line);
    EXPECT_EQ(low.tension, 0.0);
    EXPECT_EQ(low.kind, zunBlendFunction::CubeRoot);
    for (double u = -0.5; u <= 1.5; u += 0.125)
    {
        EXPECT_EQ(high.Eval(u), zunBlendFunction(1.0).Eval(u));
        EXPECT_EQ(low.Eval(u), zunBlendFunction(0.0).Eval(u));
    }
}

TEST(BlendFunction, SpecialKindsFollowTheirFormulas)
{
    const zunBlendFunction smooth(2.0 / 3.0), steep(0.0), line(1.0);
    for (double u = -1.0; u <= 2.0; u += 0.0625)
    {
        EXPECT_EQ(line.Eval(u), u);
        EXPECT_EQ(smooth.Eval(u), u * 3.0 * u - (u + u) * u * u);
        const double t = std::cbrt(2.0 * u - 1.0) * 0.5 + 0.5;
        EXPECT_EQ(steep.Eval(u), t * 3.0 * t - (t + t) * t * t);
    }
}

TEST(BlendFunction, ComplexBranchAtTheMiddle)
{
    // T = 0.9, u = 0.5: p = 0 and v = -b < 0, so the three-root branch runs.
    const zunBlendFunction blend(0.9);
    EXPECT_GT(blend.cubicB, 0.0);
    EXPECT_NEAR(blend.Eval(0.5), 0.5, 1e-15);
}

TEST(BlendFunction, AgreesWithTheNumericalSolution)
{
    // Both branches of the general kind (T < 2/3 real, T > 2/3 real at the
    // ends and complex in the middle), tensions close to the smooth step where
    // cubicA is small, and the three special kinds.
    std::vector<double> tensions = {0.0, 2.0 / 3.0, 1.0, 0.6666, 0.6667, 0.66666, 0.66667};
    for (int i = 1; i < 20; ++i)
        tensions.push_back(0.05 * i);
    for (double T : tensions)
        EXPECT_LE(WorstError(T, 0.0, 1.0, 2000, 0.5L), 1e-12) << "tension " << T;
}

TEST(BlendFunction, AgreesWithTheNumericalSolutionOutsideTheUnitRange)
{
    // For T below 2/3 the cubic rises everywhere, so the root is unique.
    for (double T : {0.0, 0.1, 0.25, 0.5, 0.6, 0.65})
        EXPECT_LE(WorstError(T, -1.0, 2.0, 3000, 3.0L), 1e-11) << "tension " << T;
}

TEST(BlendFunction, TheClosedFormLosesDigitsForTinyTensionsAboveTheMiddle)
{
    // For p = 2u - 1 > 0 the real branch subtracts r - p with r = sqrt(p^2 - b)
    // and b = T^3 / (3T - 2) tiny: the formula is kept as it stands, so its
    // accuracy falls off below a tension of about 0.02, and just above the
    // CubeRoot window it fails outright at u = 1 (r - p is 0, so w is 0).
    EXPECT_LE(WorstError(0.001, 0.0, 0.5, 1000, 0.5L), 1e-15);
    EXPECT_GT(WorstError(0.001, 0.5, 1.0, 1000, 0.5L), 1e-9);
    EXPECT_LE(WorstError(0.001, 0.5, 1.0, 1000, 0.5L), 1e-6);
    EXPECT_TRUE(std::isnan(zunBlendFunction(1e-7).Eval(1.0)));
    EXPECT_NEAR(zunBlendFunction(1e-7).Eval(0.0), 0.0, 1e-15);
}

TEST(BlendFunction, InputsOutsideTheUnitRangeAreNotClamped)
{
    EXPECT_NEAR(zunBlendFunction(0.5).Eval(-1.0), 0.7117, 0.00005);
    EXPECT_NEAR(zunBlendFunction(0.5).Eval(2.0), 0.2883, 0.00005);
    EXPECT_NEAR(zunBlendFunction(0.9).Eval(-1.0), -2.2130, 0.00005);
    EXPECT_NEAR(zunBlendFunction(0.9).Eval(2.0), 3.2130, 0.00005);
}

TEST(BlendFunction, ZeroXRangeBecomesOneAndZeroYScaleIsAConstant)
{
    const zunBlendFunction flat(0.0, 0.0, 0.5);
    EXPECT_EQ(flat.xScale, 1.0);
    EXPECT_EQ(flat.yScale, 0.0);
    for (double x = -2.0; x <= 2.0; x += 0.25)
        EXPECT_EQ(flat.Eval(x), 0.0);

    EXPECT_EQ(zunBlendFunction(5e-10, 2.0, 0.5).xScale, 1.0);
    EXPECT_EQ(zunBlendFunction(-2e-9, 2.0, 0.5).xScale, -2e-9);
    EXPECT_EQ(zunBlendFunction(3.0, 3.0 + 5e-10, 0.0, 1.0, 0.5).xScale, 1.0);
}

TEST(BlendFunction, FramesMapTheCurve)
{
    EXPECT_EQ(zunBlendFunction(10.0, 20.0, 100.0, 200.0, 1.0).Eval(15.0), 150.0);

    const zunBlendFunction framed(10.0, 20.0, 100.0, 200.0, 0.5);
    EXPECT_EQ(framed.xOffset, 10.0);
    EXPECT_EQ(framed.yOffset, 100.0);
    EXPECT_EQ(framed.xScale, 10.0);
    EXPECT_EQ(framed.yScale, 100.0);
    EXPECT_NEAR(framed.Eval(12.5), 100.0 + 100.0 * zunBlendFunction(0.5).Eval(0.25), 1e-12);

    const zunBlendFunction scaled(4.0, -2.0, 0.5);
    EXPECT_NEAR(scaled.Eval(1.0), -2.0 * zunBlendFunction(0.5).Eval(0.25), 1e-15);
    // A falling x range runs the curve backwards.
    EXPECT_NEAR(zunBlendFunction(1.0, 0.0, 0.0, 1.0, 0.5).Eval(0.75), zunBlendFunction(0.5).Eval(0.25), 1e-15);
}

TEST(BlendFunction, ANaNTensionGivesNaN)
{
    const zunBlendFunction blend(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(blend.kind, zunBlendFunction::General);
    EXPECT_TRUE(std::isnan(blend.Eval(0.25)));
}

TEST(BlendFunction, CopiesCarryEveryField)
{
    const zunBlendFunction original(1.0, 3.0, -1.0, 1.0, 0.8);
    zunBlendFunction copy;
    copy = original;
    EXPECT_EQ(copy.kind, original.kind);
    EXPECT_EQ(copy.tension, 0.8);
    EXPECT_EQ(copy.cubicB, original.cubicB);
    for (double x = 1.0; x <= 3.0; x += 0.25)
        EXPECT_EQ(copy.Eval(x), original.Eval(x));
}

TEST(BlendFunction, ArrayFormSizesTheResultAndEvaluatesEachInput)
{
    const zunBlendFunction blend(0.3);
    double inputs[] = {0.0, 0.1, 0.25, 0.5, 0.9, 1.0, 1.5};
    zunFastMesh<double> results;
    results.Add(42.0);
    blend.Eval(inputs, 7, results);
    ASSERT_EQ(results.Count(), 7u);
    for (unsigned int i = 0; i < 7; ++i)
        EXPECT_EQ(results[i], blend.Eval(inputs[i]));
    EXPECT_EQ(inputs[2], 0.25);

    // A shorter second run shrinks the result; no inputs empty it.
    blend.Eval(inputs, 2, results);
    EXPECT_EQ(results.Count(), 2u);
    blend.Eval(inputs, 0, results);
    EXPECT_EQ(results.Count(), 0u);
}

TEST(BlendFunction, ArrayFormOnAnExhaustedHeapWritesOnlyWhatTheArrayHolds)
{
    const zunBlendFunction blend(0.3);
    std::vector<double> inputs(1000, 0.25);
    zunFastMesh<double> results;
    results.Add(1.0);
    results.Add(2.0);
    zunMemTesting::FailAllocation(1, true);
    blend.Eval(inputs.data(), 1000, results);
    zunMemTesting::Reset();
    // The array could not grow: its two elements hold the first two results.
    ASSERT_EQ(results.Count(), 2u);
    EXPECT_EQ(results[0], blend.Eval(0.25));
    EXPECT_EQ(results[1], blend.Eval(0.25));
}
