#pragma once

#include "Point.h"

namespace td
{

/// A circle of the plane.
template <Number T>
struct Circle
{
    Point<T> center;
    T radius{};

    constexpr Circle() = default;
    constexpr Circle(const Point<T>& centerPoint, T r)
        : center(centerPoint)
        , radius(r)
    {
    }

    constexpr bool operator==(const Circle&) const = default;
};

} // namespace td
