// Look for: a curve as thick everywhere, however far in; dots on single samples; lines of the grid at round numbers.

#include "Lettering.h"
#include "Scenes.h"
#include "Sketch.h"
#include "Stage.h"

#include <gui/InputDevice.h>
#include <gui/Key.h>
#include <gui/gl/gl.h>

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

using namespace gui::gl;
using td::ColorID;

constexpr std::size_t cNoOfSamples = 100'000;
constexpr double cMaxPlotZoom = 2500;
constexpr float cCurveWidth = 1.8F; // points
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

std::string grouped(long number)
{
    std::string text = std::to_string(number);
    for (std::size_t place = text.size(); place > 3; place -= 3)
        text.insert(place - 3, ",");
    return text;
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
        _program.setBuffer(&_curve);
        _fillProgram.setBuffer(&_fill);
        _lettering.init();
        return _backdrop.init() && _grid.init() && _axes.init() && _program.link() && _fillProgram.link();
    }

    void enter(Stage& stage) override { _pStage = &stage; }

    void draw(const Frame& frame) override
    {
        if (!_lettering.begin(frame))
            return;
        const Cell area{64, 28, static_cast<float>(frame.size.width) - 104, static_cast<float>(frame.size.height) - 72};
        if (area.width < 1 || area.height < 1)
            return;
        if (_isChanged || area.width != _area.width || area.height != _area.height)
        {
            _area = area;
            plot();
        }
        _backdrop.draw(frame, {&area, 1});
        addGrid();
        _grid.draw(frame);
        if (_isPlotted)
            drawCurve(frame);
        _axes.draw(frame);
        _lettering.draw();
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

    float toX(double sample) const
    {
        return _area.left + static_cast<float>((sample / (cNoOfSamples - 1) - _begin) * _zoom) * _area.width;
    }
    float toY(double value) const
    {
        return _area.top + static_cast<float>((_high - value) / (_high - _low)) * _area.height;
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
    std::vector<td::Point<float>> findPoints() const
    {
        const double perPoint = (lastSample() - firstSample()) / static_cast<double>(_area.width);
        const double step = perPoint > 2 ? perPoint : 1;
        std::vector<td::Point<float>> points;
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
        const std::vector<td::Point<float>> points = findPoints();
        _curve.reset();
        if (Command* pCommand = _triang.triangulateLine(
                &_curve, points.data(), static_cast<unsigned int>(points.size()), cCurveWidth / 2, false))
        {
            pCommand->setColor(ColorID::Turquoise);
            _curve.encode(pCommand);
        }
        const bool hasCurve = _curve.commit();

        _fill.reset();
        const float bottom = _area.top + _area.height;
        const glm::vec4 low = colorOf(ColorID::Teal, 0.15F), high = colorOf(ColorID::Turquoise, 0.6F);
        for (const td::Point<float>& point : points)
        {
            const glm::vec4 color = glm::mix(low, high, (bottom - point.y) / _area.height);
            append(_fill, std::vector<ColorVertex>{{{point.x, point.y}, color}, {{point.x, bottom}, low}});
        }
        Command* pFill = _fill.createCommand();
        pFill->createDrawArrays(Primitive::TriangleStrip, 0, static_cast<unsigned int>(_fill.getNoOfVertices()));
        _fill.encode(pFill);
        _isPlotted = _fill.commit() && hasCurve;
        _isChanged = false;
    }

    void drawCurve(const Frame& frame)
    {
        // Only inside the area.
        Context::enable(Context::Flag::StencilTest);
        Context::setStencilBufferFunction(StencilBuffer::Function::Always, 1, 1);
        Context::setStencilBufferOperation(StencilBuffer::Operation::Replace, StencilBuffer::Operation::Replace,
                                           StencilBuffer::Operation::Replace);
        _grid.addCell(_area, {0, 0, 0, 0});
        _grid.draw(frame);
        Context::setStencilBufferFunction(StencilBuffer::Function::Equal, 1, 1);
        Context::setStencilBufferOperation(StencilBuffer::Operation::Keep, StencilBuffer::Operation::Keep,
                                           StencilBuffer::Operation::Keep);
        Context::setBlendFunction(Blend::Factor::SrcAlpha, Blend::Factor::OneMinusSrcAlpha);
        Context::enable(Context::Flag::Blend);
        _fillProgram.activate();
        _fillProgram.setMVP(pointsToClip(frame));
        _fillProgram.execute();
        Context::disable(Context::Flag::Blend);
        _program.activate();
        _program.setMVP(pointsToClip(frame));
        _program.execute();
        _program.deActivate();
        addDots();
        _grid.draw(frame);
        Context::disable(Context::Flag::StencilTest);
    }

    void addDots()
    {
        const double distance = static_cast<double>(_area.width) / (lastSample() - firstSample());
        if (distance < cDotDistance)
            return;
        for (const float& value : samplesFrom(firstSample(), lastSample() + 1))
        {
            const glm::vec2 place(toX(static_cast<double>(&value - _samples.data())), toY(static_cast<double>(value)));
            _grid.addDisc(place, 3.5F, colorOf(ColorID::Turquoise));
            _grid.addDisc(place, 2, colorOf(ColorID::White));
        }
    }

    // Lines at round numbers, and their ends on the axes.
    void addGrid()
    {
        const glm::vec4 line = colorOf(ColorID::LightSteelBlue, 0.13F), axis = colorOf(ColorID::LightSteelBlue, 0.9F);
        const float left = _area.left, right = left + _area.width, top = _area.top, bottom = top + _area.height;
        const double samples = lastSample() - firstSample();
        const double xStep = std::max(roundUp(samples * 90 / static_cast<double>(_area.width)), 1.0);
        const double yStep = roundUp((_high - _low) * 50 / static_cast<double>(_area.height));
        constexpr float cTick = 6;
        for (double x = std::ceil(firstSample() / xStep) * xStep; x <= lastSample() + 1; x += xStep)
        {
            _grid.addLine({toX(x), top}, {toX(x), bottom}, 1, line);
            _axes.addLine({toX(x), bottom}, {toX(x), bottom + cTick}, 1, axis);
            _lettering.add({toX(x), bottom + 20}, grouped(std::lround(x)), {0, ColorID::LightSteelBlue, Font::cCentre});
        }
        for (double y = std::ceil(_low / yStep) * yStep; y <= _high; y += yStep)
        {
            _grid.addLine({left, toY(y)}, {right, toY(y)}, 1, line);
            _axes.addLine({left - cTick, toY(y)}, {left, toY(y)}, 1, axis);
            _lettering.add({left - 10, toY(y) + 4}, decimal(y, yStep), {0, ColorID::LightSteelBlue, Font::cRight});
        }
        _axes.addLine({left, top}, {left, bottom}, 1, axis);
        _axes.addLine({left, bottom}, {right, bottom}, 1, axis);
    }

    Stage* _pStage = nullptr;
    Lettering _lettering{{{"sans", 12}}};
    std::vector<float> _samples;
    Backdrop _backdrop;
    Sketch _grid;
    Sketch _axes;
    Triang2D _triang{4};
    Flat2DProgram _program;
    Color2DProgram _fillProgram;
    Buffer _curve{DataType::Vec2};
    Buffer _fill{DataType::Vec2, DataType::Vec4};
    Cell _area{};
    double _begin = 0; // of what is seen, as a share of all samples
    double _zoom = 1;
    double _low = 0; // the values at the area's bottom and top
    double _high = 1;
    double _pointer = 0;
    bool _isChanged = true;
    bool _isPlotted = false; // the driver had room for it
};

} // namespace

std::unique_ptr<Scene> makePlot() { return std::make_unique<Plot>(); }

} // namespace gallery
