#include "PlaneFlight.h"

#include <cmath>

namespace gui::gl
{

namespace
{

constexpr double cRho2 = 2; // rho squared
const double cRho = std::sqrt(cRho2);

} // namespace

PlaneFlight::PlaneFlight(const Sight& from, const Sight& to)
    : _from(from)
    , _to(to)
    , _distance(std::hypot(to.center.x - from.center.x, to.center.y - from.center.y))
{
    // Of so little the formulas make a difference of large numbers.
    constexpr double cNothing = 1e-6;
    if (_distance < cNothing * std::fmin(_from.width, _to.width))
        _distance = 0;
    if (_distance == 0)
    {
        _length = std::log(_to.width / _from.width) / cRho;
        return;
    }
    const auto angle = [this](double width, double sign)
    {
        const double u = cRho2 * _distance;
        const double b = (_to.width * _to.width - _from.width * _from.width + sign * u * u) / (2 * width * u);
        return -std::asinh(b); // ln(sqrt(b^2 + 1) - b)
    };
    _begin = angle(_from.width, 1);
    _length = (angle(_to.width, -1) - _begin) / cRho;
}

PlaneFlight::Sight PlaneFlight::at(double part) const
{
    if (part >= 1)
        return _to;
    const double s = cRho * _length * part;
    if (_distance == 0)
        return {{std::lerp(_from.center.x, _to.center.x, part), std::lerp(_from.center.y, _to.center.y, part)},
                _from.width * std::exp(s)};
    const double passed =
        _from.width / cRho2 * (std::cosh(_begin) * std::tanh(s + _begin) - std::sinh(_begin)) / _distance;
    return {{std::lerp(_from.center.x, _to.center.x, passed), std::lerp(_from.center.y, _to.center.y, passed)},
            _from.width * std::cosh(_begin) / std::cosh(s + _begin)};
}

} // namespace gui::gl
