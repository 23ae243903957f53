#include "GlobeView.h"

#include <gui/Application.h>
#include <gui/Key.h>

#include <glm/geometric.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

namespace globe
{

using namespace gui::draw;

const Outlook cOutlooks[3] = {{"earth", {12, 18}, 2.05, {6, 14}, {-38, 20}},
                              {"mediterranean", {13, 17}, 0.42, {17, 40}, {60, 22}},
                              {"dusk", {118, 4}, 1.55, {110, 16}, {40, 12}}};

namespace
{

constexpr double cLowest = 1.14, cHighest = 9; // radii
constexpr double cNear = 0.6;                  // radii above the ground: turning is about what is there
constexpr double cDegreesPerSecond = 6;        // of the sun, westwards
constexpr double cLongestFrame = 0.1;          // seconds, after a frame that came late
constexpr double cFlight = 1.6;                // seconds

// Where a ray meets the ground.
std::optional<glm::dvec3> meet(const Ray& ray)
{
    const double nearest = -glm::dot(ray.origin, ray.direction);
    const glm::dvec3 beside = ray.at(nearest);
    const double rest = 1 - glm::dot(beside, beside);
    return rest >= 0 && nearest > 0 ? std::optional(ray.at(nearest - std::sqrt(rest))) : std::nullopt;
}

} // namespace

GlobeView::GlobeView(gui::Window* pWindow)
    : _pWindow(pWindow)
{
    control().setGizmo(OrbitControl::Corner::None);
    setBackground(td::ColorID::Black);
    camera().setFieldOfView(45);
    constexpr double cAir = Earth::cAirRadius;
    camera().setBounds({{-cAir, -cAir, -cAir}, {cAir, cAir, cAir}});
    camera().setDistanceLimits(0.1, cHighest);
    createContext();
}

void GlobeView::onInit()
{
    _isOk = _countries.init() && _earth.init();
    show(cOutlooks[0]);
}

void GlobeView::show(const Outlook& outlook, double seconds)
{
    OrbitCamera there = camera();
    there.look(directionOf(outlook.over) * (1 + outlook.height), directionOf(outlook.towards));
    if (outlook.height > cNear)
        there.focus({0, 0, 0});
    camera().flyTo(there.getPose(), seconds);
    _sun = outlook.sun;
    reRender();
}

void GlobeView::drawScene(const Eye& eye)
{
    if (!_isOk)
        return;
    const glm::vec3 sun = directionOf(_sun);
    _earth.draw(eye, sun);
    _countries.drawLines(eye, _hasBorders);
    _earth.drawAir(eye, sun);
}

void GlobeView::drawOver(const Eye& eye) { _countries.drawNames(eye, _hasNames); }

std::optional<glm::dvec3> GlobeView::pick(const Ray& ray)
{
    const std::optional<glm::dvec3> point = meet(ray);
    const bool isNear = _isGoingNearer || glm::length(getEye().getPosition()) < 1 + cNear;
    return point && !isNear ? glm::dvec3(0) : point;
}

void GlobeView::onPointed(const std::optional<Ray>& ray)
{
    makeCurrentContext();
    if (_countries.point(ray ? meet(*ray) : std::nullopt))
    {
        showTitle();
        reRender();
    }
}

// Not into the air.
void GlobeView::onCameraMoved()
{
    OrbitCamera::Pose pose = camera().getPose();
    const glm::dvec3 position = getEye().getPosition();
    const double radius = glm::length(position);
    if (radius > 0 && (radius < cLowest || radius > cHighest))
    {
        pose.target += position * (std::clamp(radius, cLowest, cHighest) / radius - 1);
        camera().setPose(pose);
    }
    showTitle();
}

bool GlobeView::prepareNextFrame()
{
    const auto now = std::chrono::steady_clock::now();
    const double seconds = std::chrono::duration<double>(now - std::exchange(_lastFrame, now)).count();
    if (_hasTime)
        _sun.longitude -= cDegreesPerSecond * std::min(seconds, cLongestFrame);
    return OrbitView::prepareNextFrame() || _hasTime;
}

bool GlobeView::onScroll(const gui::InputDevice& device)
{
    _isGoingNearer = true;
    const bool isUsed = OrbitView::onScroll(device);
    _isGoingNearer = false;
    return isUsed;
}

bool GlobeView::onKeyPressed(const gui::Key& key)
{
    const char character = key.getChar();
    if (character >= '1' && character <= '3')
        show(cOutlooks[character - '1'], cFlight);
    else if (character == ' ')
    {
        _hasTime = !_hasTime;
        startAnimation();
    }
    else if (character == 'b' || character == 'B')
        _hasBorders = !_hasBorders;
    else if (character == 'l' || character == 'L')
        _hasNames = !_hasNames;
    else if (key.getVirtual() == gui::Key::Virtual::Escape)
        gui::Application::quit();
    else
        return OrbitView::onKeyPressed(key);
    reRender();
    return true;
}

void GlobeView::showTitle()
{
    if (_pWindow == nullptr)
        return;
    const glm::dvec3 position = getEye().getPosition();
    const auto [longitude, latitude] = placeOf(position);
    const examples::TopoJSON::Area* const pCountry = _countries.getPointed();
    char title[120];
    std::snprintf(title, sizeof title, "Globe - over %.1f\u00b0 %c %.1f\u00b0 %c, %.0f km high%s%s", std::abs(latitude),
                  latitude < 0 ? 'S' : 'N', std::abs(longitude), longitude < 0 ? 'W' : 'E',
                  (glm::length(position) - 1) * cKilometres, pCountry != nullptr ? " - " : "",
                  pCountry != nullptr ? pCountry->name.c_str() : "");
    _pWindow->setTitle(title);
}

} // namespace globe
