#include "Shapes.h"
#include "TessellationFixture.h"
#include "src/shapes/Band.h"

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

// The library against the plain forms, bit for bit. Which rounding a number goes through decides which corner is an
// ear.
class TessellationExactTest : public test::TessellationTest
{
protected:
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
                        SCOPED_TRACE(std::string(family.name) + ", " + std::to_string(n) + " corners, distortion " +
                                     std::to_string(way) + ", seed " + std::to_string(seed));
                        isSimple = way == 0 && families.data() == test::simpleFamilies().data();
                        ASSERT_NO_FATAL_FAILURE(check(distort(family.make(random, n), way, random), random));
                    }
                }
            }
        }
    }

    bool isSimple = false; // the outline that is checked: its edges meet at their corners only
};

TEST_F(TessellationExactTest, PolygonsOfAllSorts)
{
    unsigned int nMade[9] = {}; // by primitive
    forEachOutline(50,
                   [&](Outline outline, Random&)
                   {
                       for (int winding = 0; winding < 2 && outline.size() >= 3; ++winding)
                       {
                           const Tessellation expected = test::reference::triangulate(outline);
                           ++nMade[static_cast<std::size_t>(expected.primitive)];
                           ASSERT_TRUE(isPolygon(outline, expected));
                           // Four corners are taken for a fan from the first, whether it fits or not.
                           if (isSimple && outline.size() > 4)
                           {
                               EXPECT_TRUE(coversOnce(expected, outline));
                           }
                           std::reverse(outline.begin(), outline.end());
                       }
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

class CollectingBand : public gui::gl::Band
{
public:
    explicit CollectingBand(const gui::gl::BandLoops& loops)
        : Band(loops, test::Tessellating::cOldVertices.size())
    {
    }

    Outline vertices = test::Tessellating::cOldVertices;
    std::vector<unsigned int> indices = test::Tessellating::cOldIndices;

private:
    void append(std::span<const td::Point<float>> newVertices, std::span<const unsigned int> newIndices) override
    {
        vertices.insert(vertices.end(), newVertices.begin(), newVertices.end());
        indices.insert(indices.end(), newIndices.begin(), newIndices.end());
    }
};

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
                       {
                           CollectingBand band(*pLoops);
                           band.add(outline, line.width, line.closed);
                           ASSERT_TRUE(isAppended(band.vertices, band.indices, expected));
                       }
                   });
}

} // namespace
