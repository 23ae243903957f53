#pragma once

#include <gui/gl/port/NativeSurface.h>

namespace gui::gl
{

/// The factory of surfaces for the window system in use.
SurfaceFactory getSurfaceFactory();

/// The window system's own cursor of a shape; null where there is no pointer.
void* getNativeCursor(gui::Cursor::Type type);

} // namespace gui::gl
