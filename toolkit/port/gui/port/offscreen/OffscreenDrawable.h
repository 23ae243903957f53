#pragma once

#include <td/Size.h>

namespace gui
{

/// What a view without a display draws into, as its window sees it: the native view's "native window". The surface owns
/// it and follows its values when it is told of a change.
struct OffscreenDrawable
{
    td::Size<double> size; // points
    float scale = 1;       // device pixels per point
};

} // namespace gui
