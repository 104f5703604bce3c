// zunGeometry.h - free queries on points, lines, planes, circles and
// polylines, and the library's random number.
//
// Points and directions are zunVector4T<double> (only x, y, z are read; the
// points the functions make have w = 1.0) or zunVector2T<double>. A line is a
// point p and a direction d, and a parameter t means p + t * d with d as
// given: an unnormalized direction gives parameters in its own units. Output
// pointers may be null, and then that value is not written. Nothing throws or
// logs: a function reports through its bool or not at all, and on false its
// outputs are unchanged except where a function says otherwise.
//
// The tolerances are fixed: 1e-128 (parallel lines in 3-D), 1e-24 (squared
// lengths), 1e-19 (a line parallel to a plane; below it a vector is not
// normalized), 1e-12 and 1e-9 (lengths, as each function says).
//
//   zunVector4T<double> hit;
//   if (zunIntersectLinePlane(eye, dir, zunVector4T<double>(0, 0, 0), zunVector4T<double>(0, 0, 1), nullptr, &hit))
//       ...
#ifndef ZUN_GEOMETRY_H
#define ZUN_GEOMETRY_H

#include "zunBBox.h"
#include "zunConfig.h"
#include "zunFastMesh.h"
#include "zunTypes.h"

// --- lines and points ------------------------------------------------------------

/// The foot of `point` on the line p + t * d: t = ((point - p) . d) / (d . d),
/// or 0 when d . d < 1e-24. No clamp: t may be negative or beyond 1. The foot
/// goes to `closest`, t to `t`; either may be null. The 2D form works in the
/// plane alike.
///@{
ZUN_API void zunPointToLine(zunVector4T<double> const & p, zunVector4T<double> const & d,
                            zunVector4T<double> const & point, zunVector4T<double> * closest, double * t);
ZUN_API void zunPointToLine2D(zunVector2T<double> const & p, zunVector2T<double> const & d,
                              zunVector2T<double> const & point, zunVector2T<double> * closest, double * t);
///@}
/// As zunPointToLine on the line a + t * (b - a), with t clamped to 0..1.
ZUN_API void zunPointToSegment(zunVector4T<double> const & a, zunVector4T<double> const & b,
                               zunVector4T<double> const & point, zunVector4T<double> * closest, double * t);

/// Negates x, y, z of `vector` if it points away from `reference` (a negative
/// dot product); w stays, and a dot of exactly 0 leaves it.
ZUN_API void zunMatchSense(zunVector4T<double> const & reference, zunVector4T<double> & vector);

/// The crossing of two 2-D lines: false if a direction is shorter than 1e-12
/// or the lines are parallel (|sin| < 1e-12); else tp, tq and the point p + tp * d.
ZUN_API bool zunIntersect2DLines(zunVector2T<double> const & p, zunVector2T<double> const & d,
                                 zunVector2T<double> const & q, zunVector2T<double> const & e, double * tp, double * tq,
                                 zunVector2T<double> & point);

/// The closest approach of two 3-D lines: tp, tq and the middle of the
/// shortest connection (skew lines meet nowhere; this is their middle). Lines
/// count as parallel when the denominator is below 1e-128 or a parameter
/// would exceed about 2^31; then tp = tq = 0 and point = (p + q) / 2.
/// ALWAYS TRUE: the result does not tell parallel from crossing.
ZUN_API bool zunIntersect3DLines(zunVector4T<double> const & p, zunVector4T<double> const & d,
                                 zunVector4T<double> const & q, zunVector4T<double> const & e, double * tp, double * tq,
                                 zunVector4T<double> * point);

/// Where the line meets the plane through planePoint with normal planeNormal;
/// false when the line is parallel to it (|n . d| < 1e-19). True also for t < 0.
ZUN_API bool zunIntersectLinePlane(zunVector4T<double> const & p, zunVector4T<double> const & d,
                                   zunVector4T<double> const & planePoint, zunVector4T<double> const & planeNormal,
                                   double * t, zunVector4T<double> * point);
/// The same with plane = (a, b, c, e) of a*x + b*y + c*z + e = 0. Writes
/// x, y, z of point and leaves its w alone.
ZUN_API bool zunIntersectLinePlane(zunVector4T<double> const & p, zunVector4T<double> const & d,
                                   double const * const plane, double * t, zunVector4T<double> * point);

