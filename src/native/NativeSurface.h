#pragma once

#include "SurfaceEvents.h"

#include <gui/Cursor.h>
#include <gui/NativeView.h>
#include <td/Export.h>
#include <td/Size.h>

#include <cstdint>

namespace gui::gl
{

/// Whom a surface reports input to: one operation for each kind of event. What the view's code does in there may end the
/// view and its surface with it, so nothing of the surface is to be touched behind such a call without a look whether it
/// is still there.
class GUIGL_API NativeSurfaceClient : public gui::NativeView
{
public:
    virtual void onButton(const ButtonEvent& event) = 0;
    virtual void onMotion(const MotionEvent& event) = 0;
    /// @return whether the event is used up; if it is not, a host may handle it in its own way
    virtual bool onWheel(const WheelEvent& event) = 0;
    virtual void onMagnification(const MagnificationEvent& event) = 0;
    /// @return as onWheel
    virtual bool onKey(const KeyEvent& event) = 0;
    virtual void onFocus(bool hasFocus) = 0;

    /// Whether the view takes keys.
    virtual bool acceptsFirstResponder() const = 0;
    /// Which pointer events the view wants, as bits: 0x04 cursor updates, 0x80 always active and 0x200 over what is
    /// visible, these always; 0x02 motion; 0x01 entering and leaving. A surface that gets them all anyway need not care.
    virtual std::uint64_t getTrackingOptions() const = 0;

protected:
    ~NativeSurfaceClient() override = default;
};

/// The port to a window system: what a GL view draws into, with its context. One is made for each view, and destroyed
/// when the view or its window goes. A surface reports events to its client and decides nothing.
///
/// The default framebuffer may have any name and may change it from frame to frame, the surface may present by itself,
/// and its context may be made by somebody else: a view can then live inside another toolkit's widget.
class GUIGL_API NativeSurface
{
public:
    virtual ~NativeSurface() = default;

    /// Makes the context current and tells CurrentContext. @return false when the context is lost
    virtual bool makeCurrent() = 0;
    /// Presents what was drawn; nothing when the surface does it by itself. The context is current.
    virtual void flush() = 0;
    virtual td::Size<double> getSize() const = 0;      ///< points
    virtual float getBackingScale() const = 0;         ///< device pixels per point
    virtual td::Size<int> getDrawableSize() const = 0; ///< device pixels
    /// The GL name of the framebuffer that is presented. The context is current.
    virtual unsigned int getDefaultFramebuffer() const = 0;
    /// Asks for a drawNow at the next opportunity; several requests before it are one.
    virtual void setNeedsDisplay() = 0;

    /// The window that gui::Window adopts; null when the surface has none to give away.
    virtual void* getNativeWindow() const { return nullptr; }
    /// Follows a change of the window's size or scale. The context is current afterwards. @return false when it is lost
    virtual bool followWindow() { return makeCurrent(); }
    /// Shows a pointer shape, while the pointer is over this surface, from now on.
    virtual void setCursor(gui::Cursor::Type) {}
    /// Calls onFrameTick at the display's rate, within a range of frames per second when it is one (both above 0, the
    /// maximum not below the minimum; the preferred rate is their mean).
    virtual void startFrameClock(float /*minFPS*/, float /*maxFPS*/) {}
    virtual void stopFrameClock() {}
};

} // namespace gui::gl
