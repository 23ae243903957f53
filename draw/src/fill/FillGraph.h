#pragma once

#include "GridPoint.h"

#include <cstdint>
#include <span>
#include <vector>

namespace gui::draw
{

/// Edges between points of the grid, as rings have them: with a direction, in any order, with repetitions.
struct FillEdges
{
    struct Edge
    {
        std::uint32_t from, to; ///< numbers of points
    };

    std::vector<GridPoint> points;
    std::vector<Edge> edges;

    void clear()
    {
        points.clear();
        edges.clear();
    }
};

/// The same in the order in which a sweep wants them: each point once, with the edges that begin there and go on
/// downwards. Edges without a length are left out.
class FillGraph
{
public:
    /// An edge from a vertex to a later one. Going that way the ring's winding number on its right is larger by the
    /// winding than on its left.
    struct Down
    {
        std::uint32_t bottom;
        std::int32_t winding;
    };

    void build(const FillEdges& edges);

    std::span<const GridPoint> getVertices() const { return _vertices; }
    std::span<const Down> getDowns() const { return _downs; }
    std::span<const Down> downsFrom(std::uint32_t vertex) const
    {
        return {_downs.data() + _firstDown[vertex], _downs.data() + _firstDown[vertex + 1]};
    }
    /// The number of a vertex's first edge in getDowns().
    std::uint32_t getFirstDown(std::uint32_t vertex) const { return _firstDown[vertex]; }

private:
    struct Item
    {
        std::uint64_t key;
        std::uint32_t point;
    };

    void sort();

    std::vector<GridPoint> _vertices;
    std::vector<Down> _downs;
    std::vector<std::uint32_t> _firstDown;
    // Kept for the next use.
    std::vector<Item> _items, _sorted;
    std::vector<std::uint32_t> _buckets, _vertexOf;
};

} // namespace gui::draw
