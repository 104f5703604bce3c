// Polygon tessellation: zunPolyTess beside the same work done with raw GLU
// calls, for star-shaped (concave) polygons of 10 to 10^4 corners. Both run
// under a current off-screen OpenGL context, so the wrapper's error reads are
// real glGetError calls. The time is GLU's; the wrapper adds two error reads
// per call.
#include <benchmark/benchmark.h>

#include <GL/gl.h>
#include <GL/glu.h>
#include <GL/osmesa.h>

#include <cmath>
#include <vector>

#include <zunFoundation.h>

namespace
{
    struct Corner
    {
        double position[3];
    };

    std::vector<Corner> StarPolygon(int count)
    {
        std::vector<Corner> corners(count);
        for (int i = 0; i < count; ++i)
        {
            double angle = i * 2 * M_PI / count;
            double radius = (i % 2) ? 1.0 : 0.6 + 0.3 * std::sin(i * 0.37);
            corners[i] = {{radius * std::cos(angle), radius * std::sin(angle), 0.0}};
        }
        return corners;
    }

    /// Makes an off-screen context current for the program's lifetime.
    struct OffScreenContext
    {
        OffScreenContext()
        {
            context = OSMesaCreateContextExt(OSMESA_RGBA, 16, 0, 0, nullptr);
            if (context)
                OSMesaMakeCurrent(context, pixels.data(), GL_UNSIGNED_BYTE, 4, 4);
        }
        ~OffScreenContext()
        {
            if (context)
                OSMesaDestroyContext(context);
        }
        OSMesaContext context = nullptr;
        std::vector<unsigned char> pixels = std::vector<unsigned char>(4 * 4 * 4);
    };
    OffScreenContext g_context;

    /// What both sides do with each delivered vertex.
    struct Counter : zunPolyTess_CB
    {
        long primitives = 0, vertices = 0;
        void Begin(int) override { ++primitives; }
        void Vertex(void *) override { ++vertices; }
        void End() override {}
    };

    void BM_PolyTess(benchmark::State & state)
    {
        std::vector<Corner> corners = StarPolygon(static_cast<int>(state.range(0)));
        Counter counter;
        zunPolyTess tess(counter);
        for (auto _ : state)
        {
            tess.BeginPolygon();
            for (auto & corner : corners)
                tess.Vertex(corner.position, &corner);
            tess.EndPolygon();
        }
        benchmark::DoNotOptimize(counter.vertices);
        state.SetItemsProcessed(state.iterations() * state.range(0));
    }

    void GLAPIENTRY RawBegin(GLenum, void * counter)
    {
        ++static_cast<Counter *>(counter)->primitives;
    }
    void GLAPIENTRY RawVertex(void *, void * counter)
    {
        ++static_cast<Counter *>(counter)->vertices;
    }
    void GLAPIENTRY RawEnd(void *) {}
    void GLAPIENTRY RawError(GLenum) {}

    void BM_RawGLU(benchmark::State & state)
    {
        std::vector<Corner> corners = StarPolygon(static_cast<int>(state.range(0)));
        Counter counter;
        GLUtesselator * tess = gluNewTess();
        gluTessCallback(tess, GLU_TESS_BEGIN_DATA, reinterpret_cast<_GLUfuncptr>(&RawBegin));
        gluTessCallback(tess, GLU_TESS_VERTEX_DATA, reinterpret_cast<_GLUfuncptr>(&RawVertex));
        gluTessCallback(tess, GLU_TESS_END_DATA, reinterpret_cast<_GLUfuncptr>(&RawEnd));
        gluTessCallback(tess, GLU_TESS_ERROR, reinterpret_cast<_GLUfuncptr>(&RawError));
        for (auto _ : state)
        {
            gluTessBeginPolygon(tess, &counter);
            gluTessBeginContour(tess);
            for (auto & corner : corners)
                gluTessVertex(tess, corner.position, &corner);
            gluTessEndContour(tess);
            gluTessEndPolygon(tess);
        }
        gluDeleteTess(tess);
        benchmark::DoNotOptimize(counter.vertices);
        state.SetItemsProcessed(state.iterations() * state.range(0));
    }
}

BENCHMARK(BM_PolyTess)->RangeMultiplier(10)->Range(10, 10000);
BENCHMARK(BM_RawGLU)->RangeMultiplier(10)->Range(10, 10000);
