#include <gui/draw/OrbitCamera.h>

#include "Degrees.h"
#include "SeenPart.h"

#include <td/Assert.h>

#include <glm/common.hpp>
#include <glm/geometric.hpp>
#include <glm/matrix.hpp>
#include <glm/trigonometric.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>

namespace gui::draw
{

namespace
{

// Of the diagonal of a cube: the arctangent of 1 / sqrt(2).
constexpr double cCornerElevation = 35.264389682754654;

bool isFiniteVector(const glm::dvec3& v) { return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z); }

// Exact right angles between axes of length 1, as they were but for rounding.
glm::dmat3 orthonormal(const glm::dmat3& rotation)
{
    const glm::dmat3 rows = glm::transpose(rotation);
    const glm::dvec3 back = glm::normalize(rows[2]);
    const glm::dvec3 right = glm::normalize(glm::cross(rows[1], back));
    return glm::transpose(glm::dmat3(right, glm::cross(back, right), back));
}

bool isRotation(const glm::dmat3& rotation)
{
    constexpr double cRounding = 1e-5; // a rotation that went through floats passes
    const glm::dmat3 square = glm::transpose(rotation) * rotation;
    bool isOne = glm::determinant(rotation) > 0;
    for (int column = 0; column < 3; ++column)
        for (int row = 0; row < 3; ++row)
            isOne = isOne && std::abs(square[column][row] - (column == row ? 1 : 0)) < cRounding;
    return isOne;
}

// Turns about the eye's right, then about its up, in degrees.
glm::dmat3 turned(const glm::dmat3& rotation, double right, double up)
{
    const double sx = sineOf(up), cx = cosineOf(up), sy = sineOf(right), cy = cosineOf(right);
    const glm::dmat3 aboutRight(1, 0, 0, 0, cx, sx, 0, -sx, cx);
    const glm::dmat3 aboutUp(cy, 0, sy, 0, 1, 0, -sy, 0, cy);
    return orthonormal(aboutRight * aboutUp * rotation);
}

} // namespace

OrbitCamera::OrbitCamera(Up up)
    : _up(up)
{
    _pose.rotation = poseOf(Side::Corner).rotation;
}

glm::dmat3 OrbitCamera::rotationOf(const Angles& angles) const
{
    const double sa = sineOf(angles.azimuth), ca = cosineOf(angles.azimuth);
    const double se = sineOf(angles.elevation), ce = cosineOf(angles.elevation);
    // As for a model whose y axis points upwards.
    const glm::dmat3 rows(ca, 0, -sa, -sa * se, ce, -ca * se, sa * ce, se, ca * ce);
    const glm::dmat3 rotation = glm::transpose(rows);
    // Its columns are what the model's axes become; z upwards is that y, and y is -z.
    return _up == Up::Y ? rotation : glm::dmat3(rotation[0], -rotation[2], rotation[1]);
}

OrbitCamera::Angles OrbitCamera::anglesOf(const glm::dmat3& rotation) const
{
    const glm::dmat3 upright = _up == Up::Y ? rotation : glm::dmat3(rotation[0], rotation[2], -rotation[1]);
    const glm::dmat3 rows = glm::transpose(upright);
    const glm::dvec3 &right = rows[0], &back = rows[2];
    const double level = std::hypot(back.x, back.z);
    // Straight from above it is the right that tells.
    constexpr double cStraight = 1e-9;
    const double azimuth = level > cStraight ? std::atan2(back.x, back.z) : std::atan2(-right.z, right.x);
    return {glm::degrees(azimuth), glm::degrees(std::atan2(back.y, level))};
}

double OrbitCamera::tangent() const { return std::tan(glm::radians(_fieldOfView) / 2); }

