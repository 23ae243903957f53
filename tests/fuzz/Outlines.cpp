#include "Outlines.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace fuzz
{

namespace
{

// NaN is NaN: which of its bits are set is nobody's promise.
bool isSameNumber(float a, float b)
{
    return std::bit_cast<unsigned int>(a) == std::bit_cast<unsigned int>(b) || (std::isnan(a) && std::isnan(b));
}

} // namespace

test::Outline takeOutline(Input& input, std::size_t max)
{
    const unsigned int way = input.below(4);
    // A grid anywhere, of any width, rounds as floats do.
    const float step = way < 3 ? 1.0f : input.take<float>(), origin = way < 3 ? 0.0f : input.take<float>();
    test::Outline points;
    while (input.left() > 0 && points.size() < max)
    {
        td::Point<float> point;
        for (float* const pValue : {&point.x, &point.y})
        {
            if (way == 0)
                *pValue = input.take<float>();
            else if (way == 1)
                *pValue = static_cast<float>(input.take<std::int16_t>());
            else
                *pValue = origin + step * static_cast<float>(input.take<std::int8_t>());
        }
        points.push_back(point);
    }
    return points;
}

bool isSame(const gui::gl::Primitive& primitive, unsigned int count, const test::Tessellation& expected)
{
    return primitive == expected.primitive && count == expected.count;
}

bool areSame(const td::Point<float>* vertices, std::size_t nVertices, const test::Outline& expected)
{
    return nVertices == expected.size() && std::equal(expected.begin(), expected.end(), vertices,
                                                      [](const td::Point<float>& a, const td::Point<float>& b)
                                                      { return isSameNumber(a.x, b.x) && isSameNumber(a.y, b.y); });
}

bool areSame(const unsigned int* indices, std::size_t nIndices, const std::vector<unsigned int>& expected)
{
    return nIndices == expected.size() && std::equal(expected.begin(), expected.end(), indices);
}

} // namespace fuzz
