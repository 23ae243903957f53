#include "GlyphRun.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace gui::gl
{

namespace
{

using Vector [[gnu::vector_size(16)]] = float;
using VertexInMemory [[gnu::vector_size(16), gnu::aligned(4), gnu::may_alias]] = float;
static_assert(sizeof(Font::_vd) == sizeof(Vector));

constexpr std::size_t cVerticesPerQuad = 6;

// The bytes behind a character's first one: six bits of it each.
inline bool takeTrail(const unsigned char* p, const unsigned char* end, std::ptrdiff_t n, char32_t& codePoint)
{
    if (end - p < n)
        return false;
    for (std::ptrdiff_t i = 0; i < n; ++i)
    {
        if ((p[i] & 0xC0u) != 0x80)
            return false;
        codePoint = codePoint << 6 | (p[i] & 0x3Fu);
    }
    return true;
}

// A character of several bytes. @return their number; 0 where they are malformed
inline std::ptrdiff_t decode(const unsigned char* p, const unsigned char* end, char32_t& codePoint)
{
    const unsigned char lead = *p++;
    if (lead >= 0xE0 && lead <= 0xEF)
    {
        codePoint = lead & 0x0Fu;
        const bool isWhole = takeTrail(p, end, 2, codePoint);
        const bool isSurrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
        return isWhole && codePoint >= 0x800 && !isSurrogate ? 3 : 0;
    }
    if (lead >= 0xC2 && lead <= 0xDF)
    {
        codePoint = lead & 0x1Fu;
        return takeTrail(p, end, 1, codePoint) ? 2 : 0;
    }
    codePoint = lead & 0x07u;
    const bool isWhole = lead >= 0xF0 && lead <= 0xF4 && takeTrail(p, end, 3, codePoint);
    return isWhole && codePoint >= 0x10000 && codePoint <= 0x10FFFF ? 4 : 0;
}

// The character at p, which is behind it afterwards. @return false where bytes are malformed
inline bool take(const GlyphTable& table, const unsigned char*& p, const unsigned char* end, GlyphTable::Number& number)
{
    number = table.numberOfByte(*p);
    if (!table.isLead(number)) [[likely]]
    {
        ++p;
        return true;
    }
    char32_t codePoint = 0;
    const std::ptrdiff_t n = decode(p, end, codePoint);
    if (n == 0)
        return false;
    p += n;
    number = table.number(codePoint);
    return true;
}

// {a0, b0, a1, b1}
inline Vector interleave(Vector a, Vector b) { return __builtin_shufflevector(a, b, 0, 4, 1, 5); }

} // namespace

bool GlyphRun::canMeasure(const FontMetrics& metrics)
{
    return std::isfinite(metrics.lineHeight) && std::isfinite(metrics.additionalSpace) &&
           std::isfinite(metrics.lineSpacing);
}

bool GlyphRun::canRun(const FontMetrics& metrics, const td::Point<float>& pos, float scale)
{
    const bool isMinusZero = std::bit_cast<unsigned int>(pos.x) == std::bit_cast<unsigned int>(-0.0f);
    return canMeasure(metrics) && !isMinusZero && std::isfinite(pos.x) && std::isfinite(pos.y) && std::isfinite(scale);
}

GlyphRun::GlyphRun(const GlyphTable& table, const FontMetrics& metrics, const td::Point<float>& pos, float scale,
                   Pen& pen)
    : _table(table)
    , _metrics(metrics)
    , _startX(pos.x)
    , _scale(scale)
    , _addends{{0, 0}, {(metrics.glyphPadding * scale) / 2, scale * metrics.additionalSpace}}
    , _pen(pen)
{
}

const unsigned char* GlyphRun::add(const unsigned char* p, const unsigned char* stop, const unsigned char* end,
                                   Font::_vd*& pOut)
{
    const float s = _scale;
    // The first glyph of a line is pulled left by what others are pushed right.
    float bearingScale = _pen.isFirst ? -s : s;
    float x = _pen.x;
    Vector bottom{_pen.bottom, 1};
    Vector top{_pen.top, 0};
    unsigned int nQuads = _hasSpilled ? 0 : 1;
    auto* pTo = reinterpret_cast<VertexInMemory*>(pOut);
    while (p < stop)
    {
        GlyphTable::Number number = 0;
        if (!take(_table, p, end, number)) [[unlikely]]
            break;
        if (!_table.isRecord(number)) [[unlikely]]
        {
            _pen.widest = std::max(_pen.widest, x - _startX);
            x = _startX;
            _pen.top += s * (_metrics.lineHeight + _metrics.lineSpacing);
            _pen.bottom = _pen.top + s * _metrics.lineHeight;
            bottom[0] = _pen.bottom;
            top[0] = _pen.top;
            bearingScale = -s;
            continue;
        }
        const GlyphTable::Record& record = _table.record(number);
        nQuads = record.nQuads;
        const Addends& addends = _addends[nQuads];
        x += bearingScale * record.bearing;
        bearingScale = s;
        x -= addends.halfPadding;
        const float x1 = x + s * record.width;
        const Vector left = interleave(Vector{x}, Vector{record.left});
        const Vector right = interleave(Vector{x1}, Vector{record.right});
        const Vector leftBottom = interleave(left, bottom);
        const Vector rightTop = interleave(right, top);
        pTo[0] = leftBottom;
        pTo[1] = rightTop;
        pTo[2] = interleave(left, top);
        pTo[3] = leftBottom;
        pTo[4] = interleave(right, bottom);
        pTo[5] = rightTop;
        pTo += cVerticesPerQuad * nQuads;
        x += s * record.advance + addends.additionalSpace;
    }
    _pen.x = x;
    _pen.isFirst = std::bit_cast<unsigned int>(bearingScale) != std::bit_cast<unsigned int>(s);
    _hasSpilled = nQuads == 0;
    pOut = reinterpret_cast<Font::_vd*>(pTo);
    return p;
}

bool GlyphRun::measure(const GlyphTable& table, const FontMetrics& metrics, const unsigned char* p,
                       const unsigned char* end, td::Size<float>& size)
{
    const Addends addends[2]{{0, 0}, {metrics.glyphPadding / 2, metrics.additionalSpace}};
    // To add nothing takes its time too.
    const bool isSpaced = metrics.additionalSpace != 0;
    float x = 0;
    float y = 0;
    float bottom = metrics.lineHeight;
    float widest = 0;
    float bearingSign = -1;
    while (p < end)
    {
        GlyphTable::Number number = 0;
        if (!take(table, p, end, number)) [[unlikely]]
            return false;
        if (!table.isRecord(number)) [[unlikely]]
        {
            widest = std::max(widest, x);
            x = 0;
            y += metrics.lineHeight + metrics.lineSpacing + metrics.additionalSpace;
            bottom = y + metrics.lineHeight;
            bearingSign = 1;
            continue;
        }
        const GlyphTable::Record& record = table.record(number);
        x += bearingSign * record.bearing;
        bearingSign = 1;
        x -= addends[record.nQuads].halfPadding;
        x += record.advance;
        if (isSpaced)
            x += addends[record.nQuads].additionalSpace;
    }
    widest = std::max(widest, x);
    size = {widest, bottom + metrics.lineSpacing};
    return true;
}

} // namespace gui::gl