OrbitCamera::Range OrbitCamera::distanceLimits() const
{
    if (_distanceLimits)
        return *_distanceLimits;
    const double radius = _bounds.getRadius();
    constexpr double cUnlimited = 1e100; // its square is a double too
    if (!(radius > 1 / cUnlimited && radius < cUnlimited))
        return {1 / cUnlimited, cUnlimited};
    constexpr double cClosest = 1e-7, cLeastSize = 4; // in points
    return {cClosest * radius, radius * std::max(_size.height, 100.0) / (cLeastSize * std::min(tangent(), 1.0))};
}

OrbitCamera::Pose OrbitCamera::within(Pose pose) const
{
    const Range limits = distanceLimits();
    pose.distance = std::clamp(pose.distance, limits.min, limits.max);
    if (!_targetLimits.isEmpty())
        pose.target = glm::clamp(pose.target, _targetLimits.min, _targetLimits.max);
    if (_turning == Turning::Upright)
    {
        const Angles angles = anglesOf(pose.rotation);
        const double elevation = std::clamp(angles.elevation, _elevationLimits.min, _elevationLimits.max);
        if (elevation != angles.elevation)
            pose.rotation = rotationOf({angles.azimuth, elevation});
    }
    return withEyeWithin(pose);
}

OrbitCamera::Pose OrbitCamera::withEyeWithin(Pose pose) const
{
    if (!_eyeLimits)
        return pose;
    constexpr double cRounding = 1e-9; // what was put at a limit is there
    const glm::dvec3& center = _eyeLimits->center;
    const Range& limits = _eyeLimits->distance;
    const glm::dvec3 back = glm::transpose(pose.rotation)[2];
    const auto isBeyond = [&limits](double distance)
    { return distance < limits.min * (1 - cRounding) || distance > limits.max * (1 + cRounding); };
    const glm::dvec3 away = pose.target + pose.distance * back - center;
    const double distance = glm::length(away), nearest = std::clamp(distance, limits.min, limits.max);
    // What is farther away than numbers go can't be brought anywhere.
    if (!std::isfinite(distance) || !isBeyond(distance))
        return pose;
    const glm::dvec3 direction = distance > 0 ? away / distance : back;
    pose.target += (nearest - distance) * direction;
    // From so far away that the limits are lost in the target's last digits.
    if (isBeyond(glm::length(pose.target + pose.distance * back - center)))
        pose.target = center + nearest * direction - pose.distance * back;
    return pose;
}

OrbitCamera::Pose OrbitCamera::poseOf(Side side) const
{
    // By Side.
    constexpr std::array<Angles, 7> cAngles{
        {{0, 0}, {180, 0}, {-90, 0}, {90, 0}, {0, 90}, {0, -90}, {45, cCornerElevation}}};
    const auto i = static_cast<std::size_t>(side);
    static_assert(cAngles.size() == std::size_t(Side::Corner) + 1);
    Pose pose = _pose;
    TD_ASSERT(i < cAngles.size(), pose);
    pose.rotation = rotationOf(cAngles[i]);
    return pose;
}

// Where a fit leads to, from where it looks now. There is a size.
std::optional<OrbitCamera::Pose> OrbitCamera::poseOf(const Fit& fit, const glm::dmat3& rotation) const
{
    const double width = _size.width - 2 * fit.margin, height = _size.height - 2 * fit.margin;
    if (!(width > 0 && height > 0))
        return std::nullopt;
    const double tangentY = tangent() * height / _size.height;
    const double tangentX = tangent() * width / _size.height;
    const glm::dvec3 center = fit.box.getCenter();
    double distance = 0;
    for (unsigned int i = 0; i < 8; ++i)
    {
        const glm::dvec3 corner = rotation * (fit.box.getCorner(i) - center);
        const double nearer = _projection == Projection::Perspective ? corner.z : 0;
        distance = std::max({distance, nearer + std::abs(corner.x) / tangentX, nearer + std::abs(corner.y) / tangentY});
    }
    const Pose pose = within({center, rotation, distance > 0 ? distance : _pose.distance});
    return isPose(pose) ? std::optional(pose) : std::nullopt; // a box may be too large for numbers
}

