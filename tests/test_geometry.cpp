// The free geometry queries: each function's rules and fixed tolerances, and
// independent closed-form checks on random inputs.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>

#include <zunFoundation.h>

namespace
{
    typedef zunVector4T<double> V4;
    typedef zunVector2T<double> V2;

    void ExpectV4(V4 const & v, double x, double y, double z, double w = 1.0)
    {
        EXPECT_EQ(v.x, x);
        EXPECT_EQ(v.y, y);
        EXPECT_EQ(v.z, z);
        EXPECT_EQ(v.w, w);
    }

    void ExpectNear(V4 const & v, double x, double y, double z, double tolerance = 1e-12)
    {
        EXPECT_NEAR(v.x, x, tolerance);
        EXPECT_NEAR(v.y, y, tolerance);
        EXPECT_NEAR(v.z, z, tolerance);
    }

    const V4 kUntouched(-7, -7, -7, -7);
}

// --- zunPointToLine, zunPointToLine2D, zunPointToSegment ------------------------------------

TEST(PointToLine, FootAndUnclampedParameter)
{
    V4 closest = kUntouched;
    double t = 0;
    zunPointToLine(V4(1, 0, 0), V4(2, 0, 0, 5), V4(7, 3, 0), &closest, &t);
    EXPECT_EQ(t, 3.0); // in units of the direction
    ExpectV4(closest, 7, 0, 0);
    zunPointToLine(V4(0, 0, 0), V4(1, 0, 0), V4(-4, 1, 1), &closest, &t);
    EXPECT_EQ(t, -4.0);
    zunPointToLine(V4(0, 0, 0), V4(1, 0, 0), V4(4, 1, 1), nullptr, nullptr);
}

TEST(PointToLine, AShortDirectionGivesZero)
{
    V4 closest;
    double t = 9;
    zunPointToLine(V4(1, 2, 3, 8), V4(1e-13, 0, 0), V4(5, 5, 5), &closest, &t);
    EXPECT_EQ(t, 0.0);
    ExpectV4(closest, 1, 2, 3);
    zunPointToLine(V4(0, 0, 0), V4(1e-12, 0, 0), V4(5, 5, 5), &closest, &t); // 1e-24 is not below 1e-24
    EXPECT_NEAR(t, 5e12, 1e-3);
}

TEST(PointToLine, TwoDimensions)
{
    V2 closest;
    double t;
    zunPointToLine2D(V2(0, 0), V2(0, 2), V2(3, 5), &closest, &t);
    EXPECT_EQ(t, 2.5);
    EXPECT_EQ(closest.x, 0.0);
    EXPECT_EQ(closest.y, 5.0);
    zunPointToLine2D(V2(1, 1), V2(0, 0), V2(3, 5), &closest, &t);
    EXPECT_EQ(t, 0.0);
    EXPECT_EQ(closest.x, 1.0);
}

TEST(PointToSegment, ClampsToTheEnds)
{
    V4 closest;
    double t;
    zunPointToSegment(V4(0, 0, 0), V4(2, 0, 0), V4(-5, 1, 0), &closest, &t);
    EXPECT_EQ(t, 0.0);
    ExpectV4(closest, 0, 0, 0);
    zunPointToSegment(V4(0, 0, 0), V4(2, 0, 0), V4(5, 1, 0), &closest, &t);
    EXPECT_EQ(t, 1.0);
    ExpectV4(closest, 2, 0, 0);
    zunPointToSegment(V4(0, 0, 0), V4(2, 0, 0), V4(1.5, 1, 0), &closest, &t);
    EXPECT_EQ(t, 0.75);
    zunPointToSegment(V4(3, 3, 3), V4(3, 3, 3), V4(0, 0, 0), &closest, &t);
    EXPECT_EQ(t, 0.0);
    ExpectV4(closest, 3, 3, 3);
}

