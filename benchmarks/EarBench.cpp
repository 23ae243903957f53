#include "shapes/Shapes.h"
#include "shapes/TriangReference.h"
#include "src/shapes/ears/EarClipper.h"

#include <common/NaturalEarth.h>
#include <common/TopoJSON.h>
#include <gui/Res.h>
#include <gui/gl/SimplePolygon.h>
#include <gui/gl/Triang2D.h>

#include <benchmark/benchmark.h>

#ifdef BENCH_GLU
#include <GL/glu.h>
#endif

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <ctime>
#include <limits>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

// Polygons beside their plain form, which gives the same triangles, and beside GLU's tessellator, which gives others.
// Also with the vectors that any machine has, when this one has wider ones. The counter tells the time per corner.

namespace
{

using gui::gl::SimplePolygon;
using test::Outline;
using Outlines = std::vector<Outline>;

unsigned int sizeOf(const Outline& outline) { return static_cast<unsigned int>(outline.size()); }

/// @param contender  is called with an outline
template <typename Contender>
void fill(benchmark::State& state, const Outlines& outlines, Contender contender)
{
    using benchmark::Counter;
    std::size_t nCorners = 0;
    for (const Outline& outline : outlines)
        nCorners += outline.size();
    for (auto _ : state)
        for (const Outline& outline : outlines)
            benchmark::DoNotOptimize(contender(outline));
    state.counters["per_corner"] =
        Counter(static_cast<double>(nCorners), Counter::kIsIterationInvariantRate | Counter::kInvert);
}

void clip(benchmark::State& state, const Outlines& outlines)
{
    SimplePolygon polygon(100);
    fill(state, outlines,
         [&polygon](const Outline& outline) { return polygon.triangulate(outline.data(), sizeOf(outline)); });
}

// This program's own EarClipper is compiled for narrow vectors only.
void clipNarrowly(benchmark::State& state, const Outlines& outlines)
{
    gui::gl::EarClipper clipper;
    cnt::PushBackVector<unsigned int, 0> indices;
    fill(state, outlines,
         [&](const Outline& outline)
         {
             return clipper.clip(outline.data(), sizeOf(outline), !test::reference::isCounterClockwise(outline), 1e-10f,
                                 indices);
         });
}

void clipPlainly(benchmark::State& state, const Outlines& outlines)
{
    std::vector<unsigned int> triangles;
    fill(state, outlines,
         [&triangles](const Outline& outline)
         {
             triangles.clear();
             return test::reference::clipEars(outline, triangles);
         });
}

#ifdef BENCH_GLU

class Tessellator
{
public:
    Tessellator()
    {
        using Function = void (*)();
        gluTessNormal(_pTess, 0, 0, 1);
        gluTessCallback(_pTess, GLU_TESS_VERTEX_DATA, reinterpret_cast<Function>(takeVertex));
        gluTessCallback(_pTess, GLU_TESS_COMBINE_DATA, reinterpret_cast<Function>(combine));
        // With it, there are triangles only: no fans and strips.
        gluTessCallback(_pTess, GLU_TESS_EDGE_FLAG, reinterpret_cast<Function>(takeEdgeFlag));
    }

    ~Tessellator() { gluDeleteTess(_pTess); }
    Tessellator(const Tessellator&) = delete;
    Tessellator& operator=(const Tessellator&) = delete;

    std::size_t fill(const Outline& outline)
    {
        _indices.clear();
        _points.clear();
        for (const td::Point<float>& p : outline)
            _points.push_back({p.x, p.y, 0});
        gluTessBeginPolygon(_pTess, this);
        gluTessBeginContour(_pTess);
        for (std::size_t i = 0; i < _points.size(); ++i)
            gluTessVertex(_pTess, &_points[i].x, reinterpret_cast<void*>(i));
        gluTessEndContour(_pTess);
        gluTessEndPolygon(_pTess);
        return _indices.size();
    }

private:
    struct Point
    {
        GLdouble x, y, z;
    };

    static void takeVertex(void* pVertex, void* pSelf)
    {
        const auto number = static_cast<unsigned int>(reinterpret_cast<std::size_t>(pVertex));
        static_cast<Tessellator*>(pSelf)->_indices.push_back(number);
    }

    // Where edges cross. Which point it is doesn't matter here.
    static void combine(GLdouble*, void** pVertices, GLfloat*, void** pCombined, void*) { *pCombined = pVertices[0]; }

    static void takeEdgeFlag(GLboolean) {}

