// zunColor: spaces, conversions, packed forms and color arithmetic.
#include <zunFoundation.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <type_traits>
#include <utility>

#include "colorsys_table.inc"

namespace
{
    struct Triple
    {
        double c0, c1, c2;
    };

    Triple In(const zunColor & color, zunColor::ColorSpace space)
    {
        Triple t{-1.0, -1.0, -1.0};
        color.Get(t.c0, t.c1, t.c2, space);
        return t;
    }

    Triple Stored(const zunColor & color)
    {
        return Triple{color.m_c0, color.m_c1, color.m_c2};
    }

    ::testing::AssertionResult Near(const Triple & actual, const Triple & expected, double tolerance)
    {
        if (std::fabs(actual.c0 - expected.c0) <= tolerance && std::fabs(actual.c1 - expected.c1) <= tolerance &&
            std::fabs(actual.c2 - expected.c2) <= tolerance)
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure()
               << "(" << actual.c0 << ", " << actual.c1 << ", " << actual.c2 << ") is not within " << tolerance
               << " of (" << expected.c0 << ", " << expected.c1 << ", " << expected.c2 << ")";
    }

    ::testing::AssertionResult Same(const Triple & actual, const Triple & expected)
    {
        return Near(actual, expected, 0.0);
    }

    const double kNaN = std::numeric_limits<double>::quiet_NaN();
    const double kInf = std::numeric_limits<double>::infinity();

    template <typename T, typename = void> struct IsAddable : std::false_type
    {
    };
    template <typename T>
    struct IsAddable<T, std::void_t<decltype(std::declval<T>() + std::declval<T>())>> : std::true_type
    {
    };
    template <typename T, typename = void> struct IsSubtractable : std::false_type
    {
    };
    template <typename T>
    struct IsSubtractable<T, std::void_t<decltype(std::declval<T>() - std::declval<T>())>> : std::true_type
    {
    };
    template <typename T, typename = void> struct IsAddAssignable : std::false_type
    {
    };
    template <typename T>
    struct IsAddAssignable<T, std::void_t<decltype(std::declval<T &>() += std::declval<T>())>> : std::true_type
    {
    };
    template <typename T, typename = void> struct IsSubtractAssignable : std::false_type
    {
    };
    template <typename T>
    struct IsSubtractAssignable<T, std::void_t<decltype(std::declval<T &>() -= std::declval<T>())>> : std::true_type
    {
    };
}

// ---- Layout and numbering ---------------------------------------------------

TEST(ColorLayout, SpacesAndComponentsHaveTheirNumbers)
{
    static_assert(zunColor::RGB == 0 && zunColor::HSV == 1 && zunColor::HSL == 2 && zunColor::Lab == 3 &&
                  zunColor::XYZ == 4 && zunColor::xyY == 5);
    static_assert(zunColor::RGB_R == 0 && zunColor::RGB_G == 1 && zunColor::RGB_B == 2);
    static_assert(zunColor::HSV_H == 3 && zunColor::HSV_S == 4 && zunColor::HSV_V == 5);
    static_assert(zunColor::HSL_H == 6 && zunColor::HSL_S == 7 && zunColor::HSL_L == 8);
    static_assert(zunColor::Lab_L == 9 && zunColor::Lab_a == 10 && zunColor::Lab_b == 11);
    static_assert(zunColor::XYZ_X == 12 && zunColor::XYZ_Y == 13 && zunColor::XYZ_Z == 14);
    static_assert(zunColor::xyY_x == 15 && zunColor::xyY_y == 16 && zunColor::xyY_Y == 17);
    static_assert(sizeof(zunColor::ColorSpace) == 4);
    static_assert(sizeof(zunColor) == 40);
    static_assert(std::is_standard_layout<zunColor>::value);
    SUCCEED();
}

TEST(ColorLayout, ColorsCannotBeAddedOrSubtractedWithOperators)
{
    static_assert(!IsAddable<zunColor>::value);
    static_assert(!IsSubtractable<zunColor>::value);
    static_assert(!IsAddAssignable<zunColor>::value);
    static_assert(!IsSubtractAssignable<zunColor>::value);
    SUCCEED();
}

// ---- Construction -----------------------------------------------------------

TEST(ColorConstruction, DefaultIsOpaqueBlackInRgb)
{
    zunColor color;
    EXPECT_EQ(color.GetColorSpace(), zunColor::RGB);
    EXPECT_TRUE(Same(Stored(color), {0.0, 0.0, 0.0}));
    EXPECT_EQ(color.GetAlpha(), 1.0);
}

TEST(ColorConstruction, EightBitValuesAreDividedAndClamped)
{
    zunColor color(51, 300, -5, 128);
    EXPECT_EQ(color.GetColorSpace(), zunColor::RGB);
    EXPECT_TRUE(Same(Stored(color), {51 / 255.0, 1.0, 0.0}));
    EXPECT_EQ(color.GetAlpha(), 128 / 255.0);
    EXPECT_EQ(zunColor(0, 0, 0, 999).GetAlpha(), 1.0);
}

TEST(ColorConstruction, KeepsTheSpaceItIsGivenAndClampsToItsDomain)
{
    zunColor lab(150.0, 200.0, -200.0, 0.25, zunColor::Lab);
    EXPECT_EQ(lab.GetColorSpace(), zunColor::Lab);
    EXPECT_TRUE(Same(Stored(lab), {100.0, 128.0, -127.0}));
    EXPECT_EQ(lab.GetAlpha(), 0.25);

    zunColor hsv(200.0, 0.5, 0.25, zunColor::HSV);
    EXPECT_EQ(hsv.GetColorSpace(), zunColor::HSV);
    EXPECT_TRUE(Same(Stored(hsv), {200.0, 0.5, 0.25}));
    EXPECT_EQ(hsv.GetAlpha(), 1.0);

    EXPECT_EQ(zunColor(0.1, 0.2, 0.3, 7.0, zunColor::RGB).GetAlpha(), 1.0);
    EXPECT_EQ(zunColor(0.1, 0.2, 0.3, -7.0, zunColor::RGB).GetAlpha(), 0.0);
}

