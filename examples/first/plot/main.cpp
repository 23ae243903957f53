// A plot of a vector: drag to move it, turn the wheel to zoom, double-click to see all.
#include <gui/Application.h>
#include <gui/draw/PlotView.h>
#include <cmath>
int main(int argc, char** argv)
{
    gui::Application app(argc, argv);
    std::vector<float> values(100'000);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = std::sin(1e-4F * float(i)) * std::cos(3e-3F * float(i));
    gui::draw::PlotView plot(gui::draw::Series::line(values));
    return app.run(plot, "Plot", {800, 500});
}
