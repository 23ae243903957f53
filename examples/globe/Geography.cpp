#include "Geography.h"

#include <glm/geometric.hpp>
#include <glm/trigonometric.hpp>

#include <algorithm>
#include <cmath>

namespace globe
{

glm::vec3 directionOf(const Place& place)
{
    const double longitude = glm::radians(place.longitude);
    const double latitude = glm::radians(place.latitude);
    return {std::cos(latitude) * std::sin(longitude), std::sin(latitude), std::cos(latitude) * std::cos(longitude)};
}

Place placeOf(const glm::vec3& direction)
{
    const glm::dvec3 unit = glm::normalize(glm::dvec3(direction));
    return {glm::degrees(std::atan2(unit.x, unit.z)), glm::degrees(std::asin(std::clamp(unit.y, -1.0, 1.0)))};
}

} // namespace globe
