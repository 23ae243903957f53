#pragma once

#include "Drawing.h"

#include <glm/vec3.hpp>
#include <glm/vec4.hpp>

#include <array>
#include <vector>

namespace gallery
{

/// A vertex of Color3DProgram.
struct SolidVertex
{
    glm::vec3 position;
    glm::vec4 color;
};

/// The figures of several scenes: vertices in units, from -1 to 1.
namespace figures
{

using Vertices = std::vector<ColorVertex>;
using SolidVertices = std::vector<SolidVertex>;

/// Points of a grid of 9 x 9 at this distance from its middle, 0 to 6.
Vertices makeGridRing(std::size_t ring);

/// Straight lines between the axes, whose crossings form curves. Two vertices each.
Vertices makeEnvelope();

/// One arm of a spiral. @param turn  where it begins
Vertices makeSpiral(float turn);

/// A hexagon in a whirl of them: each is turned a little, and so small that it touches the one before it.
/// @param place  0 to 1
Vertices makeWhirlHexagon(int index, float place);

/// Triangles in triangles, those in the middle left out. Three vertices each.
Vertices makeTriangles(int depth);

/// A disc of colours: its middle, then its edge.
Vertices makeColorWheel();

/// A band that winds around a circle: the vertices of its two edges in turn, which change sides.
Vertices makeRibbon();

/// The control points of a surface with a hill and a valley, row by row.
std::array<glm::vec3, 16> makePatch();

/// A disc of one colour, a fan.
Vertices makeDisc(const glm::vec4& color);

/// A star with five points, a fan.
Vertices makeStar(const glm::vec4& color);

/// Three rectangles that pass through each other, their corners those of an icosahedron. Six vertices each.
SolidVertices makeRectangles();

/// A ball of triangles, lit from above; their fronts look outwards.
SolidVertices makeBall();

} // namespace figures

} // namespace gallery
