#pragma once

#include <gui/gl/Program.h>

namespace gallery
{

/// Draws solids around the origin (layout {DataType::Vec3}) covered with the cube map on unit T0, lit from above.
class CubeProgram : public gui::gl::Program
{
public:
    [[nodiscard]] bool link();

    /// @param model    turns and moves the solid  @param toClip  from there to clip space
    void setMatrices(const glm::mat4& model, const glm::mat4& toClip);

protected:
    void onLinked() override;
};

} // namespace gallery
