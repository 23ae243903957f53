#pragma once

#include "Types.h"

namespace td
{

/// A width and a height.
template <Number T>
struct Size
{
    T width{};
    T height{};

    constexpr Size() = default;
    constexpr Size(T w, T h)
        : width(w)
        , height(h)
    {
    }

    constexpr bool operator==(const Size&) const = default;
};

} // namespace td
