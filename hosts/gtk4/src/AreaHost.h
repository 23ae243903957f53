#pragma once

#include "GtkInput.h"

#include <gui/gl/Context.h>
#include <gui/gl/port/HostedView.h>
#include <gui/gl/port/PixelFormat.h>

#include <gtk/gtk.h>

namespace gui::gtk
{

/// What a GtkGLArea has that shows a view.
class AreaHost : public gui::gl::HostWidget
{
public:
    /// @param pArea  owns this
    AreaHost(GtkGLArea* pArea, gui::gl::HostedView::Maker make, const gui::gl::Context& context);
    ~AreaHost() override;
    AreaHost(const AreaHost&) = delete;
    AreaHost& operator=(const AreaHost&) = delete;

    gui::gl::View* getView() const { return _view.getView(); }

    // What GTK calls.
    /// @return a reference of the caller's; null, with the area's error set, when there is no such context
    GdkGLContext* createContext();
    void beforePaint() { _view.keepDepthTest(); }
    void paint();
    void hide() { _view.setVisible(false); }
    /// While the widget still answers.
    void close();

    const char* getName() const override { return "ViewArea"; }
    bool makeContextCurrent() override;
    const void* getContext() const override { return _pContext; }
    td::Size<double> getSize() const override;
    float getBackingScale() const override;
    td::Size<int> getDrawableSize() const override;
    unsigned int getFramebuffer() const override { return s_boundFramebuffer; }
    void bindFramebuffer() override { gtk_gl_area_attach_buffers(_pArea); }
    bool needsOpaqueFrames() const override { return true; }
    void requestPaint() override { gtk_gl_area_queue_render(_pArea); }
    bool isShown() const override { return gtk_widget_get_mapped(_pWidget) != FALSE; }
    double getDisplayRate() const override;
    void setCursor(gui::Cursor::Type type) override;
    void setTextInput(bool isOn, const td::RectNormalized<double>& caret) override;

private:
    void fail(const char* why);

    GtkGLArea* _pArea;
    GtkWidget* _pWidget;
    gui::gl::PixelFormatSizes _sizes;
    GdkGLContext* _pContext = nullptr; // for as long as the area is on its display
    gui::gl::HostedView _view;
    GtkInput _input;
    bool _isClosed = false;
};

} // namespace gui::gtk
