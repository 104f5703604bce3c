// zunQuaternion: the constants, every operator including the two that run
// against their symbols, the free functions, the elementary functions with
// their round trips, the bridge to Euler angles and matrices, and the tests.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "zunQuaternion.h"

namespace
{
    using Q = zunQuaternion;
    const double kInf = std::numeric_limits<double>::infinity();
    const double kNaN = std::numeric_limits<double>::quiet_NaN();

    void ExpectEqual(const Q & actual, double r, double i, double j, double k)
    {
        EXPECT_EQ(actual.r(), r);
        EXPECT_EQ(actual.i(), i);
        EXPECT_EQ(actual.j(), j);
        EXPECT_EQ(actual.k(), k);
    }

    void ExpectNear(const Q & actual, const Q & expected, double tolerance)
    {
        EXPECT_NEAR(actual.r(), expected.r(), tolerance);
        EXPECT_NEAR(actual.i(), expected.i(), tolerance);
        EXPECT_NEAR(actual.j(), expected.j(), tolerance);
        EXPECT_NEAR(actual.k(), expected.k(), tolerance);
    }

    const Q a(1.0, 2.0, 3.0, 4.0);
    const Q b(5.0, 6.0, 7.0, 8.0);
}

// --- Construction and constants ----------------------------------------------------

TEST(Quaternion, DefaultIsTheIdentityConstant)
{
    EXPECT_TRUE(Q() == Q::Identity);
    ExpectEqual(Q(), 1.0, 0.0, 0.0, 0.0);
    ExpectEqual(Q::Zero, 0.0, 0.0, 0.0, 0.0);
    ExpectEqual(Q::I, 0.0, 1.0, 0.0, 0.0);
    ExpectEqual(Q::J, 0.0, 0.0, 1.0, 0.0);
    ExpectEqual(Q::K, 0.0, 0.0, 0.0, 1.0);
    EXPECT_EQ(sizeof(Q), 32u) << "four doubles, r first";
}

TEST(Quaternion, AccessorsReadAndWriteTheComponents)
{
    Q q;
    q.Set(1.5, 2.5, 3.5, 4.5);
    ExpectEqual(q, 1.5, 2.5, 3.5, 4.5);
    q.r(-1.0);
    q.i(-2.0);
    q.j(-3.0);
    q.k(-4.0);
    ExpectEqual(q, -1.0, -2.0, -3.0, -4.0);
    EXPECT_EQ(q.Scalar(), -1.0);
    const zunVector3T<double> unreal = q.GetUnreal();
    EXPECT_EQ(unreal.x, -2.0);
    EXPECT_EQ(unreal.y, -3.0);
    EXPECT_EQ(unreal.z, -4.0);
}

TEST(Quaternion, Norms)
{
    EXPECT_EQ(a.Norm2(), 30.0);
    EXPECT_EQ(a.Norm(), std::sqrt(30.0));
    EXPECT_EQ(a.UnrealNorm2(), 29.0);
    EXPECT_EQ(a.UnrealNorm(), std::sqrt(29.0));
}

// --- Operators -------------------------------------------------------------------------

TEST(Quaternion, ComparisonIsExactByComponent)
{
    EXPECT_TRUE(Q(0.0, 0.0, 0.0, 0.0) == Q(-0.0, 0.0, 0.0, 0.0)) << "0.0 equals -0.0";
    EXPECT_FALSE(Q(kNaN, 0.0, 0.0, 0.0) == Q(kNaN, 0.0, 0.0, 0.0)) << "a NaN equals nothing";
    EXPECT_TRUE(Q(kNaN, 0.0, 0.0, 0.0) != Q(kNaN, 0.0, 0.0, 0.0));
    EXPECT_TRUE(a != b);
    EXPECT_FALSE(a == Q(1.0, 2.0, 3.0, 4.0 + 1e-15));
}

