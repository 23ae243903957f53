#include "ModelGeometry.h"

#include <glm/common.hpp>
#include <glm/geometric.hpp>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace gui::draw
{

namespace
{

/// Numbers for keys, from 0 on in the order in which they come.
class Numbering
{
public:
    explicit Numbering(std::size_t nExpected) { _slots.resize(std::bit_ceil(2 * nExpected + 2)); }

    std::uint32_t get(std::uint64_t key)
    {
        if (2 * (_nKeys + std::size_t(1)) > _slots.size())
            grow();
        Slot& slot = find(key);
        if (slot.number == cFree)
            slot = {key, _nKeys++};
        return slot.number;
    }

private:
    static constexpr std::uint32_t cFree = ~0U;
    struct Slot
    {
        std::uint64_t key = 0;
        std::uint32_t number = cFree;
    };

    Slot& find(std::uint64_t key)
    {
        std::size_t i = static_cast<std::size_t>(key * 0x9e3779b97f4a7c15U >> 20) & (_slots.size() - 1);
        while (_slots[i].number != cFree && _slots[i].key != key)
            i = (i + 1) & (_slots.size() - 1);
        return _slots[i];
    }
    void grow()
    {
        std::vector<Slot> old(2 * _slots.size());
        old.swap(_slots);
        for (const Slot& slot : old)
            if (slot.number != cFree)
                find(slot.key) = slot;
    }

    std::vector<Slot> _slots;
    std::uint32_t _nKeys = 0;
};

// Which of the six directions along the axes a normal is next to.
std::uint32_t sideOf(const glm::vec3& normal)
{
    const glm::vec3 size = glm::abs(normal);
    const int axis = size.x >= size.y && size.x >= size.z ? 0 : size.y >= size.z ? 1 : 2;
    return static_cast<std::uint32_t>(2 * axis + (normal[axis] < 0 ? 1 : 0));
}

/// Cubes and the means of what is in them.
class Clusters
{
public:
    /// @param low  a corner of the grid
    Clusters(std::size_t nExpected, const glm::vec3& low, double step)
        : _numbers(nExpected)
        , _low(low)
        , _step(step)
    {
    }

    std::uint32_t numberOf(const glm::vec3& p)
    {
        // Cubes so far away that their numbers wrap meet others only in meshes that are 10^6 steps large.
        std::uint64_t key = 0;
        for (int k = 0; k < 3; ++k)
            key = key << 21 | (static_cast<std::uint64_t>(static_cast<std::int64_t>(
                                   std::floor((static_cast<double>(p[k]) - _low[k]) / _step))) &
                               0x1fffffU);
        const std::uint32_t number = _numbers.get(key);
        if (number == _sums.size())
            _sums.emplace_back(0);
        return number;
    }
    void add(std::uint32_t number, const glm::vec3& p) { _sums[number] += glm::dvec4(p, 1); }
    glm::vec3 meanOf(std::uint32_t number) const { return glm::vec3(glm::dvec3(_sums[number]) / _sums[number].w); }

private:
    Numbering _numbers;
    glm::dvec3 _low;
    double _step;
    std::vector<glm::dvec4> _sums;
};

} // namespace

MeshSurface makeCoarser(const MeshSurface& surface, double step)
{
    MeshSurface result;
    result.origin = surface.origin;
    result.meanEdge = surface.meanEdge;
    if (!(step > 0))
        return result;
    // The grid goes with the mesh, wherever that is.
    glm::vec3 low(std::numeric_limits<float>::max());
    for (const MeshSurface::Vertex& vertex : surface.vertices)
        low = glm::min(low, vertex.position);
    Clusters clusters(surface.vertices.size() / 4, low, step);
    Numbering numbers(surface.vertices.size() / 3);
    std::vector<std::uint32_t> cubes, moved;
    std::vector<glm::dvec3> normals;
    std::vector<std::uint32_t> cubeOf; // of the new vertices
    cubes.reserve(surface.vertices.size());
    moved.reserve(surface.vertices.size());
    for (const MeshSurface::Vertex& vertex : surface.vertices)
    {
        const std::uint32_t cube = clusters.numberOf(vertex.position);
        clusters.add(cube, vertex.position);
        const std::uint32_t number = numbers.get(std::uint64_t(cube) << 27 |
                                                 std::uint64_t(vertex.part & 0xffffffU) << 3 | sideOf(vertex.normal));
        if (number == result.vertices.size())
        {
            result.vertices.push_back(vertex);
            normals.emplace_back(0);
            cubeOf.push_back(cube);
        }
        normals[number] += glm::dvec3(vertex.normal);
        cubes.push_back(cube);
        moved.push_back(number);
    }
    for (std::size_t i = 0; i < result.vertices.size(); ++i)
    {
        MeshSurface::Vertex& vertex = result.vertices[i];
        vertex.position = clusters.meanOf(cubeOf[i]);
        vertex.rest = glm::vec3(0);
        const double length = glm::length(normals[i]);
        vertex.normal = length > 0 ? glm::vec3(normals[i] / length) : glm::vec3(0);
    }
    for (std::size_t t = 0; t < surface.parts.size(); ++t)
    {
        const std::uint32_t *p = &surface.indices[3 * t], a = cubes[p[0]], b = cubes[p[1]], c = cubes[p[2]];
        if (a == b || b == c || c == a)
            continue;
        for (std::size_t k = 0; k < 3; ++k)
            result.indices.push_back(moved[p[k]]);
        result.parts.push_back(surface.parts[t]);
    }
    Numbering ends(surface.edges.size() / 2);
    for (MeshSurface::Edge edge : surface.edges)
    {
        const std::uint32_t a = clusters.numberOf(edge.positions[0]), b = clusters.numberOf(edge.positions[1]);
        if (a == b || ends.get(std::uint64_t(std::min(a, b)) << 32 | std::max(a, b)) != result.edges.size())
            continue;
        edge.positions = {clusters.meanOf(a), clusters.meanOf(b)};
        edge.rests = {};
        result.edges.push_back(edge);
    }
    return result;
}

} // namespace gui::draw
