#include "AreaHost.h"

#include "GtkHost.h"

#include <gui/gl/OffscreenContext.h>
#include <gui/gl/port/PixelFormat.h>
#include <vo/Log.h>

#include <algorithm>
#include <string>
#include <utility>

namespace gui::gtk
{

namespace
{

struct Request
{
    GdkGLAPI api;
    int major, minor;
};

} // namespace

AreaHost::AreaHost(GtkGLArea* pArea, gui::gl::HostedView::Maker make, const gui::gl::Context& context)
    : _pArea(pArea)
    , _pWidget(GTK_WIDGET(pArea))
    , _sizes(gui::gl::decodePixelFormat(gui::gl::requestPixelFormat(context)))
    , _view(*this, std::move(make))
    , _input(_pWidget, _view)
{
    GtkHost::use();
    gtk_gl_area_set_has_depth_buffer(pArea, _sizes.depthBits > 0);
    gtk_gl_area_set_has_stencil_buffer(pArea, _sizes.stencilBits > 0);
    gtk_widget_set_focusable(_pWidget, TRUE);
}

AreaHost::~AreaHost()
{
    close();
    g_clear_object(&_pContext);
}

void AreaHost::close()
{
    if (std::exchange(_isClosed, true))
        return;
    _view.end();
    _input.close();
}

void AreaHost::fail(const char* why)
{
    vo::dbgLog("ERROR! %s needs OpenGL 3.2 or OpenGL ES 3.1, and GTK says: %s", getName(), why);
    GError* const pError = g_error_new_literal(GDK_GL_ERROR, GDK_GL_ERROR_NOT_AVAILABLE, why);
    gtk_gl_area_set_error(_pArea, pError);
    g_error_free(pError);
}

// Contexts of a display are bound to no window, so that this one stays when the area goes to another on it.
GdkGLContext* AreaHost::createContext()
{
    GError* pError = nullptr;
    if (_pContext != nullptr && gdk_gl_context_get_display(_pContext) != gtk_widget_get_display(_pWidget))
    {
        _view.contextLost();
        g_clear_object(&_pContext);
    }
    // OpenGL ES where there is nothing else, too.
    for (const Request& request : {Request{GDK_GL_API_GL, 4, 1}, {GDK_GL_API_GL, 3, 2}, {GDK_GL_API_GLES, 3, 1}})
    {
        const bool isES = request.api == GDK_GL_API_GLES;
        if (_pContext != nullptr || (_sizes.isES && !isES) || (request.major == 4 && !_sizes.is41))
            continue;
        g_clear_error(&pError);
        GdkGLContext* pContext = gdk_display_create_gl_context(gtk_widget_get_display(_pWidget), &pError);
        if (pContext == nullptr)
            break;
        gdk_gl_context_set_allowed_apis(pContext, request.api);
        gdk_gl_context_set_required_version(pContext, request.major, request.minor);
        if (gdk_gl_context_realize(pContext, &pError) != FALSE)
            std::swap(_pContext, pContext);
        g_clear_object(&pContext);
    }
    if (_pContext == nullptr)
        fail(pError != nullptr ? pError->message : "no context");
    g_clear_error(&pError);
    // An old driver may have given an old one all the same.
    int major = 0, minor = 0;
    if (_pContext != nullptr && makeContextCurrent())
        gdk_gl_context_get_version(_pContext, &major, &minor);
    const bool isES = _pContext != nullptr && gdk_gl_context_get_api(_pContext) == GDK_GL_API_GLES;
    if (_pContext != nullptr && std::pair(major, minor) < (isES ? std::pair(3, 1) : std::pair(3, 2)))
    {
        fail((std::string(isES ? "OpenGL ES " : "OpenGL ") + std::to_string(major) + '.' + std::to_string(minor))
                 .c_str());
        g_clear_object(&_pContext);
    }
    return _pContext != nullptr ? GDK_GL_CONTEXT(g_object_ref(_pContext)) : nullptr;
}

void AreaHost::paint()
{
    if (!_view.hasBegun())
    {
        _view.begin();
        // What the view is made by may bind others.
        gtk_gl_area_attach_buffers(_pArea);
    }
    _view.paint();
}

bool AreaHost::makeContextCurrent()
{
    gui::gl::OffscreenContext::leave();
    gdk_gl_context_make_current(_pContext);
    return gdk_gl_context_get_current() == _pContext;
}

// In no window there is no framebuffer.
td::Size<double> AreaHost::getSize() const
{
    if (gtk_widget_get_realized(_pWidget) == FALSE)
        return {0, 0};
    return {static_cast<double>(gtk_widget_get_width(_pWidget)), static_cast<double>(gtk_widget_get_height(_pWidget))};
}

float AreaHost::getBackingScale() const { return static_cast<float>(gtk_widget_get_scale_factor(_pWidget)); }

td::Size<int> AreaHost::getDrawableSize() const
{
    const int scale = gtk_widget_get_scale_factor(_pWidget);
    return {std::max(gtk_widget_get_width(_pWidget) * scale, 1), std::max(gtk_widget_get_height(_pWidget) * scale, 1)};
}

double AreaHost::getDisplayRate() const
{
    GtkNative* const pNative = gtk_widget_get_native(_pWidget);
    GdkSurface* const pSurface = pNative != nullptr ? gtk_native_get_surface(pNative) : nullptr;
    if (pSurface == nullptr)
        return 0;
    GdkMonitor* const pMonitor = gdk_display_get_monitor_at_surface(gdk_surface_get_display(pSurface), pSurface);
    constexpr double cUnitsPerHertz = 1000;
    return pMonitor != nullptr ? gdk_monitor_get_refresh_rate(pMonitor) / cUnitsPerHertz : 0;
}

void AreaHost::setCursor(gui::Cursor::Type type)
{
    const char* const name = type == gui::Cursor::Type::Pan    ? "move"
                             : type == gui::Cursor::Type::Text ? "text"
                                                               : nullptr;
    gtk_widget_set_cursor_from_name(_pWidget, name);
}

void AreaHost::setTextInput(bool isOn, const td::RectNormalized<double>& caret) { _input.setText(isOn, caret); }

} // namespace gui::gtk
