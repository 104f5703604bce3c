// zunMatrix44: storage and composition, every Add* operation against formulas
// computed here independently (axis-angle rotations, the textbook glOrtho,
// glFrustum and gluLookAt matrices), the accessors, inversion, transposition
// and the dump through the debug print channel.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "ChannelCapture.h"
#include "zunMatrix44.h"

namespace
{
    using V4 = zunVector4T<double>;
    const V4 kNoCenter(0.0, 0.0, 0.0, 1.0);
    const double kPi = 3.141592653589793;

    /// Row r, column c of the mathematical matrix.
    double At(const zunMatrix44 & m, int r, int c)
    {
        return m.m[4 * c + r];
    }

    /// The textbook product a·b, summed over k in order.
    zunMatrix44 Product(const zunMatrix44 & a, const zunMatrix44 & b)
    {
        zunMatrix44 p;
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 4; ++c)
            {
                double sum = 0.0;
                for (int k = 0; k < 4; ++k)
                    sum += At(a, r, k) * At(b, k, c);
                p.m[4 * c + r] = sum;
            }
        return p;
    }

    zunMatrix44 FromRows(const double (&rows)[4][4])
    {
        zunMatrix44 m;
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 4; ++c)
                m.m[4 * c + r] = rows[r][c];
        return m;
    }

    /// The rotation by `angle` radians about a unit axis, from the axis-angle
    /// (Rodrigues) formula R = cI + s[u]x + (1 - c)uuᵀ.
    zunMatrix44 AxisAngle(double x, double y, double z, double angle)
    {
        const double c = std::cos(angle), s = std::sin(angle), t = 1.0 - c;
        const double rows[4][4] = {{c + x * x * t, x * y * t - z * s, x * z * t + y * s, 0.0},
                                   {y * x * t + z * s, c + y * y * t, y * z * t - x * s, 0.0},
                                   {z * x * t - y * s, z * y * t + x * s, c + z * z * t, 0.0},
                                   {0.0, 0.0, 0.0, 1.0}};
        return FromRows(rows);
    }

    V4 Apply(const zunMatrix44 & m, const V4 & p)
    {
        return m(p);
    }

    void ExpectNear(const zunMatrix44 & actual, const zunMatrix44 & expected, double tolerance)
    {
        for (int i = 0; i < 16; ++i)
            EXPECT_NEAR(actual.m[i], expected.m[i], tolerance) << "element " << i;
    }

    void ExpectPoint(const V4 & actual, double x, double y, double z, double tolerance)
    {
        EXPECT_NEAR(actual.x, x, tolerance);
        EXPECT_NEAR(actual.y, y, tolerance);
        EXPECT_NEAR(actual.z, z, tolerance);
    }

    zunMatrix44 Sample()
    {
        zunMatrix44 m;
        for (int i = 0; i < 16; ++i)
            m.m[i] = 0.25 * i - 1.5 + (i % 5 == 0 ? 3.0 : 0.0);
        return m;
    }

    zunMatrix44 RandomMatrix(std::mt19937 & random, bool affine)
    {
        std::uniform_real_distribution<double> value(-1.0, 1.0);
        zunMatrix44 m;
        for (double & e : m.m)
            e = value(random);
        // A strong diagonal keeps it well conditioned.
        for (int d = 0; d < 4; ++d)
            m.m[5 * d] += value(random) > 0 ? 4.0 : -4.0;
        if (affine)
            m.m[3] = m.m[7] = m.m[11] = 0.0, m.m[15] = 1.0;
        return m;
    }
}

// --- Storage, identity, comparison -----------------------------------------------

TEST(Matrix44, DefaultIsTheIdentityConstant)
{
    zunMatrix44 m;
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(m.m[i], i % 5 == 0 ? 1.0 : 0.0);
    EXPECT_TRUE(m == zunMatrix44::Identity);
    EXPECT_EQ(sizeof(zunMatrix44), 128u);
}

TEST(Matrix44, SetIdentityRestoresTheIdentityAndChains)
{
    zunMatrix44 m = Sample();
    EXPECT_EQ(&m.SetIdentity(), &m);
    EXPECT_TRUE(m == zunMatrix44::Identity);
}

TEST(Matrix44, ComparisonIsBitwise)
{
    zunMatrix44 a, b;
    b.m[13] = -0.0;
    EXPECT_TRUE(a != b) << "0.0 and -0.0 differ";
    EXPECT_FALSE(a == b);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    a.m[2] = nan;
    zunMatrix44 c = a;
    EXPECT_TRUE(a == c) << "a NaN equals the same NaN";
}

TEST(Matrix44, StorageIsColumnByColumnActingOnColumnVectors)
{
    zunMatrix44 m;
    m.AddTranslation(V4(1.0, 2.0, 3.0));
    EXPECT_EQ(m.m[12], 1.0);
    EXPECT_EQ(m.m[13], 2.0);
    EXPECT_EQ(m.m[14], 3.0);
    ExpectPoint(Apply(m, V4(1.0, 1.0, 1.0)), 2.0, 3.0, 4.0, 0.0);
}

TEST(Matrix44, CopyAndMoveCopyAllSixteen)
{
    const zunMatrix44 source = Sample();
    zunMatrix44 copy;
    copy = source;
    EXPECT_TRUE(copy == source);
    zunMatrix44 moved;
    moved = zunMatrix44(source);
    EXPECT_TRUE(moved == source);
}

