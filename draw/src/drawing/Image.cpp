#include <gui/draw/Image.h>

#include <td/Assert.h>

#include <cstddef>
#include <utility>

namespace gui::draw
{

Image::Image(gui::Texture texture)
{
    const unsigned int nBytes = texture.getBytesPerPixel();
    if (!texture.isOk() || (nBytes != 3 && nBytes != 4))
        return;
    // Between pixels it is colours times alpha that mix.
    td::BYTE* p = texture.getBytes();
    const std::size_t n = std::size_t(texture.getWidth()) * std::size_t(texture.getHeight());
    if (nBytes == 4)
        for (std::size_t i = 0; i < n; ++i, p += 4)
            for (int k = 0; k < 3; ++k)
                p[k] = static_cast<td::BYTE>((p[k] * p[3] + 127) / 255);
    _pTexture = std::make_shared<const gui::Texture>(std::move(texture));
}

Image::Image(int width, int height, std::span<const td::Color> pixels)
{
    TD_ASSERT(width > 0 && height > 0 && pixels.size() == std::size_t(width) * std::size_t(height));
    gui::Texture texture;
    texture.reserve(static_cast<unsigned int>(4 * pixels.size()));
    gui::TextureHelper(&texture).updateInfo(width, height, 4);
    td::BYTE* p = texture.getBytes();
    for (const td::Color color : pixels)
        for (const td::BYTE component : {color.red(), color.green(), color.blue(), color.alpha()})
            *p++ = component;
    *this = Image(std::move(texture));
}

Image Image::fromFile(const char* fileName)
{
    gui::Texture texture;
    return texture.loadFromFile(fileName) ? Image(std::move(texture)) : Image();
}

int Image::getWidth() const { return _pTexture ? _pTexture->getWidth() : 0; }
int Image::getHeight() const { return _pTexture ? _pTexture->getHeight() : 0; }

} // namespace gui::draw
