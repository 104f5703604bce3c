// Demo sections of the geometry family: rectangles and polygon tessellation.
#include <zunFoundation.h>

#include <cmath>
#include <cstdio>
#include <vector>

#include "DemoSection.h"

namespace
{
    template <typename T> void PrintRect(const char * label, zunRectangleT<T> const & r)
    {
        std::printf("  %-34s (%g, %g, %g, %g)\n", label, double(r.left), double(r.top), double(r.width),
                    double(r.height));
    }

    /// A coordinate without its rounding dust, so that -1e-17 prints as 0.
    double Rounded(double v)
    {
        return std::fabs(v) < 1e-12 ? 0.0 : v;
    }

    /// Prints the primitives GLU hands back, by corner name.
    struct PrintTriangles : zunPolyTess_CB
    {
        int triangles = 0;
        std::vector<const char *> current;
        int kind = 0;

        void Begin(int kind_) override
        {
            static const char * const kinds[] = {"triangles", "triangle strip", "triangle fan"};
            kind = kind_;
            current.clear();
            std::printf("  %s:", kinds[kind]);
        }
        void Vertex(void * data) override
        {
            current.push_back(static_cast<const char *>(data));
            std::printf(" %s", current.back());
        }
        void End() override
        {
            int n = static_cast<int>(current.size());
            triangles += kind == zunPolyTess_CB::Triangles ? n / 3 : n - 2;
            std::printf("\n");
        }
    };
}

ZUN_DEMO_SECTION(210, "Rectangles")
{
    typedef zunRectangleT<int> Rect;
    Rect view(0, 0, 640, 480);
    Rect window(600, 400, 100, 100);
    PrintRect("view", view);
    PrintRect("window", window);
    PrintRect("view & window", view & window);
    PrintRect("view | window", view | window);
    PrintRect("(10,10,-10,-10) normalized", Rect(10, 10, -10, -10).Normalized());
    PrintRect("(10,10,20,20) inflated by (1,2)", Rect(10, 10, 20, 20).Inflated(1, 2));
    std::printf("  inflating is one-sided: right edge stays at %d\n", Rect(10, 10, 20, 20).Inflated(1, 2).Right());
    std::printf("  view contains (640, 480): %s; (641, 480): %s\n", view.Contains(640, 480) ? "yes" : "no",
                view.Contains(641, 480) ? "yes" : "no");
    std::printf("  touching rectangles intersect: %s\n", view.Intersects(Rect(640, 0, 10, 10)) ? "yes" : "no");
    PrintRect("(0,0,10,10) CenteredIn(view, Both)", Rect(0, 0, 10, 10).CenteredIn(view, Rect::Both));
    std::printf("  (the offset runs from the outer center to this one: the move goes away from it)\n");
    zunVector2T<double> c = zunRectangleT<double>(0, 0, -3, -3).Center();
    std::printf("  center of (0,0,-3,-3): int (%d, %d), double (%g, %g)\n", Rect(0, 0, -3, -3).Center().x,
                Rect(0, 0, -3, -3).Center().y, c.x, c.y);
}

ZUN_DEMO_SECTION(211, "Polygon tessellation")
{
    // A block with a notch cut into its top at D: concave, so GLU has to cut it right.
    static const char * const names[] = {"A", "B", "C", "D", "E"};
    double corners[5][3] = {{0, 0, 0}, {6, 0, 0}, {6, 4, 0}, {3, 1, 0}, {0, 4, 0}};
    std::printf("  contour A(0,0) B(6,0) C(6,4) D(3,1) E(0,4), no OpenGL context needed\n");

    PrintTriangles printer;
    zunPolyTess tess(printer);
    std::printf("  tessellator made: %s\n", tess.IsValid() ? "yes" : "no");
    bool error = tess.BeginPolygon();
    for (int i = 0; i < 5; ++i)
        error |= tess.Vertex(corners[i], const_cast<char *>(names[i]));
    error |= tess.EndPolygon(); // the primitives are printed in here
    std::printf("  %d triangles, OpenGL errors: %s\n", printer.triangles, error ? "yes" : "none");
}

