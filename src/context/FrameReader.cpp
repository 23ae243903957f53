#include "FrameReader.h"

#include "Samples.h"

#include <gui/Texture.h>
#include <td/Types.h>
#include <vo/Log.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

namespace gui::gl
{

BoundFramebuffers::BoundFramebuffers()
{
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &_drawBefore);
    glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &_readBefore);
}

BoundFramebuffers::~BoundFramebuffers()
{
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(_drawBefore));
    glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(_readBefore));
}

int samplesOf(unsigned int framebuffer)
{
    // GL tells of the one that is drawn into.
    GLint before = 0;
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &before);
    const bool isBound = static_cast<GLuint>(before) == framebuffer;
    if (!isBound)
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer);
    GLint nSamples = 0;
    glGetIntegerv(GL_SAMPLES, &nSamples);
    if (!isBound)
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(before));
    return std::max(nSamples, 1);
}

BoundForReading::BoundForReading(unsigned int framebuffer, const td::Size<int>& size)
    : _framebuffer(framebuffer)
{
    glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &_boundBefore);
    // GL refuses to read several samples, but for the window's own: of that, drivers give one, and not the mean.
    if (samplesOf(framebuffer) > 1)
        resolve(size);
    if (static_cast<GLuint>(_boundBefore) != _framebuffer)
        glBindFramebuffer(GL_READ_FRAMEBUFFER, _framebuffer);
}

void BoundForReading::resolve(const td::Size<int>& size)
{
    GLint renderbufferBefore = 0;
    glGetIntegerv(GL_RENDERBUFFER_BINDING, &renderbufferBefore);
    glGenRenderbuffers(1, &_renderbuffer);
    if (_renderbuffer == 0)
        return;
    glBindRenderbuffer(GL_RENDERBUFFER, _renderbuffer);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, size.width, size.height);
    glBindRenderbuffer(GL_RENDERBUFFER, static_cast<GLuint>(renderbufferBefore));
    glGenFramebuffers(1, &_resolved);
    if (_resolved == 0 || _renderbuffer == 0)
        return;
    {
        const BoundFramebuffers before;
        glBindFramebuffer(GL_FRAMEBUFFER, _resolved);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, _renderbuffer);
    }
    resolveColors(_framebuffer, _resolved, size);
    _framebuffer = _resolved;
}

BoundForReading::~BoundForReading()
{
    if (static_cast<GLuint>(_boundBefore) != _framebuffer)
        glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(_boundBefore));
    if (_resolved == 0 && _renderbuffer == 0)
        return;
    glDeleteFramebuffers(1, &_resolved);
    glDeleteRenderbuffers(1, &_renderbuffer);
}

void resolveColors(unsigned int from, unsigned int to, const td::Size<int>& size)
{
    const BoundFramebuffers before;
    glBindFramebuffer(GL_READ_FRAMEBUFFER, from);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, to);
    const bool isClipped = glIsEnabled(GL_SCISSOR_TEST) == GL_TRUE;
    if (isClipped)
        glDisable(GL_SCISSOR_TEST);
    glBlitFramebuffer(0, 0, size.width, size.height, 0, 0, size.width, size.height, GL_COLOR_BUFFER_BIT, GL_NEAREST);
    if (isClipped)
        glEnable(GL_SCISSOR_TEST);
}

bool readFrame(unsigned int framebuffer, const td::Size<int>& size, gui::Texture& picture, unsigned short bytesPerPixel)
{
    const auto width = static_cast<std::size_t>(size.width);
    const auto height = static_cast<std::size_t>(size.height);
    const std::size_t rowLength = width * bytesPerPixel;
    if (rowLength * height > std::numeric_limits<unsigned int>::max())
    {
        vo::dbgLog("Error! A frame of %zu x %zu pixels is more than an image can hold", width, height);
        return false;
    }

    const BoundForReading bound(framebuffer, size);
    // Rows of 4 bytes per pixel keep GL's pack alignment whatever the width.
    std::vector<td::BYTE> pixels(width * height * 4);
    glReadPixels(0, 0, size.width, size.height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());

    TextureHelper helper(&picture);
    helper.reserve(static_cast<unsigned int>(rowLength * height));
    helper.updateInfo(size.width, size.height, bytesPerPixel);
    for (std::size_t row = 0; row < height; ++row)
    {
        const td::BYTE* pFrom = pixels.data() + (height - 1 - row) * width * 4;
        td::BYTE* pTo = picture.getBytes() + row * rowLength;
        for (std::size_t i = 0; i < width; ++i, pFrom += 4, pTo += bytesPerPixel)
            std::copy(pFrom, pFrom + bytesPerPixel, pTo);
    }
    return true;
}

} // namespace gui::gl
