#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace test
{

/// What a font file says; the machine has the file's byte order. Change what a test is about, and take the bytes.
struct FontFile
{
    struct Glyph
    {
        unsigned int codePoint;
        float bearing;
        float width;
        float advance;
        float tx;
    };

    /// Glyphs for these characters, with irregular metrics and a pixel of the atlas each; the last one is the
    /// replacement.
    explicit FontFile(std::u32string_view characters);

    /// What a file says; nothing when it is no font, or not complete.
    static std::optional<FontFile> parsed(std::string_view bytes);

    std::string bytes() const;

    float metricA = 0.5f;
    float metricB = 0.25f;
    float spaceWidth = 6.3f;
    float glyphPadding = 2;
    float metricC = 7;
    float lineHeight = 20.1f;
    unsigned int width;
    unsigned int height = 1;
    unsigned short bitsPerPixel = 8;
    std::vector<Glyph> glyphs;
    std::string pixels;
};

std::string encoded(char32_t c);

/// Writes a file, replacing it. @return the path
const std::string& writeFile(const std::string& path, std::string_view bytes);

} // namespace test
