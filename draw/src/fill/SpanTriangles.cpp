#include "SpanTriangles.h"

namespace gui::draw
{

void SpanTriangles::begin(std::span<const GridPoint> vertices, std::vector<std::uint32_t>& indices)
{
    _vertices = vertices;
    _pIndices = &indices;
    _spans.clear();
    _freeSpans.clear();
    _items.clear();
}

SpanTriangles::Span SpanTriangles::make(Piece first)
{
    if (_freeSpans.empty())
    {
        _spans.push_back({first, {}});
        return static_cast<Span>(_spans.size() - 1);
    }
    const Span span = _freeSpans.back();
    _freeSpans.pop_back();
    _spans[span] = {first, {}};
    return span;
}

SpanTriangles::Piece SpanTriangles::start(std::uint32_t vertex)
{
    _items.push_back({vertex, cNone});
    return {static_cast<std::uint32_t>(_items.size() - 1), false};
}

SpanTriangles::Span SpanTriangles::open(std::uint32_t vertex) { return make(start(vertex)); }

void SpanTriangles::addLeft(Span span, std::uint32_t vertex)
{
    Pieces& pieces = _spans[span];
    if (pieces.second.top != cNone)
    {
        fan(pieces.first, vertex);
        pieces = {pieces.second, {}};
    }
    add(pieces.first, vertex, true);
}

void SpanTriangles::addRight(Span span, std::uint32_t vertex)
{
    Pieces& pieces = _spans[span];
    if (pieces.second.top != cNone)
    {
        fan(pieces.second, vertex);
        pieces.second = {};
    }
    add(pieces.first, vertex, false);
}

// The vertex sees the lowest one above it in the span: no other is between them, nor an edge.
SpanTriangles::Span SpanTriangles::split(Span span, std::uint32_t vertex)
{
    Piece left = _spans[span].first, right = _spans[span].second;
    if (right.top == cNone)
    {
        const std::uint32_t lowest = _items[left.top].vertex;
        if (left.isLeft)
        {
            right = left;
            left = start(lowest);
        }
        else
        {
            right = start(lowest);
        }
    }
    add(left, vertex, false);
    add(right, vertex, true);
    _spans[span] = {left, {}};
    return make(right);
}

void SpanTriangles::merge(Span left, Span right)
{
    _spans[left].second = _spans[right].first;
    _freeSpans.push_back(right);
}

void SpanTriangles::close(Span span, std::uint32_t vertex)
{
    fan(_spans[span].first, vertex);
    if (_spans[span].second.top != cNone)
        fan(_spans[span].second, vertex);
    _freeSpans.push_back(span);
}

void SpanTriangles::add(Piece& piece, std::uint32_t vertex, bool isLeft)
{
    std::uint32_t top = piece.top;
    if (_items[top].below != cNone && piece.isLeft != isLeft)
    {
        // The other edge's vertices are all seen, and the last of them is all that the ones to come can see.
        fan(piece, vertex);
        _items[top].below = cNone;
    }
    else
    {
        while (_items[top].below != cNone)
        {
            const std::uint32_t below = _items[top].below, a = _items[below].vertex, b = _items[top].vertex;
            const std::int64_t side = sideOf(_vertices[a], _vertices[b], _vertices[vertex]);
            if (isLeft ? side >= 0 : side <= 0)
                break;
            isLeft ? emit(b, a, vertex) : emit(a, b, vertex);
            top = below;
        }
    }
    _items.push_back({vertex, top});
    piece = {static_cast<std::uint32_t>(_items.size() - 1), isLeft};
}

void SpanTriangles::fan(const Piece& piece, std::uint32_t vertex)
{
    for (std::uint32_t i = piece.top; _items[i].below != cNone; i = _items[i].below)
    {
        const std::uint32_t a = _items[_items[i].below].vertex, b = _items[i].vertex;
        piece.isLeft ? emit(b, a, vertex) : emit(a, b, vertex);
    }
}

} // namespace gui::draw
