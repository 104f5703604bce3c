// zunPolyTess.h - one planar contour turned into triangles by the GLU tessellator.
//
// zunPolyTess drives GLU and hands each primitive it produces to a
// zunPolyTess_CB of the caller:
//
//   struct Collect : zunPolyTess_CB
//   {
//       void Begin(int kind) override { ... }        // Triangles, TriangleStrip or TriangleFan
//       void Vertex(void * data) override { ... }    // the data given with zunPolyTess::Vertex
//       void End() override { ... }
//   } collect;
//   zunPolyTess tess(collect);
//   tess.BeginPolygon();
//   for (int i = 0; i < count; ++i)
//       tess.Vertex(&corners[3 * i], &ids[i]);      // position points at x, y, z
//   tess.EndPolygon();                               // the callback runs in here
//
// The tessellator runs with GLU's defaults (odd winding rule, the normal GLU
// works out); there is no combine callback, so a contour that crosses itself is
// not split and GLU's complaint about it is dropped. GLU may deliver strips and
// fans as well as plain triangles.
//
// OpenGL errors. Before every GLU call the OpenGL error queue is drained (at
// most 10 reads of glGetError, their codes discarded). After it, one more
// glGetError; a non-zero code is an error of the call: the queue is drained
// again and "GetOpenGLError() - Error detected: '<gluErrorString(code)>'" is
// written to the debug print channel. Without a current OpenGL context
// glGetError says nothing and the class tessellates all the same.
//
// Results. BeginPolygon, Vertex and EndPolygon return TRUE WHEN AN OPENGL
// ERROR WAS DETECTED and false when all went well; they also return false at
// once, doing nothing, on an invalid object. Success can't be read from the
// bool: IsValid() and the log tell.
//
// One object, one thread: the tessellator is not thread-safe, and glGetError
// reads the calling thread's current context.
#ifndef ZUN_POLY_TESS_H
#define ZUN_POLY_TESS_H

#include "zunConfig.h"

class GLUtesselator;

/// Receives the primitives of a tessellated polygon, during EndPolygon.
class ZUN_API zunPolyTess_CB
{
public:
    /// The kinds of primitive Begin announces.
    enum Kind
    {
        Triangles = 0,
        TriangleStrip = 1,
        TriangleFan = 2
    };

    zunPolyTess_CB() = default;
    /// The receiver holds no state of its own: copies copy nothing.
    ///@{
    zunPolyTess_CB(zunPolyTess_CB const &) = default;
    zunPolyTess_CB & operator=(zunPolyTess_CB const &) = default;
    ///@}
    virtual ~zunPolyTess_CB();

    /// A primitive starts; kind is one of Kind.
    virtual void Begin(int kind) = 0;
    /// The next vertex of the primitive: the data pointer given with it.
    virtual void Vertex(void * data) = 0;
    /// The primitive ends.
    virtual void End() = 0;
};

/// A GLU tessellator for one contour per polygon, any number of polygons in turn.
class ZUN_API zunPolyTess
{
public:
    /// Makes the tessellator and registers the callbacks. If GLU can't make
    /// one, or registering reports an OpenGL error, the object is invalid
    /// (silently). `callback` is not owned and must outlive the object.
    zunPolyTess(zunPolyTess_CB & callback);
    /// The copy names the same tessellator and callback as `other`. The
    /// tessellator is deleted once, by the last of the objects naming it.
    zunPolyTess(zunPolyTess const & other);
    virtual ~zunPolyTess();

    /// The tessellator exists.
    bool IsValid();

    /// Starts a polygon and its one contour.
    bool BeginPolygon();
    /// Adds a corner at position (x, y, z); GLU copies the values, the float
    /// form after widening them to double. `data` is kept as it is and comes
    /// back through zunPolyTess_CB::Vertex during EndPolygon, so whatever it
    /// points at must live until then. False for an invalid object or when
    /// OpenGL reports an error after the call.
    ///@{
    bool Vertex(float const * const position, void * data);
    bool Vertex(double const * const position, void * data);
    ///@}
    /// Closes the contour and the polygon; the callback runs here. Returns
    /// false without ending the polygon if closing the contour reported an
    /// OpenGL error; otherwise the result of the check after GLU's work.
    bool EndPolygon();

private:
    GLUtesselator * tess;      ///< owned; null when the object is invalid
    zunPolyTess_CB & callback; ///< not owned
};

#endif // ZUN_POLY_TESS_H
