#include <gui/gl/Font.h>

#include "GlyphRun.h"
#include "LayoutMemo.h"

#include <td/Assert.h>
#include <td/Search.h>
#include <vo/Log.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace gui::gl
{

namespace
{

constexpr std::size_t cVerticesAtFirst = 1024;

// Where sums have no rounding: a glyph is one addition, and the next one need not wait for three.
bool measureExactly(const GlyphTable& table, const char* begin, const char* end, td::Size<float>& size)
{
    const FontMetrics& metrics = table.metrics();
    const auto* p = reinterpret_cast<const unsigned char*>(begin);
    const auto* const pEnd = reinterpret_cast<const unsigned char*>(end);
    const auto take = [&table, pEnd](const unsigned char* pAt)
    {
        const Taken taken{pAt + 1, table.numberOfByte(*pAt)};
        return GlyphTable::hasEntry(taken.number) ? taken : takeOtherApart(table, pAt, pEnd, taken.number);
    };
    float x = 0, y = 0, bottom = metrics.lineHeight, widest = 0;
    // The first one is pulled left.
    if (const Taken first = take(p); GlyphTable::hasEntry(first.number))
        x -= 2 * table.entry(first.number).bearing;
    bool hasBreaks = false;
    while (p < pEnd)
    {
        const Taken taken = take(p);
        p = taken.pNext;
        if (!GlyphTable::hasEntry(taken.number)) [[unlikely]]
        {
            hasBreaks = true;
            widest = std::max(widest, x);
            x = 0;
            y += metrics.lineHeight + metrics.lineSpacing + metrics.additionalSpace;
            bottom = y + metrics.lineHeight;
            continue;
        }
        x += table.way(taken.number);
    }
    size = {std::max(widest, x), bottom + metrics.lineSpacing};
    return hasBreaks;
}

// Of a text that can be laid out. @return whether it may have line breaks
bool measureText(const GlyphTable& table, const char* begin, const char* end, td::Size<float>& size)
{
    if (begin >= end)
        return false;
    if (static_cast<std::size_t>(end - begin) <= table.exactLength())
        return measureExactly(table, begin, end, size);

    const FontMetrics& metrics = table.metrics();
    const Addends addends[2]{{0, 0}, {metrics.glyphPadding / 2, metrics.additionalSpace}};
    // To add nothing takes its time too.
    const bool isSpaced = metrics.additionalSpace != 0;
    float x = 0;
    float y = 0;
    float bottom = metrics.lineHeight;
    float widest = 0;
    float bearingSign = -1;
    const auto* p = reinterpret_cast<const unsigned char*>(begin);
    const auto* const pEnd = reinterpret_cast<const unsigned char*>(end);
    while (p < pEnd)
    {
        Taken taken{p + 1, table.numberOfByte(*p)};
        if (!GlyphTable::hasEntry(taken.number)) [[unlikely]]
            taken = takeOtherApart(table, p, pEnd, taken.number);
        p = taken.pNext;
        if (!GlyphTable::hasEntry(taken.number)) [[unlikely]]
        {
            widest = std::max(widest, x);
            x = 0;
            y += metrics.lineHeight + metrics.lineSpacing + metrics.additionalSpace;
            bottom = y + metrics.lineHeight;
            bearingSign = 1;
            continue;
        }
        // Unlike layout: nothing behind the piece's first code point is pulled left, be it the first of its line.
        const GlyphTable::Entry& entry = table.entry(taken.number);
        x += bearingSign * entry.bearing;
        bearingSign = 1;
        x -= addends[entry.nQuads].halfPadding;
        x += entry.advance;
        if (isSpaced)
            x += addends[entry.nQuads].additionalSpace;
    }
    size = {std::max(widest, x), bottom + metrics.lineSpacing};
    return true;
}

} // namespace

// Whether a text can be laid out: asserts where it can't.
bool Font::canLayOut(const char* begin, const char* end) const
{
    return (_pUTF32 != nullptr && _pTable->areAllEdgesOrdered()) || begin >= end || isLaidOut(begin, end);
}

// The same of a string. Of aligned ones empty lines are left out, and nothing is asked for their sake.
bool Font::canLayOut(const char* str, std::size_t len, const _format& format) const
{
    const char* const end = str + len;
    while (format.hAlignment != cLeft && str != end && *str == '\n')
        ++str;
    return canLayOut(str, end);
}

[[gnu::noinline]] bool Font::isLaidOut(const char* begin, const char* end) const
{
    TD_ASSERT(_pUTF32, false);
    const auto* p = reinterpret_cast<const unsigned char*>(begin);
    const auto* const pEnd = reinterpret_cast<const unsigned char*>(end);
    while (p < pEnd)
    {
        Taken taken{p + 1, _pTable->numberOfByte(*p)};
        if (!GlyphTable::hasEntry(taken.number))
            taken = takeOtherApart(*_pTable, p, pEnd, taken.number);
        p = taken.pNext;
        if (taken.number == GlyphTable::cSpace || taken.number == GlyphTable::cLineBreak)
            continue;
        const float tx = _pTable->entry(taken.number).left;
        const float nextTx = _pTable->entry(taken.number).right;
        TD_ASSERT(nextTx > tx, false);
    }
    return true;
}

// A call more would be felt in short texts.
template <bool tellsSpacesApart>
[[gnu::always_inline]] inline td::Size<float> Font::addRun(const td::Point<float>& pos, const char* begin,
                                                           const char* end, float scale)
{
    const auto* p = reinterpret_cast<const unsigned char*>(begin);
    const auto* const pEnd = reinterpret_cast<const unsigned char*>(end);
    // A character has a byte at least.
    _vd* const pTo = _vertices.end();
    if (static_cast<std::size_t>(_vertices.getEndPos() - pTo) < static_cast<std::size_t>(pEnd - p) * cQuadVertices)
        [[unlikely]]
        return addGrowing(pos, begin, end, scale);
    Run<tellsSpacesApart> run(*_pTable, pos, scale);
    run.add(p, pEnd, pEnd, pTo);
    _vertices.useTo(run.end());
    if (run.hasSpilled())
        _pMemo->overwrote(_vertices.size() + cQuadVertices);
    return run.pen().size(pos, scale * _lineSpacing);
}

// What may not find room. Spaces are told apart, which is always right.
[[gnu::noinline]] td::Size<float> Font::addGrowing(const td::Point<float>& pos, const char* begin, const char* end,
                                                   float scale)
{
    if (_vertices.capacity() == 0)
        _vertices.reserve(cVerticesAtFirst);
    _pMemo->moved();
    Run<true> run(*_pTable, pos, scale);
    const auto* p = reinterpret_cast<const unsigned char*>(begin);
    const auto* const pEnd = reinterpret_cast<const unsigned char*>(end);
    do
    {
        const std::size_t room = (_vertices.capacity() - _vertices.size()) / cQuadVertices;
        _vd quad[cQuadVertices];
        const auto nBytes = static_cast<std::size_t>(pEnd - p);
        p = run.add(p, p + std::clamp<std::size_t>(room, 1, nBytes), pEnd, room != 0 ? _vertices.end() : quad);
        if (room != 0) [[likely]]
            _vertices.useTo(run.end());
        else
            _vertices.push_back(quad, static_cast<std::size_t>(run.end() - quad)); // which grows if it is a glyph
    } while (p < pEnd);
    return run.pen().size(pos, scale * _lineSpacing);
}

// Apart: there is hardly ever one.
[[gnu::noinline]] td::Size<float> Font::addPrecisely(const td::Point<float>& pos, const char* begin, const char* end,
                                                     float scale)
{
    return addRun<true>(pos, begin, end, scale);
}

// Of a text that can be laid out.
[[gnu::always_inline]] inline td::Size<float> Font::addPiece(const td::Point<float>& pos, const char* begin,
                                                             const char* end, float scale)
{
    if (begin >= end) [[unlikely]]
        return {};
    const bool isMinusZero = std::bit_cast<unsigned int>(pos.x) == std::bit_cast<unsigned int>(-0.0f);
    // Numbers so large that their sum is none are told from infinite ones in vain, but rightly.
    if (!_pTable->isFinite() || isMinusZero || !std::isfinite(pos.x + pos.y + scale)) [[unlikely]]
        return addPrecisely(pos, begin, end, scale);
    return addRun<false>(pos, begin, end, scale);
}

td::Size<float> Font::addGlyphs(const td::Point<float>& pos, const unsigned char* begin, const unsigned char* end,
                                float scale)
{
    const char* const pFirst = reinterpret_cast<const char*>(begin);
    const char* const pEnd = reinterpret_cast<const char*>(end);
    if (isEmpty() || !canLayOut(pFirst, pEnd))
        return {};
    return addPiece(pos, pFirst, pEnd, scale);
}

// Of a text that can be laid out.
void Font::measurePiece(const char* begin, const char* end, td::Size<float>& size) const
{
    measureText(*_pTable, begin, end, size);
}

// One line, or a text without line feeds, of the scaled width that it was measured to have.
td::Size<float> Font::addAligned(const td::Point<float>& pos, const char* begin, const char* end, float measuredWidth,
                                 const _format& format)
{
    const float shift = format.hAlignment == cRight ? measuredWidth : measuredWidth / 2;
    return addPiece({pos.x - shift, pos.y}, begin, end, format.scale);
}

// Aligned text of len bytes, with line feeds or without.
td::Size<float> Font::addAlignedText(const td::Point<float>& pos, const char* str, std::size_t len,
                                     const _format& format)
{
    td::Size<float> measured;
    if (measureText(*_pTable, str, str + len, measured) && std::memchr(str, '\n', len) != nullptr)
        return addLines(pos, str, len, format);
    return addAligned(pos, str, str + len, measured.width * format.scale, format);
}

// Aligned text with line feeds: every line is placed on its own, one below the other, and empty ones are left out.
td::Size<float> Font::addLines(const td::Point<float>& pos, const char* str, std::size_t len, const _format& format)
{
    float y = pos.y;
    td::Size<float> size;
    for (std::size_t start = 0; start < len;)
    {
        const std::ptrdiff_t d = td::findFromLeft(str, '\n', start, len);
        if (d == 0)
        {
            ++start;
            continue;
        }
        const std::size_t lineEnd = d > 0 ? start + static_cast<std::size_t>(d) : len;
        td::Size<float> lineSize;
        measurePiece(str + start, str + lineEnd, lineSize);
        lineSize = {lineSize.width * format.scale, lineSize.height * format.scale};
        if (d < 0 && lineSize.width == 0)
            break;
        size.width = std::max(size.width, lineSize.width);
        size.height += lineSize.height;
        addAligned({pos.x, y}, str + start, str + lineEnd, lineSize.width, format);
        y += lineSize.height;
        start = d > 0 ? lineEnd + 1 : len;
    }
    return size;
}

void Font::setLooks(_cmd& cmd, const _format& format)
{
    cmd.z = format.z;
    cmd.colorID = format.colorID;
    cmd.hasColor = format.color.has_value();
    cmd.color = format.color.value_or(td::Color());
}

// Its vertices are those from firstVertex on.
inline void Font::recordString(std::size_t firstVertex, std::size_t nVertices, const _format& format)
{
    // Put together elsewhere and copied, it would have to wait for memory, as LayoutMemo::Style would.
    _cmd& cmd = _commands.push_back();
    cmd.firstVertex = static_cast<unsigned int>(firstVertex);
    cmd.vertexCount = static_cast<unsigned int>(nVertices);
    setLooks(cmd, format);
}

td::Size<float> Font::addString(const td::Point<float>& pos, const char* str, unsigned long len, const _format& format)
{
    if (_committed) [[unlikely]]
    {
        vo::dbgLog("ERROR! Font::addString called on committed font content! Call reset before addString!");
        TD_ASSERT(!_committed, {});
    }
    TD_ASSERT(str != nullptr, {});
    if (isEmpty()) [[unlikely]]
        return {};
    if (len == 0)
        len = std::strlen(str);
    const std::size_t number = _commands.size();
    const std::size_t nBefore = _vertices.size();
    const LayoutMemo::Style style{.x = pos.x,
                                  .y = pos.y,
                                  .scale = format.scale,
                                  .additionalSpace = _additionalSpace,
                                  .lineSpacing = _lineSpacing,
                                  .alignment = format.hAlignment};
    if (const LayoutMemo::Entry* const pKnown = _pMemo->find(number, {str, len}, style, nBefore))
    {
        recordString(nBefore, pKnown->nVertices, format);
        _vertices.pushSlots(pKnown->nVertices);
        return pKnown->size;
    }
    if (!canLayOut(str, len, format)) [[unlikely]]
        return {};
    LayoutMemo::Entry* const pEntry = _pMemo->remember(number, {str, len}, style);
    const td::Size<float> size = format.hAlignment == cLeft ? addPiece(pos, str, str + len, format.scale)
                                                            : addAlignedText(pos, str, len, format);
    const std::size_t nVertices = _vertices.size() - nBefore;
    recordString(nBefore, nVertices, format);
    if (pEntry != nullptr) [[likely]]
    {
        pEntry->firstVertex = nBefore;
        pEntry->nVertices = nVertices;
        pEntry->size = size;
    }
    return size;
}

td::Size<float> Font::measure(const char* str, unsigned long len, const td::Range<unsigned int>& range) const
{
    TD_ASSERT(str != nullptr, {});
    td::Size<float> size;
    if (isEmpty())
        return size;
    if (len == 0)
        len = std::strlen(str);
    if (std::uint64_t(range.start) + range.count > len)
        return size;
    const char* const begin = str + range.start;
    const char* const end = range.count != 0 ? begin + range.count : str + len;
    if (canLayOut(begin, end))
        measurePiece(begin, end, size);
    return size;
}

td::Size<float> Font::addString(const td::Point<float>& pos, const td::StringBase& str, const _format& format)
{
    return addString(pos, str.c_str(), str.length(), format);
}

td::Size<float> Font::addString(const td::Point<float>& pos, const char* str, unsigned long len, td::ColorID colorID,
                                float scale)
{
    return addString(pos, str, len, _format{.scale = scale, .colorID = colorID});
}

td::Size<float> Font::addString(const td::Point<float>& pos, const td::StringBase& str, td::ColorID colorID,
                                float scale)
{
    return addString(pos, str.c_str(), str.length(), colorID, scale);
}

td::Size<float> Font::addString(const td::Point<float>& pos, const char* str, unsigned long len, td::Color color,
                                float scale)
{
    return addString(pos, str, len, _format{.scale = scale, .color = color});
}

td::Size<float> Font::addString(const td::Point<float>& pos, const td::StringBase& str, td::Color color, float scale)
{
    return addString(pos, str.c_str(), str.length(), color, scale);
}

td::Size<float> Font::measure(const td::StringBase& str, const td::Range<unsigned int>& range) const
{
    return measure(str.c_str(), str.length(), range);
}

} // namespace gui::gl
