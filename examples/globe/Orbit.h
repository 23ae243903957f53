#pragma once

#include <gui/gl/ICameraLimiter.h>

namespace globe
{

/// Keeps a camera outside of the air and within sight of the earth. Steps that lead further go along the limit.
class Orbit : public gui::gl::ICameraLimiter
{
public:
    static constexpr float cLowest = 1.14F;
    static constexpr float cHighest = 9;

    glm::vec3 limit(const glm::vec3& before, const glm::vec3& after) override;
};

} // namespace globe
