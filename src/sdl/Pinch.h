#pragma once

#include <gui/port/sdl/SDLEvent.h>
#include <td/Export.h>
#include <td/Point.h>
#include <td/Size.h>

#include <array>
#include <cstdint>
#include <optional>

namespace gui::gl
{

/// Two fingers on a touch device: how far they have moved apart since they are two. A third finger is left out.
class GUIGL_API Pinch
{
public:
    /// @param size  of the window, in points
    /// @return the distance between the fingers, as a part of the first, less 1; nothing when it did not change
    std::optional<double> onFinger(const gui::SDLEvent& event, const td::Size<double>& size);

    bool isActive() const { return _fingers[0].isDown && _fingers[1].isDown; }
    /// From the second finger on until both have gone: where the one that stays is has nothing to do with where it was.
    bool isGoingOn() const { return _isGoingOn; }

private:
    struct Finger
    {
        bool isDown = false;
        std::int64_t touch = 0;
        std::int64_t id = 0;
        td::Point<double> position;
    };

    Finger* find(const gui::SDLEvent::Finger& finger);
    double getDistance() const;

    std::array<Finger, 2> _fingers;
    double _firstDistance = 0;
    bool _isGoingOn = false;
};

} // namespace gui::gl
