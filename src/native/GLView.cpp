#include "GLView.h"

#include "EventTranslation.h"
#include "GLDebug.h"
#include "GLViewBusy.h"

#include "../capture/Capture.h"
#include "../context/FrameReader.h"
#include "../context/ResetStatus.h"
#include "../context/Samples.h"
#include "../view/ViewHelper.h"
#include "../view/ViewLayers.h"

#include <gui/Display.h>
#include <gui/Drop.h>
#include <gui/Key.h>
#include <gui/TextComposition.h>
#include <gui/Texture.h>
#include <gui/gl/FrameLedger.h>
#include <gui/gl/StateGuard.h>
#include <gui/gl/View.h>
#include <gui/gl/port/FrameObserver.h>
#include <td/Assert.h>
#include <vo/UTFConverter.h>

#include <epoxy/gl.h>

#include <cmath>
#include <utility>

namespace gui::gl
{

GLView::GLView(View* pView, const Context& context, unsigned short events)
    : _pCppView(pView)
    , _events(events)
    , _continuousRender(context.isAnimation() || pView->isContRenderMode()) // it may have been started already
    , _isDebugged(isGLDebugWanted())
{
    std::tie(_minFPS, _maxFPS) = context.getPreferredFrameRateRange();
}

GLView::~GLView() = default;

GLView* GLView::createView(View* pView, const td::PointAndSize<double>* pGeometry, unsigned short events,
                           const Context& context, const SurfaceFactory& makeSurface)
{
    constexpr td::Size<double> cInitialSize{300, 300};
    auto* const pNative = new GLView(pView, context, events);
    const Busy busy(*pNative);
    // Until the view is complete, every way out takes it back; Busy deletes it.
    struct Incomplete
    {
        GLView* pNative;
        View* pView;
        ~Incomplete()
        {
            if (pNative == nullptr)
                return;
            if (!pNative->_isReleased)
                ViewHelper(pView).setHandle(nullptr);
            pNative->_pCppView = nullptr;
            pNative->_isReleased = true;
        }
    } incomplete{pNative, pView};

    pNative->_pSurface =
        makeSurface(*pNative, requestPixelFormat(context), pGeometry != nullptr ? pGeometry->size : cInitialSize);
    if (pNative->_pSurface == nullptr || !pNative->makeCurrentContext())
        return nullptr;
    // With the handle in place, onInit can use the whole view.
    ViewHelper helper(pView);
    helper.setHandle(pNative);
    helper.setContRenderMode(pNative->_continuousRender);
    pNative->prepareOpenGL();
    helper.onInit();
    // onInit may have ended the view's life, and so may the log's sink.
    incomplete.pNative = nullptr;
    if (!pNative->_isReleased && pNative->makeCurrentContext())
    {
        if (pNative->_isDebugged)
            logGLErrors("onInit", pNative->_saidGLErrors);
        pNative->keepState();
    }
    return pNative->_isReleased ? nullptr : pNative;
}

void GLView::lookAtContext()
{
    logGLDebugMessages();
    glGetIntegerv(GL_MAJOR_VERSION, &_majorVersion);
    glGetIntegerv(GL_MINOR_VERSION, &_minorVersion);
    _contextID = CurrentContext::getID();
    _tellsResets = tellsResets();
}

void GLView::prepareOpenGL()
{
    lookAtContext();
    _size = _pSurface->getSize();
    updateViewport();
    _screenFrameBufferID = _pSurface->getDefaultFramebuffer();
    ViewHelper(_pCppView).setScreenFB(_screenFrameBufferID);
}

// A host's framebuffer may have another name in every frame.
void GLView::updateScreenFramebuffer()
{
    const unsigned int framebuffer = _pSurface->getDefaultFramebuffer();
    if (framebuffer == _screenFrameBufferID)
        return;
    _screenFrameBufferID = framebuffer;
    ViewHelper(_pCppView).setScreenFB(framebuffer);
}

void GLView::release()
{
    const Busy busy(*this); // deletes it, now or later
    closeWindow();
    _isReleased = true;
    cleanResources();
}

void GLView::getSize(td::Size<double>& size) const
{
    size = _pSurface != nullptr ? _pSurface->getSize() : td::Size<double>();
}

void GLView::reDraw()
{
    if (_pSurface != nullptr && _pCppView != nullptr)
        _pSurface->setNeedsDisplay();
}

void* GLView::getNativeWindow() const { return _pSurface != nullptr ? _pSurface->getNativeWindow() : nullptr; }

bool GLView::makeCurrentContext() { return _pSurface != nullptr && _pSurface->makeCurrent(); }

bool GLView::beginFrame() { return _pSurface != nullptr && _pSurface->beginFrame(); }

bool GLView::has(gui::InputDevice::Event event) const
{
    return _pCppView != nullptr && (_events & static_cast<unsigned short>(event)) != 0;
}

// The window.

void GLView::enteredWindow()
{
    if (_pCppView == nullptr || !_pSurface->followWindow())
        return;
    const Busy busy(*this);
    _isInWindow = true;
    updateViewport();
    startAnimation();
    _backingScale = _pSurface->getBackingScale();
    updateGeometry();
    tellScale();
    reDraw();
}

void GLView::leftWindow()
{
    stopAnimation();
    _isInWindow = false;
}

void GLView::windowClosed()
{
    const Busy busy(*this);
    _isClosed = true;
    cleanResources();
}

bool GLView::updateViewport()
{
    const td::Size<int> viewport = _pSurface->getDrawableSize();
    if (viewport == _viewport)
        return false;
    _viewport = viewport;
    glViewport(0, 0, viewport.width, viewport.height);
    return true;
}

// @return whether the size is another than the view was told last
bool GLView::updateGeometry()
{
    const td::Size<double> size = _pSurface->getSize();
    if (std::exchange(_size, size) == size)
        return false;
    gui::BaseViewHelper(_pCppView).onGeometryChange({{0, 0}, size});
    return true;
}

void GLView::tellScale()
{
    if (_pCppView == nullptr || !makeCurrentContext())
        return;
    ViewHelper helper(_pCppView);
    helper.setPixelHiDPIScale(_backingScale);
    helper.setPixelHiDPISizeScale(_backingScale);
}

void GLView::sizeChanged()
{
    if (_pCppView == nullptr || !_pSurface->followWindow())
        return;
    const Busy busy(*this);
    const bool isViewportNew = updateViewport();
    const bool isSizeNew = updateGeometry();
    if (isSizeNew && _pCppView != nullptr && makeCurrentContext())
        ViewHelper(_pCppView).onResize(_size);
    if (isSizeNew || isViewportNew)
        reDraw();
}

void GLView::scaleChanged()
{
    if (_pCppView == nullptr || !_pSurface->followWindow())
        return;
    const Busy busy(*this);
    updateViewport();
    const float scale = _pSurface->getBackingScale();
    if (std::exchange(_backingScale, scale) == scale)
        return;
    updateGeometry();
    tellScale();
    reDraw();
}

// Drawing.

// What the window system redraws is in the view's own coordinates, what a tick draws is the view's frame in its window.
void GLView::drawNow()
{
    td::Size<double> size;
    getSize(size);
    drawRect({0, 0, size.width / _scale, size.height / _scale});
}

void GLView::onFrameTick()
{
    if (isHeld())
        return;
    td::Size<double> size;
    getSize(size);
    drawRect({0, 0, size.width, size.height});
}

bool GLView::isHeld() const
{
    FrameObserver* const pObserver = FrameObserver::get();
    return pObserver != nullptr && _pCppView != nullptr && pObserver->isHeld(*_pCppView);
}

FrameObserver::Frame GLView::observedFrame() const
{
    return {*_pCppView, _screenFrameBufferID, _pSurface->getDrawableSize(),
            static_cast<double>(_pSurface->getBackingScale())};
}

bool GLView::drawInto(gui::Texture& picture)
{
    if (_isDrawing)
        return false;
    const Busy busy(*this);
    struct Wanted
    {
        gui::Texture*& pPicture;
        ~Wanted() { pPicture = nullptr; }
    } const wanted{_pPicture = &picture};
    drawNow();
    return _pPicture == nullptr; // the frame took it
}

void GLView::drawRect(const td::RectNormalized<double>& rect)
{
    if (_pCppView == nullptr || rect.right - rect.left == 0 || rect.bottom - rect.top == 0)
        return;
    if (_isDrawing)
    {
        // A loop that turns inside onDraw: this frame has to wait for the one under way.
        reDraw();
        return;
    }
    const Busy busy(*this);
    struct Drawing
    {
        bool& flag;
        ~Drawing() { flag = false; }
    } const drawing{_isDrawing = true};

    if (!hasFrameContext())
        return;
    updateScreenFramebuffer();
    if (_continuousRender && !isHeld() && !ViewHelper(_pCppView).prepareNextFrame())
        setContinuousMode(false);
    if (_pCppView == nullptr || !beginFrame())
        return;
    if (FrameObserver* const pObserver = FrameObserver::get())
        pObserver->frameBegins(observedFrame());
    Capture::beginFrame();
    FrameLedger::begin();
    ViewHelper(_pCppView).onDraw(rect);
    drawLayers();
    FrameLedger::end();
    // A view that came or went in there took the current context with it.
    if (_pCppView == nullptr || !beginFrame())
        return;
    Capture::endFrame(_screenFrameBufferID, _pSurface->getDrawableSize());
    if (FrameObserver* const pObserver = FrameObserver::get())
        pObserver->frameEnds(observedFrame());
    readGrabbedFrame();
    if (_pPicture != nullptr && readFrame(_screenFrameBufferID, _pSurface->getDrawableSize(), *_pPicture))
        _pPicture = nullptr;
    if (_isDebugged)
        logGLErrors("onDraw", _saidGLErrors);
    if (std::exchange(_isStateWanted, false))
        keepState();
    // A view at rest would never have them.
    if (FrameRecorder::instance().isOn() &&
        FrameRecorder::instance().onFrame(_recording, _screenFrameBufferID, _pSurface->getDrawableSize()))
        reDraw();
    _pSurface->flush();
}

void GLView::drawLayers()
{
    if (_pCppView == nullptr || !ViewLayers::areOver(*_pCppView) || !beginFrame())
        return;
    const StateGuard guard;
    glBindFramebuffer(GL_FRAMEBUFFER, _screenFrameBufferID);
    glViewport(0, 0, _viewport.width, _viewport.height);
    glDisable(GL_SCISSOR_TEST);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_STENCIL_TEST);
    glDisable(GL_CULL_FACE);
    Context::setPolygonMode(Context::PolygonMode::Fill);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    ViewLayers::draw(*_pCppView);
}

