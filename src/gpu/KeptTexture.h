#pragma once

#include <gui/Texture.h>
#include <td/Types.h>

#include <vector>

namespace gui::gl
{

/// Makes the image one of these pixels, of 1 to 4 bytes each, whose rows are packed.
void copyPixels(gui::Texture& image, int width, int height, unsigned int bytesPP, const td::BYTE* pPixels);

/// An image, to be had again: as the bytes of its file, which are fewer than its pixels, or as it is.
class KeptImage
{
public:
    explicit KeptImage(std::vector<td::BYTE> file)
        : _file(std::move(file))
    {
    }
    explicit KeptImage(const gui::Texture& image);

    /// The image as it was loaded. @param loaded  what it is loaded into if it has to be
    /// @return null when it cannot be decoded any more, for want of memory
    const gui::Texture* get(gui::Texture& loaded) const;

private:
    std::vector<td::BYTE> _file;
    gui::Texture _image;
};

/// What a texture of a set is made of: one image, or the six of a cube map in GL's order.
class KeptTexture
{
public:
    bool isMirrored = false; // when it was uploaded
    std::vector<KeptImage> images;
};

} // namespace gui::gl
