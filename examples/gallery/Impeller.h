#pragma once

#include <td/Color.h>

#include <cstdint>
#include <vector>

namespace gallery
{

/// Triangles of one colour: positions and normals in turn, three floats each, and three indices for each triangle.
struct Part
{
    td::Color color;
    std::vector<float> vertices;
    std::vector<std::uint32_t> indices;
};

/// The wheel of a compressor: blades between a hub and where its housing would be, a nut and a shaft, with the axis
/// along y, from -1 to 1.28, and a radius of 1.
std::vector<Part> makeImpeller();

} // namespace gallery
