// Look for: a curve as thick everywhere, however far in; dots on single samples; numbers that people would choose.

#include "PlotScene.h"
#include "Scenes.h"

namespace gallery
{

namespace
{

using namespace gui::draw;

class Samples100000 : public PlotScene
{
public:
    Samples100000()
    {
        _plot.setStyle(PlotStyle::dark());
        Axes& axes = _plot.axes();
        axes.x().setTitle("Samples");
        axes.y().setFit(Axis::Fit::Visible);
        axes.add(Series::area(makeWaves(100'000),
                              {.color = "#40e0d0", .width = 1.8, .marker = Marker::Circle, .edgeWidth = 1.5}));
    }
};

} // namespace

std::unique_ptr<Scene> makePlot() { return std::make_unique<Samples100000>(); }

} // namespace gallery
