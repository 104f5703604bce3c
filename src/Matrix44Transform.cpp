// zunMatrix44: the transforms of point and direction arrays.
//
// Every form is one loop over a small kernel that reads a point, applies one of
// four formulas in double and stores the results, narrowed once. The loops are
// written so that the compiler can vectorise them: the matrix elements are
// copied into locals, the steps of the common layouts (3 and 4 elements) are
// compile-time constants, separate arrays are declared not to alias, and
// nothing in a loop depends on the matrix's content.
//
// Arrays that overlap without being the same array take a plain sequential
// loop instead, which gives exactly the element order the per-point reads and
// stores of each form define.
#include "zunMatrix44.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "CpuClones.h"
#include "Double4.h"
#include "Vector3Math.h"

namespace
{
    enum class Formula
    {
        Point,     // x y z from x y z with the translation
        PointW,    // the point and w' = x·m[3] + y·m[7] + z·m[11] + m[15]
        Full,      // x y z w from x y z w
        Direction, // x y z through the linear block alone
    };

    /// The sixteen elements as locals, so stores into the arrays cannot be
    /// taken to change them.
    struct Elements
    {
        double e[16];

        explicit Elements(const zunMatrix44 & matrix)
        {
            for (int i = 0; i < 16; ++i)
                e[i] = matrix.m[i];
        }
    };

    /// One point: everything is read first, then stored. The sums run in the
    /// documented order, so vectorised and sequential loops give the same bits.
    /// With CopyW the source's fourth element is copied to the target.
    template <Formula F, bool CopyW, typename In, typename Out>
    inline void ApplyReadFirst(const Elements & k, const In * s, Out * d)
    {
        const double * e = k.e;
        const double x = s[0], y = s[1], z = s[2];
        if constexpr (F == Formula::Full)
        {
            const double w = s[3];
            const double rx = x * e[0] + y * e[4] + z * e[8] + w * e[12];
            const double ry = x * e[1] + y * e[5] + z * e[9] + w * e[13];
            const double rz = x * e[2] + y * e[6] + z * e[10] + w * e[14];
            const double rw = x * e[3] + y * e[7] + z * e[11] + w * e[15];
            d[0] = static_cast<Out>(rx), d[1] = static_cast<Out>(ry), d[2] = static_cast<Out>(rz);
            d[3] = static_cast<Out>(rw);
        }
        else if constexpr (F == Formula::Direction)
        {
            const In w = CopyW ? s[3] : In();
            const double rx = x * e[0] + y * e[4] + z * e[8];
            const double ry = x * e[1] + y * e[5] + z * e[9];
            const double rz = x * e[2] + y * e[6] + z * e[10];
            d[0] = static_cast<Out>(rx), d[1] = static_cast<Out>(ry), d[2] = static_cast<Out>(rz);
            if constexpr (CopyW)
                d[3] = w;
        }
        else
        {
            const In w = CopyW ? s[3] : In();
            const double rx = x * e[0] + y * e[4] + z * e[8] + e[12];
            const double ry = x * e[1] + y * e[5] + z * e[9] + e[13];
            const double rz = x * e[2] + y * e[6] + z * e[10] + e[14];
            d[0] = static_cast<Out>(rx), d[1] = static_cast<Out>(ry), d[2] = static_cast<Out>(rz);
            if constexpr (F == Formula::PointW)
                d[3] = static_cast<Out>(x * e[3] + y * e[7] + z * e[11] + e[15]);
            else if constexpr (CopyW)
                d[3] = w;
        }
    }

    /// The columns of the matrix as four-lane values: lane j of column i is
    /// element 4i + j, what the coordinate i contributes to the result j.
    struct Columns
    {
        zunDouble4::Double4 c[4];

        explicit Columns(const Elements & k)
        {
            for (int i = 0; i < 4; ++i)
                c[i] = zunDouble4::Load(k.e + 4 * i);
        }
    };

