#pragma once

#include "Eye.h"

#include <gui/gl/Program.h>

#include <td/Export.h>
#include <td/Types.h>

#include <glm/vec3.hpp>

namespace gui::gl
{
class Buffer;
}

namespace gui::draw
{

/// Shaders of your own in space: a program that takes an Eye, for what stands beside a Model in drawScene.
///
///     class SeaView : public gui::draw::OrbitView
///     {
///         gui::draw::Program3 _program;
///         gui::gl::Buffer _waves{gui::gl::DataType::Vec3};
///         void onInit() override
///         {
///             ...
///             _program.link(":sea/waves.vert", ":sea/waves.frag");
///         }
///         void drawScene(const gui::draw::Eye& eye) override
///         {
///             _program.set("sun", glm::vec3(0.3, 0.8, 0.5));
///             _program.draw(_waves, eye, {.blending = gui::draw::Program3::Blending::Over});
///         }
///     };
///
/// Of these uniforms its shaders declare the ones that they need: `mat4 mvp` takes vertices to clip space, `vec3 eye`
/// is where the eye is for them. Vertices are distances from an origin, in model units: see Eye::getMatrix. What an
/// eye's Clipping cuts away, they have to leave out by themselves.
class GUIGL_API Program3 : public gl::Program
{
public:
    /// What becomes of what is there already.
    enum class Blending : td::BYTE
    {
        None, ///< it is covered
        Over, ///< it is seen through, by the fragment's alpha
        Add   ///< it becomes brighter, by the fragment's colour
    };

    /// How it is drawn.
    struct State
    {
        Blending blending = Blending::None; ///< see Blending
        bool isHidden = true;               ///< by what is before it
        bool isHiding = true;               ///< what is drawn after it, and behind it
        bool isOneSided = false;            ///< seen only where triangles turn against the clock
    };

    /// Gives a uniform a value that it keeps: a float, an int, a vector, a matrix, or what else setUniformValue takes.
    /// Linked, and with the context current. A name that the shaders have not is left out.
    template <typename Value>
    void set(const char* name, const Value& value)
    {
        activate();
        setUniformValue(static_cast<unsigned int>(getUniformLocation(name)), value);
    }

    /// Draws a buffer's commands. GL's state is afterwards what drawScene has found: depth is tested and written,
    /// nothing is blended, and both sides are seen.
    /// @param origin  of the vertices, in model units
    void draw(gl::Buffer& buffer, const Eye& eye, const State& state, const glm::dvec3& origin = glm::dvec3(0));
    /// The same as solid things are drawn.
    void draw(gl::Buffer& buffer, const Eye& eye) { draw(buffer, eye, State()); }

protected:
    void onLinked() override;
};

} // namespace gui::draw
