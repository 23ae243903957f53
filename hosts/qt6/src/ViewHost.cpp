#include "ViewHost.h"

#include "QtHost.h"

#include <gui/gl/View.h>
#include <gui/gl/port/PixelFormat.h>
#include <vo/Log.h>

#include <QEvent>
#include <QOpenGLContext>
#include <QScreen>

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
    format.setRenderableType(sizes.isES ? QSurfaceFormat::OpenGLES : QSurfaceFormat::OpenGL);
    format.setProfile(sizes.isES ? QSurfaceFormat::NoProfile : QSurfaceFormat::CoreProfile);
    format.setVersion(sizes.is41 ? 4 : 3, sizes.is41 || sizes.isES ? 1 : 2);
    format.setDepthBufferSize(sizes.depthBits);
    format.setStencilBufferSize(sizes.stencilBits);
    format.setSamples(sizes.nSamples > 1 ? sizes.nSamples : 0);
    // What blending leaves in the alpha of a window would let the desktop show through.
    format.setAlphaBufferSize(0);
    return format;
}

ViewHost::ViewHost(gui::gl::HostedView::Maker make)
    : _view(*this, std::move(make))
{
    QtHost::use();
}

ViewHost::~ViewHost() = default;

void ViewHost::close()
{
    QObject::disconnect(_connection);
    _view.end();
}

void ViewHost::initialize()
{
    QOpenGLContext* const pContext = getQtContext();
    const QSurfaceFormat format = pContext->format();
    if (format.version() < (pContext->isOpenGLES() ? std::pair(3, 1) : std::pair(3, 2)))
    {
        vo::dbgLog("ERROR! %s needs OpenGL 3.2 or OpenGL ES 3.1, and Qt has OpenGL%s %d.%d", getName(),
                   pContext->isOpenGLES() ? " ES" : "", format.majorVersion(), format.minorVersion());
        return;
    }
    QObject::disconnect(_connection);
    _connection = QObject::connect(pContext, &QOpenGLContext::aboutToBeDestroyed, [this] { _view.contextLost(); });
    _view.begin();
}

bool ViewHost::makeContextCurrent()
{
    QOpenGLContext* const pContext = getQtContext();
    if (!pContext->isValid())
        return false;
    bind();
    return QOpenGLContext::currentContext() == pContext;
}

const void* ViewHost::getContext() const { return getQtContext(); }

td::Size<double> ViewHost::getSize() const
{
    const QSize size = getQtSize();
    return {static_cast<double>(size.width()), static_cast<double>(size.height())};
}

td::Size<int> ViewHost::getDrawableSize() const
{
    const QSize size = getQtSize() * getRatio();
    return {std::max(size.width(), 1), std::max(size.height(), 1)};
}

double ViewHost::getDisplayRate() const
{
    const QScreen* const pScreen = getScreen();
    return pScreen != nullptr ? pScreen->refreshRate() : 0;
}

void ViewHost::setCursor(gui::Cursor::Type type) { showCursor(toShape(type)); }

bool ViewHost::handle(QEvent* pEvent)
{
    if (pEvent->type() == QEvent::Show || pEvent->type() == QEvent::Hide)
        _view.setVisible(pEvent->type() == QEvent::Show);
    const bool takesText = _view.takesText();
    if (takesText && QtInput::isTyping(*pEvent))
    {
        pEvent->accept();
        return true;
    }
    if (!QtInput::isInput(*pEvent))
        return false;
    return _view.tell([this, pEvent, takesText](const gui::gl::SharedClient& pClient)
                      { return _input.handle(*pEvent, pClient, takesText); });
}

QVariant ViewHost::query(Qt::InputMethodQuery query) const
{
    const td::RectNormalized<double>& caret = _view.getCaret();
    switch (query)
    {
    case Qt::ImEnabled:
        return _view.takesText();
    case Qt::ImCursorRectangle:
        return QRectF(caret.left, caret.top, caret.right - caret.left, caret.bottom - caret.top);
    default:
        return {};
    }
}

} // namespace gui::qt
