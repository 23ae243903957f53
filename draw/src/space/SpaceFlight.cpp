#include "SpaceFlight.h"

#include <glm/common.hpp>
#include <glm/geometric.hpp>

#include <algorithm>
#include <cmath>

namespace gui::draw
{

namespace
{

constexpr double cRho2 = 2; // the paper's rho, squared

} // namespace

SpaceFlight::SpaceFlight(const Sight& from, const Sight& to)
    : _from(from)
    , _to(to)
    , _length(glm::distance(from.target, to.target))
{
    // Targets that are hardly apart: the formulas would divide by nothing, and there is nothing to be seen between.
    if (!(_length > 1e-6 * std::min(from.distance, to.distance)))
    {
        _length = 0;
        return;
    }
    // The paper's b0 and b1, each with r = ln(sqrt(b^2 + 1) - b).
    const double w0 = from.distance, w1 = to.distance, u = _length;
    const double difference = (w1 - w0) * (w1 + w0), square = cRho2 * cRho2 * u * u;
    _begin = -std::asinh((difference + square) / (2 * w0 * cRho2 * u));
    _way = -std::asinh((difference - square) / (2 * w1 * cRho2 * u)) - _begin;
}

SpaceFlight::Sight SpaceFlight::at(double part) const
{
    if (_length == 0)
        return {glm::mix(_from.target, _to.target, part),
                _from.distance * std::pow(_to.distance / _from.distance, part)};
    const double at = part * _way + _begin;
    const double along = _from.distance / cRho2 * (std::cosh(_begin) * std::tanh(at) - std::sinh(_begin));
    return {glm::mix(_from.target, _to.target, along / _length), _from.distance * std::cosh(_begin) / std::cosh(at)};
}

} // namespace gui::draw
