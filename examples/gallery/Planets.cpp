#include "Planets.h"

#include <gui/gl/gl.h>

#include <glm/ext/matrix_transform.hpp>
#include <glm/geometric.hpp>

#include <cmath>
#include <numbers>

namespace gallery
{

namespace
{

using namespace gui::gl;
using td::ColorID;
using Vertices = std::vector<ColorVertex>;

struct Planet
{
    float orbit; // in units; its radius
    float size;
    float seconds; // once around
    float start;   // turns
    ColorID color;
};

constexpr Planet cPlanets[] = {{0.34F, 0.035F, 5, 0.55F, ColorID::LightSalmon},
                               {0.56F, 0.060F, 9, 0.05F, ColorID::Gold},
                               {0.84F, 0.070F, 14, 0.50F, ColorID::DeepSkyBlue},
                               {1.12F, 0.050F, 21, 0.22F, ColorID::Tomato},
                               {1.48F, 0.115F, 34, 0.74F, ColorID::SandyBrown}};
constexpr std::size_t cWithMoon = 2;

constexpr std::size_t cStarsPart = 0, cSunPart = 1, cMoon = 2, cFirstOrbit = 3;
constexpr float cTilt = 0.56F; // of the orbits' height to their width
constexpr float cSunSize = 0.34F;

// A disc that is lit from the left.
Vertices makeLitBall(ColorID id)
{
    const glm::vec3 color = glm::vec3(colorOf(id));
    Vertices fan = {{{-0.3F, 0}, {color, 1}}};
    for (int i = 0; i <= 60; ++i)
    {
        const glm::vec2 place = onCircle(static_cast<float>(i) / 60, 1);
        fan.push_back({place, {color * (0.55F - 0.45F * place.x), 1}});
    }
    return fan;
}

// A disc that fades from white over its colour to nothing.
Vertices makeSun()
{
    constexpr float cRadii[] = {0, 0.45F, 0.55F, 1};
    const glm::vec4 colors[] = {colorOf(ColorID::White), colorOf(ColorID::Gold), colorOf(ColorID::DarkOrange, 0.4F),
                                colorOf(ColorID::OrangeRed, 0)};
    Vertices strip;
    for (std::size_t ring = 0; ring + 1 < std::size(cRadii); ++ring)
    {
        for (int i = 0; i <= 90; ++i)
        {
            strip.push_back({onCircle(static_cast<float>(i) / 90, cRadii[ring]), colors[ring]});
            strip.push_back({onCircle(static_cast<float>(i) / 90, cRadii[ring + 1]), colors[ring + 1]});
        }
    }
    return strip;
}

// Once around, brightest at the right where its planet is.
Vertices makeOrbit(ColorID id)
{
    Vertices strip;
    for (int i = 0; i <= 180; ++i)
    {
        const float way = static_cast<float>(i) / 180;
        strip.push_back({onCircle(-way, 1), colorOf(id, 0.12F + 0.8F * (1 - way) * (1 - way) * (1 - way))});
    }
    return strip;
}

// Spread evenly and without order: fractions of multiples of numbers that are no fractions.
Vertices makeStars()
{
    Vertices points;
    for (int i = 1; i <= 160; ++i)
    {
        const auto x = static_cast<float>(std::fmod(i * 0.7548776662, 1.0));
        const auto y = static_cast<float>(std::fmod(i * 0.5698402910, 1.0));
        points.push_back({{4 * x - 2, 2.4F * y - 1.2F},
                          colorOf(ColorID::LightSteelBlue, 0.15F + 0.06F * static_cast<float>(i % 11))});
    }
    return points;
}

} // namespace

bool Planets::init()
{
    _buffer.init(cFirstOrbit + 2 * std::size(cPlanets), 3000, 0, {DataType::Vec2, DataType::Vec4});
    record(Primitive::Points, makeStars());
    record(Primitive::TriangleStrip, makeSun());
    record(Primitive::TriangleFan, makeLitBall(ColorID::Gainsboro));
    for (const Planet& planet : cPlanets)
    {
        record(Primitive::LineStrip, makeOrbit(planet.color));
        record(Primitive::TriangleFan, makeLitBall(planet.color));
    }
    _program.setBuffer(&_buffer);
    return _backdrop.init() && _program.link() && _buffer.commit();
}

void Planets::record(Primitive primitive, std::span<const ColorVertex> vertices)
{
    const std::size_t first = append(_buffer, vertices);
    Command* pCommand = _buffer.createCommand();
    pCommand->createDrawArrays(primitive, first, static_cast<unsigned int>(vertices.size()));
    _buffer.encode(pCommand);
}

void Planets::draw(const Frame& frame)
{
    const glm::mat4 toClip = unitsToClip(frame, makeGrid(frame, 1, 1).front());
    const auto seconds = static_cast<float>(frame.seconds);
    _backdrop.draw(frame);
    _program.activate();
    Context::setBlendFunction(Blend::Factor::SrcAlpha, Blend::Factor::OneMinusSrcAlpha);
    Context::enable(Context::Flag::Blend);
    Context::setPointSize(static_cast<float>(1.5 * frame.scale));
    _program.setMVP(toClip);
    _program.execute(cStarsPart, 1);
    _program.setMVP(glm::scale(toClip, glm::vec3(cSunSize)));
    _program.execute(cSunPart, 1);
    for (std::size_t i = 0; i < std::size(cPlanets); ++i)
    {
        const Planet& planet = cPlanets[i];
        const float turns = planet.start + seconds / planet.seconds;
        const std::size_t orbit = cFirstOrbit + 2 * i;
        const glm::mat4 flat = glm::scale(toClip, {planet.orbit, cTilt * planet.orbit, 1});
        _program.setMVP(glm::rotate(flat, 2 * std::numbers::pi_v<float> * turns, {0, 0, 1}));
        _program.execute(orbit, 1);
        const glm::vec2 place = onCircle(turns, planet.orbit) * glm::vec2(1, cTilt);
        drawBall(toClip, place, planet.size, orbit + 1);
        if (i == cWithMoon)
            drawBall(toClip, place + onCircle(seconds / 3, 0.14F) * glm::vec2(1, cTilt), 0.02F, cMoon);
    }
    Context::disable(Context::Flag::Blend);
    _program.deActivate();
}

// Its bright side looks at the sun, in the middle.
void Planets::drawBall(const glm::mat4& toClip, const glm::vec2& place, float size, std::size_t command)
{
    const glm::mat4 turned =
        glm::rotate(glm::translate(toClip, {place.x, place.y, 0}), std::atan2(place.y, place.x), {0, 0, 1});
    _program.setMVP(glm::scale(turned, glm::vec3(size)));
    _program.execute(command, 1);
}

} // namespace gallery
