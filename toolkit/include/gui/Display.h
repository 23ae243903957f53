#pragma once

#include <td/Export.h>

namespace gui
{

/// What the toolkit knows about the main display.
class Display
{
public:
    /// Device pixels per point of the main display; 1 until a window system says otherwise.
    GUIGL_API static float getDefaultBackingScaleFactor();
};

} // namespace gui
