#pragma once

#include <algorithm>
#include <cstddef>
#include <limits>

namespace td
{

/// How many of the first len bytes are this one.
inline std::size_t count(const char* str, std::size_t len, char ch)
{
    return static_cast<std::size_t>(std::count(str, str + len, ch));
}

/// The next place of a byte, not looking behind the terminating zero.
/// @param start  where to begin  @param len  bytes at or behind it are not looked at
/// @return the offset, counted from start; -1 when there is none
inline std::ptrdiff_t findFromLeft(const char* str, char ch, std::size_t start,
                                   std::size_t len = std::numeric_limits<std::size_t>::max())
{
    for (std::size_t pos = start; pos < len && str[pos] != '\0'; ++pos)
    {
        if (str[pos] == ch)
            return static_cast<std::ptrdiff_t>(pos - start);
    }
    return -1;
}

} // namespace td
