// Matrices, quaternions and squad: a camera placed with a matrix, its
// orientation keyed as quaternions, and a smooth turn through the keys, one
// frame at a time.
//
// Build and run:   cmake --build build --target example_rotations_along_a_path
//                  build/examples/rotations_along_a_path
#include <zunFoundation.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace
{
    using Point = zunVector4T<double>; // the library's 3-D type; w stays 1

    const Point Origin(0.0, 0.0, 0.0);
}

int main()
{
    // Composition: each Add* acts first on a point, in the frame that the
    // earlier operations set up. Here: move to (10, 0, 0), then turn 90
    // degrees about the local Z axis.
    zunMatrix44 placement;
    placement.AddTranslation(Point(10.0, 0.0, 0.0)).AddRotation(Point(0.0, 0.0, 90.0), Origin);
    const Point tip = placement(Point(1.0, 0.0, 0.0));
    std::printf("(1, 0, 0) placed:      (%.3f, %.3f, %.3f)\n", tip.x, tip.y, tip.z);

    // Inverting reports a singular matrix through its result.
    zunMatrix44 back;
    if (!placement.Invert(back))
        return EXIT_FAILURE;
    const Point home = back(tip);
    std::printf("and back again:        (%.3f, %.3f, %.3f)\n", home.x, home.y, home.z);

    // Point arrays are transformed in place; a stride of 3 means packed x, y, z.
    float triangle[] = {0.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f, 0.0f, 1.0f, 0.0f};
    placement.Transform(triangle, 3, 3);
    std::printf("triangle placed:       (%.3f, %.3f, %.3f) (%.3f, %.3f, %.3f) (%.3f, %.3f, %.3f)\n", triangle[0],
                triangle[1], triangle[2], triangle[3], triangle[4], triangle[5], triangle[6], triangle[7], triangle[8]);

    // Orientation keys of a camera as quaternions, built from the same Euler
    // angles (degrees) that AddRotation takes.
    zunFastMesh<zunQuaternion> keys;
    keys.Add(zunQuaternion::FromRotAnglesDeg(0.0, 0.0, 0.0));
    keys.Add(zunQuaternion::FromRotAnglesDeg(0.0, 0.0, 90.0));
    keys.Add(zunQuaternion::FromRotAnglesDeg(0.0, 90.0, 90.0));
    keys.Add(zunQuaternion::FromRotAnglesDeg(45.0, 90.0, 180.0));

    // A single slerp between two keys: constant angular speed.
    const zunSlerp firstTurn(keys[0], keys[1], zunSlerp::Shortest);
    const zunVector3T<double> halfway = firstTurn.Evaluate(0.5).GetRotAnglesDeg();
    std::printf("slerp halfway:         (%.1f, %.1f, %.1f) degrees\n", halfway.x, halfway.y, halfway.z);

    // Squad runs smoothly through every key. Segment n goes from key n to key
    // n + 1; Shortest flips keys so that no segment takes the long way round.
    // The squad caches the current segment, so walk it segment by segment.
    const unsigned int segments = keys.Count() - 1;
    zunSquad path(keys, zunSquad::Shortest); // takes a copy of the keys
    const int framesPerSegment = 4;
    for (unsigned int segment = 0; segment < segments; ++segment)
    {
        for (int frame = 0; frame < framesPerSegment; ++frame)
        {
            const double t = double(frame) / framesPerSegment;
            zunQuaternion q = path.Evaluate(t, segment);
            q.Normalize(); // results are not normalized; a rotation wants unit length
            const Point view = q.GetRotMtx()(Point(0.0, 0.0, -1.0)); // where the camera looks
            std::printf("segment %u, t %.2f: looks along (%6.3f, %6.3f, %6.3f)\n", segment, t, view.x, view.y, view.z);
        }
    }

    // At t = 1 of the last segment squad lands exactly on the last key (up to
    // the sign that Shortest may have given it).
    zunQuaternion last = path.Evaluate(1.0, segments - 1);
    const zunQuaternion & lastKey = path.keys[segments];
    const bool landed = last.Distance(lastKey) < 1e-9;
    std::printf("lands on the last key: %s\n", landed ? "yes" : "no");
    return landed && std::fabs(home.x - 1.0) < 1e-9 ? EXIT_SUCCESS : EXIT_FAILURE;
}
