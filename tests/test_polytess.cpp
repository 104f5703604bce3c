// zunPolyTess over the real GLU, with and without a real off-screen OpenGL
// context.
//
// The program puts its own glGetError, gluNewTess and the gluTess* calls in
// front of the real ones (the library binds to the first definition in the
// process, which is the executable's). Each records the call and forwards it,
// so the tests see the exact sequence of drains, GLU calls and checks. The
// glGetError stand-in can also hand out injected codes ahead of the real
// queue: an OpenGL implementation keeps at most one flag per error code, so a
// queue of eleven pending errors can only be made that way.
#include <gtest/gtest.h>

#include <GL/gl.h>
#include <GL/glu.h>
#include <GL/osmesa.h>

#include <dlfcn.h>

#include <array>
#include <cmath>
#include <deque>
#include <map>
#include <random>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

#include <zunFoundation.h>

#include "ChannelCapture.h"

namespace
{
    struct GLTrace
    {
        std::vector<std::string> calls;
        std::deque<GLenum> injected;                         // handed out by glGetError before the real queue
        std::map<std::string, std::vector<GLenum>> errorsOf; // a GLU call that "raises" these codes, once
        bool failNewTess = false;
        std::map<GLenum, _GLUfuncptr> callbacks; // what gluTessCallback registered
        std::vector<GLenum> callbackOrder;

        void Reset() { *this = GLTrace(); }
        void Record(const char * name)
        {
            calls.emplace_back(name);
            auto raised = errorsOf.find(name);
            if (raised != errorsOf.end())
            {
                injected.insert(injected.end(), raised->second.begin(), raised->second.end());
                errorsOf.erase(raised);
            }
        }
        int Count(const std::string & name) const
        {
            int n = 0;
            for (auto & call : calls)
                n += call == name;
            return n;
        }
        std::string Joined() const
        {
            std::string all;
            for (auto & call : calls)
                all += (all.empty() ? "" : " ") + call;
            return all;
        }
    };
    GLTrace g_trace;

    template <typename F> F Real(const char * name)
    {
        void * symbol = dlsym(RTLD_NEXT, name);
        if (!symbol)
            std::abort();
        return reinterpret_cast<F>(symbol);
    }
}

extern "C"
{
    // The off-screen GL implementation keeps the framebuffer it makes in
    // OSMesaMakeCurrent after the context is gone; that is its own affair,
    // and every other allocation is still checked for leaks.
    const char * __lsan_default_suppressions()
    {
        return "leak:libOSMesa.so\n";
    }

    GLenum GLAPIENTRY glGetError(void)
    {
        static auto real = Real<GLenum(GLAPIENTRY *)(void)>("glGetError");
        g_trace.calls.emplace_back("err");
        if (!g_trace.injected.empty())
        {
            GLenum code = g_trace.injected.front();
            g_trace.injected.pop_front();
            return code;
        }
        return real();
    }

    GLUtesselator * GLAPIENTRY gluNewTess(void)
    {
        static auto real = Real<GLUtesselator *(GLAPIENTRY *)(void)>("gluNewTess");
        g_trace.Record("new");
        return g_trace.failNewTess ? nullptr : real();
    }

    void GLAPIENTRY gluDeleteTess(GLUtesselator * tess)
    {
        static auto real = Real<void(GLAPIENTRY *)(GLUtesselator *)>("gluDeleteTess");
        real(tess);
        g_trace.Record("delete");
    }

    void GLAPIENTRY gluTessCallback(GLUtesselator * tess, GLenum which, _GLUfuncptr function)
    {
        static auto real = Real<void(GLAPIENTRY *)(GLUtesselator *, GLenum, _GLUfuncptr)>("gluTessCallback");
        real(tess, which, function);
        g_trace.callbacks[which] = function;
        g_trace.callbackOrder.push_back(which);
        g_trace.Record("callback");
    }

    void GLAPIENTRY gluTessBeginPolygon(GLUtesselator * tess, GLvoid * data)
    {
        static auto real = Real<void(GLAPIENTRY *)(GLUtesselator *, GLvoid *)>("gluTessBeginPolygon");
        real(tess, data);
        g_trace.Record("beginPolygon");
    }

    void GLAPIENTRY gluTessBeginContour(GLUtesselator * tess)
    {
        static auto real = Real<void(GLAPIENTRY *)(GLUtesselator *)>("gluTessBeginContour");
        real(tess);
        g_trace.Record("beginContour");
    }

    void GLAPIENTRY gluTessVertex(GLUtesselator * tess, GLdouble * location, GLvoid * data)
    {
        static auto real = Real<void(GLAPIENTRY *)(GLUtesselator *, GLdouble *, GLvoid *)>("gluTessVertex");
        real(tess, location, data);
        g_trace.Record("vertex");
    }

    void GLAPIENTRY gluTessEndContour(GLUtesselator * tess)
    {
        static auto real = Real<void(GLAPIENTRY *)(GLUtesselator *)>("gluTessEndContour");
        real(tess);
        g_trace.Record("endContour");
    }

    void GLAPIENTRY gluTessEndPolygon(GLUtesselator * tess)
    {
        static auto real = Real<void(GLAPIENTRY *)(GLUtesselator *)>("gluTessEndPolygon");
        g_trace.calls.emplace_back("endPolygon{");
        real(tess);
        g_trace.Record("}");
    }
}