TEST(PointToSegment, MatchesTheClosedFormOnRandomInputs)
{
    // Independent check: the nearest point of a segment minimises the distance,
    // found here by a dense search along it refined by golden section.
    std::mt19937 random(7);
    std::uniform_real_distribution<double> coordinate(-10, 10);
    for (int round = 0; round < 500; ++round)
    {
        V4 a(coordinate(random), coordinate(random), coordinate(random));
        V4 b(coordinate(random), coordinate(random), coordinate(random));
        V4 p(coordinate(random), coordinate(random), coordinate(random));
        auto distance = [&](double s)
        {
            double x = a.x + s * (b.x - a.x) - p.x, y = a.y + s * (b.y - a.y) - p.y, z = a.z + s * (b.z - a.z) - p.z;
            return x * x + y * y + z * z;
        };
        double lo = 0, hi = 1;
        for (int i = 0; i < 200; ++i)
        {
            double m1 = lo + (hi - lo) * 0.381966, m2 = hi - (hi - lo) * 0.381966;
            if (distance(m1) < distance(m2))
                hi = m2;
            else
                lo = m1;
        }
        double expected = (lo + hi) / 2;
        V4 closest;
        double t;
        zunPointToSegment(a, b, p, &closest, &t);
        EXPECT_NEAR(t, expected, 1e-7) << round;
        EXPECT_NEAR(std::sqrt(distance(t)), std::sqrt(distance(expected)), 1e-9) << round;
        ExpectNear(closest, a.x + t * (b.x - a.x), a.y + t * (b.y - a.y), a.z + t * (b.z - a.z), 1e-12);
    }
}

// --- zunMatchSense ----------------------------------------------------------------------------

TEST(MatchSense, FlipsOnlyOnANegativeDot)
{
    V4 v(1, 2, 3, 9);
    zunMatchSense(V4(-1, 0, 0), v);
    ExpectV4(v, -1, -2, -3, 9);
    zunMatchSense(V4(-1, 0, 0), v);
    ExpectV4(v, -1, -2, -3, 9);
    V4 across(0, 1, 0, 9);
    zunMatchSense(V4(1, 0, 0), across); // a dot of exactly 0 leaves it
    ExpectV4(across, 0, 1, 0, 9);
}

// --- zunIntersect2DLines ------------------------------------------------------------------------

TEST(Intersect2DLines, Crossing)
{
    double tp = 0, tq = 0;
    V2 point;
    EXPECT_TRUE(zunIntersect2DLines(V2(0, 0), V2(2, 0), V2(3, -1), V2(0, 4), &tp, &tq, point));
    EXPECT_DOUBLE_EQ(tp, 1.5);
    EXPECT_DOUBLE_EQ(tq, 0.25);
    EXPECT_DOUBLE_EQ(point.x, 3.0);
    EXPECT_DOUBLE_EQ(point.y, 0.0);
    EXPECT_TRUE(zunIntersect2DLines(V2(0, 0), V2(1, 1), V2(2, 0), V2(-1, 1), nullptr, nullptr, point));
    EXPECT_DOUBLE_EQ(point.x, 1.0);
}

TEST(Intersect2DLines, ShortOrParallelDirectionsFail)
{
    double tp = 5, tq = 5;
    V2 point(9, 9);
    EXPECT_FALSE(zunIntersect2DLines(V2(0, 0), V2(1e-13, 0), V2(1, 1), V2(0, 1), &tp, &tq, point));
    EXPECT_FALSE(zunIntersect2DLines(V2(0, 0), V2(1, 0), V2(1, 1), V2(0, 1e-13), &tp, &tq, point));
    EXPECT_FALSE(zunIntersect2DLines(V2(0, 0), V2(1, 0), V2(1, 1), V2(-3, 0), &tp, &tq, point));
    EXPECT_FALSE(zunIntersect2DLines(V2(0, 0), V2(1, 0), V2(1, 1), V2(1, 1e-13), &tp, &tq, point));
    EXPECT_EQ(tp, 5.0);
    EXPECT_EQ(tq, 5.0);
    EXPECT_EQ(point.x, 9.0);
}

// --- zunIntersect3DLines ------------------------------------------------------------------------

TEST(Intersect3DLines, SkewLinesGiveTheMiddleOfTheShortestConnection)
{
    double tp = 0, tq = 0;
    V4 point;
    EXPECT_TRUE(zunIntersect3DLines(V4(0, 0, 0), V4(1, 0, 0), V4(5, 1, 1), V4(0, 1, 0), &tp, &tq, &point));
    EXPECT_EQ(tp, 5.0);
    EXPECT_EQ(tq, -1.0);
    ExpectV4(point, 5, 0, 0.5);
}

