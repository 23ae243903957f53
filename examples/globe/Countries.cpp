#include "Countries.h"

#include <common/FlatRing.h>
#include <gui/Res.h>

#include <glm/geometric.hpp>

#include <algorithm>
#include <cmath>
#include <sstream>
#include <string>
#include <utility>

namespace globe
{

using namespace gui::draw;
using examples::TopoJSON;

namespace
{

constexpr double cNameHeight = 0.002, cFar = 1.5; // radii
constexpr double cCoarse = 0.3;                   // degrees

constexpr td::Color cYellow("#ffd45a");
const Halo cHalo{1.5, "#0a1428a0"};

void addLines(Polylines3& lines, const TopoJSON& shapes)
{
    for (const TopoJSON::Border& coast : shapes.getCoasts())
        lines.add(Globe().getLine(coast.line), {.width = 0.8, .color = "#ffffff80"});
    for (const TopoJSON::Border& border : shapes.getBorders())
        lines.add(Globe().getLine(border.line), {.width = 1, .color = "#fff2d9c0"});
}

} // namespace

bool Countries::init()
{
    // What lies at the rim is as good as hidden.
    _names.setIsHidden([](const glm::dvec3& point, const Eye& eye)
                       { return glm::dot(glm::normalize(eye.getPosition() - point), point) < 0.2; });
    TopoJSON coarse;
    if (!coarse.loadCompiled(":globe/countries-50m.json", "countries", cCoarse, &_shapes))
        return false;
    addLines(_borders, _shapes);
    addLines(_coarseBorders, coarse);
    _borders.setBias(2);
    _coarseBorders.setBias(2);
    _outline.setBias(3);
    for (const TopoJSON::Area& country : _shapes.getAreas())
        addCountry(country);
    addCities();
    return true;
}

void Countries::addCountry(const TopoJSON::Area& country)
{
    Path outline;
    for (const TopoJSON::Line& ring : examples::layOnMap(country, 0))
        outline.addPolygon(ring);
    const std::ptrdiff_t index = &country - _shapes.getAreas().data();
    _map.setTag(_map.fill(outline, td::ColorID::Black, FillRule::EvenOdd), static_cast<std::uint64_t>(index + 1));
    const std::optional<Globe::Room> room = _globe.findRoom(outline);
    if (!room || country.name.empty())
        return;
    // Longer than a country may be its name.
    _names.add(_globe.getPoint(room->place, cNameHeight), country.name,
               {.size = room->extent > 0.35 ? 15.0 : 13.0, .paint = "#ffffff", .halo = cHalo},
               {.priority = room->extent, .extent = 1.7 * room->extent});
}

void Countries::addCities()
{
    std::istringstream cities(gui::getResText("globe/cities.txt").c_str());
    std::string name;
    for (double millions = 0, north = 0, east = 0;
         cities >> millions >> north >> east && getline(cities >> std::ws, name);)
    {
        const double extent = 0.03 * std::sqrt(millions);
        _names.add(_globe.getPoint({east, north}, cNameHeight), name, {.size = 11.5, .paint = "#ffe9b8", .halo = cHalo},
                   {.offset = {6, 0}, .priority = extent - 1, .extent = extent, .leader = Leader{0, "#ffe9b8"}});
    }
}

const TopoJSON::Area* Countries::find(const Place& place) const
{
    const std::uint64_t tag = _map.getTag(_map.pick(place));
    return tag != 0 ? &_shapes.getAreas()[tag - 1] : nullptr;
}

bool Countries::point(const std::optional<Place>& place)
{
    const TopoJSON::Area* const pBefore = std::exchange(_pPointed, place ? find(*place) : nullptr);
    _note.clear();
    if (_pPointed != nullptr)
        _note.add(
            _globe.getPoint(*place), _pPointed->name, {.size = 15, .paint = cYellow},
            {.offset = {18, -22}, .leader = Leader{1, cYellow}, .frame = TextFrame{"#0a1428d8", "#ffd45a60", 1, 8}});
    if (_pPointed == pBefore)
        return _pPointed != nullptr;
    _outline.clear();
    for (const auto* pLines : {&_shapes.getCoasts(), &_shapes.getBorders()})
        for (const TopoJSON::Border& border : *pLines)
            if (std::ranges::any_of(border.areas, [&](auto area) { return &_shapes.getAreas()[area] == _pPointed; }))
                _outline.add(_globe.getLine(border.line), {.width = 2.5, .color = cYellow});
    return true;
}

void Countries::drawLines(const Eye& eye, bool hasBorders)
{
    if (hasBorders)
        (_globe.getHeight(eye.getPosition()) < cFar ? _borders : _coarseBorders).draw(eye);
    _outline.draw(eye);
}

void Countries::drawNames(const Eye& eye, bool hasNames)
{
    if (hasNames)
        _names.draw(eye);
    _note.draw(eye);
}

} // namespace globe
