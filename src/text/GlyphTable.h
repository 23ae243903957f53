#pragma once

#include <gui/gl/Font.h>

#include <cstddef>
#include <span>
#include <vector>

namespace gui::gl
{

/// A font's metrics that are not a glyph's own.
struct FontMetrics
{
    float lineHeight;
    float glyphPadding;
    float spaceWidth;
    float additionalSpace;
    float lineSpacing;
};

/// The glyphs of a font as layout wants them: found by code point in two steps, and all that is needed of one in one
/// place.
class GlyphTable
{
public:
    /// What a character is: 0 a space, i + 1 the glyph of index i. Line breaks and bytes that are no character have
    /// numbers too, but no entry.
    using Number = unsigned int;
    static constexpr Number cSpace = 0;
    static constexpr Number cFirstGlyph = 1;
    static constexpr Number cLineBreak = 0x10000;
    static constexpr Number cLead = 0x10001;

    struct alignas(32) Entry
    {
        float advance;
        float bearing;
        float start; ///< edges of the quad, from the pen behind the bearing: 0, and the width with the padding
        float end;
        unsigned int nQuads;  ///< 1; 0 for the space, which only moves the pen
        unsigned int nFloats; ///< of the quads' vertices
        float left;           ///< edges in the atlas
        float right;
    };

    /// @param glyphs  of the font; not empty, and there as long as the table
    GlyphTable(std::span<const Font::_glyph> glyphs, const cnt::Dictionary<wchar_t, unsigned short>& map,
               const FontMetrics& metrics);

    /// Takes over what can be set. The padding stays.
    void setMetrics(const FontMetrics& metrics);
    const FontMetrics& metrics() const { return _metrics; }

    /// Whether right edges of all glyphs are right of the left ones.
    bool areAllEdgesOrdered() const { return _areAllEdgesOrdered; }

    /// Up to how many bytes of a text sums of metrics are exact in any order, unscaled: 0 where they never are.
    std::size_t exactLength() const { return _exactLength; }
    /// What a glyph or space that is not the first one moves the pen, as far as sums are exact.
    float way(Number number) const { return _ways[number]; }

    /// Whether all metrics are finite.
    bool isFinite() const { return _isFinite; }

    /// Of a code point that is no single byte: its glyph's, the last glyph's where it has none, or a line break's.
    Number number(char32_t codePoint) const
    {
        const Number number = _pages[_pageOf[codePoint / cPageSize] * cPageSize + codePoint % cPageSize];
        if (number == cBreakOnPage) [[unlikely]]
            return cLineBreak;
        return number;
    }

    /// The number of a byte that is a character, otherwise cLead.
    Number numberOfByte(unsigned char byte) const { return _bytes[byte]; }

    static bool hasEntry(Number number) { return number < cLineBreak; }
    const Entry& entry(Number number) const { return _entries[number]; }

private:
    float rightEdge(std::size_t index) const { return index + 1 < _glyphs.size() ? _glyphs[index + 1].tx : 1.0f; }

    // Of 16 bits, of which a font can need all others. Spaces are single bytes, and on no page.
    using NumberOnPage = unsigned short;
    static constexpr NumberOnPage cBreakOnPage = 0;
    static constexpr std::size_t cPageSize = 256;

    NumberOnPage& slot(char32_t codePoint);
    void numberGlyphs(const cnt::Dictionary<wchar_t, unsigned short>& map);
    void numberBytes();
    void makeEntries(float padding);
    void makeWays();

    std::span<const Font::_glyph> _glyphs;
    std::vector<unsigned short> _pageOf;
    std::vector<NumberOnPage> _pages;
    std::vector<Entry> _entries;
    std::vector<float> _ways; // of the same
    Number _bytes[256] = {};
    FontMetrics _metrics = {};
    bool _areAllEdgesOrdered = true;
    bool _areGlyphsFinite = true;
    bool _isFinite = false;
    std::size_t _exactLength = 0;
};

} // namespace gui::gl
