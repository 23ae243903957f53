// A program of Qt's with three views: a map and a globe in tabs, and a plot in a dock. A click on a name in the list
// flies to that country.

#include "../AreaPlot.h"

#include <QApplication>
#include <QDockWidget>
#include <QListWidget>
#include <QMainWindow>
#include <QTabWidget>
#include <globe/EarthView.h>
#include <gui/qt/ViewWidget.h>
#include <worldmap/SheetView.h>

using gui::qt::ViewWidget;
using worldmap::Countries;

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    Countries countries;
    if (!countries.load())
        return EXIT_FAILURE;
    std::unique_ptr<worldmap::SheetView> map;
    std::unique_ptr<globe::EarthView> globe;
    AreaPlot plot(countries);

    auto* const pList = new QListWidget;
    for (const worldmap::Country& country : countries.all)
        pList->addItem(QString::fromStdString(country.name));
    pList->sortItems();
    QObject::connect(pList, &QListWidget::currentTextChanged,
                     [&](const QString& name)
                     {
                         const auto found =
                             std::ranges::find(countries.all, name.toStdString(), &worldmap::Country::name);
                         const auto country = std::size_t(found - countries.all.begin());
                         if (map == nullptr)
                             return; // there is no GL
                         map->highlight(country);
                         map->flyTo(map->getBounds(country), 80);
                         plot.show(country);
                     });
    auto* const pTabs = new QTabWidget;
    const auto makeMap = [&]
    {
        map = std::make_unique<worldmap::SheetView>(countries, worldmap::Projection::Mercator);
        return map.get();
    };
    const auto makeGlobe = [&] { return (globe = std::make_unique<globe::EarthView>(nullptr)).get(); };
    pTabs->addTab(new ViewWidget(makeMap), "Map");
    pTabs->addTab(new ViewWidget(makeGlobe), "Globe");

    QMainWindow window;
    window.setCentralWidget(pTabs);
    const auto addDock = [&window](const char* title, QWidget* pWidget, Qt::DockWidgetArea area)
    {
        auto* const pDock = new QDockWidget(title);
        pDock->setWidget(pWidget);
        window.addDockWidget(area, pDock);
    };
    addDock("Countries", pList, Qt::LeftDockWidgetArea);
    addDock("Area in million km\u00b2", new ViewWidget(plot), Qt::BottomDockWidgetArea);
    window.resize(1100, 760);
    window.show();
    return app.exec();
}
