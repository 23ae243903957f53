#pragma once

#include "../gpu/ContextState.h"
#include "FrameRecorder.h"

#include <gui/Cursor.h>
#include <gui/InputDevice.h>
#include <gui/gl/Context.h>
#include <gui/gl/CurrentContext.h>
#include <gui/gl/port/FrameObserver.h>
#include <gui/gl/port/NativeSurface.h>
#include <gui/gl/port/PixelFormat.h>
#include <gui/gl/port/SurfaceEvents.h>
#include <td/Export.h>
#include <td/PointAndSize.h>
#include <td/RectNormalized.h>

#include <chrono>
#include <functional>
#include <initializer_list>
#include <memory>
#include <vector>

namespace gui
{
class Texture;
}

namespace gui::gl
{

class View;

/// The whole behaviour of a native GL view, on any window system: it owns a surface, draws through the library's view,
/// and turns the surface's events into the toolkit's records.
///
/// It belongs to the view's handle; release deletes it. When it is released from inside one of its own calls up into
/// the view, it goes at the end of that call.
class GUIGL_API GLView : public NativeSurfaceClient
{
public:
    /// @param pView      not owned; gets this as its handle before its onInit is called
    /// @param pGeometry  in points; null means 300 by 300 at (0, 0)
    /// @param events     OR of the gui::InputDevice::Event bits that the view wants
    /// @return null when the factory has no surface. An exception of onInit leaves nothing behind.
    static GLView* createView(View* pView, const td::PointAndSize<double>* pGeometry, unsigned short events,
                              const Context& context, const SurfaceFactory& makeSurface);

    // The toolkit's side.
    void release() override;
    void getSize(td::Size<double>& size) const override;
    void reDraw() override;
    void* getNativeWindow() const override;
    bool isAlive() const override { return _pCppView != nullptr; }
    void enteredWindow() override;
    void leftWindow() override;
    void windowClosed() override;
    void sizeChanged() override;
    void scaleChanged() override;
    void drawNow() override;
    void onFrameTick() override;

    // The surface's side.
    void onButton(const ButtonEvent& event) override;
    void onMotion(const MotionEvent& event) override;
    bool onWheel(const WheelEvent& event) override;
    void onMagnification(const MagnificationEvent& event) override;
    bool onKey(const KeyEvent& event) override;
    void onText(const TextEvent& event) override;
    void onComposition(const CompositionEvent& event) override;
    void onDrop(const DropEvent& event) override;
    void onFocus(bool hasFocus) override;
    void contextLost(bool works) override;
    void contextReplaced() override;
    bool acceptsDrops() const override { return has(gui::InputDevice::Event::Drops); }
    bool acceptsFirstResponder() const override;
    std::uint64_t getTrackingOptions() const override;

    // The library's view's side.
    bool makeCurrentContext();
    bool beginFrame();
    void loseContext();
    void setContinuousMode(bool isContinuous);
    void setGrabFrameBuffer(gui::Texture* pTexture) { _pGrabFrameTexture = pTexture; }
    void registerFocusEvents() { _sendFocusEvents = true; }
    void setCursor(gui::Cursor::Type type, bool globally);
    void setTextInput(bool isOn);
    bool takesTextInput() const { return _takesText; }
    void setTextInputRect(const td::RectNormalized<double>& rect);
    void cleanResources();
    int getOpenGLVersion(int& minor) const;
    int getSamples();
    float getBackingScale() const;
    /// Draws a frame and reads it, upright and opaque, before it is presented. @return false when none was drawn
    bool drawInto(gui::Texture& picture);

    /// The view's own zoom: with a scale of 2 a point of the view is two points of its window. Sizes stay those of the
    /// window.
    double getScale() const { return _scale; }
    /// @param scale  above 0
    void setScale(double scale);
    void resetScaling() { _scale = 1; }

    // Not offered: both are programming errors.
    void printMe() const;
    void printMeToPDF(const char* fileName) const;

    bool hasFrameClock() const { return _hasFrameClock; }

private:
    class Busy;

    GLView(View* pView, const Context& context, unsigned short events);
    ~GLView() override;

    void prepareOpenGL();
    void lookAtContext();
    void keepState();
    bool hasFrameContext();
    bool replaceContext(bool works);
    void updateScreenFramebuffer();
    bool updateViewport();
    bool updateGeometry();
    void tellScale();
    void drawRect(const td::RectNormalized<double>& rect);
    void drawLayers();
    bool isHeld() const;
    FrameObserver::Frame observedFrame() const;
    void readGrabbedFrame();
    td::Point<double> toView(const td::Point<double>& windowPoint) const;
    gui::InputDevice pointerRecord(const td::Point<double>& windowPoint, unsigned int modifiers,
                                   gui::InputDevice::Button button) const;
    gui::InputDevice clickRecord(const ButtonEvent& event, gui::InputDevice::Button button,
                                 unsigned short nClicks) const;
    void onOtherButton(const ButtonEvent& event);
    void letGo();
    void stopAnimation();
    void startAnimation();
    bool has(gui::InputDevice::Event event) const;

    std::unique_ptr<NativeSurface> _pSurface;
    View* _pCppView; // null after clean-up
    gui::Texture* _pGrabFrameTexture = nullptr;
    gui::Texture* _pPicture = nullptr; // of the next frame, upright
    double _scale = 1;
    float _minFPS;
    float _maxFPS;
    unsigned int _screenFrameBufferID = 0;
    unsigned short _events;
    gui::Cursor::Type _currentCursorType = gui::Cursor::Type::Default;
    bool _continuousRender;
    bool _sendFocusEvents = false;
    bool _takesText = false;
    bool _isComposing = false;
    bool _hasFrameClock = false;
    bool _isInWindow = false;
    bool _isDrawing = false;
    bool _isReleased = false;
    bool _isClosed = false;
    const bool _isDebugged; // asked once: the environment is long
    int _nBusy = 0;
    unsigned int _saidGLErrors = 0;
    std::vector<KeyEvent> _heldKeys;
    FrameRecorder::Recording _recording;
    gui::gl::CurrentContext::ID _contextID = 0;
    ContextState _state; // as GL had it when it was looked at last
    int _nFramesToLoss = 0;
    bool _isStateWanted = true; // of the frame to come
    bool _tellsResets = false;
    bool _isLossWanted = false;
    bool _isContextLost = false; // and the view was told
    bool _isFailureSaid = false; // to have another one
    std::chrono::steady_clock::time_point _lossTime;
    int _majorVersion = 0;
    int _minorVersion = 0;
    td::Size<double> _size; // the last that the view was told
    float _backingScale = 0;
    td::Size<int> _viewport;
};

} // namespace gui::gl
