#pragma once

#include <gui/draw/Ray.h>

#include <glm/geometric.hpp>
#include <glm/vec3.hpp>

#include <cmath>
#include <limits>
#include <utility>

namespace gui::draw
{

/// Where a ray meets triangles: S. Woop, C. Benthin, I. Wald, "Watertight Ray/Triangle Intersection", JCGT 2(1), 2013,
/// in double. The triangle is sheared so that the ray is an axis; on which side of the axis an edge passes is then a
/// difference of two products. Rounded, it has the right sign or is 0, and 0 is settled by what rounding took away, so
/// both triangles at an edge agree about it, and of those about a corner one at least is hit.
class RayTriangle
{
public:
    struct Meeting
    {
        double distance; // in lengths of the ray's direction
        glm::dvec3 weights;
        bool isFront;
    };

    explicit RayTriangle(const Ray& ray)
        : _origin(ray.origin)
    {
        const glm::dvec3 size = glm::abs(ray.direction);
        _z = size.x > size.y ? (size.x > size.z ? 0 : 2) : (size.y > size.z ? 1 : 2);
        _x = (_z + 1) % 3;
        _y = (_x + 1) % 3;
        // So that triangles keep their direction.
        if (ray.direction[_z] < 0)
            std::swap(_x, _y);
        _shear = {ray.direction[_x] / ray.direction[_z], ray.direction[_y] / ray.direction[_z], 1 / ray.direction[_z]};
    }

    /// @param limit  the farthest distance that counts
    bool meet(const glm::dvec3& a, const glm::dvec3& b, const glm::dvec3& c, double limit, Meeting& meeting) const
    {
        const double az = a[_z] - _origin[_z], bz = b[_z] - _origin[_z], cz = c[_z] - _origin[_z];
        const double ax = a[_x] - _origin[_x] - _shear.x * az, ay = a[_y] - _origin[_y] - _shear.y * az;
        const double bx = b[_x] - _origin[_x] - _shear.x * bz, by = b[_y] - _origin[_y] - _shear.y * bz;
        const double cx = c[_x] - _origin[_x] - _shear.x * cz, cy = c[_y] - _origin[_y] - _shear.y * cz;
        double u = cx * by - cy * bx, v = ax * cy - ay * cx, w = bx * ay - by * ax;
        if ((u < 0 || v < 0 || w < 0) && (u > 0 || v > 0 || w > 0))
            return false;
        double sum = u + v + w;
        // Seen nearly edge-on, as well, its weights would be mere rounding.
        const double size = std::abs(cx * by) + std::abs(ax * cy) + std::abs(bx * ay);
        if (u == 0 || v == 0 || w == 0 || !(std::abs(sum) > size * 0x1p-20))
        {
            u = difference(cx, by, cy, bx);
            v = difference(ax, cy, ay, cx);
            w = difference(bx, ay, by, ax);
            if ((u < 0 || v < 0 || w < 0) && (u > 0 || v > 0 || w > 0))
                return false;
            sum = u + v + w;
        }
        const double distance = (u * az + v * bz + w * cz) / sum * _shear.z;
        // Written so that NaN is refused too. Without an area there is no triangle, whatever rounding makes of it.
        if (!(distance >= 0 && distance <= limit && distance < std::numeric_limits<double>::infinity()) ||
            glm::cross(b - a, c - a) == glm::dvec3(0))
            return false;
        meeting = {distance, glm::dvec3(u, v, w) / sum, sum > 0};
        return true;
    }

private:
    // a * b - c * d, right to the last bits also where the products are nearly the same (W. Kahan).
    static double difference(double a, double b, double c, double d)
    {
        const double cd = c * d;
        const double rest = std::fma(-c, d, cd);
        return std::fma(a, b, -cd) + rest;
    }

    glm::dvec3 _origin;
    glm::dvec3 _shear;
    int _x, _y, _z;
};

} // namespace gui::draw
