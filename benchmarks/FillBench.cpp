#include <gui/draw/FillTessellator.h>
#include <gui/gl/SimplePolygon.h>

#include "shapes/Shapes.h"

#include <benchmark/benchmark.h>

#ifdef BENCH_GLU
#include <GL/glu.h>
#endif

#include <algorithm>
#include <cmath>
#include <deque>
#include <functional>
#include <limits>
#include <numbers>
#include <string>
#include <vector>

// Rings filled by the rule, beside GLU's tessellator, and beside the ear clipper where there is one simple ring. The
// counter tells the time per corner.

namespace
{

using gui::draw::FillRule;
using gui::draw::FillTessellator;
using Point = td::Point<double>;
using Rings = std::vector<std::vector<Point>>;

std::vector<Point> makeRing(const test::Family& family, std::size_t n)
{
    test::Random random(1);
    std::vector<Point> ring;
    for (const td::Point<float>& p : family.make(random, n))
        ring.emplace_back(p.x, p.y);
    return ring;
}

/// Squares of m by m in a frame, as holes that go the other way round.
Rings makeHoles(std::size_t n)
{
    const auto m = static_cast<int>(std::sqrt(double(n) / 8));
    Rings rings{{{-1, -1}, {4.0 * m, -1}, {4.0 * m, 4.0 * m}, {-1, 4.0 * m}}};
    test::Random random(2);
    for (int i = 0; i < m * m; ++i)
    {
        auto& ring = rings.emplace_back();
        for (int k = 0; k < 8; ++k)
        {
            const double angle = -k * std::numbers::pi / 4, r = random.between(0.5f, 1.5f);
            ring.emplace_back(4 * (i % m) + 1.5 + r * std::cos(angle), 4 * (i / m) + 1.5 + r * std::sin(angle));
        }
    }
    return rings;
}

/// Triangles thrown down so that each crosses a few others.
Rings makeHeap(std::size_t n)
{
    test::Random random(3);
    const float size = 2 / std::sqrt(static_cast<float>(n) / 3);
    Rings rings(n / 3);
    for (auto& ring : rings)
    {
        const float x = random.between(-1, 1), y = random.between(-1, 1);
        for (int k = 0; k < 3; ++k)
            ring.emplace_back(x + random.between(-size, size), y + random.between(-size, size));
    }
    return rings;
}

/// One ring that goes around in a curve and crosses itself twice for each 16 corners.
Rings makeLoops(std::size_t n)
{
    Rings rings(1);
    for (std::size_t i = 0; i < n; ++i)
    {
        const double t = double(i) / double(n) * 2 * std::numbers::pi, loop = t * double(n / 16);
        const double r = 16 / double(n) * 6;
        rings[0].emplace_back(std::cos(t) + r * std::cos(loop), std::sin(t) + r * std::sin(loop));
    }
    return rings;
}

#ifdef BENCH_GLU

class GLUTessellator
{
public:
    GLUTessellator()
    {
        using Function = void (*)();
        gluTessNormal(_pTess, 0, 0, 1);
        gluTessProperty(_pTess, GLU_TESS_WINDING_RULE, GLU_TESS_WINDING_NONZERO);
        gluTessCallback(_pTess, GLU_TESS_VERTEX_DATA, reinterpret_cast<Function>(takeVertex));
        gluTessCallback(_pTess, GLU_TESS_COMBINE_DATA, reinterpret_cast<Function>(combine));
        // With it, there are triangles only: no fans and strips.
        gluTessCallback(_pTess, GLU_TESS_EDGE_FLAG, reinterpret_cast<Function>(takeEdgeFlag));
    }

    ~GLUTessellator() { gluDeleteTess(_pTess); }
    GLUTessellator(const GLUTessellator&) = delete;
    GLUTessellator& operator=(const GLUTessellator&) = delete;