TEST(ColorConstruction, ABadSpaceKeepsTheAlphaAndLeavesSafeComponents)
{
    const auto bad = static_cast<zunColor::ColorSpace>(6);
    zunColor color(0.1, 0.2, 0.3, 0.5, bad);
    EXPECT_EQ(color.GetColorSpace(), bad);
    EXPECT_EQ(color.GetAlpha(), 0.5);
    // The components could not be converted; they start at 0 rather than garbage.
    EXPECT_TRUE(Same(Stored(color), {0.0, 0.0, 0.0}));
    // Every later conversion reports the stored space and writes nothing.
    EXPECT_TRUE(Same(In(color, zunColor::RGB), {-1.0, -1.0, -1.0}));
    EXPECT_EQ(color.GetComponent(zunColor::RGB_R), 0.0);
}

TEST(ColorConstruction, AssignmentCopiesTheSpace)
{
    zunColor color;
    const zunColor lab(50.0, 10.0, 20.0, 0.5, zunColor::Lab);
    color = lab;
    EXPECT_EQ(color.GetColorSpace(), zunColor::Lab);
    EXPECT_TRUE(Same(Stored(color), {50.0, 10.0, 20.0}));
    EXPECT_EQ(color.GetAlpha(), 0.5);

    zunColor moved;
    moved = zunColor(120.0, 1.0, 1.0, zunColor::HSV);
    EXPECT_EQ(moved.GetColorSpace(), zunColor::HSV);
    EXPECT_TRUE(Same(Stored(moved), {120.0, 1.0, 1.0}));
}

// ---- Set and Get ------------------------------------------------------------

TEST(ColorSetGet, InputsAreClampedToTheNamedSpaceNotTheStoredOne)
{
    // Hue 300 is in HSV's domain although far outside RGB's.
    zunColor color;
    color.Set(300.0, 0.5, 0.5, zunColor::HSV);
    EXPECT_TRUE(Near(Stored(color), {0.5, 0.25, 0.5}, 1e-15));

    // The same numbers named as RGB are clamped to 0..1.
    zunColor hsv(0.0, 0.0, 0.0, zunColor::HSV);
    hsv.Set(300.0, 0.5, 0.5, zunColor::RGB);
    EXPECT_TRUE(Near(In(hsv, zunColor::RGB), {1.0, 0.5, 0.5}, 1e-12));
}

TEST(ColorSetGet, HueOverTheTopFallsIntoTheLastRange)
{
    zunColor color;
    color.Set(400.0, 2.0, 0.5, zunColor::HSV); // hue 360, S 1
    EXPECT_TRUE(Same(Stored(color), {0.5, 0.0, 0.0}));
}

TEST(ColorSetGet, SetStoresTheAlphaClampedAndTheThreeArgumentFormKeepsIt)
{
    zunColor color;
    color.Set(0.1, 0.2, 0.3, 1.5, zunColor::RGB);
    EXPECT_EQ(color.GetAlpha(), 1.0);
    color.Set(0.1, 0.2, 0.3, 0.25, zunColor::RGB);
    color.Set(0.4, 0.5, 0.6, zunColor::RGB);
    EXPECT_EQ(color.GetAlpha(), 0.25);
    EXPECT_TRUE(Same(Stored(color), {0.4, 0.5, 0.6}));
}

TEST(ColorSetGet, ANaNClampsToTheLowerBound)
{
    zunColor lab(50.0, 0.0, 0.0, zunColor::Lab);
    lab.Set(kNaN, kNaN, kNaN, kNaN, zunColor::Lab);
    EXPECT_TRUE(Same(Stored(lab), {0.0, -127.0, -127.0}));
    EXPECT_EQ(lab.GetAlpha(), 0.0);

    zunColor rgb(0.5, 0.5, 0.5, zunColor::RGB);
    rgb.Set(kNaN, 0.5, kInf, zunColor::RGB);
    EXPECT_TRUE(Same(Stored(rgb), {0.0, 0.5, 1.0}));
    EXPECT_EQ(zunColor(0.0, 0.0, 0.0, 1.0, zunColor::RGB).SetAlpha(kNaN).GetAlpha(), 0.0);
}

TEST(ColorSetGet, ABadSpaceStoresTheAlphaButLeavesTheTriple)
{
    const auto bad = static_cast<zunColor::ColorSpace>(9);
    zunColor color(0.1, 0.2, 0.3, 1.0, zunColor::RGB);
    color.Set(0.9, 0.9, 0.9, 0.5, bad);
    EXPECT_TRUE(Same(Stored(color), {0.1, 0.2, 0.3}));
    EXPECT_EQ(color.GetAlpha(), 0.5);

    color.Set(0.9, 0.9, 0.9, static_cast<zunColor::ColorSpace>(-1));
    EXPECT_TRUE(Same(Stored(color), {0.1, 0.2, 0.3}));
}

TEST(ColorSetGet, GetWithABadSpaceLeavesTheOutputsButGivesTheAlpha)
{
    const zunColor color(0.1, 0.2, 0.3, 0.75, zunColor::RGB);
    double a = -1.0, b = -2.0, c = -3.0, alpha = -4.0;
    color.Get(a, b, c, alpha, static_cast<zunColor::ColorSpace>(6));
    EXPECT_EQ(a, -1.0);
    EXPECT_EQ(b, -2.0);
    EXPECT_EQ(c, -3.0);
    EXPECT_EQ(alpha, 0.75);
}

