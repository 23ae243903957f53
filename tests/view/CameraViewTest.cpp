#include "support/CaughtAsserts.h"

#include <gui/gl/Camera.h>
#include <gui/gl/CameraView.h>

#include <glm/ext/matrix_clip_space.hpp>
#include <glm/gtx/string_cast.hpp>
#include <glm/trigonometric.hpp>

#include <cmath>
#include <limits>

namespace
{

using gui::InputDevice;
using gui::Key;
using gui::gl::Camera;

struct TestView : gui::gl::CameraView
{
    using CameraView::_perspective, CameraView::onCursorExited, CameraView::onCursorMoved, CameraView::onKeyPressed,
        CameraView::onKeyReleased, CameraView::onResize, CameraView::onScroll, CameraView::onZoom;

    void scaleFieldOfView(float scale) override
    {
        ++nScaled;
        CameraView::scaleFieldOfView(scale);
    }

    int nScaled = 0;
};

glm::mat4 perspective(float degrees, float width, float height, float nearest = 0.01F, float farthest = 100)
{
    return glm::perspective(glm::radians(degrees), width / height, nearest, farthest);
}

InputDevice at(double x, double y, unsigned int modifiers, double scale = 1)
{
    InputDevice device({x, y}, {x, y}, {0, 0}, modifiers, InputDevice::Type::Mouse, InputDevice::Button::Wheel);
    gui::InputDeviceHelper(&device).setScale(scale);
    return device;
}

testing::AssertionResult isNear(const glm::mat4& actual, const glm::mat4& expected)
{
    for (int i = 0; i < 16; ++i)
        if (!(std::abs(actual[i / 4][i % 4] - expected[i / 4][i % 4]) < 1e-5F))
            return testing::AssertionFailure() << glm::to_string(actual) << " instead of " << glm::to_string(expected);
    return testing::AssertionSuccess();
}

Key letter(char c) { return Key(static_cast<unsigned char>(c), 0, 1, 0); }

TEST(CameraViewTest, ProjectionFollowsSizeAndZoom)
{
    TestView view;
    EXPECT_EQ(view._perspective, glm::mat4(1));
    Camera camera;
    camera.processZoom(2);
    view.setCamera(&camera); // no size yet
    EXPECT_EQ(view._perspective, glm::mat4(1));
    view.onResize({800, 600});
    EXPECT_TRUE(isNear(view._perspective, perspective(22.5F, 800, 600)));
    view.setCamera(nullptr);
    EXPECT_TRUE(isNear(view._perspective, perspective(45, 800, 600)));
    EXPECT_EQ(view.getFieldOfViewScale(), 1);
    for (const td::Size<double>& empty : {td::Size<double>(0, 600), td::Size<double>(600, 0)})
    {
        view.onResize(empty);
        EXPECT_TRUE(isNear(view._perspective, perspective(45, 800, 600)));
    }
    view.onResize({300, 900});
    EXPECT_TRUE(isNear(view._perspective, perspective(45, 300, 900)));
    view.setFieldOfView(60);
    EXPECT_TRUE(isNear(view._perspective, perspective(60, 300, 900)));
    view.setDepthRange(1, 5000);
    EXPECT_TRUE(isNear(view._perspective, perspective(60, 300, 900, 1, 5000)));
    test::CaughtAsserts asserts;
    view.setFieldOfView(180);
    EXPECT_TRUE(asserts.caught("degrees > 0 && degrees < 180"));
    view.setDepthRange(5, 5);
    EXPECT_TRUE(asserts.caught("nearest > 0 && nearest < farthest && std::isfinite(farthest)"));
    for (const float scale : {0.0F, std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()})
        view.scaleFieldOfView(scale);
    view.onResize({std::numeric_limits<double>::infinity(), 1});
    EXPECT_TRUE(isNear(view._perspective, perspective(60, 300, 900, 1, 5000)));
}

TEST(CameraViewTest, ZoomStepsNarrowTheFieldOfView)
{
    TestView view;
    Camera camera;
    view.setCamera(&camera);
    view.onResize({800, 600});
    struct Step
    {
        double scale;
        float fov;
        int nScaled;
    };
    view.nScaled = 0;
    for (const Step& step : {Step{1.0, 45, 0}, {2.0, 22.5F, 1}, {10000, 0.1F, 2}, {3, 0.1F, 2}, {1e-9, 90, 3}})
    {
        EXPECT_TRUE(view.onZoom(at(5, 5, 0, step.scale)));
        EXPECT_TRUE(isNear(view._perspective, perspective(step.fov, 800, 600))) << step.scale;
        EXPECT_EQ(view.nScaled, step.nScaled) << step.scale;
    }
}

TEST(CameraViewTest, InputGoesToTheCameraIfThereIsOne)
{
    constexpr unsigned int cShiftHeld = 1, cAltHeld = 8, cFnHeld = 32;
    TestView view;
    EXPECT_EQ(view.getCameraMatrix(), glm::mat4(1));
    EXPECT_FALSE(view.onKeyPressed(letter('w')));
    EXPECT_FALSE(view.onKeyReleased(letter('w')));
    EXPECT_FALSE(view.onScroll(at(10, 0, 0)));
    EXPECT_FALSE(view.onZoom(at(0, 0, 0, 2)));
    view.onCursorMoved(at(0, 0, cShiftHeld));

    Camera camera;
    view.setCamera(&camera);
    EXPECT_EQ(view.getCamera(), &camera);
    EXPECT_TRUE(view.onKeyPressed(letter('w')));
    EXPECT_TRUE(isNear(view.getCameraMatrix(), Camera({0, 0, -0.25F}).getViewMatrix()));
    EXPECT_TRUE(view.onKeyReleased(letter('w')));
    EXPECT_FALSE(view.onKeyPressed(letter('q')));
    view.onCursorMoved(at(10, 10, cShiftHeld));
    view.onCursorExited(at(0, 0, cShiftHeld)); // does not end the drag
    view.onCursorMoved(at(110, 10, cShiftHeld));
    EXPECT_TRUE(isNear(view.getCameraMatrix(), Camera({-1, 0, -0.5F}).getViewMatrix()));

    struct Turn
    {
        unsigned int modifiers;
        float yaw;
    };
    for (const Turn& turn : {Turn{0, -89}, {cAltHeld, -88}, {cFnHeld, -85}, {cFnHeld | cAltHeld, -82}})
    {
        EXPECT_TRUE(view.onScroll(at(10, 0, turn.modifiers)));
        EXPECT_FLOAT_EQ(camera.getYaw(), turn.yaw);
    }
}

} // namespace
