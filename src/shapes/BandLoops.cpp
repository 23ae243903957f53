#include "BandLoops.h"

#include "../simd/BestLoops.h"
#include "../simd/Lanes.h"

// Formulas stand as they do in Triang2DOutlines.cpp: no other way to write them gives the same bits. Compiled once for
// any machine and once for AVX2.

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

[[gnu::always_inline]] inline Vectors miterVectors(const Corners& c, const Floats& width)
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
[[gnu::always_inline]] inline Bevels bevelsOf(const Corners& c, const Vectors& miter, const Floats& length,
                                              const Floats& width)
{
    const Floats area = turnArea(c.before, c.point, c.after);
    const Mask isLeft = area > 0, isRight = area < 0;
    const Vectors& C = c.point;
    const Vectors W1 = width * c.in, W2 = width * c.back;
    const Vectors A = C + perp(W2), B = C - perp(W1);
    const Vectors m = width * (1.0f / length * miter);
    const Vectors inwards = choose(isLeft, m, -m);
    const Vectors D = C - inwards;
    const Vectors T = perp(inwards);
    // A turn that is lost in rounding has no direction and no finite result.
    const Floats nan = all(__builtin_nanf(""));
    const Vectors none{nan, nan};
    const Vectors U1 = choose(isLeft, W2, choose(isRight, W1, none));
    const Vectors U2 = choose(isLeft, W1, choose(isRight, W2, none));
    const Vectors X1 = A + stepsToCrossing(U1, T, D - A) * U1;
    const Vectors X2 = B + stepsToCrossing(U2, -T, D - B) * U2;
    const Pairs mitered = around(C, miter);
    return {choose(isLeft, {mitered.left, X2}, {X1, mitered.right}),
            choose(isLeft, {mitered.left, X1}, {X2, mitered.right})};
}

[[gnu::always_inline]] inline void toRecords(const Pairs& pairs, Block& records)
{
    records[0] = pairs.left.x;
    records[1] = pairs.left.y;
    records[2] = pairs.right.x;
    records[3] = pairs.right.y;
    transpose(records);
}

std::size_t takePoints(const float* pPoints, std::size_t n, float* x, float* y)
{
    std::size_t nTaken = 0;
    for (std::size_t i = 0, end = 0; i < n; i = end)
    {
        const float* const p = pPoints + 2 * i;
        end = i + cLanes;
        if (end <= n)
        {
            const Floats a = load(p), b = load(p + cLanes), aBefore = load(p - 2), bBefore = load(p + cLanes - 2);
            const Floats px = evens(a, b), py = odds(a, b);
            if (bits((px == evens(aBefore, bBefore)) & (py == odds(aBefore, bBefore))) == 0)
            {
                store(x + nTaken, px);
                store(y + nTaken, py);
                nTaken += cLanes;
                continue;
            }
        }
        else
            end = n;
        for (; i < end; ++i)
        {
            const float* const q = pPoints + 2 * i;
            x[nTaken] = q[0];
            y[nTaken] = q[1];
            nTaken += q[0] == q[-2] && q[1] == q[-1] ? 0 : 1;
        }
    }
    return nTaken;
}

/// What is known of the corners of a block before their pairs are made. It takes turns: each loop has a long way from
/// its first operation to its last, and the shorter the loop is, the more of its rounds are under way at a time.
struct Joins
{
    static constexpr std::size_t cSize = BandLoops::cMaxCorners + 1 + BandLoops::cSlack;
    float inverse[cSize];     // 1 / the length of the way to the point, and of the last corner's way to the point after
    float x[cSize], y[cSize]; // from the point to the left vertex, where there is one
    float length[cSize];
    Mask isBevel[cSize / 4], isBack[cSize / 4];
};

inline Corners cornersAt(const float* x, const float* y, const Joins& joins, std::size_t i)
{
    const Floats in = load(joins.inverse + i), out = load(joins.inverse + i + 1);
    return {loadPoints(x, y, i),
            loadPoints(x, y, i + 1),
            loadPoints(x, y, i + 2),
            in * (loadPoints(x, y, i + 1) - loadPoints(x, y, i)),
            out * (loadPoints(x, y, i + 2) - loadPoints(x, y, i + 1)),
            out * (loadPoints(x, y, i + 1) - loadPoints(x, y, i + 2))};
}