// --- Composition -------------------------------------------------------------------

TEST(Matrix44, MulMtxIsTheProductOnTheRight)
{
    zunMatrix44 a = Sample(), b;
    for (int i = 0; i < 16; ++i)
        b.m[i] = std::sin(i + 1.0);
    const zunMatrix44 expected = Product(a, b);
    EXPECT_EQ(&a.MulMtx(b), &a);
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(a.m[i], expected.m[i]) << "same sum in the same order, element " << i;
}

TEST(Matrix44, MulMtxWithItselfIsComputedAsTheElementsFallAndIsNotTheSquare)
{
    // The documented row-by-row product, with B the matrix being overwritten.
    zunMatrix44 expected = Sample();
    double * m = expected.m;
    for (int r = 0; r < 4; ++r)
    {
        const double a0 = m[r], a1 = m[4 + r], a2 = m[8 + r], a3 = m[12 + r];
        for (int c = 0; c < 4; ++c)
            m[4 * c + r] = a0 * m[4 * c] + a1 * m[4 * c + 1] + a2 * m[4 * c + 2] + a3 * m[4 * c + 3];
    }
    zunMatrix44 a = Sample();
    a.MulMtx(a);
    EXPECT_TRUE(a == expected);
    EXPECT_FALSE(a == Product(Sample(), Sample()));
}

TEST(Matrix44, LaterOperationsActFirstOnAPoint)
{
    zunMatrix44 m;
    m.AddTranslation(V4(1.0, 0.0, 0.0)).AddRotation(V4(0.0, 0.0, 90.0), kNoCenter);
    ExpectPoint(Apply(m, V4(1.0, 0.0, 0.0)), 1.0, 1.0, 0.0, 1e-15);
}

TEST(Matrix44, AddOperationsReturnTheMatrix)
{
    zunMatrix44 m;
    const V4 v(1.0, 2.0, 3.0);
    EXPECT_EQ(&m.AddTranslation(v), &m);
    EXPECT_EQ(&m.AddScaling(v, kNoCenter), &m);
    EXPECT_EQ(&m.AddRotation(v, kNoCenter), &m);
    EXPECT_EQ(&m.AddRotationRad(v, kNoCenter), &m);
    EXPECT_EQ(&m.AddRotationVector(v, 10.0, kNoCenter), &m);
    EXPECT_EQ(&m.AddRotationVectorRad(v, 0.1, kNoCenter), &m);
    EXPECT_EQ(&m.AddRotationVectorCos(v, 0.5, kNoCenter), &m);
    EXPECT_EQ(&m.AddAlignVectorOnVector(v, V4(0.0, 1.0, 0.0)), &m);
    EXPECT_EQ(&m.AddAlignVectorOnXY(v), &m);
    EXPECT_EQ(&m.AddInvAlignVectorOnXY(v), &m);
    EXPECT_EQ(&m.AddLookAt(v, kNoCenter, V4(0.0, 1.0, 0.0)), &m);
    EXPECT_EQ(&m.AddOriginXY(v, V4(1.0, 0.0, 0.0), V4(0.0, 1.0, 0.0)), &m);
    EXPECT_EQ(&m.AddAtoB(Sample(), zunMatrix44()), &m);
    EXPECT_EQ(&m.AddOrtho(-1.0, 1.0, -1.0, 1.0, 1.0, 10.0), &m);
    EXPECT_EQ(&m.AddPerspective(-1.0, 1.0, -1.0, 1.0, 1.0, 10.0), &m);
    EXPECT_EQ(&m.SetTranslation(v), &m);
    EXPECT_EQ(&m.SetXYZ(V4(1.0, 0.0, 0.0), V4(0.0, 1.0, 0.0), true), &m);
    EXPECT_EQ(&m.RemoveScales(), &m);
    EXPECT_EQ(&m.Transpose(), &m);
}

// --- Translation, scaling, centers ------------------------------------------------------

TEST(Matrix44, AddScalingPutsTheScaleOnTheDiagonal)
{
    zunMatrix44 m;
    m.AddScaling(V4(2.0, 3.0, 4.0), kNoCenter);
    zunMatrix44 expected;
    expected.m[0] = 2.0, expected.m[5] = 3.0, expected.m[10] = 4.0;
    EXPECT_TRUE(m == expected);
}

TEST(Matrix44, AddScalingAboutACenterKeepsTheCenter)
{
    zunMatrix44 m;
    m.AddScaling(V4(2.0, 3.0, 4.0), V4(1.0, 1.0, 1.0));
    ExpectPoint(Apply(m, V4(1.0, 1.0, 1.0)), 1.0, 1.0, 1.0, 0.0);
    ExpectPoint(Apply(m, V4(2.0, 2.0, 2.0)), 3.0, 4.0, 5.0, 0.0);
}

