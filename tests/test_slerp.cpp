// zunSlerp and zunSquad: the three rules of Evaluate, the sign handling of the
// two modes, the segment cache, the tangents against a formula written out
// here, and the ends of every segment.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>

#include "zunSlerp.h"

namespace
{
    using Q = zunQuaternion;

    void ExpectNear(const Q & actual, const Q & expected, double tolerance)
    {
        EXPECT_NEAR(actual.r(), expected.r(), tolerance);
        EXPECT_NEAR(actual.i(), expected.i(), tolerance);
        EXPECT_NEAR(actual.j(), expected.j(), tolerance);
        EXPECT_NEAR(actual.k(), expected.k(), tolerance);
    }

    void ExpectSame(const Q & actual, const Q & expected)
    {
        EXPECT_EQ(actual.r(), expected.r());
        EXPECT_EQ(actual.i(), expected.i());
        EXPECT_EQ(actual.j(), expected.j());
        EXPECT_EQ(actual.k(), expected.k());
    }

    Q Turn(double degrees)
    {
        return Q::FromRotAnglesDeg(0.0, 0.0, degrees);
    }

    zunFastMesh<Q> Keys(std::initializer_list<Q> keys)
    {
        zunFastMesh<Q> mesh;
        for (const Q & q : keys)
            EXPECT_TRUE(mesh.Add(q));
        return mesh;
    }

    /// The tangent at `c` between `p` and `n`, written out from its formula:
    /// the unit of c·exp(-(c⁻¹·n + c⁻¹·p) / 4).
    Q ReferenceTangent(const Q & p, const Q & c, const Q & n)
    {
        const double n2 = c.r() * c.r() + c.i() * c.i() + c.j() * c.j() + c.k() * c.k();
        const Q inverse(c.r() / n2, -c.i() / n2, -c.j() / n2, -c.k() / n2);
        const Q sum = inverse * n + inverse * p;
        const Q s(-sum.r() / 4, -sum.i() / 4, -sum.j() / 4, -sum.k() / 4);
        const double v = std::sqrt(s.i() * s.i() + s.j() * s.j() + s.k() * s.k());
        const double e = std::exp(s.r());
        const double f = v > 0.0 ? std::sin(v) / v : 1.0;
        const Q result = c * Q(e * std::cos(v), e * f * s.i(), e * f * s.j(), e * f * s.k());
        return result / result.Norm();
    }

    /// The squad value: slerp(slerp(C, N, t), slerp(A, B, t), 2t(1 - t)).
    Q ReferenceSquad(const Q & p, const Q & c, const Q & n, const Q & f, double t)
    {
        const Q a = ReferenceTangent(p, c, n), b = ReferenceTangent(c, n, f);
        const Q keys = zunSlerp(c, n, zunSlerp::Direct).Evaluate(t);
        const Q tangents = zunSlerp(a, b, zunSlerp::Direct).Evaluate(t);
        return zunSlerp(keys, tangents, zunSlerp::Direct).Evaluate(2.0 * t * (1.0 - t));
    }
}

// --- zunSlerp --------------------------------------------------------------------------

TEST(Slerp, TheConstructorStoresTheEndsAndTheAngle)
{
    const Q from = Turn(10.0), to = Turn(70.0);
    const zunSlerp s(from, to, zunSlerp::Direct);
    ExpectSame(s.from, from);
    ExpectSame(s.to, to);
    EXPECT_EQ(s.cosAngle, Dot(from, to));
    EXPECT_EQ(s.angle, std::acos(s.cosAngle));
    EXPECT_EQ(s.sinAngle, std::sqrt(1.0 - s.cosAngle * s.cosAngle));
    EXPECT_NEAR(s.angle, 30.0 * 3.141592653589793 / 180.0, 1e-12) << "half the turn between the rotations";
}

TEST(Slerp, EvaluateFollowsTheGreatArc)
{
    const zunSlerp s(Turn(10.0), Turn(70.0), zunSlerp::Shortest);
    for (double t : {0.0, 0.25, 0.5, 0.9, 1.0})
        ExpectNear(s.Evaluate(t), Turn(10.0 + 60.0 * t), 1e-12);
    const double a = std::sin(0.75 * s.angle) / s.sinAngle, b = std::sin(0.25 * s.angle) / s.sinAngle;
    ExpectSame(s.Evaluate(0.25), a * s.from + b * s.to);
}

