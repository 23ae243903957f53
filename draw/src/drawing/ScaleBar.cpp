#include <gui/draw/ScaleBar.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace gui::draw
{

ScaleBar::ScaleBar(Drawing& drawing, const Drawing::Point& at, const ScaleBarStyle& style)
    : _drawing(drawing)
    , _at(at)
    , _style(style)
    , _rim(drawing.stroke({}, {.width = style.width + 2 * style.rim, .cap = Cap::Square}, style.rimColor))
    , _bar(drawing.stroke({}, {.width = style.width}, style.color))
    , _text(drawing.text({at.x + style.ends, at.y - style.ends / 2}, "", style.text, {.anchor = Anchor::Left}))
{
}

bool ScaleBar::place(double pointsPerUnit)
{
    const double most = _style.longest / pointsPerUnit, exponent = std::floor(std::log10(most));
    const double power = std::pow(10, exponent);
    const double units = (most >= 5 * power ? 5 : most >= 2 * power ? 2 : 1) * power, length = units * pointsPerUnit;
    const bool isThere = pointsPerUnit > 0 && std::isnormal(power) && std::isfinite(length);
    for (const Drawing::ID id : {_rim, _bar, _text})
        _drawing.setVisible(id, isThere && (id != _rim || _style.rim > 0));
    _length = isThere ? length : 0;
    _string.clear();
    if (!isThere)
        return false;
    std::array<char, 400> number{};
    std::snprintf(number.data(), number.size(), "%.*f ", static_cast<int>(std::max(-exponent, 0.0)), units);
    _string = number.data() + _style.unit;
    const double right = _at.x + length, top = _at.y - _style.ends;
    const Path bar = Path().moveTo({_at.x, top}).lineTo(_at).lineTo({right, _at.y}).lineTo({right, top});
    _drawing.setPath(_rim, bar);
    _drawing.setPath(_bar, bar);
    _drawing.setTransform(_text, Affine::translation(length, 0));
    _drawing.setText(_text, _string);
    return true;
}

} // namespace gui::draw
