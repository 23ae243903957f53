#include "KeptTexture.h"

#include <cstring>

namespace gui::gl
{

void copyPixels(gui::Texture& image, int width, int height, unsigned int bytesPP, const td::BYTE* pPixels)
{
    const std::size_t nBytes = std::size_t(width) * std::size_t(height) * bytesPP;
    gui::TextureHelper helper(&image);
    helper.reserve(static_cast<unsigned int>(nBytes));
    helper.updateInfo(width, height, static_cast<unsigned short>(bytesPP));
    std::memcpy(image.getBytes(), pPixels, nBytes);
}

KeptImage::KeptImage(const gui::Texture& image)
{
    copyPixels(_image, image.getWidth(), image.getHeight(), image.getBytesPerPixel(), image.getBytes());
}

const gui::Texture* KeptImage::get(gui::Texture& loaded) const
{
    if (_image.isOk())
        return &_image;
    return loaded.loadFromMemory(_file.data(), _file.size()) ? &loaded : nullptr;
}

} // namespace gui::gl
