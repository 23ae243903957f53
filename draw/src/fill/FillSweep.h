#pragma once

#include "FillGraph.h"
#include "SpanTriangles.h"
#include "SweepLine.h"

#include <gui/draw/FillRule.h>

#include <cstdint>
#include <span>
#include <vector>

namespace gui::draw
{

/// A sweep over edges that meet at their ends only: finds what is inside by a rule and has it cut into triangles.
/// Whether the edges are so it sees on the way, exactly: two edges that meet elsewhere are neighbours on the sweep's
/// line before they do (M. Shamos, D. Hoey, "Geometric intersection problems", 1976), and all neighbours are compared.
class FillSweep
{
public:
    /// An edge between two vertices that has the inside on one side only: on its left for y upwards, where sideOf is
    /// above 0.
    struct BoundaryEdge
    {
        std::uint32_t from, to;
    };

    enum class Result
    {
        Done,
        EdgesMeet, ///< two edges cross, touch or overlap otherwise than whole; there is no result
        /// Too many edges have the inside on both sides, so that spans are far from what divides them; sweep over the
        /// boundary edges alone, which collect() finds.
        IsLayered
    };

    /// Triangles and boundary edges, by numbers of the graph's vertices.
    Result tessellate(const FillGraph& graph, FillRule rule);
    /// Boundary edges only.
    Result collect(const FillGraph& graph, FillRule rule);

    const std::vector<std::uint32_t>& getIndices() const { return _indices; }
    const std::vector<BoundaryEdge>& getBoundary() const { return _boundary; }

private:
    using Place = SweepLine::Place;

    /// An edge on the sweep's line.
    struct Active
    {
        GridPoint top, bottom;
        std::uint32_t bottomVertex;
        std::int32_t windingOnRight;
        SpanTriangles::Span span; ///< right of it, if it is a boundary edge whose right side is inside
        bool isBoundary;
    };

    /// An edge downwards from the vertex that the sweep is at.
    struct Next
    {
        FillGraph::Down down;
        GridPoint bottom;
        std::int32_t windingOnRight = 0;
        SpanTriangles::Span span = 0;
        bool isBoundary = false;
    };

    Result sweep(const FillGraph& graph, FillRule rule, bool makesTriangles);
    bool isInside(std::int32_t winding) const { return _rule == FillRule::NonZero ? winding != 0 : (winding & 1) != 0; }
    std::int32_t windingRightOf(Place place) const
    {
        return place == SweepLine::cNone ? 0 : _active[place].windingOnRight;
    }
    bool findIncoming(std::uint32_t vertex);
    bool locate(GridPoint vertex);
    bool takeOutgoing(const FillGraph& graph, std::uint32_t vertex);
    bool updateSpans(std::uint32_t vertex, bool makesTriangles);
    bool findSpan(SpanTriangles::Span& span);
    void replaceIncoming(std::uint32_t vertex);
    void put(Place place, const Next& next, GridPoint top);
    bool arePassing(Place left, Place right) const;

    FillRule _rule{};
    SweepLine _line;
    std::vector<Active> _active;  // by place
    std::vector<Place> _incoming; // by vertex: one of the edges on the line that end there
    std::span<const GridPoint> _vertices;
    SpanTriangles _triangles;
    std::vector<std::uint32_t> _indices;
    std::vector<BoundaryEdge> _boundary;
    std::int64_t _nStepsLeft = 0; // over edges with the inside on both sides

    // At the vertex that the sweep is at: its neighbours on the line, the edges that end there, and those that begin.
    Place _before = SweepLine::cNone, _after = SweepLine::cNone;
    Place _first = SweepLine::cNone, _last = SweepLine::cNone; // none if no edge ends there
    std::vector<Next> _next;
};

} // namespace gui::draw
