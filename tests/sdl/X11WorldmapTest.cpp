// The map of the world in a real window, and a user who goes about in it.

#include "X11Fixture.h"

#include "examples/World.h"
#include "support/Pictures.h"

#include <worldmap/MapView.h>

#include <algorithm>
#include <cmath>
#include <functional>

namespace test
{

namespace
{

using worldmap::Countries;
using worldmap::MapView;
using worldmap::Projection;

// The software renderer's versions round the edges of triangles and lines in other ways.
constexpr PictureLimits cEdges{.max = 255, .mean = 0.3};

class SteppedMap : public MapView
{
public:
    using MapView::MapView;

    std::function<void()> onStep;

protected:
    void onZoomChanged() override
    {
        if (onStep)
            onStep();
    }
};

class X11WorldmapTest : public X11Fixture
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(window.show(view));
        ASSERT_TRUE(waitInLoop([&] { return (_id = xServer().findWindow("World map")) != 0; }));
        ASSERT_TRUE(waitInLoop([&] { return xServer().focus() == _id; }));
        fitZoom = view.getZoom();
    }

    /// What the screen shows of a view's next frame, once that is there.
    static Screenshot seen(gui::gl::View& map, XServer::Window id)
    {
        const Screenshot frame = grabFrame(map);
        Screenshot shot;
        EXPECT_TRUE(waitInLoop([&] { return (shot = xServer().shoot(xServer().placeOf(id))) == frame; }));
        return shot;
    }
    Screenshot seen() { return seen(view, _id); }

    static testing::AssertionResult isLike(const Screenshot& shot, const std::string& reference)
    {
        gui::Texture picture;
        gui::TextureHelper helper(&picture);
        helper.reserve(static_cast<unsigned int>(3 * shot.pixels.size()));
        helper.updateInfo(shot.width, shot.height, 3);
        for (std::size_t i = 0; i < 3 * shot.pixels.size(); ++i)
            picture.getBytes()[i] = static_cast<unsigned char>(shot.pixels[i / 3] >> (16 - 8 * (i % 3)));
        return comparePictures(picture, reference, cEdges);
    }

    void pointAt(int x, int y) const
    {
        const XServer::Place place = xServer().placeOf(_id);
        xdo("mousemove " + std::to_string(place.x + x) + ' ' + std::to_string(place.y + y));
    }
    bool isTitled(const std::string& title) const
    {
        return waitInLoop([&] { return xServer().findWindow(title) == _id; });
    }
    void type(const std::string& key, const std::function<bool()>& isDone)
    {
        xdo("key " + key);
        EXPECT_TRUE(waitInLoop(isDone)) << key;
    }

    gui::Window window{"World map", {640, 360}};
    SteppedMap view{window, world()};
    double fitZoom = 0;

private:
    XServer::Window _id = 0;
};

TEST_F(X11WorldmapTest, ShowsTheWorldAndNamesCountries)
{
    EXPECT_TRUE(isLike(seen(), "worldmap-world.png"));

    // A country in another one.
    view.setZoom(60);
    view.center({28.2, -29.5});
    pointAt(320, 180);
    EXPECT_TRUE(isTitled("World map - Lesotho"));
    EXPECT_TRUE(isLike(seen(), "worldmap-lesotho.png"));
    pointAt(150, 180);
    EXPECT_TRUE(isTitled("World map - South Africa"));
    // The map moves under the pointer.
    view.center({28.2 + 170 / 60.0, -29.5});
    EXPECT_TRUE(isTitled("World map - Lesotho"));
    movePointerAway();
    EXPECT_TRUE(isTitled("World map"));
    EXPECT_EQ(view.getCountry(), Countries::cNone);
}

TEST_F(X11WorldmapTest, ZoomsAboutThePointer)
{
    constexpr td::Point<double> cPointer{400, 120};
    pointAt(400, 120);
    const td::Point<double> place = view.getModelPoint(cPointer);
    double zoom = view.getZoom();
    int nSteps = 0;
    view.onStep = [&]
    {
        if (view.getZoom() == zoom)
            return; // each step is told twice
        zoom = view.getZoom();
        ++nSteps;
        const td::Point<double> now = view.getModelPoint(cPointer);
        EXPECT_LT(std::hypot(now.x - place.x, now.y - place.y) * zoom, 0.5) << nSteps;
    };
    const double enlarged = fitZoom * std::pow(1.12, 20);
    xdo("keydown ctrl click --repeat 20 --delay 12 4");
    EXPECT_TRUE(waitInLoop([&] { return nSteps == 20; })) << nSteps;
    EXPECT_NEAR(zoom, enlarged, 1e-9);
    EXPECT_TRUE(isLike(seen(), "worldmap-zoomed.png"));
    xdo("click --repeat 20 --delay 12 5 keyup ctrl");
    EXPECT_TRUE(waitInLoop([&] { return nSteps == 40; })) << nSteps;
    EXPECT_NEAR(zoom, enlarged * std::pow(0.88, 20), 1e-9);
}