void GLView::readGrabbedFrame()
{
    if (_pGrabFrameTexture == nullptr)
        return;
    gui::Texture* const pTexture = std::exchange(_pGrabFrameTexture, nullptr);
    // The image is the application's: it may have put something else into it since.
    constexpr unsigned int cBytesPerPixel = 4;
    TD_ASSERT(pTexture->getBytesPerPixel() == cBytesPerPixel);
    // The application may have left another framebuffer to read from.
    const BoundForReading bound(_screenFrameBufferID, _pSurface->getDrawableSize());
    glReadPixels(0, 0, pTexture->getWidth(), pTexture->getHeight(), GL_RGBA, GL_UNSIGNED_BYTE, pTexture->getBytes());
    ViewHelper(_pCppView).sendAsyncOnFrameRead(pTexture);
}

// The frame clock.

void GLView::setContinuousMode(bool isContinuous)
{
    if (!isContinuous)
        stopAnimation();
    _continuousRender = isContinuous;
    if (_pCppView != nullptr)
        ViewHelper(_pCppView).setContRenderMode(isContinuous);
    if (isContinuous && _isInWindow)
        startAnimation();
}

void GLView::startAnimation()
{
    if (!_continuousRender || _hasFrameClock || _pSurface == nullptr || _pCppView == nullptr)
        return;
    _hasFrameClock = true;
    _pSurface->startFrameClock(_minFPS, _maxFPS);
}

