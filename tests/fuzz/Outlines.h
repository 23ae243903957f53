#pragma once

#include "Fuzz.h"
#include "shapes/TriangReference.h"

namespace fuzz
{

/// Points of an input: its next byte says how the rest is read, as floats of any bits or as whole numbers on a grid, on
/// which points meet, stand still and lie on one line. At most max.
test::Outline takeOutline(Input& input, std::size_t max);

/// Whether what was appended is what the reference makes of the same points, bit for bit.
bool isSame(const gui::gl::Primitive& primitive, unsigned int count, const test::Tessellation& expected);
bool areSame(const td::Point<float>* vertices, std::size_t nVertices, const test::Outline& expected);
bool areSame(const unsigned int* indices, std::size_t nIndices, const std::vector<unsigned int>& expected);

} // namespace fuzz
