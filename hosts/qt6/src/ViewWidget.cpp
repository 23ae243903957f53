#include <gui/qt/ViewWidget.h>

#include "ViewHost.h"

#include <gui/gl/View.h>

#include <QGuiApplication>
#include <QInputMethod>
#include <QPointer>
#include <QScreen>

#include <utility>

namespace gui::qt
{

namespace
{

class WidgetHost : public ViewHost
{
public:
    WidgetHost(ViewWidget& widget, gui::gl::HostedView::Maker make)
        : ViewHost(std::move(make))
        , _widget(widget)
    {
    }
    WidgetHost(const WidgetHost&) = delete;
    WidgetHost& operator=(const WidgetHost&) = delete;
    ~WidgetHost() override { close(); }

    const char* getName() const override { return "ViewWidget"; }
    unsigned int getFramebuffer() const override { return _widget.defaultFramebufferObject(); }
    void requestPaint() override { _widget.update(); }
    bool isShown() const override { return _widget.isVisible(); }
    void setTextInput(bool takesText, const td::RectNormalized<double>&) override
    {
        _widget.setAttribute(Qt::WA_InputMethodEnabled, takesText);
        if (_widget.hasFocus())
            QGuiApplication::inputMethod()->update(Qt::ImQueryInput);
    }

private:
    void bind() override { _widget.makeCurrent(); }
    QOpenGLContext* getQtContext() const override { return _widget.context(); }
    QSize getQtSize() const override { return _widget.size(); }
    qreal getRatio() const override { return _widget.devicePixelRatioF(); }
    QScreen* getScreen() const override { return _widget.screen(); }
    void showCursor(Qt::CursorShape shape) override { _widget.setCursor(shape); }

    ViewWidget& _widget;
};

} // namespace

ViewWidget::ViewWidget(gui::gl::View& view, const gui::gl::Context& context, QWidget* pParent)
    : ViewWidget(gui::gl::HostedView::makerOf(view, context), context, pParent)
{
}

ViewWidget::ViewWidget(Maker make, const gui::gl::Context& context, QWidget* pParent)
    : QOpenGLWidget(pParent)
    , _pHost(std::make_unique<WidgetHost>(*this, std::move(make)))
{
    setFormat(toFormat(context));
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_AcceptTouchEvents);
    setAcceptDrops(true); // if the view does
}

ViewWidget::~ViewWidget() = default;

gui::gl::View* ViewWidget::getView() const { return _pHost->getView(); }

gui::gl::Context ViewWidget::getDefaultContext() { return gui::gl::HostedView::getDefaultContext(); }

QSize ViewWidget::sizeHint() const { return {400, 300}; }

QVariant ViewWidget::inputMethodQuery(Qt::InputMethodQuery query) const
{
    const QVariant answer = _pHost->query(query);
    return answer.isValid() ? answer : QOpenGLWidget::inputMethodQuery(query);
}

void ViewWidget::initializeGL() { _pHost->initialize(); }

void ViewWidget::paintGL() { _pHost->paint(); }

bool ViewWidget::event(QEvent* pEvent)
{
    // Qt asks while it is constructed as well, and what the view does may end this.
    const QPointer<QObject> pThis(this);
    return (_pHost != nullptr && _pHost->handle(pEvent)) || pThis.isNull() || QOpenGLWidget::event(pEvent);
}

} // namespace gui::qt
