#pragma once

#include <gui/Cursor.h>
#include <gui/InputDevice.h>
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

/// The view's only way down to the native view. Each function that takes a view finds the native view through the
/// view's handle, and does nothing when that is null.
namespace zav
{

/// Makes the native view, with a context as asked for, and calls the view's onInit.
/// @param pGeometry  in points; null means 300 by 300 at (0, 0)  @param events  the kinds the view wants
/// @return the native view, which the caller's handle owns; null, after a log line, when there is no such context
gui::NativeObject* createGLView(gui::gl::View* pView, const td::PointAndSize<double>* pGeometry,
                                const gui::gl::Context& context);
gui::NativeObject* createGLView(gui::gl::View* pView, const td::PointAndSize<double>* pGeometry,
                                const std::initializer_list<gui::InputDevice::Event>& events,
                                const gui::gl::Context& context);

void makeCurrentContext(const gui::gl::View* pView);

/// Marks the native view as needing display.
void reRender(const gui::gl::View* pView);

/// Continuous mode on (not 0) or off (0); off stops the frame clock.
void setAnimationMode(gui::gl::View* pView, unsigned char mode);

/// Stops the frame clock and the notifications, makes the context current, calls the view's cleanResources and forgets
/// the view.
void cleanOpenGLResources(gui::gl::View* pView);

/// @return the context's major version, 0 without a native view
int getOpenGLVersion(const gui::gl::View* pView, int& minor);

void setCursor(const gui::gl::View* pView, gui::Cursor::Type type, bool globally);

/// Focus changes are delivered from now on.
void registerForFocusEvents(const gui::gl::View* pView);

/// The next frame is read into this image.
void setOnDrawCallback(gui::gl::View* pView, gui::Texture* pTexture);

} // namespace zav
