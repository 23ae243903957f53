#include <gui/draw/Globe.h>

#include <gui/draw/Labels.h>

#include <glm/geometric.hpp>
#include <glm/trigonometric.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace gui::draw
{

namespace
{

double latitudeOf(const Globe::Place& place) { return std::clamp(place.y, -90.0, 90.0); }

} // namespace

glm::dvec3 Globe::getPoint(const Place& place, double height) const
{
    const double longitude = glm::radians(place.x), latitude = glm::radians(latitudeOf(place));
    const double level = std::cos(latitude);
    return (radius + height) * glm::dvec3(level * std::sin(longitude), std::sin(latitude), level * std::cos(longitude));
}

Globe::Place Globe::getPlace(const glm::dvec3& point) const
{
    return {glm::degrees(std::atan2(point.x, point.z)),
            glm::degrees(std::atan2(point.y, std::hypot(point.x, point.z)))};
}

double Globe::getHeight(const glm::dvec3& point) const { return glm::length(point) - radius; }

std::vector<glm::dvec3> Globe::getLine(std::span<const Place> places, double height) const
{
    std::vector<glm::dvec3> line;
    Place from;
    for (const Place& place : places)
    {
        if (!std::isfinite(place.x) || !std::isfinite(place.y))
            continue;
        const Place to(place.x, latitudeOf(place));
        if (!line.empty())
        {
            const double east = std::remainder(to.x - from.x, 360.0), north = to.y - from.y;
            const double n = std::ceil(std::hypot(east, north));
            for (double k = 1; k < n; ++k)
                line.push_back(getPoint({from.x + k / n * east, from.y + k / n * north}, height));
        }
        line.push_back(getPoint(to, height));
        from = to;
    }
    return line;
}

std::optional<glm::dvec3> Globe::meet(const Ray& ray) const
{
    // To where the ray is nearest to the middle, and back to the ground.
    const double nearest = -glm::dot(ray.origin, ray.direction);
    const glm::dvec3 beside = ray.at(nearest);
    const double rest = radius * radius - glm::dot(beside, beside);
    const double distance = nearest - std::sqrt(std::max(rest, 0.0));
    return rest >= 0 && distance >= 0 ? std::optional(ray.at(distance)) : std::nullopt;
}

std::optional<Globe::Room> Globe::findRoom(const Path& area) const
{
    const std::optional<Drawing::Rect> main = Labels::findMain(area);
    const std::optional<Drawing::Rect> room = main ? Labels::findRoom(area, *main) : std::nullopt;
    if (!room)
        return std::nullopt;
    const Place place((room->left + room->right) / 2, (room->top + room->bottom) / 2);
    const double width = (main->right - main->left) * std::cos(glm::radians(latitudeOf(place)));
    return Room{place, radius * glm::radians(std::sqrt(width * (main->bottom - main->top)))};
}

std::string Globe::getText(const Place& place, int decimals)
{
    const int nDigits = std::clamp(decimals, 0, 9);
    const double unit = std::pow(10, -nDigits);
    // What is rounded to 0 is neither west nor south, and nothing is 180 degrees west.
    const auto rounded = [unit](double degrees) { return std::round(degrees / unit) * unit; };
    const double longitude = rounded(std::remainder(place.x, 360.0)), latitude = rounded(latitudeOf(place));
    std::array<char, 80> text{};
    std::snprintf(text.data(), text.size(), "%.*f\u00b0 %c %.*f\u00b0 %c", nDigits, std::abs(latitude),
                  latitude < 0 ? 'S' : 'N', nDigits, std::abs(longitude), longitude < 0 ? 'W' : 'E');
    return text.data();
}

} // namespace gui::draw
