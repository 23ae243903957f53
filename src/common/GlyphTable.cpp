#include "GlyphTable.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace gui::gl
{

namespace
{

constexpr char32_t cCodePoints = 0x110000;
constexpr char32_t cSpaces[] = {U' ', U'\t'};
constexpr char32_t cLineBreaks[] = {U'\n', U'\u2028'};
constexpr std::size_t cASCII = 128;

// Behind the glyphs: the space, the line break, and bytes that are no character.
constexpr std::size_t cNumbersOfNoGlyph = 3;

bool isCodePoint(wchar_t key) { return key >= 0 && char32_t(key) < cCodePoints; }

} // namespace

GlyphTable::GlyphTable(std::span<const Font::_glyph> glyphs, const cnt::Dictionary<wchar_t, unsigned short>& map,
                       float padding)
    : _glyphs(glyphs)
{
    numberGlyphs(map);
    makeRecords(padding);
    if (glyphs.size() + cNumbersOfNoGlyph - 1 > std::numeric_limits<Number>::max())
    {
        _isForRuns = false;
        return;
    }
    _space = static_cast<Number>(glyphs.size());
    _lineBreak = static_cast<Number>(glyphs.size() + 1);
    for (const char32_t c : cSpaces)
        slot(c) = _space;
    for (const char32_t c : cLineBreaks)
        slot(c) = _lineBreak;
    std::fill(std::begin(_bytes), std::end(_bytes), static_cast<Number>(glyphs.size() + 2));
    std::copy_n(_pages.begin() + _pageOf[0] * std::ptrdiff_t(cPageSize), cASCII, std::begin(_bytes));
}

void GlyphTable::setSpace(float advance) { _records[_glyphs.size()] = {0, advance, 0, 0, 0, 0}; }

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
    _pages.assign(nPages * cPageSize, static_cast<Number>(_glyphs.size() - 1));
    for (const auto& entry : map)
    {
        if (isCodePoint(entry.key))
            slot(char32_t(entry.key)) = *map.find(entry.key); // of equal keys the one that a search finds
    }
}

void GlyphTable::makeRecords(float padding)
{
    _records.reserve(_glyphs.size() + 1);
    for (std::size_t i = 0; i < _glyphs.size(); ++i)
    {
        const Font::_glyph& glyph = _glyphs[i];
        _records.push_back({glyph.bearing, glyph.advance, glyph.width + padding, glyph.tx, rightEdge(i), 1});
        const Record& record = _records.back();
        _areAllEdgesOrdered = _areAllEdgesOrdered && record.right > record.left;
        _isForRuns =
            _isForRuns && std::isfinite(record.bearing) && std::isfinite(record.advance) && std::isfinite(record.width);
    }
    _records.push_back({});
    _isForRuns = _isForRuns && _areAllEdgesOrdered && std::isfinite(padding);
}

} // namespace gui::gl
