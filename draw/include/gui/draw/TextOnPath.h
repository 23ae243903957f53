#pragma once

#include "TextPlacement.h"

#include <td/Point.h>
#include <td/Types.h>

namespace gui::draw
{

/// How a text lies along a path in a drawing: the name of a river or a road.
struct TextOnPath
{
    /// What is done with a text that the path is too short for.
    enum class Overflow : td::BYTE
    {
        Hide, ///< all of it, until there is room
        Cut   ///< the letters that are not on the path are left out
    };

    double along = 0.5;         ///< the point of the path, as a part of its length: 0 its beginning, 1 its end
    Anchor anchor{0.5};         ///< the point of the text that is there: at first the middle of its base line
    td::Point<double> offset{}; ///< from there, in the text's unit: along the path, and downwards as letters stand
    /// Whether a text that would be upside down, its end to the left of its beginning on the screen, lies the other way
    /// round on the same part of the path.
    bool isKeptUpright = true;
    Overflow overflow = Overflow::Hide;
};

} // namespace gui::draw
