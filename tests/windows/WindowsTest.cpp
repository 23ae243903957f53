#include "sdl/RecordingView.h"
#include "sdl/SampledView.h"
#include "sdl/WaitInLoop.h"
#include "src/native/GLView.h"
#include "support/CapturedLog.h"
#include "support/CaughtAsserts.h"
#include "toolkit/src/offscreen/OffscreenWindowSystem.h"

#include <gui/Application.h>
#include <gui/Display.h>
#include <gui/Window.h>
#include <gui/gl/CurrentContext.h>
#include <gui/gl/OrthoView.h>

#include <chrono>
#include <csignal>
#include <ctime>
#include <memory>
#include <optional>
#include <stdexcept>
#include <thread>
#include <vector>

namespace
{

using gui::gl::Context;
using Clock = std::chrono::steady_clock;

class TestView : public test::RecordingView
{
public:
    explicit TestView(Context::Animation animation = Context::Animation::Off) { create(animation); }
};

class Windows : public testing::Test
{
protected:
    Windows() { start(); }
    ~Windows() override { gui::setOffscreenScale(1); }

    void start()
    {
        app.emplace(0, nullptr);
        test::theApplication() = &*app;
        log.take(); // the window system in use
    }

    // Turns until nothing is due.
    void settle()
    {
        for (int i = 0; i < 5; ++i)
            app->step(0);
    }

    test::CapturedLog log;
    std::optional<gui::Application> app;
};

// A window of another size than the view's own: the view must hear of it once, not once per step of being shown.
TEST_F(Windows, ShowingTellsTheSizeOnceAndDrawsOnce)
{
    TestView view;
    gui::Window window("Window", {320, 200});
    ASSERT_TRUE(window.show(view));
    view.reRender();
    view.reDraw();
    settle();
    EXPECT_EQ(view.sizes, (std::vector<td::Size<double>>{{320, 200}}));
    EXPECT_EQ(view.nFrames, 1);
    window.setSize({320, 200});
    settle();
    EXPECT_EQ(view.nFrames, 1);
    window.setSize({100, 50});
    settle();
    EXPECT_EQ(view.sizes.back(), (td::Size<double>{100, 50}));
    EXPECT_EQ(view.sizes.size(), 2U);
    EXPECT_EQ(view.nFrames, 2);
    // Asked for inside a draw, it is one more.
    view.in["onDraw"] = [&view]
    {
        if (view.nFrames == 3)
            view.reDraw();
    };
    view.reDraw();
    settle();
    EXPECT_EQ(view.nFrames, 4);
}

// As on a desktop: states from before a window is shown, smallest sizes, a display from its corner on.
TEST_F(Windows, StatesAndSizesAreThoseOfADesktop)
{
    using State = gui::Window::State;
    TestView view;
    gui::Window window("Window", {320, 200});
    std::vector<State> told;
    window.setStateHandler([&told](State state) { told.push_back(state); });
    window.setState(State::Maximized);
    ASSERT_TRUE(window.show(view));
    settle();
    EXPECT_EQ(told, std::vector<State>{State::Maximized});
    const std::vector<gui::DisplayInfo> displays = gui::Display::getAll();
    ASSERT_EQ(displays.size(), 1U);
    EXPECT_EQ(displays[0].bounds.point, (td::Point<double>()));
    EXPECT_EQ(displays[0].bounds.size, view.sizes.back());
    window.setState(State::Normal);
    window.setMinSize({400, 250});
    settle();
    EXPECT_EQ(view.sizes.back(), (td::Size<double>{400, 250}));
}

// The environment goes before the program; and what it says must be a number of samples.
TEST_F(Windows, SamplesAreTheEnvironmentsOrTheProgramsOwn)
{
    struct Environment
    {
        explicit Environment(const char* value) { setenv("GUIGL_SAMPLES", value, 1); }
        ~Environment() { unsetenv("GUIGL_SAMPLES"); }
    };
    const auto samplesOf = [](int asked)
    {
        test::SampledView view(asked);
        EXPECT_EQ(view.countShades() > 2, view.getSamples() > 1);
        return view.getSamples();
    };
    EXPECT_EQ(samplesOf(1), 1);
    EXPECT_EQ(samplesOf(4), 4);
    for (const auto& [value, asked, got] : {std::tuple("4", 1, 4), {"1", 4, 1}, {"", 4, 4}, {"3", 4, 4}, {"4x", 1, 1}})
    {
        const Environment environment(value);
        EXPECT_EQ(samplesOf(asked), got) << value;
    }
    EXPECT_TRUE(log.said("Warning! GUIGL_SAMPLES=3 is none of 1, 2, 4, 8, 16 and will be ignored"));
    EXPECT_EQ(gui::gl::View().getSamples(), 0);
}

// A loop that polls, or a clock that goes on, would burn the battery of whoever leaves the window open.
TEST_F(Windows, NothingToDoCostsNothing)
{
    TestView view;
    gui::Window window("Window", {32, 32});
    window.show(view);
    settle();
    const std::clock_t before = std::clock();
    const auto begin = Clock::now();
    EXPECT_TRUE(app->step(0.5));
    EXPECT_GE(Clock::now() - begin, std::chrono::milliseconds(490));
    EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 20);
    EXPECT_EQ(view.nFrames, 1);
}

