#include <gui/draw/FillTessellator.h>

#include "CrossingSweep.h"
#include "FillGraph.h"
#include "FillSweep.h"
#include "HotPixels.h"

#include <td/Assert.h>

#include <algorithm>
#include <cmath>

namespace gui::draw
{

namespace
{

// Beyond it, sums of coordinates and numbers of steps might not be finite.
constexpr double cLargest = 1e300;

// The least step whose reciprocal is finite.
constexpr double cSmallestStep = 0x1p-1022;

bool isUsable(td::Point<double> p) { return std::abs(p.x) <= cLargest && std::abs(p.y) <= cLargest; }

} // namespace

struct FillTessellator::Work
{
    /// Triangles of edges that may lie on one another whole but meet at their ends only. What the triangles' numbers
    /// mean is *pResult then. @return false when the edges meet elsewhere
    bool sweepOver(const FillGraph& edges, FillRule rule)
    {
        pResult = &edges;
        FillSweep::Result result = sweep.tessellate(edges, rule);
        if (result == FillSweep::Result::IsLayered)
        {
            result = sweep.collect(edges, rule);
            if (result == FillSweep::Result::Done)
            {
                outline.clear();
                outline.points.assign(edges.getVertices().begin(), edges.getVertices().end());
                for (const FillSweep::BoundaryEdge& edge : sweep.getBoundary())
                    outline.edges.push_back({edge.from, edge.to});
                outlineGraph.build(outline);
                pResult = &outlineGraph;
                result = sweep.tessellate(outlineGraph, FillRule::EvenOdd);
            }
        }
        return result == FillSweep::Result::Done;
    }

    Polylines lines;
    FillEdges rings, divided, outline;
    FillGraph graph, dividedGraph, outlineGraph;
    FillSweep sweep;
    CrossingSweep crossings;
    const FillGraph* pResult = nullptr;
    std::vector<std::uint32_t> numbers;
};

FillTessellator::FillTessellator()
    : _pWork(std::make_unique<Work>())
{
}

FillTessellator::~FillTessellator() = default;

void FillTessellator::addRing(std::span<const Point> points)
{
    TD_ASSERT(points.size() < (std::size_t(1) << 31) - _points.size());
    _points.insert(_points.end(), points.begin(), points.end());
    _ends.push_back(static_cast<std::uint32_t>(_points.size()));
}

void FillTessellator::addPath(const Path& path, double tolerance)
{
    TD_ASSERT(tolerance > 0);
    Polylines& lines = _pWork->lines;
    lines.clear();
    path.flatten(tolerance, lines);
    for (const Polylines::Line& line : lines.lines)
        addRing(lines.pointsOf(line));
}

void FillTessellator::tessellate(FillRule rule)
{
    _vertices.clear();
    _indices.clear();
    _boundary.clear();
    snap();
    Work& work = *_pWork;
    work.graph.build(work.rings);
    bool isDone = work.sweepOver(work.graph, rule);
    if (!isDone)
    {
        work.crossings.find(work.graph);
        const std::vector<CrossingSweep::Meeting>& meetings = work.crossings.getMeetings();
        divide(work.graph, meetings, work.divided);
        work.dividedGraph.build(work.divided);
        isDone = work.sweepOver(work.dividedGraph, rule);
        if (!isDone)
        {
            // Rounding has moved an edge over a vertex nearby. That is rare on a fine grid, so that what forbids it,
            // and costs as much as all the rest, waits until it has happened.
            divide(work.graph, HotPixels(work.graph, meetings).findAll(), work.divided);
            work.dividedGraph.build(work.divided);
            isDone = work.sweepOver(work.dividedGraph, rule);
        }
    }
    TD_ASSERT(isDone);

    // Vertices with the inside all around them, or nothing of it, are in no triangle.
    const std::span<const GridPoint> vertices = work.pResult->getVertices();
    work.numbers.assign(vertices.size(), 0);
    for (const std::uint32_t index : work.sweep.getIndices())
        work.numbers[index] = 1;
    std::uint32_t n = 0;
    for (std::size_t i = 0; i < vertices.size(); ++i)
        if (work.numbers[i] != 0)
        {
            work.numbers[i] = n++;
            _vertices.emplace_back(_origin.x + _step * vertices[i].x, _origin.y + _step * vertices[i].y);
        }
    _indices.resize(work.sweep.getIndices().size());
    std::transform(work.sweep.getIndices().begin(), work.sweep.getIndices().end(), _indices.begin(),
                   [&work](std::uint32_t index) { return work.numbers[index]; });
    for (const FillSweep::BoundaryEdge& edge : work.sweep.getBoundary())
        _boundary.push_back({work.numbers[edge.from], work.numbers[edge.to]});
}

// Chooses the grid and moves all points there.
void FillTessellator::snap()
{
    Point low(cLargest, cLargest), high(-cLargest, -cLargest);
    for (const Point& p : _points)
        if (isUsable(p))
        {
            low = {std::min(low.x, p.x), std::min(low.y, p.y)};
            high = {std::max(high.x, p.x), std::max(high.y, p.y)};
        }
    _step = std::max(gridStepFor(low, high), cSmallestStep);
    if (_leastStep > _step && _leastStep <= cLargest)
        _step = powerOfTwoFrom(_leastStep);
    const double inverse = 1 / _step;
    // The sum has no digits after the point.
    const auto round = [](double number) { return (number + 0x1.8p52) - 0x1.8p52; };
    _origin = {std::nearbyint((low.x / 2 + high.x / 2) * inverse) * _step,
               std::nearbyint((low.y / 2 + high.y / 2) * inverse) * _step};

    FillEdges& rings = _pWork->rings;
    rings.clear();
    std::size_t begin = 0;
    for (const std::uint32_t end : _ends)
    {
        const auto first = static_cast<std::uint32_t>(rings.points.size());
        for (; begin < end; ++begin)
            if (const Point p = _points[begin]; isUsable(p))
            {
                const auto number = static_cast<std::uint32_t>(rings.points.size());
                rings.points.push_back({static_cast<std::int32_t>(round((p.x - _origin.x) * inverse)),
                                        static_cast<std::int32_t>(round((p.y - _origin.y) * inverse))});
                rings.edges.push_back({number, number + 1});
            }
        if (rings.points.size() > first)
            rings.edges.back().to = first;
    }
    _points.clear();
    _ends.clear();
}

} // namespace gui::draw
