#include "Impeller.h"

#include <glm/gtc/constants.hpp>
#include <glm/trigonometric.hpp>
#include <glm/vec3.hpp>

#include <algorithm>
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

using gui::draw::Mesh;

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
    // The same place after a whole turn, to the last bit.
    const double turn = std::remainder(angle, glm::two_pi<double>());
    return {place.r * std::sin(turn), place.y, place.r * std::cos(turn)};
}

// A surface of (rows + 1) times (columns + 1) points, seen from where rows go to the right and columns up.
void addGrid(Mesh& mesh, int rows, int columns, const std::function<glm::dvec3(double, double)>& at)
{
    const auto first = static_cast<std::uint32_t>(mesh.positions.size());
    for (int row = 0; row <= rows; ++row)
        for (int column = 0; column <= columns; ++column)
            mesh.positions.push_back(at(row / static_cast<double>(rows), column / static_cast<double>(columns)));
    const auto width = static_cast<std::uint32_t>(columns + 1);
    for (std::uint32_t row = 0; row < static_cast<std::uint32_t>(rows); ++row)
    {
        for (std::uint32_t column = 0; column + 1 < width; ++column)
        {
            const std::uint32_t a = first + row * width + column;
            mesh.indices.insert(mesh.indices.end(), {a, a + width, a + 1, a + 1, a + width, a + width + 1});
        }
    }
}

// A profile turned about the axis, which goes upwards on the outside.
void addTurned(Mesh& mesh, std::span<const Place> profile, int nSides)
{
    for (std::size_t i = 0; i + 1 < profile.size(); ++i)
        addGrid(mesh, nSides, 1,
                [&](double side, double along)
                { return around(mix(profile[i], profile[i + 1], along), side * glm::two_pi<double>()); });
}

// @param begin  where along the flow it begins, 0 to 1
void addBlade(Mesh& mesh, double angle, double begin)
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
    addGrid(mesh, cAlong, cAcross, [&](double u, double v) { return at(along(u), up(v), -1); });
    addGrid(mesh, cAlong, cAcross, [&](double u, double v) { return at(along(u), up(1 - v), 1); });
    addGrid(mesh, cAlong, 2, [&](double u, double v) { return at(along(u), 1, 2 * v - 1); });
    addGrid(mesh, 2, cAcross, [&](double u, double v) { return at(1, up(v), 2 * u - 1); });
    addGrid(mesh, 2, cAcross, [&](double u, double v) { return at(begin, up(v), 1 - 2 * u); });
}

} // namespace

gui::draw::Mesh makeImpeller()
{
    constexpr int cSides = 180;
    Mesh hub, blades, between, nut, shaft;
    std::vector<Place> profile{{0.1, -0.3}, {0.24, -0.3}, {0.24, -0.14}, {0.34, -0.06}, {0.95, 0}, {1, 0.02}};
    for (int i = 48; i >= 0; --i)
        profile.push_back(hubAt(i / 48.0));
    profile.push_back({0.1, 1});
    addTurned(hub, profile, cSides);
    for (int i = 0; i < cBlades; ++i)
    {
        const double angle = i * glm::two_pi<double>() / cBlades;
        addBlade(blades, angle, 0);
        addBlade(between, angle + glm::pi<double>() / cBlades, 0.3);
    }
    const Place nutProfile[] = {{0, 1.02}, {0.16, 1.02}, {0.16, 1.14}, {0.135, 1.17}, {0, 1.17}};
    addTurned(nut, nutProfile, 6);
    const Place washer[] = {{0.1, 1}, {0.17, 1}, {0.17, 1.02}, {0.1, 1.02}};
    addTurned(shaft, washer, 72);
    const Place shaftProfile[] = {{0, -0.5}, {0.07, -0.5}, {0.1, -0.47}, {0.1, 1.25}, {0.07, 1.28}, {0, 1.28}};
    addTurned(shaft, shaftProfile, 72);

    Mesh mesh;
    mesh.smoothAngle = mesh.edgeAngle = 35;
    mesh.add(hub, {.color = "#b9c2cc", .shininess = 0.7});
    mesh.add(blades, {.color = "#cfd6dd", .shininess = 0.7});
    mesh.add(between, {.color = "#d48a50", .shininess = 0.7});
    mesh.add(nut, {.color = "#e0b548", .shininess = 0.8});
    mesh.add(shaft, {.color = "#8893a0", .shininess = 0.8});
    return mesh;
}

} // namespace gallery
