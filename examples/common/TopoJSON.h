#pragma once

#include <td/Point.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace examples
{

/// Countries and other areas read from TopoJSON, the format in which neighbours share the arcs of their common borders.
///
/// Reads objects of type GeometryCollection whose geometries are Polygon or MultiPolygon, quantised or not, in degrees
/// of longitude (-180 to 180) and latitude (-90 to 90). Other properties than "name" are skipped.
class TopoJSON
{
public:
    /// Longitude and latitude of a closed line: the last point is joined to the first, which is not repeated.
    using Ring = std::vector<td::Point<double>>;

    /// An outline, then the holes in it.
    using Polygon = std::vector<Ring>;

    /// Points of a line.
    using Line = std::vector<td::Point<double>>;

    /// A line around areas: an arc that they name. One that is closed ends with its first point.
    struct Border
    {
        std::vector<std::size_t> areas; ///< whose it is: places in getAreas, in ascending order
        Line line;
    };

    struct Area
    {
        std::string name; ///< UTF-8; empty when the file has none
        std::vector<Polygon> polygons;
    };

    /// Reads the areas of one object and their borders, replacing those read before.
    /// @param json    the whole file, UTF-8; read during the call only
    /// @param object  the object's name, "countries" for instance
    /// @param grain   in degrees: points of an arc that are nearer than that to the one before are left out, but for
    ///                its ends, and not where fewer than four points would be left. Areas still fit together
    /// @param pWhole  the same without a grain, in one go; null for none
    /// @return true when it was read. Otherwise one line in the log says why ("ERROR! TopoJSON::load cannot read
    ///         object: OBJECT (CAUSE)"), and areas and borders are what they were. Refused is everything the format
    ///         forbids: arcs that don't exist or don't meet, rings that don't close, positions off the globe; and,
    ///         since arcs may be named many times over, what would make more than 10 million points.
    [[nodiscard]] bool load(std::string_view json, const std::string& object, double grain = 0,
                            TopoJSON* pWhole = nullptr);

    /// The same of a file that is compiled into the program. @return false, after that line, when there is none
    [[nodiscard]] bool loadCompiled(const char* resource, const std::string& object, double grain = 0,
                                    TopoJSON* pWhole = nullptr);

    const std::vector<Area>& getAreas() const { return _areas; }
    /// Those that two areas or more share, each once, in the order of the file's arcs.
    const std::vector<Border>& getBorders() const { return _borders; }
    /// Those that only one area has, in the same order, but for what lies along the edge of a map of the world: the
    /// poles and 180 degrees east or west, where areas are cut and nothing ends.
    const std::vector<Border>& getCoasts() const { return _coasts; }

    std::size_t getNoOfRings() const;

    /// Gives each area a number below n that none of its neighbours has, and all numbers about as often. Six are enough
    /// for the countries of the world; neighbours share one where a map cannot do with so few.
    std::vector<std::size_t> color(std::size_t n) const;

private:
    std::vector<Area> _areas;
    std::vector<Border> _borders;
    std::vector<Border> _coasts;
};

} // namespace examples