void GLView::stopAnimation()
{
    if (!_hasFrameClock)
        return;
    _hasFrameClock = false;
    if (_pSurface != nullptr)
        _pSurface->stopFrameClock();
}

// Clean-up.

void GLView::cleanResources()
{
    const Busy busy(*this);
    stopAnimation();
    _pGrabFrameTexture = nullptr;
    if (_pCppView == nullptr)
        return;
    View* const pView = std::exchange(_pCppView, nullptr);
    if (makeCurrentContext())
        ViewHelper(pView).cleanResources();
}

float GLView::getBackingScale() const
{
    return _pSurface != nullptr ? _pSurface->getBackingScale() : gui::Display::getDefaultBackingScaleFactor();
}

void GLView::setScale(double scale)
{
    TD_ASSERT(scale > 0 && std::isfinite(scale));
    _scale = scale;
    reDraw();
}

void GLView::printMe() const { TD_ASSERT(false); }

void GLView::printMeToPDF(const char*) const { TD_ASSERT(false); }

int GLView::getOpenGLVersion(int& minor) const
{
    minor = _pSurface != nullptr ? _minorVersion : 0;
    return _pSurface != nullptr ? _majorVersion : 0;
}

int GLView::getSamples() { return makeCurrentContext() ? samplesOf(_pSurface->getDefaultFramebuffer()) : 0; }

