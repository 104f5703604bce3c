// zunMatrix44.h - the library's one transformation type: a 4 by 4 matrix of
// doubles, and the transforms of point arrays through it.
//
// Storage and convention. The only field is `m`, sixteen doubles stored column
// by column: m[4c + r] is row r, column c of the matrix M in p' = M·p (the
// layout of the OpenGL fixed-function matrices). Columns 0, 1, 2 are the
// images of the local X, Y and Z axes; column 3 is the translation. A matrix is
// affine when m[3], m[7], m[11] are 0 and m[15] is 1.
//
// Composition. MulMtx(B) sets M to M·B, and every Add* operation builds a
// matrix T and does the same, M <- M·T: T acts first on a point, so each new
// operation acts in the local frame that the earlier ones set up.
//
//   zunMatrix44 placement;
//   placement.AddTranslation(zunVector4T<double>(10, 0, 0))
//       .AddRotation(zunVector4T<double>(0, 0, 90), zunVector4T<double>(0, 0, 0));
//   zunVector4T<double> p = placement(zunVector4T<double>(1, 0, 0));   // (10, 1, 0)
//
// Tolerances are fixed: a direction shorter than 1e-12 makes an operation
// return with the matrix unchanged; a vector is divided by its length only when
// that length exceeds 1e-19 (the guarded normalization) and is otherwise kept
// as it is. Angles are degrees unless the name ends in Rad. Nothing throws or
// logs; degenerate input leaves the matrix as it was, and only Invert reports,
// through its result. No operation allocates.
//
// Vector arguments are zunVector4T<double>; only their x, y, z are read.
#ifndef ZUN_MATRIX44_H
#define ZUN_MATRIX44_H

#include "zunConfig.h"
#include "zunTypes.h"

class zunBBox;
struct zunFile;

/// Two directions and an origin, a frame that zunMatrix44::Transform(zunAxes &)
/// carries through a matrix. Fields in this order: first direction, second
/// direction, origin.
struct zunAxes
{
    zunVector4T<double> first;  ///< the first direction; Transform normalizes it
    zunVector4T<double> second; ///< the second direction; Transform normalizes it
    zunVector4T<double> origin; ///< a point, carried as a point
};

/// A 4 by 4 matrix of doubles stored column by column, p' = M·p; the default
/// is the identity.
class ZUN_API zunMatrix44
{
public:
    /// The identity, constant from library load on.
    static const zunMatrix44 Identity;

    /// The sixteen elements, column by column (see the top of this header).
    double m[16];

    /// The identity.
    constexpr zunMatrix44() : m{1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.0, 1.0} {}
    /// Copies the sixteen elements.
    ///@{
    zunMatrix44(const zunMatrix44 &) = default;
    zunMatrix44(zunMatrix44 &&) = default;
    ///@}
    /// Copies `defaultValue`, then reads the sixteen values over it (see Read):
    /// where the read stops at a limit, the default stands.
    zunMatrix44(zunFile * file, const zunMatrix44 & defaultValue);
    /// Copies the sixteen elements.
    ///@{
    zunMatrix44 & operator=(const zunMatrix44 &) = default;
    zunMatrix44 & operator=(zunMatrix44 &&) = default;
    ///@}

    /// Bitwise comparison of the 128 bytes: 0.0 and -0.0 differ, and a NaN
    /// equals the same NaN.
    ///@{
    bool operator==(const zunMatrix44 & other) const;
    bool operator!=(const zunMatrix44 & other) const;
    ///@}

    /// Makes the matrix the identity.
    zunMatrix44 & SetIdentity();

    /// M <- M·B, in place without a temporary matrix. `b` must not be this
    /// matrix: it would be read while it is being overwritten, and the result is
    /// then not the square (it is computed row by row as the elements fall).
    zunMatrix44 & MulMtx(const zunMatrix44 & b);

    /// M <- M·T(offset), T the translation by offset.x, offset.y, offset.z.
    zunMatrix44 & AddTranslation(const zunVector4T<double> & offset);

    /// M <- M·S with S the scaling by scale.x, scale.y, scale.z. A center whose
    /// x, y or z differs from 0.0 (-0.0 does not) makes it M·T(c)·S·T(-c),
    /// scaling about the center.
    zunMatrix44 & AddScaling(const zunVector4T<double> & scale, const zunVector4T<double> & center);

    /// M <- M·Rx(a.x)·Ry(a.y)·Rz(a.z): a point turns first about Z, then Y, then
    /// X. Angles in degrees; the center rule is that of AddScaling.
    zunMatrix44 & AddRotation(const zunVector4T<double> & angles, const zunVector4T<double> & center);
    /// AddRotation with the angles in radians.
    zunMatrix44 & AddRotationRad(const zunVector4T<double> & angles, const zunVector4T<double> & center);

