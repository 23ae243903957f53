#include "TriangBench.h"
#include "common/TriangReference.h"

#include <common/NaturalEarth.h>
#include <common/TopoJSON.h>
#include <gui/Res.h>

#include <cmath>
#include <numbers>
#include <string>
#include <vector>

// Polygons that Triang2D fills, beside the plain form, which gives the same triangles. The counter tells the time per
// corner.

namespace
{

using bench::Family;
using bench::makeOutline;
using gui::gl::Triang2D;
using test::Outline;

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

void fill(benchmark::State& state, const std::vector<Outline>& outlines)
{
    Triang2D triang(100);
    bench::Lists lists;
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
    bench::setCorners(state, nCorners);
}

void fillPlainly(benchmark::State& state, const std::vector<Outline>& outlines)
{
    std::size_t nCorners = 0;
    for (const Outline& outline : outlines)
        nCorners += outline.size();
    for (auto _ : state)
        for (const Outline& outline : outlines)
            benchmark::DoNotOptimize(test::reference::triangulate(outline));
    bench::setCorners(state, nCorners);
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

BENCHMARK(fillFan)->Name("Fan")->Arg(16)->Arg(1024);
BENCHMARK_CAPTURE(fillFamily, Star, bench::Star)->Name("Ears/star")->RangeMultiplier(4)->Range(16, 65536);
BENCHMARK_CAPTURE(fillFamilyPlainly, Star, bench::Star)->Name("Ears/star/plain")->RangeMultiplier(4)->Range(16, 1024);
BENCHMARK_CAPTURE(fillFamily, Circle, bench::Circle)->Name("Ears/circle")->RangeMultiplier(4)->Range(16, 65536);
BENCHMARK_CAPTURE(fillFamilyPlainly, Circle, bench::Circle)
    ->Name("Ears/circle/plain")
    ->RangeMultiplier(4)
    ->Range(16, 1024);
BENCHMARK_CAPTURE(fillFamily, Comb, bench::Comb)->Name("Ears/comb")->RangeMultiplier(4)->Range(16, 65536);
BENCHMARK_CAPTURE(fillFamilyPlainly, Comb, bench::Comb)->Name("Ears/comb/plain")->RangeMultiplier(4)->Range(16, 1024);
BENCHMARK_CAPTURE(fillFamily, Spiral, bench::Spiral)->Name("Ears/spiral")->RangeMultiplier(4)->Range(16, 65536);
BENCHMARK_CAPTURE(fillFamilyPlainly, Spiral, bench::Spiral)
    ->Name("Ears/spiral/plain")
    ->RangeMultiplier(4)
    ->Range(16, 1024);
BENCHMARK(fillWorld)->Name("Ears/world")->Unit(benchmark::kMillisecond);
BENCHMARK(fillWorldPlainly)->Name("Ears/world/plain")->Unit(benchmark::kMillisecond);

} // namespace