void OrbitCamera::moved()
{
    stop();
    _fit.reset();
}

void OrbitCamera::fitAgain()
{
    if (!_fit || !(_size.width > 0))
        return;
    if (const std::optional<Pose> pose = poseOf(*_fit, _pose.rotation))
        _pose = *pose;
}

void OrbitCamera::setSize(const td::Size<double>& size)
{
    if (!(size.width > 0 && size.height > 0) || !std::isfinite(size.width) || !std::isfinite(size.height) ||
        size == _size)
        return;
    _size = size;
    fitAgain();
}

void OrbitCamera::setProjection(Projection projection)
{
    if (projection == _projection)
        return;
    _projection = projection;
    fitAgain();
}

void OrbitCamera::setTurning(Turning turning)
{
    _turning = turning;
    if (turning == Turning::Upright)
        _pose = within({_pose.target, rotationOf(anglesOf(_pose.rotation)), _pose.distance});
}

void OrbitCamera::setFieldOfView(double degrees)
{
    TD_ASSERT(degrees > 0 && degrees < 180);
    _fieldOfView = degrees;
    fitAgain();
}

void OrbitCamera::setBounds(const Box3& box)
{
    if (!box.isEmpty() && !box.isFinite())
        return;
    _bounds = box;
}

bool OrbitCamera::fit(const Box3& box, double margin)
{
    const Fit fit{box, margin};
    if (!box.isFinite() || !(margin >= 0) || !std::isfinite(margin))
        return false;
    const Box3 boundsBefore = _bounds;
    _bounds.add(box);
    if (_size.width > 0)
    {
        const std::optional<Pose> pose = poseOf(fit, _pose.rotation);
        if (!pose)
        {
            _bounds = boundsBefore;
            return false;
        }
        _pose = *pose;
    }
    stop();
    _fit = fit;
    return true;
}

void OrbitCamera::show(Side side)
{
    stop();
    _pose = within(poseOf(side));
    fitAgain();
}

bool OrbitCamera::isAt(Side side) const
{
    constexpr double cRadians = 1e-6 * std::numbers::pi / 180;
    const glm::dmat3 there = poseOf(side).rotation;
    bool isThere = true;
    for (int column = 0; column < 3; ++column)
        isThere = isThere && glm::distance(there[column], _pose.rotation[column]) < cRadians;
    return isThere;
}

bool OrbitCamera::isPose(const Pose& pose)
{
    return isFiniteVector(pose.target) && pose.distance > 0 && std::isfinite(pose.distance) &&
           isRotation(pose.rotation);
}

// As the camera takes it over.
OrbitCamera::Pose OrbitCamera::taken(const Pose& pose) const
{
    if (pose.rotation == _pose.rotation || _turning == Turning::Free)
        return within({pose.target, orthonormal(pose.rotation), pose.distance});
    return within({pose.target, rotationOf(anglesOf(pose.rotation)), pose.distance});
}

bool OrbitCamera::setPose(const Pose& pose)
{
    if (!isPose(pose))
        return false;
    moved();
    _pose = taken(pose);
    return true;
}

bool OrbitCamera::look(const glm::dvec3& from, const glm::dvec3& at)
{
    const double distance = glm::distance(from, at);
    if (!isFiniteVector(from) || !isFiniteVector(at) || !(distance > 0) || !std::isfinite(distance))
        return false;
    moved();
    const glm::dvec3 away = (from - at) / distance;
    const glm::dvec3 back = _up == Up::Y ? away : glm::dvec3(away.x, away.z, -away.y);
    const double level = std::hypot(back.x, back.z);
    const double azimuth = level > 0 ? glm::degrees(std::atan2(back.x, back.z)) : getAzimuth();
    _pose = within({at, rotationOf({azimuth, glm::degrees(std::atan2(back.y, level))}), distance});
    return true;
}

