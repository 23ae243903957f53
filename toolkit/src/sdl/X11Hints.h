#pragma once

#include <optional>

struct SDL_Window;

namespace gui
{

/// What SDL does not do for a window on X11.
class X11Hints
{
public:
    /// Lets the window manager find a place for it when it is shown next. Nothing on other window systems.
    static void letSystemPlace(SDL_Window* pWindow);

    /// @return whether the window manager has it cover the whole screen; nothing on other window systems
    static std::optional<bool> isFullScreen(SDL_Window* pWindow);
};

} // namespace gui
