// zunTypes.h - the plain value types shared by the geometry, color and
// rectangle families.
//
// They are plain structures with public fields and no operators. A fresh
// zunVector4T is (0, 0, 0, 1): every vector the library makes fresh holds
// w = 1.0, geometry reads x, y, z only, and only Transform4to4 reads w.
// zunVector4T<double> is the general 3-D type for points and directions alike.
#ifndef ZUN_TYPES_H
#define ZUN_TYPES_H

#include "zunConfig.h"

/// A 2-D point or vector (used with int and double).
template <typename T> struct zunVector2T
{
    /// The components.
    ///@{
    T x, y;
    ///@}

    /// (0, 0), or the components as given.
    ///@{
    constexpr zunVector2T() : x(0), y(0) {}
    constexpr zunVector2T(T x_, T y_) : x(x_), y(y_) {}
    ///@}
};

/// A 3-D point or vector (used with float and double).
template <typename T> struct zunVector3T
{
    /// The components.
    ///@{
    T x, y, z;
    ///@}

    /// (0, 0, 0), or the components as given.
    ///@{
    constexpr zunVector3T() : x(0), y(0), z(0) {}
    constexpr zunVector3T(T x_, T y_, T z_) : x(x_), y(y_), z(z_) {}
    ///@}
};

/// A 3-D point or direction with a fourth component (used with float and double).
template <typename T> struct zunVector4T
{
    /// The components; w is 1 unless set otherwise, and only Transform4to4
    /// reads it.
    ///@{
    T x, y, z, w;
    ///@}

    /// (0, 0, 0, 1), or the components as given with w 1 by default.
    ///@{
    constexpr zunVector4T() : x(0), y(0), z(0), w(1) {}
    constexpr zunVector4T(T x_, T y_, T z_, T w_ = T(1)) : x(x_), y(y_), z(z_), w(w_) {}
    ///@}
};

/// A 2-D extent (used with int and double).
template <typename T> struct zunSizeT
{
    /// The extent along x and y; nothing keeps them from being negative.
    ///@{
    T width, height;
    ///@}

    /// (0, 0), or the extent as given.
    ///@{
    constexpr zunSizeT() : width(0), height(0) {}
    constexpr zunSizeT(T width_, T height_) : width(width_), height(height_) {}
    ///@}
};

/// A closed range, `min` then `max` (used with double).
template <typename T> struct zunRange
{
    /// The ends, both included; nothing keeps min from exceeding max.
    ///@{
    T min, max;
    ///@}

    /// (0, 0), or the ends as given.
    ///@{
    constexpr zunRange() : min(0), max(0) {}
    constexpr zunRange(T min_, T max_) : min(min_), max(max_) {}
    ///@}
};

#endif // ZUN_TYPES_H