TEST(Matrix44, ACenterWithOnlyZSetCounts)
{
    zunMatrix44 m;
    const V4 center(0.0, 0.0, 5.0);
    m.AddRotation(V4(90.0, 0.0, 0.0), center);
    // M·T(c)·R·T(-c), three products in that order.
    zunMatrix44 r, expected;
    r.AddRotation(V4(90.0, 0.0, 0.0), kNoCenter);
    expected.AddTranslation(center).MulMtx(r).AddTranslation(V4(-0.0, -0.0, -5.0));
    ExpectNear(m, expected, 0.0);
    ExpectPoint(Apply(m, center), 0.0, 0.0, 5.0, 1e-15);
}

TEST(Matrix44, ANegativeZeroCenterIsNoCenter)
{
    zunMatrix44 centered = Sample(), plain = Sample();
    centered.AddRotation(V4(10.0, 20.0, 30.0), V4(0.0, -0.0, 0.0));
    plain.AddRotation(V4(10.0, 20.0, 30.0), kNoCenter);
    EXPECT_TRUE(centered == plain);
    zunMatrix44 scaled = Sample(), scaledPlain = Sample();
    scaled.AddScaling(V4(2.0, 3.0, 4.0), V4(-0.0, -0.0, -0.0));
    scaledPlain.AddScaling(V4(2.0, 3.0, 4.0), kNoCenter);
    EXPECT_TRUE(scaled == scaledPlain);
}

// --- Rotations -------------------------------------------------------------------

TEST(Matrix44, AddRotationRadIsRxRyRzFromAxisAngleFormulas)
{
    const double ax = 0.3, ay = -1.1, az = 2.5;
    zunMatrix44 m;
    m.AddRotationRad(V4(ax, ay, az), kNoCenter);
    const zunMatrix44 expected =
        Product(Product(AxisAngle(1, 0, 0, ax), AxisAngle(0, 1, 0, ay)), AxisAngle(0, 0, 1, az));
    ExpectNear(m, expected, 1e-15);
}

TEST(Matrix44, AddRotationConvertsDegrees)
{
    zunMatrix44 degrees, radians;
    degrees.AddRotation(V4(30.0, 45.0, 60.0), kNoCenter);
    radians.AddRotationRad(
        V4(30.0 * kPi * 0.005555555555555556, 45.0 * kPi * 0.005555555555555556, 60.0 * kPi * 0.005555555555555556),
        kNoCenter);
    EXPECT_TRUE(degrees == radians);
    zunMatrix44 z;
    z.AddRotation(V4(0.0, 0.0, 90.0), kNoCenter);
    ExpectPoint(Apply(z, V4(1.0, 0.0, 0.0)), 0.0, 1.0, 0.0, 1e-15);
}

TEST(Matrix44, AddRotationVectorAgreesWithTheAxisAngleFormula)
{
    std::mt19937 random(11);
    std::uniform_real_distribution<double> value(-1.0, 1.0);
    for (int n = 0; n < 100; ++n)
    {
        const double x = value(random), y = value(random), z = value(random), angle = 4.0 * value(random);
        const double length = std::sqrt(x * x + y * y + z * z);
        zunMatrix44 m;
        m.AddRotationVectorRad(V4(x, y, z), angle, kNoCenter);
        ExpectNear(m, AxisAngle(x / length, y / length, z / length, angle), 1e-14);

        zunMatrix44 degrees, radians;
        degrees.AddRotationVector(V4(x, y, z), 57.0 * angle, kNoCenter);
        radians.AddRotationVectorRad(V4(x, y, z), 57.0 * angle * kPi * 0.005555555555555556, kNoCenter);
        EXPECT_TRUE(degrees == radians);
    }
}

TEST(Matrix44, AddRotationVectorAboutACenterKeepsTheCenter)
{
    zunMatrix44 m;
    m.AddRotationVector(V4(0.0, 0.0, 1.0), 90.0, V4(1.0, 0.0, 0.0));
    ExpectPoint(Apply(m, V4(1.0, 0.0, 0.0)), 1.0, 0.0, 0.0, 1e-15);
    ExpectPoint(Apply(m, V4(2.0, 0.0, 0.0)), 1.0, 1.0, 0.0, 1e-15);
}

TEST(Matrix44, AnAxisShorterThanTheDegenerateLengthDoesNothing)
{
    zunMatrix44 m = Sample();
    m.AddRotationVectorRad(V4(5e-13, 0.0, 0.0), 1.0, kNoCenter);
    EXPECT_TRUE(m == Sample());
    m.AddRotationVectorCos(V4(0.0, 3e-13, 4e-13), 0.5, kNoCenter);
    EXPECT_TRUE(m == Sample());
    m.AddRotationVector(V4(0.0, 0.0, 0.0), 30.0, kNoCenter);
    EXPECT_TRUE(m == Sample());

    zunMatrix44 tiny, unit;
    tiny.AddRotationVectorRad(V4(0.0, 0.0, 2e-12), 1.0, kNoCenter);
    unit.AddRotationVectorRad(V4(0.0, 0.0, 1.0), 1.0, kNoCenter);
    ExpectNear(tiny, unit, 1e-15);
    EXPECT_NE(tiny.m[1], 0.0);
}

TEST(Matrix44, AddRotationVectorCosTakesThePositiveSine)
{
    zunMatrix44 m;
    m.AddRotationVectorCos(V4(0.0, 0.0, 2.0), 0.0, kNoCenter);
    ExpectPoint(Apply(m, V4(1.0, 0.0, 0.0)), 0.0, 1.0, 0.0, 1e-15);
    zunMatrix44 rad;
    rad.AddRotationVectorRad(V4(0.0, 0.0, 1.0), std::acos(-0.25), kNoCenter);
    zunMatrix44 cos;
    cos.AddRotationVectorCos(V4(0.0, 0.0, 1.0), -0.25, kNoCenter);
    ExpectNear(cos, rad, 1e-15);
}

