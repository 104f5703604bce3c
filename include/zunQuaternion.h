// zunQuaternion.h - a quaternion of doubles with the algebra of a number type:
// arithmetic, elementary functions, and the bridge to rotations through Euler
// angles and zunMatrix44.
//
// The value is r + i·I + j·J + k·K: r is the real part, (i, j, k) the unreal
// (imaginary) part. A default quaternion is the identity (1, 0, 0, 0), not zero.
// Unit quaternions stand for rotations: FromRotAnglesDeg(x, y, z) is the turn of
// zunMatrix44::AddRotation with the same angles, and GetRotMtx its matrix.
//
//   zunQuaternion turn = zunQuaternion::FromRotAnglesDeg(0, 0, 90);
//   zunMatrix44 m = turn.GetRotMtx();                 // Rz(90°)
//   zunQuaternion half = Pow(turn, 0.5);               // Rz(45°)
//
// Two operators are not what the symbols suggest, and are kept so: d - q is
// (r - d, i, j, k), the same as q - d, and d / q is q times 1 / d, the same as
// q / d. The free Distance(a, b) is 0.0 for every finite b; use the member.
// Nothing throws or logs: division by zero and logarithms of zero give the
// floating-point infinities and NaN, a degenerate Invert or Normalize leaves
// the value as it was. Nothing allocates.
#ifndef ZUN_QUATERNION_H
#define ZUN_QUATERNION_H

#include "zunConfig.h"
#include "zunMatrix44.h"
#include "zunTypes.h"

/// The quaternion r + i·I + j·J + k·K of doubles; the default is the identity.
class ZUN_API zunQuaternion
{
public:
    /// (1, 0, 0, 0), (0, 1, 0, 0), (0, 0, 1, 0), (0, 0, 0, 1), (0, 0, 0, 0);
    /// constant from library load on.
    ///@{
    static const zunQuaternion Identity;
    static const zunQuaternion I;
    static const zunQuaternion J;
    static const zunQuaternion K;
    static const zunQuaternion Zero;
    ///@}

    /// The identity (1, 0, 0, 0).
    constexpr zunQuaternion() : m_r(1.0), m_i(0.0), m_j(0.0), m_k(0.0) {}
    /// The components as given: real part r, unreal part (i, j, k).
    constexpr zunQuaternion(double r, double i, double j, double k) : m_r(r), m_i(i), m_j(j), m_k(k) {}

    /// Replaces all four components.
    void Set(double r, double i, double j, double k) { m_r = r, m_i = i, m_j = j, m_k = k; }

    /// The components: r() reads the real part, r(value) writes it; likewise
    /// i, j and k for the unreal part.
    ///@{
    double r() const { return m_r; }
    double i() const { return m_i; }
    double j() const { return m_j; }
    double k() const { return m_k; }
    void r(double value) { m_r = value; }
    void i(double value) { m_i = value; }
    void j(double value) { m_j = value; }
    void k(double value) { m_k = value; }
    ///@}

    /// The real part, r().
    double Scalar() const { return m_r; }
    /// (i, j, k).
    zunVector3T<double> GetUnreal() const { return zunVector3T<double>(m_i, m_j, m_k); }

    /// r² + i² + j² + k².
    double Norm2() const { return m_r * m_r + m_i * m_i + m_j * m_j + m_k * m_k; }
    /// The length, the square root of Norm2.
    double Norm() const;
    /// i² + j² + k².
    double UnrealNorm2() const { return m_i * m_i + m_j * m_j + m_k * m_k; }
    /// The length of the unreal part, the square root of UnrealNorm2.
    double UnrealNorm() const;

    /// Negates i, j, k.
    zunQuaternion & Conjugate()
    {
        m_i = -m_i, m_j = -m_j, m_k = -m_k;
        return *this;
    }
    /// The conjugate over Norm2; a zero quaternion (Norm2 exactly 0.0) stays.
    zunQuaternion & Invert();
    /// Divides by Norm when it is above 0.0 (no threshold); zero stays zero.
    zunQuaternion & Normalize();
    /// The four-dimensional Euclidean distance to `other`.
    double Distance(const zunQuaternion & other) const;

