// The free geometry queries, and zunBBox::GetExtentAlongRay, which stands on
// zunPointToLine. Every formula keeps the order of its terms.
#include "zunGeometry.h"

#include <cmath>
#include <cstdlib>

#include "Vector3Math.h"
#include "zunMatrix44.h"

using zunVector3Math::Cross;
using zunVector3Math::Dot;
using zunVector3Math::GuardedNormalize;
using zunVector3Math::Length;
using zunVector3Math::Of;
using zunVector3Math::Scaled;
using zunVector3Math::Vec3;

namespace
{
    typedef zunVector4T<double> V4;
    typedef zunVector2T<double> V2;

    Vec3 Minus(Vec3 const & a, Vec3 const & b)
    {
        return Vec3{a.x - b.x, a.y - b.y, a.z - b.z};
    }
    Vec3 Plus(Vec3 const & a, Vec3 const & b)
    {
        return Vec3{a.x + b.x, a.y + b.y, a.z + b.z};
    }
    Vec3 Minus(V4 const & a, V4 const & b)
    {
        return Minus(Of(a), Of(b));
    }

    /// A point the library makes: w = 1.0.
    V4 Point(Vec3 const & v)
    {
        return V4(v.x, v.y, v.z, 1.0);
    }
    /// origin + t * direction, w = 1.0.
    V4 PointAt(V4 const & origin, double t, Vec3 const & direction)
    {
        return Point(Plus(Of(origin), Scaled(direction, t)));
    }

    Vec3 Normalized(Vec3 v)
    {
        GuardedNormalize(v);
        return v;
    }

    double Cross2(V2 const & a, V2 const & b)
    {
        return a.x * b.y - a.y * b.x;
    }

    /// The 2-D normalization, guarded as the 3-D one.
    V2 Normalized(V2 const & v, double length)
    {
        if (length > zunVector3Math::kNormalizeFloor)
            return V2(v.x * (1.0 / length), v.y * (1.0 / length));
        return v;
    }

    /// The parameter of `point`'s foot on the line p + t * d, 0 for a direction
    /// of squared length below 1e-24.
    double FootParameter(double wx, double wy, double wz, double dx, double dy, double dz)
    {
        double lengthSquared = dx * dx + dy * dy + dz * dz;
        if (1e-24 > lengthSquared)
            return 0.0;
        return (wx * dx + wy * dy + wz * dz) / lengthSquared;
    }

    /// Step 3 of the 2-D line crossing: the parameters along both lines, from
    /// the unit directions, their lengths and w = q - p.
    void CrossingParameters(V2 const & w, V2 const & unitD, double lengthD, V2 const & unitE, double lengthE, double c,
                            double & tp, double & tq)
    {
        tp = (w.x * unitE.y - w.y * unitE.x) / (lengthD * c);
        tq = (w.x * unitD.y - w.y * unitD.x) / (lengthE * c);
    }

    /// Step 6 of both circle functions: the radius to `first`, when asked for.
    bool StoreRadius(V4 const & center, V4 const & first, double * radius)
    {
        if (!radius)
            return true;
        *radius = Length(Minus(center, first));
        return !(1e-9 > *radius);
    }
}

// --- lines and points ------------------------------------------------------------

void zunPointToLine(V4 const & p, V4 const & d, V4 const & point, V4 * closest, double * t)
{
    Vec3 w = Minus(point, p);
    double parameter = FootParameter(w.x, w.y, w.z, d.x, d.y, d.z);
    if (closest)
        *closest = PointAt(p, parameter, Of(d));
    if (t)
        *t = parameter;
}

void zunPointToLine2D(V2 const & p, V2 const & d, V2 const & point, V2 * closest, double * t)
{
    double parameter = FootParameter(point.x - p.x, point.y - p.y, 0.0, d.x, d.y, 0.0);
    if (closest)
        *closest = V2(p.x + d.x * parameter, p.y + d.y * parameter);
    if (t)
        *t = parameter;
}

void zunPointToSegment(V4 const & a, V4 const & b, V4 const & point, V4 * closest, double * t)
{
    Vec3 d = Minus(b, a);
    Vec3 w = Minus(point, a);
    double parameter = FootParameter(w.x, w.y, w.z, d.x, d.y, d.z);
    parameter = parameter < 0.0 ? 0.0 : (parameter > 1.0 ? 1.0 : parameter);
    if (closest)
        *closest = PointAt(a, parameter, d);
    if (t)
        *t = parameter;
}

void zunMatchSense(V4 const & reference, V4 & vector)
{
    if (0.0 > Dot(Of(reference), Of(vector)))
    {
        vector.x = -vector.x;
        vector.y = -vector.y;
        vector.z = -vector.z;
    }
}

