#pragma once

#include "WaylandRegistry.h"

#include <gui/port/RunLoop.h>

#include <chrono>
#include <cstdint>
#include <ctime>
#include <functional>
#include <memory>
#include <vector>

struct wl_display;
struct wl_surface;
struct wp_presentation;

namespace gui
{

/// When frames were seen, of a compositor that tells. It listens beside SDL, on a queue of its own. GUI thread only.
class WaylandPresentation
{
public:
    /// A frame of a surface was shown at this time, and the display goes on to the next one every so often: 0 where the
    /// compositor does not know. Of a frame that was never seen nothing is told.
    using Handler = std::function<void(std::uint32_t windowID, RunLoop::Time shown, RunLoop::Clock::duration refresh)>;

    WaylandPresentation(wl_display* pDisplay, Handler handler);
    ~WaylandPresentation();
    WaylandPresentation(const WaylandPresentation&) = delete;
    WaylandPresentation& operator=(const WaylandPresentation&) = delete;

    /// Of the frame that the surface gets next. Nothing happens where the compositor does not tell.
    void await(wl_surface* pSurface, std::uint32_t windowID);
    /// Hands out what has arrived. Does not wait, nor read from the compositor: SDL does.
    void dispatch();

private:
    struct Frame;
    struct Listeners;

    RunLoop::Time toTime(std::chrono::nanoseconds shown) const;
    void forget(const Frame* pFrame);

    Handler _handler;
    sdl::WaylandRegistry _registry;
    wp_presentation* _pPresentation = nullptr;
    clockid_t _clock{};                          // of the compositor's times
    bool _hasClock = false;                      // which we can read
    std::vector<std::unique_ptr<Frame>> _frames; // not shown yet
};

} // namespace gui
