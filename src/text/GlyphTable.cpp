#include "GlyphTable.h"

#include <algorithm>
#include <cmath>

namespace gui::gl
{

namespace
{

constexpr char32_t cCodePoints = 0x110000;
constexpr char32_t cSpaces[] = {U' ', U'\t'};
constexpr char32_t cLineBreaks[] = {U'\n', U'\u2028'};
constexpr std::size_t cASCII = 128;
constexpr unsigned int cFloatsPerQuad = 6 * 4;

bool isCodePoint(wchar_t key) { return key >= 0 && char32_t(key) < cCodePoints; }

} // namespace

GlyphTable::GlyphTable(std::span<const Font::_glyph> glyphs, const cnt::Dictionary<wchar_t, unsigned short>& map,
                       const FontMetrics& metrics)
    : _glyphs(glyphs)
{
    numberGlyphs(map);
    makeEntries(metrics.glyphPadding);
    if (cFirstGlyph + glyphs.size() <= cLineBreak)
        numberOthers();
    else
        _areGlyphsForRuns = false;
    setMetrics(metrics);
}

void GlyphTable::setMetrics(const FontMetrics& metrics)
{
    _metrics = metrics;
    _entries[cSpace] = {};
    _entries[cSpace].advance = metrics.additionalSpace + metrics.spaceWidth;
    _isForRuns = _areGlyphsForRuns && std::isfinite(metrics.lineHeight) && std::isfinite(metrics.glyphPadding) &&
                 std::isfinite(metrics.spaceWidth) && std::isfinite(metrics.additionalSpace) &&
                 std::isfinite(metrics.lineSpacing);
}

GlyphTable::Number& GlyphTable::slot(char32_t codePoint)
{
    return _pages[_pageOf[codePoint / cPageSize] * cPageSize + codePoint % cPageSize];
}

void GlyphTable::numberGlyphs(const cnt::Dictionary<wchar_t, unsigned short>& map)
{
    // Page 0 is the page of all code points that have no glyph.
    Number nPages = 1;
    _pageOf.assign(cCodePoints / cPageSize, 0);
    const auto needPage = [&](char32_t codePoint)
    {
        if (_pageOf[codePoint / cPageSize] == 0)
            _pageOf[codePoint / cPageSize] = nPages++;
    };
    std::for_each(std::begin(cSpaces), std::end(cSpaces), needPage);
    std::for_each(std::begin(cLineBreaks), std::end(cLineBreaks), needPage);
    for (const auto& entry : map)
    {
        if (isCodePoint(entry.key))
            needPage(char32_t(entry.key));
    }
    const auto numberOf = [](std::size_t index) { return static_cast<Number>(cFirstGlyph + index); };
    _pages.assign(nPages * cPageSize, numberOf(_glyphs.size() - 1));
    for (const auto& entry : map)
    {
        if (isCodePoint(entry.key))
            slot(char32_t(entry.key)) = numberOf(*map.find(entry.key)); // of equal keys the one that a search finds
    }
}

void GlyphTable::numberOthers()
{
    for (const char32_t c : cSpaces)
        slot(c) = cSpace;
    for (const char32_t c : cLineBreaks)
        slot(c) = cLineBreak;
    for (std::size_t byte = 0; byte < std::size(_bytes); ++byte)
        _bytes[byte] = byte < cASCII ? number(static_cast<char32_t>(byte)) : cLead;
}

void GlyphTable::makeEntries(float padding)
{
    _entries.reserve(cFirstGlyph + _glyphs.size());
    _entries.push_back({}); // the space
    for (std::size_t i = 0; i < _glyphs.size(); ++i)
    {
        const Font::_glyph& glyph = _glyphs[i];
        const Entry entry{.advance = glyph.advance,
                          .bearing = glyph.bearing,
                          .start = 0,
                          .end = glyph.width + padding,
                          .nQuads = 1,
                          .nFloats = cFloatsPerQuad,
                          .left = glyph.tx,
                          .right = rightEdge(i)};
        const bool isFinite = std::isfinite(entry.end) && std::isfinite(entry.bearing) && std::isfinite(entry.advance);
        const bool isOrdered = entry.right > entry.left;
        _areAllEdgesOrdered = _areAllEdgesOrdered && isOrdered;
        _areGlyphsForRuns = _areGlyphsForRuns && isFinite && isOrdered;
        _entries.push_back(entry);
    }
}

} // namespace gui::gl