TEST(Quaternion, SumsAndDifferences)
{
    ExpectEqual(a + b, 6.0, 8.0, 10.0, 12.0);
    ExpectEqual(a - b, -4.0, -4.0, -4.0, -4.0);
    Q q = a;
    q += b;
    ExpectEqual(q, 6.0, 8.0, 10.0, 12.0);
    q -= b;
    EXPECT_TRUE(q == a);
}

TEST(Quaternion, ADoubleAddsToTheRealPartOnly)
{
    ExpectEqual(a + 10.0, 11.0, 2.0, 3.0, 4.0);
    ExpectEqual(a - 10.0, -9.0, 2.0, 3.0, 4.0);
    ExpectEqual(10.0 + a, 11.0, 2.0, 3.0, 4.0);
    Q q = a;
    q += 1.0;
    ExpectEqual(q, 2.0, 2.0, 3.0, 4.0);
    q -= 3.0;
    ExpectEqual(q, -1.0, 2.0, 3.0, 4.0);
}

TEST(Quaternion, DoubleMinusQuaternionIsQuaternionMinusDouble)
{
    ExpectEqual(10.0 - b, -5.0, 6.0, 7.0, 8.0);
    EXPECT_TRUE(10.0 - b == b - 10.0);
}

TEST(Quaternion, ScalingByADouble)
{
    ExpectEqual(a * 2.0, 2.0, 4.0, 6.0, 8.0);
    ExpectEqual(2.0 * a, 2.0, 4.0, 6.0, 8.0);
    Q q = a;
    q *= -1.0;
    ExpectEqual(q, -1.0, -2.0, -3.0, -4.0);
    // Division multiplies by the reciprocal.
    ExpectEqual(a / 3.0, 1.0 * (1.0 / 3.0), 2.0 * (1.0 / 3.0), 3.0 * (1.0 / 3.0), 4.0 * (1.0 / 3.0));
    q = a;
    q /= 3.0;
    EXPECT_TRUE(q == a / 3.0);
}

TEST(Quaternion, DoubleOverQuaternionIsQuaternionOverDouble)
{
    const Q q = 10.0 / b;
    ExpectEqual(q, 5.0 * 0.1, 6.0 * 0.1, 7.0 * 0.1, 8.0 * 0.1);
    ExpectNear(q, Q(0.5, 0.6, 0.7, 0.8), 1e-15);
    EXPECT_TRUE(q == b / 10.0);
}

TEST(Quaternion, UnaryOperators)
{
    EXPECT_TRUE(+a == a);
    ExpectEqual(-a, -1.0, -2.0, -3.0, -4.0);
}

TEST(Quaternion, UnitProductsFollowHamilton)
{
    EXPECT_TRUE(Q::I * Q::J == Q::K);
    EXPECT_TRUE(Q::J * Q::K == Q::I);
    EXPECT_TRUE(Q::K * Q::I == Q::J);
    EXPECT_TRUE(Q::J * Q::I == -Q::K);
    EXPECT_TRUE(Q::K * Q::J == -Q::I);
    EXPECT_TRUE(Q::I * Q::K == -Q::J);
    EXPECT_TRUE(Q::I * Q::I == Q(-1.0, 0.0, 0.0, 0.0));
    EXPECT_TRUE(Q::J * Q::J == Q(-1.0, 0.0, 0.0, 0.0));
    EXPECT_TRUE(Q::K * Q::K == Q(-1.0, 0.0, 0.0, 0.0));
    EXPECT_TRUE(Q::I * Q::J * Q::K == Q(-1.0, 0.0, 0.0, 0.0));
}

TEST(Quaternion, ProductOfTwoGeneralQuaternions)
{
    ExpectEqual(a * b, -60.0, 12.0, 30.0, 24.0);
    Q q = a;
    q *= b;
    EXPECT_TRUE(q == a * b);
    ExpectNear((a * b) * Q(0.5, -1.0, 2.0, 0.25), a * (b * Q(0.5, -1.0, 2.0, 0.25)), 1e-12);
}

