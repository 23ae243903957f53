#include <gui/gl/Color3DProgram.h>

namespace gui::gl
{

bool Color3DProgram::link() { return Program::link(":gl/color3d.vert", ":gl/color.frag"); }

void Color3DProgram::onLinked() { _matrixLocation = getUniformLocation("mvp"); }

} // namespace gui::gl
