// Vector3Math.h - the three-component vector helpers of the matrix family:
// length, dot and cross products, and the guarded normalization.
//
// The public vector types have no operators, so the matrix code works on this
// private triple. Each formula keeps the order of its terms, which decides the
// rounding of every result built on it.
#ifndef ZUN_VECTOR3_MATH_H
#define ZUN_VECTOR3_MATH_H

#include <cmath>

#include "zunTypes.h"

namespace zunVector3Math
{
    /// The length below which a vector is left as it is by normalization.
    constexpr double kNormalizeFloor = 1e-19;
    /// The length below which a direction counts as degenerate.
    constexpr double kDegenerateLength = 1e-12;

    struct Vec3
    {
        double x, y, z;
    };

    inline Vec3 Of(const zunVector4T<double> & v)
    {
        return Vec3{v.x, v.y, v.z};
    }

    inline double Length(const Vec3 & v)
    {
        return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
    }

    inline double Dot(const Vec3 & a, const Vec3 & b)
    {
        return a.x * b.x + a.y * b.y + a.z * b.z;
    }

    inline Vec3 Cross(const Vec3 & a, const Vec3 & b)
    {
        return Vec3{a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
    }

    inline Vec3 Scaled(const Vec3 & v, double factor)
    {
        return Vec3{v.x * factor, v.y * factor, v.z * factor};
    }

    /// Divides by the length (as a product with its reciprocal) only when the
    /// length exceeds 1e-19; a shorter vector stays as it is, it is not zeroed.
    inline void GuardedNormalize(double & x, double & y, double & z)
    {
        const double length = std::sqrt(x * x + y * y + z * z);
        if (length > kNormalizeFloor)
        {
            const double factor = 1.0 / length;
            x *= factor;
            y *= factor;
            z *= factor;
        }
    }

    inline void GuardedNormalize(Vec3 & v)
    {
        GuardedNormalize(v.x, v.y, v.z);
    }
}

#endif // ZUN_VECTOR3_MATH_H
