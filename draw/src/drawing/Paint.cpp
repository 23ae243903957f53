#include <gui/draw/Paint.h>

#include <algorithm>

namespace gui::draw
{

Paint::Paint(const LinearGradient& gradient)
    : _isGradient(true)
    , _isLinear(true)
    , _gradient{gradient.to, 1, gradient.stops, gradient.spread, gradient.from}
{
}

Paint::Paint(const RadialGradient& gradient)
    : _isGradient(true)
    , _gradient(gradient)
{
}

bool Paint::isOpaque() const
{
    if (!_isGradient)
        return _color.alpha() == 255;
    return !_gradient.stops.empty() && std::all_of(_gradient.stops.begin(), _gradient.stops.end(),
                                                   [](const GradientStop& stop) { return stop.color.alpha() == 255; });
}

} // namespace gui::draw
