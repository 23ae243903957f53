// Look for: a hundred thousand rocks about a planet, each lit and to be pointed at; the orbit of the one under the
// pointer; a click leaves a trail behind one, another takes it away. Shadows: the planet's on the rocks, theirs on it.

#include "Lettering.h"
#include "Orbiting.h"
#include "Scenes.h"

#include <gui/InputDevice.h>
#include <gui/draw/Drawing.h>
#include <gui/draw/IdPicker.h>
#include <gui/draw/Instances.h>
#include <gui/draw/Points3.h>
#include <gui/draw/Polylines3.h>
#include <gui/gl/Context.h>

#include <glm/common.hpp>
#include <glm/geometric.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <random>
#include <utility>
#include <vector>

namespace gallery
{

namespace
{

using gui::draw::Eye;
using gui::draw::Image;
using gui::draw::Instances;
using gui::draw::Mesh;
using gui::draw::Points3;
using gui::draw::Polylines3;

constexpr std::size_t cRocks = 100'000;
constexpr double cRingInner = 1.42, cRingOuter = 2.75; // of the ring; the planet's radius is 1
constexpr double cDark = 0.06;                         // what is left of colours in a shadow
constexpr double cRoundOnce = 2 * std::numbers::pi;
const glm::dvec3 cToSun = glm::normalize(glm::dvec3(-0.62, 0.34, 0.42));
constexpr td::Color cPointed = "#ff9a3c", cMarked = "#46d2ff";

/// Numbers from 0 to 1 that are the same everywhere.
class Chance
{
public:
    double next() { return static_cast<double>(_engine()) / 4294967296.0; }
    double next(double low, double high) { return low + (high - low) * next(); }
    /// About 0, mostly within 1.
    double around() { return next() + next() + next() + next() - 2; }

private:
    std::mt19937 _engine{2026};
};

double smoothBetween(double low, double high, double x)
{
    const double t = std::clamp((x - low) / (high - low), 0.0, 1.0);
    return t * t * (3 - 2 * t);
}

// How much of the ring there is at a distance: bands, and two gaps.
double densityAt(double radius)
{
    if (radius <= cRingInner || radius >= cRingOuter)
        return 0;
    const auto gap = [radius](double at, double width)
    { return 1 - 0.96 * std::exp(-std::pow((radius - at) / width, 2)); };
    const double bands = 0.68 + 0.18 * std::sin(31 * radius) + 0.14 * std::sin(83 * radius + 1);
    return bands * gap(2.08, 0.045) * gap(2.53, 0.02) * smoothBetween(cRingInner, cRingInner + 0.12, radius) *
           smoothBetween(cRingOuter, cRingOuter - 0.1, radius);
}

// Of light that comes past the planet.
double lightAt(const glm::dvec3& place)
{
    const double along = glm::dot(place, cToSun);
    return along > 0 ? 1 : smoothBetween(0.985, 1.03, glm::length(place - along * cToSun));
}

// Of light that comes through the ring to a place on the planet.
double lightThroughRing(const glm::dvec3& place)
{
    const double steps = -place.y / cToSun.y;
    if (steps <= 0)
        return 1;
    const glm::dvec3 at = place + steps * cToSun;
    return 1 - 0.8 * std::min(densityAt(std::hypot(at.x, at.z)), 1.0);
}

td::Color opaqueOf(const glm::dvec3& color)
{
    const glm::dvec3 c = glm::clamp(color, 0.0, 1.0) * 255.0 + 0.5;
    return {static_cast<unsigned int>(c.x), static_cast<unsigned int>(c.y), static_cast<unsigned int>(c.z), 255};
}

glm::dvec3 mixed(std::span<const glm::dvec3> colors, double share)
{
    const double at = std::clamp(share, 0.0, 1.0) * static_cast<double>(colors.size() - 1);
    const auto i = std::min(static_cast<std::size_t>(at), colors.size() - 2);
    return glm::mix(colors[i], colors[i + 1], at - static_cast<double>(i));
}

// Bands that wind about each other, under the ring's shadow.
Image makeBands()
{
    constexpr int cWidth = 1024, cHeight = 512;
    constexpr std::array<glm::dvec3, 6> cColors{{{0.62, 0.45, 0.33},
                                                 {0.87, 0.72, 0.54},
                                                 {0.96, 0.89, 0.76},
                                                 {0.80, 0.60, 0.44},
                                                 {0.93, 0.81, 0.64},
                                                 {0.58, 0.47, 0.42}}};
    std::vector<td::Color> pixels;
    for (int y = 0; y < cHeight; ++y)
        for (int x = 0; x < cWidth; ++x)
        {
            const double polar = std::numbers::pi * (y + 0.5) / cHeight, around = cRoundOnce * x / cWidth;
            const glm::dvec3 place(std::sin(polar) * std::cos(around), std::cos(polar),
                                   std::sin(polar) * std::sin(around));
            const double wave = 0.012 * std::sin(5 * around + 9 * polar) + 0.009 * std::sin(11 * around - 25 * polar) +
                                0.006 * std::sin(23 * around + 40 * polar);
            const double height = polar / std::numbers::pi + wave * std::sin(polar);
            const double band = 0.5 + 0.34 * std::sin(19 * height) + 0.16 * std::sin(47 * height + 2);
            pixels.push_back(opaqueOf(mixed(cColors, band) * (0.16 + 0.84 * lightThroughRing(place))));
        }
    return {cWidth, cHeight, pixels};
}

Mesh makePlanet()
{
    constexpr std::uint32_t cSectors = 160, cStacks = 80;
    Mesh planet;
    for (std::uint32_t stack = 0; stack <= cStacks; ++stack)
        for (std::uint32_t i = 0; i <= cSectors; ++i)
        {
            const double polar = std::numbers::pi * stack / cStacks, around = cRoundOnce * i / cSectors;
            const glm::dvec3 place(std::sin(polar) * std::cos(around), std::cos(polar),
                                   std::sin(polar) * std::sin(around));
            planet.positions.push_back(place);
            planet.normals.emplace_back(place);
            planet.textureCoordinates.emplace_back(static_cast<float>(i) / cSectors,
                                                   static_cast<float>(stack) / cStacks);
        }
    for (std::uint32_t stack = 0; stack < cStacks; ++stack)
        for (std::uint32_t i = 0; i < cSectors; ++i)
        {
            const std::uint32_t a = stack * (cSectors + 1) + i, b = a + cSectors + 1;
            planet.indices.insert(planet.indices.end(), {a, a + 1, b, b, a + 1, b + 1});
        }
    planet.material = {.color = "#ffffff", .texture = makeBands(), .isTwoSided = false, .shininess = 0};
    return planet;
}

// Twenty faces, with corners that chance has moved.
Mesh makeRock()
{
    const double g = std::numbers::phi;
    Mesh rock;
    rock.positions = {{-1, g, 0},  {1, g, 0},  {-1, -g, 0}, {1, -g, 0}, {0, -1, g},  {0, 1, g},
                      {0, -1, -g}, {0, 1, -g}, {g, 0, -1},  {g, 0, 1},  {-g, 0, -1}, {-g, 0, 1}};
    rock.indices = {0, 11, 5, 0, 5, 1, 0, 1, 7, 0, 7, 10, 0, 10, 11, 1, 5, 9, 5, 11, 4,  11, 10, 2,  10, 7, 6, 7, 1, 8,
                    3, 9,  4, 3, 4, 2, 3, 2, 6, 3, 6, 8,  3, 8,  9,  4, 9, 5, 2, 4,  11, 6,  2,  10, 8,  6, 7, 9, 8, 1};
    Chance chance;
    for (glm::dvec3& p : rock.positions)
        p *= chance.next(0.42, 0.7);
    rock.smoothAngle = 0;
    rock.material = {.color = "#ffffff", .isTwoSided = false, .shininess = 0.1};
    return rock;
}

class Swarm : public Orbiting
{
public:
    bool init() override
    {
        if (!setMesh(makePlanet()) || !_rocks.setMesh(makeRock()))
            return false;
        gui::draw::Light sun = gui::draw::Light::sun(cToSun);
        sun.ambient = 0.05;
        _model.setLight(sun);
        sun.ambient = 0.12;
        _rocks.setLight(sun);
        _moons.setLight(sun);
        Chance chance;
        scatterRocks(chance);
        scatterStars(chance);
        addMoons();
        _lines.setBias(12); // over the rocks that they go between
        _lettering.init();
        _camera.setBounds({glm::dvec3(-cStarsAway), glm::dvec3(cStarsAway)});
        _camera.setDistanceLimits(1.3, 20);
        _camera.setTarget({0.42, -0.22, 0.1});
        _camera.setDirection(24, 13);
        _camera.setDistance(4.3);
        for (const std::size_t rock : {nearest(1.62, 0.18), nearest(2.3, -0.35), nearest(2.66, 0.43)})
            mark(rock);
        point(nearest(2.0, -0.5));
        return true;
    }

