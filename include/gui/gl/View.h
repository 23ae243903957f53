#pragma once

#include "Context.h"

#include <gui/Cursor.h>
#include <gui/DrawableView.h>
#include <gui/InputDevice.h>
#include <td/Export.h>
#include <td/PointAndSize.h>
#include <td/RectNormalized.h>

#include <deque>
#include <functional>
#include <initializer_list>
#include <memory>
#include <tuple>

namespace gui
{
class Texture;
}

namespace gui::gl
{

/// A view that shows what OpenGL draws. Derive from it, override onInit and onDraw, call createContext, and put it into
/// a window.
///
/// The order of a view's life: constructor; createContext, which calls onInit; the view enters a window, which calls
/// onResize; onDraw for each frame; destructor. In onInit, onDraw, onResize and cleanResources the view's context is
/// current. A view that never enters a window draws all the same, offscreen. GUI thread only.
///
/// A context may be lost while the view lives: the GPU was reset, or a toolkit moved the view's widget. Another one
/// takes its place before the next frame, and that frame is the picture before: what the library's objects had in GL is
/// made anew from what they keep, whoever made it and when; GL's state (what is enabled, values to clear with, what is
/// bound) is what it was, or, when the context was lost without notice, what onInit and the first frame left. What GL
/// calls of the program's own made is theirs: onContextRestored makes it again. docs/contexts.md has the costs, and
/// what keeps nothing.
class GUIGL_API View : public gui::DrawableView
{
public:
    using InputDevice = gui::InputDevice; ///< what handlers get, by its short name in derived classes
    using Key = gui::Key;                 ///< likewise

    View();
    /// Stops the frame clock, cleans up and lets go of the native view; a window that still shows the view closes.
    /// cleanResources of a derived class is out of reach by then: release GL objects in the derived class's destructor
    /// (the library's own do that by themselves), or in cleanResources for the case that the window goes first.
    ~View() override;

    /// Makes the native view and its context, 400 by 400 points, and calls onInit. The view gets no input events. A
    /// second call is a programming error ("_handle == nullptr"). When there is no such context, a log line says what
    /// was asked for and what the system has, and "_handle != nullptr" is asserted; without assertions the view then
    /// has no native view, and every operation that needs one does nothing.
    void createContext(const Context& context);

    /// The same, with input.
    /// @param events    the kinds of events whose handlers are called
    /// @param geometry  in points; null means 300 by 300 at (0, 0)
    void createContext(const Context& context, const std::initializer_list<gui::InputDevice::Event>& events,
                       const td::PointAndSize<double>* geometry = nullptr);

    /// Makes the view's context current, for GL work outside of the callbacks. Nothing while there is no native view.
    void makeCurrentContext() const;

    /// Asks for a redraw at the next opportunity; however often it is asked for before then, it is one. A call from
    /// inside onDraw asks for one more. Nothing while there is no native view. reDraw, which every gui::Frame has, does
    /// the same for a view; this one can be called on a const view.
    void reRender() const;

    /// Sets the flag alone: the frame clock is neither started nor stopped. See startAnimation.
    void setContRenderMode(bool isContinuous) { _isContRenderMode = isContinuous; }
    bool isContRenderMode() const { return _isContRenderMode; }

    /// Frames follow the display's clock from now on, at once when the view is in a window, else as soon as it enters
    /// one; before createContext as well. prepareNextFrame is asked before each.
    void startAnimation();
    void stopAnimation();
    bool isAnimated() const { return _isContRenderMode; }

    /// @param globally  true shows it at once, while the pointer is over the view; false when the pointer next enters
    ///                  it
    void setCursor(gui::Cursor::Type type, bool globally) const;

    /// Text that the user types comes to onTextInput from now on, while the view has the keyboard, and what an input
    /// method composes to onTextComposition. Keys go on to make key events. Not before createContext.
    void startTextInput() const;
    /// No more of it; a composition under way is given up without another word.
    void stopTextInput() const;
    bool takesTextInput() const;
    /// Where the caret is: an input method shows its candidates beside it. To be told again when it moves, or the
    /// view's content. @param rect  in points of the view, y downwards
    void setTextInputRect(const td::RectNormalized<double>& rect) const;

    /// onFocusIn and onFocusOut are called from now on.
    void registerForFocusEvents() const;

    /// Major and minor version of the view's context; 0 and 0 without one.
    std::tuple<int, int> getOpenGLVersion() const;

