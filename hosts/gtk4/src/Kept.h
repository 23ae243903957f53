#pragma once

#include <gtk/gtk.h>

namespace gui::gtk
{

/// Keeps a widget while the view hears something, which may end it.
class Kept
{
public:
    explicit Kept(GtkWidget* pWidget)
        : _pWidget(pWidget)
    {
        g_object_ref(pWidget);
    }
    ~Kept() { g_object_unref(_pWidget); }
    Kept(const Kept&) = delete;
    Kept& operator=(const Kept&) = delete;

private:
    GtkWidget* _pWidget;
};

} // namespace gui::gtk
