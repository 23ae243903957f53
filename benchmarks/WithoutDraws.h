#pragma once

#include <epoxy/gl.h>

#include <utility>

namespace bench
{

/// The driver's calls that draw triangles go nowhere while it lives: what is measured is the library.
class WithoutDraws
{
public:
    WithoutDraws()
        : _elements(std::exchange(epoxy_glDrawElements, noElements))
        , _instances(std::exchange(epoxy_glDrawElementsInstanced, noInstances))
        , _ranges(std::exchange(epoxy_glMultiDrawElementsBaseVertex, noRanges))
    {
    }
    ~WithoutDraws()
    {
        epoxy_glDrawElements = _elements;
        epoxy_glDrawElementsInstanced = _instances;
        epoxy_glMultiDrawElementsBaseVertex = _ranges;
    }
    WithoutDraws(const WithoutDraws&) = delete;
    WithoutDraws& operator=(const WithoutDraws&) = delete;

private:
    static void noElements(GLenum, GLsizei, GLenum, const void*) {}
    static void noInstances(GLenum, GLsizei, GLenum, const void*, GLsizei) {}
    static void noRanges(GLenum, const GLsizei*, GLenum, const void* const*, GLsizei, const GLint*) {}

    PFNGLDRAWELEMENTSPROC _elements;
    PFNGLDRAWELEMENTSINSTANCEDPROC _instances;
    PFNGLMULTIDRAWELEMENTSBASEVERTEXPROC _ranges;
};

} // namespace bench
