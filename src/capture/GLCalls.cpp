#include "GLCalls.h"

#include <epoxy/gl.h>

#include <cstdlib>
#include <cstring>
#include <type_traits>
#include <utility>

namespace gui::gl
{

namespace
{

static_assert(sizeof(void*) == 8, "offsets and sizes are written with 64 bits");

template <typename T>
CallArgument toArgument(T value)
{
    CallArgument argument;
    if constexpr (std::is_pointer_v<T>)
        argument.pointer = value;
    else if constexpr (std::is_floating_point_v<T>)
        argument.real = static_cast<double>(value);
    else
        argument.integer = static_cast<std::int64_t>(value);
    return argument;
}

template <typename T>
T fromArgument(const CallArgument& argument)
{
    if constexpr (std::is_pointer_v<T>)
        return static_cast<T>(const_cast<void*>(argument.pointer));
    else if constexpr (std::is_floating_point_v<T>)
        return static_cast<T>(argument.real);
    else
        return static_cast<T>(argument.integer);
}

/// Takes the place of an entry point. Slot: the address of the loader's pointer to it.
template <auto Slot>
struct Described;

template <typename... Parameters, void (**Slot)(Parameters...)>
struct Described<Slot>
{
    static constexpr std::size_t cParameters = sizeof...(Parameters);
    static_assert(cParameters <= GLCall::cMostArguments);

    static inline void (*s_loaded)(Parameters...) = nullptr;
    static inline const GLCall* s_pCall = nullptr; // while it is installed

    static void install(const GLCall& described)
    {
        s_pCall = &described;
        takePlace();
    }
    // Somebody who took the place since goes on through this one, which then only passes calls on.
    static void restore()
    {
        s_pCall = nullptr;
        if (*Slot == call)
            *Slot = s_loaded;
    }
    static void takePlace()
    {
        if (*Slot == call)
            return;
        s_loaded = *Slot;
        *Slot = call;
    }

    static void call(Parameters... parameters)
    {
        const std::array<CallArgument, cParameters + 1> values{toArgument(parameters)..., CallArgument{}};
        const CallArguments arguments(values.data(), cParameters);
        if (s_pCall != nullptr && CallListener::s_pCurrent != nullptr)
            CallListener::s_pCurrent->before(*s_pCall, arguments);
        // On its first call the loader's pointer replaces itself and calls on through itself: it has to be back in its
        // place meanwhile, or it would call this function again, for ever.
        *Slot = s_loaded;
        (*Slot)(parameters...);
        if (s_pCall != nullptr)
            takePlace();
        if (s_pCall != nullptr && CallListener::s_pCurrent != nullptr)
            CallListener::s_pCurrent->after(*s_pCall, arguments);
    }

