#include "common/Shapes.h"
#include "common/TriangReference.h"

#include <common/NaturalEarth.h>
#include <common/TopoJSON.h>
#include <gui/Res.h>
#include <gui/gl/Buffer.h>
#include <gui/gl/Triang2D.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <numbers>
#include <string>
#include <vector>

// Triang2D beside plain forms of the same, which give the same triangles. The counter tells the time per corner.

namespace
{

using gui::gl::Triang2D;
using test::Outline;

enum Family : std::size_t
{
    Star,
    Circle,
    Comb,
    Spiral
};

Outline makeOutline(std::size_t family, std::size_t n)
{
    test::Random random(1);
    return test::simpleFamilies()[family].make(random, n);
}

const std::vector<Outline>& world()
{
    static const std::vector<Outline> s_rings = []
    {
        examples::TopoJSON topology;
        std::vector<Outline> rings;
        if (!topology.load(gui::getResText(":bench/countries-50m.json").c_str(), "countries"))
            return rings;
        const examples::NaturalEarth map(11);
        for (const examples::TopoJSON::Area& area : topology.getAreas())
            for (const examples::TopoJSON::Polygon& polygon : area.polygons)
                for (const examples::TopoJSON::Ring& ring : polygon)
                    rings.push_back(map.project(ring).points);
        return rings;
    }();
    return s_rings;
}

void setCorners(benchmark::State& state, std::size_t nCorners)
{
    using benchmark::Counter;
    state.counters["per_corner"] =
        Counter(static_cast<double>(nCorners), Counter::kIsIterationInvariantRate | Counter::kInvert);
}

/// Lists that grow once and are reused.
struct Lists
{
    Triang2D::Points vertices;
    Triang2D::Indices indices;

    void reset()
    {
        vertices.reset();
        indices.reset();
    }
};

void fill(benchmark::State& state, const std::vector<Outline>& outlines)
{
    Triang2D triang(100);
    Lists lists;
    std::size_t nCorners = 0;
    for (const Outline& outline : outlines)
        nCorners += outline.size();
    for (auto _ : state)
    {
        lists.reset();
        for (const Outline& outline : outlines)
            benchmark::DoNotOptimize(triang.triangulate(outline.data(), static_cast<unsigned int>(outline.size()),
                                                        lists.vertices, lists.indices));
    }
    setCorners(state, nCorners);
}

void fillPlainly(benchmark::State& state, const std::vector<Outline>& outlines)
{
    std::size_t nCorners = 0;
    for (const Outline& outline : outlines)
        nCorners += outline.size();
    for (auto _ : state)
        for (const Outline& outline : outlines)
            benchmark::DoNotOptimize(test::reference::triangulate(outline));
    setCorners(state, nCorners);
}

void fillFan(benchmark::State& state)
{
    Outline outline;
    for (int i = 0; i < state.range(0); ++i)
    {
        const double angle = 2 * std::numbers::pi * i / static_cast<double>(state.range(0));
        outline.push_back({static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle))});
    }
    fill(state, {outline});
}

void fillFamily(benchmark::State& state, Family family)
{
    fill(state, {makeOutline(family, static_cast<std::size_t>(state.range(0)))});
}

void fillFamilyPlainly(benchmark::State& state, Family family)
{
    fillPlainly(state, {makeOutline(family, static_cast<std::size_t>(state.range(0)))});
}

void fillWorld(benchmark::State& state) { fill(state, world()); }

void fillWorldPlainly(benchmark::State& state) { fillPlainly(state, world()); }

// Smooth bends, or all of them bevelled. 1,000 points.
Outline makeLine(bool isSmooth)
{
    if (isSmooth)
        return makeOutline(Circle, 1000);
    Outline line;
    for (int i = 0; i < 1000; ++i)
        line.push_back({static_cast<float>(i), i % 2 == 0 ? 0.0f : 10.0f});
    return line;
}

void thickLine(benchmark::State& state, bool isSmooth)
{
    const Outline line = makeLine(isSmooth);
    Triang2D triang(1);
    Lists lists;
    for (auto _ : state)
    {
        lists.reset();
        benchmark::DoNotOptimize(triang.triangulateLine(line.data(), static_cast<unsigned int>(line.size()), 0.001f,
                                                        true, lists.vertices, lists.indices));
    }
    setCorners(state, line.size());
}

void thickLinePlainly(benchmark::State& state, bool isSmooth)
{
    const Outline line = makeLine(isSmooth);
    for (auto _ : state)
        benchmark::DoNotOptimize(test::reference::triangulateLine(line, 0.001f, true));
    setCorners(state, line.size());
}

// Over vertices in the order of the points, or stored from another corner on.
void recycledLine(benchmark::State& state, bool isRotated)
{
    const Outline points = makeOutline(Star, static_cast<std::size_t>(state.range(0)));
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
    setCorners(state, n);
}

BENCHMARK(fillFan)->Name("Fan")->Arg(16)->Arg(1024);
BENCHMARK_CAPTURE(fillFamily, Star, Star)->Name("Ears/star")->RangeMultiplier(4)->Range(16, 65536);
BENCHMARK_CAPTURE(fillFamilyPlainly, Star, Star)->Name("Ears/star/plain")->RangeMultiplier(4)->Range(16, 1024);
BENCHMARK_CAPTURE(fillFamily, Circle, Circle)->Name("Ears/circle")->RangeMultiplier(4)->Range(16, 65536);
BENCHMARK_CAPTURE(fillFamilyPlainly, Circle, Circle)->Name("Ears/circle/plain")->RangeMultiplier(4)->Range(16, 1024);
BENCHMARK_CAPTURE(fillFamily, Comb, Comb)->Name("Ears/comb")->RangeMultiplier(4)->Range(16, 65536);
BENCHMARK_CAPTURE(fillFamilyPlainly, Comb, Comb)->Name("Ears/comb/plain")->RangeMultiplier(4)->Range(16, 1024);
BENCHMARK_CAPTURE(fillFamily, Spiral, Spiral)->Name("Ears/spiral")->RangeMultiplier(4)->Range(16, 65536);
BENCHMARK_CAPTURE(fillFamilyPlainly, Spiral, Spiral)->Name("Ears/spiral/plain")->RangeMultiplier(4)->Range(16, 1024);
BENCHMARK(fillWorld)->Name("Ears/world")->Unit(benchmark::kMillisecond);
BENCHMARK(fillWorldPlainly)->Name("Ears/world/plain")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(thickLine, smooth, true)->Name("ThickLine/smooth");
BENCHMARK_CAPTURE(thickLinePlainly, smooth, true)->Name("ThickLine/smooth/plain");
BENCHMARK_CAPTURE(thickLine, bevels, false)->Name("ThickLine/bevels");
BENCHMARK_CAPTURE(thickLinePlainly, bevels, false)->Name("ThickLine/bevels/plain");
BENCHMARK_CAPTURE(recycledLine, inOrder, false)->Name("RecycledLine/inOrder")->Arg(1024)->Arg(16384);
BENCHMARK_CAPTURE(recycledLine, rotated, true)->Name("RecycledLine/rotated")->Arg(1024)->Arg(16384);

} // namespace