TEST(Slerp, EqualEndsGiveTheEndForEveryT)
{
    const Q q = Turn(33.0);
    for (zunSlerp::Mode mode : {zunSlerp::Direct, zunSlerp::Shortest})
    {
        const zunSlerp s(Q::Identity, Q::Identity, mode);
        for (double t : {-1.0, 0.0, 0.3, 1.0, 5.0})
            ExpectSame(s.Evaluate(t), Q::Identity);
        const zunSlerp same(q, q, mode);
        for (double t : {0.0, 0.3, 1.0})
            ExpectSame(same.Evaluate(t), q);
    }
}

TEST(Slerp, AKeyWhoseDotRoundsBelowOneGivesItselfThroughTheMidpoint)
{
    const Q q(0.9999999999999999, 0.0, 0.0, 0.0);
    const zunSlerp s(q, q, zunSlerp::Direct);
    ASSERT_LT(s.cosAngle, 1.0);
    ASSERT_LT(s.sinAngle, 0.001);
    for (double t : {0.0, 0.5, 1.0})
        ExpectSame(s.Evaluate(t), q);
}

TEST(Slerp, NearlyEqualEndsGiveTheirMidpointWhateverT)
{
    const Q from = Turn(10.0), to = Turn(10.05);
    const zunSlerp s(from, to, zunSlerp::Direct);
    ASSERT_LT(s.sinAngle, 0.001);
    const Q midpoint = 0.5 * from + 0.5 * to;
    ExpectSame(s.Evaluate(0.0), midpoint);
    ExpectSame(s.Evaluate(1.0), midpoint);
    ExpectSame(s.Evaluate(0.3), midpoint);
}

TEST(Slerp, TIsClampedToTheUnitRange)
{
    const zunSlerp s(Turn(0.0), Turn(120.0), zunSlerp::Direct);
    ExpectSame(s.Evaluate(-3.0), s.Evaluate(0.0));
    ExpectSame(s.Evaluate(7.0), s.Evaluate(1.0));
    ExpectNear(s.Evaluate(-3.0), s.from, 1e-15);
    ExpectNear(s.Evaluate(7.0), s.to, 1e-15);
}

TEST(Slerp, OppositeEndsGiveTheStart)
{
    const Q from(1.0, 0.0, 0.0, 0.0), to(-1.0, 0.0, 0.0, 0.0);
    const zunSlerp direct(from, to, zunSlerp::Direct);
    EXPECT_EQ(direct.cosAngle, -1.0);
    ExpectSame(direct.Evaluate(0.5), from);

    const zunSlerp shortest(from, to, zunSlerp::Shortest);
    EXPECT_EQ(shortest.cosAngle, 1.0);
    ExpectSame(shortest.to, from); // to is turned round
    ExpectSame(shortest.Evaluate(0.5), from);
}

TEST(Slerp, ShortestTurnsANegativeDotRoundAndDirectTakesTheLongWay)
{
    const Q from = Turn(0.0), to = -Turn(60.0); // the same rotation as Turn(60), other sign
    const zunSlerp shortest(from, to, zunSlerp::Shortest);
    EXPECT_GT(shortest.cosAngle, 0.0);
    ExpectSame(shortest.to, -to);
    ExpectNear(shortest.Evaluate(0.5), Turn(30.0), 1e-12);

    const zunSlerp direct(from, to, zunSlerp::Direct);
    EXPECT_LT(direct.cosAngle, 0.0);
    ExpectSame(direct.to, to);
    ExpectNear(direct.Evaluate(0.5), Turn(-150.0), 1e-12); // halfway the long way round, 0 to -300°
}

TEST(Slerp, ResultsAreNotNormalized)
{
    const zunSlerp s(2.0 * Turn(0.0), 2.0 * Turn(90.0), zunSlerp::Direct);
    EXPECT_EQ(s.cosAngle, 4.0 * Dot(Turn(0.0), Turn(90.0)));
    EXPECT_TRUE(std::isnan(s.angle)) << "a dot past 1 is not clamped";
    ExpectSame(s.Evaluate(0.5), s.from); // and Evaluate gives from before it reads the angle

    const zunSlerp half(0.5 * Turn(0.0), 0.5 * Turn(90.0), zunSlerp::Direct);
    EXPECT_LT(half.Evaluate(0.5).Norm(), 0.9);
}

