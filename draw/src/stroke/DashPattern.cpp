#include "DashPattern.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace gui::draw
{

DashPattern::DashPattern(const Stroke& stroke)
{
    const std::vector<double>& dashes = stroke.dashes;
    const double once = std::accumulate(dashes.begin(), dashes.end(), 0.0);
    if (!(once > 0) || !std::isfinite(once) ||
        std::any_of(dashes.begin(), dashes.end(), [](double length) { return length < 0; }))
        return;
    const bool isOdd = dashes.size() % 2 != 0;
    lengths = dashes;
    if (isOdd)
        lengths.insert(lengths.end(), dashes.begin(), dashes.end());
    sum = isOdd ? 2 * once : once;
    offset = std::isfinite(stroke.dashOffset) ? std::fmod(stroke.dashOffset, sum) : 0;
    offset += offset < 0 ? sum : 0;
}

} // namespace gui::draw
