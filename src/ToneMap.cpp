// zunToneMap: parameter storage with change detection.
#include "zunToneMap.h"

#include <cmath>

#include "ColorClamp.h"

using zunColorPrivate::Clamp;

namespace
{
    /// The change test's equality: the values differ by at most two units of
    /// machine epsilon of their sum, or by less than the smallest normal double.
    bool SameValue(double a, double b)
    {
        const double epsilon = 2.220446049250313e-16;
        const double smallestNormal = 2.2250738585072014e-308;
        const double d = std::fabs(a - b);
        return d <= 2.0 * epsilon * std::fabs(a + b) || d < smallestNormal;
    }

    bool StoreIfChanged(double & stored, double value)
    {
        if (SameValue(value, stored))
            return false;
        stored = value;
        return true;
    }
}

zunToneMap::zunToneMap()
    : m_brightness(0.0), m_contrast(0.0), m_saturation(0.0), m_inverted(false), m_clamp(0.0, 1.0), m_gamma(0.0)
{
}

double zunToneMap::GetStandardGamma() const
{
    return m_gamma > 0.0 ? 2.0 * m_gamma + 1.0 : 1.0 / (1.0 - 2.0 * m_gamma);
}

bool zunToneMap::SetBrightness(double brightness)
{
    return StoreIfChanged(m_brightness, Clamp(brightness, -1.0, 1.0));
}

bool zunToneMap::SetContrast(double contrast)
{
    return StoreIfChanged(m_contrast, Clamp(contrast, -1.0, 1.0));
}

bool zunToneMap::SetSaturation(double saturation)
{
    return StoreIfChanged(m_saturation, Clamp(saturation, -1.0, 1.0));
}

bool zunToneMap::SetClampMin(double min)
{
    return StoreIfChanged(m_clamp.min, Clamp(min, 0.0, 1.0));
}

bool zunToneMap::SetClampMax(double max)
{
    return StoreIfChanged(m_clamp.max, Clamp(max, 0.0, 1.0));
}

bool zunToneMap::SetClamp(const zunRange<double> & clamp)
{
    return SetClamp(clamp.min, clamp.max);
}

bool zunToneMap::SetClamp(double min, double max)
{
    const bool minChanged = SetClampMin(min);
    const bool maxChanged = SetClampMax(max);
    return minChanged || maxChanged;
}

bool zunToneMap::SetInverted(bool inverted)
{
    if (m_inverted == inverted)
        return false;
    m_inverted = inverted;
    return true;
}

bool zunToneMap::SetNacreGamma(double gamma)
{
    return StoreIfChanged(m_gamma, gamma);
}

bool zunToneMap::SetStandardGamma(double gamma)
{
    return SetNacreGamma(gamma < 1.0 ? (gamma - 1.0) / (2.0 * gamma) : (gamma - 1.0) * 0.5);
}

bool zunToneMap::operator==(const zunToneMap & other) const
{
    return !(*this != other);
}

bool zunToneMap::operator!=(const zunToneMap & other) const
{
    const double sliderTolerance = 0.0001;
    if (std::fabs(m_brightness - other.m_brightness) > sliderTolerance ||
        std::fabs(m_contrast - other.m_contrast) > sliderTolerance ||
        std::fabs(m_saturation - other.m_saturation) > sliderTolerance ||
        std::fabs(m_gamma - other.m_gamma) > sliderTolerance)
        return true;
    if (m_inverted != other.m_inverted)
        return true;
    return !SameValue(m_clamp.min, other.m_clamp.min) || !SameValue(m_clamp.max, other.m_clamp.max);
}
