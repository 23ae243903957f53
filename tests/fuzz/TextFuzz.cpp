// Text of any bytes in any font, laid out beside the plain layout.

#include "Fuzz.h"
#include "support/GLTrace.h"
#include "text/PlainLayout.h"

#include <gui/gl/CurrentContext.h>
#include <gui/gl/Text.h>

#include <epoxy/gl.h>

#include <bit>
#include <cmath>

using fuzz::require;

namespace
{

bool isSame(float a, float b)
{
    return std::bit_cast<unsigned int>(a) == std::bit_cast<unsigned int>(b) || (std::isnan(a) && std::isnan(b));
}

bool isSame(const td::Size<float>& a, const td::Size<float>& b)
{
    return isSame(a.width, b.width) && isSame(a.height, b.height);
}

/// Some twelfths, or any number at all.
float takeNumber(fuzz::Input& input, bool anyBits)
{
    return anyBits ? input.take<float>() : static_cast<float>(input.take<std::int8_t>()) / 12;
}

/// A font of some characters with metrics of the input; its edges grow, as the layout wants them to.
test::FontFile takeFont(fuzz::Input& input, bool anyBits)
{
    static constexpr std::u32string_view cCharacters = U"zeb\u00E9\u0416a\u2019\u3042\U0001F600.\U0010FFFF\uFFFD";
    test::FontFile file(cCharacters.substr(0, 1 + input.below(cCharacters.size())));
    for (float* const pMetric : {&file.spaceWidth, &file.glyphPadding, &file.lineHeight})
        *pMetric = takeNumber(input, anyBits);
    for (test::FontFile::Glyph& glyph : file.glyphs)
        for (float* const pMetric : {&glyph.bearing, &glyph.width, &glyph.advance})
            *pMetric = takeNumber(input, anyBits);
    return file;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t n)
{
    static fuzz::MemoryFile s_file;
    static test::GLTrace s_trace(test::GLTrace::Null);
    fuzz::Quiet quiet;
    gui::gl::CurrentContext::set(&s_trace);
    fuzz::Input input(bytes, n);
    const bool anyBits = input.below(4) == 0;
    test::PlainLayout plain{.file = takeFont(input, anyBits), .vertices = {}};
    const std::string file = plain.file.bytes();
    s_file.write(reinterpret_cast<const std::uint8_t*>(file.data()), file.size());

    gui::gl::Text text;
    text.allocFonts(1);
    gui::gl::Font& font = *text.getFont(0);
    gui::Image::_data image;
    float metricC = 0;
    require(font.loadBinaryData(s_file.path(), image, metricC), "a font is read");
    plain.additionalSpace = takeNumber(input, anyBits);
    plain.lineSpacing = takeNumber(input, anyBits);
    font.setAdditionalSpaceBetweenGlyphs(plain.additionalSpace);
    font.setSpaceBetweenLines(plain.lineSpacing);
    const test::PlainLayout::Format format{.scale = takeNumber(input, anyBits),
                                           .hAlignment = static_cast<td::BYTE>(input.below(4))};
    const td::Point<float> pos(takeNumber(input, anyBits), takeNumber(input, anyBits));
    const unsigned int start = input.below(32), count = input.below(32);

    // In memory of its size, without a zero behind it. An empty text is one up to its zero.
    const std::string utf8 = input.text();
    const auto len = static_cast<unsigned int>(utf8.size());
    const std::vector<char> exact(utf8.empty() ? std::vector<char>{'\0'} : std::vector<char>(utf8.begin(), utf8.end()));
    require(isSame(font.addString(pos, exact.data(), len, format), plain.addString(pos, utf8, format)), "the size");
    td::Size<float> expected;
    if (start + count <= len && (start == 0 || start < len))
        expected =
            plain.measure(test::PlainLayout::decoded(utf8.substr(start, count == 0 ? std::string::npos : count)));
    require(isSame(font.measure(exact.data(), len, {start, count}), expected), "the size of a piece");

    require(font.commit(), "vertices are uploaded");
    const std::vector<float> vertices = s_trace.lastBuffer<float>(GL_ARRAY_BUFFER);
    require(vertices.size() == plain.vertices.size(), "six vertices for each glyph");
    for (std::size_t i = 0; i < vertices.size(); ++i)
        require(isSame(vertices[i], plain.vertices[i]), "the vertices");
    require(quiet.nAsserts + quiet.nLines == 0, "nothing is said about any text");
    text.release();
    s_trace.clear();
    return 0;
}
