#include "X11Hints.h"

#include <gui/port/sdl/SDLPort.h>

#include <X11/Xatom.h>
#include <X11/Xutil.h>

#include <algorithm>
#include <memory>

namespace gui
{

namespace
{

struct XFreeing
{
    void operator()(void* p) const { XFree(p); }
};

} // namespace

void X11Hints::letSystemPlace(SDL_Window* pWindow)
{
    const std::optional<sdl::X11Window> x11 = sdl::getX11(pWindow);
    if (!x11)
        return;
    // SDL claims that the user has chosen the place.
    const std::unique_ptr<XSizeHints, XFreeing> pHints(XAllocSizeHints());
    long given = 0;
    if (pHints == nullptr || !XGetWMNormalHints(x11->pDisplay, x11->window, pHints.get(), &given))
        return;
    pHints->flags &= ~(USPosition | PPosition);
    XSetWMNormalHints(x11->pDisplay, x11->window, pHints.get());
}

std::optional<bool> X11Hints::isFullScreen(SDL_Window* pWindow)
{
    constexpr long cMostStates = 64;
    const std::optional<sdl::X11Window> x11 = sdl::getX11(pWindow);
    if (!x11)
        return std::nullopt;
    ::Display* const pDisplay = x11->pDisplay;
    Atom type = 0;
    int format = 0;
    unsigned long nStates = 0;
    unsigned long nLeft = 0;
    unsigned char* pData = nullptr;
    XGetWindowProperty(pDisplay, x11->window, XInternAtom(pDisplay, "_NET_WM_STATE", False), 0, cMostStates,
                       False, XA_ATOM, &type, &format, &nStates, &nLeft, &pData);
    const std::unique_ptr<unsigned char, XFreeing> pFreed(pData);
    if (type != XA_ATOM || pData == nullptr)
        return false;
    const auto* const pStates = reinterpret_cast<const Atom*>(pData);
    return std::find(pStates, pStates + nStates, XInternAtom(pDisplay, "_NET_WM_STATE_FULLSCREEN", False)) !=
           pStates + nStates;
}

} // namespace gui
