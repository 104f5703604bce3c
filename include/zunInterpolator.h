// zunInterpolator.h - small value types that run a value between two ends.
//
// zunInterpolator_Float, _Point3 and _Rotation share one easing of the
// parameter t under an exponent `ease`:
//
//   ease <= 1:  e = t                               (linear)
//   t < 0.5:    e = (2t)^ease / 2                   (slow start ...)
//   otherwise:  e = 1 - (2(1 - t))^ease / 2         (... slow end)
//
// t is not clamped: keep it within 0..1, since a power of a negative base is
// NaN. zunInterpolator_Time delivers such a t from the library's clock.
//
//   zunInterpolator_Float fade(0.0, 10.0);
//   double v = fade.Get(0.25, 2.0);                 // 1.25
//   zunInterpolator_Time clock;
//   clock.Start(500.0);                             // half a second
//   while (clock.Get() < 1.0) Draw(fade.Get(clock.Get(), 2.0));
//
// The Get operations change nothing; nothing here reports or throws.
#ifndef ZUN_INTERPOLATOR_H
#define ZUN_INTERPOLATOR_H

#include "zunConfig.h"
#include "zunTypes.h"

/// Runs a number from `start` to `end`.
struct ZUN_API zunInterpolator_Float
{
    /// 0 to 0.
    zunInterpolator_Float();
    /// The ends as given.
    zunInterpolator_Float(double start, double end);

    /// (end - start) * e + start, with e the eased t.
    double Get(double t, double ease) const;

    double start; ///< the value at t = 0
    double end;   ///< the value at t = 1
};

/// Runs a point from `start` to `end`, component by component.
struct ZUN_API zunInterpolator_Point3
{
    /// Both ends (0, 0, 0, 1).
    zunInterpolator_Point3();
    /// The ends as given.
    zunInterpolator_Point3(const zunVector4T<double> & start, const zunVector4T<double> & end);

    /// x, y, z of start + (end - start) * e with e the eased t; w is 1.
    void Get(double t, double ease, zunVector4T<double> & result) const;

    zunVector4T<double> start; ///< the point at t = 0
    zunVector4T<double> end;   ///< the point at t = 1
};

/// Turns a unit direction from `start` towards `end` about their common normal.
struct ZUN_API zunInterpolator_Rotation
{
    /// From (1, 0, 0) to (1, 0, 0) about (0, 0, 1), angle 0.
    zunInterpolator_Rotation();
    /// Normalizes `start` and `end` (a vector of length 1e-19 or less is kept as
    /// it is) and takes the axis from their cross product and the angle from
    /// their dot product. For parallel or opposite directions (cross product
    /// shorter than 1e-7) the axis is `fallbackAxis`, normalized, and the angle
    /// 0 or 180 degrees. The angle is acos(dot) * 57.29577951308, a constant a
    /// little short of 180 / pi that stored animations depend on.
    zunInterpolator_Rotation(const zunVector4T<double> & start, const zunVector4T<double> & end,
                             const zunVector4T<double> & fallbackAxis);

    /// `start` turned about `axis` by e * angle degrees, e the eased t; w is
    /// that of `start`. Its length stays that of `start`.
    void Get(double t, double ease, zunVector4T<double> & result) const;
    /// The whole turn, in degrees.
    double GetAngle() const { return angle; }

    zunVector4T<double> start; ///< the direction at t = 0, normalized by the constructor
    zunVector4T<double> end;   ///< the direction at t = 1, normalized by the constructor
    zunVector4T<double> axis;  ///< the unit axis of the turn
    double angle;              ///< degrees
};

/// Runs from 0 to 1 over a duration of the library's clock (zunTimer).
struct ZUN_API zunInterpolator_Time
{
    /// Start time 0, duration 1 ms.
    zunInterpolator_Time();

    /// Starts now; `duration` in milliseconds.
    void Start(double duration);
    /// The elapsed part of the duration, growing from 0 to 1 and staying at 1;
    /// 1 at once for a duration of exactly 0. Read from the clock each time.
    /// Before Start it measures from the clock's origin, so it gives 1.
    double Get() const;

    double startTime; ///< zunTimer() at Start, in milliseconds
    double duration;  ///< in milliseconds
};

#endif // ZUN_INTERPOLATOR_H
