#pragma once

#include "XServer.h"

#include <string>

namespace test
{

/// What runs windows on the screen of an X server of the test's own. The user of it is xdotool.
class Desktop
{
public:
    virtual ~Desktop() = default;

    virtual bool isOk() const = 0;
    virtual const XServer& server() const = 0;

    /// Two places for windows, 0 and 1, of at least 300 by 250 points: where they are on the server's screen.
    virtual XServer::Place area(int place) const = 0;
    /// The device pixels per point there.
    virtual int scale(int place) const = 0;
    /// Puts the pointer and the keyboard there, out of the way of windows.
    virtual void goTo(int place) const = 0;
    /// Brings a window there if it appears elsewhere. @return whether it is there, with the keyboard
    virtual bool bring(const std::string& title, int place) const = 0;
    /// @return false for other layouts than the ones it started with, if they cannot be changed any more
    virtual bool setLayouts(const std::string& layouts) const = 0;
};

/// That of the program's tests.
Desktop& desktop();

} // namespace test