    bool prepareNextFrame(double seconds) override
    {
        turn(seconds, 3);
        return true;
    }

    void onPointer(PointerEvent event, const gui::InputDevice& device) override
    {
        if (isForGallery(device))
            return;
        const td::Point<double> at = device.getFramePoint();
        if (event == PointerEvent::Moved || event == PointerEvent::Pressed)
        {
            _picker.ask(at);
            _pressed = at;
            redraw();
        }
        else if (event == PointerEvent::Exited)
        {
            _picker.forget();
            point(std::nullopt);
            redraw();
        }
        else if (event == PointerEvent::Released && _pointed && std::hypot(at.x - _pressed.x, at.y - _pressed.y) < 3)
        {
            mark(*_pointed);
            redraw();
        }
        Orbiting::onPointer(event, device);
    }

private:
    static constexpr double cStarsAway = 400;

    void scatterRocks(Chance& chance)
    {
        // From the innermost to the outermost.
        constexpr std::array<glm::dvec3, 4> cColors{
            {{0.62, 0.50, 0.42}, {0.86, 0.76, 0.62}, {0.95, 0.91, 0.84}, {0.62, 0.68, 0.78}}};
        std::vector<Instances::Placement> placements;
        while (placements.size() < cRocks)
        {
            const double radius = chance.next(cRingInner, cRingOuter), around = chance.next(0, cRoundOnce);
            if (chance.next() * cRingOuter > densityAt(radius) * radius)
                continue;
            const double size = std::min(0.0032 * std::pow(chance.next() + 1e-6, -0.36), 0.024);
            const double height = 0.012 * chance.around() + 0.02 * std::sin(3 * around + 7 * radius);
            const glm::dvec3 place(radius * std::cos(around), height, radius * std::sin(around));
            placements.push_back(
                {place,
                 {chance.around(), chance.around(), chance.around(), chance.around() + 1e-3},
                 size * glm::dvec3(chance.next(0.7, 1.3), chance.next(0.7, 1.3), chance.next(0.7, 1.3))});
            const glm::dvec3 color =
                mixed(cColors, (radius - cRingInner) / (cRingOuter - cRingInner) + 0.1 * chance.around());
            const double light = cDark + (1 - cDark) * lightAt(place);
            _colors.push_back(opaqueOf(color * chance.next(0.72, 1.05) * std::pow(light, 1 / 2.2)));
        }
        _rocks.set(placements, _colors);
    }

