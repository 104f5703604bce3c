// zunBBox, and the two members of zunMatrix44 that transform a box.
#include "zunBBox.h"

#include <cmath>
#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "zunMatrix44.h"

namespace
{
    // The decimal 3.4e+38 rounded to a double: bit patterns 0x47EFF933C78CDFAD
    // and 0xC7EFF933C78CDFAD.
    constexpr double kCleared = 3.4e+38;

    /// What one point does to one axis: two separate tests, so that a NaN
    /// changes nothing and the first point into a cleared box sets both ends.
    inline void ExtendAxis(double & low, double & high, double v)
    {
        if (low > v)
            low = v;
        if (v > high)
            high = v;
    }

    inline void ExtendBy(zunBBox & box, double x, double y, double z)
    {
        ExtendAxis(box.min.x, box.max.x, x);
        ExtendAxis(box.min.y, box.max.y, y);
        ExtendAxis(box.min.z, box.max.z, z);
    }

    /// The box's six ends held in locals while a run of points goes in: the
    /// points cannot alias them, so they stay in registers instead of being
    /// stored and loaded again for every point.
    struct Ends
    {
        explicit Ends(zunBBox const & box)
            : lowX(box.min.x), lowY(box.min.y), lowZ(box.min.z), highX(box.max.x), highY(box.max.y), highZ(box.max.z)
        {
        }

        void Add(double x, double y, double z)
        {
            ExtendAxis(lowX, highX, x);
            ExtendAxis(lowY, highY, y);
            ExtendAxis(lowZ, highZ, z);
        }

        void StoreTo(zunBBox & box) const
        {
            box.min.x = lowX;
            box.min.y = lowY;
            box.min.z = lowZ;
            box.max.x = highX;
            box.max.y = highY;
            box.max.z = highZ;
        }

        /// Takes in the ends of a second lane that started from the same box
        /// and saw other points. The result is the one of a single lane over
        /// all points, except when both lanes hold zeros of opposite signs at
        /// one end: which came first is lost then, and false says so.
        bool Merge(Ends const & other)
        {
            // Every end is merged, whatever the ends before it gave.
            bool known = MergeLow(lowX, other.lowX);
            known = MergeLow(lowY, other.lowY) && known;
            known = MergeLow(lowZ, other.lowZ) && known;
            known = MergeHigh(highX, other.highX) && known;
            known = MergeHigh(highY, other.highY) && known;
            return MergeHigh(highZ, other.highZ) && known;
        }

        double lowX, lowY, lowZ, highX, highY, highZ;

    private:
        static bool SameZero(double a, double b) { return a == 0.0 && b == 0.0 && std::signbit(a) != std::signbit(b); }
        static bool MergeLow(double & low, double other)
        {
            const bool known = !SameZero(low, other);
            if (low > other)
                low = other;
            return known;
        }
        static bool MergeHigh(double & high, double other)
        {
            const bool known = !SameZero(high, other);
            if (other > high)
                high = other;
            return known;
        }
    };

#if defined(__SSE2__)
    /// One lane of ends in vector registers: x and y side by side, z alone.
    /// min_pd(v, low) is "v < low ? v : low" and max_pd(v, high) is
    /// "v > high ? v : high", lane by lane: the compares of ExtendAxis.
    class Lane
    {
    public:
        explicit Lane(zunBBox const & box)
            : m_lowXY(_mm_loadu_pd(&box.min.x)), m_highXY(_mm_loadu_pd(&box.max.x)), m_lowZ(_mm_load_sd(&box.min.z)),
              m_highZ(_mm_load_sd(&box.max.z))
        {
        }

        void Add(double const * point) { Add(_mm_loadu_pd(point), _mm_load_sd(point + 2)); }

