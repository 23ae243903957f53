#include "Solids.h"
#include "SpacePicture.h"
#include "support/CapturedLog.h"

#include <gui/draw/DepthCanvas.h>
#include <gui/draw/Model.h>
#include <gui/draw/OrbitCamera.h>
#include <gui/draw/Polylines3.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <utility>

namespace
{

using gui::draw::Eye;
using gui::draw::Polylines3;
using test::cPictureSize;
using test::Pixel;

class Polylines3Test : public test::SpacePicture
{
protected:
    static double distanceTo(const glm::dvec2& p, const glm::dvec2& a, const glm::dvec2& b)
    {
        const glm::dvec2 along = b - a;
        const double square = glm::dot(along, along);
        return glm::length(p - a - along * (square > 0 ? std::clamp(glm::dot(p - a, along) / square, 0.0, 1.0) : 0.0));
    }
    /// How much of a pixel a line through points covers, all in double. @param p  in points of the view
    static double coverOf(const Eye& eye, const std::vector<glm::dvec3>& points, double width, const glm::dvec2& p)
    {
        double nearest = 1e9;
        for (std::size_t i = 0; i + 1 < points.size(); ++i)
        {
            glm::dvec3 a = points[i], b = points[i + 1];
            const double da = eye.getDistance(a) - eye.getNearest(), db = eye.getDistance(b) - eye.getNearest();
            if (da < 0 && db < 0)
                continue;
            if (da < 0)
                a += (b - a) * (da / (da - db));
            else if (db < 0)
                b += (a - b) * (db / (db - da));
            const glm::dvec3 s = *eye.project(a), t = *eye.project(b);
            nearest = std::min(nearest, distanceTo(p, {s.x, s.y}, {t.x, t.y}));
        }
        return std::clamp(width / 2 - nearest + 0.5, 0.0, 1.0) - std::clamp(-width / 2 - nearest + 0.5, 0.0, 1.0);
    }
};

// Near the origin and far from it, from within and from outside, with ends behind the eye: each pixel is as the
// projection in double has it. The colour is translucent: at a joint, none is coloured twice.
TEST_F(Polylines3Test, PixelsAreThoseOfTheProjection)
{
    int nColored = 0, nBehind = 0;
    for (int i = 0; i < 90; ++i)
    {
        const glm::dvec3 far =
            i % 3 == 0 ? glm::dvec3(0) : glm::dvec3(6378137.3, -4194304.7, 3e6 + 0.1) * double(i % 3);
        const Eye eye = test::eyeAt(far + somewhere(6), far + somewhere(2));
        const std::vector<glm::dvec3> points{far + somewhere(6), far + somewhere(6), far + somewhere(6)};
        const double width = uniform(0.5, i % 2 == 0 ? 3 : 14);
        Polylines3 lines;
        // What is a globe's size away must not take from what is near.
        const std::vector<glm::dvec3> away{{0, 0, 0}, {1, 0, 0}};
        ASSERT_TRUE(lines.add(away) && lines.add(points, {.width = width, .color = "#ffffff80"}));
        lines.setVisible(0, false);
        const Picture picture = drawn([&] { return lines.draw(eye); });
        int nWrong = 0;
        for (int y = 0; y < cPictureSize; ++y)
            for (int x = 0; x < cPictureSize; ++x)
            {
                const double cover = coverOf(eye, points, width, {x + 0.5, cPictureSize - y - 0.5});
                const int seen = picture[static_cast<std::size_t>(4 * (y * cPictureSize + x))];
                nColored += seen > 0 ? 1 : 0;
                nWrong += std::abs(seen - 128 * cover) > 3 ? 1 : 0;
            }
        // Where the near plane cuts a line off, it does so without a round end.
        const auto isBehind = [&](const glm::dvec3& p) { return eye.getDistance(p) < eye.getNearest(); };
        const bool isCut = std::any_of(points.begin(), points.end(), isBehind);
        nBehind += isCut ? 1 : 0;
        EXPECT_LE(nWrong, isCut ? 40 : 0) << i;
    }
    EXPECT_GT(nColored, 30000);
    EXPECT_GT(nBehind, 20);
}

// Of many short pieces, a line is no wider and no darker than of a few.
TEST_F(Polylines3Test, ShortPiecesAreOneLine)
{
    const auto circle = [](int n)
    {
        std::vector<glm::dvec3> points;
        for (int i = 0; i < n; ++i)
            points.emplace_back(50 * std::cos(2 * M_PI * i / n), 50 * std::sin(2 * M_PI * i / n), 0);
        return points;
    };
    Polylines3 coarse, fine;
    for (const double width : {1.0, 5.0})
    {
        coarse.clear();
        fine.clear();
        ASSERT_TRUE(coarse.add(circle(400), {.width = width, .color = "#ffffffa0"}, Polylines3::Ends::Joined));
        ASSERT_TRUE(fine.add(circle(4000), {.width = width, .color = "#ffffffa0"}, Polylines3::Ends::Joined));
        const Picture picture = drawn([&] { return coarse.draw(test::eyeAbove()); });
        EXPECT_LE(nOther(picture, drawn([&] { return fine.draw(test::eyeAbove()); }), 4), 6);
        EXPECT_GT(at(picture, 50, 0).red, 60) << "it is closed";
        // Nor where some of them lie at the same place.
        std::vector<glm::dvec3> twice;
        for (const glm::dvec3& point : circle(400))
            twice.insert(twice.end(), 1 + twice.size() % 4, point);
        coarse.clear();
        ASSERT_TRUE(coarse.add(twice, {.width = width, .color = "#ffffffa0"}, Polylines3::Ends::Joined));
        EXPECT_EQ(drawn([&] { return coarse.draw(test::eyeAbove()); }), picture);
    }
}

TEST_F(Polylines3Test, EndsAndDots)
{
    using gui::draw::Cap;
    struct Case
    {
        Cap cap;
        double ends, dot; // the areas beyond both ends, and of a line of one point
    };
    const double width = 20, disc = M_PI * width * width / 4;
    for (const Case& c : {Case{Cap::Round, disc, disc}, Case{Cap::Butt, 0, 0}, Case{Cap::Square, 400, 400}})
        for (const double angle : {0.0, 0.3, 1.2})
        {
            const glm::dvec3 half = 30.0 * glm::dvec3(std::cos(angle), std::sin(angle), 0);
            const std::vector<glm::dvec3> line{-half, half}, dot{{3, 1, 0}};
            for (const auto& [points, area] : {std::pair(line, 60 * width + c.ends), std::pair(dot, c.dot)})
            {
                Polylines3 lines;
                ASSERT_TRUE(lines.add(points, {.width = width, .color = "#ffffff", .cap = c.cap}));
                double sum = 0;
                const Picture picture = drawn([&] { return lines.draw(test::eyeAbove()); });
                for (std::size_t i = 0; i < picture.size(); i += 4)
                    sum += picture[i] / 255.0;
                EXPECT_NEAR(sum, area, 0.01 * area + 0.5) << int(c.cap) << " " << angle;
            }
        }
}

// Lines on a box and behind it: the same in every kind of depth, and drawn whole with a bias.
TEST_F(Polylines3Test, WhatIsBeforeThemHidesThem)
{
    gui::draw::Model model;
    ASSERT_TRUE(model.setMesh(test::makeBox({-2, -2, -2}, {2, 2, 2})));
    model.setMaterial(0, {.color = "#000020", .shininess = 0});
    Polylines3 lines;
    const std::vector<glm::dvec3> on{{-2, -2, 0}, {2, -2, 0}}, behind{{-4, 3, 1}, {4, 3, 1}};
    ASSERT_TRUE(lines.add(on, {.width = 3, .color = "#ff0000"}) && lines.add(behind, {.width = 3, .color = "#00ff00"}));
    lines.setBias(2);
    gui::draw::OrbitCamera camera(gui::draw::OrbitCamera::Up::Z);
    camera.setSize({double(cPictureSize), double(cPictureSize)});
    camera.setDirection(0, 10);
    camera.fit(model.getBounds());
    gui::draw::DepthCanvas canvas;
    for (const Eye::Depth depth : {Eye::Depth::Usual, Eye::Depth::Reversed, Eye::Depth::Sliced})
    {
        canvas.setDepth(depth);
        {
            gui::draw::DepthCanvas::Frame frame(canvas, canvas.getEye(camera, 1));
            gui::gl::Context::clear(gui::gl::Context::Clear::Color, "#000000");
            while (const Eye* pEye = frame.next())
                EXPECT_TRUE(model.draw(*pEye) && lines.draw(*pEye));
        }
        const Picture picture = read();
        const Eye eye = canvas.getEye(camera, 1);
        for (int i = 1; i < 40; ++i)
        {
            const auto pixelOf = [&](const glm::dvec3& place)
            {
                const glm::dvec3 p = *eye.project(place);
                return at(picture, static_cast<int>(std::floor(p.x)) - cPictureSize / 2,
                          cPictureSize / 2 - 1 - static_cast<int>(std::floor(p.y)));
            };
            EXPECT_GT(pixelOf({-2 + 0.1 * i, -2, 0}).red, 200) << i;
            EXPECT_LT(pixelOf({-1.5 + 0.075 * i, 3, 1}).green, 40) << i;
        }
        EXPECT_GT(nOther(picture, drawn([] { return true; }), 128), 150);
    }
}

TEST_F(Polylines3Test, DashesColorsIdsAndUploads)
{
    Polylines3 lines;
    const std::vector<glm::dvec3> first{{-60, 20, 0}, {0, 20, 0}, {60, 20, 0}}, second{{-60, -20, 5}, {60, -20, 5}};
    ASSERT_EQ(lines.add(first, {.width = 5, .color = "#ffffff", .dash = 12, .gap = 8}), 0U);
    ASSERT_EQ(lines.add(second, {.width = 0.4, .color = "#ffffff"}), 1U);
    const Eye eye = test::eyeAbove();
    Picture picture = drawn([&] { return lines.draw(eye); });
    for (int i = 0; i < 6; ++i)
    {
        EXPECT_EQ(at(picture, -60 + 20 * i + 6, 20), (Pixel{255, 255, 255})) << i;
        EXPECT_EQ(at(picture, -60 + 20 * i + 16, 20), (Pixel{0, 0, 0})) << i;
        EXPECT_GT(at(picture, -60 + 20 * i + 11, 20).red, 200) << i;
        EXPECT_LT(at(picture, -60 + 20 * i + 12, 20).red, 50) << i;
    }
    EXPECT_EQ(nUploaded([&] { lines.draw(test::eyeAt({9, 9, 90}, {0, 0, 0})); }), 0U);
    lines.setLook(0, {.width = 5, .color = "#ff0000"});
    EXPECT_EQ(nUploaded([&] { lines.draw(eye); }), 32U);
    lines.setVisible(1, false);
    EXPECT_EQ(nUploaded([&] { lines.draw(eye); }), 16U);
    lines.setVisible(1, true);

    const std::array<td::Color, 3> colors{td::Color("#000000"), td::Color("#ffffff"), td::Color("#00ff00")};
    EXPECT_TRUE(lines.setColors(0, colors));
    picture = drawn([&] { return lines.draw(eye); });
    EXPECT_NEAR(at(picture, -31, 20).red, 128, 6);
    EXPECT_NEAR(at(picture, 44, 20).red, 64, 6);
    EXPECT_EQ(at(picture, 44, 20).green, 255);
    // What is cut away is not there, on the screen or for ids.
    Eye cut = eye;
    cut.setClipping(gui::draw::Clipping({10, 0, 0}, {-1, 0, 0}));
    picture = drawn([&] { return lines.drawIds(cut, 0x04030201U); });
    EXPECT_EQ(at(picture, 0, 20), (Pixel{1, 2, 3, 4}));
    EXPECT_EQ(at(picture, 0, -20), (Pixel{2, 2, 3, 4}));
    EXPECT_EQ(at(picture, 12, 20), (Pixel{0, 0, 0}));
    picture = drawn([&] { return lines.drawColor(eye, "#12345678"); });
    EXPECT_EQ(at(picture, 50, 20), (Pixel{0x12, 0x34, 0x56, 0x78}));

    picture = drawn([&] { return lines.draw(eye); });
    ASSERT_TRUE(context().replace());
    EXPECT_EQ(drawn([&] { return lines.draw(eye); }), picture);
    EXPECT_TRUE(lines.setPoints(0, {{{-60, 60, 0}, {0, 60, 0}, {60, 60, 0}}}));
    EXPECT_EQ(nUploaded([&] { lines.draw(eye); }), 96U);
    EXPECT_NEAR(lines.getBounds().max.y, 60, 1e-5);
    glDepthFunc(GL_NEVER);
    lines.draw(eye);
    GLint function = 0;
    glGetIntegerv(GL_DEPTH_FUNC, &function);
    EXPECT_TRUE(function == GL_NEVER && !glIsEnabled(GL_DEPTH_TEST) && !glIsEnabled(GL_BLEND));
}

TEST_F(Polylines3Test, BadInputIsRefusedAndChangesNothing)
{
    Polylines3 lines;
    const std::vector<glm::dvec3> good{{-60, 0, 0}, {60, 0, 0}};
    ASSERT_TRUE(lines.add(good, {.width = 4, .color = "#ffffff"}));
    const Picture before = drawn([&] { return lines.draw(test::eyeAbove()); });
    test::CapturedLog log;
    std::vector<glm::dvec3> bad{good[0], {0, std::nan(""), 0}};
    EXPECT_FALSE(lines.add(bad) || lines.setPoints(0, bad) || lines.add({}));
    EXPECT_FALSE(lines.setPoints(0, {{{1, 2, 3}}}) || lines.setColors(0, {{td::Color("#ff0000")}}));
    EXPECT_EQ(log.take(),
              (std::vector<std::string>{"Error! Polylines3::add: point 1 is not finite, or beyond 1e30!",
                                        "Error! Polylines3::setPoints: point 1 is not finite, or beyond 1e30!",
                                        "Error! Polylines3::add: a line without points!",
                                        "Error! Polylines3::setPoints: 1 points for a line of 2!",
                                        "Error! Polylines3::setColors: 1 colours for a line of 2 points!"}));
    EXPECT_FALSE(lines.setLook(1, {}) || lines.setVisible(1, true) || lines.setColors(1, {}) || lines.isVisible(1));
    EXPECT_EQ(lines.getNumberOfPoints(), 2U);
    EXPECT_EQ(drawn([&] { return lines.draw(test::eyeAbove()); }), before);
    // What is no fault: widths and dashes that are none, points at one place, very large numbers.
    const double infinity = std::numeric_limits<double>::infinity();
    bad = {{1e30, -1e30, 0}, {0, 0, 0}, {0, 0, 0}, {0, 0, 100}};
    for (const double number : {std::nan(""), infinity, -1.0, 0.0, 1e300})
        ASSERT_TRUE(lines.add(bad, {.width = number, .dash = number, .gap = 1, .dashOffset = number}));
    lines.setBias(infinity);
    EXPECT_TRUE(lines.draw(test::eyeAbove()) && lines.draw(test::eyeAt({0, 0, 0}, {1, 1, 1})) && lines.draw(Eye()));
    lines.clear();
    EXPECT_TRUE(lines.getBounds().isEmpty() && lines.draw(test::eyeAbove()));
    lines.setBias(0);
    ASSERT_TRUE(lines.add(good, {.width = 4, .color = "#ffffff"}));
    EXPECT_EQ(drawn([&] { return lines.draw(test::eyeAbove()); }), before) << "nothing of those is left";
}

} // namespace
