#pragma once

// SDL's own header, of the version that the build has. What differs between them is in SDLPort.h.
// A library must not take main away from its programs.
#define SDL_MAIN_HANDLED
#if GUIGL_SDL == 3
#include <SDL3/SDL.h>
#else
#include <SDL.h>
#endif
