#include <gui/gl/Flat2DProgram.h>

namespace gui::gl
{

bool Flat2DProgram::link(Colors colors)
{
    const bool isOpaque = colors == Colors::Opaque;
    if (!(isOpaque ? Program::link(":gl/flat2d.vert", ":gl/flat2d.frag")
                   : Program::link(":gl/flat2d-alpha.vert", ":gl/flat2d-alpha.frag")))
        return false;
    const int color = getUniformLocation("color");
    _color3Location = isOpaque ? color : -1;
    _color4Location = isOpaque ? -1 : color;
    return true;
}

void Flat2DProgram::onLinked() { _matrixLocation = getUniformLocation("mvp"); }

} // namespace gui::gl
