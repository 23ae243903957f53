#include "Earth.h"

#include <gui/Texture.h>
#include <gui/gl/Context.h>

namespace globe
{

using namespace gui::gl;

void Earth::Layer::draw(Buffer& buffer, const gui::draw::Eye& eye, const glm::vec3& sun, double radius)
{
    const auto at = [this](const char* name) { return static_cast<unsigned int>(getUniformLocation(name)); };
    activate();
    setUniformValue(at("eye"), glm::vec3(eye.getPosition()));
    setUniformValue(at("sun"), sun);
    setUniformValue(at("radius"), radius);
    Program::draw(buffer, eye.getMatrix());
}

bool Earth::init()
{
    // Given as an image, not as a file: the first row is then t = 0, which is a generated sphere's north.
    gui::Texture relief;
    if (!relief.loadFromFile(":globe/earth-720x360.png") || !_textures.append({&relief}, Texture::Type::Tex2D))
        return false;
    _sphere.addSphere(1, 256, 128, Texture::Type::Tex2D)->setTexture(Textures::Unit::T0, 0);
    for (Layer* pLayer : {&_surface, &_air})
        pLayer->setTextures(&_textures);
    return _surface.link(":globe/planet.vert", ":globe/surface.frag") &&
           _air.link(":globe/planet.vert", ":globe/air.frag") && _sky.init(&_toSky, nullptr, 768, paintSky);
}

void Earth::draw(const gui::draw::Eye& eye, const glm::vec3& sun)
{
    _toSky = glm::mat4(eye.getProjection() * glm::dmat4(eye.getRotation()));
    _sky.render(true);
    Context::enable(Context::Flag::DepthTest);
    _surface.draw(_sphere, eye, sun, 1);
}

void Earth::drawAir(const gui::draw::Eye& eye, const glm::vec3& sun)
{
    Context::maskDepthBuffer(false);
    Context::disable(Context::Flag::DepthTest);
    Context::enable(Context::Flag::CullFace);
    Context::enable(Context::Flag::Blend);
    Context::setBlendFunction(Blend::Factor::SrcAlpha, Blend::Factor::OneMinusSrcAlpha);
    _surface.draw(_sphere, eye, sun, 1.003); // over lines at the rim, too, which are a pixel wide
    Context::enable(Context::Flag::DepthTest);
    Context::setBlendFunction(Blend::Factor::One, Blend::Factor::One);
    _air.draw(_sphere, eye, sun, cAirRadius);
    Context::disable(Context::Flag::CullFace);
    Context::disable(Context::Flag::Blend);
    Context::maskDepthBuffer(true);
}

} // namespace globe
