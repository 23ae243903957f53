#pragma once

#include <cstddef>

#ifdef __SSE2__
#include <immintrin.h>
#endif

/// Floats side by side, for loops that do the same with many: eight in a source that is compiled for AVX2, otherwise
/// four, which every compiler knows how to spread over the machine's registers. Arithmetic and comparisons are those of
/// single floats, to the bit.
///
/// All of it is internal to the source that includes it: versions for two widths stay apart when they are linked.
namespace gui::gl
{

namespace
{

#ifdef __AVX2__
constexpr std::size_t cLanes = 8;
#else
constexpr std::size_t cLanes = 4;
#endif

using Floats [[gnu::vector_size(cLanes * sizeof(float))]] = float;
/// What a comparison gives: -1 where it holds, 0 elsewhere.
using Mask [[gnu::vector_size(cLanes * sizeof(int))]] = int;
/// Four floats that lie side by side in memory.
using Record [[gnu::vector_size(4 * sizeof(float))]] = float;

/// The same anywhere in memory: a copy of 32 bytes by another way than this is not always one load (GCC 12).
using FloatsInMemory [[gnu::vector_size(cLanes * sizeof(float)), gnu::aligned(4), gnu::may_alias]] = float;
using RecordInMemory [[gnu::vector_size(4 * sizeof(float)), gnu::aligned(4), gnu::may_alias]] = float;

inline Floats load(const float* p) { return *reinterpret_cast<const FloatsInMemory*>(p); }
inline Record loadRecord(const float* p) { return *reinterpret_cast<const RecordInMemory*>(p); }
inline void store(float* p, Floats v) { *reinterpret_cast<FloatsInMemory*>(p) = v; }
inline void storeRecord(float* p, Record v) { *reinterpret_cast<RecordInMemory*>(p) = v; }

/// Two floats that lie side by side in memory, and two zeros.
inline Record loadPair(const float* p)
{
    using Doubles [[gnu::vector_size(2 * sizeof(double))]] = double;
    double pair;
    __builtin_memcpy(&pair, p, sizeof(pair));
    return reinterpret_cast<Record>(Doubles{pair, 0});
}

/// The same number in all lanes, the sign of a 0 included.
inline Floats all(float f) { return f - Floats{}; }

/// The second where the first is NaN.
inline Floats smaller(Floats a, Floats b) { return a < b ? a : b; }
inline Floats larger(Floats a, Floats b) { return a > b ? a : b; }

/// Of all lanes, none of which is NaN.
inline float smallestOf(Floats v)
{
#ifdef __AVX2__
    v = smaller(v, __builtin_shufflevector(v, v, 4, 5, 6, 7, 0, 1, 2, 3));
    v = smaller(v, __builtin_shufflevector(v, v, 2, 3, 0, 1, 6, 7, 4, 5));
    v = smaller(v, __builtin_shufflevector(v, v, 1, 0, 3, 2, 5, 4, 7, 6));
#else
    v = smaller(v, __builtin_shufflevector(v, v, 2, 3, 0, 1));
    v = smaller(v, __builtin_shufflevector(v, v, 1, 0, 3, 2));
#endif
    return v[0];
}

inline float largestOf(Floats v) { return -smallestOf(-v); }

inline Floats squareRoot(Floats v)
{
#if defined(__AVX2__)
    return _mm256_sqrt_ps(v);
#elif defined(__SSE2__)
    return _mm_sqrt_ps(v);
#else
    for (std::size_t i = 0; i < cLanes; ++i)
        v[i] = __builtin_sqrtf(v[i]);
    return v;
#endif
}

/// A bit for each lane, the first in bit 0.
inline unsigned int bits(Mask mask)
{
#if defined(__AVX2__)
    return static_cast<unsigned int>(_mm256_movemask_ps(reinterpret_cast<__m256>(mask)));
#elif defined(__SSE2__)
    return static_cast<unsigned int>(_mm_movemask_ps(reinterpret_cast<__m128>(mask)));
#else
    unsigned int result = 0;
    for (std::size_t i = 0; i < cLanes; ++i)
        result |= (mask[i] != 0 ? 1U : 0U) << i;
    return result;
#endif
}

/// The first, third, ... or the second, fourth, ... of twice as many floats.
inline Floats evens(Floats a, Floats b)
{
#ifdef __AVX2__
    return __builtin_shufflevector(a, b, 0, 2, 4, 6, 8, 10, 12, 14);
#else
    return __builtin_shufflevector(a, b, 0, 2, 4, 6);
#endif
}

inline Floats odds(Floats a, Floats b)
{
#ifdef __AVX2__
    return __builtin_shufflevector(a, b, 1, 3, 5, 7, 9, 11, 13, 15);
#else
    return __builtin_shufflevector(a, b, 1, 3, 5, 7);
#endif
}

/// Four lists of floats, or as many records as there are lanes. In eight lanes, v[i] holds the records i and i + 4.
using Block = Floats[4];

/// Makes lists of records and records of lists.
inline void transpose(Block& v)
{
#ifdef __AVX2__
    const Floats ab0 = __builtin_shufflevector(v[0], v[1], 0, 8, 1, 9, 4, 12, 5, 13);
    const Floats ab2 = __builtin_shufflevector(v[0], v[1], 2, 10, 3, 11, 6, 14, 7, 15);
    const Floats cd0 = __builtin_shufflevector(v[2], v[3], 0, 8, 1, 9, 4, 12, 5, 13);
    const Floats cd2 = __builtin_shufflevector(v[2], v[3], 2, 10, 3, 11, 6, 14, 7, 15);
    v[0] = __builtin_shufflevector(ab0, cd0, 0, 1, 8, 9, 4, 5, 12, 13);
    v[1] = __builtin_shufflevector(ab0, cd0, 2, 3, 10, 11, 6, 7, 14, 15);
    v[2] = __builtin_shufflevector(ab2, cd2, 0, 1, 8, 9, 4, 5, 12, 13);
    v[3] = __builtin_shufflevector(ab2, cd2, 2, 3, 10, 11, 6, 7, 14, 15);
#else
    const Floats ab0 = __builtin_shufflevector(v[0], v[1], 0, 4, 1, 5);
    const Floats ab2 = __builtin_shufflevector(v[0], v[1], 2, 6, 3, 7);
    const Floats cd0 = __builtin_shufflevector(v[2], v[3], 0, 4, 1, 5);
    const Floats cd2 = __builtin_shufflevector(v[2], v[3], 2, 6, 3, 7);
    v[0] = __builtin_shufflevector(ab0, cd0, 0, 1, 4, 5);
    v[1] = __builtin_shufflevector(ab0, cd0, 2, 3, 6, 7);
    v[2] = __builtin_shufflevector(ab2, cd2, 0, 1, 4, 5);
    v[3] = __builtin_shufflevector(ab2, cd2, 2, 3, 6, 7);
#endif
}

/// Reads records that stand one after the other.
inline void loadRecords(const float* p, Block& v)
{
    for (std::size_t i = 0; i < 4; ++i)
#ifdef __AVX2__
        v[i] = __builtin_shufflevector(loadRecord(p + 4 * i), loadRecord(p + 4 * (i + 4)), 0, 1, 2, 3, 4, 5, 6, 7);
#else
        v[i] = loadRecord(p + 4 * i);
#endif
}

inline Record recordOf(const Block& v, std::size_t i)
{
#ifdef __AVX2__
    return i < 4 ? __builtin_shufflevector(v[i], v[i], 0, 1, 2, 3)
                 : __builtin_shufflevector(v[i - 4], v[i - 4], 4, 5, 6, 7);
#else
    return v[i];
#endif
}

/// Writes the record i of both, one after the other.
inline void storeRecords(float* p, const Block& a, const Block& b, std::size_t i)
{
#ifdef __AVX2__
    store(p, i < 4 ? __builtin_shufflevector(a[i], b[i], 0, 1, 2, 3, 8, 9, 10, 11)
                   : __builtin_shufflevector(a[i - 4], b[i - 4], 4, 5, 6, 7, 12, 13, 14, 15));
#else
    storeRecord(p, a[i]);
    storeRecord(p + 4, b[i]);
#endif
}

} // namespace

} // namespace gui::gl