TEST(Slerp, CopiesAndAssignsItsFields)
{
    const zunSlerp a(Turn(0.0), Turn(50.0), zunSlerp::Direct);
    zunSlerp b(Turn(5.0), Turn(6.0), zunSlerp::Shortest);
    b = a;
    ExpectSame(b.Evaluate(0.4), a.Evaluate(0.4));
    zunSlerp c = std::move(b);
    ExpectSame(c.Evaluate(0.4), a.Evaluate(0.4));
}

// --- zunSquad -------------------------------------------------------------------------

TEST(Squad, StartsWithNoCachedSegment)
{
    zunSquad squad(Keys({Turn(0.0), Turn(40.0), Turn(90.0)}), zunSquad::Direct);
    EXPECT_EQ(squad.segment, 0xFFFFFFFFu);
    EXPECT_EQ(squad.keySlerp, nullptr);
    EXPECT_EQ(squad.tangentSlerp, nullptr);
    EXPECT_EQ(squad.keys.Count(), 3u);
}

TEST(Squad, PassesThroughTheKeys)
{
    const Q keys[] = {Turn(0.0), Q::FromRotAnglesDeg(30.0, 10.0, 40.0), Q::FromRotAnglesDeg(-20.0, 60.0, 90.0),
                      Turn(170.0)};
    zunSquad squad(Keys({keys[0], keys[1], keys[2], keys[3]}), zunSquad::Shortest);
    for (unsigned int n = 0; n < 3; ++n)
    {
        ExpectNear(squad.Evaluate(0.0, n), squad.keys[n], 1e-15);
        ExpectNear(squad.Evaluate(1.0, n), squad.keys[n + 1], 1e-14);
    }
}

TEST(Squad, MatchesTheTangentFormula)
{
    const Q k0 = Turn(0.0), k1 = Q::FromRotAnglesDeg(30.0, 10.0, 40.0), k2 = Q::FromRotAnglesDeg(-20.0, 60.0, 90.0),
            k3 = Q::FromRotAnglesDeg(5.0, -40.0, 150.0), k4 = Turn(-60.0);
    zunSquad squad(Keys({k0, k1, k2, k3, k4}), zunSquad::Direct);
    for (double t : {0.1, 0.5, 0.85})
    {
        ExpectNear(squad.Evaluate(t, 0), ReferenceSquad(k0, k0, k1, k2, t), 1e-14); // P = C in segment 0
        ExpectNear(squad.Evaluate(t, 1), ReferenceSquad(k0, k1, k2, k3, t), 1e-14);
        ExpectNear(squad.Evaluate(t, 3), ReferenceSquad(k2, k3, k4, k4, t), 1e-14); // F = N in the last
    }
}

TEST(Squad, TwoKeysRepeatThemselvesAsNeighbours)
{
    const Q a = Q::FromRotAnglesDeg(10.0, 20.0, 30.0), b = Q::FromRotAnglesDeg(50.0, -20.0, 80.0);
    zunSquad squad(Keys({a, b}), zunSquad::Direct);
    for (double t : {0.2, 0.6})
        ExpectNear(squad.Evaluate(t, 0), ReferenceSquad(a, a, b, b, t), 1e-14);
    EXPECT_EQ(squad.segment, 0u);
}

TEST(Squad, ASegmentBehindTheLastIsTheLast)
{
    zunSquad squad(Keys({Turn(0.0), Turn(20.0), Turn(50.0), Turn(60.0), Turn(100.0)}), zunSquad::Direct);
    const Q value = squad.Evaluate(0.4, 100);
    EXPECT_EQ(squad.segment, 3u);
    ExpectSame(value, squad.Evaluate(0.4, 3));
    ExpectSame(squad.Evaluate(0.4, 0xFFFFFFFF), value);
}

TEST(Squad, TIsNotClampedButTheSlerpsClampIt)
{
    zunSquad squad(Keys({Turn(0.0), Turn(20.0), Turn(50.0)}), zunSquad::Direct);
    ExpectSame(squad.Evaluate(2.0, 0), squad.Evaluate(1.0, 0));
    ExpectSame(squad.Evaluate(-1.0, 1), squad.Evaluate(0.0, 1));
}