TEST(ColorSetGet, GetInTheOwnSpaceGivesTheStoredTriple)
{
    const zunColor color(12.5, 0.25, 0.75, 0.5, zunColor::HSL);
    double h, s, l, alpha;
    color.Get(h, s, l, alpha, zunColor::HSL);
    EXPECT_TRUE(Same({h, s, l}, {12.5, 0.25, 0.75}));
    EXPECT_EQ(alpha, 0.5);
}

TEST(ColorSetGet, GetComponentConvertsToTheComponentsSpace)
{
    const zunColor hsv(120.0, 1.0, 1.0, zunColor::HSV);
    EXPECT_EQ(hsv.GetComponent(zunColor::RGB_R), 0.0);
    EXPECT_EQ(hsv.GetComponent(zunColor::RGB_G), 1.0);
    EXPECT_EQ(hsv.GetComponent(zunColor::RGB_B), 0.0);
    EXPECT_EQ(hsv.GetComponent(zunColor::HSV_H), 120.0);

    const zunColor red = zunColor::Red();
    double L, a, b;
    red.Get(L, a, b, zunColor::Lab);
    EXPECT_EQ(red.GetComponent(zunColor::Lab_L), L);
    EXPECT_EQ(red.GetComponent(zunColor::Lab_a), a);
    EXPECT_EQ(red.GetComponent(zunColor::Lab_b), b);
    EXPECT_EQ(red.GetComponent(zunColor::XYZ_Y), 0.2126);
}

TEST(ColorSetGet, ABadComponentGivesZero)
{
    const zunColor white = zunColor::White();
    EXPECT_EQ(white.GetComponent(static_cast<zunColor::Component>(18)), 0.0);
    EXPECT_EQ(white.GetComponent(static_cast<zunColor::Component>(-1)), 0.0);
}

TEST(ColorSetGet, AlphaSetters)
{
    zunColor color;
    EXPECT_EQ(color.SetAlpha(0.5).GetAlpha(), 0.5);
    EXPECT_EQ(color.SetAlpha(2.0).GetAlpha(), 1.0);
    EXPECT_EQ(color.SetAlpha(-0.5).GetAlpha(), 0.0);
    EXPECT_EQ(color.SetAlpha(51).GetAlpha(), 0.2);
    EXPECT_EQ(color.SetAlpha(1000).GetAlpha(), 1.0);
    EXPECT_EQ(color.SetAlpha(-3).GetAlpha(), 0.0);
}

// ---- Conversions ------------------------------------------------------------

TEST(ColorConversion, WhiteInXyzIsExactlyTheReferenceWhite)
{
    EXPECT_TRUE(Same(In(zunColor::White(), zunColor::XYZ), {0.95047, 1.0, 1.08883}));
    EXPECT_TRUE(Same(In(zunColor::White(), zunColor::Lab), {100.0, 0.0, 0.0}));
}

TEST(ColorConversion, TheHsvRowIsCrossedForHslAndXyz)
{
    const zunColor hsv(30.0, 0.6, 0.8, zunColor::HSV);
    const zunColor rgb(hsv.GetComponent(zunColor::RGB_R), hsv.GetComponent(zunColor::RGB_G),
                       hsv.GetComponent(zunColor::RGB_B), zunColor::RGB);
    // Asking for HSL gives the XYZ triple, asking for XYZ gives the HSL triple.
    EXPECT_TRUE(Same(In(hsv, zunColor::HSL), In(rgb, zunColor::XYZ)));
    EXPECT_TRUE(Same(In(hsv, zunColor::XYZ), In(rgb, zunColor::HSL)));
    EXPECT_EQ(hsv.GetComponent(zunColor::HSL_L), In(rgb, zunColor::XYZ).c2);
    // The other cells of the row are direct.
    EXPECT_TRUE(Same(In(hsv, zunColor::Lab), In(rgb, zunColor::Lab)));
    EXPECT_TRUE(Same(In(hsv, zunColor::xyY), In(rgb, zunColor::xyY)));

    // Setting is crossed the same way: HSV values stored into a color held in
    // HSL become the XYZ triple, and into a color held in XYZ the HSL triple.
    zunColor hsl(0.0, 0.0, 0.0, zunColor::HSL);
    hsl.Set(30.0, 0.6, 0.8, zunColor::HSV);
    EXPECT_TRUE(Same(Stored(hsl), In(rgb, zunColor::XYZ)));
    zunColor xyz(0.0, 0.0, 0.0, zunColor::XYZ);
    xyz.Set(30.0, 0.6, 0.8, zunColor::HSV);
    EXPECT_TRUE(Same(Stored(xyz), In(rgb, zunColor::HSL)));

    // The reverse direction is not crossed.
    zunColor back(0.0, 0.0, 0.0, zunColor::HSV);
    back.Set(0.2, 0.3, 0.4, zunColor::XYZ);
    const zunColor viaRgb(0.2, 0.3, 0.4, zunColor::XYZ);
    EXPECT_TRUE(Same(Stored(back), In(viaRgb, zunColor::HSV)));
}

TEST(ColorConversion, TheCrossingReachesModulationOfColorsHeldInHsl)
{
    // HSV_Modulate and operator*= store an HSV triple into the color's own
    // space; for a color held in HSL that store yields the XYZ triple.
    const zunColor hsl(210.0, 0.5, 0.4, zunColor::HSL);
    double h, s, v;
    hsl.Get(h, s, v, zunColor::HSV);
    const zunColor hsv(h, s, v, zunColor::HSV);
    const zunColor rgb(hsv.GetComponent(zunColor::RGB_R), hsv.GetComponent(zunColor::RGB_G),
                       hsv.GetComponent(zunColor::RGB_B), zunColor::RGB);

    const zunColor scaled = hsl * 1.0;
    EXPECT_EQ(scaled.GetColorSpace(), zunColor::HSL);
    EXPECT_TRUE(Same(Stored(scaled), In(rgb, zunColor::XYZ)));
    EXPECT_FALSE(Near(Stored(scaled), {210.0, 0.5, 0.4}, 0.01));
    EXPECT_TRUE(Near(Stored(zunColor::HSV_Modulate(hsl, 0.0, 1.0, 1.0)), In(rgb, zunColor::XYZ), 1e-12));
}

