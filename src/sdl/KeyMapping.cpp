#include "KeyMapping.h"

#include <gui/Key.h>

#include <xkbcommon/xkbcommon.h>

#include <algorithm>
#include <array>
#include <utility>

namespace gui::gl
{

namespace
{

using Character = KeyMapping::Character;

constexpr unsigned short cUnknownKeyCode = 127;

struct Entry
{
    SDL_Scancode scancode;
    KeyMapping key;
    unsigned short keyCodeWithoutNumLock = 0; // 0: the same
};

constexpr Entry special(SDL_Scancode scancode, unsigned short keyCode, unsigned short character = 0)
{
    return {scancode, {keyCode, character != 0 ? Character::Fixed : Character::None, character}};
}

constexpr Entry keypad(SDL_Scancode scancode, unsigned short keyCode, char character,
                       unsigned short keyCodeWithoutNumLock = 0)
{
    return {
        scancode, {keyCode, Character::OfShiftedLayout, static_cast<unsigned short>(character)}, keyCodeWithoutNumLock};
}

enum Code : unsigned short
{
    Delete = 117,
    Home = 115,
    End = 119,
    PageUp = 116,
    PageDown = 121,
    Left = 123,
    Right = 124,
    Down = 125,
    Up = 126
};

constexpr std::array cSpecialKeys{
    special(SDL_SCANCODE_RETURN, 36, '\r'),
    special(SDL_SCANCODE_RETURN2, 36, '\r'),
    special(SDL_SCANCODE_TAB, 48, '\t'),
    special(SDL_SCANCODE_BACKSPACE, 51, '\b'),
    special(SDL_SCANCODE_ESCAPE, 53, '\x1b'),
    special(SDL_SCANCODE_DELETE, Delete),
    special(SDL_SCANCODE_HOME, Home),
    special(SDL_SCANCODE_END, End),
    special(SDL_SCANCODE_PAGEUP, PageUp),
    special(SDL_SCANCODE_PAGEDOWN, PageDown),
    special(SDL_SCANCODE_LEFT, Left),
    special(SDL_SCANCODE_RIGHT, Right),
    special(SDL_SCANCODE_UP, Up),
    special(SDL_SCANCODE_DOWN, Down),
    special(SDL_SCANCODE_F1, 122),
    special(SDL_SCANCODE_F2, 120),
    special(SDL_SCANCODE_F3, 99),
    special(SDL_SCANCODE_F4, 118),
    special(SDL_SCANCODE_F5, 96),
    special(SDL_SCANCODE_F6, 97),
    special(SDL_SCANCODE_F7, 98),
    special(SDL_SCANCODE_F8, 100),
    special(SDL_SCANCODE_F9, 101),
    special(SDL_SCANCODE_F10, 109),
    special(SDL_SCANCODE_F11, 103),
    special(SDL_SCANCODE_F12, 111),
    special(SDL_SCANCODE_VOLUMEUP, 72),
    special(SDL_SCANCODE_VOLUMEDOWN, 73),
    special(SDL_SCANCODE_MUTE, 74),
    special(SDL_SCANCODE_AUDIOMUTE, 74),
    special(SDL_SCANCODE_KP_ENTER, 76, '\r'),
    special(SDL_SCANCODE_KP_CLEAR, 71),
    keypad(SDL_SCANCODE_KP_PERIOD, 65, '.', Delete),
    keypad(SDL_SCANCODE_KP_MULTIPLY, 67, '*'),
    keypad(SDL_SCANCODE_KP_PLUS, 69, '+'),
    keypad(SDL_SCANCODE_KP_DIVIDE, 75, '/'),
    keypad(SDL_SCANCODE_KP_MINUS, 78, '-'),
    keypad(SDL_SCANCODE_KP_0, 82, '0', cUnknownKeyCode), // Insert
    keypad(SDL_SCANCODE_KP_1, 83, '1', End),
    keypad(SDL_SCANCODE_KP_2, 84, '2', Down),
    keypad(SDL_SCANCODE_KP_3, 85, '3', PageDown),
    keypad(SDL_SCANCODE_KP_4, 86, '4', Left),
    keypad(SDL_SCANCODE_KP_5, 87, '5', cUnknownKeyCode),
    keypad(SDL_SCANCODE_KP_6, 88, '6', Right),
    keypad(SDL_SCANCODE_KP_7, 89, '7', Home),
    keypad(SDL_SCANCODE_KP_8, 91, '8', Up),
    keypad(SDL_SCANCODE_KP_9, 92, '9', PageUp),
};

constexpr std::array cModifierKeys{
    SDL_SCANCODE_LCTRL, SDL_SCANCODE_LSHIFT,   SDL_SCANCODE_LALT,         SDL_SCANCODE_LGUI,
    SDL_SCANCODE_RCTRL, SDL_SCANCODE_RSHIFT,   SDL_SCANCODE_RALT,         SDL_SCANCODE_RGUI,
    SDL_SCANCODE_MODE,  SDL_SCANCODE_CAPSLOCK, SDL_SCANCODE_NUMLOCKCLEAR,
};

// The scancodes of keys that print, and the code of the first in each range.
struct Range
{
    SDL_Scancode first;
    SDL_Scancode last;
    unsigned short keyCode;
};

constexpr std::array cPrintingKeys{
    Range{SDL_SCANCODE_A, SDL_SCANCODE_0, 128},
    Range{SDL_SCANCODE_SPACE, SDL_SCANCODE_SLASH, 164},
    Range{SDL_SCANCODE_NONUSBACKSLASH, SDL_SCANCODE_NONUSBACKSLASH, 180},
    Range{SDL_SCANCODE_KP_EQUALS, SDL_SCANCODE_KP_EQUALS, 181},
    Range{SDL_SCANCODE_KP_COMMA, SDL_SCANCODE_INTERNATIONAL9, 182},
};

// X11's dead keys and their accents.
constexpr std::array<std::pair<std::uint32_t, unsigned short>, 15> cDeadKeys{{
    {XKB_KEY_dead_grave, 0x60},
    {XKB_KEY_dead_acute, 0xB4},
    {XKB_KEY_dead_circumflex, 0x5E},
    {XKB_KEY_dead_tilde, 0x7E},
    {XKB_KEY_dead_macron, 0xAF},
    {XKB_KEY_dead_breve, 0x2D8},
    {XKB_KEY_dead_abovedot, 0x2D9},
    {XKB_KEY_dead_diaeresis, 0xA8},
    {XKB_KEY_dead_abovering, 0xB0},
    {XKB_KEY_dead_doubleacute, 0x2DD},
    {XKB_KEY_dead_caron, 0x2C7},
    {XKB_KEY_dead_cedilla, 0xB8},
    {XKB_KEY_dead_ogonek, 0x2DB},
    {XKB_KEY_dead_iota, 0x37A},
    {XKB_KEY_dead_stroke, 0x2F},
}};

} // namespace

unsigned int toModifiers(unsigned int sdlModifiers, bool isRightAltAltGr)
{
    const unsigned int altGr = isRightAltAltGr ? KMOD_MODE | KMOD_RALT : KMOD_MODE;
    const std::pair<unsigned int, gui::KeyModifier> modifiers[] = {
        {KMOD_SHIFT, gui::KeyModifier::Shift}, {KMOD_CAPS, gui::KeyModifier::CapsLock},
        {KMOD_GUI, gui::KeyModifier::Ctrl},    {KMOD_ALT & ~altGr, gui::KeyModifier::Alt},
        {KMOD_CTRL, gui::KeyModifier::Cmd},    {altGr, gui::KeyModifier::Fn},
    };
    unsigned int mask = 0;
    for (const auto& [bits, modifier] : modifiers)
        if ((sdlModifiers & bits) != 0)
            mask |= static_cast<unsigned int>(modifier);
    return mask;
}

KeyMapping mapKey(SDL_Scancode scancode, bool isNumLock)
{
    if (std::find(cModifierKeys.begin(), cModifierKeys.end(), scancode) != cModifierKeys.end())
        return {0, Character::None, 0};
    for (const Entry& entry : cSpecialKeys)
        if (entry.scancode == scancode)
            return entry.keyCodeWithoutNumLock == 0 || isNumLock
                       ? entry.key
                       : KeyMapping{entry.keyCodeWithoutNumLock, Character::None, 0};
    for (const Range& range : cPrintingKeys)
        if (scancode >= range.first && scancode <= range.last)
            return {static_cast<unsigned short>(range.keyCode + (scancode - range.first)), Character::OfLayout, 0};
    return {cUnknownKeyCode, Character::None, 0};
}

unsigned short toCharacter(std::uint32_t symbol)
{
    for (const auto& [deadKey, accent] : cDeadKeys)
        if (symbol == deadKey)
            return accent;
    constexpr std::uint32_t cLastControl = 0x1F;
    constexpr std::uint32_t cDelete = 0x7F;
    constexpr std::uint32_t cFirstInTwoUnits = 0x10000;
    const std::uint32_t character = xkb_keysym_to_utf32(symbol);
    if (character <= cLastControl || character == cDelete)
        return 0;
    return static_cast<unsigned short>(character < cFirstInTwoUnits ? character
                                                                    : 0xD800 + ((character - cFirstInTwoUnits) >> 10));
}

} // namespace gui::gl
