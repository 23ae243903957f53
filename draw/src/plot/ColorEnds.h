#pragma once

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace gui::draw
{

/// The numbers of a map's first and last colour, which are never the same: those that were given, as far as they are
/// finite, and else the numbers' own, or the other end where that is beyond them. What is given may fall.
inline std::pair<double, double> findColorEnds(std::optional<double> low, std::optional<double> high, double lowest,
                                               double highest)
{
    const bool hasLow = low && std::isfinite(*low), hasHigh = high && std::isfinite(*high);
    if (!(lowest <= highest)) // no numbers
        lowest = highest = hasLow ? *low : hasHigh ? *high : 0;
    const double first = hasLow ? *low : hasHigh ? std::min(lowest, *high) : lowest;
    const double last = hasHigh ? *high : hasLow ? std::max(highest, *low) : highest;
    if (first != last)
        return {first, last};
    // A step that doubles have everywhere, away from the end that was given.
    const double step = std::max(1.0, std::abs(first) * 1e-6);
    return hasHigh && !hasLow ? std::pair(last - step, last) : std::pair(first, first + step);
}

} // namespace gui::draw
