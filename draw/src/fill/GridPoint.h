#pragma once

#include <td/Point.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

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

/// The power of two that is a number above 0, or the next one above it.
inline double powerOfTwoFrom(double number)
{
    if (number >= std::numeric_limits<double>::min())
    {
        // What is behind the point of its fraction carries over into the exponent.
        constexpr std::uint64_t cFraction = (std::uint64_t(1) << 52) - 1;
        return std::bit_cast<double>((std::bit_cast<std::uint64_t>(number) + cFraction) & ~cFraction);
    }
    int exponent = 0;
    const double fraction = std::frexp(number, &exponent);
    return std::ldexp(1, fraction == 0.5 ? exponent - 1 : exponent);
}

/// The step of a grid for what lies between two corners: as fine as the bits go, but no finer than doubles are there,
/// so that each point of the grid is one.
inline double gridStepFor(td::Point<double> low, td::Point<double> high)
{
    const double half = std::max({high.x / 2 - low.x / 2, high.y / 2 - low.y / 2, 0.0});
    const double farthest = std::max({std::abs(low.x), std::abs(low.y), std::abs(high.x), std::abs(high.y)});
    return std::max(powerOfTwoFrom(half) * 0x1p-29, powerOfTwoFrom(farthest) * 0x1p-52);
}

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
