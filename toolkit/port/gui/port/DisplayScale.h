#pragma once

#include <td/Export.h>

namespace gui
{

/// For the window systems: what Display::getDefaultBackingScaleFactor() returns from now on.
/// Misuse ("scale > 0") changes nothing.
GUIGL_API void setDefaultBackingScaleFactor(float scale);

} // namespace gui
