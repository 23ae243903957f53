#pragma once

#include <gui/draw/Mesh.h>

namespace gallery
{

constexpr double cGlobeRadius = 6.4e6; // in metres

/// The earth in metres about its middle, from steps of a foot to the far side: a plain of salt at the upper end of the
/// y axis, x to the east, mountains about it, and the rest of it from space.
/// @return no triangles when its picture can't be loaded, which the log says
gui::draw::Mesh makeGlobe();

} // namespace gallery
