// The fast way through Font's layout and measure: one pass over the bytes. It does with each character what FontLayout.cpp
// does with code points, in the same order and with the same rounding, so pen and vertices are the same to the bit. What it
// saves is the decoding into a buffer, the second look at each character, and on the way from one position of the pen to the
// next everything but three additions, each of which waits for the one before.
//
// A space is laid out as a glyph without bearing, padding or width, whose vertices are overwritten by those of the glyph
// behind it. That adds zeros to the pen, which change nothing as long as it is not at -0, and it gets there from nowhere
// else. And where numbers are finite at first, operations bring forth only one kind of NaN, whatever the operands' order.
// All other text is left to the plain way, and so is what follows malformed bytes.
#include <gui/gl/Font.h>

#include "../simd/Lanes.h"
#include "GlyphTable.h"
#include "LayoutMemo.h"
#include "Pen.h"

#include <bit>
#include <cmath>
#include <memory>

namespace gui::gl
{

namespace
{

static_assert(sizeof(Font::_vd) == sizeof(Record));
constexpr std::size_t cVerticesPerGlyph = 6;
constexpr std::size_t cVerticesAtFirst = 1024;

/// What a space or a quad adds beside its own metrics.
struct Addends
{
    float halfPadding;
    float additionalSpace;
};

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

/// A character's number, and what is behind it: null where bytes are malformed.
struct Taken
{
    const unsigned char* pNext;
    GlyphTable::Number number;
};

// A character of several bytes. Apart, to leave the loops the registers.
[[gnu::noinline]] Taken takeLong(const GlyphTable& table, const unsigned char* p, const unsigned char* end)
{
    const unsigned char lead = *p++;
    if (lead >= 0xE0 && lead <= 0xEF)
    {
        char32_t codePoint = lead & 0x0Fu;
        if (!takeTrail(p, end, 2, codePoint) || codePoint < 0x800 || (codePoint >= 0xD800 && codePoint <= 0xDFFF))
            return {};
        return {p + 2, table.number(codePoint)};
    }
    if (lead >= 0xC2 && lead <= 0xDF)
    {
        char32_t codePoint = lead & 0x1Fu;
        if (!takeTrail(p, end, 1, codePoint))
            return {};
        return {p + 1, table.number(codePoint)};
    }
    char32_t codePoint = lead & 0x07u;
    if (lead < 0xF0 || lead > 0xF4 || !takeTrail(p, end, 3, codePoint) || codePoint < 0x10000 || codePoint > 0x10FFFF)
        return {};
    return {p + 3, table.number(codePoint)};
}

// The character at p, which has no entry by its first byte.
inline Taken takeOther(const GlyphTable& table, const unsigned char* p, const unsigned char* end,
                       GlyphTable::Number number)
{
    return number == GlyphTable::cLead ? takeLong(table, p, end) : Taken{p + 1, number};
}

// Half an entry, from its first field on.
inline Record loadHalf(const void* pFirst)
{
    return loadRecord(static_cast<const float*>(std::assume_aligned<sizeof(Record)>(pFirst)));
}

inline Record interleaveLow(Record a, Record b) { return __builtin_shufflevector(a, b, 0, 4, 1, 5); }
inline Record interleaveHigh(Record a, Record b) { return __builtin_shufflevector(a, b, 2, 6, 3, 7); }

/// A text that is laid out piece by piece.
class Run
{
public:
    Run(const GlyphTable& table, const td::Point<float>& pos, float scale, const Pen& pen)
        : _pen(pen)
        , _table(table)
        , _left(pos.x)
        , _scale(scale)
        , _addends{{0, 0}, {(table.metrics().glyphPadding * scale) / 2, scale * table.metrics().additionalSpace}}
    {
    }

    // Numbers so large that their sum is none could be laid out too.
    static bool isPossible(const GlyphTable& table, const td::Point<float>& pos, float scale)
    {
        const bool isMinusZero = std::bit_cast<unsigned int>(pos.x) == std::bit_cast<unsigned int>(-0.0f);
        return table.isForRuns() && !isMinusZero && std::isfinite(pos.x + pos.y + scale);
    }

    /// Lays out the characters that begin before stop.
    /// @param end   of the text; nothing there or behind it is read
    /// @param pOut  room for a quad per byte before stop. Of the room behind the last quad that one more may be overwritten
    /// @return behind the last of the characters; before stop where bytes are malformed
    const unsigned char* add(const unsigned char* p, const unsigned char* stop, const unsigned char* end,
                             Font::_vd* pOut);

    const Pen& pen() const { return _pen; }

    /// How many vertices the last call added.
    std::size_t nVertices() const { return _nVertices; }