TEST(Quaternion, ProductIsTheHamiltonFormulaToTheBit)
{
    std::mt19937 random(19);
    std::uniform_real_distribution<double> value(-10.0, 10.0);
    for (int n = 0; n < 1000; ++n)
    {
        const Q x(value(random), value(random), value(random), value(random));
        const Q y(value(random), value(random), value(random), value(random));
        ExpectEqual(x * y, x.r() * y.r() - x.i() * y.i() - x.j() * y.j() - x.k() * y.k(),
                    x.r() * y.i() + x.i() * y.r() + x.j() * y.k() - x.k() * y.j(),
                    x.r() * y.j() - x.i() * y.k() + x.j() * y.r() + x.k() * y.i(),
                    x.r() * y.k() + x.i() * y.j() - x.j() * y.i() + x.k() * y.r());
    }
}

TEST(Quaternion, RightDivisionUndoesTheProduct)
{
    ExpectNear((a * b) / b, a, 1e-14);
    Q q = a * b;
    q /= b;
    ExpectNear(q, a, 1e-14);
    // Each sum of a·conjugate(b) is divided by Norm2(b).
    const Q p = a * Conjugate(b);
    const double n = b.Norm2();
    ExpectEqual(a / b, p.r() / n, p.i() / n, p.j() / n, p.k() / n);
}

TEST(Quaternion, DivisionByZeroIsUnguarded)
{
    const Q q = a / Q::Zero;
    EXPECT_TRUE(std::isnan(q.r()) || std::isinf(q.r()));
    EXPECT_FALSE(q.IsValid());
}

// --- Conjugate, inverse, normalization, distances ---------------------------------------

TEST(Quaternion, ConjugateNegatesTheUnrealPart)
{
    Q q = a;
    EXPECT_EQ(&q.Conjugate(), &q);
    ExpectEqual(q, 1.0, -2.0, -3.0, -4.0);
    ExpectEqual(Conjugate(a), 1.0, -2.0, -3.0, -4.0);
}

TEST(Quaternion, InvertScalesTheConjugateByTheReciprocalNorm)
{
    Q q = a;
    EXPECT_EQ(&q.Invert(), &q);
    const double f = 1.0 / 30.0;
    ExpectEqual(q, 1.0 * f, -2.0 * f, -3.0 * f, -4.0 * f);
    ExpectNear(a * q, Q::Identity, 1e-15);
    EXPECT_TRUE(Invert(a) == q);
}

TEST(Quaternion, InvertOfZeroLeavesTheValue)
{
    Q zero = Q::Zero;
    zero.Invert();
    EXPECT_TRUE(zero == Q::Zero);
    ExpectEqual(Invert(Q(-0.0, 0.0, -0.0, 0.0)), -0.0, 0.0, -0.0, 0.0);
    EXPECT_TRUE(std::signbit(Invert(Q(-0.0, 0.0, -0.0, 0.0)).r())) << "a copy, bit for bit";
}

TEST(Quaternion, NormalizeHasNoThreshold)
{
    Q q = a;
    EXPECT_EQ(&q.Normalize(), &q);
    const double f = 1.0 / std::sqrt(30.0);
    ExpectEqual(q, 1.0 * f, 2.0 * f, 3.0 * f, 4.0 * f);
    EXPECT_TRUE(Normalize(a) == q);

    Q tiny(1e-150, 0.0, 0.0, 0.0);
    tiny.Normalize();
    EXPECT_NEAR(tiny.r(), 1.0, 1e-15) << "any length above 0.0 is divided";
    Q zero = Q::Zero;
    zero.Normalize();
    EXPECT_TRUE(zero == Q::Zero);
    EXPECT_TRUE(Normalize(Q::Zero) == Q::Zero);
}

TEST(Quaternion, DotAndTheMemberDistance)
{
    EXPECT_EQ(Dot(a, b), 70.0);
    EXPECT_EQ(a.Distance(b), 8.0);
    EXPECT_EQ(b.Distance(a), 8.0);
}

