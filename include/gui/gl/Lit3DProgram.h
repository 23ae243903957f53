#pragma once

#include "Program.h"

namespace gui::gl
{

/// Draws 3D shapes in the light of a sun, in one colour at a time, that of each command.
///
/// Vertex layout: {DataType::Vec3, DataType::Vec3}, position and normal in model units, as Buffer::addSphere makes them
/// with normals and without texture coordinates. Commands say the colour with setColor(id). Shaders: ":gl/lit3d.vert"
/// and ":gl/lit3d.frag".
///
/// The operations below send uniforms, which stay: call them once the program is active. A matrix sent with setMVP, or
/// by a command, moves shapes without turning their normals.
class GUIGL_API Lit3DProgram : public Program
{
public:
    /// @return as Program::link
    bool link();

    /// Places what is drawn next. Both matrices are the identity at first.
    /// @param model   from the shape's units to the world; may scale and mirror
    /// @param toClip  from the world to clip space, CameraView's _perspective * getCameraMatrix() for instance
    void setMatrices(const glm::mat4& model, const glm::mat4& toClip);

    /// @param direction  in the world, from the scene towards the sun; of any length but 0. (0.4, 0.8, 0.5) at first:
    ///                   above, to the right and in front
    void setSun(const glm::vec3& direction);

    /// @param share  how bright surfaces are that the sun does not reach, 0 to 1; 0.25 at first
    void setAmbient(float share);

protected:
    void onLinked() override;
};

/// The same with a texture in place of the colour.
///
/// Vertex layout: {DataType::Vec3, DataType::Vec3, DataType::Vec2}, position, normal and texture coordinate, as
/// Buffer::addSphere(radius, sectors, stacks, Texture::Type::Tex2D, true, 1) makes them. The texture is the one bound
/// to unit T0: give the program a texture set with setTextures and the command setTexture(Textures::Unit::T0, index).
/// Shaders: ":gl/littexture3d.vert" and ":gl/littexture3d.frag".
class GUIGL_API LitTexture3DProgram : public Lit3DProgram
{
public:
    /// @return as Program::link
    bool link();
};

} // namespace gui::gl
