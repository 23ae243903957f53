#pragma once

#include "TopoJSON.h"

#include <cstddef>

namespace examples
{

/// A ring laid out on a map of the world that has its edges half around the globe from a meridian, in degrees.
struct FlatRing
{
    /// Longitudes are counted from the meridian, -180 to 180, and go on past these edges where the ring crosses one.
    /// The line's points, then those that close it along the pole.
    TopoJSON::Ring points;
    std::size_t nLinePoints = 0;
    bool isLoop = true; ///< false for a line that leads around the earth, from one edge of the map to the other

    /// Places a ring where most of it is on the map, without a line that leads back across it. What follows a pole,
    /// which is a line on maps but nothing on the earth, is left out; that may be all of it.
    /// @param middle  the meridian's longitude
    FlatRing(const TopoJSON::Ring& ring, double middle);
};

/// Lays a line, or a ring, out on such a map and adds it to others: in longitudes that go on past the edges where it
/// crosses one, and then once more on the other side, so that all of the map has it and the rest sticks out. A ring
/// around a pole goes on along the map's upper or lower edge. Nothing is added for what only follows a pole.
/// @param middle  the longitude in the map's middle
void layOnMap(const TopoJSON::Line& line, bool isRing, double middle, std::vector<TopoJSON::Line>& lines);

/// The rings of an area, its holes too, laid out on such a map.
std::vector<TopoJSON::Line> layOnMap(const TopoJSON::Area& area, double middle);

} // namespace examples
