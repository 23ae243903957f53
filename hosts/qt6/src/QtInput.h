#pragma once

#include <gui/gl/port/ClickCounter.h>
#include <gui/gl/port/Fingers.h>

#include <QPointF>

class QDropEvent;
class QEvent;
class QInputMethodEvent;
class QKeyEvent;
class QMouseEvent;
class QNativeGestureEvent;
class QTouchEvent;
class QWheelEvent;

namespace gui::qt
{

/// What Qt reports of the pointer, the keyboard, fingers and input methods, as a surface tells it to its client.
/// The client may end the surface, and what this belongs to, from inside any call.
class QtInput
{
public:
    static bool isInput(const QEvent& event);
    /// Whether a field for text has this, which Qt asks before its shortcuts.
    static bool isTyping(const QEvent& event);

    /// @param pClient  not null now, and kept by the caller
    /// @return whether nobody else is to get it
    bool handle(QEvent& event, const gui::gl::SharedClient& pClient, bool takesText);

private:
    bool onButton(const QMouseEvent& event, const gui::gl::SharedClient& pClient);
    bool onMotion(const QMouseEvent& event, const gui::gl::SharedClient& pClient);
    bool onWheel(const QWheelEvent& event, const gui::gl::SharedClient& pClient);
    bool onKey(const QKeyEvent& event, const gui::gl::SharedClient& pClient, bool takesText);
    bool onInputMethod(const QInputMethodEvent& event, const gui::gl::SharedClient& pClient);
    bool onGesture(const QNativeGestureEvent& event, const gui::gl::SharedClient& pClient);
    bool onDrop(QDropEvent& event, const gui::gl::SharedClient& pClient) const;
    bool onTouch(const QTouchEvent& event, const gui::gl::SharedClient& pClient);
    unsigned int modifiersOf(Qt::KeyboardModifiers modifiers) const;

    QPointF _point; // where the pointer was last
    gui::gl::ClickCounter _clicks;
    gui::gl::Fingers _fingers;
    double _pinch = 1; // by a touchpad's gesture so far
    bool _isComposing = false;
    bool _isCapsLock = false; // as keys said last
};

} // namespace gui::qt
