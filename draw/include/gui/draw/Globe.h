#pragma once

#include "Ray.h"

#include <td/Export.h>
#include <td/Point.h>

#include <glm/vec3.hpp>

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace gui::draw
{

class Path;

/// A ball with places on it: the earth, the moon, what is measured all around. A value without GL:
///
///     const draw::Globe earth{6371}; // in kilometres
///     _labels.add(earth.getPoint({8.54, 47.37}), "Zurich");
///     _lines.add(earth.getLine(border), {.width = 1.5});
///
/// A place is a longitude (x) and a latitude (y) in degrees, east and north: as maps have them, and files of borders.
/// Any longitude is one; latitudes beyond a pole count as the pole. The middle is the model's origin, the north pole
/// lies on its y axis, the place (0, 0) on its z axis, which is in front for a camera with Up::Y, and 90 degrees east
/// on its x axis.
struct GUIGL_API Globe
{
    using Place = td::Point<double>; ///< longitude and latitude, in degrees

    double radius = 1; ///< in model units, above 0

    /// In the model. @param height  above the ground, in model units
    glm::dvec3 getPoint(const Place& place, double height = 0) const;
    /// Below a point of the model, or above it: -180 to 180 degrees and -90 to 90. (0, 0) in the middle.
    Place getPlace(const glm::dvec3& point) const;
    /// Of a point of the model above the ground, in model units; below 0 inside.
    double getHeight(const glm::dvec3& point) const;

    /// A line along the ground, through points no more than a degree apart: so near each other that it does not run
    /// below it. From each place to the next it goes as on a map in degrees, along a parallel from one to another of
    /// the same latitude, the shorter way around.
    /// @param places  those that are not finite are left out
    std::vector<glm::dvec3> getLine(std::span<const Place> places, double height = 0) const;

    /// The point of the ground that a ray from outside meets first; empty when it goes by, and from inside.
    std::optional<glm::dvec3> meet(const Ray& ray) const;

    /// Where the name of an area, such as a country, stands.
    struct Room
    {
        Place place;   ///< in the middle of where it has most room
        double extent; ///< how large the area is about there, in model units: for Label3::extent
    };

    /// Where in an area a name has most room: in the largest of its parts, as Labels::findMain and findRoom have it.
    /// @param area  in degrees, filled by the even-odd rule; it goes on past 180 degrees where it crosses them
    /// @return empty for an area without any
    std::optional<Room> findRoom(const Path& area) const;

    /// What people read: "47.4° N 8.5° E". @param decimals  0 to 9
    static std::string getText(const Place& place, int decimals = 1);
};

} // namespace gui::draw