// Rows of the colorsys tables: {r, g, b, hue in degrees, saturation, value or lightness}.
template <size_t N> void ExpectRgbToSpaceMatches(const double (&table)[N][6], zunColor::ColorSpace space)
{
    for (const auto & row : table)
    {
        const Triple converted = In(zunColor(row[0], row[1], row[2], zunColor::RGB), space);
        // The hue runs to 360, so it gets the same relative tolerance.
        EXPECT_TRUE(Near({converted.c0 / 360.0, converted.c1, converted.c2}, {row[3] / 360.0, row[4], row[5]}, 1e-12))
            << row[0] << " " << row[1] << " " << row[2];
    }
}

template <size_t N> void ExpectSpaceToRgbMatches(const double (&table)[N][6], zunColor::ColorSpace space)
{
    for (const auto & row : table)
        EXPECT_TRUE(Near(In(zunColor(row[3], row[4], row[5], space), zunColor::RGB), {row[0], row[1], row[2]}, 1e-12))
            << row[3] << " " << row[4] << " " << row[5];
}

TEST(ColorConversion, RgbToHsvMatchesColorsys)
{
    ExpectRgbToSpaceMatches(kRgbToHsv, zunColor::HSV);
}

TEST(ColorConversion, RgbToHslMatchesColorsys)
{
    ExpectRgbToSpaceMatches(kRgbToHsl, zunColor::HSL);
}

TEST(ColorConversion, HsvToRgbMatchesColorsys)
{
    ExpectSpaceToRgbMatches(kHsvToRgb, zunColor::HSV);
}

TEST(ColorConversion, HslToRgbMatchesColorsys)
{
    ExpectSpaceToRgbMatches(kHslToRgb, zunColor::HSL);
}

TEST(ColorConversion, LabOfKnownSrgbColorsMatchesPublishedValues)
{
    // CIE L*a*b* (D65) of sRGB colors as commonly published to two decimals;
    // the published tables differ among themselves in the second decimal.
    struct Reference
    {
        int r, g, b;
        double L, a, bb;
    };
    const Reference references[] = {
        {255, 0, 0, 53.24, 80.09, 67.20},    {0, 255, 0, 87.73, -86.18, 83.18},    {0, 0, 255, 32.30, 79.19, -107.86},
        {255, 255, 0, 97.14, -21.55, 94.48}, {0, 255, 255, 91.11, -48.09, -14.13}, {255, 0, 255, 60.32, 98.23, -60.82},
        {128, 128, 128, 53.59, 0.0, 0.0},    {192, 192, 192, 77.70, 0.0, 0.0},     {128, 0, 0, 25.53, 48.06, 38.06},
        {255, 165, 0, 74.93, 23.93, 78.95},  {255, 255, 255, 100.0, 0.0, 0.0},     {0, 0, 0, 0.0, 0.0, 0.0},
    };
    for (const Reference & ref : references)
    {
        const zunColor color(ref.r, ref.g, ref.b, 255);
        EXPECT_TRUE(Near(In(color, zunColor::Lab), {ref.L, ref.a, ref.bb}, 0.03))
            << ref.r << " " << ref.g << " " << ref.b;
    }
}

TEST(ColorConversion, RgbToHsvSnapsNearlyEmptyAndNearlyFullChannels)
{
    const zunColor color(0.99995, 0.5, 0.000005, zunColor::RGB);
    EXPECT_TRUE(Same(In(color, zunColor::HSV), {30.0, 1.0, 1.0}));
    // A value of 0.00001 or less has no hue and no saturation.
    EXPECT_TRUE(Same(In(zunColor(0.00001, 0.0, 0.0, zunColor::RGB), zunColor::HSV), {0.0, 0.0, 0.00001}));
    EXPECT_TRUE(Same(In(zunColor::Black(), zunColor::HSV), {0.0, 0.0, 0.0}));
    // Grays have no hue.
    EXPECT_TRUE(Same(In(zunColor::Silver(), zunColor::HSV), {0.0, 0.0, 0.75}));
}

TEST(ColorConversion, RgbToHslTreatsChannelsWithinOneStepOfTheLargestAsTheLargest)
{
    // Spreads below 1/256 are gray: no hue and no saturation.
    EXPECT_TRUE(Near(In(zunColor(0.5, 0.503, 0.501, zunColor::RGB), zunColor::HSL), {0.0, 0.0, 0.5015}, 1e-15));
    // Red is within 1/256 of the largest channel, green, so the hue is taken
    // from red's formula: (g - b) / d = 1, i.e. 60 degrees (the exact hue of
    // this color would be about 60.3).
    const Triple hsl = In(zunColor(0.5, 0.502, 0.1, zunColor::RGB), zunColor::HSL);
    EXPECT_DOUBLE_EQ(hsl.c0, 60.0);
    // Green within 1/256 of blue, the largest: green's formula, (b - r) / d + 2.
    const Triple cyan = In(zunColor(0.1, 0.5, 0.502, zunColor::RGB), zunColor::HSL);
    EXPECT_DOUBLE_EQ(cyan.c0, ((0.502 - 0.1) / 0.402 + 2.0) * 60.0);
}

