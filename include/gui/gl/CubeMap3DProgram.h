#pragma once

#include "Program.h"

namespace gui::gl
{

/// Draws 3D shapes around the origin covered with a cube map, unlit.
///
/// Vertex layout: {DataType::Vec3}, the position in model units, which is the direction into the cube map too, as
/// Buffer::addCube(size, Texture::Type::CubeMap, false) makes it. Set the matrix with setMVP once the program is
/// active; it is the identity at first. The cube map is the one bound to unit T0: give the program a texture set with
/// setTextures and the command setTexture(Textures::Unit::T0, index). Shaders: ":gl/cubemap3d.vert" and
/// ":gl/cubemap3d.frag". For the sky around a scene see SkyBox.
class GUIGL_API CubeMap3DProgram : public Program
{
public:
    /// @return as Program::link
    bool link();

protected:
    void onLinked() override;
};

} // namespace gui::gl
