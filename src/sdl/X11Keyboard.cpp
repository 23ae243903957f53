#include "Keyboard.h"

#include <gui/gl/port/Keys.h>
#include <gui/port/sdl/SDLPort.h>

#include <X11/XKBlib.h>

namespace gui::gl
{

namespace
{

class X11Keyboard : public Keyboard
{
public:
    explicit X11Keyboard(::Display* pDisplay)
        : _pDisplay(pDisplay)
    {
    }

    std::uint32_t getSymbol(const gui::SDLEvent& keyEvent, bool isShifted) override
    {
        constexpr unsigned int cFirstKeyCode = 8;
        unsigned int keyCode = keyEvent.xKeyCode;
        // A release that SDL makes up when the window loses the focus.
        if (keyCode == 0)
            keyCode = toKernelKeyCode(keyEvent.scancode) + cFirstKeyCode;
        const auto group = static_cast<int>(XkbGroupForCoreState(keyEvent.xState));
        const KeySym shifted = isShifted ? symbolOf(keyCode, group, 1) : NoSymbol;
        return static_cast<std::uint32_t>(shifted != NoSymbol ? shifted : symbolOf(keyCode, group, 0));
    }

private:
    KeySym symbolOf(unsigned int keyCode, int group, int level) const
    {
        const KeySym symbol = XkbKeycodeToKeysym(_pDisplay, static_cast<KeyCode>(keyCode), group, level);
        // Keys that are the same in all layouts have one group only.
        return symbol != NoSymbol || group == 0
                   ? symbol
                   : XkbKeycodeToKeysym(_pDisplay, static_cast<KeyCode>(keyCode), 0, level);
    }

    ::Display* _pDisplay;
};

} // namespace

std::unique_ptr<Keyboard> createX11Keyboard(SDL_Window* pWindow)
{
    const std::optional<gui::sdl::X11Window> x11 = gui::sdl::getX11(pWindow);
    return x11 ? std::make_unique<X11Keyboard>(x11->pDisplay) : nullptr;
}

} // namespace gui::gl
