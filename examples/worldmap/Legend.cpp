#include "Legend.h"

#include "Names.h"

#include <cstdio>

namespace worldmap
{

namespace
{

using gui::draw::Affine;
using gui::draw::Path;

// In points.
constexpr double cLineHeight = 22;
constexpr double cLeft = 10.5;       // the middle of a pixel
constexpr double cCountryLeft = 158; // beside the widest place
constexpr double cBarLength = 120;   // at most
constexpr double cBarBottom = 30.5;
constexpr double cWideEnough = 420; // for the zoom beside the longest name

constexpr double cKilometresPerDegree = 111.2; // on a sphere as large as the earth

std::string format(const char* pattern, auto... values)
{
    char text[80];
    std::snprintf(text, sizeof text, pattern, values...);
    return text;
}

std::string placeText(Projection projection, const Point& point)
{
    if (!isIn(sheetOf(projection), point))
        return {};
    // What is rounded to 0 is neither west nor south.
    const auto rounded = [](double value) { return std::round(value * 100) / 100; };
    const Point degrees = unproject(projection, point);
    const double longitude = rounded(std::remainder(degrees.x, 360)), latitude = rounded(degrees.y);
    return format("%.2f\u00b0 %c  %.2f\u00b0 %c", std::abs(longitude), longitude < 0 ? 'W' : 'E', std::abs(latitude),
                  latitude < 0 ? 'S' : 'N');
}

} // namespace

double roundLength(double length)
{
    const double power = std::pow(10, std::floor(std::log10(length)));
    return (length >= 5 * power ? 5 : length >= 2 * power ? 2 : 1) * power;
}

Legend::Legend()
    : _ground(_drawing.fill(Path().addRect({0, -cLineHeight, 1, 0}), "#ffffffe0"))
    , _bar(_drawing.beginGroup())
{
    const Path bar = Path::fromSVG("M0-6V0H1V-6");
    _drawing.stroke(bar, {.width = 3, .cap = gui::draw::Cap::Square}, "#ffffff");
    _drawing.stroke(bar, {.width = 1}, "#26384a");
    _drawing.endGroup();
    for (auto& id : _ids)
        id = _drawing.text({}, "", writing(&id == _ids ? 1.75 : 0), {.anchor = {&id == _ids + 3 ? 1.0 : 0.0, 0.5}});
}

void Legend::layOut(const SheetView& map, const std::optional<Point>& pointer, const std::string& country)
{
    const double zoom = map.getZoom();
    const Rect seen = map.getVisible();
    const double width = (seen.right - seen.left) * zoom, height = (seen.bottom - seen.top) * zoom;
    // Along the parallel in the middle of the view.
    const double latitude = std::clamp(unproject(map.getMapProjection(), map.getCenter()).y, -85.0, 85.0);
    const double kilometresPerPoint = cKilometresPerDegree / zoom * std::cos(latitude * cDegree);
    const double length = roundLength(cBarLength * kilometresPerPoint), barWidth = length / kilometresPerPoint;
    _drawing.setTransform(_ground, Affine::translation(0, height) * Affine::scaling(width, 1));
    _drawing.setTransform(_bar, Affine::translation(cLeft, height - cBarBottom) * Affine::scaling(barWidth, 1));

    const std::string texts[] = {format("%g km", length),
                                 pointer ? placeText(map.getMapProjection(), map.getModelPoint(*pointer)) : "", country,
                                 format("zoom %.*f", zoom < 10 ? 2 : 1, zoom)};
    const double lefts[] = {cLeft + barWidth + 6, cLeft, cCountryLeft, width - cLeft};
    for (std::size_t i = 0; i < std::size(_ids); ++i)
    {
        if (texts[i] != _texts[i])
            _drawing.setText(_ids[i], _texts[i] = texts[i]);
        _drawing.setTransform(_ids[i],
                              Affine::translation(lefts[i], height - (i == 0 ? cBarBottom + 3 : cLineHeight / 2)));
    }
    _drawing.setVisible(_ids[3], width > cWideEnough);
}

} // namespace worldmap