        void Add(float const * point)
        {
            // Two floats are one 8-byte load; widening to double is exact.
            const __m128 xy = _mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<__m128i const *>(point)));
            Add(_mm_cvtps_pd(xy), _mm_cvtss_sd(_mm_setzero_pd(), _mm_load_ss(point + 2)));
        }

        Ends Result(zunBBox const & box) const
        {
            Ends ends(box);
            double xy[2];
            _mm_storeu_pd(xy, m_lowXY);
            ends.lowX = xy[0];
            ends.lowY = xy[1];
            _mm_storeu_pd(xy, m_highXY);
            ends.highX = xy[0];
            ends.highY = xy[1];
            _mm_store_sd(&ends.lowZ, m_lowZ);
            _mm_store_sd(&ends.highZ, m_highZ);
            return ends;
        }

    private:
        void Add(__m128d xy, __m128d z)
        {
            m_lowXY = _mm_min_pd(xy, m_lowXY);
            m_highXY = _mm_max_pd(xy, m_highXY);
            m_lowZ = _mm_min_sd(z, m_lowZ);
            m_highZ = _mm_max_sd(z, m_highZ);
        }

        __m128d m_lowXY, m_highXY, m_lowZ, m_highZ;
    };
#else
    /// One lane of ends in plain registers.
    class Lane
    {
    public:
        explicit Lane(zunBBox const & box) : m_ends(box) {}
        template <typename T> void Add(T const * point) { m_ends.Add(point[0], point[1], point[2]); }
        Ends Result(zunBBox const &) const { return m_ends; }

    private:
        Ends m_ends;
    };
#endif

    /// Adds `count` points, `step` values apart, to two lanes in turn: the
    /// even ones to `even`, the odd ones to `odd`, so that each lane's
    /// compares wait on half as many before them. The same lane twice adds
    /// them all in order.
    template <typename T>
    void AddAlternately(Lane & even, Lane & odd, T const * points, unsigned int count, std::size_t step)
    {
        unsigned int i = 0;
        for (; i + 2 <= count; i += 2)
        {
            even.Add(points + i * step);
            odd.Add(points + (i + 1) * step);
        }
        if (i < count)
            even.Add(points + i * step);
    }

    /// Runs `feed(even, odd)` over two lanes started from the box and merges
    /// them. Equal values have equal bits but for the zeros, so only lanes
    /// ending on zeros of opposite signs need the points again, in one lane.
    template <typename Feed> void AddPoints(zunBBox & box, Feed feed)
    {
        Lane even(box), odd(box);
        feed(even, odd);
        Ends ends = even.Result(box);
        if (!ends.Merge(odd.Result(box)))
        {
            Lane single(box);
            feed(single, single);
            ends = single.Result(box);
        }
        ends.StoreTo(box);
    }

    /// Whether an array of points shares memory with the box.
    bool Overlaps(zunBBox const & box, zunVector4T<double> const * points, unsigned int count)
    {
        const auto begin = reinterpret_cast<std::uintptr_t>(points);
        const auto end = begin + std::uintptr_t(count) * sizeof(*points);
        const auto boxBegin = reinterpret_cast<std::uintptr_t>(&box);
        return begin < boxBegin + sizeof(box) && boxBegin < end;
    }

    /// The eight corners in the library's order: bit 0 of the index picks x
    /// from max, bit 1 y, bit 2 z.
    template <typename V> void Corners(zunBBox const & box, V * corners)
    {
        for (int i = 0; i < 8; ++i)
        {
            corners[i].x = (i & 1) ? box.max.x : box.min.x;
            corners[i].y = (i & 2) ? box.max.y : box.min.y;
            corners[i].z = (i & 4) ? box.max.z : box.min.z;
        }
    }
}

zunBBox::zunBBox()
{
    Clear();
}

void zunBBox::Clear()
{
    min = zunVector4T<double>(kCleared, kCleared, kCleared, 1.0);
    max = zunVector4T<double>(-kCleared, -kCleared, -kCleared, 1.0);
}

void zunBBox::New()
{
    Clear();
}

