#include <gui/gl/CubeMap3DProgram.h>

namespace gui::gl
{

bool CubeMap3DProgram::link() { return Program::link(":gl/cubemap3d.vert", ":gl/cubemap3d.frag"); }

void CubeMap3DProgram::onLinked() { _matrixLocation = getUniformLocation("mvp"); }

} // namespace gui::gl
