#pragma once

#include <gui/port/WindowSystem.h>

#include <memory>

namespace gui
{

/// The window system of the X11 server that DISPLAY names, or of the Wayland compositor that WAYLAND_DISPLAY names,
/// both through SDL. @return null, after a log line, when there is no such display, or none that can be worked with
std::unique_ptr<WindowSystem> createX11WindowSystem();
std::unique_ptr<WindowSystem> createWaylandWindowSystem();

} // namespace gui
