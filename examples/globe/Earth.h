#pragma once

#include <gui/draw/Program3.h>
#include <gui/gl/Buffer.h>
#include <gui/gl/Textures.h>

namespace globe
{

/// The earth's surface in the light of the sun, and the air around it. Its radius is 1.
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
    gui::draw::Program3 _surface, _air;
    gui::gl::Buffer _sphere{gui::gl::DataType::Vec3, gui::gl::DataType::Vec3, gui::gl::DataType::Vec2};
    gui::gl::Textures _textures;
};

/// The stars and the Milky Way around it: what is seen in a direction, a unit vector.
glm::vec3 starsIn(const glm::vec3& direction);

} // namespace globe
