#include "Modifiers.h"

#include <gui/Key.h>

#include <utility>

namespace gui::gl
{

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

} // namespace gui::gl
