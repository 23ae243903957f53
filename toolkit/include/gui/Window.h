#pragma once

#include <td/Export.h>
#include <td/Size.h>

#include <memory>

namespace gui
{

class NativeView;
class WindowPeer;
class ZavObject;

/// A top-level window that shows one view. It does not own the view: either may go first. A view that is destroyed
/// closes the window it is shown in; a window that closes cleans up the view's resources. A window that is a member of
/// an object whose view it shows stands behind the members that the view cleans up. GUI thread only.
class GUIGL_API Window
{
public:
    /// Not seen before show. @param title  UTF-8  @param size  of the content in points, at least 1 by 1 (an assertion)
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
    /// Covers the whole screen, or becomes again what it was before: maximised, or of its size. A size that is set
    /// meanwhile is taken then. The system does it when it gets to it, and need not; and the user may do it too.
    void setFullScreen(bool isFullScreen);
    /// Whether it covers the screen now; of a window that is not shown yet, what was asked for.
    bool isFullScreen() const;

private:
    friend class NativeView;

    void release();
    void closeWithoutView();

    std::unique_ptr<WindowPeer> _pPeer;
    NativeView* _pNativeView = nullptr;
};

} // namespace gui
