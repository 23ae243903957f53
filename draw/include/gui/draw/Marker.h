#pragma once

#include <td/Types.h>

namespace gui::draw
{

/// What stands at a sample: a shape of the size that SeriesStyle::markerSize says, at every zoom.
enum class Marker : td::BYTE
{
    None,
    Circle,
    Square,
    Diamond,
    TriangleUp,
    TriangleDown,
    TriangleLeft,
    TriangleRight,
    Pentagon,
    Hexagon,
    Star,  ///< of five points
    Plus,  ///< two bars, upright
    Cross, ///< and slanted
    Bar,   ///< an upright line
    Dash   ///< and a level one
};

} // namespace gui::draw
