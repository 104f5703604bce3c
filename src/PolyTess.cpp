// zunPolyTess: the GLU tessellator with its four callbacks, and the OpenGL
// error queue drained before and checked after every GLU call.
#include "zunPolyTess.h"

#include <GL/gl.h>
#include <GL/glu.h>

#include <mutex>
#include <unordered_map>

#include "zunDebugPrint.h"

namespace
{
    /// Empties the OpenGL error queue, reading it 10 times at the most; what
    /// it reads is discarded.
    void DrainGLErrors()
    {
        for (int reads = 0; reads < 10; ++reads)
        {
            if (glGetError() == GL_NO_ERROR)
                return;
        }
    }

    /// Reads the error of the GLU call just made. A non-zero code is drained
    /// after and logged through the debug print channel; the result is true when an error was found.
    bool CheckGLError()
    {
        GLenum code = glGetError();
        if (code == GL_NO_ERROR)
            return false;
        DrainGLErrors();
        const GLubyte * text = gluErrorString(code);
        zunDprintf("GetOpenGLError() - Error detected: '%s'\n", text ? reinterpret_cast<const char *>(text) : "(null)");
        return true;
    }

    // The polygon data GLU hands back is the zunPolyTess_CB given to
    // gluTessBeginPolygon; a null one receives nothing.

    void GLAPIENTRY BeginThunk(GLenum type, void * polygonData)
    {
        zunPolyTess_CB * callback = static_cast<zunPolyTess_CB *>(polygonData);
        if (!callback)
            return;
        switch (type)
        {
        case GL_TRIANGLES:
            callback->Begin(zunPolyTess_CB::Triangles);
            break;
        case GL_TRIANGLE_STRIP:
            callback->Begin(zunPolyTess_CB::TriangleStrip);
            break;
        case GL_TRIANGLE_FAN:
            callback->Begin(zunPolyTess_CB::TriangleFan);
            break;
        default:
            break;
        }
    }

    void GLAPIENTRY VertexThunk(void * vertexData, void * polygonData)
    {
        if (zunPolyTess_CB * callback = static_cast<zunPolyTess_CB *>(polygonData))
            callback->Vertex(vertexData);
    }

    void GLAPIENTRY EndThunk(void * polygonData)
    {
        if (zunPolyTess_CB * callback = static_cast<zunPolyTess_CB *>(polygonData))
            callback->End();
    }

    /// Tessellator complaints (a contour that crosses itself and would need a
    /// combine callback, among others) are dropped on purpose.
    void GLAPIENTRY IgnoreTessError(GLenum) {}

    // Copying a live zunPolyTess leaves two objects naming one tessellator,
    // and each destructor would delete it. To keep that safe, the extra names
    // of a tessellator are counted here and only the last name deletes it.
    // Objects that were never copied have no entry.
    class SharedTessellators
    {
    public:
        static void AddName(GLUtesselator * tess)
        {
            std::lock_guard<std::mutex> lock(Mutex());
            ++ExtraNames()[tess];
        }

        /// True when `tess` had no other name left, so the caller deletes it.
        static bool DropName(GLUtesselator * tess)
        {
            std::lock_guard<std::mutex> lock(Mutex());
            auto & extra = ExtraNames();
            auto found = extra.find(tess);
            if (found == extra.end())
                return true;
            if (--found->second == 0)
                extra.erase(found);
            return false;
        }

    private:
        // Never destroyed, so that objects living in static storage can still
        // drop their names while the library unloads.
        static std::mutex & Mutex()
        {
            static std::mutex * mutex = new std::mutex;
            return *mutex;
        }
        static std::unordered_map<GLUtesselator *, unsigned int> & ExtraNames()
        {
            static auto * names = new std::unordered_map<GLUtesselator *, unsigned int>;
            return *names;
        }
    };
}

zunPolyTess_CB::~zunPolyTess_CB() = default;

zunPolyTess::zunPolyTess(zunPolyTess_CB & callback_) : tess(nullptr), callback(callback_)
{
    DrainGLErrors();
    tess = gluNewTess();
    if (!tess)
        return;
    gluTessCallback(tess, GLU_TESS_BEGIN_DATA, reinterpret_cast<_GLUfuncptr>(&BeginThunk));
    gluTessCallback(tess, GLU_TESS_VERTEX_DATA, reinterpret_cast<_GLUfuncptr>(&VertexThunk));
    gluTessCallback(tess, GLU_TESS_END_DATA, reinterpret_cast<_GLUfuncptr>(&EndThunk));
    gluTessCallback(tess, GLU_TESS_ERROR, reinterpret_cast<_GLUfuncptr>(&IgnoreTessError));
    if (CheckGLError())
    {
        gluDeleteTess(tess);
        tess = nullptr;
    }
}

zunPolyTess::zunPolyTess(zunPolyTess const & other) : tess(other.tess), callback(other.callback)
{
    // Both objects now name the same tessellator (see SharedTessellators).
    if (tess)
        SharedTessellators::AddName(tess);
}

zunPolyTess::~zunPolyTess()
{
    if (!tess || !SharedTessellators::DropName(tess))
        return;
    DrainGLErrors();
    gluDeleteTess(tess);
    DrainGLErrors();
}

bool zunPolyTess::IsValid()
{
    return tess != nullptr;
}

bool zunPolyTess::BeginPolygon()
{
    if (!tess)
        return false;
    DrainGLErrors();
    gluTessBeginPolygon(tess, &callback);
    gluTessBeginContour(tess);
    return CheckGLError();
}

bool zunPolyTess::Vertex(double const * const position, void * data)
{
    if (!tess)
        return false;
    DrainGLErrors();
    // GLU takes a non-const pointer but only reads the three values.
    gluTessVertex(tess, const_cast<GLdouble *>(position), data);
    return CheckGLError();
}

bool zunPolyTess::Vertex(float const * const position, void * data)
{
    if (!tess)
        return false;
    double widened[3] = {position[0], position[1], position[2]};
    return Vertex(widened, data);
}

bool zunPolyTess::EndPolygon()
{
    if (!tess)
        return false;
    DrainGLErrors();
    gluTessEndContour(tess);
    if (CheckGLError())
        return false;
    gluTessEndPolygon(tess);
    return CheckGLError();
}
