#include <gui/draw/HeatMap.h>

#include "ColorEnds.h"
#include "Version.h"

#include <gui/draw/Ticks.h>

#include <td/Assert.h>
#include <td/GUIThread.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <unordered_map>
#include <utility>

namespace gui::draw
{

namespace
{

constexpr unsigned int cMostContourLevels = 400; // by their number

} // namespace

HeatMap::HeatMap(std::size_t columns, std::size_t rows, std::vector<float> values, const Rect& extent)
    : _columns(columns)
    , _rows(rows)
    , _extent(extent)
{
    static std::uint64_t s_nMaps = 0;
    _id = ++s_nMaps;
    // A product may wrap.
    const bool areAll = columns > 0 && rows > 0 && values.size() % columns == 0 && values.size() / columns == rows;
    if (!areAll)
        _columns = _rows = 0;
    TD_ASSERT(areAll);
    setValues(std::move(values));
}

HeatMap::~HeatMap() = default;
HeatMap::HeatMap(HeatMap&& other) noexcept = default;

HeatMap& HeatMap::operator=(HeatMap&& other) noexcept
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

void HeatMap::changed()
{
    _version = nextVersion();
    if (_onChange)
        _onChange();
}

void HeatMap::setValues(std::vector<float> values)
{
    TD_ASSERT_GUI_THREAD();
    TD_ASSERT(values.size() == _columns * _rows);
    _values = std::move(values);
    float low = std::numeric_limits<float>::infinity(), high = -low;
    for (const float value : _values)
    {
        if (!std::isfinite(value))
            continue;
        low = std::min(low, value);
        high = std::max(high, value);
    }
    _lowest = low <= high ? static_cast<double>(low) : 0;
    _highest = low <= high ? static_cast<double>(high) : 0;
    changed();
}

HeatMap&& HeatMap::setColors(const ColorMap& map, std::optional<double> low, std::optional<double> high) &&
{
    _map = map;
    _low = low;
    _high = high;
    return std::move(*this);
}

HeatMap&& HeatMap::setContours(unsigned int nLevels, td::Color color, double width) &&
{
    _nLevels = nLevels;
    _levels.clear();
    _contourColor = color;
    _contourWidth = width;
    return std::move(*this);
}

HeatMap&& HeatMap::setContours(std::vector<double> levels, td::Color color, double width) &&
{
    _nLevels = 0;
    _levels = std::move(levels);
    _contourColor = color;
    _contourWidth = width;
    return std::move(*this);
}

HeatMap&& HeatMap::setSmooth(bool isSmooth) &&
{
    _isSmooth = isSmooth;
    return std::move(*this);
}

HeatMap&& HeatMap::setTitle(std::string title) &&
{
    _title = std::move(title);
    return std::move(*this);
}

double HeatMap::getLow() const { return findColorEnds(_low, _high, _lowest, _highest).first; }

double HeatMap::getHigh() const { return findColorEnds(_low, _high, _lowest, _highest).second; }

float HeatMap::getValue(double x, double y) const
{
    const auto columns = static_cast<double>(getColumns()), rows = static_cast<double>(getRows());
    const double column = (x - _extent.left) / (_extent.right - _extent.left) * columns;
    const double row = (y - _extent.top) / (_extent.bottom - _extent.top) * rows;
    if (!(column >= 0 && row >= 0 && column < columns && row < rows))
        return std::numeric_limits<float>::quiet_NaN();
    return _values[static_cast<std::size_t>(row) * _columns + static_cast<std::size_t>(column)];
}

const std::vector<HeatMap::Contour>& HeatMap::getContours() const
{
    if (_contourVersion != _version)
        findContours();
    return _contours;
}

void HeatMap::findContours() const
{
    _contourVersion = _version;
    _contours.clear();
    if (getColumns() < 2 || getRows() < 2)
        return;
    std::vector<double> levels = _levels;
    if (_nLevels > 0)
    {
        const auto [low, high] = std::minmax({getLow(), getHigh()});
        const Ticks::Sequence found = Ticks::search({low, high}, std::min(_nLevels, cMostContourLevels) + 1.0);
        for (double level = found.low; found.step > 0 && level < high + found.step / 2; level += found.step)
            levels.push_back(level);
    }
    for (const double level : levels)
        traceLevel(level);
}

// Marching squares: each cell between four centres has up to two pieces of line from side to side. A side's number is
// that of the lattice point at its beginning, twice, and one for those that go upwards; pieces that meet in a side
// join.
void HeatMap::traceLevel(double level) const
{
    using Side = std::size_t;
    struct Piece
    {
        Side from, to;
    };
    std::vector<Piece> pieces;
    const auto sides = [this](std::size_t column, std::size_t row)
    {
        const Side at = 2 * (row * _columns + column);
        // Below, at the right, above, at the left.
        return std::array<Side, 4>{at, at + 3, at + 2 * _columns, at + 1};
    };
    for (std::size_t row = 0; row + 1 < _rows; ++row)
    {
        for (std::size_t column = 0; column + 1 < _columns; ++column)
        {
            const float* const p = _values.data() + row * _columns + column;
            const std::array<double, 4> corners{static_cast<double>(p[0]), static_cast<double>(p[1]),
                                                static_cast<double>(p[_columns + 1]), static_cast<double>(p[_columns])};
            unsigned int mask = 0;
            double mean = 0;
            for (std::size_t i = 0; i < 4; ++i)
            {
                mask |= corners[i] >= level ? 1U << i : 0U;
                mean += corners[i] / 4;
            }
            if (mask == 0 || mask == 15 || !std::isfinite(mean))
                continue;
            const std::array<Side, 4> s = sides(column, row);
            // From side i to the next ones around, between corners that are above and those that are not.
            const auto add = [&pieces, &s](std::size_t a, std::size_t b) { pieces.push_back({s[a], s[b]}); };
            const bool isHigh = mean >= level;
            switch (mask)
            {
            case 1:
            case 14:
                add(3, 0);
                break;
            case 2:
            case 13:
                add(0, 1);
                break;
            case 4:
            case 11:
                add(1, 2);
                break;
            case 8:
            case 7:
                add(2, 3);
                break;
            case 3:
            case 12:
                add(3, 1);
                break;
            case 6:
            case 9:
                add(0, 2);
                break;
            default:
                if ((mask == 5) == isHigh)
                {
                    add(0, 1);
                    add(2, 3);
                }
                else
                {
                    add(3, 0);
                    add(1, 2);
                }
            }
        }
    }
    const auto placeOf = [this, level](Side side)
    {
        const std::size_t at = side / 2, other = side % 2 == 0 ? at + 1 : at + _columns;
        const auto a = static_cast<double>(_values[at]), b = static_cast<double>(_values[other]);
        const double share = (level - a) / (b - a);
        const double column = static_cast<double>(at % _columns) + 0.5 + (side % 2 == 0 ? share : 0);
        const std::size_t wholeRows = at / _columns;
        const double row = static_cast<double>(wholeRows) + 0.5 + (side % 2 == 1 ? share : 0);
        return td::Point<double>(_extent.left + column / static_cast<double>(_columns) * (_extent.right - _extent.left),
                                 _extent.top + row / static_cast<double>(_rows) * (_extent.bottom - _extent.top));
    };
    // Each side has up to two pieces that end there.
    constexpr std::size_t cNoPiece = std::numeric_limits<std::size_t>::max();
    std::unordered_map<Side, std::array<std::size_t, 2>> ends;
    for (std::size_t i = 0; i < pieces.size(); ++i)
        for (const Side side : {pieces[i].from, pieces[i].to})
        {
            const auto [place, isNew] = ends.try_emplace(side, std::array<std::size_t, 2>{i, cNoPiece});
            if (!isNew)
                place->second[1] = i;
        }
    std::vector<bool> isUsed(pieces.size(), false);
    const auto follow = [&](std::size_t first, Side from)
    {
        Contour& contour = _contours.emplace_back();
        contour.level = level;
        contour.points.push_back(placeOf(from));
        Side side = from;
        for (std::size_t i = first; i != cNoPiece && !isUsed[i];)
        {
            isUsed[i] = true;
            side = pieces[i].from == side ? pieces[i].to : pieces[i].from;
            contour.points.push_back(placeOf(side));
            const std::array<std::size_t, 2>& next = ends[side];
            i = next[0] == i ? next[1] : next[0];
        }
        contour.isClosed = side == from;
    };
    for (std::size_t i = 0; i < pieces.size(); ++i)
        for (const Side side : {pieces[i].from, pieces[i].to})
            if (!isUsed[i] && ends[side][1] == cNoPiece)
                follow(i, side);
    for (std::size_t i = 0; i < pieces.size(); ++i)
        if (!isUsed[i])
            follow(i, pieces[i].from);
}

} // namespace gui::draw
