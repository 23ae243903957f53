#include "MeshSurface.h"

#include "NearestFloat.h"

#include <glm/geometric.hpp>
#include <glm/trigonometric.hpp>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numeric>
#include <span>

namespace gui::draw
{

namespace
{

constexpr std::uint32_t cNoCorner = std::numeric_limits<std::uint32_t>::max();

// Normals are floats: what is flat may be a little less so.
constexpr float cFlatness = 2e-6F;

// The number of each position among different ones.
std::vector<std::uint32_t> weld(std::span<const glm::dvec3> positions, std::uint32_t& nPoints)
{
    std::vector<std::uint32_t> points(positions.size());
    std::vector<std::uint32_t> slots(std::bit_ceil(2 * positions.size() + 2), cNoCorner); // of positions
    const std::size_t mask = slots.size() - 1;
    nPoints = 0;
    for (std::uint32_t i = 0; i < positions.size(); ++i)
    {
        const glm::dvec3 p = positions[i] + 0.0; // there is one zero
        std::uint64_t hash = 0;
        for (int k = 0; k < 3; ++k)
            hash = (std::rotl(hash, 23) ^ std::bit_cast<std::uint64_t>(p[k])) * 0x9e3779b97f4a7c15U;
        hash ^= hash >> 32;
        std::size_t slot = hash & mask;
        while (slots[slot] != cNoCorner && positions[slots[slot]] != positions[i])
            slot = (slot + 1) & mask;
        if (slots[slot] == cNoCorner)
        {
            slots[slot] = i;
            points[i] = nPoints++;
        }
        else
            points[i] = points[slots[slot]];
    }
    return points;
}

// Near the middle of the box, and such a number that what is left of floats in the box is floats again: 0, as far as
// the box is about there, else on a grid as coarse as a quarter of the box.
glm::dvec3 originOf(const Box3& box)
{
    if (box.isEmpty())
        return glm::dvec3(0);
    const glm::dvec3 center = box.getCenter();
    const double size = 2 * box.getRadius();
    if (glm::length(center) <= size || size == 0)
        return size == 0 ? center : glm::dvec3(0);
    const double step = std::exp2(std::floor(std::log2(size)) - 2);
    return glm::round(center / step) * step;
}

class SurfaceMaker
{
public:
    SurfaceMaker(const Mesh& mesh, MeshSurface& surface)
        : _mesh(mesh)
        , _surface(surface)
    {
        _smoothCosine = static_cast<float>(std::cos(glm::radians(mesh.smoothAngle))) - cFlatness;
        _edgeCosine = static_cast<float>(std::cos(glm::radians(mesh.edgeAngle))) - cFlatness;
        _surface.origin = originOf(mesh.getBounds());
    }

    void make()
    {
        std::uint32_t nPoints = 0;
        _points = weld(_mesh.positions, nPoints);
        findTriangles();
        _firstCorners.assign(nPoints + std::size_t(1), 0);
        for (const std::uint32_t index : _corners)
            ++_firstCorners[_points[index] + std::size_t(1)];
        std::partial_sum(_firstCorners.begin(), _firstCorners.end(), _firstCorners.begin());
        std::vector<std::uint32_t> around(_corners.size()), ends(_firstCorners.begin(), _firstCorners.end() - 1);
        for (std::uint32_t corner = 0; corner < _corners.size(); ++corner)
            around[ends[_points[_corners[corner]]]++] = corner;
        _surface.indices.resize(_corners.size());
        for (std::uint32_t point = 0; point < nPoints; ++point)
            makePoint(point, std::span(around).subspan(_firstCorners[point],
                                                       _firstCorners[point + std::size_t(1)] - _firstCorners[point]));
    }

private:
    // Around one point: a triangle's side that begins or ends there.
    struct Side
    {
        std::uint32_t other; // point
        std::uint32_t fan;   // place of the triangle among those around the point
        bool begins;
    };
    // What makes corners at one point the same vertex.
    struct Key
    {
        std::uint32_t group, part, index, fan;
        bool isSame(const Key& k) const { return group == k.group && part == k.part && index == k.index; }
        bool operator<(const Key& k) const
        {
            return group != k.group ? group < k.group : part != k.part ? part < k.part : index < k.index;
        }
    };

