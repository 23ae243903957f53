#pragma once

#include <cstddef>

namespace gui::draw
{

/// A number for each change of anything that plots show, larger than all before: what was drawn is out of date when one
/// of its parts has a larger number than it had as a whole, whatever parts have come and gone.
inline std::size_t nextVersion()
{
    static std::size_t s_version = 0;
    return ++s_version;
}

} // namespace gui::draw
