#include "FrameReader.h"

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

BoundForReading::BoundForReading(unsigned int framebuffer)
    : _framebuffer(framebuffer)
{
    glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &_boundBefore);
    if (static_cast<GLuint>(_boundBefore) != framebuffer)
        glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer);
}

BoundForReading::~BoundForReading()
{
    if (static_cast<GLuint>(_boundBefore) != _framebuffer)
        glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(_boundBefore));
}

bool readFrame(unsigned int framebuffer, const td::Size<int>& size, gui::Texture& picture)
{
    const auto width = static_cast<std::size_t>(size.width);
    const auto height = static_cast<std::size_t>(size.height);
    constexpr std::size_t cBytesPerPixel = 3;
    const std::size_t rowLength = width * cBytesPerPixel;
    if (rowLength * height > std::numeric_limits<unsigned int>::max())
    {
        vo::dbgLog("Error! A frame of %zu x %zu pixels is more than an image can hold", width, height);
        return false;
    }

    const BoundForReading bound(framebuffer);
    // Rows of 4 bytes per pixel keep GL's pack alignment whatever the width.
    std::vector<td::BYTE> pixels(width * height * 4);
    glReadPixels(0, 0, size.width, size.height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());

    TextureHelper helper(&picture);
    helper.reserve(static_cast<unsigned int>(rowLength * height));
    helper.updateInfo(size.width, size.height, cBytesPerPixel);
    for (std::size_t row = 0; row < height; ++row)
    {
        const td::BYTE* pFrom = pixels.data() + (height - 1 - row) * width * 4;
        td::BYTE* pTo = picture.getBytes() + row * rowLength;
        for (std::size_t i = 0; i < width; ++i, pFrom += 4, pTo += cBytesPerPixel)
            std::copy(pFrom, pFrom + cBytesPerPixel, pTo);
    }
    return true;
}

} // namespace gui::gl
