#include <gui/draw/ScaleBar.h>

#include <gui/gl/OrthoView.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace gui::draw
{

namespace
{

constexpr double cAboveBar = 2; // the text from the bar, in points

// The longest of 1, 2, 5, 10, 20, 50 ... that is not above this one.
double roundDown(double length)
{
    // What is a round number but for its last bits is one.
    length *= 1 + 1e-12;
    const double power = std::pow(10, std::floor(std::log10(length)));
    return (length >= 5 * power ? 5 : length >= 2 * power ? 2 : 1) * power;
}

} // namespace

ScaleBar::ScaleBar(const ScaleBarStyle& style)
    : _style(style)
{
    std::erase_if(_style.units, [](const ScaleUnit& unit) { return !(unit.size > 0) || !std::isfinite(unit.size); });
    if (_style.units.empty())
        _style.units.emplace_back();
    std::sort(_style.units.begin(), _style.units.end(),
              [](const ScaleUnit& a, const ScaleUnit& b) { return a.size < b.size; });
    _style.text.unit = Unit::Points;
    _all = _drawing.beginGroup();
    if (_style.rim.width > 0)
        _rim = _drawing.stroke({}, {.width = style.width + 2 * style.rim.width, .cap = Cap::Square}, style.rim.paint);
    _bar = _drawing.stroke({}, {.width = style.width, .cap = Cap::Square}, style.paint);
    _text = _drawing.text({0, -style.width / 2 - cAboveBar}, "", _style.text, {.anchor = Anchor::Bottom});
    _drawing.endGroup();
}

bool ScaleBar::draw(const gl::OrthoView& view, double stretch)
{
    td::Size<double> size;
    view.getSize(size);
    return draw(size, view.getZoom() * stretch, view.getPixelHiDPIScale());
}

bool ScaleBar::draw(const td::Size<double>& size, double pointsPerUnit, double pixelsPerPoint)
{
    const double most = _style.length / pointsPerUnit;
    if (!(most > 0) || !std::isfinite(most) || !(pixelsPerPoint > 0))
        return false;
    const ScaleUnit* pUnit = _style.units.data();
    for (const ScaleUnit& unit : _style.units)
        if (unit.size <= most)
            pUnit = &unit;
    const double number = roundDown(most / pUnit->size);
    const auto toPixel = [pixelsPerPoint](double points)
    { return std::round(points * pixelsPerPoint) / pixelsPerPoint; };
    _length = toPixel(number * pUnit->size * pointsPerUnit);
    char text[40];
    std::snprintf(text, sizeof text, "%.15g", number);
    _words = text + pUnit->name;

    const Anchor& corner = _style.corner;
    const double high = _style.height + _style.text.size; // of all of it, or so
    // Lines of an odd width have their middle in that of a pixel.
    const double middle =
        std::lround(std::min(_style.width * pixelsPerPoint, 99.0)) % 2 == 0 ? 0 : 0.5 / pixelsPerPoint;
    const double left = toPixel(corner.x * (size.width - _length) + _style.offset.x) + middle;
    const double base = toPixel(corner.y.value_or(1) * (size.height - high) + high + _style.offset.y) + middle;
    const Path bar =
        Path().moveTo({0, -_style.height}).lineTo({0, 0}).lineTo({_length, 0}).lineTo({_length, -_style.height});
    _drawing.setTransform(_all, Affine::translation(left, base));
    _drawing.setPath(_rim, bar);
    _drawing.setPath(_bar, bar);
    _drawing.setText(_text, _words);
    _drawing.setTransform(_text, Affine::translation(_length / 2, 0));
    return _drawing.draw(Affine(), pixelsPerPoint);
}

} // namespace gui::draw
