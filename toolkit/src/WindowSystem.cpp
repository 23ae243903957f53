#include <gui/port/WindowSystem.h>

#include "HostedWindowSystem.h"
#include "offscreen/OffscreenWindowSystem.h"
#ifdef GUIGL_SDL
#include "sdl/SDLWindowSystem.h"
#endif

#include <gui/Application.h>
#include <gui/port/DisplayScale.h>
#include <gui/port/Host.h>
#include <vo/Log.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <utility>

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

// Never destroyed: views and windows may be static objects, and drivers do not like to be unloaded.
WindowSystem* s_pSystem = nullptr;

void use(std::unique_ptr<WindowSystem> pSystem)
{
    s_pSystem = pSystem.release();
    setDefaultBackingScaleFactor(s_pSystem->getMainDisplayScale());
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

bool WindowSystem::setHost(std::unique_ptr<Host> pHost)
{
    if (s_pSystem != nullptr)
    {
        vo::dbgLog("Warning! WindowSystem %s is in use already, and the host comes too late", s_pSystem->getName());
        return false;
    }
    use(createHostedWindowSystem(std::move(pHost)));
    return true;
}

void WindowSystem::leaveHostsContexts()
{
    if (s_pSystem != nullptr)
        s_pSystem->leaveContexts();
}

void WindowSystem::tellColorScheme() const
{
    // A copy: it may set another one.
    if (const std::function<void(ColorScheme)> handler = _colorSchemeHandler)
        handler(Application::getColorScheme());
}

WindowSystem& WindowSystem::instance()
{
    if (s_pSystem == nullptr)
        use(choose());
    return *s_pSystem;
}

} // namespace gui
