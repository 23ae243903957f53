#include "examples/globe/Borders.h"
#include "examples/globe/Earth.h"
#include "examples/globe/Geography.h"
#include "examples/globe/Labels.h"
#include "examples/globe/Orbit.h"

#include "support/OffscreenGL.h"

#include <gui/Res.h>
#include <gui/gl/Context.h>

#include <glm/ext/matrix_clip_space.hpp>
#include <glm/ext/matrix_transform.hpp>
#include <glm/geometric.hpp>
#include <glm/trigonometric.hpp>

#include <algorithm>
#include <string>

namespace
{

using namespace globe;
using glm::vec3;
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
        const td::String json = gui::getResText("globe/countries-50m.json");
        ASSERT_TRUE(countries.load({json.c_str(), json.length()}, "countries"));
        gui::gl::Context::enable(gui::gl::Context::Flag::DepthTest);
    }

    /// North is up, the place in the middle. @param sun  where it is noon
    static Sight lookAt(const Place& place, const Place& sun, float distance = 3)
    {
        const vec3 eye = distance * directionOf(place);
        const glm::mat4 projection = glm::perspective(glm::radians(45.0F), 1.0F, 0.1F, 20.0F);
        return {projection * glm::lookAt(eye, vec3(0), vec3(0, 1, 0)), eye, directionOf(sun)};
    }

    examples::TopoJSON countries;
};

bool isSand(const Pixel& p) { return p.red > p.green && p.green > p.blue && p.red > 150; }
bool isWater(const Pixel& p) { return p.blue > p.red + 40 && p.blue > p.green + 10; }
bool isIce(const Pixel& p) { return std::min({p.red, p.green, p.blue}) > 185; }
bool isForest(const Pixel& p) { return p.green > p.red + 3 && p.green > p.blue + 10; }
bool isDark(const Pixel& p) { return std::max({p.red, p.green, p.blue}) < 20; }

// A texture that hangs the wrong way round, or begins at another meridian, shows another place.
TEST_F(GlobeTest, PlacesLieWhereTheyAre)
{
    const struct
    {
        const char* name;
        Place place;
        bool (*isRight)(const Pixel&);
    } cases[] = {
        {"Sahara", {10, 24}, isSand},     {"Australia", {128, -24}, isSand},    {"South Pacific", {-128, -24}, isWater},
        {"Congo", {22, -1}, isForest},    {"mid-Atlantic", {-22, -1}, isWater}, {"Greenland", {-42, 74}, isIce},
        {"Antarctica", {60, -82}, isIce},
    };
    Earth earth;
    ASSERT_TRUE(earth.init());
    for (const auto& c : cases)
    {
        clear();
        earth.drawSurface(lookAt(c.place, c.place));
        EXPECT_TRUE(c.isRight(pixel(cSize / 2, cSize / 2))) << c.name << ": " << pixel(cSize / 2, cSize / 2);
        clear();
        earth.drawSurface(lookAt(c.place, {c.place.longitude + 180, -c.place.latitude}));
        EXPECT_TRUE(isDark(pixel(cSize / 2, cSize / 2))) << c.name << " at midnight";
    }
    // The air is around the rim, and nothing beyond.
    clear();
    earth.drawSurface(lookAt({0, 0}, {0, 0}));
    earth.drawAir(lookAt({0, 0}, {0, 0}));
    EXPECT_TRUE(isWater(pixel(cSize / 2 - 40, cSize / 2)));
    EXPECT_TRUE(isDark(pixel(3, 3)));
}

TEST_F(GlobeTest, BordersShowOnTheNearSideOnly)
{
    Earth earth;
    Borders borders;
    ASSERT_TRUE(earth.init() && borders.init(countries));
    // Along 25 degrees east, between Libya and Egypt; from behind, that is over the Pacific.
    for (const bool isNear : {true, false})
    {
        const Sight sight = lookAt(isNear ? Place{25, 26} : Place{-155, -26}, {isNear ? 25.0 : -155.0, 0}, 1.5F);
        int difference = 0;
        clear();
        earth.drawSurface(sight);
        const Pixel without = pixel(cSize / 2, cSize / 2);
        borders.draw(sight);
        for (int x = cSize / 2 - 2; x <= cSize / 2 + 2; ++x)
            difference = std::max(difference, pixel(x, cSize / 2).blue - without.blue);
        EXPECT_EQ(difference > 8, isNear) << difference;
    }
}

TEST_F(GlobeTest, LargeCountriesInFrontHaveNames)
{
    Labels labels(countries);
    const auto isShown = [&](const std::string& name)
    {
        const auto found =
            std::find_if(countries.getAreas().begin(), countries.getAreas().end(),
                         [&name](const examples::TopoJSON::Area& country) { return country.name == name; });
        return labels.isShown(static_cast<std::size_t>(found - countries.getAreas().begin()));
    };
    labels.draw(lookAt({18, 8}, {18, 8}, 2.6F), {900, 900}, 1);
    for (const char* name : {"Algeria", "Niger", "Chad", "Sudan", "Angola"})
        EXPECT_TRUE(isShown(name)) << name;
    for (const char* name : {"Brazil", "Australia", "China", "Canada", "Luxembourg"}) // behind, or too small
        EXPECT_FALSE(isShown(name)) << name;
    labels.draw(lookAt({6, 50}, {6, 50}, 1.15F), {900, 900}, 1); // nearer
    EXPECT_TRUE(isShown("Belgium"));
    EXPECT_FALSE(isShown("Niger"));
}

TEST(OrbitTest, EyesStayOutsideOfTheAirAndInSight)
{
    Orbit orbit;
    const struct
    {
        vec3 before, after;
        float radius;
    } cases[] = {
        {{0, 0, 2}, {0, 0, 1.9F}, 1.9F},         {{0, 0, 1.2F}, {0, 0, 1.05F}, Orbit::cLowest},
        {{0, 0, 2}, {0, 0, -2}, Orbit::cLowest}, {{0, 8, 3}, {0, 12, 3}, Orbit::cHighest},
        {{0, 0, 1.5F}, {0, 0, 0}, 1.5F},         {{2, 0, 1}, {-2, 0, 1}, Orbit::cLowest},
    };
    for (const auto& c : cases)
    {
        const vec3 limited = orbit.limit(c.before, c.after);
        EXPECT_NEAR(glm::length(limited), c.radius, 1e-4F);
        EXPECT_GT(glm::dot(limited, c.before), 0); // on the side it came from
    }
}

} // namespace