/// The two points where the line meets the sphere; first is the one further
/// along d (a tangent gives two equal points), both sides of p count. False,
/// writing nothing, when the line misses.
ZUN_API bool zunIntersectLineSphere(zunVector4T<double> const & center, double radius, zunVector4T<double> const & p,
                                    zunVector4T<double> const & d, zunVector4T<double> & first,
                                    zunVector4T<double> & second);

/// Whenever the line meets the triangle's plane at t >= 0 (and the triangle
/// is not degenerate), `point` receives that plane hit. The result is then
/// FALSE FOR EVERY PROPER TRIANGLE: the inside test that follows rejects all
/// but triangles degenerate up to rounding. Callers use `point`, not the bool.
ZUN_API bool zunIntersectLineTriangle(zunVector4T<double> const & p, zunVector4T<double> const & d,
                                      zunVector4T<double> const & a, zunVector4T<double> const & b,
                                      zunVector4T<double> const & c, zunVector4T<double> & point);

/// The closest approach of two rays, worked out in the plane normal to both.
/// Writes ta, tb and the points on each; parallel or degenerate rays each go
/// half way towards the other's origin. Always true.
ZUN_API bool zunFindRaysMinDist(zunRay const & a, zunRay const & b, zunVector4T<double> * onA,
                                zunVector4T<double> * onB, double * ta, double * tb);

// --- planes ---------------------------------------------------------------------------

/// The projection of `point` onto the plane (the normal's length does not
/// matter). A point on the normal through planePoint gives planePoint itself,
/// w included. Always true.
ZUN_API bool zunProjPtToPlane(zunVector4T<double> const & point, zunVector4T<double> const & planePoint,
                              zunVector4T<double> const & planeNormal, zunVector4T<double> & projected);

/// The direction of `point` in the plane of the axes u and v: (a, b) with
/// point = a*u + b*v where possible, scaled to unit length. A point at the
/// origin gives NaN in both.
ZUN_API void zunProjectToUVPlane(zunVector4T<double> const & u, zunVector4T<double> const & v,
                                 zunVector4T<double> const & point, double & a, double & b);

/// Of the three planes that u, v and u x v span, picks the one that faces
/// `view` most, replacing u and v by its axes.
ZUN_API void zunFindBestPlane(zunVector4T<double> const & view, zunVector4T<double> & u, zunVector4T<double> & v);

// --- circles ---------------------------------------------------------------------------

/// The circle through three points: false for points closer than 1e-12,
/// first == third, or collinear points. With a radius pointer, false also
/// when the radius comes out below 1e-9 (center written all the same).
ZUN_API bool zunCircleThru3Pts(zunVector4T<double> const & first, zunVector4T<double> const & second,
                               zunVector4T<double> const & third, zunVector4T<double> * center, double * radius);

/// A circle in a plane parallel to XY through two points, tangent to
/// `tangent` at the first point (tangentAtFirst) or at the second. False for
/// points closer than 1e-9 or a tangent along the chord in XY.
ZUN_API bool zunCircleThru2PtsAndTangent(zunVector4T<double> const & first, zunVector4T<double> const & second,
                                         zunVector4T<double> const & tangent, bool tangentAtFirst,
                                         zunVector4T<double> * center, double * radius);

// --- polylines and tables -------------------------------------------------------------

/// The chord from entry `index` to the first entry, walking along the
/// polyline, that lies further than `distance` (unnormalized). flags bit 0
/// walks backward, bit 1 closes the polyline (the walk wraps and stops on
/// coming back). On false `tangent` holds the last chord tried, if any.
ZUN_API bool zunFindPolylineTan(zunFastMesh<zunVector4T<double>> const & points, int index, double distance,
                                unsigned int flags, zunVector4T<double> & tangent);

/// Piecewise-linear lookup in a table of (x, y) sorted by x, held flat
/// outside it. Where two entries share an x, that x takes the later one.
/// A null table or a count of 0 gives 0.0.
ZUN_API double zunInterpolatePWL(zunVector2T<double> const * points, unsigned int count, double x);

/// A number from low to high, both ends possible, drawn from the C runtime's
/// generator (seeded with srand) in 32768 steps.
ZUN_API double zunRandom(double low, double high);

#endif // ZUN_GEOMETRY_H
