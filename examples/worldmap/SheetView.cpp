#include "SheetView.h"

#include <gui/draw/Globe.h>

#include <utility>

namespace worldmap
{

using namespace gui::draw;
using examples::areaOf;
using examples::pathOf;

namespace
{

// In points.
constexpr double cMargin = 12;
constexpr double cInSight = 60; // of the map, that no move takes away

constexpr double cFineZoom = 4; // points per degree; from there on coarse lines are seen to be
constexpr double cMinZoom = 0.5, cMaxZoom = 400;
constexpr double cNetStep = 15, cFarAway = 2000; // degrees; the latter are more than any view shows
constexpr double cKilometresPerDegree = 111.2;   // on a sphere as large as the earth

constexpr td::Color cSeaColor = "#a9c4dc", cNetColor = "#c3d6e7", cPaperColor = "#ffffff";
constexpr td::Color cCoastColor = "#4f6f8f", cBorderColor = "#6b5f58", cHighlightColor = "#f08a5d";
constexpr td::Color cLandColors[cNoOfColors] = {"#e9dc9a", "#f6cfae", "#cdbedb", "#f4edd6", "#b3d6a4", "#e9b9bf"};

const Stroke cPen{.width = 0.8, .join = Join::Round};

} // namespace

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
    const auto toPlane = [this](const Point& degrees) { return project(_projection, degrees); };
    drawing().clear();
    drawing().setPickable(drawing().beginGroup(), false);
    for (double degrees = -180; degrees < 200; degrees += cNetStep)
    {
        drawing().stroke(pathOf({{degrees, -90}, {degrees, 90}}, toPlane), {}, cNetColor);
        if (std::abs(degrees) < 90)
            drawing().stroke(pathOf({{area.left, degrees}, {area.right, degrees}}, toPlane), {}, cNetColor);
    }
    drawing().endGroup();
    overlay().clear();
    _lands.assign(_countries.all.size(), {});
    addMap(_countries.coarse, 0, cFineZoom);
    addMap(_countries.fine, cFineZoom, 2 * cMaxZoom);
    const Path edge = Path().addRect(area), beyond = Path(edge).addRect({-cFarAway, -cFarAway, cFarAway, cFarAway});
    overlay().fill(beyond, cPaperColor, FillRule::EvenOdd);
    overlay().stroke(edge, cPen, cCoastColor);
    // Of what the paper covers nothing is found.
    drawing().fill(beyond, "#00000000", FillRule::EvenOdd);
    highlight(_highlighted);
}

void SheetView::addMap(const examples::FlatMap& map, double minZoom, double maxZoom)
{
    const auto toPlane = [this](const Point& degrees) { return project(_projection, degrees); };
    drawing().setZoomRange(drawing().beginGroup(), minZoom, maxZoom);
    for (std::size_t i = 0; i < map.areas.size(); ++i)
    {
        const td::Color color = cLandColors[_countries.all[i].color];
        _lands[i].push_back(drawing().fill(areaOf(map.areas[i], toPlane), color, FillRule::EvenOdd));
        drawing().setTag(_lands[i].back(), i + 1);
    }
    drawing().endGroup();
    overlay().setZoomRange(overlay().beginGroup(), minZoom, maxZoom);
    for (const auto& line : map.borders)
        overlay().stroke(pathOf(line, toPlane), cPen, cBorderColor);
    for (const auto& line : map.coasts)
        overlay().stroke(pathOf(line, toPlane), cPen, cCoastColor);
    overlay().endGroup();
}

void SheetView::highlight(std::size_t country)
{
    for (const std::size_t i : {std::exchange(_highlighted, country), country})
        if (i != Countries::cNone)
            for (const Drawing::ID land : _lands[i])
                drawing().setColor(land, i == country ? cHighlightColor : cLandColors[_countries.all[i].color]);
    reRender();
}

std::string SheetView::getPlaceText(const Point& viewPoint) const
{
    const Rect sheet = sheetOf(_projection);
    const Point point = getModelPoint(viewPoint);
    if (point.x < sheet.left || point.x > sheet.right || point.y < sheet.top || point.y > sheet.bottom)
        return {};
    return Globe::getText(unproject(_projection, point), 2);
}

double SheetView::getPointsPerKilometre() const
{
    const double latitude = std::clamp(unproject(_projection, getCenter()).y, -85.0, 85.0);
    return getZoom() / (cKilometresPerDegree * std::cos(latitude * cDegree));
}

void SheetView::setProjection(Projection projection)
{
    if (projection == _projection && !_lands.empty())
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
