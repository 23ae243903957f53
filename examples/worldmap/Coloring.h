#pragma once

#include <common/TopoJSON.h>

#include <cstddef>
#include <vector>

namespace worldmap
{

/// So many colours are enough for every map whose countries are in one piece each.
constexpr std::size_t cNoOfColors = 6;

/// Gives each area a colour that none of its neighbours has, and all colours about as often.
/// @return a number below cNoOfColors for each area; neighbours share one only when a map of countries in many pieces
///         cannot do with so few
std::vector<std::size_t> color(std::size_t nAreas, const std::vector<examples::TopoJSON::Border>& borders);

} // namespace worldmap
