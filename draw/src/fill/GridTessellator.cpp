#include "GridTessellator.h"

#include "Extent.h"
#include "HotPixels.h"

#include <gui/draw/Path.h>

#include <td/Assert.h>

#include <algorithm>
#include <cmath>

namespace gui::draw
{

namespace
{

// The least step whose reciprocal is finite.
constexpr double cSmallestStep = 0x1p-1022;

} // namespace

void GridTessellator::addRing(std::span<const Point> points)
{
    TD_ASSERT(points.size() < (std::size_t(1) << 31) - _lines.points.size());
    _lines.lines.push_back({_lines.points.size(), points.size(), true});
    _lines.points.insert(_lines.points.end(), points.begin(), points.end());
}

void GridTessellator::addPath(const Path& path, double tolerance)
{
    TD_ASSERT(tolerance > 0);
    const std::size_t nPoints = _lines.points.size(), nLines = _lines.lines.size();
    path.flatten(tolerance, _lines);
    if (_lines.points.size() >= std::size_t(1) << 31)
    {
        _lines.points.resize(nPoints);
        _lines.lines.resize(nLines);
        TD_ASSERT(false);
    }
}

void GridTessellator::tessellate(FillRule rule)
{
    snap();
    _graph.build(_rings);
    bool isDone = sweepOver(_graph, rule);
    if (!isDone)
    {
        _crossings.find(_graph);
        const std::vector<CrossingSweep::Meeting>& meetings = _crossings.getMeetings();
        divide(_graph, meetings, _divided);
        _dividedGraph.build(_divided);
        isDone = sweepOver(_dividedGraph, rule);
        if (!isDone)
        {
            // Rounding has moved an edge over a vertex nearby. That is rare on a fine grid, so that what forbids it,
            // and costs as much as all the rest, waits until it has happened.
            divide(_graph, HotPixels(_graph, meetings).findAll(), _divided);
            _dividedGraph.build(_divided);
            isDone = sweepOver(_dividedGraph, rule);
        }
    }
    TD_ASSERT(isDone);
}

// Triangles of edges that may lie on one another whole but meet at their ends only. What the triangles' numbers mean is
// *_pResult then. @return false when the edges meet elsewhere
bool GridTessellator::sweepOver(const FillGraph& edges, FillRule rule)
{
    _pResult = &edges;
    FillSweep::Result result = _sweep.tessellate(edges, rule);
    if (result == FillSweep::Result::IsLayered)
    {
        result = _sweep.collect(edges, rule);
        if (result == FillSweep::Result::Done)
        {
            _outline.clear();
            _outline.points.assign(edges.getVertices().begin(), edges.getVertices().end());
            for (const FillSweep::BoundaryEdge& edge : _sweep.getBoundary())
                _outline.edges.push_back({edge.from, edge.to});
            _outlineGraph.build(_outline);
            _pResult = &_outlineGraph;
            result = _sweep.tessellate(_outlineGraph, FillRule::EvenOdd);
        }
    }
    return result == FillSweep::Result::Done;
}

// Chooses the grid and moves all points there.
void GridTessellator::snap()
{
    const Extent extent(_lines.points);
    const Point low = extent.getLow(), high = extent.getHigh();
    _step = std::max(gridStepFor(low, high), cSmallestStep);
    if (_leastStep > _step && _leastStep <= Extent::cMostCoordinate)
        _step = powerOfTwoFrom(_leastStep);
    const double inverse = 1 / _step;
    _origin = {std::nearbyint((low.x / 2 + high.x / 2) * inverse) * _step,
               std::nearbyint((low.y / 2 + high.y / 2) * inverse) * _step};

    _rings.points.resize(_lines.points.size());
    _rings.edges.resize(_lines.points.size());
    const TwoDoubles origin{_origin.x, _origin.y};
    std::uint32_t n = 0;
    for (const Polylines::Line& line : _lines.lines)
    {
        const std::uint32_t first = n;
        for (const Point& p : _lines.pointsOf(line))
            if (extent.isWhole() || Extent::isUsable(p))
            {
                _rings.points[n] = nearestTo((TwoDoubles{p.x, p.y} - origin) * inverse);
                _rings.edges[n] = {n, n + 1};
                ++n;
            }
        if (n > first)
            _rings.edges[n - 1].to = first;
    }
    _rings.points.resize(n);
    _rings.edges.resize(n);
    _lines.clear();
}

} // namespace gui::draw
