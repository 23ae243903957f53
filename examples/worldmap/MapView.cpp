#include "MapView.h"

#include <gui/Application.h>
#include <gui/Key.h>

#include <cctype>

namespace worldmap
{

namespace
{

/// A window with the whole map, on which a rectangle shows what another view sees of it. A click, or a drag, moves that
/// view there.
class Overview : public SheetView
{
public:
    Overview(const Countries& countries, SheetView& map, gui::Window& window)
        : SheetView(countries, map.getMapProjection())
        , _map(map)
        , _window(window)
        , _frame(_drawing.stroke({}, {.width = 2}, td::ColorID::Crimson))
    {
        createContext(false);
    }

protected:
    void onDraw(const td::RectNormalized<double>& rect) override
    {
        if (getMapProjection() != _map.getMapProjection())
            setProjection(_map.getMapProjection());
        SheetView::onDraw(rect);
        _drawing.setPath(_frame, gui::draw::Path().addRect(_map.getVisible()));
        _drawing.draw(*this);
    }
    void onPrimaryButtonPressed(const gui::InputDevice& device) override
    {
        _map.setCenter(getModelPoint(device.getFramePoint()));
    }
    void onCursorDragged(const gui::InputDevice& device) override { onPrimaryButtonPressed(device); }
    bool onScroll(const gui::InputDevice&) override { return true; }
    bool onZoom(const gui::InputDevice&) override { return true; }
    bool onKeyPressed(const gui::Key& key) override
    {
        const bool isEnd = std::toupper(key.getChar()) == 'O' || key.getVirtual() == gui::Key::Virtual::Escape;
        if (isEnd)
            _window.close();
        return isEnd;
    }

private:
    SheetView& _map;
    gui::Window& _window;
    gui::draw::Drawing _drawing;
    gui::draw::Drawing::ID _frame;
};

} // namespace

MapView::MapView(gui::Window& window, const Countries& countries)
    : SheetView(countries, Projection::Equirectangular)
    , _window(window)
    , _countries(countries)
    , _names(countries)
{
    createContext(false);
}

void MapView::cleanResources()
{
    _pOverviewWindow.reset();
    _pOverview.reset();
}

void MapView::onDraw(const td::RectNormalized<double>& rect)
{
    SheetView::onDraw(rect);
    if (!_isWritten)
        return;
    _names.draw(*this);
    _legend.draw(*this, _pointer, _country == Countries::cNone ? "" : _countries.all[_country].name);
}

void MapView::onOriginChanged()
{
    pointAt(_pointer); // the map moves under the pointer
    if (_pOverview != nullptr)
        _pOverview->reRender();
}

void MapView::onCursorDragged(const gui::InputDevice& device)
{
    SheetView::onCursorDragged(device);
    pointAt(device.getFramePoint());
}

void MapView::onCursorExited(const gui::InputDevice& device)
{
    SheetView::onCursorExited(device);
    pointAt({});
}

void MapView::pointAt(const std::optional<Point>& pointer)
{
    _pointer = pointer;
    reRender(); // for the place that is written
    const std::size_t country = _pointer ? find(getModelPoint(*_pointer)) : Countries::cNone;
    if (country == _country)
        return;
    highlight(_country = country);
    const bool isNone = country == Countries::cNone;
    _window.setTitle(isNone ? "World map" : ("World map - " + _countries.all[country].name).c_str());
}

bool MapView::onKeyPressed(const gui::Key& key)
{
    const int letter = std::toupper(key.getChar());
    if (letter == 'M')
        setProjection(getMapProjection() == Projection::Mercator ? Projection::Equirectangular : Projection::Mercator);
    else if (letter == 'L')
        _isWritten = !_isWritten;
    else if (letter == 'O')
        toggleOverview();
    else if (key.getVirtual() == gui::Key::Virtual::Escape)
        gui::Application::quit();
    else
        return moveByKey(key);
    reRender();
    return true;
}

void MapView::toggleOverview()
{
    const bool isOpen = getOverview() != nullptr;
    cleanResources();
    if (isOpen)
        return;
    _pOverviewWindow = std::make_unique<gui::Window>("World map - overview", td::Size<double>(440, 232));
    _pOverview = std::make_unique<Overview>(_countries, *this, *_pOverviewWindow);
    if (!_pOverviewWindow->show(*_pOverview))
        cleanResources();
}

} // namespace worldmap
