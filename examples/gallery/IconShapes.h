#pragma once

#include <td/Color.h>

#include <array>
#include <span>

namespace gallery
{

/// SVG path data in one colour.
struct IconLayer
{
    const char* path = ""; ///< on 32 by 32 units; straight sides lie on even numbers, which are whole pixels at 16
    td::Color color;
};

/// A picture of a few layers, the lowest first.
struct Icon
{
    const char* name;
    std::array<IconLayer, 4> layers;
};

/// Twenty-four of them.
std::span<const Icon> icons();

} // namespace gallery