TEST(Matrix44, AddRotationVectorCosOutsideTheUnitRangeGivesNaN)
{
    zunMatrix44 m;
    m.AddRotationVectorCos(V4(0.0, 0.0, 1.0), 1.5, kNoCenter);
    // The sine is NaN, and the product spreads it over the three axis columns.
    for (int i = 0; i < 12; ++i)
        EXPECT_TRUE(std::isnan(m.m[i])) << "element " << i;
    EXPECT_EQ(m.m[15], 1.0);
}

// --- Align operations -----------------------------------------------------------------

TEST(Matrix44, AlignOppositeVectorsTurnsHalfRoundAboutThePickedAxis)
{
    // a = X: neither |a.y| > |a.x| nor |a.z| > |a.y|, so the helper axis is Z
    // and the turn axis Z × X = Y.
    zunMatrix44 m;
    m.AddAlignVectorOnVector(V4(1.0, 0.0, 0.0), V4(-1.0, 0.0, 0.0));
    zunMatrix44 expected;
    expected.AddRotationVectorCos(V4(0.0, 1.0, 0.0), -1.0, kNoCenter);
    EXPECT_TRUE(m == expected);
    ExpectPoint(Apply(m, V4(1.0, 0.0, 0.0)), -1.0, 0.0, 0.0, 1e-15);
    ExpectPoint(Apply(m, V4(0.0, 1.0, 0.0)), 0.0, 1.0, 0.0, 1e-15);
}

TEST(Matrix44, AlignOppositeVectorsFollowsTheTieRules)
{
    struct Case
    {
        V4 a;
        V4 expectedAxis; // helper × a
    };
    const Case cases[] = {
        {V4(0.0, 1.0, 0.0), V4(-1.0, 0.0, 0.0)}, // |y| > |x|, |z| > |x| false: Z × Y
        {V4(0.0, 0.0, 1.0), V4(1.0, 0.0, 0.0)},  // |y| > |x| false, |z| > |y|: Y × Z
        {V4(0.1, 0.5, 0.8), V4(0.0, -0.8, 0.5)}, // |y| > |x|, |z| > |x|: X × a
        {V4(0.6, 0.8, 0.0), V4(-0.8, 0.6, 0.0)}, // |y| > |x|, |z| > |x| false: Z × a
    };
    for (const Case & c : cases)
    {
        zunMatrix44 m;
        m.AddAlignVectorOnVector(c.a, V4(-c.a.x, -c.a.y, -c.a.z));
        zunMatrix44 expected;
        expected.AddRotationVectorCos(c.expectedAxis, -1.0, kNoCenter);
        ExpectNear(m, expected, 1e-15);
        ExpectPoint(Apply(m, c.a), -c.a.x, -c.a.y, -c.a.z, 1e-15);
    }
}

TEST(Matrix44, AlignCarriesOneDirectionOntoTheOther)
{
    std::mt19937 random(5);
    std::uniform_real_distribution<double> value(-2.0, 2.0);
    for (int n = 0; n < 50; ++n)
    {
        const V4 a(value(random), value(random), value(random)), b(value(random), value(random), value(random));
        zunMatrix44 m;
        m.AddAlignVectorOnVector(a, b);
        const double la = std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z);
        const double lb = std::sqrt(b.x * b.x + b.y * b.y + b.z * b.z);
        ExpectPoint(Apply(m, V4(a.x / la, a.y / la, a.z / la)), b.x / lb, b.y / lb, b.z / lb, 1e-12);
        EXPECT_NEAR(m.GetScale().x, 1.0, 1e-14);
    }
}

TEST(Matrix44, AlignNearlyParallelVectorsDoesNothingWhateverTheirLengths)
{
    zunMatrix44 m = Sample();
    m.AddAlignVectorOnVector(V4(1e-6, 0.0, 0.0), V4(5e6, 1e-1, 0.0));
    EXPECT_TRUE(m == Sample());
    m.AddAlignVectorOnVector(V4(0.0, 0.0, 0.0), V4(0.0, 1.0, 0.0));
    EXPECT_TRUE(m == Sample()) << "a zero vector gives a zero axis";
}

TEST(Matrix44, AlignVectorOnXYCarriesTheVectorOntoZ)
{
    const V4 vectors[] = {V4(1.0, 2.0, 3.0), V4(3.0, -2.0, 1.0), V4(0.0, 1.0, 0.0), V4(0.0, 0.0, -2.0)};
    for (const V4 & v : vectors)
    {
        const double l = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
        zunMatrix44 align, back;
        align.AddAlignVectorOnXY(v);
        ExpectPoint(Apply(align, V4(v.x / l, v.y / l, v.z / l)), 0.0, 0.0, 1.0, 1e-15);
        back.AddInvAlignVectorOnXY(v);
        ExpectPoint(Apply(back, V4(0.0, 0.0, 1.0)), v.x / l, v.y / l, v.z / l, 1e-15);
        ExpectNear(Product(align, back), zunMatrix44(), 1e-15);
    }
}

