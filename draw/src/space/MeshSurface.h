#pragma once

#include <gui/draw/Mesh.h>

#include <glm/vec2.hpp>
#include <glm/vec3.hpp>

#include <array>
#include <cstdint>
#include <vector>

namespace gui::draw
{

/// What a mesh's triangles become to be drawn: vertices with one normal each, relative to an origin, and edges.
struct MeshSurface
{
    struct Vertex
    {
        glm::vec3 position; ///< the nearest floats to the distance from the origin
        glm::vec3 rest;     ///< what they lack of it
        glm::vec3 normal;   ///< of length 1; 0 where there is none
        glm::vec2 textureCoordinate;
        std::uint32_t part;
    };
    /// Where faces meet sharply, at a border, or where a material ends.
    struct Edge
    {
        std::array<glm::vec3, 2> positions;
        std::array<glm::vec3, 2> rests;
        std::array<std::uint32_t, 2> parts; ///< on either side; the same where there is one side
    };

    glm::dvec3 origin{0};
    std::vector<Vertex> vertices;
    std::vector<std::uint32_t> indices;
    std::vector<std::uint32_t> parts; ///< of each triangle
    std::vector<Edge> edges;
    bool hasRests = false; ///< whether some rest is not 0
    double meanEdge = 0;   ///< the mean length of a triangle's sides

    /// @param mesh  without fault. Triangles without an area are left out.
    static MeshSurface make(const Mesh& mesh);
};

} // namespace gui::draw
