#pragma once

#include <td/Point.h>

#include <cmath>

namespace gui::draw
{

/// Whether a point is somewhere. Careless programs, and devices with faults, tell of others as well.
inline bool isFinitePoint(const td::Point<double>& point) { return std::isfinite(point.x) && std::isfinite(point.y); }

} // namespace gui::draw
