#include <gui/gl/port/ClickCounter.h>

#include <cmath>

namespace gui::gl
{

unsigned short ClickCounter::press(ButtonEvent::Button button, const td::Point<double>& point,
                                   std::chrono::milliseconds time, const Limits& limits)
{
    const bool goesOn = _n > 0 && _button == button && time - _time < limits.time &&
                        std::hypot(point.x - _point.x, point.y - _point.y) <= limits.distance;
    _n = goesOn ? static_cast<unsigned short>(_n + 1) : static_cast<unsigned short>(1);
    _button = button;
    _point = point;
    _time = time;
    return _n;
}

unsigned short ClickCounter::release(ButtonEvent::Button button) const
{
    return _n > 0 && _button == button ? _n : static_cast<unsigned short>(1);
}

} // namespace gui::gl
