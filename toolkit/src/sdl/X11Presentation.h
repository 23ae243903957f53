#pragma once

#include "DisplayBeat.h"

#include <gui/port/sdl/SDLPort.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

struct xcb_connection_t;

namespace gui
{

/// When the display of a window goes on to its next frame, of an X server that tells. It has a connection of its own,
/// which it looks at and, once it is made, never waits for. GUI thread only.
class X11Presentation
{
public:
    /// The display of a window went on to a frame at this time, and does so every so often.
    using Handler = std::function<void(std::uint32_t windowID, RunLoop::Time shown, RunLoop::Clock::duration refresh)>;

    X11Presentation(_XDisplay* pDisplay, Handler handler);
    ~X11Presentation();
    X11Presentation(const X11Presentation&) = delete;
    X11Presentation& operator=(const X11Presentation&) = delete;

    /// Asks when the next frames of the window's display are, unless it has been asked. Nothing happens where the
    /// server does not tell.
    void await(const sdl::X11Window& window, std::uint32_t windowID);
    /// Hands out what has arrived.
    void dispatch();
    /// Frames per second of the window's display, as they are told; 0 for unknown.
    double getRate(std::uint32_t windowID) const;

private:
    struct Watched
    {
        std::uint32_t windowID = 0;
        std::uint32_t window = 0;
        std::uint32_t serial = 0; // of the first of a pair
        bool isAsked = false;
        std::optional<DisplayBeat::Frame> told; // one of the pair
        std::uint64_t count = 0;                // of the last frame that was told
        DisplayBeat beat;
    };

    Watched& watch(std::uint32_t window, std::uint32_t windowID);
    void take(std::uint32_t window, std::uint32_t serial, const DisplayBeat::Frame& frame);

    xcb_connection_t* _pConnection;
    Handler _handler;
    bool _isThere = false; // what tells
    std::vector<Watched> _windows;
    std::uint32_t _nextSerial;
};

} // namespace gui
