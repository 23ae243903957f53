#include "Globe.h"

#include <common/Paint.h>

#include <gui/Texture.h>

#include <glm/common.hpp>
#include <glm/geometric.hpp>
#include <glm/gtc/constants.hpp>
#include <glm/trigonometric.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <utility>
#include <vector>

namespace gallery
{

namespace
{

using glm::vec2;
using glm::vec3;
using gui::draw::Image;
using gui::draw::Material;
using gui::draw::Mesh;

constexpr int cGlobeSectors = 288;
constexpr double cSaltFrom = 0.4, cSaltTo = 34e3, cLandFrom = 112e3; // along the ground, from the upper end of y
constexpr double cLatitude = -20.2, cLongitude = -67.5;              // of that, in degrees

double risen(double low, double high, double value) { return glm::smoothstep(low, high, value); }

/// Where something is about the upper end: how far along the ground, and in which direction.
struct Spot
{
    double distance;
    double angle;
    glm::dvec3 up() const
    {
        const double turn = distance / cGlobeRadius;
        return {std::sin(turn) * std::cos(angle), std::cos(turn), std::sin(turn) * std::sin(angle)};
    }
    vec3 onPlain(double unit) const
    {
        return vec3(distance / unit * std::cos(angle), 0, distance / unit * std::sin(angle));
    }
};

double mountains(const Spot& place)
{
    const double window = risen(cSaltTo, 56e3, place.distance) * (1 - risen(80e3, cLandFrom, place.distance));
    if (window == 0)
        return 0;
    const double ridge = 1 - std::abs(2 * static_cast<double>(examples::clouds(place.onPlain(9e3) + 31.0F, 5)) - 1);
    const double range = static_cast<double>(examples::clouds(place.onPlain(40e3) + 7.0F, 2));
    return 4600 * window * ridge * ridge * ridge * risen(0.25, 0.75, range);
}

// Cells of crust on the salt: how near a place is to the line between two, 0 on it.
float toSeam(const vec3& place)
{
    float first = std::numeric_limits<float>::max(), second = first;
    const vec3 cell = glm::floor(place);
    for (int z = -1; z <= 1; ++z)
        for (int x = -1; x <= 1; ++x)
        {
            const vec3 corner = cell + vec3(x, 0, z);
            const glm::ivec3 key(corner);
            const vec3 middle = corner + vec3(examples::scatter(key, 1), 0, examples::scatter(key, 2));
            const float distance = glm::length(vec2(middle.x - place.x, middle.z - place.z));
            second = std::min(second, std::max(first, distance));
            first = std::min(first, distance);
        }
    return second - first;
}

vec3 saltAt(const vec2& where)
{
    const Spot place{cSaltFrom * std::pow(cSaltTo / cSaltFrom, static_cast<double>(where.y)),
                     glm::two_pi<double>() * static_cast<double>(where.x)};
    vec3 color(0.96F, 0.95F, 0.94F);
    const auto near = static_cast<float>(1 - risen(15, 70, place.distance));
    if (near > 0)
    {
        const vec3 bent = place.onPlain(1.3) + 0.3F * vec3(examples::clouds(place.onPlain(0.4), 2), 0,
                                                           examples::clouds(place.onPlain(0.4) + 50.0F, 2));
        color += near * (0.085F * (1 - glm::smoothstep(0.0F, 0.09F, toSeam(bent))) - 0.03F);
    }
    // It came in two lines, from the west.
    const vec3 metres = place.onPlain(1);
    if (metres.x < -1.2F && std::abs(std::abs(metres.z) - 0.74F) < 0.11F)
        color *= 0.86F;
    for (const double unit : {5.0, 300.0})
        color *= 1 + 0.07F * (examples::clouds(place.onPlain(unit) + 3.0F, 3) - 0.5F);
    return glm::mix(color, vec3(0.86F, 0.90F, 0.95F), static_cast<float>(risen(60, 3500, place.distance)));
}

// By how far through the mountains it is, from the salt to the land beyond, and by height: in haze below and with snow
// above.
vec3 rockAt(const vec2& where)
{
    const float ragged = where.y + 0.25F * (examples::clouds(vec3(40 * where.x, 8 * where.y, 0), 4) - 0.5F);
    const vec3 plain =
        glm::mix(vec3(0.82F, 0.85F, 0.89F), vec3(0.81F, 0.79F, 0.78F), glm::smoothstep(0.6F, 1.0F, where.x));
    const vec3 low = glm::mix(plain, vec3(0.52F, 0.58F, 0.68F), glm::smoothstep(0.0F, 0.4F, ragged));
    return glm::mix(low, vec3(0.95F, 0.96F, 0.98F), glm::smoothstep(0.60F, 0.72F, ragged));
}

// Where the earth's picture has it.
vec2 onEarth(const glm::dvec3& up)
{
    const double latitude = glm::radians(cLatitude), longitude = glm::radians(cLongitude);
    const glm::dvec3 axis(0, std::sin(latitude), -std::cos(latitude)); // to the north pole, in these axes
    const glm::dvec3 zero(0, std::cos(latitude), std::sin(latitude));  // to the equator, at this longitude
    const double east = longitude + std::atan2(up.x, glm::dot(up, zero));
    return {east / glm::two_pi<double>() + 0.5,
            0.5 - std::asin(glm::clamp(glm::dot(up, axis), -1.0, 1.0)) / glm::pi<double>()};
}

using Coordinates = std::function<vec2(const Spot& place, double height)>;

Mesh makeRings(const std::vector<double>& distances, const Coordinates& coordinatesOf)
{
    std::vector<double> heights;
    for (const double distance : distances)
        for (int sector = 0; sector < cGlobeSectors; ++sector)
            heights.push_back(mountains({distance, glm::two_pi<double>() * sector / cGlobeSectors}));
    Mesh mesh;
    const auto add = [&](std::size_t ring, int sector)
    {
        const int around = sector % cGlobeSectors;
        const double height = heights[ring * cGlobeSectors + static_cast<std::size_t>(around)];
        const glm::dvec3 up = Spot{distances[ring], glm::two_pi<double>() * around / cGlobeSectors}.up();
        mesh.positions.push_back((cGlobeRadius + height) * up);
        mesh.normals.push_back(height > 0 ? vec3(0) : vec3(up));
        vec2 at = coordinatesOf({distances[ring], glm::two_pi<double>() * sector / cGlobeSectors}, height);
        // Not the long way round where the picture ends.
        if (mesh.positions.size() % 4 != 1)
            at.x += std::round(mesh.textureCoordinates[(mesh.positions.size() - 1) / 4 * 4].x - at.x);
        mesh.textureCoordinates.push_back(at);
    };
    for (std::size_t ring = 0; ring + 1 < distances.size(); ++ring)
        for (int sector = 0; sector < cGlobeSectors; ++sector)
        {
            const auto first = static_cast<std::uint32_t>(mesh.positions.size());
            add(ring, sector);
            add(ring, sector + 1);
            add(ring + 1, sector + 1);
            add(ring + 1, sector);
            for (const std::uint32_t corner : {0, 1, 2, 0, 2, 3})
                mesh.indices.push_back(first + corner);
        }
    return mesh;
}

std::vector<double> stepsOut(double from, double to, double growth, double least, double most)
{
    std::vector<double> distances{from};
    while (distances.back() < to)
        distances.push_back(std::min(to, distances.back() + std::clamp(growth * distances.back(), least, most)));
    return distances;
}

} // namespace

Mesh makeGlobe()
{
    gui::Texture picture;
    if (!picture.loadFromFile(":gallery/earth.jpg"))
        return {};
    Mesh globe;
    globe.smoothAngle = 75;
    const auto onSalt = [](const Spot& place, double)
    {
        return vec2(place.angle / glm::two_pi<double>(),
                    std::log(std::max(place.distance, cSaltFrom) / cSaltFrom) / std::log(cSaltTo / cSaltFrom));
    };
    globe.add(makeRings(stepsOut(0, cSaltTo, 0.15, cSaltFrom, cSaltTo), onSalt),
              {.texture = Image(examples::paint(768, 768, saltAt)), .shininess = 0});
    const auto onRock = [](const Spot& place, double height)
    {
        return vec2(glm::clamp((place.distance - cSaltTo) / (cLandFrom - cSaltTo), 0.002, 0.998),
                    glm::clamp(height / 3400, 0.01, 0.99));
    };
    globe.add(makeRings(stepsOut(cSaltTo, cLandFrom, 0, 900, 900), onRock),
              {.texture = Image(examples::paint(96, 192, rockAt)), .shininess = 0});
    const auto onLand = [](const Spot& place, double) { return onEarth(place.up()); };
    globe.add(makeRings(stepsOut(cLandFrom, glm::pi<double>() * cGlobeRadius, 0.2, 0, 2e5), onLand),
              {.texture = Image(std::move(picture)), .shininess = 0});
    for (Mesh::Part& part : globe.parts)
        part.material.color = "#ffffff";
    return globe;
}

} // namespace gallery
