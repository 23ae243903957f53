#pragma once

#include "GridPoint.h"

#include <cstdint>
#include <span>
#include <vector>

namespace gui::draw
{

/// Triangles of what a sweep finds to be inside. A span is what lies between two boundary edges on the sweep's line;
/// the vertices at which its edges bend come from above downwards, and each is joined with those that it sees as soon
/// as it comes.
///
/// A span is a polygon monotone in y: the vertices of the stack of M. Garey, D. Johnson, F. Preparata and R. Tarjan,
/// "Triangulating a simple polygon" (1978), of which each has a reflex angle but the first and the last. Where two
/// spans have become one at a vertex, it keeps both polygons until the next vertex, which is joined with that one.
class SpanTriangles
{
public:
    using Span = std::uint32_t;

    /// @param vertices  what the numbers of vertices mean; must stay
    /// @param indices   three are appended for each triangle, which turns from x to y (counter-clockwise for y upwards)
    void begin(std::span<const GridPoint> vertices, std::vector<std::uint32_t>& indices);

    /// A span that opens downwards at a vertex.
    Span open(std::uint32_t vertex);
    /// A vertex on the span's left or right edge, which goes on below it.
    void addLeft(Span span, std::uint32_t vertex);
    void addRight(Span span, std::uint32_t vertex);
    /// A vertex inside of the span, between whose edges downwards it is no more. @return the part to the right; the
    /// span itself becomes the left one
    Span split(Span span, std::uint32_t vertex);
    /// Two spans whose edges between them end at the vertex that both were given last, are one: the left one.
    void merge(Span left, Span right);
    /// Both edges end at a vertex.
    void close(Span span, std::uint32_t vertex);

private:
    static constexpr std::uint32_t cNone = ~std::uint32_t(0);

    /// A vertex on a stack, and what is below it there.
    struct Item
    {
        std::uint32_t vertex;
        std::uint32_t below;
    };

    /// A stack: its topmost item, and on which edge those above the lowest item are.
    struct Piece
    {
        std::uint32_t top = cNone;
        bool isLeft = false;
    };

    struct Pieces
    {
        Piece first, second; ///< the second one only between a merge and the next vertex
    };

    Span make(Piece first);
    Piece start(std::uint32_t vertex);
    void add(Piece& piece, std::uint32_t vertex, bool isLeft);
    void fan(const Piece& piece, std::uint32_t vertex);
    void emit(std::uint32_t a, std::uint32_t b, std::uint32_t c) { _pIndices->insert(_pIndices->end(), {a, b, c}); }

    std::span<const GridPoint> _vertices;
    std::vector<std::uint32_t>* _pIndices = nullptr;
    std::vector<Pieces> _spans;
    std::vector<Span> _freeSpans;
    std::vector<Item> _items;
};

} // namespace gui::draw
