// zunBBox.h - the axis-aligned box in double precision, and the ray that the
// box and the geometry queries share.
//
// A box is two corners, `min` and `max`. It starts out cleared: min holds
// +3.4e+38 and max -3.4e+38 on every axis (the decimal 3.4e+38 rounded to a
// double, not the largest float), so the first point added sets both corners.
// Its states are tests on the numbers, not a stored flag:
//
//   invalid  on some axis -1.0 > max - min. A cleared box is invalid; a box
//            inverted by 1.0 or less is NOT: the limit is -1.0, not 0.
//   flat     on some axis max == min exactly.
//   null     on all three axes max == min exactly: a single point.
//   (a cleared box is neither flat nor null; a NaN never compares equal)
//
// An invalid box makes the value queries return zeros and Inflate, Offset and
// Intersect do nothing; Union, Set, Clear, New and the Extend family always
// act. Operations never read w; the boxes the class makes have w = 1.0.
// Nothing is reported and nothing allocates.
//
//   zunBBox box;                                  // cleared
//   box.Extend(points, count, &toWorld);          // each point transformed first
//   if (!box.IsInvalid()) Draw(box.Center(), box.Ext());
//
// zunMatrix44::Transform(zunBBox const &, zunBBox *) and Transform(zunBBox &)
// give the box around a transformed box.
#ifndef ZUN_BBOX_H
#define ZUN_BBOX_H

#include "zunConfig.h"
#include "zunFastMesh.h"
#include "zunTypes.h"

class zunMatrix44;

/// A line: the point origin + t * direction stands at parameter t. The
/// direction need not be of unit length; parameters are in its units.
struct zunRay
{
    zunVector4T<double> origin;    ///< the point at parameter 0
    zunVector4T<double> direction; ///< the step per unit of parameter

    /// Origin and direction both (0, 0, 0, 1).
    zunRay() = default;
    /// The origin and direction as given.
    zunRay(zunVector4T<double> const & origin_, zunVector4T<double> const & direction_)
        : origin(origin_), direction(direction_)
    {
    }
};

/// An axis-aligned box of doubles, two corners; it starts cleared, so the
/// first point added sets both corners.
class ZUN_API zunBBox
{
public:
    zunVector4T<double> min; ///< the low corner
    zunVector4T<double> max; ///< the high corner

    /// A cleared box.
    zunBBox();
    /// Copies and moves take both corners as they stand.
    ///@{
    zunBBox(zunBBox const & other) = default;
    zunBBox(zunBBox && other) = default;
    zunBBox & operator=(zunBBox const & other) = default;
    zunBBox & operator=(zunBBox && other) = default;
    ///@}

    /// Make the box cleared; the two are the same.
    ///@{
    void Clear();
    void New();
    ///@}

    /// Stores both corners as they are, w included, with no check or ordering.
    void Set(zunVector4T<double> const & min, zunVector4T<double> const & max);
    /// The box of the mesh's entries, each transformed by `matrix` when it is
    /// not null; the old content plays no part, and the corners' w is that of
    /// the first (transformed) entry. A mesh without storage changes nothing.
    void Set(zunFastMesh<zunVector4T<double>> const & mesh, zunMatrix44 const * matrix);

    // The Extend family adds points. Per axis, min is lowered to v if
    // min > v, then max is raised to v if v > max: the first point into a
    // cleared box sets both corners, and a NaN coordinate changes nothing.
    // w is not touched.

    /// One point, a float one widened to double.
    ///@{
    void Extend(zunVector3T<float> const & point);
    void Extend(zunVector4T<double> const & point);
    ///@}
    /// `count` points, each transformed (a copy of it) by `matrix` first when
    /// the matrix is not null.
    void Extend(zunVector4T<double> const * points, unsigned int count, zunMatrix44 const * matrix);
    /// All entries of the mesh, as the array form.
    void Extend(zunFastMesh<zunVector4T<double>> const & mesh, zunMatrix44 const * matrix);
    /// `count` points of x, y, z, each `stride` floats after the one before; a
    /// stride of 0 means 3, any other is used as given (1 and 2 overlap the
    /// points in memory, and that is accepted).
    void Extend(float const * points, unsigned int count, unsigned int stride);
    /// NOTE: adds the FIRST point `count` times. The pointer is not stepped and
    /// the stride not read, so only x, y, z of points[0..2] count. Callers with
    /// several double points use the zunVector4T<double> forms.
    void Extend(double const * points, unsigned int count, unsigned int stride);

    /// If not invalid: min -= v and max += v on x, y, z; both w become 1.0.
    void Inflate(zunVector4T<double> const & v);
    /// If not invalid: min += v and max += v on x, y, z; both w become 1.0.
    void Offset(zunVector4T<double> const & v);

    /// Cuts this box down to its common part with `other`:
    ///  - this box invalid: false, nothing changes;
    ///  - other invalid: this box stays, the result is !IsNull();
    ///  - disjoint on an axis: both corners become (0, 0, 0, 1) (a null box
    ///    at the origin, not a cleared one) and the result is false;
    ///  - otherwise the common box, and !IsNull(): boxes touching in a face or
    ///    an edge give a flat box and true, touching in a corner gives that
    ///    point and false.
    bool Intersect(zunBBox const & other);
    /// Per axis the lesser min and the greater max; both w become 1.0. A
    /// cleared box loses every comparison by itself, so it adds nothing.
    void Union(zunBBox const & other);

    /// Strictly inside: min < p < max on all three axes (the surface is out).
    bool Contains(zunVector4T<double> const & point) const;
    /// Strictly inside on all three axes: a box does not contain itself.
    bool Contains(zunBBox const & other) const;

    /// (0, 0, 0, 1) if invalid; else min + (max - min) * 0.5, w = 1.0.
    zunVector4T<double> Center() const;
    /// (0, 0, 0, 1) if invalid; else (DX, DY, DZ, 1.0).
    zunVector4T<double> Ext() const;
    /// max - min on the axis, 0.0 if the box is invalid; may be negative (down to -1.0).
    ///@{
    double DX() const;
    double DY() const;
    double DZ() const;
    ///@}
    /// 0.0 if invalid; else sqrt(DX² + DY² + DZ²).
    double GetDiagonal() const;

    /// Writes the eight corners, 0 for min and 1 for max on each axis, in the
    /// order (x0,y0,z0) (x1,y0,z0) (x0,y1,z0) (x1,y1,z0) (x0,y0,z1) (x1,y0,z1)
    /// (x0,y1,z1) (x1,y1,z1). No validity test: a cleared box gives its
    /// ±3.4e+38. A null pointer writes nothing.
    ///@{
    void GetBox(zunVector3T<float> * const corners) const;
    void GetBox(zunVector3T<double> * const corners) const;
    ///@}

    /// The parameters along `ray` of the corners' projections onto it: low the
    /// least, high the greatest. They are in units of the ray's direction
    /// (multiply by its length for a distance); a direction of squared length
    /// below 1e-24 gives 0 for every corner. An invalid box writes nothing.
    void GetExtentAlongRay(zunRay const & ray, double & low, double & high) const;

    /// On some axis max == min exactly; a cleared box is not flat.
    bool IsFlat() const;
    /// On some axis -1.0 > max - min: a cleared box is invalid, a box inverted
    /// by 1.0 or less is not.
    bool IsInvalid() const;
    /// On all three axes max == min exactly: a single point.
    bool IsNull() const;
};

#endif // ZUN_BBOX_H
