#pragma once

#include "NativeSurfaceClient.h"
#include "PixelFormat.h"

#include <gui/Cursor.h>
#include <td/Export.h>
#include <td/RectNormalized.h>
#include <td/Size.h>

#include <functional>
#include <memory>

namespace gui::gl
{

/// What a GL view draws into, with its context: what a window system, or another toolkit with widgets of its own,
/// implements to show views. One is made for each view, and destroyed when the view or its window goes. A surface
/// reports input to its client and decides nothing.
///
/// The default framebuffer may have any name and may change it from frame to frame, the surface may present by itself,
/// and its context may be made by somebody else: a view can then live inside another toolkit's widget. GUI thread only.
class GUIGL_API NativeSurface
{
public:
    virtual ~NativeSurface() = default;

    /// Makes the context current and tells CurrentContext. @return false when the context is lost
    virtual bool makeCurrent() = 0;
    /// The same before a frame is drawn into the default framebuffer, which flush then presents.
    virtual bool beginFrame() { return makeCurrent(); }
    /// Presents what was drawn; nothing when the surface does it by itself. The context is current.
    virtual void flush() = 0;
    virtual td::Size<double> getSize() const = 0;      ///< points
    virtual float getBackingScale() const = 0;         ///< device pixels per point; fractions are welcome
    virtual td::Size<int> getDrawableSize() const = 0; ///< device pixels
    /// The GL name of the framebuffer that is presented. The context is current.
    virtual unsigned int getDefaultFramebuffer() const = 0;
    /// Asks for a drawNow of the client at the next opportunity, and returns at once; several requests before it are
    /// one.
    virtual void setNeedsDisplay() = 0;

    /// Whether makeCurrent has found out that the context is gone for good.
    virtual bool isContextLost() const { return false; }
    /// The context is lost, or said to be (View::loseContext): makes another one of the same format in its place,
    /// current, and tells CurrentContext: died, then set. What is in it is the client's business. A widget's host,
    /// whose toolkit brings contexts when it likes, tells the client instead (NativeSurfaceClient::contextLost).
    /// @return false when it has none to give; the old one is as it was then, or gone
    virtual bool replaceContext() { return false; }

    /// The window that gui::Window adopts; null when the surface has none to give away.
    virtual void* getNativeWindow() const { return nullptr; }
    /// Follows a change of the window's size or scale. The context is current afterwards. @return false when it is lost
    virtual bool followWindow() { return makeCurrent(); }
    /// Shows a pointer shape, while the pointer is over this surface, from now on.
    virtual void setCursor(gui::Cursor::Type) {}
    /// The client takes text from now on, through whatever input method the user has, or no more. At first it doesn't.
    virtual void setTextInput(bool /*isOn*/) {}
    /// Where its caret is, in points of the window's content: candidates are shown beside it.
    virtual void setTextInputRect(const td::RectNormalized<double>& /*rect*/) {}
    /// Calls the client's onFrameTick at the display's rate, or, when the range is one (both above 0, the maximum not
    /// below the minimum), at a rate within it, in frames per second; see gui::RunLoop::startFrameClock for which.
    virtual void startFrameClock(float /*minFPS*/, float /*maxFPS*/) {}
    virtual void stopFrameClock() {}
};

/// Makes a surface for a client, with a context of this format and an initial size in points. @return null, after a log
/// line that says why, when there is no such context
using SurfaceFactory = std::function<std::unique_ptr<NativeSurface>(
    NativeSurfaceClient& client, const PixelFormat& format, const td::Size<double>& size)>;

} // namespace gui::gl
