#pragma once

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

    bool onZoom(const InputDevice& device) { return _pView->onZoom(device); }
    bool onScroll(const InputDevice& device) { return _pView->onScroll(device); }
    bool onKeyPressed(const Key& key) { return _pView->onKeyPressed(key); }
    bool onKeyReleased(const Key& key) { return _pView->onKeyReleased(key); }
    void onTextInput(std::string_view text) { _pView->onTextInput(text); }
    void onTextComposition(const TextComposition& composition) { _pView->onTextComposition(composition); }
    void onDropped(const Drop& drop) { _pView->onDropped(drop); }
    void onPrimaryButtonPressed(const InputDevice& device) { _pView->onPrimaryButtonPressed(device); }
    void onPrimaryButtonReleased(const InputDevice& device) { _pView->onPrimaryButtonReleased(device); }
    void onPrimaryButtonDblClick(const InputDevice& device) { _pView->onPrimaryButtonDblClick(device); }
    void onSecondaryButtonPressed(const InputDevice& device) { _pView->onSecondaryButtonPressed(device); }
    void onSecondaryButtonReleased(const InputDevice& device) { _pView->onSecondaryButtonReleased(device); }
    void onCursorEntered(const InputDevice& device) { _pView->onCursorEntered(device); }
    void onCursorMoved(const InputDevice& device) { _pView->onCursorMoved(device); }
    void onCursorDragged(const InputDevice& device) { _pView->onCursorDragged(device); }
    void onCursorExited(const InputDevice& device) { _pView->onCursorExited(device); }
    void onOtherButtonPressed(const InputDevice& device) { _pView->onOtherButtonPressed(device); }
    void onOtherButtonReleased(const InputDevice& device) { _pView->onOtherButtonReleased(device); }
    void onOtherDragged(const InputDevice& device) { _pView->onOtherDragged(device); }

    /// Queues the delivery of a frame that was read: the view's callback runs from the run loop, not from inside the
    /// draw.
    void sendAsyncOnFrameRead(gui::Texture* pTexture);
    static void prepareFrame(View* pView, gui::Texture* pTexture);

private:
    View* _pView;
};

} // namespace gui::gl
