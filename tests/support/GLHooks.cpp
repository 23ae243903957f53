#include "GLHooks.h"

#include <epoxy/gl.h>

#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <type_traits>

namespace test
{

namespace
{

GLListener* s_pListener = nullptr;

/// Takes the place of an entry point. Slot: the address of the loader's pointer to it.
template <auto Slot>
struct Hook;

template <typename Result, typename... Parameters, Result (**Slot)(Parameters...)>
struct Hook<Slot>
{
    static inline Result (*s_loaded)(Parameters...) = nullptr;
    static inline const GLEntry* s_pEntry = nullptr;

    static void install(const GLEntry& entry)
    {
        s_pEntry = &entry;
        s_loaded = *Slot;
        *Slot = call;
    }

    static void restore() { *Slot = s_loaded; }

    static Result call(Parameters... parameters)
    {
        const GLArgument values[sizeof...(Parameters) + 1] = {GLArgument(parameters)..., GLArgument(0)};
        const GLArguments arguments(values, sizeof...(Parameters));
        long long result = 0;
        if (!s_pListener->answer(*s_pEntry, arguments, result))
        {
            // On its first call the loader's pointer replaces itself and calls on through itself: it has to be back in
            // its place meanwhile, or it would call this function again, for ever.
            *Slot = s_loaded;
            if constexpr (std::is_void_v<Result>)
                (*Slot)(parameters...);
            else
                result = static_cast<long long>((*Slot)(parameters...));
            s_loaded = *Slot;
            *Slot = call;
        }
        s_pListener->note(*s_pEntry, arguments, result);
        if constexpr (!std::is_void_v<Result>)
            return static_cast<Result>(result);
    }
};

using Role = GLEntry::Role;
using Kind = GLKind;

template <auto Slot>
GLEntry entry(const char* function, const char* parameters, Role role = Role::Plain, Kind kind = Kind::Buffer)
{
    return {function, parameters, role, kind, Hook<Slot>::install, Hook<Slot>::restore};
}

/// The entry points that the library may use, and those that it must not but a trace should show.
std::span<const GLEntry> entries()
{
    static const GLEntry cEntries[] = {
        entry<&glActiveTexture>("glActiveTexture", "e"),
        entry<&glAttachShader>("glAttachShader", "PS"),
        entry<&glBindBuffer>("glBindBuffer", "eB"),
        entry<&glBindFramebuffer>("glBindFramebuffer", "ee"),
        entry<&glBindTexture>("glBindTexture", "eT"),
        entry<&glBindVertexArray>("glBindVertexArray", "A"),
        entry<&glBlendEquationSeparate>("glBlendEquationSeparate", "ee"),
        entry<&glBlendFunc>("glBlendFunc", "ee"),
        entry<&glBlendFuncSeparate>("glBlendFuncSeparate", "eeee"),
        entry<&glBufferData>("glBufferData", "eipe"),
        entry<&glBufferSubData>("glBufferSubData", "eiip"),
        entry<&glCopyBufferSubData>("glCopyBufferSubData", "eeiii"),
        entry<&glClear>("glClear", "e"),
        entry<&glClearColor>("glClearColor", "ffff"),
        entry<&glCompileShader>("glCompileShader", "S"),
        entry<&glCreateProgram>("glCreateProgram", "", Role::Create, Kind::Program),
        entry<&glCreateShader>("glCreateShader", "e", Role::Create, Kind::Shader),
        entry<&glDeleteBuffers>("glDeleteBuffers", "in", Role::Delete, Kind::Buffer),
        entry<&glDeleteProgram>("glDeleteProgram", "P", Role::Delete, Kind::Program),
        entry<&glDeleteShader>("glDeleteShader", "S", Role::Delete, Kind::Shader),
        entry<&glDeleteTextures>("glDeleteTextures", "in", Role::Delete, Kind::Texture),
        entry<&glDeleteVertexArrays>("glDeleteVertexArrays", "in", Role::Delete, Kind::VertexArray),
        entry<&glDepthFunc>("glDepthFunc", "e"),
        entry<&glDepthMask>("glDepthMask", "e"),
        entry<&glDisable>("glDisable", "e"),
        entry<&glDrawArrays>("glDrawArrays", "eii"),
        entry<&glDrawArraysInstanced>("glDrawArraysInstanced", "eiii"),
        entry<&glDrawElements>("glDrawElements", "eiep"),
        entry<&glDrawElementsInstanced>("glDrawElementsInstanced", "eiepi"),
        entry<&glEnable>("glEnable", "e"),
        entry<&glEnableVertexAttribArray>("glEnableVertexAttribArray", "i"),
        entry<&glGenBuffers>("glGenBuffers", "in", Role::Generate, Kind::Buffer),
        entry<&glGenTextures>("glGenTextures", "in", Role::Generate, Kind::Texture),
        entry<&glGenVertexArrays>("glGenVertexArrays", "in", Role::Generate, Kind::VertexArray),
        entry<&glGenerateMipmap>("glGenerateMipmap", "e"),
        entry<&glGetError>("glGetError", ""),
        entry<&glGetIntegerv>("glGetIntegerv", "ep"),
        entry<&glGetProgramInfoLog>("glGetProgramInfoLog", "Pipp"),
        entry<&glGetProgramiv>("glGetProgramiv", "Pep"),
        entry<&glGetShaderInfoLog>("glGetShaderInfoLog", "Sipp"),
        entry<&glGetShaderiv>("glGetShaderiv", "Sep"),
        entry<&glGetUniformLocation>("glGetUniformLocation", "Ps"),
        entry<&glIsProgram>("glIsProgram", "P"),
        entry<&glIsVertexArray>("glIsVertexArray", "A"),
        entry<&glLinkProgram>("glLinkProgram", "P"),
        entry<&glPatchParameteri>("glPatchParameteri", "ei"),
        entry<&glPixelStorei>("glPixelStorei", "ei"),
        entry<&glPointSize>("glPointSize", "f"),
        entry<&glPolygonMode>("glPolygonMode", "ee"),
        entry<&glReadPixels>("glReadPixels", "iiiieep"),
        entry<&glShaderSource>("glShaderSource", "Sipp"),
        entry<&glStencilFunc>("glStencilFunc", "eie"),
        entry<&glStencilMask>("glStencilMask", "e"),
        entry<&glStencilOp>("glStencilOp", "eee"),
        entry<&glTexImage2D>("glTexImage2D", "eieiiieep"),
        entry<&glTexParameteri>("glTexParameteri", "eee"),
        entry<&glTexSubImage2D>("glTexSubImage2D", "eiiiiieep"),
        entry<&glUniform1f>("glUniform1f", "if"),
        entry<&glUniform1i>("glUniform1i", "ii"),
        entry<&glUniform2f>("glUniform2f", "iff"),
        entry<&glUniform2i>("glUniform2i", "iii"),
        entry<&glUniform3f>("glUniform3f", "ifff"),
        entry<&glUniform3fv>("glUniform3fv", "ii3"),
        entry<&glUniform3iv>("glUniform3iv", "ii3"),
        entry<&glUniform4f>("glUniform4f", "iffff"),
        entry<&glUniform4fv>("glUniform4fv", "ii4"),
        entry<&glUniform4iv>("glUniform4iv", "ii4"),
        entry<&glUniformMatrix3fv>("glUniformMatrix3fv", "iie9"),
        entry<&glUniformMatrix4fv>("glUniformMatrix4fv", "iiem"),
        entry<&glUseProgram>("glUseProgram", "P"),
        entry<&glVertexAttribDivisor>("glVertexAttribDivisor", "ii"),
        entry<&glVertexAttribPointer>("glVertexAttribPointer", "iieeip"),
        entry<&glViewport>("glViewport", "iiii"),
    };
    return cEntries;
}

template <typename T>
std::string formatted(const char* format, T value)
{
    char text[32];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

template <typename T>
std::string listText(const T* values, long long n)
{
    std::string text = "[";
    for (long long i = 0; i < n; ++i)
        text += (i == 0 ? "" : " ") + formatted("%g", static_cast<double>(values[i]));
    return text + "]";
}

std::string argumentText(const GLEntry& entry, GLArguments arguments, std::size_t i)
{
    const GLArgument& argument = arguments[i];
    const char letter = entry.parameters[i];
    switch (letter)
    {
    case 'i':
        return std::to_string(argument.integer);
    case 'f':
        return formatted("%g", argument.real);
    case 'p':
    {
        // No object lies in the lowest pages: a small value is an offset.
        const auto value = reinterpret_cast<std::uintptr_t>(argument.pointer);
        return value < 0x10000 ? std::to_string(value) : "ptr";
    }
    case 's':
        return std::string("\"") + argument.data<char>() + "\"";
    case 'n':
        return listText(argument.data<GLuint>(), arguments[i - 1].integer);
    default:
        break;
    }
    if (argument.pointer == nullptr)
        return formatted(argument.integer < 0x100 ? "%lld" : "0x%llx", argument.integer);
    const long long n = (letter == 'm' ? 16 : letter - '0') * arguments[1].integer;
    return std::string_view(entry.function).ends_with("fv") ? listText(argument.data<float>(), n)
                                                            : listText(argument.data<GLint>(), n);
}

} // namespace

std::string textOf(const GLEntry& entry, GLArguments arguments)
{
    std::string text = std::string(entry.function) + "(";
    for (std::size_t i = 0; i < arguments.size(); ++i)
        text += (i == 0 ? "" : ", ") + argumentText(entry, arguments, i);
    return text + ")";
}

void GLListener::startListening()
{
    if (s_pListener != nullptr)
        throw std::logic_error("somebody else listens to GL");
    s_pListener = this;
    for (const GLEntry& entry : entries())
        entry.install(entry);
}

void GLListener::stopListening()
{
    for (const GLEntry& entry : entries())
        entry.restore();
    s_pListener = nullptr;
}

} // namespace test
