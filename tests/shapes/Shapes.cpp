#include "Shapes.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

namespace test
{

namespace
{

using Point = td::Point<float>;

Point onCircle(double turn, double radius)
{
    const double angle = 2 * std::numbers::pi * turn;
    return {static_cast<float>(radius * std::cos(angle)), static_cast<float>(radius * std::sin(angle))};
}

template <typename PointAt>
Outline collect(std::size_t n, const PointAt& pointAt)
{
    Outline outline;
    for (std::size_t i = 0; i < n; ++i)
        outline.push_back(pointAt(i));
    return outline;
}

Outline makeStar(Random& random, std::size_t n)
{
    return collect(n, [&](std::size_t i) { return onCircle(double(i) / double(n), random.between(0.2f, 1)); });
}

Outline makeCircle(Random& random, std::size_t n)
{
    return collect(n, [&](std::size_t i) { return onCircle(double(i) / double(n), random.between(0.99f, 1)); });
}

// Teeth on a ridge.
Outline makeComb(Random& random, std::size_t n)
{
    Outline outline{{0, 1}, {0, 0}};
    const auto nTeeth = static_cast<unsigned int>(n / 4 + 1);
    for (unsigned int i = 0; i < nTeeth; ++i)
    {
        const float step = 1 / static_cast<float>(nTeeth), x = step * static_cast<float>(i);
        const float height = random.between(0.1f, 0.9f);
        outline.insert(outline.end(), {{x + 0.2f * step, 0}, {x + 0.2f * step, height}, {x + 0.8f * step, height}});
        outline.push_back({x + 0.8f * step, 0});
    }
    outline.insert(outline.end(), {{1, 0}, {1, 1}});
    return outline;
}

Outline makeSpiral(Random&, std::size_t n)
{
    const std::size_t half = n / 2 + 1;
    const double step = std::min(4.0 / double(half), 1.0 / 12);
    Outline outline;
    for (std::size_t i = 0; i < half; ++i)
        outline.push_back(onCircle(step * double(i), 0.1 + 0.2 * step * double(i)));
    for (std::size_t i = half; i-- > 0;)
        outline.push_back(onCircle(step * double(i), 0.2 + 0.2 * step * double(i)));
    return outline;
}

// What lies under a curve that goes up and down.
Outline makeCurve(Random& random, std::size_t n)
{
    Outline outline{{1, 0}};
    for (std::size_t i = 0; i < n; ++i)
    {
        const auto x = static_cast<float>(i) / static_cast<float>(n);
        outline.push_back({1 - x, 0.5f + 0.2f * std::sin(20 * x) + random.between(0, 0.2f)});
    }
    outline.push_back({0, 0});
    return outline;
}

// A street that winds up row by row, with rough kerbs.
Outline makeMeander(Random& random, std::size_t n)
{
    const auto nRows = static_cast<std::size_t>(std::sqrt(static_cast<double>(n) / 8)) + 1;
    const std::size_t nSteps = n / (2 * nRows) + 2;
    const auto unit = 1 / static_cast<float>(nRows);
    Outline right, left;
    for (std::size_t row = 0; row < nRows; ++row)
    {
        const bool isBack = row % 2 == 1;
        const auto bottom = static_cast<float>(row);
        for (std::size_t i = 0; i < nSteps; ++i)
        {
            const float way = static_cast<float>(i) / static_cast<float>(nSteps - 1);
            const float x = isBack ? 0.9f - 0.9f * way : 0.9f * way;
            const float low = random.between(0, 0.1f), high = random.between(0.5f, 0.6f);
            right.push_back({0.1f + x, unit * (bottom + (isBack ? high : low))});
            left.push_back({x, unit * (bottom + (isBack ? low : high))});
        }
    }
    right.insert(right.end(), left.rbegin(), left.rend());
    return right;
}

// Bays and capes, with bays and capes of their own.
Outline makeCoast(Random& random, std::size_t n)
{
    Outline outline{{-0.9f, -0.5f}, {0.9f, -0.5f}, {0, 1}};
    while (outline.size() < n)
    {
        Outline finer;
        std::size_t nMissing = n - outline.size();
        for (std::size_t i = 0; i < outline.size(); ++i)
        {
            const Point a = outline[i], b = outline[(i + 1) % outline.size()];
            finer.push_back(a);
            if (nMissing < 3)
                continue;
            const float dx = b.x - a.x, dy = b.y - a.y, out = random.between(0.1f, 0.28f);
            finer.push_back({a.x + dx / 3, a.y + dy / 3});
            finer.push_back({a.x + dx / 2 + out * dy, a.y + dy / 2 - out * dx});
            finer.push_back({a.x + 2 * dx / 3, a.y + 2 * dy / 3});
            nMissing -= 3;
        }
        if (finer.size() == outline.size())
            break;
        outline = finer;
    }
    return outline;
}

// Corners of a star, and points on the lines between them.
Outline makeLongRuns(Random& random, std::size_t n)
{
    Outline outline;
    const Outline star = makeStar(random, n / 4 + 3);
    for (std::size_t i = 0; i < star.size(); ++i)
    {
        const Point a = star[i], b = star[(i + 1) % star.size()];
        outline.push_back(a);
        for (const float t : {0.25f, 0.5f, 0.75f})
            outline.push_back({a.x + t * (b.x - a.x), a.y + t * (b.y - a.y)});
    }
    return outline;
}

// Towers of few heights, side by side: repeated corners, straight lines.
Outline makeBlocks(Random& random, std::size_t n)
{
    Outline outline{{1, 0}, {0, 0}};
    for (std::size_t i = 0; i < n / 2; ++i)
    {
        const float height = static_cast<float>(1 + random.below(4)) / 4;
        outline.push_back({static_cast<float>(i) / static_cast<float>(n / 2), height});
        outline.push_back({static_cast<float>(i + 1) / static_cast<float>(n / 2), height});
    }
    return outline;
}

Outline makeScatter(Random& random, std::size_t n)
{
    return collect(n, [&](std::size_t) { return Point{random.between(-1, 1), random.between(-1, 1)}; });
}

Outline makeGridWalk(Random& random, std::size_t n)
{
    const unsigned int size = 2 + random.below(6);
    Outline outline;
    for (std::size_t i = 0; i < n; ++i)
        outline.push_back({static_cast<float>(random.below(size)), static_cast<float>(random.below(size))});
    return outline;
}

// Steps of whole lengths in a few directions: straight on, back, on the spot.
Outline makeSteps(Random& random, std::size_t n)
{
    Outline outline{{0, 0}};
    Point step{1, 0};
    while (outline.size() < n)
    {
        if (!random.isOneIn(3))
            step = onCircle(random.below(8) / 8.0, 0.125 * random.below(4));
        outline.push_back({outline.back().x + step.x, outline.back().y + step.y});
    }
    return outline;
}

Outline makeClusters(Random& random, std::size_t n)
{
    const Outline middles = makeScatter(random, 4);
    const auto pointAt = [&](std::size_t)
    {
        const Point middle = middles[random.below(4)];
        const float size = random.isOneIn(2) ? 1e-3f : 1e-6f;
        return Point{middle.x + random.between(-size, size), middle.y + random.between(-size, size)};
    };
    return collect(n, pointAt);
}

// Points along a line and hardly off it, half of them close to the middle.
Outline makeSliver(Random& random, std::size_t n)
{
    Outline outline;
    const float off = random.isOneIn(3) ? 0.0f : 1e-6f;
    for (std::size_t i = 0; i < n; ++i)
    {
        const float t = (random.isOneIn(2) ? 1.0f : 0.01f) * random.between(-1, 1);
        outline.push_back({t, 0.3f * t + random.between(-off, off)});
    }
    return outline;
}

// A course that turns by much, by little, and hardly ever by nothing.
Outline makeTurns(Random& random, std::size_t n)
{
    Outline outline{{0, 0}};
    double direction = 0;
    while (outline.size() < n)
    {
        const double sizes[] = {1e-4, 1.5e-5, 0.01, 0.3};
        direction += (random.isOneIn(4) ? 0.5 : 0) + sizes[random.below(4)] * random.between(-1, 1);
        const Point step = onCircle(direction, random.between(0.1f, 1));
        outline.push_back({outline.back().x + step.x, outline.back().y + step.y});
    }
    return outline;
}

// Thin teeth from side to side, and as many corners on the side where they end.
Outline makeNeedles(Random& random, std::size_t n)
{
    const std::size_t nTeeth = n / 4 + 1;
    const auto step = 1 / static_cast<float>(nTeeth);
    Outline outline{{1, 1}};
    for (std::size_t i = 0; i < 2 * nTeeth; ++i)
        outline.push_back({1 - 0.5f * step * static_cast<float>(i + 1), random.between(0.95f, 1)});
    for (std::size_t i = 0; i < nTeeth; ++i)
    {
        const float x = step * static_cast<float>(i);
        outline.insert(outline.end(), {{x + 0.4f * step, 0}, {x + 0.5f * step, random.between(0.7f, 0.94f)}});
    }
    return outline;
}

// The same with teeth in all directions, across each other.
Outline makeCrossedNeedles(Random& random, std::size_t n)
{
    Outline outline;
    for (std::size_t i = 0; i < n / 2; ++i)
    {
        const double turn = double(i) / double(n / 2);
        outline.push_back(onCircle(turn, random.between(0.99f, 1)));
        outline.push_back(onCircle(turn + random.between(0.3f, 0.7f), random.between(0.2f, 0.9f)));
    }
    return outline;
}

// Half of the corners have the other half in their triangles. That is an arc that bends away, of which only the last
// corner is an ear, then the one before it and so on: one each time around. So that it bends at every corner, its steps
// are whole: q to the right and p down for fractions p / q, from 0 to 1 one after the other.
Outline makeBlocked(Random& random, std::size_t n)
{
    const int order = static_cast<int>(2 * std::sqrt(static_cast<double>(n) / 2)) + 2;
    int p = 0, q = 1, nextP = 1, nextQ = order;
    Outline arc{{0, 0}};
    while (arc.size() < n / 2)
    {
        arc.push_back({arc.back().x + static_cast<float>(q), arc.back().y - static_cast<float>(p)});
        const int times = (order + q) / nextQ;
        p = std::exchange(nextP, times * nextP - p);
        q = std::exchange(nextQ, times * nextQ - q);
    }
    const float width = arc.back().x;
    Outline outline = arc;
    outline.push_back({width, width});
    for (std::size_t i = 0; i < n / 2; ++i)
    {
        const Point b = onCircle(0.334 * double(i), random.between(4.5f, 5) * width);
        outline.push_back({b.x + width / 2, b.y});
    }
    outline.push_back({-3 * width, 0});
    return outline;
}

// There and back along a line, in the noise of rounding.
Outline makeNoise(Random& random, std::size_t n)
{
    Outline outline;
    for (std::size_t i = 0; i < n; ++i)
    {
        const float t = static_cast<float>(i < n / 2 ? i : n - i) / static_cast<float>(n / 2);
        const float off = random.between(0, 1e-3f) + (i < n / 2 ? -1e-3f : 0);
        outline.push_back({1000 * t, 300 * t + off});
    }
    return outline;
}

// A band in 64 turns, and back beside itself.
Outline makeCoil(Random&, std::size_t n)
{
    const std::size_t half = n / 2 + 1;
    const auto onCoil = [&](std::size_t i, double off)
    { return onCircle(64 * double(i) / double(half), 0.1 + 0.9 * double(i) / double(half) + off / 64); };
    Outline outline = collect(half, [&](std::size_t i) { return onCoil(i, 0); });
    for (std::size_t i = half; i-- > 0;)
        outline.push_back(onCoil(i, 0.45));
    return outline;
}

// Every other corner is near the middle.
Outline makeSpikes(Random& random, std::size_t n)
{
    return collect(n, [&](std::size_t i)
                   { return onCircle(double(i) / double(n), i % 2 == 1 ? 1 : random.between(0.01f, 0.1f)); });
}

// A circle with some corners where others are.
Outline makeDuplicates(Random& random, std::size_t n)
{
    Outline outline = makeCircle(random, n);
    for (Point& p : outline)
        p = random.isOneIn(100) ? outline[random.below(static_cast<unsigned int>(n))] : p;
    return outline;
}

Outline makeScrambled(Random& random, std::size_t n)
{
    Outline outline = makeStar(random, n);
    for (std::size_t i = n; i > 1; --i)
        std::swap(outline[i - 1], outline[random.below(static_cast<unsigned int>(i))]);
    return outline;
}

Outline makeNaN(Random& random, std::size_t n)
{
    constexpr float cNaN = std::numeric_limits<float>::quiet_NaN();
    Outline outline = makeStar(random, n);
    for (Point& p : outline)
        p = random.isOneIn(10) ? Point{cNaN, cNaN} : p;
    return outline;
}

constexpr Family cSimpleFamilies[] = {{"star", makeStar},     {"circle", makeCircle}, {"comb", makeComb},
                                      {"spiral", makeSpiral}, {"curve", makeCurve},   {"meander", makeMeander},
                                      {"coast", makeCoast}};
constexpr Family cWildFamilies[] = {{"long runs", makeLongRuns}, {"blocks", makeBlocks}, {"scatter", makeScatter},
                                    {"grid walk", makeGridWalk}, {"steps", makeSteps},   {"clusters", makeClusters},
                                    {"sliver", makeSliver},      {"turns", makeTurns}};

constexpr Family cHostileFamilies[] = {{"needles", makeNeedles},
                                       {"crossed needles", makeCrossedNeedles},
                                       {"blocked", makeBlocked},
                                       {"noise", makeNoise},
                                       {"coil", makeCoil},
                                       {"spikes", makeSpikes},
                                       {"duplicates", makeDuplicates},
                                       {"scrambled", makeScrambled},
                                       {"NaN", makeNaN}};

float poison(Random& random)
{
    constexpr float cMax = std::numeric_limits<float>::max();
    constexpr float cInfinity = std::numeric_limits<float>::infinity();
    constexpr float cPoisons[] = {std::numeric_limits<float>::quiet_NaN(), cInfinity, -cInfinity, -0.0f, cMax, -cMax,
                                  std::numeric_limits<float>::denorm_min()};
    return cPoisons[random.below(std::size(cPoisons))];
}

} // namespace

std::span<const Family> simpleFamilies() { return cSimpleFamilies; }

std::span<const Family> wildFamilies() { return cWildFamilies; }

std::span<const Family> hostileFamilies() { return cHostileFamilies; }

Outline distort(const Outline& outline, unsigned int way, Random& random)
{
    constexpr float cScales[cDistortions - 3] = {1, 1e-4f, 1e-9f, 1e-20f, 1e6f, 1e18f, 2e38f};
    Outline distorted = outline;
    for (Point& p : distorted)
    {
        if (way < std::size(cScales))
            p = {cScales[way] * p.x, cScales[way] * p.y};
        else if (way == cDistortions - 3)
            p = {1000 * p.x + 3e6f, 1000 * p.y - 7e5f};
        else if (way == cDistortions - 2)
            p = random.isOneIn(4) ? distorted[random.below(static_cast<unsigned int>(distorted.size()))] : p;
        else if (random.isOneIn(8))
            (random.isOneIn(2) ? p.x : p.y) = poison(random);
    }
    return distorted;
}

} // namespace test
