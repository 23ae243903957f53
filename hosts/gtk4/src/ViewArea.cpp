#include <gui/gtk/ViewArea.h>

#include "AreaHost.h"

#include <gui/gl/View.h>

#include <gtk/gtk.h>

#include <utility>

namespace gui::gtk
{

namespace
{

struct ViewArea
{
    GtkGLArea base;
    AreaHost* pHost;
};

struct ViewAreaClass
{
    GtkGLAreaClass base;
};

GtkGLAreaClass* s_pBase = nullptr; // GTK's own part

// Null while GTK constructs it, and in one that somebody has it construct by the name of the type, which shows GTK's
// error.
AreaHost* hostOf(void* pArea) { return static_cast<ViewArea*>(pArea)->pHost; }

void initClass(void* pClass, void*)
{
    s_pBase = GTK_GL_AREA_CLASS(g_type_class_peek_parent(pClass));
    auto* const pArea = GTK_GL_AREA_CLASS(pClass);
    pArea->create_context = [](GtkGLArea* p) { return hostOf(p) != nullptr ? hostOf(p)->createContext() : nullptr; };
    pArea->render = [](GtkGLArea* p, GdkGLContext*) -> gboolean
    {
        hostOf(p)->paint();
        return TRUE;
    };
    // The view sets its viewport.
    pArea->resize = [](GtkGLArea*, int, int) {};

    auto* const pWidget = GTK_WIDGET_CLASS(pClass);
    pWidget->snapshot = [](GtkWidget* p, GtkSnapshot* pSnapshot)
    {
        if (hostOf(p) != nullptr)
            hostOf(p)->beforePaint();
        GTK_WIDGET_CLASS(s_pBase)->snapshot(p, pSnapshot);
    };
    pWidget->measure =
        [](GtkWidget*, GtkOrientation orientation, int, int* pMinimum, int* pNatural, int* pLine, int* pNaturalLine)
    {
        constexpr int cWidth = 400, cHeight = 300;
        *pMinimum = 0;
        *pNatural = orientation == GTK_ORIENTATION_HORIZONTAL ? cWidth : cHeight;
        *pLine = *pNaturalLine = -1;
    };
    // When it is mapped it has no size yet: the view enters its window in the next paint.
    pWidget->unmap = [](GtkWidget* p)
    {
        if (hostOf(p) != nullptr)
            hostOf(p)->hide();
        GTK_WIDGET_CLASS(s_pBase)->unmap(p);
    };

    GObjectClass* const pObject = G_OBJECT_CLASS(pClass);
    pObject->dispose = [](GObject* p)
    {
        if (hostOf(p) != nullptr)
            hostOf(p)->close();
        G_OBJECT_CLASS(s_pBase)->dispose(p);
    };
    pObject->finalize = [](GObject* p)
    {
        delete std::exchange(reinterpret_cast<ViewArea*>(p)->pHost, nullptr);
        G_OBJECT_CLASS(s_pBase)->finalize(p);
    };
}

GType typeOf()
{
    static const GType type = g_type_register_static_simple(GTK_TYPE_GL_AREA, "GuiglViewArea", sizeof(ViewAreaClass),
                                                            initClass, sizeof(ViewArea), nullptr, GTypeFlags{});
    return type;
}

} // namespace

gui::gl::Context getDefaultContext() { return gui::gl::HostedView::getDefaultContext(); }

GtkWidget* newViewArea(Maker make, const gui::gl::Context& context)
{
    auto* const pArea = static_cast<ViewArea*>(g_object_new(typeOf(), nullptr));
    pArea->pHost = new AreaHost(&pArea->base, std::move(make), context);
    return GTK_WIDGET(pArea);
}

GtkWidget* newViewArea(gui::gl::View& view, const gui::gl::Context& context)
{
    return newViewArea(gui::gl::HostedView::makerOf(view, context), context);
}

gui::gl::View* getView(GtkWidget* pWidget)
{
    if (pWidget == nullptr || !G_TYPE_CHECK_INSTANCE_TYPE(pWidget, typeOf()))
        return nullptr;
    return hostOf(pWidget) != nullptr ? hostOf(pWidget)->getView() : nullptr;
}

} // namespace gui::gtk