namespace
{
    const std::string kDrainedEmpty = "err"; // a drain that finds the queue empty reads once

    /// Records what the tessellator delivers, and whether it came during EndPolygon.
    struct Recorder : zunPolyTess_CB
    {
        struct Primitive
        {
            int kind;
            std::vector<void *> vertices;
            bool ended = false;
        };
        std::vector<Primitive> primitives;

        void Begin(int kind) override
        {
            primitives.push_back({kind, {}});
            g_trace.calls.emplace_back("Begin");
        }
        void Vertex(void * data) override
        {
            if (primitives.empty() || primitives.back().ended)
                primitives.push_back({-1, {}}); // a vertex outside Begin/End shows as kind -1
            primitives.back().vertices.push_back(data);
            g_trace.calls.emplace_back("Vertex");
        }
        void End() override
        {
            if (!primitives.empty())
                primitives.back().ended = true;
            g_trace.calls.emplace_back("End");
        }
    };

    struct Corner
    {
        double position[3];
    };

    /// The triangles of the delivered primitives, as corner triples.
    std::vector<std::array<const Corner *, 3>> Triangles(const Recorder & recorder)
    {
        std::vector<std::array<const Corner *, 3>> triangles;
        for (auto & primitive : recorder.primitives)
        {
            auto v = [&](size_t i) { return static_cast<const Corner *>(primitive.vertices[i]); };
            for (size_t i = 2; i < primitive.vertices.size(); ++i)
            {
                if ((primitive.kind == zunPolyTess_CB::Triangles && i % 3 == 2) ||
                    primitive.kind == zunPolyTess_CB::TriangleStrip)
                    triangles.push_back({v(i - 2), v(i - 1), v(i)});
                else if (primitive.kind == zunPolyTess_CB::TriangleFan)
                    triangles.push_back({v(0), v(i - 1), v(i)});
            }
        }
        return triangles;
    }

    double TriangleArea(const std::array<const Corner *, 3> & t)
    {
        const double * a = t[0]->position;
        const double * b = t[1]->position;
        const double * c = t[2]->position;
        return std::fabs((b[0] - a[0]) * (c[1] - a[1]) - (c[0] - a[0]) * (b[1] - a[1])) * 0.5;
    }

    double TessellatedArea(const Recorder & recorder)
    {
        double area = 0.0;
        for (auto & triangle : Triangles(recorder))
            area += TriangleArea(triangle);
        return area;
    }

    double ShoelaceArea(const std::vector<Corner> & corners)
    {
        double twice = 0.0;
        for (size_t i = 0; i < corners.size(); ++i)
        {
            const double * p = corners[i].position;
            const double * q = corners[(i + 1) % corners.size()].position;
            twice += p[0] * q[1] - q[0] * p[1];
        }
        return std::fabs(twice) * 0.5;
    }

