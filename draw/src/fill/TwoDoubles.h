#pragma once

#include "GridPoint.h"

#include <bit>
#include <cmath>
#include <cstdint>

#ifdef __SSE2__
#include <immintrin.h>
#endif

namespace gui::draw
{

/// Two doubles side by side, which every compiler knows how to spread over the machine's registers. Arithmetic is that
/// of single doubles, to the bit.
using TwoDoubles [[gnu::vector_size(16)]] = double;

/// The second where one is NaN.
inline TwoDoubles largerOf(TwoDoubles a, TwoDoubles b)
{
#ifdef __SSE2__
    return _mm_max_pd(a, b);
#else
    return a > b ? a : b;
#endif
}

inline TwoDoubles smallerOf(TwoDoubles a, TwoDoubles b)
{
#ifdef __SSE2__
    return _mm_min_pd(a, b);
#else
    return a < b ? a : b;
#endif
}

inline TwoDoubles absOf(TwoDoubles v)
{
#ifdef __SSE2__
    return _mm_andnot_pd(_mm_set1_pd(-0.0), v);
#else
    return TwoDoubles{std::abs(v[0]), std::abs(v[1])};
#endif
}

inline TwoDoubles rootOf(TwoDoubles v)
{
#ifdef __SSE2__
    return _mm_sqrt_pd(v);
#else
    return TwoDoubles{std::sqrt(v[0]), std::sqrt(v[1])};
#endif
}

/// The nearest point of the grid; both are within 31 bits.
inline GridPoint nearestTo(TwoDoubles v)
{
#ifdef __SSE2__
    return std::bit_cast<GridPoint>(_mm_cvtsi128_si64(_mm_cvtpd_epi32(v)));
#else
    // Sums of this size have no digits behind the point.
    constexpr double cNoFraction = 0x1.8p52;
    return {static_cast<std::int32_t>(v[0] + cNoFraction - cNoFraction),
            static_cast<std::int32_t>(v[1] + cNoFraction - cNoFraction)};
#endif
}

/// Two points: both x, and both y.
struct TwoPoints
{
    TwoPoints(GridPoint p, GridPoint q)
    {
#ifdef __SSE2__
        const __m128i all = _mm_unpacklo_epi32(_mm_cvtsi64_si128(std::bit_cast<std::int64_t>(p)),
                                               _mm_cvtsi64_si128(std::bit_cast<std::int64_t>(q)));
        x = _mm_cvtepi32_pd(all);
        y = _mm_cvtepi32_pd(_mm_shuffle_epi32(all, 0xee));
#else
        x = TwoDoubles{double(p.x), double(q.x)};
        y = TwoDoubles{double(p.y), double(q.y)};
#endif
    }

    TwoDoubles x, y;
};

} // namespace gui::draw
