#include <gui/gl/SkyBox.h>

#include "../context/Restoration.h"

#include <gui/gl/Camera.h>
#include <td/Assert.h>
#include <vo/Log.h>

#include <epoxy/gl.h>

#include <glm/mat3x3.hpp>
#include <glm/vec3.hpp>

#include <array>
#include <cmath>

namespace gui::gl
{

namespace
{

constexpr const char* cSkyVertexShader = "#version 330 core\n"
                                         "layout (location = 0) in vec3 aPos;\n"
                                         "out vec3 texCoords;\n"
                                         "uniform mat4 camProjection;\n"
                                         "void main(){\n"
                                         "texCoords = aPos;\n"
                                         "vec4 pos = camProjection * vec4(aPos, 1.0);\n"
                                         "gl_Position = pos.xyww;}";

constexpr const char* cSkyFragmentShader = "#version 330 core\n"
                                           "in vec3 texCoords;\n"
                                           "uniform samplerCube skybox;\n"
                                           "out vec4 fragColor;\n"
                                           "void main(){\n"
                                           "fragColor = texture(skybox, texCoords);}";

// The signs of the corners of two triangles for each face.
// clang-format off
constexpr std::array<glm::vec3, 36> cCorners{{
    {-1, 1, -1}, {-1, -1, -1}, {1, -1, -1}, {1, -1, -1}, {1, 1, -1}, {-1, 1, -1},
    {-1, -1, 1}, {-1, -1, -1}, {-1, 1, -1}, {-1, 1, -1}, {-1, 1, 1}, {-1, -1, 1},
    {1, -1, -1}, {1, -1, 1}, {1, 1, 1}, {1, 1, 1}, {1, 1, -1}, {1, -1, -1},
    {-1, -1, 1}, {-1, 1, 1}, {1, 1, 1}, {1, 1, 1}, {1, -1, 1}, {-1, -1, 1},
    {-1, 1, -1}, {1, 1, -1}, {1, 1, 1}, {1, 1, 1}, {-1, 1, 1}, {-1, 1, -1},
    {-1, -1, -1}, {-1, -1, 1}, {1, -1, -1}, {1, -1, -1}, {-1, -1, 1}, {1, -1, 1}}};
// clang-format on
static_assert(sizeof(cCorners) == 432);

} // namespace

void SkyBox::Prog::onLinked()
{
    _matrixLocation = getUniformLocation("camProjection");
    TD_ASSERT(_matrixLocation >= 0);
    _samplerPos = getUniformLocation("skybox");
    TD_ASSERT(_samplerPos >= 0);
}

void SkyBox::Prog::onError() { TD_ASSERT(false); }

void SkyBox::Prog::setSampler(Textures::Unit unit)
{
    setUniformValue(static_cast<unsigned int>(_samplerPos), static_cast<unsigned int>(unit));
}

SkyBox::~SkyBox() { release(); }

bool SkyBox::init(const glm::mat4* pProjection, unsigned int cubeMapID, Textures::Unit unit)
{
    _pProjection = pProjection;
    _cubeMapID = cubeMapID;
    _unit = unit;
    _prog.release();
    return _prog.link(cSkyVertexShader, cSkyFragmentShader, nullptr);
}

bool SkyBox::init(const glm::mat4* pProjection, const Camera* pCamera, int faceSize,
                  const std::function<glm::vec3(const glm::vec3& direction)>& color)
{
    _textures.release();
    if (!_textures.appendCubeMap(faceSize, color) || !init(pProjection, _textures.getID(0), Textures::Unit::T0))
        return false;
    setCamera(pCamera);
    release();
    commit(1);
    return _committed;
}

void SkyBox::setCamera(const Camera* pCamera)
{
    _pCamera = pCamera;
    updateTransformation();
}

void SkyBox::updateTransformation()
{
    if (_pProjection == nullptr)
        _transformation = _pCamera != nullptr ? _pCamera->getViewMatrix() : glm::mat4(1);
    else if (_pCamera == nullptr)
        _transformation = *_pProjection;
    else
        _transformation = *_pProjection * glm::mat4(glm::mat3(_pCamera->getViewMatrix()));
}

void SkyBox::commit(float size)
{
    if (_committed && _home.isAlive())
        return;
    TD_ASSERT(std::isfinite(size) && size != 0);
    if (!CurrentContext::isThere("SkyBox::commit"))
        return;
    _size = size;
    _home.set(CurrentContext::getID());
    _vao = _vbo = 0;
    upload();
}

void SkyBox::upload()
{
    std::array<glm::vec3, cCorners.size()> vertices = cCorners;
    for (glm::vec3& vertex : vertices)
        vertex *= _size;
    _vao = Restoration::makeName(CurrentContext::Kind::VertexArray, _vao);
    _vbo = Restoration::makeName(CurrentContext::Kind::Buffer, _vbo);
    if (_vao == 0 || _vbo == 0)
    {
        vo::dbgLog("ERROR! SkyBox::commit cannot create %s!", _vao == 0 ? "VAO" : "VBO");
        release();
        _isRefused = true;
        return;
    }
    glBindVertexArray(_vao);
    glBindBuffer(GL_ARRAY_BUFFER, _vbo);
    glBufferData(GL_ARRAY_BUFFER, sizeof(vertices), vertices.data(), GL_STATIC_DRAW);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, sizeof(glm::vec3), nullptr);
    _committed = true;
    _isRefused = false;
}

void SkyBox::render(bool disableDepthTest)
{
    // A driver's refusal is in the log already, and no mistake of the caller's.
    if (_isRefused)
        return;
    TD_ASSERT(_prog.isOK());
    TD_ASSERT(_vao > 0);
    TD_ASSERT(_home.isAlive());
    updateTransformation();
    _prog.activate();
    if (_pProjection != nullptr)
        _prog.setMVP(_transformation);
    glBindVertexArray(_vao);
    _prog.setSampler(_unit);
    glActiveTexture(Textures::getZavPosID(_unit));
    if (disableDepthTest)
        glDisable(GL_DEPTH_TEST);
    glBindTexture(GL_TEXTURE_CUBE_MAP, _cubeMapID);
    glDrawArrays(GL_TRIANGLES, 0, static_cast<GLsizei>(cCorners.size()));
    _prog.deActivate();
}

void SkyBox::release()
{
    deleteNames();
    _vbo = _vao = 0;
    _committed = false;
    _isRefused = false;
}

void SkyBox::deleteNames() const
{
    _home.deleteName(CurrentContext::Kind::Buffer, _vbo);
    _home.deleteName(CurrentContext::Kind::VertexArray, _vao);
}

void SkyBox::onContext(ContextResource::Event event)
{
    if (event == ContextResource::Event::Leaving)
    {
        deleteNames();
        return;
    }
    // The cube map may be the application's, and not have its name again.
    if (const unsigned int cubeMapID = Restoration::getNew(CurrentContext::Kind::Texture, _cubeMapID); cubeMapID != 0)
        _cubeMapID = cubeMapID;
    if (_committed)
        upload();
}

} // namespace gui::gl
