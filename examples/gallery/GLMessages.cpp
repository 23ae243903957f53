#include "GLMessages.h"

#include <vo/Log.h>

#include <epoxy/gl.h>

namespace gallery
{

namespace
{

void onMessage(GLenum, GLenum type, GLuint, GLenum, GLsizei, const GLchar* text, const void* pFaults)
{
    if (type != GL_DEBUG_TYPE_ERROR && type != GL_DEBUG_TYPE_UNDEFINED_BEHAVIOR &&
        type != GL_DEBUG_TYPE_DEPRECATED_BEHAVIOR)
        return;
    ++*static_cast<unsigned int*>(const_cast<void*>(pFaults));
    vo::dbgLog("ERROR! GL: %s", text);
}

} // namespace

GLMessages::GLMessages()
{
    if (!epoxy_has_gl_extension("GL_KHR_debug"))
        return;
    glEnable(GL_DEBUG_OUTPUT);
    glEnable(GL_DEBUG_OUTPUT_SYNCHRONOUS);
    glDebugMessageControl(GL_DONT_CARE, GL_DONT_CARE, GL_DONT_CARE, 0, nullptr, GL_TRUE);
    glDebugMessageCallback(onMessage, &_nFaults);
}

GLMessages::~GLMessages()
{
    if (epoxy_has_gl_extension("GL_KHR_debug"))
        glDebugMessageCallback(nullptr, nullptr);
}

bool GLMessages::areFaultless()
{
    for (GLenum error = glGetError(); error != GL_NO_ERROR; error = glGetError())
    {
        ++_nFaults;
        vo::dbgLog("ERROR! GL: glGetError answers 0x%04x", error);
    }
    return _nFaults == 0;
}

} // namespace gallery
