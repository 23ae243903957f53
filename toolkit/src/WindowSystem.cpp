#include <gui/port/WindowSystem.h>

#include "offscreen/OffscreenWindowSystem.h"
#ifdef GUIGL_SDL
#include "sdl/SDLWindowSystem.h"
#endif

#include <gui/port/DisplayScale.h>
#include <vo/Log.h>

#include <array>
#include <cstdlib>
#include <cstring>

namespace gui
{

namespace
{

struct Choice
{
    const char* name;
    /// @return null when the window system cannot be had
    std::unique_ptr<WindowSystem> (*create)();
};

// In the order of preference.
constexpr std::array cWindowSystems{
#ifdef GUIGL_SDL
    Choice{"wayland", createWaylandWindowSystem},
    Choice{"x11", createX11WindowSystem},
#endif
    Choice{"offscreen", createOffscreenWindowSystem},
};

std::unique_ptr<WindowSystem> choose()
{
    const char* const wanted = std::getenv("GUIGL_WINDOW_SYSTEM");
    bool isWantedKnown = false;
    for (const Choice& choice : cWindowSystems)
    {
        const bool isWanted = wanted != nullptr && std::strcmp(wanted, choice.name) == 0;
        isWantedKnown = isWantedKnown || isWanted;
    }
    if (wanted != nullptr && !isWantedKnown)
        vo::dbgLog("Warning! WindowSystem GUIGL_WINDOW_SYSTEM=%s is unknown and will be ignored", wanted);
    for (const Choice& choice : cWindowSystems)
    {
        if (isWantedKnown && std::strcmp(wanted, choice.name) != 0)
            continue;
        if (std::unique_ptr<WindowSystem> system = choice.create())
            return system;
    }
    return createOffscreenWindowSystem();
}

} // namespace

WindowSystem& WindowSystem::instance()
{
    // Never destroyed: views and windows may be static objects, and drivers do not like to be unloaded.
    static WindowSystem* const pSystem = []
    {
        WindowSystem* const pChosen = choose().release();
        setDefaultBackingScaleFactor(pChosen->getMainDisplayScale());
        return pChosen;
    }();
    return *pSystem;
}

} // namespace gui
