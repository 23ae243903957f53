#pragma once

#include "Program.h"

namespace gui::gl
{

/// Draws 3D shapes covered with a texture, unlit.
///
/// Vertex layout: {DataType::Vec3, DataType::Vec2}, the position in model units and the texture coordinate, as
/// Buffer::addCube(size, Texture::Type::CubeStrip, false) makes them. Set the matrix with setMVP once the program is
/// active; it is the identity at first. The texture is the one bound to unit T0: give the program a texture set with
/// setTextures and the command setTexture(Textures::Unit::T0, index). Shaders: ":gl/texture3d.vert" and
/// ":gl/texture2d.frag".
class GUIGL_API Texture3DProgram : public Program
{
public:
    /// @return as Program::link
    bool link();

protected:
    void onLinked() override;
};

} // namespace gui::gl
