#include <gui/draw/Axes.h>

#include "AxesImpl.h"
#include "TimeTicks.h"
#include "Version.h"

#include <td/Assert.h>
#include <td/GUIThread.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <utility>

namespace gui::draw
{

namespace
{

constexpr double cAxisDepth = 60; // points beside the area that belong to an axis
constexpr std::size_t cMostNear = 200'000, cMostUnsortedNear = 1'000'000;

} // namespace

Axes::Axes(std::function<void()> onChange)
    : _pImpl(std::make_unique<Impl>())
{
    _pImpl->onChange = std::move(onChange);
    _pImpl->pOnChange = std::make_shared<std::function<void()>>(_pImpl->onChange);
    _pImpl->y.axis.setTickDistance(48);
    _pImpl->right.axis.setTickDistance(48);
    _pImpl->right.axis.setGrid(false);
    for (Axis* pAxis : {&_pImpl->x.axis, &_pImpl->y.axis, &_pImpl->right.axis})
        pAxis->_onChange = _pImpl->onChange;
    for (const unsigned int which : {Impl::cX, Impl::cY, Impl::cRight})
        _pImpl->axisOf(which)._onCollect = [pImpl = _pImpl.get(), which] { pImpl->collectOwn(which); };
}

Axes::~Axes() = default;

Series& Axes::add(Series series)
{
    Series& added = *_pImpl->series.emplace_back(std::make_unique<Series>(std::move(series)));
    added._onChange = _pImpl->onChangeOfPart();
    _pImpl->ownVersion = nextVersion();
    _pImpl->onChange(); // which may add others, or remove it
    return added;
}

HeatMap& Axes::add(HeatMap map)
{
    HeatMap& added = *_pImpl->maps.emplace_back(std::make_unique<HeatMap>(std::move(map)));
    added._onChange = _pImpl->onChangeOfPart();
    _pImpl->ownVersion = nextVersion();
    _pImpl->onChange(); // which may add others, or remove it
    return added;
}

bool Axes::remove(const Series& series)
{
    TD_ASSERT_GUI_THREAD(false);
    const auto found = std::find_if(_pImpl->series.begin(), _pImpl->series.end(),
                                    [&series](const auto& pSeries) { return pSeries.get() == &series; });
    if (found == _pImpl->series.end())
        return false;
    _pImpl->series.erase(found);
    _pImpl->ownVersion = nextVersion();
    _pImpl->onChange();
    return true;
}

void Axes::clear()
{
    TD_ASSERT_GUI_THREAD();
    if (_pImpl->series.empty() && _pImpl->maps.empty())
        return;
    _pImpl->series.clear();
    _pImpl->maps.clear();
    _pImpl->ownVersion = nextVersion();
    _pImpl->onChange();
}

std::size_t Axes::getNumberOfSeries() const { return _pImpl->series.size(); }

Series& Axes::getSeries(std::size_t i)
{
    TD_ASSERT(i < _pImpl->series.size(), _pImpl->none);
    return *_pImpl->series[i];
}

Axis& Axes::x() { return _pImpl->x.axis; }
Axis& Axes::y() { return _pImpl->y.axis; }
Axis& Axes::right() { return _pImpl->right.axis; }
const Axis& Axes::x() const { return _pImpl->x.axis; }
const Axis& Axes::y() const { return _pImpl->y.axis; }
const Axis& Axes::right() const { return _pImpl->right.axis; }

void Axes::setTitle(std::string title) { _pImpl->set(_pImpl->title, std::move(title)); }
void Axes::setLegend(Legend legend) { _pImpl->set(_pImpl->legend, legend); }
void Axes::setBare(bool isBare) { _pImpl->set(_pImpl->isBare, isBare); }
void Axes::setMinorGrid(bool hasMinorGrid) { _pImpl->set(_pImpl->hasMinorGrid, hasMinorGrid); }

void Axes::fit()
{
    TD_ASSERT_GUI_THREAD();
    if (_pImpl->release(Impl::cX | Impl::cY | Impl::cRight))
        _pImpl->onChange();
}

const Axes::Rect& Axes::getArea() const { return _pImpl->area; }

Axes::Point Axes::toPoint(double x, double y) const
{
    const Rect& area = _pImpl->area;
    return {_pImpl->mapX(1).toPixel(x), AxisMap(_pImpl->y.axis, area.bottom, area.top).toPixel(y)};
}

Axes::Point Axes::toValues(Point point) const
{
    const Rect& area = _pImpl->area;
    return {_pImpl->mapX(1).toValue(point.x), AxisMap(_pImpl->y.axis, area.bottom, area.top).toValue(point.y)};
}

std::optional<Axes::Hit> Axes::findNearest(Point point, double distance) const
{
    return _pImpl->findNearest(point, distance);
}

std::string Axes::format(const Axis& axis, double value) const
{
    const bool isX = &axis == &_pImpl->x.axis;
    const Rect& area = _pImpl->area;
    const double length = std::max(isX ? area.right - area.left : area.bottom - area.top, 1.0);
    const Scale& scale = axis.getScale();
    const double share = axis.toShare(value);
    // A point of the screen there.
    const double step = std::abs(axis.toValue(share + 1 / length) - axis.toValue(share));
    if (scale.kind == Scale::Kind::Time)
        return TimeTicks::describe(scale, value, step);
    if (!std::isfinite(value))
        return Ticks::format(value, 0);
    // Of doubles there are none beyond.
    const int places = step > 0 ? static_cast<int>(std::clamp(std::ceil(-std::log10(step)), -400.0, 400.0)) : 0;
    if (value != 0 && (std::abs(value) >= 1e9 || std::abs(value) < 1e-5 || places > 9))
    {
        const int digits = static_cast<int>(std::floor(std::log10(std::abs(value)))) + places + 1;
        std::array<char, 40> text;
        std::snprintf(text.data(), text.size(), "%.*g", std::clamp(digits, 3, 15), value);
        return text.data();
    }
    return Ticks::format(value, std::max(places, 0));
}

std::function<void()> Axes::Impl::onChangeOfPart() const
{
    return [pAsk = std::weak_ptr(pOnChange)]
    {
        if (const auto pThere = pAsk.lock())
            (*pThere)();
    };
}

std::size_t Axes::Impl::getVersion() const
{
    std::size_t version = std::max({ownVersion, x.axis.getVersion(), y.axis.getVersion(), right.axis.getVersion()});
    for (const std::unique_ptr<Series>& pSeries : series)
        version = std::max(version, pSeries->getVersion());
    for (const std::unique_ptr<HeatMap>& pMap : maps)
        version = std::max(version, pMap->getVersion());
    return version;
}

std::optional<Axes::Hit> Axes::Impl::findNearest(Point point, double distance) const
{
    std::optional<Hit> best;
    double least = distance * distance;
    const AxisMap map = mapX(1);
    std::vector<double> ys;
    for (const std::unique_ptr<Series>& pSeries : series)
    {
        const Series& s = *pSeries;
        if (!s.isVisible() || s.getKind() == Series::Kind::Band)
            continue;
        const AxisMap heights = mapY(s, 1);
        auto [first, end] =
            SeriesGeometry::extentOf(s, map.toValue(point.x - distance), map.toValue(point.x + distance));
        if (s.isSorted() && end - first > cMostNear)
        {
            // Those right at the pointer, as many as there is time for.
            const std::size_t middle = s.findX(map.toValue(point.x));
            first = std::max(first, middle - std::min(middle, cMostNear / 2));
            end = std::min(end, middle + cMostNear / 2);
        }
        else if (end - first > cMostUnsortedNear)
            continue;
        constexpr std::size_t cPart = 4096;
        for (std::size_t at = first; at < end; at += cPart)
        {
            ys.resize(std::min(cPart, end - at));
            s.getColumn(s.getNumberOfColumns() - 1).read(at, ys);
            for (std::size_t i = 0; i < ys.size(); ++i)
            {
                const double dy = heights.toPixel(ys[i]) - point.y;
                if (!(dy * dy < least))
                    continue;
                const double value = s.getX(at + i), dx = map.toPixel(value) - point.x, square = dx * dx + dy * dy;
                if (!(square < least))
                    continue;
                least = square;
                best = Hit{&s, at + i, value, ys[i], {point.x + dx, point.y + dy}};
            }
        }
    }
    return best;
}

unsigned int Axes::Impl::partAt(Point point) const
{
    const bool isAcross = point.x >= area.left && point.x <= area.right;
    const bool isAlong = point.y >= area.top && point.y <= area.bottom;
    if (isAcross && isAlong)
        return cX | cY | cRight;
    if (isAcross && point.y > area.bottom && point.y <= std::min(frame.bottom, area.bottom + cAxisDepth))
        return cX;
    if (isAlong && point.x < area.left && point.x >= std::max(frame.left, area.left - cAxisDepth))
        return cY;
    if (isAlong && hasRight() && point.x > area.right && point.x <= std::min(frame.right, area.right + cAxisDepth))
        return cRight;
    return 0;
}

bool Axes::Impl::release(unsigned int which)
{
    bool isChanged = false;
    for (const auto& [pAxis, bit] : {std::pair(&x.axis, cX), std::pair(&y.axis, cY), std::pair(&right.axis, cRight)})
    {
        if ((which & bit) == 0 || !pAxis->isMoved())
            continue;
        pAxis->release();
        isChanged = true;
    }
    if (isChanged)
        ownVersion = nextVersion();
    return isChanged;
}

bool Axes::Impl::pan(unsigned int which, double dx, double dy)
{
    const double across = -dx / (area.right - area.left), along = dy / (area.bottom - area.top);
    bool isChanged = (which & cX) != 0 && x.axis.pan(across);
    const bool isMovedY =
        (which & cY) != 0 && (y.axis.getFit() != Axis::Fit::Visible || y.axis.isMoved() || which == cY);
    isChanged |= isMovedY && y.axis.pan(along);
    const bool isMovedRight = (which & cRight) != 0 && hasRight() &&
                              (right.axis.getFit() != Axis::Fit::Visible || right.axis.isMoved() || which == cRight);
    return (isMovedRight && right.axis.pan(along)) || isChanged;
}

// An axis that fits what is seen does so on its own, until it is zoomed itself.
bool Axes::Impl::zoom(unsigned int which, double factor, Point about)
{
    const double across = (about.x - area.left) / (area.right - area.left);
    const double along = (area.bottom - about.y) / (area.bottom - area.top);
    const auto isFree = [which](const Axis& axis, unsigned int bit)
    { return which == bit || axis.getFit() != Axis::Fit::Visible || axis.isMoved(); };
    bool isChanged = (which & cX) != 0 && x.axis.zoom(factor, across);
    isChanged |= (which & cY) != 0 && isFree(y.axis, cY) && y.axis.zoom(factor, along);
    if ((which & cRight) != 0 && hasRight() && isFree(right.axis, cRight))
        isChanged |= right.axis.zoom(factor, along);
    return isChanged;
}

bool Axes::Impl::showBox(const Rect& box)
{
    constexpr double cSmallest = 4; // points: less was a click
    if (box.right - box.left < cSmallest || box.bottom - box.top < cSmallest)
        return false;
    const auto show = [](Axis& axis, double from, double to)
    {
        const double low = axis.toValue(from), high = axis.toValue(to);
        return axis.setRange(low, high);
    };
    const double width = area.right - area.left, height = area.bottom - area.top;
    const double low = (area.bottom - box.bottom) / height, high = (area.bottom - box.top) / height;
    bool isChanged = show(x.axis, (box.left - area.left) / width, (box.right - area.left) / width);
    isChanged |= show(y.axis, low, high);
    if (hasRight())
        isChanged |= show(right.axis, low, high);
    return isChanged;
}

} // namespace gui::draw
