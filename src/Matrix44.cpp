// zunMatrix44: composition, the Add* family, accessors, inversion, transpose, dump.
// The transforms of point arrays are in Matrix44Transform.cpp.
//
// Every formula here keeps the order of terms and the sequence of matrix
// products that the class documents, because they decide the rounding: two
// builds must give the same bits for the same calls.
#include "zunMatrix44.h"

#include <cmath>

#include "CpuClones.h"
#include "Double4.h"
#include "FileArrayAccess.h"
#include "Vector3Math.h"
#include "zunDebugPrint.h"
#include "zunMem.h"

using zunVector3Math::Cross;
using zunVector3Math::GuardedNormalize;
using zunVector3Math::kDegenerateLength;
using zunVector3Math::kNormalizeFloor;
using zunVector3Math::Length;
using zunVector3Math::Of;
using zunVector3Math::Scaled;
using zunVector3Math::Vec3;

const zunMatrix44 zunMatrix44::Identity;

namespace
{
    /// Degrees to radians: the angle times pi times the double nearest 1/180,
    /// multiplied in that order.
    double DegreesToRadians(double degrees)
    {
        return degrees * 3.141592653589793 * 0.005555555555555556;
    }

    /// The factor that turns the atan2 terms of GetRotation into the degrees
    /// AddRotation took; shorter than 180/pi, and kept so.
    constexpr double kRadiansToNegativeDegrees = -57.29577951308;

    constexpr double kParallelDot = 0.999999999;

    zunMatrix44 Translation(double x, double y, double z)
    {
        zunMatrix44 t;
        t.m[12] = x;
        t.m[13] = y;
        t.m[14] = z;
        return t;
    }

    /// A center counts only if one of x, y, z differs from 0.0 (so -0.0 does not).
    bool IsCenter(const zunVector4T<double> & center)
    {
        return center.x != 0.0 || center.y != 0.0 || center.z != 0.0;
    }

    /// The rotation by the angle of cosine `c` and sine `s` about the unit axis.
    zunMatrix44 AxisRotation(const Vec3 & axis, double c, double s)
    {
        const double x = axis.x, y = axis.y, z = axis.z;
        const double d = 1.0 - c;
        zunMatrix44 r;
        r.m[0] = x * x * d + c;
        r.m[1] = y * x * d + z * s;
        r.m[2] = z * x * d - y * s;
        r.m[4] = y * x * d - z * s;
        r.m[5] = y * y * d + c;
        r.m[6] = z * y * d + x * s;
        r.m[8] = z * x * d + y * s;
        r.m[9] = z * y * d - x * s;
        r.m[10] = z * z * d + c;
        return r;
    }

    /// The axis block with the columns x, y, z and the translation t, the last
    /// row that of the identity.
    zunMatrix44 Frame(const Vec3 & x, const Vec3 & y, const Vec3 & z, const Vec3 & t)
    {
        zunMatrix44 f;
        f.m[0] = x.x, f.m[1] = x.y, f.m[2] = x.z;
        f.m[4] = y.x, f.m[5] = y.y, f.m[6] = y.z;
        f.m[8] = z.x, f.m[9] = z.y, f.m[10] = z.z;
        f.m[12] = t.x, f.m[13] = t.y, f.m[14] = t.z;
        return f;
    }

    /// Scales to unit length unless the length is below 1e-19 (a length of
    /// exactly 1e-19 is scaled, unlike the guarded normalization).
    Vec3 UnitUnlessBelowFloor(const Vec3 & v, double length)
    {
        return kNormalizeFloor > length ? v : Scaled(v, 1.0 / length);
    }

    /// One column of a product, held in locals until it is stored.
    struct Column
    {
        double r0, r1, r2, r3;

        void StoreTo(double * to) const { to[0] = r0, to[1] = r1, to[2] = r2, to[3] = r3; }
    };

    void SetColumn(double * column, const Vec3 & v)
    {
        column[0] = v.x;
        column[1] = v.y;
        column[2] = v.z;
    }
}

bool zunMatrix44::operator==(const zunMatrix44 & other) const
{
    return zunMemCmp(m, other.m, sizeof(m)) == 0;
}

bool zunMatrix44::operator!=(const zunMatrix44 & other) const
{
    return !(*this == other);
}

zunMatrix44 & zunMatrix44::SetIdentity()
{
    *this = zunMatrix44();
    return *this;
}