    void scatterStars(Chance& chance)
    {
        std::vector<glm::dvec3> places;
        std::vector<td::Color> colors;
        std::vector<float> sizes;
        while (places.size() < 4200)
        {
            const glm::dvec3 at(chance.next(-1, 1), chance.next(-1, 1), chance.next(-1, 1));
            const double length = glm::length(at);
            if (length > 1 || length < 0.1)
                continue;
            places.push_back(at * (cStarsAway / length));
            const double warmth = chance.around(), light = std::pow(chance.next(), 3);
            colors.push_back(opaqueOf((0.3 + 0.7 * light) * glm::dvec3(0.9 + 0.15 * warmth, 0.9, 0.9 - 0.15 * warmth)));
            sizes.push_back(static_cast<float>(0.7 + 1.1 * light));
        }
        _stars.set(places, colors, sizes);
        _stars.setLook({.size = 1.8});
    }

    void addMoons()
    {
        struct Moon
        {
            double radius, around, tilt, size;
            td::Color color;
        };
        constexpr std::array<Moon, 3> cMoons{{{3.15, 4.78, 0.05, 0.2, "#c9b8a4"},
                                              {3.7, 3.72, -0.09, 0.24, "#9fb4c8"},
                                              {4.5, 5.6, 0.12, 0.2, "#d8a07c"}}};
        std::vector<glm::dvec3> places;
        std::vector<td::Color> colors;
        std::vector<float> sizes;
        for (const Moon& moon : cMoons)
        {
            const auto at = [&](double angle)
            {
                const double x = std::cos(angle), z = std::sin(angle);
                return moon.radius * glm::dvec3(x, moon.tilt * z, z);
            };
            std::vector<glm::dvec3> orbit;
            for (int i = 0; i < 360; ++i)
                orbit.push_back(at(cRoundOnce * i / 360));
            _orbits.add(orbit, {.width = 1.1, .color = "#8fa2c468", .dash = 0.05, .gap = 0.05},
                        Polylines3::Ends::Joined);
            places.push_back(at(moon.around));
            colors.push_back(moon.color);
            sizes.push_back(static_cast<float>(moon.size));
        }
        _moons.set(places, colors, sizes);
        _moons.setLook({.shape = Points3::Shape::Sphere, .size = 1, .unit = gui::draw::Unit::Model, .shininess = 0.1});
    }