TEST(Intersect3DLines, ParallelLinesGiveTheMiddleOfThePoints)
{
    double tp = 9, tq = 9;
    V4 point;
    EXPECT_TRUE(zunIntersect3DLines(V4(0, 0, 0), V4(1, 0, 0), V4(5, 1, 1), V4(2, 0, 0), &tp, &tq, &point));
    EXPECT_EQ(tp, 0.0);
    EXPECT_EQ(tq, 0.0);
    ExpectV4(point, 2.5, 0.5, 0.5);
    tp = tq = 9;
    EXPECT_TRUE(zunIntersect3DLines(V4(0, 0, 0), V4(0, 0, 0), V4(5, 1, 1), V4(0, 1, 0), &tp, &tq, &point));
    EXPECT_EQ(tp, 0.0);
    EXPECT_EQ(tq, 0.0);
    ExpectV4(point, 2.5, 0.5, 0.5);
    EXPECT_TRUE(zunIntersect3DLines(V4(0, 0, 0), V4(1, 0, 0), V4(5, 1, 1), V4(0, 1, 0), nullptr, nullptr, nullptr));
}

TEST(Intersect3DLines, AParameterBeyondTwoToThe31CountsAsParallel)
{
    // Nearly parallel lines whose crossing lies ~1e10 away: the exponent test
    // takes them for parallel even though the denominator is far above 1e-128.
    double tp = 9, tq = 9;
    V4 point;
    zunIntersect3DLines(V4(0, 0, 0), V4(1, 0, 0), V4(0, 1, 0), V4(1, -1e-10, 0), &tp, &tq, &point);
    EXPECT_EQ(tp, 0.0);
    EXPECT_EQ(tq, 0.0);
    ExpectV4(point, 0, 0.5, 0);
    // A crossing ~1e6 away is still computed.
    zunIntersect3DLines(V4(0, 0, 0), V4(1, 0, 0), V4(0, 1, 0), V4(1, -1e-6, 0), &tp, &tq, &point);
    EXPECT_NEAR(tp, 1e6, 1e3); // the denominator itself is 1e-12, so rounding shows
    EXPECT_NEAR(tq, 1e6, 1e3);
}

// --- zunIntersectLinePlane ---------------------------------------------------------------------

TEST(IntersectLinePlane, PointAndNormalForm)
{
    double t = 0;
    V4 point;
    EXPECT_TRUE(zunIntersectLinePlane(V4(1, 2, 5), V4(0, 0, -2), V4(0, 0, 1), V4(0, 0, 3), &t, &point));
    EXPECT_EQ(t, 2.0);
    ExpectV4(point, 1, 2, 1);
    EXPECT_TRUE(zunIntersectLinePlane(V4(1, 2, 5), V4(0, 0, 2), V4(0, 0, 1), V4(0, 0, 3), &t, &point));
    EXPECT_EQ(t, -2.0); // behind the start still counts
}

TEST(IntersectLinePlane, PlaneFormLeavesWAlone)
{
    const double plane[4] = {0, 1, 0, -3}; // y = 3
    double t = 0;
    V4 point(0, 0, 0, 42);
    EXPECT_TRUE(zunIntersectLinePlane(V4(1, 0, 1), V4(0, 1, 1), plane, &t, &point));
    EXPECT_EQ(t, 3.0);
    ExpectV4(point, 1, 3, 4, 42);
}

TEST(IntersectLinePlane, ParallelFailsAndWritesNothing)
{
    const double plane[4] = {0, 0, 1, 0};
    double t = 7;
    V4 point = kUntouched;
    EXPECT_FALSE(zunIntersectLinePlane(V4(0, 0, 1), V4(1, 1, 1e-20), plane, &t, &point));
    EXPECT_EQ(t, 7.0);
    ExpectV4(point, -7, -7, -7, -7);
    EXPECT_TRUE(zunIntersectLinePlane(V4(0, 0, 1), V4(1, 1, 1e-18), plane, nullptr, nullptr));
}

// --- zunIntersectLineSphere -----------------------------------------------------------------------

TEST(IntersectLineSphere, TheTwoPointsInOrderAlongTheDirection)
{
    V4 first, second;
    EXPECT_TRUE(zunIntersectLineSphere(V4(0, 0, 0), 2, V4(-5, 0, 0), V4(2, 0, 0), first, second));
    ExpectV4(first, 2, 0, 0);
    ExpectV4(second, -2, 0, 0);
}

TEST(IntersectLineSphere, AMissWritesNothing)
{
    V4 first = kUntouched, second = kUntouched;
    EXPECT_FALSE(zunIntersectLineSphere(V4(0, 0, 0), 2, V4(-5, 3, 0), V4(2, 0, 0), first, second));
    ExpectV4(first, -7, -7, -7, -7);
    ExpectV4(second, -7, -7, -7, -7);
}

TEST(IntersectLineSphere, ATangentGivesTwoEqualPoints)
{
    V4 first, second;
    EXPECT_TRUE(zunIntersectLineSphere(V4(0, 0, 0), 2, V4(-5, 2, 0), V4(1, 0, 0), first, second));
    ExpectV4(first, 0, 2, 0);
    ExpectV4(second, 0, 2, 0);
}