namespace
{
    /// M <- M·B for a B that is not M: all of A is held in locals first, and
    /// each new element is the same sum in the same order as row by row. Whole
    /// columns formed side by side let the compiler keep them in vector
    /// registers.
    ZUN_CPU_CLONES void MultiplyDistinct(double * __restrict m, const double * __restrict b)
    {
        const double a0 = m[0], a1 = m[1], a2 = m[2], a3 = m[3], a4 = m[4], a5 = m[5], a6 = m[6], a7 = m[7];
        const double a8 = m[8], a9 = m[9], a10 = m[10], a11 = m[11], a12 = m[12], a13 = m[13], a14 = m[14], a15 = m[15];
        const auto column = [&](const double * p)
        {
            return Column{
                a0 * p[0] + a4 * p[1] + a8 * p[2] + a12 * p[3], a1 * p[0] + a5 * p[1] + a9 * p[2] + a13 * p[3],
                a2 * p[0] + a6 * p[1] + a10 * p[2] + a14 * p[3], a3 * p[0] + a7 * p[1] + a11 * p[2] + a15 * p[3]};
        };
        const Column c0 = column(b), c1 = column(b + 4), c2 = column(b + 8), c3 = column(b + 12);
        c0.StoreTo(m);
        c1.StoreTo(m + 4);
        c2.StoreTo(m + 8);
        c3.StoreTo(m + 12);
    }

    /// M <- M·M as the row-by-row product falls: each row of A is read into
    /// locals, then its four new elements are written, and later rows read B
    /// after earlier rows changed it. Kept for callers that rely on what that
    /// gives; it is not the square.
    __attribute__((noinline)) void MultiplyByItself(double * m)
    {
        for (int r = 0; r < 4; ++r)
        {
            const double a0 = m[r], a1 = m[4 + r], a2 = m[8 + r], a3 = m[12 + r];
            for (int c = 0; c < 4; ++c)
                m[4 * c + r] = a0 * m[4 * c] + a1 * m[4 * c + 1] + a2 * m[4 * c + 2] + a3 * m[4 * c + 3];
        }
    }
}

zunMatrix44 & zunMatrix44::MulMtx(const zunMatrix44 & b)
{
    if (&b == this)
        MultiplyByItself(m);
    else
        MultiplyDistinct(m, b.m);
    return *this;
}

zunMatrix44 & zunMatrix44::AddTranslation(const zunVector4T<double> & offset)
{
    return MulMtx(Translation(offset.x, offset.y, offset.z));
}

namespace
{
    /// M <- M·T(c)·R·T(-c) for a center, else M <- M·R.
    zunMatrix44 & MulCentered(zunMatrix44 & target, const zunMatrix44 & r, const zunVector4T<double> & center)
    {
        if (!IsCenter(center))
            return target.MulMtx(r);
        target.AddTranslation(center);
        target.MulMtx(r);
        return target.MulMtx(Translation(-center.x, -center.y, -center.z));
    }
}

zunMatrix44 & zunMatrix44::AddScaling(const zunVector4T<double> & scale, const zunVector4T<double> & center)
{
    zunMatrix44 s;
    s.m[0] = scale.x;
    s.m[5] = scale.y;
    s.m[10] = scale.z;
    return MulCentered(*this, s, center);
}

zunMatrix44 & zunMatrix44::AddRotation(const zunVector4T<double> & angles, const zunVector4T<double> & center)
{
    const zunVector4T<double> radians(DegreesToRadians(angles.x), DegreesToRadians(angles.y),
                                      DegreesToRadians(angles.z), angles.w);
    return AddRotationRad(radians, center);
}

zunMatrix44 & zunMatrix44::AddRotationRad(const zunVector4T<double> & angles, const zunVector4T<double> & center)
{
    zunMatrix44 rx, ry, rz;
    const double cx = std::cos(angles.x), sx = std::sin(angles.x);
    rx.m[5] = cx, rx.m[6] = sx, rx.m[9] = -sx, rx.m[10] = cx;
    const double cy = std::cos(angles.y), sy = std::sin(angles.y);
    ry.m[0] = cy, ry.m[2] = -sy, ry.m[8] = sy, ry.m[10] = cy;
    const double cz = std::cos(angles.z), sz = std::sin(angles.z);
    rz.m[0] = cz, rz.m[1] = sz, rz.m[4] = -sz, rz.m[5] = cz;

    zunMatrix44 r;
    r.MulMtx(rx).MulMtx(ry).MulMtx(rz);
    return MulCentered(*this, r, center);
}