TEST(ColorConversion, HslToRgbWithoutSaturationIsTheLightness)
{
    EXPECT_TRUE(Same(In(zunColor(123.0, 0.0, 0.3, zunColor::HSL), zunColor::RGB), {0.3, 0.3, 0.3}));
    // HSV has no such shortcut, but a zero chroma gives the same result.
    EXPECT_TRUE(Same(In(zunColor(123.0, 0.0, 0.3, zunColor::HSV), zunColor::RGB), {0.3, 0.3, 0.3}));
}

TEST(ColorConversion, HueRangesAreHalfOpen)
{
    const double hues[] = {0.0, 60.0, 120.0, 180.0, 240.0, 300.0, 360.0};
    const Triple expected[] = {{1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 1, 1}, {0, 0, 1}, {1, 0, 1}, {1, 0, 0}};
    for (int i = 0; i < 7; ++i)
    {
        EXPECT_TRUE(Same(In(zunColor(hues[i], 1.0, 1.0, zunColor::HSV), zunColor::RGB), expected[i])) << hues[i];
        EXPECT_TRUE(Same(In(zunColor(hues[i], 1.0, 0.5, zunColor::HSL), zunColor::RGB), expected[i])) << hues[i];
    }
}

TEST(ColorConversion, LabComponentsAreClampedToTheirDomain)
{
    // Pure Y without X and Z lies far outside the a and b ranges.
    const zunColor xyz(0.0, 1.0, 0.0, zunColor::XYZ);
    EXPECT_TRUE(Same(In(xyz, zunColor::Lab), {100.0, -127.0, 128.0}));
}

TEST(ColorConversion, DarkLabUsesTheLinearSegment)
{
    // L at or below 7.9996248 gives Y = L / 903.3.
    const zunColor lab(5.0, 0.0, 0.0, zunColor::Lab);
    EXPECT_DOUBLE_EQ(lab.GetComponent(zunColor::XYZ_Y), 5.0 / 903.3);
    const zunColor light(50.0, 0.0, 0.0, zunColor::Lab);
    EXPECT_DOUBLE_EQ(light.GetComponent(zunColor::XYZ_Y), std::pow(66.0 / 116.0, 3.0));
    // And back: a small Y gives L = 903.3 Y.
    EXPECT_NEAR(zunColor(0.0, 0.005, 0.0, zunColor::XYZ).GetComponent(zunColor::Lab_L), 903.3 * 0.005, 1e-12);
}

TEST(ColorConversion, RoundTripsThroughLabStayCloseToTheEightBitGrid)
{
    // The forward and backward matrices are four-digit roundings of each
    // other's inverse, so a round trip is close but not exact.
    for (int r = 0; r <= 255; r += 17)
        for (int g = 0; g <= 255; g += 17)
            for (int b = 0; b <= 255; b += 17)
            {
                const zunColor color(r, g, b, 255);
                double L, A, B;
                color.Get(L, A, B, zunColor::Lab);
                const zunColor back(L, A, B, zunColor::Lab);
                EXPECT_TRUE(Near(In(back, zunColor::RGB), Stored(color), 0.5 / 255.0)) << r << " " << g << " " << b;
            }
}

TEST(ColorConversion, XyyOfBlackIsZeroInsteadOfNaN)
{
    EXPECT_TRUE(Same(In(zunColor::Black(), zunColor::xyY), {0.0, 0.0, 0.0}));
    const Triple white = In(zunColor::White(), zunColor::xyY);
    const double sum = 0.95047 + 1.0 + 1.08883;
    EXPECT_TRUE(Near(white, {0.95047 / sum, 1.0 / sum, 1.0}, 1e-15));
}

TEST(ColorConversion, XyyWithoutChromaticityYGivesTheWhiteValueOrZero)
{
    // q = Y / y is infinite: X and Z hit their upper bounds.
    EXPECT_TRUE(Same(In(zunColor(0.3, 0.0, 0.5, zunColor::xyY), zunColor::XYZ), {0.95047, 0.5, 1.08883}));
    // q is NaN: everything lands on 0.
    EXPECT_TRUE(Same(In(zunColor(0.3, 0.0, 0.0, zunColor::xyY), zunColor::XYZ), {0.0, 0.0, 0.0}));
    // x = 0 with infinite q is NaN for X.
    EXPECT_TRUE(Same(In(zunColor(0.0, 0.0, 0.5, zunColor::xyY), zunColor::XYZ), {0.0, 0.5, 1.08883}));
}

TEST(ColorConversion, XyyRoundTrip)
{
    const zunColor xyz(0.3, 0.4, 0.5, zunColor::XYZ);
    const Triple xyy = In(xyz, zunColor::xyY);
    EXPECT_TRUE(Near(xyy, {0.25, 0.4 / 1.2, 0.4}, 1e-15));
    EXPECT_TRUE(Near(In(zunColor(xyy.c0, xyy.c1, xyy.c2, zunColor::xyY), zunColor::XYZ), {0.3, 0.4, 0.5}, 1e-15));
}

// ---- Eight-bit and packed forms ---------------------------------------------

TEST(ColorPacked, EightBitFormTruncates)
{
    unsigned char r, g, b, a;
    zunColor(1.0, 0.999, 0.5, 0.999, zunColor::RGB).GetRGBInt(r, g, b, a);
    EXPECT_EQ(r, 255);
    EXPECT_EQ(g, 254);
    EXPECT_EQ(b, 127);
    EXPECT_EQ(a, 254);
    zunColor(0.0, 0.002, 0.004, zunColor::RGB).GetRGBInt(r, g, b);
    EXPECT_EQ(r, 0);
    EXPECT_EQ(g, 0);
    EXPECT_EQ(b, 1);
}

