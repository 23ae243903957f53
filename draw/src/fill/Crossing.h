#pragma once

#include "GridPoint.h"

#include <cstdint>

namespace gui::draw
{

/// A point of the plane where two edges between points of the grid cross, exactly: whole steps and a fraction from 0 to
/// below 1 in each direction. A point of the grid is one without fractions.
class Crossing
{
public:
    Crossing() = default;
    explicit Crossing(GridPoint p)
        : _whole(p)
    {
    }

    /// Of two edges that cross in a point which is no end of either. Both go from an earlier point to a later one.
    Crossing(GridPoint a, GridPoint b, GridPoint c, GridPoint d);

    /// Below 0, 0 or above 0: comes before, is the same as, comes after, in the order of isBefore.
    int compare(const Crossing& other) const;

    /// The sign of sideOf, for this point.
    int sideOf(GridPoint a, GridPoint b) const;

    /// The nearest point of the grid; from the middle between two, the one with the larger number.
    GridPoint rounded() const;

private:
    GridPoint _whole;
    std::uint64_t _x = 0, _y = 0, _denominator = 1; // below 2^62
};

} // namespace gui::draw