TEST(IntersectLineSphere, MatchesTheClosedFormOnRandomInputs)
{
    // Independent check: solve |p + s*d - c|^2 = r^2 for s in the direction's
    // own units, with the quadratic formula, and compare the points.
    std::mt19937 random(11);
    std::uniform_real_distribution<double> coordinate(-10, 10), size(0.1, 8);
    int hits = 0;
    for (int round = 0; round < 1000; ++round)
    {
        V4 c(coordinate(random), coordinate(random), coordinate(random));
        V4 p(coordinate(random), coordinate(random), coordinate(random));
        V4 d(coordinate(random), coordinate(random), coordinate(random));
        double r = size(random);
        double mx = p.x - c.x, my = p.y - c.y, mz = p.z - c.z;
        double qa = d.x * d.x + d.y * d.y + d.z * d.z;
        double qb = 2 * (mx * d.x + my * d.y + mz * d.z);
        double qc = mx * mx + my * my + mz * mz - r * r;
        double disc = qb * qb - 4 * qa * qc;
        V4 first = kUntouched, second = kUntouched;
        bool hit = zunIntersectLineSphere(c, r, p, d, first, second);
        if (std::fabs(disc) < 1e-9 * qb * qb + 1e-9)
            continue; // grazing: either answer is right
        ASSERT_EQ(hit, disc >= 0) << round;
        if (!hit)
            continue;
        ++hits;
        double far = (-qb + std::sqrt(disc)) / (2 * qa), near = (-qb - std::sqrt(disc)) / (2 * qa);
        double tolerance = 1e-9 * (1 + std::fabs(far) + std::fabs(near)) * std::sqrt(qa);
        ExpectNear(first, p.x + far * d.x, p.y + far * d.y, p.z + far * d.z, tolerance);
        ExpectNear(second, p.x + near * d.x, p.y + near * d.y, p.z + near * d.z, tolerance);
        EXPECT_EQ(first.w, 1.0);
    }
    EXPECT_GT(hits, 100);
}

// --- zunIntersectLineTriangle --------------------------------------------------------------------

TEST(IntersectLineTriangle, AHitInsideWritesThePointAndStillSaysFalse)
{
    V4 point;
    EXPECT_FALSE(zunIntersectLineTriangle(V4(0.2, 0.2, 1), V4(0, 0, -1), V4(0, 0, 0), V4(1, 0, 0), V4(0, 1, 0), point));
    ExpectV4(point, 0.2, 0.2, 0);
}

TEST(IntersectLineTriangle, AHitOutsideWritesThePlanePoint)
{
    V4 point;
    EXPECT_FALSE(zunIntersectLineTriangle(V4(2, 2, 1), V4(0, 0, -1), V4(0, 0, 0), V4(1, 0, 0), V4(0, 1, 0), point));
    ExpectV4(point, 2, 2, 0);
}

TEST(IntersectLineTriangle, NoPointBehindParallelOrDegenerate)
{
    V4 point = kUntouched;
    // behind the line's start
    EXPECT_FALSE(zunIntersectLineTriangle(V4(0.2, 0.2, 1), V4(0, 0, 1), V4(0, 0, 0), V4(1, 0, 0), V4(0, 1, 0), point));
    // parallel to the plane
    EXPECT_FALSE(zunIntersectLineTriangle(V4(0.2, 0.2, 1), V4(1, 0, 0), V4(0, 0, 0), V4(1, 0, 0), V4(0, 1, 0), point));
    // a triangle that is a line
    EXPECT_FALSE(zunIntersectLineTriangle(V4(0.2, 0.2, 1), V4(0, 0, -1), V4(0, 0, 0), V4(1, 0, 0), V4(2, 0, 0), point));
    ExpectV4(point, -7, -7, -7, -7);
    // a start on the plane is at t = 0 and counts
    EXPECT_FALSE(zunIntersectLineTriangle(V4(0.2, 0.2, 0), V4(0, 0, -1), V4(0, 0, 0), V4(1, 0, 0), V4(0, 1, 0), point));
    ExpectV4(point, 0.2, 0.2, 0);
}

// --- zunFindRaysMinDist ---------------------------------------------------------------------------

