#pragma once

#include <td/Export.h>
#include <td/Point.h>
#include <td/Size.h>
#include <td/Types.h>

#include <functional>
#include <memory>
#include <optional>

namespace gui
{

class NativeView;
class Texture;
class WindowPeer;
class ZavObject;

/// A top-level window that shows one view. It does not own the view: either may go first. A view that is destroyed
/// closes the window it is shown in; a window that closes cleans up the view's resources. A window that is a member of
/// an object whose view it shows stands behind the members that the view cleans up. GUI thread only.
///
/// What it can't do for a program is the business of a host's widgets, or of the program's own drawing: tooltips,
/// menus, dialogs, child windows (see gui/port/Host.h).
class GUIGL_API Window
{
public:
    /// What it is on the desktop. The user decides as much as the program.
    enum class State : td::BYTE
    {
        Normal,    ///< at the size that was set, or that the user gave it
        Maximized, ///< as large as the desktop has room
        Minimized, ///< in the task bar alone; the clocks of its view rest
        FullScreen ///< over the whole screen, without a frame
    };

    /// Not seen before show. @param title  UTF-8  @param size  of the content in points, at least 1 by 1; else
    /// "Error! Window with a size of 0 x 0 points, which is never seen", an assertion, and the window counts as closed
    Window(const char* title, const td::Size<double>& size);
    /// Closes the window.
    ~Window();
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    /// Shows a view that has its native view already (see gui::gl::View::createContext), over the whole window, in
    /// place of the one shown before. A view that is in another window leaves that one, which closes. Where the window
    /// appears is up to the system.
    /// @return false, with a log line, when the view has no native view, when that went with a window that was closed,
    ///         or when this window was closed
    bool show(ZavObject& view);

    /// Closes the window for good, as the user does.
    void close();
    /// Whether it shows a view.
    bool isOpen() const { return _pNativeView != nullptr; }

    /// @param title  UTF-8; null changes nothing
    void setTitle(const char* title);
    /// In points, without the frame.
    void setSize(const td::Size<double>& size);
    td::Size<double> getSize() const;
    /// No smaller than this from now on; it grows when it is. @param size  in points; less than 1 counts as 1
    void setMinSize(const td::Size<double>& size);

    /// Moves it. Nothing on Wayland, where windows don't know where they are.
    /// @param position  of the top left corner of the content on the desktop of all displays (see gui::Display), in
    ///                  points; window managers may keep it within the screen
    void setPosition(const td::Point<double>& position);
    /// Where it is; nothing on Wayland, and before it was shown without a position that was set.
    std::optional<td::Point<double>> getPosition() const;

    /// The picture that stands for it in task bars and the like; on Wayland with SDL2 none does, but the one that the
    /// desktop has for the program.
    /// @param picture  best a square of 64 to 256 pixels; copied
    /// @return false, with a log line, for one without pixels or with other than 3 or 4 bytes for each
    bool setIcon(const Texture& picture);

    /// Asks the system for a state, which need not agree, and gets to it when it does; see also setFullScreen. Normal
    /// brings a window back from all of the others.
    void setState(State state);
    /// What it is now; of a window that is not shown yet, what was asked for. On Wayland nobody tells that a window is
    /// minimised: it stays what it was before.
    State getState() const;
    /// Called with the new state each time that it has changed, whoever asked for it, from the run loop; without a
    /// display from within the call that changes it. It begins as Normal. @param handler  empty for none
    void setStateHandler(std::function<void(State state)> handler);

    /// Covers the whole screen, or becomes again what it was before: maximised, or of its size. A size that is set
    /// meanwhile is taken then. The system does it when it gets to it, and need not; and the user may do it too.
    void setFullScreen(bool isFullScreen);
    /// Whether it covers the screen now; of a window that is not shown yet, what was asked for.
    bool isFullScreen() const;

private:
    friend class NativeView;
    friend class WindowPeer;

    void release();
    void closeWithoutView();

    std::unique_ptr<WindowPeer> _pPeer;
    NativeView* _pNativeView = nullptr;
    std::function<void(State)> _stateHandler;
};

} // namespace gui
