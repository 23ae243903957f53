#pragma once

#include <gui/port/sdl/SDLEvent.h>

#include <chrono>
#include <map>

namespace gui
{

/// Counts presses in a row as SDL does, each button by itself and within the limits of SDL's hints, but by when the
/// user made them and not by when the program came to look. Another window begins anew.
class SDLClicks
{
public:
    /// A button goes down or up. @return the place of the press in its row, from 1 on
    unsigned short count(const SDLEvent& event);

private:
    struct Row
    {
        std::uint32_t windowID = 0;
        bool isServerTime = false;
        std::chrono::milliseconds time{};
        td::Point<double> point;
        unsigned short n = 0; // none yet
    };

    std::map<int, Row> _rows;
};

} // namespace gui
