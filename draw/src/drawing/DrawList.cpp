#include "DrawList.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

namespace gui::draw
{

namespace
{

/// As in the vertex shader: up to so many pixels a shape is drawn as a box.
constexpr double cSmall = 16;
/// Up to so many it is, where most shapes beside it are so small that together they have no more pixels than such
/// boxes: the parts of all of them would take longer than what a few boxes look at in vain.
constexpr double cLargestBox = 64;

/// So often fills and strokes of a chunk alternate at most for them to be told apart: in between a range ends.
constexpr std::size_t cMostTurns = 3;

/// Quads between triangles that cost less than another range does.
constexpr std::uint32_t cBetween = 64;

constexpr float cInfinity = std::numeric_limits<float>::infinity();

// To floats that are no larger, or no smaller: the next ones.
float above(double number)
{
    const auto rounded = static_cast<float>(std::clamp(number, -1e38, 1e38));
    if (rounded == 0)
        return std::numeric_limits<float>::denorm_min();
    return std::bit_cast<float>(std::bit_cast<std::uint32_t>(rounded) + (rounded > 0 ? 1U : ~0U));
}
float below(double number) { return -above(-number); }

} // namespace

void DrawList::clear()
{
    _shapes.clear();
    _chunks.clear();
}

void DrawList::set(std::size_t place, const Shape& shape)
{
    if (_shapes.size() == 0)
        _base = {shape.bounds.left, shape.bounds.top};
    if (place >= _shapes.size())
    {
        const std::size_t first = _shapes.size();
        _shapes.grow(place + 1 - first);
        std::fill(_shapes.data() + first, _shapes.data() + place, Entry{});
        _chunks.resize(place / cChunk + 1);
    }
    const Rect& bounds = shape.bounds;
    const Box box{below(bounds.left - _base.x), below(bounds.top - _base.y), above(bounds.right - _base.x),
                  above(bounds.bottom - _base.y)};
    _shapes[place] = {box,          shape.margin, shape.first, shape.count, shape.nTriangles,
                      shape.record, shape.ink,    shape.zooms};
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
    std::uint32_t shapesEnd = 0, glyphsEnd = cLongElements;
    for (const Entry& entry : std::span(_shapes.data(), _shapes.size()))
        if (entry.count != 0)
        {
            std::uint32_t& end = areGlyphs(entry.ink) ? glyphsEnd : shapesEnd;
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

void DrawList::append(std::vector<Inside>& insides, const Inside& inside)
{
    const gl::Quads::Range& triangles = inside.triangles;
    if (!insides.empty() && insides.back().end == inside.first)
    {
        Inside& last = insides.back();
        if (triangles.count == 0 || triangles.first - (last.triangles.first + last.triangles.count) <= cBetween)
        {
            last.end = inside.end;
            if (triangles.count != 0)
                last.triangles.count = triangles.first + triangles.count - last.triangles.first;
            return;
        }
    }
    if (triangles.count != 0)
        insides.push_back(inside);
}

void DrawList::append(std::vector<Inside>& insides, const Entry& entry)
{
    const std::uint32_t end = entry.first + entry.count;
    if (areShapes(entry.ink))
        append(insides, {entry.first, end, {end - entry.nTriangles, entry.nTriangles}});
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

// Never further up the plane for what is not: what overlaps has cells that do.
std::int8_t DrawList::cellOf(float place, float low, float high)
{
    const float cell = high > low ? (place - low) * (255 / (high - low)) : 0;
    return static_cast<std::int8_t>(static_cast<int>(cell > 0 ? std::min(cell, 255.0F) : 0.0F) - 128);
}

void DrawList::renew(std::size_t number)
{
    Chunk& chunk = _chunks[number];
    chunk.isStale = false;
    chunk.parts.clear();
    chunk.boxes.clear();
    chunk.insides.clear();
    chunk.box = {cInfinity, cInfinity, -cInfinity, -cInfinity};
    chunk.size = chunk.area = chunk.margin = 0;
    chunk.zooms = {cInfinity, 0};
    chunk.shared = {};
    const std::size_t end = std::min((number + 1) * cChunk, _shapes.size());
    std::size_t nTurns = 0;
    for (std::uint32_t last = cShapes; const Entry& entry : std::span(_shapes.data(), end).subspan(number * cChunk))
        if (entry.count != 0 && areShapes(entry.ink))
        {
            nTurns += last != cShapes && last != entry.ink;
            last = entry.ink;
        }
    chunk.isMixed = nTurns > cMostTurns;
    float count = 0;
    for (std::size_t i = number * cChunk; i < end; ++i)
    {
        const Entry& entry = _shapes[i];
        if (entry.count == 0)
            continue;
        const Box& box = entry.box;
        chunk.box = {std::min(chunk.box.left, box.left), std::min(chunk.box.top, box.top),
                     std::max(chunk.box.right, box.right), std::max(chunk.box.bottom, box.bottom)};
        const float size = std::max(box.right - box.left, box.bottom - box.top);
        chunk.size = std::max(chunk.size, size);
        // The mean of all so far.
        chunk.area += (size * size - chunk.area) / ++count;
        chunk.margin = std::max(chunk.margin, entry.margin);
        chunk.zooms = {std::min(chunk.zooms.min, entry.zooms.min), std::max(chunk.zooms.max, entry.zooms.max)};
        chunk.shared = chunk.shared & entry.zooms;
        append(chunk.parts, {{entry.first, entry.count}, chunk.inkOf(entry)});
        append(chunk.insides, entry);
        // Glyphs' sizes are not those of their shapes' boxes.
        if (areGlyphs(entry.ink))
            append(chunk.boxes, {{entry.first, entry.count}, entry.ink});
        else
            append(chunk.boxes, {{cBoxes + entry.record, 1}, chunk.inkOf(entry)});
    }
    for (std::size_t i = number * cChunk; i < end; ++i)
    {
        const Box &box = _shapes[i].box, &all = chunk.box;
        const std::size_t k = i % cChunk;
        chunk.cells.left[k] = cellOf(box.left, all.left, all.right);
        chunk.cells.top[k] = cellOf(box.top, all.top, all.bottom);
        chunk.cells.right[k] = cellOf(box.right, all.left, all.right);
        chunk.cells.bottom[k] = cellOf(box.bottom, all.top, all.bottom);
    }
}

// Most shapes are not seen, and a branch for each would cost more than all that is compared.
void DrawList::selectWithin(std::size_t number, const Box& seen, bool isSmall, double zoom)
{
    const Cells& cells = _chunks[number].cells;
    const Box& all = _chunks[number].box;
    const std::int8_t left = cellOf(seen.left, all.left, all.right), right = cellOf(seen.right, all.left, all.right),
                      top = cellOf(seen.top, all.top, all.bottom), bottom = cellOf(seen.bottom, all.top, all.bottom);
    alignas(64) std::array<std::uint8_t, cChunk> areSeen;
    for (std::size_t i = 0; i < cChunk; ++i)
        areSeen[i] = static_cast<std::uint8_t>(int(cells.left[i] <= right) & int(cells.right[i] >= left) &
                                               int(cells.top[i] <= bottom) & int(cells.bottom[i] >= top));
    const std::size_t first = number * cChunk, n = std::min(cChunk, _shapes.size() - first);
    for (std::size_t begin = 0; begin < n; begin += 8)
    {
        std::uint64_t eight = 0;
        std::memcpy(&eight, areSeen.data() + begin, sizeof eight);
        for (std::size_t i = begin; eight != 0 && i < std::min(begin + 8, n); ++i)
            if (const Entry& entry = _shapes[first + i];
                areSeen[i] != 0 && entry.count != 0 && touches(entry.box, seen) && entry.zooms.has(zoom))
            {
                if (isSmall && !areGlyphs(entry.ink))
                    select({{cBoxes + entry.record, 1}, _chunks[number].inkOf(entry)});
                else
                {
                    select({{entry.first, entry.count}, _chunks[number].inkOf(entry)});
                    append(_insides, entry);
                }
            }
    }
}

void DrawList::select(const Rect& visible, double pixelsPerUnit, double pixelsPerPoint, double zoom)
{
    _selected.clear();
    _passes.clear();
    _triangles.clear();
    _insides.clear();
    _largest = 0;
    const double pixel = 1 / pixelsPerUnit;
    Box seen{};
    float margin = -1; // that it has
    for (std::size_t c = 0; c < _chunks.size(); ++c)
    {
        if (_chunks[c].isStale)
            renew(c);
        const Chunk& chunk = _chunks[c];
        if (chunk.parts.empty() || !chunk.zooms.has(zoom))
            continue;
        if (chunk.margin != margin)
        {
            margin = chunk.margin;
            const double more = (margin * pixelsPerPoint + 2) * pixel;
            seen = {below(visible.left - more - _base.x), below(visible.top - more - _base.y),
                    above(visible.right + more - _base.x), above(visible.bottom + more - _base.y)};
        }
        const Box& box = chunk.box;
        if (!touches(box, seen))
            continue;
        _largest = std::max(_largest, double(chunk.size));
        const bool isSmall =
            chunk.size * pixelsPerUnit <= cLargestBox && chunk.area * pixelsPerUnit * pixelsPerUnit <= cSmall * cSmall;
        if (box.left >= seen.left && box.right <= seen.right && box.top >= seen.top && box.bottom <= seen.bottom &&
            chunk.shared.has(zoom))
        {
            for (const Piece& piece : isSmall ? chunk.boxes : chunk.parts)
                select(piece);
            if (!isSmall)
                for (const Inside& inside : chunk.insides)
                    append(_insides, inside);
        }
        else
            selectWithin(c, seen, isSmall, zoom);
    }
    for (const Inside& inside : _insides)
        _triangles.push_back(inside.triangles);
}

} // namespace gui::draw