TEST(Quaternion, TheFreeDistanceReadsOnlyItsSecondArgument)
{
    EXPECT_EQ(Distance(a, b), 0.0) << "each component of b against itself";
    EXPECT_EQ(Distance(Q(kNaN, kNaN, kNaN, kNaN), b), 0.0) << "a is not read";
    EXPECT_TRUE(std::isnan(Distance(a, Q(1.0, kInf, 0.0, 0.0))));
    EXPECT_TRUE(std::isnan(Distance(a, Q(kNaN, 0.0, 0.0, 0.0))));
}

TEST(Quaternion, CrossReusesTheFirstProductInItsLastTerm)
{
    ExpectEqual(Cross(a, b), 0.0, -4.0, 8.0, -10.0);
    // The textbook last term would be a.i·b.j - a.j·b.i = -4.
    EXPECT_NE(Cross(a, b).k(), a.i() * b.j() - a.j() * b.i());
}

// --- Elementary functions ------------------------------------------------------------------

TEST(Quaternion, ExpOfZeroIsOne)
{
    ExpectEqual(Exp(Q::Zero), 1.0, 0.0, 0.0, 0.0);
    ExpectNear(Exp(Q(1.0, 0.0, 0.0, 0.0)), Q(std::exp(1.0), 0.0, 0.0, 0.0), 1e-15);
}

TEST(Quaternion, ExpOfAPureQuaternionIsARotation)
{
    // exp(θ·u) = cos θ + u·sin θ for a unit u.
    const Q e = Exp(Q(0.0, 0.0, 0.0, 0.5));
    ExpectNear(e, Q(std::cos(0.5), 0.0, 0.0, std::sin(0.5)), 1e-16);
    EXPECT_TRUE(e.IsUnit(1e-15));
}

TEST(Quaternion, LogUndoesExp)
{
    const Q q(0.5, 0.1, 0.2, 0.3);
    ExpectNear(Log(Exp(q)), q, 1e-15);
    ExpectNear(Exp(Log(b)), b, 1e-13);
}

TEST(Quaternion, LogOfZeroIsMinusInfinityAndNaN)
{
    const Q l = Log(Q::Zero);
    EXPECT_EQ(l.r(), -kInf);
    EXPECT_TRUE(std::isnan(l.i()));
    EXPECT_TRUE(std::isnan(l.j()));
    EXPECT_TRUE(std::isnan(l.k()));
}

TEST(Quaternion, LogOfARealNumber)
{
    ExpectEqual(Log(Q(2.0, 0.0, 0.0, 0.0)), std::log(2.0), 0.0, 0.0, 0.0);
}

TEST(Quaternion, PowIsExpOfTheScaledLog)
{
    const Q turn = Q::FromRotAnglesDeg(0.0, 0.0, 90.0);
    ExpectNear(Pow(turn, 0.5), Q::FromRotAnglesDeg(0.0, 0.0, 45.0), 1e-12);
    ExpectNear(Pow(b, 2.0), b * b, 1e-12);
    ExpectNear(Pow(b, 1.0), b, 1e-13);
    EXPECT_TRUE(Pow(b, 0.7) == Exp(Log(b) * 0.7));
}

TEST(Quaternion, TrigonometricFunctionsOfARealNumber)
{
    const Q x(0.7, 0.0, 0.0, 0.0);
    ExpectEqual(Sin(x), std::sin(0.7), 0.0, 0.0, 0.0);
    ExpectEqual(Cos(x), std::cos(0.7), 0.0, 0.0, 0.0);
    ExpectEqual(Tan(x), std::tan(0.7), 0.0, 0.0, 0.0);
    // The exact zero test: a tiny unreal part takes the general formula.
    EXPECT_NEAR(Sin(Q(0.7, 1e-100, 0.0, 0.0)).r(), std::sin(0.7), 1e-16);
}

TEST(Quaternion, TrigonometricIdentities)
{
    const Q q(0.3, 0.2, -0.4, 0.1);
    const Q s = Sin(q), c = Cos(q);
    ExpectNear(s * s + c * c, Q::Identity, 1e-14);
    ExpectNear(Tan(q), s / c, 1e-14);
    // Sin and Cos of a pure unreal part are the hyperbolic functions of its length.
    const double n = std::sqrt(0.04 + 0.16 + 0.01);
    ExpectNear(Cos(Q(0.0, 0.2, -0.4, 0.1)), Q(std::cosh(n), 0.0, 0.0, 0.0), 1e-15);
}

