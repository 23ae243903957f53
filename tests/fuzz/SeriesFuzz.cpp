// Live series under edits in any order, beside plain vectors: what columns show, where samples are found, and what is
// left of them.

#include "Fuzz.h"

#include <gui/draw/Series.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

namespace fuzz::series
{

namespace
{

using namespace gui::draw;

constexpr double cInfinity = std::numeric_limits<double>::infinity();
constexpr double cNaN = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t cBlock = 65'536; // what goes at once

bool areEqual(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

Samples::Range scan(const std::vector<double>& values, std::size_t first, std::size_t end)
{
    Samples::Range range{cInfinity, -cInfinity, cNaN, cNaN};
    if (first >= end)
        return range;
    range.first = values[first];
    range.last = values[end - 1];
    for (std::size_t i = first; i < end; ++i)
        if (std::isfinite(values[i]))
        {
            range.low = std::min(range.low, values[i]);
            range.high = std::max(range.high, values[i]);
        }
    return range;
}

class SeriesWorld
{
public:
    explicit SeriesWorld(Input& input)
        : _input(input)
        , _isFloat(input.below(2) != 0)
        , _hasX(input.below(2) != 0)
        , _series(makeSeries())
    {
    }

    void live()
    {
        while (_input.left() > 0)
            doNext();
        check();
    }

private:
    // Numbers that floats hold, some of which are none.
    double takeValue()
    {
        switch (_input.below(16))
        {
        case 0:
            return cNaN;
        case 1:
            return _input.below(2) == 0 ? cInfinity : -cInfinity;
        case 2:
            return 1e30 * (_input.below(3) - 1.0);
        default:
            return static_cast<double>(_input.take<std::int16_t>()) / 8;
        }
    }

    // Now and then more than a block; those go on from a few of the input's.
    std::vector<double> takeValues()
    {
        std::size_t n = _input.below(40);
        if (_input.below(12) == 0)
            n = std::size_t(_input.take<std::uint16_t>()) * 2;
        std::vector<double> values(n);
        for (std::size_t i = 0; i < n; ++i)
            values[i] = i < 16 ? takeValue() : 0.5 * values[i - 7] + static_cast<double>(i * i % 64);
        return rounded(std::move(values));
    }
    std::vector<double> rounded(std::vector<double> values) const
    {
        if (_isFloat)
            for (double& value : values)
                value = static_cast<float>(value);
        return values;
    }
    // In order, unless the input wants another.
    std::vector<double> takePlaces(std::size_t n)
    {
        std::vector<double> places(n);
        const double step = _input.below(4) == 0 ? 0 : 0.25 * _input.below(9);
        for (double& place : places)
            place = _place += step;
        if (n > 0 && _input.below(24) == 0)
            places[_input.below(255) % n] = takeValue();
        return places;
    }

    Samples makeColumn(const std::vector<double>& values)
    {
        if (_isFloat)
        {
            _floats.assign(values.begin(), values.end());
            return _input.below(2) == 0 ? Samples(_floats) : Samples(std::span<const float>(_floats));
        }
        _doubles = values;
        switch (_input.below(3))
        {
        case 0:
            return Samples(values);
        case 1:
            return Samples(std::span<const double>(_doubles));
        default:
            return Samples::computed(
                values.size(), [this](std::size_t first, std::span<double> part)
                { std::copy_n(_doubles.begin() + static_cast<std::ptrdiff_t>(first), part.size(), part.begin()); });
        }
    }

    Series makeSeries()
    {
        _y = takeValues();
        Samples y = makeColumn(_y);
        Series series = Series::line(Samples());
        if (_hasX)
        {
            _x = takePlaces(_y.size());
            series = Series::line(Samples(_x), std::move(y));
        }
        else
            series = Series::line(std::move(y));
        if (_input.below(3) == 0)
        {
            const std::vector<double> below = takeValues(), above = takeValues();
            for (std::size_t i = 0; i < std::min(_y.size(), below.size()); ++i)
                _low.push_back(_y[i] - below[i]);
            for (std::size_t i = 0; i < std::min(_y.size(), above.size()); ++i)
                _high.push_back(_y[i] + above[i]);
            return std::move(series).withErrors(below, above);
        }
        return series;
    }

    void append()
    {
        const std::vector<double> values = takeValues();
        if (_hasX)
        {
            const std::vector<double> places = takePlaces(values.size());
            if (values.size() == 1)
                _series.append(places[0], values[0]);
            else
                _series.append(places, values);
            _x.insert(_x.end(), places.begin(), places.end());
        }
        else if (values.size() == 1)
            _series.append(values[0]);
        else if (_input.below(2) == 0)
        {
            std::vector<float> floats(values.begin(), values.end());
            _series.append(floats);
            _y.insert(_y.end(), floats.begin(), floats.end());
            return;
        }
        else
            _series.append(values);
        _y.insert(_y.end(), values.begin(), values.end());
    }

    void doNext()
    {
        switch (_input.below(10))
        {
        case 0:
            if (_input.below(4) == 0)
            {
                _series.clear();
                _x.clear();
                _y.clear();
                _low.clear();
                _high.clear();
                _first = 0;
                _place = 0;
            }
            break;
        case 1:
            if (_input.below(3) == 0)
            {
                check();
                _limit = std::size_t(_input.take<std::uint16_t>()) * 2;
                _series.setLimit(_limit);
            }
            break;
        case 2:
        {
            Series moved = std::move(_series);
            _series = std::move(moved);
            break;
        }
        case 3:
        case 4:
            check();
            break;
        default:
            append();
        }
    }

    void checkColumn(const Samples& samples, const std::vector<double>& values)
    {
        // Edges in order, as those of columns of pixels are.
        std::vector<std::size_t> edges(2 + _input.below(6));
        const std::size_t n = samples.size() - std::min(samples.size(), _first);
        for (std::size_t& edge : edges)
            edge = _first + (n > 0 ? _input.take<std::uint32_t>() % (n + 1) : 0);
        std::ranges::sort(edges);
        std::vector<Samples::Range> ranges(edges.size() - 1);
        samples.getRanges(edges, ranges);
        for (std::size_t i = 0; i < ranges.size(); ++i)
        {
            const Samples::Range expected = scan(values, edges[i], std::min(edges[i + 1], values.size()));
            require(ranges[i].low == expected.low && ranges[i].high == expected.high,
                    "a column has the lowest and the highest of a plain scan");
            require(areEqual(ranges[i].first, expected.first) && areEqual(ranges[i].last, expected.last),
                    "a column has its first and its last");
        }
    }

    void check()
    {
        require(_series.size() == _y.size(), "all samples are counted");
        const std::size_t first = _series.getFirst();
        require(first >= _first, "what went does not come again");
        // A larger limit brings nothing back.
        require(_limit > 0 ? first <= std::max(_first, _y.size() - std::min(_y.size(), _limit)) &&
                                 _y.size() - first <= _limit + cBlock
                           : first == _first,
                "about as many stay as shall");
        _first = first;
        checkColumn(_series.getColumn(0), _y);
        if (_series.hasErrors())
        {
            checkColumn(_series.getErrorEnds(false), _low);
            checkColumn(_series.getErrorEnds(true), _high);
        }
        if (!_hasX)
            return;
        checkColumn(_series.getXs(), _x);
        if (!_series.isSorted())
            return;
        const auto begin = _x.begin() + static_cast<std::ptrdiff_t>(_first);
        require(std::is_sorted(begin, _x.end()), "what is in order is said to be");
        const double place = _x.empty() ? 0 : _x[_input.take<std::uint32_t>() % _x.size()] + _input.below(2) * 0.1;
        require(_series.findX(place) == static_cast<std::size_t>(std::lower_bound(begin, _x.end(), place) - _x.begin()),
                "a place is found");
    }

    Input& _input;
    bool _isFloat;
    bool _hasX;
    double _place = 0;
    std::size_t _first = 0, _limit = 0;
    std::vector<double> _x, _y, _low, _high;
    std::vector<float> _floats; // that are looked at where they are
    std::vector<double> _doubles;
    Series _series;
};

void run(const std::uint8_t* bytes, std::size_t n)
{
    Input input(bytes, n);
    SeriesWorld world(input);
    world.live();
}

const Target cTarget("series", run);

} // namespace

} // namespace fuzz::series
