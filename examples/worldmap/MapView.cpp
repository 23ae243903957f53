#include "MapView.h"

#include <gui/Application.h>
#include <gui/Key.h>

#include <cctype>

namespace worldmap
{

/// A window with the whole map, on which a rectangle shows what another view sees of it. A click, or a drag, moves that
/// view there.
class MapView::Overview : public SheetView
{
public:
    Overview(const Countries& countries, SheetView& map)
        : SheetView(countries, map.getMapProjection())
        , _map(map)
    {
        _window.show(*this);
    }

    bool isOpen() const { return _window.isOpen(); }

protected:
    void onDraw(const td::RectNormalized<double>& rect) override
    {
        setProjection(_map.getMapProjection());
        SheetView::onDraw(rect);
        _frame.clear();
        _frame.stroke(gui::draw::Path().addRect(_map.getVisible()), {.width = 2}, td::ColorID::Crimson);
        _frame.draw(*this);
    }
    void onPrimaryButtonPressed(const gui::InputDevice& device) override
    {
        _map.setCenter(getModelPoint(device.getFramePoint()));
    }
    void onCursorDragged(const gui::InputDevice& device) override { onPrimaryButtonPressed(device); }
    void onShapeDoubleClicked(gui::draw::Drawing::ID) override {}
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
    gui::draw::Drawing _frame;
    gui::Window _window{"World map - overview", {440, 232}};
};

MapView::MapView(gui::Window& window, const Countries& countries)
    : SheetView(countries, Projection::Equirectangular)
    , _window(window)
    , _countries(countries)
    , _names(countries)
{
    setBindings(Bindings::Modified);
}

MapView::~MapView() = default;

void MapView::cleanResources() { _pOverview.reset(); }

SheetView* MapView::getOverview() { return _pOverview && _pOverview->isOpen() ? _pOverview.get() : nullptr; }

void MapView::onDraw(const td::RectNormalized<double>& rect)
{
    SheetView::onDraw(rect);
    if (!_isWritten)
        return;
    _names.draw(*this);
    _legend.draw(*this, getPointer(), getCountry() == Countries::cNone ? "" : _countries.all[getCountry()].name);
}

void MapView::onOriginChanged()
{
    if (_pOverview != nullptr)
        _pOverview->reRender();
}

void MapView::onShapeEntered(gui::draw::Drawing::ID shape)
{
    highlight(drawing().getTag(shape) - 1);
    const bool isNone = getCountry() == Countries::cNone;
    _window.setTitle(isNone ? "World map" : ("World map - " + _countries.all[getCountry()].name).c_str());
}

bool MapView::onKeyPressed(const gui::Key& key)
{
    const int letter = std::toupper(key.getChar());
    if (letter == 'M')
        setProjection(getMapProjection() == Projection::Mercator ? Projection::Equirectangular : Projection::Mercator);
    else if (letter == 'L')
        _isWritten = !_isWritten;
    else if (letter == 'O')
        _pOverview = getOverview() ? nullptr : std::make_unique<Overview>(_countries, *this);
    else if (key.getVirtual() == gui::Key::Virtual::Escape)
        gui::Application::quit();
    else
        return SheetView::onKeyPressed(key);
    reRender();
    return true;
}

} // namespace worldmap
