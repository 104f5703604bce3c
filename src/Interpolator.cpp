// The interpolators and their shared easing.
#include "zunInterpolator.h"

#include <algorithm>
#include <cmath>

#include "Vector3Math.h"
#include "zunMatrix44.h"
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

zunInterpolator_Rotation::zunInterpolator_Rotation()
    : start(1.0, 0.0, 0.0, 1.0), end(1.0, 0.0, 0.0, 1.0), axis(0.0, 0.0, 1.0, 1.0), angle(0.0)
{
}

zunInterpolator_Rotation::zunInterpolator_Rotation(const zunVector4T<double> & start_, const zunVector4T<double> & end_,
                                                   const zunVector4T<double> & fallbackAxis)
    : start(start_), end(end_), axis(fallbackAxis), angle(0.0)
{
    using namespace zunVector3Math;
    GuardedNormalize(start.x, start.y, start.z);
    GuardedNormalize(end.x, end.y, end.z);
    const Vec3 normal = Cross(Of(start), Of(end));
    const double dot = Dot(Of(start), Of(end));
    if (1e-7 > Length(normal))
    {
        angle = 0.0 > dot ? 180.0 : 0.0;
        axis = fallbackAxis;
    }
    else
    {
        axis = zunVector4T<double>(normal.x, normal.y, normal.z, 1.0);
        // Not 180 / pi: animations were authored with this very factor.
        angle = std::acos(dot) * 57.29577951308;
    }
    GuardedNormalize(axis.x, axis.y, axis.z);
}

void zunInterpolator_Rotation::Get(double t, double ease, zunVector4T<double> & result) const
{
    zunMatrix44 turn;
    turn.AddRotationVector(axis, Ease(t, ease) * angle, zunVector4T<double>(0.0, 0.0, 0.0, 1.0));
    // A copy, so that `result` may be this object's own `start`.
    const zunVector4T<double> from = start;
    turn.Transform(&from, &result, 1);
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
