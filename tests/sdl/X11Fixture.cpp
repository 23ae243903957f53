#include "X11Fixture.h"

#include "support/Pinning.h"

#include <cstdlib>

namespace test
{

namespace
{

std::unique_ptr<XServer> s_pServer;

class Desktop : public testing::Environment
{
public:
    void SetUp() override
    {
        setenv("GUIGL_WINDOW_SYSTEM", "x11", 1);
        s_pServer = std::make_unique<XServer>();
        ASSERT_TRUE(s_pServer->isOk() && s_pServer->startWindowManager());
    }
    // The server stays until the program has ended: it would take the program with it.
};

testing::Environment* const s_pDesktop = testing::AddGlobalTestEnvironment(new Desktop);

} // namespace

XServer& xServer() { return *s_pServer; }

X11Fixture::X11Fixture()
{
    theApplication() = &app;
    EXPECT_TRUE(log.said("Application runs on window system: x11"));
    xServer().setLayouts("us");
    movePointerAway();
}

X11Fixture::~X11Fixture()
{
    theApplication() = nullptr;
    pinLoadedLibraries();
}

void X11Fixture::show(gui::Window& window, RecordingView& view, const char* title)
{
    ASSERT_TRUE(window.show(view));
    ASSERT_TRUE(waitInLoop([&] { return xServer().findWindow(title) != 0 && view.nFrames > 0; }));
    ASSERT_TRUE(waitInLoop([&] { return xServer().focus() == xServer().findWindow(title); }));
    ASSERT_TRUE(showsItsFrame(title, view));
    view.forgetLines();
}

std::string X11Fixture::at(const char* title, int x, int y)
{
    const XServer::Place place = xServer().placeOf(xServer().findWindow(title));
    return "mousemove " + std::to_string(place.x + x) + " " + std::to_string(place.y + y);
}

testing::AssertionResult X11Fixture::showsItsFrame(const char* title, RecordingView& view)
{
    const XServer::Window window = xServer().findWindow(title);
    const Screenshot grabbed = view.grab();
    Screenshot seen;
    if (waitInLoop([&] { return (seen = xServer().shoot(xServer().placeOf(window))) == grabbed; }, 10))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "a frame of " << grabbed.width << " x " << grabbed.height
                                       << " in a window of " << seen.width << " x " << seen.height << " differs";
}

} // namespace test