ZUN_DEMO_SECTION(212, "Bounding boxes")
{
    typedef zunVector4T<double> V4;
    zunBBox box;
    std::printf("  a fresh box is cleared: invalid %s, min.x %g, max.x %g\n", box.IsInvalid() ? "yes" : "no", box.min.x,
                box.max.x);
    V4 corners[3] = {V4(0, 0, 0), V4(2, 1, 0), V4(1, 3, 1)};
    box.Extend(corners, 3, nullptr);
    std::printf("  after three points: (%g, %g, %g) - (%g, %g, %g), diagonal %.4f\n", box.min.x, box.min.y, box.min.z,
                box.max.x, box.max.y, box.max.z, box.GetDiagonal());

    zunMatrix44 turn;
    turn.AddTranslation(V4(10, 0, 0)).AddRotation(V4(0, 0, 45), V4(0, 0, 0));
    zunBBox turned;
    turn.Transform(box, &turned);
    std::printf("  under a 45 degree turn and a move by 10 along x it grows:\n"
                "    (%.3f, %.3f, %.3f) - (%.3f, %.3f, %.3f)\n",
                turned.min.x, turned.min.y, turned.min.z, turned.max.x, turned.max.y, turned.max.z);

    zunBBox other;
    other.Set(V4(2, 0, 0), V4(4, 4, 4));
    zunBBox common = box;
    bool overlap = common.Intersect(other);
    std::printf("  touching in a face: Intersect says %s and leaves a flat box, DX = %g\n", overlap ? "true" : "false",
                common.DX());
    zunBBox inverted;
    inverted.Set(V4(1, 1, 1), V4(0.5, 0.5, 0.5));
    std::printf("  a box inverted by 0.5 still counts as valid (%s), DX = %g\n", inverted.IsInvalid() ? "no" : "yes",
                inverted.DX());
    double low = 0, high = 0;
    box.GetExtentAlongRay(zunRay(V4(-5, 0, 0), V4(2, 0, 0)), low, high);
    std::printf("  along a ray from (-5, 0, 0) stepping (2, 0, 0) it spans t = %g .. %g\n", low, high);
}

ZUN_DEMO_SECTION(213, "Geometry queries")
{
    typedef zunVector4T<double> V4;
    V4 first, second;
    if (zunIntersectLineSphere(V4(0, 0, 0), 2, V4(-5, 0, 0), V4(2, 0, 0), first, second))
        std::printf("  line through a sphere of radius 2: enters at x = %g, leaves at x = %g\n", second.x, first.x);

    double tp = 0, tq = 0;
    V4 middle;
    zunIntersect3DLines(V4(0, 0, 0), V4(1, 0, 0), V4(5, 1, 1), V4(0, 1, 0), &tp, &tq, &middle);
    std::printf("  two skew lines: tp = %g, tq = %g, middle of the gap (%g, %g, %g)\n", tp, tq, middle.x, middle.y,
                middle.z);

    V4 center;
    double radius = 0;
    if (zunCircleThru3Pts(V4(1, 0, 0), V4(0, 1, 0), V4(-1, 0, 0), &center, &radius))
        std::printf("  circle through (1,0,0) (0,1,0) (-1,0,0): center (%.0f, %.0f, %.0f), radius %g\n",
                    Rounded(center.x), Rounded(center.y), Rounded(center.z), radius);

    V4 hit;
    bool inside = zunIntersectLineTriangle(V4(0.2, 0.2, 1), V4(0, 0, -1), V4(0, 0, 0), V4(1, 0, 0), V4(0, 1, 0), hit);
    std::printf("  line onto a triangle: plane hit (%g, %g, %g); the bool says %s, so callers read the point\n", hit.x,
                hit.y, hit.z, inside ? "true" : "false");

    const zunVector2T<double> curve[] = {{0, 0}, {1, 10}, {2, 0}, {3, 5}};
    std::printf("  piecewise-linear table at 0.5, 2.5 and 9: %g, %g, %g\n", zunInterpolatePWL(curve, 4, 0.5),
                zunInterpolatePWL(curve, 4, 2.5), zunInterpolatePWL(curve, 4, 9));
}