    /// How many samples each pixel of the frame has, as the driver gave them: 1 for a plain one, 0 without a context.
    /// See Context::setSamples. What is read of a frame is the mean of a pixel's samples.
    int getSamples() const;

    /// The part of the model that is seen, in model units. Only views that have a model know: here it is a programming
    /// error ("false").
    void getVisiblePartInModelCoordinates(td::RectNormalized<double>& rect) const;

    /// Binds the framebuffer that presents to the window, after drawing into one of your own.
    void activateScreenFB();

    /// Links a GL program of two stages, each GLSL text or ':' and the name of a text resource.
    /// @return its GL name, owned by the caller; 0 after a failure, which Program::link describes
    unsigned int linkProgram(const char* vertexResID, const char* fragmentResID);

    /// Replaces the context by another one before the next frame, as a loss would, and asks for that frame: for tests
    /// of programs that have GL objects of their own. GUIGL_LOSE_CONTEXT=n in the environment does it every n frames,
    /// in any program. Nothing while there is no native view.
    void loseContext() const;

    /// Reads the next frame that is drawn into an image: 4 bytes per pixel, the size of the view in device pixels, the
    /// first row the bottom one. It asks for a redraw; a hidden view is read when it is next drawn. A second call
    /// before then takes the place of the first. The image counts as opaque when it is saved, since what blending
    /// leaves of the alpha means nothing: see gui::Texture::setOpaque.
    /// @param texture   resized at once and filled later; must live until the callback is called
    /// @param callback  called once, from the run loop, after the frame was presented; must not be empty
    void readFrameFrameBuffer(gui::Texture& texture, const std::function<void()>& callback);

    /// Draws a frame now, and saves it as a PNG file, upright and opaque, in device pixels. Not from inside onDraw.
    /// @return true when the file was written. Otherwise a line says why: the file's ("ERROR! Texture::saveToFile
    ///         cannot save file: PATH (CAUSE)"), or, when there was no frame ("Error! View::savePicture there is no
    ///         frame to save: PATH"), because createContext was not called, the context is lost, or a draw is under
    ///         way.
    [[nodiscard]] bool savePicture(const char* path);

    /// Device pixels per point of the window the view is in; 1 before it was in one.
    float getPixelHiDPIScale() const { return _pixelHiDPIScale; }
    float getPixelHiDPISizeScale() const { return _pixelHiDPISizeScale; }

    /// 22, the code of a GL view.
    unsigned int getObjType() const override;
    /// At least 16 by 16 points, growing in both directions.
    void reMeasure(gui::CellInfo& cell) override;
    void measure(gui::CellInfo& cell) override;

    /// Expires with the view: for work that comes back from elsewhere, when there may be no view any more. It points to
    /// the view as long as it can be locked. GUI thread only.
    std::weak_ptr<View*> getLife() const { return _self; }

    /// How large the view shows its model; 1 here.
    virtual double getZoom() const;

protected:
    friend class ViewHelper;

    /// Called once, inside createContext, with the context current: make programs, buffers and textures here.
    virtual void onInit();

    /// Called with the context current when the native view goes away before this object does: release GL objects here.
    virtual void cleanResources();

    /// Called when the context was lost, or another is about to take its place. No context is current: make no GL
    /// calls, forget the names that GL calls of your own made. What the library's objects have comes back by itself.
    virtual void onContextLost();

    /// Called before the next frame, with another context current, when all of the library's objects are there again:
    /// make anew what GL calls of your own made, and draw again into framebuffers that are drawn into once.
    virtual void onContextRestored();

    /// Called by views with a model after their zoom, or their origin, changed.
    virtual void onZoomChanged();
    virtual void onOriginChanged();

    /// Called before each frame of an animation. @return false, the default, to end the animation after this frame
    virtual bool prepareNextFrame();

    /// For the native view: calls prepareNextFrame.
    bool _prepareNextFrame() { return prepareNextFrame(); }

private:
    void setPixelHiDPISizeScale(float scale);

    std::function<void()> _frameReadCallback;
    float _pixelHiDPIScale = 1;
    float _pixelHiDPISizeScale = 1;
    unsigned int _screenFB = 0xFFFFFFFF;
    bool _isContRenderMode = false;
    std::deque<std::function<void()>> _frameReadCallbacks; // of frames that were read and not delivered yet
    std::shared_ptr<View*> _self;                          // what frames on their way to the callback hold weakly
};

} // namespace gui::gl
