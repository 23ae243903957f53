#include "MirrorProgram.h"

namespace gallery
{

namespace
{

constexpr std::size_t cModel = 0, cEye = 1, cTint = 2; // places in the table of locations

} // namespace

bool MirrorProgram::link() { return Program::link(":gallery/mirror.vert", ":gallery/mirror.frag"); }

void MirrorProgram::setMatrices(const glm::mat4& model, const glm::mat4& toClip, const glm::vec3& eye)
{
    setUniformValue(static_cast<unsigned int>(_uniformLocations[cModel]), model);
    setUniformValue(static_cast<unsigned int>(_uniformLocations[cEye]), eye);
    setMVP(toClip * model);
}

void MirrorProgram::setTint(const glm::vec3& tint)
{
    setUniformValue(static_cast<unsigned int>(_uniformLocations[cTint]), tint);
}

void MirrorProgram::onLinked()
{
    _matrixLocation = getUniformLocation("mvp");
    reserveUniforms(3);
    _uniformLocations[cModel] = getUniformLocation("model");
    _uniformLocations[cEye] = getUniformLocation("eye");
    _uniformLocations[cTint] = getUniformLocation("tint");
}

} // namespace gallery
