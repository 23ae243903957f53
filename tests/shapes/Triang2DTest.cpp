#include "Shapes.h"
#include "TessellationFixture.h"
#include "support/CountedAllocations.h"

#include <gui/gl/SimplePolygon.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <string>

namespace
{

using gui::gl::Buffer;
using gui::gl::Primitive;
using gui::gl::Triang2D;
using test::Outline;
using test::Random;
using test::Tessellation;

constexpr float cNaN = std::numeric_limits<float>::quiet_NaN();
constexpr Primitive cNone = static_cast<Primitive>(8);

using Triang2DTest = test::TessellationTest;

// Missing or spilled over, and nobody knows why.
TEST_F(Triang2DTest, WhatIsNotFilledIsSaidOncePerObject)
{
    const std::pair<Outline, const char*> cCases[] = {
        {{{0, 0}, {1, 1}, {4, 0}, {0, 4}},
         "Warning! Triang2D::triangulate the fan of a polygon of four corners leaves it"},
        {{{0, 0}, {2, 0}, {0, 2}, {2, 2}, {0, 4}, {2, 4}},
         "Warning! Triang2D::triangulate found no ear in a polygon of 6 corners, of which 4 were left"}};
    for (const auto& [points, line] : cCases)
    {
        Triang2D once(4);
        Buffer buffer{gui::gl::DataType::Vec2};
        for (const Outline& outline : {points, cCases[0].first, cCases[1].first})
            once.triangulate(&buffer, outline.data(), static_cast<unsigned int>(outline.size()));
        EXPECT_TRUE(log.said(line));
    }
}

TEST_F(Triang2DTest, EarsHaveAnArea)
{
    constexpr float cEpsilon = 1e-10f; // doubled
    const struct
    {
        Outline points;
        bool isCut;
        std::vector<unsigned int> indices;
    } cCases[] = {
        {{{0, 0}, {cEpsilon, 0}, {0, 1}}, true, {2, 0, 1}},
        {{{0, 1}, {cEpsilon, 0}, {0, 0}}, true, {0, 2, 1}},
        {{{0, 0}, {std::nextafter(cEpsilon, 0.0f), 0}, {0, 1}}, false, {}},
        {{{0, 0}, {1, 1}, {2, 2}}, false, {}},
        {{{0, 0}, {1, 0}}, false, {}},
    };
    gui::gl::SimplePolygon polygon(0);
    for (const auto& [points, isCut, indices] : cCases)
    {
        EXPECT_EQ(polygon.triangulate(points.data(), static_cast<unsigned int>(points.size())), isCut);
        EXPECT_TRUE(
            std::equal(indices.begin(), indices.end(), polygon.getIndices().begin(), polygon.getIndices().end()));
    }
}

/// Rounded to three decimals, as a reader of the table would write them.
Outline rounded(Outline outline)
{
    for (td::Point<float>& p : outline)
        p = {std::round(p.x * 1000) / 1000 + 0.0f, std::round(p.y * 1000) / 1000 + 0.0f};
    return outline;
}

// What the plain form makes, beside what one works out by hand.
TEST_F(Triang2DTest, LinesByHand)
{
    const Outline squareBand{{0.5f, 0.5f}, {-0.5f, -0.5f}, {3.5f, 0.5f}, {4.5f, -0.5f},
                             {3.5f, 3.5f}, {4.5f, 4.5f},   {0.5f, 3.5f}, {-0.5f, 4.5f}};
    const struct
    {
        Outline points;
        Line line;
        Outline vertices;
        std::size_t nIndices;
    } cCases[] = {
        {{{0, 0}, {10, 0}, {10, 10}}, {1, false}, {{0, 1}, {0, -1}, {9, 1}, {11, -1}, {9, 10}, {11, 10}}, 12},
        {{{0, 0}, {10, 0}, {0, 2}},
         {1, false},
         {{0, 1},
          {0, -1},
          {-0.099f, 1},
          {10.906f, -1},
          {-0.099f, 1},
          {11.084f, 0.803f},
          {-0.196f, 1.019f},
          {0.196f, 2.981f}},
         18},
        {{{0, 0}, {0, 0}, {4, 0}, {4, 4}, {4, 4}, {4, 4}, {0, 4}, {0, 0}, {0, 0}}, {0.5f, true}, squareBand, 24},
        {{{0, 0}, {4, 0}, {0, 0}},
         {1, true},
         {{-1, -1}, {-1, 1}, {-1, 1}, {-1, -1}, {5, 1}, {5, -1}, {5, -1}, {5, 1}},
         24},
        {{{3, 3}, {3, 3}, {3, 3}}, {1, true}, {}, 0},
        {{{0, 0}, {4, 0}, {4, 4}}, {cNaN, false}, {}, 0},
    };
    int number = 0;
    for (const auto& [points, line, vertices, nIndices] : cCases)
    {
        SCOPED_TRACE(number++);
        const Tessellation made = test::reference::triangulateLine(points, line.width, line.closed);
        EXPECT_EQ(rounded(made.vertices), vertices);
        EXPECT_EQ(made.count, nIndices);
        EXPECT_TRUE(isLine(points, line, made));
    }
}

// What a colleague does with points that are vertices already must not read where they were before the list grew.
TEST_F(Triang2DTest, PointsMayBeVertices)
{
    for (const Outline& points : {Outline{{0, 0}, {4, 0}, {4, 4}, {2, 2}, {0, 4}},
                                  Outline{{0, 0}, {3, 0}, {3, 3}, {2, 3}, {2, 1}, {1, 1}, {1, 3}, {0, 3}}})
    {
        Triang2D::Points vertices;
        Triang2D::Indices indices;
        vertices.reserve(points.size());
        vertices.push_back(points.data(), points.size());
        triang.triangulate(vertices, vertices, indices);
        const Outline expected = test::reference::triangulate(points).vertices;
        EXPECT_TRUE(std::equal(expected.begin(), expected.end(), vertices.begin() + points.size(), vertices.end()));
    }
}

TEST_F(Triang2DTest, APolygonOfTheExpectedSizeAllocatesNothing)
{
    Triang2D roomy(120);
    Random random(1);
    const Outline points = test::simpleFamilies()[2].make(random, 100);
    Triang2D::Points vertices;
    Triang2D::Indices indices;
    vertices.reserve(300);
    indices.reserve(900);
    const unsigned long nBefore = test::countedAllocations();
    for (int i = 0; i < 2; ++i)
        roomy.triangulate(points.data(), static_cast<unsigned int>(points.size()), vertices, indices);
    EXPECT_EQ(test::countedAllocations(), nBefore);
    EXPECT_GT(indices.size(), 0U);
}

TEST_F(Triang2DTest, RecycledLinesFindTheirVertices)
{
    const Outline arrow{{0, 0}, {4, 0}, {4, 4}, {2, 2}, {0, 4}}; // stored from its reflex corner on
    const Outline twins{{1, 1}, {2, 2}, {1, 1}, {0, 0}};
    const Outline twinsWanted{{1, 1}, {1, 1}, {2, 2}, {1, 1}};
    // As many as are found by their numbers, where -0 has to be 0.
    Outline upwards, downwards;
    std::vector<unsigned int> backwards;
    for (unsigned int i = 0, n = 20; i < n; ++i)
    {
        upwards.push_back({0, static_cast<float>(i)});
        downwards.push_back({-0.0f, static_cast<float>(n - 1 - i)});
        backwards.push_back(n - 1 - i);
    }
    Outline off = arrow;
    off[4].y = std::nextafter(off[4].y, 5.0f);
    Outline nan = arrow;
    nan[0].x = cNaN;
    const struct
    {
        Outline stored, points;
        std::vector<unsigned int> found; // counted from the range's start
    } cCases[] = {
        {test::reference::triangulate(arrow).vertices, arrow, {2, 3, 4, 0, 1}},
        {arrow, arrow, {0, 1, 2, 3, 4}},
        {twins, twinsWanted, {0, 2, 1, 0}},
        {{{0, 0}, {-0.0f, 0}}, {{-0.0f, -0.0f}, {0, 0}}, {0, 1}},
        {upwards, downwards, backwards},
        {arrow, off, {}},
        {nan, nan, {}},
    };
    int number = 0;
    for (const auto& [stored, points, found] : cCases)
        EXPECT_TRUE(isRecycled(stored, points, found)) << "case " << number++;
}

TEST_F(Triang2DTest, MisuseIsSaidAndTouchesNothing)
{
    constexpr td::Point<float> points[4]{{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    constexpr const char* cTooFew = "false && \"triangulate: Must be 3 indices at least\"";
    const std::string past = "Error! Triang2D::createRecycledLine wrong input data! Number of vertices in buffer=2, "
                             "lastSearchPos=";
    Buffer flat, solid, closed;
    begin(flat);
    begin(closed);
    ASSERT_TRUE(closed.commit());
    ASSERT_TRUE(solid.init(0, 0, 0, {gui::gl::DataType::Vec3}));
    const auto recycle = [this, &points](Buffer& buffer, unsigned int first, unsigned int n)
    { return triang.createRecycledLine(&buffer, Primitive::LineStrip, points, first, n); };
    const struct
    {
        std::function<gui::gl::Command*()> call;
        std::string logLine;
        std::string condition;
    } cCases[] = {
        {[&] { return triang.triangulate(&flat, points, 2); }, "", cTooFew},
        {[&] { return triang.triangulate(&flat, Triang2D::Points()); }, "", cTooFew},
        {[&] { return triang.triangulate(&solid, points, 2); },
         "Error! Triang2D::triangulate obtained wrong stride size. Expected 2 elemens, obtained 3 elements", "false"},
        {[&] { return triang.triangulate(&closed, points, 4); },
         "ERROR! Buffer::append vertices on committed buffer! Call reset first!", "false"},
        {[&] { return triang.triangulateLine(&flat, points, 1, 1, false); }, "", "false"},
        {[&] { return triang.triangulateLine(&solid, points, 4, 1, false); }, "",
         "pBuffer->getVertexStride() == 2 * sizeof(float)"},
        {[&] { return triang.triangulateLine(&closed, points, 4, 1, false); },
         "ERROR! Buffer::append vertices on committed buffer! Call reset first!", "false"},
        {[&] { return recycle(solid, 0, 4); },
         "Error! Triang2D::createRecycledLine wrong input data! This method can be used only with layouts having 2d "
         "points",
         "false"},
        {[&] { return recycle(flat, 0, 3); }, past + "3", "false"},
        {[&] { return recycle(flat, ~0U, 2); }, past + "1", "false"},
        {[&] { return recycle(closed, 0, 2); }, "ERROR! Buffer::append vertices on committed buffer! Call reset first!",
         "false"},
    };
    for (const auto& [call, logLine, condition] : cCases)
    {
        SCOPED_TRACE(condition + logLine);
        EXPECT_EQ(call(), nullptr);
        EXPECT_TRUE(asserts.caught(condition));
        EXPECT_EQ(log.take(), logLine.empty() ? std::vector<std::string>() : std::vector<std::string>{logLine});
        EXPECT_EQ(flat.getNoOfVertices(), 2U);
        EXPECT_EQ(flat.getNoOfIndices(), 3U);
        for (Buffer* pBuffer : {&flat, &solid, &closed})
            EXPECT_EQ(pBuffer->getCommandList().size(), 0U);
    }
    Triang2D::Points vertices;
    Triang2D::Indices indices;
    EXPECT_EQ(triang.triangulate(points, 2, vertices, indices), std::make_pair(cNone, 0U));
    EXPECT_TRUE(asserts.caught(cTooFew));
    EXPECT_EQ(triang.triangulateLine(points, 1, 1, true, vertices, indices),
              std::make_tuple(Primitive::Triangles, 0U, 0U));
    EXPECT_TRUE(asserts.caught("false"));
    EXPECT_EQ(vertices.size() + indices.size(), 0U);
}

} // namespace