    /// Begins a polygon and gives it the corners; true when a call reported an error.
    bool BeginAndFeed(zunPolyTess & tess, std::vector<Corner> & corners)
    {
        bool error = tess.BeginPolygon();
        for (auto & corner : corners)
            error |= tess.Vertex(corner.position, &corner);
        return error;
    }

    /// Runs one polygon through `tess`; true when no call reported an error.
    bool Tessellate(zunPolyTess & tess, std::vector<Corner> & corners)
    {
        bool error = BeginAndFeed(tess, corners);
        error |= tess.EndPolygon();
        return !error;
    }

    std::vector<Corner> Polygon(std::initializer_list<std::pair<double, double>> points)
    {
        std::vector<Corner> corners;
        for (auto & p : points)
            corners.push_back({{p.first, p.second, 0.0}});
        return corners;
    }

    /// An off-screen OpenGL context, current for the test's lifetime.
    class WithContext : public ::testing::Test
    {
    protected:
        void SetUp() override
        {
            context = OSMesaCreateContextExt(OSMESA_RGBA, 16, 0, 0, nullptr);
            ASSERT_NE(context, nullptr);
            ASSERT_TRUE(OSMesaMakeCurrent(context, pixels.data(), GL_UNSIGNED_BYTE, 4, 4));
            ASSERT_NE(OSMesaGetCurrentContext(), nullptr);
            while (glGetError() != GL_NO_ERROR)
            {
            }
            g_trace.Reset();
        }
        void TearDown() override
        {
            OSMesaMakeCurrent(nullptr, nullptr, 0, 0, 0);
            OSMesaDestroyContext(context);
            g_trace.Reset();
        }

        /// Leaves GL_INVALID_ENUM pending in the real error queue.
        static void RaiseRealError() { glEnable(0x7FFF); }

        OSMesaContext context = nullptr;
        std::vector<unsigned char> pixels = std::vector<unsigned char>(4 * 4 * 4);
    };

    class WithoutContext : public ::testing::Test
    {
    protected:
        void SetUp() override
        {
            ASSERT_EQ(OSMesaGetCurrentContext(), nullptr);
            g_trace.Reset();
        }
        void TearDown() override { g_trace.Reset(); }
    };

    std::string ErrorLine(GLenum code)
    {
        return std::string("GetOpenGLError() - Error detected: '") +
               reinterpret_cast<const char *>(gluErrorString(code)) + "'\n";
    }
}

// --- the callback base ----------------------------------------------------------

TEST(PolyTessCallback, KindsHaveTheirNumbers)
{
    EXPECT_EQ(zunPolyTess_CB::Triangles, 0);
    EXPECT_EQ(zunPolyTess_CB::TriangleStrip, 1);
    EXPECT_EQ(zunPolyTess_CB::TriangleFan, 2);
    EXPECT_TRUE(std::is_abstract<zunPolyTess_CB>::value);
    EXPECT_TRUE(std::has_virtual_destructor<zunPolyTess_CB>::value);
    Recorder a, b(a);
    a = b;
    EXPECT_TRUE(a.primitives.empty());
}

// --- with a real context ----------------------------------------------------------

TEST_F(WithContext, ConstructionRegistersTheFourCallbacksInOrder)
{
    Recorder recorder;
    zunPolyTess tess(recorder);
    EXPECT_TRUE(tess.IsValid());
    EXPECT_EQ(g_trace.Joined(), "err new callback callback callback callback err");
    ASSERT_EQ(g_trace.callbackOrder.size(), 4u);
    EXPECT_EQ(g_trace.callbackOrder[0], 100106u); // begin with polygon data
    EXPECT_EQ(g_trace.callbackOrder[1], 100107u); // vertex with polygon data
    EXPECT_EQ(g_trace.callbackOrder[2], 100108u); // end with polygon data
    EXPECT_EQ(g_trace.callbackOrder[3], 100103u); // error
}

