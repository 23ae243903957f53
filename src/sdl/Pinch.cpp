#include "Pinch.h"

#include <algorithm>
#include <cmath>

namespace gui::gl
{

namespace
{

// Fingers that touch each other: from here on a point more or less would be a huge factor.
constexpr double cShortestDistance = 8;

} // namespace

Pinch::Finger* Pinch::find(const SDL_TouchFingerEvent& event)
{
    for (Finger& finger : _fingers)
        if (finger.isDown && finger.touch == event.touchId && finger.id == event.fingerId)
            return &finger;
    return nullptr;
}

double Pinch::getDistance() const
{
    return std::max(cShortestDistance, std::hypot(_fingers[0].position.x - _fingers[1].position.x,
                                                  _fingers[0].position.y - _fingers[1].position.y));
}

std::optional<double> Pinch::onFinger(const SDL_TouchFingerEvent& event, const td::Size<double>& size)
{
    Finger* pFinger = find(event);
    if (event.type == SDL_FINGERUP)
    {
        if (pFinger != nullptr)
            pFinger->isDown = false;
        return std::nullopt;
    }
    const td::Point<double> position{static_cast<double>(event.x) * size.width,
                                     static_cast<double>(event.y) * size.height};
    if (pFinger == nullptr)
    {
        if (event.type != SDL_FINGERDOWN || isActive())
            return std::nullopt;
        pFinger = _fingers[0].isDown ? &_fingers[1] : &_fingers[0];
        *pFinger = {true, event.touchId, event.fingerId, position};
        _firstDistance = getDistance();
        return std::nullopt;
    }
    const double before = getDistance();
    pFinger->position = position;
    const double distance = getDistance();
    if (!isActive() || distance == before)
        return std::nullopt;
    return distance / _firstDistance - 1;
}

} // namespace gui::gl