TEST(FindRaysMinDist, CrossingRays)
{
    V4 onA, onB;
    double ta = 0, tb = 0;
    EXPECT_TRUE(
        zunFindRaysMinDist(zunRay(V4(0, 0, 0), V4(1, 0, 0)), zunRay(V4(5, -1, 2), V4(0, 1, 0)), &onA, &onB, &ta, &tb));
    EXPECT_NEAR(ta, 5.0, 1e-12);
    EXPECT_NEAR(tb, 1.0, 1e-12);
    ExpectNear(onA, 5, 0, 0);
    ExpectNear(onB, 5, 0, 2);
    EXPECT_EQ(onA.w, 1.0);
}

TEST(FindRaysMinDist, ParallelRaysGoHalfWayTowardsEachOther)
{
    V4 onA, onB;
    double ta = 0, tb = 0;
    EXPECT_TRUE(
        zunFindRaysMinDist(zunRay(V4(0, 0, 0), V4(1, 0, 0)), zunRay(V4(5, 1, 2), V4(2, 0, 0)), &onA, &onB, &ta, &tb));
    EXPECT_EQ(ta, 2.5);
    EXPECT_EQ(tb, -1.25);
    ExpectV4(onA, 2.5, 0, 0);
    ExpectV4(onB, 2.5, 1, 2);
}

TEST(FindRaysMinDist, RaysParallelToZGetZero)
{
    V4 onA, onB;
    double ta = 9, tb = 9;
    EXPECT_TRUE(
        zunFindRaysMinDist(zunRay(V4(0, 0, 0), V4(0, 0, 1)), zunRay(V4(1, 1, 5), V4(0, 0, -3)), &onA, &onB, &ta, &tb));
    EXPECT_EQ(ta, 0.0);
    EXPECT_EQ(tb, 0.0);
    ExpectV4(onA, 0, 0, 0);
    ExpectV4(onB, 1, 1, 5);
    EXPECT_TRUE(zunFindRaysMinDist(zunRay(), zunRay(), nullptr, nullptr, nullptr, nullptr));
}

TEST(FindRaysMinDist, AgreesWithTheClosestApproachOfSkewLines)
{
    std::mt19937 random(3);
    std::uniform_real_distribution<double> coordinate(-5, 5);
    for (int round = 0; round < 200; ++round)
    {
        zunRay a(V4(coordinate(random), coordinate(random), coordinate(random)),
                 V4(coordinate(random), coordinate(random), coordinate(random)));
        zunRay b(V4(coordinate(random), coordinate(random), coordinate(random)),
                 V4(coordinate(random), coordinate(random), coordinate(random)));
        double ta, tb, tp, tq;
        zunFindRaysMinDist(a, b, nullptr, nullptr, &ta, &tb);
        zunIntersect3DLines(a.origin, a.direction, b.origin, b.direction, &tp, &tq, nullptr);
        EXPECT_NEAR(ta, tp, 1e-6 * (1 + std::fabs(tp))) << round;
        EXPECT_NEAR(tb, tq, 1e-6 * (1 + std::fabs(tq))) << round;
    }
}

// --- planes ---------------------------------------------------------------------------------------

TEST(ProjPtToPlane, ProjectsWhateverTheNormalsLength)
{
    V4 projected;
    EXPECT_TRUE(zunProjPtToPlane(V4(1, 2, 3), V4(0, 0, 1), V4(0, 0, 2), projected));
    ExpectNear(projected, 1, 2, 1, 1e-15);
    EXPECT_EQ(projected.w, 1.0);
}

TEST(ProjPtToPlane, APointOnTheNormalGivesThePlanePoint)
{
    V4 projected;
    EXPECT_TRUE(zunProjPtToPlane(V4(3, 4, 9), V4(3, 4, 1, 6), V4(0, 0, 5), projected));
    ExpectV4(projected, 3, 4, 1, 6); // a copy, w included
}

TEST(ProjectToUVPlane, GivesAUnitDirection)
{
    double a = 0, b = 0;
    zunProjectToUVPlane(V4(1, 0, 0), V4(0, 1, 0), V4(3, 4, 0), a, b);
    EXPECT_DOUBLE_EQ(a, 0.6);
    EXPECT_DOUBLE_EQ(b, 0.8);
    zunProjectToUVPlane(V4(2, 0, 0), V4(0, 1, 0), V4(-3, 0, 7), a, b);
    EXPECT_DOUBLE_EQ(a, -1.0);
    EXPECT_DOUBLE_EQ(b, 0.0);
}

TEST(ProjectToUVPlane, TheOriginGivesNaN)
{
    double a = 0, b = 0;
    zunProjectToUVPlane(V4(1, 0, 0), V4(0, 1, 0), V4(0, 0, 0), a, b);
    EXPECT_TRUE(std::isnan(a));
    EXPECT_TRUE(std::isnan(b));
}

