#include <gui/gl/Texture2DProgram.h>

namespace gui::gl
{

bool Texture2DProgram::link() { return Program::link(":gl/texture2d.vert", ":gl/texture2d.frag"); }

void Texture2DProgram::onLinked() { _matrixLocation = getUniformLocation("mvp"); }

} // namespace gui::gl
