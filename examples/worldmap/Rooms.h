#pragma once

#include "Countries.h"

#include <cstddef>
#include <vector>

namespace worldmap
{

/// A strip from west to east that lies in a country, in degrees.
struct Room
{
    td::Point<double> middle;
    double width = 0; ///< 0 when there is none
};

/// Where a country's name can be: in its largest piece of land.
struct Land
{
    std::size_t country;
    std::vector<const Ring*> rings; ///< the outline, and those of holes in it
    double area;                    ///< in square degrees as they are at the equator
    Room room;                      ///< in all of it
    bool isIsland = true;           ///< no other country borders on it

    const Box& box() const { return rings.front()->box; }
};

/// @param countries  must outlive the result  @return one for each country that has land, the largest first
std::vector<Land> landsOf(const Countries& countries);

/// The longest strip of land in a part of the plane, or a shorter one that is nearer to the part's middle. It is a few
/// hundredths of the part's height high at least.
/// @param part  in degrees
Room roomIn(const Land& land, const Box& part);

} // namespace worldmap
