// What SDL2 and SDL3 do alike, by the same names.

#include <gui/port/sdl/SDLPort.h>

#include "SDLHints.h"

#include <gui/port/sdl/SDL.h>

#include <cstring>

namespace gui::sdl
{

void giveHints()
{
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    // SDL's choices are those of a game; these are a desktop program's.
    SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
    SDL_SetHint(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0");
    SDL_SetHint(SDL_HINT_VIDEO_MINIMIZE_ON_FOCUS_LOSS, "0");
    SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
    SDL_SetHint(SDL_HINT_QUIT_ON_LAST_WINDOW_CLOSE, "0");
}

bool isOnWayland()
{
    const char* const driver = SDL_GetCurrentVideoDriver();
    return driver != nullptr && std::strcmp(driver, "wayland") == 0;
}

bool isFullScreen(SDL_Window* pWindow) { return (SDL_GetWindowFlags(pWindow) & SDL_WINDOW_FULLSCREEN) != 0; }

} // namespace gui::sdl
