#include "SheetView.h"

#include <gui/gl/Context.h>

#include <limits>
#include <utility>

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

const gui::draw::Stroke cPen{.width = 0.8, .join = gui::draw::Join::Round};

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

void SheetView::make()
{
    if (std::exchange(_isMade, true))
        return;
    const Rect area = sheetOf(_projection);
    _shapes.assign(_countries.all.size(), {});
    _lands.clear();
    for (double degrees = -180; degrees < 200; degrees += cNetStep)
    {
        _lands.stroke(pathOf({{degrees, -90}, {degrees, 90}}, _projection), {}, cNetColor);
        if (std::abs(degrees) < 90)
            _lands.stroke(pathOf({{area.left, degrees}, {area.right, degrees}}, _projection), {}, cNetColor);
    }
    _lines.clear();
    add(_countries.coarse, 0, cFineZoom);
    add(_countries.fine, cFineZoom, std::numeric_limits<double>::infinity());
    color(_highlighted, cHighlightColor);
    const Path edge = Path().addRect(area), all = Path(edge).addRect({-cFarAway, -cFarAway, cFarAway, cFarAway});
    _lines.fill(all, cPaperColor, FillRule::EvenOdd);
    _lines.stroke(edge, cPen, cCoastColor);
}

void SheetView::add(const Outlines& outlines, double minZoom, double maxZoom)
{
    _lands.setZoomRange(_lands.beginGroup(), minZoom, maxZoom);
    for (std::size_t i = 0; i < _shapes.size(); ++i)
    {
        Path path;
        for (const Line& ring : outlines.countries[i])
            path.addPath(pathOf(ring, _projection).close());
        _shapes[i].push_back(_lands.fill(path, cLandColors[_countries.all[i].color], FillRule::EvenOdd));
        _lands.setTag(_shapes[i].back(), i + 1);
    }
    _lands.endGroup();
    _lines.setZoomRange(_lines.beginGroup(), minZoom, maxZoom);
    for (const Line& line : outlines.borders)
        _lines.stroke(pathOf(line, _projection), cPen, cBorderColor);
    for (const Line& line : outlines.coasts)
        _lines.stroke(pathOf(line, _projection), cPen, cCoastColor);
    _lines.endGroup();
}

void SheetView::onDraw(const td::RectNormalized<double>&)
{
    make();
    gui::gl::Context::clear(gui::gl::Context::Clear::Color, cSeaColor);
    _lands.draw(*this);
    _lines.draw(*this);
}

std::size_t SheetView::find(const Point& point)
{
    make();
    // What has no tag is no country.
    return isIn(sheetOf(_projection), point) ? _lands.getTag(_lands.pick(point)) - 1 : Countries::cNone;
}

Rect SheetView::getBounds(std::size_t country)
{
    make();
    return _lands.getBounds(_shapes[country].back()).value_or(sheetOf(_projection));
}

void SheetView::highlight(std::size_t country)
{
    if (_highlighted != Countries::cNone)
        color(_highlighted, cLandColors[_countries.all[_highlighted].color]);
    color(_highlighted = country, cHighlightColor);
    reRender();
}

void SheetView::color(std::size_t country, td::Color color)
{
    if (country < _shapes.size())
        for (const gui::draw::Drawing::ID shape : _shapes[country])
            _lands.setColor(shape, color);
}

void SheetView::setProjection(Projection projection)
{
    const Point middle = unproject(_projection, getCenter());
    const double zoom = getZoom();
    const bool isMoved = getPlaneLimits() && !isAtHome();
    _projection = projection;
    _isMade = false;
    setPlaneLimits(sheetOf(projection), cInSight);
    setHome(sheetOf(projection), cMargin);
    if (isMoved)
    {
        setZoom(zoom);
        setCenter(project(projection, middle));
    }
}

} // namespace worldmap
