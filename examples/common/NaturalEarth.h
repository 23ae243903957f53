#pragma once

#include "TopoJSON.h"

#include <td/Point.h>

#include <cstddef>
#include <vector>

namespace examples
{

/// A map of the world in the Natural Earth projection, by its polynomial form: B. Šavrič, B. Jenny, T. Patterson,
/// D. Petrovič, L. Hurni, "A Polynomial Equation for the Natural Earth Projection", Cartography and Geographic
/// Information Science 38 (2011), 363-372. On the map x grows to the right and y upwards from the middle, for a globe
/// of radius 1.
class NaturalEarth
{
public:
    static constexpr double cHalfWidth = 2.735385;
    static constexpr double cHalfHeight = 1.422391;

    /// A ring on the map.
    struct Outline
    {
        /// The line's points, then those that close it along the map's edge.
        std::vector<td::Point<float>> points;
        std::size_t nLinePoints = 0;
        bool isLoop = true; ///< false for a line that leads around the earth, from one edge of the map to the other
    };

    /// @param middle  the longitude in the map's middle
    explicit NaturalEarth(double middle);

    /// @param longitude  in degrees from the map's middle; beyond -180 and 180 the map goes on past its edge
    /// @param latitude   in degrees
    static td::Point<float> project(double longitude, double latitude);

    /// See FlatRing: where the ring crosses the map's edge it sticks out.
    Outline project(const TopoJSON::Ring& ring) const;

    /// The map's edge, a closed curve that bulges outwards everywhere; the first point is not repeated.
    static std::vector<td::Point<float>> getEdge();

    /// Meridians, then parallels. @param degrees  from each to the next; divides 90
    static std::vector<std::vector<td::Point<float>>> getNet(int degrees);

private:
    double _middle;
};

} // namespace examples