    template <std::size_t... i>
    static void invoke([[maybe_unused]] CallArguments arguments, std::index_sequence<i...>)
    {
        (*Slot)(fromArgument<Parameters>(arguments[i])...);
    }
    static void invokeAll(CallArguments arguments) { invoke(arguments, std::index_sequence_for<Parameters...>()); }
};

struct Needs
{
    int version = 32;
    const char* extension = nullptr;
};

template <auto Slot>
constexpr GLCall plain(const char* name, const char* signature, GLCall::Bytes bytes = nullptr, Needs needs = {},
                       GLCall::Role role = GLCall::Role::Plain, GLCall::Kind kind = GLCall::Kind::None)
{
    using Call = Described<Slot>;
    return {name, signature,       role,          kind,         bytes, needs.version, needs.extension,
            Slot, Call::invokeAll, Call::install, Call::restore};
}

template <auto Slot>
constexpr GLCall draw(const char* name, const char* signature, GLCall::Bytes bytes = nullptr)
{
    return plain<Slot>(name, signature, bytes, {}, GLCall::Role::Draw);
}

template <auto Slot>
constexpr GLCall heard(const char* name, const char* signature)
{
    return plain<Slot>(name, signature, nullptr, {}, GLCall::Role::Heard);
}

std::optional<std::uint64_t> product(std::int64_t n, std::uint64_t nBytes)
{
    constexpr std::int64_t cMost = std::int64_t(1) << 40;
    return n < 0 || n > cMost ? std::nullopt : std::optional(static_cast<std::uint64_t>(n) * nBytes);
}

// As many as an argument says, so many bytes each.
template <std::size_t count, std::uint64_t nBytes>
std::optional<std::uint64_t> counted(CallArguments arguments, std::size_t, const PixelStore&)
{
    return product(arguments[count].integer, nBytes);
}
template <std::uint64_t nBytes>
constexpr GLCall::Bytes cVectors = counted<1, nBytes>;

template <auto Slot>
constexpr GLCall generate(const char* name, GLCall::Kind kind)
{
    return plain<Slot>(name, "in", counted<0, 4>, {}, GLCall::Role::Generate, kind);
}

template <auto Slot>
constexpr GLCall remove(const char* name, GLCall::Kind kind)
{
    return plain<Slot>(name, "in", counted<0, 4>, {}, GLCall::Role::Delete, kind);
}

// Colours are four numbers, depth and stencil one.
std::optional<std::uint64_t> clearValue(CallArguments arguments, std::size_t, const PixelStore&)
{
    return arguments[0].integer == GL_COLOR ? 16 : 4;
}

std::optional<std::uint64_t> image(CallArguments arguments, std::size_t, const PixelStore& store)
{
    return bytesOfImage(arguments[3].integer, arguments[4].integer, arguments[6].integer, arguments[7].integer, store);
}

std::optional<std::uint64_t> partOfImage(CallArguments arguments, std::size_t, const PixelStore& store)
{
    return bytesOfImage(arguments[4].integer, arguments[5].integer, arguments[6].integer, arguments[7].integer, store);
}

// Counts, offsets, base vertices.
std::optional<std::uint64_t> manyElements(CallArguments arguments, std::size_t i, const PixelStore&)
{
    return product(arguments[4].integer, i == 3 ? 8 : 4);
}

std::optional<std::uint64_t> written(CallArguments arguments, std::size_t i, const PixelStore&)
{
    return arguments[i].nBytes;
}

constexpr GLCall note(const char* name, const char* signature, GLCall::Kind kind = GLCall::Kind::None)
{
    return {name, signature, GLCall::Role::Note, kind, written, 0, nullptr, nullptr, nullptr, nullptr, nullptr};
}

const GLCall cCalls[] = {
    // A program with its shaders, which replaces another of its name.
    note("guiglProgram", "Pp", GLCall::Kind::Program),
    note("guiglDeleteProgram", "P", GLCall::Kind::Program),
    // The command behind the calls that follow: number of the list, of the command in it and of commands in all of it.
    note("guiglCommand", "uuu"),
    // Where the next draw was called: texts, a line for each caller.
    note("guiglCallers", "p"),
    plain<&glActiveTexture>("glActiveTexture", "e"),
    plain<&glBindBuffer>("glBindBuffer", "eB"),
    plain<&glBindFramebuffer>("glBindFramebuffer", "eF"),
    plain<&glBindRenderbuffer>("glBindRenderbuffer", "eR"),
    plain<&glBindTexture>("glBindTexture", "eT"),
    plain<&glBindVertexArray>("glBindVertexArray", "A"),
    plain<&glBlendColor>("glBlendColor", "ffff"),
    plain<&glBlendEquation>("glBlendEquation", "e"),
    plain<&glBlendEquationSeparate>("glBlendEquationSeparate", "ee"),
    plain<&glBlendFunc>("glBlendFunc", "ee"),
    plain<&glBlendFuncSeparate>("glBlendFuncSeparate", "eeee"),
    draw<&glBlitFramebuffer>("glBlitFramebuffer", "iiiiiiiice"),
    plain<&glBufferData>("glBufferData", "ezqe", counted<1, 1>),
    plain<&glBufferSubData>("glBufferSubData", "ezzp", counted<2, 1>),
    draw<&glClear>("glClear", "c"),
    draw<&glClearBufferfv>("glClearBufferfv", "eip", clearValue),
    draw<&glClearBufferiv>("glClearBufferiv", "eip", clearValue),
    draw<&glClearBufferuiv>("glClearBufferuiv", "eip", clearValue),
    draw<&glClearBufferfi>("glClearBufferfi", "eifi"),
    plain<&glClearColor>("glClearColor", "ffff"),
    plain<&glClearDepth>("glClearDepth", "d"),
    plain<&glClearStencil>("glClearStencil", "i"),
    plain<&glClipControl>("glClipControl", "ee", nullptr, {45, "GL_ARB_clip_control"}),
    plain<&glColorMask>("glColorMask", "bbbb"),
    plain<&glColorMaski>("glColorMaski", "ubbbb"),
    plain<&glCopyBufferSubData>("glCopyBufferSubData", "eezzz"),
    plain<&glCullFace>("glCullFace", "e"),
    remove<&glDeleteBuffers>("glDeleteBuffers", GLCall::Kind::Buffer),
    remove<&glDeleteFramebuffers>("glDeleteFramebuffers", GLCall::Kind::Framebuffer),
    remove<&glDeleteRenderbuffers>("glDeleteRenderbuffers", GLCall::Kind::Renderbuffer),
    remove<&glDeleteTextures>("glDeleteTextures", GLCall::Kind::Texture),
    remove<&glDeleteVertexArrays>("glDeleteVertexArrays", GLCall::Kind::VertexArray),
    plain<&glDepthFunc>("glDepthFunc", "e"),
    plain<&glDepthMask>("glDepthMask", "b"),
    plain<&glDepthRange>("glDepthRange", "dd"),
    plain<&glDisable>("glDisable", "e"),
    plain<&glDisableVertexAttribArray>("glDisableVertexAttribArray", "u"),
    draw<&glDrawArrays>("glDrawArrays", "mii"),
    draw<&glDrawArraysInstanced>("glDrawArraysInstanced", "miii"),
    plain<&glDrawBuffer>("glDrawBuffer", "e"),
    plain<&glDrawBuffers>("glDrawBuffers", "ip", counted<0, 4>),
    draw<&glDrawElements>("glDrawElements", "mieo"),
    draw<&glDrawElementsBaseVertex>("glDrawElementsBaseVertex", "mieoi"),
    draw<&glDrawElementsInstanced>("glDrawElementsInstanced", "mieoi"),
    draw<&glDrawRangeElements>("glDrawRangeElements", "muuieo"),
    plain<&glEnable>("glEnable", "e"),
    plain<&glEnableVertexAttribArray>("glEnableVertexAttribArray", "u"),
    plain<&glFramebufferRenderbuffer>("glFramebufferRenderbuffer", "eeeR"),
    plain<&glFramebufferTexture2D>("glFramebufferTexture2D", "eeeTi"),
    plain<&glFrontFace>("glFrontFace", "e"),
    generate<&glGenBuffers>("glGenBuffers", GLCall::Kind::Buffer),
    generate<&glGenFramebuffers>("glGenFramebuffers", GLCall::Kind::Framebuffer),
    generate<&glGenRenderbuffers>("glGenRenderbuffers", GLCall::Kind::Renderbuffer),
    generate<&glGenTextures>("glGenTextures", GLCall::Kind::Texture),
    generate<&glGenVertexArrays>("glGenVertexArrays", GLCall::Kind::VertexArray),
    plain<&glGenerateMipmap>("glGenerateMipmap", "e"),
    plain<&glLineWidth>("glLineWidth", "f"),
    plain<&glLogicOp>("glLogicOp", "e"),
    draw<&glMultiDrawElementsBaseVertex>("glMultiDrawElementsBaseVertex", "mpepip", manyElements),
    plain<&glPatchParameteri>("glPatchParameteri", "ei", nullptr, {40, "GL_ARB_tessellation_shader"}),
    plain<&glPixelStorei>("glPixelStorei", "ei"),
    plain<&glPointSize>("glPointSize", "f"),
    plain<&glPolygonMode>("glPolygonMode", "ee"),
    plain<&glPolygonOffset>("glPolygonOffset", "ff"),
    plain<&glPrimitiveRestartIndex>("glPrimitiveRestartIndex", "u"),
    plain<&glProvokingVertex>("glProvokingVertex", "e"),
    plain<&glReadBuffer>("glReadBuffer", "e"),
    plain<&glRenderbufferStorage>("glRenderbufferStorage", "eeii"),
    plain<&glRenderbufferStorageMultisample>("glRenderbufferStorageMultisample", "eieii"),
    plain<&glSampleCoverage>("glSampleCoverage", "fb"),
    plain<&glScissor>("glScissor", "iiii"),
    plain<&glStencilFunc>("glStencilFunc", "eih"),
    plain<&glStencilFuncSeparate>("glStencilFuncSeparate", "eeih"),
    plain<&glStencilMask>("glStencilMask", "h"),
    plain<&glStencilMaskSeparate>("glStencilMaskSeparate", "eh"),
    plain<&glStencilOp>("glStencilOp", "eee"),
    plain<&glStencilOpSeparate>("glStencilOpSeparate", "eeee"),
    plain<&glTexBuffer>("glTexBuffer", "eeB"),
    plain<&glTexImage2D>("glTexImage2D", "eieiiieeq", image),
    plain<&glTexImage2DMultisample>("glTexImage2DMultisample", "eieiib"),
    plain<&glTexParameterf>("glTexParameterf", "eef"),
    plain<&glTexParameteri>("glTexParameteri", "eee"),
    plain<&glTexSubImage2D>("glTexSubImage2D", "eiiiiieep", partOfImage),
    plain<&glUniform1f>("glUniform1f", "lf"),
    plain<&glUniform1fv>("glUniform1fv", "lip", cVectors<4>),
    plain<&glUniform1i>("glUniform1i", "li"),
    plain<&glUniform1iv>("glUniform1iv", "lip", cVectors<4>),
    plain<&glUniform1ui>("glUniform1ui", "lu"),
    plain<&glUniform1uiv>("glUniform1uiv", "lip", cVectors<4>),
    plain<&glUniform2f>("glUniform2f", "lff"),
    plain<&glUniform2fv>("glUniform2fv", "lip", cVectors<8>),
    plain<&glUniform2i>("glUniform2i", "lii"),
    plain<&glUniform2iv>("glUniform2iv", "lip", cVectors<8>),
    plain<&glUniform2ui>("glUniform2ui", "luu"),
    plain<&glUniform2uiv>("glUniform2uiv", "lip", cVectors<8>),
    plain<&glUniform3f>("glUniform3f", "lfff"),
    plain<&glUniform3fv>("glUniform3fv", "lip", cVectors<12>),
    plain<&glUniform3i>("glUniform3i", "liii"),
    plain<&glUniform3iv>("glUniform3iv", "lip", cVectors<12>),
    plain<&glUniform3ui>("glUniform3ui", "luuu"),
    plain<&glUniform3uiv>("glUniform3uiv", "lip", cVectors<12>),
    plain<&glUniform4f>("glUniform4f", "lffff"),
    plain<&glUniform4fv>("glUniform4fv", "lip", cVectors<16>),
    plain<&glUniform4i>("glUniform4i", "liiii"),
    plain<&glUniform4iv>("glUniform4iv", "lip", cVectors<16>),
    plain<&glUniform4ui>("glUniform4ui", "luuuu"),
    plain<&glUniform4uiv>("glUniform4uiv", "lip", cVectors<16>),
    plain<&glUniformMatrix2fv>("glUniformMatrix2fv", "libp", cVectors<16>),
    plain<&glUniformMatrix3fv>("glUniformMatrix3fv", "libp", cVectors<36>),
    plain<&glUniformMatrix4fv>("glUniformMatrix4fv", "libp", cVectors<64>),
    plain<&glUseProgram>("glUseProgram", "P"),
    plain<&glVertexAttribDivisor>("glVertexAttribDivisor", "uu", nullptr, {33, "GL_ARB_instanced_arrays"}),
    plain<&glVertexAttribIPointer>("glVertexAttribIPointer", "uieio"),
    plain<&glVertexAttribPointer>("glVertexAttribPointer", "uiebio"),
    plain<&glViewport>("glViewport", "iiii"),
    heard<&glBeginConditionalRender>("glBeginConditionalRender", "ue"),
    heard<&glDeleteProgram>("glDeleteProgram", "P"),
    heard<&glEndConditionalRender>("glEndConditionalRender", ""),
    heard<&glLinkProgram>("glLinkProgram", "P"),
};

} // namespace

std::size_t GLCall::nArguments() const { return std::strlen(signature); }

GLCall::Kind GLCall::kindOf(char letter)
{
    switch (letter)
    {
    case 'B':
        return Kind::Buffer;
    case 'A':
        return Kind::VertexArray;
    case 'T':
        return Kind::Texture;
    case 'R':
        return Kind::Renderbuffer;
    case 'F':
        return Kind::Framebuffer;
    case 'P':
        return Kind::Program;
    default:
        return Kind::None;
    }
}

std::span<const GLCall> GLCall::all() { return cCalls; }

const GLCall* GLCall::find(const char* name)
{
    for (const GLCall& call : cCalls)
        if (std::strcmp(call.name, name) == 0)
            return &call;
    return nullptr;
}

const GLCall& GLCall::of(const void* slot)
{
    for (const GLCall& call : cCalls)
        if (call.slot == slot)
            return call;
    std::abort(); // a call that isn't described
}

} // namespace gui::gl
