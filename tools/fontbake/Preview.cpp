#include "Preview.h"

#include "Error.h"

#include <png.h>

#include <algorithm>

namespace fontbake
{

namespace
{

/// A sheet of paper that grows downwards.
class Paper
{
public:
    Paper(int width, bool isDark)
        : _width(width)
        , _ground(isDark ? 0 : 255)
    {
    }

    void growTo(int height)
    {
        _height = std::max(_height, height);
        _pixels.resize(std::size_t(_width) * std::size_t(_height), _ground);
    }

    /// Lays a glyph's cell over what is there.
    void print(const BakedFont& font, const BakedFont::Glyph& glyph, int left, int top)
    {
        for (int y = 0; y < font.lineHeight; ++y)
            for (int x = 0; x < glyph.width + font.padding; ++x)
            {
                const int coverage =
                    font.pixels[std::size_t(y) * std::size_t(font.atlasWidth) + std::size_t(glyph.left + x)];
                if (left + x < 0 || left + x >= _width)
                    continue;
                unsigned char& pixel = _pixels[std::size_t(top + y) * std::size_t(_width) + std::size_t(left + x)];
                const int ink = (255 - _ground) * coverage / 255;
                pixel = static_cast<unsigned char>((ink * coverage + pixel * (255 - coverage)) / 255);
            }
    }

    std::string png() const
    {
        png_image image{};
        image.version = PNG_IMAGE_VERSION;
        image.width = static_cast<png_uint_32>(_width);
        image.height = static_cast<png_uint_32>(_height);
        image.format = PNG_FORMAT_GRAY;
        png_alloc_size_t nBytes = PNG_IMAGE_PNG_SIZE_MAX(image);
        std::string bytes(nBytes, '\0');
        if (png_image_write_to_memory(&image, bytes.data(), &nBytes, 0, _pixels.data(), 0, nullptr) == 0)
            throw Error(std::string("the preview can't be made: ") + image.message);
        bytes.resize(nBytes);
        return bytes;
    }

private:
    const int _width;
    const unsigned char _ground;
    int _height = 0;
    std::vector<unsigned char> _pixels;
};

} // namespace

std::string previewOf(const BakedFont& font)
{
    const int margin = font.size;
    const int lineEnd = std::max(800, 16 * font.size) + margin;
    Paper paper(lineEnd + margin, font.isForDark);

    int pen = margin;
    int top = margin;
    bool isFirst = true;
    for (std::size_t i = 0; i < font.glyphs.size(); ++i)
    {
        const BakedFont::Glyph& glyph = font.glyphs[i];
        if (i > 0 && glyph.codePoint != font.glyphs[i - 1].codePoint + 1)
            pen += font.spaceWidth;
        if (pen + glyph.width > lineEnd)
        {
            pen = margin;
            top += font.lineHeight;
            isFirst = true;
        }
        paper.growTo(top + font.lineHeight + margin);
        pen += (isFirst ? -glyph.bearing : glyph.bearing) - font.padding / 2;
        paper.print(font, glyph, pen, top);
        pen += glyph.advance;
        isFirst = false;
    }
    return paper.png();
}

} // namespace fontbake
