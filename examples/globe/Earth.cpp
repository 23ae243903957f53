#include "Earth.h"

#include <gui/Texture.h>

namespace globe
{

using gui::draw::Program3;
using gui::gl::Texture, gui::gl::Textures;

bool Earth::init()
{
    // Given as an image, not as a file: the first row is then t = 0, which is a generated sphere's north.
    gui::Texture relief;
    if (!relief.loadFromFile(":globe/earth-720x360.png") || !_textures.append({&relief}, Texture::Type::Tex2D))
        return false;
    _sphere.addSphere(1, 256, 128, Texture::Type::Tex2D)->setTexture(Textures::Unit::T0, 0);
    for (Program3* pProgram : {&_surface, &_air})
        pProgram->setTextures(&_textures);
    return _surface.link(":globe/planet.vert", ":globe/surface.frag") &&
           _air.link(":globe/planet.vert", ":globe/air.frag");
}

void Earth::draw(const gui::draw::Eye& eye, const glm::vec3& sun)
{
    _surface.set("sun", sun);
    _surface.set("radius", 1.0F);
    _surface.draw(_sphere, eye);
}

void Earth::drawAir(const gui::draw::Eye& eye, const glm::vec3& sun)
{
    // Over lines at the rim, too, which are a pixel wide.
    _surface.set("radius", 1.003F);
    _surface.draw(_sphere, eye,
                  {.blending = Program3::Blending::Over, .isHidden = false, .isHiding = false, .isOneSided = true});
    _air.set("sun", sun);
    _air.set("radius", cAirRadius);
    _air.draw(_sphere, eye, {.blending = Program3::Blending::Add, .isHiding = false, .isOneSided = true});
}

} // namespace globe
