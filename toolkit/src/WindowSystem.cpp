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
    /// The environment variable without which there is no such display; null when none is needed.
    const char* variable;
    /// @return null, after a log line, when the window system cannot be had
    std::unique_ptr<WindowSystem> (*create)();
};

// In the order of preference.
constexpr std::array cWindowSystems{
#ifdef GUIGL_SDL
    Choice{"wayland", "WAYLAND_DISPLAY", createWaylandWindowSystem},
    Choice{"x11", "DISPLAY", createX11WindowSystem},
#endif
    Choice{"offscreen", nullptr, createOffscreenWindowSystem},
};

bool isSet(const char* variable)
{
    const char* const value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

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
        if (choice.variable != nullptr && !isSet(choice.variable))
        {
            if (isWantedKnown)
                vo::dbgLog("Warning! WindowSystem %s does not start: %s is not set", choice.name, choice.variable);
            continue;
        }
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
