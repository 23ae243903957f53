// Windows that a window manager has, drawn and closed.

#include "X11Fixture.h"

#include "support/GLTrace.h"

#include <gui/ZavObject.h>
#include <gui/gl/Buffer.h>
#include <gui/gl/Color2DProgram.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <thread>

namespace test
{

namespace
{

using gui::gl::Context;

#ifdef __SANITIZE_ADDRESS__
constexpr bool cIsSanitized = true;
#else
constexpr bool cIsSanitized = false;
#endif

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
    window.setFullScreen(true);
    EXPECT_TRUE(waitInLoop([&] { return view.sizes.back() == td::Size<double>{1280, 1024}; }));
    EXPECT_TRUE(showsItsFrame("Full", view));
    window.setFullScreen(false);
    EXPECT_TRUE(waitInLoop([&] { return view.sizes.back() == td::Size<double>{300, 200}; }));
    EXPECT_TRUE(showsItsFrame("Full", view));
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
    xServer().move(xServer().findWindow("First"), 100, 100);
    xServer().move(xServer().findWindow("Second"), 700, 500);
    ASSERT_TRUE(waitInLoop([&] { return xServer().placeOf(xServer().findWindow("Second")).x >= 690; }));
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

/// A view with a triangle, whose GL objects go with its context.
class TriangleView : public gui::gl::View
{
public:
    TriangleView()
    {
        createContext({gui::gl::DepthBuffer::Size::None, gui::gl::StencilBuffer::Size::None, Context::Profile::Core41});
    }
    int nFrames = 0;

protected:
    void onInit() override
    {
        constexpr float cCorners[] = {-1, -1, 1, 0, 0, 1, 1, -1, 0, 1, 0, 1, 0, 1, 0, 0, 1, 1};
        _buffer.appendShape(gui::gl::Primitive::Triangles, cCorners, 3);
        _program.link();
    }
    void onDraw(const td::RectNormalized<double>&) override
    {
        ++nFrames;
        _program.draw(_buffer);
    }
    void cleanResources() override
    {
        _buffer.release();
        _program.release();
    }

private:
    gui::gl::Buffer _buffer{gui::gl::DataType::Vec2, gui::gl::DataType::Vec4};
    gui::gl::Color2DProgram _program;
};

// Many windows, opened and closed: nothing of them stays. GUIGL_TEST_WINDOWS=1000 opens as many.
TEST_F(X11WindowTest, WindowsLeaveNothingBehind)
{
    // The loop ends with the last window.
    RecordingView staying;
    staying.create();
    gui::Window stayingWindow("Stays", {64, 64});
    ASSERT_NO_FATAL_FAILURE(show(stayingWindow, staying, "Stays"));
    const auto openAndClose = [this](int n)
    {
        std::optional<GLTrace> trace;
        for (int i = 0; i < n; ++i)
        {
            TriangleView view;
            if (!trace)
                trace.emplace(GLTrace::Forward);
            trace->clear();
            gui::Window window("Many", {64, 64});
            ASSERT_TRUE(window.show(view));
            ASSERT_TRUE(waitInLoop([&] { return view.nFrames > 0; }));
            window.close();
            log.take();
        }
        EXPECT_TRUE(trace->nothingAlive());
    };
    const auto nDescriptors = []
    {
        const std::filesystem::directory_iterator folder("/proc/self/fd");
        return std::distance(begin(folder), end(folder));
    };
    const auto residentPages = []
    {
        std::ifstream file("/proc/self/statm");
        long all = 0;
        long resident = 0;
        file >> all >> resident;
        return resident;
    };
    openAndClose(20);
    const auto nDescriptorsBefore = nDescriptors();
    const long before = residentPages();
    const char* const pNumber = std::getenv("GUIGL_TEST_WINDOWS");
    openAndClose(pNumber != nullptr ? std::atoi(pNumber) : 40);
    EXPECT_EQ(nDescriptors(), nDescriptorsBefore);
    // The sanitizer keeps freed memory for a while.
    EXPECT_TRUE(cIsSanitized || residentPages() - before < 200) << before << " pages before, " << residentPages();
}

} // namespace

} // namespace test
