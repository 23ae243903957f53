#include <gui/draw/OrbitCamera.h>

#include "SpaceFlight.h"

#include <td/Assert.h>

#include <glm/geometric.hpp>
#include <glm/gtc/quaternion.hpp>

#include <algorithm>
#include <cmath>
#include <utility>

namespace gui::draw
{

bool OrbitCamera::flyTo(const Box3& box, double margin, double seconds)
{
    if (!(seconds > 0) || !std::isfinite(seconds) || !(_size.width > 0))
        return fit(box, margin);
    if (!box.isFinite() || !(margin >= 0) || !std::isfinite(margin))
        return false;
    const Fit fit{box, margin};
    const Box3 boundsBefore = _bounds;
    _bounds.add(box); // which may allow more
    const std::optional<Pose> pose = poseOf(fit, _flight ? _flight->to.rotation : _pose.rotation);
    if (!pose)
    {
        _bounds = boundsBefore;
        return false;
    }
    fly(*pose, seconds);
    _flight->fit = fit;
    return true;
}

void OrbitCamera::flyTo(Side side, double seconds)
{
    const std::optional<Fit> fit = _fit ? _fit : _flight ? _flight->fit : std::nullopt;
    if (!(seconds > 0) || !std::isfinite(seconds) || !(_size.width > 0))
    {
        show(side);
        return;
    }
    Pose pose = poseOf(side);
    // What another flight leads to stays in the middle.
    if (_flight)
        pose = {_flight->to.target, pose.rotation, _flight->to.distance};
    pose = within(pose);
    if (fit)
        pose = poseOf(*fit, pose.rotation).value_or(pose);
    fly(pose, seconds);
    _flight->fit = fit;
}

bool OrbitCamera::flyTo(const Pose& pose, double seconds)
{
    if (!(seconds > 0) || !std::isfinite(seconds) || !(_size.width > 0))
        return setPose(pose);
    if (!isPose(pose))
        return false;
    fly(taken(pose), seconds);
    return true;
}

void OrbitCamera::fly(const Pose& to, double seconds)
{
    moved();
    Angles from = anglesOf(_pose.rotation), end = anglesOf(to.rotation);
    end.azimuth = from.azimuth + std::remainder(end.azimuth - from.azimuth, 360.0);
    _flight = {_pose, to, from, end, std::nullopt, seconds, 0};
}

OrbitCamera::Pose OrbitCamera::poseInFlight(double part) const
{
    const Flight& flight = *_flight;
    const SpaceFlight way({flight.from.target, flight.from.distance}, {flight.to.target, flight.to.distance});
    const SpaceFlight::Sight sight = way.at(part);
    Pose pose{sight.target, flight.from.rotation, sight.distance};
    if (_turning == Turning::Upright)
        pose.rotation = rotationOf({std::lerp(flight.anglesFrom.azimuth, flight.anglesTo.azimuth, part),
                                    std::lerp(flight.anglesFrom.elevation, flight.anglesTo.elevation, part)});
    else
        pose.rotation =
            glm::mat3_cast(glm::slerp(glm::quat_cast(flight.from.rotation), glm::quat_cast(flight.to.rotation), part));
    return withEyeWithin(pose);
}

void OrbitCamera::glide(const glm::dvec3& pivot, double right, double up)
{
    const double sum = pivot.x + pivot.y + pivot.z + right + up;
    if (!std::isfinite(sum) || !(_inertia > 0))
        return;
    moved();
    _glide = {true, pivot, {right, up, 0}};
}

void OrbitCamera::glide(const glm::dvec3& velocity)
{
    if (!std::isfinite(velocity.x + velocity.y + velocity.z) || !(_inertia > 0))
        return;
    moved();
    _glide = {false, glm::dvec3(0), velocity};
}

void OrbitCamera::setInertia(double seconds)
{
    if (!(seconds >= 0) || !std::isfinite(seconds))
        return;
    _inertia = seconds;
    if (seconds == 0)
        _glide.reset();
}

bool OrbitCamera::advance(double seconds)
{
    if (!(seconds > 0))
        return isMoving();
    if (_flight)
    {
        _flight->elapsed += seconds;
        const double time = _flight->elapsed / _flight->seconds;
        if (time < 1)
        {
            // Between ends that are as far apart as numbers go there may be none.
            const Pose pose = poseInFlight(time * time * (3 - 2 * time));
            _pose = isPose(pose) ? pose : _pose;
        }
        else
        {
            const Flight flight = *std::exchange(_flight, std::nullopt);
            _pose = flight.to;
            _fit = flight.fit;
            fitAgain(); // the view may have another size by now
        }
    }
    else if (_glide)
    {
        // What is left of the speed, and the way that it took; once the rest is too little to be seen, it goes at once.
        constexpr double cLeastTurn = 0.02; // in degrees
        constexpr double cLeastWay = 1e-4;  // of the target's distance
        Glide& glide = *_glide;
        const double left = std::exp(-seconds / _inertia);
        const double rest = glm::length(glide.velocity) * _inertia * left;
        const bool isLast = rest < (glide.isTurn ? cLeastTurn : cLeastWay * _pose.distance);
        const glm::dvec3 step = glide.velocity * (_inertia * (isLast ? 1 : 1 - left));
        glide.velocity *= left;
        if (glide.isTurn)
            turnBy(glide.pivot, step.x, step.y);
        else if (const glm::dvec3 to = _pose.target + step; std::isfinite(to.x + to.y + to.z))
            _pose = within({to, _pose.rotation, _pose.distance});
        if (isLast)
            _glide.reset();
    }
    return isMoving();
}

void OrbitCamera::stop()
{
    _flight.reset();
    _glide.reset();
}

} // namespace gui::draw