    /// One point of four doubles, read first and stored whole: the four
    /// results are computed side by side, each with the sums in the order of
    /// ApplyReadFirst and so to the same bits. The fourth lane gets what that
    /// form leaves in d[3]: its own result, the source's w, or d[3] as it was.
    /// (Float points gain nothing measurable from it: they keep the compiler's
    /// vectorised loop.)
    template <Formula F, bool CopyW>
    __attribute__((always_inline)) inline void ApplyWhole(const Columns & k, const double * s, double * d)
    {
        using zunDouble4::Double4;
        const double x = s[0], y = s[1], z = s[2], w = s[3];
        Double4 r = Double4{x, x, x, x} * k.c[0] + Double4{y, y, y, y} * k.c[1] + Double4{z, z, z, z} * k.c[2];
        if constexpr (F == Formula::Full)
            r = r + Double4{w, w, w, w} * k.c[3];
        else if constexpr (F != Formula::Direction)
            r = r + k.c[3];
        if constexpr (F != Formula::Full && F != Formula::PointW)
            r[3] = CopyW ? w : d[3];
        zunDouble4::Store(d, r);
    }

    /// One point as the forms that read the source again between their stores
    /// (the zunVector4T and packed-normal forms with a separate target): what
    /// they give when the caller lets source and target overlap.
    template <Formula F, bool CopyW, typename T> inline void ApplyRereading(const Elements & k, const T * s, T * d)
    {
        const double * e = k.e;
        if constexpr (F == Formula::Direction)
        {
            d[0] = static_cast<T>(s[0] * e[0] + s[1] * e[4] + s[2] * e[8]);
            d[1] = static_cast<T>(s[0] * e[1] + s[1] * e[5] + s[2] * e[9]);
            d[2] = static_cast<T>(s[0] * e[2] + s[1] * e[6] + s[2] * e[10]);
        }
        else
        {
            d[0] = static_cast<T>(s[0] * e[0] + s[1] * e[4] + s[2] * e[8] + e[12]);
            d[1] = static_cast<T>(s[0] * e[1] + s[1] * e[5] + s[2] * e[9] + e[13]);
            d[2] = static_cast<T>(s[0] * e[2] + s[1] * e[6] + s[2] * e[10] + e[14]);
            if constexpr (F == Formula::PointW)
                d[3] = static_cast<T>(s[0] * e[3] + s[1] * e[7] + s[2] * e[11] + e[15]);
        }
        if constexpr (CopyW)
            d[3] = s[3];
    }

    /// The in-place loop. kStep is the step when known at compile time, else 0
    /// and `step` holds it.
    template <Formula F, unsigned kStep, typename T>
    ZUN_CPU_CLONES void InPlaceLoop(const Elements & k, T * points, unsigned int count, unsigned int step)
    {
        const Elements local = k;
        const std::size_t stride = kStep ? kStep : step;
        if constexpr (kStep == 4 && std::is_same<T, double>::value)
        {
            const Columns columns(local);
            for (unsigned int i = 0; i < count; ++i)
                ApplyWhole<F, false>(columns, points + i * stride, points + i * stride);
        }
        else
            for (unsigned int i = 0; i < count; ++i)
                ApplyReadFirst<F, false>(local, points + i * stride, points + i * stride);
    }

    template <Formula F, typename T> void InPlace(const Elements & k, T * points, unsigned int count, unsigned int step)
    {
        if (step == 3)
            InPlaceLoop<F, 3>(k, points, count, step);
        else if (step == 4)
            InPlaceLoop<F, 4>(k, points, count, step);
        else
            InPlaceLoop<F, 0>(k, points, count, step);
    }

    /// The loop over a separate target that shares no byte with the source.
    template <Formula F, bool CopyW, unsigned kIn, unsigned kOut, typename In, typename Out>
    ZUN_CPU_CLONES void SeparateLoop(const Elements & k, const In * __restrict source, Out * __restrict target,
                                     unsigned int count, unsigned int sourceStep, unsigned int targetStep)
    {
        const Elements local = k;
        const std::size_t in = kIn ? kIn : sourceStep, out = kOut ? kOut : targetStep;
        if constexpr (kIn == 4 && kOut == 4 && std::is_same<In, double>::value && std::is_same<Out, double>::value)
        {
            const Columns columns(local);
            for (unsigned int i = 0; i < count; ++i)
                ApplyWhole<F, CopyW>(columns, source + i * in, target + i * out);
        }
        else
            for (unsigned int i = 0; i < count; ++i)
                ApplyReadFirst<F, CopyW>(local, source + i * in, target + i * out);
    }

