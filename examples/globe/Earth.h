#pragma once

#include <common/TopoJSON.h>

#include <gui/draw/Eye.h>
#include <gui/gl/Buffer.h>
#include <gui/gl/Program.h>
#include <gui/gl/SkyBox.h>
#include <gui/gl/Textures.h>

namespace globe
{

/// The earth's surface in the light of the sun, its borders, the air around it, and the stars.
class Earth
{
public:
    static constexpr double cAirRadius = 1.1; ///< the eye must stay outside

    /// @param countries  read during the call only
    /// @return false, after a line in the log, when it can't be drawn
    [[nodiscard]] bool init(const examples::TopoJSON& countries);

    /// Outlines a country. @param pCountry  read during the call only; null for none
    void point(const examples::TopoJSON::Area* pCountry);

    /// Needs the depth test. @param sun  from the earth towards it, a unit vector
    void draw(const gui::draw::Eye& eye, const glm::vec3& sun, bool hasBorders = true);

private:
    /// A program that depends on sun and eye, and draws a buffer about the earth's middle.
    class Layer : public gui::gl::Program
    {
    public:
        void draw(gui::gl::Buffer& buffer, const gui::draw::Eye& eye, const glm::vec3& sun, double radius);

    protected:
        void onLinked() override { _matrixLocation = getUniformLocation("mvp"); }
    };

    Layer _surface, _air, _lines;
    gui::gl::Buffer _sphere{gui::gl::DataType::Vec3, gui::gl::DataType::Vec3, gui::gl::DataType::Vec2};
    gui::gl::Buffer _borders{gui::gl::DataType::Vec3, gui::gl::DataType::Vec4};
    gui::gl::Buffer _outline{gui::gl::DataType::Vec3, gui::gl::DataType::Vec4};
    gui::gl::Textures _textures;
    gui::gl::SkyBox _sky;
    glm::mat4 _toSky{1};
    bool _isPointed = false;
};

} // namespace globe
