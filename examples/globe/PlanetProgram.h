#pragma once

#include "Sight.h"

#include <gui/gl/Program.h>

namespace globe
{

/// Draws what lies around the earth and depends on sun and eye. Its shaders have the uniforms mvp, model, eye and sun.
class PlanetProgram : public gui::gl::Program
{
public:
    /// @param model  from the vertices' units to the world
    void setSight(const Sight& sight, const glm::mat4& model);

protected:
    void onLinked() override;
};

} // namespace globe