    template <Formula F, bool CopyW, typename In, typename Out>
    void SeparateDispatch(const Elements & k, const In * source, Out * target, unsigned int count,
                          unsigned int sourceStep, unsigned int targetStep)
    {
        if (sourceStep == 3 && targetStep == 3)
            SeparateLoop<F, CopyW, 3, 3>(k, source, target, count, sourceStep, targetStep);
        else if (sourceStep == 4 && targetStep == 4)
            SeparateLoop<F, CopyW, 4, 4>(k, source, target, count, sourceStep, targetStep);
        else if (sourceStep == 3 && targetStep == 4)
            SeparateLoop<F, CopyW, 3, 4>(k, source, target, count, sourceStep, targetStep);
        else
            SeparateLoop<F, CopyW, 0, 0>(k, source, target, count, sourceStep, targetStep);
    }

    /// True when the two arrays share a byte. Arrays that do go through the
    /// sequential loops, which have no aliasing promise to keep.
    template <typename In, typename Out>
    bool Overlap(const In * source, std::size_t sourceElements, const Out * target, std::size_t targetElements)
    {
        const auto s = reinterpret_cast<std::uintptr_t>(source);
        const auto t = reinterpret_cast<std::uintptr_t>(target);
        return s < t + targetElements * sizeof(Out) && t < s + sourceElements * sizeof(In);
    }

    /// A separate source and target read point by point, everything first, so
    /// that the source may even be the target.
    template <Formula F, typename In, typename Out>
    void Separate(const Elements & k, const In * source, Out * target, unsigned int count, unsigned int sourceStep,
                  unsigned int targetStep)
    {
        if (!Overlap(source, std::size_t(count) * sourceStep, target, std::size_t(count) * targetStep))
            return SeparateDispatch<F, false>(k, source, target, count, sourceStep, targetStep);
        for (unsigned int i = 0; i < count; ++i)
            ApplyReadFirst<F, false>(k, source + std::size_t(i) * sourceStep, target + std::size_t(i) * targetStep);
    }

    /// A separate source and target of the forms that read the source again
    /// between their stores; they may not overlap, and where they do anyway
    /// the sequential loop gives what those reads give.
    template <Formula F, bool CopyW, typename T>
    void Rereading(const Elements & k, const T * source, T * target, unsigned int count, unsigned int step)
    {
        if (!Overlap(source, std::size_t(count) * step, target, std::size_t(count) * step))
            return SeparateDispatch<F, CopyW>(k, source, target, count, step, step);
        for (unsigned int i = 0; i < count; ++i)
            ApplyRereading<F, CopyW>(k, source + std::size_t(i) * step, target + std::size_t(i) * step);
    }

    unsigned int AtLeast(unsigned int stride, unsigned int minimum)
    {
        return stride > minimum ? stride : minimum;
    }

    // zunVector4T<double> is four doubles in a row (checked below), so its
    // arrays are flat double arrays with a step of 4.
    static_assert(sizeof(zunVector4T<double>) == 4 * sizeof(double), "zunVector4T<double> is x, y, z, w packed");

    double * Flat(zunVector4T<double> * v)
    {
        return &v->x;
    }

    const double * Flat(const zunVector4T<double> * v)
    {
        return &v->x;
    }
}

void zunMatrix44::Transform(float * points, unsigned int count, unsigned int stride) const
{
    if (points && count)
        InPlace<Formula::Point>(Elements(*this), points, count, AtLeast(stride, 3));
}

void zunMatrix44::Transform(double * points, unsigned int count, unsigned int stride) const
{
    if (points && count)
        InPlace<Formula::Point>(Elements(*this), points, count, AtLeast(stride, 3));
}

void zunMatrix44::Transform(zunVector4T<double> * points, unsigned int count) const
{
    if (points && count)
        InPlace<Formula::Point>(Elements(*this), Flat(points), count, 4);
}

