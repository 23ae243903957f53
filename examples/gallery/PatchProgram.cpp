#include "PatchProgram.h"

namespace gallery
{

bool PatchProgram::link()
{
    return Program::link(":gallery/patch.vert", ":gallery/patch.frag", ":gallery/patch.tesc", ":gallery/patch.tese",
                         nullptr);
}

void PatchProgram::onLinked()
{
    _color3Location = getUniformLocation("color");
    _matrixLocation = getUniformLocation("mvp");
}

} // namespace gallery
