#pragma once

#include "CrossingSweep.h"
#include "FillGraph.h"

#include <cstdint>
#include <span>
#include <vector>

namespace gui::draw
{

/// Snap rounding: each edge goes by way of all hot pixels that it passes, which are the squares of one step around each
/// vertex and each rounded crossing. What comes out crosses nowhere (L. Guibas and D. Marimont, "Rounding arrangements
/// dynamically", 1998, theorem 1; J. Hobby, "Practical segment intersection with finite precision output", 1999):
/// within a pixel everything is drawn to its middle, and no edge passes over a middle on the way.
class HotPixels
{
public:
    /// @param meetings  all there are of the graph's edges
    HotPixels(const FillGraph& graph, std::span<const CrossingSweep::Meeting> meetings);

    /// For each edge all pixels that it passes, from above downwards.
    std::vector<CrossingSweep::Meeting> findAll() const;

private:
    struct Box
    {
        GridPoint low, high;
    };

    struct Range
    {
        std::size_t begin, end;
    };

    Box build(Range range);
    void find(GridPoint a, GridPoint b, Range range, std::vector<GridPoint>& passed) const;

    const FillGraph& _graph;
    // A tree of medians: each range's middle divides it, along x or y, and has the box of all of it.
    std::vector<GridPoint> _centers;
    std::vector<Box> _boxes;
};

/// Whether the straight line between two points passes the square around a centre that is a step wide and high, with
/// its left and top sides and without the others: those points that round to the centre.
bool passesPixel(GridPoint a, GridPoint b, GridPoint center);

} // namespace gui::draw
