#include "DrawList.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace gui::draw
{

namespace
{

constexpr std::size_t cChunk = 128;

/// As in the vertex shader: up to so many pixels a shape is drawn as a box.
constexpr double cSmall = 16;

constexpr float cInfinity = std::numeric_limits<float>::infinity();

// To floats that are no larger, or no smaller.
float below(double number) { return std::nextafter(static_cast<float>(std::clamp(number, -1e38, 1e38)), -cInfinity); }
float above(double number) { return std::nextafter(static_cast<float>(std::clamp(number, -1e38, 1e38)), cInfinity); }

} // namespace

void DrawList::clear()
{
    _boxes.clear();
    _shapes.clear();
    _chunks.clear();
}

void DrawList::set(std::size_t place, const Shape& shape)
{
    if (_shapes.empty())
        _base = {shape.bounds.left, shape.bounds.top};
    if (place >= _shapes.size())
    {
        _shapes.resize(place + 1, Entry{});
        _boxes.resize(place + 1, Box{});
        _chunks.resize(place / cChunk + 1);
    }
    const Rect& bounds = shape.bounds;
    _boxes[place] = {below(bounds.left - _base.x), below(bounds.top - _base.y), above(bounds.right - _base.x),
                     above(bounds.bottom - _base.y)};
    _shapes[place] = {shape.margin, shape.first, shape.count, shape.record, shape.ink};
    _chunks[place / cChunk].isStale = true;
}

void DrawList::removeAt(std::size_t place)
{
    if (place >= _shapes.size())
        return;
    _shapes[place].count = 0;
    _chunks[place / cChunk].isStale = true;
}

std::size_t DrawList::countRanges() const
{
    std::size_t n = 0;
    std::uint32_t end = 0;
    for (const Entry& entry : _shapes)
        if (entry.count != 0)
        {
            n += entry.first != end;
            end = entry.first + entry.count;
        }
    return n;
}

void DrawList::append(std::vector<Piece>& pieces, const Piece& piece)
{
    if (!pieces.empty() && pieces.back().range.first + pieces.back().range.count == piece.range.first &&
        pieces.back().ink == piece.ink)
        pieces.back().range.count += piece.range.count;
    else
        pieces.push_back(piece);
}

void DrawList::select(const Piece& piece)
{
    if (_passes.empty() || _passes.back().ink != piece.ink)
        _passes.push_back({_selected.size(), 0, piece.ink});
    else if (_selected.back().first + _selected.back().count == piece.range.first)
    {
        _selected.back().count += piece.range.count;
        return;
    }
    _selected.push_back(piece.range);
    ++_passes.back().count;
}

void DrawList::renew(std::size_t number)
{
    Chunk& chunk = _chunks[number];
    chunk.isStale = false;
    chunk.parts.clear();
    chunk.boxes.clear();
    chunk.box = {cInfinity, cInfinity, -cInfinity, -cInfinity};
    chunk.size = chunk.margin = 0;
    const std::size_t end = std::min((number + 1) * cChunk, _shapes.size());
    for (std::size_t i = number * cChunk; i < end; ++i)
    {
        const Entry& entry = _shapes[i];
        if (entry.count == 0)
            continue;
        const Box& box = _boxes[i];
        chunk.box = {std::min(chunk.box.left, box.left), std::min(chunk.box.top, box.top),
                     std::max(chunk.box.right, box.right), std::max(chunk.box.bottom, box.bottom)};
        chunk.size = std::max({chunk.size, box.right - box.left, box.bottom - box.top});
        chunk.margin = std::max(chunk.margin, entry.margin);
        append(chunk.parts, {{entry.first, entry.count}, entry.ink});
        // Glyphs' sizes are not those of their shapes' boxes.
        if (areGlyphs(entry.ink))
            append(chunk.boxes, {{entry.first, entry.count}, entry.ink});
        else
            append(chunk.boxes, {{cBoxes + entry.record, 1}, entry.ink});
    }
}

void DrawList::select(const Rect& visible, double pixelsPerUnit, double pixelsPerPoint)
{
    _selected.clear();
    _passes.clear();
    _parts.clear();
    _largest = 0;
    const double pixel = 1 / pixelsPerUnit;
    for (std::size_t c = 0; c < _chunks.size(); ++c)
    {
        if (_chunks[c].isStale)
            renew(c);
        const Chunk& chunk = _chunks[c];
        if (chunk.parts.empty())
            continue;
        const double margin = (chunk.margin * pixelsPerPoint + 2) * pixel;
        const Box seen{below(visible.left - margin - _base.x), below(visible.top - margin - _base.y),
                       above(visible.right + margin - _base.x), above(visible.bottom + margin - _base.y)};
        // All four at once: which of them is false is as good as random, and a branch for each would cost more.
        const auto touches = [seen](const Box& box) -> bool
        {
            return int(box.left <= seen.right) & int(box.right >= seen.left) & int(box.top <= seen.bottom) &
                   int(box.bottom >= seen.top);
        };
        if (!touches(chunk.box))
            continue;
        _largest = std::max(_largest, double(chunk.size));
        const bool isSmall = chunk.size * pixelsPerUnit <= cSmall;
        if (chunk.box.left >= seen.left && chunk.box.right <= seen.right && chunk.box.top >= seen.top &&
            chunk.box.bottom <= seen.bottom)
        {
            for (const Piece& piece : isSmall ? chunk.boxes : chunk.parts)
                select(piece);
            continue;
        }
        const std::size_t end = std::min((c + 1) * cChunk, _shapes.size());
        for (std::size_t i = c * cChunk; i < end; ++i)
            if (touches(_boxes[i]) && _shapes[i].count != 0)
            {
                const Entry& entry = _shapes[i];
                if (isSmall && !areGlyphs(entry.ink))
                    select({{cBoxes + entry.record, 1}, entry.ink});
                else
                    select({{entry.first, entry.count}, entry.ink});
            }
    }
    for (const Pass& pass : _passes)
        if (pass.ink == cShapes)
            std::copy_if(_selected.begin() + static_cast<std::ptrdiff_t>(pass.first),
                         _selected.begin() + static_cast<std::ptrdiff_t>(pass.first + pass.count),
                         std::back_inserter(_parts),
                         [](const gl::Quads::Range& range) { return range.first < cBoxes; });
}

} // namespace gui::draw
