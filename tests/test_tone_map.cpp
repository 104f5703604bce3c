// zunToneMap: limits, change detection, gamma forms and comparison.
#include <zunFoundation.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <type_traits>
#include <utility>

namespace
{
    const double kNaN = std::numeric_limits<double>::quiet_NaN();
    const double kInf = std::numeric_limits<double>::infinity();
}

TEST(ToneMap, FieldsInTheirOrder)
{
    static_assert(std::is_standard_layout<zunToneMap>::value);
    static_assert(offsetof(zunToneMap, m_brightness) < offsetof(zunToneMap, m_contrast));
    static_assert(offsetof(zunToneMap, m_contrast) < offsetof(zunToneMap, m_saturation));
    static_assert(offsetof(zunToneMap, m_saturation) < offsetof(zunToneMap, m_inverted));
    static_assert(offsetof(zunToneMap, m_inverted) < offsetof(zunToneMap, m_clamp));
    static_assert(offsetof(zunToneMap, m_clamp) < offsetof(zunToneMap, m_gamma));
    static_assert(sizeof(zunRange<double>) == 16);
    SUCCEED();
}

TEST(ToneMap, DefaultsAreNeutral)
{
    const zunToneMap map;
    EXPECT_EQ(map.GetBrightness(), 0.0);
    EXPECT_EQ(map.GetContrast(), 0.0);
    EXPECT_EQ(map.GetSaturation(), 0.0);
    EXPECT_FALSE(map.IsInverted());
    EXPECT_EQ(map.GetClamp().min, 0.0);
    EXPECT_EQ(map.GetClamp().max, 1.0);
    EXPECT_EQ(map.GetNacreGamma(), 0.0);
    EXPECT_EQ(map.GetStandardGamma(), 1.0);
}

TEST(ToneMap, NewMapsAreEqual)
{
    EXPECT_TRUE(zunToneMap() == zunToneMap());
    EXPECT_FALSE(zunToneMap() != zunToneMap());
}

TEST(ToneMap, SlidersClampAndReportOnlyRealChanges)
{
    zunToneMap map;
    EXPECT_TRUE(map.SetBrightness(2.0));
    EXPECT_EQ(map.GetBrightness(), 1.0);
    EXPECT_FALSE(map.SetBrightness(2.0));
    EXPECT_TRUE(map.SetBrightness(-5.0));
    EXPECT_EQ(map.GetBrightness(), -1.0);

    EXPECT_FALSE(zunToneMap().SetBrightness(0.0));
    EXPECT_FALSE(zunToneMap().SetContrast(0.0));
    EXPECT_FALSE(zunToneMap().SetSaturation(0.0));

    EXPECT_TRUE(map.SetContrast(0.25));
    EXPECT_EQ(map.GetContrast(), 0.25);
    EXPECT_TRUE(map.SetSaturation(-3.0));
    EXPECT_EQ(map.GetSaturation(), -1.0);
}

TEST(ToneMap, ANaNClampsToTheLowerEnd)
{
    zunToneMap map;
    EXPECT_TRUE(map.SetBrightness(kNaN));
    EXPECT_EQ(map.GetBrightness(), -1.0);
    EXPECT_TRUE(map.SetClampMax(kNaN));
    EXPECT_EQ(map.GetClamp().max, 0.0);
}

TEST(ToneMap, TheChangeTestIsRelative)
{
    zunToneMap map;
    ASSERT_TRUE(map.SetContrast(0.5));
    // One or two units in the last place of the sum is no change...
    EXPECT_FALSE(map.SetContrast(std::nextafter(0.5, 1.0)));
    EXPECT_FALSE(map.SetContrast(0.5 + 2.0 * std::numeric_limits<double>::epsilon() * 0.5));
    EXPECT_EQ(map.GetContrast(), 0.5);
    // ...but a few more are.
    EXPECT_TRUE(map.SetContrast(0.5 + 8.0 * std::numeric_limits<double>::epsilon()));
    EXPECT_GT(map.GetContrast(), 0.5);

    // Near zero a difference below the smallest normal double is no change.
    ASSERT_EQ(map.GetNacreGamma(), 0.0);
    EXPECT_FALSE(map.SetNacreGamma(1e-310));
    EXPECT_TRUE(map.SetNacreGamma(1e-300));
}

TEST(ToneMap, ClampEndsAreIndependent)
{
    zunToneMap map;
    EXPECT_TRUE(map.SetClampMin(0.8));
    EXPECT_TRUE(map.SetClampMax(0.2));
    EXPECT_EQ(map.GetClamp().min, 0.8);
    EXPECT_EQ(map.GetClamp().max, 0.2);

    EXPECT_TRUE(map.SetClampMin(-1.0));
    EXPECT_EQ(map.GetClamp().min, 0.0);
    EXPECT_TRUE(map.SetClampMax(3.0));
    EXPECT_EQ(map.GetClamp().max, 1.0);
}

