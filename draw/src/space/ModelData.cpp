#include "ModelData.h"

#include <array>
#include <bit>
#include <cmath>
#include <utility>

namespace gui::draw
{

namespace
{

// Four numbers of 16 bits as NormShort4 has them, in two floats.
std::array<float, 2> packedNormal(const glm::vec3& normal)
{
    std::array<std::int16_t, 4> shorts{};
    for (std::size_t i = 0; i < 3; ++i)
        shorts[i] = static_cast<std::int16_t>(std::lround(normal[static_cast<int>(i)] * 32767.0F));
    return std::bit_cast<std::array<float, 2>>(shorts);
}

} // namespace

ModelData ModelData::make(const Mesh& mesh, std::span<const std::uint32_t> ranks)
{
    ModelGeometry geometry = ModelGeometry::make(mesh, ranks);
    ModelData data;
    data.bounds = geometry.bounds;
    data.origin = geometry.origin;
    data.levels = std::move(geometry.levels);
    data.indices = std::move(geometry.indices);
    data.hasRests = geometry.hasRests;
    data.hasTextureCoordinates = !mesh.textureCoordinates.empty();
    std::vector<float>& vertices = data.vertices;
    vertices.reserve(geometry.vertices.size() * data.getFloatsPerVertex());
    for (const MeshSurface::Vertex& vertex : geometry.vertices)
    {
        const std::array<float, 2> normal = packedNormal(vertex.normal);
        vertices.insert(vertices.end(), {vertex.position.x, vertex.position.y, vertex.position.z, normal[0], normal[1],
                                         static_cast<float>(vertex.part)});
        if (data.hasTextureCoordinates)
            vertices.insert(vertices.end(), {vertex.textureCoordinate.x, vertex.textureCoordinate.y});
        if (data.hasRests)
            vertices.insert(vertices.end(), {vertex.rest.x, vertex.rest.y, vertex.rest.z});
    }
    for (const MeshSurface::Edge& edge : geometry.edges)
    {
        for (std::size_t i = 0; i < 2; ++i)
            data.edges.emplace_back(edge.positions[i], static_cast<float>(edge.parts[i]));
        for (std::size_t i = 0; i < 2 && data.hasRests; ++i)
            data.edges.emplace_back(edge.rests[i], 0);
    }
    return data;
}

} // namespace gui::draw
