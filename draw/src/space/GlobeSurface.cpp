#include <gui/draw/GlobeSurface.h>

#include <gui/Texture.h>
#include <gui/draw/Program3.h>
#include <gui/gl/Buffer.h>
#include <gui/gl/Textures.h>

#include <glm/vec3.hpp>

#include <utility>

namespace gui::draw
{

namespace
{

// What is drawn over lines is so far above the ground, in radii: over those at the rim, too, which are a pixel wide.
constexpr float cOver = 1.003F;

} // namespace

struct GlobeSurface::Impl
{
    Program3 ground, air;
    gl::Buffer sphere{gl::DataType::Vec3, gl::DataType::Vec3, gl::DataType::Vec2};
    gl::Textures textures;

    void draw(Program3& program, const Eye& eye, const glm::vec3& sun, const Program3::State& state)
    {
        program.set("sun", sun);
        program.draw(sphere, eye, state);
    }
};

GlobeSurface::GlobeSurface(const Globe& globe)
    : GlobeSurface(globe, Look())
{
}

GlobeSurface::GlobeSurface(const Globe& globe, const Look& look)
    : _globe(globe)
    , _look(look)
{
}

GlobeSurface::~GlobeSurface() = default;

bool GlobeSurface::init(const char* file)
{
    gui::Texture picture;
    return picture.loadFromFile(file) && init(picture);
}

bool GlobeSurface::init(gui::Texture& picture)
{
    using gl::Textures;
    constexpr unsigned int cSlices = 256, cStacks = 128;
    auto pImpl = std::make_unique<Impl>();
    // An image, unlike a file, has its first row at t = 0, which is the north of a generated sphere.
    if (!pImpl->textures.append({&picture}, gl::Texture::Type::Tex2D))
        return false;
    pImpl->sphere.addSphere(1, cSlices, cStacks, gl::Texture::Type::Tex2D)->setTexture(Textures::Unit::T0, 0);
    for (Program3* pProgram : {&pImpl->ground, &pImpl->air})
        pProgram->setTextures(&pImpl->textures);
    if (!pImpl->ground.link(":draw/globe.vert", ":draw/globe.frag") ||
        !pImpl->air.link(":draw/globe.vert", ":draw/globeair.frag"))
        return false;
    for (Program3* pProgram : {&pImpl->ground, &pImpl->air})
        pProgram->set("radius", static_cast<float>(_globe.radius));
    pImpl->air.set("shell", static_cast<float>(1 + cAirHeight));
    pImpl->ground.set("hasAir", _look.hasAir ? 1.0F : 0.0F);
    pImpl->ground.set("hasWater", _look.hasWater ? 1.0F : 0.0F);
    _pImpl = std::move(pImpl);
    return true;
}

void GlobeSurface::draw(const Eye& eye)
{
    if (_pImpl == nullptr)
        return;
    _pImpl->ground.set("shell", 1.0F);
    _pImpl->draw(_pImpl->ground, eye, sunFor(eye), {});
}

void GlobeSurface::drawOver(const Eye& eye)
{
    using Blending = Program3::Blending;
    if (_pImpl == nullptr)
        return;
    const glm::vec3 sun = sunFor(eye);
    _pImpl->ground.set("shell", cOver);
    _pImpl->draw(_pImpl->ground, eye, sun,
                 {.blending = Blending::Over, .isHidden = false, .isHiding = false, .isOneSided = true});
    if (_look.hasAir)
        _pImpl->draw(_pImpl->air, eye, sun, {.blending = Blending::Add, .isHiding = false, .isOneSided = true});
}

glm::vec3 GlobeSurface::sunFor(const Eye& eye) const
{
    const Globe::Place place = _sun.value_or(_globe.getPlace(eye.getPosition()));
    return Globe().getPoint(place);
}

} // namespace gui::draw
