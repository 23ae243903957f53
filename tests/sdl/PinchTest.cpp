#include "sdl/Pinch.h"

#include <gtest/gtest.h>

namespace test
{

namespace
{

using gui::gl::Pinch;
using Type = gui::SDLEvent::Type;

class PinchTest : public testing::Test
{
protected:
    std::optional<double> finger(Type type, int id, double x, double y)
    {
        gui::SDLEvent event;
        event.type = type;
        event.finger = {1, id, {x, y}};
        return pinch.onFinger(event, {400, 200});
    }

    Pinch pinch;
};

TEST_F(PinchTest, DistanceInPointsDrives)
{
    EXPECT_FALSE(finger(Type::FingerDown, 7, 0.25, 0.5));
    EXPECT_FALSE(finger(Type::FingerMotion, 7, 0.5, 0.5));
    EXPECT_FALSE(finger(Type::FingerDown, 8, 0.75, 0.5));
    ASSERT_TRUE(pinch.isActive());
    // 100 points apart at first; then 200, sideways and upright; then 50.
    EXPECT_EQ(finger(Type::FingerMotion, 8, 1.0, 0.5), 1.0);
    EXPECT_FALSE(finger(Type::FingerMotion, 8, 1.0, 0.5));
    EXPECT_EQ(finger(Type::FingerMotion, 8, 0.625, 0.5), -0.5);
    // A third finger changes nothing.
    EXPECT_FALSE(finger(Type::FingerDown, 9, 0, 0));
    EXPECT_FALSE(finger(Type::FingerMotion, 9, 0.1, 0));
    EXPECT_FALSE(finger(Type::FingerUp, 9, 0.1, 0));
    EXPECT_TRUE(pinch.isActive());
    // One goes and comes again: a new gesture.
    EXPECT_FALSE(finger(Type::FingerUp, 7, 0.5, 0.5));
    EXPECT_FALSE(pinch.isActive());
    EXPECT_FALSE(finger(Type::FingerMotion, 8, 0.75, 0.5));
    EXPECT_FALSE(finger(Type::FingerDown, 7, 0.75, 0));
    EXPECT_EQ(finger(Type::FingerMotion, 7, 0.25, 0.5), 1.0);
}

// Fingers in one place must not make an endless factor.
TEST_F(PinchTest, FingersThatTouchEachOther)
{
    EXPECT_FALSE(finger(Type::FingerDown, 1, 0.5, 0.5));
    EXPECT_FALSE(finger(Type::FingerDown, 2, 0.5, 0.5));
    // 80 points apart, which were 8 at least.
    EXPECT_NEAR(finger(Type::FingerMotion, 2, 0.5, 0.9).value_or(0), 9, 1e-5);
}

} // namespace

} // namespace test
