#include "EmptyGL.h"

#include <gui/gl/CurrentContext.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <type_traits>
#include <utility>

namespace bench
{

namespace
{

/// Swaps one entry point. Slot: the address of the loader's pointer to it.
template <auto Slot, auto Function>
struct Entry
{
    static inline std::remove_pointer_t<decltype(Slot)> s_loaded = nullptr;

    static void install() { s_loaded = std::exchange(*Slot, Function); }
    static void restore() { *Slot = s_loaded; }
};

template <auto Slot>
struct Ignored;

/// An entry point that does nothing and, when it has a result, answers 1.
template <typename Result, typename... Parameters, Result (**Slot)(Parameters...)>
struct Ignored<Slot>
{
    static Result call(Parameters...)
    {
        if constexpr (!std::is_void_v<Result>)
            return 1;
    }
    using Swap = Entry<Slot, &call>;
};

void nameOne(GLsizei n, GLuint* names) { std::fill_n(names, n, 1u); }

void answerSixteen(GLenum, GLint* value) { *value = 16; }

void succeed(GLuint, GLenum, GLint* value) { *value = GL_TRUE; }

struct Slot
{
    void (*install)();
    void (*restore)();
};

template <auto S>
constexpr Slot ignored{Ignored<S>::Swap::install, Ignored<S>::Swap::restore};

template <auto S, auto Function>
constexpr Slot answered{Entry<S, Function>::install, Entry<S, Function>::restore};

constexpr Slot cSlots[] = {
    // making objects
    answered<&glGenBuffers, &nameOne>,
    answered<&glGenTextures, &nameOne>,
    answered<&glGenVertexArrays, &nameOne>,
    answered<&glGetIntegerv, &answerSixteen>,
    answered<&glGetProgramiv, &succeed>,
    answered<&glGetShaderiv, &succeed>,
    ignored<&glAttachShader>,
    ignored<&glBindBuffer>,
    ignored<&glBufferData>,
    ignored<&glBufferSubData>,
    ignored<&glCompileShader>,
    ignored<&glCopyBufferSubData>,
    ignored<&glCreateProgram>,
    ignored<&glCreateShader>,
    ignored<&glDeleteBuffers>,
    ignored<&glDeleteProgram>,
    ignored<&glDeleteShader>,
    ignored<&glDeleteTextures>,
    ignored<&glDeleteVertexArrays>,
    ignored<&glEnableVertexAttribArray>,
    ignored<&glGenerateMipmap>,
    ignored<&glGetUniformLocation>,
    ignored<&glLinkProgram>,
    ignored<&glShaderSource>,
    ignored<&glTexImage2D>,
    ignored<&glTexParameteri>,
    ignored<&glVertexAttribDivisor>,
    ignored<&glVertexAttribPointer>,
    // drawing
    ignored<&glActiveTexture>,
    ignored<&glBindTexture>,
    ignored<&glBindVertexArray>,
    ignored<&glBlendFunc>,
    ignored<&glDisable>,
    ignored<&glDrawArrays>,
    ignored<&glDrawArraysInstanced>,
    ignored<&glDrawElements>,
    ignored<&glDrawElementsInstanced>,
    ignored<&glEnable>,
    ignored<&glUniform1f>,
    ignored<&glUniform1i>,
    ignored<&glUniform3fv>,
    ignored<&glUniform4fv>,
    ignored<&glUniformMatrix4fv>,
    ignored<&glUseProgram>,
};

} // namespace

EmptyGL::EmptyGL()
{
    for (const Slot& slot : cSlots)
        slot.install();
    gui::gl::CurrentContext::set(this);
}

EmptyGL::~EmptyGL()
{
    gui::gl::CurrentContext::died(this);
    for (const Slot& slot : cSlots)
        slot.restore();
}

} // namespace bench
