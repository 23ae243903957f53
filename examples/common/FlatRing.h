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

} // namespace examples
