#pragma once

#include "Types.h"

namespace td
{

/// A point of the plane. Which way y grows is up to whoever uses it: downwards in views, as it pleases in models.
template <Number T>
struct Point
{
    T x{};
    T y{};

    constexpr Point() = default;
    constexpr Point(T xPos, T yPos)
        : x(xPos)
        , y(yPos)
    {
    }

    /// Multiplies x by sx and y by sy, in double precision.
    constexpr void scale(double sx, double sy)
    {
        x = T(double(x) * sx);
        y = T(double(y) * sy);
    }

    constexpr bool operator==(const Point&) const = default;
};

/// Points as places and as ways between them: `to - from`, `from + 0.5 * way`.
template <Number T>
constexpr Point<T> operator+(const Point<T>& a, const Point<T>& b)
{
    return {T(a.x + b.x), T(a.y + b.y)};
}
template <Number T>
constexpr Point<T> operator-(const Point<T>& a, const Point<T>& b)
{
    return {T(a.x - b.x), T(a.y - b.y)};
}
/// Multiplies both coordinates, in double precision; see Point::scale.
template <Number T>
constexpr Point<T> operator*(double factor, Point<T> point)
{
    point.scale(factor, factor);
    return point;
}
template <Number T>
constexpr Point<T> operator*(const Point<T>& point, double factor)
{
    return factor * point;
}

// Arrays of points are handed to GL as arrays of numbers.
static_assert(sizeof(Point<float>) == 2 * sizeof(float) && sizeof(Point<double>) == 2 * sizeof(double));

} // namespace td
