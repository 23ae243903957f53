#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace test
{

/// A font file, value by value. Whatever contradicts the format fails the test.
struct ParsedFont
{
    explicit ParsedFont(std::string_view bytes);

    struct Glyph
    {
        std::uint32_t codePoint;
        float bearing, width, advance, tx;
    };

    /// The index of a character's glyph; the last one for a character that the font lacks.
    std::size_t indexOf(char32_t codePoint) const;
    int leftOf(std::size_t glyph) const;  ///< its cell's first column
    int rightOf(std::size_t glyph) const; ///< the column behind its cell
    int at(int x, int y) const { return pixels[std::size_t(y) * std::size_t(width) + std::size_t(x)]; }
    bool isColumnBlank(int x) const;
    bool isRowBlank(int y) const;

    float metricA = 0, metricB = 0, spaceWidth = 0, padding = 0, metricC = 0, lineHeight = 0;
    int width = 0, height = 0;
    std::vector<Glyph> glyphs;
    std::vector<unsigned char> pixels;
};

/// Where a glyph of a line of text stands, its quad's left edge, and where the pen stood before and went to.
struct PlacedGlyph
{
    std::size_t glyph;
    float pen, left, nextPen;
};

/// Lays out a line from x = 0: the pen goes back by the first glyph's bearing and forward by that of each other, then
/// back by half the padding; there is the quad; then it goes on by the advance. Spaces are left out of the result.
std::vector<PlacedGlyph> layOut(const ParsedFont& font, std::u32string_view line);

} // namespace test
