#include <gui/draw/Clipping.h>

#include <glm/common.hpp>
#include <glm/geometric.hpp>

#include <algorithm>
#include <cmath>

namespace gui::draw
{

namespace
{

bool isFinitePoint(const glm::dvec3& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

} // namespace

double Clipping::Plane::getDistance(const glm::dvec3& place) const { return glm::dot(place - point, normal); }

Clipping::Clipping(const Box3& box, Kind kind)
    : _kind(kind)
{
    if (box.isEmpty() || !box.isFinite())
        return;
    const double inwards = kind == Kind::Cut ? 1 : -1;
    for (int axis = 0; axis < 3; ++axis)
    {
        glm::dvec3 normal(0);
        normal[axis] = inwards;
        add(box.min, normal);
        add(box.max, -normal);
    }
}

bool Clipping::add(const glm::dvec3& point, const glm::dvec3& normal)
{
    const double largest = std::max({std::abs(normal.x), std::abs(normal.y), std::abs(normal.z)});
    if (_nPlanes == cMostPlanes || !isFinitePoint(point) || !isFinitePoint(normal) || largest == 0)
        return false;
    _planes[_nPlanes++] = {point, glm::normalize(normal / largest)};
    return true;
}

bool Clipping::move(std::size_t plane, double by)
{
    if (plane >= _nPlanes || !std::isfinite(by))
        return false;
    const glm::dvec3 moved = _planes[plane].point + by * _planes[plane].normal;
    if (!isFinitePoint(moved))
        return false;
    _planes[plane].point = moved;
    return true;
}

bool Clipping::isOnFace(std::size_t plane, const glm::dvec3& point) const
{
    for (std::size_t i = 0; i < _nPlanes; ++i)
        if (i != plane && (_planes[i].getDistance(point) >= 0) != (_kind == Kind::Cut))
            return false;
    return plane < _nPlanes;
}

bool Clipping::isSeen(const glm::dvec3& point) const
{
    const auto isBefore = [&](const Plane& plane) { return plane.getDistance(point) >= 0; };
    const auto end = _planes.begin() + static_cast<std::ptrdiff_t>(_nPlanes);
    return _kind == Kind::Cut ? std::all_of(_planes.begin(), end, isBefore)
                              : _nPlanes == 0 || std::any_of(_planes.begin(), end, isBefore);
}

bool Clipping::isSeen(const Box3& box) const
{
    if (box.isEmpty() || _nPlanes == 0)
        return !box.isEmpty();
    if (!box.isFinite())
        return true;
    const glm::dvec3 middle = box.getCenter(), half = box.getSize() / 2.0;
    bool isSomeSeen = _kind == Kind::Cut;
    for (std::size_t i = 0; i < _nPlanes; ++i)
    {
        // What rounding may have taken away is given back.
        const Plane& plane = _planes[i];
        const double reach = glm::dot(glm::abs(plane.normal), half);
        const double slack = 1e-12 * (glm::length(middle) + glm::length(plane.point) + reach);
        const bool isBehind = plane.getDistance(middle) + reach + slack < 0;
        if (_kind == Kind::Cut && isBehind)
            return false;
        isSomeSeen = isSomeSeen || !isBehind;
    }
    return isSomeSeen;
}

glm::vec4 Clipping::getEquation(std::size_t plane, const glm::dvec3& origin) const
{
    return {glm::vec3(_planes[plane].normal), static_cast<float>(_planes[plane].getDistance(origin))};
}

bool Clipping::operator==(const Clipping& other) const
{
    const auto end = _planes.begin() + static_cast<std::ptrdiff_t>(_nPlanes);
    return _kind == other._kind && _nPlanes == other._nPlanes &&
           std::equal(_planes.begin(), end, other._planes.begin());
}

} // namespace gui::draw
