#pragma once

#include "DesktopFixture.h"

namespace test
{

/// A program on X11, where windows have names. A window manager without bindings runs.
class X11Fixture : public DesktopFixture
{
protected:
    static const XServer& xServer() { return desktop().server(); }
    /// A point of a window, as xdotool's mousemove takes it.
    static std::string at(const char* title, int x, int y);
    static void movePointerAway() { desktop().goTo(0); }
};

} // namespace test
