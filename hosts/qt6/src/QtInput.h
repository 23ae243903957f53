#pragma once

#include <gui/gl/port/NativeSurfaceClient.h>

#include <QElapsedTimer>
#include <QPointF>

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
/// The client may end the object that this belongs to from inside any call.
class QtInput
{
public:
    static bool isInput(const QEvent& event);

    /// @return whether nobody else is to get it
    bool handle(QEvent& event, gui::gl::NativeSurfaceClient& client, bool takesText);

private:
    bool onButton(const QMouseEvent& event, gui::gl::NativeSurfaceClient& client);
    bool onMotion(const QMouseEvent& event, gui::gl::NativeSurfaceClient& client);
    bool onWheel(const QWheelEvent& event, gui::gl::NativeSurfaceClient& client);
    bool onKey(const QKeyEvent& event, gui::gl::NativeSurfaceClient& client, bool takesText);
    bool onInputMethod(const QInputMethodEvent& event, gui::gl::NativeSurfaceClient& client);
    bool onGesture(const QNativeGestureEvent& event, gui::gl::NativeSurfaceClient& client);
    bool onTouch(const QTouchEvent& event, gui::gl::NativeSurfaceClient& client);
    unsigned int modifiersOf(Qt::KeyboardModifiers modifiers) const;

    QPointF _point; // where the pointer was last
    // The last press: what a row of clicks goes on from.
    QElapsedTimer _sincePress;
    QPointF _pressPoint;
    Qt::MouseButton _pressedButton = Qt::NoButton;
    unsigned short _nClicks = 0;
    double _pinch = 1;         // by a touchpad's gesture so far
    double _firstDistance = 0; // of two fingers; 0 when there are not two
    bool _isFingerDown = false;
    bool _isComposing = false;
    bool _isCapsLock = false; // as keys said last
};

} // namespace gui::qt
