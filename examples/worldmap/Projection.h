#pragma once

#include <td/Point.h>
#include <td/Types.h>

namespace worldmap
{

/// Which way the globe is made flat. On both maps x is the longitude in degrees, and a degree at the equator is as high
/// as it is wide.
enum class Projection : td::BYTE
{
    Equirectangular, ///< y is the latitude
    Mercator         ///< shapes are right, sizes are not
};

/// A part of the plane, y upwards.
struct Box
{
    td::Point<double> min;
    td::Point<double> max;

    bool operator==(const Box&) const = default;

    double width() const { return max.x - min.x; }
    double height() const { return max.y - min.y; }
    td::Point<double> middle() const { return {(min.x + max.x) / 2, (min.y + max.y) / 2}; }
    bool contains(const td::Point<double>& point) const
    {
        return point.x >= min.x && point.x <= max.x && point.y >= min.y && point.y <= max.y;
    }
};

/// The longitude in the middle of the maps, which end in the Bering Strait, where next to nothing reaches across their
/// edge.
constexpr double cMiddleLongitude = 11;

/// @param degrees  longitude and latitude; latitudes near the poles, which Mercator cannot show, are pulled in
td::Point<double> project(Projection projection, const td::Point<double>& degrees);

/// The way back: longitude and latitude of a point on the map.
td::Point<double> unproject(Projection projection, const td::Point<double>& point);

/// The part of the plane that the map covers.
Box sheetOf(Projection projection);

} // namespace worldmap
