#include "BandLoops.h"

#include "Lanes.h"

// Formulas stand as they do in OutlineVectors.cpp: no other way to write them gives the same bits. Compiled once for any
// machine and once for AVX2.

namespace gui::gl
{

namespace
{

/// How many times the width a miter may be long.
constexpr float cMiterLimit = 2.0f;

struct Vectors
{
    Floats x, y;
};

inline Vectors operator+(const Vectors& a, const Vectors& b) { return {a.x + b.x, a.y + b.y}; }
inline Vectors operator-(const Vectors& a, const Vectors& b) { return {a.x - b.x, a.y - b.y}; }
inline Vectors operator-(const Vectors& v) { return {-v.x, -v.y}; }
inline Vectors operator*(const Floats& f, const Vectors& v) { return {f * v.x, f * v.y}; }
inline Vectors choose(const Mask& mask, const Vectors& a, const Vectors& b)
{
    return {mask ? a.x : b.x, mask ? a.y : b.y};
}

inline Floats dot(const Vectors& a, const Vectors& b) { return a.x * b.x + a.y * b.y; }
inline Vectors perp(const Vectors& v) { return {-v.y, v.x}; }

inline Vectors loadPoints(const float* x, const float* y, std::size_t i) { return {load(x + i), load(y + i)}; }

// How often u goes into the way to where the lines along u and v cross.
inline Floats stepsToCrossing(const Vectors& u, const Vectors& v, const Vectors& way)
{
    const Floats inverse = 1.0f / (u.x * v.y - v.x * u.y);
    return v.y * inverse * way.x + -v.x * inverse * way.y;
}

inline Floats turnArea(const Vectors& a, const Vectors& b, const Vectors& c)
{
    return (b.x - a.x) * (c.y - b.y) - (b.y - a.y) * (c.x - b.x);
}

/// Points of a line with both their neighbours.
struct Corners
{
    Vectors before, point, after;
    Vectors in, out, back; // unit vectors: to the point, on to the next, and from there back
};

struct Pairs
{
    Vectors left, right;
};

inline Pairs around(const Vectors& point, const Vectors& offset) { return {point + offset, point - offset}; }

inline Pairs choose(const Mask& mask, const Pairs& a, const Pairs& b)
{
    return {choose(mask, a.left, b.left), choose(mask, a.right, b.right)};
}

inline Vectors miterVectors(const Corners& c, const Floats& width)
{
    const Vectors W1 = width * c.in;
    const Vectors A1 = c.before + perp(W1);
    const Vectors W2 = width * c.back;
    const Vectors A2 = c.after - perp(W2);
    return A1 + stepsToCrossing(W1, -W2, A2 - A1) * W1 - c.point;
}

struct Bevels
{
    Pairs first, second;
};

// The outer edge is cut across the miter at the distance width.
inline Bevels bevelsOf(const Corners& c, const Vectors& miter, const Floats& width)
{
    const Floats area = turnArea(c.before, c.point, c.after);
    const Mask isLeft = area > 0, isRight = area < 0;
    const Floats s = isLeft ? all(1) : isRight ? all(-1) : all(0);
    const Vectors& C = c.point;
    const Vectors A = C + width * perp(c.back);
    const Vectors B = C - perp(width * c.in);
    const Vectors m = 1.0f / squareRoot(dot(miter, miter)) * miter;
    const Vectors D = C - s * width * m;
    const Vectors T = -s * perp(width * m);
    // A turn that is lost in rounding has no direction and no finite result.
    const Floats nan = all(__builtin_nanf(""));
    const Vectors none{nan, nan};
    const Vectors U1 = width * choose(isLeft, c.back, choose(isRight, c.in, none));
    const Vectors U2 = width * choose(isLeft, c.in, choose(isRight, c.back, none));
    const Vectors X1 = A + stepsToCrossing(U1, -T, D - A) * U1;
    const Vectors X2 = B + stepsToCrossing(U2, T, D - B) * U2;
    const Pairs mitered = around(C, miter);
    return {choose(isLeft, {mitered.left, X2}, {X1, mitered.right}),
            choose(isLeft, {mitered.left, X1}, {X2, mitered.right})};
}

inline void toRecords(const Pairs& pairs, Block& records)
{
    records[0] = pairs.left.x;
    records[1] = pairs.left.y;
    records[2] = pairs.right.x;
    records[3] = pairs.right.y;
    transpose(records);
}

// 1 / length of the ways from each of n points to the next.
inline void invertLengths(const float* x, const float* y, std::size_t n, float* pInverses)
{
    for (std::size_t i = 0; i < n; i += cLanes)
    {
        const Vectors way = loadPoints(x, y, i + 1) - loadPoints(x, y, i);
        store(pInverses + i, 1.0f / squareRoot(dot(way, way)));
    }
}

std::size_t addCorners(const float* x, const float* y, std::size_t n, float lineWidth, float* pPairs)
{
    float inverses[BandLoops::cMaxCorners + 1 + BandLoops::cSlack];
    invertLengths(x, y, n + 1, inverses);
    const Floats width = all(lineWidth), limit = all(cMiterLimit * lineWidth);
    float* pTo = pPairs;
    for (std::size_t i = 0; i < n; i += cLanes)
    {
        const Vectors P = loadPoints(x, y, i), C = loadPoints(x, y, i + 1), N = loadPoints(x, y, i + 2);
        const Floats inverseIn = load(inverses + i), inverseOut = load(inverses + i + 1);
        const Corners corners{P, C, N, inverseIn * (C - P), inverseOut * (N - C), inverseOut * (C - N)};
        const auto& in = corners.in;
        const Floats sine = in.x * corners.out.y - in.y * corners.out.x;
        const Mask isStraight = (sine <= cParallelSine) & (sine >= -cParallelSine);
        const Mask isBack = isStraight & ~(dot(in, corners.out) > 0);
        const Vectors straight = width * perp(in);
        const Vectors miter = miterVectors(corners, width);
        const Mask isBevel = ~isStraight & (squareRoot(dot(miter, miter)) > limit);

        const std::size_t count = n - i < cLanes ? n - i : cLanes;
        const unsigned int twice = bits(isBack | isBevel) & ((1U << count) - 1);
        const Pairs single = around(C, choose(isStraight, straight, miter));
        Block first;
        if (twice == 0)
        {
            toRecords(single, first);
            for (std::size_t k = 0; k < cLanes; ++k)
                storeRecord(pTo + 4 * k, recordOf(first, k));
            pTo += 4 * count;
            continue;
        }
        const Bevels bevels = bevelsOf(corners, miter, width);
        const Pairs end = around(C + width * in, straight);
        Block second;
        toRecords(choose(isBack, end, choose(isBevel, bevels.first, single)), first);
        toRecords(choose(isBack, {end.right, end.left}, bevels.second), second);
        for (std::size_t k = 0; k < count; ++k)
        {
            storeRecord(pTo, recordOf(first, k));
            storeRecord(pTo + 4, recordOf(second, k));
            pTo += 4 + (twice >> k & 1) * 4;
        }
    }
    return static_cast<std::size_t>(pTo - pPairs) / 4;
}

using Indices [[gnu::vector_size(8 * sizeof(unsigned int))]] = unsigned int;

// Two triangles between a pair, 0 and 1, and the next, 2 and 3. Those that turn right have their last two corners swapped.
constexpr unsigned int cQuads[4][8] = {
    {0, 1, 2, 3, 1, 2, 0, 0}, {0, 2, 1, 3, 1, 2, 0, 0}, {0, 1, 2, 3, 2, 1, 0, 0}, {0, 2, 1, 3, 2, 1, 0, 0}};

void addQuads(const float* pPairs, std::size_t n, unsigned int firstIndex, unsigned int* pIndices)
{
    for (std::size_t i = 0; i < n; i += cLanes)
    {
        Block from, to;
        loadRecords(pPairs + 4 * i, from);
        loadRecords(pPairs + 4 * (i + 1), to);
        transpose(from);
        transpose(to);
        const Vectors left{from[0], from[1]}, right{from[2], from[3]}, nextLeft{to[0], to[1]}, nextRight{to[2], to[3]};
        const unsigned int first = bits(turnArea(left, right, nextLeft) < 0);
        const unsigned int second = bits(turnArea(nextRight, right, nextLeft) < 0);
        const std::size_t count = n - i < cLanes ? n - i : cLanes;
        for (std::size_t k = 0; k < count; ++k)
        {
            Indices indices;
            __builtin_memcpy(&indices, cQuads[(first >> k & 1) + (second >> k & 1) * 2], sizeof(indices));
            indices += firstIndex;
            __builtin_memcpy(pIndices, &indices, sizeof(indices));
            pIndices += 6;
            firstIndex += 2;
        }
    }
}

} // namespace

#ifdef __AVX2__

const BandLoops cBandLoopsAVX2{addCorners, addQuads};

#else

const BandLoops cBandLoops{addCorners, addQuads};

const BandLoops& bandLoops()
{
#ifdef GUIGL_AVX2
    static const BandLoops& s_best = __builtin_cpu_supports("avx2") ? cBandLoopsAVX2 : cBandLoops;
    return s_best;
#else
    return cBandLoops;
#endif
}

#endif

} // namespace gui::gl
