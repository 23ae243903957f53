#pragma once

#include <gui/Clipboard.h>
#include <gui/ColorScheme.h>
#include <gui/Display.h>
#include <gui/port/RunLoop.h>
#include <td/Export.h>

#include <optional>
#include <string>
#include <vector>

namespace gui
{

class NativeView;

/// Another toolkit whose windows and loop a program has: its widgets show the views, on surfaces that they make (see
/// gui/gl/port/NativeSurface.h). Handed to WindowSystem::setHost, it stands for a window system.
///
/// The host's loop drives the library's: whenever it is about to sleep it asks
/// `WindowSystem::instance().getRunLoop().getNextDue()`, and calls `step(0)` of that loop when the time has come.
/// That runs what asyncCall queued, timers, and frame clocks. A gui::Application in such a program works as well: its
/// turns serve the host's events.
///
/// Views that are in no widget draw offscreen, and so do those that a gui::Window shows, which nobody sees.
/// GUI thread only, but for wakeUp.
class GUIGL_API Host
{
public:
    virtual ~Host() = default;

    /// What the log calls it. To live as long as the host.
    virtual const char* getName() const = 0;
    /// Ends the sleep of the host's loop, or the next one, so that it asks for what is due. Any thread.
    virtual void wakeUp() = 0;
    /// Serves the host's events: those that are there, and if there are none, waits for the first until the time (null:
    /// without end) or a wakeUp. For whoever runs the library's loop, and not the host's: in a turn that the host's
    /// loop makes there is nothing to do.
    virtual void serveEvents(const std::optional<RunLoop::Time>& until) = 0;

    /// Frames per second of the display that the view is on, or of the main one; 0 when that isn't known.
    virtual double getDisplayRate(const NativeView*) const { return 0; }
    /// Device pixels per point of the main display.
    virtual float getMainDisplayScale() const { return 1; }
    /// See WindowSystem: what gui::Display asks for.
    virtual std::vector<DisplayInfo> getDisplays() const { return {}; }
    virtual ColorScheme getColorScheme() const { return ColorScheme::Unknown; } ///< and tellColorScheme, too

    /// A context of the library's own, gui::gl::OffscreenContext, is about to be made current: the toolkit has none
    /// current from now on, and knows. For those that keep in mind which one is, or draw by something else than EGL;
    /// the host calls OffscreenContext::leave then before the toolkit draws.
    virtual void leaveContexts() {}

    /// See WindowSystem: what gui::Clipboard asks for.
    virtual bool setClipboardText(Clipboard::Kind kind, const std::string& text) = 0;
    virtual std::string getClipboardText(Clipboard::Kind kind) = 0;
    virtual bool hasClipboardText(Clipboard::Kind kind) = 0;
};

} // namespace gui
