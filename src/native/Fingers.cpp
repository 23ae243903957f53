#include <gui/gl/port/Fingers.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace gui::gl
{

void Fingers::change(std::span<const td::Point<double>> down, unsigned int modifiers, const SharedClient& pClient)
{
    constexpr double cShortestDistance = 8; // fingers that touch each other
    if (down.size() >= 2)
    {
        const double distance = std::max(cShortestDistance, std::hypot(down[0].x - down[1].x, down[0].y - down[1].y));
        const bool isFirst = !std::exchange(_isPinch, true) || _firstDistance == 0;
        if (isFirst)
            _firstDistance = distance;
        const double magnification = distance / _firstDistance - 1;
        if (std::exchange(_isDown, false))
            (*pClient)->onButton({ButtonEvent::Button::Left, false, false, 1, modifiers, _point});
        if (!isFirst && *pClient != nullptr)
            (*pClient)->onMagnification({magnification, modifiers});
        return;
    }
    _firstDistance = 0;
    _isPinch = _isPinch && !down.empty();
    const bool isDown = !down.empty() && !_isPinch;
    const bool wasDown = std::exchange(_isDown, isDown);
    if (!down.empty())
        _point = down[0];
    if (isDown != wasDown)
        (*pClient)->onButton({ButtonEvent::Button::Left, isDown, isDown, 1, modifiers, _point});
    else if (isDown)
        (*pClient)->onMotion({MotionEvent::Kind::Dragged, modifiers, _point});
}

} // namespace gui::gl
