// zunSlerp.h - spherical interpolation between two quaternions (zunSlerp), and
// spherical quadrangle interpolation through a list of keys (zunSquad).
//
//   zunSlerp turn(from, to, zunSlerp::Shortest);
//   zunQuaternion halfway = turn.Evaluate(0.5);
//
//   zunSquad path(keys, zunSquad::Shortest);        // keys: zunFastMesh<zunQuaternion>
//   zunQuaternion q = path.Evaluate(0.25, 2);        // a quarter into keys 2 -> 3
//
// Results are not normalized. Nothing throws; NaN passes through.
#ifndef ZUN_SLERP_H
#define ZUN_SLERP_H

#include <memory>

#include "zunConfig.h"
#include "zunFastMesh.h"
#include "zunQuaternion.h"

/// The spherical interpolation from `from` to `to`. A plain value: its fields
/// are public and set once by the constructor.
class ZUN_API zunSlerp
{
public:
    /// How the constructor treats the sign of `to`.
    enum Mode
    {
        /// The quaternions with the signs they have; a negative dot product
        /// takes the long way round.
        Direct = 0,
        /// `to` is negated when the dot product is negative, so the
        /// interpolation takes the shorter way.
        Shortest = 1,
    };

    /// Stores the ends, negating `to` (and the dot) when `mode` is Shortest and
    /// the dot is below 0.0, then the angle acos(dot) and its sine
    /// sqrt(1 - dot²), neither clamped.
    zunSlerp(const zunQuaternion & from, const zunQuaternion & to, Mode mode);

    /// The value at t, by the first rule that applies:
    /// - |cosAngle| >= 1.0: `from`.
    /// - |sinAngle| < 0.001: the midpoint 0.5·from + 0.5·to, whatever t is (near
    ///   equal ends lose their parameter, on purpose).
    /// - otherwise, with t clamped to 0..1, the slerp
    ///   sin((1 - t)·angle) / sinAngle · from + sin(t·angle) / sinAngle · to.
    zunQuaternion Evaluate(double t) const;

    /// The start, as given.
    zunQuaternion from;
    /// The end, negated by the constructor when Shortest asks for it.
    zunQuaternion to;
    /// Dot(from, to).
    double cosAngle;
    /// acos(cosAngle), in radians.
    double angle;
    /// sqrt(1 - cosAngle²).
    double sinAngle;
};

/// Spherical quadrangle interpolation through a list of keys, one segment at a
/// time: segment n runs from key n to key n + 1 and passes through both, with
/// tangents from the neighbouring keys. The interpolators of the current
/// segment are cached, so a run through one segment costs three slerps a value
/// and no allocation; changing segment rebuilds them. One object belongs to one
/// thread at a time, since Evaluate updates the cache.
///
/// The tangent of key C between P and N is C·Exp(-(C⁻¹·N + C⁻¹·P) / 4),
/// normalized: the products go into the sum as they are, without a logarithm.
/// That is this library's squad curve.
class ZUN_API zunSquad
{
public:
    /// How the constructor treats the signs of the keys.
    enum Mode
    {
        /// The keys with the signs they have.
        Direct = 0,
        /// Each key from the second on is negated where its dot product with
        /// the (already corrected) key before it is below 0.0, so every segment
        /// takes the shorter way; a flip carries into the later keys.
        Shortest = 1,
    };

    /// Takes over the keys (and corrects their signs for Shortest). Fewer than
    /// two keys are reported through zunFixMe("at least 2 quaternions are
    /// needed") and construction goes on; such a squad gives its one key (or the
    /// identity, without keys) from Evaluate.
    zunSquad(zunFastMesh<zunQuaternion> keys, Mode mode);
    /// Carries the keys, the segment and both interpolators; the source is left
    /// without keys, with null interpolators and no cached segment.
    ///@{
    zunSquad(zunSquad && other) noexcept;
    zunSquad & operator=(zunSquad && other) noexcept;
    ///@}
    zunSquad(const zunSquad &) = delete;
    zunSquad & operator=(const zunSquad &) = delete;
    ~zunSquad();

    /// The value at t (0 to 1) in segment `segment`; a segment behind the last
    /// means the last, and t is not changed. At t = 0 and 1 the value is the
    /// segment's key, whatever the tangents.
    zunQuaternion Evaluate(double t, unsigned int segment);

    /// The keys, sign-corrected for Shortest.
    zunFastMesh<zunQuaternion> keys;
    /// The segment whose interpolators are cached; 0xFFFFFFFF for none.
    unsigned int segment;
    /// The slerp between the two keys of the cached segment.
    std::unique_ptr<zunSlerp> keySlerp;
    /// The slerp between the two tangents of the cached segment.
    std::unique_ptr<zunSlerp> tangentSlerp;

private:
    void CalculateTangents();
};

#endif // ZUN_SLERP_H
