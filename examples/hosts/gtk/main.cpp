// A program of GTK's with three views: a map and a globe in a notebook, and a plot in a pane. A click on a name in the
// list flies to that country.

#include "../AreaPlot.h"

#include <globe/EarthView.h>
#include <gtk/gtk.h>
#include <gui/gtk/ViewArea.h>
#include <worldmap/SheetView.h>

using worldmap::Countries;

namespace
{

struct Program
{
    explicit Program(Countries loaded)
        : countries(std::move(loaded))
    {
    }
    Countries countries;
    std::vector<std::string> names; // in the list's order
    AreaPlot plot{countries};
    std::unique_ptr<worldmap::SheetView> map;
    std::unique_ptr<globe::EarthView> globe;
};

GtkWidget* paned(GtkOrientation orientation, GtkWidget* pStart, GtkWidget* pEnd, int position)
{
    GtkWidget* const pPaned = gtk_paned_new(orientation);
    gtk_paned_set_start_child(GTK_PANED(pPaned), pStart);
    gtk_paned_set_end_child(GTK_PANED(pPaned), pEnd);
    gtk_paned_set_position(GTK_PANED(pPaned), position);
    return pPaned;
}

void fly(GtkListBox*, GtkListBoxRow* pRow, Program* pProgram)
{
    const std::string& name = pProgram->names[std::size_t(gtk_list_box_row_get_index(pRow))];
    const auto found = std::ranges::find(pProgram->countries.all, name, &worldmap::Country::name);
    const auto country = std::size_t(found - pProgram->countries.all.begin());
    if (pProgram->map)
    {
        pProgram->map->highlight(country);
        pProgram->map->flyTo(pProgram->map->getBounds(country), 80);
    }
    pProgram->plot.show(country);
}

void activate(GtkApplication* pApp, Program* pProgram)
{
    GtkWidget* const pList = gtk_list_box_new();
    for (const std::string& name : pProgram->names)
    {
        GtkWidget* const pLabel = gtk_label_new(name.c_str());
        gtk_label_set_xalign(GTK_LABEL(pLabel), 0);
        gtk_widget_set_margin_start(pLabel, 6);
        gtk_list_box_append(GTK_LIST_BOX(pList), pLabel);
    }
    g_signal_connect(pList, "row-activated", G_CALLBACK(fly), pProgram);
    GtkWidget* const pScrolled = gtk_scrolled_window_new();
    gtk_scrolled_window_set_child(GTK_SCROLLED_WINDOW(pScrolled), pList);

    const auto makeMap = [pProgram]
    {
        pProgram->map = std::make_unique<worldmap::SheetView>(pProgram->countries, worldmap::Projection::Mercator);
        return pProgram->map.get();
    };
    const auto makeGlobe = [pProgram] { return (pProgram->globe = std::make_unique<globe::EarthView>(nullptr)).get(); };
    GtkWidget* const pTabs = gtk_notebook_new();
    gtk_notebook_append_page(GTK_NOTEBOOK(pTabs), gui::gtk::newViewArea(makeMap), gtk_label_new("Map"));
    gtk_notebook_append_page(GTK_NOTEBOOK(pTabs), gui::gtk::newViewArea(makeGlobe), gtk_label_new("Globe"));

    GtkWidget* const pWindow = gtk_application_window_new(pApp);
    GtkWidget* const pRight = paned(GTK_ORIENTATION_VERTICAL, pTabs, gui::gtk::newViewArea(pProgram->plot), 500);
    gtk_window_set_child(GTK_WINDOW(pWindow), paned(GTK_ORIENTATION_HORIZONTAL, pScrolled, pRight, 220));
    gtk_window_set_title(GTK_WINDOW(pWindow), "Countries");
    gtk_window_set_default_size(GTK_WINDOW(pWindow), 1100, 760);
    gtk_window_present(GTK_WINDOW(pWindow));
}

} // namespace

int main(int argc, char** argv)
{
    Countries countries;
    if (!countries.load())
        return EXIT_FAILURE;
    Program program(std::move(countries));
    for (const worldmap::Country& country : program.countries.all)
        program.names.push_back(country.name);
    std::ranges::sort(program.names);
    GtkApplication* const pApp = gtk_application_new(nullptr, G_APPLICATION_NON_UNIQUE);
    g_signal_connect(pApp, "activate", G_CALLBACK(activate), &program);
    const int status = g_application_run(G_APPLICATION(pApp), argc, argv);
    g_object_unref(pApp);
    return status;
}
