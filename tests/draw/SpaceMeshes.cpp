#include "SpaceMeshes.h"

#include <glm/geometric.hpp>
#include <glm/trigonometric.hpp>

#include <cmath>

namespace test
{

SpaceMesh makeKnot(std::uint32_t along, std::uint32_t around)
{
    SpaceMesh mesh;
    const auto turn = [](double i, double n) { return 2 * 3.14159265358979323846 * i / n; };
    const auto middle = [](double t)
    {
        return glm::dvec3((2 + std::cos(3 * t)) * std::cos(2 * t), (2 + std::cos(3 * t)) * std::sin(2 * t),
                          std::sin(3 * t));
    };
    for (std::uint32_t i = 0; i < along; ++i)
    {
        const double t = turn(i, along);
        const glm::dvec3 at = middle(t), tangent = glm::normalize(middle(t + 1e-4) - middle(t - 1e-4));
        const glm::dvec3 side = glm::normalize(glm::cross(tangent, glm::dvec3(0, 0, 1)));
        const glm::dvec3 up = glm::cross(side, tangent);
        for (std::uint32_t k = 0; k < around; ++k)
        {
            const double a = turn(k, around), radius = 0.4 + 0.03 * std::sin(40 * t) * std::sin(5 * a);
            mesh.vertices.push_back(at + radius * (std::cos(a) * side + std::sin(a) * up));
            const std::uint32_t i1 = (i + 1) % along, k1 = (k + 1) % around;
            const std::uint32_t v00 = i * around + k, v10 = i1 * around + k, v01 = i * around + k1,
                                v11 = i1 * around + k1;
            mesh.indices.insert(mesh.indices.end(), {v00, v10, v01, v01, v10, v11});
        }
    }
    return mesh;
}

SpaceMesh makeSoup(std::size_t nTriangles, double length)
{
    SpaceMesh mesh;
    std::mt19937 random(3);
    for (std::size_t i = 0; i < nTriangles; ++i)
    {
        const glm::dvec3 at = randomIn(random, glm::dvec3(-1), glm::dvec3(1));
        for (int k = 0; k < 3; ++k)
        {
            mesh.indices.push_back(static_cast<std::uint32_t>(mesh.vertices.size()));
            mesh.vertices.push_back(at + randomIn(random, glm::dvec3(-length), glm::dvec3(length)));
        }
    }
    return mesh;
}

} // namespace test
