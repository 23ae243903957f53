#include "FillChecks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <numbers>
#include <numeric>

namespace
{

using gui::draw::FillRule;
using gui::draw::FillTessellator;
using gui::draw::Path;
using test::Rings;
using Point = FillTessellator::Point;

constexpr double cNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double cInfinity = std::numeric_limits<double>::infinity();

void fillRings(FillTessellator& fill, const Rings& rings, FillRule rule)
{
    for (const auto& ring : rings)
        fill.addRing(ring);
    fill.tessellate(rule);
}

double areaOf(const FillTessellator& fill)
{
    double area = 0;
    for (std::size_t i = 0; i + 2 < fill.getIndices().size(); i += 3)
    {
        const Point a = fill.getVertices()[fill.getIndices()[i]], b = fill.getVertices()[fill.getIndices()[i + 1]],
                    c = fill.getVertices()[fill.getIndices()[i + 2]];
        area += ((b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x)) / 2;
    }
    return area;
}

// GUIGL_FILL_INPUTS=1000000 in the environment tries as many.
TEST(FillTessellatorTest, CoversWhatTheRuleSaysOnce)
{
    const char* const text = std::getenv("GUIGL_FILL_INPUTS");
    const unsigned int n = text != nullptr ? static_cast<unsigned int>(std::atol(text)) : 300;
    for (unsigned int seed = 0; seed < n; ++seed)
    {
        std::mt19937 random(seed);
        // A small grid, where much coincides; the same with crossings rounded to it, where rounded edges meet again;
        // and numbers that take all digits.
        const unsigned int way = seed % 3;
        const int size = way == 2 ? (1 << 29) - 1 : 2 + static_cast<int>(random() % 12);
        const double away = way == 0 ? 1e-5 : way == 1 ? 0.71 : 1.5;
        Rings rings = test::makeRings(random, size);
        for (const FillRule rule : {FillRule::NonZero, FillRule::EvenOdd})
        {
            FillTessellator fill;
            fill.setLeastStep(way == 1 ? 1 : 0);
            fillRings(fill, rings, rule);
            ASSERT_EQ(test::checkMesh(fill), "") << "seed " << seed;
            ASSERT_EQ(test::checkArea(fill, rings, rule, size, away), "") << "seed " << seed;
            if (seed % 8 != 0)
                continue;
            // Neither their order nor where they begin makes a difference.
            const std::vector<Point> vertices = fill.getVertices();
            const std::vector<std::uint32_t> indices = fill.getIndices();
            std::shuffle(rings.begin(), rings.end(), random);
            for (auto& ring : rings)
                if (!ring.empty())
                    std::rotate(ring.begin(), ring.begin() + 1, ring.end());
            fillRings(fill, rings, rule);
            EXPECT_TRUE(fill.getVertices() == vertices && fill.getIndices() == indices) << "seed " << seed;
        }
    }
}

TEST(FillTessellatorTest, KnownAreas)
{
    const std::vector<Point> square{{0, 0}, {10, 0}, {10, 10}, {0, 10}}, hole{{2, 2}, {8, 2}, {8, 8}, {2, 8}};
    const std::vector<Point> back(hole.rbegin(), hole.rend());
    const std::vector<Point> bowTie{{0, 0}, {10, 10}, {10, 0}, {0, 10}};
    std::vector<Point> star;
    for (int i = 0; i < 5; ++i)
        star.emplace_back(std::sin(i * 0.8 * std::numbers::pi), std::cos(i * 0.8 * std::numbers::pi));
    const double wholeStar = 1.12256994, hollowStar = wholeStar - 0.34689318;
    const struct
    {
        Rings rings;
        double nonZero, evenOdd;
        std::size_t nBoundary = 0; // with NonZero, if it isn't 0
    } cases[] = {
        {{}, 0, 0},
        {{{}, {{1, 1}}, {{1, 1}, {2, 2}}, {{1, 1}, {2, 2}, {3, 3}}, {{5, 5}, {5, 5}, {5, 5}}}, 0, 0},
        {{square}, 100, 100, 4},
        {{square, hole}, 100, 64, 4},
        {{square, back}, 64, 64, 8},
        {{square, square}, 100, 0, 4},
        {{hole, back}, 0, 0},
        {{bowTie}, 50, 50, 6},
        {{star}, wholeStar, hollowStar, 10},
        {{{{0, 0}, {4, 0}, {4, 4}}, {{4, 4}, {8, 4}, {8, 8}}}, 16, 16, 6},                 // touching at a corner
        {{{{0, 0}, {4, 0}, {4, 4}, {0, 4}}, {{4, 1}, {8, 1}, {8, 3}, {4, 3}}}, 24, 24, 8}, // sharing a part of a side
        {{{{0, 0}, {10, 0}, {cNaN, 5}, {10, 10}, {5, cInfinity}, {0, 10}, {-cInfinity, cNaN}, {-1e301, 0}}},
         100,
         100,
         4},
    };
    for (const auto& c : cases)
    {
        FillTessellator fill;
        fillRings(fill, c.rings, FillRule::NonZero);
        EXPECT_NEAR(areaOf(fill), c.nonZero, 1e-6);
        EXPECT_TRUE(c.nBoundary == 0 || fill.getBoundary().size() == c.nBoundary);
        fillRings(fill, c.rings, FillRule::EvenOdd);
        EXPECT_NEAR(areaOf(fill), c.evenOdd, 1e-6);
    }
}

// A simple outline of n corners in all with h holes has n + 2 h - 2 triangles, however many holes touch each other.
TEST(FillTessellatorTest, HolesThatTouch)
{
    Rings rings{{{0, 0}, {300, 0}, {300, 300}, {0, 300}}};
    std::size_t nHoles = 0;
    for (int y = 0; y < 100; ++y)
        for (int x = 0; x < 100; ++x, ++nHoles)
            rings.push_back({{3.0 * x + 1.5, 3.0 * y},
                             {3.0 * x + 3, 3.0 * y + 1.5},
                             {3.0 * x + 1.5, 3.0 * y + 3},
                             {3.0 * x, 3.0 * y + 1.5}}); // rhombs, corner on corner and on the outer ring
    FillTessellator fill;
    fillRings(fill, rings, FillRule::EvenOdd);
    EXPECT_EQ(test::checkMesh(fill), "");
    EXPECT_NEAR(areaOf(fill), 90000 - 4.5 * double(nHoles), 1e-6);
}

// One ring upon the other leaves as many edges with the inside on both sides as there are rings.
TEST(FillTessellatorTest, ManyLayers)
{
    Path path;
    for (int i = 0; i < 3000; ++i)
        path.addRect({i * 1.0, i * 0.5, 10000.0 - i, 10000 - i * 0.5});
    FillTessellator fill;
    fill.addPath(path, 1);
    fill.tessellate();
    EXPECT_EQ(test::checkMesh(fill), "");
    EXPECT_EQ(areaOf(fill), 1e8);
    fill.addPath(path, 1);
    fill.tessellate(FillRule::EvenOdd);
    EXPECT_EQ(test::checkMesh(fill), "");
    EXPECT_EQ(fill.getBoundary().size(), 12000u);
}

TEST(FillTessellatorTest, NumbersOfAnySizeKeepToTheGrid)
{
    const Rings rings{{{0, 0}, {5, 1}, {6, 7}, {1, 6}}, {{2, 2}, {2, 4}, {4, 4}, {4, 2}}};
    for (const double scale : {0x1p-1000, 0x1p-60, 1.0, 0x1p400, 0x1p900})
        for (const double shift : {0.0, 0x1p40})
        {
            Rings moved = rings;
            for (auto& ring : moved)
                for (Point& p : ring)
                    p = {scale * (p.x + shift), scale * (p.y - shift)};
            FillTessellator fill;
            fillRings(fill, moved, FillRule::NonZero);
            EXPECT_EQ(test::checkMesh(fill), "");
            EXPECT_EQ(fill.getIndices().size(), 3 * 8u);
            for (const auto& ring : moved)
                for (const Point& p : ring)
                    EXPECT_EQ(std::count(fill.getVertices().begin(), fill.getVertices().end(), p), 1);
        }
    FillTessellator fill;
    fill.setLeastStep(3);
    fillRings(fill, rings, FillRule::NonZero);
    EXPECT_EQ(fill.getStep(), 4);
    for (const Point& p : fill.getVertices())
        EXPECT_TRUE(std::fmod(p.x, 4) == 0 && std::fmod(p.y, 4) == 0);
}

} // namespace
