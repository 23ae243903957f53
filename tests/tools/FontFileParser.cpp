#include "FontFileParser.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

namespace test
{

ParsedFont::ParsedFont(std::string_view bytes)
{
    const auto take = [&bytes](auto& value)
    {
        ASSERT_GE(bytes.size(), sizeof value) << "the file is too short";
        std::memcpy(&value, bytes.data(), sizeof value);
        bytes.remove_prefix(sizeof value);
    };
    std::uint16_t bitsPerPixel = 0, nGlyphs = 0;
    for (float* pMetric : {&metricA, &metricB, &spaceWidth, &padding, &metricC, &lineHeight})
        take(*pMetric);
    take(width);
    take(height);
    take(bitsPerPixel);
    take(nGlyphs);
    EXPECT_EQ(bitsPerPixel, 8);
    glyphs.resize(nGlyphs);
    for (Glyph& glyph : glyphs)
        take(glyph);
    pixels.assign(bytes.begin(), bytes.end());
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
