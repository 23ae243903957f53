#pragma once

#include <common/TopoJSON.h>
#include <td/Point.h>

#include <cstddef>
#include <string>
#include <vector>

namespace gallery
{

/// Where people live.
struct Town
{
    std::string name;
    td::Point<double> place; ///< longitude and latitude in degrees
    double people;
};

/// Towns that nobody has built, spread over the countries, each of which has some large ones and many small ones; the
/// same ones each time.
std::vector<Town> makeTowns(const std::vector<examples::TopoJSON::Area>& countries, std::size_t n);

} // namespace gallery
