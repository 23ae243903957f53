#pragma once

#include <SDL_events.h>

namespace gui
{

/// An event of SDL with what SDL leaves out of it, all of it as it was when the event arrived: what native views get from
/// this run loop.
struct SDLEvent
{
    SDL_Event event;
    unsigned int modifiers;    ///< of SDL_Keymod
    unsigned int mouseButtons; ///< as SDL_GetMouseState answers
    int mouseX;                ///< in points of the window's content
    int mouseY;
    unsigned int xKeyCode; ///< of the X11 event that a key event came from; 0 when it came from none
    unsigned int xState;   ///< its state, which holds the layout's group
};

} // namespace gui