TEST(Quaternion, HyperbolicFunctions)
{
    const Q q(0.3, 0.2, -0.4, 0.1);
    const Q sh = Sinh(q), ch = Cosh(q);
    ExpectNear(ch * ch - sh * sh, Q::Identity, 1e-14);
    EXPECT_TRUE(Tanh(q) == sh / ch);
    ExpectNear(Sinh(Q(0.5, 0.0, 0.0, 0.0)), Q(std::sinh(0.5), 0.0, 0.0, 0.0), 1e-15);
    ExpectNear(Cosh(Q(0.5, 0.0, 0.0, 0.0)), Q(std::cosh(0.5), 0.0, 0.0, 0.0), 1e-15);
}

// --- Rotations ------------------------------------------------------------------------------

TEST(Quaternion, EulerAnglesRoundTrip)
{
    const Q q = Q::FromRotAnglesDeg(20.0, -35.0, 70.0);
    const zunVector3T<double> back = q.GetRotAnglesDeg();
    // About 1e-11 off: both the degree factor in and the one out are shortened,
    // and their product explains the difference to rounding.
    EXPECT_NEAR(back.x, 20.0, 3e-11);
    EXPECT_NEAR(back.y, -35.0, 3e-11);
    EXPECT_NEAR(back.z, 70.0, 3e-11);
    const double shortened = 0.01745329251994 * 57.29577951308;
    EXPECT_NEAR(back.x, 20.0 * shortened, 1e-12);
    EXPECT_NEAR(back.y, -35.0 * shortened, 1e-12);
    EXPECT_NEAR(back.z, 70.0 * shortened, 1e-12);
    const zunVector3T<double> radians = q.GetRotAnglesRad();
    EXPECT_EQ(radians.x, back.x * 0.01745329251994);
    EXPECT_EQ(radians.z, back.z * 0.01745329251994);
}

TEST(Quaternion, FromRotAnglesIsTheProductOfTheThreeHalfTurns)
{
    const Q qx(std::cos(0.1), std::sin(0.1), 0.0, 0.0), qy(std::cos(-0.2), 0.0, std::sin(-0.2), 0.0),
        qz(std::cos(0.3), 0.0, 0.0, std::sin(0.3));
    EXPECT_TRUE(Q::FromRotAnglesRad(0.2, -0.4, 0.6) == (qx * qy) * qz);
    EXPECT_TRUE(Q::FromRotAnglesDeg(10.0, 20.0, 30.0) ==
                Q::FromRotAnglesRad(10.0 * 0.01745329251994, 20.0 * 0.01745329251994, 30.0 * 0.01745329251994));
}

TEST(Quaternion, RotationMatrixAgreesWithTheMatrixRotation)
{
    const zunMatrix44 fromQuaternion = Q::FromRotAnglesDeg(20.0, -35.0, 70.0).GetRotMtx();
    zunMatrix44 fromMatrix;
    fromMatrix.AddRotation(zunVector4T<double>(20.0, -35.0, 70.0), zunVector4T<double>(0.0, 0.0, 0.0));
    for (int i = 0; i < 16; ++i)
        EXPECT_NEAR(fromQuaternion.m[i], fromMatrix.m[i], 1e-12) << "element " << i;
    EXPECT_EQ(fromQuaternion.m[3], 0.0);
    EXPECT_EQ(fromQuaternion.m[12], 0.0);
    EXPECT_EQ(fromQuaternion.m[15], 1.0);
}

