#pragma once

#include <gui/draw/Eye.h>
#include <gui/gl/Buffer.h>
#include <gui/gl/Program.h>
#include <gui/gl/SkyBox.h>
#include <gui/gl/Textures.h>

namespace globe
{

/// The earth's surface in the light of the sun, the air around it, and the stars.
class Earth
{
public:
    static constexpr double cAirRadius = 1.1; ///< the eye must stay outside

    /// @return false, after a line in the log, when it can't be drawn
    [[nodiscard]] bool init();

    /// Needs the depth test. @param sun  from the earth towards it, a unit vector
    void draw(const gui::draw::Eye& eye, const glm::vec3& sun);
    /// The rest, after lines on the ground: they fade by night, and before the rim.
    void drawAir(const gui::draw::Eye& eye, const glm::vec3& sun);

private:
    /// Stars and the Milky Way: what is seen in a direction, a unit vector.
    static glm::vec3 paintSky(const glm::vec3& direction);

    /// A program that depends on sun and eye, and draws a buffer about the earth's middle.
    class Layer : public gui::gl::Program
    {
    public:
        void draw(gui::gl::Buffer& buffer, const gui::draw::Eye& eye, const glm::vec3& sun, double radius);

    protected:
        void onLinked() override { _matrixLocation = getUniformLocation("mvp"); }
    };

    Layer _surface, _air;
    gui::gl::Buffer _sphere{gui::gl::DataType::Vec3, gui::gl::DataType::Vec3, gui::gl::DataType::Vec2};
    gui::gl::Textures _textures;
    gui::gl::SkyBox _sky;
    glm::mat4 _toSky{1};
};

} // namespace globe
