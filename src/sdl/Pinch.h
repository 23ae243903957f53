#pragma once

#include <SDL_events.h>
#include <td/Export.h>
#include <td/Point.h>
#include <td/Size.h>

#include <array>
#include <optional>

namespace gui::gl
{

/// Two fingers on a touch device: how far they have moved apart since they are two. A third finger is left out.
class GUIGL_API Pinch
{
public:
    /// @param size  of the window, in points
    /// @return the distance between the fingers, as a part of the first, less 1; nothing when it did not change
    std::optional<double> onFinger(const SDL_TouchFingerEvent& event, const td::Size<double>& size);

    bool isActive() const { return _fingers[0].isDown && _fingers[1].isDown; }

private:
    struct Finger
    {
        bool isDown = false;
        SDL_TouchID touch = 0;
        SDL_FingerID id = 0;
        td::Point<double> position;
    };

    Finger* find(const SDL_TouchFingerEvent& event);
    double getDistance() const;

    std::array<Finger, 2> _fingers;
    double _firstDistance = 0;
};

} // namespace gui::gl
