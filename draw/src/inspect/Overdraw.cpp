#include "Overdraw.h"

#include <gui/gl/Context.h>
#include <gui/gl/StateGuard.h>

#include <td/Color.h>

#include <epoxy/gl.h>

#include <glm/mat4x4.hpp>
#include <glm/vec2.hpp>
#include <glm/vec4.hpp>

#include <cstddef>

namespace gui::draw
{

namespace
{

// Of pixels that are drawn 0 times, 1, 2, and so on; the last for all beyond.
constexpr std::array<td::Color, 8> cColors{"#000000", "#14367a", "#1e8a3c", "#d8c628",
                                           "#f08a1e", "#d83222", "#f078c8", "#ffffff"};

constexpr std::array<GLenum, 8> cStates{GL_STENCIL_FUNC,
                                        GL_STENCIL_REF,
                                        GL_STENCIL_VALUE_MASK,
                                        GL_STENCIL_FAIL,
                                        GL_STENCIL_PASS_DEPTH_FAIL,
                                        GL_STENCIL_PASS_DEPTH_PASS,
                                        GL_STENCIL_WRITEMASK,
                                        GL_STENCIL_CLEAR_VALUE};

bool hasStencil()
{
    GLint framebuffer = 0, nBits = 0;
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &framebuffer);
    GLint kind = GL_NONE;
    const GLenum attachment = framebuffer == 0 ? GL_STENCIL : GL_STENCIL_ATTACHMENT;
    glGetFramebufferAttachmentParameteriv(GL_DRAW_FRAMEBUFFER, attachment, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE,
                                          &kind);
    if (kind == GL_NONE)
        return false;
    glGetFramebufferAttachmentParameteriv(GL_DRAW_FRAMEBUFFER, attachment, GL_FRAMEBUFFER_ATTACHMENT_STENCIL_SIZE,
                                          &nBits);
    return nBits >= 4;
}

} // namespace

bool Overdraw::begin()
{
    if (!hasStencil())
        return false;
    for (std::size_t i = 0; i < cStates.size(); ++i)
        glGetIntegerv(cStates[i], &_before[i]);
    _wasOn = glIsEnabled(GL_STENCIL_TEST) != GL_FALSE;
    glStencilMask(~0U);
    glClearStencil(0);
    glClear(GL_STENCIL_BUFFER_BIT);
    glStencilFunc(GL_ALWAYS, 0, ~0U);
    glStencilOp(GL_KEEP, GL_KEEP, GL_INCR);
    glEnable(GL_STENCIL_TEST);
    _isCounting = true;
    return true;
}

void Overdraw::paint()
{
    if (!_isReady)
    {
        for (const td::Color& color : cColors)
        {
            const glm::vec4 c = glm::vec4(color.red(), color.green(), color.blue(), 255) / 255.0F;
            const struct
            {
                glm::vec2 at;
                glm::vec4 color;
            } corners[] = {{{-1, -1}, c}, {{1, -1}, c}, {{-1, 1}, c}, {{1, 1}, c}};
            _buffer.appendShape(gl::Primitive::TriangleStrip, &corners[0].at.x, std::size(corners))->encode();
        }
        _isReady = _program.link() && _buffer.commit();
        _program.setBuffer(&_buffer);
    }
    if (!_isReady)
        return;
    const gl::StateGuard guard;
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
    glDisable(GL_CULL_FACE);
    glDisable(GL_SCISSOR_TEST);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_FALSE);
    gl::Context::setPolygonMode(gl::Context::PolygonMode::Fill);
    glEnable(GL_STENCIL_TEST);
    glStencilOp(GL_KEEP, GL_KEEP, GL_KEEP);
    _program.activate();
    _program.setMVP(glm::mat4(1));
    for (std::size_t i = 0; i < cColors.size(); ++i)
    {
        glStencilFunc(i + 1 < cColors.size() ? GL_EQUAL : GL_LEQUAL, static_cast<GLint>(i), ~0U);
        _program.execute(i, 1);
    }
    _program.deActivate();
}

void Overdraw::end()
{
    if (!_isCounting)
        return;
    _isCounting = false;
    paint();
    glStencilFunc(static_cast<GLenum>(_before[0]), _before[1], static_cast<GLuint>(_before[2]));
    glStencilOp(static_cast<GLenum>(_before[3]), static_cast<GLenum>(_before[4]), static_cast<GLenum>(_before[5]));
    glStencilMask(static_cast<GLuint>(_before[6]));
    glClearStencil(_before[7]);
    if (!_wasOn)
        glDisable(GL_STENCIL_TEST);
}

} // namespace gui::draw
