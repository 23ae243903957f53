#pragma once

#include <td/Types.h>

namespace gui
{

/// What the user of a desktop has set for all programs: see Application::getColorScheme.
enum class ColorScheme : td::BYTE
{
    Unknown, ///< the system doesn't say, or has no preference
    Light,   ///< dark text on light ground
    Dark     ///< light text on dark ground
};

} // namespace gui
