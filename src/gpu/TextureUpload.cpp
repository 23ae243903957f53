#include "TextureUpload.h"

#include <gui/Texture.h>
#include <td/Types.h>

#include <epoxy/gl.h>

#include <cstddef>
#include <cstring>
#include <vector>

namespace gui::gl
{

void uploadImage(unsigned int target, unsigned int format, const gui::Texture& image)
{
    // GL reads rows that begin at multiples of 4 bytes, and the library leaves its unpack parameters alone: packed rows
    // of another length would come out skewed, and the last read past its end.
    constexpr std::size_t cUnpackAlignment = 4;

    const auto height = static_cast<std::size_t>(image.getHeight());
    const auto rowLength = static_cast<std::size_t>(image.getWidth()) * image.getBytesPerPixel();
    const td::BYTE* pPixels = image.getBytes();
    std::vector<td::BYTE> padded;
    if (rowLength % cUnpackAlignment != 0)
    {
        const std::size_t paddedLength = (rowLength / cUnpackAlignment + 1) * cUnpackAlignment;
        padded.resize(paddedLength * height);
        for (std::size_t row = 0; row < height; ++row)
            std::memcpy(padded.data() + row * paddedLength, pPixels + row * rowLength, rowLength);
        pPixels = padded.data();
    }
    glTexImage2D(target, 0, static_cast<GLint>(format), image.getWidth(), image.getHeight(), 0, format,
                 GL_UNSIGNED_BYTE, pPixels);
}

} // namespace gui::gl
