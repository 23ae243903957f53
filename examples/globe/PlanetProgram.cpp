#include "PlanetProgram.h"

namespace globe
{

namespace
{

constexpr std::size_t cModel = 0, cEye = 1, cSun = 2; // places in the table of locations

} // namespace

void PlanetProgram::setSight(const Sight& sight, const glm::mat4& model)
{
    setUniformValue(static_cast<unsigned int>(_uniformLocations[cModel]), model);
    setUniformValue(static_cast<unsigned int>(_uniformLocations[cEye]), sight.eye);
    setUniformValue(static_cast<unsigned int>(_uniformLocations[cSun]), sight.sun);
    setMVP(sight.toClip * model);
}

void PlanetProgram::onLinked()
{
    _matrixLocation = getUniformLocation("mvp");
    reserveUniforms(3);
    _uniformLocations[cModel] = getUniformLocation("model");
    _uniformLocations[cEye] = getUniformLocation("eye");
    _uniformLocations[cSun] = getUniformLocation("sun");
}

} // namespace globe