TEST_F(WithContext, NoErrorsMeansEveryCallReturnsFalse)
{
    Recorder recorder;
    zunPolyTess tess(recorder);
    double corners[4][3] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
    EXPECT_FALSE(tess.BeginPolygon());
    for (auto & corner : corners)
        EXPECT_FALSE(tess.Vertex(corner, corner));
    EXPECT_FALSE(tess.EndPolygon());
    EXPECT_FALSE(recorder.primitives.empty());
}

TEST_F(WithContext, EachCallIsDrainedBeforeAndCheckedAfter)
{
    Recorder recorder;
    zunPolyTess tess(recorder);
    g_trace.Reset();
    double corner[3] = {0, 0, 0};
    tess.BeginPolygon();
    EXPECT_EQ(g_trace.Joined(), "err beginPolygon beginContour err");
    g_trace.Reset();
    tess.Vertex(corner, nullptr);
    EXPECT_EQ(g_trace.Joined(), "err vertex err");
    g_trace.Reset();
    tess.EndPolygon();
    EXPECT_EQ(g_trace.Joined(), "err endContour err endPolygon{ } err");
}

TEST_F(WithContext, ASquareThroughTheFloatFormDeliversItsFourDataPointers)
{
    Recorder recorder;
    zunPolyTess tess(recorder);
    float square[4][3] = {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}};
    int ids[4] = {0, 1, 2, 3};
    EXPECT_FALSE(tess.BeginPolygon());
    for (int i = 0; i < 4; ++i)
    {
        float scratch[3] = {square[i][0], square[i][1], square[i][2]};
        EXPECT_FALSE(tess.Vertex(scratch, &ids[i]));
        scratch[0] = scratch[1] = 1e6f; // the class copied the values: the floats need not stay
    }
    EXPECT_TRUE(recorder.primitives.empty()); // nothing is delivered before EndPolygon
    g_trace.Reset();
    EXPECT_FALSE(tess.EndPolygon());

    // Every delivery happened inside gluTessEndPolygon, as Begin, Vertex..., End.
    std::string calls = g_trace.Joined();
    size_t open = calls.find("endPolygon{"), close = calls.find(" }");
    ASSERT_NE(open, std::string::npos);
    EXPECT_EQ(calls.find("Begin"), open + std::string("endPolygon{ ").size());
    EXPECT_EQ(calls.rfind("End") + 3, close);

    std::set<void *> seen;
    size_t delivered = 0;
    for (auto & primitive : recorder.primitives)
    {
        EXPECT_GE(primitive.kind, 0);
        EXPECT_LE(primitive.kind, 2);
        EXPECT_TRUE(primitive.ended);
        for (void * data : primitive.vertices)
            seen.insert(data);
        delivered += primitive.vertices.size();
    }
    EXPECT_EQ(seen, (std::set<void *>{&ids[0], &ids[1], &ids[2], &ids[3]}));
    EXPECT_GE(delivered, 4u);
}

TEST_F(WithContext, AConcavePolygonCoversExactlyItsArea)
{
    // An arrow head pointing right, with its notch at (2, 2).
    std::vector<Corner> arrow = Polygon({{0, 0}, {6, 2}, {0, 4}, {2, 2}});
    Recorder recorder;
    zunPolyTess tess(recorder);
    ASSERT_TRUE(Tessellate(tess, arrow));
    EXPECT_EQ(Triangles(recorder).size(), 2u);
    EXPECT_NEAR(TessellatedArea(recorder), ShoelaceArea(arrow), 1e-12);
    EXPECT_NEAR(TessellatedArea(recorder), 8.0, 1e-12);
    for (auto & triangle : Triangles(recorder)) // the notch (1, 2) is outside
    {
        double cx = (triangle[0]->position[0] + triangle[1]->position[0] + triangle[2]->position[0]) / 3;
        EXPECT_GT(cx, 1.0);
    }
}

