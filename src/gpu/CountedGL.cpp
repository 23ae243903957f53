#include "CountedGL.h"

#include <epoxy/gl.h>

#include <type_traits>
#include <utility>

namespace gui::gl
{

namespace
{

CountedGL::Counts s_counts;
bool s_isInstalled = false;

template <typename... Parameters>
void countState(Parameters...)
{
    ++s_counts.nStates;
}

void countVertices(GLsizei count, GLsizei nInstances)
{
    ++s_counts.nDraws;
    if (count > 0 && nInstances > 0)
        s_counts.nVertices += static_cast<std::uint64_t>(count) * static_cast<std::uint64_t>(nInstances);
}

void countArrays(GLenum, GLint, GLsizei count) { countVertices(count, 1); }
void countArraysInstanced(GLenum, GLint, GLsizei count, GLsizei n) { countVertices(count, n); }
void countElements(GLenum, GLsizei count, GLenum, const void*) { countVertices(count, 1); }
void countElementsInstanced(GLenum, GLsizei count, GLenum, const void*, GLsizei n) { countVertices(count, n); }
void countElementsBase(GLenum, GLsizei count, GLenum, const void*, GLint) { countVertices(count, 1); }
void countRange(GLenum, GLuint, GLuint, GLsizei count, GLenum, const void*) { countVertices(count, 1); }

void countMultiElementsBase(GLenum, const GLsizei* counts, GLenum, const void* const*, GLsizei n, const GLint*)
{
    ++s_counts.nDraws;
    for (GLsizei i = 0; i < n; ++i)
        s_counts.nVertices += static_cast<std::uint64_t>(counts[i]);
}

void countBytes(std::uint64_t n, const void* data)
{
    ++s_counts.nUploads;
    if (data != nullptr)
        s_counts.nBytes += n;
}

void countBufferData(GLenum, GLsizeiptr size, const void* data, GLenum)
{
    countBytes(static_cast<std::uint64_t>(size), data);
}
void countBufferSubData(GLenum, GLintptr, GLsizeiptr size, const void* data)
{
    countBytes(static_cast<std::uint64_t>(size), data);
}

void countPixels(GLsizei width, GLsizei height, GLenum format, GLenum type, const void* data)
{
    const unsigned int nChannels = format == GL_RGBA || format == GL_BGRA ? 4
                                   : format == GL_RGB || format == GL_BGR ? 3
                                   : format == GL_RG                      ? 2
                                                                          : 1;
    const unsigned int nBytes = type == GL_FLOAT || type == GL_UNSIGNED_INT || type == GL_INT            ? 4
                                : type == GL_UNSIGNED_SHORT || type == GL_SHORT || type == GL_HALF_FLOAT ? 2
                                                                                                         : 1;
    countBytes(static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height) * nChannels * nBytes, data);
}
void countImage(GLenum, GLint, GLint, GLsizei width, GLsizei height, GLint, GLenum format, GLenum type,
                const void* data)
{
    countPixels(width, height, format, type, data);
}
void countSubImage(GLenum, GLint, GLint, GLint, GLsizei width, GLsizei height, GLenum format, GLenum type,
                   const void* data)
{
    countPixels(width, height, format, type, data);
}

/// Takes the place of an entry point. Slot: the address of the loader's pointer to it.
template <auto Slot, auto Count>
struct Counted;

template <typename... Parameters, void (**Slot)(Parameters...), void (*Count)(Parameters...)>
struct Counted<Slot, Count>
{
    static inline void (*s_loaded)(Parameters...) = nullptr;

    static void install()
    {
        if (*Slot != call)
            s_loaded = std::exchange(*Slot, call);
    }
    static void restore() { *Slot = s_loaded; }

