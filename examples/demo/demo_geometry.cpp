// Demo sections of the geometry family: rectangles and polygon tessellation.
#include <zunFoundation.h>

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
