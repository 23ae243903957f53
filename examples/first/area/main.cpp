// A window of GTK's: a plane to pan and zoom, and a scale for the width of what is on it.
#include <gtk/gtk.h>
#include <gui/draw/draw.h>
#include <gui/gl/gl.h>
#include <gui/gtk/ViewArea.h>
using namespace gui::gl;
class SpiralView : public OrthoView
{
    gui::draw::Drawing _drawing;
    void onInit() override { setBindings(Bindings::Plain); }
    void onDraw(const td::RectNormalized<double>&) override
    {
        Context::clear(Context::Clear::Color, td::ColorID::Ivory);
        _drawing.draw(*this);
    }
public:
    void setWidth(double width)
    {
        const auto spiral = gui::draw::Path::fromSVG("M200 140a20 20 0 0 1 40 0a40 40 0 0 1 -80 0a60 60 0 0 1 120 0"
                                                     "a80 80 0 0 1 -160 0a100 100 0 0 1 200 0");
        _drawing.clear();
        _drawing.stroke(spiral, {.width = width, .cap = gui::draw::Cap::Round}, td::ColorID::Teal);
        reRender();
    }
};
int main()
{
    gtk_init();
    SpiralView view;
    GtkWidget* const pPlane = gui::gtk::newViewArea([&view] { view.createContext(true); return &view; });
    gtk_widget_set_vexpand(pPlane, TRUE);
    GtkWidget* const pScale = gtk_scale_new_with_range(GTK_ORIENTATION_HORIZONTAL, 1, 20, 1);
    const auto change = [](GtkRange* p, void* pV) { static_cast<SpiralView*>(pV)->setWidth(gtk_range_get_value(p)); };
    g_signal_connect(pScale, "value-changed", G_CALLBACK(+change), &view);
    gtk_range_set_value(GTK_RANGE(pScale), 12);
    GtkWidget* const pWindow = gtk_window_new();
    gtk_window_set_title(GTK_WINDOW(pWindow), "Spiral");
    GtkWidget* const pBox = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    gtk_box_append(GTK_BOX(pBox), pPlane);
    gtk_box_append(GTK_BOX(pBox), pScale);
    gtk_window_set_default_size(GTK_WINDOW(pWindow), 420, 330);
    gtk_window_set_child(GTK_WINDOW(pWindow), pBox);
    gtk_window_present(GTK_WINDOW(pWindow));
    while (g_list_model_get_n_items(gtk_window_get_toplevels()) > 0)
        g_main_context_iteration(nullptr, TRUE);
}
