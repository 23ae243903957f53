// Look for: a map that sways evenly while its countries come, from west to east; a bar that tells how far it is.

#include "Numbers.h"
#include "Scenes.h"
#include "Stage.h"

#include <common/FlatMap.h>
#include <common/FlatRing.h>
#include <common/NaturalEarth.h>
#include <gui/Res.h>
#include <gui/draw/Upload.h>
#include <gui/draw/draw.h>
#include <gui/gl/Context.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <numeric>
#include <string>

namespace gallery
{

namespace
{

using namespace gui::draw;
using examples::NaturalEarth;
using examples::TopoJSON;
using Point = Drawing::Point;

constexpr double cMeridian = 11, cGrainOfMap = 0.02; // degrees
constexpr double cShownPart = 0.7;                   // of the map, in a picture

constexpr td::Color cWater = "#e3edf3", cFaintNet = "#cfdee8", cCoastGlow = "#ffffff80", cOutline = "#55697a";
constexpr std::array<td::Color, 6> cLandColors = {"#e7c98f", "#c9d59a", "#e3ad8c", "#b5cfae", "#eadca8", "#d3b9a2"};

Point inPlane(const Point& degrees)
{
    const td::Point<float> place = NaturalEarth::project(degrees.x, degrees.y);
    return {static_cast<double>(place.x), static_cast<double>(place.y)};
}

/// Reads the map and gives it to a drawing or, on another thread, to an upload.
void giveMap(std::string_view file, auto& to)
{
    TopoJSON world;
    if (!world.load(file, "countries", cGrainOfMap))
        return;
    const std::vector<TopoJSON::Area>& countries = world.getAreas();
    const std::vector<std::size_t> colors = world.color(cLandColors.size());
    std::vector<Path> outlines(countries.size());
    std::vector<double> wests(countries.size());
    std::vector<std::size_t> order(countries.size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    for (const std::size_t i : order)
    {
        const std::vector<TopoJSON::Line> rings = examples::layOnMap(countries[i], cMeridian);
        outlines[i] = examples::areaOf(rings, inPlane);
        // By its largest part: some have islands everywhere.
        const auto largest = std::ranges::max_element(rings, {}, &TopoJSON::Line::size);
        wests[i] = largest == rings.end() ? 0 : examples::pathOf(*largest, inPlane).getBounds()->left;
    }
    std::ranges::sort(order, {}, [&wests](std::size_t i) { return wests[i]; });
    to.expect(3 * order.size());
    for (const std::size_t i : order)
        to.stroke(outlines[i], {.width = 7, .join = Join::Round}, cCoastGlow);
    for (const std::size_t i : order)
    {
        if (to.isCancelled())
            return;
        to.fill(outlines[i], cLandColors[colors[i]], FillRule::EvenOdd);
        to.stroke(outlines[i], {.width = 1, .join = Join::Round}, cOutline);
    }
}

/// What a picture shows: the beginning of it.
struct Beginning
{
    Drawing& drawing;
    std::size_t nLeft = 1;

    void expect(std::size_t n) { nLeft = static_cast<std::size_t>(cShownPart * static_cast<double>(n)); }
    bool isCancelled() const { return nLeft == 0; }
    void fill(const Path& path, const Paint& paint, FillRule rule)
    {
        nLeft -= std::min<std::size_t>(nLeft, 1);
        drawing.fill(path, paint, rule);
    }
    void stroke(const Path& path, const Stroke& stroke, const Paint& paint)
    {
        nLeft -= std::min<std::size_t>(nLeft, 1);
        drawing.stroke(path, stroke, paint);
    }
};

class Opening : public Scene
{
public:
    bool init() override
    {
        std::span<const td::BYTE> bytes;
        if (!gui::Res::getCompiled(":gallery/countries-50m.json", bytes))
            return false;
        _file = {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
        for (const auto& line : NaturalEarth::getNet(15))
        {
            Path path;
            for (const td::Point<float>& point : line)
                path.lineTo({static_cast<double>(point.x), static_cast<double>(point.y)});
            _map.stroke(path, {.width = 1}, cFaintNet);
        }
        return true;
    }

    void enter(Stage& stage) override
    {
        _pStage = &stage;
        open();
    }

    bool moves() const override { return true; }

    void draw(const Frame& frame) override
    {
        if (_progress < 1)
            ++_nFrames;
        gui::gl::Context::clear(gui::gl::Context::Clear::Color, cWater);
        const double t = frame.seconds;
        const double fit =
            std::min(frame.size.width / NaturalEarth::cHalfWidth, frame.size.height / NaturalEarth::cHalfHeight) / 2;
        const double zoom = fit * (1 + 0.06 * std::sin(0.5 * t)), angle = 0.06 * std::sin(0.4 * t);
        const Affine map = Affine::translation(frame.size.width / 2, frame.size.height * 0.46) *
                           Affine::rotation(angle) * Affine::scaling(zoom, -zoom) *
                           Affine::translation(0.12 * std::sin(0.3 * t), -0.05);
        _map.draw(map, frame.scale);
        drawPanel(frame);
    }

    void onPointer(PointerEvent event, const gui::InputDevice&) override
    {
        if (event == PointerEvent::Pressed)
            open();
    }

private:
    void open()
    {
        _map.remove(_countries);
        _progress = 0;
        _nFrames = 0;
        _begin = std::chrono::steady_clock::now();
        const gui::gl::View* const pView = _pStage->getView();
        if (pView == nullptr)
        {
            Beginning beginning{_map};
            _countries = _map.beginGroup();
            giveMap(_file, beginning);
            _map.endGroup();
            _progress = cShownPart;
            return;
        }
        _pUpload = std::make_unique<Upload>(*pView);
        _pUpload->setOnProgress([this](double progress) { show(progress); });
        _countries = _pUpload->add(_map, [file = _file](Upload::Shapes& shapes) { giveMap(file, shapes); });
    }

    void show(double progress)
    {
        _progress = progress;
        _seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - _begin).count();
        _pStage->redraw();
    }

    // The bar, or what it took.
    void drawPanel(const Frame& frame)
    {
        constexpr double cWidth = 440, cHeight = 62;
        const double left = std::round((frame.size.width - cWidth) / 2), top = frame.size.height - cHeight - 22;
        const TextStyle style{.face = gui::draw::Typeface::named("DejaVu Sans"), .size = 13, .paint = "#31424f"};
        std::string text = "Opening the world: " + std::to_string(std::lround(100 * _progress)) + " %";
        if (_progress >= 1)
        {
            std::array<char, 80> line;
            std::snprintf(line.data(), line.size(), "Open after %.2f seconds, %s frames meanwhile. Click: once more",
                          _seconds, grouped(_nFrames).c_str());
            text = line.data();
        }
        _panel.clear();
        _panel.fill(Path().addRoundedRect({left, top, left + cWidth, top + cHeight}, {10, 10}), "#fffffff0");
        _panel.text({left + 20, top + 21}, text, style, {Anchor::Left});
        const double barTop = top + 38, right = left + cWidth - 20;
        _panel.fill(Path().addRoundedRect({left + 20, barTop, right, barTop + 8}, {4, 4}), "#d8e3ea");
        const double width = std::max((right - left - 20) * _progress, 8.0);
        _panel.fill(Path().addRoundedRect({left + 20, barTop, left + 20 + width, barTop + 8}, {4, 4}), "#2f7fb8");
        _panel.draw({}, frame.scale);
    }

    Stage* _pStage = nullptr;
    std::string_view _file;
    Drawing _map, _panel;
    Drawing::ID _countries = 0;
    double _progress = 0;
    double _seconds = 0;
    long _nFrames = 0;
    std::chrono::steady_clock::time_point _begin;
    std::unique_ptr<Upload> _pUpload;
};

} // namespace

std::unique_ptr<Scene> makeOpening() { return std::make_unique<Opening>(); }

} // namespace gallery
