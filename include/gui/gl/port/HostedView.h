#pragma once

#include "NativeSurface.h"

#include <gui/NativeView.h>
#include <td/Export.h>
#include <td/RectNormalized.h>
#include <td/Size.h>

#include <functional>
#include <memory>
#include <optional>

namespace gui::gl
{

class View;

/// A widget of another toolkit, as the view that it shows needs it. Sizes, scale and framebuffer may change whenever
/// they like: what counts is what they are at a paint.
class GUIGL_API HostWidget
{
public:
    virtual ~HostWidget() = default;

    /// What the log calls it.
    virtual const char* getName() const = 0;
    /// Makes its GL context current, with nothing said to CurrentContext. @return whether it is
    virtual bool makeContextCurrent() = 0;
    /// Its context, by which CurrentContext knows it; null when it has none.
    virtual const void* getContext() const = 0;
    virtual td::Size<double> getSize() const = 0;      ///< points
    virtual float getBackingScale() const = 0;         ///< device pixels per point
    virtual td::Size<int> getDrawableSize() const = 0; ///< device pixels, at least 1 by 1
    /// The GL name of what is presented. The context is current.
    /// @return s_boundFramebuffer from a toolkit that tells it to nobody: what is bound when begin and paint are called
    virtual unsigned int getFramebuffer() const = 0;
    /// See getFramebuffer.
    static constexpr unsigned int s_boundFramebuffer = ~0U;
    /// Asks the toolkit for a paint, soon; several requests before it are one.
    virtual void requestPaint() = 0;
    /// Whether it is shown, as far as the toolkit knows.
    virtual bool isShown() const = 0;

    /// Binds what is presented, for a frame that is drawn at another time than a paint. The context is current. Nothing
    /// to do where getFramebuffer has the name.
    virtual void bindFramebuffer() {}
    /// Whether the toolkit blends frames by their alpha, which is 1 everywhere then when paint returns.
    virtual bool needsOpaqueFrames() const { return false; }

    /// Frames per second of the display that it is on; 0 when that isn't known.
    virtual double getDisplayRate() const { return 0; }
    /// Shows a pointer shape over it from now on.
    virtual void setCursor(gui::Cursor::Type) {}
    /// Whether the view takes text, and where its caret is in points of the widget; told when either changes.
    virtual void setTextInput(bool /*isOn*/, const td::RectNormalized<double>& /*caret*/) {}
};

/// The client of a view's surface, for whoever calls it more than once: the pointer in it is null from the moment on
/// that a call has ended the surface.
using SharedClient = std::shared_ptr<NativeSurfaceClient*>;

/// A view in a widget: its surface, the order of calls, and its frame clock, for a host to hold in its widget class.
///
/// The clock ticks by the library's run loop, which the host drives (see gui::Host); a tick asks the widget for a
/// paint, and the frame is drawn in that. When three ticks have had no paint nobody sees it, and it rests until the
/// next one.
///
/// Outside of what is called here no context counts as current, since toolkits make their own current without a word.
/// The view may go at any time, from inside a call as well. GUI thread only.
class GUIGL_API HostedView final : private gui::NativeView
{
public:
    /// Makes the view's context: constructs the view, or calls its createContext. @return the view, not owned
    using Maker = std::function<View*()>;

    /// Calls createContext of a view, which must live until then, with this context and all kinds of input.
    static Maker makerOf(View& view, const Context& context);
    /// What a host asks for when nobody says what: OpenGL 4.1 core with 24 bits of depth and 8 of stencil.
    static Context getDefaultContext();

    /// @param widget  must outlive this
    HostedView(HostWidget& widget, Maker make);
    /// As end.
    ~HostedView() override;
    HostedView(const HostedView&) = delete;
    HostedView& operator=(const HostedView&) = delete;

    /// The view; null before begin, and when it has gone.
    View* getView() const { return *_pClient != nullptr ? _pView : nullptr; }
    /// The widget of the view that a frame clock runs for; null for one that is in none. For a host's display rates.
    static const HostWidget* widgetOf(const gui::NativeView* pClockedView);

    /// The widget has its context, which is current: the view is made on it. A later call is for another context that
    /// has taken the first one's place, whether contextLost was called or not: the view goes on in it, and the next
    /// frame is the picture before (see View). With the same context it is nothing.
    void begin();
    /// Whether the view is made, on a context that the widget still has.
    bool hasBegun() const { return _isBegun && !_isContextLost; }
    /// The widget's context is about to go and the widget is not: it will have another one, for which begin is called
    /// again. Until then the view draws nothing. To be called while the context still works, if that can be: toolkits
    /// share what is in contexts, and it would stay. Nothing before begin and after end.
    void contextLost();
    /// For toolkits that switch the depth test on or off when they prepare a paint: to be called before they do. What
    /// it is by then it is again in begin and in paint.
    void keepDepthTest();
    /// The widget paints: its framebuffer is bound, and its context current. Draws a frame of the widget's present
    /// size.
    void paint();
    /// The widget is shown from now on, or hidden.
    void setVisible(bool isVisible);
    /// The widget is about to go: to be called while it still answers. The view goes on without a native side. Nothing
    /// when it was called before.
    void end();

    /// Hands input to the view, with its context current, as in a window of the library's own.
    /// @param tell  gets the client, not null, and returns whether the input was used up
    /// @return what it says; false when there is no view
    bool tell(const std::function<bool(const SharedClient& pClient)>& tell);
    /// Whether the view, if it is there, wants what is dropped on it.
    bool acceptsDrops() const { return *_pClient != nullptr && (*_pClient)->acceptsDrops(); }
    bool takesText() const { return _takesText; }
    const td::RectNormalized<double>& getCaret() const { return _caret; }

private:
    class Surface;

    bool makeCurrent();
    unsigned int getFramebuffer();
    void takeOver();
    void reportSamples() const;
    void enter();
    void followGeometry();
    void goOn();

    // The clock's side.
    void release() override {}
    void getSize(td::Size<double>& size) const override { size = _widget.getSize(); }
    void reDraw() override {}
    void* getNativeWindow() const override { return nullptr; }
    bool isAlive() const override { return true; }
    void enteredWindow() override {}
    void leftWindow() override {}
    void windowClosed() override {}
    void sizeChanged() override {}
    void scaleChanged() override {}
    void drawNow() override {}
    void onFrameTick() override;

    HostWidget& _widget;
    Maker _make;
    View* _pView = nullptr;
    SharedClient _pClient;
    Surface* _pSurface = nullptr;
    int _nSamplesAsked = 1;
    unsigned int _framebuffer = 0;    // that was bound when begin or paint, which is under way, was called
    std::optional<bool> _isDepthTest; // what is to be again
    td::RectNormalized<double> _caret;
    td::Size<double> _size; // the last that the view was told
    float _scale = 0;
    int _nTicksAhead = 0;            // that no paint has followed
    const void* _pContext = nullptr; // that the view is in
    bool _isBegun = false;
    bool _isContextLost = false;
    bool _isEnded = false;
    bool _isFormatReported = false;
    bool _isTickDue = false;
    bool _isEntered = false;
    bool _isBound = false; // in begin, and in paint
    bool _isPainting = false;
    bool _takesText = false;
};

} // namespace gui::gl
