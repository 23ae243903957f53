// A plot held by somebody who does not care: any numbers for samples, styles, axes and sizes, a pointer that wanders,
// keys. It is laid out and built, without a context to draw in.

#include "Fuzz.h"

#include <gui/InputDevice.h>
#include <gui/Key.h>
#include <gui/draw/Plot.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace fuzz::plot
{

namespace
{

using namespace gui::draw;
using gui::InputDevice;

class PlotWorld : Careless
{
public:
    explicit PlotWorld(Input& input)
        : Careless(input, 64, 12)
        , _plot(1 + input.below(3), 1 + input.below(3))
    {
    }

    void live()
    {
        while (_input.left() > 0)
        {
            doNext();
            if (_input.below(4) == 0)
                draw();
        }
        draw();
    }

private:
    std::optional<double> takeOption() { return _input.below(2) == 0 ? std::nullopt : std::optional(takeNumber()); }
    td::Color takeColor() { return td::Color::fromRGB(_input.take<std::uint32_t>() & 0xFFFFFFU); }

    // Some given, the rest a curve.
    Samples takeSamples()
    {
        std::vector<double> values(_input.below(60));
        for (std::size_t i = 0; i < values.size(); ++i)
            values[i] = i < 8 ? takeNumber() : 100 * std::sin(0.1 * static_cast<double>(i));
        return Samples(std::move(values));
    }

    SeriesStyle takeStyle()
    {
        SeriesStyle style;
        if (takeBool())
            style.label = _input.text(_input.below(12));
        if (takeBool())
            style.color = takeColor();
        if (takeBool())
            style.width = takeNumber();
        if (takeBool())
            style.dashes = {takeNumber(), takeNumber()};
        if (takeBool())
        {
            style.baseline = takeNumber();
            style.barWidth = takeNumber();
        }
        if (takeBool())
        {
            style.marker = static_cast<Marker>(_input.below(static_cast<unsigned int>(Marker::Cross) + 1));
            style.markerSize = takeNumber();
            style.edgeWidth = takeNumber();
        }
        style.isOnRight = _input.below(4) == 0;
        return style;
    }

    Series takeSeries()
    {
        switch (_input.below(10))
        {
        case 0:
            return Series::line(takeSamples(), takeSamples(), takeStyle());
        case 1:
            return Series::band(takeSamples(), takeSamples(), takeStyle());
        case 2:
            return Series::area(takeSamples(), takeStyle());
        case 3:
            return Series::steps(takeSamples(), takeSamples(), takeStyle());
        case 4:
            return Series::stems(takeSamples(), takeSamples(), takeStyle());
        case 5:
            return Series::bars(takeSamples(), takeSamples(), takeStyle());
        case 6:
            return Series::scatter(takeSamples(), takeSamples(), takeStyle())
                .colorBy(takeSamples(), ColorMap::viridis(), takeOption(), takeOption());
        case 7:
            return Series::candles(takeSamples(), takeSamples(), takeSamples(), takeSamples(), takeSamples(),
                                   takeStyle());
        case 8:
            return Series::line(takeSamples(), takeStyle()).withErrors(takeSamples(), takeSamples());
        default:
            return Series::line(takeSamples(), takeStyle()).setX(takeNumber(), takeNumber());
        }
    }

    HeatMap takeMap()
    {
        const std::size_t columns = 1 + _input.below(6), rows = 1 + _input.below(6);
        std::vector<float> values(columns * rows);
        for (float& value : values)
            value = static_cast<float>(takeNumber());
        HeatMap map(columns, rows, std::move(values), {takeNumber(), takeNumber(), takeNumber(), takeNumber()});
        if (takeBool())
            map = std::move(map).setColors(ColorMap::viridis(), takeOption(), takeOption());
        if (takeBool())
            map = std::move(map).setContours(_input.below(40), takeColor(), takeNumber());
        else if (takeBool())
            map = std::move(map).setContours({takeNumber(), takeNumber()});
        return std::move(map).setSmooth(takeBool()).setTitle(_input.text(_input.below(5)));
    }

    Axes& takeAxes() { return _plot.axes(_input.below(3) % _plot.getRows(), _input.below(3) % _plot.getColumns()); }

    Axis& takeAxis()
    {
        Axes& axes = takeAxes();
        switch (_input.below(3))
        {
        case 0:
            return axes.x();
        case 1:
            return axes.y();
        default:
            return axes.right();
        }
    }

    void changeAxis()
    {
        Axis& axis = takeAxis();
        switch (_input.below(10))
        {
        case 0:
            axis.setScale(std::array{Scale::linear(), Scale::logarithmic(), Scale::time(),
                                     Scale::time("Europe/Berlin")}[_input.below(4)]);
            break;
        case 1:
            axis.setTitle(_input.text(_input.below(12)));
            break;
        case 2:
            axis.setRange(takeNumber(), takeNumber());
            break;
        case 3:
            axis.setFit(static_cast<Axis::Fit>(_input.below(3)));
            break;
        case 4:
            axis.follow(takeNumber());
            break;
        case 5:
            axis.release();
            break;
        case 6:
            axis.link(takeAxis());
            break;
        case 7:
            axis.setTickDistance(takeNumber());
            break;
        case 8:
            axis.pan(takeNumber());
            break;
        default:
            axis.zoom(takeNumber(), takeNumber());
        }
        const Ticks::Range range = axis.getRange();
        require(range.low < range.high && std::isfinite(range.low) && std::isfinite(range.high),
                "an axis shows a range of numbers");
        require(axis.getScale().kind != Scale::Kind::Logarithmic || range.low > 0,
                "a logarithmic axis shows what is above 0");
    }

    void changeAxes()
    {
        Axes& axes = takeAxes();
        switch (_input.below(6))
        {
        case 0:
            axes.setTitle(_input.text(_input.below(12)));
            break;
        case 1:
            axes.setLegend(static_cast<Axes::Legend>(_input.below(6)));
            break;
        case 2:
            axes.setBare(takeBool());
            break;
        case 3:
            axes.setMinorGrid(takeBool());
            break;
        case 4:
            axes.fit();
            break;
        default:
            if (_input.below(4) == 0)
                axes.clear();
        }
    }

    void changePlot()
    {
        switch (_input.below(4))
        {
        case 0:
            _plot.linkX();
            break;
        case 1:
        {
            PlotStyle style;
            style.labelSize = takeNumber();
            style.axisTitleSize = takeNumber();
            style.titleSize = takeNumber();
            style.lineWidth = takeNumber();
            if (takeBool())
                style.colors.clear();
            _plot.setStyle(style);
            break;
        }
        case 2:
        {
            std::vector<double> shares(_plot.getRows());
            std::ranges::generate(shares, [this] { return takeNumber(); });
            _plot.setRowShares(shares);
            break;
        }
        default:
            _plot.setCrosshair(takeBool());
        }
    }

    void changeSeries()
    {
        Axes& axes = takeAxes();
        if (axes.getNumberOfSeries() == 0)
            return;
        Series& series = axes.getSeries(_input.below(255) % axes.getNumberOfSeries());
        switch (_input.below(6))
        {
        case 0:
            axes.remove(series);
            break;
        case 1:
            series.setStyle(takeStyle());
            break;
        case 2:
            series.setVisible(takeBool());
            break;
        case 3:
            series.setLimit(_input.below(255));
            break;
        case 4:
            series.clear();
            break;
        default:
            if (series.hasX())
                series.append(takeNumber(), takeNumber());
            else
                series.append(takeNumber());
        }
    }

    void doInput()
    {
        const auto takePlace = [this]
        {
            if (_input.below(16) == 0)
                return td::Point<double>(takeNumber(), takeNumber());
            return td::Point<double>(4.0 * _input.below(255), 4.0 * _input.below(255));
        };
        const td::Point<double> place = takePlace();
        const unsigned int modifiers = takeBool() ? 0 : static_cast<unsigned int>(gui::KeyModifier::Shift);
        InputDevice device(place, place, place, modifiers, InputDevice::Type::Mouse, InputDevice::Button::Primary);
        switch (_input.below(8))
        {
        case 0:
            return _plot.onPressed(device);
        case 1:
            return _plot.onDragged(device);
        case 2:
            return _plot.onReleased(device);
        case 3:
            return _plot.onDoubleClick(device);
        case 4:
            return _plot.onMoved(device);
        case 5:
            return _plot.onExited();
        case 6:
            gui::InputDeviceHelper(&device).setPlace(takePlace());
            _plot.onScroll(device);
            return;
        default:
            gui::InputDeviceHelper(&device).setScale(takeNumber());
            _plot.onZoom(device);
        }
    }

    void doNext()
    {
        switch (_input.below(12))
        {
        case 0:
        case 1:
            takeAxes().add(takeSeries());
            break;
        case 2:
            takeAxes().add(takeMap());
            break;
        case 3:
        case 4:
            changeAxis();
            break;
        case 5:
            changeAxes();
            break;
        case 6:
            changePlot();
            break;
        case 7:
            changeSeries();
            break;
        default:
            doInput();
        }
    }

    void draw()
    {
        if (_input.below(16) == 0)
            _size = {takeNumber(), takeNumber()};
        else
            _size = {40.0 + 4 * _input.below(255), 30.0 + 4 * _input.below(255)};
        const double scale = std::array{1.0, 1.25, 2.0, takeNumber()}[_input.below(4)];
        _plot.draw(_size, scale);
        const Axes& axes = takeAxes();
        axes.findNearest({takeNumber(), takeNumber()}, takeNumber());
        axes.format(takeBool() ? axes.x() : axes.y(), takeNumber());
    }

    Plot _plot;
    td::Size<double> _size;
};

void run(const std::uint8_t* bytes, std::size_t n)
{
    Input input(bytes, n);
    const Quiet quiet;
    PlotWorld(input).live();
}

const Target cTarget("plot", run);

} // namespace

} // namespace fuzz::plot