    void findTriangles()
    {
        std::size_t part = 0, endOfPart = _mesh.parts.empty() ? _mesh.getNumberOfTriangles() : 0;
        if (!_mesh.parts.empty())
            endOfPart = _mesh.parts[0].nTriangles;
        _corners.reserve(_mesh.indices.size());
        double length = 0;
        for (std::size_t t = 0; t < _mesh.getNumberOfTriangles(); ++t)
        {
            while (t >= endOfPart)
                endOfPart += _mesh.parts[++part].nTriangles;
            const std::uint32_t* pCorners = &_mesh.indices[3 * t];
            std::array<glm::dvec3, 3> sides;
            for (std::size_t k = 0; k < 3; ++k)
                sides[k] = _mesh.positions[pCorners[(k + 1) % 3]] - _mesh.positions[pCorners[k]];
            const glm::dvec3 normal = glm::cross(sides[0], sides[1]);
            const double area = glm::length(normal);
            if (!(area > 0))
                continue;
            length += glm::length(sides[0]) + glm::length(sides[1]) + glm::length(sides[2]);
            _corners.insert(_corners.end(), pCorners, pCorners + 3);
            _faceNormals.emplace_back(normal / area);
            _surface.parts.push_back(static_cast<std::uint32_t>(part));
        }
        _surface.meanEdge = _corners.empty() ? 0 : length / static_cast<double>(_corners.size());
    }

    void makePoint(std::uint32_t point, std::span<const std::uint32_t> corners)
    {
        _sides.clear();
        _groups.resize(corners.size());
        std::iota(_groups.begin(), _groups.end(), 0U);
        for (std::uint32_t fan = 0; fan < corners.size(); ++fan)
        {
            const std::uint32_t first = corners[fan] / 3 * 3, k = corners[fan] % 3;
            _sides.push_back({_points[_corners[first + (k + 1) % 3]], fan, true});
            _sides.push_back({_points[_corners[first + (k + 2) % 3]], fan, false});
        }
        std::sort(_sides.begin(), _sides.end(), [](const Side& a, const Side& b) { return a.other < b.other; });
        for (std::size_t begin = 0, end; begin < _sides.size(); begin = end)
        {
            for (end = begin + 1; end < _sides.size() && _sides[end].other == _sides[begin].other;)
                ++end;
            meet(point, corners, std::span(_sides).subspan(begin, end - begin));
        }
        addVertices(corners);
    }

    // The triangles at one edge from the point.
    void meet(std::uint32_t point, std::span<const std::uint32_t> corners, std::span<const Side> sides)
    {
        const auto triangleOf = [&](std::size_t i) { return corners[sides[i].fan] / 3; };
        bool isEdge = sides.size() == 1;
        if (sides.size() == 2)
        {
            float cosine = glm::dot(_faceNormals[triangleOf(0)], _faceNormals[triangleOf(1)]);
            if (sides[0].begins == sides[1].begins)
                cosine = -cosine; // one of both looks the other way
            else if (cosine >= _smoothCosine)
                join(sides[0].fan, sides[1].fan);
            isEdge = cosine < _edgeCosine || isMaterialEnd(triangleOf(0), triangleOf(1));
        }
        for (std::size_t i = 1; i < sides.size() && sides.size() > 2 && !isEdge; ++i)
            isEdge = std::abs(glm::dot(_faceNormals[triangleOf(0)], _faceNormals[triangleOf(i)])) < _edgeCosine ||
                     isMaterialEnd(triangleOf(0), triangleOf(i));
        if (!isEdge || point >= sides[0].other)
            return;
        const std::uint32_t triangle = triangleOf(0);
        const std::uint32_t k = corners[sides[0].fan] % 3;
        const std::uint32_t from = corners[sides[0].fan];
        const std::uint32_t to = triangle * 3 + (k + (sides[0].begins ? 1 : 2)) % 3;
        MeshSurface::Edge& edge = _surface.edges.emplace_back();
        for (std::size_t i = 0; i < 2; ++i)
            place(_corners[i == 0 ? from : to], edge.positions[i], edge.rests[i]);
        edge.parts = {_surface.parts[triangle], _surface.parts[triangleOf(sides.size() - 1)]};
    }

    bool isMaterialEnd(std::uint32_t triangle, std::uint32_t other) const
    {
        const std::uint32_t a = _surface.parts[triangle], b = _surface.parts[other];
        return a != b && _mesh.parts[a].material != _mesh.parts[b].material;
    }

