#pragma once

#include <glm/mat4x4.hpp>
#include <glm/vec3.hpp>

namespace globe
{

/// What a layer must know of a frame.
struct Sight
{
    glm::mat4 toClip; ///< from the world to clip space
    glm::vec3 eye;    ///< in the world
    glm::vec3 sun;    ///< from the earth towards it, a unit vector
};

} // namespace globe
