#include "Keyboard.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace gui::gl
{

namespace
{

struct Row
{
    SDL_Scancode first;
    unsigned char keyCodes[10];
};

// Rows of keys whose scancodes follow one another.
constexpr std::array cKeyCodes{
    Row{SDL_SCANCODE_A, {30, 48, 46, 32, 18, 33, 34, 35, 23, 36}},
    Row{SDL_SCANCODE_K, {37, 38, 50, 49, 24, 25, 16, 19, 31, 20}},
    Row{SDL_SCANCODE_U, {22, 47, 17, 45, 21, 44}},
    Row{SDL_SCANCODE_1, {2, 3, 4, 5, 6, 7, 8, 9, 10, 11}},
    Row{SDL_SCANCODE_SPACE, {57, 12, 13, 26, 27, 43, 43, 39, 40, 41}},
    Row{SDL_SCANCODE_COMMA, {51, 52, 53}},
    Row{SDL_SCANCODE_KP_DIVIDE, {98, 55, 74, 78, 96, 79, 80, 81, 75, 76}},
    Row{SDL_SCANCODE_KP_6, {77, 71, 72, 73, 82, 83, 86}},
    Row{SDL_SCANCODE_KP_EQUALS, {117}},
    Row{SDL_SCANCODE_KP_COMMA, {121}},
    Row{SDL_SCANCODE_INTERNATIONAL1, {89, 93, 124}},
    Row{SDL_SCANCODE_RALT, {100}},
};

class NoKeyboard : public Keyboard
{
public:
    std::uint32_t getSymbol(const gui::SDLEvent&, bool) override { return 0; }
};

} // namespace

unsigned int toKernelKeyCode(SDL_Scancode scancode)
{
    for (const Row& row : cKeyCodes)
        if (scancode >= row.first && scancode < row.first + static_cast<int>(std::size(row.keyCodes)) &&
            row.keyCodes[scancode - row.first] != 0)
            return row.keyCodes[scancode - row.first];
    return 0;
}

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
