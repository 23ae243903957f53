#include "GlobeView.h"

#include <gui/Application.h>
#include <gui/Res.h>
#include <gui/gl/Context.h>
#include <td/ToLower.h>

#include <glm/geometric.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

namespace globe
{

using namespace gui::gl;

const Outlook cOutlooks[3] = {{"earth", {12, 18}, 2.05, {6, 14}, {-38, 20}},
                              {"mediterranean", {13, 17}, 0.42, {17, 40}, {60, 22}},
                              {"dusk", {118, 4}, 1.55, {110, 16}, {40, 12}}};

namespace
{

constexpr float cHeightsPerSecond = 0.8F;
constexpr double cDegreesPerSecond = 6; // of the sun, westwards
constexpr double cLongestFrame = 0.1;   // seconds, after a frame that came late

} // namespace

GlobeView::GlobeView(gui::Window* pWindow)
    : _pWindow(pWindow)
{
    constexpr float cMax = std::numeric_limits<float>::max();
    _eye.setYawLimits(-cMax, cMax);
    _eye.setZoomFactorLimits(0.7F, 20);
    _eye.setLimiter(&_orbit);
    setDepthRange(0.02F, 40);
    setCamera(&_eye);
    createContext({DepthBuffer::Size::Bits24, StencilBuffer::Size::None, Context::Profile::Core41});
}

GlobeView::~GlobeView() = default;

void GlobeView::onInit()
{
    examples::TopoJSON countries;
    const td::String json = gui::getResText("globe/countries-50m.json");
    _isOk = countries.load({json.c_str(), json.length()}, "countries") && _earth.init() && _borders.init(countries) &&
            _sky.init(_perspective, _eye);
    _pLabels = std::make_unique<Labels>(countries);
    show(cOutlooks[0]);
}

void GlobeView::show(const Outlook& outlook)
{
    const glm::vec3 position = directionOf(outlook.over) * static_cast<float>(1 + outlook.height);
    const Camera there(position, directionOf(outlook.towards));
    _eye.place(position, there.getYaw(), there.getPitch());
    _sun = outlook.sun;
    showTitle();
    reRender();
}

float GlobeView::getHeight() const { return glm::length(_eye.getPosition()) - 1; }

void GlobeView::onDraw(const td::RectNormalized<double>&)
{
    Context::clear({Context::Clear::Color, Context::Clear::Depth});
    if (!_isOk)
        return;
    const Sight sight{_perspective * getCameraMatrix(), _eye.getPosition(), directionOf(_sun)};
    Context::enable(Context::Flag::DepthTest);
    _earth.drawSurface(sight);
    if (_hasBorders)
        _borders.draw(sight);
    _sky.draw();
    _earth.drawAir(sight);
    if (_hasLabels)
    {
        td::Size<double> size;
        getSize(size);
        _pLabels->draw(sight, size, getPixelHiDPIScale());
    }
    Context::disable(Context::Flag::DepthTest);
}

bool GlobeView::prepareNextFrame()
{
    move();
    return _hasTime || !_heldKeys.empty();
}

// Since the last frame.
void GlobeView::move()
{
    const Clock::time_point now = Clock::now();
    const double seconds = std::min(std::chrono::duration<double>(now - _lastFrame).count(), cLongestFrame);
    _lastFrame = now;
    if (_hasTime)
        _sun.longitude -= cDegreesPerSecond * seconds;
    if (_heldKeys.empty())
        return;
    _eye.setSpeed(getHeight() * cHeightsPerSecond * static_cast<float>(seconds));
    _eye.updatePosition(_turns);
    showTitle();
}

bool GlobeView::onKeyPressed(const gui::Key& key)
{
    const auto code = key.isASCII() ? static_cast<unsigned int>(td::toLower(key.getChar())) : key.getCode();
    if (_heldKeys.count(code) != 0) // it repeats
        return true;
    _turns = key.isAltPressed();
    _eye.setSpeed(getHeight() / 50);
    if (CameraView::onKeyPressed(key))
    {
        _heldKeys.insert(code);
        _lastFrame = Clock::now();
        startAnimation();
        return true;
    }
    const char character = key.getChar();
    if (character >= '1' && character <= '3')
        show(cOutlooks[character - '1']);
    else if (character == ' ')
    {
        _hasTime = !_hasTime;
        _lastFrame = Clock::now();
        if (_hasTime)
            startAnimation();
    }
    else if (character == 'b' || character == 'B')
        _hasBorders = !_hasBorders;
    else if (character == 'l' || character == 'L')
        _hasLabels = !_hasLabels;
    else if (key.getVirtual() == gui::Key::Virtual::Escape)
        gui::Application::quit();
    else
        return false;
    reRender();
    return true;
}

bool GlobeView::onKeyReleased(const gui::Key& key)
{
    // Shift may have gone down meanwhile: the key must not stay held for that. An arrow comes up with its key code
    // shifted.
    const unsigned int alt = key.getModifiers() & static_cast<unsigned int>(gui::KeyModifier::Alt);
    const auto code = key.isASCII() ? static_cast<unsigned int>(td::toLower(key.getChar())) : key.getCode();
    _heldKeys.erase(key.isASCII() ? code : code >> 8);
    _eye.setSpeed(0);
    const bool isUsed = CameraView::onKeyReleased(gui::Key(code, alt, 1, 0));
    showTitle();
    return isUsed;
}

bool GlobeView::onScroll(const gui::InputDevice& device)
{
    const bool isUsed = CameraView::onScroll(device);
    showTitle();
    return isUsed;
}

void GlobeView::showTitle()
{
    if (_pWindow == nullptr)
        return;
    const Place place = placeOf(_eye.getPosition());
    char title[80];
    std::snprintf(title, sizeof title, "Globe - over %.1f\u00b0 %c %.1f\u00b0 %c, %.0f km high",
                  std::abs(place.latitude), place.latitude < 0 ? 'S' : 'N', std::abs(place.longitude),
                  place.longitude < 0 ? 'W' : 'E', static_cast<double>(getHeight()) * cKilometres);
    _pWindow->setTitle(title);
}

} // namespace globe
