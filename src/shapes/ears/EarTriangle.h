#pragma once

#include "../../simd/Lanes.h"

namespace gui::gl
{

// Internal to the source that includes it: versions for several machines stay apart when they are linked.
namespace
{

struct EarPoint
{
    float x, y;
};

/// Doubled, in the rounding that decides whether a corner may be an ear.
inline float turnArea(const EarPoint& a, const EarPoint& b, const EarPoint& c)
{
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

/// The same of points in the first two lanes.
inline float turnArea(Record a, Record b, Record c)
{
    const Record ab = b - a, ac = c - a;
    const Record products = ab * __builtin_shufflevector(ac, ac, 1, 0, 3, 2);
    return products[0] - products[1];
}

/// NaN is not too small.
inline bool isEarArea(float area, float epsilon) { return !(epsilon > area); }

/// A corner with its neighbours, asked which points keep it from being an ear: to the bit those that
/// SimplePolygon::insideTriangle finds inside.
struct EarTriangle
{
    /// A point is on the inside when x * (p.y - y0) - y * (p.x - x0) is not below 0.
    struct Edge
    {
        float x, y, x0, y0;
    };

    EarTriangle() = default;
    EarTriangle(const EarPoint& a, const EarPoint& b, const EarPoint& c)
        : edges{{c.x - b.x, c.y - b.y, b.x, b.y}, {a.x - c.x, a.y - c.y, c.x, c.y}, {b.x - a.x, b.y - a.y, a.x, a.y}}
    {
    }

    /// Whether NaN keeps every point outside.
    bool isEmpty() const
    {
        bool isEmpty = false;
        for (const Edge& edge : edges)
            isEmpty = isEmpty || edge.x != edge.x || edge.y != edge.y;
        return isEmpty;
    }

    Edge edges[3];
};

inline Floats sideOf(const EarTriangle::Edge& edge, Floats x, Floats y)
{
    return edge.x * (y - edge.y0) - edge.y * (x - edge.x0);
}

/// Bits of the points inside, of n that are a whole number of lanes.
template <unsigned int n>
inline unsigned int insideBits(const EarTriangle& triangle, const float* x, const float* y)
{
    unsigned int inside = 0;
    for (unsigned int i = 0; i < n; i += cLanes)
    {
        const Floats px = load(x + i), py = load(y + i);
        const Mask isInside = (sideOf(triangle.edges[0], px, py) >= 0) & (sideOf(triangle.edges[1], px, py) >= 0) &
                              (sideOf(triangle.edges[2], px, py) >= 0);
        inside |= bits(isInside) << i;
    }
    return inside;
}

/// What all points inside a triangle are inside of as well, for a first look that costs less.
///
/// Rounded as they are, edges let points pass that lie outside the triangle, but not far outside. Let W and H be the
/// triangle's width and height, D its doubled area, r = W * H / D, u = 2^-24. Of a point beyond its bounds by m times
/// the triangle's size in some direction, some edge has a value of -D * m / 2 at most, while rounding errors of an
/// edge's value come to 8 * u * W * H * (1 + m) at most, m being the one for x or y. So the point is found outside if m
/// is above 16 * u * r / (1 - 16 * u * r). With r up to 2^18, whose own error is an eighth then, 64 * u * r is twice as
/// much. With r up to 2^19, which may be 4 / 3 as large then, 128 * u * r is. Underflow is far below D, which is 1e-10
/// at least. There must be no overflow, or the triangle must be small: then no difference to a finite point overflows,
/// products that do have the right sign, and so has what is made of two of them, unless it is NaN, which is outside. So
/// are points at infinity: since the edges' directions sum up to 0, some edge's value is -infinity or NaN.
struct EarBounds
{
    /// @param a, b, c  points in the first two lanes, with zeros behind
    EarBounds(Record a, Record b, Record c)
    {
        const auto lower = [](Record p, Record q) { return p < q ? p : q; };
        const auto upper = [](Record p, Record q) { return p > q ? p : q; };
        low = lower(lower(a, b), c);
        high = upper(upper(a, b), c);
        const Record size = high - low;
        const float product = size[0] * size[1];
        margin = product / turnArea(a, b, c) * 0x1p-18f;
        if (margin > 1) [[unlikely]]
            margin *= 2;
        low -= margin * size;
        high += margin * size;
        // Nothing of the kind is true of NaN.
        isProven = product < 0x1p+120f && margin <= 4;
    }

    /// Whether overflow doesn't matter.
    bool isSmall() const
    {
        constexpr float cSmall = 0x1p+100f;
        return low[0] >= -cSmall && high[0] <= cSmall && low[1] >= -cSmall && high[1] <= cSmall;
    }

    Record low, high; ///< x and y
    float margin;     ///< 64 * u * r, or 128 * u * r
    bool isProven;    ///< of finite coordinates whose differences are finite
};

/// Bits of the points in the bounds.
template <unsigned int n>
inline unsigned int insideBits(const EarBounds& bounds, const float* x, const float* y)
{
    const float left = bounds.low[0], right = bounds.high[0], bottom = bounds.low[1], top = bounds.high[1];
    unsigned int inside = 0;
    for (unsigned int i = 0; i < n; i += cLanes)
    {
        const Floats px = load(x + i), py = load(y + i);
        inside |= bits((px >= left) & (px <= right) & (py >= bottom) & (py <= top)) << i;
    }
    return inside;
}

} // namespace

} // namespace gui::gl
