#pragma once

#include "Program.h"

namespace gui::gl
{

/// Draws 2D shapes in one colour at a time, that of each command.
///
/// Vertex layout: {DataType::Vec2}, the position in model units. Set the matrix with setMVP once the program is active;
/// it is the identity at first. Commands say the colour with setColor(id); a program linked WithAlpha takes
/// setColor(id, alpha) instead, and shows transparency where the context's blending is enabled. Shaders:
/// ":gl/flat2d.vert" and ":gl/flat2d.frag", ":gl/flat2d-alpha.vert" and ":gl/flat2d-alpha.frag".
class GUIGL_API Flat2DProgram : public Program
{
public:
    /// Which of the two colours of a command the program takes.
    enum class Colors : td::BYTE
    {
        Opaque,   ///< commands have a colour of red, green and blue
        WithAlpha ///< commands have a colour of red, green, blue and alpha
    };

    /// @return as Program::link
    bool link(Colors colors = Colors::Opaque);

protected:
    void onLinked() override;
};

} // namespace gui::gl