zunMatrix44 & zunMatrix44::AddRotationVector(const zunVector4T<double> & axis, double angle,
                                             const zunVector4T<double> & center)
{
    return AddRotationVectorRad(axis, DegreesToRadians(angle), center);
}

zunMatrix44 & zunMatrix44::AddRotationVectorRad(const zunVector4T<double> & axis, double angle,
                                                const zunVector4T<double> & center)
{
    const double length = Length(Of(axis));
    if (kDegenerateLength > length)
        return *this;
    const Vec3 unit = Scaled(Of(axis), 1.0 / length);
    return MulCentered(*this, AxisRotation(unit, std::cos(angle), std::sin(angle)), center);
}

zunMatrix44 & zunMatrix44::AddRotationVectorCos(const zunVector4T<double> & axis, double cosAngle,
                                                const zunVector4T<double> & center)
{
    const double length = Length(Of(axis));
    if (kDegenerateLength > length)
        return *this;
    const Vec3 unit = Scaled(Of(axis), 1.0 / length);
    return MulCentered(*this, AxisRotation(unit, cosAngle, std::sqrt(1.0 - cosAngle * cosAngle)), center);
}

zunMatrix44 & zunMatrix44::AddAlignVectorOnVector(const zunVector4T<double> & a, const zunVector4T<double> & b)
{
    Vec3 from = Of(a), to = Of(b);
    GuardedNormalize(from);
    GuardedNormalize(to);
    const double dot = zunVector3Math::Dot(from, to);
    const zunVector4T<double> noCenter(0.0, 0.0, 0.0, 1.0);

    if (dot > kParallelDot)
        return *this;
    if (-kParallelDot > dot)
    {
        // Opposite: turn half round about an axis normal to `a`, found from
        // the unit axis picked by these comparisons (ties as written).
        const double ax = std::fabs(from.x), ay = std::fabs(from.y), az = std::fabs(from.z);
        Vec3 helper;
        if (ay > ax)
            helper = az > ax ? Vec3{1.0, 0.0, 0.0} : Vec3{0.0, 0.0, 1.0};
        else
            helper = az > ay ? Vec3{0.0, 1.0, 0.0} : Vec3{0.0, 0.0, 1.0};
        const Vec3 axis = Cross(helper, from);
        return AddRotationVectorCos(zunVector4T<double>(axis.x, axis.y, axis.z), -1.0, noCenter);
    }
    const Vec3 raw = Cross(from, to);
    const Vec3 axis = UnitUnlessBelowFloor(raw, Length(raw));
    return AddRotationVectorCos(zunVector4T<double>(axis.x, axis.y, axis.z), dot, noCenter);
}

namespace
{
    /// The up vector of the align operations: X when v leans more to Z than
    /// to X, else Z.
    zunVector4T<double> AlignUp(const zunVector4T<double> & v)
    {
        return std::fabs(v.z) > std::fabs(v.x) ? zunVector4T<double>(1.0, 0.0, 0.0)
                                               : zunVector4T<double>(0.0, 0.0, 1.0);
    }

    zunVector4T<double> Negated(const zunVector4T<double> & v)
    {
        return zunVector4T<double>(-v.x, -v.y, -v.z, v.w);
    }

    const zunVector4T<double> kOrigin(0.0, 0.0, 0.0, 1.0);
}

zunMatrix44 & zunMatrix44::AddAlignVectorOnXY(const zunVector4T<double> & v)
{
    zunMatrix44 look;
    look.AddLookAt(kOrigin, Negated(v), AlignUp(v));
    look.Invert();
    return MulMtx(look);
}

zunMatrix44 & zunMatrix44::AddInvAlignVectorOnXY(const zunVector4T<double> & v)
{
    return AddLookAt(kOrigin, Negated(v), AlignUp(v));
}

