#pragma once

#include "ModelGeometry.h"

#include <gui/draw/Box3.h>
#include <gui/draw/Material.h>
#include <gui/draw/Mesh.h>
#include <gui/draw/Model.h>

#include <glm/vec3.hpp>
#include <glm/vec4.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace gui::draw
{

/// How a part of a model looks now.
struct ModelPart
{
    Material material;
    std::uint64_t tag = 0;
    bool isVisible = true;
    bool isSelected = false;
    Model::Wires wires = Model::Wires::None;
    std::uint32_t texture = 0;           ///< in the image store; 0 for none
    std::optional<Model::Hatch> hatch{}; ///< its own
};

/// What a model is drawn from: what GL gets, and what of it is drawn or left out together.
struct ModelData
{
    Box3 bounds;
    glm::dvec3 origin{0};
    std::vector<ModelGeometry::Level> levels;
    bool hasRests = false, hasTextureCoordinates = false;
    /// Place, normal and part of each vertex, its texture coordinate where there are some, and what its place lacks.
    std::vector<float> vertices;
    std::vector<std::uint32_t> indices;
    std::vector<glm::vec4> edges; ///< the two ends, with the parts, and what they lack

    std::size_t getFloatsPerVertex() const { return 6U + (hasTextureCoordinates ? 2U : 0U) + (hasRests ? 3U : 0U); }
    std::size_t getNumberOfTriangles() const { return levels.empty() ? 0 : levels.front().nTriangles; }

    /// Parameters as ModelGeometry::make has them. For any thread.
    static ModelData make(const Mesh& mesh, std::span<const std::uint32_t> ranks);
};

} // namespace gui::draw
