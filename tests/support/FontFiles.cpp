#include "FontFiles.h"

#include <cstring>
#include <filesystem>
#include <fstream>

namespace test
{

namespace
{

template <typename T>
void append(std::string& bytes, const T& value)
{
    bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

} // namespace

FontFile::FontFile(std::u32string_view characters)
    : width(static_cast<unsigned int>(characters.size()))
    , pixels(characters.size(), '\x80')
{
    for (std::size_t i = 0; i < characters.size(); ++i)
    {
        const auto n = static_cast<float>(i);
        glyphs.push_back({characters[i], float(int(i % 5) - 2) * 0.37f, 7 + float(i % 7) / 3, 9 + float(i % 11) / 7,
                          n / static_cast<float>(characters.size())});
    }
}

std::optional<FontFile> FontFile::parsed(std::string_view bytes)
{
    FontFile file(U"");
    bool isGood = true;
    const auto take = [&](auto& value)
    {
        isGood = isGood && bytes.size() >= sizeof value;
        std::memcpy(&value, bytes.data(), isGood ? sizeof value : 0);
        bytes.remove_prefix(isGood ? sizeof value : 0);
    };
    for (float* const pMetric :
         {&file.metricA, &file.metricB, &file.spaceWidth, &file.glyphPadding, &file.metricC, &file.lineHeight})
        take(*pMetric);
    unsigned short nGlyphs = 0;
    take(file.width);
    take(file.height);
    take(file.bitsPerPixel);
    take(nGlyphs);
    file.glyphs.resize(nGlyphs);
    for (Glyph& glyph : file.glyphs)
    {
        take(glyph);
        isGood = isGood && glyph.tx >= 0 && glyph.tx <= 1;
    }
    const std::size_t bytesPP = file.bitsPerPixel / 8U;
    if (!isGood || nGlyphs == 0 || bytesPP == 0 || bytesPP > 4 ||
        bytes.size() / bytesPP < std::size_t(file.width) * file.height)
        return {};
    file.pixels = bytes;
    return file;
}

std::string FontFile::bytes() const
{
    std::string bytes;
    for (const float metric : {metricA, metricB, spaceWidth, glyphPadding, metricC, lineHeight})
        append(bytes, metric);
    append(bytes, width);
    append(bytes, height);
    append(bytes, bitsPerPixel);
    append(bytes, static_cast<unsigned short>(glyphs.size()));
    for (const Glyph& glyph : glyphs)
        append(bytes, glyph);
    return bytes + pixels;
}

std::string encoded(char32_t c)
{
    const auto trail = [c](unsigned int shift) { return static_cast<char>(0x80 | (c >> shift & 0x3F)); };
    if (c < 0x80)
        return {static_cast<char>(c)};
    if (c < 0x800)
        return {static_cast<char>(0xC0 | c >> 6), trail(0)};
    if (c < 0x10000)
        return {static_cast<char>(0xE0 | c >> 12), trail(6), trail(0)};
    return {static_cast<char>(0xF0 | c >> 18), trail(12), trail(6), trail(0)};
}

const std::string& writeFile(const std::string& path, std::string_view bytes)
{
    // Some file systems flush a file to the disk that is cut and written again.
    std::filesystem::remove(path);
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return path;
}

} // namespace test
