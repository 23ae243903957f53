#include "Car.h"

#include "Solids.h"

#include <glm/ext/matrix_transform.hpp>
#include <glm/trigonometric.hpp>

#include <array>

namespace gallery
{

namespace
{

using gui::draw::Material;
using gui::draw::Mesh;
using gui::draw::Path;

constexpr double cWaist = 0.68, cShoulder = 0.93, cRoof = 1.40; // heights

/// Half of how wide it is at two heights, and in between.
struct CarWidth
{
    double bottom, top;
    double bottomHalf, topHalf;
    double at(double y) const { return bottomHalf + (topHalf - bottomHalf) * (y - bottom) / (top - bottom); }
};

constexpr CarWidth cLowerWidth{0.28, cWaist, 0.80, 0.86}, cUpperWidth{cWaist, cShoulder, 0.86, 0.78},
    cCabinWidth{cShoulder, cRoof, 0.74, 0.56};

// As smooth as something of centimetres would be.
Mesh extruded(Path path, double from, double to)
{
    constexpr double cScale = 100;
    Mesh mesh = extrude(path.transform(gui::draw::Affine::scaling(cScale, cScale)), from * cScale, to * cScale);
    for (glm::dvec3& p : mesh.positions)
        p /= cScale;
    return mesh;
}

// A side view that is as wide as that, or a part of it, and stands out so far.
Mesh bodyPart(const Path& side, const CarWidth& width, double share = 1, double out = 0)
{
    Mesh mesh = extruded(side, -1, 1);
    for (glm::dvec3& p : mesh.positions)
        p.z *= share * width.at(p.y) + out;
    return mesh;
}

Path lowerSide()
{
    constexpr double cArch = 0.36, cBottom = 0.28;
    Path side;
    side.moveTo({-1.93, cBottom});
    for (const double x : {-1.27, 1.27})
        side.lineTo({x - cArch, cBottom}).arcTo({cArch, cArch}, 0, false, false, {x + cArch, cBottom});
    side.lineTo({1.90, cBottom}).quadTo({2.02, 0.40}, {1.99, cWaist}).lineTo({-1.98, cWaist});
    return side.quadTo({-2.02, 0.40}, {-1.93, cBottom}).close();
}

Path upperSide()
{
    Path side;
    side.moveTo({1.99, cWaist}).quadTo({1.94, 0.80}, {1.60, 0.855}).quadTo({1.20, 0.90}, {0.90, cShoulder});
    return side.lineTo({-1.70, cShoulder}).quadTo({-1.95, 0.90}, {-1.98, cWaist}).close();
}

Path cabinSide()
{
    Path side;
    side.moveTo({0.95, cShoulder}).quadTo({0.55, 1.22}, {0.24, 1.34}).quadTo({0.02, cRoof}, {-0.35, cRoof});
    return side.quadTo({-0.95, cRoof}, {-1.66, cShoulder}).close();
}

// Glass that stands out of the cabin: two panes of the side, and those in front and behind.
Mesh sideGlass()
{
    Path panes;
    panes.moveTo({0.74, 0.97})
        .quadTo({0.42, 1.22}, {0.14, 1.31})
        .quadTo({0.0, 1.34}, {-0.30, 1.34})
        .lineTo({-0.30, 0.97})
        .close();
    panes.moveTo({-0.38, 0.97}).lineTo({-0.38, 1.34}).quadTo({-0.86, 1.33}, {-1.34, 0.97}).close();
    return bodyPart(panes, cCabinWidth, 1, 0.006);
}

Mesh endGlass()
{
    Path panes;
    panes.moveTo({0.93, 0.955}).quadTo({0.56, 1.22}, {0.29, 1.325}).lineTo({0.25, 1.30}).lineTo({0.85, 0.955}).close();
    panes.moveTo({-1.65, 0.955})
        .lineTo({-1.5, 0.955})
        .lineTo({-0.85, 1.30})
        .lineTo({-0.86, 1.355})
        .quadTo({-1.2, 1.26}, {-1.65, 0.955})
        .close();
    Mesh glass = bodyPart(panes, cCabinWidth, 0.88);
    for (glm::dvec3& p : glass.positions)
        p += glm::dvec3(p.x > 0 ? 0.005 : -0.005, 0.005, 0);
    return glass;
}

Mesh hubDisc(double radius, double thickness)
{
    const std::array<glm::dvec2, 4> profile{{{0, 0}, {radius, 0}, {radius * 0.9, thickness}, {0, thickness * 1.3}}};
    return revolve(profile, 40);
}

void addWheel(Mesh& car, double x, double side)
{
    const std::array<glm::dvec2, 8> tyre{
        {{0.2, -0.1}, {0.29, -0.1}, {0.315, -0.075}, {0.32, 0}, {0.315, 0.075}, {0.29, 0.1}, {0.2, 0.1}, {0.2, 0.09}}};
    const std::array<glm::dvec2, 6> rim{
        {{0, -0.09}, {0.2, -0.09}, {0.2, 0.095}, {0.185, 0.095}, {0.17, 0.06}, {0, 0.075}}};
    const glm::dmat4 place = glm::rotate(glm::translate(glm::dmat4(1), {x, 0.32, side * 0.74}),
                                         glm::radians(side > 0 ? 0.0 : 180.0), {1, 0, 0});
    const Material rubber{.color = "#22242a", .shininess = 0.1}, metal{.color = "#c9ced6", .shininess = 0.7};
    car.add(revolve(tyre, 56), rubber, 0, place);
    car.add(revolve(rim, 56), metal, 0, place);
    for (int i = 0; i < 5; ++i)
    {
        const glm::dmat4 turned = glm::rotate(place, glm::radians(72.0 * i), {0, 0, 1});
        car.add(hubDisc(0.035, 0.004), rubber, 0, glm::translate(turned, {0.115, 0, 0.067}));
    }
    car.add(hubDisc(0.045, 0.02), metal, 0, glm::translate(place, {0, 0, 0.07}));
}

} // namespace

Mesh makeCar()
{
    const Material paint{.color = "#c8281e", .shininess = 0.75}, stripe{.color = "#f4f2ea", .shininess = 0.6};
    const Material glass{.color = "#1c2733", .shininess = 0.95}, chrome{.color = "#d4d9e0", .shininess = 0.8};
    const Material dark{.color = "#17191e", .shininess = 0.1};
    Mesh car;
    car.add(bodyPart(lowerSide(), cLowerWidth), paint);
    car.add(bodyPart(upperSide(), cUpperWidth), paint);
    car.add(bodyPart(cabinSide(), cCabinWidth), paint);
    // Two stripes lie on it, three millimetres thick.
    for (const double z : {-0.2, 0.2})
        for (const Path& side : {upperSide(), cabinSide()})
            car.add(extruded(side, z - 0.09, z + 0.09), stripe, 0, glm::translate(glm::dmat4(1), {0, 0.003, 0}));
    car.add(sideGlass(), glass);
    car.add(endGlass(), glass);
    Path below;
    car.add(extruded(below.addRect({-1.85, 0.22, 1.85, 0.5}), -0.62, 0.62), dark);
    Path bumpers;
    bumpers.addRoundedRect({1.93, 0.36, 2.05, 0.46}, {0.04, 0.04})
        .addRoundedRect({-2.05, 0.36, -1.93, 0.46}, {0.04, 0.04});
    car.add(extruded(bumpers, -0.8, 0.8), chrome);
    Path grille;
    car.add(extruded(grille.addRoundedRect({1.95, 0.53, 2.006, 0.65}, {0.02, 0.02}), -0.42, 0.42), dark);
    const glm::dmat4 ahead = glm::rotate(glm::dmat4(1), glm::radians(90.0), {0, 1, 0});
    for (const double side : {-1.0, 1.0})
    {
        addWheel(car, -1.27, side);
        addWheel(car, 1.27, side);
        car.add(hubDisc(0.125, 0.03), chrome, 0, glm::translate(glm::dmat4(1), {1.955, 0.66, 0.6 * side}) * ahead);
        car.add(hubDisc(0.1, 0.04), {.color = "#fff6d8", .shininess = 1}, 0,
                glm::translate(glm::dmat4(1), {1.965, 0.66, 0.6 * side}) * ahead);
        Path lamp;
        car.add(extruded(lamp.addRect({-2.0, 0.62, -1.94, 0.72}), side * 0.62 - 0.13, side * 0.62 + 0.13),
                {.color = "#a01010", .shininess = 0.9});
    }
    return car;
}

} // namespace gallery
