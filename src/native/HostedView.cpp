#include <gui/gl/port/HostedView.h>

#include <gui/gl/Context.h>
#include <gui/gl/CurrentContext.h>
#include <gui/gl/View.h>
#include <gui/gl/port/Zav.h>
#include <gui/port/RunLoop.h>
#include <gui/port/WindowSystem.h>
#include <vo/Log.h>

#include <epoxy/gl.h>

#include <utility>

namespace gui::gl
{

namespace
{

gui::RunLoop& hostsLoop() { return gui::WindowSystem::instance().getRunLoop(); }

unsigned int boundFramebuffer()
{
    GLint framebuffer = 0;
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &framebuffer);
    return static_cast<unsigned int>(framebuffer);
}

void enable(GLenum what, bool isOn) { isOn ? glEnable(what) : glDisable(what); }

// The colours stay, and so does all state.
void makeOpaque(unsigned int framebuffer)
{
    const unsigned int framebufferBefore = boundFramebuffer();
    const bool isScissored = glIsEnabled(GL_SCISSOR_TEST) != 0;
    GLboolean mask[4]{};
    // OpenGL ES 3.1 has one mask for all.
    const bool isES = Context::isES();
    isES ? glGetBooleanv(GL_COLOR_WRITEMASK, mask) : glGetBooleani_v(GL_COLOR_WRITEMASK, 0, mask);
    constexpr GLfloat cOpaque[]{0, 0, 0, 1};
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer);
    glDisable(GL_SCISSOR_TEST);
    isES ? glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_TRUE) : glColorMaski(0, GL_FALSE, GL_FALSE, GL_FALSE, GL_TRUE);
    glClearBufferfv(GL_COLOR, 0, cOpaque);
    isES ? glColorMask(mask[0], mask[1], mask[2], mask[3]) : glColorMaski(0, mask[0], mask[1], mask[2], mask[3]);
    enable(GL_SCISSOR_TEST, isScissored);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebufferBefore);
}

} // namespace

// A call of its client may end the widget, which the surface outlives until that call is over.
class HostedView::Surface final : public NativeSurface
{
public:
    Surface(HostedView& host, NativeSurfaceClient& client)
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
        if (_pHost == nullptr)
            return;
        // The toolkit presents what it has had painted; a frame that was drawn at another time is to be seen as well.
        if (!_pHost->_isPainting)
            _pHost->_widget.requestPaint();
        else if (_pHost->_widget.needsOpaqueFrames())
            makeOpaque(_pHost->getFramebuffer());
    }
    td::Size<double> getSize() const override
    {
        return _pHost != nullptr ? _pHost->_widget.getSize() : td::Size<double>(1, 1);
    }
    float getBackingScale() const override { return _pHost != nullptr ? _pHost->_widget.getBackingScale() : 1; }
    td::Size<int> getDrawableSize() const override
    {
        return _pHost != nullptr ? _pHost->_widget.getDrawableSize() : td::Size<int>(1, 1);
    }
    unsigned int getDefaultFramebuffer() const override { return _pHost != nullptr ? _pHost->getFramebuffer() : 0; }
    void setNeedsDisplay() override
    {
        if (_pHost != nullptr)
            _pHost->_widget.requestPaint();
    }
    void setCursor(gui::Cursor::Type type) override
    {
        if (_pHost != nullptr)
            _pHost->_widget.setCursor(type);
    }
    void setTextInput(bool isOn) override
    {
        if (_pHost != nullptr)
            _pHost->_widget.setTextInput(_pHost->_takesText = isOn, _pHost->_caret);
    }
    void setTextInputRect(const td::RectNormalized<double>& rect) override
    {
        if (_pHost != nullptr)
            _pHost->_widget.setTextInput(_pHost->_takesText, _pHost->_caret = rect);
    }
    void startFrameClock(float minFPS, float maxFPS) override
    {
        if (_pHost != nullptr)
            hostsLoop().startFrameClock(_pHost, minFPS, maxFPS);
    }
    void stopFrameClock() override
    {
        if (_pHost == nullptr)
            return;
        hostsLoop().forget(_pHost);
        _pHost->_nTicksAhead = 0;
        _pHost->_isTickDue = false;
    }

private:
    HostedView* _pHost; // null when it has gone
};

HostedView::Maker HostedView::makerOf(View& view, const Context& context)
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

Context HostedView::getDefaultContext()
{
    return {DepthBuffer::Size::Bits24, StencilBuffer::Size::Bits8, Context::Profile::Core41};
}

HostedView::HostedView(HostWidget& widget, Maker make)
    : _widget(widget)
    , _make(std::move(make))
    , _pClient(std::make_shared<NativeSurfaceClient*>(nullptr))
{
}

HostedView::~HostedView() { end(); }

const HostWidget* HostedView::widgetOf(const gui::NativeView* pClockedView)
{
    const auto* const pHosted = dynamic_cast<const HostedView*>(pClockedView);
    return pHosted != nullptr ? &pHosted->_widget : nullptr;
}

bool HostedView::makeCurrent()
{
    if (_isContextLost || _widget.getContext() == nullptr || !_widget.makeContextCurrent())
        return false;
    CurrentContext::set(_widget.getContext());
    return true;
}

unsigned int HostedView::getFramebuffer()
{
    const unsigned int name = _widget.getFramebuffer();
    if (name != HostWidget::s_boundFramebuffer)
        return name;
    if (_isBound)
        return _framebuffer;
    _widget.bindFramebuffer();
    return boundFramebuffer();
}

