// zunBlendFunction.h - S-shaped transfer curves solved in closed form.
//
// A blend function maps x to y through a one-parameter family of curves, from
// a straight line through a smooth step to a steep step, inside an affine
// frame: u = (x - xOffset) / xScale runs the curve, and the curve's value s
// comes out as s * yScale + yOffset.
//
// For a tension T (held within 0..1) the curve is the cubic Bezier curve
// through (0, 0), (1 - T, 0), (T, 1), (1, 1): its height is
// S(t) = 3t^2 - 2t^3, and its abscissa u satisfies
// 2u - 1 = 3T (t - 0.5) - 4(3T - 2)(t - 0.5)^3. Eval solves that cubic for t
// exactly (Cardano, without iteration) and returns S(t). T = 1 is the
// diagonal, T = 2/3 the plain smooth step 3u^2 - 2u^3, T = 0 the steepest
// curve with a vertical tangent at the middle; smaller T is steeper.
//
//   zunBlendFunction ease(0.0, 100.0, 0.0, 1.0, 0.5);  // x in 0..100 -> y in 0..1
//   double y = ease.Eval(25.0);                         // 0.1059...
//
// u is not clamped: outside 0..1 the formulas run on (T = 0.5 gives
// Eval(-1) = 0.7117). A zero-width x range is replaced by 1 in silence; a
// yScale of 0 is legal and gives a constant. Nothing is reported, nothing
// throws, Eval allocates nothing and changes nothing.
#ifndef ZUN_BLEND_FUNCTION_H
#define ZUN_BLEND_FUNCTION_H

#include "zunConfig.h"
#include "zunFastMesh.h"

/// An S-shaped blend curve of adjustable tension, mapped onto an x and y
/// frame by offsets and scales.
struct ZUN_API zunBlendFunction
{
    /// How Eval finds the curve's value; chosen from the tension, in this order.
    enum Kind
    {
        Line = 0,       ///< |T - 1| below 1e-7: s = u
        SmoothStep = 1, ///< |T - 2/3| below 1e-7: s = S(u)
        CubeRoot = 2,   ///< |T| below 1e-7: s = S(cbrt(2u - 1) / 2 + 1/2)
        General = 3     ///< otherwise: s = S(t) with t from the cubic
    };

    /// Offsets 0, scales 1. The tension is clamped to 0..1.
    zunBlendFunction(double tension = 0.5);
    /// Offsets 0; an xScale of magnitude below 1e-9 becomes 1.
    zunBlendFunction(double xScale, double yScale, double tension);
    /// Maps x0..x1 onto y0..y1. An x range narrower than 1e-9 gets a scale of 1.
    zunBlendFunction(double x0, double x1, double y0, double y1, double tension);

    /// Copies and moves take the stored form as it stands.
    ///@{
    zunBlendFunction(const zunBlendFunction &) = default;
    zunBlendFunction(zunBlendFunction &&) = default;
    zunBlendFunction & operator=(const zunBlendFunction &) = default;
    zunBlendFunction & operator=(zunBlendFunction &&) = default;
    ///@}

    /// The curve at x, in the frame. NaN only where the cubic's complex branch
    /// meets a vanishing denominator, or for a NaN input or tension.
    double Eval(double x) const;
    /// results[i] = Eval(inputs[i]) for `count` inputs; `results` is sized to
    /// `count` once. If the heap cannot hold `count` doubles, only what the
    /// array holds is written. The inputs are not changed.
    void Eval(double * inputs, unsigned int count, zunFastMesh<double> & results) const;

    // The stored form. cubicA, cubicB and halfRoot3 serve the General kind only
    // and are 0 for the others.
    int kind;         ///< a Kind
    double tension;   ///< T, within 0..1
    double xOffset;   ///< x0
    double yOffset;   ///< y0
    double xScale;    ///< x1 - x0
    double yScale;    ///< y1 - y0
    double cubicA;    ///< 3T - 2
    double cubicB;    ///< T^3 / cubicA
    double halfRoot3; ///< sqrt(3) / 2

private:
    /// Clamps and stores the tension, chooses the kind, caches the cubic's
    /// constants for General.
    void InitTensionValue(double tension);
    /// cubicA, cubicB and halfRoot3 from the stored tension.
    void CacheValues();
};

#endif // ZUN_BLEND_FUNCTION_H
