// Plots of the guide: draws three of them, side by side, into a PNG file.
#include <gui/draw/Plot.h>
#include <gui/gl/OffscreenContext.h>

#include <cmath>
#include <random>

using namespace gui::draw;

namespace
{

std::vector<double> makeNoise(std::size_t n, double scale)
{
    std::mt19937 random(4);
    std::vector<double> values(n);
    for (double& value : values)
        value = scale * (static_cast<double>(random() % 4001) / 2000 - 1);
    return values;
}

// A million samples a second apart, as a recorder would have them.
void addRecord(Axes& axes)
{
    std::vector<float> level(1'000'000);
    const std::vector<double> noise = makeNoise(level.size(), 0.04);
    for (std::size_t i = 0; i < level.size(); ++i)
    {
        const auto t = static_cast<double>(i);
        level[i] = static_cast<float>(2.1 + 1.2 * std::sin(1.405e-4 * t) * (1 + 0.3 * std::sin(4.9e-6 * t)) + noise[i]);
    }
    std::fill(level.begin() + 520'000, level.begin() + 590'000, std::nanf("")); // out of order
    const double begin = 1709510400;                                            // 4 March 2024
    axes.setTitle("Water level");
    axes.x().setScale(Scale::time("Europe/Berlin"));
    axes.y().setTitle("m");
    axes.add(Series::area(std::move(level), {.color = "#1f78b4"}).setX(begin, 1));
}

void addDecay(Axes& axes)
{
    std::vector<double> time, counts, errors, law;
    const std::vector<double> noise = makeNoise(14, 1);
    for (int i = 0; i < 14; ++i)
    {
        time.push_back(2.0 * i);
        law.push_back(900 * std::exp(-0.2 * time.back()));
        errors.push_back(std::sqrt(law.back()));
        counts.push_back(law.back() + noise[static_cast<std::size_t>(i)] * errors.back());
    }
    axes.setTitle("Decay");
    axes.x().setTitle("Time in min");
    axes.y().setScale(Scale::logarithmic());
    axes.y().setTitle("Counts");
    axes.add(Series::scatter(time, counts, {.label = "Counted", .markerSize = 6}).withErrors(errors));
    axes.add(Series::line(time, law, {.label = "Law", .dashes = {5, 3}}));
}

void addField(Axes& axes)
{
    std::vector<float> field;
    for (int row = 0; row < 60; ++row)
        for (int column = 0; column < 60; ++column)
        {
            const double x = column / 10.0 - 3, y = row / 10.0 - 3;
            field.push_back(static_cast<float>(x * std::exp(-x * x - y * y) + 0.1 * std::cos(2 * y)));
        }
    axes.setTitle("Field");
    axes.add(HeatMap(60, 60, std::move(field), {-3, -3, 3, 3}).setSmooth(true).setContours(10));
    axes.x().setGrid(false);
    axes.y().setGrid(false);
}

} // namespace

int main(int argc, char** argv)
{
    gui::gl::OffscreenContext context({16, 16}, {gui::gl::DepthBuffer::Size::None, gui::gl::StencilBuffer::Size::None,
                                                 gui::gl::Context::Profile::Core41});
    Plot plot(1, 3);
    addRecord(plot.axes(0, 0));
    addDecay(plot.axes(0, 1));
    addField(plot.axes(0, 2));
    PlotStyle style;
    style.face = Typeface::named("DejaVu Sans");
    plot.setStyle(style);
    return plot.savePicture(argc > 1 ? argv[1] : "plots.png", {960, 300}, 2) ? 0 : 1;
}
