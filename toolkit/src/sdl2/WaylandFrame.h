#pragma once

#include <SDL_video.h>

namespace gui::sdl
{

/// Destroys the frame that a hidden window on Wayland still has, where SDL forgets to. The window can't be shown any
/// more. Nothing on other window systems.
void destroyWaylandFrame(SDL_Window* pWindow);

} // namespace gui::sdl
