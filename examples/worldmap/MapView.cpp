#include "MapView.h"

#include <gui/Application.h>
#include <gui/Key.h>

#include <cctype>

namespace worldmap
{

using namespace gui::draw;

namespace
{

// In points.
constexpr double cLineHeight = 22;
constexpr double cLeft = 10.5;       // the middle of a pixel
constexpr double cCountryLeft = 158; // beside the widest place

} // namespace

class MapView::Overview : public SheetView
{
public:
    explicit Overview(SheetView& map)
        : SheetView(map.getCountries(), map.getMapProjection())
    {
        setOverviewOf(&map);
        _window.show(*this);
    }

    bool isOpen() const { return _window.isOpen(); }

protected:
    bool onKeyPressed(const gui::Key& key) override
    {
        const bool isEnd = std::toupper(key.getChar()) == 'O' || key.getVirtual() == gui::Key::Virtual::Escape;
        if (isEnd)
            _window.close();
        return isEnd;
    }

private:
    gui::Window _window{"World map - overview", {440, 232}};
};

MapView::MapView(gui::Window& window, const Countries& countries)
    : SheetView(countries, Projection::Equirectangular)
    , _window(window)
    , _band(_legend.fill(Path().addRect({0, -cLineHeight, 1, 0}), "#ffffffe0"))
    , _place(_legend.text({cLeft, -cLineHeight / 2}, "", writing(0), {.anchor = Anchor::Left}))
    , _country(_legend.text({cCountryLeft, -cLineHeight / 2}, "", writing(0), {.anchor = Anchor::Left}))
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
    const Rect seen = getVisible();
    _legend.setTransform(_band, Affine::scaling((seen.right - seen.left) * getZoom(), 1));
    _legend.setText(_place, getPointer() ? getPlaceText(*getPointer()) : "");
    _legend.setText(_country, getCountry() == Countries::cNone ? "" : getCountries().all[getCountry()].name);
    _legend.draw(Affine::translation(0, (seen.bottom - seen.top) * getZoom()), getPixelHiDPIScale());
    _scaleBar.draw(*this, getPointsPerKilometre() / getZoom());
}

void MapView::onOriginChanged()
{
    if (_pOverview == nullptr)
        return;
    _pOverview->setProjection(getMapProjection());
    _pOverview->reRender();
}

void MapView::onShapeEntered(Drawing::ID shape)
{
    highlight(drawing().getTag(shape) - 1);
    const bool isNone = getCountry() == Countries::cNone;
    _window.setTitle(isNone ? "World map" : ("World map - " + getCountries().all[getCountry()].name).c_str());
}

bool MapView::onKeyPressed(const gui::Key& key)
{
    const int letter = std::toupper(key.getChar());
    if (letter == 'M')
        setProjection(getMapProjection() == Projection::Mercator ? Projection::Equirectangular : Projection::Mercator);
    else if (letter == 'L')
        _isWritten = !_isWritten;
    else if (letter == 'O')
        _pOverview = getOverview() ? nullptr : std::make_unique<Overview>(*this);
    else if (key.getVirtual() == gui::Key::Virtual::Escape)
        gui::Application::quit();
    else
        return SheetView::onKeyPressed(key);
    reRender();
    return true;
}

} // namespace worldmap
