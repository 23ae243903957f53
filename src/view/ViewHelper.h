#pragma once

#include "ViewLayers.h"

#include <gui/gl/View.h>

#include <string_view>

namespace gui
{
struct Drop;
class Key;
class Texture;
} // namespace gui

namespace gui::gl
{

/// The native view's only way up: each operation forwards to the view's protected member of the same name.
class ViewHelper
{
public:
    explicit ViewHelper(View* pView)
        : _pView(pView)
    {
    }

    void setHandle(gui::NativeObject* pNative) { _pView->_handle = pNative; }
    void setScreenFB(unsigned int framebuffer) { _pView->_screenFB = framebuffer; }
    void setPixelHiDPIScale(float scale) { _pView->_pixelHiDPIScale = scale; }
    void setPixelHiDPISizeScale(float scale) { _pView->setPixelHiDPISizeScale(scale); }
    void setContRenderMode(bool isContinuous) { _pView->_isContRenderMode = isContinuous; }

    void activateScreenFB() { _pView->activateScreenFB(); }

    void onInit() { _pView->onInit(); }
    bool prepareNextFrame() { return _pView->_prepareNextFrame(); }
    void onDraw(const td::RectNormalized<double>& rect) { _pView->onDraw(rect); }
    void onResize(const td::Size<double>& size) { _pView->onResize(size); }
    void onContextLost() { _pView->onContextLost(); }
    void onContextRestored() { _pView->onContextRestored(); }
    void cleanResources() { _pView->cleanResources(); }

    // Of input what layers over the view leave.
    bool onZoom(const InputDevice& device) { return offer(Pointer::Zoomed, device) || _pView->onZoom(device); }
    bool onScroll(const InputDevice& device) { return offer(Pointer::Scrolled, device) || _pView->onScroll(device); }
    bool onKeyPressed(const Key& key) { return ViewLayers::onKeyPressed(*_pView, key) || _pView->onKeyPressed(key); }
    bool onKeyReleased(const Key& key) { return _pView->onKeyReleased(key); }
    void onTextInput(std::string_view text)
    {
        if (!ViewLayers::onTextInput(*_pView, text))
            _pView->onTextInput(text);
    }
    void onTextComposition(const TextComposition& composition)
    {
        if (!ViewLayers::onTextComposition(*_pView, composition))
            _pView->onTextComposition(composition);
    }
    void onDropped(const Drop& drop) { _pView->onDropped(drop); }
    void onPrimaryButtonPressed(const InputDevice& device)
    {
        tell(Pointer::PrimaryPressed, device, &View::onPrimaryButtonPressed);
    }
    void onPrimaryButtonReleased(const InputDevice& device)
    {
        tell(Pointer::PrimaryReleased, device, &View::onPrimaryButtonReleased);
    }
    void onPrimaryButtonDblClick(const InputDevice& device)
    {
        tell(Pointer::PrimaryDblClick, device, &View::onPrimaryButtonDblClick);
    }
    void onSecondaryButtonPressed(const InputDevice& device)
    {
        tell(Pointer::SecondaryPressed, device, &View::onSecondaryButtonPressed);
    }
    void onSecondaryButtonReleased(const InputDevice& device)
    {
        tell(Pointer::SecondaryReleased, device, &View::onSecondaryButtonReleased);
    }
    void onCursorEntered(const InputDevice& device) { tell(Pointer::Entered, device, &View::onCursorEntered); }
    void onCursorMoved(const InputDevice& device) { tell(Pointer::Moved, device, &View::onCursorMoved); }
    void onCursorDragged(const InputDevice& device) { tell(Pointer::Dragged, device, &View::onCursorDragged); }
    void onCursorExited(const InputDevice& device) { tell(Pointer::Exited, device, &View::onCursorExited); }
    void onOtherButtonPressed(const InputDevice& device)
    {
        tell(Pointer::OtherPressed, device, &View::onOtherButtonPressed);
    }
    void onOtherButtonReleased(const InputDevice& device)
    {
        tell(Pointer::OtherReleased, device, &View::onOtherButtonReleased);
    }
    void onOtherDragged(const InputDevice& device) { tell(Pointer::OtherDragged, device, &View::onOtherDragged); }

    /// Queues the delivery of a frame that was read: the view's callback runs from the run loop, not from inside the
    /// draw.
    void sendAsyncOnFrameRead(gui::Texture* pTexture);
    static void prepareFrame(View* pView, gui::Texture* pTexture);

private:
    using Pointer = ViewLayer::Pointer;

    bool offer(Pointer event, const InputDevice& device) { return ViewLayers::onPointer(*_pView, event, device); }
    void tell(Pointer event, const InputDevice& device, void (DrawableView::*handler)(const InputDevice&))
    {
        if (!offer(event, device))
            (_pView->*handler)(device);
    }

    View* _pView;
};

} // namespace gui::gl
