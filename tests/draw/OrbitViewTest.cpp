#include "../native/GLViewFixture.h"
#include "Solids.h"
#include "support/OffscreenGL.h"

#include <gui/InputDevice.h>
#include <gui/Key.h>
#include <gui/draw/Model.h>
#include <gui/draw/OrbitView.h>
#include <gui/gl/Buffer.h>
#include <gui/gl/Context.h>
#include <gui/gl/Lit3DProgram.h>
#include <gui/gl/OffscreenContext.h>

#include <epoxy/gl.h>

#include <glm/geometric.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace
{

using namespace gui::draw;
using gui::InputDevice;
using Button = InputDevice::Button;
using Point = td::Point<double>;
using Side = OrbitCamera::Side;

constexpr unsigned int cShift = 1;

InputDevice at(const Point& point, Button button = Button::Primary, unsigned int modifiers = 0)
{
    return {point, point, point, modifiers, InputDevice::Type::Mouse, button};
}

InputDevice wheel(const Point& point, double units)
{
    InputDevice device({0, units}, point, point, 0, InputDevice::Type::Mouse, Button::Wheel);
    gui::InputDeviceHelper(&device).setPlace(point);
    return device;
}

double off(const OrbitCamera& camera, const glm::dvec3& point, const Point& place)
{
    const std::optional<glm::dvec3> seen = camera.getEye().project(point);
    return seen ? std::hypot(seen->x - place.x, seen->y - place.y) : 1e9;
}

class OrbitControlTest : public testing::Test
{
protected:
    OrbitControlTest()
    {
        camera.setSize({600, 400});
        camera.fit({{-1, -1, -1}, {1, 1, 1}});
        control.setClock([this] { return seconds; });
        control.setOnChange([this] { ++nChanges; });
        control.setOnMotion([this] { ++nMotions; });
        control.setPick(
            [this](const Point& point)
            {
                ++nPicks;
                return isSomethingThere ? std::optional(camera.getEye().unproject(point, distance)) : std::nullopt;
            });
    }

    /// Moves the pointer at a steady pace, and lets go after a rest.
    bool drag(const Point& from, const Point& to, Button button, unsigned int modifiers, double rest)
    {
        control.onPressed(at(from, button, modifiers));
        for (int i = 1; i <= 10; ++i)
        {
            seconds += 0.01;
            control.onDragged(
                at({std::lerp(from.x, to.x, i / 10.0), std::lerp(from.y, to.y, i / 10.0)}, button, modifiers));
        }
        seconds += rest;
        return control.onReleased(at(to, button, modifiers));
    }

    OrbitCamera camera;
    OrbitControl control{camera};
    double seconds = 1000;
    double distance = 7; // of what is picked
    bool isSomethingThere = true;
    int nChanges = 0, nMotions = 0, nPicks = 0;
};

// What is under the pointer, in whichever way it is moved.
TEST_F(OrbitControlTest, GoesAboutWhatIsUnderThePointer)
{
    const Point from(200, 150), to(320, 90);
    for (const double d : {3.0, 7.0})
    {
        distance = d;
        glm::dvec3 there = camera.getEye().unproject(from, distance);
        OrbitCamera::Pose before = camera.getPose();
        nChanges = 0;
        EXPECT_FALSE(drag(from, to, Button::Primary, 0, 1));
        EXPECT_GE(nChanges, 10);
        EXPECT_LT(off(camera, there, from), 1e-6);
        EXPECT_NE(camera.getPose().rotation, before.rotation);

        for (const auto& [button, modifiers] : {std::pair(Button::Middle, 0U), {Button::Primary, cShift}})
        {
            there = camera.getEye().unproject(from, distance);
            drag(from, to, button, modifiers, 1);
            EXPECT_LT(off(camera, there, to), 1e-6) << "it comes along";
        }

        there = camera.getEye().unproject(from, distance);
        const int nBefore = nPicks;
        const double size = camera.getEye().getSizeAt(there);
        for (int i = 0; i < 20; ++i)
            EXPECT_TRUE(control.onScroll(wheel(from, 10)));
        EXPECT_EQ(nPicks, nBefore + 1) << "the same point all the time";
        EXPECT_LT(off(camera, there, from), 1e-6);
        EXPECT_LT(camera.getEye().getSizeAt(there), size / 4);
        control.onScroll(wheel({from.x + 9, from.y}, -200));
        EXPECT_EQ(nPicks, nBefore + 2);
    }
    // Where nothing is: about the target; a second button does not interfere.
    isSomethingThere = false;
    const glm::dvec3 target = camera.getTarget();
    control.onPressed(at(from));
    control.onPressed(at(from, Button::Middle));
    control.onDragged(at(to));
    EXPECT_FALSE(control.onReleased(at(to, Button::Middle)));
    EXPECT_TRUE(control.isDragging());
    EXPECT_FALSE(control.onReleased(at(to)));
    EXPECT_LT(glm::distance(camera.getTarget(), target), 1e-12);
    EXPECT_EQ(nMotions, 0);
}

// What is thrown goes on and comes to rest; what rested before it was let go doesn't; a press stops it.
TEST_F(OrbitControlTest, ThrowsEnd)
{
    const Point from(200, 150), to(320, 90);
    for (const Button button : {Button::Primary, Button::Middle})
    {
        nMotions = 0;
        drag(from, to, button, 0, 0.5);
        EXPECT_FALSE(nMotions > 0 || camera.isMoving());
        drag(from, to, button, 0, 0);
        EXPECT_EQ(nMotions, 1);
        const OrbitCamera::Pose let = camera.getPose();
        int nFrames = 0;
        do
            seconds += 1 / 60.0;
        while (++nFrames < 1000 && control.advance());
        EXPECT_LT(nFrames, 120);
        EXPECT_NE(camera.getPose(), let);
        drag(from, to, button, 0, 0);
        control.onPressed(at(from));
        EXPECT_FALSE(control.advance());
        EXPECT_TRUE(control.onReleased(at(from))) << "a click";
    }
}

// Ends of the axes: each has its side, the one before another hides it, and a second click goes to the other side.
TEST_F(OrbitControlTest, AxesTakeClicks)
{
    const auto arrive = [this]
    {
        while (control.advance())
            seconds += 0.05;
    };
    const Point middle(600 - 58, 58);
    camera.setDirection(20, 20);
    const auto click = [&](const glm::dvec3& axis)
    {
        const glm::dvec3 seen = camera.getPose().rotation * axis;
        const Point end(middle.x + 33 * seen.x, middle.y - 33 * seen.y);
        control.onPressed(at(end));
        EXPECT_FALSE(control.onReleased(at(end)));
        arrive();
    };
    click({0, 1, 0});
    EXPECT_TRUE(camera.isAt(Side::Top));
    click({1, 0, 0});
    EXPECT_TRUE(camera.isAt(Side::Right));
    click({1, 0, 0});
    EXPECT_TRUE(camera.isAt(Side::Left)) << "it was before the other";
    click({0, 0, 1});
    EXPECT_TRUE(camera.isAt(Side::Front));
    const glm::dvec3 target = camera.getTarget();
    drag(middle, {middle.x + 50, middle.y}, Button::Primary, 0, 1);
    EXPECT_FALSE(camera.isAt(Side::Front));
    EXPECT_EQ(camera.getTarget(), target);
    EXPECT_EQ(nPicks, 0);
    control.setGizmo(OrbitControl::Corner::None);
    control.onPressed(at(middle));
    EXPECT_TRUE(control.onReleased(at(middle)));
    // The first of two fingers presses, too.
    control.onPressed(at(middle));
    EXPECT_TRUE(control.onZoom({middle, middle, middle, 0, InputDevice::Type::Gesture, InputDevice::Button::None}));
    EXPECT_FALSE(control.onReleased(at(middle)));

    const auto press = [this](unsigned int character, unsigned int modifiers = 0)
    { return control.onKey(gui::Key(character, modifiers, 1, 0)); };
    nChanges = 0;
    EXPECT_TRUE(press('5') && camera.isMoving());
    EXPECT_EQ(nChanges, 1) << "or nobody draws the flight's first frame";
    arrive();
    EXPECT_TRUE(camera.isAt(Side::Top));
    EXPECT_TRUE(press('p'));
    EXPECT_TRUE(camera.getEye().isOrthographic());
    EXPECT_FALSE(press('5', 16) || press('x'));
    for (const auto& [key, isNearer] : {std::pair(gui::Key('+', 0, 1, 0), true),
                                        {gui::Key('=', 0, 1, 0), true},
                                        {gui::Key(0, 0, 1, int(gui::Key::Virtual::KeypadPlus)), true},
                                        {gui::Key('-', 0, 1, 0), false},
                                        {gui::Key(0, 0, 1, int(gui::Key::Virtual::KeypadMinus)), false}})
    {
        const double before = camera.getDistance();
        EXPECT_TRUE(control.onKey(key));
        EXPECT_EQ(camera.getDistance() < before, isNearer) << key.getCode();
    }
    // A double click beside everything shows the whole.
    camera.setBounds({{-1, -1, -1}, {1, 1, 1}});
    camera.pan({0, 0, 0}, {2000, 0});
    isSomethingThere = false;
    control.onDoubleClick(at({300, 200}));
    EXPECT_TRUE(camera.isMoving());
    arrive();
    EXPECT_LT(off(camera, {0, 0, 0}, {300, 200}), 1e-6);
    const OrbitCamera::Pose pose = camera.getPose();
    constexpr double cNaN = std::numeric_limits<double>::quiet_NaN();
    for (const double bad : {cNaN, std::numeric_limits<double>::infinity()})
    {
        control.onPressed(at({bad, 0}));
        control.onDragged(at({bad, 50}));
        control.onDoubleClick(at({bad, 5}));
        control.onMoved(at({bad, 5}));
        EXPECT_FALSE(control.onScroll(wheel({5, 5}, bad)) || control.onZoom(at({5, bad})));
    }
    EXPECT_EQ(camera.getPose(), pose);
}

class DiscView : public OrbitView
{
public:
    using OrbitView::onDraw, OrbitView::onResize, OrbitView::pick, OrbitView::onPrimaryButtonPressed,
        OrbitView::onPrimaryButtonReleased, OrbitView::onCursorDragged, OrbitView::onKeyPressed;

    void drawScene(const Eye& eye) override
    {
        if (!_program.isOK())
        {
            _program.link();
            _ball.addSphere(1, 128, 64, gui::gl::Texture::Type::CubeMap)->setColor(td::ColorID::White);
        }
        _program.draw(_ball, eye.getMatrix(middle));
    }
    void onClicked(const Ray& ray) override { clicks.push_back(ray); }

    glm::dvec3 middle{6.4e6, 3, -2e6};
    std::vector<Ray> clicks;

private:
    gui::gl::Lit3DProgram _program;
    gui::gl::Buffer _ball{gui::gl::DataType::Vec3, gui::gl::DataType::Vec3};
};

class OrbitViewGLTest : public test::OffscreenGL
{
protected:
    OrbitViewGLTest()
        : OffscreenGL({64, 64})
    {
    }
};

// What is picked is what was drawn there, right to the sphere's own corners, with both projections and far out; with
// OpenGL ES, too, whose depths come by another way.
TEST_F(OrbitViewGLTest, PicksWhatIsDrawn)
{
    for (const bool isES : {false, true})
    {
        using namespace gui::gl;
        SCOPED_TRACE(isES);
        std::unique_ptr<OffscreenContext> pES;
        if (isES)
            pES = std::make_unique<OffscreenContext>(
                td::Size<int>(64, 64),
                Context(DepthBuffer::Size::Bits24, StencilBuffer::Size::None, Context::Profile::ES31));
        DiscView view;
        view.onResize({64, 64});
        ASSERT_TRUE(view.fit({view.middle - 1.0, view.middle + 1.0}, 4));
        for (const auto projection : {OrbitCamera::Projection::Perspective, OrbitCamera::Projection::Orthographic})
        {
            view.camera().setProjection(projection);
            view.onDraw({});
            EXPECT_NE(pixel(32, 32), pixel(1, 1));
            for (const Point& place : {Point(32, 32), Point(20, 25), Point(31.5, 44)})
            {
                const std::optional<glm::dvec3> found = view.pick(view.getEye().getRay(place));
                ASSERT_TRUE(found);
                EXPECT_NEAR(glm::distance(*found, view.middle), 1, 0.002);
                EXPECT_LT(off(view.camera(), *found, place), 1e-3);
            }
            EXPECT_FALSE(view.pick(view.getEye().getRay({2, 2})));
        }
        view.onPrimaryButtonPressed(at({20, 25}));
        view.onPrimaryButtonReleased(at({20, 25}));
        ASSERT_EQ(view.clicks.size(), 1U);
        EXPECT_LT(off(view.camera(), view.clicks[0].at(1), {20, 25}), 1e-5);
    }
}

class GlassCubeView : public OrbitView
{
public:
    using OrbitView::onResize, OrbitView::pick;

    GlassCubeView()
    {
        Mesh cube = test::makeBox({-1, -1, -1}, {1, 1, 1});
        cube.material.color = td::Color(200, 220, 240, 60);
        model.setMesh(cube);
        model.setEdges({.width = 6});
    }
    void drawScene(const Eye& eye) override { model.draw(eye); }

    Model model;
};

// What is seen through is met, with its triangles shown too, and lines on steep faces move nothing.
TEST_F(OrbitViewGLTest, PicksFacesWhereTheyAre)
{
    GlassCubeView view;
    view.onResize({400, 400}); // no line is near
    for (const double azimuth : {0.0, 40.0, 84.0})
    {
        view.model.setWires(azimuth > 0 ? Model::Wires::Over : Model::Wires::None);
        view.camera().setDirection(azimuth, 3);
        ASSERT_TRUE(view.fit({{-1, -1, -1}, {1, 1, 1}}, 4));
        const std::optional<glm::dvec3> found = view.pick(view.getEye().getRay({210, 170}));
        ASSERT_TRUE(found);
        EXPECT_NEAR(std::max({std::abs(found->x), std::abs(found->y), std::abs(found->z)}), 1, 1e-4);
    }
}

class Gizmo : public OrbitView
{
public:
    using OrbitView::onDraw, OrbitView::onResize;

    void drawScene(const Eye&) override {}
};

class GizmoTest : public test::OffscreenGL
{
protected:
    GizmoTest()
        : OffscreenGL({300, 200})
    {
    }
};

// The axes are in their corner, each end where a click finds it, and in no view that they would fill.
TEST_F(GizmoTest, AxesAreWhereTheyTakeClicks)
{
    Gizmo view;
    view.setBackground("#000000");
    view.onResize({300, 200});
    view.camera().setDirection(30, 25);
    view.onDraw({});
    const glm::dmat3 rotation = view.camera().getPose().rotation;
    for (int axis = 0; axis < 3; ++axis)
    {
        const glm::dvec3 seen = rotation[axis];
        int nOfIts = 0;
        for (int y = -4; y <= 4; ++y)
            for (int x = -4; x <= 4; ++x)
            {
                const test::Pixel p =
                    pixel(300 - 58 + int(std::lround(33 * seen.x)) + x, 200 - 58 + int(std::lround(33 * seen.y)) + y);
                const int channels[] = {p.red, p.green, p.blue};
                nOfIts += channels[axis] == std::max({p.red, p.green, p.blue}) && channels[axis] > 100 ? 1 : 0;
            }
        EXPECT_GT(nOfIts, 40) << axis;
    }
    EXPECT_EQ(pixel(40, 40), pixel(2, 2)) << "in one corner alone";
    glViewport(0, 0, 60, 200);
    view.onResize({60, 200});
    view.onDraw({});
    for (int y = 100; y < 200; y += 3)
        EXPECT_EQ(pixel(30, y), pixel(2, 2)) << y;
}

class Nothing : public OrbitView
{
public:
    Nothing() { control().setGizmo(OrbitControl::Corner::None); }
    void drawScene(const Eye&) override { ++nDraws; }
    std::optional<glm::dvec3> pick(const Ray&) override { return std::nullopt; }
    bool onAnimate(double seconds) override
    {
        EXPECT_TRUE(seconds >= 0 && seconds <= 0.1);
        return --nToMove > 0;
    }

    int nDraws = 0, nToMove = 0;
};

using OrbitViewTest = test::GLViewFixture;

// At rest nothing is left that wakes the program: no clock, no frame asked for.
TEST_F(OrbitViewTest, RestsWhenAFlightHasEnded)
{
    Nothing view;
    view.setBackground("#102030");
    gui::gl::GLView* const pNative =
        gui::gl::GLView::createView(&view, nullptr, cAllEvents, context(), window.factory());
    window.size = {200, 100};
    pNative->enteredWindow();
    view.fit({{-1, -1, -1}, {1, 1, 1}});
    view.flyTo(Side::Top, 0.05);
    EXPECT_TRUE(view.isAnimated());
    int nFrames = 0;
    for (; view.isAnimated() && nFrames < 1'000'000; ++nFrames)
        pNative->onFrameTick();
    EXPECT_TRUE(view.camera().isAt(Side::Top));
    EXPECT_FALSE(view.isAnimated());
    EXPECT_EQ(view.nDraws, nFrames);
    const std::vector<std::string> lines = journal.take();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "clock stops"), 1);
    // A flight of the program's own, which begins with the next frame.
    view.camera().flyTo(Side::Front, 0.01);
    EXPECT_FALSE(view.isAnimated());
    pNative->drawNow();
    EXPECT_TRUE(view.isAnimated());
    journal.take(); // the flight may end with the next tick
    std::vector<std::string> last;
    for (; view.isAnimated(); last = journal.take())
        pNative->onFrameTick();
    EXPECT_NE(std::find(last.begin(), last.end(), "clock stops"), last.end());
    EXPECT_EQ(std::find(last.begin(), last.end(), "needs display"), last.end());
    // What moves in the model does so without a flight.
    view.nDraws = 0;
    view.nToMove = 5;
    for (view.startAnimation(); view.isAnimated() && view.nDraws < 100;)
        pNative->onFrameTick();
    EXPECT_EQ(view.nDraws, 5);
}

} // namespace
