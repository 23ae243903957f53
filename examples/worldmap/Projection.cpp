#include "Projection.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace worldmap
{

namespace
{

constexpr double cDegree = std::numbers::pi / 180;

// What Mercator stretches beyond all bounds, and what of it the map shows: from the ice shelf to the northernmost
// island.
constexpr double cMaxLatitude = 86;
constexpr double cSouth = -78;
constexpr double cNorth = 84;

} // namespace

td::Point<double> project(Projection projection, const td::Point<double>& degrees)
{
    if (projection == Projection::Equirectangular)
        return degrees;
    const double latitude = std::clamp(degrees.y, -cMaxLatitude, cMaxLatitude) * cDegree;
    return {degrees.x, std::asinh(std::tan(latitude)) / cDegree};
}

td::Point<double> unproject(Projection projection, const td::Point<double>& point)
{
    if (projection == Projection::Equirectangular)
        return point;
    return {point.x, std::atan(std::sinh(point.y * cDegree)) / cDegree};
}

Box sheetOf(Projection projection)
{
    const bool isMercator = projection == Projection::Mercator;
    return {project(projection, {cMiddleLongitude - 180, isMercator ? cSouth : -90}),
            project(projection, {cMiddleLongitude + 180, isMercator ? cNorth : 90})};
}

} // namespace worldmap
