#pragma once

#include <gui/draw/TriangleIndex.h>

#include <glm/vec3.hpp>

#include <cstdint>
#include <vector>

namespace gallery
{

/// A sea snail's shell, about 2 high, its tip upwards, in the light of a sun that it shades itself from.
class Shell
{
public:
    /// A vertex of Color3DProgram.
    struct Vertex
    {
        glm::vec3 position;
        glm::vec3 color;
        float alpha;
    };

    Shell();

    const std::vector<Vertex>& getVertices() const { return _vertices; }
    const std::vector<std::uint32_t>& getIndices() const { return _indices; }
    const gui::draw::TriangleIndex& getIndex() const { return _index; }

    glm::dvec3 getCorner(std::uint32_t triangle, std::size_t corner) const
    {
        return _vertices[_indices[3 * triangle + corner]].position;
    }
    /// That have a corner in common with one of these, with them.
    std::vector<std::uint32_t> getAround(const std::vector<std::uint32_t>& triangles) const;

private:
    void addSurface();
    void light();

    std::vector<Vertex> _vertices;
    std::vector<std::uint32_t> _indices; // of triangles
    gui::draw::TriangleIndex _index;
};

} // namespace gallery