TEST(Matrix44, AlignOnXYWithAShortVectorLeavesTheMatrix)
{
    zunMatrix44 m = Sample();
    m.AddAlignVectorOnXY(V4(1e-13, 0.0, 0.0));
    EXPECT_TRUE(m == Sample());
    m.AddInvAlignVectorOnXY(V4(0.0, 1e-13, 0.0));
    EXPECT_TRUE(m == Sample());
}

// --- Frames ----------------------------------------------------------------------------

TEST(Matrix44, AddLookAtIsTheInverseOfTheTextbookViewMatrix)
{
    const V4 eye(3.0, 4.0, 5.0), center(-1.0, 0.5, 2.0), up(0.0, 1.0, 0.2);
    zunMatrix44 placement;
    placement.AddLookAt(eye, center, up);

    // The textbook view matrix: f = normalize(center - eye), s = f × up
    // normalized, u = s × f; rows s, u, -f, then a translation by -eye.
    double f[3] = {center.x - eye.x, center.y - eye.y, center.z - eye.z};
    const double lf = std::sqrt(f[0] * f[0] + f[1] * f[1] + f[2] * f[2]);
    for (double & e : f)
        e /= lf;
    double s[3] = {f[1] * up.z - f[2] * up.y, f[2] * up.x - f[0] * up.z, f[0] * up.y - f[1] * up.x};
    const double ls = std::sqrt(s[0] * s[0] + s[1] * s[1] + s[2] * s[2]);
    for (double & e : s)
        e /= ls;
    const double u[3] = {s[1] * f[2] - s[2] * f[1], s[2] * f[0] - s[0] * f[2], s[0] * f[1] - s[1] * f[0]};
    const double rows[4][4] = {
        {s[0], s[1], s[2], 0.0}, {u[0], u[1], u[2], 0.0}, {-f[0], -f[1], -f[2], 0.0}, {0.0, 0.0, 0.0, 1.0}};
    zunMatrix44 view = FromRows(rows);
    view.AddTranslation(V4(-eye.x, -eye.y, -eye.z));

    ExpectNear(Product(view, placement), zunMatrix44(), 1e-14);
    ExpectPoint(Apply(placement, V4(0.0, 0.0, 0.0)), eye.x, eye.y, eye.z, 0.0);
}

TEST(Matrix44, AddLookAtWithADegenerateSetupDoesNothing)
{
    zunMatrix44 m = Sample();
    m.AddLookAt(V4(1.0, 2.0, 3.0), V4(1.0, 2.0, 3.0), V4(0.0, 1.0, 0.0));
    EXPECT_TRUE(m == Sample()) << "position on the target";
    m.AddLookAt(V4(0.0, 0.0, 5.0), V4(0.0, 0.0, 1.0), V4(0.0, 0.0, 2.0));
    EXPECT_TRUE(m == Sample()) << "up parallel to position - target";
}

TEST(Matrix44, AddOriginXYKeepsTheXDirectionExactly)
{
    zunMatrix44 m;
    m.AddOriginXY(V4(1.0, 2.0, 3.0), V4(2.0, 0.0, 0.0), V4(1.0, 1.0, 0.0));
    zunMatrix44 expected;
    expected.AddTranslation(V4(1.0, 2.0, 3.0));
    ExpectNear(m, expected, 1e-15);

    zunMatrix44 tilted;
    tilted.AddOriginXY(V4(0.0, 0.0, 0.0), V4(0.0, 3.0, 4.0), V4(0.0, 0.0, -1.0));
    ExpectPoint(Apply(tilted, V4(1.0, 0.0, 0.0)), 0.0, 0.6, 0.8, 1e-15);
    const V4 y = Apply(tilted, V4(0.0, 1.0, 0.0));
    EXPECT_NEAR(y.x * 0.0 + y.y * 0.6 + y.z * 0.8, 0.0, 1e-15) << "Y' is normal to x";
    EXPECT_LT(y.z, 0.0) << "on the side of the y direction";
}

TEST(Matrix44, AddOriginXYWithDegenerateDirectionsDoesNothing)
{
    zunMatrix44 m = Sample();
    m.AddOriginXY(V4(1.0, 1.0, 1.0), V4(1e-13, 0.0, 0.0), V4(0.0, 1.0, 0.0));
    m.AddOriginXY(V4(1.0, 1.0, 1.0), V4(1.0, 0.0, 0.0), V4(0.0, 0.0, 0.0));
    m.AddOriginXY(V4(1.0, 1.0, 1.0), V4(1.0, 0.0, 0.0), V4(-3.0, 0.0, 0.0));
    EXPECT_TRUE(m == Sample());
}

TEST(Matrix44, SetXYZOrthonormalStoresTheVectorsAsTheyAre)
{
    zunMatrix44 m = Sample();
    m.SetXYZ(V4(2.0, 0.0, 0.0, 7.0), V4(1.0, 3.0, 0.0, 7.0), true);
    EXPECT_EQ(m.m[0], 2.0);
    EXPECT_EQ(m.m[1], 0.0);
    EXPECT_EQ(m.m[2], 0.0);
    EXPECT_EQ(m.m[4], 1.0);
    EXPECT_EQ(m.m[5], 3.0);
    EXPECT_EQ(m.m[6], 0.0);
    EXPECT_EQ(m.m[8], 0.0);
    EXPECT_EQ(m.m[9], 0.0);
    EXPECT_EQ(m.m[10], 6.0);
    for (int i : {3, 7, 11, 12, 13, 14, 15})
        EXPECT_EQ(m.m[i], Sample().m[i]) << "element " << i << " is not written";
}

