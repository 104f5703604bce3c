// Colors and transfer curves: space conversion, paint-like mixing and blend
// curve evaluation, a million values a run.
//
// Peers: Little CMS (what a program would otherwise call for sRGB <-> Lab;
// its Lab is relative to D50 with chromatic adaptation, so only the speed is
// comparable); a plain linear blend of the RGB channels, the mix a user would
// write by hand; and Newton's method on the Bezier curve, the usual way to
// evaluate such a transfer curve without a closed form.
#include <zunFoundation.h>

#include <benchmark/benchmark.h>

#include <lcms2.h>

#include <cmath>
#include <random>
#include <vector>

namespace
{
    const int kColors = 1000000;

    std::vector<double> RandomRgb()
    {
        std::mt19937 random(7);
        std::uniform_real_distribution<double> unit(0.0, 1.0);
        std::vector<double> rgb(3 * kColors);
        for (double & channel : rgb)
            channel = unit(random);
        return rgb;
    }

    std::vector<zunColor> RandomColors()
    {
        const std::vector<double> rgb = RandomRgb();
        std::vector<zunColor> colors;
        colors.reserve(kColors);
        for (int i = 0; i < kColors; ++i)
            colors.emplace_back(rgb[3 * i], rgb[3 * i + 1], rgb[3 * i + 2], zunColor::RGB);
        return colors;
    }

    void BM_Color_RgbToLabAndBack(benchmark::State & state)
    {
        const std::vector<zunColor> colors = RandomColors();
        for (auto _ : state)
        {
            double sum = 0.0;
            for (const zunColor & color : colors)
            {
                double L, a, b, r, g, bl;
                color.Get(L, a, b, zunColor::Lab);
                zunColor(L, a, b, zunColor::Lab).Get(r, g, bl, zunColor::RGB);
                sum += r + g + bl;
            }
            benchmark::DoNotOptimize(sum);
        }
        state.SetItemsProcessed(state.iterations() * kColors);
    }
    BENCHMARK(BM_Color_RgbToLabAndBack)->Unit(benchmark::kMillisecond);

    void BM_Lcms2_RgbToLabAndBack(benchmark::State & state)
    {
        const std::vector<double> rgb = RandomRgb();
        std::vector<double> lab(3 * kColors), back(3 * kColors);
        cmsHPROFILE srgb = cmsCreate_sRGBProfile();
        cmsHPROFILE labProfile = cmsCreateLab4Profile(nullptr);
        cmsHTRANSFORM toLab =
            cmsCreateTransform(srgb, TYPE_RGB_DBL, labProfile, TYPE_Lab_DBL, INTENT_PERCEPTUAL, cmsFLAGS_NOCACHE);
        cmsHTRANSFORM toRgb =
            cmsCreateTransform(labProfile, TYPE_Lab_DBL, srgb, TYPE_RGB_DBL, INTENT_PERCEPTUAL, cmsFLAGS_NOCACHE);
        for (auto _ : state)
        {
            cmsDoTransform(toLab, rgb.data(), lab.data(), kColors);
            cmsDoTransform(toRgb, lab.data(), back.data(), kColors);
            benchmark::DoNotOptimize(back.data());
        }
        cmsDeleteTransform(toRgb);
        cmsDeleteTransform(toLab);
        cmsCloseProfile(labProfile);
        cmsCloseProfile(srgb);
        state.SetItemsProcessed(state.iterations() * kColors);
    }
    BENCHMARK(BM_Lcms2_RgbToLabAndBack)->Unit(benchmark::kMillisecond);

    void BM_Color_Mix(benchmark::State & state)
    {
        const std::vector<zunColor> colors = RandomColors();
        const zunColor paint(0.8, 0.3, 0.1, zunColor::RGB);
        for (auto _ : state)
        {
            double sum = 0.0;
            for (const zunColor & color : colors)
                sum += zunColor::Mix(color, paint, 0.3).m_c1;
            benchmark::DoNotOptimize(sum);
        }
        state.SetItemsProcessed(state.iterations() * kColors);
    }
    BENCHMARK(BM_Color_Mix)->Unit(benchmark::kMillisecond);

    void BM_LinearBlend(benchmark::State & state)
    {
        const std::vector<double> rgb = RandomRgb();
        const double paint[3] = {0.8, 0.3, 0.1};
        const double t = 0.3;
        for (auto _ : state)
        {
            double sum = 0.0;
            for (int i = 0; i < kColors; ++i)
                for (int c = 0; c < 3; ++c)
                    sum += rgb[3 * i + c] + t * (paint[c] - rgb[3 * i + c]);
            benchmark::DoNotOptimize(sum);
        }
        state.SetItemsProcessed(state.iterations() * kColors);
    }
    BENCHMARK(BM_LinearBlend)->Unit(benchmark::kMillisecond);

    std::vector<double> UnitInputs()
    {
        std::vector<double> inputs(kColors);
        for (int i = 0; i < kColors; ++i)
            inputs[i] = (i + 0.5) / kColors;
        return inputs;
    }

    void BM_BlendFunction_EvalArray(benchmark::State & state)
    {
        std::vector<double> inputs = UnitInputs();
        const zunBlendFunction blend(static_cast<double>(state.range(0)) / 100.0);
        zunFastMesh<double> results;
        for (auto _ : state)
        {
            blend.Eval(inputs.data(), kColors, results);
            benchmark::DoNotOptimize(results[0]);
        }
        state.SetItemsProcessed(state.iterations() * kColors);
    }
    // Tension 0.5 runs the real branch, 0.9 mostly the complex one.
    BENCHMARK(BM_BlendFunction_EvalArray)->Arg(50)->Arg(90)->Unit(benchmark::kMillisecond);

    /// The curve's height at u by Newton's method on the abscissa, from t = u.
    double NewtonHeight(double u, double T)
    {
        double t = u;
        for (int i = 0; i < 8; ++i)
        {
            const double m = 1.0 - t;
            const double x = 3.0 * m * m * t * (1.0 - T) + 3.0 * m * t * t * T + t * t * t;
            const double slope = 3.0 * (1.0 - T) * m * m + 6.0 * (2.0 * T - 1.0) * m * t + 3.0 * (1.0 - T) * t * t;
            if (std::fabs(slope) < 1e-12)
                break;
            t -= (x - u) / slope;
        }
        return t * t * (3.0 - 2.0 * t);
    }

    void BM_NewtonBezier_EvalArray(benchmark::State & state)
    {
        const std::vector<double> inputs = UnitInputs();
        std::vector<double> results(kColors);
        const double T = static_cast<double>(state.range(0)) / 100.0;
        for (auto _ : state)
        {
            for (int i = 0; i < kColors; ++i)
                results[i] = NewtonHeight(inputs[i], T);
            benchmark::DoNotOptimize(results.data());
        }
        state.SetItemsProcessed(state.iterations() * kColors);
    }
    BENCHMARK(BM_NewtonBezier_EvalArray)->Arg(50)->Arg(90)->Unit(benchmark::kMillisecond);
}
