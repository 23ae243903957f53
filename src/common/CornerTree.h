#pragma once

#include <td/Point.h>

#include <array>
#include <cstddef>
#include <vector>

namespace gui::gl
{

/// The corners left of a polygon that loses them one by one, asked for one in a triangle.
///
/// Sixteen corners in a row have a box around them, sixteen boxes in a row have one, and so on: an outline is near itself
/// along itself. A triangle asks only those boxes that may hold one of its corners.
class CornerTree
{
public:
    static constexpr std::size_t cNone = ~std::size_t(0);

    /// The corners a, b and c of a triangle, by number.
    using Triangle = std::array<std::size_t, 3>;

    /// Forgets all corners and takes n others: set, then build.
    void resize(std::size_t n);
    void set(std::size_t i, const td::Point<float>& point)
    {
        _x[i] = point.x;
        _y[i] = point.y;
    }
    void build();

    td::Point<float> get(std::size_t i) const { return {_x[i], _y[i]}; }
    bool contains(std::size_t i) const { return (_levels[0].alive[i / cFan] >> i % cFan & 1) != 0; }
    void remove(std::size_t i);

    /// Some corner that SimplePolygon::insideTriangle finds inside, other than the triangle's own; which of several
    /// varies from call to call. @return cNone when there is none
    std::size_t findInside(const Triangle& triangle);

private:
    static constexpr std::size_t cFan = 16;

    /// Where an edge's side is told: x * (p.y - y0) - y * (p.x - x0) is not below 0.
    struct Edge
    {
        float x, y, x0, y0;

        float side(float px, float py) const { return x * (py - y0) - y * (px - x0); }
    };
    using Edges = std::array<Edge, 3>;

    /// Nodes of up to sixteen children, which are corners on the first level.
    struct Level
    {
        std::vector<unsigned int> alive; ///< a bit for each child that has corners
        std::vector<float> minX, maxX, minY, maxY;
    };

    // Lists are a whole number of fans long, so that loops over sixteen have no end to look for.
    static std::size_t roundUp(std::size_t n) { return (n + cFan - 1) / cFan * cFan; }

    void buildLevel(std::size_t level, std::size_t nChildren);
    // Bits for those of sixteen points that are on the inside of an edge, or that are not. Inlined into other loops, they
    // are no longer made vector operations of (GCC 12).
    [[gnu::noinline]] static unsigned int insideBits(Edge edge, const float* x, const float* y);
    [[gnu::noinline]] static unsigned int outsideBits(Edge edge, const float* x, const float* y);
    unsigned int cornersInside(std::size_t leaf, const Edges& edges) const;
    unsigned int boxesInside(std::size_t level, std::size_t node, const Edges& edges) const;
    std::size_t search(std::size_t level, std::size_t node, const Edges& edges, const Triangle& triangle) const;

    std::vector<float> _x, _y;
    std::size_t _nCorners = 0;
    std::vector<Level> _levels; // kept from one use to the next
    std::size_t _nLevels = 0;
    unsigned int _firstChild = 0; // where a search begins among sixteen
};

} // namespace gui::gl