TEST(FindBestPlane, KeepsAPlaneThatFacesTheView)
{
    V4 u(1, 0, 0), v(0, 1, 0);
    zunFindBestPlane(V4(0, 0, 1), u, v); // the normal faces the view
    ExpectV4(u, 1, 0, 0);
    ExpectV4(v, 0, 1, 0);
}

TEST(FindBestPlane, DropsTheAxisAlongTheView)
{
    V4 u(1, 0, 0), v(0, 1, 0);
    zunFindBestPlane(V4(1, 0.1, 0.2), u, v); // u is most along the view
    ExpectV4(u, 0, 1, 0);
    ExpectV4(v, 0, 0, 1);
    V4 u2(1, 0, 0), v2(0, 1, 0);
    zunFindBestPlane(V4(0.1, 1, 0.2), u2, v2); // v is
    ExpectV4(u2, 1, 0, 0);
    ExpectV4(v2, 0, 0, 1);
}

TEST(FindBestPlane, ATieBetweenUAndVTakesTheSecondRule)
{
    V4 u(1, 0, 0), v(0, 1, 0);
    zunFindBestPlane(V4(1, 1, 0), u, v);
    ExpectV4(u, 1, 0, 0);
    ExpectV4(v, 0, 0, 1);
}

// --- circles --------------------------------------------------------------------------------------

TEST(CircleThru3Pts, UnitCircle)
{
    V4 center = kUntouched;
    double radius = 0;
    EXPECT_TRUE(zunCircleThru3Pts(V4(1, 0, 0), V4(0, 1, 0), V4(-1, 0, 0), &center, &radius));
    ExpectNear(center, 0, 0, 0, 1e-12);
    EXPECT_NEAR(radius, 1.0, 1e-12);
    EXPECT_EQ(center.w, 1.0);
}

TEST(CircleThru3Pts, InSpace)
{
    V4 center;
    double radius;
    EXPECT_TRUE(zunCircleThru3Pts(V4(1, 0, 5), V4(0, 1, 5), V4(0, -1, 5), &center, &radius));
    ExpectNear(center, 0, 0, 5, 1e-12);
    EXPECT_NEAR(radius, 1.0, 1e-12);
    EXPECT_TRUE(zunCircleThru3Pts(V4(1, 0, 5), V4(0, 1, 5), V4(0, -1, 5), &center, nullptr));
    EXPECT_TRUE(zunCircleThru3Pts(V4(1, 0, 5), V4(0, 1, 5), V4(0, -1, 5), nullptr, nullptr));
}

TEST(CircleThru3Pts, DegenerateInputsFail)
{
    V4 center = kUntouched;
    double radius = -1;
    EXPECT_FALSE(zunCircleThru3Pts(V4(0, 0, 0), V4(1, 1, 1), V4(2, 2, 2), &center, &radius)); // collinear
    EXPECT_FALSE(zunCircleThru3Pts(V4(0, 0, 0), V4(0, 0, 0), V4(2, 2, 2), &center, &radius)); // first == second
    EXPECT_FALSE(zunCircleThru3Pts(V4(0, 0, 0), V4(1, 0, 0), V4(1, 0, 0), &center, &radius)); // second == third
    EXPECT_FALSE(zunCircleThru3Pts(V4(0, 0, 0), V4(1, 0, 0), V4(0, 0, 0), &center, &radius)); // first == third
    ExpectV4(center, -7, -7, -7, -7);
    EXPECT_EQ(radius, -1.0);
}

TEST(CircleThru3Pts, ATinyTriangleCountsAsCollinear)
{
    // |A x C| below 1e-12 already stops a circle of radius 1e-10, before its radius is measured.
    V4 center = kUntouched;
    double radius = -1;
    EXPECT_FALSE(zunCircleThru3Pts(V4(1e-10, 0, 0), V4(0, 1e-10, 0), V4(-1e-10, 0, 0), &center, &radius));
    ExpectV4(center, -7, -7, -7, -7);
    EXPECT_EQ(radius, -1.0);
}

TEST(CircleThru3Pts, ARadiusWithoutACenterPointerIsStillMeasured)
{
    double radius = 0;
    EXPECT_TRUE(zunCircleThru3Pts(V4(2, 0, 0), V4(0, 2, 0), V4(-2, 0, 0), nullptr, &radius));
    EXPECT_NEAR(radius, 2.0, 1e-12);
}

