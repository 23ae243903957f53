#pragma once

#include <epoxy/gl.h>

#include <climits>

namespace gui::gl
{

/// What commands need to know of the buffer whose vertex array is bound.
struct ActiveBuffer
{
    static constexpr unsigned int cNotInstanced = UINT_MAX;

    unsigned int indexType = GL_UNSIGNED_INT;
    unsigned int indexShift = 2; // from a number of indices to bytes
    unsigned int nVertices = 0;
    unsigned int nIndices = 0;
    unsigned int isIndexed = 0;
    unsigned int nInstances = cNotInstanced;
};

inline ActiveBuffer s_activeBuffer;
/// The one in a context that is lost, until another takes its place.
inline ActiveBuffer s_activeBufferBefore;

} // namespace gui::gl