bool zunIntersect2DLines(V2 const & p, V2 const & d, V2 const & q, V2 const & e, double * tp, double * tq, V2 & point)
{
    double lengthD = std::sqrt(d.x * d.x + d.y * d.y);
    if (1e-12 > lengthD)
        return false;
    double lengthE = std::sqrt(e.x * e.x + e.y * e.y);
    if (1e-12 > lengthE)
        return false;
    V2 unitD = Normalized(d, lengthD), unitE = Normalized(e, lengthE);
    double c = Cross2(unitD, unitE);
    if (1e-12 > std::fabs(c))
        return false;
    double parameterP, parameterQ;
    CrossingParameters(V2(q.x - p.x, q.y - p.y), unitD, lengthD, unitE, lengthE, c, parameterP, parameterQ);
    if (tp)
        *tp = parameterP;
    if (tq)
        *tq = parameterQ;
    point = V2(p.x + parameterP * d.x, p.y + parameterP * d.y);
    return true;
}

bool zunIntersect3DLines(V4 const & p, V4 const & d, V4 const & q, V4 const & e, double * tp, double * tq, V4 * point)
{
    Vec3 w = Minus(p, q);
    double A = Dot(Of(d), Of(d)), B = Dot(Of(d), Of(e)), C = Dot(Of(e), Of(e));
    double D = Dot(Of(d), w), E = Dot(Of(e), w);
    double den = A * C - B * B;
    double nq = A * E - B * D;
    double np = B * E - C * D;

    // A parameter over about 2^31 counts as parallel too.
    int exponentDen, exponentP, exponentQ;
    std::frexp(den, &exponentDen);
    std::frexp(np, &exponentP);
    std::frexp(nq, &exponentQ);
    double parameterP = 0.0, parameterQ = 0.0;
    Vec3 middle;
    if (exponentP - exponentDen < 31 && exponentQ - exponentDen < 31 && !(1e-128 > std::fabs(den)))
    {
        parameterP = np / den;
        parameterQ = nq / den;
        Vec3 onP = Plus(Of(p), Scaled(Of(d), parameterP));
        Vec3 onQ = Plus(Of(q), Scaled(Of(e), parameterQ));
        middle = Scaled(Plus(onP, onQ), 0.5);
    }
    else
    {
        middle = Scaled(Plus(Of(p), Of(q)), 0.5);
    }
    if (tp)
        *tp = parameterP;
    if (tq)
        *tq = parameterQ;
    if (point)
        *point = Point(middle);
    return true;
}

bool zunIntersectLinePlane(V4 const & p, V4 const & d, double const * const plane, double * t, V4 * point)
{
    double den = -(plane[0] * d.x + plane[1] * d.y + plane[2] * d.z);
    if (1e-19 > std::fabs(den))
        return false;
    double parameter = (plane[0] * p.x + plane[1] * p.y + plane[2] * p.z + plane[3]) / den;
    if (t)
        *t = parameter;
    if (point)
    {
        point->x = p.x + parameter * d.x;
        point->y = p.y + parameter * d.y;
        point->z = p.z + parameter * d.z;
    }
    return true;
}

bool zunIntersectLinePlane(V4 const & p, V4 const & d, V4 const & planePoint, V4 const & planeNormal, double * t,
                           V4 * point)
{
    const double plane[4] = {planeNormal.x, planeNormal.y, planeNormal.z, -Dot(Of(planeNormal), Of(planePoint))};
    return zunIntersectLinePlane(p, d, plane, t, point);
}

bool zunIntersectLineSphere(V4 const & center, double radius, V4 const & p, V4 const & d, V4 & first, V4 & second)
{
    Vec3 unit = Normalized(Of(d));
    Vec3 m = Minus(p, center);
    double b = Dot(m, unit);
    double disc = b * b - Dot(m, m) + radius * radius;
    if (0.0 > disc)
        return false;
    double s = std::sqrt(disc);
    first = PointAt(p, s - b, unit);
    second = PointAt(p, -b - s, unit);
    return true;
}

bool zunIntersectLineTriangle(V4 const & p, V4 const & d, V4 const & a, V4 const & b, V4 const & c, V4 & point)
{
    Vec3 e1 = Minus(b, a), e2 = Minus(c, a);
    Vec3 n = Cross(e1, e2);
    if (1e-24 > Dot(n, n))
        return false;
    double den = Dot(n, Of(d));
    if (1e-9 > std::fabs(den))
        return false;
    double t = -Dot(n, Minus(p, a)) / den;
    if (0.0 > t)
        return false;
    point = PointAt(p, t, Of(d)); // written before anything is known of the inside

    // g is minus the squared area term, zero or negative for any triangle that
    // got here, so this test ends the function with false and the plane hit in
    // point. Callers rely on exactly this: keep the sign of the test.
    Vec3 r = Minus(point, a);
    double e1e2 = Dot(e1, e2), e1e1 = Dot(e1, e1), e2e2 = Dot(e2, e2);
    double g = e1e2 * e1e2 - e2e2 * e1e1;
    if (1e-12 > g)
        return false;
    double re1 = Dot(r, e1), re2 = Dot(r, e2);
    double s1 = (re2 * e1e2 - re1 * e2e2) / g;
    if (0.0 > s1 || s1 > 1.0)
        return false;
    double s2 = (re1 * e1e2 - re2 * e1e1) / g;
    return !(0.0 > s2 || s1 + s2 > 1.0);
}

