#pragma once

#include <td/Point.h>

#include <cstddef>
#include <span>
#include <vector>

namespace gui::draw
{

/// Lines through points: what is left of a path when its curves are flattened, and what fills and strokes are made of.
struct Polylines
{
    /// Some of the points, in a row.
    struct Line
    {
        std::size_t first = 0; ///< its first point
        std::size_t count = 0; ///< at least 1
        /// Whether the last point is joined with the first, which is not repeated for that.
        bool isClosed = false;
    };

    std::vector<td::Point<double>> points;
    /// For each point whether it is one within a curve, between two of the lines that stand for it.
    std::vector<bool> areWithinCurves;
    std::vector<Line> lines;

    /// A line's points, valid until the lists change.
    std::span<const td::Point<double>> pointsOf(const Line& line) const
    {
        return std::span(points).subspan(line.first, line.count);
    }

    /// Empties all lists and keeps their memory.
    void clear()
    {
        points.clear();
        areWithinCurves.clear();
        lines.clear();
    }
};

} // namespace gui::draw