// Pointer, keys, focus. The view fills its surface: but for its scale, a point of the window is a point of the view.

td::Point<double> GLView::toView(const td::Point<double>& windowPoint) const
{
    return {windowPoint.x / _scale, windowPoint.y / _scale};
}

InputDevice GLView::pointerRecord(const td::Point<double>& windowPoint, unsigned int modifiers,
                                  InputDevice::Button button) const
{
    const td::Point<double> point = toView(windowPoint);
    return {point, point, windowPoint, modifiers, InputDevice::Type::Mouse, button};
}

InputDevice GLView::clickRecord(const ButtonEvent& event, InputDevice::Button button, unsigned short nClicks) const
{
    InputDevice device = pointerRecord(event.point, event.modifiers, button);
    gui::InputDeviceHelper(&device).setNoOfEvents(nClicks);
    return device;
}

void GLView::onButton(const ButtonEvent& event)
{
    if (event.button > ButtonEvent::Button::Right)
    {
        onOtherButton(event);
        return;
    }
    const bool isSecondaryWanted = has(InputDevice::Event::SecondaryClicks);
    const bool isPrimaryWanted = has(InputDevice::Event::PrimaryClicks);
    const bool isCtrl = gui::isCtrlPressed(event.modifiers);
    if (event.button == ButtonEvent::Button::Left && event.isDown && !event.isLeftDown && !isCtrl)
        return; // a press that is over already
    const Busy busy(*this);
    ViewHelper helper(_pCppView);

    // With Control a press counts as the secondary button's only when the left button is not seen down, a release
    // always.
    const bool isSecondary =
        event.button == ButtonEvent::Button::Right || (isCtrl && !(event.isDown && event.isLeftDown));
    if (isSecondary)
    {
        if (!isSecondaryWanted || !makeCurrentContext())
            return;
        const InputDevice device = clickRecord(event, InputDevice::Button::Secondary, event.nClicks);
        if (event.isDown)
            helper.onSecondaryButtonPressed(device);
        else
            helper.onSecondaryButtonReleased(device);
        return;
    }
    if (!isPrimaryWanted || !makeCurrentContext())
        return;
    if (!event.isDown)
        helper.onPrimaryButtonReleased(clickRecord(event, InputDevice::Button::Primary, event.nClicks));
    else if (event.nClicks == 2)
        helper.onPrimaryButtonDblClick(clickRecord(event, InputDevice::Button::Primary, 1));
    else
        helper.onPrimaryButtonPressed(clickRecord(event, InputDevice::Button::Primary, event.nClicks));
}