TEST(ColorPacked, EightBitFormConvertsFromTheStoredSpace)
{
    unsigned char r, g, b;
    zunColor(240.0, 1.0, 1.0, zunColor::HSV).GetRGBInt(r, g, b);
    EXPECT_EQ(r, 0);
    EXPECT_EQ(g, 0);
    EXPECT_EQ(b, 255);
}

TEST(ColorPacked, FullEightBitWhiteEqualsWhite)
{
    EXPECT_TRUE(zunColor(255, 255, 255, 255) == zunColor::White());
    EXPECT_FALSE(zunColor(255, 255, 255, 255) != zunColor::White());
}

TEST(ColorPacked, PackedRedHasRedInTheLowestByte)
{
    EXPECT_EQ(static_cast<unsigned long>(zunColor::Red()), 255ul);
    EXPECT_EQ(zunColor::Red().GetRGBA32(), 0xFF0000FFu);
    const zunColor color(0x11, 0x22, 0x33, 0x44);
    EXPECT_EQ(color.GetRGBA32(), 0x44332211u);
    EXPECT_EQ(static_cast<unsigned long>(color), 0x332211ul);
}

TEST(ColorPacked, SetRGBIntKeepsOrSetsTheAlpha)
{
    zunColor color(0.0, 0.0, 0.0, 0.5, zunColor::RGB);
    color.SetRGBInt(51, 102, 255);
    EXPECT_TRUE(Same(Stored(color), {0.2, 0.4, 1.0}));
    EXPECT_EQ(color.GetAlpha(), 0.5);
    color.SetRGBInt(0, 0, 0, 51);
    EXPECT_EQ(color.GetAlpha(), 0.2);

    zunColor hsv(0.0, 0.0, 0.0, zunColor::HSV);
    hsv.SetRGBInt(0, 255, 0);
    EXPECT_TRUE(Same(Stored(hsv), {120.0, 1.0, 1.0}));
}

TEST(ColorPacked, SetWin32ColorRefTakesRedFromTheLowestByte)
{
    zunColor color(0.0, 0.0, 0.0, 0.25, zunColor::RGB);
    color.SetWin32ColorRef(0xFF993366ul);
    EXPECT_TRUE(Same(Stored(color), {0x66 / 255.0, 0x33 / 255.0, 0x99 / 255.0}));
    EXPECT_EQ(color.GetAlpha(), 0.25); // the top byte is no alpha
    EXPECT_EQ(static_cast<unsigned long>(color), 0x993366ul);
}

TEST(ColorPacked, VectorsHoldRgbAndAlpha)
{
    const zunColor color(0.25, 0.5, 0.75, 0.125, zunColor::RGB);
    const zunVector3T<double> v3 = color;
    const zunVector3T<float> f3 = color;
    const zunVector4T<double> v4 = color;
    const zunVector4T<float> f4 = color;
    EXPECT_TRUE(Same({v3.x, v3.y, v3.z}, {0.25, 0.5, 0.75}));
    EXPECT_TRUE(Same({f3.x, f3.y, f3.z}, {0.25, 0.5, 0.75}));
    EXPECT_TRUE(Same({v4.x, v4.y, v4.z}, {0.25, 0.5, 0.75}));
    EXPECT_TRUE(Same({f4.x, f4.y, f4.z}, {0.25, 0.5, 0.75}));
    EXPECT_EQ(v4.w, 0.125);
    EXPECT_EQ(f4.w, 0.125f);

    const zunVector3T<double> fromHsv = zunColor(240.0, 1.0, 0.5, zunColor::HSV);
    EXPECT_TRUE(Same({fromHsv.x, fromHsv.y, fromHsv.z}, {0.0, 0.0, 0.5}));
}

// ---- Equality ---------------------------------------------------------------

TEST(ColorEquality, ComponentsWithinOneStepAreEqual)
{
    const zunColor a(0.5, 0.5, 0.5, zunColor::RGB);
    EXPECT_TRUE(a == zunColor(0.5 + 0.00390625, 0.5 - 0.00390625, 0.5, zunColor::RGB));
    EXPECT_TRUE(a != zunColor(0.5 + 0.004, 0.5, 0.5, zunColor::RGB));
    EXPECT_TRUE(a != zunColor(0.5, 0.5, 0.496, zunColor::RGB));
}

TEST(ColorEquality, SpaceAndAlphaAreIgnored)
{
    const zunColor rgb(0.5, 0.25, 0.75, 1.0, zunColor::RGB);
    const zunColor lab(0.5, 0.25, 0.75, 0.0, zunColor::Lab);
    EXPECT_TRUE(rgb == lab);
    // The same color held in two spaces is usually unequal.
    EXPECT_TRUE(zunColor::Red() != zunColor(0.0, 1.0, 1.0, zunColor::HSV));
}

// ---- Arithmetic -------------------------------------------------------------

TEST(ColorArithmetic, AddWeighsTheChannelsWithoutNormalising)
{
    zunColor color(0.2, 0.4, 0.6, 0.5, zunColor::RGB);
    const zunColor other(0.4, 0.4, 0.4, 0.0, zunColor::RGB);
    color.Add(other, 0.5, 0.25);
    EXPECT_TRUE(Near(Stored(color), {0.2, 0.3, 0.4}, 1e-15));
    EXPECT_EQ(color.GetAlpha(), 0.5); // the other's alpha is not used

    // The sum is clamped by the store, not normalised.
    EXPECT_TRUE(Same(Stored(zunColor::Add(zunColor::Gray(), zunColor::Gray(), 1.0, 1.0)), {1.0, 1.0, 1.0}));
}

