#pragma once

#include "Program.h"

namespace gui::gl
{

/// Draws 2D shapes whose vertices have colours of their own, blended between them.
///
/// Vertex layout: {DataType::Vec2, DataType::Vec4}, the position in model units and red, green, blue and alpha from 0
/// to 1. Set the matrix with setMVP once the program is active; it is the identity at first. Commands need no colour.
/// Alpha shows where the context's blending is enabled. Shaders: ":gl/color2d.vert" and ":gl/color.frag".
class GUIGL_API Color2DProgram : public Program
{
public:
    /// @return as Program::link
    bool link();

protected:
    void onLinked() override;
};

} // namespace gui::gl
