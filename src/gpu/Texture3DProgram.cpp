#include <gui/gl/Texture3DProgram.h>

namespace gui::gl
{

bool Texture3DProgram::link() { return Program::link(":gl/texture3d.vert", ":gl/texture2d.frag"); }

void Texture3DProgram::onLinked() { _matrixLocation = getUniformLocation("mvp"); }

} // namespace gui::gl
