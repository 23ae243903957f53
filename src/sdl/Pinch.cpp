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

Pinch::Finger* Pinch::find(const gui::SDLEvent::Finger& wanted)
{
    for (Finger& finger : _fingers)
        if (finger.isDown && finger.touch == wanted.touch && finger.id == wanted.id)
            return &finger;
    return nullptr;
}

double Pinch::getDistance() const
{
    return std::max(cShortestDistance, std::hypot(_fingers[0].position.x - _fingers[1].position.x,
                                                  _fingers[0].position.y - _fingers[1].position.y));
}

std::optional<double> Pinch::onFinger(const gui::SDLEvent& event, const td::Size<double>& size)
{
    Finger* pFinger = find(event.finger);
    if (event.type == gui::SDLEvent::Type::FingerUp)
    {
        if (pFinger != nullptr)
            pFinger->isDown = false;
        _isGoingOn = _isGoingOn && (_fingers[0].isDown || _fingers[1].isDown);
        return std::nullopt;
    }
    const td::Point<double> position{event.finger.place.x * size.width, event.finger.place.y * size.height};
    if (pFinger == nullptr)
    {
        if (event.type != gui::SDLEvent::Type::FingerDown || isActive())
            return std::nullopt;
        pFinger = _fingers[0].isDown ? &_fingers[1] : &_fingers[0];
        *pFinger = {true, event.finger.touch, event.finger.id, position};
        _firstDistance = getDistance();
        _isGoingOn = isActive();
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
