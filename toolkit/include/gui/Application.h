#pragma once

#include "ColorScheme.h"

#include <td/Export.h>
#include <td/Size.h>

#include <functional>
#include <memory>

namespace gui
{

class TerminationSignals;
class ZavObject;

/// The program as a whole: picks the window system and runs the loop that everything happens in.
///
/// The window system is the display's: Wayland when WAYLAND_DISPLAY names a compositor that works, else X11 when
/// DISPLAY names a server that works, else one without a display: programs run unchanged there. The choice is written
/// to the log; the environment variable GUIGL_WINDOW_SYSTEM ("wayland", "x11", "offscreen") overrides it.
///
/// SIGINT (Ctrl-C in a terminal) and SIGTERM close the windows, the last one first, so that their views clean up, and
/// end run; a second one ends the process at once. A program that handles these signals itself, or ignores them, goes
/// on to: they are left alone where they are not the system's default when this is made.
///
/// One at a time: another one says "Warning! Application made while there is one: SIGINT and SIGTERM stay with the
/// first", and serves the same loop. GUI thread only, which is the thread that makes it.
class GUIGL_API Application
{
public:
    /// The arguments are main's; none of them is taken away.
    Application(int argc, char** argv);
    ~Application();
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    /// Serves events, functions from asyncCall, timers, frame ticks and redraws until quit is called or the last open
    /// window closes. It sleeps while there is nothing to do. It can be called again, with other windows: one after the
    /// other, or inside a handler. Without a window it serves until quit; once the last of its windows has closed it
    /// returns.
    /// @return the code given to quit; 0 when the last window closed; 128 and the signal's number when one ended it;
    ///         1, after a log line, when the display was lost
    int run();
    /// The same with a view in a window of its own, which lives while it runs.
    /// @param view, title, size  as for Window  @return the code given to quit; 0 when the window closed; 1 if it could
    ///                           not be shown
    int run(ZavObject& view, const char* title, const td::Size<double>& size);

    /// One turn of run, for programs that have a loop of their own.
    /// @param seconds  how long it may sleep before, at most, until something is to be done; 0 does not sleep
    /// @return false when run would return: until run has, or another window opens after the last one closed
    bool step(double seconds);

    /// Ends run after the handler that calls it; before run, the next one. From the GUI thread: from others, post it
    /// with ZavObject::asyncCall.
    static void quit(int code = 0);

    /// The window system in use: "wayland", "x11" or "offscreen".
    static const char* getWindowSystem();

    /// Whether the user wants programs light or dark, as the desktop says it to SDL3 and to Qt from 6.5 on; Unknown
    /// elsewhere. The environment variable GUIGL_COLOR_SCHEME ("light", "dark") goes before it, so that a program can
    /// be tried in both.
    static ColorScheme getColorScheme();
    /// Called with the new one each time that it changes, from the run loop. @param handler  empty for none
    static void setColorSchemeHandler(std::function<void(ColorScheme scheme)> handler);

private:
    std::unique_ptr<TerminationSignals> _pSignals;
};

} // namespace gui
