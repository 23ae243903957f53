#pragma once

#include "NativeSurface.h"

#include <gui/Cursor.h>
#include <gui/InputDevice.h>
#include <td/Export.h>
#include <td/PointAndSize.h>

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

/// The same on a surface of the caller's: a view in a widget of another toolkit, with that toolkit's context, framebuffer
/// and loop. The view has the native view as its handle afterwards. The host calls enteredWindow when the widget is shown,
/// sizeChanged and scaleChanged after changes, drawNow and onFrameTick to have a frame drawn, the operations for events,
/// leftWindow when the widget is hidden, and windowClosed while the context still lives. The view goes on without a native
/// side after that, and may be deleted before or after.
/// @return the native view, which the view's handle owns; null when the factory gave no surface
GUIGL_API gui::gl::NativeSurfaceClient* createGLView(gui::gl::View* pView, const td::PointAndSize<double>* pGeometry,
                                                     const std::initializer_list<gui::InputDevice::Event>& events,
                                                     const gui::gl::Context& context,
                                                     const gui::gl::SurfaceFactory& makeSurface);

/// Makes the view's context current; without one nothing changes.
GUIGL_API void makeCurrentContext(const gui::gl::View* pView);

/// Marks the native view as needing display.
GUIGL_API void reRender(const gui::gl::View* pView);

/// Continuous mode on (not 0) or off (0); off stops the frame clock.
GUIGL_API void setAnimationMode(gui::gl::View* pView, unsigned char mode);

/// Stops the frame clock and the notifications, makes the context current, calls the view's cleanResources and forgets
/// the view.
GUIGL_API void cleanOpenGLResources(gui::gl::View* pView);

/// @return the context's major version, 0 without a native view
GUIGL_API int getOpenGLVersion(const gui::gl::View* pView, int& minor);

/// @param globally  whether it shows at once, while the pointer is over the view
GUIGL_API void setCursor(const gui::gl::View* pView, gui::Cursor::Type type, bool globally);

/// Focus changes are delivered from now on.
GUIGL_API void registerForFocusEvents(const gui::gl::View* pView);

/// The next frame is read into this image.
GUIGL_API void setOnDrawCallback(gui::gl::View* pView, gui::Texture* pTexture);

} // namespace zav
