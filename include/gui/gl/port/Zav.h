#pragma once

#include "NativeSurface.h"

#include <gui/Cursor.h>
#include <gui/InputDevice.h>
#include <td/Export.h>
#include <td/PointAndSize.h>
#include <td/RectNormalized.h>

#include <initializer_list>

namespace gui
{
class NativeObject;
class Texture;
namespace gl
{
class Context;
class View;
} // namespace gl
} // namespace gui

/// The view's only way down to the native view, for whoever has to do with that: window systems, hosts, and the library
/// itself; an application has gui::gl::View. Each function that takes a view finds the native view through the view's
/// handle, and does nothing when that is null.
namespace zav
{

/// Makes the native view, with a context as asked for, and calls the view's onInit.
/// @param pGeometry  in points; null means 300 by 300 at (0, 0)
/// @return the native view, which the view's handle owns; null, after a log line, when there is no such context
GUIGL_API gui::NativeObject* createGLView(gui::gl::View* pView, const td::PointAndSize<double>* pGeometry,
                                          const gui::gl::Context& context);
/// The same with input. @param events  the kinds that the view wants
GUIGL_API gui::NativeObject* createGLView(gui::gl::View* pView, const td::PointAndSize<double>* pGeometry,
                                          const std::initializer_list<gui::InputDevice::Event>& events,
                                          const gui::gl::Context& context);

/// The same on a surface of the caller's: a view in a widget of another toolkit, with that toolkit's context,
/// framebuffer and loop. The view has the native view as its handle afterwards. The host calls enteredWindow when the
/// widget is shown, sizeChanged and scaleChanged after changes, drawNow and onFrameTick to have a frame drawn, the
/// operations for events, leftWindow when the widget is hidden, and windowClosed while the context still lives. The
/// view goes on without a native side after that, and may be deleted before or after.
/// @return the native view, which the view's handle owns; null when the factory gave no surface
GUIGL_API gui::gl::NativeSurfaceClient* createGLView(gui::gl::View* pView, const td::PointAndSize<double>* pGeometry,
                                                     const std::initializer_list<gui::InputDevice::Event>& events,
                                                     const gui::gl::Context& context,
                                                     const gui::gl::SurfaceFactory& makeSurface);

/// While one lives, createContext of a view, and the functions above that get no factory, make the view's surface with
/// this one: a host calls code that makes its views as in a program with windows of its own. Of several the last
/// counts.
class GUIGL_API SurfaceScope
{
public:
    /// From now on. @param makeSurface  not empty
    explicit SurfaceScope(gui::gl::SurfaceFactory makeSurface);
    /// The one before counts again.
    ~SurfaceScope();
    SurfaceScope(const SurfaceScope&) = delete;
    SurfaceScope& operator=(const SurfaceScope&) = delete;

private:
    gui::gl::SurfaceFactory _before;
};

/// Makes the view's context current; without one nothing changes.
GUIGL_API void makeCurrentContext(const gui::gl::View* pView);

/// The context is replaced by another one before the next frame, which is asked for.
GUIGL_API void loseContext(const gui::gl::View* pView);

/// Marks the native view as needing display.
GUIGL_API void reRender(const gui::gl::View* pView);

/// Continuous mode on (not 0) or off (0); off stops the frame clock.
GUIGL_API void setAnimationMode(gui::gl::View* pView, unsigned char mode);

/// Stops the frame clock and the notifications, makes the context current, calls the view's cleanResources and forgets
/// the view.
GUIGL_API void cleanOpenGLResources(gui::gl::View* pView);

/// @return the context's major version, 0 without a native view
GUIGL_API int getOpenGLVersion(const gui::gl::View* pView, int& minor);

/// Samples per pixel of what the view presents; 0 without a native view, or when its context is lost.
GUIGL_API int getSamples(const gui::gl::View* pView);

/// @param globally  whether it shows at once, while the pointer is over the view
GUIGL_API void setCursor(const gui::gl::View* pView, gui::Cursor::Type type, bool globally);

/// The window system's own cursor of a shape: an SDL_Cursor on X11 and Wayland, kept to the end of the process; null
/// where there is no pointer.
GUIGL_API void* getCursor(gui::Cursor::Type type);

/// Text is delivered from now on, or no more. See gui::gl::View::startTextInput.
GUIGL_API void setTextInput(const gui::gl::View* pView, bool isOn);
/// Whether it is; false without a native view.
GUIGL_API bool takesTextInput(const gui::gl::View* pView);
/// Where the caret is. @param rect  in points of the view; ignored when it is not finite
GUIGL_API void setTextInputRect(const gui::gl::View* pView, const td::RectNormalized<double>& rect);

/// Focus changes are delivered from now on.
GUIGL_API void registerForFocusEvents(const gui::gl::View* pView);

/// The next frame is read into this image.
GUIGL_API void setOnDrawCallback(gui::gl::View* pView, gui::Texture* pTexture);

/// Draws a frame now and reads it, upright (the first row is the top), 3 bytes per pixel, before it is presented.
/// @return false, with the picture unchanged, when none was drawn: no native view, a lost context, no area, or a draw
///         of the view that is under way already
GUIGL_API bool drawInto(gui::gl::View* pView, gui::Texture& picture);

/// Device pixels per point of what the view draws into; of the main display without a native view.
GUIGL_API float getBackingScale(const gui::gl::View* pView);

/// The view's own zoom, a scale of its coordinates: with 2, a point of the view is two points of its window. It changes
/// the points of pointer records that are in the view, and the rectangle that a redraw is for; what is drawn is the
/// view's business, and sizes stay those of the window. 1 at first, and without a native view.
GUIGL_API double getScale(const gui::gl::View* pView);
/// Sets it and asks for a redraw. @param scale  a scale of 0 or below, or one that is not finite, is misuse
///                                             ("scale > 0 && std::isfinite(scale)") and changes nothing
GUIGL_API void setScale(gui::gl::View* pView, double scale);
/// Back to 1, without a redraw.
GUIGL_API void resetScaling(gui::gl::View* pView);

/// A GL view can't be printed: this is a programming error ("false"). Save a picture instead.
GUIGL_API void printMe(const gui::gl::View* pView);
/// As printMe.
GUIGL_API void printMeToPDF(const gui::gl::View* pView, const char* fileName);

} // namespace zav
