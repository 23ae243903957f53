#pragma once

#include "CrossingSweep.h"
#include "FillGraph.h"
#include "FillSweep.h"

#include <gui/draw/FillRule.h>
#include <gui/draw/Polylines.h>

#include <cstdint>
#include <span>
#include <vector>

namespace gui::draw
{

class Path;

/// What FillTessellator does, with the result as it is on the grid.
class GridTessellator
{
public:
    using Point = td::Point<double>;

    void addRing(std::span<const Point> points);
    void addPath(const Path& path, double tolerance);
    /// Takes the rings that were added since the last call.
    void tessellate(FillRule rule);

    /// In the order of y, then x; some may be in no triangle.
    std::span<const GridPoint> getVertices() const { return _pResult->getVertices(); }
    /// Three numbers of vertices for each triangle.
    const std::vector<std::uint32_t>& getIndices() const { return _sweep.getIndices(); }
    const std::vector<FillSweep::BoundaryEdge>& getBoundary() const { return _sweep.getBoundary(); }
    Point getOrigin() const { return _origin; } ///< a multiple of the step
    double getStep() const { return _step; }
    void setLeastStep(double step) { _leastStep = step; }

private:
    void snap();
    bool sweepOver(const FillGraph& edges, FillRule rule);

    Polylines _lines; // that were added
    FillEdges _rings, _divided, _outline;
    FillGraph _graph, _dividedGraph, _outlineGraph;
    FillSweep _sweep;
    CrossingSweep _crossings;
    const FillGraph* _pResult = &_graph;
    double _leastStep = 0;
    double _step = 1;
    Point _origin;
};

} // namespace gui::draw
