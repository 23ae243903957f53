#pragma once

#include <cstddef>
#include <cstring>

#ifdef __SSE2__
#include <immintrin.h>
#endif

namespace gui::draw
{

/// Four floats side by side, which every compiler knows how to spread over the machine's registers. Arithmetic and
/// comparisons are those of single floats, to the bit.
using FourFloats [[gnu::vector_size(16)]] = float;
/// What a comparison gives: -1 where it holds, 0 elsewhere.
using FourMasks [[gnu::vector_size(16)]] = int;

inline FourFloats loadFour(const float* p)
{
    FourFloats v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

inline void storeFour(float* p, FourFloats v) { std::memcpy(p, &v, sizeof v); }

inline FourFloats allFour(float f) { return FourFloats{f, f, f, f}; }

/// The second where one is NaN.
inline FourFloats smallerOf(FourFloats a, FourFloats b)
{
#ifdef __SSE2__
    return _mm_min_ps(a, b);
#else
    return a < b ? a : b;
#endif
}

inline FourFloats largerOf(FourFloats a, FourFloats b)
{
#ifdef __SSE2__
    return _mm_max_ps(a, b);
#else
    return a > b ? a : b;
#endif
}

/// A bit for each, the first in bit 0.
inline unsigned int bitsOf(FourMasks mask)
{
#ifdef __SSE2__
    return static_cast<unsigned int>(_mm_movemask_ps(reinterpret_cast<__m128>(mask)));
#else
    unsigned int bits = 0;
    for (std::size_t i = 0; i < 4; ++i)
        bits |= (mask[i] != 0 ? 1U : 0U) << i;
    return bits;
#endif
}

} // namespace gui::draw
