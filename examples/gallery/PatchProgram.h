#pragma once

#include <gui/gl/Program.h>

namespace gallery
{

/// Draws smooth surfaces: patches of 16 control points (layout {DataType::Vec3}), four rows of four, which tessellation
/// shaders turn into triangles. Its height colours it; commands say the light on it.
class PatchProgram : public gui::gl::Program
{
public:
    [[nodiscard]] bool link();

protected:
    void onLinked() override;
};

} // namespace gallery
