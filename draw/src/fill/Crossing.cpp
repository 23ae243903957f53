#include "Crossing.h"

#include <cmath>
#include <cstdlib>

namespace gui::draw
{

namespace
{

__extension__ using Wide = __int128;

template <typename T>
int signOf(T number)
{
    return (number > 0) - (number < 0);
}

// floor(d * numerator / denominator) for a fraction between 0 and 1, and what is left of the division. Doubles come
// within one of the quotient, which is below 2^31, and a step or two make it exact: faster than dividing 128 bits.
std::int64_t divide(std::int64_t d, std::uint64_t numerator, std::uint64_t denominator, std::uint64_t& rest)
{
    auto quotient = static_cast<std::int64_t>(
        std::floor(static_cast<double>(d) * (static_cast<double>(numerator) / static_cast<double>(denominator))));
    const Wide product = Wide(d) * Wide(numerator);
    Wide left = product - Wide(quotient) * Wide(denominator);
    for (; left < 0; left += denominator)
        --quotient;
    for (; left >= Wide(denominator); left -= denominator)
        ++quotient;
    rest = static_cast<std::uint64_t>(left);
    return quotient;
}

int compareFractions(std::uint64_t a, std::uint64_t aDenominator, std::uint64_t b, std::uint64_t bDenominator)
{
    return signOf(Wide(a) * Wide(bDenominator) - Wide(b) * Wide(aDenominator));
}

} // namespace

Crossing::Crossing(GridPoint a, GridPoint b, GridPoint c, GridPoint d)
{
    // Where on the way from a to b: at n / m. Both have the same sign, since the edges cross between.
    const std::int64_t m = cross(a, b, c, d), n = cross(a, c, c, d);
    _denominator = static_cast<std::uint64_t>(std::abs(m));
    const auto numerator = static_cast<std::uint64_t>(std::abs(n));
    const std::int64_t x = divide(std::int64_t(b.x) - a.x, numerator, _denominator, _x);
    const std::int64_t y = divide(std::int64_t(b.y) - a.y, numerator, _denominator, _y);
    _whole = {static_cast<std::int32_t>(a.x + x), static_cast<std::int32_t>(a.y + y)};
}

int Crossing::compare(const Crossing& other) const
{
    if (_whole.y != other._whole.y)
        return _whole.y < other._whole.y ? -1 : 1;
    if (const int order = compareFractions(_y, _denominator, other._y, other._denominator); order != 0)
        return order;
    if (_whole.x != other._whole.x)
        return _whole.x < other._whole.x ? -1 : 1;
    return compareFractions(_x, _denominator, other._x, other._denominator);
}

int Crossing::sideOf(GridPoint a, GridPoint b) const
{
    const std::int64_t whole = gui::draw::sideOf(a, b, _whole);
    const std::int64_t dx = std::int64_t(b.x) - a.x, dy = std::int64_t(b.y) - a.y;
    // The fractions move it by less than one edge's width and height.
    if (std::abs(whole) >= std::abs(dx) + dy)
        return signOf(whole);
    return signOf(Wide(whole) * Wide(_denominator) + Wide(dx) * Wide(_y) - Wide(dy) * Wide(_x));
}

GridPoint Crossing::rounded() const
{
    return {_whole.x + (2 * _x >= _denominator ? 1 : 0), _whole.y + (2 * _y >= _denominator ? 1 : 0)};
}

} // namespace gui::draw