zunMatrix44 & zunMatrix44::AddLookAt(const zunVector4T<double> & position, const zunVector4T<double> & target,
                                     const zunVector4T<double> & up)
{
    const Vec3 forward{position.x - target.x, position.y - target.y, position.z - target.z};
    const double forwardLength = Length(forward);
    if (kDegenerateLength > forwardLength)
        return *this;
    const Vec3 right = Cross(Of(up), forward);
    const double rightLength = Length(right);
    if (kDegenerateLength > rightLength)
        return *this;
    // The up axis comes from the vectors before they are scaled to unit length.
    Vec3 upAxis = Cross(forward, right);
    GuardedNormalize(upAxis);
    return MulMtx(Frame(UnitUnlessBelowFloor(right, rightLength), upAxis, UnitUnlessBelowFloor(forward, forwardLength),
                        Of(position)));
}

zunMatrix44 & zunMatrix44::AddOriginXY(const zunVector4T<double> & origin, const zunVector4T<double> & xDir,
                                       const zunVector4T<double> & yDir)
{
    Vec3 x = Of(xDir), y = Of(yDir);
    if (kDegenerateLength > Length(x) || kDegenerateLength > Length(y))
        return *this;
    GuardedNormalize(x);
    GuardedNormalize(y);
    Vec3 z = Cross(x, y);
    if (kDegenerateLength > Length(z))
        return *this;
    GuardedNormalize(z);
    return MulMtx(Frame(x, Cross(z, x), z, Of(origin)));
}

zunMatrix44 & zunMatrix44::AddAtoB(const zunMatrix44 & a, const zunMatrix44 & b)
{
    // A singular A leaves the identity in `step`, so the result is M·B.
    zunMatrix44 step;
    a.Invert(step);
    step.MulMtx(b);
    return MulMtx(step);
}

zunMatrix44 & zunMatrix44::AddOrtho(double left, double right, double bottom, double top, double zNear, double zFar)
{
    zunMatrix44 t;
    t.m[0] = 2.0 / (right - left);
    t.m[5] = 2.0 / (top - bottom);
    t.m[10] = -2.0 / (zFar - zNear);
    t.m[12] = -(left + right) / (right - left);
    t.m[13] = -(bottom + top) / (top - bottom);
    t.m[14] = -(zNear + zFar) / (zFar - zNear);
    return MulMtx(t);
}

zunMatrix44 & zunMatrix44::AddPerspective(double left, double right, double bottom, double top, double zNear,
                                          double zFar)
{
    zunMatrix44 t;
    t.m[0] = 2.0 * zNear / (right - left);
    t.m[5] = 2.0 * zNear / (top - bottom);
    t.m[8] = (left + right) / (right - left);
    t.m[9] = (bottom + top) / (top - bottom);
    t.m[10] = -(zNear + zFar) / (zFar - zNear);
    t.m[11] = -1.0;
    t.m[14] = -2.0 * zFar * zNear / (zFar - zNear);
    t.m[15] = 0.0;
    return MulMtx(t);
}

zunVector4T<double> zunMatrix44::GetRotation() const
{
    const double t = std::atan2(m[9], m[10]);
    const double st = std::sin(t), ct = std::cos(t);
    const double ax = t * kRadiansToNegativeDegrees;
    const double ay = std::atan2(-m[8], std::sqrt(m[0] * m[0] + m[4] * m[4])) * kRadiansToNegativeDegrees;
    const double az = std::atan2(st * m[2] - ct * m[1], ct * m[5] - st * m[6]) * kRadiansToNegativeDegrees;
    return zunVector4T<double>(ax, ay, az, 1.0);
}

zunVector4T<double> zunMatrix44::GetScale() const
{
    return zunVector4T<double>(std::sqrt(m[0] * m[0] + m[1] * m[1] + m[2] * m[2]),
                               std::sqrt(m[4] * m[4] + m[5] * m[5] + m[6] * m[6]),
                               std::sqrt(m[8] * m[8] + m[9] * m[9] + m[10] * m[10]), 1.0);
}

zunVector4T<double> zunMatrix44::GetTranslation() const
{
    return zunVector4T<double>(m[12], m[13], m[14], 1.0);
}

zunMatrix44 & zunMatrix44::SetTranslation(const zunVector3T<float> & t)
{
    return SetTranslation(zunVector3T<double>(t.x, t.y, t.z));
}

zunMatrix44 & zunMatrix44::SetTranslation(const zunVector3T<double> & t)
{
    m[12] = t.x;
    m[13] = t.y;
    m[14] = t.z;
    return *this;
}

zunMatrix44 & zunMatrix44::SetTranslation(const zunVector4T<double> & t)
{
    return SetTranslation(zunVector3T<double>(t.x, t.y, t.z));
}

