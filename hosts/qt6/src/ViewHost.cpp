#include "ViewHost.h"

#include "QtHost.h"

#include <gui/gl/CurrentContext.h>
#include <gui/gl/View.h>
#include <gui/gl/port/PixelFormat.h>
#include <gui/gl/port/Zav.h>
#include <vo/Log.h>

#include <QEvent>

#include <algorithm>
#include <utility>

namespace gui::qt
{

namespace
{

Qt::CursorShape toShape(gui::Cursor::Type type)
{
    switch (type)
    {
    case gui::Cursor::Type::Pan:
        return Qt::SizeAllCursor;
    case gui::Cursor::Type::Text:
        return Qt::IBeamCursor;
    default:
        return Qt::ArrowCursor;
    }
}

} // namespace

QSurfaceFormat toFormat(const gui::gl::Context& context)
{
    const gui::gl::PixelFormatSizes sizes = gui::gl::decodePixelFormat(gui::gl::requestPixelFormat(context));
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGL);
    format.setProfile(QSurfaceFormat::CoreProfile);
    format.setVersion(sizes.is41 ? 4 : 3, sizes.is41 ? 1 : 2);
    format.setDepthBufferSize(sizes.depthBits);
    format.setStencilBufferSize(sizes.stencilBits);
    format.setSamples(sizes.nSamples > 1 ? sizes.nSamples : 0);
    // What blending leaves in the alpha of a window would let the desktop show through.
    format.setAlphaBufferSize(0);
    return format;
}

ViewHost::Maker makeContextOf(gui::gl::View& view, const gui::gl::Context& context)
{
    return [&view, context]
    {
        using Event = gui::InputDevice::Event;
        view.createContext(context, {Event::CursorEnterLeave, Event::PrimaryClicks, Event::SecondaryClicks,
                                     Event::CursorMove, Event::CursorDrag, Event::ScrollAndZoom, Event::Keyboard,
                                     Event::OtherClicks, Event::OtherDrag});
        return &view;
    };
}

// A call of its client may end the widget, which the surface outlives until that call is over.
class ViewHost::Surface : public gui::gl::NativeSurface
{
public:
    Surface(ViewHost& host, gui::gl::NativeSurfaceClient& client)
        : _pHost(&host)
    {
        host._pSurface = this;
        *host._pClient = &client;
    }
    Surface(const Surface&) = delete;
    Surface& operator=(const Surface&) = delete;
    ~Surface() override { detach(); }

    // The host goes, or this.
    void detach()
    {
        if (_pHost == nullptr)
            return;
        stopFrameClock();
        *_pHost->_pClient = nullptr;
        _pHost->_pSurface = nullptr;
        _pHost = nullptr;
    }

    bool makeCurrent() override { return _pHost != nullptr && _pHost->makeCurrent(); }
    void flush() override
    {
        // Qt presents what it has had painted; a frame that was drawn at another time is to be seen as well.
        if (_pHost != nullptr && !_pHost->_isPainting)
            _pHost->requestPaint();
    }
    td::Size<double> getSize() const override
    {
        const QSize size = _pHost != nullptr ? _pHost->getSize() : QSize(1, 1);
        return {double(size.width()), double(size.height())};
    }
    float getBackingScale() const override { return _pHost != nullptr ? float(_pHost->getRatio()) : 1; }
    td::Size<int> getDrawableSize() const override
    {
        const QSize size = _pHost != nullptr ? _pHost->getSize() * _pHost->getRatio() : QSize(1, 1);
        return {std::max(size.width(), 1), std::max(size.height(), 1)};
    }
    unsigned int getDefaultFramebuffer() const override { return _pHost != nullptr ? _pHost->getFramebuffer() : 0; }
    void setNeedsDisplay() override
    {
        if (_pHost != nullptr)
            _pHost->requestPaint();
    }
    void setCursor(gui::Cursor::Type type) override
    {
        if (_pHost != nullptr)
            _pHost->showCursor(toShape(type));
    }
    void setTextInput(bool isOn) override
    {
        if (_pHost != nullptr)
            _pHost->setTakesText(_pHost->_takesText = isOn);
    }
    void setTextInputRect(const td::RectNormalized<double>& rect) override
    {
        if (_pHost == nullptr)
            return;
        _pHost->_textRect = {rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top};
        _pHost->setTakesText(_pHost->_takesText);
    }
    void startFrameClock(float minFPS, float maxFPS) override
    {
        if (_pHost != nullptr)
            runLoop().startFrameClock(_pHost, minFPS, maxFPS);
    }
    void stopFrameClock() override
    {
        if (_pHost == nullptr)
            return;
        runLoop().forget(_pHost);
        _pHost->_nTicksAhead = 0;
        _pHost->_isTickDue = false;
    }

private:
    ViewHost* _pHost; // null when it has gone
};

ViewHost::ViewHost(Maker make, const gui::gl::Context& context, const char* name)
    : _make(std::move(make))
    , _asked(context)
    , _name(name)
{
    QtHost::use();
}

ViewHost::~ViewHost() = default;

bool ViewHost::makeCurrent()
{
    QOpenGLContext* const pContext = getContext();
    if (pContext == nullptr || !pContext->isValid())
        return false;
    makeContextCurrent();
    if (QOpenGLContext::currentContext() != pContext)
        return false;
    gui::gl::CurrentContext::set(pContext);
    return true;
}

