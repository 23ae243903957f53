#include "support/OffscreenGL.h"
#include "support/CapturedLog.h"
#include "support/Pictures.h"

#include <gui/Texture.h>
#include <gui/gl/Context.h>

#include <epoxy/egl.h>
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

TEST_F(OffscreenGLTest, SamplesAreThoseOfAFramebuffer)
{
    using namespace gui::gl;
    test::CapturedLog log;
    Context settings(DepthBuffer::Size::Bits24, StencilBuffer::Size::Bits8, Context::Profile::Core41);
    const int most = mostSamples();
    for (const int asked : {1, 2, 4, 8})
    {
        settings.setSamples(asked);
        OffscreenContext sampled({8, 8}, settings);
        ASSERT_TRUE(sampled.isOk());
        // What a driver has between one sample and the most is its choice.
        const int got = sampled.getSamples();
        EXPECT_TRUE(got >= std::min(asked, most) && got <= (asked == 1 ? 1 : most)) << got;
        if (asked != got)
        {
            EXPECT_TRUE(log.said("Warning! Framebuffer asked for " + std::to_string(asked) + " samples, got " +
                                 std::to_string(got)));
        }
        EXPECT_EQ(sampled.getDefaultFramebuffer() == 0, asked == 1);
        for (const td::Size<int>& size : {td::Size<int>(8, 8), td::Size<int>(12, 4)})
        {
            ASSERT_TRUE(sampled.resize(size));
            EXPECT_EQ(sampled.getSamples(), got);
            clear();
            Context::setScissor(0, 0, size.width / 2, size.height);
            Context::enable(Context::Flag::ScissorTest);
            clear({255, 255, 255});
            gui::Texture picture;
            ASSERT_TRUE(sampled.readPixels(picture)); // all of it
            Context::disable(Context::Flag::ScissorTest);
            const td::BYTE* const pRow = picture.getBytes() + 3 * size.width;
            EXPECT_EQ(picture.getWidth(), size.width);
            EXPECT_EQ(pRow[3 * (size.width / 2 - 1)], 255);
            EXPECT_EQ(pRow[3 * (size.width / 2)], 0);
        }
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    }
    context().makeCurrent();
}

} // namespace
