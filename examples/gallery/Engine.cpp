#include "Engine.h"

#include "Solids.h"

#include <glm/ext/matrix_transform.hpp>
#include <glm/trigonometric.hpp>

#include <cmath>
#include <vector>

namespace gallery
{

namespace
{

using gui::draw::Material;
using gui::draw::Mesh;
using gui::draw::Path;

constexpr int cSectors = 120;
constexpr double cRod = 86, cCrank = Engine::cStroke / 2, cAngle = Engine::cAngle;
const double cPinY = -cCrank * std::sin(glm::radians(cAngle)), cPinZ = cCrank * std::cos(glm::radians(cAngle));
const double cPistonZ = cPinZ + std::sqrt(cRod * cRod - cPinY * cPinY);
constexpr double cRadius = Engine::cBore / 2, cDeck = Engine::cDeck;

using Profile = std::vector<glm::dvec2>;

Mesh turned(const Profile& profile) { return revolve(profile, cSectors); }

// From z upwards to x.
glm::dmat4 along(const glm::dvec3& place)
{
    glm::dmat4 matrix(0);
    matrix[0] = {0, 1, 0, 0};
    matrix[1] = {0, 0, 1, 0};
    matrix[2] = {1, 0, 0, 0};
    matrix[3] = {place.x, place.y, place.z, 1};
    return matrix;
}

Mesh makeCrankcase()
{
    return turned({{0, -54},
                   {36, -54},
                   {44, -51},
                   {50, -45},
                   {52, -38},
                   {52, 36},
                   {54, 42},
                   {62, 44},
                   {62, 52},
                   {29, 52},
                   {29, 46},
                   {36, 43},
                   {42, 37},
                   {43, 34},
                   {43, -34},
                   {41, -40},
                   {37, -44},
                   {32, -46},
                   {0, -46}});
}

// A ring with fins outside, from one height to another.
Mesh makeFinned(double inner, double outer, double from, double to, int nFins)
{
    Profile profile{{inner, from}, {outer + 14, from}, {outer + 14, from + 5}};
    const double step = (to - from - 10) / nFins;
    for (int i = 0; i < nFins; ++i)
    {
        const double z = from + 5 + i * step;
        profile.insert(profile.end(), {{outer + 1, z + 0.4},
                                       {outer, z + 1.2},
                                       {outer, z + step - 3.4},
                                       {outer + 1, z + step - 2.6},
                                       {outer + 14, z + step - 2.2},
                                       {outer + 14.5, z + step - 1.2},
                                       {outer + 14, z + step - 0.2}});
    }
    profile.insert(profile.end(), {{outer + 14, to - 5}, {outer + 14, to}, {inner, to}, {inner, from}});
    return turned(profile);
}

Mesh makeHead()
{
    Profile profile{{cRadius, cDeck + 1.5}, {50, cDeck + 1.5}, {50, cDeck + 8}};
    for (int i = 0; i < 3; ++i)
    {
        const double z = cDeck + 8 + 7 * i;
        profile.insert(
            profile.end(),
            {{35, z + 0.5}, {34, z + 1.2}, {34, z + 3.8}, {35, z + 4.5}, {48, z + 5}, {48.5, z + 6}, {48, z + 7}});
    }
    profile.insert(profile.end(), {{24, cDeck + 31}, {20, cDeck + 28}, {7, cDeck + 28}, {7, cDeck + 14}});
    for (int i = 0; i <= 8; ++i)
    {
        const double angle = glm::radians(20 + 70.0 * (8 - i) / 8);
        if (i > 0)
            profile.emplace_back(cRadius * std::cos(angle) / std::cos(glm::radians(20.0)),
                                 cDeck + 1.5 + 14 * (std::sin(angle) - std::sin(glm::radians(20.0))));
        else
            profile.emplace_back(7, cDeck + 10.4);
    }
    profile.back() = {cRadius, cDeck + 1.5};
    return turned(profile);
}

Mesh makePiston()
{
    Profile profile{{20.5, -22}, {25.7, -22}, {25.7, 6}};
    for (const double z : {6.0, 10.5, 15.0})
        profile.insert(profile.end(), {{25.7, z}, {22.8, z}, {22.8, z + 2.2}, {25.7, z + 2.2}});
    profile.insert(profile.end(),
                   {{25.7, 19}, {24.7, 20}, {0, 21.5}, {0, 13}, {17, 11}, {20, 8}, {20.5, 4}, {20.5, -22}});
    return turned(profile);
}

Mesh makeRing(double inner, double outer, double from, double to)
{
    return turned({{inner, from}, {outer, from}, {outer, to}, {inner, to}, {inner, from}});
}

Mesh makeShaft(double radius, double from, double to)
{
    return turned(
        {{0, from}, {radius - 0.8, from}, {radius, from + 0.8}, {radius, to - 0.8}, {radius - 0.8, to}, {0, to}});
}

// In the plane that the crank turns in, the shaft's middle at the origin and the pin above it.
Path webOutline()
{
    Path web;
    return web.moveTo({-13, 24})
        .lineTo({-18, 0})
        .lineTo({-30, -12})
        .arcTo({32.3, 32.3}, 0, false, true, {30, -12})
        .lineTo({18, 0})
        .lineTo({13, 24})
        .arcTo({13.2, 13.2}, 0, false, true, {-13, 24})
        .close();
}

Path rodOutline()
{
    Path rod;
    return rod.moveTo({-7, 13.27})
        .arcTo({15, 15}, 0, true, true, {7, 13.27})
        .lineTo({4.5, cRod - 9})
        .arcTo({10.06, 10.06}, 0, true, true, {-4.5, cRod - 9})
        .close()
        .addCircle({0, 0}, 8)
        .addCircle({0, cRod}, 6.5);
}

Mesh makeCrankshaft()
{
    Mesh crank;
    const glm::dmat4 turn = glm::rotate(glm::dmat4(1), glm::radians(cAngle), {0, 0, 1});
    for (const double side : {-1.0, 1.0})
    {
        const double from = side > 0 ? 12 : -22;
        crank.add(extrude(webOutline(), from, from + 10), along({0, 0, 0}) * turn);
        crank.add(side > 0 ? makeShaft(10, 21.5, 86) : makeShaft(10, -86, -21.5), along({0, 0, 0}));
    }
    crank.add(makeShaft(8, -13, 13), along(Engine::getCrankPin()));
    crank.parts.clear();
    return crank;
}

Mesh makePlug()
{
    std::vector<Path::Point> hexagon;
    for (int i = 0; i < 6; ++i)
        hexagon.emplace_back(10 * std::cos(glm::radians(60.0 * i)), 10 * std::sin(glm::radians(60.0 * i)));
    Mesh plug = extrude(Path().addPolygon(hexagon), cDeck + 30, cDeck + 39);
    plug.add(turned(
        {{0, cDeck + 9}, {6.8, cDeck + 9}, {6.8, cDeck + 28}, {9, cDeck + 28}, {9, cDeck + 44}, {0, cDeck + 44}}));
    plug.parts.clear();
    return plug;
}

Mesh makeInsulator()
{
    Profile profile{{0, cDeck + 44}, {6.5, cDeck + 44}, {6, cDeck + 50}};
    for (int i = 0; i < 4; ++i)
        profile.insert(profile.end(), {{5, cDeck + 51 + 4 * i}, {5.8, cDeck + 53 + 4 * i}});
    profile.insert(profile.end(),
                   {{4.2, cDeck + 68}, {2.6, cDeck + 69}, {2.6, cDeck + 76}, {1.8, cDeck + 77}, {0, cDeck + 77}});
    return turned(profile);
}

} // namespace

glm::dvec3 Engine::getCrankPin() { return {0, cPinY, cPinZ}; }

glm::dvec3 Engine::getPistonPin() { return {0, 0, cPistonZ}; }

Mesh Engine::makeHousing()
{
    const Material cast{.color = "#9fb0c4", .shininess = 0.2}, steel{.color = "#7f8da3", .shininess = 0.5};
    const Material copper{.color = "#d08a4e"}, dark{.color = "#56627a", .shininess = 0.5},
        light{.color = "#d9c08a", .shininess = 0.4};
    Mesh housing;
    housing.add(makeCrankcase(), cast);
    housing.add(makeFinned(29, 36, 52, cDeck, 8), cast);
    housing.add(makeRing(cRadius, 29, 40, cDeck), steel);
    housing.add(makeRing(cRadius, 50, cDeck, cDeck + 1.5), copper);
    housing.add(makeHead(), cast);
    housing.add(makePiston(), light, 0, glm::translate(glm::dmat4(1), {0, 0, cPistonZ}));
    for (const double z : {6.0, 10.5, 15.0})
        housing.add(makeRing(23.4, cRadius, cPistonZ + z + 0.2, cPistonZ + z + 2), dark);
    housing.smoothAngle = 35;
    return housing;
}

Mesh Engine::makeTrain()
{
    const Material steel{.color = "#c3cad6", .shininess = 0.6}, red{.color = "#c8563f", .shininess = 0.4};
    const Material dark{.color = "#56627a", .shininess = 0.5}, white{.color = "#f2efe6", .shininess = 0.7};
    Mesh train;
    train.add(makeCrankshaft(), steel);
    const double tilt = std::asin(cPinY / cRod);
    train.add(extrude(rodOutline(), -9, 9), red, 0,
              along(Engine::getCrankPin()) * glm::rotate(glm::dmat4(1), tilt, {0, 0, 1}));
    train.add(makeShaft(6.5, -20, 20), dark, 0, along(Engine::getPistonPin()));
    train.add(makePlug(), dark);
    train.add(makeInsulator(), white);
    return train;
}

} // namespace gallery