void ViewHost::reportFormat() const
{
    const gui::gl::PixelFormatSizes asked = gui::gl::decodePixelFormat(gui::gl::requestPixelFormat(_asked));
    const int depthBits = getDepthBits();
    const int stencilBits = getStencilBits();
    const int nSamples = zav::getSamples(_pView);
    if (depthBits < asked.depthBits || stencilBits < asked.stencilBits || nSamples < asked.nSamples)
        vo::dbgLog("Warning! %s asked for %d depth bits, %d stencil bits and %d samples, got %d, %d and %d", _name,
                   asked.depthBits, asked.stencilBits, asked.nSamples, depthBits, stencilBits, nSamples);
}

void ViewHost::initialize()
{
    if (_pView != nullptr)
    {
        vo::dbgLog("Error! %s has another GL context, and its view is of the first one", _name);
        return;
    }
    QOpenGLContext* const pContext = getContext();
    const QSurfaceFormat format = pContext->format();
    if (pContext->isOpenGLES() || format.version() < std::pair(3, 2))
    {
        vo::dbgLog("ERROR! %s needs OpenGL 3.2, and Qt has OpenGL%s %d.%d", _name, pContext->isOpenGLES() ? " ES" : "",
                   format.majorVersion(), format.minorVersion());
        return;
    }
    _connection = QObject::connect(pContext, &QOpenGLContext::aboutToBeDestroyed, [this] { close(); });
    _size = getSize();
    _ratio = getRatio();
    {
        const zav::SurfaceScope scope(
            [this](auto& client, auto&, auto&) -> std::unique_ptr<gui::gl::NativeSurface>
            {
                if (*_pClient != nullptr)
                    return nullptr; // a second view
                return std::make_unique<Surface>(*this, client);
            });
        _pView = _make();
    }
    if (*_pClient != nullptr && isShown())
        enter();
    gui::gl::CurrentContext::set(nullptr);
}

void ViewHost::enter()
{
    if (std::exchange(_isEntered, true))
        return;
    (*_pClient)->enteredWindow();
}

void ViewHost::onVisible(bool isVisible)
{
    if (*_pClient == nullptr)
        return;
    if (isVisible)
        enter();
    else if (std::exchange(_isEntered, false))
        (*_pClient)->leftWindow();
    gui::gl::CurrentContext::set(nullptr);
}

// Sizes come with and without events, and a scale may change between two paints: what counts is what is painted.
void ViewHost::followGeometry()
{
    const qreal ratio = getRatio();
    const bool isRatioNew = std::exchange(_ratio, ratio) != ratio;
    const QSize size = getSize();
    const bool isSizeNew = std::exchange(_size, size) != size;
    if (isRatioNew)
        (*_pClient)->scaleChanged();
    if (isSizeNew && *_pClient != nullptr)
        (*_pClient)->sizeChanged();
}

void ViewHost::paint()
{
    if (*_pClient == nullptr)
        return;
    _isPainting = true;
    // Not before: a widget's framebuffer comes behind its context.
    if (!std::exchange(_isFormatReported, true))
        reportFormat();
    if (std::exchange(_nTicksAhead, 0) > 0)
        runLoop().setVisible(this, true);
    if (isShown())
        enter();
    if (*_pClient != nullptr)
        followGeometry();
    if (*_pClient != nullptr)
        std::exchange(_isTickDue, false) ? (*_pClient)->onFrameTick() : (*_pClient)->drawNow();
    _isPainting = false;
    // Qt makes its own contexts current without a word.
    gui::gl::CurrentContext::set(nullptr);
}

void ViewHost::onFrameTick()
{
    _isTickDue = true;
    requestPaint();
    // Nobody sees it: the clock goes on with the next paint.
    constexpr int cMostAhead = 3;
    if (++_nTicksAhead >= cMostAhead)
        runLoop().setVisible(this, false);
}

void ViewHost::getSize(td::Size<double>& size) const
{
    const QSize points = getSize();
    size = {double(points.width()), double(points.height())};
}

bool ViewHost::handle(QEvent* pEvent)
{
    if (pEvent->type() == QEvent::Show || pEvent->type() == QEvent::Hide)
    {
        onVisible(pEvent->type() == QEvent::Show);
        return false;
    }
    if (*_pClient == nullptr || !QtInput::isInput(*pEvent))
        return false;
    // As in a window of the library's own, handlers may work on what they draw. They may also end all of this.
    makeCurrent();
    const SharedClient pClient = _pClient;
    const bool isUsed = _input.handle(*pEvent, pClient, _takesText);
    gui::gl::CurrentContext::set(nullptr);
    return isUsed;
}

QVariant ViewHost::query(Qt::InputMethodQuery query) const
{
    switch (query)
    {
    case Qt::ImEnabled:
        return _takesText;
    case Qt::ImCursorRectangle:
        return _textRect;
    default:
        return {};
    }
}

void ViewHost::close()
{
    QObject::disconnect(_connection);
    QOpenGLContext* const pContext = getContext();
    if (*_pClient != nullptr)
    {
        makeCurrent();
        (*_pClient)->windowClosed();
    }
    if (_pSurface != nullptr)
        _pSurface->detach();
    if (pContext != nullptr)
        gui::gl::CurrentContext::died(pContext);
    gui::gl::CurrentContext::set(nullptr);
}

} // namespace gui::qt
