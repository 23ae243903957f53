// Look for: no name on another one or on another's dot, the larger towns first; nothing that comes, goes or jumps while
// one pans.

#include "Numbers.h"
#include "Scenes.h"
#include "Stage.h"
#include "Towns.h"

#include <common/FlatMap.h>
#include <common/FlatRing.h>
#include <common/NaturalEarth.h>
#include <gui/InputDevice.h>
#include <gui/Key.h>
#include <gui/draw/draw.h>
#include <gui/gl/Context.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>

namespace gallery
{

namespace
{

using examples::NaturalEarth;
using examples::TopoJSON;
using gui::draw::Affine;
using gui::draw::Anchor;
using gui::draw::Drawing;
using gui::draw::Path;
using gui::draw::TextLayout;
using gui::draw::TextStyle;
using Point = Drawing::Point;

constexpr std::size_t cNoOfTowns = 10'000;
constexpr double cMapMiddle = 11, cMapGrain = 0.02; // degrees
constexpr double cNearest = 45;                     // times as large as all of the map
constexpr double cFarAway = 20;                     // units of the map, farther than any view shows

constexpr td::Color cSea = "#0f1b2d", cLand = "#1c2b40", cCoast = "#3d5878", cBorder = "#31475f", cNet = "#16253a";
constexpr td::Color cCountry = "#7c9cc4", cLights = "#ffd98a50", cHalo = "#142134e6", cPanel = "#0a1320";

/// Towns of a size and above.
struct Tier
{
    double people;
    double size; ///< of the name, in points
    double weight;
    td::Color color;
    double dot;       ///< its width
    double fromPixel; ///< shown once a kilometre is so many points
};

constexpr Tier cTiers[] = {{6e5, 15.5, 700, "#fff6e0", 6.5, 0},
                           {2e5, 13, 400, "#f3efe4", 5.5, 0},
                           {7e4, 12, 400, "#dfe3e6", 4.5, 0.02},
                           {2.5e4, 11, 400, "#c6d0da", 3.75, 0.05},
                           {0, 10, 400, "#aab9c8", 3, 0.1}};

constexpr double cRadius = 6371; // of the earth, in kilometres; one unit of the map

Point toMap(Point degrees)
{
    const td::Point<float> place = NaturalEarth::project(degrees.x, degrees.y);
    return {static_cast<double>(place.x), static_cast<double>(place.y)};
}

Point onMap(const Point& degrees) { return toMap({degrees.x - cMapMiddle, degrees.y}); }

std::string inCapitals(const std::string& name)
{
    std::string text = name;
    for (char& letter : text)
        letter = letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
    return text;
}

/// A map of ten thousand towns to pan and zoom.
class TownLabels : public Scene
{
public:
    bool init() override
    {
        TopoJSON world;
        if (!world.loadCompiled(":gallery/countries-50m.json", "countries", cMapGrain))
            return false;
        addGround(world);
        _labels.setMargin(3);
        addCountries(world);
        addTowns(makeTowns(world.getAreas(), cNoOfTowns));
        return true;
    }

    void enter(Stage& stage) override { _pStage = &stage; }

    void draw(const Frame& frame) override
    {
        using namespace gui::gl;
        if (_size.width != frame.size.width || _size.height != frame.size.height)
        {
            _size = frame.size;
            if (_zoom == 0)
                lookAt(cMediterranean, 5.2);
            _labelsHidden = cUnknown;
        }
        Context::clear(Context::Clear::Color, cSea);
        const Affine map = Affine::translation(_origin.x, _origin.y) * Affine::scaling(_zoom, -_zoom);
        _labels.place(map);
        count();
        _ground.draw(map, frame.scale);
        _names.draw(map, frame.scale);
        _notes.draw({}, frame.scale);
    }

    void onPointer(PointerEvent event, const gui::InputDevice& device) override
    {
        const Point& point = device.getFramePoint();
        if (event == PointerEvent::Pressed || event == PointerEvent::Released)
            _pStage->setCursor(event == PointerEvent::Pressed ? gui::Cursor::Type::Pan : gui::Cursor::Type::Default);
        else if (event == PointerEvent::Dragged)
            moveBy(point.x - _pointer.x, point.y - _pointer.y);
        else if (event == PointerEvent::Scrolled)
            moveBy(point.x, point.y);
        else if (event == PointerEvent::Zoomed)
            zoomBy(device.getScale(), point);
        if (event != PointerEvent::Scrolled)
            _pointer = point;
    }

