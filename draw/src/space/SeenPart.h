#pragma once

#include <gui/draw/Box3.h>

#include <glm/mat3x3.hpp>
#include <glm/vec2.hpp>
#include <glm/vec3.hpp>

#include <optional>

namespace gui::draw
{

/// How far before an eye the part of a box is that it sees.
struct SeenPart
{
    double nearest;
    double farthest;

    /// @param position, rotation  of the eye
    /// @param half                how far it sees to the right and up from straight ahead: at a distance of 1 and
    ///                            growing with it, or, without perspective, everywhere
    /// @return empty when it sees nothing of it
    static std::optional<SeenPart> of(const Box3& box, const glm::dvec3& position, const glm::dmat3& rotation,
                                      const glm::dvec2& half, bool isPerspective);
};

} // namespace gui::draw
