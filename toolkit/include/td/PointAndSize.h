#pragma once

#include "Point.h"
#include "Size.h"

namespace td
{

/// A rectangle given by its left top corner and its size, the way views state their geometry.
template <Number T>
struct PointAndSize
{
    Point<T> point;
    Size<T> size;

    constexpr PointAndSize() = default;
    constexpr PointAndSize(const Point<T>& leftTop, const Size<T>& extent)
        : point(leftTop)
        , size(extent)
    {
    }
    constexpr PointAndSize(T left, T top, T width, T height)
        : point(left, top)
        , size(width, height)
    {
    }

    constexpr bool operator==(const PointAndSize&) const = default;
};

} // namespace td
