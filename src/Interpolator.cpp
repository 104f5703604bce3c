// The interpolators and their shared easing.
#include "zunInterpolator.h"

#include <algorithm>
#include <cmath>

#include "zunTimer.h"

namespace
{
    /// t under the easing exponent: linear up to 1, then a symmetric power
    /// curve, slow at both ends.
    double Ease(double t, double ease)
    {
        if (!(ease > 1.0))
            return t;
        if (0.5 > t)
            return std::pow(t + t, ease) * 0.5;
        return 1.0 - std::pow((1.0 - t) + (1.0 - t), ease) * 0.5;
    }
}

zunInterpolator_Float::zunInterpolator_Float() : start(0.0), end(0.0) {}

zunInterpolator_Float::zunInterpolator_Float(double start_, double end_) : start(start_), end(end_) {}

double zunInterpolator_Float::Get(double t, double ease) const
{
    return (end - start) * Ease(t, ease) + start;
}

zunInterpolator_Point3::zunInterpolator_Point3() : start(), end() {}

zunInterpolator_Point3::zunInterpolator_Point3(const zunVector4T<double> & start_, const zunVector4T<double> & end_)
    : start(start_), end(end_)
{
}

void zunInterpolator_Point3::Get(double t, double ease, zunVector4T<double> & result) const
{
    const double e = Ease(t, ease);
    result.x = start.x + (end.x - start.x) * e;
    result.y = start.y + (end.y - start.y) * e;
    result.z = start.z + (end.z - start.z) * e;
    result.w = 1.0;
}

zunInterpolator_Time::zunInterpolator_Time() : startTime(0.0), duration(1.0) {}

void zunInterpolator_Time::Start(double duration_)
{
    startTime = zunTimer();
    duration = duration_;
}

double zunInterpolator_Time::Get() const
{
    if (duration == 0.0)
        return 1.0;
    return std::min(duration, zunTimer() - startTime) / duration;
}
