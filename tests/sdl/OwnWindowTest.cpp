// What a user sees of windows of the library's own, on each desktop and at each of its places.

#include "DesktopTest.h"
#include "PushedEvents.h"
#include "SampledView.h"

#include <gui/NativeView.h>
#include <gui/port/RunLoop.h>
#include <gui/port/WindowSystem.h>

#include <algorithm>
#include <thread>

namespace test
{

namespace
{

using gui::gl::Context;

// Larger than the context was made for, and nobody asks for a second frame. Then smaller, when it is bound already.
TEST_P(DesktopTest, EachFrameFillsTheWindow)
{
    gui::gl::View other;
    other.createContext(
        Context(gui::gl::DepthBuffer::Size::Bits24, gui::gl::StencilBuffer::Size::None, Context::Profile::Core41));
    static_cast<OwnWindow&>(*shown).window.close();
    RecordingView large;
    large.create(Context::Animation::Off, {100, 80});
    Screenshot drawn;
    large.in["onDraw"] = [&drawn] { drawn = RecordingView::readDrawn(); };
    const td::Size<double> size = GetParam() == 0 ? td::Size<double>{500, 420} : td::Size<double>{280, 200};
    gui::Window largeWindow("Large", size);
    desktop().goTo(GetParam());
    ASSERT_TRUE(largeWindow.show(large));
    const auto isFull = [&](double width)
    { return waitInLoop([&] { return drawn.width == width * scale; }) && shows(large, [&drawn] { return drawn; }); };
    EXPECT_TRUE(isFull(size.width));
    other.makeCurrentContext();
    large.makeCurrentContext();
    largeWindow.setSize({120, 90});
    EXPECT_TRUE(isFull(120));
    EXPECT_FALSE(large.isWrong);
}

using OwnWindowTest = DesktopFixture;

// A view that is slow: clicks count by when they were made, not by when it gets round to them.
TEST_F(OwnWindowTest, ClicksCountByTheUsersTime)
{
    using std::chrono::milliseconds;
    RecordingView view;
    view.create();
    gui::Window window("Window", {200, 150});
    ASSERT_NO_FATAL_FAILURE(show(window, view, "Window"));
    xdo(at(40, 30));
    ASSERT_TRUE(view.hasHeard({"enter 40,30"}));
    pushed::setDoubleClickTime(2000);
    view.in["press"] = [] { std::this_thread::sleep_for(milliseconds(2500)); };
    {
        Process user({"xdotool", "click", "1", "sleep", "0.05", "click", "1"});
        EXPECT_TRUE(view.hasHeard({"press 40,30 x1", "release 40,30 x1", "double 40,30 x1", "release 40,30 x2"}));
        EXPECT_EQ(user.wait(cPatience), 0);
    }
    view.in.clear();
    pushed::setDoubleClickTime(100);
    xdo(at(140, 100));
    xdo("click 1 sleep 1 click 1"); // and only then the program looks
    EXPECT_TRUE(view.hasHeard({"press 140,100 x1", "release 140,100 x1", "press 140,100 x1", "release 140,100 x1"}));
    pushed::setDoubleClickTime(0);
}

// By the program's own asking; what a window manager's user does is in X11's tests. At the first place alone: weston 10
// ends more often than not when a window on its second output changes its state.
TEST_F(OwnWindowTest, StatesAreTold)
{
    using State = gui::Window::State;
    RecordingView view;
    view.create();
    gui::Window window("Window", {200, 150});
    ASSERT_NO_FATAL_FAILURE(show(window, view, "Window"));
    std::vector<State> told;
    window.setStateHandler([&told](State state) { told.push_back(state); });
    const td::Size<double> ownSize = window.getSize();
    int nAsked = 0;
    for (const State state :
         {State::Maximized, State::FullScreen, State::Normal, State::FullScreen, State::Maximized, State::Normal})
    {
        window.setState(state);
        ++nAsked;
        // A window manager may leave one state after the other.
        const auto isThere = [&]
        {
            return !told.empty() && told.back() == state && window.getState() == state &&
                   (window.getSize() == ownSize) == (state == State::Normal);
        };
        EXPECT_TRUE(waitInLoop(isThere)) << nAsked;
    }
    EXPECT_EQ(std::ranges::adjacent_find(told), told.end()) << "told twice";
    window.setMinSize({240, 160});
    EXPECT_TRUE(waitInLoop([&] { return view.sizes.back() == td::Size<double>{240, 160}; }));
    // From inside the handler, too.
    window.setStateHandler([&window](State) { window.close(); });
    window.setState(State::Maximized);
    EXPECT_TRUE(waitInLoop([&] { return !window.isOpen(); }));
}

// What the display tells arrives at the view's clock; and for a view that is drawn as the pointer moves.
TEST_F(OwnWindowTest, FramesKeepToTheDisplaysBeat)
{
    const gui::RunLoop& loop = gui::WindowSystem::instance().getRunLoop();
    for (const Context::Animation animation : {Context::Animation::On, Context::Animation::Off})
    {
        const bool isMoved = animation == Context::Animation::Off;
        RecordingView view;
        view.create(animation);
        gui::Window window("Window", {200, 150});
        ASSERT_NO_FATAL_FAILURE(show(window, view, "Window"));
        const auto* const pView = static_cast<const gui::NativeView*>(view.getHandle());
        // The user moves now and then, and frames go on for a moment.
        constexpr int cFrames = 16;
        int nFrames = 0;
        const auto isKnown = [&]
        {
            if (isMoved && nFrames++ % cFrames == 0)
                xdo(at(40 + nFrames / cFrames % 100, 30));
            if (isMoved)
                view.reRender();
            return loop.getNextBeat(pView, gui::RunLoop::Clock::now()).has_value();
        };
        EXPECT_TRUE(waitInLoop(isKnown)) << isMoved;
    }
}

// The driver of these tests has four samples in a window; or, from Mesa 25 on with X11, none but one.
TEST_P(DesktopTest, EdgesAreAsSmoothAsAskedFor)
{
    desktop().goTo(0);
    int most = 4;
    for (const int asked : {1, 4, 16})
    {
        SampledView sampled(asked);
        if (asked == 4 && log.said("Warning! SDLContext asked for 4 samples, got 1"))
            most = 1;
        const int got = std::min(asked, most);
        if (asked > 4)
        {
            EXPECT_TRUE(log.said("Warning! SDLContext asked for 16 samples, got " + std::to_string(most)));
        }
        gui::Window other("Sampled", {64, 48});
        ASSERT_TRUE(other.show(sampled));
        EXPECT_EQ(sampled.getSamples(), got);
        EXPECT_EQ(sampled.countShades() > 2, got > 1);
    }
    ASSERT_TRUE(waitInLoop([&] { return !view.lines.empty(); }));
}

} // namespace

} // namespace test
