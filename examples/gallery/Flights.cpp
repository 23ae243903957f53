// Look for: no seam where the picture of the earth meets itself, in the Pacific; the evening creeping over the ground;
// the glow of the air all around, thin and even; arcs that end on the dots of their cities and pass behind the globe.

#include "Orbiting.h"
#include "Scenes.h"

#include <gui/draw/GlobeSurface.h>
#include <gui/draw/Points3.h>
#include <gui/draw/Polylines3.h>
#include <gui/gl/gl.h>

#include <glm/geometric.hpp>

#include <array>
#include <cmath>
#include <numbers>
#include <random>
#include <vector>

namespace gallery
{

namespace
{

using gui::draw::Box3;
using gui::draw::Eye;
using gui::draw::Globe;
using gui::draw::GlobeSurface;

constexpr Globe cEarth{6371}; // in kilometres
constexpr std::array cCities{Globe::Place(8.5, 47.4),    Globe::Place(-0.1, 51.5),  Globe::Place(-74.0, 40.7),
                             Globe::Place(-46.6, -23.5), Globe::Place(28.0, -26.2), Globe::Place(55.3, 25.2),
                             Globe::Place(103.8, 1.4),   Globe::Place(139.7, 35.7), Globe::Place(151.2, -33.9),
                             Globe::Place(-118.2, 34.1), Globe::Place(77.2, 28.6),  Globe::Place(36.8, -1.3)};

// The shortest way from city to city, at its highest where it is half done, the longer the higher.
std::vector<glm::dvec3> makeArc(const Globe::Place& from, const Globe::Place& to)
{
    const glm::dvec3 a = glm::normalize(cEarth.getPoint(from)), b = glm::normalize(cEarth.getPoint(to));
    const double angle = std::acos(glm::clamp(glm::dot(a, b), -1.0, 1.0));
    constexpr int cParts = 64;
    std::vector<glm::dvec3> points;
    for (int i = 0; i <= cParts; ++i)
    {
        const double t = double(i) / cParts;
        const glm::dvec3 direction = (std::sin((1 - t) * angle) * a + std::sin(t * angle) * b) / std::sin(angle);
        points.push_back(direction * cEarth.radius * (1 + 0.22 * angle / 2 * std::sin(t * std::numbers::pi)));
    }
    return points;
}

class Flights : public Orbiting
{
public:
    bool init() override
    {
        if (!_earth.init(":gallery/earth.jpg"))
            return false;
        _earth.setSun(Globe::Place(62, 14));
        std::vector<glm::dvec3> places;
        for (const Globe::Place& city : cCities)
            places.push_back(cEarth.getPoint(city, 20));
        for (std::size_t i = 0; i < cCities.size(); ++i)
            for (const std::size_t next : {i + 1, i + 5})
            {
                const std::vector<glm::dvec3> arc = makeArc(cCities[i], cCities[next % cCities.size()]);
                const auto line = _arcs.add(arc, {.width = 1.6});
                std::vector<td::Color> colors;
                for (std::size_t k = 0; k < arc.size(); ++k)
                    colors.push_back(td::Color::fromHSL(42 - 0.5F * static_cast<float>(k), 1, 0.62F));
                if (!line || !_arcs.setColors(*line, colors))
                    return false;
            }
        _dots.setLook({.size = 7});
        _dots.setBias(4);
        const double r = cEarth.radius;
        Box3 box;
        box.add({-r, -r, -r});
        box.add({r, r, r});
        _camera.setBounds(box);
        _camera.setDistanceLimits(1.3 * r, 12 * r);
        _camera.setDirection(14, 22);
        _camera.setDistance(3.7 * r);
        return makeStars() && _dots.set(places, std::vector<td::Color>(places.size(), "#fff3d0"));
    }

    bool prepareNextFrame(double seconds) override
    {
        turn(seconds, 4);
        return true;
    }

private:
    void drawBackground(const Eye&) override { gui::gl::Context::clear(gui::gl::Context::Clear::Color, "#04060c"); }
    void drawModel(const Eye& eye) override
    {
        _stars.draw(eye);
        _earth.draw(eye);
        _earth.drawOver(eye);
        _arcs.draw(eye);
        _dots.draw(eye);
    }
    std::optional<glm::dvec3> pick(const gui::draw::Ray& ray) const override { return cEarth.meet(ray); }

    // So far away that they stay where they are.
    bool makeStars()
    {
        std::mt19937 random(5);
        std::normal_distribution<double> any;
        std::uniform_real_distribution<float> share;
        std::vector<glm::dvec3> places;
        std::vector<td::Color> colors;
        for (int i = 0; i < 900; ++i)
        {
            places.push_back(glm::normalize(glm::dvec3(any(random), any(random), any(random))) * 1e7);
            const float lightness = 0.25F + 0.6F * std::pow(share(random), 3.0F);
            colors.push_back(td::Color::fromHSL(share(random) < 0.3 ? 30 : 220, 0.4F, lightness));
        }
        _stars.setLook({.size = 2});
        return _stars.set(places, colors);
    }

    GlobeSurface _earth{cEarth};
    gui::draw::Polylines3 _arcs;
    gui::draw::Points3 _dots, _stars;
};

} // namespace

std::unique_ptr<Scene> makeFlights() { return std::make_unique<Flights>(); }

} // namespace gallery
