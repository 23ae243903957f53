#pragma once

#include <gui/gl/Program.h>

namespace gallery
{

/// Draws shapes that mirror the cube map on unit T0. Layout {DataType::Vec3, DataType::Vec3}: position and normal.
/// The uniforms stay until they are set anew.
class MirrorProgram : public gui::gl::Program
{
public:
    bool link();

    /// @param model   turns and moves the shape, and scales it evenly  @param toClip  from the world to clip space
    /// @param eye     in the world
    void setMatrices(const glm::mat4& model, const glm::mat4& toClip, const glm::vec3& eye);
    void setTint(const glm::vec3& tint);

protected:
    void onLinked() override;
};

} // namespace gallery
