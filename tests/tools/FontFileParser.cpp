#include "FontFileParser.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

namespace test
{

namespace
{

class Source
{
public:
    explicit Source(std::string_view bytes)
        : _bytes(bytes)
    {
    }

    template <typename T>
    T take()
    {
        T value{};
        EXPECT_GE(_bytes.size(), sizeof(T)) << "the file is too short";
        std::memcpy(&value, _bytes.data(), std::min(sizeof(T), _bytes.size()));
        _bytes.remove_prefix(std::min(sizeof(T), _bytes.size()));
        return value;
    }

    std::string_view rest() const { return _bytes; }

private:
    std::string_view _bytes;
};

} // namespace

ParsedFont::ParsedFont(std::string_view bytes)
{
    Source source(bytes);
    for (float* pMetric : {&metricA, &metricB, &spaceWidth, &padding, &metricC, &lineHeight})
        *pMetric = source.take<float>();
    width = static_cast<int>(source.take<std::uint32_t>());
    height = static_cast<int>(source.take<std::uint32_t>());
    EXPECT_EQ(source.take<std::uint16_t>(), 8) << "bits per pixel";
    glyphs.resize(source.take<std::uint16_t>());
    for (Glyph& glyph : glyphs)
    {
        glyph.codePoint = source.take<std::uint32_t>();
        for (float* pValue : {&glyph.bearing, &glyph.width, &glyph.advance, &glyph.tx})
            *pValue = source.take<float>();
    }
    pixels.assign(source.rest().begin(), source.rest().end());
    EXPECT_FALSE(glyphs.empty());
    EXPECT_EQ(pixels.size(), std::size_t(width) * std::size_t(height));
}

std::size_t ParsedFont::indexOf(char32_t codePoint) const
{
    for (std::size_t i = 0; i < glyphs.size(); ++i)
        if (glyphs[i].codePoint == codePoint)
            return i;
    return glyphs.size() - 1;
}

int ParsedFont::leftOf(std::size_t glyph) const
{
    return static_cast<int>(std::lround(glyphs[glyph].tx * static_cast<float>(width)));
}

int ParsedFont::rightOf(std::size_t glyph) const { return glyph + 1 < glyphs.size() ? leftOf(glyph + 1) : width; }

bool ParsedFont::isColumnBlank(int x) const
{
    int sum = 0;
    for (int y = 0; y < height; ++y)
        sum += at(x, y);
    return sum == 0;
}

bool ParsedFont::isRowBlank(int y) const
{
    int sum = 0;
    for (int x = 0; x < width; ++x)
        sum += at(x, y);
    return sum == 0;
}

std::vector<PlacedGlyph> layOut(const ParsedFont& font, std::u32string_view line)
{
    std::vector<PlacedGlyph> placed;
    float x = 0;
    bool isFirst = true;
    for (const char32_t codePoint : line)
    {
        const float pen = x;
        if (codePoint == U' ')
            x += font.spaceWidth;
        else
        {
            const std::size_t i = font.indexOf(codePoint);
            x += isFirst ? -font.glyphs[i].bearing : font.glyphs[i].bearing;
            x -= font.padding / 2;
            placed.push_back({i, pen, x, x + font.glyphs[i].advance});
            x = placed.back().nextPen;
        }
        isFirst = false;
    }
    return placed;
}

} // namespace test
