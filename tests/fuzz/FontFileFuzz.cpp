// Font files: read without GL, and what was read is used.

#include "Fuzz.h"
#include "support/FontFiles.h"

#include <gui/gl/Text.h>

#include <ios>

using fuzz::require;

namespace
{

struct Header
{
    float metrics[6];
    unsigned int width, height;
    unsigned short bitsPerPixel, nGlyphs;
};

/// What the file says of itself: whether it is a font, and complete.
bool isFont(fuzz::Input input, Header& header)
{
    const std::size_t n = input.left();
    header = input.take<Header>();
    const unsigned int bytesPP = header.bitsPerPixel / 8U;
    if (n < sizeof header || header.nGlyphs == 0 || bytesPP == 0 || bytesPP > 4)
        return false;
    for (unsigned int i = 0; i < header.nGlyphs; ++i)
    {
        const float tx = input.take<test::FontFile::Glyph>().tx;
        if (!(tx >= 0 && tx <= 1))
            return false;
    }
    const std::size_t nBytes = sizeof header + header.nGlyphs * sizeof(test::FontFile::Glyph);
    const std::size_t nPixels = std::size_t(header.width) * header.height;
    return n >= nBytes && (n - nBytes) / bytesPP >= nPixels;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t n)
{
    static fuzz::MemoryFile s_file;
    s_file.write(bytes, n);
    fuzz::Quiet quiet;
    gui::gl::Text text;
    text.allocFonts(1);
    gui::gl::Font& font = *text.getFont(0);
    gui::Image::_data image;
    float metricC = 0;
    bool isRead = false;
    try
    {
        isRead = font.loadBinaryData(s_file.path(), image, metricC);
        require(isRead || quiet.nLines == 1, "a line says why a file was refused");
    }
    catch (const std::ios_base::failure&)
    {
        require(quiet.nLines == 0, "nothing is said about a file that ends too soon");
    }
    Header header;
    require(isRead == isFont({bytes, n}, header), "a file that holds a font is read, and no other");
    if (isRead)
        require(image.data.size() == std::size_t(header.width) * header.height * (header.bitsPerPixel / 8U),
                "the pixels of the atlas");

    // With its own characters, as many as it is likely to have, and one that it lacks; refused files leave no glyphs.
    std::string characters = "a \t\n?\xF4\x8F\xBF\xBF";
    fuzz::Input glyphs(bytes, n);
    glyphs.take<Header>();
    for (unsigned int i = 0; i < 32 && glyphs.left() > 0; ++i)
        characters += test::encoded(glyphs.take<test::FontFile::Glyph>().codePoint);
    for (const td::BYTE alignment : {gui::gl::Font::cLeft, gui::gl::Font::cCentre, gui::gl::Font::cRight})
    {
        font.addString({1, 2}, characters.data(), characters.size(), {.hAlignment = alignment});
        font.measure(characters.data(), characters.size(), {});
    }
    return 0;
}
