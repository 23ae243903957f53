#include "support/OffscreenGL.h"

#include <gui/InputDevice.h>
#include <gui/Texture.h>
#include <gui/draw/GlobeSurface.h>
#include <gui/draw/GlobeView.h>
#include <gui/draw/Path.h>
#include <gui/draw/Program3.h>
#include <gui/gl/Buffer.h>

#include <glm/geometric.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace
{

using namespace gui::draw;
using gui::InputDevice;
using Point = td::Point<double>;
using test::Pixel;

InputDevice pointerAt(const Point& point)
{
    return {point, point, point, 0, InputDevice::Type::Mouse, InputDevice::Button::Primary};
}

// A globe that is mirrored, or turned; a line that runs through it, or the long way around.
TEST(Globe, KnowsPlacesPointsAndLines)
{
    const Globe globe{6371};
    EXPECT_LT(glm::distance(globe.getPoint({0, 0}), {0, 0, 6371}), 1e-9);
    EXPECT_LT(glm::distance(globe.getPoint({450, 0}, 1), {6372, 0, 0}), 1e-9);
    EXPECT_LT(glm::distance(globe.getPoint({20, 95}), {0, 6371, 0}), 1e-9);
    const glm::dvec3 above = globe.getPoint({-150, -33}, 400);
    EXPECT_NEAR(globe.getPlace(above).x, -150, 1e-12);
    EXPECT_NEAR(globe.getPlace(above).y, -33, 1e-12);
    EXPECT_NEAR(globe.getHeight(above), 400, 1e-9);

    const glm::dvec3 down = glm::normalize(globe.getPoint({-148, -34}) - above);
    const std::optional<glm::dvec3> met = globe.meet({above, down});
    ASSERT_TRUE(met);
    EXPECT_NEAR(globe.getPlace(*met).x, -148, 1e-9);
    EXPECT_FALSE(globe.meet({above, -down}));
    EXPECT_FALSE(globe.meet({{0, 100, 0}, {0, 1, 0}})) << "from inside";
    EXPECT_FALSE(globe.meet({{6372, 0, 7000}, {0, 0, -1}}));

    constexpr double cInfinity = std::numeric_limits<double>::infinity();
    const std::vector<Point> places = {{178, 10}, {cInfinity, 10}, {-179, 10}, {-179, NAN}, {-179, 1e300}};
    const std::vector<glm::dvec3> line = globe.getLine(places, 2);
    EXPECT_EQ(line.size(), 1U + 3 + 80);
    for (std::size_t i = 0; i + 1 < line.size(); ++i)
        EXPECT_GT(glm::length(line[i] + line[i + 1]) / 2, 6371) << i;
    EXPECT_TRUE(globe.getLine({}).empty());

    // A land about 60 degrees north, and an island.
    const Path land = Path().addRect({170, 55, 190, 65}).addRect({0, 0, 12, 3});
    const std::optional<Globe::Room> room = globe.findRoom(land);
    ASSERT_TRUE(room);
    EXPECT_NEAR(room->place.x, 180, 1);
    EXPECT_NEAR(room->place.y, 60, 5);
    EXPECT_NEAR(room->extent, 111.19 * 10, 60); // 20 degrees of half the length, and 10
    EXPECT_FALSE(globe.findRoom(Path()));

    EXPECT_EQ(Globe::getText({8.54, 47.37}), "47.4\u00b0 N 8.5\u00b0 E");
    EXPECT_EQ(Globe::getText({-0.004, -0.004}, 2), "0.00\u00b0 N 0.00\u00b0 E");
    EXPECT_EQ(Globe::getText({190, -33.5}, 0), "34\u00b0 S 170\u00b0 W");
    EXPECT_EQ(Globe::getText({-180.01, 1e300}), "90.0\u00b0 N 180.0\u00b0 E");
}

class BareGlobe : public GlobeView
{
public:
    using GlobeView::GlobeView, GlobeView::onResize, GlobeView::onDraw, GlobeView::onScroll, GlobeView::onClicked,
        GlobeView::onCursorMoved, GlobeView::onPrimaryButtonPressed, GlobeView::onCursorDragged,
        GlobeView::onPrimaryButtonReleased, GlobeView::onPrimaryButtonDblClick;

    void drawScene(const Eye&) override {}
    void onPlacePointed(const std::optional<Point>& place) override { pointed = place; }

    void wheel(const Point& point, double units)
    {
        InputDevice device({0, units}, point, point, 0, InputDevice::Type::Mouse, InputDevice::Button::Wheel);
        gui::InputDeviceHelper(&device).setPlace(point);
        onScroll(device);
    }

    std::optional<Point> pointed;
};

// A wheel or a flight that goes through the ground; one that ends elsewhere for having gone around it.
TEST(GlobeView, KeepsTheEyeOutside)
{
    BareGlobe view(Globe{100});
    view.onResize({600, 400});
    view.setHeightLimits(5, 700);
    ASSERT_TRUE(view.look({10, 40}, 20, {12, 48}));
    EXPECT_NEAR(view.getPlace().y, 40, 1e-9);
    EXPECT_NEAR(view.getHeight(), 20, 1e-9);
    for (const double units : {50.0, -50.0})
    {
        for (int i = 0; i < 60; ++i)
        {
            view.wheel({220, 210}, units);
            EXPECT_GT(view.getHeight(), 5 - 1e-6);
        }
        EXPECT_NEAR(view.getHeight(), units > 0 ? 5 : 700, 1e-3);
    }

    ASSERT_TRUE(view.look({10, 10}, 6, {10, 12}));
    ASSERT_TRUE(view.look({-160, -20}, 6, {-160, -18}, 1));
    while (view.camera().advance(0.01))
        ASSERT_GT(view.getHeight(), 5 - 1e-6);
    EXPECT_NEAR(view.getPlace().x, -160, 1e-6);
    EXPECT_NEAR(view.getHeight(), 6, 1e-6);
    EXPECT_FALSE(view.look({0, 0}, NAN, {0, 0}));
    EXPECT_FALSE(view.look({0, 0}, 0, {0, 0}));
    EXPECT_NEAR(view.getHeight(), 6, 1e-6);
}

// From afar a drag leaves the globe in its place, and wheel and double click go to what is under the pointer.
TEST(GlobeView, GoesAboutTheMiddleFromAfar)
{
    BareGlobe view;
    view.onResize({600, 400});
    ASSERT_TRUE(view.look({0, 0}, 2, {0, 0}));
    const Point place(360, 150);
    view.onClicked(view.getEye().getRay(place));
    ASSERT_TRUE(view.pointed);
    const glm::dvec3 there = view.getGlobe().getPoint(*view.pointed);
    const auto isSeenThere = [&]
    {
        const std::optional<glm::dvec3> seen = view.getEye().project(there);
        return seen && std::hypot(seen->x - place.x, seen->y - place.y) < 1e-6;
    };
    EXPECT_TRUE(isSeenThere());
    view.wheel(place, 10);
    EXPECT_TRUE(isSeenThere());
    EXPECT_LT(view.getHeight(), 2);

    ASSERT_TRUE(view.look({0, 0}, 2, {0, 0}));
    view.onPrimaryButtonPressed(pointerAt(place));
    view.onCursorDragged(pointerAt({place.x + 80, place.y}));
    view.onPrimaryButtonReleased(pointerAt({place.x + 80, place.y}));
    EXPECT_NEAR(view.getHeight(), 2, 1e-9);
    EXPECT_LT(view.getPlace().x, -10);

    ASSERT_TRUE(view.look({0, 0}, 2, {0, 0}));
    view.onPrimaryButtonDblClick(pointerAt(place));
    while (view.camera().advance(0.1))
    {
    }
    EXPECT_NEAR(view.getPlace().x, view.pointed->x, 1e-6);
    EXPECT_NEAR(view.getPlace().y, view.pointed->y, 1e-6);
    view.onClicked(view.getEye().getRay({300, 200}));
    EXPECT_NEAR(view.getHeight(), 2.0 / 3, 1e-6);
    ASSERT_TRUE(view.look({0, 0}, 2, {0, 0}));
    view.onClicked(view.getEye().getRay({1, 1}));
    EXPECT_FALSE(view.pointed);
}

using GlobeViewGLTest = test::OffscreenGL;

// A sky that is turned, or mirrored, or in a box of another field of view.
TEST_F(GlobeViewGLTest, SkiesStandStill)
{
    BareGlobe view;
    view.onResize({64, 64});
    view.setSky(64, [](const glm::vec3& direction) { return 0.5F + 0.4F * direction; });
    ASSERT_TRUE(view.look({40, 20}, 2, {60, 10}));
    for (const auto projection : {OrbitCamera::Projection::Perspective, OrbitCamera::Projection::Orthographic})
    {
        for (const Point& place : {Point(32.5, 31.5), Point(60.5, 10.5), Point(5.5, 50.5)})
        {
            view.camera().setProjection(OrbitCamera::Projection::Perspective);
            const glm::dvec3 color = 255.0 * (0.5 + 0.4 * view.getEye().getRay(place).direction);
            view.camera().setProjection(projection);
            view.onDraw({});
            const Pixel seen = pixel(static_cast<int>(place.x), 63 - static_cast<int>(place.y));
            EXPECT_LT(glm::distance(color, glm::dvec3(seen.red, seen.green, seen.blue)), 4) << place.x << ' ' << seen;
        }
    }
    view.setSky(64, nullptr);
    view.onDraw({});
    EXPECT_EQ(pixel(32, 32), (Pixel{0, 0, 0, 255}));
    // The globe moves under the pointer.
    view.onCursorMoved(pointerAt({32, 32}));
    ASSERT_TRUE(view.look({-70, 5}, 2, {-70, 5}));
    view.onDraw({});
    EXPECT_NEAR(view.pointed.value_or(Point()).x, -70, 1e-6);
}

// Ground and air of a large globe that are not those of a small one; air where there is none.
TEST_F(GlobeViewGLTest, SurfacesAreTheSameInAnyUnit)
{
    gui::Texture picture;
    gui::TextureHelper helper(&picture);
    const td::BYTE eastIsBlue[] = {200, 80, 40, 40, 80, 200};
    helper.reserve(sizeof(eastIsBlue));
    std::ranges::copy(eastIsBlue, picture.getBytes());
    helper.updateInfo(2, 1, 3);
    std::vector<Pixel> seen[2];
    for (const double radius : {1.0, 6371.0})
    {
        GlobeSurface surface(Globe{radius});
        GlobeSurface moon(Globe{radius}, {.hasAir = false, .hasWater = false});
        surface.draw(Eye());
        ASSERT_TRUE(surface.init(picture) && moon.init(picture));
        BareGlobe view(Globe{radius});
        view.onResize({64, 64});
        ASSERT_TRUE(view.look({0, 0}, 4 * radius, {0, 0}));
        gui::gl::Context::enable(gui::gl::Context::Flag::DepthTest);
        for (GlobeSurface* pSurface : {&surface, &moon})
            for (const std::optional<Point>& sun : {std::optional<Point>(), std::optional<Point>({100, 0})})
            {
                clear();
                pSurface->setSun(sun);
                pSurface->draw(view.getEye());
                pSurface->drawOver(view.getEye());
                for (int x = 0; x < 64; ++x)
                    seen[radius == 1 ? 0 : 1].push_back(pixel(x, 32));
            }
    }
    const auto at = [&](int row, int x) { return seen[0][static_cast<std::size_t>(64 * row + x)]; };
    int rim = 0;
    while (at(2, rim).red == 0)
        ++rim;
    EXPECT_GT(at(0, rim - 1).blue, 20) << "air beside the earth";
    EXPECT_EQ(at(2, rim - 1), (Pixel{0, 0, 0, 0})) << "none beside the moon";
    EXPECT_GT(at(2, 16).red, at(2, 16).blue + 30);
    EXPECT_GT(at(2, 48).blue, at(2, 48).red + 30);
    EXPECT_LT(at(3, 16).red, 20) << "night, where the sun is east";
    for (std::size_t i = 0; i < seen[0].size(); ++i)
        for (const auto channel : {&Pixel::red, &Pixel::green, &Pixel::blue})
            EXPECT_NEAR(seen[0][i].*channel, seen[1][i].*channel, 2) << i;
}

// What one draw leaves behind changes how the next one looks.
TEST_F(GlobeViewGLTest, StatesOfProgramsEndWithThem)
{
    Program3 program;
    ASSERT_TRUE(program.link("#version 330 core\nuniform mat4 mvp; uniform vec3 eye;\n"
                             "layout(location = 0) in vec3 place; out float way;\n"
                             "void main() { gl_Position = mvp * vec4(place, 1.0); way = length(eye); }",
                             "#version 330 core\nuniform vec4 color; in float way; out vec4 result;\n"
                             "void main() { result = abs(way - 4.0) < 0.01 ? color : vec4(1.0); }"));
    gui::gl::Buffer triangle{gui::gl::DataType::Vec3};
    const float corners[] = {-30, -30, 0, 30, -30, 0, 0, 30, 0};
    triangle.appendVertices(corners, 3);
    triangle.createCommand()->createDrawAll(gui::gl::Primitive::Triangles);
    OrbitCamera camera;
    camera.setSize({64, 64});
    const glm::dvec3 origin(1e6, 0, 0); // of the triangle, seen from 4 before it
    ASSERT_TRUE(camera.look(origin + glm::dvec3(0, 0, 4), origin));
    const auto draw = [&](const glm::vec4& color, const Program3::State& state)
    {
        program.set("color", color);
        program.draw(triangle, camera.getEye(), state, origin);
        return pixel(32, 32);
    };
    using Blending = Program3::Blending;
    clear();
    gui::gl::Context::enable(gui::gl::Context::Flag::DepthTest);
    EXPECT_EQ(draw({0, 0, 0.6, 1}, {.isHiding = false}), (Pixel{0, 0, 153, 255}));
    EXPECT_EQ(draw({0.4, 0, 0, 0}, {.blending = Blending::Add, .isHiding = false}), (Pixel{102, 0, 153, 255}));
    EXPECT_EQ(draw({0, 0.2, 0, 1}, {}), (Pixel{0, 51, 0, 255})) << "nothing was in the depth buffer";
    EXPECT_EQ(draw({1, 1, 1, 1}, {}), (Pixel{0, 51, 0, 255})) << "hidden by what is as near";
    EXPECT_EQ(draw({0, 0.6, 0, 0.5}, {.blending = Blending::Over, .isHidden = false}).green, 102);
    ASSERT_TRUE(camera.look(origin - glm::dvec3(0, 0, 4), origin)); // from behind
    clear();
    EXPECT_EQ(draw({1, 0, 0, 1}, {.isOneSided = true}), (Pixel{0, 0, 0, 0}));
    EXPECT_EQ(draw({1, 0, 0, 1}, {}), (Pixel{255, 0, 0, 255}));
}

} // namespace
