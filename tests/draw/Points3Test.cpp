#include "SpacePicture.h"
#include "support/CapturedLog.h"

#include <gui/draw/Points3.h>

#include <array>
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

namespace
{

using gui::draw::Eye;
using gui::draw::Points3;
using gui::draw::Unit;
using test::cPictureSize;
using test::Pixel;

class Points3Test : public test::SpacePicture
{
};

// A sphere's outline and its depth are those of rays in double, near the origin and far from it, at the middle of the
// view and at its sides, where perspective makes an ellipse of it.
TEST_F(Points3Test, SpheresAreSpheresToThePixel)
{
    int nInside = 0;
    for (int i = 0; i < 60; ++i)
    {
        const glm::dvec3 far = i % 2 == 0 ? glm::dvec3(0) : glm::dvec3(6378137.3, -4194304.7, 3e6 + 0.1);
        const Eye eye = i % 5 == 4 ? test::eyeAbove() : test::eyeAt(far + somewhere(6), far + somewhere(2));
        const glm::dvec3 center = i % 5 == 4 ? somewhere(70) : far + somewhere(3);
        const double radius = i % 5 == 4 ? uniform(2, 20) : uniform(0.1, 1.5);
        Points3 points;
        const std::vector<glm::dvec3> places{center, i % 5 == 4 ? center : far};
        ASSERT_TRUE(points.set(places, {{td::Color("#ffffff")}}, {{1.0F, 0.0F}}));
        points.setLook({.shape = Points3::Shape::Sphere, .size = 2 * radius, .unit = Unit::Model});
        points.setLight({.ambient = 1});
        const Picture picture = drawn([&] { return points.draw(eye); });
        std::vector<float> depths(std::size_t(cPictureSize) * cPictureSize);
        readDepths(cPictureSize, cPictureSize, depths.data());
        int nWrong = 0;
        for (int y = 0; y < cPictureSize; ++y)
            for (int x = 0; x < cPictureSize; ++x)
            {
                const gui::draw::Ray ray = eye.getRay({x + 0.5, cPictureSize - y - 0.5});
                const double along = glm::dot(center - ray.origin, ray.direction);
                const double aside = glm::length(ray.at(along) - center);
                const double half = std::sqrt(std::max(radius * radius - aside * aside, 0.0));
                const auto pixel = static_cast<std::size_t>(y * cPictureSize + x);
                const double step = eye.getSizeAt(ray.at(std::max(along, 0.0)));
                const double beyond = (radius - aside) / step; // in pixels, inwards
                if (eye.getDistance(center) < eye.getNearest())
                    nWrong += picture[4 * pixel] > 0 ? 1 : 0;
                else if (glm::length(center - eye.getPosition()) < radius + 0.5 || std::abs(beyond) < 1)
                    continue;
                else if (beyond < 0 || along < 0)
                    nWrong += picture[4 * pixel] > 0 ? 1 : 0;
                else
                {
                    const double distance = eye.getDistanceOfDepth(static_cast<double>(depths[pixel]));
                    nWrong += picture[4 * pixel] < 100 || std::abs(distance - eye.getDistance(ray.at(along - half))) >
                                                              2e-3 * radius + 0.02 * step
                                  ? 1
                                  : 0;
                    ++nInside;
                }
            }
        EXPECT_EQ(nWrong, 0) << i;
    }
    EXPECT_GT(nInside, 10000);
}

TEST_F(Points3Test, DiscsHaveTheirSizeInPointsAndInModelUnits)
{
    for (const double size : {0.4, 1.0, 3.0, 7.3, 40.0})
        for (const Unit unit : {Unit::Points, Unit::Model})
        {
            Points3 points;
            const std::vector<glm::dvec3> places{somewhere(20)};
            ASSERT_TRUE(points.set(places, {{td::Color("#ffffff")}}));
            points.setLook({.size = size, .unit = unit});
            // From above, a model unit is a pixel; four times as near, it is four.
            const Eye above = test::eyeAbove();
            const Eye part = above.getPart({30, 30, 130, 130});
            for (const bool isPart : {false, true})
            {
                const Picture picture = drawn([&] { return points.draw(isPart ? part : above); });
                double sum = 0;
                for (std::size_t i = 0; i < picture.size(); i += 4)
                    sum += picture[i] / 255.0;
                // A part of the view fills the picture; its points are as large as the viewport has them.
                const double pixels = isPart && unit == Unit::Model ? size * 1.6 : size;
                const double area = std::numbers::pi * pixels * pixels / 4;
                EXPECT_NEAR(sum, area, 0.07 * area + 0.05) << size;
            }
        }
}

// Blocks of points that are left out though some of theirs are seen.
TEST_F(Points3Test, NothingIsMissingInPartsOfTheView)
{
    std::vector<glm::dvec3> places;
    for (int i = 0; i < 20'000; ++i)
        places.emplace_back(i < 10'000 ? uniform(-70, -30) : uniform(30, 70), uniform(-70, 70), uniform(-9, 9));
    Points3 points;
    ASSERT_TRUE(points.set(places));
    points.setLook({.size = 1});
    EXPECT_TRUE(points.getBounds().min.x < -69 && points.getBounds().max.x > 69 && points.getBounds().max.z > 8);
    const Eye eye = test::eyeAbove();
    const Picture whole = drawn([&] { return points.draw(eye); });
    for (const int left : {10, 60, 110})
    {
        glViewport(left, 60, 40, 40);
        glEnable(GL_SCISSOR_TEST);
        glScissor(left, 60, 40, 40);
        glClear(GL_DEPTH_BUFFER_BIT);
        EXPECT_TRUE(points.draw(eye.getPart({double(left), 60, left + 40.0, 100})));
        glDisable(GL_SCISSOR_TEST);
        glViewport(0, 0, cPictureSize, cPictureSize);
        EXPECT_LE(nOther(whole, read(), 24), 12) << left;
    }
}

TEST_F(Points3Test, IdsUploadsAndBadInput)
{
    std::vector<glm::vec3> places;
    for (int i = 0; i < 100; ++i)
        places.emplace_back(-60 + 12 * (i % 10), -60 + 12 * (i / 10), 0);
    Points3 points;
    ASSERT_TRUE(points.set(places, {}, {}, {1e7, 0, 0}));
    points.setLook({.size = 6});
    const Eye near = test::eyeAbove();
    Eye eye({1e7, 0, 100}, near.getRotation(), near.getProjection(), near.getSize());
    const auto draw = [&] { return points.draw(eye); };
    Picture picture = drawn([&] { return points.drawIds(eye, 0x01000000U); });
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(at(picture, -60 + 12 * (i % 10), -60 + 12 * (i / 10)), (Pixel{i, 0, 0, 1}));
    EXPECT_EQ(nUploaded(draw), 0U);
    EXPECT_TRUE(points.setColor(55, "#00ff00") && points.setSize(7, 2));
    EXPECT_EQ(nUploaded(draw), 32U);
    EXPECT_TRUE(points.setPlace(99, {1e7, 70, 0}));
    EXPECT_EQ(nUploaded(draw), 32U);
    picture = drawn(draw);
    EXPECT_EQ(at(picture, 0, 0), (Pixel{0, 255, 0}));
    EXPECT_EQ(at(picture, 0, 70), (Pixel{28, 32, 40}));
    EXPECT_EQ(at(picture, 28, -60), at(picture, 0, 70)) << "it is larger";
    eye.setClipping(gui::draw::Clipping({1e7 + 2, 0, 0}, {-1, 0, 0}));
    EXPECT_EQ(at(drawn(draw), 12, 0), (Pixel{0, 0, 0}));
    eye.setClipping(gui::draw::Clipping());

    test::CapturedLog log;
    const std::array<td::Color, 2> two{};
    places[41].z = INFINITY;
    EXPECT_FALSE(points.set(places) || points.setPlace(3, {0, 2e30, 0}) || points.setPlace(100, {}));
    EXPECT_FALSE(points.setColor(100, two[0]) || points.setSize(100, 1));
    places[41].z = 0;
    EXPECT_FALSE(points.set(places, two));
    EXPECT_EQ(log.take(), (std::vector<std::string>{"Error! Points3::set: point 41 is not finite, or beyond 1e30!",
                                                    "Error! Points3::setPlace: point 3 is not finite, or beyond 1e30!",
                                                    "Error! Points3::set: 2 colours and 0 sizes for 100 points!"}));
    EXPECT_EQ(drawn(draw), picture);
    ASSERT_TRUE(context().replace());
    EXPECT_EQ(drawn(draw), picture);
    for (const double size : {std::nan(""), INFINITY + 0.0, -1.0, 0.0, 1e300})
        for (const Points3::Shape shape : {Points3::Shape::Disc, Points3::Shape::Sphere})
        {
            points.setSize(3, size);
            points.setLook({.shape = shape, .size = size, .unit = Unit::Model});
            EXPECT_TRUE(points.draw(eye) && points.drawColor(eye, "#ff0000") && points.draw(Eye()));
        }
    points.clear();
    EXPECT_TRUE(points.size() == 0 && points.getBounds().isEmpty() && points.draw(eye));
}

} // namespace
