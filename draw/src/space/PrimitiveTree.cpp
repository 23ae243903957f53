#include "PrimitiveTree.h"

#include <glm/geometric.hpp>

#include <cmath>

namespace gui::draw
{

namespace
{

constexpr float cNothing = std::numeric_limits<float>::max();

float toFloat(double d) { return static_cast<float>(std::clamp<double>(d, -cNothing, cNothing)); }

struct Bounds
{
    glm::dvec3 least{std::numeric_limits<double>::infinity()};
    glm::dvec3 greatest{-std::numeric_limits<double>::infinity()};

    double add(const glm::dvec3& p)
    {
        least = glm::min(least, p);
        greatest = glm::max(greatest, p);
        return p.x;
    }
};

} // namespace

void PrimitiveTree::setFrame(const Box3& bounds)
{
    center = bounds.getCenter();
    const glm::dvec3 half = bounds.getSize() * 0.5;
    const double size = std::max({half.x, half.y, half.z});
    toTree = size > 1e-200 ? std::ldexp(1.0, -1 - std::ilogb(size)) : 1;
}

void PrimitiveTree::fitNode(const Primitives& primitives, std::size_t index)
{
    Node& node = nodes[index];
    const glm::dvec3* const vertices = primitives.vertices.data();
    const std::uint32_t* const corners = primitives.corners.data();
    const std::size_t nCorners = primitives.nCorners;
    for (std::size_t i = 0; i < 4; ++i)
    {
        for (std::size_t axis = 0; axis < 3; ++axis)
        {
            node.bounds[axis][i] = cNothing;
            node.bounds[axis + 3][i] = -cNothing;
        }
        if (node.isNone(i))
            continue;
        if (node.count[i] == 0)
        {
            const Node& below = nodes[node.first[i]];
            for (std::size_t axis = 0; axis < 3; ++axis)
            {
                const float* least = below.bounds[axis];
                const float* greatest = below.bounds[axis + 3];
                node.bounds[axis][i] = std::min(std::min(least[0], least[1]), std::min(least[2], least[3]));
                node.bounds[axis + 3][i] =
                    std::max(std::max(greatest[0], greatest[1]), std::max(greatest[2], greatest[3]));
            }
            continue;
        }
        const std::size_t first = node.first[i], end = first + node.count[i];
        Bounds bounds;
        // Not a number once a corner can't be used.
        double sum = 0;
        for (std::size_t k = first * nCorners; k < end * nCorners; ++k)
            sum += bounds.add(vertices[corners[k]]);
        if (sum != sum)
        {
            bounds = {};
            for (std::size_t p = first; p < end; ++p)
                if (primitives.isUsable(p))
                    for (std::size_t k = 0; k < nCorners; ++k)
                        bounds.add(primitives.corner(p, k));
        }
        if (bounds.least.x > bounds.greatest.x)
            continue;
        for (int axis = 0; axis < 3; ++axis)
        {
            node.bounds[axis][i] = static_cast<float>((bounds.least[axis] - center[axis]) * toTree);
            node.bounds[axis + 3][i] = static_cast<float>((bounds.greatest[axis] - center[axis]) * toTree);
        }
    }
}

PrimitiveTree::Search::Search(const PrimitiveTree& tree, const Ray& ray, double reach, double growth)
    : toTree(tree.toTree)
{
    const double length = glm::length(ray.direction);
    const glm::dvec3 unit = ray.direction / length, from = (ray.origin - tree.center) * toTree;
    // Whatever it reaches is in the ball about all boxes.
    const double skipped = std::max(0.0, -glm::dot(from, unit) - 1.75);
    const glm::dvec3 origin = from + skipped * unit;
    const double size = 4 + glm::length(origin);
    // Of the boxes, the origin, the direction, and the products: 16 roundings of floats at most. And of the distance
    // that triangles are away from the origin, in double.
    const double slack = 0x1p-19 * size + 0x1p-48 * glm::length(from);
    start = skipped / toTree / length;
    perLength = length;
    for (int axis = 0; axis < 3; ++axis)
    {
        const bool isBack = unit[axis] < 0;
        // No product of it is infinite or not a number.
        const double component = std::max(std::abs(unit[axis]), 1e-18);
        direction[axis] = static_cast<float>(isBack ? -component : component);
        inverse[axis] = 1 / direction[axis];
        nearOrigin[axis] = toFloat(origin[axis] + (isBack ? -slack : slack));
        farOrigin[axis] = toFloat(origin[axis] - (isBack ? -slack : slack));
        nearRow[axis] = static_cast<std::size_t>(isBack ? axis + 3 : axis);
        farRow[axis] = static_cast<std::size_t>(isBack ? axis : axis + 3);
    }
    perDistance = toFloat(growth * 1.0001);
    radius = toFloat((reach * toTree + growth * skipped) * 1.0001 + perDistance * slack);
}

float PrimitiveTree::Search::limitOf(double distance) const
{
    const double inTree = (distance - start) * perLength * toTree;
    return toFloat(inTree + 0x1p-19 * (1 + std::abs(inTree)) + 0x1p-48 * start * perLength * toTree);
}

} // namespace gui::draw
