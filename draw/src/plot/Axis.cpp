#include <gui/draw/Axis.h>

#include "Version.h"

#include <td/Assert.h>
#include <td/GUIThread.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace gui::draw
{

namespace
{

// Doubles tell about 10^15 places of a range apart; less than this part of the distance from zero is not shown.
constexpr double cFinest = 1e-13;
constexpr double cLargestPlace = 1e300, cLargestDecade = 305;
constexpr double cLeastRange = 1e-300; // of less, pixels in a unit are no number

} // namespace

Axis::Axis() { share(std::make_shared<State>()); }

Axis::~Axis() { share(nullptr); }

void Axis::share(std::shared_ptr<State> pState)
{
    if (_pState)
        std::erase(_pState->axes, this);
    _pState = std::move(pState);
    if (_pState)
        _pState->axes.push_back(this);
}

// All who show it; what they do may link others.
void Axis::notify() const
{
    const std::vector<Axis*> axes = _pState->axes;
    for (const Axis* pAxis : axes)
        if (pAxis->_onChange)
            pAxis->_onChange();
}

// The range of what is on all that share it, once until that is taken over.
void Axis::collect()
{
    if (std::exchange(_pState->isCollected, true))
        return;
    for (const Axis* pAxis : _pState->axes)
        if (pAxis->_onCollect)
            pAxis->_onCollect();
}

void Axis::touch()
{
    _ownVersion = nextVersion();
    if (_onChange)
        _onChange();
}

void Axis::setScale(Scale scale)
{
    TD_ASSERT_GUI_THREAD();
    if (_pState->scale == scale)
        return;
    _pState->scale = std::move(scale);
    if (_pState->scale.kind == Scale::Kind::Logarithmic && !(_pState->range.low > 0))
        _pState->range = {1, 10};
    _pState->version = nextVersion();
    notify();
}

const Scale& Axis::getScale() const { return _pState->scale; }

void Axis::setTitle(std::string title)
{
    TD_ASSERT_GUI_THREAD();
    if (_title == title)
        return;
    _title = std::move(title);
    touch();
}

bool Axis::setPlaces(double low, double high)
{
    const bool isLogarithmic = _pState->scale.kind == Scale::Kind::Logarithmic;
    const double largest = isLogarithmic ? cLargestDecade : cLargestPlace;
    if (!(low < high) || !(std::abs(low) < largest) || !(std::abs(high) < largest) ||
        high - low < std::max(cFinest * std::max(std::abs(low), std::abs(high)), cLeastRange) ||
        (isLogarithmic && high - low < cFinest))
        return false;
    const Ticks::Range range{_pState->scale.toValue(low), _pState->scale.toValue(high)};
    if (!(range.low < range.high))
        return false;
    if (range == _pState->range)
        return true;
    _pState->range = range;
    _pState->version = nextVersion();
    return true;
}

void Axis::fitPlaces(double low, double high)
{
    const bool isLogarithmic = _pState->scale.kind == Scale::Kind::Logarithmic;
    const double most = 0.99 * (isLogarithmic ? cLargestDecade : cLargestPlace);
    low = std::clamp(low, -most, most);
    high = std::clamp(high, -most, most);
    const double largest = std::max({std::abs(low), std::abs(high), isLogarithmic ? 1.0 : 0.0});
    const double missing = std::max(2 * cFinest * largest, cLeastRange) - (high - low);
    if (missing > 0)
    {
        low -= missing / 2;
        high += missing / 2;
    }
    setPlaces(low, high);
}

bool Axis::setRange(double low, double high)
{
    TD_ASSERT_GUI_THREAD(false);
    if (_pState->isMoved && _pState->range == Ticks::Range{low, high})
        return true;
    const double first = _pState->scale.toPlace(low), last = _pState->scale.toPlace(high);
    if (!setPlaces(first, last))
        return false;
    if (!(_pState->range == Ticks::Range{low, high}))
        _pState->range = {low, high};
    if (!_pState->isMoved)
        _pState->version = nextVersion();
    _pState->isMoved = true;
    notify();
    return true;
}

const Ticks::Range& Axis::getRange() const { return _pState->range; }

void Axis::setFit(Fit fit) { fitTo(fit, _pState->followed); }

void Axis::fitTo(Fit fit, double followed)
{
    TD_ASSERT_GUI_THREAD();
    if (_pState->fit == fit && _pState->followed == followed)
        return release();
    _pState->fit = fit;
    _pState->followed = followed;
    _pState->isMoved = false;
    _pState->version = nextVersion();
    notify();
}

Axis::Fit Axis::getFit() const { return _pState->fit; }

void Axis::follow(double length)
{
    TD_ASSERT(length > 0 && std::isfinite(length));
    fitTo(Fit::Follow, length);
}

double Axis::getFollowed() const { return _pState->followed; }

bool Axis::isMoved() const { return _pState->isMoved; }

void Axis::release()
{
    if (!_pState->isMoved)
        return;
    _pState->isMoved = false;
    _pState->version = nextVersion();
    notify();
}

void Axis::link(Axis& other)
{
    TD_ASSERT_GUI_THREAD();
    if (isLinked(other))
        return;
    const std::shared_ptr<State> pBefore = _pState;
    share(other._pState);
    // Those that it leaves have less to show.
    pBefore->version = nextVersion();
    for (const Axis* pAxis : std::vector<Axis*>(pBefore->axes))
        if (pAxis->_onChange)
            pAxis->_onChange();
    _pState->version = nextVersion();
    notify();
}

void Axis::setGrid(bool hasGrid)
{
    if (_hasGrid == hasGrid)
        return;
    _hasGrid = hasGrid;
    touch();
}

void Axis::setTickDistance(double points)
{
    if (_tickDistance == points)
        return;
    _tickDistance = points;
    touch();
}

double Axis::toShare(double value) const
{
    const Scale& scale = _pState->scale;
    const double low = scale.toPlace(_pState->range.low);
    return (scale.toPlace(value) - low) / (scale.toPlace(_pState->range.high) - low);
}

double Axis::toValue(double share) const
{
    const Scale& scale = _pState->scale;
    const double low = scale.toPlace(_pState->range.low), high = scale.toPlace(_pState->range.high);
    return scale.toValue(low + share * (high - low));
}

bool Axis::pan(double share)
{
    const Scale& scale = _pState->scale;
    const double low = scale.toPlace(_pState->range.low), high = scale.toPlace(_pState->range.high);
    const double distance = share * (high - low);
    if (distance == 0 || !setPlaces(low + distance, high + distance))
        return false;
    _pState->isMoved = true;
    notify();
    return true;
}

bool Axis::zoom(double factor, double share)
{
    const Scale& scale = _pState->scale;
    const double low = scale.toPlace(_pState->range.low), high = scale.toPlace(_pState->range.high);
    const double middle = low + share * (high - low);
    if (!(factor > 0) || factor == 1 || !setPlaces(middle - (middle - low) / factor, middle + (high - middle) / factor))
        return false;
    _pState->isMoved = true;
    notify();
    return true;
}

std::size_t Axis::getVersion() const { return std::max(_pState->version, _ownVersion); }

} // namespace gui::draw