    // The largest of the rocks near a place of the ring. @param around  from where the camera is, in turns
    std::size_t nearest(double radius, double around) const
    {
        const double angle = std::numbers::pi / 2 - 0.42 + around;
        const glm::dvec3 at(radius * std::cos(angle), 0, radius * std::sin(angle));
        std::size_t best = 0;
        double largest = -1e9;
        for (std::size_t i = 0; i < cRocks; ++i)
        {
            const Instances::Placement& rock = _rocks.getPlacement(i);
            const double worth = rock.scale.x - 0.1 * glm::length(rock.position - at);
            if (worth > largest)
            {
                largest = worth;
                best = i;
            }
        }
        return best;
    }

    void drawBackground(const Eye&) override { gui::gl::Context::clear(gui::gl::Context::Clear::Color, "#05070d"); }

    void drawModel(const Eye& eye) override
    {
        _model.draw(eye);
        _rocks.draw(eye);
        _moons.draw(eye);
        _orbits.draw(eye);
        _lines.draw(eye);
        _stars.draw(eye);
    }

    void drawOver(const Frame& frame, const Eye& eye) override
    {
        const auto answer = _picker.update(eye,
                                           [this](const Eye& part)
                                           {
                                               // Hides what is behind it, and is none of them.
                                               _model.drawColor(part, td::Color(0, 0, 0, 0));
                                               _moons.drawColor(part, td::Color(0, 0, 0, 0));
                                               _rocks.drawIds(part);
                                           });
        if (answer)
        {
            _place = answer->place;
            point(answer->id != 0 ? std::optional<std::size_t>(answer->id - 1) : std::nullopt);
        }
        if (answer || _picker.isWaiting())
            redraw();
        drawSigns(frame, eye);
    }

    std::optional<glm::dvec3> pick(const gui::draw::Ray& ray) const override
    {
        return _place ? _place : Orbiting::pick(ray);
    }