TEST_F(Windows, AFunctionFromAnotherThreadWakesTheLoop)
{
    const auto begin = Clock::now();
    bool hasRun = false;
    std::thread thread(
        [&hasRun]
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            gui::ZavObject::asyncCall(new std::function<void()>([&hasRun] { hasRun = true; }), true);
        });
    while (!hasRun && Clock::now() - begin < std::chrono::seconds(20))
        app->step(20);
    thread.join();
    EXPECT_TRUE(hasRun);
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(10));
}

// The clock runs only in a window, never faster than the range allows, and ends with the answer of prepareNextFrame.
TEST_F(Windows, AnAnimationEndsWhenTheViewSaysSo)
{
    TestView view(Context::Animation::On);
    EXPECT_TRUE(view.isAnimated());
    app->step(0.05);
    EXPECT_EQ(view.nFrames, 0);

    gui::Window window("Window", {32, 32});
    window.show(view);
    view.nFramesLeft = 6;
    const auto begin = Clock::now();
    while (view.isAnimated())
        ASSERT_TRUE(app->step(5));
    // The first draw is the window's; five frames follow at 60 a second.
    EXPECT_GE(Clock::now() - begin, std::chrono::milliseconds(4 * 16));
    const int nFrames = view.nFrames;
    app->step(0.1);
    EXPECT_EQ(view.nFrames, nFrames);

    // Frames that a long one covers are not made up for: after the one that is due, each waits for its time.
    std::optional<Clock::time_point> endOfLongFrame;
    view.in["onDraw"] = [&endOfLongFrame]
    {
        if (endOfLongFrame)
            return;
        std::this_thread::sleep_for(std::chrono::milliseconds(150));
        endOfLongFrame = Clock::now();
    };
    view.nFramesLeft = 6;
    view.startAnimation();
    view.startAnimation();
    while (view.isAnimated())
        ASSERT_TRUE(app->step(5));
    EXPECT_EQ(view.nFrames, nFrames + 6);
    ASSERT_TRUE(endOfLongFrame);
    EXPECT_GE(Clock::now() - *endOfLongFrame, std::chrono::milliseconds(3 * 16));
}

// Each view's callbacks find its own context current, and each window shows its own view. An event comes between the
// change and the frame that follows it.
TEST_F(Windows, AnotherScaleChangesPixelsAndNothingElse)
{
    constexpr td::Size<double> cSize{160, 120};
    TestView view;
    TestView neighbour;
    neighbour.topLeft = 0xC020C0;
    gui::gl::OrthoView plane;
    plane.createContext(true);
    gui::Window window("Window", cSize), other("Other", cSize), third("Plane", cSize);
    window.show(view);
    other.show(neighbour);
    third.show(plane);
    settle();
    const glm::mat4 projection = plane.getProjection();
    for (const float scale : {1.0F, 1.25F, 2.0F, 1.25F, 1.0F})
    {
        SCOPED_TRACE(scale);
        gui::setOffscreenScale(scale);
        using gui::gl::ButtonEvent;
        dynamic_cast<gui::gl::GLView&>(*view.getHandle())
            .onButton({ButtonEvent::Button::Left, true, true, 1, 0, {140, 100}});
        EXPECT_TRUE(view.hasHeard({"press 140,100 x1"}));
        EXPECT_EQ(gui::Display::getDefaultBackingScaleFactor(), scale);
        for (TestView* const pView : {&view, &neighbour})
        {
            EXPECT_EQ(pView->getPixelHiDPIScale(), scale);
            const test::Screenshot frame = pView->readPixels();
            EXPECT_EQ(frame.width, static_cast<int>(160 * scale));
            EXPECT_EQ(frame.height, static_cast<int>(120 * scale));
            EXPECT_EQ(frame.at(0, 0), pView->topLeft);
            EXPECT_EQ(pView->grab(), frame);
            EXPECT_FALSE(pView->isWrong);
        }
        EXPECT_EQ(plane.getProjection(), projection);
    }
    EXPECT_EQ(window.getSize(), cSize);
}