void OrbitCamera::setDirection(double azimuth, double elevation)
{
    if (!std::isfinite(azimuth) || !std::isfinite(elevation))
        return;
    stop();
    _pose = within({_pose.target, rotationOf({azimuth, std::clamp(elevation, -90.0, 90.0)}), _pose.distance});
    fitAgain();
}

double OrbitCamera::getAzimuth() const { return anglesOf(_pose.rotation).azimuth; }

double OrbitCamera::getElevation() const { return anglesOf(_pose.rotation).elevation; }

void OrbitCamera::setTarget(const glm::dvec3& target)
{
    if (!isFiniteVector(target))
        return;
    moved();
    _pose = within({target, _pose.rotation, _pose.distance});
}

void OrbitCamera::setDistance(double distance)
{
    if (!(distance > 0) || !std::isfinite(distance))
        return;
    moved();
    _pose = within({_pose.target, _pose.rotation, distance});
}

void OrbitCamera::turnBy(const glm::dvec3& pivot, double right, double up)
{
    Pose pose = _pose;
    if (_turning == Turning::Upright)
    {
        const Angles angles = anglesOf(_pose.rotation);
        const double elevation = std::clamp(angles.elevation + up, _elevationLimits.min, _elevationLimits.max);
        pose.rotation = rotationOf({angles.azimuth + right, elevation});
    }
    else
        pose.rotation = turned(_pose.rotation, right, up);
    // The pivot stays where it is for the eye.
    pose.target = pivot + glm::transpose(pose.rotation) * (_pose.rotation * (_pose.target - pivot));
    if (isFiniteVector(pose.target))
        _pose = within(pose);
}

void OrbitCamera::turn(const glm::dvec3& pivot, double right, double up)
{
    if (!isFiniteVector(pivot) || !std::isfinite(right) || !std::isfinite(up))
        return;
    moved();
    turnBy(pivot, right, up);
}

void OrbitCamera::zoom(const glm::dvec3& pivot, double factor)
{
    if (!isFiniteVector(pivot) || !(factor > 0) || !std::isfinite(factor))
        return;
    const Range limits = distanceLimits();
    const double distance = std::clamp(_pose.distance / factor, limits.min, limits.max);
    if (distance == _pose.distance)
        return;
    const glm::dvec3 target = pivot + (_pose.target - pivot) * (distance / _pose.distance);
    if (!isFiniteVector(target))
        return;
    moved();
    _pose = within({target, _pose.rotation, distance});
}

void OrbitCamera::pan(const glm::dvec3& pivot, const td::Point<double>& to)
{
    const Eye eye = getEye();
    const double distance = eye.getDistance(pivot);
    if (!eye.isValid() || (_projection == Projection::Perspective && !(distance > 0)))
        return;
    const glm::dvec3 target = _pose.target + (pivot - eye.unproject(to, distance));
    if (!isFiniteVector(target))
        return;
    moved();
    _pose = within({target, _pose.rotation, _pose.distance});
}

void OrbitCamera::focus(const glm::dvec3& point)
{
    const glm::dvec3 back = glm::transpose(_pose.rotation)[2];
    const double nearer = glm::dot(point - _pose.target, back), distance = _pose.distance - nearer;
    if (!std::isfinite(nearer) || (_projection == Projection::Perspective && !(distance > 0)))
        return;
    Pose pose = _pose;
    pose.target += nearer * back;
    if (_projection == Projection::Perspective)
        pose.distance = distance;
    const Pose possible = within(pose);
    if (possible.target != pose.target || possible.distance != pose.distance || !isFiniteVector(pose.target))
        return;
    _pose = possible;
}

glm::dvec3 OrbitCamera::getPlace(const td::Point<double>& point) const
{
    const Eye eye = getEye();
    const glm::dvec3 place = eye.unproject(point, _pose.distance);
    return eye.isValid() && isFiniteVector(place) ? place : _pose.target;
}

