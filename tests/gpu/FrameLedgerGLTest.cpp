#include "support/OffscreenGL.h"

#include <gui/gl/Context.h>
#include <gui/gl/FrameLedger.h>

#include <epoxy/gl.h>

namespace
{

using gui::gl::FrameLedger;

class FrameLedgerGLTest : public test::OffscreenGL
{
protected:
    static void drawFrame(td::ColorID color)
    {
        FrameLedger::begin();
        gui::gl::Context::clear(gui::gl::Context::Clear::Color, color);
        FrameLedger::end();
        glFinish();
    }

    static bool isOneOf(std::uint64_t first, std::uint64_t last)
    {
        return FrameLedger::getLast().gpuNumber >= first && FrameLedger::getLast().gpuNumber <= last;
    }
};

TEST_F(FrameLedgerGLTest, TimesOfGLArriveWithinAFewFrames)
{
    if (!gui::gl::Context::isAtLeast(33, 0))
        GTEST_SKIP() << "time stamps need OpenGL 3.3";
    FrameLedger::start();
    EXPECT_LT(FrameLedger::getLast().gpuTime, 0);
    for (int i = 0; i < 20; ++i)
        drawFrame(td::ColorID::Red);
    const FrameLedger::Frame first = FrameLedger::getLast();
    EXPECT_EQ(first.number, 20u);
    EXPECT_GE(first.gpuTime, 0);
    EXPECT_LT(first.gpuTime, 10'000);
    EXPECT_GT(first.gpuNumber, 10u);
    EXPECT_LE(first.gpuNumber, 20u);

    // Another context has times of its own, and a frame that changes contexts has none.
    context().makeCurrent();
    FrameLedger::begin();
    {
        gui::gl::OffscreenContext other({16, 16}, gui::gl::Context(gui::gl::DepthBuffer::Size::None,
                                                                   gui::gl::StencilBuffer::Size::None,
                                                                   gui::gl::Context::Profile::Core41));
        ASSERT_TRUE(other.isOk());
        FrameLedger::end();
        drawFrame(td::ColorID::Blue);
        drawFrame(td::ColorID::Blue);
        // The driver says when it has one.
        EXPECT_TRUE(isOneOf(22, 23));
    }
    context().makeCurrent();
    drawFrame(td::ColorID::Green);
    EXPECT_TRUE(isOneOf(first.gpuNumber, 20) || isOneOf(24, 24));
    drawFrame(td::ColorID::Green);
    drawFrame(td::ColorID::Green);
    EXPECT_TRUE(isOneOf(24, 26));
    EXPECT_EQ(test::OffscreenGL::pixel(1, 1), (test::Pixel{0, 128, 0, 255}));
    FrameLedger::stop();
}

} // namespace