    std::size_t fill(const Rings& rings)
    {
        _indices.clear();
        _points.clear();
        gluTessBeginPolygon(_pTess, this);
        for (const std::vector<Point>& ring : rings)
        {
            gluTessBeginContour(_pTess);
            for (const Point& p : ring)
                gluTessVertex(_pTess, &_points.emplace_back(GLUPoint{p.x, p.y, 0}).x,
                              reinterpret_cast<void*>(_points.size() - 1));
            gluTessEndContour(_pTess);
        }
        gluTessEndPolygon(_pTess);
        return _indices.size();
    }

private:
    struct GLUPoint
    {
        GLdouble x, y, z;
    };

    static void takeVertex(void* pVertex, void* pSelf)
    {
        const auto number = static_cast<unsigned int>(reinterpret_cast<std::size_t>(pVertex));
        static_cast<GLUTessellator*>(pSelf)->_indices.push_back(number);
    }

    static void combine(GLdouble* pPoint, void**, GLfloat*, void** pCombined, void* pSelf)
    {
        auto& points = static_cast<GLUTessellator*>(pSelf)->_points;
        points.push_back({pPoint[0], pPoint[1], pPoint[2]});
        *pCombined = reinterpret_cast<void*>(points.size() - 1);
    }

    static void takeEdgeFlag(GLboolean) {}

    GLUtesselator* const _pTess = gluNewTess();
    std::deque<GLUPoint> _points; // which must stay where they are
    std::vector<unsigned int> _indices;
};

#endif

std::size_t countCorners(const Rings& rings)
{
    std::size_t n = 0;
    for (const auto& ring : rings)
        n += ring.size();
    return n;
}

void measure(benchmark::State& state, const Rings& rings, const std::function<std::size_t(const Rings&)>& fill)
{
    using benchmark::Counter;
    for (auto _ : state)
        benchmark::DoNotOptimize(fill(rings));
    state.counters["per_corner"] =
        Counter(static_cast<double>(countCorners(rings)), Counter::kIsIterationInvariantRate | Counter::kInvert);
}

std::size_t fillRings(FillTessellator& tessellator, const Rings& rings)
{
    for (const auto& ring : rings)
        tessellator.addRing(ring);
    tessellator.tessellate(FillRule::NonZero);
    return tessellator.getIndices().size();
}

void addCase(const std::string& name, const Rings& rings)
{
    benchmark::RegisterBenchmark(("Fill/" + name).c_str(),
                                 [rings](benchmark::State& state)
                                 {
                                     FillTessellator tessellator;
                                     measure(state, rings,
                                             [&](const Rings& all) { return fillRings(tessellator, all); });
                                 });
#ifdef BENCH_GLU
    benchmark::RegisterBenchmark(("Fill/" + name + "/glu").c_str(),
                                 [rings](benchmark::State& state)
                                 {
                                     GLUTessellator tessellator;
                                     measure(state, rings, [&](const Rings& all) { return tessellator.fill(all); });
                                 });
#endif
    if (rings.size() > 1 || name.find("loops") != name.npos)
        return;
    benchmark::RegisterBenchmark(("Fill/" + name + "/ears").c_str(),
                                 [rings](benchmark::State& state)
                                 {
                                     std::vector<td::Point<float>> outline;
                                     for (const Point& p : rings[0])
                                         outline.emplace_back(float(p.x), float(p.y));
                                     gui::gl::SimplePolygon polygon(outline.size());
                                     measure(state, rings,
                                             [&](const Rings&)
                                             {
                                                 polygon.triangulate(outline.data(),
                                                                     static_cast<unsigned int>(outline.size()));
                                                 return polygon.getIndices().size();
                                             });
                                 });
}

[[maybe_unused]] const bool s_isRegistered = []
{
    for (const std::size_t n : {64U, 1024U, 16384U, 262144U})
    {
        const std::string number = "/" + std::to_string(n);
        for (const test::Family& family : test::simpleFamilies())
            addCase(family.name + number, {makeRing(family, n)});
        addCase("holes" + number, makeHoles(n));
        addCase("heap" + number, makeHeap(n));
        addCase("loops" + number, makeLoops(n));
    }
    return true;
}();

} // namespace
