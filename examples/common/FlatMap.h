#pragma once

#include "TopoJSON.h"

#include <gui/draw/Path.h>

#include <functional>

namespace examples
{

/// All areas and their borders, laid out on a map of the world that has its edges half around the globe from a
/// meridian: see layOnMap.
struct FlatMap
{
    std::vector<std::vector<TopoJSON::Line>> areas; ///< closed lines around each, and its holes
    std::vector<TopoJSON::Line> coasts;
    std::vector<TopoJSON::Line> borders;

    FlatMap() = default;
    /// @param middle  the longitude in the map's middle
    FlatMap(const TopoJSON& map, double middle);
};

/// Where a place, in degrees, is in the plane.
using MapProjection = std::function<td::Point<double>(const td::Point<double>& degrees)>;

/// A line on the map.
gui::draw::Path pathOf(const TopoJSON::Line& degrees, const MapProjection& project);
/// What closed lines enclose, by the even-odd rule.
gui::draw::Path areaOf(const std::vector<TopoJSON::Line>& rings, const MapProjection& project);

} // namespace examples
