// Windows on Wayland: input from another process, scales, contexts.

#include "RecordingView.h"
#include "WaitInLoop.h"
#include "Weston.h"

#include "support/CapturedLog.h"
#include "support/Pinning.h"

#include <gui/Application.h>
#include <gui/Display.h>
#include <gui/Window.h>

#include <gtest/gtest.h>

#include <cstdlib>

namespace test
{

namespace
{

using gui::gl::Context;

std::unique_ptr<Weston> s_pWeston;

class Desktop : public testing::Environment
{
public:
    void SetUp() override
    {
        setenv("GUIGL_WINDOW_SYSTEM", "wayland", 1);
        s_pWeston = std::make_unique<Weston>("us,de");
        ASSERT_TRUE(s_pWeston->isOk());
    }
};

testing::Environment* const s_pDesktop = testing::AddGlobalTestEnvironment(new Desktop);

class WaylandTest : public testing::Test
{
protected:
    WaylandTest()
    {
        theApplication() = &app;
        EXPECT_TRUE(log.said("Application runs on window system: wayland"));
    }
    ~WaylandTest() override
    {
        theApplication() = nullptr;
        pinLoadedLibraries();
    }

    /// Shows a view in the window on an output, and waits until it is seen there.
    void show(gui::Window& window, RecordingView& view, int output)
    {
        s_pWeston->goTo(output);
        ASSERT_TRUE(window.show(view));
        ASSERT_TRUE(showsItsFrame(view));
        const XServer::Place place = s_pWeston->output(output);
        ASSERT_TRUE(corner.x >= place.x && corner.x < place.x + place.width);
        scale = Weston::cScale[output];
        view.forgetLines();
    }

    /// Waits until the view's frame is seen as it was drawn, wherever it is.
    testing::AssertionResult showsItsFrame(RecordingView& view)
    {
        const bool isSeen = waitInLoop(
            [&]
            {
                const Screenshot drawn = view.readPixels();
                const std::optional<XServer::Place> place = s_pWeston->find(view.topLeft);
                if (!place || place->x + drawn.width > 1280 || place->y + drawn.height > 1024)
                    return false;
                corner = {place->x, place->y, drawn.width, drawn.height};
                return s_pWeston->server().shoot(corner) == drawn;
            });
        if (isSeen)
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << "last seen at " << corner.x << ", " << corner.y << " with "
                                           << corner.width << " by " << corner.height << " pixels";
    }

    /// A point of the window that was found last, as xdotool's mousemove takes it.
    std::string at(int x, int y) const
    {
        return "mousemove " + std::to_string(corner.x + x * scale) + " " + std::to_string(corner.y + y * scale);
    }