TEST(ColorArithmetic, AddClampsTheWeights)
{
    const zunColor color(0.2, 0.4, 0.6, zunColor::RGB);
    EXPECT_TRUE(Same(Stored(zunColor::Add(color, zunColor::White(), 2.0, -1.0)), {0.2, 0.4, 0.6}));
    EXPECT_TRUE(Same(Stored(zunColor::Add(color, zunColor::White(), -1.0, 7.0)), {1.0, 1.0, 1.0}));
}

TEST(ColorArithmetic, AddStoresIntoTheColorsOwnSpace)
{
    const zunColor hsv(0.0, 1.0, 0.5, zunColor::HSV); // RGB (0.5, 0, 0)
    const zunColor sum = zunColor::Add(hsv, zunColor::Navy(), 1.0, 1.0);
    EXPECT_EQ(sum.GetColorSpace(), zunColor::HSV);
    EXPECT_TRUE(Same(Stored(sum), {300.0, 1.0, 0.5}));
}

TEST(ColorArithmetic, StaticFormsLeaveTheirArgumentAlone)
{
    const zunColor color(0.2, 0.4, 0.6, zunColor::RGB);
    const zunColor copy = color;
    zunColor::Add(color, zunColor::White(), 1.0, 1.0);
    zunColor::Mix(color, zunColor::White(), 0.5);
    zunColor::Saturate(color, 0.0);
    zunColor::HSV_Modulate(color, 90.0, 0.5, 0.5);
    (void)(color * 0.5);
    EXPECT_TRUE(Same(Stored(color), Stored(copy)));
}

TEST(ColorArithmetic, MixOfAZeroChannelAtZeroGivesAboutTheFloor)
{
    zunColor red = zunColor::Red();
    red.Mix(zunColor::White(), 0.0);
    EXPECT_EQ(red.m_c0, 1.0);
    EXPECT_NEAR(red.m_c1, 0.00001, 1e-10);
    EXPECT_NEAR(red.m_c2, 0.00001, 1e-10);
    EXPECT_GT(red.m_c1, 0.0);
}

TEST(ColorArithmetic, MixOfWhiteAndBlackIsNearlyBlackLikePaint)
{
    const zunColor mixed = zunColor::Mix(zunColor::White(), zunColor::Black(), 0.5);
    EXPECT_NEAR(mixed.m_c0, 0.00002, 1e-9);
    EXPECT_NEAR(mixed.m_c1, 0.00002, 1e-9);
    EXPECT_NEAR(mixed.m_c2, 0.00002, 1e-9);
}

TEST(ColorArithmetic, MixFollowsKubelkaMunk)
{
    // Yellow and cyan paint make green, not gray.
    const zunColor green = zunColor::Mix(zunColor::Yellow(), zunColor::Aqua(), 0.5);
    EXPECT_NEAR(green.m_c0, 0.00002, 1e-9);
    EXPECT_EQ(green.m_c1, 1.0);
    EXPECT_NEAR(green.m_c2, 0.00002, 1e-9);

    // Each channel: k = t kb + (1 - t) ka with k = (1 - R)^2 / 2R, then R = k + 1 - sqrt(k^2 + 2k).
    const double a = 0.8, b = 0.3, t = 0.25;
    const double ka = (1 - a) * (1 - a) / (2 * a), kb = (1 - b) * (1 - b) / (2 * b);
    const double k = t * kb + (1 - t) * ka;
    const double expected = k + 1 - std::sqrt(k * k + 2 * k);
    const zunColor mixed = zunColor::Mix(zunColor(a, a, a, 0.5, zunColor::RGB), zunColor(b, b, b, zunColor::RGB), t);
    EXPECT_TRUE(Near(Stored(mixed), {expected, expected, expected}, 1e-15));
    EXPECT_EQ(mixed.GetAlpha(), 0.5);
    // Mixing a color with itself keeps it.
    EXPECT_TRUE(Near(Stored(zunColor::Mix(zunColor(a, b, 0.5, zunColor::RGB), zunColor(a, b, 0.5, zunColor::RGB), 0.7)),
                     {a, b, 0.5}, 1e-14));
}

TEST(ColorArithmetic, MixDoesNotClampT)
{
    // t = 2 goes beyond the other color, darker than the gray itself.
    const zunColor beyond = zunColor::Mix(zunColor::White(), zunColor::Gray(), 2.0);
    const double kb = 0.25 / 1.0; // (1 - 0.5)^2 / (2 * 0.5)
    const double k = 2.0 * kb;
    EXPECT_NEAR(beyond.m_c0, k + 1 - std::sqrt(k * k + 2 * k), 1e-15);
    // A t that makes k negative between -2 and 0 gives NaN, stored as 0.
    EXPECT_TRUE(Same(Stored(zunColor::Mix(zunColor::White(), zunColor::Gray(), -2.0)), {0.0, 0.0, 0.0}));
}

TEST(ColorArithmetic, SaturateScalesTheHslSaturation)
{
    const zunColor color(0.6, 0.4, 0.4, 0.5, zunColor::RGB); // HSL (0, 0.2, 0.5)
    EXPECT_TRUE(Near(Stored(zunColor::Saturate(color, 2.0)), {0.7, 0.3, 0.3}, 1e-14));
    EXPECT_TRUE(Near(Stored(zunColor::Saturate(color, 10.0)), {1.0, 0.0, 0.0}, 1e-14)); // S clamped to 1
    EXPECT_TRUE(Same(Stored(zunColor::Saturate(color, 0.0)), {0.5, 0.5, 0.5}));
    EXPECT_EQ(zunColor::Saturate(color, 2.0).GetAlpha(), 0.5);
}

