// Look for: colours that tell heights, lines at heights that people would choose, and a bar that says which is which.

#include "PlotScene.h"
#include "Scenes.h"

#include <cmath>
#include <numbers>

namespace gallery
{

namespace
{

using namespace gui::draw;

// Hills and hollows.
std::vector<float> makeHills(std::size_t columns, std::size_t rows)
{
    std::vector<float> heights;
    for (std::size_t row = 0; row < rows; ++row)
    {
        for (std::size_t column = 0; column < columns; ++column)
        {
            const double x = 10.0 * static_cast<double>(column) / static_cast<double>(columns);
            const double y = 10.0 * static_cast<double>(row) / static_cast<double>(rows);
            double height = 0;
            for (int i = 0; i < 9; ++i)
            {
                const double middleX = 10 * std::fmod(0.37 + i * std::numbers::phi, 1);
                const double middleY = 10 * std::fmod(0.11 + i * i * 0.29, 1), size = 1.1 + 0.24 * i;
                const double square = std::pow((x - middleX) / size, 2) + std::pow((y - middleY) / size, 2);
                height += (i % 3 == 2 ? -320 : 460) * std::exp(-square);
            }
            heights.push_back(static_cast<float>(height));
        }
    }
    return heights;
}

// What a whistle looks like: frequencies over time.
std::vector<float> makeSpectrogram(std::size_t columns, std::size_t rows)
{
    std::vector<float> levels;
    for (std::size_t row = 0; row < rows; ++row)
    {
        for (std::size_t column = 0; column < columns; ++column)
        {
            const double t = static_cast<double>(column) / static_cast<double>(columns);
            const double f = static_cast<double>(row) / static_cast<double>(rows);
            double power =
                0.002 + 0.001 * std::fmod(std::sin(static_cast<double>(row * 7919 + column * 104729)) * 9871, 1);
            for (int k = 1; k <= 5; ++k)
            {
                const double pitch = k * (0.11 + 0.05 * std::sin(7 * t) + 0.03 * t);
                power +=
                    std::exp(-std::pow((f - pitch) / 0.006, 2)) * std::pow(0.5, k) * (0.6 + 0.4 * std::cos(31 * t));
            }
            levels.push_back(static_cast<float>(10 * std::log10(std::max(power, 1e-5))));
        }
    }
    return levels;
}

class HeatMaps : public PlotScene
{
public:
    HeatMaps()
        : PlotScene(1, 2)
    {
        Axes& hills = _plot.axes(0, 0);
        hills.setTitle("Hills");
        hills.add(HeatMap(160, 160, makeHills(160, 160), {0, 0, 10, 10})
                      .setColors(ColorMap::coolWarm())
                      .setSmooth(true)
                      .setContours(12)
                      .setTitle("Height in m"));
        hills.x().setTitle("km");
        Axes& whistle = _plot.axes(0, 1);
        whistle.setTitle("A whistle");
        whistle.add(HeatMap(600, 400, makeSpectrogram(600, 400), {0, 0, 3, 8000}).setTitle("dB"));
        whistle.x().setTitle("Time in s");
        whistle.y().setTitle("Frequency in Hz");
        for (Axes* pAxes : {&hills, &whistle})
        {
            pAxes->x().setGrid(false);
            pAxes->y().setGrid(false);
        }
    }
};

} // namespace

std::unique_ptr<Scene> makeHeatMaps() { return std::make_unique<HeatMaps>(); }

} // namespace gallery
