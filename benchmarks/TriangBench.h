#pragma once

#include "common/Shapes.h"

#include <gui/gl/Triang2D.h>

#include <benchmark/benchmark.h>

#include <cstddef>

/// What the benchmarks of Triang2D share.
namespace bench
{

/// A counter tells the time per corner, of all outlines of one round together.
inline void setCorners(benchmark::State& state, std::size_t nCorners)
{
    using benchmark::Counter;
    state.counters["per_corner"] =
        Counter(static_cast<double>(nCorners), Counter::kIsIterationInvariantRate | Counter::kInvert);
}

/// Lists that grow once and are reused.
struct Lists
{
    gui::gl::Triang2D::Points vertices;
    gui::gl::Triang2D::Indices indices;

    void reset()
    {
        vertices.reset();
        indices.reset();
    }
};

/// Numbers of the simple families.
enum Family : std::size_t
{
    Star,
    Circle,
    Comb,
    Spiral
};

inline test::Outline makeOutline(std::size_t family, std::size_t n)
{
    test::Random random(1);
    return test::simpleFamilies()[family].make(random, n);
}

} // namespace bench
