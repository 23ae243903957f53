#pragma once

#include "SurfaceEvents.h"

#include <td/Export.h>

#include <chrono>

namespace gui::gl
{

/// Counts the presses of a row of quick clicks, for surfaces of a system that doesn't: ButtonEvent::nClicks.
class GUIGL_API ClickCounter
{
public:
    /// Whether a press goes on with a row: what the user has set.
    struct Limits
    {
        std::chrono::milliseconds time; ///< since the press before, less than that
        double distance;                ///< from it, in points, at most that
    };

    /// A button goes down. @param time  of any clock  @return its place in the row, from 1 on
    unsigned short press(ButtonEvent::Button button, const td::Point<double>& point, std::chrono::milliseconds time,
                         const Limits& limits);
    /// A button goes up. @return the place of its press
    unsigned short release(ButtonEvent::Button button) const;

private:
    ButtonEvent::Button _button{};
    td::Point<double> _point;
    std::chrono::milliseconds _time{};
    unsigned short _n = 0; // none yet
};

} // namespace gui::gl
