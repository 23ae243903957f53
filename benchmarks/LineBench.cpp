#include "shapes/Shapes.h"
#include "shapes/TriangReference.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/Triang2D.h>

#include <benchmark/benchmark.h>

#ifdef BENCH_AGG
#include <agg_conv_stroke.h>
#include <agg_path_storage.h>
#endif

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <random>
#include <string>

// Lines beside plain forms of the same, which give the same vertices and indices. Thick ones beside a stroke expander,
// too, which gives an outline instead of triangles. The counter tells the time per point.

namespace
{

using gui::gl::Buffer;
using gui::gl::Primitive;
using gui::gl::Triang2D;
using test::Outline;

/// A polyline, and how it is drawn.
struct Line
{
    const char* name;
    Outline (*make)(std::size_t n);
    float width;
    bool closed;
};

Outline makeCircle(std::size_t n)
{
    Outline outline;
    for (std::size_t i = 0; i < n; ++i)
    {
        const double angle = 2 * std::numbers::pi * double(i) / double(n);
        outline.push_back({static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle))});
    }
    return outline;
}

Outline makeWave(std::size_t n)
{
    Outline line;
    for (std::size_t i = 0; i < n; ++i)
        line.push_back({static_cast<float>(i), static_cast<float>(20 * std::sin(double(i) / 10))});
    return line;
}

// Turns of nearly half a circle, all of them bevelled.
Outline makeZigzag(std::size_t n)
{
    Outline line;
    for (std::size_t i = 0; i < n; ++i)
        line.push_back({static_cast<float>(i), i % 2 == 0 ? 0.0f : 10.0f});
    return line;
}

// Rough: turns of all sizes, some of them bevelled.
Outline makeNoise(std::size_t n)
{
    test::Random random(1);
    return test::simpleFamilies()[1].make(random, n);
}

// Straight on at every other point, and every fourth point twice.
Outline makeSteps(std::size_t n)
{
    Outline line;
    for (std::size_t i = 0; line.size() < n; ++i)
    {
        line.push_back({static_cast<float>((i + 1) / 4 * 2), static_cast<float>(i / 4 * 2 + i % 4 / 2)});
        if (i % 4 == 0)
            line.push_back(line.back());
    }
    return line;
}

constexpr Line cLines[] = {{"circle", makeCircle, 0.001f, true},
                           {"wave", makeWave, 1, false},
                           {"bevels", makeZigzag, 1, false},
                           {"noise", makeNoise, 0.001f, true},
                           {"steps", makeSteps, 0.3f, false}};

void setPoints(benchmark::State& state, std::size_t nPoints)
{
    using benchmark::Counter;
    state.counters["per_point"] =
        Counter(static_cast<double>(nPoints), Counter::kIsIterationInvariantRate | Counter::kInvert);
}

Outline outlineOf(benchmark::State& state, const Line& line)
{
    Outline outline = line.make(static_cast<std::size_t>(state.range(0)));
    setPoints(state, outline.size());
    return outline;
}

void thickLine(benchmark::State& state, const Line& line)
{
    const Outline outline = outlineOf(state, line);
    Triang2D triang(1);
    Triang2D::Points vertices;
    Triang2D::Indices indices;
    const auto make = [&]
    {
        vertices.reset();
        indices.reset();
        return triang.triangulateLine(outline.data(), static_cast<unsigned int>(outline.size()), line.width,
                                      line.closed, vertices, indices);
    };
    make(); // the lists grow once
    for (auto _ : state)
        benchmark::DoNotOptimize(make());
}

// Into lists that have nothing yet.
void firstThickLine(benchmark::State& state, const Line& line)
{
    const Outline outline = outlineOf(state, line);
    Triang2D triang(1);
    for (auto _ : state)
    {
        Triang2D::Points vertices;
        Triang2D::Indices indices;
        benchmark::DoNotOptimize(triang.triangulateLine(outline.data(), static_cast<unsigned int>(outline.size()),
                                                        line.width, line.closed, vertices, indices));
    }
}

void thickLinePlainly(benchmark::State& state, const Line& line)
{
    const Outline outline = outlineOf(state, line);
    for (auto _ : state)
        benchmark::DoNotOptimize(test::reference::triangulateLine(outline, line.width, line.closed));
}

#ifdef BENCH_AGG

