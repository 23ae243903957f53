#pragma once

#include <gui/gl/port/NativeSurface.h>

namespace gui::gl
{

/// The factory of surfaces for the window system in use.
SurfaceFactory getSurfaceFactory();

} // namespace gui::gl
