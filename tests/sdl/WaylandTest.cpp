// Windows on Wayland: input from another process, scales, contexts.

#include "DesktopTest.h"
#include "KeptView.h"
#include "Weston.h"

#include <epoxy/gl.h>

#include <cstdlib>

namespace test
{

namespace
{

std::unique_ptr<Weston> s_pWeston;

class Environment : public testing::Environment
{
public:
    void SetUp() override
    {
        setenv("GUIGL_WINDOW_SYSTEM", "wayland", 1);
        s_pWeston = std::make_unique<Weston>("us,de");
        ASSERT_TRUE(s_pWeston->isOk());
    }
};

testing::Environment* const s_pEnvironment = testing::AddGlobalTestEnvironment(new Environment);

INSTANTIATE_TEST_SUITE_P(Wayland, DesktopTest, testing::Values(0, 1));

using gui::gl::Context;
using WaylandTest = DesktopFixture;

// Picture and pointer agree before, during and after: on one output, across both, and back.
TEST_F(WaylandTest, MoveToAnotherScale)
{
    RecordingView view;
    view.create();
    gui::Window window("Moves", {200, 150});
    ASSERT_NO_FATAL_FAILURE(show(window, view, "Window"));
    ASSERT_EQ(view.getPixelHiDPISizeScale(), 1);
    view.sizes.clear();
    const auto isClickHeard = [&](int x, int y, const std::string& point)
    {
        xdo("mousemove " + std::to_string(x) + " " + std::to_string(y) + " click 3");
        // To SDL3 a second click may be a double one: it does not count what the window was moved meanwhile.
        return waitInLoop([&]
                          { return !view.lines.empty() && view.lines.back().starts_with("release2 " + point + " x"); });
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
    const int edge = desktop().area(0).width - 1;
    drag(corner.x + 20, corner.y + 20, edge);
    ASSERT_TRUE(waitInLoop([&] { return view.getPixelHiDPISizeScale() == 2; }));
    EXPECT_EQ(view.getPixelHiDPIScale(), 2);
    EXPECT_EQ(window.getSize(), (td::Size<double>{200, 150}));
    EXPECT_EQ(view.sizes, (std::vector<td::Size<double>>{{200, 150}}));
    // All but its first 21 points is on the second output.
    const XServer::Place second = desktop().area(1);
    constexpr int cHidden = 2 * 21, cTop = 2 * 40;
    const auto isSeenThere = [&]
    {
        const Screenshot drawn = view.readPixels();
        if (drawn.width != 400 || drawn.height != 300)
            return false;
        const Screenshot seen =
            desktop().server().shoot({second.x, second.y + cTop, drawn.width - cHidden, drawn.height});
        for (int y = 0; y < seen.height; ++y)
            for (int x = 0; x < seen.width; ++x)
                if (seen.at(x, y) != drawn.at(cHidden + x, y))
                    return false;
        return true;
    };
    desktop().goTo(1); // or the pointer would be in the picture
    EXPECT_TRUE(waitInLoop(isSeenThere));
    EXPECT_TRUE(isClickHeard(second.x + 2 * 100 - cHidden, second.y + cTop + 2 * 30, "100,30"));
    EXPECT_TRUE(isClickHeard(edge - 10, 60, "10,20"));
    drag(edge - 10, 60, 100);
    ASSERT_TRUE(waitInLoop([&] { return view.getPixelHiDPISizeScale() == 1; }));
    desktop().goTo(0);
    EXPECT_TRUE(showsItsFrame(view));
    EXPECT_EQ(corner.width, 200);
    EXPECT_TRUE(isClickHeard(corner.x + 60, corner.y + 50, "60,50"));
    EXPECT_FALSE(view.isWrong);
}

class Clear : public gui::gl::View
{
public:
    explicit Clear(bool isTransparent)
    {
        Context context(gui::gl::DepthBuffer::Size::None, gui::gl::StencilBuffer::Size::None, Context::Profile::Core41);
        context.setTransparent(isTransparent);
        createContext(context);
    }

private:
    void onDraw(const td::RectNormalized<double>&) override
    {
        glClearColor(0.5F, 0, 0, 0.5F);
        glClear(GL_COLOR_BUFFER_BIT);
    }
};

// The compositor's ground shows through a window that asks for it alone.
TEST_F(WaylandTest, TheGroundShowsThroughAnAlpha)
{
    const auto isSeen = [](bool isTransparent, std::uint32_t color)
    {
        Clear view(isTransparent);
        gui::Window window("Clear", {200, 150});
        desktop().goTo(0);
        EXPECT_TRUE(window.show(view));
        const XServer::Place screen = desktop().area(0);
        return waitInLoop(
            [&]
            {
                const XServer::Place place = desktop().server().find(color, screen);
                return place.x < screen.x + screen.width - 150;
            });
    };
    // Half of 0x303030, over which there is half a red; or that red alone.
    EXPECT_TRUE(isSeen(true, 0x981818) || isSeen(true, 0x971818));
    EXPECT_TRUE(isSeen(false, 0x800000) || isSeen(false, 0x7F0000));
}

// SDL makes contexts for the frame buffers of the window that was made last, which another window can't use.
TEST_F(WaylandTest, ALostContextIsReplacedWhateverWindowCameLast)
{
    KeptView view;
    view.create();
    gui::Window window("Kept", {200, 150});
    desktop().goTo(0);
    ASSERT_TRUE(window.show(view));
    ASSERT_TRUE(waitInLoop([&] { return view.nFrames > 0 && view.getPixelHiDPISizeScale() == 1; }));
    const std::vector<td::BYTE> before = view.picture();
    const Clear other(true);
    view.loseContext();
    const int nFrames = view.nFrames;
    view.reRender();
    ASSERT_TRUE(waitInLoop([&] { return view.nFrames > nFrames; }));
    EXPECT_EQ(view.nContexts, 2);
    EXPECT_EQ(view.picture(), before);
    EXPECT_EQ(log.take().size(), 1U); // of the other context
}

TEST_F(WaylandTest, TheFrameHasAButtonThatCloses)
{
    RecordingView view;
    view.create();
    gui::Window window("Closes", {200, 150});
    ASSERT_NO_FATAL_FAILURE(show(window, view, "Window"));
    xdo(at(200 - 16, -12));
    xdo("click 1");
    EXPECT_TRUE(waitInLoop([&] { return !window.isOpen(); }));
    EXPECT_EQ(view.nCleanUps, 1);
    EXPECT_FALSE(app.step(0)) << "the last window is closed";
}

} // namespace

Desktop& desktop() { return *s_pWeston; }

} // namespace test
