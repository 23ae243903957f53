#pragma once

#include <gui/draw/Ray.h>

#include <glm/geometric.hpp>
#include <glm/vec3.hpp>

#include <algorithm>
#include <cmath>

namespace gui::draw
{

/// Where lines and points are within the reach of a ray, a cone or a cylinder about it.
class RayReach
{
public:
    struct Meeting
    {
        double distance; // in lengths of the ray's direction
        double aside;    // part of the reach there, 0 to 1
        double weight;   // of the line's end
    };

    /// @param radius       of the reach at the ray's origin, and how much it grows in a model unit
    /// @param maxDistance  what is farther is cut off
    RayReach(const Ray& ray, double radius, double perDistance, double maxDistance)
        : _ray(ray)
        , _square(glm::dot(ray.direction, ray.direction))
        , _radius(radius)
        , _perDistance(perDistance * std::sqrt(_square))
        , _maxDistance(maxDistance)
    {
    }

    bool meet(const glm::dvec3& point, Meeting& meeting) const
    {
        const glm::dvec3 p = point - _ray.origin;
        const double t = along(p);
        return t >= 0 && t <= _maxDistance && settle(t, p - t * _ray.direction, 0, meeting);
    }

    /// The point of the line that is seen nearest to the ray, as part of the reach.
    bool meet(const glm::dvec3& from, const glm::dvec3& to, Meeting& meeting) const
    {
        const glm::dvec3 p = from - _ray.origin, q = to - from;
        const double t = along(p), dt = along(q);
        double low = 0, high = 1;
        if (dt != 0)
        {
            const double start = -t / dt, end = (_maxDistance - t) / dt;
            low = std::max(low, std::min(start, end));
            high = std::min(high, std::max(start, end));
        }
        else if (!(t >= 0 && t <= _maxDistance))
            return false;
        if (!(low <= high))
            return false;
        // Its square is |m + s n|^2 / (a + s b)^2, with one extremum: a minimum, if it is before the origin.
        const glm::dvec3 m = p - t * _ray.direction, n = q - dt * _ray.direction;
        const double a = _radius + _perDistance * t, b = _perDistance * dt;
        const double mm = glm::dot(m, m), mn = glm::dot(m, n), nn = glm::dot(n, n);
        const double divisor = a * nn - b * mn;
        const auto take = [&](double s, Meeting& at)
        { return settle(std::clamp(t + s * dt, 0.0, _maxDistance), m + s * n, s, at); };
        if (divisor > 0)
            return take(std::clamp((b * mm - a * mn) / divisor, low, high), meeting);
        Meeting end;
        const bool isStart = take(low, meeting), isEnd = take(high, end);
        if (isEnd && (!isStart || end.aside < meeting.aside))
            meeting = end;
        return isStart || isEnd;
    }

private:
    double along(const glm::dvec3& p) const { return glm::dot(p, _ray.direction) / _square; }

    bool settle(double distance, const glm::dvec3& beside, double weight, Meeting& meeting) const
    {
        const double aside = glm::length(beside), reach = _radius + _perDistance * distance;
        meeting = {distance, reach > 0 ? aside / reach : 0, weight};
        return aside <= reach;
    }

    Ray _ray;
    double _square;
    double _radius;
    double _perDistance;
    double _maxDistance;
};

} // namespace gui::draw
