#include "Solids.h"

#include <cmath>
#include <numbers>

namespace test
{

using gui::draw::Mesh;

namespace
{

void addTriangle(Mesh& mesh, std::uint32_t a, std::uint32_t b, std::uint32_t c)
{
    mesh.indices.insert(mesh.indices.end(), {a, b, c});
}

double angleOf(std::uint32_t i, std::uint32_t n) { return 2 * std::numbers::pi * i / n; }

} // namespace

Mesh makeBox(const glm::dvec3& min, const glm::dvec3& max)
{
    Mesh mesh;
    for (int i = 0; i < 8; ++i)
        mesh.positions.emplace_back((i & 1) != 0 ? max.x : min.x, (i & 2) != 0 ? max.y : min.y,
                                    (i & 4) != 0 ? max.z : min.z);
    mesh.indices = {0, 2, 1, 1, 2, 3, 4, 5, 6, 5, 7, 6, 0, 1, 4, 1, 5, 4,
                    2, 6, 3, 3, 6, 7, 0, 4, 2, 2, 4, 6, 1, 3, 5, 3, 7, 5};
    return mesh;
}

Mesh makeCylinder(double radius, double height, std::uint32_t nSectors)
{
    Mesh mesh;
    for (std::uint32_t i = 0; i < nSectors; ++i)
        for (const double z : {-height / 2, height / 2})
            mesh.positions.emplace_back(radius * std::cos(angleOf(i, nSectors)),
                                        radius * std::sin(angleOf(i, nSectors)), z);
    // Beside the middles of the caps, so that their triangles are unlike.
    mesh.positions.emplace_back(radius / 2, 0, -height / 2);
    mesh.positions.emplace_back(radius / 2, 0, height / 2);
    for (std::uint32_t i = 0; i < nSectors; ++i)
    {
        const std::uint32_t here = 2 * i, next = 2 * ((i + 1) % nSectors);
        addTriangle(mesh, here, next, here + 1);
        addTriangle(mesh, next, next + 1, here + 1);
        addTriangle(mesh, 2 * nSectors, next, here);
        addTriangle(mesh, 2 * nSectors + 1, here + 1, next + 1);
    }
    return mesh;
}

Mesh makeSphere(double radius, std::uint32_t n)
{
    Mesh mesh;
    const std::uint32_t nStacks = n / 2;
    mesh.positions.emplace_back(0, 0, radius);
    for (std::uint32_t stack = 1; stack < nStacks; ++stack)
        for (std::uint32_t i = 0; i < n; ++i)
        {
            const double polar = std::numbers::pi * stack / nStacks;
            mesh.positions.emplace_back(radius * std::sin(polar) * std::cos(angleOf(i, n)),
                                        radius * std::sin(polar) * std::sin(angleOf(i, n)), radius * std::cos(polar));
        }
    mesh.positions.emplace_back(0, 0, -radius);
    const auto last = static_cast<std::uint32_t>(mesh.positions.size() - 1);
    for (std::uint32_t i = 0; i < n; ++i)
    {
        const std::uint32_t next = (i + 1) % n;
        addTriangle(mesh, 0, 1 + i, 1 + next);
        for (std::uint32_t stack = 1; stack + 1 < nStacks; ++stack)
        {
            const std::uint32_t above = 1 + (stack - 1) * n, below = above + n;
            addTriangle(mesh, above + i, below + i, below + next);
            addTriangle(mesh, above + i, below + next, above + next);
        }
        addTriangle(mesh, last, last - n + next, last - n + i);
    }
    return mesh;
}

} // namespace test
