#pragma once

#include "Crossing.h"
#include "FillGraph.h"
#include "SweepLine.h"

#include <cstdint>
#include <span>
#include <vector>

namespace gui::draw
{

/// Finds where edges meet, and divides them there: all crossings, ends of edges on other edges, and what overlaps. It
/// is the sweep of J. Bentley and T. Ottmann, "Algorithms for reporting and counting geometric intersections" (1979),
/// with all events at one point taken together (M. de Berg and others, "Computational geometry", chapter 2) and every
/// comparison exact. n edges with k meetings take (n + k) log n.
class CrossingSweep
{
public:
    /// A point in the inner of an edge where it meets others, moved to the nearest one of the grid.
    struct Meeting
    {
        std::uint32_t edge; ///< in the graph's getDowns()
        GridPoint point;
    };

    void find(const FillGraph& graph);

    /// By edges in no order, each edge's from above downwards.
    const std::vector<Meeting>& getMeetings() const { return _meetings; }

private:
    using Place = SweepLine::Place;

    struct Edge
    {
        GridPoint top, bottom;
        std::uint32_t number;
        std::uint32_t bottomVertex;
    };

    void handle(const Crossing& point, std::uint32_t vertex, const FillGraph& graph);
    void findPlacesAt(const Crossing& point);
    void expect(Place left, Place right);

    static constexpr std::uint32_t cNoVertex = ~std::uint32_t(0);

    SweepLine _line;
    std::vector<Edge> _edges; // by place
    std::span<const GridPoint> _vertices;
    std::vector<Crossing> _crossings; // a heap, the next one first
    std::vector<Meeting> _meetings;

    Place _before = SweepLine::cNone; // left of the point
    std::vector<Place> _places;       // at the point
    std::vector<Edge> _below;         // edges that go on from there
};

/// The edges with a graph's edges divided at meetings.
/// @param meetings  any number for each edge, in any order of edges, each edge's from above downwards
void divide(const FillGraph& graph, std::span<const CrossingSweep::Meeting> meetings, FillEdges& divided);

} // namespace gui::draw