void zunBBox::Set(zunVector4T<double> const & min_, zunVector4T<double> const & max_)
{
    min = min_;
    max = max_;
}

void zunBBox::Set(zunFastMesh<zunVector4T<double>> const & mesh, zunMatrix44 const * matrix)
{
    if (!mesh.Data())
        return;
    min = mesh.Data()[0];
    if (matrix)
        matrix->Transform(&min, 1);
    max = min;
    Extend(mesh, matrix);
}

void zunBBox::Extend(zunVector3T<float> const & point)
{
    ExtendBy(*this, point.x, point.y, point.z);
}

void zunBBox::Extend(zunVector4T<double> const & point)
{
    ExtendBy(*this, point.x, point.y, point.z);
}

void zunBBox::Extend(zunVector4T<double> const * points, unsigned int count, zunMatrix44 const * matrix)
{
    if (!points) // reading address 0 is made safe: nothing is added
        return;
    if (!matrix && Overlaps(*this, points, count))
    {
        // Points read from the box itself see each change as it is made.
        for (unsigned int i = 0; i < count; ++i)
            ExtendBy(*this, points[i].x, points[i].y, points[i].z);
        return;
    }
    static_assert(sizeof(zunVector4T<double>) == 4 * sizeof(double), "a point is x, y, z, w packed");
    if (!matrix)
    {
        AddPoints(*this, [points, count](Lane & even, Lane & odd) { AddAlternately(even, odd, &points->x, count, 4); });
        return;
    }
    // Copies are transformed a batch at a time: the same result as one by
    // one, without a call per point and without allocating.
    AddPoints(*this,
              [points, count, matrix](Lane & even, Lane & odd)
              {
                  constexpr unsigned int kBatch = 64;
                  zunVector4T<double> copies[kBatch];
                  for (unsigned int done = 0; done < count;)
                  {
                      const unsigned int n = count - done < kBatch ? count - done : kBatch;
                      for (unsigned int i = 0; i < n; ++i)
                          copies[i] = points[done + i];
                      matrix->Transform(copies, n);
                      AddAlternately(even, odd, &copies->x, n, 4);
                      done += n;
                  }
              });
}

void zunBBox::Extend(zunFastMesh<zunVector4T<double>> const & mesh, zunMatrix44 const * matrix)
{
    Extend(mesh.Data(), mesh.Count(), matrix);
}

void zunBBox::Extend(float const * points, unsigned int count, unsigned int stride)
{
    if (!points) // reading address 0 is made safe: nothing is added
        return;
    const std::size_t step = stride == 0 ? 3 : stride;
    AddPoints(*this,
              [points, count, step](Lane & even, Lane & odd) { AddAlternately(even, odd, points, count, step); });
}

void zunBBox::Extend(double const * points, unsigned int count, unsigned int)
{
    // The first point, count times; adding it again changes nothing, so once
    // gives the same box. Address 0 is made safe: nothing is added.
    if (points && count != 0)
        ExtendBy(*this, points[0], points[1], points[2]);
}

void zunBBox::Inflate(zunVector4T<double> const & v)
{
    if (IsInvalid())
        return;
    min = zunVector4T<double>(min.x - v.x, min.y - v.y, min.z - v.z, 1.0);
    max = zunVector4T<double>(max.x + v.x, max.y + v.y, max.z + v.z, 1.0);
}

void zunBBox::Offset(zunVector4T<double> const & v)
{
    if (IsInvalid())
        return;
    min = zunVector4T<double>(min.x + v.x, min.y + v.y, min.z + v.z, 1.0);
    max = zunVector4T<double>(max.x + v.x, max.y + v.y, max.z + v.z, 1.0);
}

