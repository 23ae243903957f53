// Look for: a car that neither shakes nor flickers, stripes of three millimetres on it, and a shadow four above the
// ground, 6,400 kilometres from the origin; mountains that begin below the horizon; 0, and the wheel, out into space.

#include "Car.h"
#include "Globe.h"
#include "Orbiting.h"
#include "Scenes.h"

#include <gui/draw/Model.h>
#include <gui/draw/Program3.h>
#include <gui/gl/gl.h>

#include <glm/ext/matrix_transform.hpp>
#include <glm/geometric.hpp>

#include <algorithm>
#include <utility>

namespace gallery
{

namespace
{

using namespace gui::gl;
using gui::draw::Box3;
using gui::draw::Eye;
using gui::draw::Mesh;

const glm::dvec3 cToSun = glm::normalize(glm::dvec3(0.74, 0.66, 0.44)); // towards it

// On the ground, which is as good as flat there.
Mesh makeShadow(Mesh thing)
{
    for (glm::dvec3& p : thing.positions)
        p = glm::dvec3(p.x - cToSun.x / cToSun.y * p.y, 0.004, p.z - cToSun.z / cToSun.y * p.y);
    // Seen from above.
    for (std::size_t i = 0; i < thing.indices.size(); i += 3)
    {
        const glm::dvec3 &a = thing.positions[thing.indices[i]], &b = thing.positions[thing.indices[i + 1]],
                         &c = thing.positions[thing.indices[i + 2]];
        if (glm::cross(b - a, c - a).y < 0)
            std::swap(thing.indices[i + 1], thing.indices[i + 2]);
    }
    thing.normals.assign(thing.positions.size(), {0, 1, 0});
    return thing;
}

class Horizon : public Orbiting
{
public:
    bool init() override
    {
        const Mesh car = makeCar();
        Mesh world = makeGlobe();
        const Box3 globe = world.getBounds();
        const glm::dmat4 place = glm::translate(glm::dmat4(1), {0, cGlobeRadius, 0});
        world.add(makeShadow(car), {.color = "#8f9aae", .shininess = 0}, 0, place);
        world.add(car, place);
        if (globe.isEmpty() || !setMesh(world) || !_air.link(":gallery/horizon.vert", ":gallery/horizon.frag"))
            return false;
        const float corners[] = {-1, -1, 1, -1, -1, 1, 1, 1};
        _quad.appendVertices(corners, 4);
        _quad.createCommand()->createDrawAll(Primitive::TriangleStrip);
        gui::draw::Light light = gui::draw::Light::sun(cToSun);
        light.ambient = 0.4;
        _model.setLight(light);
        _camera.setBounds(globe);
        _camera.setElevationLimits(2, 90);
        _camera.setDistanceLimits(4, 8 * cGlobeRadius);
        _camera.setTarget({0, cGlobeRadius + 0.95, 0});
        _camera.setDirection(38, 6);
        _camera.setDistance(8.6);
        return true;
    }

    bool prepareNextFrame(double seconds) override
    {
        turn(seconds, 5);
        return true;
    }

private:
    void drawBackground(const Eye& eye) override
    {
        Context::clear(Context::Clear::Color, "#000000");
        const glm::dvec3 ahead = eye.getDirection();
        // To the middle of an edge, as far ahead as the middle.
        const auto toEdge = [&](double x, double y)
        {
            const glm::dvec3 edge = eye.getRay({x * eye.getSize().width, y * eye.getSize().height}).direction;
            return glm::vec3(edge / glm::dot(edge, ahead) - ahead);
        };
        const double fromMiddle = glm::length(eye.getPosition());
        _air.set("sight", glm::mat3(toEdge(1, 0.5), toEdge(0.5, 0), glm::vec3(ahead)));
        _air.set("zenith", glm::vec3(eye.getPosition() / fromMiddle));
        _air.set("sun", glm::vec3(cToSun));
        _air.set("height", static_cast<float>(std::max(fromMiddle - cGlobeRadius, 0.1)));
        _air.draw(_quad, eye, {.isHidden = false, .isHiding = false});
    }

    // What one sees of the air, wherever the eye is: behind everything.
    gui::draw::Program3 _air;
    Buffer _quad{DataType::Vec2};
};

} // namespace

std::unique_ptr<Scene> makeHorizon() { return std::make_unique<Horizon>(); }

} // namespace gallery
