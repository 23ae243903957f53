#include "Earth.h"

#include <gui/Texture.h>
#include <gui/gl/Context.h>

namespace globe
{

using namespace gui::gl;

namespace
{

// A generated sphere has its pole on the z axis and its texture's left edge, 180 degrees west, on the x axis.
glm::mat4 upright(float radius) { return glm::mat4(glm::mat3(0, 0, -1, -1, 0, 0, 0, 1, 0) * radius); }

} // namespace

bool Earth::init()
{
    // Given as an image, not as a file: the first row is then t = 0, which is a generated sphere's north.
    gui::Texture relief;
    if (!relief.loadFromFile(":globe/earth-720x360.png") || !_textures.append({&relief}, Texture::Type::Tex2D))
        return false;
    Command* const pCommand = _sphere.addSphere(1, 256, 128, Texture::Type::Tex2D);
    pCommand->setTexture(Textures::Unit::T0, 0);
    _sphere.encode(pCommand);
    for (PlanetProgram* pProgram : {&_surfaceProgram, &_airProgram})
    {
        pProgram->setBuffer(&_sphere);
        pProgram->setTextures(&_textures);
    }
    return _surfaceProgram.link(":globe/planet.vert", ":globe/surface.frag") &&
           _airProgram.link(":globe/planet.vert", ":globe/air.frag") && _sphere.commit();
}

void Earth::drawSurface(const Sight& sight)
{
    _surfaceProgram.activate();
    _surfaceProgram.setSight(sight, upright(1));
    _surfaceProgram.execute();
    _surfaceProgram.deActivate();
}

void Earth::drawAir(const Sight& sight)
{
    // Each line of sight meets the sphere twice: the far side is left out.
    Context::enable(Context::Flag::CullFace);
    Context::setBlendFunction(Blend::Factor::One, Blend::Factor::One);
    Context::enable(Context::Flag::Blend);
    Context::maskDepthBuffer(false);
    _airProgram.activate();
    _airProgram.setSight(sight, upright(cAirRadius));
    _airProgram.execute();
    _airProgram.deActivate();
    Context::maskDepthBuffer(true);
    Context::disable(Context::Flag::Blend);
    Context::disable(Context::Flag::CullFace);
}

} // namespace globe