TEST_F(X11WorldmapTest, LimitsHold)
{
    pointAt(320, 180);
    view.setZoom(390);
    xdo("keydown ctrl click --repeat 3 --delay 20 4 keyup ctrl");
    EXPECT_TRUE(waitInLoop([&] { return view.getZoom() == 400; }));
    type("0", [&] { return view.getZoom() == fitZoom; });
    xdo("keydown ctrl click --repeat 9 --delay 20 5 keyup ctrl");
    EXPECT_TRUE(waitInLoop([&] { return view.getZoom() == fitZoom / 2; }));
    // However far the wheel goes, 60 points of the map stay in sight: its lower right corner.
    xdo("keydown alt click --repeat 30 --delay 20 4 click --repeat 30 --delay 20 7 keyup alt");
    const worldmap::Box sheet = worldmap::sheetOf(Projection::Equirectangular);
    const auto isAt = [&](double x, double y)
    { return std::abs(x * view.getZoom() - 60) < 1e-6 && std::abs(y * view.getZoom() - 60) < 1e-6; };
    EXPECT_TRUE(waitInLoop(
        [&]
        {
            return isAt(sheet.max.x - view.getVisible().min.x, view.getVisible().max.y - sheet.min.y) ||
                   isAt(sheet.max.x - view.getVisible().min.x, sheet.max.y - view.getVisible().min.y);
        }));
}

TEST_F(X11WorldmapTest, KeysMoveAndProject)
{
    const td::Point<double> origin = view.getOrigin();
    type("Right", [&] { return std::abs(view.getOrigin().x - (origin.x + 60 / fitZoom)) < 1e-9; });
    type("Up", [&] { return std::abs(view.getOrigin().y - (origin.y + 60 / fitZoom)) < 1e-9; });
    type("plus", [&] { return std::abs(view.getZoom() / (1.1 * fitZoom) - 1) < 1e-9; });
    type("minus", [&] { return std::abs(view.getZoom() / fitZoom - 1) < 1e-9; });
    type("0", [&] { return view.getOrigin() == origin; });
    type("m", [&] { return view.getMapProjection() == Projection::Mercator; });
    EXPECT_TRUE(isLike(seen(), "worldmap-mercator.png"));
    // It goes on to fit until somebody moves it.
    window.setSize({400, 300});
    EXPECT_TRUE(waitInLoop(
        [&] {
            return std::abs(view.getVisible().middle().x - 11) < 1e-6 &&
                   view.getVisible().width() * view.getZoom() == 400;
        }));
}

TEST_F(X11WorldmapTest, TheOverviewFollowsAndLeads)
{
    view.setZoom(8);
    view.center({20, 5});
    type("o", [&] { return xServer().findWindow("World map - overview") != 0; });
    const XServer::Window id = xServer().findWindow("World map - overview");
    auto& overview = const_cast<worldmap::Overview&>(*view.getOverview());

    // The rectangle's pixels are around what the map shows.
    const auto expectRectangle = [&]
    {
        constexpr std::uint32_t cCrimson = 0xDC143C;
        const Screenshot shot = seen(overview, id);
        int left = shot.width, right = 0, top = shot.height, bottom = 0;
        for (int y = 0; y < shot.height; ++y)
            for (int x = 0; x < shot.width; ++x)
                if (shot.at(x, y) == cCrimson)
                {
                    left = std::min(left, x), right = std::max(right, x);
                    top = std::min(top, y), bottom = std::max(bottom, y);
                }
        const double pixel = 2 / overview.getZoom();
        const td::Point<double> min = overview.getModelPoint({static_cast<double>(left), static_cast<double>(bottom)});
        const td::Point<double> max = overview.getModelPoint({static_cast<double>(right), static_cast<double>(top)});
        EXPECT_NEAR(min.x, view.getVisible().min.x, pixel);
        EXPECT_NEAR(min.y, view.getVisible().min.y, pixel);
        EXPECT_NEAR(max.x, view.getVisible().max.x, pixel);
        EXPECT_NEAR(max.y, view.getVisible().max.y, pixel);
    };
    expectRectangle();
    view.center({-60, -10});
    expectRectangle();
    const XServer::Place place = xServer().placeOf(id);
    xdo("mousemove " + std::to_string(place.x + 300) + ' ' + std::to_string(place.y + 100) + " click 1");
    const td::Point<double> clicked = overview.getModelPoint({300, 100});
    EXPECT_TRUE(waitInLoop(
        [&]
        {
            return std::abs(view.getVisible().middle().x - clicked.x) < 1e-6 &&
                   std::abs(view.getVisible().middle().y - clicked.y) < 1e-6;
        }));
    expectRectangle();
    xServer().setFocus(id);
    type("o", [&] { return xServer().findWindow("World map - overview") == 0; });
    seen();
    // The map takes an overview along that is still open.
    xServer().setFocus(xServer().findWindow("World map"));
    type("o", [&] { return xServer().findWindow("World map - overview") != 0; });
}

} // namespace

} // namespace test
