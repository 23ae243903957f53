#include <common/NaturalEarth.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace
{

using examples::NaturalEarth;
using examples::TopoJSON;

// The largest step from a point of the line to the next, in the x of the map.
double longestStep(const NaturalEarth::Outline& outline)
{
    double longest = 0;
    for (std::size_t i = 1; i < outline.nLinePoints; ++i)
        longest = std::max(longest, std::abs(double(outline.points[i].x) - double(outline.points[i - 1].x)));
    return longest;
}

// An island across the map's edge must not be drawn from one side of the map to the other.
TEST(NaturalEarth, AnIslandAcrossTheEdgeStaysInOnePiece)
{
    const TopoJSON::Ring islands[] = {
        {{-179, 0}, {-179, 2}, {179.5, 2}, {179.5, 0}},
        {{179.5, 0}, {-179, 0}, {-179, 2}, {179.5, 2}},
        {{178, 0}, {-178, 0}, {-178, 1}, {178, 1}, {178, 2}, {-179, 2}, {177, 4}},
    };
    for (const TopoJSON::Ring& island : islands)
    {
        const NaturalEarth::Outline outline = NaturalEarth(0).project(island);
        EXPECT_TRUE(outline.isLoop);
        EXPECT_EQ(outline.points.size(), island.size());
        EXPECT_LT(longestStep(outline), 0.1);
        EXPECT_LT(std::abs(double(outline.points.front().x) - double(outline.points.back().x)), 0.1);
        // Most of it lies on the map.
        EXPECT_NEAR(std::abs(outline.points.front().x), NaturalEarth::cHalfWidth, 0.1);
    }
}

// A coast around the pole runs from edge to edge, whichever way it goes, and is closed along the pole's line.
TEST(NaturalEarth, ACoastAroundThePoleRunsFromEdgeToEdge)
{
    TopoJSON::Ring coast = {{-180, -89.999}, {90, -89.999}};
    for (int longitude = -180; longitude < 180; longitude += 10)
        coast.emplace_back(longitude, -70);
    for (const bool isReversed : {false, true})
    {
        if (isReversed)
            std::reverse(coast.begin(), coast.end());
        for (const double middle : {0.0, 11.0, -95.0})
        {
            const NaturalEarth::Outline outline = NaturalEarth(middle).project(coast);
            EXPECT_FALSE(outline.isLoop);
            ASSERT_EQ(outline.nLinePoints, 36U);
            ASSERT_EQ(outline.points.size(), 38U);
            EXPECT_LT(longestStep(outline), 0.2);
            const auto [west, east] = std::minmax_element(outline.points.begin(), outline.points.end(),
                                                          [](const auto& a, const auto& b) { return a.x < b.x; });
            EXPECT_NEAR(east->x - west->x, 2 * NaturalEarth::project(180, -70).x, 0.2);
            EXPECT_NEAR(outline.points.back().y, -NaturalEarth::cHalfHeight, 1e-6);
        }
    }
    EXPECT_TRUE(NaturalEarth(0).project(TopoJSON::Ring{{0, -90}, {90, -90}, {180, -90}}).points.empty());
}

} // namespace