TEST(ToneMap, SetClampDoesBothEnds)
{
    zunToneMap map;
    EXPECT_FALSE(map.SetClamp(0.0, 1.0));
    EXPECT_TRUE(map.SetClamp(0.0, 0.5)); // only the maximum changed
    EXPECT_EQ(map.GetClamp().max, 0.5);
    EXPECT_TRUE(map.SetClamp(zunRange<double>(0.25, 0.75)));
    EXPECT_EQ(map.GetClamp().min, 0.25);
    EXPECT_EQ(map.GetClamp().max, 0.75);
    EXPECT_FALSE(map.SetClamp(zunRange<double>(0.25, 0.75)));
    // The first end changing does not stop the second from being set.
    EXPECT_TRUE(map.SetClamp(0.1, 0.9));
    EXPECT_EQ(map.GetClamp().min, 0.1);
    EXPECT_EQ(map.GetClamp().max, 0.9);
}

TEST(ToneMap, InversionReportsChanges)
{
    zunToneMap map;
    EXPECT_FALSE(map.SetInverted(false));
    EXPECT_TRUE(map.SetInverted(true));
    EXPECT_TRUE(map.IsInverted());
    EXPECT_FALSE(map.SetInverted(true));
}

TEST(ToneMap, StandardGammaPairs)
{
    zunToneMap map;
    EXPECT_FALSE(map.SetStandardGamma(1.0));

    EXPECT_TRUE(map.SetStandardGamma(2.2));
    EXPECT_DOUBLE_EQ(map.GetNacreGamma(), 0.6);
    EXPECT_EQ(map.GetStandardGamma(), 2.2);

    EXPECT_TRUE(map.SetStandardGamma(0.5));
    EXPECT_EQ(map.GetNacreGamma(), -0.5);
    EXPECT_EQ(map.GetStandardGamma(), 0.5);
}

TEST(ToneMap, InternalGammaIsSymmetricAroundZero)
{
    zunToneMap map;
    EXPECT_TRUE(map.SetNacreGamma(1.0));
    EXPECT_EQ(map.GetStandardGamma(), 3.0);
    EXPECT_TRUE(map.SetNacreGamma(-1.0));
    EXPECT_DOUBLE_EQ(map.GetStandardGamma(), 1.0 / 3.0);
    // No clamp on the internal gamma.
    EXPECT_TRUE(map.SetNacreGamma(-40.0));
    EXPECT_EQ(map.GetNacreGamma(), -40.0);
}

TEST(ToneMap, GammaFormsAreInversesForPositiveGammas)
{
    zunToneMap map;
    for (double s = 0.05; s < 10.0; s *= 1.37)
    {
        map.SetStandardGamma(s);
        EXPECT_NEAR(map.GetStandardGamma(), s, 1e-14 * s) << s;
    }
}

TEST(ToneMap, ZeroStandardGammaIsInfiniteAndNeverAChange)
{
    // (0 - 1) / (2 * 0) is minus infinity; its distance to the stored value is
    // infinite, and so is the tolerance two epsilons of the infinite sum.
    zunToneMap map;
    EXPECT_FALSE(map.SetStandardGamma(0.0));
    EXPECT_EQ(map.GetNacreGamma(), 0.0);
    // A negative standard gamma is not refused.
    EXPECT_TRUE(map.SetStandardGamma(-1.0));
    EXPECT_EQ(map.GetNacreGamma(), 1.0); // (-1 - 1) / (2 * -1)
    EXPECT_FALSE(map.SetNacreGamma(-kInf));
}

TEST(ToneMap, SlidersCompareAtFourDecimals)
{
    bool (zunToneMap::*const setters[])(double) = {&zunToneMap::SetBrightness, &zunToneMap::SetContrast,
                                                   &zunToneMap::SetSaturation, &zunToneMap::SetNacreGamma};
    for (auto set : setters)
    {
        zunToneMap a, b;
        (a.*set)(0.5);
        (b.*set)(0.50005);
        EXPECT_TRUE(a == b);
        (b.*set)(0.5002);
        EXPECT_TRUE(a != b);
    }

    // Different sliders moved by the same amount differ.
    zunToneMap e, f;
    e.SetContrast(0.1);
    f.SetSaturation(0.1);
    EXPECT_TRUE(e != f);
}

TEST(ToneMap, InversionMakesMapsDiffer)
{
    zunToneMap a, b;
    b.SetInverted(true);
    EXPECT_TRUE(a != b);
    EXPECT_FALSE(a == b);
}

TEST(ToneMap, ClampsCompareAtMachinePrecision)
{
    zunToneMap a, b;
    a.SetClampMax(0.5);
    b.SetClampMax(0.50005);
    EXPECT_TRUE(a != b);
    b.SetClampMax(std::nextafter(0.5, 1.0));
    EXPECT_TRUE(a == b);

    zunToneMap c, d;
    c.SetClampMin(0.25);
    d.SetClampMin(0.2500001);
    EXPECT_TRUE(c != d);
}

TEST(ToneMap, CopiesCarryEveryField)
{
    zunToneMap map;
    map.SetBrightness(0.1);
    map.SetContrast(0.2);
    map.SetSaturation(0.3);
    map.SetInverted(true);
    map.SetClamp(0.4, 0.6);
    map.SetStandardGamma(1.8);
    zunToneMap copy;
    copy = map;
    EXPECT_TRUE(copy == map);
    EXPECT_EQ(copy.GetClamp().min, 0.4);
    EXPECT_EQ(copy.GetNacreGamma(), map.GetNacreGamma());
    const zunToneMap moved = std::move(copy);
    EXPECT_TRUE(moved == map);
}
