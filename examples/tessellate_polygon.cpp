// Tessellating a polygon: an L-shaped outline (not convex) turned into
// triangles that a renderer can draw, with the primitives GLU hands out
// (plain triangles, strips and fans) unrolled into one triangle list.
//
// The tessellator needs no OpenGL context: without one, OpenGL's error queue
// stays silent and the triangles come out all the same. In an application a
// context is usually current, and OpenGL errors are then logged to the debug
// print channel.
//
// Build and run:   cmake --build build --target example_tessellate_polygon
//                  build/examples/tessellate_polygon
#include <zunFoundation.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

namespace
{
    // Receives the primitives during EndPolygon and collects triangles as
    // triples of corner indices.
    class TriangleList : public zunPolyTess_CB
    {
    public:
        std::vector<int> indices; // three per triangle

        void Begin(int kind) override
        {
            m_kind = kind;
            m_primitive.clear();
        }

        // `data` is the pointer passed with each corner to zunPolyTess::Vertex.
        void Vertex(void * data) override { m_primitive.push_back(*static_cast<const int *>(data)); }

        void End() override
        {
            const std::vector<int> & v = m_primitive;
            for (size_t i = 2; i < v.size(); ++i)
            {
                switch (m_kind)
                {
                case Triangles:
                    if (i % 3 == 2)
                        Emit(v[i - 2], v[i - 1], v[i]);
                    break;
                case TriangleStrip: // every other triangle is wound the other way
                    if (i % 2 == 0)
                        Emit(v[i - 2], v[i - 1], v[i]);
                    else
                        Emit(v[i - 1], v[i - 2], v[i]);
                    break;
                case TriangleFan:
                    Emit(v[0], v[i - 1], v[i]);
                    break;
                }
            }
        }

    private:
        void Emit(int a, int b, int c) { indices.insert(indices.end(), {a, b, c}); }

        int m_kind = Triangles;
        std::vector<int> m_primitive;
    };
}

int main()
{
    // The outline, counter-clockwise in the XY plane: six corners of an L.
    const double corners[][3] = {{0, 0, 0}, {4, 0, 0}, {4, 1, 0}, {1, 1, 0}, {1, 3, 0}, {0, 3, 0}};
    const int ids[] = {0, 1, 2, 3, 4, 5}; // what comes back through the callback: must live until EndPolygon

    TriangleList triangles;
    zunPolyTess tess(triangles); // the callback object must outlive the tessellator
    if (!tess.IsValid())
    {
        std::fprintf(stderr, "no tessellator available\n");
        return EXIT_FAILURE;
    }

    // One contour per polygon. The bool results say "an OpenGL error was
    // detected", not "it worked".
    tess.BeginPolygon();
    for (int i = 0; i < 6; ++i)
        tess.Vertex(corners[i], const_cast<int *>(&ids[i]));
    tess.EndPolygon(); // the callbacks run in here

    // An L of six corners makes four triangles covering its area of 6.
    double area = 0.0;
    const size_t count = triangles.indices.size() / 3;
    for (size_t t = 0; t < count; ++t)
    {
        const double * a = corners[triangles.indices[3 * t]];
        const double * b = corners[triangles.indices[3 * t + 1]];
        const double * c = corners[triangles.indices[3 * t + 2]];
        const double signedArea = ((b[0] - a[0]) * (c[1] - a[1]) - (c[0] - a[0]) * (b[1] - a[1])) / 2.0;
        std::printf("triangle %zu: corners %d %d %d, area %.2f\n", t, triangles.indices[3 * t],
                    triangles.indices[3 * t + 1], triangles.indices[3 * t + 2], signedArea);
        area += signedArea;
    }
    std::printf("%zu triangles, total area %.2f\n", count, area);

    // The same tessellator takes the next polygon.
    return count == 4 && area == 6.0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
