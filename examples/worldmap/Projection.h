#pragma once

#include <td/Point.h>
#include <td/RectNormalized.h>
#include <td/Types.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace worldmap
{

using Point = td::Point<double>;
using Rect = td::RectNormalized<double>; ///< of the plane: its top is the south

/// Which way the globe is made flat. On both maps x is the longitude in degrees, and a degree at the equator is as high
/// as it is wide.
enum class Projection : td::BYTE
{
    Equirectangular, ///< y is the latitude
    Mercator         ///< shapes are right, sizes are not
};

constexpr double cDegree = std::numbers::pi / 180;

/// The longitude in the middle of the maps, which end in the Bering Strait, where next to nothing reaches across their
/// edge.
constexpr double cMiddleLongitude = 11;

/// @param degrees  longitude and latitude; latitudes near the poles, which Mercator cannot show, are pulled in
inline Point project(Projection projection, const Point& degrees)
{
    const double latitude = std::clamp(degrees.y, -86.0, 86.0) * cDegree;
    return {degrees.x, projection == Projection::Mercator ? std::asinh(std::tan(latitude)) / cDegree : degrees.y};
}

/// The way back: longitude and latitude of a point on the map.
inline Point unproject(Projection projection, const Point& point)
{
    return {point.x, projection == Projection::Mercator ? std::atan(std::sinh(point.y * cDegree)) / cDegree : point.y};
}

/// The part of the plane that the map covers. Mercator's ends at the ice shelf and the northernmost island.
inline Rect sheetOf(Projection projection)
{
    const bool isMercator = projection == Projection::Mercator;
    return {project(projection, {cMiddleLongitude - 180, isMercator ? -78.0 : -90.0}),
            project(projection, {cMiddleLongitude + 180, isMercator ? 84.0 : 90.0})};
}

} // namespace worldmap
