// Colors and tone maps: a swatch picked in one color space, read in others,
// adjusted the way a color dialog does it, and the tone-map parameters of a
// viewport, redrawn only when a slider really changed something.
//
// Build and run:   cmake --build build --target example_colors_and_tone_maps
//                  build/examples/colors_and_tone_maps
#include <zunFoundation.h>

#include <cstdio>
#include <cstdlib>

namespace
{
    void Print(const char * label, const zunColor & color)
    {
        double r, g, b, L, A, B;
        color.Get(r, g, b, zunColor::RGB); // converted on the spot; the color keeps its own space
        color.Get(L, A, B, zunColor::Lab);
        std::printf("%-28s RGB (%.3f, %.3f, %.3f)  Lab (%6.2f, %7.2f, %7.2f)  packed 0x%08X\n", label, r, g, b, L, A, B,
                    color.GetRGBA32());
    }
}

int main()
{
    // A color remembers the space it was made in. This one is held in HSV:
    // hue 30 degrees, saturation 0.8, value 0.9, half transparent.
    zunColor swatch(30.0, 0.8, 0.9, 0.5, zunColor::HSV);
    Print("swatch (held in HSV)", swatch);

    // Eight-bit values, as a bitmap or a color picker gives them.
    const zunColor sky(135, 206, 235, 255);
    Print("sky (from 8-bit RGB)", sky);

    // Inputs are clamped to the domain of the space they are given in, so a
    // slider that overshoots does no harm: hue 400 counts as 360, saturation 2 as 1.
    zunColor overshoot;
    overshoot.Set(400.0, 2.0, 0.5, zunColor::HSV);
    Print("Set(400, 2, 0.5) in HSV", overshoot);

    // Adjustments change the color in place and return it, so they chain.
    // Keep a color you adjust in RGB: conversions between HSV and the two
    // spaces HSL and XYZ are crossed on purpose (stored documents rely on it,
    // see zunColor.h), and Saturate works in HSL.
    double r, g, b, alpha;
    swatch.Get(r, g, b, alpha, zunColor::RGB);
    zunColor adjusted(r, g, b, alpha, zunColor::RGB);
    adjusted
        .HSV_Modulate(20.0, 1.0, 0.8)                     // hue +20 degrees, 20% darker
        .Saturate(zunColor::GetSaturateMultFromPS(0.25)); // a saturation slider at +0.25
    Print("turned, darker, saturated", adjusted);

    // Two ways to combine colors: Add weighs the channels, Mix behaves like
    // paint, where the darker color dominates.
    Print("yellow + blue, Add 0.5/0.5", zunColor::Add(zunColor::Yellow(), zunColor::Blue(), 0.5, 0.5));
    Print("yellow + blue, Mix 0.5", zunColor::Mix(zunColor::Yellow(), zunColor::Blue(), 0.5));

    // Distances are perceptual (in Lab); equality is to 1/256 per component.
    std::printf("distance swatch -> adjusted: %.2f\n", swatch.Distance(adjusted));
    if (!(zunColor(255, 0, 0, 255) == zunColor::Red()))
        return EXIT_FAILURE;

    // The tone map of a viewport. Each setter answers whether the stored value
    // changed: use it to redraw only when needed.
    zunToneMap view;
    int redraws = 0;
    const double brightnessSlider[] = {0.10, 0.10, 0.25, 3.0, 3.0}; // repeated and out-of-range positions
    for (double position : brightnessSlider)
        if (view.SetBrightness(position)) // clamped to -1..1 first
            ++redraws;
    std::printf("brightness %.2f after 5 slider events, %d redraws\n", view.GetBrightness(), redraws);

    // Gamma comes in two forms: the display exponent (1 neutral) and the
    // stored internal form (0 neutral).
    view.SetStandardGamma(2.2);
    std::printf("display gamma %.2f is stored as %.2f\n", view.GetStandardGamma(), view.GetNacreGamma());

    // Tone maps compare at slider precision, so tiny drifts are not changes.
    zunToneMap saved = view;
    saved.SetContrast(0.00005);
    std::printf("saved view %s the current one\n", saved == view ? "equals" : "differs from");

    return redraws == 3 && saved == view ? EXIT_SUCCESS : EXIT_FAILURE;
}
