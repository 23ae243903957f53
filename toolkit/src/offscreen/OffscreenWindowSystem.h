#pragma once

#include <gui/port/WindowSystem.h>
#include <td/Export.h>

#include <memory>

namespace gui
{

/// No display at all: windows that nobody sees. They are drawn, clocked at 60 frames per second and closed like any
/// other. The environment variable GUIGL_SCALE sets their device pixels per point, 1 to 8.
std::unique_ptr<WindowSystem> createOffscreenWindowSystem();
/// One of its windows.
std::unique_ptr<WindowPeer> createOffscreenWindow(const td::Size<double>& size);

/// Another number of device pixels per point, above 0, for the windows that are there and those to come: as when
/// somebody changes the screen's settings.
GUIGL_API void setOffscreenScale(float scale);

} // namespace gui
