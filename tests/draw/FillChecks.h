#pragma once

#include <gui/draw/FillTessellator.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace test
{

using Rings = std::vector<std::vector<td::Point<double>>>;

/// What is wrong with a filled area by itself, empty if nothing is. Exactly: triangles have an area and turn the right
/// way, each of their edges belongs to two of them or to one and the boundary, so that they cover what the boundary
/// goes around, as often as it does.
std::string checkMesh(const gui::draw::FillTessellator& fill);

/// What is wrong with where the area is, at the points of a lattice over a square from 0 to size and a little more. At
/// each one the boundary goes around 1 time where the rings have it inside of them and 0 times elsewhere, in exact
/// arithmetic. Points closer than `away` to an edge of the rings are passed over: crossings move.
std::string checkArea(const gui::draw::FillTessellator& fill, const Rings& rings, gui::draw::FillRule rule, double size,
                      double away);

/// Rings of multiples of a scale from 0 to size times the scale: wandering, with repeated points and edges, rectangles,
/// copies of one another.
Rings makeRings(std::mt19937& random, int size, double scale = 1);

} // namespace test
