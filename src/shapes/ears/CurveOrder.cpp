#include "CurveOrder.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace gui::gl
{

namespace
{

// Cells are few enough for all points of one to be looked at together.
constexpr std::size_t cCrowd = 32;

// Of a grid, in each direction.
constexpr unsigned int cStepBits = 12;
constexpr std::uint32_t cSteps = 1U << cStepBits;

/// Where numbers lie between the smallest and the largest of them, in so many steps.
struct KeyRange
{
    float low = std::numeric_limits<float>::infinity();
    float high = -std::numeric_limits<float>::infinity();
    double scale = 0;

    // Infinite numbers are in the first or the last step.
    void add(float f)
    {
        constexpr float cMost = std::numeric_limits<float>::max();
        low = f < low && f >= -cMost ? f : low;
        high = f > high && f <= cMost ? f : high;
    }

    // Equal numbers have no scale: all of them are in the first step.
    void finish()
    {
        const double width = double(high) - low;
        scale = width > 0 ? (cSteps - 1) / width : 0;
    }

    std::uint32_t step(float f) const
    {
        const double step = (double(f) - low) * scale;
        // Neither is true of NaN.
        return step > 0 ? static_cast<std::uint32_t>(step < cSteps - 1 ? step : cSteps - 1) : 0;
    }
};

// Four at a time, which every compiler knows how to do.
using Numbers [[gnu::vector_size(4 * sizeof(std::uint32_t))]] = std::uint32_t;

// How far along the curve cells are, of all that are in a grid. The curve enters each quarter of a square where it has
// left the one before. So the lower quarters are turned, which is done to the rest of a cell's place: x and y change
// places, and on the right both are counted from the other end.
Numbers alongCurve(Numbers x, Numbers y)
{
    Numbers along{};
    for (unsigned int i = cStepBits; i-- > 0;)
    {
        const Numbers right = x >> i & 1, upper = y >> i & 1, isLower = upper - 1;
        along = along << 2 | right << 1 | (right ^ upper);
        const Numbers change = (x ^ y ^ -right) & isLower;
        x ^= change;
        y ^= change;
    }
    return along;
}

} // namespace

std::span<CurveOrder::Item> CurveOrder::take(std::size_t n)
{
    _items.resize(n);
    _sorted.resize(n);
    return _items;
}

void CurveOrder::sort(std::size_t first, std::size_t last)
{
    KeyRange x, y;
    for (std::size_t i = first; i < last; ++i)
    {
        x.add(_items[i].x);
        y.add(_items[i].y);
    }
    x.finish();
    y.finish();
    if (x.scale == 0 && y.scale == 0)
        return;
    for (std::size_t i = first; i < last; i += 4)
    {
        const std::size_t n = std::min<std::size_t>(last - i, 4);
        Numbers cellX{}, cellY{};
        for (std::size_t j = 0; j < n; ++j)
        {
            cellX[j] = x.step(_items[i + j].x);
            cellY[j] = y.step(_items[i + j].y);
        }
        const Numbers cells = alongCurve(cellX, cellY);
        for (std::size_t j = 0; j < n; ++j)
            _items[i + j].cell = cells[j];
    }
    sortByCell(first, last);
    for (std::size_t end; first < last; first = end)
    {
        for (end = first + 1; end < last && _items[end].cell == _items[first].cell; ++end)
        {
        }
        if (end - first > cCrowd)
            sort(first, end);
    }
}

void CurveOrder::sortByCell(std::size_t first, std::size_t last)
{
    constexpr unsigned int cDigitBits = 8;
    constexpr std::size_t cDigits = std::size_t(1) << cDigitBits;
    if (last - first < 2 * cDigits)
    {
        std::sort(_items.data() + first, _items.data() + last,
                  [](const Item& a, const Item& b) { return a.cell < b.cell; });
        return;
    }
    // Digit by digit from the lowest up, each pass keeping the order of the one before it.
    Item *pFrom = _items.data() + first, *pTo = _sorted.data() + first;
    const std::size_t n = last - first;
    for (unsigned int shift = 0; shift < 2 * cStepBits; shift += cDigitBits)
    {
        const auto digit = [shift](const Item& item) { return item.cell >> shift & (cDigits - 1); };
        std::array<std::size_t, cDigits> places{};
        for (std::size_t i = 0; i < n; ++i)
            ++places[digit(pFrom[i])];
        std::size_t place = 0;
        for (std::size_t& count : places)
            place += std::exchange(count, place);
        for (std::size_t i = 0; i < n; ++i)
            pTo[places[digit(pFrom[i])]++] = pFrom[i];
        std::swap(pFrom, pTo);
    }
    if (pFrom != _items.data() + first)
        std::copy(pFrom, pFrom + n, pTo);
}

} // namespace gui::gl
