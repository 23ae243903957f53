#pragma once

#include "PlanetProgram.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/Textures.h>

namespace globe
{

/// The earth's surface in the light of the sun, and the air around it.
class Earth
{
public:
    static constexpr float cAirRadius = 1.1F; ///< the eye must stay outside

    /// @return false, after a line in the log, when it can't be drawn
    [[nodiscard]] bool init();

    /// Needs the depth test.
    void drawSurface(const Sight& sight);
    /// Over everything that is behind it. Blending is off afterwards.
    void drawAir(const Sight& sight);

private:
    PlanetProgram _surfaceProgram;
    PlanetProgram _airProgram;
    gui::gl::Buffer _sphere{gui::gl::DataType::Vec3, gui::gl::DataType::Vec3, gui::gl::DataType::Vec2};
    gui::gl::Textures _textures;
};

} // namespace globe
