#pragma once

#include <td/Types.h>

namespace gui::draw
{

/// What a length is measured in.
enum class Unit : td::BYTE
{
    Points, ///< of the view: the length stays as it is on the screen, however far one zooms
    Model   ///< model units: the length grows with what is drawn
};

} // namespace gui::draw
