// zunBlendFunction: the transfer curve family and its closed-form evaluation.
#include "zunBlendFunction.h"

#include <cmath>
#include <complex>

namespace
{
    const double MinXScale = 1e-9;
    const double KindTolerance = 1e-7;

    /// The curve's height 3t^2 - 2t^3, in the evaluation order that the stored
    /// results were made with.
    double Height(double t)
    {
        return t * 3.0 * t - (t + t) * t * t;
    }

    double XScaleOrOne(double xScale)
    {
        return MinXScale > std::fabs(xScale) ? 1.0 : xScale;
    }
}

zunBlendFunction::zunBlendFunction(double tension) : zunBlendFunction(0.0, 1.0, 0.0, 1.0, tension) {}

zunBlendFunction::zunBlendFunction(double xScale, double yScale, double tension)
    : zunBlendFunction(0.0, xScale, 0.0, yScale, tension)
{
}

// The three cubic constants start at 0 so that the kinds that do not use them
// hold no indeterminate values.
zunBlendFunction::zunBlendFunction(double x0, double x1, double y0, double y1, double tension)
    : kind(General), tension(0.0), xOffset(x0), yOffset(y0), xScale(XScaleOrOne(x1 - x0)), yScale(y1 - y0), cubicA(0.0),
      cubicB(0.0), halfRoot3(0.0)
{
    InitTensionValue(tension);
}

void zunBlendFunction::InitTensionValue(double value)
{
    if (value > 1.0)
        value = 1.0;
    if (value < 0.0)
        value = 0.0;
    tension = value;
    if (KindTolerance > std::fabs(value - 1.0))
        kind = Line;
    else if (KindTolerance > std::fabs(value - 0.6666666666666666))
        kind = SmoothStep;
    else if (KindTolerance > std::fabs(value))
        kind = CubeRoot;
    else
    {
        kind = General;
        CacheValues();
    }
}

void zunBlendFunction::CacheValues()
{
    cubicA = 3.0 * tension - 2.0;
    cubicB = tension * tension * tension / cubicA;
    halfRoot3 = std::sqrt(3.0) * 0.5;
}

double zunBlendFunction::Eval(double x) const
{
    const double u = (x - xOffset) / xScale;
    double s;
    switch (kind)
    {
    case Line:
        s = u;
        break;
    case SmoothStep:
        s = Height(u);
        break;
    case CubeRoot:
        s = Height(std::cbrt(2.0 * u - 1.0) * 0.5 + 0.5);
        break;
    default:
    {
        // Cardano on 4a tau^3 - 3T tau + p = 0 with tau = t - 0.5.
        const double T = tension, a = cubicA, b = cubicB, c = halfRoot3;
        const double p = 2.0 * u - 1.0;
        const double d = a * 8.0;
        const double v = p * p - b;
        double t;
        if (!(v < 0.0))
        {
            // One real root: always for T < 2/3, and at the flat ends for T > 2/3.
            const double r = std::sqrt(v);
            const double w = std::cbrt((r - p) / d);
            t = T / (a * 4.0 * w) + w + 0.5;
        }
        else
        {
            // Three real roots (T > 2/3 only). The one within 0..1 is reached
            // through the principal cube root of a complex number, turned by
            // omega^2, its companion term by omega; the other roots are not formed.
            const std::complex<double> z(-p / d, std::sqrt(-v) / d);
            const double magnitude = std::exp(std::log(std::abs(z)) / 3.0);
            const double angle = std::arg(z) / 3.0;
            const std::complex<double> w(magnitude * std::cos(angle), magnitude * std::sin(angle));
            const std::complex<double> omega(-0.5, c);
            t = 0.5 + (-0.5 * w.real() + c * w.imag()) + (T * omega / (a * 4.0 * w)).real();
        }
        s = Height(t);
        break;
    }
    }
    return s * yScale + yOffset;
}

void zunBlendFunction::Eval(double * inputs, unsigned int count, zunFastMesh<double> & results) const
{
    results.SetCount(count, false);
    // The result of SetCount is not looked at; on an exhausted heap the array
    // keeps its old size, and writing `count` values would run past its block.
    const unsigned int written = count < results.Count() ? count : results.Count();
    for (unsigned int i = 0; i < written; ++i)
        results[i] = Eval(inputs[i]);
}
