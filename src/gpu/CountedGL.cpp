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
struct State;

template <typename... Parameters, void (**Slot)(Parameters...)>
struct State<Slot>
{
    using Type = Counted<Slot, &countState<Parameters...>>;
};

template <auto Slot>
constexpr Entry state{State<Slot>::Type::install, State<Slot>::Type::restore};

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
    state<&glActiveTexture>,
    state<&glBindBuffer>,
    state<&glBindFramebuffer>,
    state<&glBindTexture>,
    state<&glBindVertexArray>,
    state<&glBlendEquation>,
    state<&glBlendFunc>,
    state<&glBlendFuncSeparate>,
    state<&glClearColor>,
    state<&glColorMask>,
    state<&glCullFace>,
    state<&glDepthFunc>,
    state<&glDepthMask>,
    state<&glDisable>,
    state<&glEnable>,
    state<&glFrontFace>,
    state<&glLineWidth>,
    state<&glPatchParameteri>,
    state<&glPointSize>,
    state<&glPolygonMode>,
    state<&glScissor>,
    state<&glStencilFunc>,
    state<&glStencilMask>,
    state<&glStencilOp>,
    state<&glUniform1f>,
    state<&glUniform1fv>,
    state<&glUniform1i>,
    state<&glUniform1iv>,
    state<&glUniform1ui>,
    state<&glUniform1uiv>,
    state<&glUniform2f>,
    state<&glUniform2fv>,
    state<&glUniform2i>,
    state<&glUniform2iv>,
    state<&glUniform2ui>,
    state<&glUniform2uiv>,
    state<&glUniform3f>,
    state<&glUniform3fv>,
    state<&glUniform3i>,
    state<&glUniform3iv>,
    state<&glUniform3ui>,
    state<&glUniform3uiv>,
    state<&glUniform4f>,
    state<&glUniform4fv>,
    state<&glUniform4i>,
    state<&glUniform4iv>,
    state<&glUniform4ui>,
    state<&glUniform4uiv>,
    state<&glUniformMatrix2fv>,
    state<&glUniformMatrix3fv>,
    state<&glUniformMatrix4fv>,
    state<&glUseProgram>,
    state<&glViewport>,
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
