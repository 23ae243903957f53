#include "X11Symbols.h"

#ifdef GUIGL_X11
#include <QGuiApplication>
#include <QKeyEvent>

// Xlib's macros are words of everybody's.
#include <X11/XKBlib.h>

namespace gui::qt
{

quint32 getX11Symbol(const QKeyEvent& event)
{
    const auto* const pX11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (pX11 == nullptr || event.nativeScanCode() == 0)
        return 0;
    // Asked anew each time, since what Xlib knows of the layout Qt does not let it keep up to date. The core protocol's
    // map has two levels of the first group, then two of the second.
    int nSymbols = 0;
    KeySym* const pSymbols =
        XGetKeyboardMapping(pX11->display(), static_cast<KeyCode>(event.nativeScanCode()), 1, &nSymbols);
    if (pSymbols == nullptr)
        return 0;
    const int group = XkbGroupForCoreState(event.nativeModifiers()) == 1 ? 2 : 0;
    const int level = (event.nativeModifiers() & ShiftMask) != 0 ? 1 : 0;
    KeySym symbol = NoSymbol;
    // Keys that are the same in all layouts have one group only, and some no second level.
    for (const int column : {group + level, level, group})
        if (symbol == NoSymbol && column < nSymbols)
            symbol = pSymbols[column];
    XFree(pSymbols);
    return static_cast<quint32>(symbol);
}

} // namespace gui::qt

#else

namespace gui::qt
{

quint32 getX11Symbol(const QKeyEvent&) { return 0; }

} // namespace gui::qt

#endif
