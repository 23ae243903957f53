#pragma once

#include "QtInput.h"

#include <gui/gl/Context.h>
#include <gui/gl/port/HostedView.h>

#include <QMetaObject>
#include <QSurfaceFormat>
#include <QVariant>

class QEvent;
class QOpenGLContext;
class QScreen;

namespace gui::qt
{

/// The format that a context asks for.
QSurfaceFormat toFormat(const gui::gl::Context& context);

/// What a widget and a window that show a view have in common.
class ViewHost : public gui::gl::HostWidget
{
public:
    explicit ViewHost(gui::gl::HostedView::Maker make);
    ~ViewHost() override;
    ViewHost(const ViewHost&) = delete;
    ViewHost& operator=(const ViewHost&) = delete;

    gui::gl::View* getView() const { return _view.getView(); }

    // What Qt calls, with the context current in the first two.
    void initialize();
    void paint() { _view.paint(); }
    /// @return whether that was all; Qt's own part follows when it wasn't
    bool handle(QEvent* pEvent);
    QVariant query(Qt::InputMethodQuery query) const;

    bool makeContextCurrent() override;
    const void* getContext() const override;
    td::Size<double> getSize() const override;
    float getBackingScale() const override { return static_cast<float>(getRatio()); }
    td::Size<int> getDrawableSize() const override;
    double getDisplayRate() const override;
    void setCursor(gui::Cursor::Type type) override;

protected:
    /// To be called by the derived destructor.
    void close();

private:
    // What the widget or the window does.
    virtual void bind() = 0;
    virtual QOpenGLContext* getQtContext() const = 0;
    virtual QSize getQtSize() const = 0;
    virtual qreal getRatio() const = 0;
    virtual QScreen* getScreen() const = 0;
    virtual void showCursor(Qt::CursorShape shape) = 0;

    gui::gl::HostedView _view;
    QtInput _input;
    QMetaObject::Connection _connection; // to the context's end
};

} // namespace gui::qt
