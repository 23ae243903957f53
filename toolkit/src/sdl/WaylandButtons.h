#pragma once

#include "WaylandRegistry.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <vector>

struct wl_display;
struct wl_pointer;
struct wl_seat;
struct wl_surface;

namespace gui::sdl
{

/// When a pointer's buttons went down and up, by the compositor's clock: SDL2 says when the program came to look, and
/// to SDL3 two that were read at once may be of one moment. It listens beside SDL, on a queue of its own. GUI thread
/// only.
class WaylandButtons
{
public:
    explicit WaylandButtons(wl_display* pDisplay);
    ~WaylandButtons();
    WaylandButtons(const WaylandButtons&) = delete;
    WaylandButtons& operator=(const WaylandButtons&) = delete;

    /// Takes in what has arrived. Does not wait, nor read from the compositor: SDL does.
    void dispatch();
    /// Of the event that SDL tells of now. @param button  SDL's number  @return nothing for one that is not a pointer's
    std::optional<std::chrono::milliseconds> take(const wl_surface* pSurface, int button, bool isDown);

private:
    struct Pointer
    {
        WaylandButtons* pOwner;
        wl_seat* pSeat;
        wl_pointer* pPointer = nullptr;
        wl_surface* pSurface = nullptr; // that it is in
    };
    struct Event
    {
        const wl_surface* pSurface;
        int button;
        bool isDown;
        std::chrono::milliseconds time;
        std::chrono::steady_clock::time_point arrived;
    };
    struct Listeners;

    std::optional<std::chrono::milliseconds> find(const wl_surface* pSurface, int button, bool isDown);

    WaylandRegistry _registry;
    std::vector<std::unique_ptr<Pointer>> _pointers; // one of each seat
    std::deque<Event> _events;                       // that SDL has not told of yet
};

} // namespace gui::sdl
