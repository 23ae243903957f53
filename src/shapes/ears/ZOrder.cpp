#include "ZOrder.h"

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

/// Where numbers lie between the smallest and the largest of them, in 2^16 steps.
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
        scale = width > 0 ? 0xffff / width : 0;
    }

    std::uint32_t step(float f) const
    {
        const double step = (double(f) - low) * scale;
        // Neither is true of NaN.
        return step > 0 ? static_cast<std::uint32_t>(step < 0xffff ? step : 0xffff) : 0;
    }
};

// Puts a 0 behind each of 16 bits.
std::uint32_t spread(std::uint32_t bits)
{
    bits = (bits | bits << 8) & 0x00ff00ff;
    bits = (bits | bits << 4) & 0x0f0f0f0f;
    bits = (bits | bits << 2) & 0x33333333;
    return (bits | bits << 1) & 0x55555555;
}

} // namespace

std::span<ZOrder::Item> ZOrder::take(std::size_t n)
{
    _items.resize(n);
    _sorted.resize(n);
    return _items;
}

void ZOrder::sort(std::size_t first, std::size_t last)
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
    for (std::size_t i = first; i < last; ++i)
        _items[i].cell = spread(x.step(_items[i].x)) | spread(y.step(_items[i].y)) << 1;
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

void ZOrder::sortByCell(std::size_t first, std::size_t last)
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
    for (unsigned int shift = 0; shift < 32; shift += cDigitBits)
    {
        const auto digit = [shift](const Item& item) { return item.cell >> shift & (cDigits - 1); };
        std::array<std::size_t, cDigits> places{};
        for (std::size_t i = first; i < last; ++i)
            ++places[digit(_items[i])];
        std::size_t place = first;
        for (std::size_t& n : places)
            place += std::exchange(n, place);
        for (std::size_t i = first; i < last; ++i)
            _sorted[places[digit(_items[i])]++] = _items[i];
        std::swap_ranges(_items.data() + first, _items.data() + last, _sorted.data() + first);
    }
}

} // namespace gui::gl