    /// M <- M·R, R the turn by `angle` degrees about `axis` (right-handed), with
    /// the center rule of AddScaling. An axis shorter than 1e-12 does nothing.
    zunMatrix44 & AddRotationVector(const zunVector4T<double> & axis, double angle, const zunVector4T<double> & center);
    /// AddRotationVector with the angle in radians.
    zunMatrix44 & AddRotationVectorRad(const zunVector4T<double> & axis, double angle,
                                       const zunVector4T<double> & center);
    /// The same turn given by the cosine of its angle; the sine is taken
    /// positive, so the turn lies between 0 and 180 degrees. The cosine is not
    /// clamped: outside -1..1 the matrix fills with NaN.
    zunMatrix44 & AddRotationVectorCos(const zunVector4T<double> & axis, double cosAngle,
                                       const zunVector4T<double> & center);

    /// M <- M·R with R the shortest turn that carries the direction of `a` onto
    /// that of `b`. Directions within a dot product of 0.999999999 do nothing;
    /// opposite ones turn by 180 degrees about an axis normal to `a`. A zero
    /// vector does nothing.
    zunMatrix44 & AddAlignVectorOnVector(const zunVector4T<double> & a, const zunVector4T<double> & b);
    /// M <- M·R with R carrying the direction of `v` onto +Z, so that the plane
    /// normal to v lands on the XY plane. A v shorter than 1e-12 does nothing.
    zunMatrix44 & AddAlignVectorOnXY(const zunVector4T<double> & v);
    /// The inverse turn of AddAlignVectorOnXY: +Z is carried onto `v`.
    zunMatrix44 & AddInvAlignVectorOnXY(const zunVector4T<double> & v);

    /// M <- M·T with T the placement of a viewer (not a view matrix): the local
    /// origin goes to `position`, local -Z looks towards `target`, local +Y leans
    /// to `up`. A position within 1e-12 of the target, or an up parallel to the
    /// view direction, does nothing.
    zunMatrix44 & AddLookAt(const zunVector4T<double> & position, const zunVector4T<double> & target,
                            const zunVector4T<double> & up);
    /// M <- M·T with T the frame at `origin` whose X is exactly the direction of
    /// xDir and whose XY plane holds yDir on the side of +Y. Directions shorter
    /// than 1e-12, or parallel ones, do nothing.
    zunMatrix44 & AddOriginXY(const zunVector4T<double> & origin, const zunVector4T<double> & xDir,
                              const zunVector4T<double> & yDir);

    /// M <- M·A⁻¹·B. A singular A counts as the identity.
    zunMatrix44 & AddAtoB(const zunMatrix44 & a, const zunMatrix44 & b);

    /// M <- M·T with T the orthographic projection of glOrtho. Equal planes give
    /// infinities.
    zunMatrix44 & AddOrtho(double left, double right, double bottom, double top, double zNear, double zFar);
    /// M <- M·T with T the perspective projection of glFrustum. Equal planes give
    /// infinities.
    zunMatrix44 & AddPerspective(double left, double right, double bottom, double top, double zNear, double zFar);

    /// The angles in degrees that AddRotation would take to build the rotation
    /// of this (unscaled) matrix, w = 1.0. Exact for a middle angle strictly
    /// between -90 and 90 degrees; no special case at +-90.
    zunVector4T<double> GetRotation() const;
    /// The lengths of the three axis columns, w = 1.0.
    zunVector4T<double> GetScale() const;
    /// (m[12], m[13], m[14]), w = 1.0 whatever m[15] holds.
    zunVector4T<double> GetTranslation() const;

    /// Write m[12], m[13], m[14] and nothing else.
    ///@{
    zunMatrix44 & SetTranslation(const zunVector3T<float> & t);
    zunMatrix44 & SetTranslation(const zunVector3T<double> & t);
    zunMatrix44 & SetTranslation(const zunVector4T<double> & t);
    ///@}

    /// Sets the three axis columns and nothing else. With `orthonormal` the
    /// vectors are trusted: X = x, Y = y, Z = x × y as they stand. Otherwise the
    /// X axis is the direction of x, Z is normal to x and y, Y completes the
    /// right-handed frame; vectors shorter than 1e-12, or parallel, write nothing.
    zunMatrix44 & SetXYZ(const zunVector4T<double> & x, const zunVector4T<double> & y, bool orthonormal);

    /// The axis columns (m[0..2]), (m[4..6]), (m[8..10]).
    ///@{
    zunVector3T<double> X() const;
    zunVector3T<double> Y() const;
    zunVector3T<double> Z() const;
    ///@}

    /// Guarded normalization of the three axis columns; the translation stays,
    /// and the axes are not made orthogonal.
    zunMatrix44 & RemoveScales();

    /// Inverts in place; false (and the identity) for a singular matrix.
    bool Invert();
    /// Writes the inverse into `out`, which may be this matrix. An affine matrix
    /// takes a 3 by 3 path, any other the full cofactor inverse. A determinant of
    /// exactly 0.0 makes `out` the identity and the result false; there is no
    /// tolerance, so a nearly singular matrix is inverted as it stands and a NaN
    /// determinant gives NaN elements with the result true.
    bool Invert(zunMatrix44 & out) const;