    CapturedLog log;
    gui::Application app{0, nullptr};
    XServer::Place corner{};
    int scale = 1;
};

TEST_F(WaylandTest, Input)
{
    RecordingView view;
    view.create();
    gui::Window window("Input", {200, 150});
    ASSERT_NO_FATAL_FAILURE(show(window, view, 0));
    xdo(at(40, 30));
    ASSERT_TRUE(view.hasHeard({"enter 40,30"}));
    xdo("click --repeat 2 --delay 20 1");
    EXPECT_TRUE(view.hasHeard({"press 40,30 x1", "release 40,30 x1", "double 40,30 x1", "release 40,30 x2"}));
    xdo("click 3");
    EXPECT_TRUE(view.hasHeard({"press2 40,30 x1", "release2 40,30 x1"}));

    xdo(at(120, 100));
    xdo("mousedown 1");
    EXPECT_TRUE(view.hasHeard({"press 120,100 x1"}));
    xdo(at(130, 90));
    EXPECT_TRUE(view.hasHeard({"drag 130,90"}));
    // Outside, and still within the output.
    const int outside = corner.x > 100 ? -20 : 220;
    xdo(at(outside, 70));
    EXPECT_TRUE(view.hasHeard({"drag " + std::to_string(outside) + ",70"}));
    xdo(at(60, 50));
    EXPECT_TRUE(view.hasHeard({"drag 60,50"}));
    xdo("mouseup 1");
    EXPECT_TRUE(view.hasHeard({"release 60,50 x1"}));

    xdo("click 4");
    EXPECT_TRUE(view.hasHeard({"scroll 0,15"}));
    xdo("keydown ctrl click 5 keyup ctrl");
    EXPECT_TRUE(view.hasHeard({"zoom 60,50 by 0.88+Cmd"}));
    EXPECT_FALSE(view.isContextWrong);
}

TEST_F(WaylandTest, KeysFollowTheLayout)
{
    RecordingView view;
    view.create();
    gui::Window window("Keys", {200, 150});
    ASSERT_NO_FATAL_FAILURE(show(window, view, 0));
    xdo(at(40, 30));
    xdo("click 3");
    ASSERT_TRUE(view.hasHeard({"enter 40,30", "press2 40,30 x1", "release2 40,30 x1"}));
    struct Case
    {
        std::string keys;
        std::vector<std::string> lines;
    };
    // Positions as in the X11 tests; names are those of the second, German layout.
    const Case cases[] = {
        {"keydown 38 keyup 38", {"key 'a'", "up key 'a'"}},
        {"keydown shift keydown 38 keyup 38 keyup shift", {"key 'A'+Shift", "up key 'A'+Shift"}},
        {"keydown alt keydown 38 keyup 38 keyup alt", {"key 'a'+Alt", "up key 'a'+Alt"}},
        {"keydown ctrl keydown shift keydown 21 keyup 21 keyup shift keyup ctrl",
         {"key '+'+Shift+Cmd", "up key '+'+Shift+Cmd"}},
        {"keydown odiaeresis keyup odiaeresis", {"key 246", "up key 43776"}},
        {"keydown Left keyup Left", {"key virtual 3 code 123", "up key 31488"}},
        {"keydown Tab keyup Tab", {"key virtual 1 code 48", "up key 9"}},
    };
    for (const Case& c : cases)
    {
        xdo(c.keys);
        EXPECT_TRUE(view.hasHeard(c.lines)) << c.keys;
    }
}

class WaylandSizeTest : public WaylandTest, public testing::WithParamInterface<int>
{
};

TEST_P(WaylandSizeTest, FirstFrameOfANewSizeIsWhole)
{
    const int output = GetParam();
    RecordingView view;
    view.create();
    gui::Window window("Grows", {200, 150});
    ASSERT_NO_FATAL_FAILURE(show(window, view, output));
    EXPECT_EQ(view.sizes.back(), (td::Size<double>{200, 150}));
    EXPECT_EQ(view.getPixelHiDPIScale(), static_cast<float>(Weston::cScale[output]));
    EXPECT_EQ(corner.width, 200 * Weston::cScale[output]);
    for (const td::Size<double> size : {td::Size<double>{140, 120}, td::Size<double>{160, 130}})
    {
        window.setSize(size);
        EXPECT_TRUE(waitInLoop([&] { return view.sizes.back() == size; }));
        EXPECT_TRUE(showsItsFrame(view));
    }
    EXPECT_FALSE(view.isPictureWrong);
    EXPECT_EQ(gui::Display::getDefaultBackingScaleFactor(), 1);
}

INSTANTIATE_TEST_SUITE_P(Outputs, WaylandSizeTest, testing::Values(0, 1));

// Picture and pointer agree before, during and after: on one output, across both, and back.
TEST_F(WaylandTest, MoveToAnotherScale)
{
    RecordingView view;
    view.create();
    gui::Window window("Moves", {200, 150});
    ASSERT_NO_FATAL_FAILURE(show(window, view, 0));
    ASSERT_EQ(view.getPixelHiDPISizeScale(), 1);
    view.sizes.clear();
    const auto isClickHeard = [&](int x, int y, const std::string& point)
    {
        xdo("mousemove " + std::to_string(x) + " " + std::to_string(y) + " click 3");
        return waitInLoop([&] { return !view.lines.empty() && view.lines.back() == "release2 " + point + " x1"; });
    };
    // The compositor moves a window that is dragged with Super held: until it reaches into the second output.
    const auto drag = [&](int fromX, int fromY, int x)
    {
        xdo("mousemove " + std::to_string(fromX) + " " + std::to_string(fromY));
        xdo("keydown super mousedown 1");
        xdo("mousemove " + std::to_string(x) + " 60");
        xdo("mouseup 1 keyup super");
    };
    EXPECT_TRUE(isClickHeard(corner.x + 50, corner.y + 40, "50,40"));
    const int edge = s_pWeston->output(0).width - 1;
    drag(corner.x + 20, corner.y + 20, edge);
    ASSERT_TRUE(waitInLoop([&] { return view.getPixelHiDPISizeScale() == 2; }));
    EXPECT_EQ(view.getPixelHiDPIScale(), 2);
    EXPECT_EQ(window.getSize(), (td::Size<double>{200, 150}));
    EXPECT_EQ(view.sizes, (std::vector<td::Size<double>>{{200, 150}}));
    // All but its first 21 points is on the second output.
    const XServer::Place second = s_pWeston->output(1);
    constexpr int cHidden = 2 * 21, cTop = 2 * 40;
    const auto isSeenThere = [&]
    {
        const Screenshot drawn = view.readPixels();
        if (drawn.width != 400 || drawn.height != 300)
            return false;
        const Screenshot seen =
            s_pWeston->server().shoot({second.x, second.y + cTop, drawn.width - cHidden, drawn.height});
        for (int y = 0; y < seen.height; ++y)
            for (int x = 0; x < seen.width; ++x)
                if (seen.at(x, y) != drawn.at(cHidden + x, y))
                    return false;
        return true;
    };
    s_pWeston->goTo(1); // or the pointer would be in the picture
    EXPECT_TRUE(waitInLoop(isSeenThere));
    EXPECT_TRUE(isClickHeard(second.x + 2 * 100 - cHidden, second.y + cTop + 2 * 30, "100,30"));
    EXPECT_TRUE(isClickHeard(edge - 10, 60, "10,20"));
    drag(edge - 10, 60, 100);
    ASSERT_TRUE(waitInLoop([&] { return view.getPixelHiDPISizeScale() == 1; }));
    s_pWeston->goTo(0);
    EXPECT_TRUE(showsItsFrame(view));
    EXPECT_EQ(corner.width, 200);
    EXPECT_TRUE(isClickHeard(corner.x + 60, corner.y + 50, "60,50"));
    EXPECT_FALSE(view.isPictureWrong || view.isContextWrong);
}

TEST_F(WaylandTest, TheFrameHasAButtonThatCloses)
{
    RecordingView view;
    view.create();
    gui::Window window("Closes", {200, 150});
    ASSERT_NO_FATAL_FAILURE(show(window, view, 0));
    xdo(at(200 - 16, -12));
    xdo("click 1");
    EXPECT_TRUE(waitInLoop([&] { return !window.isOpen(); }));
    EXPECT_TRUE(view.isCleaned);
    EXPECT_FALSE(app.step(0)) << "the last window is closed";
}

TEST_F(WaylandTest, TwoWindowsTwoContexts)
{
    RecordingView first;
    RecordingView second;
    first.create(Context::Animation::On);
    second.create(Context::Animation::On);
    // Not a grey: the decorations have those.
    second.topLeft = 0xC020C0;
    gui::Window firstWindow("First", {200, 150});
    gui::Window secondWindow("Second", {160, 100});
    ASSERT_NO_FATAL_FAILURE(show(firstWindow, first, 0));
    ASSERT_NO_FATAL_FAILURE(show(secondWindow, second, 1));
    EXPECT_TRUE(showsItsFrame(first));
    EXPECT_TRUE(showsItsFrame(second));
    firstWindow.close();
    EXPECT_TRUE(first.isCleaned);
    const int nFrames = second.nFrames;
    EXPECT_TRUE(waitInLoop([&] { return second.nFrames >= nFrames + 3; }));
    EXPECT_TRUE(showsItsFrame(second));
    EXPECT_FALSE(first.isContextWrong || second.isContextWrong);
    EXPECT_FALSE(first.isPictureWrong || second.isPictureWrong);
}

} // namespace

} // namespace test
