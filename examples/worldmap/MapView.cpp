#include "MapView.h"

#include <gui/Application.h>
#include <gui/Key.h>

#include <string>

namespace worldmap
{

namespace
{

constexpr double cStep = 60; // points that an arrow key moves the map

} // namespace

MapView::MapView(gui::Window& window, const Countries& countries)
    : SheetView(countries, Projection::Equirectangular)
    , _window(window)
    , _countries(countries)
{
    createContext(false);
}

void MapView::onInit()
{
    SheetView::onInit();
    _pLabels = std::make_unique<Labels>(_countries);
    _pLegend = std::make_unique<Legend>();
    if (_pLabels->init() && _pLegend->init())
        return;
    _pLegend.reset();
    _pLabels.reset();
}

void MapView::cleanResources()
{
    _pOverview.reset();
    _pLegend.reset();
    _pLabels.reset();
    SheetView::cleanResources();
}

void MapView::onDraw(const td::RectNormalized<double>& rect)
{
    SheetView::onDraw(rect);
    const Box visible = getVisible();
    if (!_isWritten || _pLabels == nullptr || visible.width() <= 0 || visible.height() <= 0)
        return;
    const td::Size<double> size(visible.width() * getZoom(), visible.height() * getZoom());
    const Outlook outlook{getMapProjection(), visible, size, getPixelHiDPIScale()};
    const bool isNone = _country == Countries::cNone;
    _pLabels->draw(outlook, Legend::boxesIn(outlook));
    _pLegend->draw(outlook, _pointer, isNone ? std::string() : _countries.getCountries()[_country].name);
}

void MapView::setWritten(bool isWritten)
{
    _isWritten = isWritten;
    reRender();
}

void MapView::onOriginChanged()
{
    SheetView::onOriginChanged();
    findCountry(); // the map moves under the pointer
    if (_pOverview != nullptr)
        _pOverview->reRender();
}

void MapView::onCursorMoved(const gui::InputDevice& device)
{
    _pointer = device.getFramePoint();
    findCountry();
    reRender(); // for the place that is written
}

void MapView::onCursorDragged(const gui::InputDevice& device)
{
    SheetView::onCursorDragged(device);
    onCursorMoved(device);
}

void MapView::onCursorExited(const gui::InputDevice& device)
{
    SheetView::onCursorExited(device);
    _pointer.reset();
    findCountry();
    reRender();
}

void MapView::findCountry()
{
    std::size_t country = Countries::cNone;
    if (_pointer.has_value())
    {
        const td::Point<double> point = getModelPoint(*_pointer);
        if (sheetOf(getMapProjection()).contains(point))
            country = _countries.find(unproject(getMapProjection(), point));
    }
    if (country == _country)
        return;
    _country = country;
    highlight(country);
    const bool isNone = country == Countries::cNone;
    _window.setTitle(isNone ? "World map" : ("World map - " + _countries.getCountries()[country].name).c_str());
}

bool MapView::onKeyPressed(const gui::Key& key)
{
    using Virtual = gui::Key::Virtual;
    const auto zoom = [&](char sign)
    {
        const auto command = static_cast<unsigned int>(gui::KeyModifier::Cmd);
        return SheetView::onKeyPressed(gui::Key(static_cast<unsigned char>(sign), key.getModifiers() | command, 1, 0));
    };
    const char character = key.getChar();
    if (character == '+' || character == '=' || key.getVirtual() == Virtual::KeypadPlus)
        return zoom('+');
    if (character == '-' || key.getVirtual() == Virtual::KeypadMinus)
        return zoom('-');
    if (character == '0')
        fit();
    else if (character == 'm' || character == 'M')
        setProjection(getMapProjection() == Projection::Mercator ? Projection::Equirectangular : Projection::Mercator);
    else if (character == 'l' || character == 'L')
        setWritten(!_isWritten);
    else if (character == 'o' || character == 'O')
        toggleOverview();
    else if (key.getVirtual() == Virtual::Left)
        move(-cStep, 0);
    else if (key.getVirtual() == Virtual::Right)
        move(cStep, 0);
    else if (key.getVirtual() == Virtual::Up)
        move(0, cStep);
    else if (key.getVirtual() == Virtual::Down)
        move(0, -cStep);
    else if (key.getVirtual() == Virtual::Escape)
        gui::Application::quit();
    else
        return false;
    return true;
}

void MapView::move(double x, double y)
{
    setModelRefPoint({getOrigin().x + x / getZoom(), getOrigin().y + y / getZoom()});
}

void MapView::toggleOverview()
{
    const bool isOpen = _pOverview != nullptr && _pOverview->isOpen();
    _pOverview.reset();
    if (isOpen)
        return;
    _pOverview = std::make_unique<Overview>(_countries, *this);
    if (!_pOverview->open())
        _pOverview.reset();
}

} // namespace worldmap
