#include "X11Window.h"

#include <SDL_syswm.h>
#include <X11/Xatom.h>
#include <X11/Xutil.h>

#include <algorithm>
#include <memory>

namespace gui
{

namespace
{

// @return false on other window systems
bool getX11(SDL_Window* pWindow, SDL_SysWMinfo& info)
{
    SDL_VERSION(&info.version);
    return SDL_GetWindowWMInfo(pWindow, &info) && info.subsystem == SDL_SYSWM_X11;
}

struct XFreeing
{
    void operator()(void* p) const { XFree(p); }
};

} // namespace

void X11Window::letSystemPlace(SDL_Window* pWindow)
{
    SDL_SysWMinfo info;
    if (!getX11(pWindow, info))
        return;
    // SDL claims that the user has chosen the place.
    const std::unique_ptr<XSizeHints, XFreeing> pHints(XAllocSizeHints());
    long given = 0;
    if (pHints == nullptr || !XGetWMNormalHints(info.info.x11.display, info.info.x11.window, pHints.get(), &given))
        return;
    pHints->flags &= ~(USPosition | PPosition);
    XSetWMNormalHints(info.info.x11.display, info.info.x11.window, pHints.get());
}

std::optional<bool> X11Window::isFullScreen(SDL_Window* pWindow)
{
    constexpr long cMostStates = 64;
    SDL_SysWMinfo info;
    if (!getX11(pWindow, info))
        return std::nullopt;
    Display* const pDisplay = info.info.x11.display;
    Atom type = 0;
    int format = 0;
    unsigned long nStates = 0;
    unsigned long nLeft = 0;
    unsigned char* pData = nullptr;
    XGetWindowProperty(pDisplay, info.info.x11.window, XInternAtom(pDisplay, "_NET_WM_STATE", False), 0, cMostStates,
                       False, XA_ATOM, &type, &format, &nStates, &nLeft, &pData);
    const std::unique_ptr<unsigned char, XFreeing> pFreed(pData);
    if (type != XA_ATOM || pData == nullptr)
        return false;
    const auto* const pStates = reinterpret_cast<const Atom*>(pData);
    return std::find(pStates, pStates + nStates, XInternAtom(pDisplay, "_NET_WM_STATE_FULLSCREEN", False)) !=
           pStates + nStates;
}

} // namespace gui
