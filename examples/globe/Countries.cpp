#include "Countries.h"

#include <common/FlatRing.h>
#include <gui/Res.h>
#include <gui/draw/Labels.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace globe
{

using namespace gui::draw;
using examples::TopoJSON;

namespace
{

constexpr double cNameRadius = 1.002, cCoarse = 0.3; // a radius, degrees

constexpr td::Color cYellow("#ffd45a");
const Halo cHalo{1.5, "#0a1428a0"};

// Where maps end there are lines in the data, and none on the earth.
bool isAtEdge(const td::Point<double>& a, const td::Point<double>& b)
{
    return std::min(std::abs(a.x), std::abs(b.x)) > 179.99 || std::min(std::abs(a.y), std::abs(b.y)) > 89.99;
}

// Without points that are nearer than the grain, in degrees, to the one before.
void addLine(Polylines3& lines, const TopoJSON::Line& line, const Polylines3::Look& look, double grain = 0)
{
    std::vector<glm::dvec3> points;
    td::Point<double> from = line[0];
    for (std::size_t i = 0; i + 1 < line.size(); from = line[++i])
    {
        while (i + 2 < line.size() && std::hypot(line[i + 1].x - from.x, line[i + 1].y - from.y) < grain)
            ++i;
        const td::Point<double> to = line[i + 1];
        if (!isAtEdge(from, to))
        {
            // The short way around, in steps of a degree: longer ones would run below the ground, which is round.
            const double east = std::remainder(to.x - from.x, 360), north = to.y - from.y;
            const double n = std::max(1.0, std::ceil(std::hypot(east, north)));
            for (double k = points.empty() ? 0 : 1; k <= n; ++k)
                points.push_back(directionOf({from.x + k / n * east, from.y + k / n * north}));
        }
        if (!points.empty() && (isAtEdge(from, to) || i + 2 == line.size()))
            lines.add(std::exchange(points, {}), look);
    }
}

} // namespace

bool Countries::init()
{
    // What lies at the rim is as good as hidden.
    _names.setIsHidden([](const glm::dvec3& point, const Eye& eye)
                       { return glm::dot(glm::normalize(eye.getPosition() - point), point) < 0.2; });
    _outline.setBias(3);
    const td::String json = gui::getResText("globe/countries-50m.json");
    if (!_shapes.load({json.c_str(), json.length()}, "countries"))
        return false;
    for (const double grain : {0.0, cCoarse})
    {
        Polylines3& lines = grain > 0 ? _coarseBorders : _borders;
        lines.setBias(2);
        for (const TopoJSON::Line& coast : _shapes.getCoasts())
            addLine(lines, coast, {.width = 0.8, .color = "#ffffff80"}, grain);
        for (const TopoJSON::Border& border : _shapes.getBorders())
            addLine(lines, border.line, {.width = 1, .color = "#fff2d9c0"}, grain);
    }
    for (std::uint64_t tag = 0; const TopoJSON::Area& area : _shapes.getAreas())
    {
        Path outline;
        for (const TopoJSON::Polygon& polygon : area.polygons)
            for (const TopoJSON::Ring& ring : polygon)
                outline.addPolygon(examples::FlatRing(ring, 0).points);
        _map.setTag(_map.fill(outline, td::ColorID::Black, FillRule::EvenOdd), ++tag);
        const std::optional<Drawing::Rect> main = Labels::findMain(outline);
        const std::optional<Drawing::Rect> room = main ? Labels::findRoom(outline, *main) : std::nullopt;
        if (!room || area.name.empty())
            continue;
        const Place place{(room->left + room->right) / 2, (room->top + room->bottom) / 2};
        const double width = (main->right - main->left) * std::cos(glm::radians(place.latitude));
        const double extent = glm::radians(std::sqrt(width * (main->bottom - main->top)));
        // Longer than a country may be its name.
        _names.add(cNameRadius * directionOf(place), area.name,
                   {.size = extent > 0.35 ? 15.0 : 13.0, .paint = "#ffffff", .halo = cHalo},
                   {.priority = extent, .extent = 1.7 * extent});
    }
    const td::String cities = gui::getResText("globe/cities.txt");
    std::istringstream lines(cities.c_str());
    std::string name;
    for (double millions = 0, north = 0, east = 0;
         lines >> millions >> north >> east && getline(lines >> std::ws, name);)
    {
        const double extent = 0.03 * std::sqrt(millions);
        _names.add(cNameRadius * directionOf({east, north}), name, {.size = 11.5, .paint = "#ffe9b8", .halo = cHalo},
                   {.offset = {6, 0}, .priority = extent - 1, .extent = extent, .leader = Leader{0, "#ffe9b8"}});
    }
    return true;
}

const TopoJSON::Area* Countries::find(const Place& place) const
{
    for (const double turn : {0.0, 360.0, -360.0}) // some go on past the map's edge
        if (const std::uint64_t tag = _map.getTag(_map.pick({place.longitude + turn, place.latitude})); tag != 0)
            return &_shapes.getAreas()[tag - 1];
    return nullptr;
}

bool Countries::point(const std::optional<glm::dvec3>& at)
{
    const TopoJSON::Area* const pBefore = std::exchange(_pPointed, at ? find(placeOf(*at)) : nullptr);
    _note.clear();
    if (_pPointed != nullptr)
        _note.add(
            *at, _pPointed->name, {.size = 15, .paint = cYellow},
            {.offset = {18, -22}, .leader = Leader{1, cYellow}, .frame = LabelFrame{"#0a1428d8", "#ffd45a60", 1, 8}});
    if (_pPointed == pBefore)
        return _pPointed != nullptr;
    _outline.clear();
    for (const TopoJSON::Polygon& polygon :
         _pPointed != nullptr ? _pPointed->polygons : std::vector<TopoJSON::Polygon>())
        for (TopoJSON::Ring ring : polygon)
        {
            ring.push_back(ring.front());
            addLine(_outline, ring, {.width = 2.5, .color = cYellow});
        }
    return true;
}

} // namespace globe
