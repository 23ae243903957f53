// Windows that a window manager has, drawn and closed.

#include "X11Fixture.h"

#include <gui/ZavObject.h>

#include <thread>

namespace test
{

namespace
{

using gui::gl::Context;

class X11WindowTest : public X11Fixture
{
};

TEST_F(X11WindowTest, DrawsOnceAndSleeps)
{
    RecordingView view;
    view.create(Context::Animation::Off, {120, 80});
    gui::Window window("Sleeps", {300, 200});
    ASSERT_NO_FATAL_FAILURE(show(window, view, "Sleeps"));
    EXPECT_EQ(view.sizes, (std::vector<td::Size<double>>{{300, 200}}));
    EXPECT_FALSE(view.isPictureWrong);
    // Many requests between two turns are one draw.
    view.nFrames = 0;
    for (int i = 0; i < 10; ++i)
        view.reRender();
    app.step(1);
    EXPECT_EQ(view.nFrames, 1);
    // Nothing happens any more: a turn is as long as it may be.
    const auto begin = std::chrono::steady_clock::now();
    app.step(0.3);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(300));
    EXPECT_EQ(view.nFrames, 1);
    EXPECT_FALSE(view.isContextWrong);
}

TEST_F(X11WindowTest, OtherThreadWakesTheLoop)
{
    bool isCalled = false;
    std::thread thread([&] { gui::ZavObject::asyncCall(new std::function<void()>([&] { isCalled = true; }), true); });
    const auto begin = std::chrono::steady_clock::now();
    while (!isCalled && std::chrono::steady_clock::now() - begin < std::chrono::seconds(20))
        app.step(60);
    thread.join();
    EXPECT_TRUE(isCalled);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
}

TEST_F(X11WindowTest, FirstFrameOfANewSizeIsWhole)
{
    RecordingView view;
    view.create();
    gui::Window window("Grows", {300, 200});
    ASSERT_NO_FATAL_FAILURE(show(window, view, "Grows"));
    view.sizes.clear();
    xServer().resize(xServer().findWindow("Grows"), 520, 410);
    ASSERT_TRUE(waitInLoop([&] { return !view.sizes.empty(); }));
    EXPECT_TRUE(showsItsFrame("Grows", view));
    EXPECT_EQ(window.getSize(), (td::Size<double>{520, 410}));
    window.setSize({200, 150});
    EXPECT_TRUE(waitInLoop([&] { return view.sizes.back() == td::Size<double>{200, 150}; }));
    EXPECT_TRUE(showsItsFrame("Grows", view));
    EXPECT_EQ(view.sizes, (std::vector<td::Size<double>>{{520, 410}, {200, 150}}));
    EXPECT_FALSE(view.isPictureWrong);
}

TEST_F(X11WindowTest, FullScreenAndBack)
{
    RecordingView view;
    view.create();
    gui::Window window("Full", {300, 200});
    ASSERT_NO_FATAL_FAILURE(show(window, view, "Full"));
    constexpr td::Size<double> cScreen{1280, 1024};
    const auto becomes = [&](const td::Size<double>& size)
    {
        return waitInLoop([&] { return view.sizes.back() == size && window.isFullScreen() == (size == cScreen); }) &&
               showsItsFrame("Full", view);
    };
    window.setFullScreen(true);
    EXPECT_TRUE(becomes(cScreen));
    window.setFullScreen(false);
    EXPECT_TRUE(becomes({300, 200}));
    // The window manager makes it full, the program takes it back; and the other way round, with a size set meanwhile.
    const XServer::Window id = xServer().findWindow("Full");
    xServer().toggle(id, "_NET_WM_STATE_FULLSCREEN");
    EXPECT_TRUE(becomes(cScreen));
    window.setFullScreen(false);
    EXPECT_TRUE(becomes({300, 200}));
    window.setFullScreen(true);
    EXPECT_TRUE(becomes(cScreen));
    xServer().toggle(id, "_NET_WM_STATE_FULLSCREEN");
    EXPECT_TRUE(becomes({300, 200}));
    window.setFullScreen(true);
    EXPECT_TRUE(becomes(cScreen));
    window.setSize({320, 210});
    window.setFullScreen(false);
    EXPECT_TRUE(becomes({320, 210}));

    // A maximised window is that again, and has not forgotten its own size.
    const auto maximize = [&] { xServer().toggle(id, "_NET_WM_STATE_MAXIMIZED_VERT", "_NET_WM_STATE_MAXIMIZED_HORZ"); };
    maximize();
    ASSERT_TRUE(waitInLoop([&] { return view.sizes.back().width == cScreen.width; }));
    const td::Size<double> maximized = view.sizes.back();
    window.setFullScreen(true);
    EXPECT_TRUE(becomes(cScreen));
    window.setFullScreen(false);
    EXPECT_TRUE(becomes(maximized));
    maximize();
    EXPECT_TRUE(becomes({320, 210}));
}

TEST_F(X11WindowTest, MinimisedWindowHasNoFrames)
{
    RecordingView view;
    view.create(Context::Animation::On);
    gui::Window window("Minimised", {300, 200});
    ASSERT_NO_FATAL_FAILURE(show(window, view, "Minimised"));
    const XServer::Window xWindow = xServer().findWindow("Minimised");
    xServer().iconify(xWindow);
    const auto framesInAWhile = [&]
    {
        const int nBefore = view.nFrames;
        waitInLoop([] { return false; }, 0.3);
        return view.nFrames - nBefore;
    };
    EXPECT_TRUE(waitFor([&] { return framesInAWhile() == 0; }));
    EXPECT_EQ(framesInAWhile(), 0);
    const int nFrames = view.nFrames;
    EXPECT_TRUE(view.isAnimated());
    xServer().map(xWindow);
    EXPECT_TRUE(waitInLoop([&] { return view.nFrames >= nFrames + 3; }));
}

TEST_F(X11WindowTest, TwoWindowsTwoContexts)
{
    RecordingView first;
    RecordingView second;
    first.create(Context::Animation::On);
    second.create(Context::Animation::On);
    second.topLeft = 0xC020C0;
    gui::Window firstWindow("First", {300, 200});
    gui::Window secondWindow("Second", {240, 160});
    ASSERT_NO_FATAL_FAILURE(show(firstWindow, first, "First"));
    ASSERT_NO_FATAL_FAILURE(show(secondWindow, second, "Second"));
    // The window manager has found a place beside the first for the second.
    EXPECT_TRUE(showsItsFrame("First", first));
    EXPECT_TRUE(showsItsFrame("Second", second));
    xdo(at("First", 20, 20));
    EXPECT_TRUE(first.hasHeard({"enter 20,20"}));
    xdo(at("Second", 30, 30));
    EXPECT_TRUE(second.hasHeard({"enter 30,30"}));

    // The first goes; the second goes on, and ends the program.
    xServer().askToClose(xServer().findWindow("First"));
    ASSERT_TRUE(waitInLoop([&] { return !firstWindow.isOpen(); }));
    EXPECT_TRUE(first.isCleaned);
    const int nFrames = second.nFrames;
    EXPECT_TRUE(waitInLoop([&] { return second.nFrames >= nFrames + 3; }));
    EXPECT_TRUE(showsItsFrame("Second", second));
    xServer().askToClose(xServer().findWindow("Second"));
    EXPECT_EQ(app.run(), 0);
    EXPECT_TRUE(second.isCleaned);
    EXPECT_FALSE(first.isContextWrong || second.isContextWrong);
    EXPECT_FALSE(first.isPictureWrong || second.isPictureWrong);
}

TEST_F(X11WindowTest, ViewMovesToAnotherWindow)
{
    RecordingView view;
    view.create(Context::Animation::On);
    gui::Window firstWindow("Before", {300, 200});
    gui::Window secondWindow("After", {200, 120});
    ASSERT_NO_FATAL_FAILURE(show(firstWindow, view, "Before"));
    ASSERT_NO_FATAL_FAILURE(show(secondWindow, view, "After"));
    EXPECT_FALSE(firstWindow.isOpen());
    EXPECT_EQ(xServer().findWindow("Before"), 0u);
    EXPECT_EQ(view.sizes.back(), (td::Size<double>{200, 120}));
}

} // namespace

} // namespace test
