#pragma once

#include <gui/gl/Context.h>
#include <td/Export.h>

#include <functional>

// GTK's own name for it, so that <gtk/gtk.h> may be included before or after.
typedef struct _GtkWidget GtkWidget;

namespace gui::gl
{
class View;
}

/// Views in programs of GTK 4.
namespace gui::gtk
{

/// OpenGL 4.1 core with 24 bits of depth and 8 of stencil.
GUIGL_API gui::gl::Context getDefaultContext();

/// Makes a view's context, as a program with a window of its own does: constructs it, or calls its createContext. It is
/// called once, when the widget is first drawn, with its GL context current. @return the view, not owned
using Maker = std::function<gui::gl::View*()>;

/// A view as a widget of GTK's, a GtkGLArea, in a box, a paned or a notebook like any other:
/// @code
/// static void activate(GtkApplication* pApp, void* pView)
/// {
///     auto& map = *static_cast<MapView*>(pView); // derives from gui::gl::OrthoView, say
///     GtkWidget* const pWindow = gtk_application_window_new(pApp);
///     gtk_window_set_child(GTK_WINDOW(pWindow),
///                          gui::gtk::newViewArea([&map] { map.createContext(true); return &map; }));
///     gtk_window_set_default_size(GTK_WINDOW(pWindow), 800, 600);
///     gtk_window_present(GTK_WINDOW(pWindow));
/// }
/// @endcode
/// The view's context is the widget's, made when it is first shown; resizing, scales, input, the keyboard, cursors,
/// text and input methods, redraws, animation and reading frames are as in a window of the library's own. asyncCall
/// works, the clipboard is GTK's, and at rest nothing wakes the program. Points are GTK's application pixels; at a
/// fractional scale GTK draws a GtkGLArea at the next whole one and makes it smaller. Frames are opaque whatever the
/// view draws.
///
/// Input that the view does not use (keys and the wheel) goes on to the widget's parents. A press of a button takes the
/// keyboard. GL work outside of the view's callbacks wants View::makeCurrentContext first: GTK makes contexts of its
/// own current between them.
///
/// The widget is focusable, 400 by 300 if it may choose, and expands where it is told to (gtk_widget_set_hexpand). It
/// keeps its context, and its view, when it moves to another window, and while it is in none; on another display it has
/// another one, and the view goes on in that (see gui::gl::View). It may go before the view, which has no native side
/// then, or after it. The view's frames are drawn as GTK asks for them: a program leaves the signals and the settings
/// of the GtkGLArea alone, and does not end the widget in the view's onDraw.
///
/// GTK has to be initialised, which a GtkApplication is from its "startup" on.
///
/// @param make     for views that make their context by themselves, or with a function of their own class such as
///                 OrthoView::createContext(bool)
/// @param context  version, and whether there are buffers for depth and stencil, of GTK's sizes. The view's own should
///                 not ask for more. GTK has no samples: when more than one was asked for the log has "Warning!
///                 ViewArea asked for 4 samples, got 1". OpenGL ES 3.1 is taken where there is nothing else. Where
///                 there is neither that nor OpenGL 3.2 the view is not made, and the
///                 widget says so (gtk_gl_area_get_error), as does the log
/// @return a floating reference, as GTK's functions of this kind give; for C++ wrap it (Glib::wrap)
GUIGL_API GtkWidget* newViewArea(Maker make, const gui::gl::Context& context = getDefaultContext());
/// The same for a view whose createContext has not been called, and is called with all kinds of input when the widget
/// is first drawn. @param view  not owned; until then it must live
GUIGL_API GtkWidget* newViewArea(gui::gl::View& view, const gui::gl::Context& context = getDefaultContext());

/// The view of a widget that newViewArea made; null before it was first drawn, when the view has gone, and for any
/// other widget. @param pWidget  may be null
GUIGL_API gui::gl::View* getView(GtkWidget* pWidget);

} // namespace gui::gtk
