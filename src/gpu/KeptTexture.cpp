#include "KeptTexture.h"

#include <cstring>

namespace gui::gl
{

KeptImage::KeptImage(const gui::Texture& image)
{
    const std::size_t nBytes =
        std::size_t(image.getWidth()) * std::size_t(image.getHeight()) * image.getBytesPerPixel();
    gui::TextureHelper helper(&_image);
    helper.reserve(static_cast<unsigned int>(nBytes));
    helper.updateInfo(image.getWidth(), image.getHeight(), static_cast<unsigned short>(image.getBytesPerPixel()));
    std::memcpy(_image.getBytes(), image.getBytes(), nBytes);
}

const gui::Texture* KeptImage::get(gui::Texture& loaded) const
{
    if (_image.isOk())
        return &_image;
    return loaded.loadFromMemory(_file.data(), _file.size()) ? &loaded : nullptr;
}

} // namespace gui::gl
