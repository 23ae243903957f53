#pragma once

#include <td/Export.h>

namespace gui::gl
{

/// From SDL's modifiers, bits of SDL_Keymod, to a mask of gui::KeyModifier bits:
/// Ctrl is Cmd, the Super key Ctrl, AltGr Fn.
/// @param isRightAltAltGr  the right Alt key is an AltGr in the layout in use
GUIGL_API unsigned int toModifiers(unsigned int sdlModifiers, bool isRightAltAltGr);

} // namespace gui::gl
