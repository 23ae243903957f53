// Look for: sixteen curves that go on without a stop or a jump, 100,000 samples a second in all.

#include "PlotScene.h"
#include "Scenes.h"

#include <array>
#include <cmath>
#include <random>
#include <string>

namespace gallery
{

namespace
{

using namespace gui::draw;

constexpr std::size_t cChannels = 16;
constexpr double cRate = 6250; // samples a second and channel
constexpr double cSeen = 2;    // seconds

class Stream : public PlotScene
{
public:
    Stream()
        : PlotScene(4, 4)
    {
        _plot.setStyle(PlotStyle::dark());
        _plot.setCrosshair(false);
        for (std::size_t i = 0; i < cChannels; ++i)
        {
            Axes& axes = _plot.axes(i / 4, i % 4);
            axes.setTitle("Channel " + std::to_string(i + 1));
            if (i > 0)
                axes.x().link(_plot.axes().x());
            axes.y().setFit(Axis::Fit::Visible);
            axes.y().setTickDistance(36);
            const std::vector<td::Color>& colors = _plot.getStyle().colors;
            _channels[i] =
                &axes.add(Series::line(gui::draw::Samples::ofFloats(), {.color = colors[i % colors.size()]}));
            _channels[i]->setX(0, 1 / cRate);
            _channels[i]->setLimit(static_cast<std::size_t>(2 * cSeen * cRate));
        }
        _plot.axes().x().follow(cSeen);
        generateUntil(2);
    }

    bool moves() const override { return true; }
    bool prepareNextFrame(double seconds) override
    {
        generateUntil(seconds);
        return true;
    }

private:
    void generateUntil(double seconds)
    {
        const auto end = static_cast<std::size_t>(seconds * cRate);
        if (end <= _nMade || end - _nMade > 10 * static_cast<std::size_t>(cRate))
            return;
        std::vector<float> values(end - _nMade);
        for (std::size_t channel = 0; channel < cChannels; ++channel)
        {
            const double pitch = 1.5 + 0.9 * static_cast<double>(channel);
            for (std::size_t i = 0; i < values.size(); ++i)
            {
                const double t = static_cast<double>(_nMade + i) / cRate;
                const double swell = 0.6 + 0.4 * std::sin(0.7 * t + static_cast<double>(channel));
                const double noise = static_cast<double>(_random() % 2048) / 1024 - 1;
                values[i] = static_cast<float>(swell * std::sin(6.283185 * pitch * t) +
                                               0.25 * std::sin(6.283185 * 7.3 * pitch * t) + 0.12 * noise);
            }
            _channels[channel]->append(values);
        }
        _nMade = end;
    }

    std::array<Series*, cChannels> _channels{};
    std::size_t _nMade = 0;
    std::minstd_rand _random{7};
};

} // namespace

std::unique_ptr<Scene> makeStream() { return std::make_unique<Stream>(); }

} // namespace gallery
