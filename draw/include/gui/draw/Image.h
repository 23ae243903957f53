#pragma once

#include <gui/Texture.h>

#include <td/Color.h>
#include <td/Export.h>

#include <memory>
#include <span>

namespace gui::draw
{

/// A picture of pixels for a Drawing. A value that copies share: however often it is drawn, its pixels are there once.
///
///     drawing.image({0, 0, 100, 75}, Image::fromFile("plan.png"));
class GUIGL_API Image
{
public:
    Image() = default; ///< none
    /// Takes what was loaded, of 3 or 4 bytes per pixel; anything else is no image.
    explicit Image(gui::Texture texture);
    /// From colours, row by row from the top. Sizes below 1, or another number of colours than pixels, are an assertion
    /// ("width > 0 && height > 0 && pixels.size() == std::size_t(width) * std::size_t(height)"), and no image.
    Image(int width, int height, std::span<const td::Color> pixels);
    /// See gui::Texture::loadFromFile. @return no image, after a line in the log, when it could not be loaded
    static Image fromFile(const char* fileName);

    explicit operator bool() const { return _pTexture != nullptr; }
    int getWidth() const;  ///< in pixels; 0 for none
    int getHeight() const; ///< in pixels

    bool operator==(const Image&) const = default; ///< whether they are copies of each other

private:
    friend class ImageStore;

    std::shared_ptr<const gui::Texture> _pTexture; // colours times alpha
};

} // namespace gui::draw
