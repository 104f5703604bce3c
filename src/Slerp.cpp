// zunSlerp and zunSquad: spherical interpolation between two quaternions, and
// spherical quadrangle interpolation through a list of keys.
#include "zunSlerp.h"

#include <cmath>
#include <utility>

#include "zunException.h"

namespace
{
    /// Below this sine of the angle between the ends, Evaluate gives their midpoint.
    constexpr double kLeastSine = 0.001;
}

zunSlerp::zunSlerp(const zunQuaternion & from_, const zunQuaternion & to_, Mode mode)
    : from(from_), to(to_), cosAngle(Dot(from_, to_)), angle(0.0), sinAngle(0.0)
{
    if (mode == Shortest && 0.0 > cosAngle)
    {
        cosAngle = -cosAngle;
        to = -to;
    }
    // Not clamped: a dot that rounds past 1 gives NaN here, and Evaluate then
    // returns `from` before it reads either.
    angle = std::acos(cosAngle);
    sinAngle = std::sqrt(1.0 - cosAngle * cosAngle);
}

zunQuaternion zunSlerp::Evaluate(double t) const
{
    if (std::fabs(cosAngle) >= 1.0)
        return from;
    if (kLeastSine > std::fabs(sinAngle))
        return 0.5 * from + 0.5 * to;
    t = t < 0.0 ? 0.0 : (t > 1.0 ? 1.0 : t);
    const double a = std::sin((1.0 - t) * angle) / sinAngle;
    const double b = std::sin(t * angle) / sinAngle;
    return a * from + b * to;
}

// --- zunSquad ---------------------------------------------------------------

namespace
{
    constexpr unsigned int kNoSegment = 0xFFFFFFFF;

    /// The tangent at `cur` between its neighbours: cur·Exp(-(inv·next +
    /// inv·prev) / 4), normalized, with inv the inverse of cur (cur itself when
    /// it is zero). The products enter the sum as they are, real parts
    /// included, with no logarithm: the curve this library calls squad.
    zunQuaternion Tangent(const zunQuaternion & prev, const zunQuaternion & cur, const zunQuaternion & next)
    {
        const zunQuaternion inv = Invert(cur);
        const zunQuaternion a = inv * next, b = inv * prev;
        const zunQuaternion s = (a + b) * -0.25;
        zunQuaternion result = cur * Exp(s);
        return result.Normalize();
    }
}

zunSquad::zunSquad(zunFastMesh<zunQuaternion> keys_, Mode mode)
    : keys(std::move(keys_)), segment(kNoSegment), keySlerp(), tangentSlerp()
{
    const unsigned int count = keys.Count();
    if (count < 2)
        zunFixMe("at least 2 quaternions are needed");
    if (mode != Shortest)
        return;
    for (unsigned int n = 1; n < count; ++n)
        if (!(Dot(keys[n], keys[n - 1]) >= 0.0))
            keys[n] = -keys[n];
}

zunSquad::zunSquad(zunSquad && other) noexcept
    : keys(std::move(other.keys)), segment(other.segment), keySlerp(std::move(other.keySlerp)),
      tangentSlerp(std::move(other.tangentSlerp))
{
    other.segment = kNoSegment;
}

zunSquad & zunSquad::operator=(zunSquad && other) noexcept
{
    if (this != &other)
    {
        keys = std::move(other.keys);
        segment = other.segment;
        keySlerp = std::move(other.keySlerp);
        tangentSlerp = std::move(other.tangentSlerp);
        other.segment = kNoSegment;
    }
    return *this;
}

zunSquad::~zunSquad() = default;

zunQuaternion zunSquad::Evaluate(double t, unsigned int n)
{
    const unsigned int count = keys.Count();
    if (count < 2)
    {
        // A squad needs two keys and the caller was told so at construction;
        // indexing a shorter list would read past it, so give what there is.
        return count == 1 ? keys[0] : zunQuaternion::Identity;
    }
    const unsigned int last = count - 2;
    const unsigned int seg = n < last ? n : last;
    if (seg != segment || !keySlerp || !tangentSlerp)
    {
        segment = seg;
        CalculateTangents();
    }
    const zunQuaternion p = keySlerp->Evaluate(t);
    const zunQuaternion s = tangentSlerp->Evaluate(t);
    return zunSlerp(p, s, zunSlerp::Direct).Evaluate((t + t) * (1.0 - t));
}

void zunSquad::CalculateTangents()
{
    const unsigned int n = segment, count = keys.Count();
    const zunQuaternion prev = keys[n == 0 ? 0 : n - 1];
    const zunQuaternion cur = keys[n];
    const zunQuaternion next = keys[n + 1];
    const zunQuaternion after = keys[n + 2 < count ? n + 2 : n + 1];

    auto newKeys = std::make_unique<zunSlerp>(cur, next, zunSlerp::Direct);
    auto newTangents =
        std::make_unique<zunSlerp>(Tangent(prev, cur, next), Tangent(cur, next, after), zunSlerp::Direct);
    keySlerp = std::move(newKeys);
    tangentSlerp = std::move(newTangents);
}
