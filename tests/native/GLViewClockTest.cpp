#include "GLViewFixture.h"

#include <gui/gl/port/FrameObserver.h>

#include <string>

namespace
{

using gui::gl::GLView;
using test::RecordingView;
using GLViewClockTest = test::GLViewFixture;

TEST_F(GLViewClockTest, RunsOnlyInAWindowAndOnce)
{
    RecordingView view(window);
    view.startAnimation(); // before there is anything to start
    GLView* const pNative = create(view);
    EXPECT_TRUE(view.isAnimated());
    EXPECT_FALSE(pNative->hasFrameClock());

    pNative->enteredWindow();
    EXPECT_EQ(journal.take().front(), "clock 30 60");
    view.startAnimation();
    EXPECT_TRUE(journal.said({}));
    view.stopAnimation();
    view.stopAnimation();
    EXPECT_FALSE(view.isAnimated());
    EXPECT_TRUE(journal.said({"clock stops"}));
    view.startAnimation();
    EXPECT_TRUE(journal.said({"clock 30 60"}));

    // The flag alone.
    view.setContRenderMode(false);
    EXPECT_FALSE(view.isAnimated());
    view.setContRenderMode(true);
    EXPECT_TRUE(journal.said({}));

    pNative->leftWindow();
    EXPECT_TRUE(journal.said({"clock stops"}));
    EXPECT_TRUE(view.isAnimated());
    view.stopAnimation();
    view.startAnimation();
    EXPECT_TRUE(journal.said({}));
    pNative->enteredWindow();
    EXPECT_EQ(journal.take().front(), "clock 30 60");
    EXPECT_TRUE(pNative->hasFrameClock());
}

TEST_F(GLViewClockTest, AnAnimatedContextStartsItWithTheWindow)
{
    RecordingView view(window);
    GLView* const pNative = create(view, 0, true);
    pNative->drawNow();
    EXPECT_TRUE(journal.said({"prepareNextFrame", "onDraw 0 0 300 300", "flush"}));
    pNative->enteredWindow();
    EXPECT_EQ(journal.take().front(), "clock 30 60");

    // Straight into another window: never two clocks, and one in the end.
    pNative->enteredWindow();
    int nClocks = 1;
    for (const std::string& line : journal.take())
    {
        nClocks += line == "clock 30 60" ? 1 : line == "clock stops" ? -1 : 0;
        EXPECT_LE(nClocks, 1);
    }
    EXPECT_EQ(nClocks, 1);
}

TEST_F(GLViewClockTest, NothingStartsItAgainAfterCleanUp)
{
    RecordingView view(window);
    GLView* const pNative = show(view, 0, true);
    // Also not from inside.
    view.in["cleanResources"] = [&] { view.startAnimation(); };
    pNative->cleanResources();
    EXPECT_TRUE(journal.said({"clock stops", "cleanResources"}));
    view.startAnimation();
    pNative->enteredWindow();
    EXPECT_TRUE(journal.said({}));
    EXPECT_FALSE(pNative->hasFrameClock());
}

// An animation that goes on while it is held, or stands still when it is not; a key that both get; a view that is
// told of a frame out of turn.
TEST_F(GLViewClockTest, AnObserverSeesFramesAndHoldsAnimations)
{
    struct Observer : gui::gl::FrameObserver
    {
        ~Observer() override { set(nullptr); }
        void frameBegins(const Frame& frame) override { told += frame.size.width == 200 ? "begins " : "? "; }
        void frameEnds(const Frame&) override { told += "ends "; }
        bool keyPressed(gui::gl::View&, const gui::Key& key) override { return key.getChar() == 'a'; }
        bool isHeld(const gui::gl::View&) override { return holds; }

        std::string told;
        bool holds = false;
    } observer;
    gui::gl::FrameObserver::set(&observer);
    RecordingView view(window);
    GLView* const pNative = show(view, 0x100, true);
    view.in["onDraw"] = [&] { observer.told += "onDraw "; };
    pNative->onFrameTick();
    EXPECT_TRUE(journal.said({"prepareNextFrame", "onDraw 0 0 200 100", "flush"}));
    EXPECT_EQ(observer.told, "begins onDraw ends ");
    observer.holds = true;
    pNative->onFrameTick();
    EXPECT_TRUE(journal.said({}));
    pNative->drawNow();
    EXPECT_TRUE(journal.said({"onDraw 0 0 200 100", "flush"}));
    EXPECT_TRUE(view.isAnimated());
    EXPECT_TRUE(pNative->onKey({true, 0, 'a', 0}));
    EXPECT_TRUE(journal.said({}));
    pNative->onKey({true, 0, 'b', 0});
    EXPECT_TRUE(journal.said({"key 'b'"}));
}

} // namespace
