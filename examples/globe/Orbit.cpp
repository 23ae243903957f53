#include "Orbit.h"

#include <glm/geometric.hpp>

#include <algorithm>
#include <cmath>

namespace globe
{

glm::vec3 Orbit::limit(const glm::vec3& before, const glm::vec3& after)
{
    // The point of the way that is nearest to the earth's middle.
    const glm::vec3 step = after - before;
    const float length = glm::length(step);
    const float way = length > 0 ? -glm::dot(before, step) / length : 0;
    glm::vec3 target = after;
    if (way > 0 && way < length)
    {
        // A way through the earth ends where it begins to be too low.
        const glm::vec3 nearest = before + step * (way / length);
        const float below = cLowest * cLowest - glm::dot(nearest, nearest);
        if (below > 0)
            target = nearest - step * (std::sqrt(below) / length);
    }
    const float radius = glm::length(target);
    return radius > 0 ? target * (std::clamp(radius, cLowest, cHighest) / radius) : before;
}

} // namespace globe
