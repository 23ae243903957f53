#include "support/CaughtAsserts.h"

#include <gui/gl/Camera.h>
#include <gui/gl/ICameraLimiter.h>

#include <glm/ext/matrix_transform.hpp>
#include <glm/geometric.hpp>
#include <glm/gtx/string_cast.hpp>
#include <glm/trigonometric.hpp>

#include <cmath>
#include <limits>
#include <string>
#include <utility>

namespace
{

using glm::vec3;
using gui::Key;
using gui::gl::Camera;

constexpr unsigned int cShift = 1, cCaps = 2, cCtrl = 4, cAlt = 8, cFn = 32;
constexpr vec3 cUp(0, 1, 0);

Key typed(char c, unsigned int modifiers = 0) { return Key(static_cast<unsigned char>(c), modifiers, 1, 0); }
// As the platform sends arrows: pressed with a virtual value, released with their shifted key code alone.
Key arrowDown(Key::Virtual value, unsigned int modifiers = 0)
{
    return Key(123, modifiers, 1, static_cast<unsigned char>(value));
}
Key arrowUp(unsigned int keyCode, unsigned int modifiers = 0) { return Key(keyCode << 8, modifiers, 1, 0); }

testing::AssertionResult isNear(const vec3& actual, const vec3& expected)
{
    if (glm::distance(actual, expected) < 1e-5F)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << glm::to_string(actual) << " instead of " << glm::to_string(expected);
}

bool isFinite(const glm::mat4& matrix)
{
    bool isGood = true;
    for (int i = 0; i < 16; ++i)
        isGood = isGood && std::isfinite(matrix[i / 4][i % 4]);
    return isGood;
}

TEST(CameraTest, VectorsAndMatrixFollowFromTheAngles)
{
    for (const vec3& up : {cUp, vec3(0, 0, 1), vec3(0.3F, 2, -0.4F)})
    {
        for (float yaw = -200; yaw < 200; yaw += 35)
        {
            for (float pitch = -85; pitch < 90; pitch += 17)
            {
                const vec3 position(3, -4, yaw);
                const float y = glm::radians(yaw), p = glm::radians(pitch);
                const vec3 front =
                    glm::normalize(vec3(std::cos(y) * std::cos(p), std::sin(p), std::sin(y) * std::cos(p)));
                const vec3 right = glm::normalize(glm::cross(front, up));
                const Camera camera(position, yaw, pitch, up);
                EXPECT_EQ(camera.getFront(), front);
                EXPECT_EQ(camera.getRight(), right);
                EXPECT_EQ(camera.getUp(), glm::normalize(glm::cross(right, front)));
                EXPECT_EQ(camera.getViewMatrix(), glm::lookAt(position, position + front, camera.getUp()));
                EXPECT_EQ(Camera(3, -4, yaw, up.x, up.y, up.z, yaw, pitch).getViewMatrix(), camera.getViewMatrix());
                EXPECT_TRUE(isNear(Camera(position, position + 5.0F * front, up).getFront(), front));
            }
        }
    }
    EXPECT_TRUE(isNear(Camera().getFront(), {0, 0, -1}));
    EXPECT_TRUE(isNear(Camera({1, 2, 3}, {1, 2, 3}).getFront(), {0, 0, -1}));
    EXPECT_TRUE(isNear(Camera({0, 0, 0}, {0, 3, 0}).getFront(), cUp));
}

// Straight up, what rounding leaves of the cosine turned the picture upside down.
TEST(CameraTest, RightStaysOnItsSideAtTheZenith)
{
    for (const float yaw : {-170.0F, -90.0F, -30.0F})
    {
        for (const float pitch : {-90.0F, 90.0F})
        {
            const Camera nearly({0, 0, 0}, yaw, pitch * 0.9999F);
            const Camera straight({0, 0, 0}, yaw, pitch);
            EXPECT_GT(glm::dot(nearly.getRight(), straight.getRight()), 0.999F) << yaw << " " << pitch;
        }
    }
}

TEST(CameraTest, KeysMoveAndTurn)
{
    using enum Key::Virtual;
    // One after the other: where the camera is then, and (yaw, pitch, 0).
    const struct
    {
        Key key;
        bool isDown, isUsed;
        vec3 position, angles = {-90, 0, 0};
    } events[] = {
        // A step on press and one on release; arrows are released without their virtual value.
        {typed('W'), true, true, {0, 0, -0.25F}},
        {typed('W'), false, true, {0, 0, -0.5F}},
        {typed('s', cFn), true, true, {0, 0, -0.25F}},
        {typed('s', cFn), false, true, {0, 0, 0}},
        {arrowDown(Left), true, true, {-0.25F, 0, 0}},
        {arrowUp(123), false, true, {-0.5F, 0, 0}},
        {arrowDown(Right), true, true, {-0.25F, 0, 0}},
        {arrowUp(124), false, true, {0, 0, 0}},
        {arrowDown(Up), true, true, {0, 0, -0.25F}},
        {arrowUp(126), false, true, {0, 0, -0.5F}},
        {arrowDown(Down), true, true, {0, 0, -0.25F}},
        {arrowUp(125), false, true, {0, 0, 0}},
        // Two that are held cancel each other.
        {typed('d'), true, true, {0.25F, 0, 0}},
        {typed('a'), true, true, {0.25F, 0, 0}},
        {typed('d'), false, true, {0.25F, 0, 0}},
        {typed('a'), false, true, {0, 0, 0}},
        // What is not the camera's.
        {typed('w', cShift), true, false, {0, 0, 0}},
        {typed('w', cCaps | cAlt), true, false, {0, 0, 0}},
        {typed('w', cCtrl), false, false, {0, 0, 0}},
        {arrowDown(Up, cShift), true, false, {0, 0, 0}},
        {arrowDown(Home), true, false, {0, 0, 0}},
        {arrowUp(115), false, false, {0, 0, 0}},
        {Key(0x7B00, 0, 1, 0), true, false, {0, 0, 0}}, // a character, not an arrow's code
        {typed('q'), true, false, {0, 0, 0}},
        // Alt turns.
        {arrowDown(Right, cAlt), true, true, {0, 0, 0}, {-89, 0, 0}},
        {arrowUp(124, cAlt), false, true, {0, 0, 0}, {-88, 0, 0}},
        {typed('a', cAlt), true, true, {0, 0, 0}, {-89, 0, 0}},
        {typed('w', cAlt), true, true, {0, 0, 0}, {-90, 1, 0}},
        {typed('a', cAlt), false, true, {0, 0, 0}, {-91, 2, 0}},
        {typed('w', cAlt), false, true, {0, 0, 0}, {-91, 3, 0}},
        {arrowDown(Down, cAlt | cFn), true, true, {0, 0, 0}, {-91, 2, 0}},
    };
    Camera camera;
    for (const auto& event : events)
    {
        SCOPED_TRACE(&event - events);
        EXPECT_EQ(event.isDown ? camera.onKeyPressed(event.key) : camera.onKeyReleased(event.key), event.isUsed);
        EXPECT_TRUE(isNear(camera.getPosition(), event.position));
        EXPECT_TRUE(isNear({camera.getYaw(), camera.getPitch(), 0}, event.angles));
        EXPECT_EQ(camera.getViewMatrix(),
                  glm::lookAt(camera.getPosition(), camera.getPosition() + camera.getFront(), camera.getUp()));
    }
}

TEST(CameraTest, OtherKeysForTheDirections)
{
    Camera camera;
    const char chars[] = {'i', 'k', 'j', 'k'};
    camera.setDirectionChars(chars);
    EXPECT_EQ(std::string(camera.getDirectionChars(), 4), "ikjk");
    EXPECT_EQ(camera.getMovementPos('k'), 1);
    EXPECT_EQ(camera.getMovementPos('K'), 255);
    EXPECT_EQ(camera.getMovementPos('w'), 255);
    camera.setSpeed(2);
    EXPECT_TRUE(camera.onKeyPressed(typed('J')));
    EXPECT_TRUE(isNear(camera.getPosition(), {-2, 0, 0}));
    test::CaughtAsserts asserts;
    camera.setDirectionChars(nullptr);
    EXPECT_TRUE(asserts.caught("chars != nullptr"));
}

TEST(CameraTest, TurningAndZoomingEndAtTheirLimits)
{
    Camera camera;
    for (int i = 0; i < 200; ++i)
    {
        camera.onKeyPressed(typed('w', cAlt));
        camera.onKeyPressed(typed('d', cAlt));
    }
    EXPECT_EQ(vec3(camera.getYaw(), camera.getPitch(), 0), vec3(0, 90, 0));

    const struct
    {
        td::Point<float> delta;
        bool isFast;
        float yaw, pitch;
    } scrolls[] = {{{10, 0}, false, -89, 0},      {{10, 0}, true, -86, 0},          {{0, -20}, false, -86, -2},
                   {{9999, 0}, false, 0, -2},     {{-1e38F, 1}, true, -180, -1.7F}, {{0, 9999}, false, -180, 90},
                   {{0, -9999}, true, -180, -90}, {{50, 50}, false, -175, -85}};
    Camera scrolled;
    for (const auto& scroll : scrolls)
    {
        scrolled.processScroll(scroll.delta, scroll.isFast);
        EXPECT_NEAR(scrolled.getYaw(), scroll.yaw, 1e-4F);
        EXPECT_NEAR(scrolled.getPitch(), scroll.pitch, 1e-4F);
        EXPECT_EQ(scrolled.getViewMatrix(), Camera({}, scrolled.getYaw(), scrolled.getPitch()).getViewMatrix());
    }
    scrolled.getMouseSensitivity(0.5F);
    scrolled.setYawLimits(-1000, 1000);
    scrolled.setPitchLimits(-10, 10);
    scrolled.processScroll({-10, 1}, false);
    EXPECT_EQ(vec3(scrolled.getYaw(), scrolled.getPitch(), 0), vec3(-180, -10, 0));

    for (const auto& [factor, expected] : {std::pair{1000.0F, 450.0F}, {0.1F, 45.0F}, {1e-9F, 0.5F}, {4.0F, 2.0F}})
    {
        camera.processZoom(factor);
        EXPECT_FLOAT_EQ(camera.getZoomFactor(), expected);
    }
    camera.setZoomFactorLimits(3, 5);
    camera.processZoom(1);
    EXPECT_EQ(camera.getZoomFactor(), 3);
}

TEST(CameraTest, ShiftDragsPan)
{
    const struct
    {
        td::Point<float> point;
        unsigned int modifiers;
        vec3 position;
    } moves[] = {
        {{100, 100}, 0, {0, 0, 0}},
        {{50, 50}, cShift, {0, 0, 0}},
        {{60, 70}, cShift, {-0.1F, 0.2F, 0}},
        {{60, 80}, cShift | cAlt, {-0.1F, 0.5F, 0}},
        {{0, 0}, cAlt, {-0.1F, 0.5F, 0}},
        {{10, 10}, cShift, {-0.1F, 0.5F, 0}}, // a new drag
        {{0, 10}, cShift | cCtrl, {0, 0.5F, 0}},
    };
    Camera camera;
    for (const auto& move : moves)
    {
        const glm::mat4 last = camera.getViewMatrix();
        camera.processMouseMove(move.point, move.modifiers);
        EXPECT_TRUE(isNear(camera.getPosition(), move.position));
        EXPECT_EQ(std::as_const(camera).getViewMatrix(), last);
        EXPECT_TRUE(isNear(vec3(camera.getViewMatrix()[3]), -move.position));
    }
}

// Slides along the ground, and notes what it was asked.
class Ground : public gui::gl::ICameraLimiter
{
public:
    vec3 limit(const vec3& before, const vec3& after) override
    {
        ++nAsked;
        asked = before;
        return isBroken ? vec3(std::numeric_limits<float>::quiet_NaN())
                        : vec3(after.x, std::max(after.y, 1.0F), after.z);
    }

