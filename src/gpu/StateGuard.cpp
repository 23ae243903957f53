#include <gui/gl/StateGuard.h>

#include <gui/gl/Program.h>

#include <epoxy/gl.h>

namespace gui::gl
{

namespace
{

constexpr std::array<GLenum, 6> cFlags{GL_DEPTH_TEST, GL_STENCIL_TEST, GL_BLEND,
                                       GL_CULL_FACE,  GL_SCISSOR_TEST, GL_POLYGON_OFFSET_FILL};

int integerOf(GLenum name)
{
    // Some drivers give two numbers for the polygon mode.
    std::array<GLint, 2> values{};
    glGetIntegerv(name, values.data());
    return values[0];
}

} // namespace

StateGuard::StateGuard()
{
    glGetIntegerv(GL_VIEWPORT, _viewport.data());
    glGetFloatv(GL_COLOR_CLEAR_VALUE, _clearColor.data());
    glGetFloatv(GL_DEPTH_CLEAR_VALUE, &_clearDepth);
    glGetBooleanv(GL_COLOR_WRITEMASK, _colorMask.data());
    glGetBooleanv(GL_DEPTH_WRITEMASK, &_depthMask);
    _blendFunctions = {integerOf(GL_BLEND_SRC_RGB), integerOf(GL_BLEND_DST_RGB), integerOf(GL_BLEND_SRC_ALPHA),
                       integerOf(GL_BLEND_DST_ALPHA)};
    _blendEquations = {integerOf(GL_BLEND_EQUATION_RGB), integerOf(GL_BLEND_EQUATION_ALPHA)};
    for (std::size_t i = 0; i < cFlags.size(); ++i)
        _isEnabled[i] = glIsEnabled(cFlags[i]) == GL_TRUE;
    _drawFramebuffer = integerOf(GL_DRAW_FRAMEBUFFER_BINDING);
    _readFramebuffer = integerOf(GL_READ_FRAMEBUFFER_BINDING);
    _depthFunction = integerOf(GL_DEPTH_FUNC);
    _polygonMode = integerOf(GL_POLYGON_MODE);
    _vertexArray = integerOf(GL_VERTEX_ARRAY_BINDING);
    _program = integerOf(GL_CURRENT_PROGRAM);
    _activeTexture = integerOf(GL_ACTIVE_TEXTURE);
}

StateGuard::~StateGuard()
{
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(_drawFramebuffer));
    glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(_readFramebuffer));
    glViewport(_viewport[0], _viewport[1], _viewport[2], _viewport[3]);
    glClearColor(_clearColor[0], _clearColor[1], _clearColor[2], _clearColor[3]);
    glClearDepth(static_cast<GLdouble>(_clearDepth));
    glColorMask(_colorMask[0], _colorMask[1], _colorMask[2], _colorMask[3]);
    glDepthMask(_depthMask);
    glDepthFunc(static_cast<GLenum>(_depthFunction));
    glBlendFuncSeparate(static_cast<GLenum>(_blendFunctions[0]), static_cast<GLenum>(_blendFunctions[1]),
                        static_cast<GLenum>(_blendFunctions[2]), static_cast<GLenum>(_blendFunctions[3]));
    glBlendEquationSeparate(static_cast<GLenum>(_blendEquations[0]), static_cast<GLenum>(_blendEquations[1]));
    for (std::size_t i = 0; i < cFlags.size(); ++i)
        _isEnabled[i] ? glEnable(cFlags[i]) : glDisable(cFlags[i]);
    glPolygonMode(GL_FRONT_AND_BACK, static_cast<GLenum>(_polygonMode));
    setCurrentProgram(nullptr);
    glUseProgram(static_cast<GLuint>(_program));
    glBindVertexArray(static_cast<GLuint>(_vertexArray));
    glActiveTexture(static_cast<GLenum>(_activeTexture));
}

} // namespace gui::gl