TEST(Matrix44, SetXYZBuildsAnOrthonormalFrame)
{
    zunMatrix44 m = Sample();
    m.SetXYZ(V4(0.0, 2.0, 0.0), V4(-1.0, 1.0, 0.0), false);
    EXPECT_EQ(m.m[0], 0.0);
    EXPECT_EQ(m.m[1], 1.0);
    EXPECT_EQ(m.m[2], 0.0);
    EXPECT_NEAR(m.m[4], -1.0, 1e-15);
    EXPECT_NEAR(m.m[5], 0.0, 1e-15);
    EXPECT_NEAR(m.m[6], 0.0, 1e-15);
    EXPECT_NEAR(m.m[8], 0.0, 1e-15);
    EXPECT_NEAR(m.m[9], 0.0, 1e-15);
    EXPECT_NEAR(m.m[10], 1.0, 1e-15);
    for (int i : {3, 7, 11, 12, 13, 14, 15})
        EXPECT_EQ(m.m[i], Sample().m[i]) << "element " << i << " is not written";

    zunMatrix44 degenerate = Sample();
    degenerate.SetXYZ(V4(1e-13, 0.0, 0.0), V4(0.0, 1.0, 0.0), false);
    degenerate.SetXYZ(V4(1.0, 0.0, 0.0), V4(2.0, 0.0, 0.0), false);
    EXPECT_TRUE(degenerate == Sample());
}

TEST(Matrix44, AddAtoBIsTheInverseOfATimesB)
{
    std::mt19937 random(3);
    const zunMatrix44 a = RandomMatrix(random, false), b = RandomMatrix(random, true);
    zunMatrix44 m = Sample();
    m.AddAtoB(a, b);
    zunMatrix44 inverse;
    ASSERT_TRUE(a.Invert(inverse));
    ExpectNear(m, Product(Sample(), Product(inverse, b)), 1e-12);

    zunMatrix44 singular;
    singular.m[0] = 0.0;
    zunMatrix44 n = Sample();
    n.AddAtoB(singular, b);
    EXPECT_TRUE(n == Product(Sample(), b)) << "a singular A counts as the identity";
}

// --- Projections --------------------------------------------------------------------

TEST(Matrix44, AddOrthoIsTheTextbookOrthographicMatrix)
{
    const double l = -2.0, r = 3.0, b = -1.5, t = 2.5, n = 0.5, f = 20.0;
    zunMatrix44 m;
    m.AddOrtho(l, r, b, t, n, f);
    const double rows[4][4] = {{2.0 / (r - l), 0.0, 0.0, -(r + l) / (r - l)},
                               {0.0, 2.0 / (t - b), 0.0, -(t + b) / (t - b)},
                               {0.0, 0.0, -2.0 / (f - n), -(f + n) / (f - n)},
                               {0.0, 0.0, 0.0, 1.0}};
    EXPECT_TRUE(m == FromRows(rows));

    zunMatrix44 composed = Sample();
    composed.AddOrtho(l, r, b, t, n, f);
    EXPECT_TRUE(composed == Product(Sample(), FromRows(rows)));
}

TEST(Matrix44, AddPerspectiveIsTheTextbookFrustumMatrix)
{
    const double l = -2.0, r = 3.0, b = -1.5, t = 2.5, n = 0.5, f = 20.0;
    zunMatrix44 m;
    m.AddPerspective(l, r, b, t, n, f);
    const double rows[4][4] = {{2.0 * n / (r - l), 0.0, (r + l) / (r - l), 0.0},
                               {0.0, 2.0 * n / (t - b), (t + b) / (t - b), 0.0},
                               {0.0, 0.0, -(f + n) / (f - n), -2.0 * f * n / (f - n)},
                               {0.0, 0.0, -1.0, 0.0}};
    EXPECT_TRUE(m == FromRows(rows));
}

TEST(Matrix44, ProjectionsWithEqualPlanesGiveInfinities)
{
    zunMatrix44 ortho, perspective;
    ortho.AddOrtho(1.0, 1.0, -1.0, 1.0, 1.0, 2.0);
    EXPECT_TRUE(std::isinf(ortho.m[0]));
    perspective.AddPerspective(-1.0, 1.0, -1.0, 1.0, 2.0, 2.0);
    EXPECT_TRUE(std::isinf(perspective.m[10]) && std::isinf(perspective.m[14]));
}

// --- Accessors -------------------------------------------------------------------------

TEST(Matrix44, GetRotationReturnsTheAnglesOfAddRotation)
{
    std::mt19937 random(17);
    std::uniform_real_distribution<double> wide(-179.0, 179.0), middle(-89.0, 89.0);
    for (int n = 0; n < 200; ++n)
    {
        const V4 angles(wide(random), middle(random), wide(random));
        zunMatrix44 m;
        m.AddRotation(angles, kNoCenter);
        const V4 back = m.GetRotation();
        ExpectPoint(back, angles.x, angles.y, angles.z, 1e-9);
        EXPECT_EQ(back.w, 1.0);
    }
}

