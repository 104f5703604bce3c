// Demo sections of the matrix and quaternion family: a placement composed and
// inverted, a rotation by a quaternion, and squad through a list of keys.
#include <zunFoundation.h>

#include <cstdio>

#include "DemoSection.h"

namespace
{
    using V4 = zunVector4T<double>;

    void PrintPoint(const char * label, const V4 & p)
    {
        std::printf("  %-40s (%.4f, %.4f, %.4f)\n", label, p.x, p.y, p.z);
    }

    void PrintQuaternion(const char * label, const zunQuaternion & q)
    {
        std::printf("  %-40s (%.4f, %.4f, %.4f, %.4f)\n", label, q.r(), q.i(), q.j(), q.k());
    }
}

ZUN_DEMO_SECTION(160, "Matrices: composed, applied and inverted")
{
    // Each new operation acts first on a point, in the frame the earlier ones set.
    zunMatrix44 placement;
    placement.AddTranslation(V4(10.0, 0.0, 0.0))
        .AddRotation(V4(0.0, 0.0, 90.0), V4(0.0, 0.0, 0.0))
        .AddScaling(V4(2.0, 2.0, 2.0), V4(0.0, 0.0, 0.0));
    std::printf("translate by 10 along X, turn 90 degrees about Z, scale by 2:\n");
    const V4 p = placement(V4(1.0, 0.0, 0.0));
    PrintPoint("(1, 0, 0) goes to", p);
    const V4 angles = placement.GetRotation(), scale = placement.GetScale();
    std::printf("  %-40s (%.4f, %.4f, %.4f)\n", "rotation read back, degrees", angles.x, angles.y, angles.z);
    std::printf("  %-40s (%.4f, %.4f, %.4f)\n", "scale read back", scale.x, scale.y, scale.z);

    zunMatrix44 inverse;
    const bool invertible = placement.Invert(inverse);
    PrintPoint(invertible ? "the inverse takes it back to" : "singular!", inverse(p));

    zunMatrix44 flat;
    flat.AddScaling(V4(1.0, 1.0, 0.0), V4(0.0, 0.0, 0.0));
    const bool flatInverted = flat.Invert();
    std::printf("  %-40s %s, and the matrix is %s\n", "a scale by 0 along Z inverts:", flatInverted ? "yes" : "no",
                flat == zunMatrix44::Identity ? "now the identity" : "unchanged");

    float cloud[] = {0.0f, 0.0f, 0.0f, 1.0f, 1.0f, 1.0f, -1.0f, 2.0f, 0.5f};
    placement.Transform(cloud, 3, 3);
    std::printf("  %-40s", "three float points, transformed in place:");
    for (int i = 0; i < 9; i += 3)
        std::printf(" (%g, %g, %g)", cloud[i], cloud[i + 1], cloud[i + 2]);
    std::printf("\n");
}

ZUN_DEMO_SECTION(161, "Quaternions: a rotation and its matrix")
{
    const zunQuaternion turn = zunQuaternion::FromRotAnglesDeg(0.0, 0.0, 90.0);
    PrintQuaternion("90 degrees about Z", turn);
    PrintQuaternion("I * J", zunQuaternion::I * zunQuaternion::J);
    PrintPoint("(1, 0, 0) under its matrix", turn.GetRotMtx()(V4(1.0, 0.0, 0.0)));
    const zunQuaternion half = Pow(turn, 0.5);
    const zunVector3T<double> halfAngles = half.GetRotAnglesDeg();
    std::printf("  %-40s (%.4f, %.4f, %.4f) degrees\n", "Pow(turn, 0.5) as Euler angles", halfAngles.x, halfAngles.y,
                halfAngles.z);
    const zunQuaternion q(0.5, 0.1, 0.2, 0.3);
    PrintQuaternion("Log(Exp(q)) for q = (0.5, 0.1, 0.2, 0.3)", Log(Exp(q)));
    std::printf("  %-40s %s\n", "unit length within 1e-12?", turn.IsUnit(1e-12) ? "yes" : "no");
}

ZUN_DEMO_SECTION(162, "Slerp and squad along a path of keys")
{
    const zunSlerp slerp(zunQuaternion::Identity, zunQuaternion::FromRotAnglesDeg(0.0, 0.0, 120.0), zunSlerp::Shortest);
    for (double t : {0.0, 0.25, 0.5, 1.0})
        std::printf("  slerp at t = %.2f turns by %7.3f degrees about Z\n", t, slerp.Evaluate(t).GetRotAnglesDeg().z);

    zunFastMesh<zunQuaternion> keys;
    keys.Add(zunQuaternion::FromRotAnglesDeg(0.0, 0.0, 0.0));
    keys.Add(zunQuaternion::FromRotAnglesDeg(0.0, 45.0, 30.0));
    keys.Add(zunQuaternion::FromRotAnglesDeg(30.0, 60.0, 90.0));
    keys.Add(zunQuaternion::FromRotAnglesDeg(0.0, 0.0, 180.0));
    zunSquad squad(keys, zunSquad::Shortest);
    std::printf("  squad through four keys; where the X axis points:\n");
    for (unsigned int segment = 0; segment < 3; ++segment)
        for (double t : {0.0, 0.5})
        {
            const V4 x = Normalize(squad.Evaluate(t, segment)).GetRotMtx()(V4(1.0, 0.0, 0.0));
            std::printf("    segment %u, t = %.1f: (%7.4f, %7.4f, %7.4f)\n", segment, t, x.x, x.y, x.z);
        }
    const V4 end = Normalize(squad.Evaluate(1.0, 2)).GetRotMtx()(V4(1.0, 0.0, 0.0));
    std::printf("    segment 2, t = 1.0: (%7.4f, %7.4f, %7.4f), the last key\n", end.x, end.y, end.z);
}
