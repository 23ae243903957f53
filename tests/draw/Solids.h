#pragma once

#include <gui/draw/Mesh.h>

namespace test
{

/// Eight positions, twelve triangles that turn against the clock seen from outside, two for each face in a row.
gui::draw::Mesh makeBox(const glm::dvec3& min, const glm::dvec3& max);

/// About the z axis, around the origin, with its caps as fans about their middles.
gui::draw::Mesh makeCylinder(double radius, double height, std::uint32_t nSectors);

/// Around the origin, with its poles on the z axis: n sectors, half as many stacks.
gui::draw::Mesh makeSphere(double radius, std::uint32_t n);

} // namespace test
