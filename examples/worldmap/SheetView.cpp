#include "SheetView.h"

#include <gui/gl/Context.h>

namespace worldmap
{

namespace
{

using gui::draw::FillRule;
using gui::draw::Path;

// In points.
constexpr double cMargin = 12;
constexpr double cInSight = 60; // of the map, that no move takes away

constexpr double cFineZoom = 4; // points per degree; from there on coarse lines are seen to be
constexpr double cMinZoom = 0.5, cMaxZoom = 400;
constexpr double cNetStep = 15;   // degrees
constexpr double cFarAway = 2000; // of the map, farther than any view shows

constexpr td::Color cSeaColor = "#a9c4dc", cNetColor = "#c3d6e7", cPaperColor = "#ffffff";
constexpr td::Color cCoastColor = "#4f6f8f", cBorderColor = "#6b5f58", cHighlightColor = "#f08a5d";
constexpr td::Color cLandColors[cNoOfColors] = {"#e9dc9a", "#f6cfae", "#cdbedb", "#f4edd6", "#b3d6a4", "#e9b9bf"};

} // namespace

Path pathOf(const Line& degrees, Projection projection)
{
    Path path;
    for (const Point& point : degrees)
        path.lineTo(project(projection, point));
    return path;
}

SheetView::SheetView(const Countries& countries, Projection projection)
    : _countries(countries)
{
    setZoomLimits(cMinZoom, cMaxZoom);
    setProjection(projection);
}

SheetView::Sheet& SheetView::shownSheet()
{
    const bool isFine = getZoom() >= cFineZoom;
    Sheet& sheet = isFine ? _fine : _coarse;
    if (!sheet.countries.empty())
        return sheet;
    const Outlines& outlines = isFine ? _countries.fine : _countries.coarse;
    const Rect area = sheetOf(_projection);
    const gui::draw::Stroke pen{.width = 0.8, .join = gui::draw::Join::Round};
    sheet.lands.clear();
    for (double degrees = -180; degrees < 200; degrees += cNetStep)
    {
        sheet.lands.stroke(pathOf({{degrees, -90}, {degrees, 90}}, _projection), {}, cNetColor);
        if (std::abs(degrees) < 90)
            sheet.lands.stroke(pathOf({{area.left, degrees}, {area.right, degrees}}, _projection), {}, cNetColor);
    }
    for (const std::vector<Line>& rings : outlines.countries)
    {
        Path path;
        for (const Line& ring : rings)
            path.addPath(pathOf(ring, _projection).close());
        const td::Color color = cLandColors[_countries.all[sheet.countries.size()].color];
        sheet.countries.push_back(sheet.lands.fill(path, color, FillRule::EvenOdd));
    }
    color(_highlighted, cHighlightColor);

    sheet.lines.clear();
    for (const Line& line : outlines.borders)
        sheet.lines.stroke(pathOf(line, _projection), pen, cBorderColor);
    for (const Line& line : outlines.coasts)
        sheet.lines.stroke(pathOf(line, _projection), pen, cCoastColor);
    const Path edge = Path().addRect(area), all = Path(edge).addRect({-cFarAway, -cFarAway, cFarAway, cFarAway});
    sheet.lines.fill(all, cPaperColor, FillRule::EvenOdd);
    sheet.lines.stroke(edge, pen, cCoastColor);
    return sheet;
}

void SheetView::onDraw(const td::RectNormalized<double>&)
{
    gui::gl::Context::clear(gui::gl::Context::Clear::Color, cSeaColor);
    Sheet& sheet = shownSheet();
    sheet.lands.draw(*this);
    sheet.lines.draw(*this);
}

std::size_t SheetView::find(const Point& point)
{
    const Sheet& sheet = shownSheet();
    const auto found = std::find(sheet.countries.begin(), sheet.countries.end(), sheet.lands.pick(point));
    const bool isCountry = found != sheet.countries.end() && isIn(sheetOf(_projection), point);
    return isCountry ? static_cast<std::size_t>(found - sheet.countries.begin()) : Countries::cNone;
}

void SheetView::highlight(std::size_t country)
{
    if (_highlighted != Countries::cNone)
        color(_highlighted, cLandColors[_countries.all[_highlighted].color]);
    color(country, cHighlightColor);
    _highlighted = country;
    reRender();
}

void SheetView::color(std::size_t country, td::Color color)
{
    for (Sheet* pSheet : {&_coarse, &_fine})
        if (country < pSheet->countries.size())
            pSheet->lands.setColor(pSheet->countries[country], color);
}

void SheetView::setProjection(Projection projection)
{
    const Point middle = unproject(_projection, getCenter());
    const double zoom = getZoom();
    const bool isMoved = getPlaneLimits() && !isAtHome();
    _projection = projection;
    _coarse.countries.clear();
    _fine.countries.clear();
    setPlaneLimits(sheetOf(projection), cInSight);
    setHome(sheetOf(projection), cMargin);
    if (isMoved)
    {
        setZoom(zoom);
        setCenter(project(projection, middle));
    }
}

} // namespace worldmap
