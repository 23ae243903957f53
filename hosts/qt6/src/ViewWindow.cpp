#include <gui/qt/ViewWindow.h>

#include "ViewHost.h"

#include <gui/gl/View.h>
#include <gui/qt/ViewWidget.h>

#include <QGuiApplication>
#include <QInputMethod>
#include <QInputMethodQueryEvent>
#include <QPointer>

#include <utility>

namespace gui::qt
{

namespace
{

class WindowHost : public ViewHost
{
public:
    WindowHost(ViewWindow& window, gui::gl::HostedView::Maker make)
        : ViewHost(std::move(make))
        , _window(window)
    {
    }
    WindowHost(const WindowHost&) = delete;
    WindowHost& operator=(const WindowHost&) = delete;
    ~WindowHost() override { close(); }

    const char* getName() const override { return "ViewWindow"; }
    unsigned int getFramebuffer() const override { return _window.defaultFramebufferObject(); }
    void requestPaint() override { _window.update(); }
    bool isShown() const override { return _window.isVisible(); }
    void setTextInput(bool, const td::RectNormalized<double>&) override
    {
        if (_window.isActive())
            QGuiApplication::inputMethod()->update(Qt::ImQueryInput);
    }

private:
    void bind() override { _window.makeCurrent(); }
    QOpenGLContext* getQtContext() const override { return _window.context(); }
    QSize getQtSize() const override { return _window.size(); }
    qreal getRatio() const override { return _window.devicePixelRatio(); }
    QScreen* getScreen() const override { return _window.screen(); }
    void showCursor(Qt::CursorShape shape) override { _window.setCursor(shape); }

    ViewWindow& _window;
};

} // namespace

ViewWindow::ViewWindow(gui::gl::View& view)
    : ViewWindow(view, ViewWidget::getDefaultContext())
{
}

ViewWindow::ViewWindow(gui::gl::View& view, const gui::gl::Context& context)
    : ViewWindow(gui::gl::HostedView::makerOf(view, context), context)
{
}

ViewWindow::ViewWindow(Maker make)
    : ViewWindow(std::move(make), ViewWidget::getDefaultContext())
{
}

ViewWindow::ViewWindow(Maker make, const gui::gl::Context& context)
    : _pHost(std::make_unique<WindowHost>(*this, std::move(make)))
{
    setFormat(toFormat(context));
}

ViewWindow::~ViewWindow() = default;

gui::gl::View* ViewWindow::getView() const { return _pHost->getView(); }

void ViewWindow::initializeGL() { _pHost->initialize(); }

void ViewWindow::paintGL() { _pHost->paint(); }

bool ViewWindow::event(QEvent* pEvent)
{
    if (_pHost != nullptr && pEvent->type() == QEvent::InputMethodQuery)
    {
        auto* const pQuery = static_cast<QInputMethodQueryEvent*>(pEvent);
        for (const Qt::InputMethodQuery query : {Qt::ImEnabled, Qt::ImCursorRectangle})
            if ((pQuery->queries() & query) != 0)
                pQuery->setValue(query, _pHost->query(query));
        pQuery->accept();
        return true;
    }
    const QPointer<QObject> pThis(this); // what the view does may end it
    return (_pHost != nullptr && _pHost->handle(pEvent)) || pThis.isNull() || QOpenGLWindow::event(pEvent);
}

} // namespace gui::qt
