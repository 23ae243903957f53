#pragma once

#include <cstdint>

namespace gui::draw
{

/// A point of the grid that fills are computed on. Coordinates are between -2^29 and 2^29, or a step beyond by
/// rounding, so that a product of two differences, and a difference of two such products, fit in 64 bits with one to
/// spare.
struct GridPoint
{
    std::int32_t x = 0;
    std::int32_t y = 0;

    bool operator==(const GridPoint&) const = default;
};

inline constexpr int cGridBits = 29;
inline constexpr std::int32_t cGridEnd = 1 << (cGridBits + 1); ///< above every coordinate

/// The order in which a sweep meets points: by y, then by x. What is called lower, left and right follows from it: left
/// is the side of smaller x, and for a horizontal edge the side of larger y, as if the sweep's line were turned a very
/// little.
inline bool isBefore(GridPoint p, GridPoint q) { return p.y != q.y ? p.y < q.y : p.x < q.x; }

/// The cross product of a difference of points and another.
inline std::int64_t cross(GridPoint a, GridPoint b, GridPoint c, GridPoint d)
{
    return (std::int64_t(b.x) - a.x) * (std::int64_t(d.y) - c.y) -
           (std::int64_t(b.y) - a.y) * (std::int64_t(d.x) - c.x);
}

/// Above 0 when p is left of the edge from a to b, where a is before b; below 0 when it is right of it, 0 on its line.
inline std::int64_t sideOf(GridPoint a, GridPoint b, GridPoint p) { return cross(a, b, a, p); }

} // namespace gui::draw
