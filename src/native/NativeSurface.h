#pragma once

#include "SurfaceEvents.h"

#include <gui/Cursor.h>
#include <td/Export.h>
#include <td/Size.h>

#include <cstdint>

namespace gui::gl
{

/// Whom a surface reports to: one operation for each kind of event. Each answers whether the event is used up; when it
/// is not, the window system or the host may handle it in its own way.
class NativeSurfaceClient
{
public:
    virtual bool onButton(const ButtonEvent& event) = 0;
    virtual bool onMotion(const MotionEvent& event) = 0;
    virtual bool onWheel(const WheelEvent& event) = 0;
    virtual bool onMagnification(const MagnificationEvent& event) = 0;
    virtual bool onKey(const KeyEvent& event) = 0;
    virtual void onFocus(bool hasFocus) = 0;
    virtual void onFrameTick() = 0;
    virtual void onExpose() = 0;
    virtual void onResize() = 0;
    virtual void onScaleChange() = 0;

protected:
    ~NativeSurfaceClient() = default;
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
    /// Asks for an onExpose at the next opportunity; several requests before it are one.
    virtual void setNeedsDisplay() = 0;

    /// The window that gui::Window adopts; null when the surface has none to give away.
    virtual void* getNativeWindow() const { return nullptr; }
    /// An event of the window system, in its own form, for the surface to translate.
    virtual void handleEvent(const void*) {}
    /// Follows a change of the window's size or scale. The context is current afterwards. @return false when it is lost
    virtual bool followWindow() { return makeCurrent(); }
    /// The view is in a window now: which pointer events it wants, as getTrackingOptions has them. A surface that gets
    /// them all anyway need not care.
    virtual void setTracking(std::uint64_t) {}
    /// Shows a pointer shape, while the pointer is over this surface, from now on.
    virtual void setCursor(gui::Cursor::Type) {}
    /// Calls onFrameTick at the display's rate, within a range of frames per second when it is one (both above 0, the
    /// maximum not below the minimum; the preferred rate is their mean).
    virtual void startFrameClock(float /*minFPS*/, float /*maxFPS*/) {}
    virtual void stopFrameClock() {}
};

} // namespace gui::gl
