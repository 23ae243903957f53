#include "ColorFill.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace gui::draw
{

namespace
{

PremultipliedColor timesAlpha(const std::array<float, 4>& color)
{
    return {color[0] * color[3], color[1] * color[3], color[2] * color[3], color[3]};
}

} // namespace

ColorFill::ColorFill(const std::array<float, 4>& color)
    : _kind(Kind::Solid)
    , _color(timesAlpha(color))
{
}

ColorFill::ColorFill(Kind kind, std::vector<Stop> stops, Spread spread, const Affine& toTarget)
    : _spread(spread)
    , _stops(std::move(stops))
{
    const std::optional<Affine> inverse = toTarget.inverse();
    if (!inverse || _stops.empty())
        return;
    _kind = kind;
    _toGradient = *inverse;
    std::ranges::stable_sort(_stops, {}, &Stop::offset);
}

ColorFill ColorFill::linear(std::vector<Stop> stops, Spread spread, const Affine& toTarget, Point p0, Point p1,
                            Point p2)
{
    ColorFill fill(Kind::Linear, std::move(stops), spread, toTarget);
    // Across the lines of one colour, as far as p1 is.
    const double acrossX = p0.y - p2.y, acrossY = p2.x - p0.x;
    const double length = (p1.x - p0.x) * acrossX + (p1.y - p0.y) * acrossY;
    if (!(std::abs(length) > 0))
        return {};
    fill._circle.center = p0;
    fill._way = {acrossX / length, acrossY / length};
    return fill;
}

ColorFill ColorFill::radial(std::vector<Stop> stops, Spread spread, const Affine& toTarget, Circle from, Circle to)
{
    ColorFill fill(Kind::Radial, std::move(stops), spread, toTarget);
    fill._circle = {from.center, std::max(from.radius, 0.0)};
    fill._way = {to.center.x - from.center.x, to.center.y - from.center.y};
    fill._radiusStep = std::max(to.radius, 0.0) - fill._circle.radius;
    if (fill._way == Point() && fill._radiusStep == 0)
        return {};
    return fill;
}

ColorFill ColorFill::sweep(std::vector<Stop> stops, Spread spread, const Affine& toTarget, Point center, double from,
                           double to)
{
    ColorFill fill(Kind::Sweep, std::move(stops), spread, toTarget);
    fill._circle.center = center;
    fill._from = from;
    fill._to = to;
    if (from == to && spread != Spread::Pad)
        return {};
    return fill;
}

PremultipliedColor ColorFill::at(Point p) const
{
    if (isSolid())
        return _color;
    const Point q = _toGradient.map(p);
    const Point way(q.x - _circle.center.x, q.y - _circle.center.y);
    double offset = 0;
    bool isThere = true;
    if (_kind == Kind::Linear)
        offset = way.x * _way.x + way.y * _way.y;
    else if (_kind == Kind::Radial)
        offset = radialOffset(way, isThere);
    else
    {
        double turns = std::atan2(way.y, way.x) / (2 * std::numbers::pi);
        if (turns < 0)
            turns += 1;
        if (_from != _to)
            offset = (turns - _from) / (_to - _from);
        else
            offset = turns < _from ? _stops.front().offset - 1 : _stops.back().offset + 1;
    }
    return isThere && std::isfinite(offset) ? colorOf(offset) : PremultipliedColor();
}

// Of the circles that go through a point the one with the largest offset, as in HTML's canvas.
double ColorFill::radialOffset(Point p, bool& isThere) const
{
    const double r = _circle.radius, dr = _radiusStep;
    const double a = _way.x * _way.x + _way.y * _way.y - dr * dr;
    const double b = p.x * _way.x + p.y * _way.y + r * dr;
    const double c = p.x * p.x + p.y * p.y - r * r;
    const auto isGood = [r, dr](double offset) { return r + offset * dr >= 0; };
    isThere = true;
    // One circle touches the other from within: the equation is linear.
    if (std::abs(a) <= 1e-9 * (dr * dr))
    {
        const double offset = c / (2 * b);
        isThere = b != 0 && isGood(offset);
        return offset;
    }
    const double square = b * b - a * c;
    if (square >= 0)
    {
        const double root = std::sqrt(square);
        for (const double offset : {(b + std::copysign(root, a)) / a, (b - std::copysign(root, a)) / a})
            if (isGood(offset))
                return offset;
    }
    isThere = false;
    return 0;
}

PremultipliedColor ColorFill::colorOf(double offset) const
{
    const double first = _stops.front().offset, length = _stops.back().offset - first;
    if (_spread != Spread::Pad && length > 0)
    {
        double t = (offset - first) / length;
        if (_spread == Spread::Reflect)
            t = 1 - std::abs(t - 2 * std::floor(t / 2) - 1);
        else
            t -= std::floor(t);
        offset = first + t * length;
    }
    const auto above = std::ranges::upper_bound(_stops, offset, {}, &Stop::offset);
    if (above == _stops.begin() || above == _stops.end())
        return timesAlpha(above == _stops.begin() ? _stops.front().color : _stops.back().color);
    const Stop& low = *(above - 1);
    const auto t = static_cast<float>((offset - low.offset) / (above->offset - low.offset));
    std::array<float, 4> color;
    for (std::size_t i = 0; i < 4; ++i)
        color[i] = low.color[i] + (above->color[i] - low.color[i]) * t;
    return timesAlpha(color);
}

} // namespace gui::draw