    /// The rotation matrix of this quaternion, taken to be of unit length (it is
    /// not normalized): the identity with its 3 by 3 block filled.
    zunMatrix44 GetRotMtx() const;
    /// The Euler angles of GetRotMtx in the order of zunMatrix44::AddRotation.
    zunVector3T<double> GetRotAnglesDeg() const;
    /// GetRotAnglesDeg converted to radians.
    zunVector3T<double> GetRotAnglesRad() const;
    /// (qx·qy)·qz, the quaternion of zunMatrix44::AddRotationRad(x, y, z).
    static zunQuaternion FromRotAnglesRad(double x, double y, double z);
    /// FromRotAnglesRad of the angles times 0.01745329251994.
    static zunQuaternion FromRotAnglesDeg(double x, double y, double z);

    // Tests against a tolerance t: a value lies within t when t >= |value|, so
    // t = 0 accepts exact zeros and any NaN fails.

    /// |Norm2 - 1| within t (the squared norm, not the norm).
    bool IsUnit(double tolerance = kDefaultTolerance) const;
    /// All four components within t.
    bool IsZero(double tolerance = kDefaultTolerance) const;
    /// Exactly !IsZero(t).
    bool IsNotZero(double tolerance = kDefaultTolerance) const;
    /// i, j, k within t; r is not examined.
    bool IsScalar(double tolerance = kDefaultTolerance) const;
    /// r within t and not all of i, j, k within t (zero is not a vector).
    bool IsVector(double tolerance = kDefaultTolerance) const;
    /// All four components are finite.
    bool IsValid() const;

    /// The tolerance of the tests when none is given.
    static constexpr double kDefaultTolerance = 1e-12;

    // Arithmetic. A double d acts on r alone in + and -, on all four in · and /.

    /// Exact component comparison: 0.0 equals -0.0, a NaN equals nothing.
    bool operator==(const zunQuaternion & b) const
    {
        return m_r == b.m_r && m_i == b.m_i && m_j == b.m_j && m_k == b.m_k;
    }
    /// Exactly !(*this == b): true when a component is NaN.
    bool operator!=(const zunQuaternion & b) const { return !(*this == b); }

    /// The copy; all four components negated.
    ///@{
    zunQuaternion operator+() const { return *this; }
    zunQuaternion operator-() const { return zunQuaternion(-m_r, -m_i, -m_j, -m_k); }
    ///@}

    /// Component by component.
    ///@{
    zunQuaternion & operator+=(const zunQuaternion & b)
    {
        m_r += b.m_r, m_i += b.m_i, m_j += b.m_j, m_k += b.m_k;
        return *this;
    }
    zunQuaternion & operator-=(const zunQuaternion & b)
    {
        m_r -= b.m_r, m_i -= b.m_i, m_j -= b.m_j, m_k -= b.m_k;
        return *this;
    }
    ///@}
    /// Add d to or subtract it from r alone.
    ///@{
    zunQuaternion & operator+=(double d)
    {
        m_r += d;
        return *this;
    }
    zunQuaternion & operator-=(double d)
    {
        m_r -= d;
        return *this;
    }
    ///@}
    /// Scales all four components.
    zunQuaternion & operator*=(double d)
    {
        m_r *= d, m_i *= d, m_j *= d, m_k *= d;
        return *this;
    }
    /// Multiplies by 1.0 / d.
    zunQuaternion & operator/=(double d) { return *this *= 1.0 / d; }
    /// The Hamilton product this·b.
    zunQuaternion & operator*=(const zunQuaternion & b) { return *this = Product(*this, b); }
    /// Right division this·b⁻¹, unguarded.
    zunQuaternion & operator/=(const zunQuaternion & b) { return *this = Quotient(*this, b); }

