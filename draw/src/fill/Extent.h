#pragma once

#include "TwoDoubles.h"

#include <td/Point.h>

#include <span>

namespace gui::draw
{

/// The smallest box around points, without those that are too far away for their sums to be finite, or no numbers.
class Extent
{
public:
    static constexpr double cMostCoordinate = 1e300;

    static bool isUsable(td::Point<double> p)
    {
        return std::abs(p.x) <= cMostCoordinate && std::abs(p.y) <= cMostCoordinate;
    }

    explicit Extent(std::span<const td::Point<double>> points)
    {
        for (const td::Point<double>& p : points)
        {
            const TwoDoubles both{p.x, p.y}, size = absOf(both);
            if (!(size[0] <= cMostCoordinate && size[1] <= cMostCoordinate))
            {
                _isWhole = false;
                continue;
            }
            _low = smallerOf(both, _low);
            _high = largerOf(both, _high);
        }
    }

    /// Of no points it is above the other one.
    td::Point<double> getLow() const { return {_low[0], _low[1]}; }
    td::Point<double> getHigh() const { return {_high[0], _high[1]}; }
    /// Whether all points are within it.
    bool isWhole() const { return _isWhole; }

private:
    TwoDoubles _low{cMostCoordinate, cMostCoordinate};
    TwoDoubles _high{-cMostCoordinate, -cMostCoordinate};
    bool _isWhole = true;
};

} // namespace gui::draw
