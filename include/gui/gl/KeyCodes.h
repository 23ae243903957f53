#pragma once

#include <gui/Key.h>
#include <td/Export.h>

/// The tables from platform key codes to the toolkit's virtual keys.
namespace zav
{

/// @param code  a key code, or one shifted left by 8 bits (128 or more), as records without a character carry it
/// @return None for a key that is not virtual. The second parameter is not used.
GUIGL_API gui::Key::Virtual getVirtualKeyCode(unsigned int code, unsigned char unused);

/// A second table, for callers outside the library: no shift; Tab (48) is virtual, 51 is Delete, and the keypad's Clear
/// (71) and 117 are not.
GUIGL_API gui::Key::Virtual getVirtualKeyCode2(unsigned int code, unsigned char unused);

} // namespace zav
