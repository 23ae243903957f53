#pragma once

#include <SDL_keycode.h>
#include <SDL_scancode.h>
#include <td/Export.h>

#include <cstdint>

namespace gui::gl
{

/// From SDL's modifiers to a mask of gui::KeyModifier bits: Ctrl is Cmd, the Super key Ctrl, AltGr Fn.
/// @param isRightAltAltGr  the right Alt key is an AltGr in the layout in use
GUIGL_API unsigned int toModifiers(unsigned int sdlModifiers, bool isRightAltAltGr);

/// What a key is to the toolkit.
struct KeyMapping
{
    enum class Character : std::uint8_t
    {
        None,
        Fixed,
        OfLayout,       ///< that of the layout
        OfShiftedLayout ///< that of the layout with Shift, whether held or not
    };

    unsigned short keyCode; ///< 0 for a modifier key, which makes no event
    Character kind;
    unsigned short character; ///< a fixed one, or the one to take when the layout has none
};

/// Key codes of the table in gui/gl/KeyCodes.h; 128 to 255 for keys with a character, 127 for every other key.
/// @param isNumLock  without it the keypad's digits are Home, End, arrows and so on
GUIGL_API KeyMapping mapKey(SDL_Scancode scancode, bool isNumLock);

/// The UTF-16 unit of an XKB symbol: a dead key's is its accent standing alone. 0 for a symbol without one, and for
/// control characters.
GUIGL_API unsigned short toCharacter(std::uint32_t symbol);

} // namespace gui::gl
