// The whole way from a user's hands to the camera: keys, wheel, pointer and fingers over a real window.

#include "X11Fixture.h"

#include <gui/gl/Camera.h>
#include <gui/gl/CameraView.h>

#include <SDL.h>
#include <glm/geometric.hpp>

#include <cmath>
#include <utility>

namespace test
{

namespace
{

using glm::vec3;
using gui::gl::Camera;

class FlownView : public gui::gl::CameraView
{
public:
    int nFrames = 0;

protected:
    void onDraw(const td::RectNormalized<double>&) override { ++nFrames; }
};

class X11CameraTest : public X11Fixture
{
protected:
    void SetUp() override
    {
        using namespace gui::gl;
        view.createContext({DepthBuffer::Size::Bits24, StencilBuffer::Size::None, Context::Profile::Core41});
        view.setCamera(&camera);
        ASSERT_TRUE(window.show(view));
        ASSERT_TRUE(
            waitInLoop([&] { return view.nFrames > 0 && xServer().focus() == xServer().findWindow("Flight"); }));
        xdo(at("Flight", 40, 30));
    }

    /// Waits until the camera is there.
    testing::AssertionResult comesTo(const vec3& position)
    {
        const auto isThere = [&] { return glm::distance(camera.getPosition(), position) < 1e-4F; };
        if (!waitInLoop(isThere, 10))
            return testing::AssertionFailure() << "the camera is at " << camera.getPosition().x << " "
                                               << camera.getPosition().y << " " << camera.getPosition().z;
        return testing::AssertionSuccess();
    }

    Camera camera;
    FlownView view;
    gui::Window window{"Flight", {300, 200}};
};

TEST_F(X11CameraTest, KeysMoveAsLongAsTheyAreDown)
{
    // A step when a key goes down and one when it comes up. With the platform's arrow keys the second one is the point:
    // an arrow that is not seen to come up stays held for good, and moves the camera with every other key.
    const std::pair<std::string, vec3> cases[] = {{"w", {0, 0, -0.5F}},     {"Down", {0, 0, 0}},
                                                  {"Left", {-0.5F, 0, 0}},  {"Up", {-0.5F, 0, -0.5F}},
                                                  {"Right", {0, 0, -0.5F}}, {"s", {0, 0, 0}}};
    for (const auto& [key, position] : cases)
    {
        const int nBefore = view.nFrames;
        xdo("keydown " + key + " keyup " + key);
        ASSERT_TRUE(comesTo(position)) << key;
        EXPECT_GT(view.nFrames, nBefore) << key;
        camera.updatePosition(false);
        EXPECT_TRUE(comesTo(position)) << key << " is still held";
    }
    xdo("keydown shift keydown w keyup w keyup shift keydown alt keydown Right keyup Right keydown w keyup w keyup "
        "alt");
    EXPECT_TRUE(waitInLoop([&] { return camera.getYaw() == -88 && camera.getPitch() == 2; }));
    EXPECT_TRUE(comesTo({0, 0, 0}));
}

TEST_F(X11CameraTest, WheelTurnsAndZooms)
{
    xdo("click 4");
    EXPECT_TRUE(waitInLoop([&] { return camera.getPitch() == 1.5F; }));
    xdo("keydown ctrl click 4 keyup ctrl");
    EXPECT_TRUE(waitInLoop([&] { return camera.getZoomFactor() == 1.12F; }));

    // Two fingers, from 100 to 200 points apart.
    const auto finger = [](Uint32 type, SDL_FingerID id, float x)
    {
        SDL_Event event{};
        event.tfinger = {type, 0, 1, id, x, 0.5F, 0, 0, 1, SDL_GetWindowID(SDL_GetKeyboardFocus())};
        SDL_PushEvent(&event);
    };
    finger(SDL_FINGERDOWN, 1, 0.2F);
    finger(SDL_FINGERDOWN, 2, 0.2F + 100 / 300.0F);
    finger(SDL_FINGERMOTION, 2, 0.2F + 200 / 300.0F);
    EXPECT_TRUE(waitInLoop([&] { return std::abs(camera.getZoomFactor() - 1.12F * 1.02F) < 1e-5F; }));
}

TEST_F(X11CameraTest, ShiftDragPans)
{
    // Without a button: the first movement with Shift is where the drag begins.
    xdo("keydown shift " + at("Flight", 100, 100));
    xdo(at("Flight", 150, 60) + " keyup shift");
    EXPECT_TRUE(comesTo({-0.5F, -0.4F, 0}));
    xdo(at("Flight", 10, 10) + " keydown w keyup w");
    EXPECT_TRUE(comesTo({-0.5F, -0.4F, -0.5F}));
}

} // namespace

} // namespace test
