#include "GLViewFixture.h"

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

} // namespace