    void drawSigns(const Frame& frame, const Eye& eye)
    {
        _signs.clear();
        if (!_lettering.begin(frame))
            return;
        const auto at = _pointed ? eye.project(_rocks.getPlacement(*_pointed).position) : std::nullopt;
        if (at)
        {
            const glm::dvec3 place = _rocks.getPlacement(*_pointed).position;
            char text[96];
            std::snprintf(text, sizeof text, "rock %zu\n%.3f radii out", *_pointed, std::hypot(place.x, place.z));
            const gui::draw::Drawing::Point from(at->x, at->y), to(at->x + 26, at->y - 44);
            gui::draw::Path line;
            line.moveTo({from.x + 6.5, from.y - 11}).lineTo({to.x - 8, to.y}).lineTo({to.x + 104, to.y});
            _signs.fill(gui::draw::Path().addRoundedRect({to.x - 8, to.y - 40, to.x + 104, to.y}, {4, 4}), "#05070dc0");
            _signs.stroke(line, {.width = 1.2, .join = gui::draw::Join::Round}, cPointed);
            _signs.stroke(gui::draw::Path().addCircle(from, 13), {.width = 1.4}, cPointed);
            _lettering.add({to.x + 4, to.y - 22}, text, {0, td::ColorID::Moccasin, gui::gl::Font::cLeft, 16});
        }
        char text[96];
        std::snprintf(text, sizeof text, "%zu rocks, %zu with a trail", _rocks.size(), _marks.size());
        _lettering.add({24, frame.size.height - 24}, text, {0, td::ColorID::LightSteelBlue});
        _signs.draw(gui::draw::Affine(), frame.scale);
        _lettering.draw();
    }

    bool isMarked(std::size_t rock) const { return std::ranges::find(_marks, rock) != _marks.end(); }

    void paint(std::size_t rock)
    {
        const bool isPointed = _pointed == rock;
        _rocks.setColor(rock, isPointed ? cPointed : isMarked(rock) ? cMarked : _colors[rock]);
    }

    void point(std::optional<std::size_t> rock)
    {
        if (rock == _pointed)
            return;
        const std::optional<std::size_t> before = std::exchange(_pointed, rock);
        if (before)
        {
            _rocks.setScale(*before, _scale);
            paint(*before);
        }
        if (rock)
        {
            _scale = _rocks.getPlacement(*rock).scale;
            _rocks.setScale(*rock, 1.6 * _scale);
            paint(*rock);
        }
        drawOrbits();
    }

    void mark(std::size_t rock)
    {
        if (!isMarked(rock))
            _marks.push_back(rock);
        else
            std::erase(_marks, rock);
        paint(rock);
        drawOrbits();
    }

    // The whole way of the one under the pointer, and where marked ones have come from.
    void drawOrbits()
    {
        _lines.clear();
        for (const std::size_t rock : _marks)
        {
            constexpr int cPoints = 90;
            std::vector<td::Color> fading;
            for (int i = 0; i <= cPoints; ++i)
            {
                td::Color color = cMarked;
                color.setAlpha(static_cast<unsigned int>(235 * std::pow(1 - static_cast<double>(i) / cPoints, 1.5)));
                fading.push_back(color);
            }
            if (const auto line = _lines.add(wayOf(rock, -1.5, cPoints), {.width = 2.2}))
                _lines.setColors(*line, fading);
        }
        if (_pointed)
            _lines.add(wayOf(*_pointed, cRoundOnce, 720), {.width = 1.4, .color = cPointed});
    }

    // @param turn  in radians; points one more than steps
    std::vector<glm::dvec3> wayOf(std::size_t rock, double turn, int nSteps) const
    {
        const glm::dvec3 place = _rocks.getPlacement(rock).position;
        const double radius = std::hypot(place.x, place.z), begin = std::atan2(place.z, place.x);
        std::vector<glm::dvec3> way;
        for (int i = 0; i <= nSteps; ++i)
        {
            const double angle = begin + turn * i / nSteps;
            way.emplace_back(radius * std::cos(angle), place.y, radius * std::sin(angle));
        }
        return way;
    }

    Instances _rocks;
    Points3 _moons, _stars;
    Polylines3 _orbits, _lines;
    std::vector<td::Color> _colors; // of rocks, as they are by themselves
    gui::draw::IdPicker _picker;
    std::optional<std::size_t> _pointed;
    glm::dvec3 _scale{1}; // of that one, by itself
    std::vector<std::size_t> _marks;
    std::optional<glm::dvec3> _place; // what was under the pointer last
    td::Point<double> _pressed;
    gui::draw::Drawing _signs;
    Lettering _lettering{{{"sans", 12}}};
};

} // namespace

std::unique_ptr<Scene> makeSwarm() { return std::make_unique<Swarm>(); }

} // namespace gallery
