#pragma once

#include <cstdint>

namespace gui::draw
{

/// The place of a point along the z-curve, which visits what is near together: the bits of both numbers in turn.
inline std::uint64_t zOrderOf(std::uint32_t x, std::uint32_t y)
{
    const auto spread = [](std::uint64_t n)
    {
        n = (n | n << 16) & 0x0000ffff0000ffffU;
        n = (n | n << 8) & 0x00ff00ff00ff00ffU;
        n = (n | n << 4) & 0x0f0f0f0f0f0f0f0fU;
        n = (n | n << 2) & 0x3333333333333333U;
        return (n | n << 1) & 0x5555555555555555U;
    };
    return spread(x) | spread(y) << 1;
}

} // namespace gui::draw
