// The map of the world in a real window, and a user who goes about in it.

#include "DesktopFixture.h"

#include "examples/World.h"

#include <worldmap/MapView.h>

#include <cmath>
#include <functional>

namespace test
{

namespace
{

using worldmap::Countries;
using worldmap::MapView;
using worldmap::Projection;

class X11WorldmapTest : public DesktopFixture
{
protected:
    static const XServer& xServer() { return desktop().server(); }

    void SetUp() override
    {
        ASSERT_TRUE(window.show(view));
        ASSERT_TRUE(waitInLoop([&] { return (_id = xServer().findWindow("World map")) != 0; }));
        ASSERT_TRUE(waitInLoop([&] { return xServer().hasFocus(_id); }));
    }

    /// The user does something, and waits for what it leads to.
    static void act(const std::string& actions, const std::function<bool()>& isDone)
    {
        xdo(actions);
        EXPECT_TRUE(waitInLoop(isDone)) << actions;
    }
    void expectTitle(const std::string& title) const
    {
        EXPECT_TRUE(waitInLoop([&] { return xServer().findWindow(title) == _id; })) << title;
    }
    XServer::Window windowID() const { return _id; }
    std::string at(int x, int y) const
    {
        const XServer::Place place = xServer().placeOf(_id);
        return "mousemove " + std::to_string(place.x + x) + ' ' + std::to_string(place.y + y) + ' ';
    }

    gui::Window window{"World map", {640, 360}};
    MapView view{window, world()};

private:
    XServer::Window _id = 0;
};

TEST_F(X11WorldmapTest, NamesWhatIsUnderThePointer)
{
    view.setZoom(60);
    view.setCenter({28.2, -29.5});
    xdo(at(320, 180));
    expectTitle("World map - Lesotho");
    xdo(at(150, 180));
    expectTitle("World map - South Africa");
    // The map moves under the pointer.
    view.setCenter({28.2 + 170 / 60.0, -29.5});
    expectTitle("World map - Lesotho");
    desktop().goTo(0);
    expectTitle("World map");
    EXPECT_EQ(view.getCountry(), Countries::cNone);
}

TEST_F(X11WorldmapTest, WheelAndKeysMoveWithinLimits)
{
    const auto isZoom = [&](double zoom)
    { return [&view = view, zoom] { return std::abs(view.getZoom() / zoom - 1) < 1e-9; }; };
    const double fit = view.getZoom();
    const td::Point<double> origin = view.getOrigin();
    const td::Point<double> place = view.getModelPoint({400, 120});
    act(at(400, 120) + "keydown ctrl click --repeat 20 --delay 12 4 keyup ctrl", isZoom(fit * std::pow(1.12, 20)));
    const td::Point<double> now = view.getModelPoint({400, 120});
    EXPECT_LT(std::hypot(now.x - place.x, now.y - place.y) * view.getZoom(), 0.5);
    act("key 0", [&] { return view.getOrigin() == origin; });
    act("key Right", [&] { return std::abs(view.getOrigin().x - (origin.x + 60 / fit)) < 1e-9; });
    act("key Up", [&] { return std::abs(view.getOrigin().y - (origin.y + 60 / fit)) < 1e-9; });
    act("key plus", isZoom(1.1 * fit));
    act("key minus", isZoom(fit));
    view.setZoom(390);
    act("keydown ctrl click --repeat 3 --delay 20 4 keyup ctrl", isZoom(400));
    act("key 0 keydown ctrl click --repeat 16 --delay 20 5 keyup ctrl", isZoom(0.5));
    // However far the wheel goes, 60 points of the map stay in sight: its lower right corner.
    const worldmap::Rect sheet = worldmap::sheetOf(Projection::Equirectangular);
    act("keydown alt click --repeat 30 --delay 20 4 click --repeat 30 --delay 20 7 keyup alt",
        [&]
        {
            const worldmap::Rect visible = view.getVisible();
            return std::abs((sheet.right - visible.left) * view.getZoom() - 60) < 1e-6 &&
                   std::abs(std::min(visible.bottom - sheet.top, sheet.bottom - visible.top) * view.getZoom() - 60) <
                       1e-6;
        });
    act("key m key 0", [&] { return view.getMapProjection() == Projection::Mercator; });
    // It goes on to fit until somebody moves it.
    window.setSize({400, 300});
    EXPECT_TRUE(waitInLoop(
        [&]
        {
            return std::abs(view.getCenter().x - 11) < 1e-6 &&
                   std::abs((view.getVisible().right - 11) * view.getZoom() - 200) < 1e-6;
        }));
}

TEST_F(X11WorldmapTest, TheOverviewFollowsAndLeads)
{
    view.setZoom(8);
    const auto isOpen = [] { return xServer().findWindow("World map - overview") != 0; };
    act("key o", isOpen);
    const XServer::Window id = xServer().findWindow("World map - overview");
    worldmap::SheetView& overview = *view.getOverview();
    // The rectangle is around what the map shows.
    const auto expectRectangle = [&](const td::Point<double>& middle)
    {
        EXPECT_TRUE(waitInLoop(
            [&] { return std::hypot(view.getCenter().x - middle.x, view.getCenter().y - middle.y) < 1e-6; }));
        const Screenshot shot = grabFrame(overview);
        const td::Point<double> topLeft = overview.getModelPoint({});
        const auto x = static_cast<int>(std::lround((view.getVisible().left - topLeft.x) * overview.getZoom()));
        const auto y = static_cast<int>(std::lround((topLeft.y - middle.y) * overview.getZoom()));
        int nCrimson = 0;
        for (int i = -2; i <= 2; ++i)
            nCrimson += shot.at(x + i, y) == 0xDC143C ? 1 : 0;
        EXPECT_TRUE(nCrimson == 1 || nCrimson == 2) << nCrimson;
    };
    for (const td::Point<double>& middle : {td::Point<double>(20, 5), td::Point<double>(-60, -10)})
    {
        view.setCenter(middle);
        expectRectangle(middle);
    }
    const XServer::Place place = xServer().placeOf(id);
    xdo("mousemove " + std::to_string(place.x + 300) + ' ' + std::to_string(place.y + 100) + " click 1");
    expectRectangle(overview.getModelPoint({300, 100}));
    act("windowfocus " + std::to_string(id) + " key o", [&] { return !isOpen(); });
    // The map takes an overview along that is still open. By now its title may name what is under the pointer.
    act("windowfocus " + std::to_string(windowID()) + " key o", isOpen);
}

} // namespace

} // namespace test
