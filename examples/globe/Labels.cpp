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

using gui::gl::Font;

// The fonts and their sizes, for one and for two device pixels per point.
constexpr const char* cFonts[] = {":globe/sans-13.font", ":globe/sans-26.font"};
constexpr float cSize = 13;

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

Labels::~Labels() { _text.release(); }

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
    _text.init({1, 1}, gui::gl::Textures::Unit::T0);
    _text.allocFonts(std::size(cFonts));
    for (unsigned char i = 0; i < std::size(cFonts); ++i)
        if (_text.loadFont(i, cFonts[i]) == nullptr)
            return false;
    return true;
}

void Labels::draw(const Sight& sight, const td::Size<double>& size, float scale)
{
    const td::Size<double> pixels(size.width * static_cast<double>(scale), size.height * static_cast<double>(scale));
    const auto width = static_cast<float>(pixels.width), height = static_cast<float>(pixels.height);
    const unsigned char nthFont = scale > 1 ? 1 : 0;
    Font& font = *_text.getFont(nthFont);
    font.reset();
    const float fontScale = scale / (nthFont + 1.0F);
    _text.setFrameSize(pixels);
    _shown.clear();
    std::vector<Box> taken;
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
        const td::Size<float> text = font.measure(country.name.c_str(), 0, {});
        const glm::vec2 half(text.width * fontScale / 2, text.height * fontScale / 2);
        if (country.extent * radian < 1.1F * half.x)
            continue;
        const float margin = 3 * scale;
        const Box box{middle.x - half.x - margin, middle.y - half.y, middle.x + half.x + margin, middle.y + half.y};
        const auto isInTheWay = [&box](const Box& other) {
            return box.left < other.right && other.left < box.right && box.top < other.bottom && other.top < box.bottom;
        };
        if (box.left < 0 || box.top < 0 || box.right > width || box.bottom > height ||
            std::any_of(taken.begin(), taken.end(), isInTheWay))
            continue;
        taken.push_back(box);
        _shown.push_back(country.name);
        // Whole pixels keep letters sharp; a shadow keeps them readable over ice and sand.
        const td::Point<float> place(std::round(middle.x - half.x), std::round(middle.y - half.y));
        font.addString({place.x + scale, place.y + scale}, country.name.c_str(), 0, td::ColorID::Black, fontScale);
        font.addString(place, country.name.c_str(), 0, td::ColorID::White, fontScale);
    }
    _text.render(gui::gl::Text::Ctrl::BlendNoDepthTestNoCulling);
}

} // namespace globe
