#include "TriangBench.h"
#include "common/TriangReference.h"

#include <gui/gl/Buffer.h>

#include <cstddef>

// Lines of Triang2D beside plain forms of the same, which give the same triangles. The counter tells the time per corner.

namespace
{

using bench::makeOutline;
using gui::gl::Triang2D;
using test::Outline;

// Smooth bends, or all of them bevelled. 1,000 points.
Outline makeLine(bool isSmooth)
{
    if (isSmooth)
        return makeOutline(bench::Circle, 1000);
    Outline line;
    for (int i = 0; i < 1000; ++i)
        line.push_back({static_cast<float>(i), i % 2 == 0 ? 0.0f : 10.0f});
    return line;
}

void thickLine(benchmark::State& state, bool isSmooth)
{
    const Outline line = makeLine(isSmooth);
    Triang2D triang(1);
    bench::Lists lists;
    for (auto _ : state)
    {
        lists.reset();
        benchmark::DoNotOptimize(triang.triangulateLine(line.data(), static_cast<unsigned int>(line.size()), 0.001f,
                                                        true, lists.vertices, lists.indices));
    }
    bench::setCorners(state, line.size());
}

void thickLinePlainly(benchmark::State& state, bool isSmooth)
{
    const Outline line = makeLine(isSmooth);
    for (auto _ : state)
        benchmark::DoNotOptimize(test::reference::triangulateLine(line, 0.001f, true));
    bench::setCorners(state, line.size());
}

// Over vertices in the order of the points, or stored from another corner on.
void recycledLine(benchmark::State& state, bool isRotated)
{
    const Outline points = makeOutline(bench::Star, static_cast<std::size_t>(state.range(0)));
    const std::size_t start = isRotated ? points.size() / 2 : 0;
    const auto n = static_cast<unsigned int>(points.size());
    gui::gl::Buffer buffer;
    if (!buffer.init(1, n, n, {gui::gl::DataType::Vec2}))
    {
        state.SkipWithError("cannot set up");
        return;
    }
    Triang2D triang(n);
    for (auto _ : state)
    {
        buffer.reset();
        buffer.appendVertices(points.data() + start, n - start);
        buffer.appendVertices(points.data(), start);
        benchmark::DoNotOptimize(triang.createRecycledLine(&buffer, gui::gl::Primitive::LineLoop, points.data(), 0, n));
    }
    bench::setCorners(state, n);
}

BENCHMARK_CAPTURE(thickLine, smooth, true)->Name("ThickLine/smooth");
BENCHMARK_CAPTURE(thickLinePlainly, smooth, true)->Name("ThickLine/smooth/plain");
BENCHMARK_CAPTURE(thickLine, bevels, false)->Name("ThickLine/bevels");
BENCHMARK_CAPTURE(thickLinePlainly, bevels, false)->Name("ThickLine/bevels/plain");
BENCHMARK_CAPTURE(recycledLine, inOrder, false)->Name("RecycledLine/inOrder")->Arg(1024)->Arg(16384);
BENCHMARK_CAPTURE(recycledLine, rotated, true)->Name("RecycledLine/rotated")->Arg(1024)->Arg(16384);

} // namespace
