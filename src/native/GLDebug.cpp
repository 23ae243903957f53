#include "GLDebug.h"

#include <gui/gl/Context.h>
#include <vo/Log.h>

#include <epoxy/gl.h>

#include <cstdlib>

namespace gui::gl
{

namespace
{

const char* typeName(GLenum type)
{
    switch (type)
    {
    case GL_DEBUG_TYPE_ERROR:
        return "error";
    case GL_DEBUG_TYPE_DEPRECATED_BEHAVIOR:
        return "deprecated behaviour";
    case GL_DEBUG_TYPE_UNDEFINED_BEHAVIOR:
        return "undefined behaviour";
    case GL_DEBUG_TYPE_PORTABILITY:
        return "portability";
    case GL_DEBUG_TYPE_PERFORMANCE:
        return "performance";
    default:
        return "message";
    }
}

void onMessage(GLenum, GLenum type, GLuint, GLenum severity, GLsizei, const GLchar* message, const void*)
{
    if (severity != GL_DEBUG_SEVERITY_NOTIFICATION)
        vo::dbgLog("Warning! OpenGL %s: %s", typeName(type), message);
}

} // namespace

bool isGLDebugWanted()
{
    const char* const value = std::getenv("GUIGL_GL_DEBUG");
    return value != nullptr && *value != '\0';
}

void logGLDebugMessages()
{
    if (!isGLDebugWanted())
        return;
    if (!Context::isAtLeast(43, 32) && !epoxy_has_gl_extension("GL_KHR_debug"))
    {
        vo::dbgLog("Warning! GUIGL_GL_DEBUG is set, but this OpenGL has no debug output");
        return;
    }
    glEnable(GL_DEBUG_OUTPUT);
    // Messages come from inside the call that they are about: a debugger shows where.
    glEnable(GL_DEBUG_OUTPUT_SYNCHRONOUS);
    glDebugMessageCallback(onMessage, nullptr);
}

void logGLErrors(const char* during, unsigned int& said)
{
    // A context that is lost answers for ever.
    constexpr int cMaxErrors = 8;
    for (int i = 0; i < cMaxErrors; ++i)
    {
        const GLenum error = glGetError();
        if (error == GL_NO_ERROR)
            return;
        const unsigned int kind = 1U << (error & 31U);
        if ((said & kind) == 0)
            vo::dbgLog("ERROR! GLView %s left OpenGL error %x%s", during, error,
                       error == GL_OUT_OF_MEMORY ? " (out of memory)" : "");
        said |= kind;
    }
}

} // namespace gui::gl
