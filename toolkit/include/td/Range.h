#pragma once

#include "Types.h"

namespace td
{

/// A run of elements: where it starts and how many there are. In text a count of 0 means up to the end.
template <Number T>
struct Range
{
    T start{};
    T count{};

    constexpr Range() = default;
    constexpr Range(T first, T nElements)
        : start(first)
        , count(nElements)
    {
    }

    constexpr bool operator==(const Range&) const = default;
};

} // namespace td