// Outside of a draw and inside, each in a program of its own.
TEST_F(Windows, WindowViewAndProgramEndInAnyOrder)
{
    std::unique_ptr<TestView> view;
    std::unique_ptr<gui::Window> window;
    const auto show = [&](Context::Animation animation = Context::Animation::Off)
    {
        window.reset();
        view.reset();
        start();
        view = std::make_unique<TestView>(animation);
        window = std::make_unique<gui::Window>("Window", td::Size<double>{32, 32});
        window->show(*view);
    };
    show();
    app->step(0);
    window.reset();
    EXPECT_EQ(view->nCleanUps, 1);
    EXPECT_FALSE(view->isWrong);
    EXPECT_FALSE(app->step(0)) << "the last window is closed";

    show();
    app->step(0);
    view.reset();
    EXPECT_FALSE(window->isOpen());
    EXPECT_EQ(app->run(), 0);

    show();
    view->in["onDraw"] = [] { gui::Application::quit(7); };
    EXPECT_EQ(app->run(), 7);

    show();
    view->in["onDraw"] = [&] { window.reset(); };
    EXPECT_EQ(app->run(), 0);
    EXPECT_EQ(view->nCleanUps, 1);

    show();
    view->in["onDraw"] = [&] { view.reset(); };
    app->step(0);
    EXPECT_EQ(view, nullptr);

    show(Context::Animation::On);
    app->step(0);
    app.reset();
}

TEST_F(Windows, AnExceptionLeavesTheLoopUsable)
{
    TestView view;
    gui::Window window("Window", {32, 32});
    window.show(view);
    view.in["onDraw"] = [] { throw std::runtime_error("draw"); };
    EXPECT_THROW(app->step(0), std::runtime_error);
    view.in.clear();
    view.reRender();
    app->step(0);
    EXPECT_EQ(view.nFrames, 2);
}

// A login window before the main one: what ended the first run must not end the second.
TEST_F(Windows, RunsOneAfterAnother)
{
    for (const int code : {3, 4})
    {
        TestView view;
        view.in["onDraw"] = [code] { gui::Application::quit(code); };
        EXPECT_EQ(app->run(view, "Window", {32, 32}), code);
    }
    // The same in one handler.
    TestView first;
    TestView second;
    gui::Window firstWindow("First", {32, 32});
    gui::Window secondWindow("Second", {32, 32});
    firstWindow.show(first);
    gui::ZavObject::asyncCall(new std::function<void()>(
                                  [&]
                                  {
                                      firstWindow.close();
                                      secondWindow.show(second);
                                  }),
                              true);
    second.in["onDraw"] = [&] { secondWindow.close(); };
    EXPECT_EQ(app->run(), 0);
    EXPECT_EQ(second.nFrames, 1);
}

// Somebody stops the program from outside: its views clean up, the last window's first, while their contexts live.
TEST(TerminationSignals, CloseTheWindowsInOrder)
{
    test::CapturedLog log;
    std::signal(SIGINT, SIG_IGN);
    for (const int number : {SIGTERM, SIGINT, SIGTERM})
    {
        gui::Application app(0, nullptr);
        log.take();
        TestView first;
        TestView second;
        gui::Window firstWindow("First", {32, 32});
        gui::Window secondWindow("Second", {32, 32});
        firstWindow.show(first);
        secondWindow.show(second);
        first.in["cleanResources"] = [&second] { EXPECT_EQ(second.nCleanUps, 1); };
        second.in["cleanResources"] = [] { EXPECT_NE(gui::gl::CurrentContext::getID(), 0U); };
        second.in["onDraw"] = [number] { std::raise(number); };
        // What the program ignores it goes on ignoring.
        if (number == SIGINT)
            first.in["onDraw"] = [] { gui::Application::quit(1); };
        EXPECT_EQ(app.run(), number == SIGINT ? 1 : 128 + number);
        EXPECT_EQ(first.nCleanUps, number == SIGINT ? 0 : 1);
    }
    std::signal(SIGINT, SIG_DFL);
}

TEST_F(Windows, MisuseIsToldAndHarmless)
{
    gui::gl::View view;
    gui::Window window("Window", {32, 32});
    EXPECT_FALSE(window.show(view));
    EXPECT_TRUE(log.said("Error! Window::show view without a native view! Create its context first!"));
    window.close();
    TestView good;
    EXPECT_FALSE(window.show(good));
    EXPECT_TRUE(log.said("Error! Window::show on a closed window!"));
    window.setSize({10, 10});
    window.setTitle("closed");
    window.setFullScreen(true);
    EXPECT_FALSE(window.isFullScreen());

    // A view whose context went with its window: the loop would wait for ever for a window that nobody sees.
    gui::Window second("Window", {32, 32});
    second.show(good);
    second.close();
    gui::Window third("Window", {32, 32});
    EXPECT_FALSE(third.show(good));
    EXPECT_TRUE(log.said("Error! Window::show view whose native view went with its window! Make another view!"));
    EXPECT_FALSE(third.isOpen());

    // One of no size, which said that it was closed, and a second application, whose end waited for ever.
    test::CaughtAsserts asserts;
    gui::Window none("Window", {0, 32});
    EXPECT_TRUE(asserts.caught("size.width >= 1 && size.height >= 1"));
    EXPECT_TRUE(log.said("Error! Window with a size of 0 x 32 points, which is never seen"));
    const gui::Application other(0, nullptr);
    EXPECT_EQ(log.take().front(),
              "Warning! Application made while there is one: SIGINT and SIGTERM stay with the first");
}

} // namespace