TEST(CircleThru2PtsAndTangent, TangentAtTheFirstPoint)
{
    V4 center = kUntouched;
    double radius = 0;
    EXPECT_TRUE(zunCircleThru2PtsAndTangent(V4(1, 0, 0), V4(0, 1, 0), V4(0, 1, 0), true, &center, &radius));
    ExpectNear(center, 0, 0, 0, 1e-12);
    EXPECT_NEAR(radius, 1.0, 1e-12);
}

TEST(CircleThru2PtsAndTangent, TangentAtTheSecondPoint)
{
    V4 center;
    double radius = 0;
    EXPECT_TRUE(zunCircleThru2PtsAndTangent(V4(1, 0, 0), V4(0, 1, 0), V4(1, 0, 0), false, &center, &radius));
    ExpectNear(center, 0, 0, 0, 1e-12);
    EXPECT_NEAR(radius, 1.0, 1e-12);
}

TEST(CircleThru2PtsAndTangent, ATinyRadiusIsFalseWithCenterAndRadiusWritten)
{
    V4 center = kUntouched;
    double radius = -1;
    EXPECT_FALSE(zunCircleThru2PtsAndTangent(V4(0, 0, 0), V4(1.2e-9, 0, 0), V4(0, 1, 0), true, &center, &radius));
    EXPECT_NEAR(radius, 6e-10, 1e-20);
    ExpectNear(center, 6e-10, 0, 0, 1e-20);
    EXPECT_TRUE(zunCircleThru2PtsAndTangent(V4(0, 0, 0), V4(1.2e-9, 0, 0), V4(0, 1, 0), true, &center, nullptr));
}

TEST(CircleThru2PtsAndTangent, ATangentAlongTheChordOrCoincidentPointsFail)
{
    V4 center = kUntouched;
    double radius = -1;
    EXPECT_FALSE(zunCircleThru2PtsAndTangent(V4(1, 0, 0), V4(0, 1, 0), V4(-1, 1, 0), false, &center, &radius));
    EXPECT_FALSE(zunCircleThru2PtsAndTangent(V4(1, 0, 0), V4(1, 0, 0), V4(0, 1, 0), true, &center, &radius));
    // Only x and y enter the chord test: a tangent along the chord in XY fails
    // whatever its z.
    EXPECT_FALSE(zunCircleThru2PtsAndTangent(V4(1, 0, 0), V4(0, 1, 0), V4(-2, 2, 7), true, &center, &radius));
    ExpectV4(center, -7, -7, -7, -7);
    EXPECT_EQ(radius, -1.0);
}

// --- zunFindPolylineTan -----------------------------------------------------------------------------

namespace
{
    zunFastMesh<V4> Line(std::initializer_list<double> xs)
    {
        zunFastMesh<V4> mesh;
        for (double x : xs)
            mesh.Add(V4(x, 0, 0));
        return mesh;
    }
}

TEST(FindPolylineTan, OpenForward)
{
    zunFastMesh<V4> points = Line({0, 1, 2, 3, 4});
    V4 tangent;
    EXPECT_TRUE(zunFindPolylineTan(points, 1, 1.5, 0, tangent));
    ExpectV4(tangent, 2, 0, 0); // entry 3 minus entry 1, unnormalized
    EXPECT_FALSE(zunFindPolylineTan(points, 1, 5.0, 0, tangent));
    ExpectV4(tangent, 3, 0, 0); // the last chord tried
}

TEST(FindPolylineTan, OpenBackward)
{
    zunFastMesh<V4> points = Line({0, 1, 2, 3, 4});
    V4 tangent;
    EXPECT_TRUE(zunFindPolylineTan(points, 3, 1.5, 1, tangent));
    ExpectV4(tangent, -2, 0, 0);
    tangent = kUntouched;
    EXPECT_FALSE(zunFindPolylineTan(points, 0, 0.5, 1, tangent)); // nothing before the first entry
    ExpectV4(tangent, -7, -7, -7, -7);
}

TEST(FindPolylineTan, ExactlyTheDistanceIsNotFurther)
{
    zunFastMesh<V4> points = Line({0, 1, 2});
    V4 tangent;
    EXPECT_FALSE(zunFindPolylineTan(points, 0, 2.0, 0, tangent));
    EXPECT_TRUE(zunFindPolylineTan(points, 0, 1.999, 0, tangent));
}