    bool onKey(const gui::Key& key, bool isDown) override
    {
        const Point middle{_size.width / 2, _size.height / 2};
        const char character = key.getChar();
        if (!isDown)
            return false;
        if (character == '+' || character == '=')
            zoomBy(1.25, middle);
        else if (character == '-')
            zoomBy(1 / 1.25, middle);
        else if (character == '0')
            lookAt({}, 1);
        else if (character == 'l')
            lookAt(cMediterranean, 5.2);
        else
            return false;
        _pStage->redraw();
        return true;
    }

private:
    static constexpr Point cMediterranean{0.06, 0.74};
    static constexpr std::size_t cUnknown = SIZE_MAX;

    // At which all of the map is seen.
    double smallestZoom() const
    {
        return std::min(_size.width / NaturalEarth::cHalfWidth, _size.height / NaturalEarth::cHalfHeight) / 2 * 0.97;
    }

    void lookAt(Point center, double zoom)
    {
        _zoom = zoom * smallestZoom();
        _origin = {std::round(_size.width / 2 - center.x * _zoom), std::round(_size.height / 2 + center.y * _zoom)};
    }

    // Part of the map stays in the middle.
    void moveBy(double x, double y)
    {
        const double width = NaturalEarth::cHalfWidth * _zoom, height = NaturalEarth::cHalfHeight * _zoom;
        _origin.x = std::clamp(_origin.x + x, _size.width / 2 - width, _size.width / 2 + width);
        _origin.y = std::clamp(_origin.y + y, _size.height / 2 - height, _size.height / 2 + height);
        _pStage->redraw();
    }

    // What is under the point stays there.
    void zoomBy(double factor, Point point)
    {
        if (_zoom == 0)
            return; // nothing to be seen yet
        const double zoom = std::clamp(_zoom * factor, smallestZoom(), smallestZoom() * cNearest);
        _origin.x = point.x + (_origin.x - point.x) * zoom / _zoom;
        _origin.y = point.y + (_origin.y - point.y) * zoom / _zoom;
        _zoom = zoom;
        moveBy(0, 0);
    }

    void addGround(const TopoJSON& world)
    {
        for (const auto& line : NaturalEarth::getNet(15))
        {
            Path path;
            for (const td::Point<float>& point : line)
                path.lineTo({static_cast<double>(point.x), static_cast<double>(point.y)});
            _ground.stroke(path, {.width = 1}, cNet);
        }
        const examples::FlatMap map(world, cMapMiddle);
        for (const std::vector<TopoJSON::Line>& country : map.areas)
            _ground.fill(examples::areaOf(country, onMap), cLand, gui::draw::FillRule::EvenOdd);
        for (const TopoJSON::Line& line : map.borders)
            _ground.stroke(examples::pathOf(line, onMap), {.width = 1, .dashes = {4, 2.5}}, cBorder);
        for (const TopoJSON::Line& line : map.coasts)
            _ground.stroke(examples::pathOf(line, onMap), {.width = 0.8, .join = gui::draw::Join::Round}, cCoast);
        // What sticks out beyond the map's edge.
        Path outside = Path().addRect({-cFarAway, -cFarAway, cFarAway, cFarAway});
        for (bool isFirst = true; const td::Point<float>& point : NaturalEarth::getEdge())
        {
            const Point place{static_cast<double>(point.x), static_cast<double>(point.y)};
            std::exchange(isFirst, false) ? outside.moveTo(place) : outside.lineTo(place);
        }
        _ground.fill(outside.close(), cSea, gui::draw::FillRule::EvenOdd);
    }

