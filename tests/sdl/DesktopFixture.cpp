#include "DesktopFixture.h"

#include "support/Pinning.h"

#include <cstdlib>

namespace test
{

namespace
{

constexpr XServer::Place cScreen{0, 0, 1280, 1024};

} // namespace

DesktopFixture::DesktopFixture()
{
    theApplication() = &app;
    EXPECT_TRUE(log.said(std::string("Application runs on window system: ") + std::getenv("GUIGL_WINDOW_SYSTEM")));
    desktop().setLayouts("us,de");
    desktop().goTo(0);
}

DesktopFixture::~DesktopFixture()
{
    theApplication() = nullptr;
    pinLoadedLibraries();
}

void DesktopFixture::show(ShownWindow& window, RecordingView& view, const char* title, int place,
                          gui::gl::Context::Animation animation)
{
    desktop().goTo(place);
    ASSERT_TRUE(window.show(view, animation));
    waitUntilSeen(view, title, place);
}

void DesktopFixture::show(gui::Window& window, RecordingView& view, const char* title, int place)
{
    desktop().goTo(place);
    ASSERT_TRUE(window.show(view));
    waitUntilSeen(view, title, place);
}

void DesktopFixture::waitUntilSeen(RecordingView& view, const char* title, int place)
{
    ASSERT_TRUE(waitInLoop([&] { return desktop().bring(title, place); }));
    ASSERT_TRUE(showsItsFrame(view));
    const XServer::Place area = desktop().area(place);
    ASSERT_TRUE(corner.x >= area.x && corner.x < area.x + area.width);
    scale = desktop().scale(place);
    view.lines.clear();
}

testing::AssertionResult DesktopFixture::showsItsFrame(RecordingView& view)
{
    return shows(view, [&view] { return view.readPixels(); });
}

testing::AssertionResult DesktopFixture::shows(const RecordingView& view, const std::function<Screenshot()>& readFrame)
{
    const auto isSeen = [&]
    {
        const Screenshot drawn = readFrame();
        corner = desktop().server().find(view.topLeft, cScreen);
        corner.width = drawn.width;
        corner.height = drawn.height;
        return drawn.width > 0 && corner.x + drawn.width <= cScreen.width &&
               corner.y + drawn.height <= cScreen.height && desktop().server().shoot(corner) == drawn;
    };
    if (waitInLoop(isSeen))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "last seen at " << corner.x << ", " << corner.y << " with " << corner.width
                                       << " by " << corner.height << " pixels";
}

std::string DesktopFixture::at(int x, int y) const
{
    return "mousemove " + std::to_string(corner.x + x * scale) + " " + std::to_string(corner.y + y * scale);
}

} // namespace test
