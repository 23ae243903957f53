#include "Countries.h"

#include <common/FlatRing.h>
#include <gui/Res.h>
#include <gui/draw/Labels.h>

#include <cmath>
#include <sstream>

namespace globe
{

using namespace gui::draw;

bool Countries::init()
{
    // What lies at the rim is as good as hidden.
    _names.setIsHidden([](const glm::dvec3& point, const Eye& eye)
                       { return glm::dot(glm::normalize(eye.getPosition() - point), point) < 0.2; });
    const td::String json = gui::getResText("globe/countries-50m.json");
    if (!_shapes.load({json.c_str(), json.length()}, "countries"))
        return false;
    for (std::uint64_t tag = 0; const examples::TopoJSON::Area& area : _shapes.getAreas())
    {
        Path outline;
        for (const examples::TopoJSON::Polygon& polygon : area.polygons)
            for (const examples::TopoJSON::Ring& ring : polygon)
                outline.addPolygon(examples::FlatRing(ring, 0).points);
        _map.setTag(_map.fill(outline, td::ColorID::Black, FillRule::EvenOdd), ++tag);
        const std::optional<Drawing::Rect> main = Labels::findMain(outline);
        const std::optional<Drawing::Rect> room = main ? Labels::findRoom(outline, *main) : std::nullopt;
        if (!room || area.name.empty())
            continue;
        const Place place{(room->left + room->right) / 2, (room->top + room->bottom) / 2};
        const double width = (main->right - main->left) * std::cos(glm::radians(place.latitude));
        addName(area.name, place, glm::radians(std::sqrt(width * (main->bottom - main->top))), false);
    }
    const td::String cities = gui::getResText("globe/cities.txt");
    std::istringstream lines(cities.c_str());
    std::string name;
    for (double millions = 0, north = 0, east = 0;
         lines >> millions >> north >> east && getline(lines >> std::ws, name);)
        addName(name, {east, north}, 0.03 * std::sqrt(millions), true);
    return true;
}

void Countries::addName(const std::string& name, const Place& place, double extent, bool isCity)
{
    constexpr double cHeight = 1.002; // above the borders
    constexpr double cCrowding = 1.7; // longer than a country may be its name
    TextStyle style{.size = isCity ? 11.5 : 13, .paint = "#ffffff", .halo = {1.5, "#0a1428a0"}};
    Label3 look{.priority = extent, .extent = cCrowding * extent};
    if (isCity)
    {
        style.paint = "#ffe9b8";
        look = {.offset = {6, 0}, .priority = extent - 1, .extent = extent, .leader = Leader{0, "#ffe9b8"}};
    }
    else if (extent > 0.35)
        style.size = 15;
    _names.add(cHeight * directionOf(place), name, style, look);
}

const examples::TopoJSON::Area* Countries::find(const Place& place) const
{
    for (const double turn : {0.0, 360.0, -360.0}) // some go on past the map's edge
        if (const std::uint64_t tag = _map.getTag(_map.pick({place.longitude + turn, place.latitude})); tag != 0)
            return &_shapes.getAreas()[tag - 1];
    return nullptr;
}

} // namespace globe