    static void call(Parameters... parameters)
    {
        Count(parameters...);
        // On its first call the loader's pointer replaces itself and calls on through itself: it has to be back in its
        // place meanwhile, or it would call this function again, for ever.
        *Slot = s_loaded;
        (*Slot)(parameters...);
        // A debug callback of the driver may have stopped the counting, and begun it anew.
        if (s_isInstalled)
            install();
    }
};

struct Entry
{
    void (*install)();
    void (*restore)();
};

template <auto Slot, auto Count>
constexpr Entry counted{Counted<Slot, Count>::install, Counted<Slot, Count>::restore};

template <auto Slot>
struct StateCall;

template <typename... Parameters, void (**Slot)(Parameters...)>
struct StateCall<Slot>
{
    using Type = Counted<Slot, &countState<Parameters...>>;
};

template <auto Slot>
constexpr Entry stateCall{StateCall<Slot>::Type::install, StateCall<Slot>::Type::restore};

constexpr Entry cEntries[] = {
    counted<&glDrawArrays, &countArrays>,
    counted<&glDrawArraysInstanced, &countArraysInstanced>,
    counted<&glDrawElements, &countElements>,
    counted<&glDrawElementsBaseVertex, &countElementsBase>,
    counted<&glDrawElementsInstanced, &countElementsInstanced>,
    counted<&glDrawRangeElements, &countRange>,
    counted<&glMultiDrawElementsBaseVertex, &countMultiElementsBase>,
    counted<&glBufferData, &countBufferData>,
    counted<&glBufferSubData, &countBufferSubData>,
    counted<&glTexImage2D, &countImage>,
    counted<&glTexSubImage2D, &countSubImage>,
    stateCall<&glActiveTexture>,
    stateCall<&glBindBuffer>,
    stateCall<&glBindFramebuffer>,
    stateCall<&glBindTexture>,
    stateCall<&glBindVertexArray>,
    stateCall<&glBlendEquation>,
    stateCall<&glBlendFunc>,
    stateCall<&glBlendFuncSeparate>,
    stateCall<&glClearColor>,
    stateCall<&glColorMask>,
    stateCall<&glCullFace>,
    stateCall<&glDepthFunc>,
    stateCall<&glDepthMask>,
    stateCall<&glDisable>,
    stateCall<&glEnable>,
    stateCall<&glFrontFace>,
    stateCall<&glLineWidth>,
    stateCall<&glPatchParameteri>,
    stateCall<&glPointSize>,
    stateCall<&glPolygonMode>,
    stateCall<&glScissor>,
    stateCall<&glStencilFunc>,
    stateCall<&glStencilMask>,
    stateCall<&glStencilOp>,
    stateCall<&glUniform1f>,
    stateCall<&glUniform1fv>,
    stateCall<&glUniform1i>,
    stateCall<&glUniform1iv>,
    stateCall<&glUniform1ui>,
    stateCall<&glUniform1uiv>,
    stateCall<&glUniform2f>,
    stateCall<&glUniform2fv>,
    stateCall<&glUniform2i>,
    stateCall<&glUniform2iv>,
    stateCall<&glUniform2ui>,
    stateCall<&glUniform2uiv>,
    stateCall<&glUniform3f>,
    stateCall<&glUniform3fv>,
    stateCall<&glUniform3i>,
    stateCall<&glUniform3iv>,
    stateCall<&glUniform3ui>,
    stateCall<&glUniform3uiv>,
    stateCall<&glUniform4f>,
    stateCall<&glUniform4fv>,
    stateCall<&glUniform4i>,
    stateCall<&glUniform4iv>,
    stateCall<&glUniform4ui>,
    stateCall<&glUniform4uiv>,
    stateCall<&glUniformMatrix2fv>,
    stateCall<&glUniformMatrix3fv>,
    stateCall<&glUniformMatrix4fv>,
    stateCall<&glUseProgram>,
    stateCall<&glViewport>,
};

} // namespace

void CountedGL::install()
{
    s_isInstalled = true;
    for (const Entry& entry : cEntries)
        entry.install();
}

void CountedGL::restore()
{
    s_isInstalled = false;
    for (const Entry& entry : cEntries)
        entry.restore();
}

CountedGL::Counts& CountedGL::counts() { return s_counts; }

} // namespace gui::gl