TEST_F(WithContext, AHoleMadeByCollinearPointsIsLeftOpen)
{
    // One contour: the outer square counter-clockwise, in along the bridge y = 5,
    // round the hole clockwise, and back out along the same bridge.
    std::vector<Corner> ring =
        Polygon({{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 5}, {3, 5}, {3, 7}, {7, 7}, {7, 3}, {3, 3}, {3, 5}, {0, 5}});
    Recorder recorder;
    zunPolyTess tess(recorder);
    ASSERT_TRUE(Tessellate(tess, ring));
    EXPECT_NEAR(TessellatedArea(recorder), 100.0 - 16.0, 1e-9);
    for (auto & triangle : Triangles(recorder))
    {
        double cx = 0, cy = 0;
        for (auto * corner : triangle)
        {
            cx += corner->position[0] / 3;
            cy += corner->position[1] / 3;
        }
        EXPECT_FALSE(cx > 3 && cx < 7 && cy > 3 && cy < 7) << "a triangle inside the hole at " << cx << ", " << cy;
    }
}

TEST_F(WithContext, AnObjectServesPolygonsOneAfterTheOther)
{
    Recorder recorder;
    zunPolyTess tess(recorder);
    std::vector<Corner> first = Polygon({{0, 0}, {1, 0}, {0, 1}});
    std::vector<Corner> second = Polygon({{0, 0}, {4, 0}, {4, 4}, {0, 4}});
    ASSERT_TRUE(Tessellate(tess, first));
    EXPECT_NEAR(TessellatedArea(recorder), 0.5, 1e-12);
    recorder.primitives.clear();
    ASSERT_TRUE(Tessellate(tess, second));
    EXPECT_NEAR(TessellatedArea(recorder), 16.0, 1e-12);
}

