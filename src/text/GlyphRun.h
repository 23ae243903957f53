#pragma once

// Layout and measure: one pass over the bytes, in which pen and vertices are computed by the prescribed
// operations in their order, so that they are the same to the bit on every machine. What takes time is that of one
// position of the pen to the next: three additions, each of which waits for the one before.
//
// A space is laid out as a glyph without bearing, padding or width, whose vertices are overwritten by those of the
// glyph behind it. That adds zeros to the pen, which change nothing as long as it is not at -0, and it gets there from
// nowhere else; and an infinite scale would make of zero no number. Where one of these can be, spaces are told apart.
#include "../simd/Lanes.h"
#include "GlyphTable.h"
#include "Pen.h"

#include <vo/UTFConverter.h>

#include <cmath>
#include <cstddef>
#include <memory>

namespace gui::gl
{

namespace
{

static_assert(sizeof(Font::_vd) == sizeof(Record));
constexpr std::size_t cQuadVertices = 6;

/// What a space or a quad adds beside its own metrics.
struct Addends
{
    float halfPadding;
    float additionalSpace;
};

/// A character's number, and what is behind it.
struct Taken
{
    const unsigned char* pNext;
    GlyphTable::Number number;
};

[[gnu::noinline]] Taken takeMalformed(const GlyphTable& table, const unsigned char* p, const unsigned char* end)
{
    const char32_t codePoint = vo::UTFConverter::next(p, end);
    return {p, table.number(codePoint)};
}

// A character of several bytes. Apart, to leave the loops the registers; what calls another function is apart of that.
[[gnu::always_inline]] inline Taken takeLong(const GlyphTable& table, const unsigned char* p, const unsigned char* end)
{
    char32_t codePoint = 0;
    if (!vo::UTFConverter::nextWellFormed(p, end, codePoint)) [[unlikely]]
        return takeMalformed(table, p, end);
    return {p, table.number(codePoint)};
}

// The character at p, which has no entry by its first byte.
inline Taken takeOther(const GlyphTable& table, const unsigned char* p, const unsigned char* end,
                       GlyphTable::Number number)
{
    return number == GlyphTable::cLead ? takeLong(table, p, end) : Taken{p + 1, number};
}

// Where the registers are worth more than a call.
[[gnu::noinline]] Taken takeOtherApart(const GlyphTable& table, const unsigned char* p, const unsigned char* end,
                                       GlyphTable::Number number)
{
    return takeOther(table, p, end, number);
}

// Half an entry, from its first field on.
inline Record loadHalf(const void* pFirst)
{
    return loadRecord(static_cast<const float*>(std::assume_aligned<sizeof(Record)>(pFirst)));
}

inline Record interleaveLow(Record a, Record b) { return __builtin_shufflevector(a, b, 0, 4, 1, 5); }
inline Record interleaveHigh(Record a, Record b) { return __builtin_shufflevector(a, b, 2, 6, 3, 7); }

/// A text that is laid out piece by piece.
template <bool tellsSpacesApart>
class Run
{
public:
    // The pen is put together in place: a copy of one that was just written, read as a block, waits for memory.
    Run(const GlyphTable& table, const td::Point<float>& pos, float scale)
        : _pen{.x = pos.x, .top = pos.y, .bottom = pos.y + scale * table.metrics().lineHeight}
        , _table(table)
        , _left(pos.x)
        , _scale(scale)
        , _addends{{0, 0}, {(table.metrics().glyphPadding * scale) / 2, scale * table.metrics().additionalSpace}}
    {
    }

    /// Lays out the characters that begin before stop.
    /// @param end   of the text; nothing there or behind it is read
    /// @param pOut  room for a quad per byte before stop. Of the room behind the last quad that one more may be
    ///              overwritten
    /// @return behind the last of the characters
    const unsigned char* add(const unsigned char* p, const unsigned char* stop, const unsigned char* end,
                             Font::_vd* pOut);

    const Pen& pen() const { return _pen; }

    /// Behind the vertices that the last call added.
    Font::_vd* end() const { return _pOut; }

    /// Whether a space was laid out behind the last glyph.
    bool hasSpilled() const { return _pLast != nullptr && _pLast->nQuads == 0; }

private:
    Pen _pen;
    const GlyphTable& _table;
    const float _left;
    const float _scale;
    const Addends _addends[2];                 // by the number of quads
    const GlyphTable::Entry* _pLast = nullptr; // what was laid out
    Font::_vd* _pOut = nullptr;
};

template <bool tellsSpacesApart>
inline const unsigned char* Run<tellsSpacesApart>::add(const unsigned char* p, const unsigned char* stop,
                                                       const unsigned char* end, Font::_vd* pOut)
{
    const GlyphTable& table = _table;
    const float s = _scale;
    float* pTo = &pOut->x;
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
                isLineBreak = !GlyphTable::hasEntry(taken.number);
                if (isLineBreak)
                {
                    p = taken.pNext;
                    break;
                }
            }
            p = taken.pNext;
            pEntry = &table.entry(taken.number);
            if (tellsSpacesApart && pEntry->nQuads == 0)
            {
                x += s * pEntry->advance;
                bearingScale = s;
                continue;
            }
            const Addends& addends = _addends[pEntry->nQuads];
            const Record scaled = s * loadHalf(&pEntry->advance);
            x += bearingScale * pEntry->bearing;
            bearingScale = s;
            x -= addends.halfPadding;
            // Of both, the second half is meant: the edges in the frame and those in the atlas.
            Record quad = interleaveHigh(Record{x, x, x, x} + scaled, loadHalf(&pEntry->nQuads));
            if (tellsSpacesApart)
                quad[0] = x;
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
    _pOut = reinterpret_cast<Font::_vd*>(pTo);
    return p;
}

} // namespace

} // namespace gui::gl
