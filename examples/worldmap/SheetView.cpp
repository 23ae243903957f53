#include "SheetView.h"

#include <gui/gl/Context.h>

#include <algorithm>

namespace worldmap
{

namespace
{

// In points.
constexpr double cMargin = 12;
constexpr double cInSight = 60; // that no move takes away

constexpr double cMaxZoom = 400; // points per degree

} // namespace

SheetView::SheetView(const Countries& countries, Projection projection)
    : _countries(countries)
    , _projection(projection)
{
}

void SheetView::onInit()
{
    _pLayers = std::make_unique<MapLayers>(_countries);
    _pLayers->init(_projection);
}

void SheetView::cleanResources() { _pLayers.reset(); }

void SheetView::onDraw(const td::RectNormalized<double>&)
{
    gui::gl::Context::clear(gui::gl::Context::Clear::Color);
    if (_pLayers != nullptr)
        _pLayers->draw(getProjection(), getZoom());
}

void SheetView::onResize(const td::Size<double>& size)
{
    const td::Point<double> middle = getVisible().middle();
    _size = size;
    OrthoView::onResize(size);
    if (_isFitted)
        fit();
    else
        center(middle);
}

void SheetView::fit()
{
    const Box sheet = sheetOf(_projection);
    const double zoom =
        std::min((_size.width - 2 * cMargin) / sheet.width(), (_size.height - 2 * cMargin) / sheet.height());
    setZoomLimits(zoom / 2, std::max(zoom, cMaxZoom));
    setZoom(zoom);
    center(sheet.middle());
    _isFitted = true;
}

void SheetView::center(const td::Point<double>& point)
{
    const double zoom = getZoom();
    setModelRefPoint({point.x - _size.width / 2 / zoom, point.y - _size.height / 2 / zoom});
}

Box SheetView::getVisible() const
{
    const td::Point<double>& origin = getOrigin();
    return {origin, {origin.x + _size.width / getZoom(), origin.y + _size.height / getZoom()}};
}

void SheetView::setProjection(Projection projection)
{
    const td::Point<double> middle = unproject(_projection, getVisible().middle());
    _projection = projection;
    if (_pLayers != nullptr)
    {
        makeCurrentContext();
        _pLayers->setProjection(projection);
    }
    if (_isFitted)
        fit();
    else
        center(project(projection, middle));
}

void SheetView::highlight(std::size_t country)
{
    if (_pLayers != nullptr)
        _pLayers->highlight(country);
    reRender();
}

void SheetView::onOriginChanged()
{
    _isFitted = false;
    const td::Point<double> origin = keptInSight(getOrigin());
    if (origin != getOrigin())
        setModelRefPoint(origin);
}

// The map can be pushed out of the view, but for a strip of it.
td::Point<double> SheetView::keptInSight(const td::Point<double>& origin) const
{
    const Box sheet = sheetOf(_projection);
    const auto kept = [zoom = getZoom()](double position, double length, double min, double max)
    {
        const double strip = std::min({cInSight / zoom, length, max - min});
        return std::clamp(position, min + strip - length, max - strip);
    };
    return {kept(origin.x, _size.width / getZoom(), sheet.min.x, sheet.max.x),
            kept(origin.y, _size.height / getZoom(), sheet.min.y, sheet.max.y)};
}

} // namespace worldmap
