#pragma once

#include "support/FontFiles.h"

#include <gui/gl/Font.h>

#include <string>
#include <vector>

namespace test
{

/// The layout of a font by its rules, as plainly as they can be written down.
struct PlainLayout
{
    using Format = gui::gl::Font::_format;
    using Text = std::vector<unsigned int>; ///< code points

    FontFile file;
    float additionalSpace = 0;
    float lineSpacing = 1;
    std::vector<float> vertices; ///< of what was added: x, y, u, v

    td::Size<float> addString(td::Point<float> pos, const std::string& utf8, const Format& format);
    td::Size<float> addGlyphs(td::Point<float> pos, const Text& text, float s);
    td::Size<float> measure(const Text& text) const;

    /// The number of a character's glyph; the last one for a character that the font lacks.
    std::size_t indexOf(unsigned int codePoint) const;

    static Text decoded(const std::string& utf8);

    mutable cnt::Dictionary<wchar_t, unsigned short> map = {}; ///< of the file's code points, once one was looked for

private:
    float edge(std::size_t index) const { return index < file.glyphs.size() ? file.glyphs[index].tx : 1.0f; }
    td::Size<float> addMeasured(td::Point<float> pos, const Text& text, const Format& format, td::Size<float> size);
};

} // namespace test
