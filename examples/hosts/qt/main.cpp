// A program of Qt's with three views: a map and a globe in tabs, and a plot in a dock. A click on a name in the list
// flies to that country.

#include <QApplication>
#include <QDockWidget>
#include <QListWidget>
#include <QMainWindow>
#include <QTabWidget>
#include <globe/GlobeView.h>
#include <gui/draw/draw.h>
#include <gui/gl/gl.h>
#include <gui/qt/ViewWidget.h>
#include <worldmap/SheetView.h>

using gui::draw::Path;
using gui::qt::ViewWidget;
using worldmap::Countries;

namespace
{

// How large the largest countries are, and the one that was chosen.
class Plot : public gui::gl::View
{
public:
    explicit Plot(const Countries& countries)
    {
        constexpr double cRadius = 6.371; // of the earth, in thousands of kilometres
        const auto height = [](const worldmap::Point& point) { return std::sin(point.y * worldmap::cDegree); };
        for (std::size_t i = 0; i < countries.all.size(); ++i)
        {
            double area = 0;
            for (const worldmap::Line& ring : countries.fine.countries[i])
                for (std::size_t k = 0, before = ring.size() - 1; k < ring.size(); before = k++)
                    area += (ring[k].x - ring[before].x) * (height(ring[k]) + height(ring[before])) / 2;
            if (countries.all[i].name != "Antarctica") // which is there twice where the map ends
                _rows.push_back({countries.all[i].name, std::abs(area) * worldmap::cDegree * cRadius * cRadius, i});
        }
        std::ranges::sort(_rows, std::greater(), &Row::area);
    }
    void show(std::size_t country)
    {
        _shown = country;
        reRender();
    }

private:
    void onDraw(const td::RectNormalized<double>& rect) override
    {
        constexpr double cRow = 19, cNames = 150;
        gui::gl::Context::clear(gui::gl::Context::Clear::Color, td::ColorID::White);
        _drawing.clear();
        double y = 10;
        for (const Row& row : _rows)
            if (row.country == _shown || y < rect.bottom - 2.5 * cRow)
            {
                const double end = cNames + row.area / _rows[0].area * (rect.right - cNames - 50);
                _drawing.text({cNames - 8, y}, row.name, {.size = 11}, {.anchor = gui::draw::Anchor::Right});
                _drawing.fill(Path().addRect({cNames, y - 6, std::max(end, cNames + 1), y + 6}),
                              row.country == _shown ? "#f08a5d" : "#7f9db9");
                _drawing.text({end + 6, y}, QString::number(row.area, 'f', 2).toStdString(), {.size = 10},
                              {.anchor = gui::draw::Anchor::Left});
                y += cRow;
            }
        _drawing.draw({}, double(getPixelHiDPIScale()));
    }
    struct Row
    {
        std::string name;
        double area; // million square kilometres
        std::size_t country;
    };
    std::vector<Row> _rows;
    std::size_t _shown = Countries::cNone;
    gui::draw::Drawing _drawing;
};

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    Countries countries;
    if (!countries.load())
        return EXIT_FAILURE;
    std::unique_ptr<worldmap::SheetView> map;
    std::unique_ptr<globe::GlobeView> globe;
    Plot plot(countries);

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
                         map->highlight(country);
                         map->flyTo(map->getBounds(country), 80);
                         plot.show(country);
                     });
    auto* const pTabs = new QTabWidget;
    const auto makeMap = [&]
    {
        map = std::make_unique<worldmap::SheetView>(countries, worldmap::Projection::Mercator);
        map->setBindings(gui::gl::OrthoView::Bindings::Plain);
        map->createContext(false);
        return map.get();
    };
    const auto makeGlobe = [&] { return (globe = std::make_unique<globe::GlobeView>(nullptr)).get(); };
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
