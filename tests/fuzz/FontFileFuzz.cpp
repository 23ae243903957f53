// Font files: read without GL, and what was read is used.

#include "Fuzz.h"
#include "support/FontFiles.h"

#include <gui/gl/Text.h>

#include <ios>

namespace fuzz::font
{

namespace
{

void run(const std::uint8_t* bytes, std::size_t n)
{
    Quiet quiet;
    gui::gl::Text text;
    text.allocFonts(1);
    gui::gl::Font& font = *text.getFont(0);
    gui::Image::_data image;
    float metricC = 0;
    bool isRead = false;
    try
    {
        isRead = font.loadBinaryData(fileOf(bytes, n), image, metricC);
        require(isRead || quiet.nLines == 1, "a line says why a file was refused");
    }
    catch (const std::ios_base::failure&)
    {
        require(quiet.nLines == 0, "nothing is said about a file that ends too soon");
    }
    const auto expected = test::FontFile::parsed({reinterpret_cast<const char*>(bytes), n});
    require(isRead == expected.has_value(), "a file that holds a font is read, and no other");
    if (isRead)
        require(image.data.size() == std::size_t(expected->width) * expected->height * (expected->bitsPerPixel / 8U),
                "the pixels of the atlas");

    // With its own characters, as many as it is likely to have, and one that it lacks; refused files leave no glyphs.
    std::string characters = "a \t\n?\xF4\x8F\xBF\xBF";
    for (std::size_t i = 0; isRead && i < expected->glyphs.size() && i < 32; ++i)
        characters += test::encoded(expected->glyphs[i].codePoint);
    for (const td::BYTE alignment : {gui::gl::Font::cLeft, gui::gl::Font::cCentre, gui::gl::Font::cRight})
    {
        font.addString({1, 2}, characters.data(), characters.size(), {.hAlignment = alignment});
        font.measure(characters.data(), characters.size(), {});
    }
}

const Target cTarget("font", run);

} // namespace

} // namespace fuzz::font
