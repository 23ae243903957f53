#pragma once

#include "Program.h"

namespace gui::gl
{

/// Draws 2D shapes covered with a texture.
///
/// Vertex layout: {DataType::Vec2, DataType::Vec2}, the position in model units and the texture coordinate, (0, 0) to
/// (1, 1) over the whole image. Set the matrix with setMVP once the program is active; it is the identity at first. The
/// texture is the one bound to unit T0: give the program a texture set with setTextures and the command
/// setTexture(Textures::Unit::T0, index). Alpha shows where the context's blending is enabled. Shaders:
/// ":gl/texture2d.vert" and ":gl/texture2d.frag".
class GUIGL_API Texture2DProgram : public Program
{
public:
    /// @return as Program::link
    bool link();

protected:
    void onLinked() override;
};

} // namespace gui::gl