void GLView::onOtherButton(const ButtonEvent& event)
{
    if (!has(InputDevice::Event::OtherClicks) || !makeCurrentContext())
        return;
    const Busy busy(*this);
    const InputDevice device = clickRecord(event, toRecordButton(event.button), event.nClicks);
    if (event.isDown)
        ViewHelper(_pCppView).onOtherButtonPressed(device);
    else
        ViewHelper(_pCppView).onOtherButtonReleased(device);
}

void GLView::onMotion(const MotionEvent& event)
{
    if (_pCppView == nullptr)
        return;
    const Busy busy(*this);
    ViewHelper helper(_pCppView);
    switch (event.kind)
    {
    case MotionEvent::Kind::Moved:
        if (has(InputDevice::Event::CursorMove) && makeCurrentContext())
            helper.onCursorMoved(pointerRecord(event.point, event.modifiers, InputDevice::Button::None));
        break;
    case MotionEvent::Kind::Dragged:
        if (has(InputDevice::Event::CursorDrag) && makeCurrentContext())
            helper.onCursorDragged(pointerRecord(event.point, event.modifiers, InputDevice::Button::Primary));
        break;
    case MotionEvent::Kind::OtherDragged:
        if (has(InputDevice::Event::OtherDrag) && makeCurrentContext())
            helper.onOtherDragged(pointerRecord(event.point, event.modifiers, toRecordButton(event.button)));
        break;
    case MotionEvent::Kind::Entered:
        _pSurface->setCursor(_currentCursorType);
        if (has(InputDevice::Event::CursorEnterLeave) && makeCurrentContext())
            helper.onCursorEntered(pointerRecord(event.point, event.modifiers, InputDevice::Button::None));
        break;
    case MotionEvent::Kind::Exited:
        if (has(InputDevice::Event::CursorEnterLeave) && makeCurrentContext())
            helper.onCursorExited(pointerRecord(event.point, event.modifiers, InputDevice::Button::None));
        break;
    }
}

bool GLView::onWheel(const WheelEvent& event)
{
    if (!has(InputDevice::Event::ScrollAndZoom) || !makeCurrentContext())
        return false;
    const Busy busy(*this);
    if (isWheelZoom(event))
    {
        InputDevice device = pointerRecord(event.point, event.modifiers, InputDevice::Button::Wheel);
        gui::InputDeviceHelper(&device).setScale(getWheelZoomFactor(event));
        return ViewHelper(_pCppView).onZoom(device);
    }
    if (event.dx == 0 && event.dy == 0)
        return false;
    // The distance, not a place.
    const td::Point<double> scroll = getWheelScroll(event);
    InputDevice device(scroll, scroll, scroll, event.modifiers, InputDevice::Type::Mouse, InputDevice::Button::Wheel);
    gui::InputDeviceHelper(&device).setPlace(toView(event.point));
    ViewHelper(_pCppView).onScroll(device);
    return true;
}

void GLView::onMagnification(const MagnificationEvent& event)
{
    if (!has(InputDevice::Event::ScrollAndZoom) || !makeCurrentContext())
        return;
    const Busy busy(*this);
    td::Size<double> size;
    getSize(size);
    const td::Point<double> centre{size.width / 2, size.height / 2};
    InputDevice device(centre, centre, centre, event.modifiers, InputDevice::Type::Gesture, InputDevice::Button::None);
    gui::InputDeviceHelper(&device).setScale(getGestureZoomFactor(event.magnification));
    ViewHelper(_pCppView).onZoom(device);
}

