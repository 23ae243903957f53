#pragma once

#include "Point.h"
#include "Types.h"

#include <utility>

namespace td
{

/// A rectangle given by its four sides, for y growing downwards: made from any two opposite corners, it has
/// left <= right and top <= bottom.
template <Number T>
struct RectNormalized
{
    T left{};
    T top{};
    T right{};
    T bottom{};

    constexpr RectNormalized() = default;

    /// Swaps left with right when right < left, and top with bottom when bottom < top.
    constexpr RectNormalized(T l, T t, T r, T b)
        : left(l)
        , top(t)
        , right(r)
        , bottom(b)
    {
        if (right < left)
            std::swap(left, right);
        if (bottom < top)
            std::swap(top, bottom);
    }

    /// The rectangle that has these two for opposite corners: what a drag goes over.
    constexpr RectNormalized(const Point<T>& corner, const Point<T>& opposite)
        : RectNormalized(corner.x, corner.y, opposite.x, opposite.y)
    {
    }

    constexpr bool operator==(const RectNormalized&) const = default;
};

} // namespace td
