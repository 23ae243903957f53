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

// For one and for two device pixels per point.
constexpr examples::Captions::BakedFont cFonts[] = {{":globe/sans-13.font", 13}, {":globe/sans-26.font", 26}};
constexpr float cSize = 13;

// A shadow keeps letters readable over ice and sand.
constexpr td::Point<float> cShadow[] = {{1, 1}};
constexpr examples::Captions::Style cStyle{td::ColorID::White, td::ColorID::Black, cShadow};

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

bool Labels::init(const examples::TopoJSON& countries)
{
    for (const examples::TopoJSON::Area& area : countries.getAreas())
    {
        Piece largest;
        for (const examples::TopoJSON::Polygon& polygon : area.polygons)
            if (const Piece piece = measure(polygon.front()); piece.area > largest.area)
                largest = piece;
        if (largest.area > 0 && !area.name.empty())
            _countries.push_back({area.name, largest.direction, static_cast<float>(std::sqrt(largest.area))});
    }
    std::sort(_countries.begin(), _countries.end(),
              [](const Country& a, const Country& b) { return a.extent > b.extent; });
    return _captions.init(cFonts, cSize);
}

void Labels::draw(const Sight& sight, const td::Size<double>& size, float scale)
{
    const auto width = static_cast<float>(size.width) * scale, height = static_cast<float>(size.height) * scale;
    _captions.begin(size, scale);
    _shown.clear();
    for (const Country& country : _countries)
    {
        // The middle of the label is on this side, and not near the rim, where countries are thin.
        const glm::vec3 toEye = glm::normalize(sight.eye - country.direction);
        if (glm::dot(toEye, country.direction) < 0.3F)
            continue;
        const glm::vec4 clip = sight.toClip * glm::vec4(country.direction, 1);
        if (clip.w <= 0)
            continue;
        const glm::vec2 middle((0.5F + 0.5F * clip.x / clip.w) * width, (0.5F - 0.5F * clip.y / clip.w) * height);

        // What a radian is long there, across the line of sight: clip space is 2 high.
        const float radian =
            glm::length(glm::vec3(sight.toClip[0][1], sight.toClip[1][1], sight.toClip[2][1])) * height / 2 / clip.w;
        if (country.extent * radian >= 0.55F * _captions.measure(country.name).width &&
            _captions.addIfFree({middle.x, middle.y}, country.name, cStyle))
            _shown.push_back(country.name);
    }
    _captions.draw(gui::gl::Text::Ctrl::BlendNoDepthTestNoCulling);
}

} // namespace globe