TEST(Quaternion, RotationMatrixRotatesAsConjugation)
{
    // q·p·q⁻¹ for the pure quaternion p = (0, v) is the rotated v.
    std::mt19937 random(13);
    std::uniform_real_distribution<double> value(-1.0, 1.0);
    for (int n = 0; n < 50; ++n)
    {
        const Q q = Normalize(Q(value(random), value(random), value(random), value(random)));
        const zunVector4T<double> v(value(random), value(random), value(random));
        const Q rotated = q * Q(0.0, v.x, v.y, v.z) * Conjugate(q);
        const zunVector4T<double> p = q.GetRotMtx()(v);
        EXPECT_NEAR(p.x, rotated.i(), 1e-14);
        EXPECT_NEAR(p.y, rotated.j(), 1e-14);
        EXPECT_NEAR(p.z, rotated.k(), 1e-14);
    }
}

TEST(Quaternion, RotationMatrixDoesNotNormalize)
{
    const zunMatrix44 m = Q(2.0, 0.0, 0.0, 0.0).GetRotMtx();
    EXPECT_EQ(m.m[0], 2.0 * (4.0 + 0.0 - 0.5));
    EXPECT_EQ(m.m[5], 7.0);
}

// --- Tests -------------------------------------------------------------------------------------

TEST(Quaternion, IsUnitLooksAtTheSquaredNorm)
{
    EXPECT_TRUE(Q::Identity.IsUnit(0.0));
    const Q q(1.0 + 1e-6, 0.0, 0.0, 0.0); // Norm2 - 1 is about 2e-6
    EXPECT_FALSE(q.IsUnit(1.5e-6));
    EXPECT_TRUE(q.IsUnit(2.5e-6));
    EXPECT_FALSE(Q(kNaN, 0.0, 0.0, 0.0).IsUnit(1e300));
}

TEST(Quaternion, IsZeroAndIsNotZeroAreOpposites)
{
    EXPECT_TRUE(Q::Zero.IsZero(0.0));
    EXPECT_FALSE(Q::Zero.IsNotZero(0.0));
    const Q small(1e-9, -1e-9, 0.0, 1e-9);
    EXPECT_TRUE(small.IsZero(1e-9));
    EXPECT_FALSE(small.IsZero(0.5e-9));
    EXPECT_TRUE(small.IsNotZero(0.5e-9));
    const Q nan(kNaN, 0.0, 0.0, 0.0);
    EXPECT_FALSE(nan.IsZero(1.0));
    EXPECT_TRUE(nan.IsNotZero(1.0));
}

TEST(Quaternion, IsScalarAndIsVector)
{
    EXPECT_TRUE(Q::Zero.IsScalar(0.0));
    EXPECT_FALSE(Q::Zero.IsVector(0.0)) << "zero is not a vector";
    EXPECT_TRUE(Q(5.0, 1e-13, 0.0, 0.0).IsScalar(1e-12)) << "r is not examined";
    EXPECT_TRUE(Q(0.0, 0.0, 1.0, 0.0).IsVector(0.0));
    EXPECT_FALSE(Q(0.1, 0.0, 1.0, 0.0).IsVector(0.05));
    EXPECT_TRUE(Q(0.1, 0.0, 1.0, 0.0).IsVector(0.1));
}

TEST(Quaternion, TestsHaveADefaultTolerance)
{
    EXPECT_TRUE(Q(1e-13, 0.0, 0.0, 0.0).IsZero());
    EXPECT_FALSE(Q(1e-11, 0.0, 0.0, 0.0).IsZero());
    EXPECT_TRUE(Q::FromRotAnglesDeg(10.0, 20.0, 30.0).IsUnit());
    EXPECT_TRUE(Q::I.IsVector());
    EXPECT_TRUE(Q(3.0, 0.0, 0.0, 0.0).IsScalar());
    EXPECT_TRUE(Q::I.IsNotZero());
}

TEST(Quaternion, IsValidRejectsInfinitiesAndNaN)
{
    EXPECT_TRUE(a.IsValid());
    EXPECT_FALSE(Q(kInf, 0.0, 0.0, 0.0).IsValid());
    EXPECT_FALSE(Q(0.0, 0.0, -kInf, 0.0).IsValid());
    EXPECT_FALSE(Q(0.0, 0.0, 0.0, kNaN).IsValid());
}