TEST(Matrix44, GetRotationUsesTheShortenedDegreeFactor)
{
    zunMatrix44 m;
    m.AddRotationRad(V4(1.0, 0.0, 0.0), kNoCenter);
    EXPECT_EQ(m.GetRotation().x, std::atan2(m.m[9], m.m[10]) * -57.29577951308);
    EXPECT_NE(m.GetRotation().x, 180.0 / kPi);
}

TEST(Matrix44, GetRotationAtANinetyDegreeMiddleAngleStaysFinite)
{
    zunMatrix44 m;
    m.AddRotation(V4(0.0, 90.0, 0.0), kNoCenter);
    const V4 back = m.GetRotation();
    EXPECT_NEAR(back.y, 90.0, 1e-6);
    EXPECT_TRUE(std::isfinite(back.x) && std::isfinite(back.z));
}

TEST(Matrix44, GetScaleMeasuresTheAxisColumns)
{
    zunMatrix44 m;
    m.AddRotation(V4(10.0, 20.0, 30.0), kNoCenter).AddScaling(V4(2.0, 3.0, 0.5), kNoCenter);
    const V4 scale = m.GetScale();
    ExpectPoint(scale, 2.0, 3.0, 0.5, 1e-15);
    EXPECT_EQ(scale.w, 1.0);
}

TEST(Matrix44, GetTranslationReportsWOneWhateverTheLastElement)
{
    zunMatrix44 m;
    m.m[12] = 4.0, m.m[13] = 5.0, m.m[14] = 6.0, m.m[15] = 2.0;
    const V4 t = m.GetTranslation();
    EXPECT_EQ(t.x, 4.0);
    EXPECT_EQ(t.y, 5.0);
    EXPECT_EQ(t.z, 6.0);
    EXPECT_EQ(t.w, 1.0);
}

TEST(Matrix44, SetTranslationWritesOnlyTheTranslation)
{
    zunMatrix44 m = Sample();
    m.SetTranslation(zunVector3T<float>(0.1f, 2.0f, 3.0f));
    EXPECT_EQ(m.m[12], static_cast<double>(0.1f)) << "the float form widens";
    EXPECT_EQ(m.m[13], 2.0);
    EXPECT_EQ(m.m[14], 3.0);
    m.SetTranslation(zunVector3T<double>(0.1, 5.0, 6.0));
    EXPECT_EQ(m.m[12], 0.1);
    EXPECT_EQ(m.m[13], 5.0);
    EXPECT_EQ(m.m[14], 6.0);
    m.SetTranslation(V4(7.0, 8.0, 9.0, 42.0));
    EXPECT_EQ(m.m[12], 7.0);
    EXPECT_EQ(m.m[13], 8.0);
    EXPECT_EQ(m.m[14], 9.0);
    for (int i : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 15})
        EXPECT_EQ(m.m[i], Sample().m[i]) << "element " << i;
}

TEST(Matrix44, AxisAccessorsReadTheColumns)
{
    const zunMatrix44 m = Sample();
    EXPECT_EQ(m.X().x, m.m[0]);
    EXPECT_EQ(m.X().y, m.m[1]);
    EXPECT_EQ(m.X().z, m.m[2]);
    EXPECT_EQ(m.Y().x, m.m[4]);
    EXPECT_EQ(m.Y().y, m.m[5]);
    EXPECT_EQ(m.Y().z, m.m[6]);
    EXPECT_EQ(m.Z().x, m.m[8]);
    EXPECT_EQ(m.Z().y, m.m[9]);
    EXPECT_EQ(m.Z().z, m.m[10]);
}

TEST(Matrix44, RemoveScalesNormalizesEachAxisAndKeepsTheRest)
{
    zunMatrix44 m;
    m.m[0] = 3.0, m.m[1] = 4.0;                  // length 5
    m.m[4] = 1.0, m.m[5] = 1.0;                  // not orthogonal to X
    m.m[8] = 1e-20, m.m[9] = 0.0, m.m[10] = 0.0; // below the floor: kept
    m.m[12] = 7.0, m.m[15] = 3.0;
    m.RemoveScales();
    EXPECT_NEAR(m.m[0], 0.6, 1e-15);
    EXPECT_NEAR(m.m[1], 0.8, 1e-15);
    EXPECT_NEAR(m.m[4], std::sqrt(0.5), 1e-15);
    EXPECT_NEAR(m.m[5], std::sqrt(0.5), 1e-15);
    EXPECT_EQ(m.m[8], 1e-20);
    EXPECT_EQ(m.m[12], 7.0);
    EXPECT_EQ(m.m[15], 3.0);
}

// --- Inversion and transposition ----------------------------------------------------------

TEST(Matrix44, InvertTimesTheMatrixIsTheIdentity)
{
    std::mt19937 random(23);
    for (int n = 0; n < 500; ++n)
    {
        const zunMatrix44 m = RandomMatrix(random, n % 2 == 0);
        zunMatrix44 inverse;
        ASSERT_TRUE(m.Invert(inverse));
        ExpectNear(Product(inverse, m), zunMatrix44(), 1e-12);
        ExpectNear(Product(m, inverse), zunMatrix44(), 1e-12);
    }
}

