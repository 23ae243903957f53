#include "Legend.h"

#include "Names.h"

#include <gui/draw/Globe.h>

#include <cstdio>

namespace worldmap
{

namespace
{

using gui::draw::Affine;
using gui::draw::Anchor;
using gui::draw::Path;

// In points.
constexpr double cLineHeight = 22;
constexpr double cLeft = 10.5;       // the middle of a pixel
constexpr double cCountryLeft = 158; // beside the widest place
constexpr double cBarLength = 120;   // at most
constexpr double cBarBottom = 30.5;

constexpr double cKilometresPerDegree = 111.2; // on a sphere as large as the earth

std::string placeText(Projection projection, const Point& point)
{
    const Rect sheet = sheetOf(projection);
    if (point.x < sheet.left || point.x > sheet.right || point.y < sheet.top || point.y > sheet.bottom)
        return {};
    return gui::draw::Globe::getText(unproject(projection, point), 2);
}

} // namespace

double roundLength(double length)
{
    const double power = std::pow(10, std::floor(std::log10(length)));
    return (length >= 5 * power ? 5 : length >= 2 * power ? 2 : 1) * power;
}

// From the lower left corner of the view.
Legend::Legend()
    : _all(_drawing.beginGroup())
    , _band(_drawing.fill(Path().addRect({0, -cLineHeight, 1, 0}), "#ffffffe0"))
    , _rim(_drawing.stroke({}, {.width = 3, .cap = gui::draw::Cap::Square}, "#ffffff"))
    , _bar(_drawing.stroke({}, {.width = 1}, "#26384a"))
    , _scale(_drawing.text({cLeft + 6, -cBarBottom - 3}, "", writing(1.75), {.anchor = Anchor::Left}))
    , _place(_drawing.text({cLeft, -cLineHeight / 2}, "", writing(0), {.anchor = Anchor::Left}))
    , _country(_drawing.text({cCountryLeft, -cLineHeight / 2}, "", writing(0), {.anchor = Anchor::Left}))
{
}

void Legend::draw(const SheetView& map, const std::optional<Point>& pointer, const std::string& country)
{
    const double zoom = map.getZoom();
    const Rect seen = map.getVisible();
    // Along the parallel in the middle of the view.
    const double latitude = std::clamp(unproject(map.getMapProjection(), map.getCenter()).y, -85.0, 85.0);
    const double kilometresPerPoint = cKilometresPerDegree / zoom * std::cos(latitude * cDegree);
    const double kilometres = roundLength(cBarLength * kilometresPerPoint), length = kilometres / kilometresPerPoint;
    const Point start(cLeft, -cBarBottom), end(cLeft + length, -cBarBottom);
    const Path bar = Path().moveTo({start.x, start.y - 6}).lineTo(start).lineTo(end).lineTo({end.x, end.y - 6});
    char text[40];
    std::snprintf(text, sizeof text, "%g km", kilometres);
    _scaleText = text;
    _placeText = pointer ? placeText(map.getMapProjection(), map.getModelPoint(*pointer)) : "";
    _drawing.setTransform(_all, Affine::translation(0, (seen.bottom - seen.top) * zoom));
    _drawing.setTransform(_band, Affine::scaling((seen.right - seen.left) * zoom, 1));
    _drawing.setPath(_rim, bar);
    _drawing.setPath(_bar, bar);
    _drawing.setTransform(_scale, Affine::translation(length, 0));
    _drawing.setText(_scale, _scaleText);
    _drawing.setText(_place, _placeText);
    _drawing.setText(_country, country);
    _drawing.draw(Affine(), map.getPixelHiDPIScale());
}

} // namespace worldmap
