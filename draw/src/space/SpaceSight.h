#pragma once

#include "ModelSight.h"

#include <td/Color.h>

#include <cstdint>

namespace gui::draw
{

class SpaceProgram;

/// A frame's eye, as shaders are told of it that draw lines, points and instances.
struct SpaceSight : ModelSight
{
    glm::mat4 toEye{1}; ///< from the reference
    glm::mat4 projection{1};
    float pixelsAtOne = 0;       ///< how many a model unit has where w of clip space is 1
    bool isOfSun = false;        ///< whether this is what the sun sees, for its shadows
    glm::vec2 toDepth{0.5, 0.5}; ///< from z / w to the depth buffer's: times, plus

    /// @param start  the origin  @param places  about what is seen  @param reach  how far it goes on beyond, in pixels
    /// @param bias    points by which it is drawn nearer
    /// @return false when nothing of it is seen
    bool look(const Eye& from, const Light& light, const glm::dvec3& start, const Box3& places, double reach,
              double bias);
    /// The uniforms that all programs have.
    void tell(SpaceProgram& program) const;
    /// Those of the light. @param areEyeAxes  whether directions are in the eye's axes instead of the model's
    void tellLight(SpaceProgram& program, const Light& light, bool areEyeAxes) const;
};

/// A place as shaders have it: the nearest floats to its distance from the origin, and what they lack of it, in three
/// words each.
void writePlace(const glm::dvec3& place, const glm::dvec3& origin, std::uint32_t* pPlace, std::uint32_t* pRest);
/// The other way, without the rest.
glm::dvec3 readPlace(const std::uint32_t* pPlace, const glm::dvec3& origin);
/// The box about places that were read so, grown by what they may lack.
Box3 grownByRounding(const Box3& box, const glm::dvec3& origin);
/// Whether its coordinates are finite, and not beyond 10^30.
bool isPlace(const glm::dvec3& place);

/// Red in the lowest byte, alpha in the highest.
std::uint32_t wordOf(td::Color color);
} // namespace gui::draw
