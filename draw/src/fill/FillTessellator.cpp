#include <gui/draw/FillTessellator.h>

#include "GridTessellator.h"

#include <algorithm>

namespace gui::draw
{

struct FillTessellator::Work
{
    GridTessellator grid;
    std::vector<std::uint32_t> numbers;
};

FillTessellator::FillTessellator()
    : _pWork(std::make_unique<Work>())
{
}

FillTessellator::~FillTessellator() = default;

void FillTessellator::addRing(std::span<const Point> points) { _pWork->grid.addRing(points); }

void FillTessellator::addPath(const Path& path, double tolerance) { _pWork->grid.addPath(path, tolerance); }

double FillTessellator::getStep() const { return _pWork->grid.getStep(); }

void FillTessellator::setLeastStep(double step) { _pWork->grid.setLeastStep(step); }

void FillTessellator::tessellate(FillRule rule)
{
    _vertices.clear();
    _indices.clear();
    _boundary.clear();
    GridTessellator& grid = _pWork->grid;
    std::vector<std::uint32_t>& numbers = _pWork->numbers;
    grid.tessellate(rule);

    // Vertices with the inside all around them, or nothing of it, are in no triangle.
    const std::span<const GridPoint> vertices = grid.getVertices();
    numbers.assign(vertices.size(), 0);
    for (const std::uint32_t index : grid.getIndices())
        numbers[index] = 1;
    const Point origin = grid.getOrigin();
    const double step = grid.getStep();
    std::uint32_t n = 0;
    for (std::size_t i = 0; i < vertices.size(); ++i)
        if (numbers[i] != 0)
        {
            numbers[i] = n++;
            _vertices.emplace_back(origin.x + step * vertices[i].x, origin.y + step * vertices[i].y);
        }
    _indices.resize(grid.getIndices().size());
    std::transform(grid.getIndices().begin(), grid.getIndices().end(), _indices.begin(),
                   [&numbers](std::uint32_t index) { return numbers[index]; });
    for (const FillSweep::BoundaryEdge& edge : grid.getBoundary())
        _boundary.push_back({numbers[edge.from], numbers[edge.to]});
}

} // namespace gui::draw
