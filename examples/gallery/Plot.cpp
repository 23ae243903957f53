// Look for: a curve as thick everywhere, however far in; dots on single samples; lines of the grid at round numbers.

#include "Drawing.h"
#include "Numbers.h"
#include "Scenes.h"
#include "Stage.h"

#include <gui/InputDevice.h>
#include <gui/Key.h>
#include <gui/draw/draw.h>
#include <gui/gl/Context.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <span>
#include <string>

namespace gallery
{

namespace
{

using gui::draw::Anchor;
using gui::draw::Path;
using Point = Path::Point;

constexpr std::size_t cNoOfSamples = 100'000;
constexpr double cMaxPlotZoom = 2500;
constexpr td::Color cCurve = "#40e0d0", cAxis = "#b0c4dee6", cGrid = "#b0c4de21";
constexpr double cDotDistance = 14; // points from sample to sample from which each has a dot

// Waves of many lengths, each half as long as the one before and a little less than half as high, above 0.
std::vector<float> makeCurve()
{
    std::vector<float> samples(cNoOfSamples);
    for (std::size_t i = 0; i < cNoOfSamples; ++i)
    {
        double sum = 0.55;
        double height = 0.3;
        double length = 0.43 * static_cast<double>(cNoOfSamples);
        for (int wave = 0; wave < 16; ++wave)
        {
            const double turns = static_cast<double>(i) / length + wave * wave * std::numbers::phi;
            sum += height * std::sin(2 * std::numbers::pi * turns);
            height *= 0.44;
            length *= 0.483;
        }
        samples[i] = static_cast<float>(sum);
    }
    return samples;
}

// A round number: 1, 2 or 5 and zeros, or their fractions.
double roundUp(double value)
{
    const double power = std::pow(10, std::floor(std::log10(value)));
    for (const double factor : {1.0, 2.0, 5.0})
        if (factor * power >= value)
            return factor * power;
    return 10 * power;
}

// With as many digits as tell a step from the next.
std::string decimal(double value, double step)
{
    if (std::abs(value) < step / 2)
        value = 0; // which a sum of steps misses
    char text[32];
    std::snprintf(text, sizeof text, "%.*f", std::max(0, static_cast<int>(std::ceil(-std::log10(step) - 1e-9))), value);
    return text;
}

// A plot that is moved and zoomed along the samples. Values are shown as large as there is room for those that are
// seen.
class Plot : public Scene
{
public:
    bool init() override
    {
        _samples = makeCurve();
        return _backdrop.init();
    }

    void enter(Stage& stage) override { _pStage = &stage; }

    void draw(const Frame& frame) override
    {
        using namespace gui::gl;
        const Cell area{64, 28, static_cast<float>(frame.size.width) - 104, static_cast<float>(frame.size.height) - 72};
        if (area.width < 1 || area.height < 1)
            return;
        if (_isChanged || area.width != _area.width || area.height != _area.height)
        {
            _area = area;
            plot();
        }
        _backdrop.draw(frame, {&area, 1});
        _axes.draw({}, frame.scale);
        // Only inside the area.
        const auto pixels = [&frame](double points) { return static_cast<int>(std::lround(points * frame.scale)); };
        const auto bottom = static_cast<double>(area.top + area.height);
        Context::enable(Context::Flag::ScissorTest);
        Context::setScissor(pixels(static_cast<double>(area.left)), pixels(frame.size.height - bottom),
                            pixels(static_cast<double>(area.width)), pixels(static_cast<double>(area.height)));
        _curve.draw({}, frame.scale);
        Context::disable(Context::Flag::ScissorTest);
    }

    void onPointer(PointerEvent event, const gui::InputDevice& device) override
    {
        const td::Point<double>& point = device.getFramePoint();
        if (event == PointerEvent::Pressed || event == PointerEvent::Released)
            _pStage->setCursor(event == PointerEvent::Pressed ? gui::Cursor::Type::Pan : gui::Cursor::Type::Default);
        else if (event == PointerEvent::Dragged)
            move(point.x - _pointer);
        else if (event == PointerEvent::Scrolled)
            move(point.x + point.y);
        else if (event == PointerEvent::Zoomed)
            zoom(device.getScale(), point.x);
        if (event != PointerEvent::Scrolled)
            _pointer = point.x;
    }

    bool onKey(const gui::Key& key, bool isDown) override
    {
        constexpr double cStep = 1.25;
        const auto middle = static_cast<double>(_area.left + _area.width / 2);
        if (isDown && (key.getChar() == '+' || key.getChar() == '='))
            zoom(cStep, middle);
        else if (isDown && key.getChar() == '-')
            zoom(1 / cStep, middle);
        else if (isDown && key.getChar() == '0')
            zoom(0, middle);
        else
            return false;
        return true;
    }

private:
    // Follows the pointer by so many points.
    void move(double distance) { look(_begin - distance / static_cast<double>(_area.width) / _zoom, _zoom); }

    // What is under the point stays there.
    void zoom(double factor, double point)
    {
        const double newZoom = std::clamp(_zoom * factor, 1.0, cMaxPlotZoom);
        const double share = (point - static_cast<double>(_area.left)) / static_cast<double>(_area.width);
        look(_begin + share / _zoom - share / newZoom, newZoom);
    }

    void look(double begin, double zoom)
    {
        if (_area.width <= 0)
            return; // nothing to be seen yet
        _zoom = zoom;
        _begin = std::clamp(begin, 0.0, 1 - 1 / zoom);
        _isChanged = true;
        _pStage->redraw();
        _pStage->setNote("samples " + grouped(std::lround(firstSample())) + " to " +
                         grouped(std::lround(lastSample())));
    }