    /// Transposes in place.
    zunMatrix44 & Transpose();
    /// Writes the transpose into `out` (which may be this matrix).
    void Transpose(zunMatrix44 & out) const;

    // File form: 128 bytes, the sixteen doubles m[0] to m[15] in storage
    // order, each in the stream's byte order; no header, no count.

    /// Reads the sixteen values. Crossing the stream's limit (a chunk written
    /// with less) reads nothing and leaves the matrix as it was.
    void Read(zunFile * file);
    /// Writes the sixteen values; throws zunException when they don't go out.
    void Write(zunFile * file) const;

    /// Prints m[0] to m[15] in storage order through the debug print channel
    /// (zunDebugPrint.h), four to a line as "  %6.3f %6.3f %6.3f %6.3f": each
    /// line is one column of the matrix.
    void Dump() const;

    // Transforms of point arrays. Points use the point formula (x' = x·m[0] +
    // y·m[4] + z·m[8] + m[12], ...), directions the linear block alone. A point
    // of a flat array takes `stride` elements (elements, not bytes) with x, y, z
    // first; elements behind those read or written stay untouched. The source's
    // w counts as 1 everywhere but in Transform4to4, and nothing divides by w.
    // Float arrays are computed in double and rounded once at the store. A null
    // pointer or a count of 0 does nothing.

    /// Points in place; a step of max(stride, 3) elements.
    ///@{
    void Transform(float * points, unsigned int count, unsigned int stride) const;
    void Transform(double * points, unsigned int count, unsigned int stride) const;
    ///@}
    /// Points in place; w stays.
    void Transform(zunVector4T<double> * points, unsigned int count) const;
    /// Points from `source` to `target`, both stepping by max(stride, 3).
    ///@{
    void Transform(const float * source, float * target, unsigned int count, unsigned int stride) const;
    void Transform(const double * source, double * target, unsigned int count, unsigned int stride) const;
    ///@}
    /// Points from `source` to `target`, w copied. The arrays must not overlap.
    void Transform(const zunVector4T<double> * source, zunVector4T<double> * target, unsigned int count) const;
    /// Points, the source stepping by max(sourceStride, 3), the target by
    /// max(targetStride, 3).
    void Transform3to3(const double * source, double * target, unsigned int count, unsigned int sourceStride,
                       unsigned int targetStride) const;
    /// Points with the fourth coordinate w' = x·m[3] + y·m[7] + z·m[11] + m[15]
    /// written as well; steps max(sourceStride, 3) and max(targetStride, 4).
    void Transform3to4(const double * source, double * target, unsigned int count, unsigned int sourceStride,
                       unsigned int targetStride) const;
    /// The full product M·(x, y, z, w); steps max(sourceStride, 4) and
    /// max(targetStride, 4).
    void Transform4to4(const double * source, double * target, unsigned int count, unsigned int sourceStride,
                       unsigned int targetStride) const;

    /// Points with w' written (no division by it): in place, a step of
    /// max(stride, 4) elements (one vector for zunVector4T).
    ///@{
    void TransformH(float * points, unsigned int count, unsigned int stride) const;
    void TransformH(zunVector4T<double> * points, unsigned int count) const;
    ///@}
    /// From `source` (step max(sourceStride, 3)) to `target` (step
    /// max(targetStride, 4)).
    void TransformH(const float * source, float * target, unsigned int count, unsigned int sourceStride,
                    unsigned int targetStride) const;
    /// The arrays must not overlap.
    void TransformH(const zunVector4T<double> * source, zunVector4T<double> * target, unsigned int count) const;

    /// Directions through the linear block, neither normalized nor through the
    /// inverse transpose (a normal under non-uniform scaling leaves its plane).
    /// Float arrays are packed, three elements a vector.
    void TransformNormals(float * normals, unsigned int count) const;
    /// In place; w stays.
    void TransformNormals(zunVector4T<double> * normals, unsigned int count) const;
    /// The arrays must not overlap.
    void TransformNormals(const float * source, float * target, unsigned int count) const;
    /// w copied. The arrays must not overlap.
    void TransformNormals(const zunVector4T<double> * source, zunVector4T<double> * target, unsigned int count) const;

    /// The origin as a point, the two directions as directions, each then given
    /// the guarded normalization.
    void Transform(zunAxes & axes) const;
    /// The box around the transformed `source` (it grows under rotation),
    /// written to `target`, which may be `source`. An invalid source (inverted
    /// by more than 1.0 on an axis) leaves the target as it was, not cleared.
    /// Defined with zunBBox (zunBBox.h).
    void Transform(const zunBBox & source, zunBBox * target) const;
    /// The same with the box as both source and target.
    void Transform(zunBBox & box) const;
    /// The point transformed; its w passes through unchanged.
    zunVector4T<double> operator()(zunVector4T<double> point) const;

private:
    bool InvertGeneral(zunMatrix44 & out) const;
};

#endif // ZUN_MATRIX44_H
