#include "Earth.h"

#include "Geography.h"
#include "StarrySky.h"

#include <gui/Texture.h>
#include <gui/gl/Context.h>

#include <algorithm>
#include <cmath>

namespace globe
{

using namespace gui::gl;

namespace
{

constexpr int cSkySize = 768; // pixels along a face
constexpr double cLineRadius = 1.0015;
// Longer lines would run below the surface, which is round.
constexpr double cLongestStep = 1.5; // degrees

constexpr glm::vec4 cCoast(1, 1, 1, 0.45F), cBorder(1, 0.95F, 0.85F, 0.9F), cPointed(1, 0.83F, 0.35F, 2);

void addLine(Buffer& buffer, const examples::TopoJSON::Line& line, const glm::vec4& color)
{
    // Where maps end there are lines in the data, and none on the earth.
    const auto isAtEdge = [](const td::Point<double>& a, const td::Point<double>& b)
    { return std::min(std::abs(a.x), std::abs(b.x)) > 179.99 || std::min(std::abs(a.y), std::abs(b.y)) > 89.99; };
    for (std::size_t i = 1; i < line.size(); ++i)
    {
        const td::Point<double> from = line[i - 1], to = line[i];
        const double east = std::remainder(to.x - from.x, 360), north = to.y - from.y; // the short way around
        const double n = isAtEdge(from, to) ? 0 : std::max(1.0, std::ceil(std::hypot(east, north) / cLongestStep));
        for (double end = 1; end <= n; ++end)
            for (const double part : {(end - 1) / n, end / n})
            {
                const glm::vec3 p = cLineRadius * directionOf({from.x + part * east, from.y + part * north});
                const float vertex[] = {p.x, p.y, p.z, color.r, color.g, color.b, color.a};
                buffer.appendVertices(vertex, 1);
            }
    }
}

} // namespace

void Earth::Layer::draw(Buffer& buffer, const gui::draw::Eye& eye, const glm::vec3& sun, double radius)
{
    const auto at = [this](const char* name) { return static_cast<unsigned int>(getUniformLocation(name)); };
    activate();
    setUniformValue(at("eye"), glm::vec3(eye.getPosition()));
    setUniformValue(at("sun"), sun);
    setUniformValue(at("radius"), radius);
    Program::draw(buffer, eye.getMatrix());
}

bool Earth::init(const examples::TopoJSON& countries)
{
    // Given as an image, not as a file: the first row is then t = 0, which is a generated sphere's north.
    gui::Texture relief;
    if (!relief.loadFromFile(":globe/earth-720x360.png") || !_textures.append({&relief}, Texture::Type::Tex2D))
        return false;
    _sphere.addSphere(1, 256, 128, Texture::Type::Tex2D)->setTexture(Textures::Unit::T0, 0);
    for (Layer* pLayer : {&_surface, &_air})
        pLayer->setTextures(&_textures);
    for (const examples::TopoJSON::Line& coast : countries.getCoasts())
        addLine(_borders, coast, cCoast);
    for (const examples::TopoJSON::Border& border : countries.getBorders())
        addLine(_borders, border.line, cBorder);
    _borders.createCommand()->createDrawAll(Primitive::Lines);
    return _surface.link(":globe/planet.vert", ":globe/surface.frag") &&
           _air.link(":globe/planet.vert", ":globe/air.frag") &&
           _lines.link(":globe/border.vert", ":globe/border.frag") && _sky.init(&_toSky, nullptr, cSkySize, starrySky);
}

void Earth::point(const examples::TopoJSON::Area* pCountry)
{
    _outline.reset();
    _isPointed = pCountry != nullptr;
    if (!_isPointed)
        return;
    for (const examples::TopoJSON::Polygon& polygon : pCountry->polygons)
        for (examples::TopoJSON::Ring ring : polygon)
        {
            ring.push_back(ring.front());
            addLine(_outline, ring, cPointed);
        }
    _outline.createCommand()->createDrawAll(Primitive::Lines);
}

void Earth::draw(const gui::draw::Eye& eye, const glm::vec3& sun, bool hasBorders)
{
    _toSky = glm::mat4(eye.getProjection() * glm::dmat4(eye.getRotation()));
    _sky.render(true);
    Context::enable(Context::Flag::DepthTest);
    _surface.draw(_sphere, eye, sun, 1);
    Context::maskDepthBuffer(false);
    Context::enable(Context::Flag::Blend);
    Context::setBlendFunction(Blend::Factor::SrcAlpha, Blend::Factor::OneMinusSrcAlpha);
    if (hasBorders)
        _lines.draw(_borders, eye, sun, 1);
    if (_isPointed)
        _lines.draw(_outline, eye, sun, 1);
    // Each line of sight meets the air twice: the far side is left out.
    Context::enable(Context::Flag::CullFace);
    Context::setBlendFunction(Blend::Factor::One, Blend::Factor::One);
    _air.draw(_sphere, eye, sun, cAirRadius);
    Context::disable(Context::Flag::CullFace);
    Context::disable(Context::Flag::Blend);
    Context::maskDepthBuffer(true);
}

} // namespace globe
