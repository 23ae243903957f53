#include "TestView.h"

#include "support/CapturedLog.h"

#include <gui/Application.h>
#include <gui/Texture.h>
#include <gui/Window.h>
#include <gui/gl/CurrentContext.h>
#include <td/Types.h>

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <ctime>
#include <memory>
#include <optional>
#include <thread>

namespace
{

using gui::gl::CurrentContext;
using test::TestView;
using Clock = std::chrono::steady_clock;

class Windows : public testing::Test
{
protected:
    Windows() { log.take(); } // the window system in use

    // Turns until nothing is due.
    void settle()
    {
        for (int i = 0; i < 5; ++i)
            app.step(0);
    }

    test::CapturedLog log;
    gui::Application app{0, nullptr};
};

// A window of another size than the view's own: the view must hear of it once, not once per step of being shown.
TEST_F(Windows, ShowingTellsTheSizeOnceAndDrawsOnce)
{
    TestView view(td::ColorID::Red);
    gui::Window window("Window", {320, 200});
    ASSERT_TRUE(window.show(view));
    view.reRender();
    view.reDraw();
    settle();
    EXPECT_EQ(view.sizes, (std::vector<td::Size<double>>{{320, 200}}));
    EXPECT_EQ(view.nDraws, 1);
    window.setSize({320, 200});
    settle();
    EXPECT_EQ(view.nDraws, 1);
    window.setSize({100, 50});
    settle();
    EXPECT_EQ(view.sizes.back(), (td::Size<double>{100, 50}));
    EXPECT_EQ(view.sizes.size(), 2U);
    EXPECT_EQ(view.nDraws, 2);
    // Asked for inside a draw, it is one more.
    view.inDraw = [&view]
    {
        if (view.nDraws == 3)
            view.reDraw();
    };
    view.reDraw();
    settle();
    EXPECT_EQ(view.nDraws, 4);
}

// A loop that polls, or a clock that goes on, would burn the battery of whoever leaves the window open.
TEST_F(Windows, NothingToDoCostsNothing)
{
    TestView view(td::ColorID::Red);
    gui::Window window("Window", {32, 32});
    window.show(view);
    settle();
    const std::clock_t before = std::clock();
    const auto begin = Clock::now();
    EXPECT_TRUE(app.step(0.5));
    EXPECT_GE(Clock::now() - begin, std::chrono::milliseconds(490));
    EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 20);
    EXPECT_EQ(view.nDraws, 1);
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
        app.step(20);
    thread.join();
    EXPECT_TRUE(hasRun);
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(10));
}

// The clock runs only in a window, never faster than the range allows, and ends with the answer of prepareNextFrame.
TEST_F(Windows, AnAnimationEndsWhenTheViewSaysSo)
{
    TestView view(td::ColorID::Red, true);
    EXPECT_TRUE(view.isAnimated());
    app.step(0.05);
    EXPECT_EQ(view.nDraws, 0);

    gui::Window window("Window", {32, 32});
    window.show(view);
    view.nFramesLeft = 6;
    const auto begin = Clock::now();
    while (view.isAnimated())
        ASSERT_TRUE(app.step(5));
    // The first draw is the window's; five frames follow at 60 a second.
    EXPECT_GE(Clock::now() - begin, std::chrono::milliseconds(4 * 16));
    const int nDraws = view.nDraws;
    app.step(0.1);
    EXPECT_EQ(view.nDraws, nDraws);

    // Frames that a long one covers are not made up for: after the one that is due, each waits for its time.
    std::optional<Clock::time_point> endOfLongFrame;
    view.inDraw = [&endOfLongFrame]
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
        ASSERT_TRUE(app.step(5));
    EXPECT_EQ(view.nDraws, nDraws + 6);
    ASSERT_TRUE(endOfLongFrame);
    EXPECT_GE(Clock::now() - *endOfLongFrame, std::chrono::milliseconds(3 * 16));
}

// Each view's callbacks find its own context current, and each window shows its own view.
TEST_F(Windows, TwoWindowsHaveTwoContexts)
{
    TestView red(td::ColorID::Red);
    const CurrentContext::ID redContext = CurrentContext::getID();
    TestView blue(td::ColorID::Blue);
    const CurrentContext::ID blueContext = CurrentContext::getID();
    ASSERT_NE(redContext, blueContext);
    red.inDraw = [redContext] { EXPECT_EQ(CurrentContext::getID(), redContext); };
    blue.inDraw = [blueContext] { EXPECT_EQ(CurrentContext::getID(), blueContext); };
    gui::Window redWindow("Red", {16, 8});
    gui::Window blueWindow("Blue", {8, 16});
    redWindow.show(red);
    blueWindow.show(blue);

    gui::Texture redPicture;
    gui::Texture bluePicture;
    int nPictures = 0;
    red.readFrameFrameBuffer(redPicture, [&nPictures] { ++nPictures; });
    blue.readFrameFrameBuffer(bluePicture, [&nPictures] { ++nPictures; });
    settle();
    EXPECT_EQ(nPictures, 2);
    ASSERT_EQ(redPicture.getWidth(), 16);
    ASSERT_EQ(bluePicture.getHeight(), 16);
    const auto pixel = [](const gui::Texture& picture)
    {
        const td::BYTE* p = picture.getBytes();
        return std::array<int, 3>{p[0], p[1], p[2]};
    };
    EXPECT_EQ(pixel(redPicture), (std::array<int, 3>{255, 0, 0}));
    EXPECT_EQ(pixel(bluePicture), (std::array<int, 3>{0, 0, 255}));
}

// A login window before the main one: what ended the first run must not end the second.
TEST_F(Windows, RunsOneAfterAnother)
{
    for (const int code : {3, 4})
    {
        TestView view(td::ColorID::Red);
        view.inDraw = [code] { gui::Application::quit(code); };
        EXPECT_EQ(app.run(view, "Window", {32, 32}), code);
    }
    // The same in one handler.
    TestView first(td::ColorID::Red);
    TestView second(td::ColorID::Blue);
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
    second.inDraw = [&] { secondWindow.close(); };
    EXPECT_EQ(app.run(), 0);
    EXPECT_EQ(second.nDraws, 1);
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
        TestView first(td::ColorID::Red);
        TestView second(td::ColorID::Blue);
        gui::Window firstWindow("First", {32, 32});
        gui::Window secondWindow("Second", {32, 32});
        firstWindow.show(first);
        secondWindow.show(second);
        first.inCleanUp = [&second] { EXPECT_EQ(second.nCleanUps, 1); };
        second.inCleanUp = [] { EXPECT_NE(CurrentContext::getID(), 0U); };
        second.inDraw = [number] { std::raise(number); };
        // What the program ignores it goes on ignoring.
        if (number == SIGINT)
            first.inDraw = [] { gui::Application::quit(1); };
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
    TestView good(td::ColorID::Red);
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
}

} // namespace