    /// Component by component.
    ///@{
    friend zunQuaternion operator+(zunQuaternion a, const zunQuaternion & b) { return a += b; }
    friend zunQuaternion operator-(zunQuaternion a, const zunQuaternion & b) { return a -= b; }
    ///@}
    /// (r + d, i, j, k) and (r - d, i, j, k).
    ///@{
    friend zunQuaternion operator+(zunQuaternion q, double d) { return q += d; }
    friend zunQuaternion operator-(zunQuaternion q, double d) { return q -= d; }
    ///@}
    /// (d + r, i, j, k).
    friend zunQuaternion operator+(double d, const zunQuaternion & q)
    {
        return zunQuaternion(d + q.m_r, q.m_i, q.m_j, q.m_k);
    }
    /// (r - d, i, j, k): the same as q - d, not the negated difference.
    friend zunQuaternion operator-(double d, zunQuaternion q) { return q -= d; }
    /// All four components times d.
    ///@{
    friend zunQuaternion operator*(zunQuaternion q, double d) { return q *= d; }
    friend zunQuaternion operator*(double d, zunQuaternion q) { return q *= d; }
    ///@}
    /// All four components times 1.0 / d.
    friend zunQuaternion operator/(zunQuaternion q, double d) { return q /= d; }
    /// q times 1.0 / d: the same as q / d, not d·q⁻¹.
    friend zunQuaternion operator/(double d, zunQuaternion q) { return q /= d; }
    /// The Hamilton product a·b.
    friend zunQuaternion operator*(const zunQuaternion & a, const zunQuaternion & b) { return Product(a, b); }
    /// Right division a·b⁻¹, unguarded: b zero gives infinities and NaN.
    friend zunQuaternion operator/(const zunQuaternion & a, const zunQuaternion & b) { return Quotient(a, b); }

private:
    /// The Hamilton product. Each difference x - y of the textbook sums is
    /// written x + y·(-b), which is the same operation to the bit; with every
    /// lane a plain sum, the compiler forms the four sums side by side in
    /// vector registers without blending additions and subtractions.
    static zunQuaternion Product(const zunQuaternion & a, const zunQuaternion & b)
    {
        const double br = b.m_r, bi = b.m_i, bj = b.m_j, bk = b.m_k;
        return zunQuaternion(
            a.m_r * br + a.m_i * -bi + a.m_j * -bj + a.m_k * -bk, a.m_r * bi + a.m_i * br + a.m_j * bk + a.m_k * -bj,
            a.m_r * bj + a.m_i * -bk + a.m_j * br + a.m_k * bi, a.m_r * bk + a.m_i * bj + a.m_j * -bi + a.m_k * br);
    }

    /// a·conjugate(b), each of the four sums divided by b's Norm2.
    static zunQuaternion Quotient(const zunQuaternion & a, const zunQuaternion & b)
    {
        const double n = b.Norm2();
        const zunQuaternion p = Product(a, zunQuaternion(b.m_r, -b.m_i, -b.m_j, -b.m_k));
        return zunQuaternion(p.m_r / n, p.m_i / n, p.m_j / n, p.m_k / n);
    }

    double m_r, m_i, m_j, m_k;
};

/// The conjugate (r, -i, -j, -k).
ZUN_API zunQuaternion Conjugate(const zunQuaternion & q);
/// The inverse; a copy of q when q is zero.
ZUN_API zunQuaternion Invert(const zunQuaternion & q);
/// q of unit length; a copy of q when q is zero.
ZUN_API zunQuaternion Normalize(const zunQuaternion & q);

/// The exponential. The unreal length n is kept at least 2.2250738585072014e-308
/// in the division, so Exp(0) is (1, 0, 0, 0).
ZUN_API zunQuaternion Exp(const zunQuaternion & q);
/// The logarithm (log |q|, v·acos(r / |q|) / n); Log(0) is (-inf, NaN, NaN, NaN).
ZUN_API zunQuaternion Log(const zunQuaternion & q);
/// Exp(Log(q)·t).
ZUN_API zunQuaternion Pow(const zunQuaternion & q, double t);

/// The trigonometric and hyperbolic functions. A purely real q gives the real
/// function of r in Sin, Cos and Tan.
///@{
ZUN_API zunQuaternion Sin(const zunQuaternion & q);
ZUN_API zunQuaternion Cos(const zunQuaternion & q);
ZUN_API zunQuaternion Tan(const zunQuaternion & q);
ZUN_API zunQuaternion Sinh(const zunQuaternion & q);
ZUN_API zunQuaternion Cosh(const zunQuaternion & q);
///@}
/// Sinh(q) / Cosh(q), with the right division.
ZUN_API zunQuaternion Tanh(const zunQuaternion & q);

/// (0, a.j·b.k - a.k·b.j, a.k·b.i - a.i·b.k, a.i·b.j - a.j·b.k): the cross
/// product of the unreal parts except for the last term, which reuses a.j·b.k.
ZUN_API zunQuaternion Cross(const zunQuaternion & a, const zunQuaternion & b);
/// The four-dimensional dot product.
ZUN_API double Dot(const zunQuaternion & a, const zunQuaternion & b);
/// Each of b's components minus itself, squared and summed: 0.0 for a finite b,
/// NaN when b has an infinite or NaN component. `a` is not read. The member
/// Distance is the Euclidean distance.
ZUN_API double Distance(const zunQuaternion & a, const zunQuaternion & b);

#endif // ZUN_QUATERNION_H
