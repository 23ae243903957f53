#include "World.h"

#include "support/OffscreenGL.h"

#include <worldmap/Coloring.h>
#include <worldmap/Labels.h>
#include <worldmap/Legend.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace
{

using test::world;
using worldmap::Countries;
using worldmap::Labels;
using worldmap::Legend;
using worldmap::Outlook;
using worldmap::Projection;

std::string nameAt(const td::Point<double>& degrees)
{
    const std::size_t country = world().find(degrees);
    return country == Countries::cNone ? "" : world().getCountries()[country].name;
}

// On the real map, which is found by looking at both sides of every border.
TEST(Worldmap, CountriesDifferFromThoseAcrossTheirBorders)
{
    constexpr double cStep = 1e-4; // degrees
    std::size_t nSeen = 0;
    for (const Countries::Line& line : world().getBorders())
        for (std::size_t i = 1; i < line.size(); ++i)
        {
            const td::Point<double> middle((line[i - 1].x + line[i].x) / 2, (line[i - 1].y + line[i].y) / 2);
            const double dx = line[i].x - line[i - 1].x, dy = line[i].y - line[i - 1].y;
            const double length = std::hypot(dx, dy);
            const std::size_t left = world().find({middle.x - dy / length * cStep, middle.y + dx / length * cStep});
            const std::size_t right = world().find({middle.x + dy / length * cStep, middle.y - dx / length * cStep});
            if (left == Countries::cNone || right == Countries::cNone || left == right)
                continue; // where a third country or the same one is nearer than the step
            ++nSeen;
            EXPECT_NE(world().getCountries()[left].color, world().getCountries()[right].color)
                << nameAt(middle) << " at " << middle.x << ' ' << middle.y;
        }
    EXPECT_GT(nSeen, 19'000U); // of 19,252 pieces of borders

    std::array<std::size_t, worldmap::cNoOfColors> nUses{};
    for (const worldmap::Country& country : world().getCountries())
        ++nUses[country.color];
    EXPECT_GT(*std::min_element(nUses.begin(), nUses.end()), 30U) << "of 241 countries";
}

TEST(Worldmap, PointsAreFoundInTheirCountries)
{
    const struct
    {
        const char* country;
        td::Point<double> degrees;
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
    for (const auto& point : points)
        EXPECT_EQ(nameAt(point.degrees), point.country) << point.degrees.x << ' ' << point.degrees.y;
}

class WorldmapLabelsTest : public test::OffscreenGL
{
protected:
    void SetUp() override
    {
        OffscreenGL::SetUp();
        ASSERT_TRUE(labels.init());
        ASSERT_TRUE(legend.init());
    }

    static Outlook outlookAt(Projection projection, double zoom, const td::Point<double>& degrees, float scale = 1)
    {
        constexpr td::Size<double> cSize(640, 360);
        const td::Point<double> middle = worldmap::project(projection, degrees);
        const double x = cSize.width / 2 / zoom, y = cSize.height / 2 / zoom;
        return {projection, {{middle.x - x, middle.y - y}, {middle.x + x, middle.y + y}}, cSize, scale};
    }

    void draw(const Outlook& outlook) { labels.draw(outlook, Legend::boxesIn(outlook)); }

    bool isShown(const std::string& name) const
    {
        return std::any_of(labels.getShown().begin(), labels.getShown().end(),
                           [&](const Labels::Shown& shown)
                           { return world().getCountries()[shown.country].name == name; });
    }

    Labels labels{world()};
    Legend legend;
};

TEST_F(WorldmapLabelsTest, NamesHaveRoomWhereTheyBelong)
{
    const struct
    {
        Projection projection;
        double zoom;
        td::Point<double> middle;
        std::vector<std::string> shown, hidden;
    } cases[] = {
        {Projection::Equirectangular, 1.7, {11, 0}, {"Russia", "China", "Brazil"}, {"Lesotho", "France", "Malta"}},
        {Projection::Mercator, 14, {14, 51}, {"Germany", "France", "Austria", "Russia"}, {"Vatican", "Monaco"}},
        {Projection::Equirectangular, 30, {28.2, -29.5}, {"South Africa", "Lesotho"}, {"eSwatini"}},
        {Projection::Mercator, 60, {28.2, -29.5}, {"South Africa", "Lesotho", "eSwatini"}, {"Botswana"}},
        {Projection::Mercator, 390, {28.2, -29.5}, {"Lesotho"}, {"Mozambique"}},
        {Projection::Mercator, 20, {178, -18}, {"Fiji"}, {}},               // beside it
        {Projection::Mercator, 300, {12.45, 43.2}, {"Italy"}, {"Vatican"}}, // far from the country's middle
        {Projection::Equirectangular, 4, {60, 60}, {"Russia", "Kazakhstan"}, {}},
    };
    for (const auto& c : cases)
        for (const float scale : {1.0F, 1.5F, 2.0F})
        {
            SCOPED_TRACE(testing::Message()
                         << c.middle.x << ' ' << c.middle.y << " zoom " << c.zoom << " scale " << scale);
            const Outlook outlook = outlookAt(c.projection, c.zoom, c.middle, scale);
            draw(outlook);
            for (const std::string& name : c.shown)
                EXPECT_TRUE(isShown(name)) << name;
            for (const std::string& name : c.hidden)
                EXPECT_FALSE(isShown(name)) << name;

            std::vector<Labels::Box> boxes = Legend::boxesIn(outlook);
            for (const Labels::Shown& shown : labels.getShown())
            {
                const std::string& name = world().getCountries()[shown.country].name;
                const Labels::Box& box = shown.box;
                EXPECT_TRUE(box.left >= 0 && box.top >= 0 && box.right <= 640 * scale && box.bottom <= 360 * scale)
                    << name;
                for (const Labels::Box& other : boxes)
                    EXPECT_FALSE(box.overlaps(other)) << name;
                boxes.push_back(box);
                const auto x = static_cast<double>((box.left + box.right) / 2 / scale);
                const auto y = static_cast<double>((box.top + box.bottom) / 2 / scale);
                const std::size_t found = world().find(outlook.toDegrees({x, y}));
                EXPECT_TRUE(found == shown.country || found == Countries::cNone) << name;
            }
        }
}

TEST_F(WorldmapLabelsTest, TheLegendTellsLengthsAndPlaces)
{
    const struct
    {
        double length, round;
    } lengths[] = {{1, 1}, {1.9, 1}, {2, 2}, {4.9, 2}, {5, 5}, {9.9, 5}, {10, 10}, {119, 100}, {4999, 2000}};
    for (const auto& c : lengths)
        EXPECT_NEAR(worldmap::roundLength(c.length), c.round, 1e-9) << c.length;

    const struct
    {
        Projection projection;
        double zoom;
        td::Point<double> middle;
        const char* length; // of at most 120 points, a degree of the equator being 111.2 km
        const char* place;
    } cases[] = {
        {Projection::Equirectangular, 1.7, {11, 0}, "5000 km", "11.00\u00b0 E  0.00\u00b0 N"},
        {Projection::Equirectangular, 60, {28.2, -29.5}, "100 km", "28.20\u00b0 E  29.50\u00b0 S"},
        {Projection::Mercator, 60, {-20, 64}, "50 km", "20.00\u00b0 W  64.00\u00b0 N"},
        {Projection::Mercator, 400, {190, 0}, "20 km", "170.00\u00b0 W  0.00\u00b0 N"},
        {Projection::Equirectangular, 10, {0, 95}, "100 km", ""},
    };
    for (const auto& c : cases)
    {
        legend.draw(outlookAt(c.projection, c.zoom, c.middle), td::Point<double>(320, 180), "");
        EXPECT_EQ(legend.getScaleText(), c.length);
        EXPECT_EQ(legend.getPlaceText(), c.place);
    }
    legend.draw(outlookAt(Projection::Mercator, 60, {0, 0}), std::nullopt, "");
    EXPECT_EQ(legend.getPlaceText(), "");
}

} // namespace
