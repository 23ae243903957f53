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

    static int nQueries()
    {
        int n = 0;
        for (GLuint name = 1; name < 100; ++name)
            n += glIsQuery(name);
        return n;
    }

    // Whether the last time is that of a frame, or on drivers that may have times sooner of one up to another.
    static bool isTimeOf(std::uint64_t frame, std::uint64_t latest)
    {
        const std::uint64_t number = FrameLedger::getLast().gpuNumber;
        return number == frame || (number > frame && number <= latest && !isDriver("llvmpipe"));
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
    EXPECT_LE(first.gpuNumber, isDriver("llvmpipe") ? 19u : 20u);

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
        EXPECT_TRUE(isTimeOf(22, 23));
    }
    context().makeCurrent();
    drawFrame(td::ColorID::Green);
    EXPECT_TRUE(isTimeOf(20, 24));
    drawFrame(td::ColorID::Green);
    if (!isDriver("llvmpipe"))
        drawFrame(td::ColorID::Green); // it may have them later, too
    EXPECT_TRUE(isTimeOf(24, 26));
    EXPECT_EQ(test::OffscreenGL::pixel(1, 1), (test::Pixel{0, 128, 0, 255}));
    EXPECT_GT(nQueries(), 2);
    FrameLedger::stop();
    EXPECT_EQ(nQueries(), 0);
}

} // namespace