TEST(Matrix44, InvertOfAnAffineMatrixIsAffine)
{
    zunMatrix44 m;
    m.AddTranslation(V4(1.0, 2.0, 3.0)).AddRotation(V4(30.0, 40.0, 50.0), kNoCenter);
    zunMatrix44 inverse;
    ASSERT_TRUE(m.Invert(inverse));
    EXPECT_EQ(inverse.m[3], 0.0);
    EXPECT_EQ(inverse.m[7], 0.0);
    EXPECT_EQ(inverse.m[11], 0.0);
    EXPECT_EQ(inverse.m[15], 1.0);
    ExpectPoint(Apply(inverse, V4(1.0, 2.0, 3.0)), 0.0, 0.0, 0.0, 1e-15);
}

TEST(Matrix44, InvertInPlaceOfASingularMatrixGivesTheIdentityAndFalse)
{
    zunMatrix44 affine = Sample();
    affine.m[3] = affine.m[7] = affine.m[11] = 0.0, affine.m[15] = 1.0;
    affine.m[8] = affine.m[0], affine.m[9] = affine.m[1], affine.m[10] = affine.m[2]; // Z = X
    EXPECT_FALSE(affine.Invert());
    EXPECT_TRUE(affine == zunMatrix44::Identity);

    zunMatrix44 general = Sample();
    for (int r = 0; r < 4; ++r)
        general.m[4 + r] = 2.0 * general.m[r]; // column 1 = 2 · column 0
    EXPECT_FALSE(general.Invert());
    EXPECT_TRUE(general == zunMatrix44::Identity);
}

TEST(Matrix44, InvertWithALastElementOfTwoTakesTheGeneralInverse)
{
    zunMatrix44 m;
    m.AddRotation(V4(10.0, 20.0, 30.0), kNoCenter).AddTranslation(V4(1.0, -2.0, 3.0));
    m.m[15] = 2.0;
    zunMatrix44 inverse;
    ASSERT_TRUE(m.Invert(inverse));
    ExpectNear(Product(inverse, m), zunMatrix44(), 1e-15);
    EXPECT_NEAR(inverse.m[15], 0.5, 1e-15);
}

TEST(Matrix44, InvertHasNoToleranceAndPassesNaN)
{
    zunMatrix44 nearly;
    nearly.m[0] = 1e-300;
    zunMatrix44 inverse;
    EXPECT_TRUE(nearly.Invert(inverse));
    EXPECT_DOUBLE_EQ(inverse.m[0], 1e300);

    zunMatrix44 nan;
    nan.m[5] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(nan.Invert(inverse)) << "a NaN determinant passes the exact zero test";
    EXPECT_TRUE(std::isnan(inverse.m[0]));
    nan.m[15] = 2.0;
    EXPECT_TRUE(nan.Invert(inverse));
    EXPECT_TRUE(std::isnan(inverse.m[0]));
}

TEST(Matrix44, InvertIntoItselfReadsBeforeWriting)
{
    std::mt19937 random(29);
    for (bool affine : {true, false})
    {
        const zunMatrix44 m = RandomMatrix(random, affine);
        zunMatrix44 separate, self = m;
        ASSERT_TRUE(m.Invert(separate));
        ASSERT_TRUE(self.Invert(self));
        EXPECT_TRUE(self == separate);
        zunMatrix44 inPlace = m;
        ASSERT_TRUE(inPlace.Invert());
        EXPECT_TRUE(inPlace == separate);
    }
}

TEST(Matrix44, TransposeSwapsRowsAndColumns)
{
    const zunMatrix44 m = Sample();
    zunMatrix44 out;
    m.Transpose(out);
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            EXPECT_EQ(out.m[4 * c + r], m.m[4 * r + c]);
    EXPECT_TRUE(m == Sample()) << "the source stays";

    zunMatrix44 self = Sample();
    self.Transpose(self);
    EXPECT_TRUE(self == out);
    zunMatrix44 inPlace = Sample();
    inPlace.Transpose();
    EXPECT_TRUE(inPlace == out);
    inPlace.Transpose();
    EXPECT_TRUE(inPlace == Sample());
}

TEST(Matrix44, DumpPrintsTheStorageOrderAColumnALine)
{
    ChannelCapture channel;
    zunMatrix44 m;
    for (int i = 0; i < 16; ++i)
        m.m[i] = i + 0.5;
    m.m[3] = -12.3456;
    m.m[15] = 1234.5;
    m.Dump();
    EXPECT_EQ(channel.Text(), "   0.500  1.500  2.500 -12.346\n"
                              "   4.500  5.500  6.500  7.500\n"
                              "   8.500  9.500 10.500 11.500\n"
                              "  12.500 13.500 14.500 1234.500\n");
}

TEST(Matrix44, DumpOfTheIdentity)
{
    ChannelCapture channel;
    zunMatrix44::Identity.Dump();
    EXPECT_EQ(channel.Text(), "   1.000  0.000  0.000  0.000\n"
                              "   0.000  1.000  0.000  0.000\n"
                              "   0.000  0.000  1.000  0.000\n"
                              "   0.000  0.000  0.000  1.000\n");
}
