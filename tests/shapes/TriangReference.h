#pragma once

#include <gui/gl/Primitive.h>
#include <td/Point.h>

#include <vector>

namespace test
{

using Outline = std::vector<td::Point<float>>;

/// What a shape adds to lists of vertices and indices; its own first vertex is number 0.
struct Tessellation
{
    gui::gl::Primitive primitive{};
    unsigned int count = 0; ///< indices of triangles
    Outline vertices;
    std::vector<unsigned int> indices;
};

/// The plain forms of what Triang2D does, step by step, without a thought for speed: the ear search takes up to the
/// cube of the number of corners, bevels are inserted into the vertices.
namespace reference
{

Tessellation triangulate(const Outline& points);

/// By the area, in the order and the rounding in which ear clipping adds it up.
bool isCounterClockwise(const Outline& points);

/// Three numbers of points for each ear. @return false when there is no ear and more than two corners are left
bool clipEars(const Outline& points, std::vector<unsigned int>& triangles);

Tessellation triangulateLine(const Outline& points, float width, bool closed);

/// The indices of a recycled line over stored[first], stored[first + 1], ...; empty when a point is missing.
std::vector<unsigned int> recycle(const Outline& stored, const Outline& points, unsigned int first);

} // namespace reference

} // namespace test
