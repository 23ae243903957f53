#include <gui/gl/StateGuard.h>

#include "../context/GLNumber.h"
#include "../context/StateOfES.h"
#include "ActiveBuffer.h"

#include <gui/gl/Context.h>
#include <gui/gl/Program.h>

#include <epoxy/gl.h>

#include <bit>

namespace gui::gl
{

namespace
{

constexpr std::array<GLenum, 6> cFlags{GL_DEPTH_TEST, GL_STENCIL_TEST, GL_BLEND,
                                       GL_CULL_FACE,  GL_SCISSOR_TEST, GL_POLYGON_OFFSET_FILL};

} // namespace

StateGuard::StateGuard()
{
    glGetIntegerv(GL_VIEWPORT, _viewport.data());
    glGetFloatv(GL_COLOR_CLEAR_VALUE, _clearColor.data());
    glGetFloatv(GL_DEPTH_CLEAR_VALUE, &_clearDepth);
    glGetBooleanv(GL_COLOR_WRITEMASK, _colorMask.data());
    glGetBooleanv(GL_DEPTH_WRITEMASK, &_depthMask);
    _blendFunctions = {glNumber(GL_BLEND_SRC_RGB), glNumber(GL_BLEND_DST_RGB), glNumber(GL_BLEND_SRC_ALPHA),
                       glNumber(GL_BLEND_DST_ALPHA)};
    _blendEquations = {glNumber(GL_BLEND_EQUATION_RGB), glNumber(GL_BLEND_EQUATION_ALPHA)};
    for (std::size_t i = 0; i < cFlags.size(); ++i)
        _isEnabled[i] = glIsEnabled(cFlags[i]) == GL_TRUE;
    _drawFramebuffer = glNumber(GL_DRAW_FRAMEBUFFER_BINDING);
    _readFramebuffer = glNumber(GL_READ_FRAMEBUFFER_BINDING);
    _depthFunction = glNumber(GL_DEPTH_FUNC);
    _polygonMode = getPolygonMode();
    _vertexArray = glNumber(GL_VERTEX_ARRAY_BINDING);
    _program = glNumber(GL_CURRENT_PROGRAM);
    _activeBuffer = std::bit_cast<decltype(_activeBuffer)>(s_activeBuffer);
    _activeTexture = glNumber(GL_ACTIVE_TEXTURE);
}

StateGuard::~StateGuard()
{
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(_drawFramebuffer));
    glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(_readFramebuffer));
    glViewport(_viewport[0], _viewport[1], _viewport[2], _viewport[3]);
    glClearColor(_clearColor[0], _clearColor[1], _clearColor[2], _clearColor[3]);
    Context::setClearDepth(_clearDepth);
    glColorMask(_colorMask[0], _colorMask[1], _colorMask[2], _colorMask[3]);
    glDepthMask(_depthMask);
    glDepthFunc(static_cast<GLenum>(_depthFunction));
    glBlendFuncSeparate(static_cast<GLenum>(_blendFunctions[0]), static_cast<GLenum>(_blendFunctions[1]),
                        static_cast<GLenum>(_blendFunctions[2]), static_cast<GLenum>(_blendFunctions[3]));
    glBlendEquationSeparate(static_cast<GLenum>(_blendEquations[0]), static_cast<GLenum>(_blendEquations[1]));
    for (std::size_t i = 0; i < cFlags.size(); ++i)
        _isEnabled[i] ? glEnable(cFlags[i]) : glDisable(cFlags[i]);
    setPolygonMode(_polygonMode);
    setCurrentProgram(nullptr);
    // Of both: one that was deleted while it was in use is gone as soon as another is.
    const auto program = static_cast<GLuint>(_program);
    glUseProgram(glIsProgram(program) == GL_TRUE ? program : 0);
    const auto vertexArray = static_cast<GLuint>(_vertexArray);
    glBindVertexArray(glIsVertexArray(vertexArray) == GL_TRUE ? vertexArray : 0);
    s_activeBuffer = std::bit_cast<ActiveBuffer>(_activeBuffer);
    glActiveTexture(static_cast<GLenum>(_activeTexture));
}

} // namespace gui::gl