    // A country's name stands in it, before that of any town.
    void addCountries(const TopoJSON& world)
    {
        const gui::draw::Typeface face = gui::draw::Typeface::named("DejaVu Sans");
        std::vector<TopoJSON::Line> rings;
        for (const TopoJSON::Area& country : world.getAreas())
        {
            rings.clear();
            for (const TopoJSON::Polygon& polygon : country.polygons)
                examples::layOnMap(polygon.front(), true, cMapMiddle, rings);
            Path largest;
            double width = 0;
            for (const TopoJSON::Line& ring : rings)
                if (const Path path = examples::pathOf(ring, onMap).close();
                    path.getBounds()->right - path.getBounds()->left > width)
                {
                    largest = path;
                    width = path.getBounds()->right - path.getBounds()->left;
                }
            const TextLayout name(inCapitals(country.name),
                                  {.face = face, .size = 11, .paint = cCountry, .letterSpacing = 2});
            if (width > 0)
                _labels.addInside(largest, *largest.getBounds(), std::span(&name, 1), {1e9 + width});
        }
    }

    void addTowns(const std::vector<Town>& towns)
    {
        std::vector<TextStyle> styles;
        for (const Tier& tier : cTiers)
            styles.push_back({.face = gui::draw::Typeface::named("DejaVu Sans", {.weight = tier.weight}),
                              .size = tier.size,
                              .paint = tier.color,
                              .halo = {1.5, cHalo}});
        // All of them as faint lights, and brighter ones for those that have their names.
        Path lights;
        for (const Town& town : towns)
        {
            const Point place = placeOf(town);
            lights.moveTo(place).lineTo(place);
        }
        _ground.stroke(lights, {.width = 1.5, .cap = gui::draw::Cap::Round}, cLights);
        for (const Town& town : towns)
        {
            const auto tier =
                static_cast<std::size_t>(std::ranges::find_if(cTiers, [&town](const Tier& candidate)
                                                              { return town.people >= candidate.people; }) -
                                         cTiers);
            addTown(town, cTiers[tier], styles[tier]);
        }
    }

    static Point placeOf(const Town& town)
    {
        return toMap({std::remainder(town.place.x - cMapMiddle, 360), town.place.y});
    }

    void addTown(const Town& town, const Tier& tier, const TextStyle& style)
    {
        const Point place = placeOf(town);
        const TextLayout name(town.name, style);
        const double gap = tier.dot / 2 + 3;
        const gui::draw::LabelRule rule{town.people, tier.fromPixel * cRadius};
        const Drawing::ID dot = _names.stroke(Path().moveTo(place).lineTo(place),
                                              {.width = tier.dot, .cap = gui::draw::Cap::Round}, "#ffcf6b");
        const Drawing::ID label = _labels.add(place, name, {Anchor::Left, {gap, -0.5}}, rule);
        _labels.addAlternative(place, name, {Anchor::Right, {-gap, -0.5}}, rule);
        _labels.addAlternative(place, name, {Anchor::Bottom, {0, 1.5 - gap}}, rule);
        _labels.addAlternative(place, name, {Anchor::Top, {0, gap - 1.5}}, rule);
        _labels.setSymbol(label, dot, tier.dot / 2);
    }

    // In a corner.
    void count()
    {
        const std::size_t n = _labels.getNumberOfLabels(), nHidden = _labels.getNumberOfHidden();
        if (nHidden == _labelsHidden)
            return;
        _labelsHidden = nHidden;
        const TextStyle faint{.face = gui::draw::Typeface::named("DejaVu Sans"), .size = 12, .paint = "#8ba3bf"};
        TextStyle bright = faint;
        bright.paint = "#ffe2a0";
        const TextLayout text({{grouped(static_cast<long>(n - nHidden)), bright},
                               {" names shown on all of the map, ", faint},
                               {grouped(static_cast<long>(nHidden)), bright},
                               {" wait for room", faint}});
        const double width = text.getSize().width, bottom = _size.height - 16;
        _notes.clear();
        _notes.fill(Path().addRoundedRect({16, bottom - 30, width + 40, bottom}, {8, 8}), cPanel);
        _notes.text({28, bottom - 15}, text, {Anchor::Left});
    }

    Stage* _pStage = nullptr;
    Drawing _ground;
    Drawing _names;
    gui::draw::Labels _labels{_names};
    Drawing _notes; // over it, in points of the frame
    std::size_t _labelsHidden = cUnknown;
    td::Size<double> _size;
    Point _origin;    // where the map's middle is in the frame
    double _zoom = 0; // points per unit of the map
    Point _pointer;
};

} // namespace

std::unique_ptr<Scene> makeLabels() { return std::make_unique<TownLabels>(); }

} // namespace gallery