void stroke(benchmark::State& state, const Line& line)
{
    const Outline outline = outlineOf(state, line);
    agg::path_storage path;
    Outline stroked;
    for (auto _ : state)
    {
        stroked.clear();
        path.remove_all();
        path.move_to(outline[0].x, outline[0].y);
        for (std::size_t i = 1; i < outline.size(); ++i)
            path.line_to(outline[i].x, outline[i].y);
        if (line.closed)
            path.close_polygon();
        agg::conv_stroke<agg::path_storage> expander(path);
        expander.width(2 * line.width);
        expander.line_join(agg::miter_join);
        expander.miter_limit(2);
        expander.rewind(0);
        double x = 0, y = 0;
        for (unsigned int command = expander.vertex(&x, &y); !agg::is_stop(command); command = expander.vertex(&x, &y))
            stroked.push_back({static_cast<float>(x), static_cast<float>(y)});
        benchmark::DoNotOptimize(stroked.data());
    }
}

#endif

/// How the points of a recycled line stand to the vertices that are stored.
enum class Order
{
    Same,
    Rotated,
    Reversed,
    Shuffled,
    AllEqual
};

Outline reordered(Outline points, Order order)
{
    switch (order)
    {
    case Order::Same:
        break;
    case Order::Rotated:
        std::rotate(points.begin(), points.begin() + static_cast<std::ptrdiff_t>(points.size() / 2), points.end());
        break;
    case Order::Reversed:
        std::reverse(points.begin(), points.end());
        break;
    case Order::Shuffled:
        std::shuffle(points.begin(), points.end(), std::mt19937(1));
        break;
    case Order::AllEqual:
        std::fill(points.begin(), points.end(), points.front());
        break;
    }
    return points;
}

// Appending the vertices is part of it.
void recycledLine(benchmark::State& state, Order order)
{
    const auto n = static_cast<std::size_t>(state.range(0));
    const Outline points = reordered(makeNoise(n), order);
    const Outline stored = order == Order::AllEqual ? points : makeNoise(n);
    Buffer buffer;
    if (!buffer.init(1, n, n, {gui::gl::DataType::Vec2}))
    {
        state.SkipWithError("cannot set up");
        return;
    }
    Triang2D triang(static_cast<unsigned int>(n));
    for (auto _ : state)
    {
        buffer.reset();
        buffer.appendVertices(stored.data(), n);
        benchmark::DoNotOptimize(
            triang.createRecycledLine(&buffer, Primitive::LineLoop, points.data(), 0, static_cast<unsigned int>(n)));
    }
    setPoints(state, n);
}

// By the name of the kind, the contender's and the number of points.
[[maybe_unused]] const bool s_isRegistered = []
{
    for (const Line& line : cLines)
    {
        const std::string name = std::string("ThickLine/") + line.name;
        for (const int n : {2, 16, 256, 4096, 65536})
        {
            benchmark::RegisterBenchmark(name.c_str(), thickLine, line)->Arg(n);
            if (n >= 256)
                benchmark::RegisterBenchmark((name + "/first").c_str(), firstThickLine, line)->Arg(n);
            // It inserts bevels into the vertices.
            if (n <= 4096)
                benchmark::RegisterBenchmark((name + "/plain").c_str(), thickLinePlainly, line)->Arg(n);
#ifdef BENCH_AGG
            benchmark::RegisterBenchmark((name + "/agg").c_str(), stroke, line)->Arg(n);
#endif
        }
    }
    return true;
}();

BENCHMARK_CAPTURE(recycledLine, same, Order::Same)->Name("RecycledLine/same")->Arg(16)->Arg(1024)->Arg(16384);
BENCHMARK_CAPTURE(recycledLine, rotated, Order::Rotated)->Name("RecycledLine/rotated")->Arg(16)->Arg(1024)->Arg(16384);
BENCHMARK_CAPTURE(recycledLine, reversed, Order::Reversed)
    ->Name("RecycledLine/reversed")
    ->Arg(16)
    ->Arg(1024)
    ->Arg(16384);
BENCHMARK_CAPTURE(recycledLine, shuffled, Order::Shuffled)
    ->Name("RecycledLine/shuffled")
    ->Arg(16)
    ->Arg(1024)
    ->Arg(16384);
BENCHMARK_CAPTURE(recycledLine, equal, Order::AllEqual)->Name("RecycledLine/equal")->Arg(16)->Arg(1024)->Arg(16384);

} // namespace
