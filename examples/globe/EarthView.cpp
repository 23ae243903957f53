#include "EarthView.h"

#include <gui/Application.h>
#include <gui/Key.h>

#include <cmath>
#include <string>

namespace globe
{

using namespace gui::draw;

const Outlook cOutlooks[3] = {{"earth", {12, 18}, 2.05, {6, 14}, {-38, 20}},
                              {"mediterranean", {13, 17}, 0.42, {17, 40}, {60, 22}},
                              {"dusk", {118, 4}, 1.55, {110, 16}, {40, 12}}};

namespace
{

constexpr double cLowest = 0.14, cHighest = 8; // radii
constexpr double cDegreesPerSecond = 6;        // of the sun, westwards
constexpr double cFlight = 1.6;                // seconds
constexpr double cKilometres = 6371;           // of a radius

} // namespace

EarthView::EarthView(gui::Window* pWindow)
    : _pWindow(pWindow)
{
    camera().setFieldOfView(45);
    constexpr double cAir = 1 + GlobeSurface::cAirHeight;
    camera().setBounds({glm::dvec3(-cAir), glm::dvec3(cAir)});
    setHeightLimits(cLowest, cHighest);
    setSky(768, starsIn);
    createContext();
}

void EarthView::onInit()
{
    _isOk = _countries.init() && _earth.init(":globe/earth-720x360.png");
    show(cOutlooks[0]);
}

void EarthView::show(const Outlook& outlook, double seconds)
{
    look(outlook.over, outlook.height, outlook.towards, seconds);
    _earth.setSun(outlook.sun);
}

void EarthView::drawScene(const Eye& eye)
{
    if (!_isOk)
        return;
    _earth.draw(eye);
    _countries.drawLines(eye, _hasBorders);
    _earth.drawOver(eye);
}

void EarthView::drawOver(const Eye& eye) { _countries.drawNames(eye, _hasNames); }

void EarthView::onPlacePointed(const std::optional<Place>& place)
{
    if (!_countries.point(place))
        return;
    showTitle();
    reRender();
}

void EarthView::onCameraMoved()
{
    GlobeView::onCameraMoved();
    showTitle();
}

bool EarthView::onAnimate(double seconds)
{
    const Place sun = _earth.getSun().value_or(Place());
    if (_hasTime)
        _earth.setSun(Place(sun.x - cDegreesPerSecond * seconds, sun.y));
    return _hasTime;
}

bool EarthView::onKeyPressed(const gui::Key& key)
{
    const char character = key.getChar();
    if (character >= '1' && character <= '3')
        show(cOutlooks[character - '1'], cFlight);
    else if (character == ' ')
    {
        _hasTime = !_hasTime;
        startAnimation();
    }
    else if (character == 'b' || character == 'B')
        _hasBorders = !_hasBorders;
    else if (character == 'l' || character == 'L')
        _hasNames = !_hasNames;
    else if (key.getVirtual() == gui::Key::Virtual::Escape)
        gui::Application::quit();
    else
        return GlobeView::onKeyPressed(key);
    reRender();
    return true;
}

void EarthView::showTitle()
{
    if (_pWindow == nullptr)
        return;
    std::string title = "Globe - over " + Globe::getText(getPlace()) + ", " +
                        std::to_string(std::lround(getHeight() * cKilometres)) + " km high";
    if (const examples::TopoJSON::Area* const pCountry = _countries.getPointed())
        title += " - " + pCountry->name;
    _pWindow->setTitle(title.c_str());
}

} // namespace globe
