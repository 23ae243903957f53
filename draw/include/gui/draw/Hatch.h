#pragma once

#include "FillRule.h"

#include <td/Point.h>

namespace gui::draw
{

/// Parallel lines within an area, by which drawings tell materials apart and show what is cut: see Path::hatched. A
/// value.
struct Hatch
{
    double spacing = 1;                ///< from one line to the next, in model units
    double angle = 45;                 ///< of the lines, in degrees from the x axis towards the y axis
    td::Point<double> origin{};        ///< that one of the lines goes through; areas that have one origin fit together
    FillRule rule = FillRule::NonZero; ///< what is inside
};

} // namespace gui::draw
