// Look for: what is behind glass seen through it, in its colour, whichever bottle is before which; smooth rims.

#include "Orbiting.h"
#include "Scenes.h"
#include "Solids.h"

#include <gui/draw/Model.h>
#include <gui/gl/Context.h>

#include <glm/ext/matrix_transform.hpp>
#include <glm/trigonometric.hpp>

#include <algorithm>
#include <cmath>
#include <vector>

namespace gallery
{

namespace
{

using gui::draw::Light;
using gui::draw::Material;
using gui::draw::Mesh;
using gui::gl::Context;

using Profile = std::vector<glm::dvec2>;

constexpr int cSectors = 72;

// Rounds the corners of a line, twice as finely each time (Chaikin, 1974). Its ends stay.
Profile rounded(Profile profile)
{
    for (int i = 0; i < 2; ++i)
    {
        Profile finer{profile.front()};
        for (std::size_t k = 0; k + 1 < profile.size(); ++k)
        {
            finer.push_back(0.75 * profile[k] + 0.25 * profile[k + 1]);
            finer.push_back(0.25 * profile[k] + 0.75 * profile[k + 1]);
        }
        finer.push_back(profile.back());
        profile = std::move(finer);
    }
    return profile;
}

// What is inside of a wall: a profile from its bottom to a height, and back to the axis.
Profile filling(const Profile& wall, double height)
{
    Profile inside;
    for (const glm::dvec2& p : wall)
        if (p.y <= height)
            inside.push_back(p);
    inside.emplace_back(inside.back().x, height);
    inside.emplace_back(0, height);
    return inside;
}

struct Vessel
{
    Profile inner; // of its hollow, from the axis at its bottom upwards
    double height; // of what is in it
    td::Color color;
    double x, y;
    bool hasStopper;
};

void addVessel(Mesh& mesh, const Vessel& vessel)
{
    constexpr double cWall = 0.09, cBottom = 0.22;
    const Material glass{.color = td::Color(206, 226, 232, 46), .shininess = 0.95};
    const glm::dmat4 place = glm::translate(glm::dmat4(1), {vessel.x, vessel.y, 0});
    const Profile inner = rounded(vessel.inner);
    Profile wall{{0, -cBottom}};
    for (const glm::dvec2& p : inner)
        if (p.x > 0.05)
            wall.emplace_back(p.x + cWall, wall.size() == 1 ? -cBottom : p.y);
    wall.insert(wall.end(), inner.rbegin(), inner.rend());
    mesh.add(revolve(wall, cSectors), glass, 0, place);
    Profile liquid = filling(inner, vessel.height);
    for (glm::dvec2& p : liquid)
        p = {std::max(p.x - 0.012, 0.0), std::max(p.y, 0.012)};
    mesh.add(revolve(liquid, cSectors), {.color = vessel.color, .shininess = 0.8}, 0, place);
    if (!vessel.hasStopper)
        return;
    const double top = inner.back().y, radius = inner.back().x;
    Profile stopper{
        {0, top - 0.5}, {radius - 0.03, top - 0.5}, {radius - 0.01, top + 0.02}, {radius + 0.16, top + 0.06}};
    for (int i = 1; i <= 12; ++i)
    {
        const double angle = glm::radians(-60 + 12.5 * i);
        stopper.emplace_back((radius + 0.25) * std::max(std::cos(angle), 0.0), top + 0.42 + 0.42 * std::sin(angle));
    }
    mesh.add(revolve(stopper, cSectors), {.color = td::Color(196, 222, 232, 90), .shininess = 0.95}, 0, place);
}

Mesh makeBottles()
{
    const Profile flask{{0, 0}, {1.3, 0}, {1.5, 0.3}, {1.1, 1.6}, {0.42, 2.5}, {0.4, 3.3}, {0.46, 3.6}};
    const Profile bulb{{0, 0}, {0.7, 0}, {1.35, 0.6}, {1.3, 1.7}, {0.5, 2.1}, {0.36, 2.9}, {0.42, 3.2}};
    const Profile tall{{0, 0}, {0.72, 0}, {0.75, 0.2}, {0.75, 3.1}, {0.7, 3.6}, {0.34, 4.0}, {0.32, 4.7}, {0.36, 4.9}};
    const Profile beaker{{0, 0}, {0.95, 0}, {1, 0.2}, {1, 2.1}, {1.08, 2.4}};
    Mesh mesh;
    mesh.add(revolve(Profile{{0, -0.5}, {4.9, -0.5}, {5, -0.42}, {5, -0.3}, {4.94, -0.24}, {0, -0.24}}, 160),
             {.color = "#e9e4da", .shininess = 0.15});
    const std::vector<Vessel> vessels{{flask, 1.45, td::Color(226, 120, 30, 150), -2.1, 0.6, true},
                                      {bulb, 1.5, td::Color(40, 96, 200, 150), 0.5, 2.0, true},
                                      {tall, 2.6, td::Color(30, 150, 90, 150), 2.6, 0.3, true},
                                      {beaker, 1.3, td::Color(200, 36, 80, 150), 0.5, -1.1, false},
                                      {tall, 1.2, td::Color(150, 70, 180, 150), -1.3, -2.4, true},
                                      {bulb, 1.2, td::Color(230, 190, 40, 160), 2.7, -2.3, true}};
    for (const Vessel& vessel : vessels)
        addVessel(mesh, vessel);
    mesh.smoothAngle = 40;
    return mesh;
}

class GlassScene : public Orbiting
{
public:
    GlassScene()
        : Orbiting(gui::draw::OrbitCamera::Up::Z)
    {
    }

    bool init() override
    {
        _camera.setDirection(14, 15);
        if (!setMesh(makeBottles()))
            return false;
        _model.setLight({.kind = Light::Kind::Camera, .ambient = 0.55});
        _camera.setBounds(_model.getBounds());
        return _camera.fit({{-4, -4, -0.7}, {4, 4, 5}}, 0);
    }

    bool prepareNextFrame(double seconds) override
    {
        turn(seconds, 10);
        return true;
    }

private:
    void drawBackground(const gui::draw::Eye&) override { Context::clear(Context::Clear::Color, "#f6f4ef"); }
};

} // namespace

std::unique_ptr<Scene> makeGlass() { return std::make_unique<GlassScene>(); }

} // namespace gallery