zunMatrix44 & zunMatrix44::SetXYZ(const zunVector4T<double> & x, const zunVector4T<double> & y, bool orthonormal)
{
    if (orthonormal)
    {
        SetColumn(m, Of(x));
        SetColumn(m + 4, Of(y));
        SetColumn(m + 8, Cross(Of(x), Of(y)));
        return *this;
    }
    Vec3 xUnit = Of(x), yUnit = Of(y);
    if (kDegenerateLength > Length(xUnit) || kDegenerateLength > Length(yUnit))
        return *this;
    GuardedNormalize(xUnit);
    GuardedNormalize(yUnit);
    Vec3 z = Cross(xUnit, yUnit);
    if (kDegenerateLength > Length(z))
        return *this;
    GuardedNormalize(z);
    SetColumn(m, xUnit);
    SetColumn(m + 4, Cross(z, xUnit));
    SetColumn(m + 8, z);
    return *this;
}

zunVector3T<double> zunMatrix44::X() const
{
    return zunVector3T<double>(m[0], m[1], m[2]);
}

zunVector3T<double> zunMatrix44::Y() const
{
    return zunVector3T<double>(m[4], m[5], m[6]);
}

zunVector3T<double> zunMatrix44::Z() const
{
    return zunVector3T<double>(m[8], m[9], m[10]);
}

zunMatrix44 & zunMatrix44::RemoveScales()
{
    GuardedNormalize(m[0], m[1], m[2]);
    GuardedNormalize(m[4], m[5], m[6]);
    GuardedNormalize(m[8], m[9], m[10]);
    return *this;
}

bool zunMatrix44::Invert()
{
    return Invert(*this);
}

bool zunMatrix44::Invert(zunMatrix44 & out) const
{
    if (!(m[3] == 0.0 && m[7] == 0.0 && m[11] == 0.0 && m[15] == 1.0))
        return InvertGeneral(out);

    // Affine: the inverse of the 3 by 3 block, and the translation carried
    // back through it. Everything is read before `out` (maybe this) is written.
    const double d =
        m[0] * (m[5] * m[10] - m[6] * m[9]) + m[4] * (m[2] * m[9] - m[1] * m[10]) + m[8] * (m[1] * m[6] - m[2] * m[5]);
    if (d == 0.0)
    {
        out.SetIdentity();
        return false;
    }
    const double f = 1.0 / d;
    const double i0 = (m[5] * m[10] - m[6] * m[9]) * f;
    const double i1 = (m[2] * m[9] - m[1] * m[10]) * f;
    const double i2 = (m[1] * m[6] - m[2] * m[5]) * f;
    const double i4 = (m[6] * m[8] - m[4] * m[10]) * f;
    const double i5 = (m[0] * m[10] - m[2] * m[8]) * f;
    const double i6 = (m[2] * m[4] - m[0] * m[6]) * f;
    const double i8 = (m[4] * m[9] - m[5] * m[8]) * f;
    const double i9 = (m[1] * m[8] - m[0] * m[9]) * f;
    const double i10 = (m[0] * m[5] - m[1] * m[4]) * f;
    const double tx = m[12], ty = m[13], tz = m[14];

    out.m[0] = i0, out.m[1] = i1, out.m[2] = i2, out.m[3] = 0.0;
    out.m[4] = i4, out.m[5] = i5, out.m[6] = i6, out.m[7] = 0.0;
    out.m[8] = i8, out.m[9] = i9, out.m[10] = i10, out.m[11] = 0.0;
    out.m[12] = -(i0 * tx + i4 * ty + i8 * tz);
    out.m[13] = -(i1 * tx + i5 * ty + i9 * tz);
    out.m[14] = -(i2 * tx + i6 * ty + i10 * tz);
    out.m[15] = 1.0;
    return true;
}

