#include "TessellationFixture.h"

#include <algorithm>
#include <string>

namespace gui::gl
{

extern const BandLoops cBandLoopsPlain;

} // namespace gui::gl

namespace
{

using test::Family;
using test::Outline;
using test::Random;
using test::Tessellation;

// The library against the plain forms, bit for bit. Which rounding a number goes through decides which corner is an ear.
class TessellationExactTest : public test::Tessellating
{
protected:
    void checkPolygon(Outline outline)
    {
        for (int winding = 0; winding < 2; ++winding, std::reverse(outline.begin(), outline.end()))
        {
            const Tessellation expected = test::reference::triangulate(outline);
            ++nMade[static_cast<std::size_t>(expected.primitive)];
            ASSERT_TRUE(isPolygon(outline, expected));
        }
    }

    /// Calls check with outlines of every family, distorted in every way, as often as there are seeds; one seed in six
    /// makes long ones.
    template <typename Check>
    void forEachOutline(unsigned int nSeeds, Check check)
    {
        Random random(nSeeds);
        for (unsigned int seed = 0; seed < nSeeds; ++seed)
        {
            for (const std::span<const Family> families : {test::simpleFamilies(), test::wildFamilies()})
            {
                for (const Family& family : families)
                {
                    for (unsigned int way = 0; way < test::cDistortions; ++way)
                    {
                        const std::size_t n = 2 + random.below(seed % 6 == 0 ? 300 : 12);
                        SCOPED_TRACE(describe(family, n, way, seed));
                        ASSERT_NO_FATAL_FAILURE(check(distort(family.make(random, n), way, random), random));
                    }
                }
            }
        }
    }

    static std::string describe(const Family& family, std::size_t n, unsigned int way, unsigned int seed)
    {
        return std::string(family.name) + ", " + std::to_string(n) + " corners, distortion " + std::to_string(way) +
               ", seed " + std::to_string(seed);
    }

    unsigned int nMade[9] = {}; // by primitive
};

TEST_F(TessellationExactTest, SimplePolygonsOfAllSizesAreCoveredOnce)
{
    Random random(1);
    for (const Family& family : test::simpleFamilies())
    {
        for (const std::size_t n : {5U, 6U, 7U, 8U, 11U, 16U, 23U, 33U, 47U, 64U, 65U, 90U, 129U, 200U, 300U})
        {
            for (unsigned int seed = 0; seed < 3; ++seed)
            {
                SCOPED_TRACE(describe(family, n, 0, seed));
                const Outline outline = family.make(random, n);
                ASSERT_NO_FATAL_FAILURE(checkPolygon(outline));
                EXPECT_TRUE(coversOnce(test::reference::triangulate(outline), outline));
            }
        }
    }
}

TEST_F(TessellationExactTest, PolygonsOfAllSorts)
{
    forEachOutline(50,
                   [this](const Outline& outline, Random&)
                   {
                       if (outline.size() >= 3)
                           checkPolygon(outline);
                   });
    // None of the three ways is left out.
    EXPECT_GT(nMade[4], 1000U);
    EXPECT_GT(nMade[5], 1000U);
    EXPECT_GT(nMade[8], 1000U);
}

/// Those of which the library takes one.
std::vector<const gui::gl::BandLoops*> bandLoops()
{
    std::vector<const gui::gl::BandLoops*> loops{&gui::gl::cBandLoops, &gui::gl::cBandLoopsPlain};
#ifdef GUIGL_AVX2
    if (__builtin_cpu_supports("avx2"))
        loops.push_back(&gui::gl::cBandLoopsAVX2);
#endif
    return loops;
}

TEST_F(TessellationExactTest, LinesOfAllSorts)
{
    forEachOutline(70,
                   [this](const Outline& outline, Random& random)
                   {
                       constexpr float cWidths[] = {0.05f, 1, 1e-4f, 1e-20f, 1e18f, -0.3f};
                       const Line line{cWidths[random.below(std::size(cWidths))], random.isOneIn(2)};
                       const Tessellation expected = test::reference::triangulateLine(outline, line.width, line.closed);
                       ASSERT_TRUE(isLine(outline, line, expected));
                       for (const gui::gl::BandLoops* pLoops : bandLoops())
                           ASSERT_TRUE(isBand(*pLoops, outline, line, expected));
                   });
}

/// Points taken from stored ones in one of many ways.
Outline recycled(const Outline& stored, Random& random)
{
    const auto n = static_cast<unsigned int>(stored.size());
    Outline points = stored;
    switch (random.below(6))
    {
    case 0:
        break;
    case 1:
        std::rotate(points.begin(), points.begin() + random.below(n), points.end());
        break;
    case 2:
        std::reverse(points.begin() + random.below(n), points.end());
        break;
    case 3:
        for (unsigned int i = 1; i < n; ++i)
            std::swap(points[i], points[random.below(i + 1)]);
        break;
    case 4:
        std::fill(points.begin(), points.end(), points[random.below(n)]);
        break;
    default:
        for (test::Outline::value_type& p : points)
            p = stored[random.below(n)];
    }
    if (random.isOneIn(3))
        for (test::Outline::value_type& p : points)
            p = {p.x == 0 ? -p.x : p.x, p.y == 0 ? -p.y : p.y};
    if (random.isOneIn(8))
        points[random.below(n)].x += random.isOneIn(2) ? 1e-6f : 1;
    return points;
}

TEST_F(TessellationExactTest, RecycledLinesInAnyOrder)
{
    unsigned int nFound = 0, nMissing = 0;
    forEachOutline(30,
                   [&](const Outline& outline, Random& random)
                   {
                       const Outline points = recycled(outline, random);
                       const std::vector<unsigned int> found = test::reference::recycle(outline, points, 0);
                       ++(found.empty() ? nMissing : nFound);
                       ASSERT_TRUE(isRecycled(outline, points, found));
                   });
    EXPECT_GT(nFound, 2000U);
    EXPECT_GT(nMissing, 300U);
}

} // namespace
