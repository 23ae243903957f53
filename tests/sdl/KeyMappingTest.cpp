#include "sdl/Modifiers.h"

#include <gui/Key.h>
#include <gui/gl/KeyCodes.h>
#include <gui/gl/port/KeySymbols.h>
#include <gui/gl/port/Keys.h>
#include <gui/port/sdl/SDL.h>

#include <gtest/gtest.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include <set>

namespace test
{

namespace
{

using gui::gl::KeyMapping;
using gui::gl::mapKey;
using gui::gl::toCharacter;
using gui::gl::toModifiers;

TEST(KeyMappingTest, ModifiersOfBothHands)
{
    const struct
    {
        unsigned int sdl;
        bool isAltGr;
        unsigned int modifiers;
    } cases[] = {
        {KMOD_NONE, false, 0},
        {KMOD_LSHIFT, false, 1},
        {KMOD_RSHIFT, false, 1},
        {KMOD_CAPS, false, 2},
        {KMOD_LGUI, false, 4},
        {KMOD_RGUI, false, 4},
        {KMOD_LALT, false, 8},
        {KMOD_RALT, false, 8},
        {KMOD_LCTRL, false, 16},
        {KMOD_RCTRL, false, 16},
        {KMOD_MODE, false, 32},
        {KMOD_RALT, true, 32},
        {KMOD_LALT | KMOD_RALT, true, 40},
        {KMOD_NUM | KMOD_SCROLL, false, 0},
        {KMOD_LCTRL | KMOD_LSHIFT | KMOD_NUM, false, 17},
    };
    for (const auto& c : cases)
        EXPECT_EQ(toModifiers(c.sdl, c.isAltGr), c.modifiers) << "SDL " << c.sdl << ", AltGr " << c.isAltGr;
}

// A key's way through both tables, to its code and from the code to what is printed on it.
TEST(KeyMappingTest, KeysAreWhatIsPrintedOnThem)
{
    using enum gui::Key::Virtual;
    const auto keyOf = [](int scancode)
    { return static_cast<int>(zav::getVirtualKeyCode(mapKey(static_cast<SDL_Scancode>(scancode), true).keyCode, 0)); };
    for (int i = 0; i < 12; ++i)
        EXPECT_EQ(keyOf(SDL_SCANCODE_F1 + i), int(F1) + i) << i;
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(keyOf(i == 0 ? SDL_SCANCODE_KP_0 : SDL_SCANCODE_KP_1 + i - 1), int(Keypad0) + i) << i;
    const std::pair<SDL_Scancode, gui::Key::Virtual> keys[] = {
        {SDL_SCANCODE_RETURN, Return},
        {SDL_SCANCODE_ESCAPE, Escape},
        {SDL_SCANCODE_HOME, Home},
        {SDL_SCANCODE_END, End},
        {SDL_SCANCODE_PAGEUP, PageUp},
        {SDL_SCANCODE_PAGEDOWN, PageDown},
        {SDL_SCANCODE_LEFT, Left},
        {SDL_SCANCODE_RIGHT, Right},
        {SDL_SCANCODE_UP, Up},
        {SDL_SCANCODE_DOWN, Down},
        {SDL_SCANCODE_KP_PERIOD, KeypadDecimal},
        {SDL_SCANCODE_KP_PLUS, KeypadPlus},
        {SDL_SCANCODE_KP_MINUS, KeypadMinus},
        {SDL_SCANCODE_KP_MULTIPLY, KeypadMultiply},
        {SDL_SCANCODE_KP_DIVIDE, KeypadDivide},
        {SDL_SCANCODE_KP_ENTER, KeypadEnter},
    };
    for (const auto& [scancode, key] : keys)
        EXPECT_EQ(keyOf(scancode), int(key)) << scancode;
}

// Without Num Lock the keypad is a second set of cursor keys.
TEST(KeyMappingTest, NumLockChoosesTheKeypadsMeaning)
{
    const std::pair<SDL_Scancode, SDL_Scancode> pairs[] = {
        {SDL_SCANCODE_KP_PERIOD, SDL_SCANCODE_DELETE}, {SDL_SCANCODE_KP_0, SDL_SCANCODE_INSERT},
        {SDL_SCANCODE_KP_1, SDL_SCANCODE_END},         {SDL_SCANCODE_KP_2, SDL_SCANCODE_DOWN},
        {SDL_SCANCODE_KP_3, SDL_SCANCODE_PAGEDOWN},    {SDL_SCANCODE_KP_4, SDL_SCANCODE_LEFT},
        {SDL_SCANCODE_KP_6, SDL_SCANCODE_RIGHT},       {SDL_SCANCODE_KP_7, SDL_SCANCODE_HOME},
        {SDL_SCANCODE_KP_8, SDL_SCANCODE_UP},          {SDL_SCANCODE_KP_9, SDL_SCANCODE_PAGEUP},
    };
    for (const auto& [keypad, cursor] : pairs)
    {
        EXPECT_EQ(mapKey(keypad, false).keyCode, mapKey(cursor, true).keyCode) << keypad;
        EXPECT_EQ(mapKey(keypad, false).character, 0) << keypad;
        EXPECT_NE(mapKey(keypad, true).keyCode, mapKey(cursor, true).keyCode) << keypad;
        EXPECT_NE(mapKey(keypad, true).character, 0) << keypad;
    }
    EXPECT_EQ(mapKey(SDL_SCANCODE_KP_PLUS, false).keyCode, mapKey(SDL_SCANCODE_KP_PLUS, true).keyCode);
}

// Printing keys lie where no table looks, each at a place of its own; keys that nobody knows have one code.
TEST(KeyMappingTest, EveryOtherKey)
{
    std::set<unsigned short> keyCodes;
    int nPrinting = 0;
    for (int i = 0; i < SDL_NUM_SCANCODES; ++i)
    {
        const KeyMapping key = mapKey(static_cast<SDL_Scancode>(i), true);
        if (key.kind == KeyMapping::Character::OfLayout)
        {
            ++nPrinting;
            EXPECT_TRUE(key.keyCode >= 128 && key.keyCode <= 255) << i;
            EXPECT_TRUE(keyCodes.insert(key.keyCode).second) << i;
        }
        else
            EXPECT_LE(key.keyCode, 127) << i;
    }
    EXPECT_EQ(nPrinting, 26 + 10 + 13 + 3 + 10);
    for (const SDL_Scancode scancode :
         {SDL_SCANCODE_INSERT, SDL_SCANCODE_PRINTSCREEN, SDL_SCANCODE_PAUSE, SDL_SCANCODE_F13, SDL_SCANCODE_F24})
        EXPECT_EQ(mapKey(scancode, true).keyCode, 127) << scancode;
    // Those that modify others make no event.
    for (const SDL_Scancode scancode :
         {SDL_SCANCODE_LSHIFT, SDL_SCANCODE_RCTRL, SDL_SCANCODE_LALT, SDL_SCANCODE_RALT, SDL_SCANCODE_MODE,
          SDL_SCANCODE_RGUI, SDL_SCANCODE_CAPSLOCK, SDL_SCANCODE_NUMLOCKCLEAR})
        EXPECT_EQ(mapKey(scancode, true).keyCode, 0) << scancode;
}

TEST(KeyMappingTest, CharactersOfSymbols)
{
    const std::pair<std::uint32_t, unsigned short> cases[] = {
        {0, 0},
        {XKB_KEY_a, 'a'},
        {XKB_KEY_plus, '+'},
        {XKB_KEY_odiaeresis, 0xF6},
        {XKB_KEY_EuroSign, 0x20AC},
        {XKB_KEY_Cyrillic_zhe, 0x436},
        {XKB_KEY_dead_circumflex, '^'},
        {XKB_KEY_dead_acute, 0xB4},
        {XKB_KEY_KP_Decimal, '.'},
        {XKB_KEY_KP_Separator, ','},
        {XKB_KEY_Return, 0},
        {XKB_KEY_Delete, 0},
        {XKB_KEY_F5, 0},
        {XKB_KEY_Shift_L, 0},
        {0x0101F600, 0xD83D}, // the first half of U+1F600
        {0xFFFFFFFF, 0},
    };
    for (const auto& [symbol, character] : cases)
        EXPECT_EQ(toCharacter(symbol), character) << std::hex << symbol;
}

} // namespace

} // namespace test
