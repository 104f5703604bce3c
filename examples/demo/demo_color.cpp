// Demo sections of the color family: spaces, paint-like mixing, tone maps.
#include <zunFoundation.h>

#include <chrono>
#include <cstdio>
#include <thread>

#include "DemoSection.h"

namespace
{
    void PrintIn(const char * label, const zunColor & color)
    {
        double r, g, b, h, s, v, L, A, B;
        color.Get(r, g, b, zunColor::RGB);
        color.Get(h, s, v, zunColor::HSV);
        color.Get(L, A, B, zunColor::Lab);
        std::printf("  %-24s RGB (%.3f, %.3f, %.3f)  HSV (%5.1f, %.3f, %.3f)  Lab (%6.2f, %7.2f, %7.2f)  0x%08X\n",
                    label, r, g, b, h, s, v, L, A, B, color.GetRGBA32());
    }
}

ZUN_DEMO_SECTION(190, "Colors in six spaces")
{
    const zunColor orange(255, 165, 0, 255);
    PrintIn("orange (eight-bit)", orange);
    const zunColor fromHsv(200.0, 0.6, 0.9, zunColor::HSV);
    PrintIn("held in HSV", fromHsv);
    const zunColor fromLab(60.0, -30.0, 40.0, 0.5, zunColor::Lab);
    PrintIn("held in Lab, alpha 0.5", fromLab);

    double x, y, Y;
    zunColor::White().Get(x, y, Y, zunColor::XYZ);
    std::printf("  white in XYZ is the reference white: (%.5f, %.5f, %.5f)\n", x, y, Y);

    zunColor clamped;
    clamped.Set(400.0, 2.0, 0.5, zunColor::HSV);
    std::printf("  Set(400, 2, 0.5, HSV) clamps hue and saturation: RGB (%.2f, %.2f, %.2f)\n", clamped.m_c0,
                clamped.m_c1, clamped.m_c2);
    std::printf("  Lab distance orange -> gold: %.2f\n", orange.Distance(zunColor(255, 215, 0, 255)));
}

ZUN_DEMO_SECTION(191, "Mixing, saturation, hue")
{
    PrintIn("yellow + aqua, paint", zunColor::Mix(zunColor::Yellow(), zunColor::Aqua(), 0.5));
    PrintIn("white + black, paint", zunColor::Mix(zunColor::White(), zunColor::Black(), 0.5));
    PrintIn("white + black, Add", zunColor::Add(zunColor::White(), zunColor::Black(), 0.5, 0.5));
    const zunColor rose(0.8, 0.4, 0.5, zunColor::RGB);
    PrintIn("rose", rose);
    PrintIn("rose, Saturate(PS 0.5)", zunColor::Saturate(rose, zunColor::GetSaturateMultFromPS(0.5)));
    PrintIn("rose, hue +120", zunColor::HSV_Modulate(rose, 120.0, 1.0, 1.0));
    PrintIn("rose * 0.5 (brightness)", rose * 0.5);
    std::printf("  gray of rose: %.3f\n", rose.GetGray());
    PrintIn("hue 5 turned by -10", zunColor::HSV_Modulate(zunColor(5.0, 1.0, 1.0, zunColor::HSV), -10.0, 1.0, 1.0));
}

ZUN_DEMO_SECTION(192, "Tone-map parameters")
{
    zunToneMap map;
    // Each setter answers whether the value really changed.
    const char * answer = map.SetBrightness(2.0) ? "changed" : "same";
    std::printf("  SetBrightness(2)       -> %s, brightness %.1f\n", answer, map.GetBrightness());
    answer = map.SetBrightness(2.0) ? "changed" : "same";
    std::printf("  SetBrightness(2) again -> %s\n", answer);
    answer = map.SetStandardGamma(2.2) ? "changed" : "same";
    std::printf("  SetStandardGamma(2.2)  -> %s, internal gamma %.3f, standard %.3f\n", answer, map.GetNacreGamma(),
                map.GetStandardGamma());
    answer = map.SetStandardGamma(0.5) ? "changed" : "same";
    std::printf("  SetStandardGamma(0.5)  -> %s, internal gamma %.3f, standard %.3f\n", answer, map.GetNacreGamma(),
                map.GetStandardGamma());
    zunToneMap other = map;
    other.SetBrightness(0.99995);
    std::printf("  brightness 1 vs 0.99995: %s (sliders compare at 0.0001)\n", map == other ? "equal" : "different");
    other = map;
    other.SetClampMax(0.99995);
    std::printf("  clamp max 1 vs 0.99995:  %s (the clamp at machine precision)\n",
                map == other ? "equal" : "different");
}

ZUN_DEMO_SECTION(193, "Blend curves")
{
    std::printf("  u      ");
    const double tensions[] = {1.0, 0.9, 2.0 / 3.0, 0.5, 0.2, 0.0};
    for (double tension : tensions)
        std::printf("  T=%.2f", tension);
    std::printf("\n");
    for (double u = 0.0; u <= 1.0001; u += 0.125)
    {
        std::printf("  %.3f  ", u);
        for (double tension : tensions)
            std::printf("  %6.4f", zunBlendFunction(tension).Eval(u));
        std::printf("\n");
    }
    const zunBlendFunction framed(10.0, 20.0, 100.0, 200.0, 0.5);
    double inputs[] = {10.0, 12.5, 15.0, 17.5, 20.0};
    zunFastMesh<double> results;
    framed.Eval(inputs, 5, results);
    std::printf("  x 10..20 onto y 100..200 at T 0.5:");
    for (double y : results)
        std::printf(" %.2f", y);
    std::printf("\n");
}

ZUN_DEMO_SECTION(194, "Interpolators and the timer")
{
    const zunInterpolator_Float fade(0.0, 10.0);
    std::printf("  0 -> 10 at t 0.25 / 0.75: linear %.2f / %.2f, ease 2 %.2f / %.2f\n", fade.Get(0.25, 1.0),
                fade.Get(0.75, 1.0), fade.Get(0.25, 2.0), fade.Get(0.75, 2.0));
    const zunInterpolator_Point3 move(zunVector4T<double>(0, 0, 0), zunVector4T<double>(4, 2, -2));
    zunVector4T<double> point;
    move.Get(0.5, 3.0, point);
    std::printf("  point halfway, ease 3: (%.2f, %.2f, %.2f, w %.0f)\n", point.x, point.y, point.z, point.w);

    const zunInterpolator_Rotation turn(zunVector4T<double>(1, 0, 0), zunVector4T<double>(0, 1, 1),
                                        zunVector4T<double>(0, 0, 1));
    std::printf("  X towards (0, 1, 1): %.12f degrees about (%.3f, %.3f, %.3f)\n", turn.GetAngle(), turn.axis.x,
                turn.axis.y, turn.axis.z);
    for (double t : {0.25, 0.5, 1.0})
    {
        turn.Get(t, 2.0, point);
        std::printf("    t %.2f, ease 2: (%.3f, %.3f, %.3f)\n", t, point.x, point.y, point.z);
    }

    zunInterpolator_Time time;
    time.Start(30.0);
    const double start = zunTimer();
    std::printf("  a 30 ms run, read every 8 ms:");
    for (double t = time.Get(); t < 1.0; t = time.Get())
    {
        std::printf(" %.2f", t);
        std::this_thread::sleep_for(std::chrono::milliseconds(8));
    }
    std::printf(" 1.00, after %.0f ms of zunTimer\n", zunTimer() - start);
}