bool zunFindRaysMinDist(zunRay const & a, zunRay const & b, V4 * onA, V4 * onB, double * ta, double * tb)
{
    // Turn both rays into the plane normal to both, and solve there.
    zunMatrix44 toPlane;
    toPlane.AddAlignVectorOnXY(Point(Cross(Of(b.direction), Of(a.direction))));
    V4 ends[4] = {a.origin, Point(Plus(Of(a.origin), Of(a.direction))), b.origin,
                  Point(Plus(Of(b.origin), Of(b.direction)))};
    toPlane.Transform(ends, 4);
    V2 originA(ends[0].x, ends[0].y), originB(ends[2].x, ends[2].y);
    V2 directionA(ends[1].x - ends[0].x, ends[1].y - ends[0].y);
    V2 directionB(ends[3].x - ends[2].x, ends[3].y - ends[2].y);

    double lengthA = std::sqrt(directionA.x * directionA.x + directionA.y * directionA.y);
    double lengthB = std::sqrt(directionB.x * directionB.x + directionB.y * directionB.y);
    V2 unitA = Normalized(directionA, lengthA), unitB = Normalized(directionB, lengthB);
    double c = Cross2(unitA, unitB);
    double parameterA, parameterB;
    if (!(1e-12 > lengthA) && !(1e-12 > lengthB) && !(1e-12 > std::fabs(c)))
    {
        CrossingParameters(V2(originB.x - originA.x, originB.y - originA.y), unitA, lengthA, unitB, lengthB, c,
                           parameterA, parameterB);
    }
    else
    {
        // Parallel or degenerate: each ray goes half way towards the other's origin.
        parameterA =
            FootParameter(originB.x - originA.x, originB.y - originA.y, 0.0, directionA.x, directionA.y, 0.0) * 0.5;
        parameterB =
            FootParameter(originA.x - originB.x, originA.y - originB.y, 0.0, directionB.x, directionB.y, 0.0) * 0.5;
    }
    if (ta)
        *ta = parameterA;
    if (tb)
        *tb = parameterB;
    if (onA)
        *onA = PointAt(a.origin, parameterA, Of(a.direction));
    if (onB)
        *onB = PointAt(b.origin, parameterB, Of(b.direction));
    return true;
}

// --- planes ---------------------------------------------------------------------------

bool zunProjPtToPlane(V4 const & point, V4 const & planePoint, V4 const & planeNormal, V4 & projected)
{
    Vec3 m = Minus(point, planePoint);
    Vec3 n = Of(planeNormal);
    Vec3 inPlane = Cross(n, Cross(m, n)); // m's part in the plane, scaled by n . n
    if (1e-12 > Length(inPlane))
    {
        projected = planePoint;
        return true;
    }
    Vec3 unit = Normalized(inPlane);
    projected = PointAt(planePoint, Dot(m, unit), unit);
    return true;
}

void zunProjectToUVPlane(V4 const & u, V4 const & v, V4 const & point, double & a, double & b)
{
    const V4 origin(0.0, 0.0, 0.0, 1.0);
    zunIntersect3DLines(point, v, origin, u, nullptr, &a, nullptr);
    zunIntersect3DLines(point, u, origin, v, nullptr, &b, nullptr);
    double k = 1.0 / std::sqrt(a * a + b * b);
    a *= k;
    b *= k;
}

void zunFindBestPlane(V4 const & view, V4 & u, V4 & v)
{
    V4 n = Point(Cross(Of(u), Of(v)));
    double an = std::fabs(Dot(Of(n), Of(view)));
    double au = std::fabs(Dot(Of(u), Of(view)));
    double av = std::fabs(Dot(Of(v), Of(view)));
    if (au > av)
    {
        if (an > au)
            return;
        u = v;
        v = n;
    }
    else
    {
        if (an > av)
            return;
        v = n;
    }
}

// --- circles ---------------------------------------------------------------------------

