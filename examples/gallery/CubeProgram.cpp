#include "CubeProgram.h"

namespace gallery
{

bool CubeProgram::link()
{
    return Program::link(":gallery/cube.vert", ":gallery/cube.frag") && uniformLocationsAreOk();
}

void CubeProgram::setMatrices(const glm::mat4& model, const glm::mat4& toClip)
{
    setUniformValue(static_cast<unsigned int>(_uniformLocations[0]), model);
    setMVP(toClip * model);
}

void CubeProgram::onLinked()
{
    _matrixLocation = getUniformLocation("mvp");
    reserveUniforms(1);
    _uniformLocations[0] = getUniformLocation("model");
}

} // namespace gallery
