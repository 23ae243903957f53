#include "Labels.h"

#include "Geography.h"

#include <common/FlatRing.h>

#include <glm/geometric.hpp>
#include <glm/trigonometric.hpp>
#include <glm/vec4.hpp>

#include <algorithm>
#include <cmath>

namespace globe
{

namespace
{

struct Piece
{
    glm::vec3 direction{0};
    double area = 0; // on the unit sphere
};

// On the map that has the sine of the latitude upwards, areas are what they are on the globe.
Piece measure(const examples::TopoJSON::Ring& ring)
{
    examples::FlatRing flat(ring, 0);
    for (td::Point<double>& point : flat.points)
        point = {glm::radians(point.x), std::sin(glm::radians(point.y))};
    double area = 0, x = 0, y = 0;
    for (std::size_t i = 0; i < flat.points.size(); ++i)
    {
        const td::Point<double>& a = flat.points[i];
        const td::Point<double>& b = flat.points[(i + 1) % flat.points.size()];
        const double cross = a.x * b.y - b.x * a.y;
        area += cross / 2;
        x += (a.x + b.x) * cross / 6;
        y += (a.y + b.y) * cross / 6;
    }
    if (area == 0)
        return {};
    const double latitude = std::asin(std::clamp(y / area, -1.0, 1.0));
    return {directionOf({glm::degrees(x / area), glm::degrees(latitude)}), std::abs(area)};
}

} // namespace

Labels::Labels(const examples::TopoJSON& countries)
{
    using namespace gui::draw;
    for (const examples::TopoJSON::Area& area : countries.getAreas())
    {
        Piece largest;
        for (const examples::TopoJSON::Polygon& polygon : area.polygons)
            if (const Piece piece = measure(polygon.front()); piece.area > largest.area)
                largest = piece;
        const TextLayout name(area.name, {.size = 13, .paint = "#ffffff", .halo = {1.5, "#00000090"}});
        const bool isThere = largest.area > 0 && !area.name.empty();
        _countries.push_back({isThere ? _labels.add({}, name, {Anchor::Center}, {.priority = largest.area}) : 0,
                              name.getSize().width, largest.direction, std::sqrt(largest.area)});
    }
}

void Labels::draw(const Sight& sight, const td::Size<double>& size, double scale)
{
    for (const Country& country : _countries)
    {
        // The middle of the label is on this side, and not near the rim, where countries are thin.
        const glm::vec3 toEye = glm::normalize(sight.eye - country.direction);
        const glm::vec4 clip = sight.toClip * glm::vec4(country.direction, 1);
        // What a radian is long there, across the line of sight: clip space is 2 high.
        const auto radian = static_cast<double>(
            glm::length(glm::vec3(sight.toClip[0][1], sight.toClip[1][1], sight.toClip[2][1])) / clip.w / 2);
        const bool isSeen = glm::dot(toEye, country.direction) >= 0.3F && clip.w > 0 &&
                            country.extent * radian * size.height >= 0.55 * country.width;
        _labels.setWanted(country.id, isSeen);
        if (isSeen)
            _labels.move(country.id, {(0.5 + 0.5 * static_cast<double>(clip.x / clip.w)) * size.width,
                                      (0.5 - 0.5 * static_cast<double>(clip.y / clip.w)) * size.height});
    }
    _labels.place(1);
    _drawing.draw({}, scale);
}

} // namespace globe
