#include "GLHooks.h"

#include <epoxy/gl.h>

#include <stdexcept>

namespace test
{

GLListener* s_pGLListener = nullptr;

void GLListener::startListening()
{
    if (s_pGLListener != nullptr)
        throw std::logic_error("somebody else listens to GL");
    s_pGLListener = this;
    for (const GLEntry& entry : glEntries())
        entry.install(entry);
}

void GLListener::stopListening()
{
    for (const GLEntry& entry : glEntries())
        entry.restore();
    s_pGLListener = nullptr;
}

std::span<const unsigned int> namesOf(GLArguments arguments, const unsigned int& single)
{
    if (arguments.size() == 1)
        return {&single, 1};
    return {arguments[1].data<GLuint>(), static_cast<std::size_t>(arguments[0].integer)};
}

unsigned int GLListener::noteNames(const GLEntry& entry, GLArguments arguments, long long result)
{
    std::set<unsigned int>& names = alive[entry.kind];
    if (entry.role == GLEntry::Role::Create && result != 0)
        names.insert(static_cast<GLuint>(result));
    if (entry.role != GLEntry::Role::Generate && entry.role != GLEntry::Role::Delete)
        return 0;
    unsigned int dead = 0;
    const GLuint single = arguments[0].name();
    for (const GLuint name : namesOf(arguments, single))
    {
        if (name != 0 && entry.role == GLEntry::Role::Generate)
            names.insert(name);
        else if (name != 0 && names.erase(name) == 0)
            dead = name;
    }
    return dead;
}

namespace
{

using Role = GLEntry::Role;
using Kind = GLTrace::Kind;

// For plain entries the kind means nothing.
template <auto Slot>
GLEntry entry(const char* function, const char* parameters, Role role = Role::Plain, Kind kind = Kind::Buffer)
{
    return {function, parameters, role, kind, GLHook<Slot>::install, GLHook<Slot>::restore};
}

} // namespace

std::span<const GLEntry> glEntries()
{
    static const GLEntry cEntries[] = {
        entry<&glActiveTexture>("glActiveTexture", "e"),
        entry<&glAttachShader>("glAttachShader", "ee"),
        entry<&glBindBuffer>("glBindBuffer", "ee"),
        entry<&glBindFramebuffer>("glBindFramebuffer", "ee"),
        entry<&glBindTexture>("glBindTexture", "ee"),
        entry<&glBindVertexArray>("glBindVertexArray", "e"),
        entry<&glBlendFunc>("glBlendFunc", "ee"),
        entry<&glBufferData>("glBufferData", "eipe"),
        entry<&glClear>("glClear", "e"),
        entry<&glClearColor>("glClearColor", "ffff"),
        entry<&glCompileShader>("glCompileShader", "e"),
        entry<&glCreateProgram>("glCreateProgram", "", Role::Create, Kind::Program),
        entry<&glCreateShader>("glCreateShader", "e", Role::Create, Kind::Shader),
        entry<&glDeleteBuffers>("glDeleteBuffers", "in", Role::Delete, Kind::Buffer),
        entry<&glDeleteProgram>("glDeleteProgram", "e", Role::Delete, Kind::Program),
        entry<&glDeleteShader>("glDeleteShader", "e", Role::Delete, Kind::Shader),
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
        entry<&glGetProgramInfoLog>("glGetProgramInfoLog", "eipp"),
        entry<&glGetProgramiv>("glGetProgramiv", "eep"),
        entry<&glGetShaderInfoLog>("glGetShaderInfoLog", "eipp"),
        entry<&glGetShaderiv>("glGetShaderiv", "eep"),
        entry<&glGetUniformLocation>("glGetUniformLocation", "es"),
        entry<&glLinkProgram>("glLinkProgram", "e"),
        entry<&glPatchParameteri>("glPatchParameteri", "ei"),
        entry<&glPixelStorei>("glPixelStorei", "ei"),
        entry<&glPointSize>("glPointSize", "f"),
        entry<&glPolygonMode>("glPolygonMode", "ee"),
        entry<&glReadPixels>("glReadPixels", "iiiieep"),
        entry<&glShaderSource>("glShaderSource", "eipp"),
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
        entry<&glUseProgram>("glUseProgram", "e"),
        entry<&glVertexAttribDivisor>("glVertexAttribDivisor", "ii"),
        entry<&glVertexAttribPointer>("glVertexAttribPointer", "iieeip"),
        entry<&glViewport>("glViewport", "iiii"),
    };
    return cEntries;
}

} // namespace test
