#include "examples/globe/Countries.h"

#include "support/OffscreenGL.h"

#include <gui/draw/GlobeSurface.h>
#include <gui/draw/OrbitCamera.h>
#include <gui/gl/Context.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <string>

namespace
{

using namespace globe;
using gui::draw::Eye;
using test::Pixel;

constexpr int cSize = 256;

class GlobeTest : public test::OffscreenGL
{
protected:
    GlobeTest()
        : OffscreenGL({cSize, cSize})
    {
    }

    void SetUp() override
    {
        OffscreenGL::SetUp();
        ASSERT_TRUE(countries.init() && earth.init(":globe/earth-720x360.png"));
    }

    /// North is up, the place in the middle.
    static Eye lookAt(const Place& place, double distance = 3, double size = cSize)
    {
        gui::draw::OrbitCamera camera;
        camera.setFieldOfView(45);
        camera.setSize({size, size});
        camera.setBounds({glm::dvec3(-1.1), glm::dvec3(1.1)});
        camera.look(gui::draw::Globe{distance}.getPoint(place), {0, 0, 0});
        return camera.getEye();
    }

    /// @param sun  where it is noon
    Pixel middleOf(const Place& place, const Place& sun, double distance = 3, bool hasBorders = false)
    {
        clear();
        gui::gl::Context::enable(gui::gl::Context::Flag::DepthTest);
        earth.setSun(sun);
        earth.draw(lookAt(place, distance));
        countries.drawLines(lookAt(place, distance), hasBorders);
        earth.drawOver(lookAt(place, distance));
        return pixel(cSize / 2, cSize / 2);
    }

    Countries countries;
    gui::draw::GlobeSurface earth;
};

bool isSand(const Pixel& p) { return p.red > p.green && p.green > p.blue && p.red > 150; }
bool isWater(const Pixel& p) { return p.blue > p.red + 40 && p.blue > p.green + 10; }
bool isIce(const Pixel& p) { return std::min({p.red, p.green, p.blue}) > 185; }
bool isForest(const Pixel& p) { return p.green > p.red + 3 && p.green > p.blue + 10; }
bool isDark(const Pixel& p) { return std::max({p.red, p.green, p.blue}) < 20; }

// A texture that hangs the wrong way round, or begins at another meridian, shows another place; so does a map that is
// asked at another one.
TEST_F(GlobeTest, PlacesLieWhereTheyAre)
{
    const struct
    {
        const char* country; // null for none
        Place place;
        bool (*isRight)(const Pixel&);
    } cases[] = {
        {"Algeria", {5, 26}, isSand},     {"Australia", {128, -24}, isSand},
        {nullptr, {-128, -24}, isWater},  {"Dem. Rep. Congo", {22, -1}, isForest},
        {nullptr, {-22, -1}, isWater},    {"Greenland", {-42, 74}, isIce},
        {"Antarctica", {60, -82}, isIce},
    };
    for (const auto& c : cases)
    {
        const Pixel day = middleOf(c.place, c.place);
        const std::string name = c.country != nullptr ? c.country : "water";
        EXPECT_TRUE(c.isRight(day)) << name << ": " << day;
        EXPECT_TRUE(isDark(middleOf(c.place, {c.place.x + 180, -c.place.y}))) << name << " at midnight";
        const examples::TopoJSON::Area* const pCountry = countries.find(c.place);
        EXPECT_EQ(pCountry != nullptr ? pCountry->name : "water", name);
    }
    // A country on both sides of the map's edge.
    for (const double longitude : {178.0, -179.9})
        EXPECT_EQ(countries.find({longitude, longitude > 0 ? -17.8 : -16.8})->name, "Fiji") << longitude;
}

// Lines that are drawn through the earth, or below its surface, or an outline that stays.
TEST_F(GlobeTest, BordersShowOnTheNearSideOnly)
{
    GLint most = 0;
    glGetIntegerv(GL_MAX_TEXTURE_BUFFER_SIZE, &most);
    if (most < 200'000)
        GTEST_SKIP() << "the borders need larger texture buffers than the driver's " << most << " texels";
    // Along 25 degrees east, between Libya and Egypt; from behind, that is over the Pacific.
    for (const bool isNear : {true, false})
        for (const bool isPointed : {false, true})
        {
            const Place place = isNear ? Place{25, 26} : Place{-155, -26};
            const Place sun{place.x + 70, 0}; // low: sand is as bright as lines at noon
            countries.point(std::nullopt);
            const Pixel without = middleOf(place, sun, 1.5);
            if (isPointed)
                countries.point(Place{17, 27});
            middleOf(place, sun, 1.5, !isPointed);
            int difference = 0;
            for (int x = cSize / 2 - 2; x <= cSize / 2 + 2; ++x)
                difference = std::max(difference, std::abs(pixel(x, cSize / 2).green - without.green));
            EXPECT_EQ(difference > 8, isNear) << difference << isPointed;
        }
}

// Names that are behind the earth, or of what is too small from there.
TEST_F(GlobeTest, LargeCountriesInFrontHaveNames)
{
    const auto isShown = [&](const std::string& name)
    {
        for (int x = 0; x < 900; x += 4)
            for (int y = 0; y < 900; y += 4)
                if (countries.getNames().getText(countries.getNames().pick({double(x), double(y)})) == name)
                    return true;
        return false;
    };
    countries.drawNames(lookAt({18, 8}, 2.6, 900));
    for (const char* name : {"Algeria", "Niger", "Chad", "Sudan", "Angola"})
        EXPECT_TRUE(isShown(name)) << name;
    for (const char* name : {"Brazil", "Australia", "China", "Canada", "Luxembourg", "Berlin"})
        EXPECT_FALSE(isShown(name)) << name;
    countries.drawNames(lookAt({6, 50}, 1.15, 900)); // nearer
    EXPECT_TRUE(isShown("Belgium") && isShown("Paris"));
    EXPECT_FALSE(isShown("Niger"));
}

} // namespace
