// Look for: a million markers, each a disc of its own however near one looks; and as many colours as there are values.

#include "PlotScene.h"
#include "Scenes.h"

#include <gui/draw/ColorMap.h>

#include <cmath>
#include <random>

namespace gallery
{

namespace
{

using namespace gui::draw;

constexpr std::size_t cStars = 1'000'000;

// A spiral of stars, coloured by how far from its middle each is.
class Scatter : public PlotScene
{
public:
    Scatter()
    {
        std::mt19937 random(11);
        std::normal_distribution<float> normal;
        std::exponential_distribution<float> far(0.9F);
        std::vector<float> x(cStars), y(cStars), distance(cStars);
        for (std::size_t i = 0; i < cStars; ++i)
        {
            const float r = far(random);
            const bool isInArm = i % 5 < 3;
            const float spread = isInArm ? 0.22F / (0.4F + r) : 3;
            const float angle =
                2.1F * std::log(r + 0.15F) + 3.14159265F * static_cast<float>(i % 2) + spread * normal(random);
            x[i] = r * std::cos(angle) + 0.03F * normal(random);
            y[i] = 0.62F * r * std::sin(angle) + 0.03F * normal(random);
            distance[i] = r;
        }
        _plot.setStyle(PlotStyle::dark());
        const std::vector<td::Color> colors{"#fff6d8", "#ffd58a", "#ff9a6b", "#c06bd0", "#5a7cf0", "#3550b8"};
        Axes& axes = _plot.axes();
        axes.setTitle("A million stars");
        axes.add(Series::scatter(std::move(x), std::move(y), {.markerSize = 1.8})
                     .colorBy(std::move(distance), ColorMap(colors), 0, 4));
        axes.x().setRange(-5, 5);
        axes.y().setRange(-3, 3);
    }
};

} // namespace

std::unique_ptr<Scene> makeScatter() { return std::make_unique<Scatter>(); }

} // namespace gallery
