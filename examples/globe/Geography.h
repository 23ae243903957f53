#pragma once

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
glm::vec3 directionOf(const Place& place);

/// @param direction  of any length but 0
Place placeOf(const glm::vec3& direction);

} // namespace globe
