// Look for: shadows that begin where walls stand, soft at their ends; corners, eaves and the lane darker than open
// ground.

#include "Orbiting.h"
#include "Scenes.h"
#include "Solids.h"

#include <gui/draw/Model.h>
#include <gui/draw/Shadows.h>
#include <gui/gl/Context.h>

#include <glm/ext/matrix_transform.hpp>
#include <glm/geometric.hpp>
#include <glm/trigonometric.hpp>

#include <array>
#include <cmath>
#include <cstdint>
#include <random>
#include <span>
#include <vector>

namespace gallery
{

namespace
{

using gui::draw::Light;
using gui::draw::Material;
using gui::draw::Mesh;
using gui::draw::Path;
using gui::draw::Shadows;
using gui::gl::Context;

using Profile = std::vector<glm::dvec2>;

constexpr double cHalf = 60; // of the board's side, in metres
const glm::dvec3 cToSun{-0.75, -0.5, 0.62};

double heightAt(double x, double y)
{
    const double hill = 13 * std::exp(-((x - 6) * (x - 6) + (y - 10) * (y - 10)) / 700);
    const double river = std::abs(y + 34 + 7 * std::sin(x / 22));
    return hill + 1.2 * std::sin(x / 17) * std::cos(y / 13) - 4.5 * std::exp(-river * river / 40);
}

Mesh makeGround()
{
    constexpr std::uint32_t cSteps = 160;
    Mesh ground;
    for (std::uint32_t j = 0; j <= cSteps; ++j)
        for (std::uint32_t i = 0; i <= cSteps; ++i)
        {
            const double x = cHalf * (2.0 * i / cSteps - 1), y = cHalf * (2.0 * j / cSteps - 1);
            ground.positions.emplace_back(x, y, heightAt(x, y));
        }
    for (std::uint32_t j = 0; j < cSteps; ++j)
        for (std::uint32_t i = 0; i < cSteps; ++i)
        {
            const std::uint32_t a = j * (cSteps + 1) + i, b = a + cSteps + 1;
            ground.indices.insert(ground.indices.end(), {a, a + 1, b + 1, a, b + 1, b});
        }
    return ground;
}

// The board's sides, from the ground down.
Mesh makeSides()
{
    constexpr int cSteps = 160;
    Mesh sides;
    for (int k = 0; k <= 4 * cSteps; ++k)
    {
        const double along = cHalf * (2.0 * (k % cSteps) / cSteps - 1);
        const int side = k / cSteps % 4;
        const double x = side == 0 ? along : side == 1 ? cHalf : side == 2 ? -along : -cHalf;
        const double y = side == 0 ? -cHalf : side == 1 ? along : side == 2 ? cHalf : -along;
        sides.positions.emplace_back(x, y, heightAt(x, y));
        sides.positions.emplace_back(x, y, -9);
        if (k == 0)
            continue;
        const auto a = static_cast<std::uint32_t>(2 * (k - 1));
        sides.indices.insert(sides.indices.end(), {a, a + 1, a + 3, a, a + 3, a + 2});
    }
    return sides;
}

// From the front upwards, along y.
glm::dmat4 standing() { return glm::rotate(glm::dmat4(1), glm::radians(90.0), {1, 0, 0}); }

struct House
{
    double width, length, height, roof;
};

void addHouse(Mesh& town, const House& house, const glm::dmat4& place, const Material& wall, const Material& tiles)
{
    const double w = house.width / 2, l = house.length / 2, h = house.height, r = house.roof;
    Path gable;
    gable.moveTo({-w, -4}).lineTo({w, -4}).lineTo({w, h}).lineTo({0, h + r}).lineTo({-w, h}).close();
    town.add(extrude(gable, -l, l), wall, 0, place * standing());
    // A roof that reaches over the walls.
    const double over = 0.45, slope = r / w;
    Path roof;
    roof.moveTo({-w - over, h - over * slope})
        .lineTo({0, h + r})
        .lineTo({w + over, h - over * slope})
        .lineTo({w + over, h - over * slope + 0.35})
        .lineTo({0, h + r + 0.4})
        .lineTo({-w - over, h - over * slope + 0.35})
        .close();
    town.add(extrude(roof, -l - over, l + over), tiles, 0, place * standing());
    Path chimney;
    chimney.addRect({-0.4, -0.4, 0.4, 0.4});
    town.add(extrude(chimney, h, h + r + 1.1), wall, 0, place * glm::translate(glm::dmat4(1), {w / 2, l / 3, 0.0}));
}

void addTree(Mesh& town, const glm::dvec3& at, double size, bool isFir, const Material& leaves, const Material& bark)
{
    const glm::dmat4 place = glm::translate(glm::dmat4(1), at);
    town.add(revolve(Profile{{0, -1}, {0.18 * size, -1}, {0.13 * size, size}, {0, size}}, 10), bark, 0, place);
    Profile crown{{0, 0.6 * size}};
    for (int i = 1; i < 12; ++i)
    {
        const double angle = glm::radians(-90 + 15.0 * i);
        crown.emplace_back(0.85 * size * std::cos(angle), 1.5 * size + 0.95 * size * std::sin(angle));
    }
    crown.emplace_back(0, 2.45 * size);
    const Profile fir{{0, 0.5 * size},
                      {0.9 * size, 0.5 * size},
                      {0.45 * size, 1.5 * size},
                      {0.68 * size, 1.5 * size},
                      {0.3 * size, 2.4 * size},
                      {0.45 * size, 2.4 * size},
                      {0, 3.4 * size}};
    town.add(revolve(isFir ? fir : crown, 20), leaves, 0, place);
}

void addChurch(Mesh& town, const Material& wall, const Material& tiles)
{
    const glm::dmat4 place =
        glm::rotate(glm::translate(glm::dmat4(1), {6, 10, heightAt(6, 10)}), glm::radians(24.0), {0, 0, 1});
    addHouse(town, {8, 18, 8, 6}, place, wall, tiles);
    const glm::dmat4 tower = place * glm::translate(glm::dmat4(1), {0, -11.5, 0});
    Path square, cornice;
    town.add(extrude(square.addRect({-2.6, -2.6, 2.6, 2.6}), -4, 17), wall, 0, tower);
    town.add(extrude(cornice.addRect({-3, -3, 3, 3}), 17, 17.7), wall, 0, tower);
    Mesh spire = revolve(Profile{{0, 17.7}, {3.3, 17.7}, {0.9, 24}, {0, 31}}, 8);
    spire.smoothAngle = 0;
    town.add(spire, tiles, 0, glm::rotate(tower, glm::radians(22.5), {0, 0, 1}));
}

// Five arches over the river.
void addBridge(Mesh& town, const Material& stone)
{
    const double x = -18, y = -34 - 7 * std::sin(x / 22);
    Path bridge;
    bridge.moveTo({-17, -6}).lineTo({17, -6}).lineTo({17, 1.9}).lineTo({0, 3.2}).lineTo({-17, 1.9}).close();
    for (int i = -2; i <= 2; ++i)
    {
        const double middle = 6.2 * i, half = 2.5, top = -0.6 - 0.25 * std::abs(i);
        Path arch;
        arch.moveTo({middle - half, -5.8}).lineTo({middle + half, -5.8}).lineTo({middle + half, top - half});
        arch.arcTo({half, half}, 0, false, true, {middle - half, top - half}).close();
        bridge.addPath(arch);
    }
    const glm::dmat4 place = glm::rotate(glm::translate(glm::dmat4(1), {x, y, 0}), glm::radians(96.0), {0, 0, 1});
    town.add(extrude(bridge, -2, 2), stone, 0, place * standing());
    for (const double side : {-2.0, 1.7})
    {
        Path wall;
        wall.moveTo({-17, 1.9})
            .lineTo({0, 3.2})
            .lineTo({17, 1.9})
            .lineTo({17, 2.9})
            .lineTo({0, 4.2})
            .lineTo({-17, 2.9})
            .close();
        town.add(extrude(wall, side, side + 0.3), stone, 0, place * standing());
    }
}

Mesh makeTown()
{
    const Material grass{.color = "#c9cfae", .shininess = 0}, water{.color = "#9fb9c4", .shininess = 0.6};
    const Material stone{.color = "#dcd3c3", .shininess = 0}, bark{.color = "#8a7763", .shininess = 0};
    const std::array<Material, 3> walls{Material{.color = "#f1e9da", .shininess = 0},
                                        Material{.color = "#ead9c0", .shininess = 0},
                                        Material{.color = "#f4efe6", .shininess = 0}};
    const std::array<Material, 3> tiles{Material{.color = "#b9694b", .shininess = 0.1},
                                        Material{.color = "#a75d46", .shininess = 0.1},
                                        Material{.color = "#c27a55", .shininess = 0.1}};
    const std::array<Material, 2> leaves{Material{.color = "#8fa66a", .shininess = 0},
                                         Material{.color = "#6f8f63", .shininess = 0}};
    std::mt19937 random(21);
    // Of whole numbers, which are the same everywhere.
    const auto uniform = [&](double low, double high)
    { return low + (high - low) * static_cast<double>(random() >> 8U) / (1U << 24U); };
    Mesh town;
    town.add(makeGround(), grass);
    town.add(makeSides(), stone);
    Path river;
    town.add(extrude(river.addRect({-cHalf + 0.01, -58, cHalf - 0.01, -12}), -3.4, -3.0), water);
    addChurch(town, walls[2], tiles[1]);
    addBridge(town, stone);
    // Rings of houses about the church, and trees beyond.
    for (int ring = 0; ring < 3; ++ring)
    {
        const double radius = 21 + 11.5 * ring;
        const int n = 9 + 5 * ring;
        for (int i = 0; i < n; ++i)
        {
            const double angle = 6.28318530718 * (i + 0.4 * ring + uniform(-0.12, 0.12)) / n;
            const double x = 6 + radius * std::cos(angle), y = 10 + radius * std::sin(angle) * 0.9;
            if (y < -23 || std::abs(x) > cHalf - 6 || y > cHalf - 6 || uniform(0, 1) < 0.1)
                continue;
            const House house{uniform(5, 6.5), uniform(7, 11), uniform(4, 6.5), uniform(2.6, 3.8)};
            const glm::dmat4 place = glm::rotate(glm::translate(glm::dmat4(1), {x, y, heightAt(x, y)}),
                                                 angle + uniform(-0.15, 0.15), {0, 0, 1});
            addHouse(town, house, place, walls[random() % 3], tiles[random() % 3]);
        }
    }
    for (int i = 0; i < 150; ++i)
    {
        const double x = uniform(-cHalf + 2, cHalf - 2), y = uniform(-cHalf + 2, cHalf - 2), z = heightAt(x, y);
        const double fromTown = glm::length(glm::dvec2(x - 6, (y - 10) / 0.9));
        if (z < -1.6 || (fromTown < 50 && y > -24) || (std::abs(x + 18) < 6 && y < -12))
            continue;
        const bool isFir = uniform(0, 1) < 0.45;
        addTree(town, {x, y, z}, uniform(1.3, 2.3), isFir, leaves[isFir ? 1 : 0], bark);
    }
    town.smoothAngle = 40;
    return town;
}

class ShadowScene : public Orbiting
{
public:
    ShadowScene()
        : Orbiting(gui::draw::OrbitCamera::Up::Z)
    {
    }

    bool init() override
    {
        _camera.setDirection(18, 33);
        if (!setMesh(makeTown()))
            return false;
        _model.setLight({.kind = Light::Kind::Sun, .direction = cToSun, .color = "#fff6e6", .ambient = 0.42});
        _camera.setBounds(_model.getBounds());
        setShadows({.quality = Shadows::Quality::High, .direction = cToSun, .occlusion = 0.7, .reach = 4});
        return _camera.fit({{-60, -60, -9}, {60, 60, 8}}, 14);
    }

    bool prepareNextFrame(double seconds) override
    {
        turn(seconds, 8);
        return true;
    }

private:
    void drawBackground(const gui::draw::Eye&) override { Context::clear(Context::Clear::Color, "#dfe6ec"); }
};

} // namespace

std::unique_ptr<Scene> makeShadow() { return std::make_unique<ShadowScene>(); }

} // namespace gallery
