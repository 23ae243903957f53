#pragma once

#include <td/Export.h>

#include <glm/vec3.hpp>

namespace gui::gl
{

/// Says where a camera may be. A camera asks its limiter after each step of its keys and each movement of its panning;
/// turning, zooming and Camera::place are not asked about.
///
/// To fly over a landscape without diving into it:
/// \code
/// class AboveGround : public gui::gl::ICameraLimiter
/// {
/// public:
///     glm::vec3 limit(const glm::vec3&, const glm::vec3& after) override
///     {
///         const float lowest = heightOfGround(after.x, after.z) + 1.7f;
///         return {after.x, std::max(after.y, lowest), after.z};   // slides along the ground
///     }
/// };
///
/// AboveGround aboveGround;                                        // must outlive the camera, or be taken away from it
/// camera.setLimiter(&aboveGround);
/// \endcode
/// To stop at a wall instead of sliding along it, return `before`.
class GUIGL_API ICameraLimiter
{
public:
    virtual ~ICameraLimiter() = default;

    /// @param before, after  the camera's position before a step, and where the step leads, both finite
    /// @return the position to use. One that is not finite is not used: the camera stays where it was
    virtual glm::vec3 limit(const glm::vec3& before, const glm::vec3& after) = 0;
};

} // namespace gui::gl
