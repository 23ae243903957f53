#include "sdl/Pinch.h"

#include <gtest/gtest.h>

namespace test
{

namespace
{

using gui::gl::Pinch;

class PinchTest : public testing::Test
{
protected:
    std::optional<double> finger(Uint32 type, SDL_FingerID id, float x, float y)
    {
        SDL_TouchFingerEvent event{};
        event.type = type;
        event.touchId = 1;
        event.fingerId = id;
        event.x = x;
        event.y = y;
        return pinch.onFinger(event, {400, 200});
    }

    Pinch pinch;
};

TEST_F(PinchTest, DistanceInPointsDrives)
{
    EXPECT_FALSE(finger(SDL_FINGERDOWN, 7, 0.25f, 0.5f));
    EXPECT_FALSE(finger(SDL_FINGERMOTION, 7, 0.5f, 0.5f));
    EXPECT_FALSE(finger(SDL_FINGERDOWN, 8, 0.75f, 0.5f));
    ASSERT_TRUE(pinch.isActive());
    // 100 points apart at first; then 200, sideways and upright; then 50.
    EXPECT_EQ(finger(SDL_FINGERMOTION, 8, 1.0f, 0.5f), 1.0);
    EXPECT_FALSE(finger(SDL_FINGERMOTION, 8, 1.0f, 0.5f));
    EXPECT_EQ(finger(SDL_FINGERMOTION, 8, 0.625f, 0.5f), -0.5);
    // A third finger changes nothing.
    EXPECT_FALSE(finger(SDL_FINGERDOWN, 9, 0, 0));
    EXPECT_FALSE(finger(SDL_FINGERMOTION, 9, 0.1f, 0));
    EXPECT_FALSE(finger(SDL_FINGERUP, 9, 0.1f, 0));
    EXPECT_TRUE(pinch.isActive());
    // One goes and comes again: a new gesture.
    EXPECT_FALSE(finger(SDL_FINGERUP, 7, 0.5f, 0.5f));
    EXPECT_FALSE(pinch.isActive());
    EXPECT_FALSE(finger(SDL_FINGERMOTION, 8, 0.75f, 0.5f));
    EXPECT_FALSE(finger(SDL_FINGERDOWN, 7, 0.75f, 0));
    EXPECT_EQ(finger(SDL_FINGERMOTION, 7, 0.25f, 0.5f), 1.0);
}

// Fingers in one place must not make an endless factor.
TEST_F(PinchTest, FingersThatTouchEachOther)
{
    EXPECT_FALSE(finger(SDL_FINGERDOWN, 1, 0.5f, 0.5f));
    EXPECT_FALSE(finger(SDL_FINGERDOWN, 2, 0.5f, 0.5f));
    // 80 points apart, which were 8 at least.
    EXPECT_NEAR(finger(SDL_FINGERMOTION, 2, 0.5f, 0.9f).value_or(0), 9, 1e-5);
}

} // namespace

} // namespace test
