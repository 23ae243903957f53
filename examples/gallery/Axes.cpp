// Look for: labels that people would choose on all kinds of axes, and that never touch; every way to show samples.

#include "PlotScene.h"
#include "Scenes.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

namespace gallery
{

namespace
{

using namespace gui::draw;

constexpr double cPi = std::numbers::pi;

// A resonance, measured: its gain and its phase.
void addResponse(Axes& axes)
{
    std::vector<double> frequencies, gains, phases;
    for (double frequency = 1; frequency < 1e5; frequency *= 1.08)
    {
        const double w = frequency / 800, real = 1 - w * w, imaginary = 0.18 * w;
        frequencies.push_back(frequency);
        gains.push_back(1 / std::hypot(real, imaginary));
        phases.push_back(-std::atan2(imaginary, real) * 180 / cPi);
    }
    axes.setTitle("A resonance");
    axes.x().setScale(Scale::logarithmic());
    axes.x().setTitle("Frequency in Hz");
    axes.y().setScale(Scale::logarithmic());
    axes.y().setTitle("Gain");
    axes.right().setTitle("Phase in °");
    axes.add(Series::line(frequencies, gains, {.label = "Gain", .width = 2}));
    axes.add(Series::line(frequencies, phases, {.label = "Phase", .width = 1.5, .dashes = {6, 3}, .isOnRight = true}));
}

// What a thermometer says in a year, with the days' range as a band.
void addYear(Axes& axes)
{
    std::mt19937 random(3);
    std::normal_distribution<double> normal(0, 1);
    std::vector<double> times, lows, highs, means;
    double drift = 0;
    for (int day = 0; day < 366; ++day)
    {
        drift = 0.86 * drift + normal(random);
        const double mean = 10.5 - 10 * std::cos(2 * cPi * (day - 18) / 366) + 1.6 * drift;
        const double range = 3.2 + 2 * std::sin(cPi * day / 366) + 0.5 * std::abs(normal(random));
        times.push_back(1704067200 + 86400.0 * day);
        lows.push_back(mean - range);
        highs.push_back(mean + range);
        means.push_back(mean);
    }
    axes.setTitle("A year outside");
    axes.x().setScale(Scale::time());
    axes.y().setTitle("°C");
    axes.add(Series::band(times, lows, highs, {.label = "Day and night", .fill = "#e6631e40"}));
    axes.add(Series::line(times, means, {.label = "Mean", .color = "#c9501a"}));
}

void addBars(Axes& axes)
{
    std::mt19937 random(5);
    std::normal_distribution<double> normal(4.2, 1.3);
    std::vector<double> counts(24);
    for (int i = 0; i < 4000; ++i)
        ++counts[static_cast<std::size_t>(std::clamp(normal(random) * 3, 0.0, 23.0))];
    std::vector<double> curve;
    for (double x = 0; x <= 23.5; x += 0.25)
        curve.push_back(4000 / 3.9 / std::sqrt(2 * cPi) * std::exp(-0.5 * std::pow((x - 12.1) / 3.9, 2)));
    axes.setTitle("4000 draws");
    axes.add(Series::bars(counts, {.label = "Counted", .fill = "#3465d9a0", .barWidth = 0.9}));
    axes.add(Series::line(curve, {.label = "Expected", .color = "#c9374a", .width = 2}).setX(0, 0.25));
}

void addStems(Axes& axes)
{
    std::vector<double> pulse;
    for (int i = -20; i <= 20; ++i)
        pulse.push_back(i == 0 ? 1 : std::sin(0.4 * i) / (0.4 * i));
    axes.setTitle("A filter");
    axes.add(Series::stems(pulse, {.label = "Taps", .color = "#2a9d63", .markerSize = 6}).setX(-20, 1));
}

void addCandles(Axes& axes)
{
    std::mt19937 random(8);
    std::normal_distribution<double> normal(0, 1);
    std::vector<double> times, open, high, low, close;
    double price = 118;
    for (int day = 0; day < 64; ++day)
    {
        if (day % 7 > 4)
            continue;
        times.push_back(1709510400 + 86400.0 * day);
        open.push_back(price);
        price += 1.5 * normal(random) + 0.1;
        close.push_back(price);
        high.push_back(std::max(open.back(), price) + std::abs(normal(random)));
        low.push_back(std::min(open.back(), price) - std::abs(normal(random)));
    }
    axes.setTitle("A price");
    axes.x().setScale(Scale::time());
    axes.add(Series::candles(times, open, high, low, close, {.color = "#2a9d63", .barWidth = 0.7}));
}

void addErrors(Axes& axes)
{
    std::mt19937 random(13);
    std::normal_distribution<double> normal(0, 1);
    std::vector<double> x, y, errors, steps;
    for (double at = 0.5; at < 12; at += 0.75)
    {
        x.push_back(at);
        errors.push_back(0.06 + 0.03 * std::abs(normal(random)));
        y.push_back(1 - std::exp(-at / 3) + 0.6 * errors.back() * normal(random));
        steps.push_back(std::round(4 * (1 - std::exp(-at / 3))) / 4);
    }
    axes.setTitle("A measurement");
    axes.add(
        Series::scatter(x, y, {.label = "Measured", .marker = Marker::Diamond, .markerSize = 9}).withErrors(errors));
    axes.add(Series::steps(x, steps, {.label = "In steps", .width = 1.5}));
}

class AxesScene : public PlotScene
{
public:
    AxesScene()
        : PlotScene(2, 3)
    {
        addResponse(_plot.axes(0, 0));
        addYear(_plot.axes(0, 1));
        addBars(_plot.axes(0, 2));
        addStems(_plot.axes(1, 0));
        addCandles(_plot.axes(1, 1));
        addErrors(_plot.axes(1, 2));
    }
};

} // namespace

std::unique_ptr<Scene> makeAxes() { return std::make_unique<AxesScene>(); }

} // namespace gallery
