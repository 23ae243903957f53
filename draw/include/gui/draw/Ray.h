#pragma once

#include <glm/vec3.hpp>

namespace gui::draw
{

/// A straight line from a point on: what lies under a pointer. A value; see Eye::getRay.
struct Ray
{
    glm::dvec3 origin{0};           ///< where it starts, in model units
    glm::dvec3 direction{0, 0, -1}; ///< where it goes, of length 1

    /// The point of the ray that is so many model units from its start.
    glm::dvec3 at(double distance) const { return origin + distance * direction; }
};

} // namespace gui::draw
