#include "Modifiers.h"

#include <gui/Key.h>
#include <gui/port/sdl/SDLPort.h>

#include <utility>

namespace gui::gl
{

unsigned int toModifiers(unsigned int sdlModifiers, bool isRightAltAltGr)
{
    using namespace gui::sdl;
    const unsigned int altGr = isRightAltAltGr ? cMode | cRightAlt : cMode;
    const std::pair<unsigned int, gui::KeyModifier> modifiers[] = {
        {cShift, gui::KeyModifier::Shift},      {cCapsLock, gui::KeyModifier::CapsLock},
        {cLogo, gui::KeyModifier::Ctrl},        {cAlt & ~altGr, gui::KeyModifier::Alt},
        {cCtrl, gui::KeyModifier::Cmd},         {altGr, gui::KeyModifier::Fn},
    };
    unsigned int mask = 0;
    for (const auto& [bits, modifier] : modifiers)
        if ((sdlModifiers & bits) != 0)
            mask |= static_cast<unsigned int>(modifier);
    return mask;
}

} // namespace gui::gl
