#pragma once

#include <td/Export.h>

#include <cstdint>

namespace gui::gl
{

// What a surface makes of a key for its client: KeyEvent::keyCode and KeyEvent::character. Keys have numbers of three
// kinds: usages, those of the USB HID Usage Tables' keyboard page, which SDL's scancodes are too; the kernel's, with 8
// added those of X11 and XKB; and the library's, which say what is printed on the key.

/// What a key is to the library.
struct KeyMapping
{
    /// Which character it has.
    enum class Character : std::uint8_t
    {
        None,           ///< no one
        Fixed,          ///< the one in KeyMapping::character, on any layout
        OfLayout,       ///< that of the layout
        OfShiftedLayout ///< that of the layout with Shift, whether held or not
    };

    unsigned short keyCode;   ///< 0 for a modifier key, which makes no event
    Character kind;           ///< see there
    unsigned short character; ///< a fixed one, or the one to take when the layout has none
};

/// Key codes of the table in gui/gl/KeyCodes.h; 128 to 255 for keys with a character, 127 for every other key.
/// @param usage      the key's; any number will do
/// @param isNumLock  without it the keypad's digits are Home, End, arrows and so on
GUIGL_API KeyMapping mapKey(int usage, bool isNumLock);

/// The usage of the key that has this number with the kernel; 0, which is no key, for one that isn't known.
GUIGL_API int toKeyUsage(unsigned int kernelKeyCode);
/// The other way round; 0 for a usage that isn't known.
GUIGL_API unsigned int toKernelKeyCode(int usage);

} // namespace gui::gl