TEST_F(WithContext, TheContextKeepsARealErrorUntilItIsRead)
{
    RaiseRealError();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_ENUM));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(WithContext, APendingErrorIsDrainedBeforeTheCall)
{
    Recorder recorder;
    zunPolyTess tess(recorder);
    ChannelCapture channel;
    RaiseRealError();
    EXPECT_FALSE(tess.BeginPolygon());
    double corner[3] = {0, 0, 0};
    RaiseRealError();
    EXPECT_FALSE(tess.Vertex(corner, nullptr));
    RaiseRealError();
    EXPECT_FALSE(tess.EndPolygon());
    EXPECT_EQ(channel.Text(), "");
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(WithContext, ARealPendingErrorBeforeConstructionIsDrainedToo)
{
    RaiseRealError();
    Recorder recorder;
    zunPolyTess tess(recorder);
    EXPECT_TRUE(tess.IsValid());
}

TEST_F(WithContext, TheDrainStopsAfterTenReadsAndTheEleventhCounts)
{
    Recorder recorder;
    zunPolyTess tess(recorder);
    g_trace.Reset();
    g_trace.injected.assign(11, GL_INVALID_VALUE);
    ChannelCapture channel;
    EXPECT_TRUE(tess.BeginPolygon());
    EXPECT_EQ(channel.Text(), ErrorLine(GL_INVALID_VALUE));
    // ten drain reads, the calls, the check that finds the eleventh, and the
    // drain after it, which reads the now empty queue once.
    std::string tenReads;
    for (int i = 0; i < 10; ++i)
        tenReads += "err ";
    EXPECT_EQ(g_trace.Joined(), tenReads + "beginPolygon beginContour err err");
    EXPECT_TRUE(g_trace.injected.empty());
    // The state stays: the next call tries again and succeeds.
    double corner[3] = {0, 0, 0};
    EXPECT_FALSE(tess.Vertex(corner, nullptr));
}

TEST_F(WithContext, TenPendingErrorsAreAllDrained)
{
    Recorder recorder;
    zunPolyTess tess(recorder);
    g_trace.injected.assign(10, GL_INVALID_OPERATION);
    double corner[3] = {0, 0, 0};
    EXPECT_FALSE(tess.BeginPolygon());
    EXPECT_FALSE(tess.Vertex(corner, nullptr));
}

TEST_F(WithContext, AnErrorOfTheCallIsLoggedAndDrainedAfter)
{
    Recorder recorder;
    zunPolyTess tess(recorder);
    g_trace.Reset();
    g_trace.errorsOf["vertex"] = {GL_OUT_OF_MEMORY};
    tess.BeginPolygon();
    double corner[3] = {0, 0, 0};
    ChannelCapture channel;
    EXPECT_TRUE(tess.Vertex(corner, nullptr));
    EXPECT_EQ(channel.Text(), "GetOpenGLError() - Error detected: '" +
                                  std::string(reinterpret_cast<const char *>(gluErrorString(GL_OUT_OF_MEMORY))) +
                                  "'\n");
}

TEST_F(WithContext, TheDrainAfterAnErrorAlsoStopsAtTen)
{
    Recorder recorder;
    zunPolyTess tess(recorder);
    tess.BeginPolygon();
    g_trace.Reset();
    g_trace.errorsOf["vertex"] = std::vector<GLenum>(13, GL_INVALID_ENUM);
    double corner[3] = {0, 0, 0};
    ChannelCapture channel;
    EXPECT_TRUE(tess.Vertex(corner, nullptr));
    EXPECT_EQ(channel.Text(), ErrorLine(GL_INVALID_ENUM));
    // the empty drain before, the check, then ten drain reads: two codes stay.
    EXPECT_EQ(g_trace.Count("err"), 1 + 1 + 10);
    EXPECT_EQ(g_trace.injected.size(), 2u);
}

TEST_F(WithContext, AnErrorClosingTheContourSkipsTheEndOfThePolygon)
{
    Recorder recorder;
    zunPolyTess tess(recorder);
    std::vector<Corner> square = Polygon({{0, 0}, {1, 0}, {1, 1}, {0, 1}});
    BeginAndFeed(tess, square);
    g_trace.Reset();
    g_trace.errorsOf["endContour"] = {GL_INVALID_OPERATION};
    ChannelCapture channel;
    EXPECT_FALSE(tess.EndPolygon()); // the early error path returns false as well
    EXPECT_EQ(channel.Text(), ErrorLine(GL_INVALID_OPERATION));
    EXPECT_EQ(g_trace.Count("endPolygon{"), 0);
    EXPECT_TRUE(recorder.primitives.empty());
}

TEST_F(WithContext, AnErrorAfterTheEndOfThePolygonIsReportedAsTrue)
{
    Recorder recorder;
    zunPolyTess tess(recorder);
    std::vector<Corner> square = Polygon({{0, 0}, {1, 0}, {1, 1}, {0, 1}});
    BeginAndFeed(tess, square);
    g_trace.errorsOf["}"] = {GL_INVALID_VALUE};
    ChannelCapture channel;
    EXPECT_TRUE(tess.EndPolygon());
    EXPECT_EQ(channel.Text(), ErrorLine(GL_INVALID_VALUE));
    EXPECT_FALSE(recorder.primitives.empty()); // the callback ran all the same
}

TEST_F(WithContext, AnErrorWhileRegisteringMakesTheObjectInvalid)
{
    g_trace.injected.assign(11, GL_INVALID_ENUM); // the drain takes ten, the check the eleventh
    Recorder recorder;
    ChannelCapture channel;
    {
        zunPolyTess tess(recorder);
        EXPECT_FALSE(tess.IsValid());
        EXPECT_EQ(g_trace.Count("delete"), 1);
        g_trace.Reset();
        double corner[3] = {0, 0, 0};
        EXPECT_FALSE(tess.BeginPolygon());
        EXPECT_FALSE(tess.Vertex(corner, nullptr));
        EXPECT_FALSE(tess.EndPolygon());
    }
    EXPECT_EQ(channel.Text(), ErrorLine(GL_INVALID_ENUM));
    EXPECT_TRUE(g_trace.calls.empty()); // an invalid object calls nothing, destructor included
}

TEST_F(WithContext, AnObjectWhoseTessellatorCouldNotBeMade)
{
    g_trace.failNewTess = true;
    Recorder recorder;
    ChannelCapture channel;
    {
        zunPolyTess tess(recorder);
        EXPECT_EQ(g_trace.Joined(), "err new"); // no callbacks, no check
        EXPECT_FALSE(tess.IsValid());
        g_trace.Reset();
        double corner[3] = {0, 0, 0};
        float floats[3] = {0, 0, 0};
        EXPECT_FALSE(tess.BeginPolygon());
        EXPECT_FALSE(tess.Vertex(corner, nullptr));
        EXPECT_FALSE(tess.Vertex(floats, nullptr));
        EXPECT_FALSE(tess.Vertex(static_cast<const float *>(nullptr), nullptr)); // not even read
        EXPECT_FALSE(tess.EndPolygon());
        EXPECT_TRUE(g_trace.calls.empty());
    }
    EXPECT_TRUE(g_trace.calls.empty()); // the destructor calls nothing
    EXPECT_EQ(channel.Text(), "");      // silent
    EXPECT_TRUE(recorder.primitives.empty());
}

TEST_F(WithContext, TheDestructorDrainsAroundTheDelete)
{
    Recorder recorder;
    {
        zunPolyTess tess(recorder);
        g_trace.Reset();
    }
    EXPECT_EQ(g_trace.Joined(), "err delete err");
}

TEST_F(WithContext, ACopyNamesTheSameTessellatorWhichIsDeletedOnce)
{
    // Copying a live object leaves two names for one tessellator; the library
    // counts them so that only the last destructor deletes it.
    Recorder recorder;
    std::vector<Corner> square = Polygon({{0, 0}, {3, 0}, {3, 3}, {0, 3}});
    {
        zunPolyTess original(recorder);
        {
            zunPolyTess copy(original);
            zunPolyTess copyOfCopy(copy);
            EXPECT_TRUE(copy.IsValid());
            // A polygon begun through one name continues through the other.
            copy.BeginPolygon();
            for (auto & corner : square)
                original.Vertex(corner.position, &corner);
            EXPECT_FALSE(copyOfCopy.EndPolygon());
            EXPECT_NEAR(TessellatedArea(recorder), 9.0, 1e-12);
            g_trace.Reset();
        }
        EXPECT_EQ(g_trace.Count("delete"), 0);
        recorder.primitives.clear();
        ASSERT_TRUE(Tessellate(original, square)); // still alive
        EXPECT_NEAR(TessellatedArea(recorder), 9.0, 1e-12);
        g_trace.Reset();
    }
    EXPECT_EQ(g_trace.Count("delete"), 1);
}

TEST_F(WithContext, ACopyOfAnInvalidObjectIsInvalid)
{
    g_trace.failNewTess = true;
    Recorder recorder;
    zunPolyTess tess(recorder);
    zunPolyTess copy(tess);
    EXPECT_FALSE(copy.IsValid());
}

TEST_F(WithContext, TheThunksMapKindsAndIgnoreANullCallback)
{
    Recorder recorder;
    zunPolyTess tess(recorder);
    auto begin = reinterpret_cast<void(GLAPIENTRY *)(GLenum, void *)>(g_trace.callbacks[GLU_TESS_BEGIN_DATA]);
    auto vertex = reinterpret_cast<void(GLAPIENTRY *)(void *, void *)>(g_trace.callbacks[GLU_TESS_VERTEX_DATA]);
    auto end = reinterpret_cast<void(GLAPIENTRY *)(void *)>(g_trace.callbacks[GLU_TESS_END_DATA]);
    auto error = reinterpret_cast<void(GLAPIENTRY *)(GLenum)>(g_trace.callbacks[GLU_TESS_ERROR]);
    ASSERT_TRUE(begin && vertex && end && error);

    int marker = 0;
    begin(GL_TRIANGLES, &recorder);
    begin(GL_TRIANGLE_STRIP, &recorder);
    begin(GL_TRIANGLE_FAN, &recorder);
    begin(GL_LINE_LOOP, &recorder); // any other type calls nothing
    begin(GL_POLYGON, &recorder);
    vertex(&marker, &recorder);
    end(&recorder);
    ASSERT_EQ(recorder.primitives.size(), 3u);
    EXPECT_EQ(recorder.primitives[0].kind, 0);
    EXPECT_EQ(recorder.primitives[1].kind, 1);
    EXPECT_EQ(recorder.primitives[2].kind, 2);
    EXPECT_EQ(recorder.primitives[2].vertices, std::vector<void *>{&marker});
    EXPECT_TRUE(recorder.primitives[2].ended);

    g_trace.Reset();
    begin(GL_TRIANGLES, nullptr);
    vertex(&marker, nullptr);
    end(nullptr);
    error(GLU_TESS_NEED_COMBINE_CALLBACK);
    EXPECT_TRUE(g_trace.calls.empty());
    EXPECT_EQ(recorder.primitives.size(), 3u);
}

TEST_F(WithContext, ASelfCrossingContourIsNotSplitAndGoesOnQuietly)
{
    // A bow tie needs a new vertex where its edges cross; with no combine
    // callback GLU reports to the error callback, which drops it.
    std::vector<Corner> bowTie = Polygon({{0, 0}, {2, 2}, {2, 0}, {0, 2}});
    Recorder recorder;
    zunPolyTess tess(recorder);
    ChannelCapture channel;
    EXPECT_TRUE(Tessellate(tess, bowTie));
    EXPECT_EQ(channel.Text(), "");
    // The object is still usable afterwards.
    std::vector<Corner> triangle = Polygon({{0, 0}, {1, 0}, {0, 1}});
    recorder.primitives.clear();
    ASSERT_TRUE(Tessellate(tess, triangle));
    EXPECT_NEAR(TessellatedArea(recorder), 0.5, 1e-12);
}

TEST_F(WithContext, TessellatedAreaEqualsTheShoelaceAreaOfRandomSimplePolygons)
{
    // Star-shaped polygons around the origin: corners at sorted angles with
    // random radii are simple, and concave wherever a radius dips.
    std::mt19937 random(20240613);
    std::uniform_real_distribution<double> radius(0.5, 10.0), jitter(0.05, 0.95);
    Recorder recorder;
    zunPolyTess tess(recorder);
    for (int round = 0; round < 200; ++round)
    {
        int count = 3 + static_cast<int>(random() % 60);
        std::vector<Corner> corners;
        for (int i = 0; i < count; ++i)
        {
            double angle = (i + jitter(random)) * 2 * M_PI / count;
            double r = radius(random);
            corners.push_back({{r * std::cos(angle), r * std::sin(angle), 0.0}});
        }
        recorder.primitives.clear();
        ASSERT_TRUE(Tessellate(tess, corners));
        double expected = ShoelaceArea(corners);
        EXPECT_NEAR(TessellatedArea(recorder), expected, 1e-9 * expected) << "round " << round;
        EXPECT_EQ(Triangles(recorder).size(), static_cast<size_t>(count - 2)) << "round " << round;
    }
}

// --- without a context ----------------------------------------------------------

TEST_F(WithoutContext, TheClassStillTessellates)
{
    Recorder recorder;
    zunPolyTess tess(recorder);
    EXPECT_TRUE(tess.IsValid());
    std::vector<Corner> arrow = Polygon({{0, 0}, {6, 2}, {0, 4}, {2, 2}});
    ChannelCapture channel;
    EXPECT_TRUE(Tessellate(tess, arrow));
    EXPECT_EQ(channel.Text(), "");
    EXPECT_NEAR(TessellatedArea(recorder), 8.0, 1e-12);
}

TEST_F(WithoutContext, ErrorReadsFindNothing)
{
    Recorder recorder;
    zunPolyTess tess(recorder);
    g_trace.Reset();
    EXPECT_FALSE(tess.BeginPolygon());
    EXPECT_EQ(g_trace.Joined(), "err beginPolygon beginContour err");
    float corner[3] = {1, 2, 3};
    EXPECT_FALSE(tess.Vertex(corner, nullptr));
    EXPECT_FALSE(tess.EndPolygon());
}
