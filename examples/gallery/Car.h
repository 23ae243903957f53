#pragma once

#include <gui/draw/Mesh.h>

namespace gallery
{

/// A car of four metres: its wheels on y = 0, its front towards x, its left side towards -z.
gui::draw::Mesh makeCar();

} // namespace gallery
