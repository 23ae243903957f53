#include "AreaPlot.h"

#include <gui/draw/draw.h>
#include <gui/gl/gl.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>

using gui::draw::Anchor;
using gui::draw::Path;

AreaPlot::AreaPlot(const worldmap::Countries& countries)
{
    constexpr double cRadius = 6.371; // of the earth, in thousands of kilometres
    const auto height = [](const worldmap::Point& point) { return std::sin(point.y * worldmap::cDegree); };
    for (std::size_t i = 0; i < countries.all.size(); ++i)
    {
        double area = 0;
        for (const auto& ring : countries.fine.areas[i])
            for (std::size_t k = 0, before = ring.size() - 1; k < ring.size(); before = k++)
                area += (ring[k].x - ring[before].x) * (height(ring[k]) + height(ring[before])) / 2;
        if (countries.all[i].name != "Antarctica") // which is there twice where the map ends
            _rows.push_back({countries.all[i].name, std::abs(area) * worldmap::cDegree * cRadius * cRadius, i});
    }
    std::ranges::sort(_rows, std::greater(), &Row::area);
}

void AreaPlot::show(std::size_t country)
{
    _shown = country;
    reRender();
}

void AreaPlot::onDraw(const td::RectNormalized<double>& rect)
{
    constexpr double cRow = 19, cNames = 150;
    gui::gl::Context::clear(gui::gl::Context::Clear::Color, td::ColorID::White);
    _drawing.clear();
    double y = 10;
    for (const Row& row : _rows)
        if (row.country == _shown || y < rect.bottom - 2.5 * cRow)
        {
            const double end = cNames + row.area / _rows[0].area * (rect.right - cNames - 50);
            _drawing.text({cNames - 8, y}, row.name, {.size = 11}, {.anchor = Anchor::Right});
            _drawing.fill(Path().addRect({cNames, y - 6, std::max(end, cNames + 1), y + 6}),
                          row.country == _shown ? "#f08a5d" : "#7f9db9");
            char area[32];
            std::snprintf(area, sizeof area, "%.2f", row.area);
            _drawing.text({end + 6, y}, area, {.size = 10}, {.anchor = Anchor::Left});
            y += cRow;
        }
    _drawing.draw({}, double(getPixelHiDPIScale()));
}
