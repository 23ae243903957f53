#pragma once

#include "Box3.h"
#include "Material.h"

#include <td/Export.h>

#include <glm/mat4x4.hpp>
#include <glm/vec2.hpp>
#include <glm/vec3.hpp>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace gui::draw
{

/// Triangles in space, as files and programs have them: what a Model shows. A value without GL.
///
///     draw::Mesh mesh;
///     mesh.positions = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
///     mesh.indices = {0, 2, 1, 0, 1, 3, 1, 2, 3, 2, 0, 3};
///     mesh.material.color = "#c04030";
///
/// Triangles whose corners turn against the clock are seen from their front. They share corners by index, or by
/// positions that are equal to the bit, which is the same: files with three corners for every triangle become smooth
/// too. Positions are double, and are drawn as exactly far from the origin as near it: see Eye.
struct GUIGL_API Mesh
{
    /// Some of the triangles, in their order, which have a look and a meaning together.
    struct Part
    {
        std::size_t nTriangles = 0; ///< those that follow the ones of the part before
        Material material{};
        std::uint64_t tag = 0; ///< what it stands for: a number of yours, which Model::getTag gives back
    };

    std::vector<glm::dvec3> positions;  ///< in model units, up to 10^30
    std::vector<std::uint32_t> indices; ///< into positions, three for each triangle
    /// None, or one for each position, of any length; where one is 0, and where there are none, they are computed.
    std::vector<glm::vec3> normals;
    /// None, or one for each position: see Material::texture.
    std::vector<glm::vec2> textureCoordinates;
    Material material; ///< of all triangles, where there are no parts
    /// None, or as many as there are triangles in all: the sum of their numbers.
    std::vector<Part> parts;

    /// In degrees, 0 to 180: where faces meet more sharply than this, their computed normals are their own, and they
    /// look flat there. 0 makes every face flat, 180 everything smooth. Faces meet along an edge that is the edge of
    /// two triangles which turn the same way; each other edge is sharp.
    double smoothAngle = 30;
    /// In degrees, 0 to 180: where faces meet more sharply than this, there is an edge to draw (see Model::setEdges).
    double edgeAngle = 30;

    /// Takes positions from floats, as most files have them. @param origin  is added to each, in double
    void setPositions(std::span<const glm::vec3> floats, const glm::dvec3& origin = glm::dvec3(0));

    /// Appends another mesh, with its parts (one, with its material and no tag, where it has none), turned and moved.
    /// What only one of both has of normals and texture coordinates is 0 for the other. A placement that mirrors turns
    /// the triangles, so that their fronts stay outside. Angles stay this mesh's. It may be itself.
    /// @param placement  from the other one's coordinates to these: an affine map
    void add(const Mesh& other, const glm::dmat4& placement = glm::dmat4(1));
    /// The same as one part.
    void add(const Mesh& other, const Material& material, std::uint64_t tag = 0,
             const glm::dmat4& placement = glm::dmat4(1));

    std::size_t getNumberOfTriangles() const { return indices.size() / 3; }

    /// Around the positions that triangles use. Positions that are not finite, and indices that name none, are left
    /// out.
    Box3 getBounds() const;

    /// What is wrong with it, in words ("index 7 of triangle 2 names no position: there are 4"); empty when nothing is.
    /// Models refuse what has a fault, which is the first of: a number of indices that is not three for each triangle;
    /// normals, texture coordinates or the parts' triangles of another number than positions or triangles; more than
    /// 700 million triangles or 16 million parts; indices that name no position; positions, normals or texture
    /// coordinates that are not finite or beyond 10^30; angles that are not from 0 to 180.
    std::string findFault() const;
};

} // namespace gui::draw
