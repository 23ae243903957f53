#pragma once

#include <glm/geometric.hpp>
#include <glm/trigonometric.hpp>
#include <glm/vec2.hpp>
#include <glm/vec3.hpp>

/// The earth has the radius 1. The north pole lies on the y axis, the Greenwich meridian on the side of the z axis and
/// 90 degrees east on the x axis.
namespace globe
{

/// In degrees, east and north.
struct Place
{
    double longitude = 0;
    double latitude = 0;
};

constexpr double cKilometres = 6371; ///< of a radius

/// From the earth's middle, a unit vector.
inline glm::dvec3 directionOf(const Place& place)
{
    const glm::dvec2 angle = glm::radians(glm::dvec2(place.longitude, place.latitude));
    return {glm::cos(angle.y) * glm::sin(angle.x), glm::sin(angle.y), glm::cos(angle.y) * glm::cos(angle.x)};
}

/// @param direction  of any length but 0
inline Place placeOf(const glm::dvec3& direction)
{
    const glm::dvec3 unit = glm::normalize(direction);
    return {glm::degrees(glm::atan(unit.x, unit.z)), glm::degrees(glm::asin(glm::clamp(unit.y, -1.0, 1.0)))};
}

} // namespace globe