TEST(ColorArithmetic, HsvModulateWrapsHuesUpwardsOnly)
{
    zunColor color(5.0, 1.0, 1.0, zunColor::HSV);
    color.HSV_Modulate(-10.0, 1.0, 1.0);
    EXPECT_EQ(color.m_c0, 0.0); // not 355

    EXPECT_NEAR(zunColor::HSV_Modulate(zunColor(350.0, 1.0, 1.0, zunColor::HSV), 20.0, 1.0, 1.0).m_c0, 10.0, 1e-12);
    EXPECT_NEAR(zunColor::HSV_Modulate(zunColor(10.0, 1.0, 1.0, zunColor::HSV), 725.0, 1.0, 1.0).m_c0, 15.0, 1e-12);
}

TEST(ColorArithmetic, HsvModulateScalesSaturationAndValue)
{
    const zunColor color(200.0, 0.5, 0.8, 0.25, zunColor::HSV);
    const zunColor result = zunColor::HSV_Modulate(color, 30.0, 0.5, 0.5);
    EXPECT_TRUE(Near(Stored(result), {230.0, 0.25, 0.4}, 1e-13));
    EXPECT_EQ(result.GetAlpha(), 0.25);
    // Factors that leave the domain are clamped by the store.
    EXPECT_TRUE(Near(Stored(zunColor::HSV_Modulate(color, 0.0, 3.0, 3.0)), {200.0, 1.0, 1.0}, 1e-13));
}

TEST(ColorArithmetic, MultiplyScalesTheBrightnessNotTheChannels)
{
    zunColor color(0.8, 0.4, 0.2, 0.5, zunColor::RGB);
    color *= 0.5;
    EXPECT_TRUE(Near(Stored(color), {0.4, 0.2, 0.1}, 1e-14));
    EXPECT_EQ(color.GetAlpha(), 0.5);
    // Beyond full value the hue and saturation stay: (1, 0.5, 0.25) rather than
    // the channel-wise (1, 0.8, 0.4).
    const zunColor brighter = zunColor(0.8, 0.4, 0.2, zunColor::RGB) * 2.0;
    EXPECT_TRUE(Near(Stored(brighter), {1.0, 0.5, 0.25}, 1e-14));
}

TEST(ColorArithmetic, SaturateMultFromSlider)
{
    EXPECT_EQ(zunColor::GetSaturateMultFromPS(-1.0), 0.0);
    EXPECT_EQ(zunColor::GetSaturateMultFromPS(0.0), 1.0);
    EXPECT_EQ(zunColor::GetSaturateMultFromPS(1.0), 5.0);
    EXPECT_EQ(zunColor::GetSaturateMultFromPS(-0.5), 0.5);
    EXPECT_EQ(zunColor::GetSaturateMultFromPS(0.5), 3.0);
}

TEST(ColorArithmetic, DistanceIsMeasuredInLab)
{
    const zunColor color(0.3, 0.6, 0.9, zunColor::RGB);
    EXPECT_EQ(color.Distance(color), 0.0);
    EXPECT_EQ(color.Distance2(color), 0.0);

    // White to black: L runs from 100 to 0.
    EXPECT_DOUBLE_EQ(zunColor::White().Distance(zunColor::Black()), 100.0);
    EXPECT_DOUBLE_EQ(zunColor::White().Distance2(zunColor::Black()), 10000.0);

    const zunColor lab(60.0, 10.0, -20.0, zunColor::Lab);
    const zunColor other(50.0, 13.0, -16.0, zunColor::Lab);
    EXPECT_DOUBLE_EQ(lab.Distance2(other), 100.0 + 9.0 + 16.0);
    EXPECT_DOUBLE_EQ(lab.Distance(other), std::sqrt(125.0));
}

TEST(ColorArithmetic, GrayIsTheHslLightness)
{
    EXPECT_DOUBLE_EQ(zunColor(0.2, 0.6, 0.4, zunColor::RGB).GetGray(), 0.4);
    EXPECT_EQ(zunColor::White().GetGray(), 1.0);
    EXPECT_EQ(zunColor::Black().GetGray(), 0.0);
    // A color held in another space passes through the conversion.
    const zunColor lab(0.0, 0.0, 0.0, zunColor::Lab);
    EXPECT_EQ(lab.GetGray(), 0.0);
    EXPECT_NEAR(zunColor(50.0, 0.0, 0.0, zunColor::Lab).GetGray(),
                zunColor(50.0, 0.0, 0.0, zunColor::Lab).GetComponent(zunColor::RGB_R), 1e-3);
}

TEST(ColorNamed, SixteenNamedColors)
{
    struct Named
    {
        zunColor color;
        Triple rgb;
    };
    const Named named[] = {
        {zunColor::Aqua(), {0, 1, 1}},
        {zunColor::Black(), {0, 0, 0}},
        {zunColor::Blue(), {0, 0, 1}},
        {zunColor::Fuchsia(), {1, 0, 1}},
        {zunColor::Gray(), {0.5, 0.5, 0.5}},
        {zunColor::Green(), {0, 0.5, 0}},
        {zunColor::Lime(), {0, 1, 0}},
        {zunColor::Maroon(), {0.5, 0, 0}},
        {zunColor::Navy(), {0, 0, 0.5}},
        {zunColor::Olive(), {0.5, 0.5, 0}},
        {zunColor::Purple(), {0.5, 0, 0.5}},
        {zunColor::Red(), {1, 0, 0}},
        {zunColor::Silver(), {0.75, 0.75, 0.75}},
        {zunColor::Teal(), {0, 0.5, 0.5}},
        {zunColor::White(), {1, 1, 1}},
        {zunColor::Yellow(), {1, 1, 0}},
    };
    for (const Named & n : named)
    {
        EXPECT_EQ(n.color.GetColorSpace(), zunColor::RGB);
        EXPECT_EQ(n.color.GetAlpha(), 1.0);
        EXPECT_TRUE(Same(Stored(n.color), n.rgb));
    }
}
