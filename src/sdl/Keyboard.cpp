#include "Keyboard.h"

namespace gui::gl
{

namespace
{

class NoKeyboard : public Keyboard
{
public:
    std::uint32_t getSymbol(const gui::SDLEvent&, bool) override { return 0; }
};

} // namespace

Keyboard& Keyboard::of(SDL_Window* pWindow)
{
    // Never destroyed: it may outlive the connection to the display.
    static Keyboard* const pKeyboard = [pWindow]() -> Keyboard*
    {
        if (auto x11 = createX11Keyboard(pWindow))
            return x11.release();
        if (auto wayland = createWaylandKeyboard(pWindow))
            return wayland.release();
        return new NoKeyboard;
    }();
    return *pKeyboard;
}

} // namespace gui::gl
