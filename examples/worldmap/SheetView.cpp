#include "SheetView.h"

#include <limits>

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
constexpr double cInfinity = std::numeric_limits<double>::infinity();

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

Path areaOf(const std::vector<Line>& rings, Projection projection)
{
    Path area;
    for (const Line& ring : rings)
        area.addPath(pathOf(ring, projection).close());
    return area;
}

SheetView::SheetView(const Countries& countries, Projection projection)
    : DrawingView(false)
    , _countries(countries)
{
    setBackground(cSeaColor);
    setReach(0);
    setZoomLimits(cMinZoom, cMaxZoom);
    setProjection(projection);
}

// The lines are over the lands: these get other colours, and leave the lines as they are.
void SheetView::make()
{
    const Rect area = sheetOf(_projection);
    drawing().clear();
    drawing().setPickable(drawing().beginGroup(), false);
    for (double degrees = -180; degrees < 200; degrees += cNetStep)
    {
        drawing().stroke(pathOf({{degrees, -90}, {degrees, 90}}, _projection), {}, cNetColor);
        if (std::abs(degrees) < 90)
            drawing().stroke(pathOf({{area.left, degrees}, {area.right, degrees}}, _projection), {}, cNetColor);
    }
    drawing().endGroup();
    _groups.clear();
    for (const Country& country : _countries.all)
    {
        const std::size_t number = _groups.size();
        _groups.push_back(drawing().beginGroup());
        drawing().setTag(_groups.back(), number + 1);
        for (const Outlines* pOutlines : {&_countries.coarse, &_countries.fine})
        {
            const bool isFine = pOutlines == &_countries.fine;
            const Path path = areaOf(pOutlines->countries[number], _projection);
            drawing().setZoomRange(drawing().fill(path, cLandColors[country.color], FillRule::EvenOdd),
                                   isFine ? cFineZoom : 0, isFine ? cInfinity : cFineZoom);
        }
        drawing().endGroup();
    }
    overlay().clear();
    addLines(_countries.coarse, 0, cFineZoom);
    addLines(_countries.fine, cFineZoom, cInfinity);
    const Path edge = Path().addRect(area), beyond = Path(edge).addRect({-cFarAway, -cFarAway, cFarAway, cFarAway});
    overlay().fill(beyond, cPaperColor, FillRule::EvenOdd);
    overlay().stroke(edge, cPen, cCoastColor);
    // Of what the paper covers nothing is found.
    drawing().fill(beyond, "#00000000", FillRule::EvenOdd);
    highlight(_highlighted);
}

void SheetView::addLines(const Outlines& outlines, double minZoom, double maxZoom)
{
    overlay().setZoomRange(overlay().beginGroup(), minZoom, maxZoom);
    for (const Line& line : outlines.borders)
        overlay().stroke(pathOf(line, _projection), cPen, cBorderColor);
    for (const Line& line : outlines.coasts)
        overlay().stroke(pathOf(line, _projection), cPen, cCoastColor);
    overlay().endGroup();
}

void SheetView::highlight(std::size_t country)
{
    if (_highlighted != Countries::cNone)
        drawing().setColor(_groups[_highlighted], cLandColors[_countries.all[_highlighted].color]);
    _highlighted = country;
    if (country != Countries::cNone)
        drawing().setColor(_groups[country], cHighlightColor);
    reRender();
}

void SheetView::setProjection(Projection projection)
{
    if (projection == _projection && !_groups.empty())
        return;
    const Point middle = unproject(_projection, getCenter());
    const double zoom = getZoom();
    const bool isMoved = hasHome() && !isAtHome();
    _projection = projection;
    make();
    setPlaneLimits(sheetOf(projection), cInSight);
    setHome(sheetOf(projection), cMargin);
    if (isMoved)
        setCenter(project(projection, middle), zoom);
}

} // namespace worldmap