void OrbitCamera::setDistanceLimits(double min, double max)
{
    TD_ASSERT(min > 0 && min <= max && std::isfinite(max));
    _distanceLimits = {min, max};
    _pose = within(_pose);
}

void OrbitCamera::setElevationLimits(double min, double max)
{
    TD_ASSERT(min >= -90 && min <= max && max <= 90);
    _elevationLimits = {min, max};
    _pose = within(_pose);
}

void OrbitCamera::setTargetLimits(const Box3& box)
{
    // Sides may be infinite, but there must be some place within.
    constexpr double cInfinity = std::numeric_limits<double>::infinity();
    const auto isNowhere = [](double min, double max) { return min == cInfinity || max == -cInfinity; };
    if (!box.isEmpty() &&
        (isNowhere(box.min.x, box.max.x) || isNowhere(box.min.y, box.max.y) || isNowhere(box.min.z, box.max.z)))
        return;
    _targetLimits = box;
    _pose = within(_pose);
}

void OrbitCamera::setEyeLimits(const glm::dvec3& center, double min, double max)
{
    TD_ASSERT(isFiniteVector(center) && min >= 0 && min <= max && std::isfinite(max));
    _eyeLimits = {center, {min, max}};
    _pose = within(_pose);
}

// From nearest to farthest that is to be seen.
OrbitCamera::Range OrbitCamera::seenDistances(const glm::dvec3& position, Eye::Depth depth) const
{
    const bool isPerspective = _projection == Projection::Perspective;
    const double reach = 100 * _pose.distance;
    const double half = isPerspective ? tangent() : tangent() * _pose.distance;
    const std::optional<SeenPart> part =
        SeenPart::of(_bounds, position, _pose.rotation, {half * _size.width / _size.height, half}, isPerspective);
    if (!part && isPerspective)
        return {_pose.distance / 100, reach};
    if (!part)
        return {_pose.distance - reach, _pose.distance + reach};
    // What is on the box' faces is in view for whoever computes in float, too.
    const double size = part->farthest - part->nearest;
    const double margin = 1e-3 * size + 1e-5 * std::max(std::abs(part->nearest), std::abs(part->farthest));
    const Range all{part->nearest - margin, part->farthest + margin};
    if (!isPerspective)
        return all;
    // Nearer than that an integer depth buffer tells little apart at a ten thousand times that distance; a float one
    // does.
    const double least = depth == Eye::Depth::Usual ? std::min(1e-4 * all.max, 1e-2 * _pose.distance)
                                                    : 1e-4 * std::min(all.max, _pose.distance);
    const double nearest = std::max(all.min, least);
    return {nearest, std::max(all.max, 1.001 * nearest)};
}

Eye OrbitCamera::getEye(double scale, Eye::Depth depth) const
{
    const glm::dvec3 position = _pose.target + _pose.distance * glm::transpose(_pose.rotation)[2];
    if (!(_size.width > 0))
        return {position, _pose.rotation, glm::dmat4(1), _size, scale, depth};
    const auto [nearest, farthest] = seenDistances(position, depth);
    const double range = farthest - nearest;
    const bool isReversed = depth == Eye::Depth::Reversed;
    glm::dmat4 projection(0);
    if (_projection == Projection::Perspective)
    {
        projection[1][1] = 1 / tangent();
        // Reversed, there is no end: the farthest is nowhere.
        projection[2][2] = isReversed ? 0 : -(farthest + nearest) / range;
        projection[2][3] = -1;
        projection[3][2] = isReversed ? nearest : -2 * farthest * nearest / range;
    }
    else
    {
        projection[1][1] = 1 / (tangent() * _pose.distance);
        projection[2][2] = (isReversed ? 1 : -2) / range;
        projection[3][2] = (isReversed ? farthest : -(farthest + nearest)) / range;
        projection[3][3] = 1;
    }
    projection[0][0] = projection[1][1] * _size.height / _size.width;
    return {position, _pose.rotation, projection, _size, scale, depth};
}

} // namespace gui::draw
