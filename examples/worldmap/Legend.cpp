#include "Legend.h"

#include "Names.h"

#include <cstdio>
#include <utility>

namespace worldmap
{

namespace
{

using gui::draw::Anchor;
using gui::draw::Path;

// In points.
constexpr double cLineHeight = 22;
constexpr double cLeft = 10.5;       // the middle of a pixel
constexpr double cCountryLeft = 158; // beside the widest place
constexpr double cBarLength = 120;   // at most
constexpr double cBarBottom = 30.5;

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

void Legend::draw(const SheetView& map, const std::optional<Point>& pointer, const std::string& country)
{
    const double zoom = map.getZoom();
    const Rect seen = map.getVisible();
    const double width = (seen.right - seen.left) * zoom, height = (seen.bottom - seen.top) * zoom;
    // Along the parallel in the middle of the view.
    const double latitude = std::clamp(unproject(map.getMapProjection(), map.getCenter()).y, -85.0, 85.0);
    const double kilometresPerPoint = cKilometresPerDegree / zoom * std::cos(latitude * cDegree);
    const double length = roundLength(cBarLength * kilometresPerPoint), end = cLeft + length / kilometresPerPoint;
    const Content old = std::exchange(
        _content, {width, height, end, format("%g km", length),
                   pointer ? placeText(map.getMapProjection(), map.getModelPoint(*pointer)) : "", country});
    if (!(_content == old))
        make();
    _drawing.draw(gui::draw::Affine(), map.getPixelHiDPIScale());
}

void Legend::make()
{
    const auto& [width, height, end, scale, place, country] = _content;
    const double line = height - cLineHeight / 2, bar = height - cBarBottom;
    const Path shape = Path().moveTo({cLeft, bar - 6}).lineTo({cLeft, bar}).lineTo({end, bar}).lineTo({end, bar - 6});
    _drawing.clear();
    _drawing.fill(Path().addRect({0, height - cLineHeight, width, height}), "#ffffffe0");
    _drawing.stroke(shape, {.width = 3, .cap = gui::draw::Cap::Square}, "#ffffff");
    _drawing.stroke(shape, {.width = 1}, "#26384a");
    _drawing.text({end + 6, bar - 3}, scale, writing(1.75), {.anchor = Anchor::Left});
    _drawing.text({cLeft, line}, place, writing(0), {.anchor = Anchor::Left});
    _drawing.text({cCountryLeft, line}, country, writing(0), {.anchor = Anchor::Left});
}

} // namespace worldmap