    // Of those that are seen, which may lie between samples.
    double firstSample() const { return _begin * (cNoOfSamples - 1); }
    double lastSample() const { return (_begin + 1 / _zoom) * (cNoOfSamples - 1); }

    double toX(double sample) const
    {
        const double share = (sample / (cNoOfSamples - 1) - _begin) * _zoom;
        return static_cast<double>(_area.left) + share * static_cast<double>(_area.width);
    }
    double toY(double value) const
    {
        const double share = (_high - value) / (_high - _low);
        return static_cast<double>(_area.top) + share * static_cast<double>(_area.height);
    }

    std::span<const float> samplesFrom(double from, double to) const
    {
        const double last = cNoOfSamples - 1;
        const auto begin = static_cast<std::size_t>(std::clamp(from, 0.0, last));
        return std::span(_samples).subspan(begin, static_cast<std::size_t>(std::clamp(to, 0.0, last)) + 1 - begin);
    }

    void findRange()
    {
        const std::span<const float> seen = samplesFrom(firstSample(), lastSample() + 1);
        const auto [low, high] = std::minmax_element(seen.begin(), seen.end());
        const double range = std::max(static_cast<double>(*high - *low), 1e-6);
        _low = static_cast<double>(*low) - 0.3 * range;
        _high = static_cast<double>(*high) + 0.15 * range;
    }

    // The curve's points in the frame: the samples that are seen or, where many share a point's width, the lowest and
    // the highest of each such column, in the order in which they come.
    std::vector<Point> findPoints() const
    {
        const double perPoint = (lastSample() - firstSample()) / static_cast<double>(_area.width);
        const double step = perPoint > 2 ? perPoint : 1;
        std::vector<Point> points;
        for (double from = std::floor(firstSample() / step) * step; from < lastSample() + step; from += step)
        {
            const std::span<const float> column = samplesFrom(from, step > 1 ? from + step : from);
            auto [first, second] = std::minmax_element(column.begin(), column.end());
            if (second < first)
                std::swap(first, second);
            for (const auto& sample : {first, second})
                points.push_back(
                    {toX(static_cast<double>(&*sample - _samples.data())), toY(static_cast<double>(*sample))});
        }
        return points;
    }

    void plot()
    {
        findRange();
        addAxes();
        _curve.clear();
        const std::vector<Point> points = findPoints();
        const double top = static_cast<double>(_area.top), bottom = top + static_cast<double>(_area.height);
        const Path curve = Path().addPolyline(points);
        _curve.fill(Path(curve).lineTo({points.back().x, bottom}).lineTo({points.front().x, bottom}).close(),
                    gui::draw::LinearGradient{{0, top}, {0, bottom}, {{0, "#40e0d099"}, {1, "#00808026"}}});
        _curve.stroke(curve, {.width = 1.8, .join = gui::draw::Join::Round}, cCurve);
        addDots();
        _isChanged = false;
    }

    void addDots()
    {
        const double distance = static_cast<double>(_area.width) / (lastSample() - firstSample());
        if (distance < cDotDistance)
            return;
        for (const float& value : samplesFrom(firstSample(), lastSample() + 1))
        {
            const Point place(toX(static_cast<double>(&value - _samples.data())), toY(static_cast<double>(value)));
            const Path dot = Path().addCircle(place, 3);
            _curve.fill(dot, "#ffffff");
            _curve.stroke(dot, {.width = 1.5}, cCurve);
        }
    }

    // Lines at round numbers, and their ends on the axes.
    void addAxes()
    {
        const auto left = static_cast<double>(_area.left), right = left + static_cast<double>(_area.width);
        const auto top = static_cast<double>(_area.top), bottom = top + static_cast<double>(_area.height);
        const double xStep = std::max(roundUp((lastSample() - firstSample()) * 90 / (right - left)), 1.0);
        const double yStep = roundUp((_high - _low) * 50 / (bottom - top));
        constexpr double cTick = 6;
        const gui::draw::TextStyle style{.size = 12, .paint = "#b0c4de"};
        _axes.clear();
        // In the middle of a pixel.
        const auto sharp = [](double x) { return std::floor(x) + 0.5; };
        Path grid, axes;
        axes.moveTo({sharp(left), top}).lineTo({sharp(left), sharp(bottom)}).lineTo({right, sharp(bottom)});
        for (double sample = std::ceil(firstSample() / xStep) * xStep; sample <= lastSample() + 1e-6; sample += xStep)
        {
            const double x = sharp(toX(sample));
            grid.moveTo({x, top}).lineTo({x, bottom});
            axes.moveTo({x, bottom}).lineTo({x, bottom + cTick});
            _axes.text({x, bottom + cTick + 4}, grouped(std::lround(sample)), style, {Anchor::Top});
        }
        for (double value = std::ceil(_low / yStep) * yStep; value <= _high; value += yStep)
        {
            const double y = sharp(toY(value));
            grid.moveTo({left, y}).lineTo({right, y});
            axes.moveTo({left - cTick, y}).lineTo({left, y});
            _axes.text({left - cTick - 4, y}, decimal(value, yStep), style, {Anchor::Right});
        }
        _axes.stroke(grid, {.width = 1}, cGrid);
        _axes.stroke(axes, {.width = 1, .cap = gui::draw::Cap::Square}, cAxis);
    }

    Stage* _pStage = nullptr;
    std::vector<float> _samples;
    Backdrop _backdrop;
    gui::draw::Drawing _axes;
    gui::draw::Drawing _curve;
    Cell _area{};
    double _begin = 0; // of what is seen, as a share of all samples
    double _zoom = 1;
    double _low = 0; // the values at the area's bottom and top
    double _high = 1;
    double _pointer = 0;
    bool _isChanged = true;
};

} // namespace

std::unique_ptr<Scene> makePlot() { return std::make_unique<Plot>(); }

} // namespace gallery
