#include "Degrees.h"

#include <cmath>
#include <numbers>

namespace gui::draw
{

double sineOf(double degrees)
{
    const double angle = std::remainder(degrees, 360.0);
    const double quarters = std::round(angle / 90);
    const double rest = (angle - 90 * quarters) * (std::numbers::pi / 180);
    switch (static_cast<int>(quarters) & 3)
    {
    case 0:
        return std::sin(rest);
    case 1:
        return std::cos(rest);
    case 2:
        return -std::sin(rest);
    default:
        return -std::cos(rest);
    }
}

// Within a turn first: 90 more is lost in what is large.
double cosineOf(double degrees) { return sineOf(std::remainder(degrees, 360.0) + 90); }

} // namespace gui::draw
