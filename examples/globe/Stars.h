#pragma once

#include <glm/vec3.hpp>

namespace globe
{

/// Stars and the Milky Way: what is seen in a direction, a unit vector.
glm::vec3 starsIn(const glm::vec3& direction);

} // namespace globe