void findJoins(const float* x, const float* y, std::size_t n, float lineWidth, Joins& joins)
{
    for (std::size_t i = 0; i < n + 1; i += cLanes)
    {
        const Vectors way = loadPoints(x, y, i + 1) - loadPoints(x, y, i);
        store(joins.inverse + i, 1.0f / squareRoot(dot(way, way)));
    }
    const Floats width = all(lineWidth), limit = all(cMiterLimit * lineWidth);
    for (std::size_t i = 0; i < n; i += cLanes)
    {
        const Corners corners = cornersAt(x, y, joins, i);
        const auto& in = corners.in;
        const Floats sine = in.x * corners.out.y - in.y * corners.out.x;
        const Mask isStraight = (sine <= cParallelSine) & (sine >= -cParallelSine);
        const Vectors miter = miterVectors(corners, width);
        const Floats length = squareRoot(dot(miter, miter));
        const Vectors offset = choose(isStraight, width * perp(in), miter);
        store(joins.x + i, offset.x);
        store(joins.y + i, offset.y);
        store(joins.length + i, length);
        joins.isBevel[i / cLanes] = ~isStraight & (length > limit);
        joins.isBack[i / cLanes] = isStraight & ~(dot(in, corners.out) > 0);
    }
}

std::size_t addCorners(const float* x, const float* y, std::size_t n, float lineWidth, float* pPairs)
{
    Joins joins;
    findJoins(x, y, n, lineWidth, joins);
    float* pTo = pPairs;
    for (std::size_t i = 0; i < n; i += cLanes)
    {
        const Mask isBevel = joins.isBevel[i / cLanes], isBack = joins.isBack[i / cLanes];
        const std::size_t count = n - i < cLanes ? n - i : cLanes;
        const unsigned int isDouble = bits(isBack | isBevel) & ((1U << count) - 1);
        const Vectors offset = loadPoints(joins.x, joins.y, i);
        Pairs first = around(loadPoints(x, y, i + 1), offset);
        Block records;
        if (isDouble == 0)
        {
            toRecords(first, records);
            for (std::size_t k = 0; k < cLanes; ++k)
                storeRecord(pTo + 4 * k, recordOf(records, k));
            pTo += 4 * count;
            continue;
        }
        const Floats width = all(lineWidth);
        const Corners corners = cornersAt(x, y, joins, i);
        const Bevels bevels = bevelsOf(corners, offset, load(joins.length + i), width);
        first = choose(isBevel, bevels.first, first);
        Pairs second = bevels.second;
        if (bits(isBack) != 0)
        {
            const Pairs end = around(corners.point + width * corners.in, offset);
            first = choose(isBack, end, first);
            second = choose(isBack, {end.right, end.left}, second);
        }
        Block secondRecords;
        toRecords(first, records);
        toRecords(second, secondRecords);
        for (std::size_t k = 0; k < cLanes; ++k)
        {
            storeRecords(pTo, records, secondRecords, k);
            pTo += 4 + (isDouble >> k & 1) * 4;
        }
        pTo -= 4 * (cLanes - count);
    }
    return static_cast<std::size_t>(pTo - pPairs) / 4;
}

using Indices [[gnu::vector_size(8 * sizeof(unsigned int))]] = unsigned int;

// Two triangles between a pair, 0 and 1, and the next, 2 and 3. Those that turn right have their last two corners
// swapped: the first of odd kinds, the second of kinds from 2 on.
constexpr unsigned int cQuads[4][8] = {
    {0, 1, 2, 3, 1, 2, 0, 0}, {0, 2, 1, 3, 1, 2, 0, 0}, {0, 1, 2, 3, 2, 1, 0, 0}, {0, 2, 1, 3, 2, 1, 0, 0}};

void addQuads(const float* pPairs, std::size_t n, unsigned int firstIndex, unsigned int* pIndices)
{
    Indices first = firstIndex - Indices{};
    for (std::size_t i = 0; i < n; i += cLanes)
    {
        Block from, to;
        loadRecords(pPairs + 4 * i, from);
        loadRecords(pPairs + 4 * (i + 1), to);
        transpose(from);
        transpose(to);
        const Vectors left{from[0], from[1]}, right{from[2], from[3]}, nextLeft{to[0], to[1]}, nextRight{to[2], to[3]};
        const Mask kinds =
            ((turnArea(left, right, nextLeft) < 0) & 1) | ((turnArea(nextRight, right, nextLeft) < 0) & 2);
        for (std::size_t k = 0; k < cLanes; ++k)
        {
            Indices indices;
            __builtin_memcpy(&indices, cQuads[kinds[k]], sizeof(indices));
            indices += first;
            __builtin_memcpy(pIndices + 6 * k, &indices, sizeof(indices));
            first += 2;
        }
        pIndices += 6 * cLanes;
    }
}

} // namespace

#ifdef __AVX2__

const BandLoops cBandLoopsAVX2{takePoints, addCorners, addQuads};

#else

const BandLoops cBandLoops{takePoints, addCorners, addQuads};

const BandLoops& bandLoops() { return bestLoops<BandLoops, cBandLoops, cBandLoopsAVX2>(); }

#endif

} // namespace gui::gl
