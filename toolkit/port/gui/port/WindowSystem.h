#pragma once

#include <gui/Clipboard.h>
#include <gui/ColorScheme.h>
#include <gui/Display.h>
#include <gui/Window.h>
#include <td/Export.h>
#include <td/Point.h>
#include <td/Size.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace gui
{

class Host;
class NativeView;
class RunLoop;
class Texture;

/// A top-level window of a window system, behind gui::Window. It tells the native view that is in it what becomes of
/// it: enteredWindow at the end of show, sizeChanged, scaleChanged, and drawNow through the run loop when it was
/// uncovered. When the user closes it, it calls close() of the view's gui::Window.
class WindowPeer
{
public:
    virtual ~WindowPeer() = default;

    /// Takes the native view's own window as this one, sized as asked for, and shows it.
    virtual void show(NativeView* pView) = 0;
    /// The view leaves; the window is not seen any more.
    virtual void hide() = 0;

    /// What its frame shows; UTF-8.
    virtual void setTitle(const char* title) = 0;
    /// In points, without the frame.
    virtual void setSize(const td::Size<double>& size) = 0;
    virtual td::Size<double> getSize() const = 0;
    /// Leaving it, the window becomes what it was before.
    virtual void setFullScreen(bool isFullScreen) = 0;
    /// What it is now, not what was asked for.
    virtual bool isFullScreen() const = 0;

    /// Also before it is shown, as the rest: the window is that then. Say tellState when it has changed.
    virtual void setState(Window::State state) = 0;
    /// What it is now; before it is shown, what was asked for.
    virtual Window::State getState() const = 0;

    /// In points; of any size. Nothing where windows have none.
    virtual void setMinSize(const td::Size<double>&) {}
    /// Of the content's top left corner, in points on the desktop of all displays.
    virtual void setPosition(const td::Point<double>&) {}
    virtual std::optional<td::Point<double>> getPosition() const { return std::nullopt; }
    /// A picture with pixels of 3 or 4 bytes; to be copied.
    virtual void setIcon(const Texture& /*picture*/) {}

protected:
    /// The window of this view has another state. Its program hears of it, and may close it in there.
    GUIGL_API static void tellState(const NativeView& view, Window::State state);
};

/// What a window system is to the toolkit: a run loop and windows. One per process. The library has a table of them in
/// toolkit/src/WindowSystem.cpp.
class GUIGL_API WindowSystem
{
public:
    virtual ~WindowSystem() = default;

    /// The one in use. It is chosen at the first call, and logged; the environment variable GUIGL_WINDOW_SYSTEM
    /// overrides the choice with a name of the table. One that does not start gives way to the next, one that was asked
    /// for to offscreen.
    static WindowSystem& instance();

    /// For a program whose windows and loop are another toolkit's: see gui::Host. To be called before anything else of
    /// the library is used. @return false, after a log line ("Warning! WindowSystem NAME is in use already, and the
    /// host comes too late"), when a window system was chosen already
    static bool setHost(std::unique_ptr<Host> pHost);

    /// See Host::leaveContexts. Nothing without a host.
    static void leaveHostsContexts();

    /// As in the table: the native view looks up its surface by it.
    virtual const char* getName() const = 0;
    virtual RunLoop& getRunLoop() = 0;
    virtual std::unique_ptr<WindowPeer> createWindow(const char* title, const td::Size<double>& size) = 0;
    /// Device pixels per point of the main display.
    virtual float getMainDisplayScale() const = 0;
    /// All displays, the main one first; none when the system doesn't say, which counts as one.
    virtual std::vector<DisplayInfo> getDisplays() const { return {}; }

    /// What the desktop's user has set. Say tellColorScheme when it has changed.
    virtual ColorScheme getColorScheme() const { return ColorScheme::Unknown; }
    /// See Application::setColorSchemeHandler.
    void setColorSchemeHandler(std::function<void(ColorScheme)> handler) { _colorSchemeHandler = std::move(handler); }
    /// The desktop's user has set another one: the program hears of it.
    void tellColorScheme() const;

    /// What gui::Clipboard asks for. As long as nobody says otherwise, texts of the program's own.
    /// @param text  UTF-8, well-formed, without zeros  @return whether it was taken
    virtual bool setClipboardText(Clipboard::Kind kind, const std::string& text);
    /// @return anything
    virtual std::string getClipboardText(Clipboard::Kind kind);
    virtual bool hasClipboardText(Clipboard::Kind kind);

protected:
    /// See leaveHostsContexts.
    virtual void leaveContexts() {}

private:
    std::function<void(ColorScheme)> _colorSchemeHandler;
    std::string _copied;
    std::string _selected;
};

} // namespace gui
