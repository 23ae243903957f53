#include <gui/gl/Color2DProgram.h>

namespace gui::gl
{

bool Color2DProgram::link() { return Program::link(":gl/color2d.vert", ":gl/color.frag"); }

void Color2DProgram::onLinked() { _matrixLocation = getUniformLocation("mvp"); }

} // namespace gui::gl
