#include <gui/gl/Lit3DProgram.h>

#include <td/Assert.h>

#include <glm/geometric.hpp>
#include <glm/matrix.hpp>

#include <cmath>

namespace gui::gl
{

namespace
{

// The places in the table of uniform locations.
constexpr std::size_t cNormalMatrix = 0, cSun = 1, cAmbient = 2;

// Turns normals as the model turns surfaces. Unlike the inverse it exists for every matrix.
glm::mat3 normalMatrixOf(const glm::mat3& model)
{
    const glm::mat3 cofactors(glm::cross(model[1], model[2]), glm::cross(model[2], model[0]),
                              glm::cross(model[0], model[1]));
    return glm::dot(model[0], cofactors[0]) < 0 ? -cofactors : cofactors; // a mirror turns surfaces inside out
}

} // namespace

bool Lit3DProgram::link() { return Program::link(":gl/lit3d.vert", ":gl/lit3d.frag"); }

bool LitTexture3DProgram::link() { return Program::link(":gl/littexture3d.vert", ":gl/littexture3d.frag"); }

void Lit3DProgram::onLinked()
{
    _matrixLocation = getUniformLocation("mvp");
    _color3Location = getUniformLocation("color");
    reserveUniforms(3);
    _uniformLocations[cNormalMatrix] = getUniformLocation("normalMatrix");
    _uniformLocations[cSun] = getUniformLocation("sun");
    _uniformLocations[cAmbient] = getUniformLocation("ambient");
}

void Lit3DProgram::setMatrices(const glm::mat4& model, const glm::mat4& toClip)
{
    TD_ASSERT(isOK());
    setMVP(toClip * model);
    setUniformValue(static_cast<unsigned int>(_uniformLocations[cNormalMatrix]), normalMatrixOf(glm::mat3(model)));
}

void Lit3DProgram::setSun(const glm::vec3& direction)
{
    TD_ASSERT(isOK());
    const float length = glm::length(direction);
    TD_ASSERT(std::isnormal(length));
    setUniformValue(static_cast<unsigned int>(_uniformLocations[cSun]), direction / length);
}

void Lit3DProgram::setAmbient(float share)
{
    TD_ASSERT(isOK());
    setUniformValue(static_cast<unsigned int>(_uniformLocations[cAmbient]), share);
}

} // namespace gui::gl