TEST(FindPolylineTan, ClosedWrapsAround)
{
    zunFastMesh<V4> points = Line({0, 1, 2, 10});
    V4 tangent;
    EXPECT_TRUE(zunFindPolylineTan(points, 3, 5.0, 2, tangent)); // 10 -> 0 (wrapped)
    ExpectV4(tangent, -10, 0, 0);
    EXPECT_TRUE(zunFindPolylineTan(points, 0, 5.0, 3, tangent)); // backward: 0 -> 10
    ExpectV4(tangent, 10, 0, 0);
    EXPECT_FALSE(zunFindPolylineTan(points, 1, 50.0, 2, tangent)); // comes back to its start
    ExpectV4(tangent, -1, 0, 0);
}

TEST(FindPolylineTan, OutOfRangeOrSingleEntry)
{
    zunFastMesh<V4> points = Line({0, 1});
    V4 tangent = kUntouched;
    EXPECT_FALSE(zunFindPolylineTan(points, 2, 0.0, 0, tangent));
    EXPECT_FALSE(zunFindPolylineTan(points, -1, 0.0, 0, tangent));
    zunFastMesh<V4> single = Line({5});
    EXPECT_FALSE(zunFindPolylineTan(single, 0, 0.0, 2, tangent));
    EXPECT_FALSE(zunFindPolylineTan(single, 0, 0.0, 0, tangent));
    ExpectV4(tangent, -7, -7, -7, -7);
}

// --- zunInterpolatePWL ----------------------------------------------------------------------------

TEST(InterpolatePWL, Table)
{
    const V2 table[] = {V2(0, 0), V2(1, 10), V2(2, 0), V2(3, 5), V2(4, 5), V2(5, -5), V2(6, 0)};
    EXPECT_EQ(zunInterpolatePWL(table, 7, 0.5), 5.0);
    EXPECT_EQ(zunInterpolatePWL(table, 7, 2.5), 2.5);
    EXPECT_EQ(zunInterpolatePWL(table, 7, 5.5), -2.5);
    EXPECT_EQ(zunInterpolatePWL(table, 7, -3), 0.0);
    EXPECT_EQ(zunInterpolatePWL(table, 7, 9), 0.0);
    EXPECT_EQ(zunInterpolatePWL(table, 7, 1), 10.0);
    EXPECT_EQ(zunInterpolatePWL(table, 7, 3.5), 5.0);
}

TEST(InterpolatePWL, AJumpTakesTheLaterEntry)
{
    const V2 table[] = {V2(0, 0), V2(1, 10), V2(1, 20), V2(2, 30)};
    EXPECT_EQ(zunInterpolatePWL(table, 4, 1), 20.0);
    EXPECT_EQ(zunInterpolatePWL(table, 4, 0.5), 5.0);
    EXPECT_EQ(zunInterpolatePWL(table, 4, 1.5), 25.0);
}

TEST(InterpolatePWL, ShortTablesAndNaN)
{
    const V2 one[] = {V2(2, 7)};
    EXPECT_EQ(zunInterpolatePWL(one, 1, 0), 7.0);
    EXPECT_EQ(zunInterpolatePWL(one, 1, 5), 7.0);
    EXPECT_EQ(zunInterpolatePWL(nullptr, 0, 5), 0.0);
    EXPECT_EQ(zunInterpolatePWL(one, 0, 5), 0.0);
    const V2 two[] = {V2(0, 0), V2(1, 1)};
    EXPECT_TRUE(std::isnan(zunInterpolatePWL(two, 2, std::numeric_limits<double>::quiet_NaN())));
}

// --- zunRandom -----------------------------------------------------------------------------------

TEST(Random, CoversTheRangeWithBothEnds)
{
    std::srand(1);
    double least = 1e9, most = -1e9;
    for (int i = 0; i < 1000000; ++i)
    {
        double r = zunRandom(-2.0, 3.0);
        ASSERT_GE(r, -2.0);
        ASSERT_LE(r, 3.0);
        least = std::fmin(least, r);
        most = std::fmax(most, r);
    }
    EXPECT_EQ(least, -2.0);
    EXPECT_EQ(most, 3.0);
}

TEST(Random, FollowsTheRuntimeSeed)
{
    std::srand(42);
    double a = zunRandom(0, 1), b = zunRandom(0, 1);
    std::srand(42);
    EXPECT_EQ(zunRandom(0, 1), a);
    EXPECT_EQ(zunRandom(0, 1), b);
    EXPECT_EQ(zunRandom(5, 5), 5.0);
    // The result is one of 32768 evenly spaced values.
    double r = zunRandom(0, 32767);
    EXPECT_EQ(r, std::floor(r));
}
