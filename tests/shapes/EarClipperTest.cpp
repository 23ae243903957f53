#include "Shapes.h"
#include "TriangReference.h"
#include "support/Thorough.h"

#include "src/shapes/ears/EarClipper.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

namespace gui::gl
{

// The same loops compiled for no machine in particular.
extern const EarLoops cEarLoopsPlain;

} // namespace gui::gl

namespace
{

using gui::gl::EarClipper;
using test::Family;
using test::Outline;
using test::Random;
using Indices = std::vector<unsigned int>;

constexpr float cEpsilon = 1e-10f;

// Ear clipping by the loops for each kind of vectors, in trees of the outline's order and in sorted ones.
class EarClipperTest : public testing::Test
{
protected:
    EarClipperTest()
    {
        for (const unsigned int nVisits : {EarClipper::cVisitsPerCorner, 0U})
        {
            add("plain", gui::gl::cEarLoopsPlain, nVisits);
            add("narrow", gui::gl::cEarLoops, nVisits);
#ifdef GUIGL_AVX2
            if (__builtin_cpu_supports("avx2"))
                add("wide", gui::gl::cEarLoopsAVX2, nVisits);
#endif
        }
    }

    /// All of them make these triangles, also those before there was no more ear.
    testing::AssertionResult clips(const Outline& outline, bool isCut, const Indices& triangles)
    {
        for (auto& [name, clipper] : _clippers)
        {
            const bool isClipped = clip(clipper, outline);
            if (isClipped != isCut)
                return testing::AssertionFailure() << name << (isCut ? " finds no ear" : " finds an ear too many");
            const auto [p, q] = std::mismatch(_indices.begin(), _indices.end(), triangles.begin(), triangles.end());
            if (p != _indices.end() || q != triangles.end())
                return testing::AssertionFailure() << name << " differs at triangle " << (p - _indices.begin()) / 3;
        }
        return testing::AssertionSuccess();
    }

    testing::AssertionResult clipsAsThePlainForm(const Outline& outline)
    {
        Indices triangles;
        const bool isCut = test::reference::clipEars(outline, triangles);
        _nFailed += isCut ? 0 : 1;
        return clips(outline, isCut, triangles);
    }

    testing::AssertionResult clipsAsTheFirst(const Outline& outline)
    {
        const bool isCut = clip(_clippers[0].clipper, outline);
        return clips(outline, isCut, {_indices.begin(), _indices.end()});
    }

    unsigned int _nFailed = 0;

private:
    struct Named
    {
        std::string name;
        EarClipper clipper;
    };

    void add(const char* name, const gui::gl::EarLoops& loops, unsigned int nVisits)
    {
        _clippers.push_back({name + std::string(nVisits > 0 ? "" : ", sorted"), EarClipper(loops, nVisits)});
    }

    bool clip(EarClipper& clipper, const Outline& outline)
    {
        const bool isReversed = !test::reference::isCounterClockwise(outline);
        return clipper.clip(outline.data(), static_cast<unsigned int>(outline.size()), isReversed, cEpsilon, _indices);
    }

    std::vector<Named> _clippers;
    cnt::PushBackVector<unsigned int, 0> _indices;
};

std::vector<Family> allFamilies()
{
    std::vector<Family> families;
    for (const auto& some : {test::simpleFamilies(), test::wildFamilies(), test::hostileFamilies()})
        families.insert(families.end(), some.begin(), some.end());
    return families;
}

// As many rounds as the environment says; a round is one polygon of each family distorted in each way. Most are about
// as long as the 64 corners that make all the difference.
TEST_F(EarClipperTest, EarsAreThoseOfThePlainForm)
{
    const char* const pRounds = std::getenv("GUIGL_EAR_ROUNDS");
    const unsigned int nRounds = pRounds != nullptr ? static_cast<unsigned int>(std::atoi(pRounds)) : 12;
    Random random(nRounds);
    for (unsigned int round = 0; round < nRounds; ++round)
    {
        constexpr unsigned int cMost[] = {16, 80, 140, 400};
        for (const Family& family : allFamilies())
        {
            for (unsigned int way = 0; way < test::cDistortions; ++way)
            {
                const unsigned int n = 3 + random.below(cMost[round % std::size(cMost)]);
                const Outline outline = distort(family.make(random, n), way, random);
                if (outline.size() < 3)
                    continue;
                ASSERT_TRUE(clipsAsThePlainForm(outline))
                    << family.name << ", " << outline.size() << " corners, distortion " << way << ", round " << round;
            }
        }
    }
    EXPECT_GT(_nFailed, nRounds);
}

// Trees and sets of more levels than the plain form has the time for.
TEST_F(EarClipperTest, LargePolygonsHaveTheSameEarsInAnyOrderOfTheTree)
{
    Random random(1);
    for (const Family& family : allFamilies())
        for (const unsigned int way : {0U, test::cDistortions - 1})
            EXPECT_TRUE(clipsAsTheFirst(distort(family.make(random, test::cIsThorough ? 5000 : 2000), way, random)))
                << family.name << ", " << way;
}

} // namespace
