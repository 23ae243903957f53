#pragma once

#include "Projection.h"

#include <common/TopoJSON.h>

#include <cstddef>
#include <string>
#include <vector>

namespace worldmap
{

constexpr std::size_t cNoOfColors = 6;

/// Points in degrees. A line that crosses the map's edge sticks out, and is there once more on the other side.
using Line = examples::TopoJSON::Line;

struct Country
{
    std::string name;     ///< UTF-8
    std::size_t color;    ///< below cNoOfColors; no neighbour has the same
    bool isAlone = false; ///< it has no neighbours
};

/// The lines of the map, each once.
struct Outlines
{
    std::vector<std::vector<Line>> countries; ///< closed lines around each of them, and its holes
    std::vector<Line> coasts;
    std::vector<Line> borders;
};

/// The countries of the world, without any picture of them.
struct Countries
{
    static constexpr std::size_t cNone = std::size_t(-1);

    /// @return false, after a line in the log, when the program's data cannot be read
    [[nodiscard]] bool load();

    std::vector<Country> all;
    Outlines fine;
    Outlines coarse; ///< without points that are nearer than a seventh of a degree
};

} // namespace worldmap
