// What a window manager does with windows, and what only X11 has for a user.

#include "DesktopTest.h"
#include "PushedEvents.h"

#include <gui/Texture.h>
#include <gui/ZavObject.h>
#include <gui/port/RunLoop.h>
#include <gui/port/WindowSystem.h>

#include <algorithm>
#include <thread>

namespace test
{

namespace
{

class X11Test : public DesktopTest
{
protected:
    static const XServer& xServer() { return desktop().server(); }
    gui::Window& window() const { return static_cast<OwnWindow&>(*shown).window; }
};

INSTANTIATE_TEST_SUITE_P(X11, DesktopTest, testing::Values(0));
INSTANTIATE_TEST_SUITE_P(X11, X11Test, testing::Values(0));

TEST_P(X11Test, ControlReleaseIsTheSecondaryButtons)
{
    xdo("keydown super click 1 keyup super");
    EXPECT_TRUE(view.hasHeard({"press 40,30 x1+Ctrl", "release2 40,30 x1+Ctrl"}));
}

TEST_P(X11Test, TwoFingersZoom)
{
    pushed::finger(pushed::Finger::Down, 1, 0.25F);
    pushed::finger(pushed::Finger::Down, 2, 0.5F);
    pushed::finger(pushed::Finger::Motion, 2, 0.75F); // twice as far from the first
    EXPECT_TRUE(view.hasHeard({"pinch 100,75 by 1.02"}));
    // The one that stays longer drags nothing from where it was at first.
    const std::uint32_t id = pushed::focused();
    pushed::moveByTouch(id, 60);
    pushed::finger(pushed::Finger::Up, 2, 0.75F);
    pushed::moveByTouch(id, 70);
    pushed::finger(pushed::Finger::Up, 1, 0.25F);
    pushed::moveByTouch(id, 80);
    EXPECT_TRUE(view.hasHeard({"drag 80,40"}));
}

// A user who moves faster than frames are shown: the last place counts, and what happens between is not overtaken.
TEST_P(X11Test, MotionsOfOneFrameAreOne)
{
    const std::uint32_t id = pushed::focused();
    for (int x = 50; x <= 60; ++x)
        pushed::move(id, x);
    for (int x = 61; x <= 70; ++x)
        pushed::move(id, x, 4);
    pushed::move(id, 80);
    pushed::move(id + 1000, 90);
    pushed::move(id, 100);
    pushed::releaseLeft(id, 110);
    pushed::move(id, 120);
    EXPECT_TRUE(
        view.hasHeard({"drag 60,40", "drag2 70,40", "drag 80,40", "drag 100,40", "release 110,40 x1", "drag 120,40"}));

    const auto begin = std::chrono::steady_clock::now();
    for (int x = 0; x < 200; ++x)
    {
        pushed::move(id, x);
        app.step(0.001);
    }
    ASSERT_TRUE(waitInLoop([&] { return !view.lines.empty() && view.lines.back() == "drag 199,40"; }));
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
    EXPECT_LE(double(view.lines.size()), 2 + 60 * time.count());
}

// Or motions and clocks would go at the rate that most displays have.
TEST_P(X11Test, DisplayThatTellsNoRateIsMeasuredBeforeAnythingMoves)
{
    using Clock = gui::RunLoop::Clock;
    waitInLoop([] { return false; }, 0.3); // behind the motion that came with the pointer
    RecordingView atRest;
    atRest.create(gui::gl::Context::Animation::Off);
    gui::Window other("Other", {64, 48});
    ASSERT_TRUE(other.show(atRest));
    auto* const pView = static_cast<gui::NativeView*>(atRest.getHandle());
    gui::RunLoop& loop = gui::WindowSystem::instance().getRunLoop();
    const auto isMeasured = [&]
    {
        const Clock::time_point before = Clock::now();
        loop.startFrameClock(pView, 0, 0);
        const Clock::time_point tick = loop.getNextDue().value_or(before), after = Clock::now();
        loop.stopFrameClock(pView);
        // As far from that other rate as a busy machine's times may be from the beat.
        constexpr std::chrono::duration<double> cBeat(1.0 / XServer::cRate);
        return tick - before > 0.75 * cBeat && tick - after < 1.5 * cBeat;
    };
    EXPECT_TRUE(waitInLoop(isMeasured));
}

// The release is not the last of its event: the pointer left on the way.
TEST_P(X11Test, ADragOutsideMayEndTheView)
{
    view.in["release"] = [this] { window().close(); };
    xdo("mousedown 1");
    xdo(at(180, 70));
    EXPECT_TRUE(view.hasHeard({"press 40,30 x1", "drag 180,70"}));
    xdo(at(220, 70));
    EXPECT_TRUE(view.hasHeard({"drag 220,70"}));
    xdo("mouseup 1");
    EXPECT_TRUE(view.hasHeard({"release 220,70 x1"}));
    EXPECT_EQ(view.nCleanUps, 1);
}

TEST_P(X11Test, HeldKeyRepeatsAndIsReleasedOnce)
{
    xdo("keydown 38");
    ASSERT_TRUE(waitInLoop([&] { return view.lines.size() >= 4; }));
    xdo("keyup 38");
    ASSERT_TRUE(waitInLoop([&] { return view.lines.back() == "up key 'a'"; }));
    for (std::size_t i = 0; i + 1 < view.lines.size(); ++i)
        EXPECT_EQ(view.lines[i], "key 'a'");
}

// What an input method sends, of any length; and nothing goes to the window that did not ask.
TEST_P(X11Test, TextComesWhereItIsAskedFor)
{
    view.startTextInput();
    std::string longText(200, 'x');
    pushed::compose(longText + "日本", 200, 1);
    EXPECT_TRUE(view.hasHeard({"composes " + longText + "[日]本"}));
    pushed::compose("にほ", 1, 1);
    EXPECT_TRUE(view.hasHeard({"composes に[ほ]"}));
    pushed::compose("", 0, 0);
    EXPECT_TRUE(view.hasHeard({"composes []"}));

    RecordingView other;
    other.create();
    other.topLeft = 0xC020C0;
    gui::Window otherWindow("Other", {200, 100});
    ASSERT_NO_FATAL_FAILURE(show(otherWindow, other, "Other", 1));
    xdo("keydown 38");
    xdo("keyup 38");
    EXPECT_TRUE(other.hasHeard({"key 'a'", "up key 'a'"}));
    otherWindow.close();
    ASSERT_TRUE(waitInLoop([&] { return pushed::focused() != 0; }));
    view.lines.clear();
    xdo("keydown 38");
    xdo("keyup 38");
    EXPECT_TRUE(view.hasHeard({"key 'a'", "text a", "up key 'a'"}));
    EXPECT_TRUE(pushed::isTextInputActive());
    window().close();
    EXPECT_FALSE(pushed::isTextInputActive());
}

TEST_P(X11Test, FocusGoesToTheOtherWindow)
{
    desktop().goTo(0);
    ASSERT_TRUE(waitInLoop([&] { return !view.lines.empty(); }));
    view.lines.clear();
    view.registerForFocusEvents();
    RecordingView other;
    other.create();
    other.registerForFocusEvents();
    gui::Window otherWindow("Other", {200, 100});
    ASSERT_TRUE(otherWindow.show(other));
    EXPECT_TRUE(view.hasHeard({"no focus"}));
    EXPECT_TRUE(other.hasHeard({"focus"}));
    otherWindow.close();
    EXPECT_TRUE(view.hasHeard({"focus"}));
}

TEST_P(X11Test, CursorBelongsToItsWindow)
{
    desktop().goTo(0);
    ASSERT_TRUE(waitInLoop([&] { return !view.lines.empty(); }));
    view.lines.clear();
    const std::uint64_t outside = xServer().cursor();
    view.setCursor(gui::Cursor::Type::Pan, true);
    xdo(at(40, 30));
    ASSERT_TRUE(view.hasHeard({"enter 40,30"}));
    std::uint64_t pan = 0;
    EXPECT_TRUE(waitInLoop([&] { return (pan = xServer().cursor()) != outside; }));
    view.setCursor(gui::Cursor::Type::Default, false);
    view.setCursor(gui::Cursor::Type::Pan, true);
    view.setCursor(gui::Cursor::Type::Default, true);
    EXPECT_TRUE(waitInLoop([&] { return xServer().cursor() != pan; }));

    // Another window keeps its arrow whatever this view wants.
    desktop().goTo(0);
    RecordingView other;
    other.create();
    other.topLeft = 0xC020C0;
    gui::Window otherWindow("Other", {200, 100});
    ASSERT_NO_FATAL_FAILURE(show(otherWindow, other, "Other", 1));
    xdo(at(10, 10));
    ASSERT_TRUE(waitInLoop([&] { return !other.lines.empty(); }));
    const std::uint64_t arrow = xServer().cursor();
    view.setCursor(gui::Cursor::Type::Pan, true);
    ASSERT_TRUE(showsItsFrame(other));
    EXPECT_EQ(xServer().cursor(), arrow);
}

TEST_P(X11Test, DrawsOnceAndSleeps)
{
    EXPECT_EQ(view.sizes, (std::vector<td::Size<double>>{{200, 150}}));
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
}

TEST_P(X11Test, OtherThreadWakesTheLoop)
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

TEST_P(X11Test, TheWindowManagerResizesAndCloses)
{
    constexpr td::Size<double> cSize{520, 410};
    xdo("windowsize " + std::to_string(xServer().findWindow("Window")) + " 520 410");
    EXPECT_TRUE(waitInLoop([&] { return view.sizes.back() == cSize; }));
    EXPECT_TRUE(showsItsFrame(view));
    EXPECT_EQ(window().getSize(), cSize);
    EXPECT_EQ(view.sizes.size(), 2U) << "it is told once";
    xServer().askToClose(xServer().findWindow("Window"));
    EXPECT_EQ(app.run(), 0);
    EXPECT_EQ(view.nCleanUps, 1);
}

TEST_P(X11Test, FullScreenAndBack)
{
    view.mayBeCut = true;
    constexpr td::Size<double> cScreen{1280, 1024};
    const auto becomes = [&](const td::Size<double>& size)
    {
        return waitInLoop([&] { return view.sizes.back() == size && window().isFullScreen() == (size == cScreen); }) &&
               showsItsFrame(view);
    };
    // The window manager makes it full, the program takes it back; and the other way round, with a size set meanwhile.
    const XServer::Window id = xServer().findWindow("Window");
    xServer().toggle(id, "_NET_WM_STATE_FULLSCREEN");
    EXPECT_TRUE(becomes(cScreen));
    window().setFullScreen(false);
    EXPECT_TRUE(becomes({200, 150}));
    window().setFullScreen(true);
    EXPECT_TRUE(becomes(cScreen));
    xServer().toggle(id, "_NET_WM_STATE_FULLSCREEN");
    EXPECT_TRUE(becomes({200, 150}));
    window().setFullScreen(true);
    EXPECT_TRUE(becomes(cScreen));
    window().setSize({320, 210});
    window().setFullScreen(false);
    EXPECT_TRUE(becomes({320, 210}));

    // A maximised window is that again, and has not forgotten its own size.
    const auto maximize = [&] { xServer().toggle(id, "_NET_WM_STATE_MAXIMIZED_VERT", "_NET_WM_STATE_MAXIMIZED_HORZ"); };
    maximize();
    // It may come in two steps, of which the first is seen on a busy machine. A title bar is left.
    constexpr double cLongestTitleBar = 60;
    ASSERT_TRUE(waitInLoop(
        [&] {
            return view.sizes.back().width == cScreen.width &&
                   view.sizes.back().height >= cScreen.height - cLongestTitleBar;
        }));
    ASSERT_TRUE(showsItsFrame(view));
    const td::Size<double> maximized = view.sizes.back();
    window().setFullScreen(true);
    EXPECT_TRUE(becomes(cScreen));
    window().setFullScreen(false);
    EXPECT_TRUE(becomes(maximized));
    maximize();
    EXPECT_TRUE(becomes({320, 210}));
}

// Where it was put, before it is shown and after, and with its icon, which a hidden window of SDL's knows nothing of.
TEST_P(X11Test, AWindowIsWhereItWasPut)
{
    gui::Texture picture;
    picture.reserve(2 * 3);
    gui::TextureHelper(&picture).updateInfo(2, 1, 3);
    std::copy_n("\x10\x20\x30\x40\x50\x60", 6, picture.getBytes());
    RecordingView other;
    other.create();
    other.topLeft = 0xC020C0;
    gui::Window placed("Placed", {160, 100});
    EXPECT_FALSE(placed.getPosition());
    EXPECT_FALSE(placed.setIcon(gui::Texture()));
    EXPECT_TRUE(log.said("Error! Window::setIcon picture without pixels of 3 or 4 bytes!"));
    EXPECT_TRUE(placed.setIcon(picture));
    placed.setPosition({700, 300});
    ASSERT_TRUE(placed.show(other));
    const auto isAt = [&](int x, int y)
    {
        XServer::Place place{};
        const auto isThere = [&]
        {
            place = xServer().placeOf(xServer().findWindow("Placed"));
            return place.x == x && place.y == y && placed.getPosition() == td::Point<double>{double(x), double(y)};
        };
        const td::Point<double> told = placed.getPosition().value_or(td::Point<double>{-1, -1});
        return waitInLoop(isThere)
                   ? testing::AssertionSuccess()
                   : testing::AssertionFailure() << place.x << ',' << place.y << " and not " << told.x << ',' << told.y;
    };
    EXPECT_TRUE(isAt(700, 300));
    placed.setPosition({720, 340});
    EXPECT_TRUE(isAt(720, 340));
    EXPECT_EQ(xServer().numbersOf(xServer().findWindow("Placed"), "_NET_WM_ICON"),
              (std::vector<unsigned long>{2, 1, 0xFF102030, 0xFF405060}));
}

TEST_P(X11Test, MinimisedWindowHasNoFrames)
{
    std::vector<gui::Window::State> told;
    window().setStateHandler([&told](gui::Window::State state) { told.push_back(state); });
    view.startAnimation();
    const std::string id = std::to_string(xServer().findWindow("Window"));
    xdo("windowminimize " + id);
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
    xdo("windowmap " + id);
    EXPECT_TRUE(waitInLoop([&] { return view.nFrames >= nFrames + 3; }));
    window().setState(gui::Window::State::Minimized);
    EXPECT_TRUE(waitInLoop([&] { return told.size() == 3; }));
    window().setState(gui::Window::State::Normal);
    EXPECT_TRUE(waitInLoop([&] { return told.size() == 4; }));
    using enum gui::Window::State;
    EXPECT_EQ(told, (std::vector<gui::Window::State>{Minimized, Normal, Minimized, Normal}));
}

// Not on each desktop: weston 10 ends itself when one of two windows closes, now and then.
TEST_P(X11Test, AClosedWindowLeavesTheOtherRunning)
{
    RecordingView other;
    other.create(gui::gl::Context::Animation::On);
    other.topLeft = 0xC020C0;
    gui::Window otherWindow("Other", {160, 100});
    ASSERT_NO_FATAL_FAILURE(show(otherWindow, other, "Other", 1));
    window().close();
    EXPECT_EQ(view.nCleanUps, 1);
    const int nFrames = other.nFrames;
    EXPECT_TRUE(waitInLoop([&] { return other.nFrames >= nFrames + 3; }));
    EXPECT_TRUE(showsItsFrame(other));
    EXPECT_FALSE(other.isWrong);
}

TEST_P(X11Test, ViewMovesToAnotherWindow)
{
    gui::Window secondWindow("After", {220, 120});
    ASSERT_NO_FATAL_FAILURE(show(secondWindow, view, "After"));
    EXPECT_FALSE(window().isOpen());
    EXPECT_EQ(xServer().findWindow("Window"), 0u);
    EXPECT_EQ(view.sizes.back(), (td::Size<double>{220, 120}));
}

} // namespace

} // namespace test
