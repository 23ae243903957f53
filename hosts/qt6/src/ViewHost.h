#pragma once

#include "QtInput.h"

#include <gui/NativeView.h>
#include <gui/gl/Context.h>
#include <gui/gl/port/NativeSurface.h>

#include <QMetaObject>
#include <QOpenGLContext>
#include <QRect>
#include <QSurfaceFormat>
#include <QVariant>

#include <functional>
#include <memory>

class QEvent;
class QScreen;

namespace gui::gl
{
class View;
}

namespace gui::qt
{

/// The format that a context asks for.
QSurfaceFormat toFormat(const gui::gl::Context& context);

/// Calls the view's createContext with this context and all kinds of input.
std::function<gui::gl::View*()> makeContextOf(gui::gl::View& view, const gui::gl::Context& context);

/// What a widget and a window that show a view have in common: the surface, the order of calls, the frame clock.
/// The clock ticks by the library's run loop; a tick asks Qt for a paint, in which the frame is drawn.
class ViewHost : private gui::NativeView
{
public:
    /// See ViewWidget::Maker.
    using Maker = std::function<gui::gl::View*()>;

    ViewHost(Maker make, const gui::gl::Context& context, const char* name);
    ~ViewHost() override;
    ViewHost(const ViewHost&) = delete;
    ViewHost& operator=(const ViewHost&) = delete;

    gui::gl::View* getView() const { return *_pClient != nullptr ? _pView : nullptr; }
    /// The display it is on; null when that isn't known.
    virtual QScreen* getScreen() const = 0;

    // What Qt calls, with the context current in the first two.
    void initialize();
    void paint();
    /// @return whether that was all; Qt's own part follows when it wasn't
    bool handle(QEvent* pEvent);
    QVariant query(Qt::InputMethodQuery query) const;

protected:
    /// The context goes, or the widget: to be called by the derived destructor. The view is left without a native side.
    void close();

private:
    class Surface;

    // What the widget or the window does.
    virtual void makeContextCurrent() = 0;
    virtual QOpenGLContext* getContext() const = 0;
    virtual QSize getSize() const = 0;
    virtual qreal getRatio() const = 0;
    virtual unsigned int getFramebuffer() const = 0;
    virtual int getDepthBits() const = 0;
    virtual int getStencilBits() const = 0;
    virtual void requestPaint() = 0;
    virtual void showCursor(Qt::CursorShape shape) = 0;
    virtual void setTakesText(bool takesText) = 0;
    virtual bool isShown() const = 0;

    bool makeCurrent();
    void reportFormat() const;
    void enter();
    void followGeometry();
    void onVisible(bool isVisible);

    // The clock's side.
    void release() override {}
    void getSize(td::Size<double>& size) const override;
    void reDraw() override {}
    void* getNativeWindow() const override { return nullptr; }
    bool isAlive() const override { return true; }
    void enteredWindow() override {}
    void leftWindow() override {}
    void windowClosed() override {}
    void sizeChanged() override {}
    void scaleChanged() override {}
    void drawNow() override {}
    void onFrameTick() override;

    Maker _make;
    gui::gl::Context _asked;
    const char* _name;
    gui::gl::View* _pView = nullptr;
    SharedClient _pClient = std::make_shared<gui::gl::NativeSurfaceClient*>(nullptr); // as long as its surface lives
    Surface* _pSurface = nullptr;
    QtInput _input;
    QMetaObject::Connection _connection; // to the context's end
    QRectF _textRect;
    QSize _size; // the last that the view was told
    qreal _ratio = 0;
    int _nTicksAhead = 0; // that no paint has followed
    bool _isFormatReported = false;
    bool _isTickDue = false;
    bool _isEntered = false;
    bool _isPainting = false;
    bool _takesText = false;
};

} // namespace gui::qt
