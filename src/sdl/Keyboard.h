#pragma once

#include <gui/port/sdl/SDLEvent.h>

#include <td/Export.h>

#include <cstdint>
#include <memory>

struct wl_display;

namespace gui::gl
{

/// The layout of the user's keyboard: what the keys stand for.
class Keyboard
{
public:
    /// The keyboard of the display that the window is on; one for the process.
    static Keyboard& of(SDL_Window* pWindow);

    virtual ~Keyboard() = default;

    /// @param isShifted  whether Shift counts as held; every other modifier counts as not held
    /// @return the key's XKB symbol in the layout in use; 0 for none
    virtual std::uint32_t getSymbol(const gui::SDLEvent& keyEvent, bool isShifted) = 0;
};

/// @return null when the window is not one of X11, or of Wayland
std::unique_ptr<Keyboard> createX11Keyboard(SDL_Window* pWindow);
std::unique_ptr<Keyboard> createWaylandKeyboard(SDL_Window* pWindow);
/// The keyboard of the first seat that has one, on a connection that outlives it.
GUIGL_API std::unique_ptr<Keyboard> createWaylandKeyboard(wl_display* pDisplay);

} // namespace gui::gl