bool zunCircleThru3Pts(V4 const & first, V4 const & second, V4 const & third, V4 * center, double * radius)
{
    Vec3 A = Minus(second, first), B = Minus(third, second);
    if (1e-12 > Length(A) || 1e-12 > Length(B))
        return false;
    Vec3 C = Minus(third, first);
    if (1e-24 > Dot(C, C))
        return false;
    Vec3 unitA = Normalized(A), unitB = Normalized(B);
    Vec3 n = Cross(A, C);
    if (1e-12 > Length(n))
        return false; // collinear
    GuardedNormalize(n);

    V4 middle1 = Point(Scaled(Plus(Of(first), Of(second)), 0.5));
    V4 middle2 = Point(Scaled(Plus(Of(third), Of(second)), 0.5));
    // A radius needs a center to measure from; without the caller's, a local one serves.
    V4 localCenter;
    V4 * target = center ? center : (radius ? &localCenter : nullptr);
    if (!zunIntersect3DLines(middle1, Point(Cross(n, unitA)), middle2, Point(Cross(n, unitB)), nullptr, nullptr,
                             target))
        return false;
    return target ? StoreRadius(*target, first, radius) : true;
}

bool zunCircleThru2PtsAndTangent(V4 const & first, V4 const & second, V4 const & tangent, bool tangentAtFirst,
                                 V4 * center, double * radius)
{
    Vec3 chord = Minus(second, first);
    if (1e-9 > Length(chord))
        return false;
    if (1e-9 > std::fabs(tangent.x * chord.y - tangent.y * chord.x))
        return false; // the tangent runs along the chord in XY
    V4 middle = Point(Scaled(Plus(Of(first), Of(second)), 0.5));
    Vec3 unitChord = Normalized(chord);
    V4 acrossChord(-unitChord.y, unitChord.x, 0.0, 1.0); // Z x chord
    V4 acrossTangent(-tangent.y, tangent.x, 0.0, 1.0);   // Z x tangent
    V4 localCenter;
    V4 * target = center ? center : (radius ? &localCenter : nullptr);
    if (!zunIntersect3DLines(middle, acrossChord, tangentAtFirst ? first : second, acrossTangent, nullptr, nullptr,
                             target))
        return false;
    return target ? StoreRadius(*target, first, radius) : true;
}

// --- polylines and tables -------------------------------------------------------------

bool zunFindPolylineTan(zunFastMesh<V4> const & points, int index, double distance, unsigned int flags, V4 & tangent)
{
    const int count = static_cast<int>(points.Count());
    if (index < 0 || index >= count) // a negative index is made safe: nothing to walk from
        return false;
    const bool closed = (flags & 2) != 0;
    const int step = (flags & 1) ? -1 : 1;
    const V4 & from = points[static_cast<unsigned int>(index)];
    const double limit = distance * distance;

    int i = index + step;
    if (closed)
    {
        i = (i + count) % count;
        if (i == index)
            return false;
    }
    while (closed ? i != index : (i >= 0 && i < count))
    {
        tangent = Point(Minus(points[static_cast<unsigned int>(i)], from));
        if (Dot(Of(tangent), Of(tangent)) > limit)
            return true;
        i += step;
        if (closed)
            i = (i + count) % count;
    }
    return false;
}

double zunInterpolatePWL(V2 const * points, unsigned int count, double x)
{
    if (!points || count == 0) // an empty table is made safe: no entry is read
        return 0.0;
    if (points[0].x >= x)
        return points[0].y;
    if (x >= points[count - 1].x)
        return points[count - 1].y;
    unsigned int i = count - 1;
    while (i > 0 && points[i].x > x)
        --i;
    if (i + 1 >= count) // only a NaN x gets here; the last segment keeps the read in the table
        i = count - 2;
    double slope = (points[i].y - points[i + 1].y) / (points[i].x - points[i + 1].x);
    return points[i].y - points[i].x * slope + slope * x;
}

double zunRandom(double low, double high)
{
    // The result is spread over 32768 steps, as on a runtime whose rand gives
    // 0 to 32767; a wider generator is folded onto that range.
    static_assert(RAND_MAX >= 32767 && (RAND_MAX == 32767 || (RAND_MAX + 1LL) % 32768 == 0),
                  "rand must cover whole multiples of 32768");
    return static_cast<double>(std::rand() % 32768) / 32767.0 * (high - low) + low;
}

// --- boxes along a ray -----------------------------------------------------------------

void zunBBox::GetExtentAlongRay(zunRay const & ray, double & low, double & high) const
{
    if (IsInvalid())
        return;
    zunVector3T<double> corners[8];
    GetBox(corners);
    low = 3.4e+38;
    high = -3.4e+38;
    for (auto & corner : corners)
    {
        double t;
        zunPointToLine(ray.origin, ray.direction, V4(corner.x, corner.y, corner.z, 1.0), nullptr, &t);
        if (low > t)
            low = t;
        if (t > high)
            high = t;
    }
}