    GLUtesselator* const _pTess = gluNewTess();
    std::vector<Point> _points;
    std::vector<unsigned int> _indices;
};

void fillByGLU(benchmark::State& state, const Outlines& outlines)
{
    Tessellator tessellator;
    fill(state, outlines, [&tessellator](const Outline& outline) { return tessellator.fill(outline); });
}

#endif

struct Contender
{
    const char* name;
    void (*run)(benchmark::State& state, const Outlines& outlines);
    std::size_t nMost = std::numeric_limits<std::size_t>::max(); ///< corners; with more it takes too long
};

constexpr Contender cContenders[] = {{"", clip},
                                     {"/narrow", clipNarrowly},
                                     {"/plain", clipPlainly, 1024},
#ifdef BENCH_GLU
                                     {"/glu", fillByGLU, 16384}
#endif
};

Outline makeOutline(const test::Family& family, std::size_t n)
{
    test::Random random(1);
    return family.make(random, n);
}

const Outlines& world()
{
    static const Outlines s_rings = []
    {
        examples::TopoJSON topology;
        Outlines rings;
        if (!topology.load(gui::getResText(":bench/countries-50m.json").c_str(), "countries"))
            return rings;
        const examples::NaturalEarth map(11);
        for (const examples::TopoJSON::Area& area : topology.getAreas())
            for (const examples::TopoJSON::Polygon& polygon : area.polygons)
                for (const examples::TopoJSON::Ring& ring : polygon)
                    if (Outline outline = map.project(ring).points; outline.size() >= 3)
                        rings.push_back(std::move(outline));
        return rings;
    }();
    return s_rings;
}

// From 4,096 to 65,536 corners: the exponent is 1 when a corner costs the same among many as among few.
void grow(benchmark::State& state, const test::Family& family)
{
    const Outlines outlines{makeOutline(family, 4096), makeOutline(family, 65536)};
    SimplePolygon polygon(65536);
    std::clock_t least[] = {std::numeric_limits<std::clock_t>::max(), std::numeric_limits<std::clock_t>::max()};
    for (auto _ : state)
    {
        for (std::size_t i = 0; i < 2; ++i)
        {
            const std::clock_t begin = std::clock();
            polygon.triangulate(outlines[i].data(), sizeOf(outlines[i]));
            least[i] = std::min(least[i], std::clock() - begin);
        }
    }
    const double few = static_cast<double>(least[0]), many = static_cast<double>(least[1]);
    const double nFew = static_cast<double>(outlines[0].size()), nMany = static_cast<double>(outlines[1].size());
    state.counters["exponent"] = std::log(many / few) / std::log(nMany / nFew);
    state.counters["per_corner"] = many / CLOCKS_PER_SEC / nMany;
}

void fillFan(benchmark::State& state)
{
    Outline outline;
    for (int i = 0; i < state.range(0); ++i)
    {
        const double angle = 2 * std::numbers::pi * i / static_cast<double>(state.range(0));
        outline.push_back({static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle))});
    }
    gui::gl::Triang2D triang(1);
    gui::gl::Triang2D::Points vertices;
    gui::gl::Triang2D::Indices indices;
    fill(state, {outline},
         [&](const Outline& fan)
         {
             vertices.reset();
             return triang.triangulate(fan.data(), sizeOf(fan), vertices, indices);
         });
}

BENCHMARK(fillFan)->Name("Fan")->Arg(16)->Arg(1024);

// By the name of the kind, the contender's and the number of corners.
[[maybe_unused]] const bool s_isRegistered = []
{
    for (const test::Family& family : test::simpleFamilies())
        for (std::size_t n = 16; n <= 65536; n *= 4)
            for (const Contender& contender : cContenders)
                if (n <= contender.nMost)
                    benchmark::RegisterBenchmark(
                        ("Ears/" + std::string(family.name) + contender.name + "/" + std::to_string(n)).c_str(),
                        [family, contender, n](benchmark::State& state)
                        { contender.run(state, {makeOutline(family, n)}); });
    for (const Contender& contender : cContenders)
        benchmark::RegisterBenchmark(("Ears/world" + std::string(contender.name)).c_str(),
                                     [contender](benchmark::State& state) { contender.run(state, world()); })
            ->Unit(benchmark::kMillisecond);
    for (const auto& families : {test::hostileFamilies(), test::wildFamilies()})
        for (const test::Family& family : families)
            benchmark::RegisterBenchmark(("Growth/" + std::string(family.name)).c_str(), grow, family)
                ->Unit(benchmark::kMillisecond);
    for (const test::Family& family : {test::simpleFamilies()[0], test::hostileFamilies()[4]})
        benchmark::RegisterBenchmark(("Million/" + std::string(family.name)).c_str(),
                                     [family](benchmark::State& state) { clip(state, {makeOutline(family, 1000000)}); })
            ->Unit(benchmark::kMillisecond);
    return true;
}();

} // namespace
