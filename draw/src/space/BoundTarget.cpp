#include "BoundTarget.h"

#include <gui/gl/Context.h>

#include <epoxy/gl.h>

namespace gui::draw
{

namespace
{

GLint attachmentNumber(GLenum attachment, GLenum what)
{
    GLint type = GL_NONE, value = 0;
    glGetFramebufferAttachmentParameteriv(GL_DRAW_FRAMEBUFFER, attachment, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE,
                                          &type);
    if (type != GL_NONE)
        glGetFramebufferAttachmentParameteriv(GL_DRAW_FRAMEBUFFER, attachment, what, &value);
    return value;
}

} // namespace

BoundTarget BoundTarget::get()
{
    BoundTarget target;
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &target.framebuffer);
    glGetIntegerv(GL_VIEWPORT, target.viewport.data());
    glGetIntegerv(GL_SAMPLES, &target.nSamples);
    const bool isFrame = target.framebuffer == 0;
    const GLenum depth = isFrame ? GL_DEPTH : GL_DEPTH_ATTACHMENT;
    const int nBits = attachmentNumber(depth, GL_FRAMEBUFFER_ATTACHMENT_DEPTH_SIZE);
    target.hasStencil =
        attachmentNumber(isFrame ? GL_STENCIL : GL_STENCIL_ATTACHMENT, GL_FRAMEBUFFER_ATTACHMENT_STENCIL_SIZE) > 0;
    const bool isFloat = nBits > 0 && attachmentNumber(depth, GL_FRAMEBUFFER_ATTACHMENT_COMPONENT_TYPE) == GL_FLOAT;
    if (isFloat)
        target.depthFormat = target.hasStencil ? GL_DEPTH32F_STENCIL8 : GL_DEPTH_COMPONENT32F;
    else if (nBits == 24)
        target.depthFormat = target.hasStencil ? GL_DEPTH24_STENCIL8 : GL_DEPTH_COMPONENT24;
    else if (nBits == 16 && !target.hasStencil)
        target.depthFormat = GL_DEPTH_COMPONENT16;
    else if (nBits == 32 && !target.hasStencil && !gl::Context::isES())
        target.depthFormat = GL_DEPTH_COMPONENT32;
    return target;
}

void BoundTarget::attachDepthTexture(unsigned int texture) const
{
    // What each format is given as does not matter where nothing is given, but in OpenGL ES.
    const bool isFloat = depthFormat == GL_DEPTH32F_STENCIL8 || depthFormat == GL_DEPTH_COMPONENT32F;
    const GLenum type = hasStencil ? isFloat ? GL_FLOAT_32_UNSIGNED_INT_24_8_REV : GL_UNSIGNED_INT_24_8
                        : isFloat  ? GL_FLOAT
                        : depthFormat == GL_DEPTH_COMPONENT16 ? GL_UNSIGNED_SHORT
                                                              : GL_UNSIGNED_INT;
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(depthFormat), viewport[2], viewport[3], 0,
                 hasStencil ? GL_DEPTH_STENCIL : GL_DEPTH_COMPONENT, type, nullptr);
    for (const GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
        glTexParameteri(GL_TEXTURE_2D, filter, GL_NEAREST);
    glFramebufferTexture2D(GL_FRAMEBUFFER, hasStencil ? GL_DEPTH_STENCIL_ATTACHMENT : GL_DEPTH_ATTACHMENT,
                           GL_TEXTURE_2D, texture, 0);
}

void BoundTarget::copyDepth(unsigned int to) const
{
    const auto& [x, y, width, height] = viewport;
    glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(framebuffer));
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, to);
    glBlitFramebuffer(x, y, x + width, y + height, 0, 0, width, height, GL_DEPTH_BUFFER_BIT, GL_NEAREST);
}

void BoundTarget::bind() const
{
    glBindFramebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(framebuffer));
    glViewport(viewport[0], viewport[1], viewport[2], viewport[3]);
}

} // namespace gui::draw
