#pragma once

#include "Unit.h"

#include <td/Types.h>

#include <vector>

namespace gui::draw
{

/// How a stroke's open ends and those of its dashes look.
enum class Cap : td::BYTE
{
    Butt,  ///< cut off where the line ends
    Round, ///< half a disc of the stroke's width beyond it
    Square ///< half of the width beyond it
};

/// How a stroke's lines meet at a corner.
enum class Join : td::BYTE
{
    Miter, ///< both outer sides go on until they meet; as Bevel where that is farther than the limit allows
    Round, ///< the outer sides are joined by an arc about the corner
    Bevel  ///< a straight line between the outer sides' ends
};

/// What a line along a path looks like, as SVG 2 has it, the colour apart. A value:
///
///     drawing.stroke(path, {.width = 3, .join = Join::Round, .dashes = {8, 4}}, "#d04020");
///
/// A subpath of one point is a dot with Cap::Round and an upright square with Cap::Square, and nothing with Cap::Butt.
/// The dashes of each subpath begin anew; all of them have caps at both ends, also those that begin or end where a
/// closed subpath does, and joins where they go round a corner. A dash of length 0 consists of its caps.
struct Stroke
{
    double width = 1;         ///< not above 0, or not finite: nothing is drawn
    Unit unit = Unit::Points; ///< of width
    Cap cap = Cap::Butt;
    Join join = Join::Miter;
    /// The length of a mitre, from the inner to the outer corner, over the stroke's width, at most. Below 1 as 1.
    double miterLimit = 4;
    /// Lengths of dashes and gaps in turn; an odd number of them is taken twice. Solid when it is empty, when its sum
    /// is 0, or when a length is below 0 or not finite.
    std::vector<double> dashes{};
    double dashOffset = 0;        ///< where in the pattern a subpath begins
    Unit dashUnit = Unit::Points; ///< of dashes and dashOffset

    bool operator==(const Stroke&) const = default;
};

} // namespace gui::draw
