#include <gui/draw/GlobeView.h>

#include "../path/FinitePoint.h"

#include <gui/InputDevice.h>

#include <td/Assert.h>

#include <algorithm>
#include <cmath>

namespace gui::draw
{

namespace
{

constexpr double cNear = 0.6; // radii above the ground: turning is about what is there
constexpr double cLowest = 0.01, cHighest = 8;
constexpr double cDoubleClickNearer = 3, cFlight = 0.9; // seconds

} // namespace

GlobeView::GlobeView(const Globe& globe)
    : _globe(globe)
{
    control().setGizmo(OrbitControl::Corner::None);
    camera().setBounds({glm::dvec3(-globe.radius), glm::dvec3(globe.radius)});
    setHeightLimits(cLowest * globe.radius, cHighest * globe.radius);
}

GlobeView::~GlobeView() = default;

void GlobeView::setHeightLimits(double lowest, double highest)
{
    TD_ASSERT(lowest > 0 && lowest <= highest && std::isfinite(highest));
    _lowest = lowest;
    camera().setEyeLimits(glm::dvec3(0), _globe.radius + lowest, _globe.radius + highest);
    // Of what the eye looks at: the ground, or the middle.
    camera().setDistanceLimits(0.7 * lowest, _globe.radius + highest);
}

bool GlobeView::look(const Globe::Place& over, double height, const Globe::Place& towards, double seconds)
{
    OrbitCamera there = camera();
    if (!there.look(_globe.getPoint(over, height), _globe.getPoint(towards)))
        return false;
    if (height > cNear * _globe.radius)
        there.focus(glm::dvec3(0));
    camera().flyTo(there.getPose(), seconds);
    reRender();
    return true;
}

void GlobeView::onPlacePointed(const std::optional<Globe::Place>&) {}

std::optional<glm::dvec3> GlobeView::pick(const Ray& ray)
{
    const std::optional<glm::dvec3> point = _globe.meet(ray);
    return point && !_isGoingNearer && getHeight() > cNear * _globe.radius ? glm::dvec3(0) : point;
}

void GlobeView::onPointed(const std::optional<Ray>& ray)
{
    const std::optional<glm::dvec3> point = ray ? _globe.meet(*ray) : std::nullopt;
    onPlacePointed(point ? std::optional(_globe.getPlace(*point)) : std::nullopt);
}

void GlobeView::onClicked(const Ray& ray) { onPointed(ray); }

void GlobeView::onCameraMoved()
{
    if (getPointer())
        onPointed(getEye().getRay(*getPointer()));
}

// Not on as it looks now: at the rim it would then look past the globe.
void GlobeView::onPrimaryButtonDblClick(const InputDevice& device)
{
    const td::Point<double>& at = device.getFramePoint();
    const std::optional<glm::dvec3> point =
        isFinitePoint(at) ? _globe.meet(getEye().getRay(at)) : std::optional<glm::dvec3>();
    if (!point)
    {
        OrbitView::onPrimaryButtonDblClick(device);
        return;
    }
    const Globe::Place place = _globe.getPlace(*point);
    look(place, std::max(getHeight() / cDoubleClickNearer, _lowest), place, cFlight);
}

bool GlobeView::onScroll(const InputDevice& device)
{
    _isGoingNearer = true;
    const bool isUsed = OrbitView::onScroll(device);
    _isGoingNearer = false;
    return isUsed;
}

bool GlobeView::onZoom(const InputDevice& device)
{
    _isGoingNearer = true;
    const bool isUsed = OrbitView::onZoom(device);
    _isGoingNearer = false;
    return isUsed;
}

} // namespace gui::draw