bool GLView::onKey(const KeyEvent& event)
{
    const Busy busy(*this);
    std::erase_if(_heldKeys, [&event](const KeyEvent& held) { return held.keyCode == event.keyCode; });
    if (event.isDown)
        _heldKeys.push_back(event);
    FrameObserver* const pObserver = event.isDown ? FrameObserver::get() : nullptr;
    if (pObserver != nullptr && _pCppView != nullptr && makeCurrentContext() &&
        pObserver->keyPressed(*_pCppView, createKey(event)))
        return true;
    if (!has(InputDevice::Event::Keyboard) || !makeCurrentContext())
        return false;
    ViewHelper helper(_pCppView);
    return event.isDown ? helper.onKeyPressed(createKey(event)) : helper.onKeyReleased(createReleasedKey(event));
}

// Text.

void GLView::setTextInput(bool isOn)
{
    if (isOn == _takesText)
        return;
    _takesText = isOn;
    _isComposing = false;
    if (_pSurface != nullptr)
        _pSurface->setTextInput(isOn);
}

void GLView::setTextInputRect(const td::RectNormalized<double>& rect)
{
    const double sum = rect.left + rect.top + rect.right + rect.bottom;
    if (_pSurface != nullptr && std::isfinite(sum))
        _pSurface->setTextInputRect({rect.left * _scale, rect.top * _scale, rect.right * _scale, rect.bottom * _scale});
}

void GLView::onText(const TextEvent& event)
{
    if (_pCppView == nullptr || !_takesText)
        return;
    const std::string text = toTypedText(event);
    if (text.empty() || !makeCurrentContext())
        return;
    const Busy busy(*this);
    _isComposing = false;
    ViewHelper(_pCppView).onTextInput(text);
}

void GLView::onComposition(const CompositionEvent& event)
{
    if (_pCppView == nullptr || !_takesText || (event.text.empty() && !_isComposing) || !makeCurrentContext())
        return;
    const Busy busy(*this);
    _isComposing = !event.text.empty();
    ViewHelper(_pCppView).onTextComposition(toComposition(event));
}

void GLView::onDrop(const DropEvent& event)
{
    if (!has(InputDevice::Event::Drops))
        return;
    gui::Drop drop{event.files, {}, toView(event.point), event.modifiers};
    std::erase(drop.files, "");
    if (drop.files.empty())
        drop.text = vo::UTFConverter::toWellFormed(event.text);
    if ((drop.files.empty() && drop.text.empty()) || !makeCurrentContext())
        return;
    const Busy busy(*this);
    ViewHelper(_pCppView).onDropped(drop);
}

bool GLView::acceptsFirstResponder() const { return has(InputDevice::Event::Keyboard); }

std::uint64_t GLView::getTrackingOptions() const { return gui::gl::getTrackingOptions(_events); }

void GLView::onFocus(bool hasFocus)
{
    const Busy busy(*this);
    if (!hasFocus && _pCppView != nullptr && ViewLayers::areOver(*_pCppView) && makeCurrentContext())
        ViewLayers::onFocusOut(*_pCppView);
    if (!hasFocus)
        letGo();
    if (!_sendFocusEvents || !acceptsFirstResponder() || !makeCurrentContext())
        return;
    gui::DrawableViewHelper helper(_pCppView);
    if (hasFocus)
        helper.onFocusIn();
    else
        helper.onFocusOut();
}

// Where keys go up from now on is not heard.
void GLView::letGo()
{
    onComposition({});
    for (KeyEvent& key : std::exchange(_heldKeys, {}))
    {
        key.isDown = false;
        onKey(key);
    }
}

void GLView::setCursor(gui::Cursor::Type type, bool globally)
{
    if (type == _currentCursorType)
        return;
    _currentCursorType = type;
    if (globally && _pSurface != nullptr)
        _pSurface->setCursor(type);
}

} // namespace gui::gl
