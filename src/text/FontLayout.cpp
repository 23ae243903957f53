#include <gui/gl/Font.h>

#include "GlyphTable.h"
#include "LayoutMemo.h"

#include <td/Assert.h>
#include <td/Search.h>
#include <vo/Log.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace gui::gl
{

namespace
{

std::size_t lengthOf(const char* str, std::size_t len) { return len != 0 ? len : std::strlen(str); }

} // namespace

td::Size<float> Font::addGlyphs(const td::Point<float>& pos, const unsigned char* begin, const unsigned char* end,
                                float scale)
{
    td::Size<float> size;
    if (!isEmpty())
        addPiece(pos, reinterpret_cast<const char*>(begin), reinterpret_cast<const char*>(end), scale, size);
    return size;
}

// One line, or a text without line feeds, of the scaled size that it was measured to have.
bool Font::addAligned(const td::Point<float>& pos, const char* begin, const char* end, float measuredWidth,
                      const _format& format, td::Size<float>& size)
{
    const float shift = format.hAlignment == cRight ? measuredWidth : measuredWidth / 2;
    return addPiece({pos.x - shift, pos.y}, begin, end, format.scale, size);
}

// Aligned text with line feeds: every line is placed on its own, one below the other, and empty ones are left out.
bool Font::addLines(const td::Point<float>& pos, const char* str, std::size_t len, const _format& format,
                    td::Size<float>& size)
{
    float y = pos.y;
    size = {};
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
        if (!measurePiece(str + start, str + lineEnd, lineSize))
            return false;
        lineSize = {lineSize.width * format.scale, lineSize.height * format.scale};
        if (d < 0 && lineSize.width == 0)
            break;
        size.width = std::max(size.width, lineSize.width);
        size.height += lineSize.height;
        td::Size<float> laidOut;
        if (!addAligned({pos.x, y}, str + start, str + lineEnd, lineSize.width, format, laidOut))
            return false;
        y += lineSize.height;
        start = d > 0 ? lineEnd + 1 : len;
    }
    return true;
}

td::Size<float> Font::addString(const td::Point<float>& pos, const char* str, unsigned long len, const _format& format)
{
    if (_committed)
    {
        vo::dbgLog("ERROR! Font::addString called on committed font content! Call reset before addString!");
        TD_ASSERT(!_committed, {});
    }
    TD_ASSERT(str != nullptr, {});
    if (isEmpty())
        return {};
    len = lengthOf(str, len);
    const std::size_t number = _commands.size();
    const std::size_t nBefore = _vertices.size();
    const LayoutMemo::Style style{.x = pos.x,
                                  .y = pos.y,
                                  .scale = format.scale,
                                  .additionalSpace = _additionalSpace,
                                  .lineSpacing = _lineSpacing,
                                  .alignment = format.hAlignment};
    const LayoutMemo::Layout* const pKnown = _pMemo->find(number, {str, len}, style, nBefore, _vertices.capacity());
    if (pKnown != nullptr)
    {
        _vertices.pushSlots(pKnown->nVertices);
        recordString(nBefore, format);
        return pKnown->size;
    }
    // In text of several pieces the first ones would be there when a later one is refused.
    if (!_pTable->areAllEdgesOrdered() && !canLayOut(str, str + len))
        return {};

    td::Size<float> size;
    bool isAdded = false;
    if (format.hAlignment == cLeft)
        isAdded = addPiece(pos, str, str + len, format.scale, size);
    else if (td::count(str, len, '\n') == 0)
    {
        td::Size<float> measured;
        isAdded = measurePiece(str, str + len, measured) &&
                  addAligned(pos, str, str + len, measured.width * format.scale, format, size);
    }
    else
        isAdded = addLines(pos, str, len, format, size);
    if (!isAdded)
        return {};
    recordString(nBefore, format);
    _pMemo->remember(number, {str, len}, style, {nBefore, _vertices.size() - nBefore, size});
    return size;
}

// Its vertices are those from firstVertex on.
void Font::recordString(std::size_t firstVertex, const _format& format)
{
    // Put together elsewhere and copied, it would have to wait for memory, as LayoutMemo::Style would.
    _cmd& cmd = _commands.push_back();
    cmd.firstVertex = static_cast<unsigned int>(firstVertex);
    cmd.vertexCount = static_cast<unsigned int>(_vertices.size() - firstVertex);
    cmd.z = format.z;
    cmd.colorID = format.colorID;
    cmd.hasColor = format.color.has_value();
    cmd.color = format.color.value_or(td::Color());
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

td::Size<float> Font::measure(const char* str, unsigned long len, const td::Range<unsigned int>& range) const
{
    TD_ASSERT(str != nullptr, {});
    td::Size<float> size;
    if (isEmpty())
        return size;
    len = lengthOf(str, len);
    if (std::uint64_t(range.start) + range.count > len)
        return size;
    const char* const begin = str + range.start;
    measurePiece(begin, range.count != 0 ? begin + range.count : str + len, size);
    return size;
}

td::Size<float> Font::measure(const td::StringBase& str, const td::Range<unsigned int>& range) const
{
    return measure(str.c_str(), str.length(), range);
}

} // namespace gui::gl
