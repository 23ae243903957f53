#pragma once

#include <gui/draw/Mesh.h>

namespace gallery
{

/// The wheel of a compressor: blades between a hub and where its housing would be, a nut and a shaft, with the axis
/// along y, from -0.5 to 1.28, and a radius of 1.
gui::draw::Mesh makeImpeller();

} // namespace gallery
