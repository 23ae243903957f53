// A million triangles in space, a closed mesh and a loose heap: building the index, moving all of its vertices, random
// rays, a lasso. Beside the plain search through all triangles.

#include "draw/SpaceMeshes.h"

#include <gui/draw/TriangleIndex.h>

#include <benchmark/benchmark.h>

#include <glm/ext/matrix_clip_space.hpp>
#include <glm/geometric.hpp>
#include <glm/trigonometric.hpp>

#include <cmath>

#include <malloc.h>

namespace
{

using namespace gui::draw;

// Memory that was freed stays with the program: what the system takes to hand out pages is left out, but for
// BuildFirst.
[[maybe_unused]] const int cKeepsMemory =
    mallopt(M_MMAP_THRESHOLD, 1 << 30) & mallopt(M_TRIM_THRESHOLD, 1 << 30) & mallopt(M_TOP_PAD, 64 << 20);

const test::SpaceMesh& meshOf(benchmark::State& state)
{
    static const test::SpaceMesh s_knot = test::makeKnot(5000, 100), s_soup = test::makeSoup(1000000, 0.01);
    return state.range(0) == 0 ? s_knot : s_soup;
}

// From points around the mesh towards points in its box.
std::vector<Ray> raysFor(const TriangleIndex& index)
{
    std::mt19937 random(5);
    std::vector<Ray> rays;
    const Box3 box = index.getBounds();
    for (int i = 0; i < 1 << 16; ++i)
    {
        const glm::dvec3 to = test::randomIn(random, box.min, box.max);
        const glm::dvec3 way = test::randomIn(random, glm::dvec3(-1), glm::dvec3(1));
        const glm::dvec3 from = box.getCenter() + 2 * box.getRadius() * glm::normalize(way);
        rays.push_back({from, glm::normalize(to - from)});
    }
    return rays;
}

void BuildIndex(benchmark::State& state)
{
    const test::SpaceMesh& mesh = meshOf(state);
    TriangleIndex index;
    for (auto _ : state)
        index.setTriangles(mesh.vertices, mesh.indices);
    state.counters["bytes_per_triangle"] = double(index.getMemory()) / double(index.size());
}

// As in a program that has not used so much memory before.
void BuildFirst(benchmark::State& state)
{
    const test::SpaceMesh& mesh = meshOf(state);
    TriangleIndex index;
    for (auto _ : state)
    {
        state.PauseTiming();
        index.clear();
        malloc_trim(0);
        state.ResumeTiming();
        index.setTriangles(mesh.vertices, mesh.indices);
    }
}

// The vertices go to and fro.
void MoveVertices(benchmark::State& state)
{
    const test::SpaceMesh& mesh = meshOf(state);
    TriangleIndex index;
    index.setTriangles(mesh.vertices, mesh.indices);
    std::vector<glm::dvec3> moved = mesh.vertices;
    for (glm::dvec3& vertex : moved)
        vertex += 0.02 * glm::sin(3.0 * glm::dvec3(vertex.y, vertex.z, vertex.x));
    bool isMoved = false;
    for (auto _ : state)
        index.move((isMoved = !isMoved) ? moved : mesh.vertices);
}

void Nearest(benchmark::State& state, TriangleIndex::Build build)
{
    const test::SpaceMesh& mesh = meshOf(state);
    TriangleIndex index;
    index.setTriangles(mesh.vertices, mesh.indices, build);
    const std::vector<Ray> rays = raysFor(index);
    std::size_t n = 0, nHits = 0;
    for (auto _ : state)
        nHits += index.getNearest(rays[n++ % rays.size()]) ? 1 : 0;
    state.counters["hits"] = double(nHits) / double(n);
}

// In a tenth of the view.
void Lasso(benchmark::State& state, TriangleIndex::Build build)
{
    const test::SpaceMesh& mesh = meshOf(state);
    TriangleIndex index;
    index.setTriangles(mesh.vertices, mesh.indices, build);
    const Eye eye(index.getBounds().getCenter() + glm::dvec3(0, 0, 3 * index.getBounds().getRadius()), glm::dmat3(1),
                  glm::perspective(glm::radians(45.0), 1.0, 0.1, 100.0), {1000, 1000});
    std::vector<td::Point<double>> lasso;
    for (int i = 0; i < 200; ++i)
    {
        const double a = i * 0.0314159265, radius = 180 + 40 * std::sin(7 * a);
        lasso.emplace_back(500 + radius * std::cos(a), 500 + radius * std::sin(a));
    }
    std::size_t nFound = 0;
    for (auto _ : state)
        nFound = index.getWithin(eye, lasso).size();
    state.counters["found"] = double(nFound);
}

using enum TriangleIndex::Build;

BENCHMARK(BuildIndex)->ArgName("soup")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BuildFirst)->ArgName("soup")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(MoveVertices)->ArgName("soup")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Nearest, Tree, Now)->ArgName("soup")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Nearest, Plain, InPieces)->ArgName("soup")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Lasso, Tree, Now)->ArgName("soup")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Lasso, Plain, InPieces)->ArgName("soup")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

} // namespace