    /// Whether a space was laid out behind the last glyph.
    bool hasSpilled() const { return _pLast != nullptr && _pLast->nQuads == 0; }

private:
    Pen _pen;
    const GlyphTable& _table;
    const float _left;
    const float _scale;
    const Addends _addends[2];                 // by the number of quads
    const GlyphTable::Entry* _pLast = nullptr; // what was laid out
    std::size_t _nVertices = 0;
};

inline const unsigned char* Run::add(const unsigned char* p, const unsigned char* stop, const unsigned char* end,
                                     Font::_vd* pOut)
{
    const GlyphTable& table = _table;
    const float s = _scale;
    float* const pFirst = &pOut->x;
    float* pTo = pFirst;
    const GlyphTable::Entry* pEntry = _pLast;
    bool isLineBreak = false;
    do
    {
        // The first glyph of a line is pulled left by what others are pushed right.
        float bearingScale = _pen.isFirst ? -s : s;
        float x = _pen.x;
        const Record bottom{_pen.bottom, 1, _pen.bottom, 1};
        const Record top{_pen.top, 0, _pen.top, 0};
        isLineBreak = false;
        while (p < stop)
        {
            Taken taken{p + 1, table.numberOfByte(*p)};
            if (!GlyphTable::hasEntry(taken.number)) [[unlikely]]
            {
                taken = takeOther(table, p, end, taken.number);
                isLineBreak = taken.pNext != nullptr && !GlyphTable::hasEntry(taken.number);
                p = isLineBreak ? taken.pNext : p;
                if (isLineBreak || taken.pNext == nullptr)
                    break;
            }
            p = taken.pNext;
            pEntry = &table.entry(taken.number);
            const Addends& addends = _addends[pEntry->nQuads];
            const Record scaled = s * loadHalf(&pEntry->advance);
            x += bearingScale * pEntry->bearing;
            bearingScale = s;
            x -= addends.halfPadding;
            // Of both, the second half is meant: the edges in the frame and those in the atlas.
            const Record quad = interleaveHigh(Record{x, x, x, x} + scaled, loadHalf(&pEntry->nQuads));
            const Record leftBottom = interleaveLow(quad, bottom);
            const Record rightTop = interleaveHigh(quad, top);
            storeRecord(pTo, leftBottom);
            storeRecord(pTo + 4, rightTop);
            storeRecord(pTo + 8, interleaveLow(quad, top));
            storeRecord(pTo + 12, leftBottom);
            storeRecord(pTo + 16, interleaveHigh(quad, bottom));
            storeRecord(pTo + 20, rightTop);
            pTo += pEntry->nFloats;
            x += scaled[0] + addends.additionalSpace;
        }
        _pen.x = x;
        _pen.isFirst = _pen.isFirst && std::signbit(bearingScale) != std::signbit(s);
        if (isLineBreak)
        {
            const FontMetrics& metrics = table.metrics();
            _pen.breakLine(_left, s * metrics.lineHeight, s * (metrics.lineHeight + metrics.lineSpacing));
        }
    } while (isLineBreak);
    _pLast = pEntry;
    _nVertices = static_cast<std::size_t>(pTo - pFirst) / 4;
    return p;
}

} // namespace

bool Font::addPiece(const td::Point<float>& pos, const char* begin, const char* end, float scale, td::Size<float>& size)
{
    if (begin >= end)
        return true;
    const Pen first{.x = pos.x, .top = pos.y, .bottom = pos.y + scale * _lineHeight};
    if (_pUTF32 == nullptr || !Run::isPossible(*_pTable, pos, scale)) [[unlikely]]
        return addPlainly(pos, begin, end, scale, first, size);
    if (_vertices.capacity() == 0)
        _vertices.reserve(cVerticesAtFirst);

    Run run(*_pTable, pos, scale, first);
    const auto* p = reinterpret_cast<const unsigned char*>(begin);
    const auto* const pEnd = reinterpret_cast<const unsigned char*>(end);
    do
    {
        // A character has a byte at least.
        const std::size_t room = _vertices.capacity() - _vertices.size();
        const bool isRoom = room >= cVerticesPerGlyph;
        const unsigned char* pStop = pEnd;
        if (room < static_cast<std::size_t>(pEnd - p) * cVerticesPerGlyph) [[unlikely]]
            pStop = p + (isRoom ? room / cVerticesPerGlyph : 1);
        _vd quad[cVerticesPerGlyph];
        p = run.add(p, pStop, pEnd, isRoom ? _vertices.end() : quad);
        if (isRoom) [[likely]]
        {
            _vertices.pushSlots(run.nVertices());
            if (run.hasSpilled())
                _pMemo->overwrote(_vertices.size() + cVerticesPerGlyph);
        }
        else
            _vertices.push_back(quad, run.nVertices()); // which grows if it is a glyph
        if (p < pStop)
            return addPlainly(pos, reinterpret_cast<const char*>(p), end, scale, run.pen(), size);
    } while (p < pEnd);
    size = run.pen().size(pos, scale * _lineSpacing);
    return true;
}

// @return false, with the size as it was, when the text has to be measured plainly
bool Font::runMeasure(const char* begin, const char* end, td::Size<float>& size) const
{
    if (_pUTF32 == nullptr || !_pTable->isForRuns()) [[unlikely]]
        return false;
    const GlyphTable& table = *_pTable;

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
        {
            taken = takeOther(table, p, pEnd, taken.number);
            if (taken.pNext == nullptr)
                return false;
        }
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

} // namespace gui::gl