TEST(Squad, CachesTheSegmentUntilAnotherIsAsked)
{
    zunSquad squad(Keys({Turn(0.0), Turn(20.0), Turn(50.0), Turn(60.0)}), zunSquad::Direct);
    squad.Evaluate(0.0, 1);
    const zunSlerp * keySlerp = squad.keySlerp.get();
    const zunSlerp * tangentSlerp = squad.tangentSlerp.get();
    ASSERT_NE(keySlerp, nullptr);
    for (double t = 0.0; t <= 1.0; t += 0.125)
        squad.Evaluate(t, 1);
    EXPECT_EQ(squad.keySlerp.get(), keySlerp) << "no rebuild inside one segment";
    EXPECT_EQ(squad.tangentSlerp.get(), tangentSlerp);
    ExpectSame(squad.keySlerp->from, squad.keys[1]);
    ExpectSame(squad.keySlerp->to, squad.keys[2]);

    squad.Evaluate(0.5, 2);
    EXPECT_EQ(squad.segment, 2u);
    EXPECT_NE(squad.keySlerp.get(), keySlerp) << "the new ones exist before the old ones go";
    ExpectSame(squad.keySlerp->from, squad.keys[2]);
}

TEST(Squad, ShortestCorrectsTheSignsAlongTheChain)
{
    const Q k0(1.0, 0.0, 0.0, 0.0), k1(-0.9, 0.1, 0.0, 0.0), k2(-0.8, 0.2, 0.0, 0.0), k3(0.0, 0.0, 1.0, 0.0);
    zunSquad squad(Keys({k0, k1, k2, k3}), zunSquad::Shortest);
    ExpectSame(squad.keys[0], k0);
    ExpectSame(squad.keys[1], -k1); // its dot with key 0 is negative
    ExpectSame(squad.keys[2], -k2); // compared with the corrected key 1, so the flip carries on
    ExpectSame(squad.keys[3], k3);  // a dot of exactly 0.0 keeps the sign

    zunSquad direct(Keys({k0, k1, k2, k3}), zunSquad::Direct);
    ExpectSame(direct.keys[1], k1);
    ExpectSame(direct.keys[2], k2);
}

TEST(Squad, MovingCarriesTheKeysAndTheCache)
{
    zunSquad source(Keys({Turn(0.0), Turn(20.0), Turn(50.0)}), zunSquad::Direct);
    const Q value = source.Evaluate(0.3, 1);
    const zunSlerp * cached = source.keySlerp.get();

    zunSquad moved(std::move(source));
    EXPECT_EQ(moved.keySlerp.get(), cached);
    EXPECT_EQ(moved.segment, 1u);
    EXPECT_EQ(moved.keys.Count(), 3u);
    ExpectSame(moved.Evaluate(0.3, 1), value);
    EXPECT_EQ(source.keySlerp, nullptr);
    EXPECT_EQ(source.tangentSlerp, nullptr);
    EXPECT_EQ(source.keys.Count(), 0u);

    zunSquad assigned(Keys({Turn(5.0), Turn(6.0)}), zunSquad::Direct);
    assigned.Evaluate(0.5, 0);
    assigned = std::move(moved);
    EXPECT_EQ(assigned.keySlerp.get(), cached);
    ExpectSame(assigned.Evaluate(0.3, 1), value);
    EXPECT_EQ(moved.keySlerp, nullptr);
}

TEST(Squad, FewerThanTwoKeysAreReportedAndStaySafe)
{
    // Construction goes on after the report; evaluating such a squad has no
    // segment to interpolate, so it gives its only key or the identity.
    zunSquad one(Keys({Turn(45.0)}), zunSquad::Shortest);
    EXPECT_EQ(one.keys.Count(), 1u);
    ExpectSame(one.Evaluate(0.5, 0), Turn(45.0));
    zunSquad none(zunFastMesh<Q>(), zunSquad::Direct);
    ExpectSame(none.Evaluate(0.5, 0), Q::Identity);
    EXPECT_EQ(none.keySlerp, nullptr);
}

TEST(Squad, NaNPassesThrough)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    zunSquad squad(Keys({Turn(0.0), Q(nan, 0.0, 0.0, 0.0), Turn(50.0)}), zunSquad::Direct);
    EXPECT_FALSE(squad.Evaluate(0.5, 0).IsValid());
}
