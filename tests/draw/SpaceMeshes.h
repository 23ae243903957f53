#pragma once

#include <glm/vec3.hpp>

#include <cstdint>
#include <random>
#include <vector>

namespace test
{

struct SpaceMesh
{
    std::vector<glm::dvec3> vertices;
    std::vector<std::uint32_t> indices;
};

/// A tube that is knotted and closed, with bumps: about 6 across, of 2 * around * along triangles that share their
/// vertices and face outwards.
SpaceMesh makeKnot(std::uint32_t along, std::uint32_t around);

/// Triangles at random places of a cube from -1 to 1, that long or so.
SpaceMesh makeSoup(std::size_t nTriangles, double length);

/// At random in a box.
inline glm::dvec3 randomIn(std::mt19937& random, const glm::dvec3& min, const glm::dvec3& max)
{
    std::uniform_real_distribution<> share;
    const double x = share(random), y = share(random), z = share(random);
    return min + glm::dvec3(x, y, z) * (max - min);
}

} // namespace test