void HostedView::keepDepthTest()
{
    // One that no paint has followed yet stays.
    if (!_isDepthTest && _widget.getContext() != nullptr && _widget.makeContextCurrent())
        _isDepthTest = glIsEnabled(GL_DEPTH_TEST) != 0;
}

// What the toolkit has prepared, and what it has spoiled doing so.
void HostedView::takeOver()
{
    _isBound = true;
    if (_widget.getFramebuffer() == HostWidget::s_boundFramebuffer)
        _framebuffer = boundFramebuffer();
    if (const std::optional<bool> isDepthTest = std::exchange(_isDepthTest, std::nullopt))
        enable(GL_DEPTH_TEST, *isDepthTest);
}

void HostedView::begin()
{
    if (std::exchange(_isBegun, true))
    {
        goOn();
        return;
    }
    _pContext = _widget.getContext();
    takeOver();
    _size = _widget.getSize();
    _scale = _widget.getBackingScale();
    {
        const zav::SurfaceScope scope(
            [this](NativeSurfaceClient& client, const PixelFormat& format, auto&) -> std::unique_ptr<NativeSurface>
            {
                if (*_pClient != nullptr)
                    return nullptr; // a second view
                _nSamplesAsked = decodePixelFormat(format).nSamples;
                return std::make_unique<Surface>(*this, client);
            });
        _pView = _make();
    }
    if (*_pClient != nullptr && _widget.isShown())
        enter();
    _isBound = false;
    CurrentContext::set(nullptr);
}

void HostedView::contextLost()
{
    if (!_isBegun || _isEnded || _isContextLost)
        return;
    const bool works = _widget.getContext() == _pContext && makeCurrent();
    if (*_pClient != nullptr)
        (*_pClient)->contextLost(works);
    _isContextLost = true;
    CurrentContext::died(_pContext);
    CurrentContext::set(nullptr);
}

// In another context that is the widget's now.
void HostedView::goOn()
{
    if (_isEnded || (!_isContextLost && _widget.getContext() == _pContext))
        return;
    contextLost();
    _isContextLost = false;
    _pContext = _widget.getContext();
    if (*_pClient != nullptr && makeCurrent())
    {
        takeOver();
        (*_pClient)->contextReplaced();
        _isBound = false;
        _widget.requestPaint();
    }
    CurrentContext::set(nullptr);
}

void HostedView::enter()
{
    if (std::exchange(_isEntered, true))
        return;
    // Entering alone tells the view of no new size.
    followGeometry();
    if (*_pClient != nullptr)
        (*_pClient)->enteredWindow();
}

void HostedView::setVisible(bool isVisible)
{
    if (*_pClient == nullptr)
        return;
    if (isVisible)
        enter();
    else if (std::exchange(_isEntered, false))
        (*_pClient)->leftWindow();
    CurrentContext::set(nullptr);
}

// Sizes come with and without events, and a scale may change between two paints.
void HostedView::followGeometry()
{
    const float scale = _widget.getBackingScale();
    const bool isScaleNew = std::exchange(_scale, scale) != scale;
    const td::Size<double> size = _widget.getSize();
    const bool isSizeNew = std::exchange(_size, size) != size;
    if (isScaleNew)
        (*_pClient)->scaleChanged();
    if (isSizeNew && *_pClient != nullptr)
        (*_pClient)->sizeChanged();
}

void HostedView::reportSamples() const
{
    const int nSamples = zav::getSamples(_pView);
    if (nSamples < _nSamplesAsked)
        vo::dbgLog("Warning! %s asked for %d samples, got %d", _widget.getName(), _nSamplesAsked, nSamples);
}

void HostedView::paint()
{
    if (*_pClient == nullptr)
        return;
    _isPainting = true;
    takeOver();
    // Not before: some widgets have a framebuffer in a paint only.
    if (!std::exchange(_isFormatReported, true))
        reportSamples();
    if (std::exchange(_nTicksAhead, 0) > 0)
        hostsLoop().setVisible(this, true);
    if (_widget.isShown())
        enter();
    if (*_pClient != nullptr)
        followGeometry();
    if (*_pClient != nullptr)
        std::exchange(_isTickDue, false) ? (*_pClient)->onFrameTick() : (*_pClient)->drawNow();
    _isPainting = _isBound = false;
    CurrentContext::set(nullptr);
}

void HostedView::onFrameTick()
{
    _isTickDue = true;
    _widget.requestPaint();
    constexpr int cMostAhead = 3;
    if (++_nTicksAhead >= cMostAhead)
        hostsLoop().setVisible(this, false);
}

bool HostedView::tell(const std::function<bool(const SharedClient&)>& tell)
{
    if (*_pClient == nullptr)
        return false;
    makeCurrent();
    // It may end all of this.
    const SharedClient pClient = _pClient;
    const bool isUsed = tell(pClient);
    CurrentContext::set(nullptr);
    return isUsed;
}

void HostedView::end()
{
    if (!_isBegun || std::exchange(_isEnded, true))
        return;
    if (*_pClient != nullptr)
    {
        makeCurrent();
        (*_pClient)->windowClosed();
    }
    if (_pSurface != nullptr)
        _pSurface->detach();
    if (!_isContextLost)
        CurrentContext::died(_pContext);
    CurrentContext::set(nullptr);
}

} // namespace gui::gl
