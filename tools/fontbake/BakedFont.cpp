#include "BakedFont.h"

#include "Error.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace fontbake
{

namespace
{

constexpr char32_t cReplacement = 0xFFFD;

/// An upright box of whole pixels on the baseline, as wide as a capital letter and as high.
Picture replacementBox(int size)
{
    const int stroke = std::max(1, (size + 6) / 12);
    const int side = std::max(1, size / 10);
    Picture box;
    box.left = side;
    box.width = std::max(3 * stroke, size / 2);
    box.height = std::max(3 * stroke, (size * 7 + 5) / 10);
    box.top = box.height;
    box.advance = box.width + 2 * side;
    for (int y = 0; y < box.height; ++y)
        for (int x = 0; x < box.width; ++x)
        {
            const int edge = std::min({x, y, box.width - 1 - x, box.height - 1 - y});
            box.pixels.push_back(edge < stroke ? 255 : 0);
        }
    return box;
}

/// How far strokes reach out to the left of the pen, those left aside that reach further than letters do.
int overhangOf(const std::vector<Picture>& pictures, int size)
{
    const int limit = (size + 7) / 8;
    int overhang = 0;
    for (const Picture& picture : pictures)
        if (-picture.left <= limit)
            overhang = std::max(overhang, -picture.left);
    return overhang;
}

/// Places glyphs side by side.
class Row
{
public:
    Row(BakedFont& font, int spread, int overhang)
        : _font(font)
        , _spread(spread)
        , _overhang(overhang)
    {
        font.padding = 2 * (spread + overhang);
    }

    /// @return false for a glyph that no longer fits
    [[nodiscard]] bool add(char32_t codePoint, const Picture& picture)
    {
        BakedFont::Glyph glyph;
        glyph.codePoint = codePoint;
        glyph.left = _font.atlasWidth;
        glyph.bearing = std::min(0, picture.left + _overhang);
        const int right = picture.left + picture.width + _spread; // from the pen
        const int cell = std::max(right - glyph.bearing + _font.padding / 2, _font.padding);
        glyph.width = cell - _font.padding;
        glyph.advance = picture.advance - glyph.bearing + _font.padding / 2;
        if (cell > cMaxAtlasWidth - _font.atlasWidth)
            return false;
        _font.atlasWidth += cell;
        _font.glyphs.push_back(glyph);
        return true;
    }

private:
    BakedFont& _font;
    const int _spread;
    const int _overhang;
};

void paint(BakedFont& font, const std::vector<Picture>& pictures)
{
    font.pixels.resize(std::size_t(font.atlasWidth) * std::size_t(font.lineHeight));
    for (std::size_t i = 0; i < pictures.size(); ++i)
    {
        const Picture& picture = pictures[i];
        const BakedFont::Glyph& glyph = font.glyphs[i];
        const int left = glyph.left + font.padding / 2 - glyph.bearing + picture.left;
        const int top = font.baseline - picture.top;
        for (int y = 0; y < picture.height; ++y)
            std::copy_n(picture.pixels.begin() + std::ptrdiff_t(y) * picture.width, picture.width,
                        font.pixels.begin() + std::ptrdiff_t(top + y) * font.atlasWidth + left);
    }
}

/// Little-endian values, one behind the other.
class Bytes
{
public:
    void add16(unsigned int value) { add(value, 2); }
    void add32(std::uint32_t value) { add(value, 4); }
    void addFloat(float value) { add32(std::bit_cast<std::uint32_t>(value)); }
    void addFloat(int value) { addFloat(static_cast<float>(value)); }
    void addAll(const std::vector<unsigned char>& bytes) { _bytes.append(bytes.begin(), bytes.end()); }

    std::string take() { return std::move(_bytes); }

private:
    void add(std::uint32_t value, int n)
    {
        for (int i = 0; i < n; ++i)
            _bytes += static_cast<char>(value >> (8 * i) & 0xFF);
    }

    std::string _bytes;
};

} // namespace

BakedFont bake(const Rasterizer& rasterizer, const CharacterSet& characters, const BakeSettings& settings)
{
    std::vector<Picture> pictures;
    int inkWidth = 0;
    // Beyond the widest atlas no more are drawn: they would only take memory until the row below is found to be full.
    for (std::size_t i = 0; i < characters.size() && inkWidth <= cMaxAtlasWidth; ++i)
    {
        pictures.push_back(rasterizer.draw(characters[i]));
        inkWidth += pictures.back().width;
    }
    pictures.push_back(replacementBox(settings.size));

    BakedFont font;
    font.size = settings.size;
    font.isForDark = settings.lightOnDark;
    font.spaceWidth = rasterizer.getSpaceWidth();
    font.linePitch = rasterizer.getLinePitch();
    font.baseline = rasterizer.getAscender();
    int below = rasterizer.getDescender();
    Row row(font, settings.spread, overhangOf(pictures, settings.size));
    for (std::size_t i = 0; i < pictures.size(); ++i)
    {
        if (!row.add(i < characters.size() ? characters[i] : cReplacement, pictures[i]))
            throw Error("only the first " + std::to_string(i) + " of " + std::to_string(characters.size()) +
                        " characters fit into an atlas of " + std::to_string(cMaxAtlasWidth) +
                        " pixels, the widest that GL takes: bake fewer, or at a smaller --size, or several fonts");
        font.baseline = std::max(font.baseline, pictures[i].top + settings.spread);
        below = std::max(below, pictures[i].height - pictures[i].top + settings.spread);
    }
    // Text leaves a pixel between its lines unless it is told otherwise.
    font.lineHeight = std::max(font.baseline + below, font.linePitch - 1);
    paint(font, pictures);
    if (settings.lightOnDark)
        for (unsigned char& coverage : font.pixels)
            coverage = static_cast<unsigned char>(std::lround(std::sqrt(coverage * 255.0)));
    return font;
}

std::string fileOf(const BakedFont& font)
{
    Bytes file;
    // The first, second and fifth value are for whoever reads the file otherwise: no text is laid out by them.
    file.addFloat(font.size);
    file.addFloat(font.baseline);
    file.addFloat(font.spaceWidth);
    file.addFloat(font.padding);
    file.addFloat(font.linePitch);
    file.addFloat(font.lineHeight);
    file.add32(static_cast<std::uint32_t>(font.atlasWidth));
    file.add32(static_cast<std::uint32_t>(font.lineHeight));
    file.add16(8); // bits per pixel: coverage is all that text is drawn by
    file.add16(static_cast<unsigned int>(font.glyphs.size()));
    for (const BakedFont::Glyph& glyph : font.glyphs)
    {
        file.add32(glyph.codePoint);
        file.addFloat(glyph.bearing);
        file.addFloat(glyph.width);
        file.addFloat(glyph.advance);
        file.addFloat(static_cast<float>(glyph.left) / static_cast<float>(font.atlasWidth));
    }
    file.addAll(font.pixels);
    return file.take();
}

} // namespace fontbake
