#pragma once

#include "GLView.h"

namespace gui::gl
{

/// The factory of surfaces for the window system in use.
GLView::SurfaceFactory getSurfaceFactory();

} // namespace gui::gl
