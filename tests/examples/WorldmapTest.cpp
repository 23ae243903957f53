#include "World.h"

#include "support/OffscreenGL.h"

#include <gui/gl/FrameLedger.h>
#include <worldmap/Names.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace
{

using test::world;
using worldmap::Countries;
using worldmap::Names;
using worldmap::Point;
using worldmap::Projection;

constexpr double cCoarseZoom = 3, cFineZoom = 30;

/// A view of 640 by 360 points without a window.
class Map : public worldmap::SheetView
{
public:
    explicit Map(Projection projection)
        : SheetView(world(), projection)
    {
        onResize({640, 360});
    }

    void lookAt(double zoom, const Point& degrees)
    {
        setZoom(zoom);
        setCenter(project(getMapProjection(), degrees));
    }

    std::size_t find(const Point& point) const { return drawing().getTag(drawing().pick(point)) - 1; }

    std::string nameAt(const Point& degrees)
    {
        const std::size_t country = find(project(getMapProjection(), degrees));
        return country == Countries::cNone ? "" : world().all[country].name;
    }

    using SheetView::onDraw;
};

using WorldmapGLTest = test::OffscreenGL;

// On the real map, which is found by looking at both sides of its borders.
TEST_F(WorldmapGLTest, CountriesDifferFromThoseAcrossTheirBorders)
{
    constexpr double cStep = 1e-4; // degrees
    Map map(Projection::Equirectangular);
    map.setZoom(cFineZoom);
    map.onDraw({});
    std::size_t nSeen = 0;
    for (const examples::TopoJSON::Line& line : world().fine.borders)
        for (std::size_t i = 1; i < line.size(); i += 4)
        {
            const Point middle((line[i - 1].x + line[i].x) / 2, (line[i - 1].y + line[i].y) / 2);
            const double dx = line[i].x - line[i - 1].x, dy = line[i].y - line[i - 1].y;
            const double length = std::hypot(dx, dy);
            const std::size_t left = map.find({middle.x - dy / length * cStep, middle.y + dx / length * cStep});
            const std::size_t right = map.find({middle.x + dy / length * cStep, middle.y - dx / length * cStep});
            if (left == Countries::cNone || right == Countries::cNone || left == right)
                continue; // where a third country or the same one is nearer than the step
            ++nSeen;
            EXPECT_NE(world().all[left].color, world().all[right].color) << world().all[left].name;
        }
    EXPECT_GT(nSeen, 4'700U) << "a quarter of 19,252 pieces of borders";

    std::array<std::size_t, worldmap::cNoOfColors> nUses{};
    for (const worldmap::Country& country : world().all)
        ++nUses[country.color];
    EXPECT_GT(*std::min_element(nUses.begin(), nUses.end()), 30U) << "of 241 countries";
}

TEST_F(WorldmapGLTest, PointsAreFoundInTheirCountries)
{
    const struct
    {
        const char* country;
        Point degrees;
    } points[] = {
        {"South Africa", {24, -30}},
        {"Lesotho", {28.2, -29.5}},
        {"Italy", {12.5, 42.5}},
        {"San Marino", {12.46, 43.94}},
        {"Vatican", {12.435, 41.902}},
        {"Russia", {20.5, 54.7}},
        {"Russia", {185, 66}},
        {"Fiji", {178, -17.8}},
        {"United States of America", {-150, 65}},
        {"Antarctica", {0, -80}},
        {"Antarctica", {190.9, -88}},
        {"Antarctica", {-168.9, -89.99}},
        {"", {0, 0}},
        {"", {51, 42}},
        {"", {0, 90}},
        {"", {185, 0}},
        {"", {400, 10}},
    };
    Map map(Projection::Equirectangular);
    for (const double zoom : {cCoarseZoom, cFineZoom})
    {
        map.setZoom(zoom);
        map.onDraw({});
        for (const auto& point : points)
            EXPECT_EQ(map.nameAt(point.degrees), point.country)
                << point.degrees.x << ' ' << point.degrees.y << " zoom " << zoom;
    }
}

TEST_F(WorldmapGLTest, NamesHaveRoomWhereTheyBelong)
{
    const struct
    {
        Projection projection;
        double zoom;
        std::vector<std::string> shown, hidden;
    } cases[] = {
        {Projection::Equirectangular, 1.7, {"Russia", "China", "Brazil"}, {"Lesotho", "France", "Malta"}},
        {Projection::Equirectangular, 3, {"Antarctica", "Sri Lanka", "Iceland"}, {"New Caledonia"}},
        {Projection::Mercator, 14, {"Germany", "France", "Austria", "Russia"}, {"Vatican", "Monaco"}},
        {Projection::Mercator, 20, {"Fiji"}, {}}, // beside it
        {Projection::Mercator, 60, {"South Africa", "Lesotho", "eSwatini"}, {"San Marino"}},
        {Projection::Mercator, 390, {"Lesotho", "Italy"}, {"Vatican"}},
    };
    const std::vector<worldmap::Country>& countries = world().all;
    Names names;
    for (const auto& c : cases)
    {
        Map map(c.projection);
        map.lookAt(c.zoom, {28.2, -29.5});
        map.onDraw({});
        names.draw(map);
        const auto isShown = [&](const std::string& name)
        {
            const auto found = std::find_if(countries.begin(), countries.end(),
                                            [&name](const worldmap::Country& country) { return country.name == name; });
            return names.isShown(static_cast<std::size_t>(found - countries.begin()));
        };
        for (const std::string& name : c.shown)
            EXPECT_TRUE(isShown(name)) << name << " zoom " << c.zoom;
        for (const std::string& name : c.hidden)
            EXPECT_FALSE(isShown(name)) << name << " zoom " << c.zoom;
    }
}

TEST_F(WorldmapGLTest, LengthsAndPlacesAreThoseInTheMiddle)
{
    const struct
    {
        Projection projection;
        double zoom;
        Point middle;
        double kilometre; // in points, a degree of the equator being 111.2 km
        const char* place;
    } cases[] = {
        {Projection::Equirectangular, 1.7, {11, 0}, 0.01529, "0.00\u00b0 N 11.00\u00b0 E"},
        {Projection::Equirectangular, 60, {28.2, -29.5}, 0.6199, "29.50\u00b0 S 28.20\u00b0 E"},
        {Projection::Mercator, 60, {-20, 64}, 1.2309, "64.00\u00b0 N 20.00\u00b0 W"},
        {Projection::Mercator, 390, {190, 0}, 3.507, "0.00\u00b0 N 170.00\u00b0 W"},
        {Projection::Equirectangular, 10, {0, 95}, 1.0318, ""},
    };
    for (const auto& c : cases)
    {
        Map map(c.projection);
        map.lookAt(c.zoom, c.middle);
        EXPECT_NEAR(map.getPointsPerKilometre(), c.kilometre, 1e-3 * c.kilometre);
        EXPECT_EQ(map.getPlaceText({320, 180}), c.place);
    }
}

TEST_F(WorldmapGLTest, StepsUploadNothingAndAHighlightACountrysColors)
{
    using gui::gl::FrameLedger;
    Map map(Projection::Equirectangular);
    FrameLedger::start();
    const auto uploadsOf = [&map]
    {
        FrameLedger::begin();
        map.onDraw({});
        FrameLedger::end();
        return FrameLedger::getLast().nBytesUploaded;
    };
    map.lookAt(20, {10, 50});
    EXPECT_GT(uploadsOf(), 1'000'000U);
    uploadsOf();
    for (int i = 0; i < 3; ++i)
    {
        map.setCenter({10.0 + i, 50});
        EXPECT_EQ(uploadsOf(), 0U) << "pan";
        map.zoomBy(1.3);
        EXPECT_EQ(uploadsOf(), 0U) << "zoom";
    }
    map.highlight(3);
    EXPECT_LT(uploadsOf(), 64U);
    FrameLedger::stop();
}

} // namespace
