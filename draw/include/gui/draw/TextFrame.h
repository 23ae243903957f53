#pragma once

#include "Paint.h"

namespace gui::draw
{

/// What is behind a text, such as a dimension's number that stands over lines: an area, and a line around it. Lengths
/// are in points, or in the unit of the text where that is another one.
struct TextFrame
{
    Paint fill = "#ffffffe0"; ///< Paint() for none
    Paint line = "#8090a0";   ///< of the line around it
    double width = 0;         ///< of the line around it, within the frame; none when it is not above 0
    double padding = 4;       ///< between text and frame at the left and right; above and below half of that
    double radius = 3;        ///< of the corners
};

} // namespace gui::draw
