#pragma once

#include <td/Types.h>

namespace gui::draw
{

/// What becomes of a label or a dimension in space while something is before it.
enum class Behind : td::BYTE
{
    Hide, ///< it goes
    Fade, ///< it shines through faintly
    Show  ///< it stays as it is
};

} // namespace gui::draw
