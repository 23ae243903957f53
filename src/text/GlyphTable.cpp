#include "GlyphTable.h"

#include <algorithm>
#include <cmath>

namespace gui::gl
{

namespace
{

constexpr char32_t cCodePoints = 0x110000;
constexpr char32_t cLineSeparator = 0x2028;
constexpr char32_t cASCII = 128;
constexpr unsigned int cFloatsPerQuad = 6 * 4;

bool isCodePoint(wchar_t key) { return key >= 0 && char32_t(key) < cCodePoints; }

} // namespace

GlyphTable::GlyphTable(std::span<const Font::_glyph> glyphs, const cnt::Dictionary<wchar_t, unsigned short>& map,
                       const FontMetrics& metrics)
    : _glyphs(glyphs)
{
    numberGlyphs(map);
    makeEntries(metrics.glyphPadding);
    numberBytes();
    setMetrics(metrics);
}

void GlyphTable::setMetrics(const FontMetrics& metrics)
{
    const bool isSpacedAlike = !_ways.empty() && metrics.additionalSpace == _metrics.additionalSpace &&
                               metrics.spaceWidth == _metrics.spaceWidth && _isFinite;
    _metrics = metrics;
    _entries[cSpace] = {};
    _entries[cSpace].advance = metrics.additionalSpace + metrics.spaceWidth;
    _isFinite = _areGlyphsFinite && std::isfinite(metrics.lineHeight) && std::isfinite(metrics.glyphPadding) &&
                std::isfinite(metrics.spaceWidth) && std::isfinite(metrics.additionalSpace) &&
                std::isfinite(metrics.lineSpacing);
    if (!isSpacedAlike || !_isFinite)
        makeWays();
}

// Numbers of the same step add up without rounding as long as the sum has no more digits than a float. Baked fonts have
// whole ones.
void GlyphTable::makeWays()
{
    constexpr float cStep = 1.0F / 64;
    constexpr float cMost = 0x1p24F; // steps
    _exactLength = 0;
    if (!_isFinite)
        return;
    const float halfPadding = _metrics.glyphPadding / 2, space = _metrics.additionalSpace;
    float most = 0;
    bool isExact = true;
    const auto look = [&](float number)
    {
        const float steps = number / cStep;
        isExact = isExact && std::abs(steps) < cMost && steps == std::trunc(steps);
        return std::abs(steps);
    };
    const float around = look(halfPadding) + look(space);
    _ways.clear();
    for (const Entry& entry : _entries)
    {
        most = std::max(most, 2 * look(entry.bearing) + look(entry.advance) + around);
        _ways.push_back(entry.nQuads == 0 ? entry.advance : entry.bearing - halfPadding + entry.advance + space);
    }
    if (isExact)
        _exactLength = static_cast<std::size_t>(cMost / std::max(2 * most, 1.0F));
}

GlyphTable::NumberOnPage& GlyphTable::slot(char32_t codePoint)
{
    return _pages[_pageOf[codePoint / cPageSize] * cPageSize + codePoint % cPageSize];
}

void GlyphTable::numberGlyphs(const cnt::Dictionary<wchar_t, unsigned short>& map)
{
    // Page 0 is the page of all code points that have no glyph.
    unsigned short nPages = 1;
    _pageOf.assign(cCodePoints / cPageSize, 0);
    const auto needPage = [&](char32_t codePoint)
    {
        if (_pageOf[codePoint / cPageSize] == 0)
            _pageOf[codePoint / cPageSize] = nPages++;
    };
    needPage(cLineSeparator);
    for (const auto& entry : map)
    {
        if (isCodePoint(entry.key))
            needPage(char32_t(entry.key));
    }
    const auto numberOf = [](std::size_t index) { return static_cast<NumberOnPage>(cFirstGlyph + index); };
    _pages.assign(nPages * cPageSize, numberOf(_glyphs.size() - 1));
    for (const auto& entry : map)
    {
        if (isCodePoint(entry.key))
            slot(char32_t(entry.key)) = numberOf(*map.find(entry.key)); // of equal keys the one that a search finds
    }
}

void GlyphTable::numberBytes()
{
    std::ranges::fill(_bytes, cLead);
    for (char32_t c = 0; c < cASCII; ++c)
        _bytes[c] = slot(c);
    _bytes[std::size_t(' ')] = _bytes[std::size_t('\t')] = cSpace;
    _bytes[std::size_t('\n')] = cLineBreak;
    slot(cLineSeparator) = cBreakOnPage;
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
        _areGlyphsFinite = _areGlyphsFinite && isFinite;
        _entries.push_back(entry);
    }
}

} // namespace gui::gl
