#include "WithoutDraws.h"

#include <gui/draw/Drawing.h>
#include <gui/draw/FillTessellator.h>
#include <gui/gl/Context.h>
#include <gui/gl/OffscreenContext.h>

#include <benchmark/benchmark.h>
#include <epoxy/gl.h>

#include <cmath>
#include <numbers>
#include <random>
#include <utility>
#include <vector>

// A hundred thousand shapes of ten corners. Building them is measured beside their triangles alone; frames are measured
// without what the driver does for the shapes: its call for them goes nowhere meanwhile.

namespace
{

using namespace gui::draw;

constexpr int cShapes = 100000;
constexpr double cSide = 10000;

const std::vector<Path>& paths()
{
    static const std::vector<Path> s_paths = []
    {
        std::mt19937 random(7);
        const auto between = [&random](double low, double high)
        { return std::uniform_real_distribution<>(low, high)(random); };
        std::vector<Path> result(cShapes);
        for (Path& path : result)
        {
            const td::Point<double> center(between(0, cSide), between(0, cSide));
            const double size = between(5, 20);
            std::vector<td::Point<double>> ring;
            for (int i = 0; i < 10; ++i)
            {
                const double angle = i * std::numbers::pi / 5, r = size * between(.6, 1);
                ring.emplace_back(center.x + r * std::cos(angle), center.y + r * std::sin(angle));
            }
            path.addPolygon(ring);
        }
        return result;
    }();
    return s_paths;
}

std::vector<Drawing::ID> fillDrawing(Drawing& drawing)
{
    std::vector<Drawing::ID> ids;
    for (std::size_t i = 0; i < paths().size(); ++i)
        ids.push_back(i % 2 == 0 ? drawing.fill(paths()[i], "#4080c0")
                                 : drawing.stroke(paths()[i], {.width = 1.5}, "#203040"));
    return ids;
}

gui::gl::Context settings()
{
    using namespace gui::gl;
    return {DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41};
}

void BuildTriangles(benchmark::State& state)
{
    FillTessellator fill;
    for (auto _ : state)
        for (const Path& path : paths())
        {
            fill.addPath(path, 0.01);
            fill.tessellate();
            benchmark::DoNotOptimize(fill.getIndices().data());
        }
}
BENCHMARK(BuildTriangles)->Unit(benchmark::kMillisecond);

void BuildFills(benchmark::State& state)
{
    for (auto _ : state)
    {
        Drawing drawing;
        Drawing::ID last = 0;
        for (const Path& path : paths())
            last = drawing.fill(path, "#4080c0");
        // Needs to know, as a frame does, which fills have an edge in common.
        drawing.setTransform(last, Affine::translation(1, 0));
        benchmark::DoNotOptimize(drawing.getNumberOfShapes());
    }
}
BENCHMARK(BuildFills)->Unit(benchmark::kMillisecond);

void BuildStrokes(benchmark::State& state)
{
    for (auto _ : state)
    {
        Drawing drawing;
        for (const Path& path : paths())
            drawing.stroke(path, {.width = 1.5}, "#203040");
        benchmark::DoNotOptimize(drawing.getNumberOfShapes());
    }
}
BENCHMARK(BuildStrokes)->Unit(benchmark::kMillisecond);

void BuildMix(benchmark::State& state)
{
    for (auto _ : state)
    {
        Drawing drawing;
        const std::vector<Drawing::ID> ids = fillDrawing(drawing);
        drawing.setTransform(ids.back(), Affine::translation(1, 0)); // as in BuildFills
        benchmark::DoNotOptimize(drawing.getNumberOfShapes());
    }
}
BENCHMARK(BuildMix)->Unit(benchmark::kMillisecond);

/// 0 at rest, 1 zooming with everything in view, 2 panning with a hundredth of it, 3 at rest with a colour that
/// changes.
void Frame(benchmark::State& state)
{
    gui::gl::OffscreenContext context({1000, 1000}, settings());
    Drawing drawing;
    const std::vector<Drawing::ID> ids = fillDrawing(drawing);
    const auto mode = state.range(0);
    Affine view = mode == 2 ? Affine::translation(-4500, -4500) : Affine::scaling(0.1);
    drawing.draw(Affine::translation(-1e6, 0)); // uploads, and shows none
    const bench::WithoutDraws without;
    drawing.draw(view);
    unsigned int n = 0;
    for (auto _ : state)
    {
        ++n;
        if (mode == 1)
            view = Affine::scaling(0.1 - n % 100 * 1e-4);
        else if (mode == 2)
            view = Affine::translation(-4500 - double(n % 100), -4500);
        else if (mode == 3)
            drawing.setColor(ids[n % ids.size()], td::Color(n & 255, 100, 100, 255));
        drawing.draw(view);
    }
}
BENCHMARK(Frame)->Arg(0)->Arg(1)->Arg(2)->Arg(3)->Unit(benchmark::kMicrosecond);

void Pick(benchmark::State& state)
{
    Drawing drawing;
    fillDrawing(drawing);
    std::mt19937 random(3);
    std::uniform_real_distribution<> place(0, cSide);
    for (auto _ : state)
        benchmark::DoNotOptimize(drawing.pick({place(random), place(random)}, 1));
}
BENCHMARK(Pick)->Unit(benchmark::kMicrosecond);

} // namespace
