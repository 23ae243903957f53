#pragma once

#include "TextFrame.h"

#include <td/Point.h>

#include <optional>

namespace gui::draw
{

/// Which point of a text stands at its place.
struct Anchor
{
    double x = 0; ///< 0 the left edge, 1 the right one, and what is between, or beyond
    /// 0 the top of the first line, 1 the bottom of the last one; without a number the first line's base line.
    std::optional<double> y{};

    static const Anchor TopLeft;     ///< {0, 0}
    static const Anchor Top;         ///< {.5, 0}
    static const Anchor TopRight;    ///< {1, 0}
    static const Anchor Left;        ///< {0, .5}
    static const Anchor Center;      ///< {.5, .5}
    static const Anchor Right;       ///< {1, .5}
    static const Anchor BottomLeft;  ///< {0, 1}
    static const Anchor Bottom;      ///< {.5, 1}
    static const Anchor BottomRight; ///< {1, 1}
    static const Anchor Baseline;    ///< where the first line's base line begins
};

inline constexpr Anchor Anchor::TopLeft{0, 0}, Anchor::Top{.5, 0}, Anchor::TopRight{1, 0}, Anchor::Left{0, .5},
    Anchor::Center{.5, .5}, Anchor::Right{1, .5}, Anchor::BottomLeft{0, 1}, Anchor::Bottom{.5, 1},
    Anchor::BottomRight{1, 1}, Anchor::Baseline{};

/// How a text stands at its place in a drawing.
struct TextPlacement
{
    Anchor anchor{};
    td::Point<double> offset{}; ///< from there, in points: to the right and downwards on the screen
    double angle = 0;           ///< in degrees, counterclockwise as it is seen, about the anchor
    /// Behind all of the text, as `TextFrame{.fill = "#ffffff"}`; none for none, and for a text of no letters. It is
    /// turned with the text, is part of it for picking and bounds, and does not count for the anchor.
    std::optional<TextFrame> frame{};
};

} // namespace gui::draw
