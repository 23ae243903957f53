// Names and dimensions in space while the camera turns: what a frame costs in the library, and what asking the depth
// buffer does. The driver's calls that draw go nowhere meanwhile.

#include "WithoutDraws.h"

#include <gui/draw/Dimensions3.h>
#include <gui/draw/Labels3.h>
#include <gui/draw/OrbitCamera.h>
#include <gui/gl/OffscreenContext.h>

#include <benchmark/benchmark.h>
#include <epoxy/gl.h>
#include <glm/geometric.hpp>

#include <cmath>
#include <string>
#include <utility>

namespace
{

using namespace gui::draw;

/// A context whose draw calls go nowhere, and a camera that turns about a ball.
class Stage
{
public:
    Stage()
        : _context({1000, 700}, {gui::gl::DepthBuffer::Size::Bits24, gui::gl::StencilBuffer::Size::None,
                                 gui::gl::Context::Profile::Core41})
    {
        _camera.setSize({1000, 700});
        _camera.fit({{-1, -1, -1}, {1, 1, 1}});
    }

    Eye turn()
    {
        _camera.turn({0, 0, 0}, 0.7, 0);
        return _camera.getEye();
    }

private:
    gui::gl::OffscreenContext _context;
    OrbitCamera _camera;
    bench::WithoutDraws _without;
};

// On a ball, spread evenly.
glm::dvec3 placeOf(int i, int n)
{
    const double y = 1 - 2 * (i + 0.5) / n, radius = std::sqrt(1 - y * y), angle = i * 2.399963;
    return {radius * std::cos(angle), y, radius * std::sin(angle)};
}

void TurnLabels(benchmark::State& state)
{
    Stage stage;
    Labels3 labels;
    const int n = static_cast<int>(state.range(0));
    for (int i = 0; i < n; ++i)
        labels.add(placeOf(i, n), "Place " + std::to_string(i), {.size = 12},
                   {.offset = {22, -16},
                    .priority = double(i * 7919 % n),
                    .leader = Leader(),
                    .frame = gui::draw::TextFrame()});
    labels.setIsHidden([](const glm::dvec3& point, const Eye& eye)
                       { return glm::dot(eye.getPosition() - point, point) < 0; });
    for (auto _ : state)
        labels.draw(stage.turn());
    state.counters["shown"] = static_cast<double>(labels.getNumberOfShown());
}
BENCHMARK(TurnLabels)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);

void AskForPoints(benchmark::State& state)
{
    Stage stage;
    DepthProbe probe;
    const int n = static_cast<int>(state.range(0));
    for (int i = 0; i < n; ++i)
        probe.add(placeOf(i, n));
    for (auto _ : state)
    {
        const Eye eye = stage.turn();
        probe.begin(eye);
        probe.ask(eye);
        probe.settle();
    }
}
BENCHMARK(AskForPoints)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

void TurnDimensions(benchmark::State& state)
{
    Stage stage;
    Dimensions3 dimensions;
    const int n = static_cast<int>(state.range(0));
    for (int i = 0; i < n; ++i)
        dimensions.addLinear(placeOf(i, n), 0.8 * placeOf(i + 1, n), {0, 0.1, 0}, {.unit = " mm"});
    for (auto _ : state)
        dimensions.draw(stage.turn());
}
BENCHMARK(TurnDimensions)->Arg(200)->Unit(benchmark::kMicrosecond);

} // namespace
