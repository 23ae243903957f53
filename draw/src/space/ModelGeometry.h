#pragma once

#include "MeshSurface.h"

#include <gui/draw/Box3.h>
#include <gui/draw/Mesh.h>

#include <glm/vec3.hpp>

#include <cstdint>
#include <span>
#include <vector>

namespace gui::draw
{

/// Triangles or edges that lie near each other, and in a row: what is drawn or left out together.
struct ModelCell
{
    static constexpr std::uint32_t cNoPart = ~0U;

    glm::vec3 center, halfSize; ///< of a box about them, from the model's origin
    std::uint32_t first;        ///< index, or edge
    std::uint32_t count;        ///< of indices, or edges
    std::uint32_t part;         ///< which triangles of a cell share; cNoPart for edges
};

/// A mesh made ready for the GPU: vertices and indices in the order of cells, and the same with ever fewer triangles
/// for when it is seen from afar.
struct ModelGeometry
{
    struct Level
    {
        double step = 0; ///< how far vertices are from the mesh, in model units; 0 for the mesh itself
        std::uint32_t nTriangles = 0;
        std::vector<ModelCell> cells;     ///< of triangles; their indices follow each other without a gap
        std::vector<ModelCell> edgeCells; ///< of edges, likewise
    };

    Box3 bounds;
    glm::dvec3 origin{0};
    bool hasRests = false;
    std::vector<MeshSurface::Vertex> vertices; ///< of all levels
    std::vector<std::uint32_t> indices;
    std::vector<MeshSurface::Edge> edges;
    std::vector<Level> levels; ///< the mesh itself first

    /// @param mesh   without fault
    /// @param ranks  by part: parts of one rank follow each other, and can be drawn together
    static ModelGeometry make(const Mesh& mesh, std::span<const std::uint32_t> ranks);
};

/// The same surface on a grid of a width: vertices of one of its cubes are one vertex for each part and each of the six
/// directions that normals have, at the mean of their places; triangles and edges that are left with fewer corners go.
/// (Vertex clustering, Rossignac and Borrel, 1993.) Surfaces that touch go on touching, whatever their parts are.
MeshSurface makeCoarser(const MeshSurface& surface, double step);

} // namespace gui::draw
