#pragma once

#include "NativeObject.h"

#include <td/Export.h>

namespace gui
{

class Window;

/// What windows and run loops know of a view's native side: that it enters and leaves windows, and draws. The native
/// view implements it and tells the run loop when it wants to be drawn. GUI thread only.
class GUIGL_API NativeView : public NativeObject
{
public:
    /// The window system's own window that the view draws into, which a gui::Window adopts; null when there is none.
    virtual void* getNativeWindow() const = 0;

    /// Whether it can be shown: no more once it was cleaned up, with the window that it was in, say.
    virtual bool isAlive() const = 0;

    /// The view is in a window now, with this size and scale; tracking and the frame clock start.
    virtual void enteredWindow() = 0;
    /// The view is in no window any more; the frame clock stops.
    virtual void leftWindow() = 0;
    /// The window closes for good, and takes with it what the view draws into. Resources are cleaned up while the
    /// context still lives; nothing draws afterwards.
    virtual void windowClosed() = 0;

    /// The window's size, or its scale, may have changed.
    virtual void sizeChanged() = 0;
    virtual void scaleChanged() = 0;

    /// Draws a frame and presents it: on request, and at a tick of the frame clock.
    virtual void drawNow() = 0;
    virtual void onFrameTick() = 0;

    /// The window that shows the view; null when none does.
    Window* getWindow() const { return _pWindow; }

protected:
    ~NativeView() override = default;

    /// Closes the window that shows the view, if any, without a word to the view. To be called before it is destroyed.
    void closeWindow();

private:
    friend class Window;

    Window* _pWindow = nullptr;
};

} // namespace gui
