#include "support/OffscreenGL.h"
#include "support/Pictures.h"

#include <gui/Texture.h>

#include <epoxy/gl.h>

namespace
{

using test::Pixel;

using OffscreenGLTest = test::OffscreenGL;

// Without this the checks of every other driver test could be asleep.
TEST_F(OffscreenGLTest, NoticesWhatTheDriverComplainsOf)
{
    EXPECT_TRUE(takeErrors().empty());
    glEnable(GL_RGBA);
    EXPECT_EQ(takeErrors().size(), 2u); // the message and glGetError
}

TEST_F(OffscreenGLTest, PicturesDifferByWhatTheirPixelsDifferBy)
{
    clear({255, 0, 0});
    glEnable(GL_SCISSOR_TEST);
    glScissor(0, 0, 32, 64);
    clear({0, 0, 255});
    glDisable(GL_SCISSOR_TEST);
    EXPECT_EQ(pixel(31, 63), (Pixel{0, 0, 255}));
    EXPECT_EQ(pixel(32, 0), (Pixel{255, 0, 0}));
    gui::Texture picture;
    ASSERT_TRUE(context().readPixels(picture));
    EXPECT_TRUE(test::comparePictures(picture, "fixture.png"));
    if (test::areReferencesRenewed())
        return;
    picture.getBytes()[0] = 64;
    EXPECT_FALSE(test::comparePictures(picture, "fixture.png", {.max = 63, .mean = 1}));
    EXPECT_FALSE(test::comparePictures(picture, "fixture.png", {.max = 64, .mean = 63 / 12288.0}));
    EXPECT_TRUE(test::comparePictures(picture, "fixture.png", {.max = 64, .mean = 64 / 12288.0}));
}

} // namespace
