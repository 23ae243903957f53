#include <gui/draw/Box3.h>

#include <glm/common.hpp>
#include <glm/geometric.hpp>

#include <cmath>

namespace gui::draw
{

bool Box3::isFinite() const
{
    // Infinite sides make it infinite, NaN makes it empty.
    return !isEmpty() && std::isfinite(min.x + min.y + min.z) && std::isfinite(max.x + max.y + max.z);
}

void Box3::add(const glm::dvec3& point)
{
    if (!std::isfinite(point.x) || !std::isfinite(point.y) || !std::isfinite(point.z))
        return;
    min = glm::min(min, point);
    max = glm::max(max, point);
}

void Box3::add(const Box3& box)
{
    if (box.isEmpty())
        return;
    min = glm::min(min, box.min);
    max = glm::max(max, box.max);
}

// Halves are added: the sum of two large coordinates may be infinite.
glm::dvec3 Box3::getCenter() const { return isEmpty() ? glm::dvec3(0) : min * 0.5 + max * 0.5; }

glm::dvec3 Box3::getSize() const { return isEmpty() ? glm::dvec3(0) : max - min; }

double Box3::getRadius() const { return glm::length(getSize()) / 2; }

glm::dvec3 Box3::getCorner(unsigned int i) const
{
    return {(i & 1) != 0 ? max.x : min.x, (i & 2) != 0 ? max.y : min.y, (i & 4) != 0 ? max.z : min.z};
}

bool Box3::contains(const glm::dvec3& point) const
{
    return point.x >= min.x && point.y >= min.y && point.z >= min.z && point.x <= max.x && point.y <= max.y &&
           point.z <= max.z;
}

} // namespace gui::draw