void zunMatrix44::Transform(const float * source, float * target, unsigned int count, unsigned int stride) const
{
    if (source && target && count)
        Separate<Formula::Point>(Elements(*this), source, target, count, AtLeast(stride, 3), AtLeast(stride, 3));
}

void zunMatrix44::Transform(const double * source, double * target, unsigned int count, unsigned int stride) const
{
    if (source && target && count)
        Separate<Formula::Point>(Elements(*this), source, target, count, AtLeast(stride, 3), AtLeast(stride, 3));
}

void zunMatrix44::Transform(const zunVector4T<double> * source, zunVector4T<double> * target, unsigned int count) const
{
    if (source && target && count)
        Rereading<Formula::Point, true>(Elements(*this), Flat(source), Flat(target), count, 4);
}

void zunMatrix44::Transform3to3(const double * source, double * target, unsigned int count, unsigned int sourceStride,
                                unsigned int targetStride) const
{
    if (source && target && count)
        Separate<Formula::Point>(Elements(*this), source, target, count, AtLeast(sourceStride, 3),
                                 AtLeast(targetStride, 3));
}

void zunMatrix44::Transform3to4(const double * source, double * target, unsigned int count, unsigned int sourceStride,
                                unsigned int targetStride) const
{
    if (source && target && count)
        Separate<Formula::PointW>(Elements(*this), source, target, count, AtLeast(sourceStride, 3),
                                  AtLeast(targetStride, 4));
}

void zunMatrix44::Transform4to4(const double * source, double * target, unsigned int count, unsigned int sourceStride,
                                unsigned int targetStride) const
{
    if (source && target && count)
        Separate<Formula::Full>(Elements(*this), source, target, count, AtLeast(sourceStride, 4),
                                AtLeast(targetStride, 4));
}

void zunMatrix44::TransformH(float * points, unsigned int count, unsigned int stride) const
{
    if (points && count)
        InPlace<Formula::PointW>(Elements(*this), points, count, AtLeast(stride, 4));
}

void zunMatrix44::TransformH(zunVector4T<double> * points, unsigned int count) const
{
    if (points && count)
        InPlace<Formula::PointW>(Elements(*this), Flat(points), count, 4);
}

void zunMatrix44::TransformH(const float * source, float * target, unsigned int count, unsigned int sourceStride,
                             unsigned int targetStride) const
{
    if (source && target && count)
        Separate<Formula::PointW>(Elements(*this), source, target, count, AtLeast(sourceStride, 3),
                                  AtLeast(targetStride, 4));
}

void zunMatrix44::TransformH(const zunVector4T<double> * source, zunVector4T<double> * target, unsigned int count) const
{
    if (source && target && count)
        Rereading<Formula::PointW, false>(Elements(*this), Flat(source), Flat(target), count, 4);
}

void zunMatrix44::TransformNormals(float * normals, unsigned int count) const
{
    if (normals && count)
        InPlace<Formula::Direction>(Elements(*this), normals, count, 3);
}

void zunMatrix44::TransformNormals(zunVector4T<double> * normals, unsigned int count) const
{
    if (normals && count)
        InPlace<Formula::Direction>(Elements(*this), Flat(normals), count, 4);
}

void zunMatrix44::TransformNormals(const float * source, float * target, unsigned int count) const
{
    if (source && target && count)
        Rereading<Formula::Direction, false>(Elements(*this), source, target, count, 3);
}

void zunMatrix44::TransformNormals(const zunVector4T<double> * source, zunVector4T<double> * target,
                                   unsigned int count) const
{
    if (source && target && count)
        Rereading<Formula::Direction, true>(Elements(*this), Flat(source), Flat(target), count, 4);
}

void zunMatrix44::Transform(zunAxes & axes) const
{
    Transform(&axes.origin, 1);
    TransformNormals(&axes.first, 1);
    TransformNormals(&axes.second, 1);
    zunVector3Math::GuardedNormalize(axes.first.x, axes.first.y, axes.first.z);
    zunVector3Math::GuardedNormalize(axes.second.x, axes.second.y, axes.second.z);
}

zunVector4T<double> zunMatrix44::operator()(zunVector4T<double> point) const
{
    Transform(&point, 1);
    return point;
}