    vec3 asked{0};
    int nAsked = 0;
    bool isBroken = false;
};

TEST(CameraTest, LimiterHasTheLastWordOnEachStep)
{
    Ground ground;
    Camera camera({0, 1.1F, 0}, -90, -45);
    camera.setLimiter(&ground);
    camera.onKeyPressed(typed('w'));
    camera.onKeyPressed(typed('d')); // both are held: one step, one question
    const float step = 0.25F * std::sqrt(0.5F);
    EXPECT_EQ(ground.nAsked, 2);
    EXPECT_TRUE(isNear(ground.asked, {0, 1, -step}));
    EXPECT_TRUE(isNear(camera.getPosition(), {0.25F, 1, -2 * step}));
    camera.processMouseMove({0, 1000}, cShift);
    camera.processMouseMove({0, 0}, cShift);
    EXPECT_EQ(ground.nAsked, 3);
    EXPECT_EQ(camera.getPosition().y, 1);
    camera.updatePosition(true);
    camera.processScroll({1, 1}, false);
    EXPECT_EQ(ground.nAsked, 3);
    const vec3 before = camera.getPosition();
    ground.isBroken = true;
    camera.updatePosition(false);
    EXPECT_EQ(camera.getPosition(), before);
    camera.place({0, -5, 0}, 10, 20);
    EXPECT_EQ(camera.getPosition(), vec3(0, -5, 0));
    EXPECT_EQ(camera.getViewMatrix(), Camera({0, -5, 0}, 10, 20).getViewMatrix());
}

TEST(CameraTest, FixedCamerasOnlyZoom)
{
    Camera camera;
    camera.onKeyPressed(typed('w'));
    const glm::mat4 before = camera.getViewMatrix();
    camera.setFixed();
    EXPECT_TRUE(camera.isFixed());
    EXPECT_FALSE(camera.onKeyPressed(typed('w')));
    EXPECT_FALSE(camera.onKeyReleased(typed('w')));
    camera.updatePosition(false);
    camera.processScroll({10, 10}, true);
    camera.processMouseMove({0, 0}, cShift);
    camera.processMouseMove({9, 9}, cShift);
    EXPECT_EQ(camera.getViewMatrix(), before);
    camera.processZoom(2);
    EXPECT_EQ(camera.getZoomFactor(), 2);
}

TEST(CameraTest, NothingMakesTheMatrixInfinite)
{
    constexpr float cInfinity = std::numeric_limits<float>::infinity();
    constexpr float cValues[] = {0,     std::numeric_limits<float>::quiet_NaN(), cInfinity, -cInfinity, 3e38F, -3e38F,
                                 1e-40F};
    for (const float a : cValues)
    {
        for (const float b : cValues)
        {
            EXPECT_TRUE(isFinite(Camera({a, b, 0}, a, b, {b, a, 0}).getViewMatrix())) << a << " " << b;
            EXPECT_TRUE(isFinite(Camera({a, 1, 0}, {b, 0, a}, {0, b, 0}).getViewMatrix())) << a << " " << b;
            Camera camera({0, 0, 1e9F}); // where a unit is less than the last digit
            camera.setYawLimits(-cInfinity, cInfinity);
            camera.setSpeed(a);
            camera.onKeyPressed(typed('w'));
            camera.processScroll({a, b}, true);
            camera.processMouseMove({b, a}, cShift);
            camera.processMouseMove({a, b}, cShift);
            camera.processZoom(a);
            camera.processZoom(b);
            camera.place({a, b, 0}, b, a);
            EXPECT_TRUE(isFinite(camera.getViewMatrix())) << a << " " << b;
            EXPECT_TRUE(std::isfinite(camera.getZoomFactor())) << a << " " << b;
            // It can still be turned and flown.
            camera.place({0, 0, 0}, 0, 0);
            camera.setSpeed(1);
            camera.updatePosition(false);
            EXPECT_TRUE(isNear(camera.getPosition(), {1, 0, 0}));
        }
    }
}

} // namespace