    std::uint32_t groupOf(std::uint32_t fan)
    {
        while (_groups[fan] != fan)
            fan = _groups[fan] = _groups[_groups[fan]];
        return fan;
    }

    void join(std::uint32_t a, std::uint32_t b)
    {
        a = groupOf(a);
        b = groupOf(b);
        _groups[std::max(a, b)] = std::min(a, b);
    }

    void addVertices(std::span<const std::uint32_t> corners)
    {
        const bool areApart = !_mesh.normals.empty() || !_mesh.textureCoordinates.empty();
        _normals.assign(corners.size(), glm::dvec3(0));
        _keys.clear();
        for (std::uint32_t fan = 0; fan < corners.size(); ++fan)
        {
            const std::uint32_t corner = corners[fan], group = groupOf(fan), index = _corners[corner];
            const bool isGiven = !_mesh.normals.empty() && _mesh.normals[index] != glm::vec3(0);
            if (!isGiven)
                _normals[group] += angleAt(corner) * glm::dvec3(_faceNormals[corner / 3]);
            _keys.push_back({isGiven ? cNoCorner : group, _surface.parts[corner / 3], areApart ? index : 0, fan});
        }
        std::sort(_keys.begin(), _keys.end());
        const Key* pLast = nullptr;
        for (const Key& key : _keys)
        {
            if (pLast == nullptr || !pLast->isSame(key))
                addVertex(key, corners[key.fan]);
            pLast = &key;
            _surface.indices[corners[key.fan]] = static_cast<std::uint32_t>(_surface.vertices.size() - 1);
        }
    }

    void addVertex(const Key& key, std::uint32_t corner)
    {
        const std::uint32_t index = _corners[corner];
        MeshSurface::Vertex& vertex = _surface.vertices.emplace_back();
        place(index, vertex.position, vertex.rest);
        glm::dvec3 normal = key.group == cNoCorner ? glm::dvec3(_mesh.normals[index]) : _normals[key.group];
        // The front is where corners turn against the clock, whatever side a given normal is on.
        if (key.group == cNoCorner && glm::dot(normal, glm::dvec3(_faceNormals[corner / 3])) < 0)
            normal = -normal;
        const double length = glm::length(normal);
        vertex.normal = length > 0 ? glm::vec3(normal / length) : glm::vec3(0);
        if (!_mesh.textureCoordinates.empty())
            vertex.textureCoordinate = _mesh.textureCoordinates[index];
        vertex.part = key.part;
    }

    // Between the two sides at a corner, in radians: the weight of its triangle's normal, by which the result doesn't
    // depend on how faces are divided into triangles (Thuermer and Wuethrich, 1998).
    double angleAt(std::uint32_t corner) const
    {
        const std::uint32_t first = corner / 3 * 3, k = corner % 3;
        const glm::dvec3& at = _mesh.positions[_corners[corner]];
        const glm::dvec3 a = _mesh.positions[_corners[first + (k + 1) % 3]] - at;
        const glm::dvec3 b = _mesh.positions[_corners[first + (k + 2) % 3]] - at;
        return std::atan2(glm::length(glm::cross(a, b)), glm::dot(a, b));
    }

    void place(std::uint32_t index, glm::vec3& position, glm::vec3& rest)
    {
        const glm::dvec3 distance = _mesh.positions[index] - _surface.origin;
        for (int k = 0; k < 3; ++k)
        {
            position[k] = nearestFloat(distance[k]);
            rest[k] = static_cast<float>(distance[k] - static_cast<double>(position[k]));
        }
        _surface.hasRests = _surface.hasRests || rest != glm::vec3(0);
    }

    const Mesh& _mesh;
    MeshSurface& _surface;
    float _smoothCosine = 0, _edgeCosine = 0;
    std::vector<std::uint32_t> _points;  // by position
    std::vector<std::uint32_t> _corners; // positions, three for each triangle that has an area
    std::vector<glm::vec3> _faceNormals;
    std::vector<std::uint32_t> _firstCorners; // of each point, among those sorted by points
    // Around one point.
    std::vector<Side> _sides;
    std::vector<std::uint32_t> _groups; // each leads to the first of those that are smooth together
    std::vector<glm::dvec3> _normals;   // by groups
    std::vector<Key> _keys;
};

} // namespace

MeshSurface MeshSurface::make(const Mesh& mesh)
{
    MeshSurface surface;
    SurfaceMaker(mesh, surface).make();
    return surface;
}

} // namespace gui::draw