namespace
{
    /// The full inverse by cofactors from 2 by 2 minors, with no pivoting,
    /// into `out` (which may be `m`: everything is read before the first
    /// store). With a_rc = m[4c + r], the inverse's column c is row c of the
    /// cofactor matrix K over the determinant, which expands along the first
    /// row of A. The rows of A and K are handled whole: a cofactor is
    /// x·p - y·q + z·r with x, y, z from one row of A and p, q, r minors of the
    /// two rows that do not hold it, and its sign is applied to the sum (a
    /// negation is exact). False, with nothing written, for a determinant of
    /// exactly 0.0.
    ZUN_CPU_CLONES bool InvertByCofactors(const double * m, double * out)
    {
        using namespace zunDouble4;
        const Double4 r0 = Make(m[0], m[4], m[8], m[12]), r1 = Make(m[1], m[5], m[9], m[13]);
        const Double4 r2 = Make(m[2], m[6], m[10], m[14]), r3 = Make(m[3], m[7], m[11], m[15]);
        // The three arrangements of a row that the cofactors of a row take.
        const Double4 x0 = Swizzle<1, 0, 0, 0>(r0), y0 = Swizzle<2, 2, 1, 1>(r0), z0 = Swizzle<3, 3, 3, 2>(r0);
        const Double4 x1 = Swizzle<1, 0, 0, 0>(r1), y1 = Swizzle<2, 2, 1, 1>(r1), z1 = Swizzle<3, 3, 3, 2>(r1);
        const Double4 x2 = Swizzle<1, 0, 0, 0>(r2), y2 = Swizzle<2, 2, 1, 1>(r2), z2 = Swizzle<3, 3, 3, 2>(r2);
        const Double4 x3 = Swizzle<1, 0, 0, 0>(r3), y3 = Swizzle<2, 2, 1, 1>(r3), z3 = Swizzle<3, 3, 3, 2>(r3);

        // Minors a_ua·a_vb - a_va·a_ub of rows u, v over the column pairs ab
        // that each lane needs: p over (23, 23, 13, 12), q over (13, 03, 03,
        // 02), r over (12, 02, 01, 01).
        const Double4 lowP = y2 * z3 - y3 * z2, lowQ = x2 * z3 - x3 * z2, lowR = x2 * y3 - x3 * y2;
        const Double4 upP = y0 * z1 - y1 * z0, upQ = x0 * z1 - x1 * z0, upR = x0 * y1 - x1 * y0;

        const Double4 sign = Make(1.0, -1.0, 1.0, -1.0);
        const Double4 k0 = (x1 * lowP - y1 * lowQ + z1 * lowR) * sign;
        const double d = m[0] * k0[0] + m[4] * k0[1] + m[8] * k0[2] + m[12] * k0[3];
        if (d == 0.0)
            return false;
        const double f = 1.0 / d;
        const Double4 k1 = (x0 * lowP - y0 * lowQ + z0 * lowR) * -sign;
        const Double4 k2 = (x3 * upP - y3 * upQ + z3 * upR) * sign;
        const Double4 k3 = (x2 * upP - y2 * upQ + z2 * upR) * -sign;
        Store(out, k0 * f);
        Store(out + 4, k1 * f);
        Store(out + 8, k2 * f);
        Store(out + 12, k3 * f);
        return true;
    }
}

bool zunMatrix44::InvertGeneral(zunMatrix44 & out) const
{
    if (InvertByCofactors(m, out.m))
        return true;
    out.SetIdentity();
    return false;
}

zunMatrix44 & zunMatrix44::Transpose()
{
    Transpose(*this);
    return *this;
}

void zunMatrix44::Transpose(zunMatrix44 & out) const
{
    const zunMatrix44 source = *this;
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            out.m[4 * c + r] = source.m[4 * r + c];
}

// ---- File form.

zunMatrix44::zunMatrix44(zunFile * file, const zunMatrix44 & defaultValue) : zunMatrix44(defaultValue)
{
    Read(file);
}

void zunMatrix44::Read(zunFile * file)
{
    zunFileArrayAccess::Read_Array(file, m, sizeof(double), 16, zunFile::DiffersByByteOrder);
}

void zunMatrix44::Write(zunFile * file) const
{
    zunFileArrayAccess::Write_Array(file, m, sizeof(double), 16, zunFile::DiffersByByteOrder);
}

void zunMatrix44::Dump() const
{
    zunDprintf("  %6.3f %6.3f %6.3f %6.3f\n  %6.3f %6.3f %6.3f %6.3f\n  %6.3f %6.3f %6.3f %6.3f\n"
               "  %6.3f %6.3f %6.3f %6.3f\n",
               m[0], m[1], m[2], m[3], m[4], m[5], m[6], m[7], m[8], m[9], m[10], m[11], m[12], m[13], m[14], m[15]);
}
