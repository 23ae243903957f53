#include "TessellationFixture.h"

#include <algorithm>
#include <string>

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

    unsigned int nMade[9] = {}; // by primitive
};

std::string describe(const Family& family, std::size_t n, unsigned int way, unsigned int seed)
{
    return std::string(family.name) + ", " + std::to_string(n) + " corners, distortion " + std::to_string(way) +
           ", seed " + std::to_string(seed);
}

TEST_F(TessellationExactTest, SimplePolygonsOfAllSizesAreCoveredOnce)
{
    Random random(1);
    for (const Family& family : test::simpleFamilies())
    {
        for (const std::size_t n : {5, 6, 7, 8, 11, 16, 23, 33, 47, 64, 65, 90, 129, 200, 300})
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
    Random random(2);
    for (unsigned int seed = 0; seed < 50; ++seed)
    {
        for (const std::span<const Family> families : {test::simpleFamilies(), test::wildFamilies()})
        {
            for (const Family& family : families)
            {
                for (unsigned int way = 0; way < test::cDistortions; ++way)
                {
                    const std::size_t n = 3 + random.below(seed % 6 == 0 ? 300 : 12);
                    SCOPED_TRACE(describe(family, n, way, seed));
                    ASSERT_NO_FATAL_FAILURE(checkPolygon(distort(family.make(random, n), way, random)));
                }
            }
        }
    }
    // None of the three ways is left out.
    EXPECT_GT(nMade[4], 1000U);
    EXPECT_GT(nMade[5], 1000U);
    EXPECT_GT(nMade[8], 1000U);
}

TEST_F(TessellationExactTest, LinesOfAllSorts)
{
    constexpr float cWidths[] = {0.05f, 1, 1e-4f, 1e-20f, 1e18f, -0.3f};
    Random random(3);
    for (unsigned int seed = 0; seed < 70; ++seed)
    {
        for (const std::span<const Family> families : {test::simpleFamilies(), test::wildFamilies()})
        {
            for (const Family& family : families)
            {
                for (unsigned int way = 0; way < test::cDistortions; ++way)
                {
                    const std::size_t n = 2 + random.below(seed % 10 == 0 ? 300 : 12);
                    SCOPED_TRACE(describe(family, n, way, seed));
                    const Outline outline = distort(family.make(random, n), way, random);
                    const Line line{cWidths[random.below(std::size(cWidths))], random.isOneIn(2)};
                    const Tessellation expected = test::reference::triangulateLine(outline, line.width, line.closed);
                    ASSERT_TRUE(isLine(outline, line, expected));
                }
            }
        }
    }
}

} // namespace
