#pragma once

#include "PlanetProgram.h"

#include <common/TopoJSON.h>

#include <gui/gl/Buffer.h>

namespace globe
{

/// Coasts and the lines between countries, a little above the surface.
class Borders
{
public:
    /// @param countries  read during the call only
    /// @return false, after a line in the log, when they can't be drawn
    [[nodiscard]] bool init(const examples::TopoJSON& countries);

    /// Needs the depth test and an earth that was drawn before. Blending is off afterwards.
    void draw(const Sight& sight);

private:
    using Line = std::vector<td::Point<double>>;

    void add(const Line& line, bool isLoop, const glm::vec4& color);

    PlanetProgram _program;
    gui::gl::Buffer _buffer{gui::gl::DataType::Vec3, gui::gl::DataType::Vec4};
};

} // namespace globe