bool zunBBox::Intersect(zunBBox const & other)
{
    if (IsInvalid())
        return false;
    if (other.IsInvalid())
        return !IsNull();
    min = zunVector4T<double>(std::fmax(min.x, other.min.x), std::fmax(min.y, other.min.y),
                              std::fmax(min.z, other.min.z), 1.0);
    max = zunVector4T<double>(std::fmin(max.x, other.max.x), std::fmin(max.y, other.max.y),
                              std::fmin(max.z, other.max.z), 1.0);
    if (min.x > max.x || min.y > max.y || min.z > max.z)
    {
        min = max = zunVector4T<double>(0.0, 0.0, 0.0, 1.0);
        return false;
    }
    return !IsNull();
}

void zunBBox::Union(zunBBox const & other)
{
    min = zunVector4T<double>(std::fmin(min.x, other.min.x), std::fmin(min.y, other.min.y),
                              std::fmin(min.z, other.min.z), 1.0);
    max = zunVector4T<double>(std::fmax(max.x, other.max.x), std::fmax(max.y, other.max.y),
                              std::fmax(max.z, other.max.z), 1.0);
}

bool zunBBox::Contains(zunVector4T<double> const & p) const
{
    return min.x < p.x && p.x < max.x && min.y < p.y && p.y < max.y && min.z < p.z && p.z < max.z;
}

bool zunBBox::Contains(zunBBox const & other) const
{
    return other.min.x > min.x && max.x > other.max.x && other.min.y > min.y && max.y > other.max.y &&
           other.min.z > min.z && max.z > other.max.z;
}

zunVector4T<double> zunBBox::Center() const
{
    if (IsInvalid())
        return zunVector4T<double>();
    return zunVector4T<double>(min.x + (max.x - min.x) * 0.5, min.y + (max.y - min.y) * 0.5,
                               min.z + (max.z - min.z) * 0.5, 1.0);
}

zunVector4T<double> zunBBox::Ext() const
{
    if (IsInvalid())
        return zunVector4T<double>();
    return zunVector4T<double>(DX(), DY(), DZ(), 1.0);
}

double zunBBox::DX() const
{
    return IsInvalid() ? 0.0 : max.x - min.x;
}
double zunBBox::DY() const
{
    return IsInvalid() ? 0.0 : max.y - min.y;
}
double zunBBox::DZ() const
{
    return IsInvalid() ? 0.0 : max.z - min.z;
}

double zunBBox::GetDiagonal() const
{
    if (IsInvalid())
        return 0.0;
    double dx = DX(), dy = DY(), dz = DZ();
    return std::sqrt(dx * dx + dy * dy + dz * dz);
}

void zunBBox::GetBox(zunVector3T<float> * const corners) const
{
    if (!corners)
        return;
    zunVector3T<double> wide[8];
    Corners(*this, wide);
    for (int i = 0; i < 8; ++i)
        corners[i] = zunVector3T<float>(static_cast<float>(wide[i].x), static_cast<float>(wide[i].y),
                                        static_cast<float>(wide[i].z));
}

void zunBBox::GetBox(zunVector3T<double> * const corners) const
{
    if (corners)
        Corners(*this, corners);
}

bool zunBBox::IsFlat() const
{
    return max.x == min.x || max.y == min.y || max.z == min.z;
}

bool zunBBox::IsInvalid() const
{
    return -1.0 > max.x - min.x || -1.0 > max.y - min.y || -1.0 > max.z - min.z;
}

bool zunBBox::IsNull() const
{
    return max.x == min.x && max.y == min.y && max.z == min.z;
}

// --- boxes under a matrix ------------------------------------------------------

void zunMatrix44::Transform(zunBBox const & source, zunBBox * target) const
{
    if (!target || source.IsInvalid()) // an invalid source leaves the target as it was
        return;
    // All eight corners are gathered before the target is touched, so a box
    // may be its own target.
    zunVector4T<double> corners[8];
    Corners(source, corners);
    Transform(corners, 8);
    target->Clear();
    target->Extend(corners, 8, nullptr);
}

void zunMatrix44::Transform(zunBBox & box) const
{
    Transform(box, &box);
}
