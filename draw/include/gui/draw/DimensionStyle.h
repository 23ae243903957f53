#pragma once

#include "Behind.h"
#include "Paint.h"
#include "TextFrame.h"
#include "TextStyle.h"

#include <td/Types.h>

#include <optional>
#include <string>

namespace gui::draw
{

/// What dimensions look like, on the plane and in space, and how they say their value.
struct DimensionStyle
{
    /// Where the text is.
    enum class Text : td::BYTE
    {
        InLine,   ///< upright, in a gap of the line
        AboveLine ///< turned as the line is, readable from below or from the right, above it
    };

    /// What is at the ends of the line.
    enum class End : td::BYTE
    {
        Arrow, ///< the head of one: within the line, or from outside where there is no room
        Tick   ///< a slanted stroke through its end, as in plans of buildings
    };

    TextStyle text{};                 ///< in points, whatever its unit says
    Paint paint = "#202830";          ///< of lines, arrows and ticks
    double width = 1;                 ///< of lines, in points
    double arrow = 9;                 ///< the length of arrows or ticks, in points; without any where not above 0
    double gap = 3;                   ///< between what is measured and the extension lines, in points
    double overshoot = 4;             ///< of extension lines beyond the dimension line, in points
    bool hasExtensions = true;        ///< whether there are extension lines; of an angle they come from its apex
    Text place = Text::InLine;        ///< see Text
    double factor = 1;                ///< of lengths: 1000 tells millimetres of a model in metres
    int decimals = 2;                 ///< at most, 0 to 12
    bool keepsZeros = false;          ///< whether 12.5 is 12.50
    std::string prefix{};             ///< before the value, beside the signs for radius and diameter
    std::string unit{};               ///< after a length: " mm"
    std::string label{};              ///< in place of all of that
    Behind behind = Behind::Hide;     ///< in space: what becomes of it when something is before it
    double tolerance = 0;             ///< in space: what is that near before it, in model units, does not hide it
    End end = End::Arrow;             ///< see End
    std::optional<TextFrame> frame{}; ///< behind the text: where it stands over lines; none for none
};

} // namespace gui::draw
