#include "Impeller.h"

#include <glm/geometric.hpp>
#include <glm/gtc/constants.hpp>
#include <glm/trigonometric.hpp>
#include <glm/vec3.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace gallery
{

namespace
{

constexpr int cBlades = 8; // and as many between them

// Distance from the axis, and along it.
struct Place
{
    double r;
    double y;
};

Place mix(const Place& a, const Place& b, double part)
{
    return {std::lerp(a.r, b.r, part), std::lerp(a.y, b.y, part)};
}

// A quarter of an ellipse, which begins along the axis and ends away from it.
Place flare(const Place& from, const Place& to, double part)
{
    const double angle = part * glm::half_pi<double>();
    return {from.r + (to.r - from.r) * (1 - std::cos(angle)), from.y + (to.y - from.y) * std::sin(angle)};
}

Place hubAt(double part) { return flare({0.17, 1}, {1, 0.07}, part); }
Place tipAt(double part) { return flare({0.66, 0.93}, {1, 0.25}, part); }

glm::dvec3 around(const Place& place, double angle)
{
    return {place.r * std::sin(angle), place.y, place.r * std::cos(angle)};
}

// A surface of (rows + 1) times (columns + 1) points, seen from where rows go to the right and columns up. It is smooth,
// and sharp at its borders.
void addGrid(Part& part, int rows, int columns, const std::function<glm::dvec3(double, double)>& at)
{
    const auto width = static_cast<std::size_t>(columns + 1), height = static_cast<std::size_t>(rows + 1);
    const auto first = static_cast<std::uint32_t>(part.vertices.size() / 6);
    std::vector<glm::dvec3> points, normals(width * height);
    for (int row = 0; row <= rows; ++row)
        for (int column = 0; column <= columns; ++column)
            points.push_back(at(row / static_cast<double>(rows), column / static_cast<double>(columns)));
    for (std::size_t row = 0; row + 1 < height; ++row)
    {
        for (std::size_t column = 0; column + 1 < width; ++column)
        {
            const std::size_t a = row * width + column;
            for (const auto& corners : {std::array{a, a + width, a + 1}, std::array{a + 1, a + width, a + width + 1}})
            {
                const glm::dvec3& origin = points[corners[0]];
                const glm::dvec3 normal = glm::cross(points[corners[1]] - origin, points[corners[2]] - origin);
                for (const std::size_t corner : corners)
                {
                    normals[corner] += normal;
                    part.indices.push_back(first + static_cast<std::uint32_t>(corner));
                }
            }
        }
    }
    for (std::size_t i = 0; i < points.size(); ++i)
        for (const glm::vec3& v : {glm::vec3(points[i]), glm::vec3(glm::normalize(normals[i]))})
            part.vertices.insert(part.vertices.end(), {v.x, v.y, v.z});
}

// A profile turned about the axis, which goes upwards on the outside, sharp at each of its points; with few sides a
// prism.
void addTurned(Part& part, std::span<const Place> profile, int nSides)
{
    const bool isPrism = nSides < 8;
    const double turn = glm::two_pi<double>() / (isPrism ? nSides : 1);
    for (std::size_t i = 0; i + 1 < profile.size(); ++i)
        for (int side = 0; side < (isPrism ? nSides : 1); ++side)
            addGrid(part, isPrism ? 1 : nSides, 1,
                    [&](double across, double along)
                    { return around(mix(profile[i], profile[i + 1], along), turn * (side + across)); });
}

// @param begin  where along the flow it begins, 0 to 1
void addBlade(Part& part, double angle, double begin)
{
    constexpr int cAlong = 56, cAcross = 14;
    // The first edge turns against the air, the last one with it.
    const auto angleAt = [angle](double way) { return angle - 1.05 * std::pow(1 - way, 2.2) - 0.45 * way * way * way; };
    const auto thicknessAt = [begin](double way, double height)
    {
        const double edge = std::min(1.0, std::sqrt((way - begin) / 0.03));
        return std::lerp(0.022, 0.009, height) * std::max(edge, 0.05);
    };
    const auto at = [&](double way, double height, double side)
    {
        const Place place = mix(hubAt(way), tipAt(way), height);
        return around(place, angleAt(way) + side * thicknessAt(way, std::clamp(height, 0.0, 1.0)) / place.r);
    };
    const auto along = [begin](double way) { return std::lerp(begin, 1.0, way * way * 0.4 + way * 0.6); };
    // From within the hub.
    const auto up = [](double way) { return std::lerp(-0.05, 1.0, way); };
    addGrid(part, cAlong, cAcross, [&](double u, double v) { return at(along(u), up(v), -1); });
    addGrid(part, cAlong, cAcross, [&](double u, double v) { return at(along(u), up(1 - v), 1); });
    addGrid(part, cAlong, 2, [&](double u, double v) { return at(along(u), 1, 2 * v - 1); });
    addGrid(part, 2, cAcross, [&](double u, double v) { return at(1, up(v), 2 * u - 1); });
    addGrid(part, 2, cAcross, [&](double u, double v) { return at(begin, up(v), 1 - 2 * u); });
}

} // namespace

std::vector<Part> makeImpeller()
{
    constexpr int cSides = 180;
    Part steel{"#c9d0d8", {}, {}}, copper{"#d08a54", {}, {}}, brass{"#dcb450", {}, {}}, dark{"#8f9aa6", {}, {}};
    const Place foot[] = {{0.1, -0.3}, {0.24, -0.3}, {0.24, -0.14}, {0.34, -0.06}, {0.95, 0}, {1, 0.02}, {1, 0.07}};
    addTurned(steel, foot, cSides);
    addGrid(steel, cSides, 48,
            [](double side, double part) { return around(hubAt(1 - part), side * glm::two_pi<double>()); });
    const Place nose[] = {{0.17, 1}, {0, 1}};
    addTurned(steel, nose, cSides);
    for (int i = 0; i < cBlades; ++i)
    {
        const double angle = i * glm::two_pi<double>() / cBlades;
        addBlade(steel, angle, 0);
        addBlade(copper, angle + glm::pi<double>() / cBlades, 0.3);
    }
    const Place washer[] = {{0.17, 1}, {0.17, 1.02}, {0, 1.02}};
    addTurned(dark, washer, 72);
    const Place nut[] = {{0.16, 1.02}, {0.16, 1.14}, {0.135, 1.17}, {0, 1.17}};
    addTurned(brass, nut, 6);
    const Place shaft[] = {{0, -1}, {0.07, -1}, {0.1, -0.97}, {0.1, -0.3}};
    addTurned(dark, shaft, 72);
    const Place end[] = {{0.1, 1.17}, {0.1, 1.25}, {0.07, 1.28}, {0, 1.28}};
    addTurned(dark, end, 72);
    return {steel, copper, brass, dark};
}

} // namespace gallery
