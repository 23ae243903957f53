#pragma once

#include <epoxy/gl.h>

namespace gui::gl
{

/// A draw of triangles.
struct TriangleDraw
{
    GLenum mode;
    GLint first; ///< vertex, where there are no indices
    GLsizei count;
    bool isIndexed = false;
    GLenum indexType = GL_UNSIGNED_INT;
    const void* offset = nullptr; ///< of indices
    GLsizei nInstances = 0;       ///< 0 without
};

inline bool isOfTriangles(GLenum mode) { return mode >= GL_TRIANGLES && mode <= GL_TRIANGLE_FAN; }

/// Draws the triangles' sides or corners, as s_trianglesAs says: what OpenGL ES has no state for. Where there are
/// indices, it waits for the GPU to read them. @return true
bool drawOutlined(const TriangleDraw& draw);

} // namespace gui::gl
