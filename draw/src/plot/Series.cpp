#include <gui/draw/Series.h>

#include "ColorEnds.h"
#include "Version.h"

#include <td/Assert.h>
#include <td/GUIThread.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <tuple>
#include <utility>

namespace gui::draw
{

namespace
{

constexpr double cUnbounded = std::numeric_limits<double>::infinity();

void widenRange(Samples::Range& range, const Samples::Range& other)
{
    range.low = std::min(range.low, other.low);
    range.high = std::max(range.high, other.high);
}

SeriesStyle withMarker(SeriesStyle style)
{
    if (style.marker == Marker::None)
        style.marker = Marker::Circle;
    return style;
}

} // namespace

Series::Series(Kind kind, SeriesStyle style)
    : _kind(kind)
    , _style(std::move(style))
    , _version(nextVersion())
{
    static std::uint64_t s_nSeries = 0;
    _id = ++s_nSeries;
}

Series::~Series() = default;
Series::Series(Series&& other) noexcept = default;

Series& Series::operator=(Series&& other) noexcept
{
    // What the setters of a temporary return may be this one.
    if (this != &other)
    {
        std::function<void()> onChange = std::move(_onChange); // of the plot that this one is in
        std::destroy_at(this);
        std::construct_at(this, std::move(other));
        _onChange = std::move(onChange);
    }
    changed();
    return *this;
}

Series Series::make(Kind kind, Samples y, SeriesStyle style)
{
    Series series(kind, std::move(style));
    series._columns.push_back(std::move(y));
    return series;
}

Series Series::make(Kind kind, Samples x, Samples y, SeriesStyle style)
{
    return make(kind, std::move(y), std::move(style)).putX(std::move(x));
}

Series&& Series::putX(Samples x) &&
{
    _x = std::move(x);
    _hasX = true;
    return std::move(*this);
}

Series Series::line(Samples y, SeriesStyle style) { return make(Kind::Line, std::move(y), std::move(style)); }

Series Series::line(Samples x, Samples y, SeriesStyle style)
{
    return make(Kind::Line, std::move(x), std::move(y), std::move(style));
}

Series Series::area(Samples y, SeriesStyle style) { return make(Kind::Area, std::move(y), std::move(style)); }

Series Series::area(Samples x, Samples y, SeriesStyle style)
{
    return make(Kind::Area, std::move(x), std::move(y), std::move(style));
}

Series Series::band(Samples low, Samples high, SeriesStyle style)
{
    Series series = make(Kind::Band, std::move(low), std::move(style));
    series._columns.push_back(std::move(high));
    return series;
}

Series Series::band(Samples x, Samples low, Samples high, SeriesStyle style)
{
    return band(std::move(low), std::move(high), std::move(style)).putX(std::move(x));
}

Series Series::steps(Samples y, SeriesStyle style) { return make(Kind::Steps, std::move(y), std::move(style)); }

Series Series::steps(Samples x, Samples y, SeriesStyle style)
{
    return make(Kind::Steps, std::move(x), std::move(y), std::move(style));
}

Series Series::stems(Samples y, SeriesStyle style)
{
    return make(Kind::Stems, std::move(y), withMarker(std::move(style)));
}

Series Series::stems(Samples x, Samples y, SeriesStyle style)
{
    return make(Kind::Stems, std::move(x), std::move(y), withMarker(std::move(style)));
}

Series Series::bars(Samples y, SeriesStyle style) { return make(Kind::Bars, std::move(y), std::move(style)); }

Series Series::bars(Samples x, Samples y, SeriesStyle style)
{
    return make(Kind::Bars, std::move(x), std::move(y), std::move(style));
}

Series Series::scatter(Samples x, Samples y, SeriesStyle style)
{
    return make(Kind::Scatter, std::move(x), std::move(y), withMarker(std::move(style)));
}

Series Series::candles(Samples x, Samples open, Samples high, Samples low, Samples close, SeriesStyle style)
{
    Series series = make(Kind::Candles, std::move(x), std::move(open), std::move(style));
    for (Samples* const pColumn : {&high, &low, &close})
        series._columns.push_back(std::move(*pColumn));
    return series;
}

Series&& Series::setX(double first, double step) &&
{
    setX(first, step);
    return std::move(*this);
}

Series& Series::setX(double first, double step) &
{
    TD_ASSERT(step > 0 && std::isfinite(first) && std::isfinite(step), *this);
    _start = first;
    _step = step;
    changed();
    return *this;
}

Series&& Series::withErrors(Samples below, Samples above) &&
{
    _below = std::move(below);
    _above = std::move(above);
    findErrorEnds();
    return std::move(*this);
}

void Series::findErrorEnds()
{
    _hasErrors = _kind != Kind::Band && _kind != Kind::Candles;
    _errorLow = Samples::sumOf(_columns.front(), _below, -1);
    _errorHigh = Samples::sumOf(_columns.front(), _above, 1);
}

Series&& Series::withErrors(Samples both) &&
{
    std::vector<double> values(both.size());
    both.read(0, values);
    _below = Samples(values);
    _above = std::move(both);
    findErrorEnds();
    return std::move(*this);
}

Series&& Series::colorBy(Samples values, const ColorMap& map, std::optional<double> low, std::optional<double> high) &&
{
    _colorValues = std::move(values);
    _map = map;
    _colorLow = low;
    _colorHigh = high;
    return std::move(*this);
}

void Series::changed()
{
    _version = nextVersion();
    if (_onChange)
        _onChange();
}

void Series::append(double y) { append(std::span<const double>(&y, 1)); }

void Series::append(double x, double y) { append(std::span<const double>(&x, 1), std::span<const double>(&y, 1)); }

void Series::append(std::span<const float> y)
{
    TD_ASSERT_GUI_THREAD();
    TD_ASSERT(!_hasX && _columns.size() == 1);
    _columns.front().append(y);
    if (!y.empty())
        changed();
}

void Series::append(std::span<const double> y)
{
    TD_ASSERT_GUI_THREAD();
    TD_ASSERT(!_hasX && _columns.size() == 1);
    _columns.front().append(y);
    if (!y.empty())
        changed();
}

void Series::append(std::span<const double> x, std::span<const double> y)
{
    TD_ASSERT_GUI_THREAD();
    TD_ASSERT(_hasX && _columns.size() == 1 && x.size() == y.size());
    _x.append(x);
    _columns.front().append(y);
    if (!y.empty())
        changed();
}

void Series::setLimit(std::size_t n)
{
    TD_ASSERT_GUI_THREAD();
    _x.setLimit(n);
    for (Samples& column : _columns)
        column.setLimit(n);
    changed();
}

void Series::clear()
{
    TD_ASSERT_GUI_THREAD();
    _x.clear();
    for (Samples& column : _columns)
        column.clear();
    _below.clear();
    _above.clear();
    _errorLow.clear();
    _errorHigh.clear();
    _colorValues.clear();
    changed();
}

void Series::setStyle(SeriesStyle style)
{
    TD_ASSERT_GUI_THREAD();
    _style = std::move(style);
    changed();
}

void Series::setVisible(bool isVisible)
{
    TD_ASSERT_GUI_THREAD();
    if (_isVisible == isVisible)
        return;
    _isVisible = isVisible;
    changed();
}

std::size_t Series::size() const
{
    // One that was moved from has no columns, and may be in a plot all the same.
    std::size_t n = _hasX || _columns.empty() ? _x.size() : std::numeric_limits<std::size_t>::max();
    for (const Samples& column : _columns)
        n = std::min(n, column.size());
    return n;
}

std::size_t Series::getFirst() const
{
    std::size_t first = _hasX ? _x.getFirst() : 0;
    for (const Samples& column : _columns)
        first = std::max(first, column.getFirst());
    return first;
}

double Series::getX(std::size_t index) const { return _hasX ? _x[index] : _start + _step * static_cast<double>(index); }

double Series::getY(std::size_t index) const { return _columns.back()[index]; }

Samples::Range Series::getColorRange() const
{
    Samples::Range range = _colorValues.getRange(0, _colorValues.size());
    std::tie(range.low, range.high) = findColorEnds(_colorLow, _colorHigh, range.low, range.high);
    return range;
}

std::size_t Series::findX(double x, std::size_t from) const
{
    const std::size_t first = std::max(from, getFirst()), end = size();
    if (first >= end)
        return end;
    if (_hasX)
        return std::min(_x.lowerBound(x, first), end);
    const double place = std::ceil((x - _start) / _step);
    if (!(place > static_cast<double>(first)))
        return first;
    if (place >= static_cast<double>(end))
        return end;
    auto index = static_cast<std::size_t>(place);
    // As getX rounds, not as the division does.
    while (index > first && getX(index - 1) >= x)
        --index;
    while (index < end && getX(index) < x)
        ++index;
    return index;
}

Samples::Range Series::getXRange() const
{
    const std::size_t first = getFirst(), end = size();
    if (first >= end)
        return {cUnbounded, -cUnbounded};
    if (_hasX)
        return _x.getRange(first, end);
    return {getX(first), getX(end - 1), getX(first), getX(end - 1)};
}

Samples::Range Series::getYRange(std::size_t first, std::size_t end) const
{
    end = std::min(end, size());
    Samples::Range range{cUnbounded, -cUnbounded};
    if (first >= end)
        return range;
    for (const Samples& column : _columns)
        widenRange(range, column.getRange(first, end));
    if (range.isEmpty())
        return range;
    if (_hasErrors)
    {
        widenRange(range, _errorLow.getRange(first, end));
        widenRange(range, _errorHigh.getRange(first, end));
    }
    if (_kind == Kind::Area || _kind == Kind::Stems || _kind == Kind::Bars)
        widenRange(range, {_style.baseline, _style.baseline});
    return range;
}

} // namespace gui::draw
