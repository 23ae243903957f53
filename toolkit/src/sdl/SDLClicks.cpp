#include "SDLClicks.h"

#include <gui/port/sdl/SDL.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace gui
{

namespace
{

// As SDL has them where the user has set nothing.
constexpr int cDefaultTime = 500;
constexpr int cDefaultDistance = 32;

int limitOf(const char* hint, int defaultLimit)
{
    const char* const text = SDL_GetHint(hint);
    return text != nullptr && *text != 0 ? std::atoi(text) : defaultLimit;
}

} // namespace

unsigned short SDLClicks::count(const SDLEvent& event)
{
    constexpr unsigned short cMost = 255; // SDL's
    Row& row = _rows[event.button];
    if (event.type == SDLEvent::Type::ButtonDown)
    {
        const auto distance = static_cast<double>(limitOf(SDL_HINT_MOUSE_DOUBLE_CLICK_RADIUS, cDefaultDistance));
        const std::chrono::milliseconds limit(limitOf(SDL_HINT_MOUSE_DOUBLE_CLICK_TIME, cDefaultTime));
        // Both clocks begin anew after 32 bits of milliseconds.
        const std::chrono::milliseconds since(static_cast<std::uint32_t>((event.time - row.time).count()));
        const bool goesOn = row.windowID == event.windowID && row.isServerTime == event.isServerTime && since < limit &&
                            std::abs(event.mouse.x - row.point.x) <= distance &&
                            std::abs(event.mouse.y - row.point.y) <= distance;
        const unsigned short nBefore = goesOn ? row.n : 0;
        row = {event.windowID, event.isServerTime, event.time, event.mouse,
               static_cast<unsigned short>(std::min<int>(nBefore + 1, cMost))};
    }
    return std::max<unsigned short>(row.n, 1);
}

} // namespace gui
