#pragma once

#include "Projection.h"

#include <common/FlatMap.h>

#include <cstddef>
#include <string>
#include <vector>

namespace worldmap
{

constexpr std::size_t cNoOfColors = 6;

struct Country
{
    std::string name;     ///< UTF-8
    std::size_t color;    ///< below cNoOfColors; no neighbour has the same
    bool isAlone = false; ///< it has no neighbours
};

/// The countries of the world, without any picture of them. Points are in degrees.
struct Countries
{
    static constexpr std::size_t cNone = std::size_t(-1);

    /// @return false, after a line in the log, when the program's data cannot be read
    [[nodiscard]] bool load();

    std::vector<Country> all;
    examples::FlatMap fine;
    examples::FlatMap coarse; ///< without points that are nearer than a seventh of a degree
};

} // namespace worldmap
