#include "World.h"

#include <worldmap/Coloring.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace
{

using examples::TopoJSON;
using test::world;
using worldmap::Countries;
using worldmap::Projection;

std::string nameAt(const td::Point<double>& degrees)
{
    const std::size_t country = world().find(degrees);
    return country == Countries::cNone ? "" : world().getCountries()[country].name;
}

// A honeycomb, in which every cell has six neighbours: as many as the cells of a large map can have on average.
std::vector<TopoJSON::Border> honeycomb(std::size_t side)
{
    std::vector<TopoJSON::Border> borders;
    for (std::size_t row = 0; row < side; ++row)
        for (std::size_t column = 0; column < side; ++column)
        {
            const std::size_t cell = row * side + column;
            if (column + 1 < side)
                borders.push_back({{cell, cell + 1}, {}});
            if (row + 1 < side)
                borders.push_back({{cell, cell + side}, {}});
            if (row + 1 < side && column > 0)
                borders.push_back({{cell + side - 1, cell}, {}});
        }
    return borders;
}

// Ten rings of neighbours around one country, each ring bordering the next.
std::vector<TopoJSON::Border> rings(std::size_t n)
{
    std::vector<TopoJSON::Border> borders;
    for (std::size_t cell = 1; cell <= 10 * n; ++cell)
    {
        borders.push_back({{cell > n ? cell - n : 0, cell}, {}});
        borders.push_back({{cell, cell % n == 0 ? cell - n + 1 : cell + 1}, {}});
    }
    return borders;
}

TEST(Worldmap, NeighboursHaveDifferentColors)
{
    const struct
    {
        const char* name;
        std::size_t nAreas;
        std::vector<TopoJSON::Border> borders;
    } maps[] = {
        {"honeycomb", 400, honeycomb(20)},
        {"rings of odd length", 71, rings(7)},
        {"long rings", 1001, rings(100)},
        {"three at one arc", 4, {{{0, 1, 2}, {}}, {{1, 3}, {}}}},
    };
    for (const auto& map : maps)
    {
        const std::vector<std::size_t> colors = worldmap::color(map.nAreas, map.borders);
        ASSERT_EQ(colors.size(), map.nAreas);
        EXPECT_LT(*std::max_element(colors.begin(), colors.end()), worldmap::cNoOfColors) << map.name;
        for (const TopoJSON::Border& border : map.borders)
            for (std::size_t i = 1; i < border.areas.size(); ++i)
                EXPECT_NE(colors[border.areas[i - 1]], colors[border.areas[i]]) << map.name;
    }
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

// Every hole but the one around the pole is there for another country, which is drawn later.
TEST(Worldmap, HolesBelongToTheCountriesInThem)
{
    std::size_t nHoles = 0;
    const std::vector<worldmap::Ring>& rings = world().getRings();
    for (auto hole = rings.begin(); hole != rings.end(); ++hole)
    {
        if (!hole->isHole)
            continue;
        ++nHoles;
        const auto filling =
            std::find_if(hole + 1, rings.end(),
                         [&](const worldmap::Ring& ring) { return !ring.isHole && ring.box.min == hole->box.min; });
        ASSERT_NE(filling, rings.end());
        EXPECT_NE(filling->country, hole->country);
        td::Point<double> middle;
        for (const td::Point<double>& point : hole->line.points)
            middle = {middle.x + point.x / static_cast<double>(hole->line.points.size()),
                      middle.y + point.y / static_cast<double>(hole->line.points.size())};
        EXPECT_EQ(world().find(middle), filling->country) << world().getCountries()[hole->country].name;
    }
    EXPECT_EQ(nHoles, 12U);
}

// Islands across the maps' edge are on both of its sides.
TEST(Worldmap, WhatReachesAcrossTheEdgeIsThereTwice)
{
    std::size_t nTwice = 0;
    for (const worldmap::Ring& ring : world().getRings())
    {
        if (ring.box.max.x <= 191 || !ring.line.isLoop)
            continue;
        ++nTwice;
        const auto isOther = [&](const worldmap::Ring& other)
        { return other.country == ring.country && std::abs(other.box.min.x - ring.box.min.x + 360) < 1e-9; };
        EXPECT_TRUE(std::any_of(world().getRings().begin(), world().getRings().end(), isOther));
    }
    EXPECT_GT(nTwice, 0U);
}

TEST(Worldmap, ProjectionsGoBothWays)
{
    for (const Projection projection : {Projection::Equirectangular, Projection::Mercator})
    {
        const worldmap::Box sheet = worldmap::sheetOf(projection);
        for (double y = -84; y <= 84; y += 12)
            for (double x = -169; x <= 191; x += 45)
            {
                const td::Point<double> point = worldmap::project(projection, {x, y});
                const td::Point<double> back = worldmap::unproject(projection, point);
                EXPECT_NEAR(back.x, x, 1e-9);
                EXPECT_NEAR(back.y, y, 1e-9);
                EXPECT_EQ(sheet.contains(point), projection == Projection::Equirectangular || y > -78);
                // As high as wide everywhere, which is what Mercator is for.
                const double height = (worldmap::project(projection, {x, y + 1e-6}).y - point.y) / 1e-6;
                const double expected = projection == Projection::Mercator ? 1 / std::cos(y * std::acos(-1) / 180) : 1;
                EXPECT_NEAR(height, expected, 1e-4 * expected);
            }
        EXPECT_GT(worldmap::project(projection, {0, -90}).y, -200) << "a pole is no farther than is of use";
    }
}

} // namespace
