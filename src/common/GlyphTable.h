#pragma once

#include <gui/gl/Font.h>

#include <cstddef>
#include <span>
#include <vector>

namespace gui::gl
{

/// The glyphs of a font as layout wants them: found by code point in two steps, and all that is needed of one in one place.
class GlyphTable
{
public:
    /// A glyph's place among the records. Behind the glyphs come the space and, without records, what is no glyph.
    using Number = unsigned short;

    struct alignas(32) Record
    {
        float bearing;
        float advance;
        float width; ///< of the quad: with the padding
        float left;  ///< edges in the atlas
        float right;
        unsigned int nQuads; ///< 1; 0 for the space, which moves the pen only
    };

    /// @param glyphs  of the font; not empty, and there as long as the table
    GlyphTable(std::span<const Font::_glyph> glyphs, const cnt::Dictionary<wchar_t, unsigned short>& map,
               float padding);

    /// Whether right edges of all glyphs are right of the left ones.
    bool areAllEdgesOrdered() const { return _areAllEdgesOrdered; }

    /// Whether GlyphRun can use the table: metrics are finite and 16 bits suffice to number what is no glyph too.
    bool isForRuns() const { return _isForRuns; }

    /// How far a space or tab moves the pen, in font units. 0 at first.
    void setSpace(float advance);

    /// @return the index of a code point's glyph, the last one's where it has none; for spaces and line breaks too, unless
    ///         isForRuns
    Number number(char32_t codePoint) const
    {
        return _pages[_pageOf[codePoint / cPageSize] * cPageSize + codePoint % cPageSize];
    }

    /// The number of a byte that is a character, or isLead.
    Number numberOfByte(unsigned char byte) const { return _bytes[byte]; }

    bool isRecord(Number number) const { return number <= _space; }
    bool isLead(Number number) const { return number > _lineBreak; }
    const Record& record(Number number) const { return _records[number]; }

    float rightEdge(std::size_t index) const { return index + 1 < _glyphs.size() ? _glyphs[index + 1].tx : 1.0f; }

private:
    static constexpr std::size_t cPageSize = 256;

    Number& slot(char32_t codePoint);
    void numberGlyphs(const cnt::Dictionary<wchar_t, unsigned short>& map);
    void makeRecords(float padding);

    std::span<const Font::_glyph> _glyphs;
    std::vector<Number> _pageOf;
    std::vector<Number> _pages;
    std::vector<Record> _records;
    Number _bytes[256] = {};
    Number _space = 0;
    Number _lineBreak = 0;
    bool _areAllEdgesOrdered = true;
    bool _isForRuns = true;
};

} // namespace gui::gl
